// A picture for the per-pixel models: plain memory with room around the pixels, so that a model and
// the library can run on equal copies and every byte, guards and padding included, be compared.
// Shares nothing with the library but the public header.
#ifndef TESTS_MODEL_PICTURE_H_
#define TESTS_MODEL_PICTURE_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "include/pincel.h"
#include "tests/support/pixel_bytes.h"

namespace model {

// The seven formats by their documented code.
inline constexpr int kFormats[] = {8, 16, 17, 18, 19, 24, 32};

struct Picture {
  int format = 32;  // 8, 16 (565), 17 (555), 18 (1555), 19 (4444), 24, 32
  int width = 0, height = 0;
  int pitch = 0;       // may be odd, may be larger than the row, may be negative
  int64_t origin = 0;  // index in `bytes` of pixel (0, 0)
  support::PixelBytes bytes;
  uint32_t key = 0xFFFFFFFF;  // 0xFFFFFFFF: none
  uint32_t alpha_mask = 0;    // aMask of the descriptor
  bool has_palette = false;
  std::array<TRGBA, 256> palette{};

  int BytesPerPixel() const { return format >= 16 && format <= 19 ? 2 : format / 8; }
  int64_t Index(int64_t x, int64_t y) const { return origin + y * pitch + x * BytesPerPixel(); }

  // The stored value of a pixel, lowest byte first in memory.
  uint32_t Get(int64_t x, int64_t y) const {
    uint32_t value = 0;
    for (int i = 0; i < BytesPerPixel(); ++i) {
      value |= uint32_t{bytes.at(size_t(Index(x, y) + i))} << (8 * i);
    }
    return value;
  }
  void Put(int64_t x, int64_t y, uint32_t value) {
    for (int i = 0; i < BytesPerPixel(); ++i) {
      bytes.at(size_t(Index(x, y) + i)) = uint8_t(value >> (8 * i));
    }
  }
  // One byte of a pixel's memory; i may run past the pixel (rules that read the following byte).
  uint8_t Byte(int64_t x, int64_t y, int64_t i) const { return bytes.at(size_t(Index(x, y) + i)); }
};

// The descriptor that the library gets for a picture; points into it.
inline TSurfDesc Describe(Picture& p) {
  TSurfDesc d{};
  d.width = p.width;
  d.height = p.height;
  d.bpp = uint32_t(p.BytesPerPixel()) * 8;
  switch (p.format) {
    case 16:
      d.rMask = 0xF800, d.gMask = 0x07E0, d.bMask = 0x001F;
      break;
    case 17:
    case 18:
      d.rMask = 0x7C00, d.gMask = 0x03E0, d.bMask = 0x001F;
      break;
    case 19:
      d.rMask = 0x0F00, d.gMask = 0x00F0, d.bMask = 0x000F;
      break;
    default:
      d.rMask = 0xFF0000, d.gMask = 0x00FF00, d.bMask = 0x0000FF;
      break;
  }
  d.aMask = p.alpha_mask;
  d.colorKey = p.key;
  d.pitch = p.pitch;
  d.pixels = p.bytes.data() + p.origin;
  d.palette = p.has_palette ? p.palette.data() : nullptr;
  return d;
}

}  // namespace model

#endif  // TESTS_MODEL_PICTURE_H_
