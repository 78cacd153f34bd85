// The library's pixel formats by name, and the descriptor of pixels in one of them.
#ifndef EXAMPLES_FORMATS_H_
#define EXAMPLES_FORMATS_H_

#include <pincel.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

enum class Format { k8, k565, k555, k1555, k4444, k24, k32 };

struct FormatFacts {
  Format format;
  const char* name;
  uint32_t bpp, red, green, blue, alpha;  // the masks matter at 16 bits only
};

inline constexpr FormatFacts kFormats[] = {
    {Format::k8, "8", 8, 0, 0, 0, 0},
    {Format::k565, "565", 16, 0xF800, 0x07E0, 0x001F, 0},
    {Format::k555, "555", 16, 0x7C00, 0x03E0, 0x001F, 0},
    {Format::k1555, "1555", 16, 0x7C00, 0x03E0, 0x001F, 0x8000},
    {Format::k4444, "4444", 16, 0x0F00, 0x00F0, 0x000F, 0xF000},
    {Format::k24, "24", 24, 0xFF0000, 0xFF00, 0xFF, 0},
    {Format::k32, "32", 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000},
};

inline const FormatFacts& FactsOf(Format format) { return kFormats[size_t(format)]; }

// The format that a command line names: 8, 565, 555, 1555, 4444, 24, 32.
inline Format FormatNamed(const std::string& name) {
  for (const FormatFacts& facts : kFormats) {
    if (name == facts.name) return facts.format;
  }
  throw std::runtime_error("there is no format " + name);
}

inline constexpr uint32_t kNoKey = 0xFFFFFFFF;

// The descriptor of pixels that lie somewhere, in a window's bitmap for instance.
inline TSurfDesc Described(Format format, int columns, int rows, int row_bytes, void* pixels) {
  const FormatFacts& facts = FactsOf(format);
  TSurfDesc surface{};
  surface.width = columns;
  surface.height = rows;
  surface.bpp = facts.bpp;
  surface.rMask = facts.red;
  surface.gMask = facts.green;
  surface.bMask = facts.blue;
  surface.aMask = facts.alpha;
  surface.colorKey = kNoKey;
  surface.pitch = row_bytes;
  surface.pixels = static_cast<uint8_t*>(pixels);
  return surface;
}

#endif  // EXAMPLES_FORMATS_H_
