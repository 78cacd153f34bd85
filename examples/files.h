// Files to memory, BMP files into surfaces, surfaces into BMP files.
#ifndef EXAMPLES_FILES_H_
#define EXAMPLES_FILES_H_

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "host_surface.h"

using File = std::vector<uint8_t>;

inline File ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  File file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  file.push_back(0);  // 1555 and 4444 take alpha from the byte behind a 24-bit pixel
  return file;
}

inline void WriteFile(const std::string& path, const void* bytes, size_t size) {
  std::ofstream out(path, std::ios::binary);
  out.write(static_cast<const char*>(bytes), std::streamsize(size));
  if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

// Asks for the size, prepares a surface of the wanted format, loads.
inline HostSurface LoadBitmap(File& file, Format format) {
  TSurfDesc size{};
  LoadInfoBMP(size, file.data());
  HostSurface surface(format, size.width, size.height);
  LoadBMP(surface, file.data());
  return surface;
}

// A 24-bit BMP file that shows the surface.
inline File BitmapFileOf(const HostSurface& surface) {
  const uint32_t row = (uint32_t(surface.width) * 3 + 3) / 4 * 4;
  const uint32_t size = 54 + row * uint32_t(surface.height);
  File file{'B', 'M'};
  const auto put = [&file](uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) file.push_back(uint8_t(value >> (8 * i)));
  };
  put(size, 4), put(0, 4), put(54, 4);  // file header: size, reserved, start of the pixels
  put(40, 4), put(uint32_t(surface.width), 4), put(uint32_t(surface.height), 4);
  put(1, 2), put(24, 2), put(0, 4), put(size - 54, 4);  // planes, depth, plain, bytes of pixels
  put(2835, 4), put(2835, 4), put(0, 4), put(0, 4);     // 72 dots per inch, no palette
  for (int y = surface.height - 1; y >= 0; --y) {
    for (int x = 0; x < surface.width; ++x) put(surface.Display(x, y), 3);
    file.resize(size - uint32_t(y) * row);
  }
  return file;
}

#endif  // EXAMPLES_FILES_H_
