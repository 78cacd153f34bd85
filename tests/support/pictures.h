// Small pictures with literal contents.
#ifndef TESTS_SUPPORT_PICTURES_H_
#define TESTS_SUPPORT_PICTURES_H_

#include <vector>

#include "tests/model/picture.h"

namespace support {

// Rows without padding, one stored value per pixel from the top left; no key, no palette. A 24-bit
// picture has one byte of 0 behind it for the rules that read there.
inline model::Picture PictureOf(int format, int width, int height,
                                const std::vector<uint32_t>& pixels) {
  model::Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  p.pitch = width * p.BytesPerPixel();
  p.bytes.resize(size_t(height * p.pitch + (format == 24)));
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  for (size_t i = 0; i < pixels.size(); ++i) {
    p.Put(int64_t(i) % width, int64_t(i) / width, pixels[i]);
  }
  return p;
}

inline model::Picture Filled(int format, int width, int height, uint32_t pixel) {
  return PictureOf(format, width, height, std::vector<uint32_t>(size_t(width * height), pixel));
}

// The stored values from the top left.
inline std::vector<uint32_t> Pixels(const model::Picture& p) {
  std::vector<uint32_t> pixels;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) pixels.push_back(p.Get(x, y));
  }
  return pixels;
}

}  // namespace support

#endif  // TESTS_SUPPORT_PICTURES_H_
