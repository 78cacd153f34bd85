#include "tests/model/transform_model.h"

#include <algorithm>
#include <cmath>

#include "tests/model/core_model.h"
#include "tests/model/draw_model.h"

namespace model {
namespace {

void TurnQuarter(Picture& dst, const Picture& src, bool clockwise, bool upwards) {
  for (int64_t row = 0; row < std::min(dst.height, src.width); ++row) {
    const int64_t column = clockwise ? row : src.width - 1 - row;
    const int64_t y = upwards ? dst.height - 1 - row : row;
    for (int64_t x = 0; x < std::min(dst.width, src.height); ++x) {
      dst.Put(x, y, src.Get(column, clockwise ? src.height - 1 - x : x));
    }
  }
}

void CopyReversed(Picture& dst, const Picture& src) {
  if (dst.width <= 0 || dst.height <= 0) return;
  const int64_t unit = dst.BytesPerPixel();
  const int64_t count = (int64_t{dst.height - 1} * dst.pitch + dst.width * unit - unit) / unit;
  const auto byte_at = [&](int64_t i) -> uint8_t& { return dst.bytes.at(size_t(dst.origin + i)); };
  for (int64_t k = 0; k < count; ++k) {
    // 16-bit pixels move in pairs, byte by byte from the end of one to the start of the other.
    const int64_t bytes = unit == 2 ? 4 : unit;
    for (int64_t i = 0; i < bytes; ++i) {
      byte_at(k * unit + i) = src.bytes.at(size_t(src.origin - k * unit + (unit == 2 ? 1 - i : i)));
    }
  }
}

// The shift of bytes, added from 0 on; below, all but one of it is subtracted. Shifts beyond a byte
// wrap.
int64_t ShiftedByte(int64_t byte, int64_t k) {
  const int64_t low = (k % 256 + 256) % 256;
  return k >= 0 ? std::min(byte + low, int64_t{255}) : std::max(byte - (255 - low), int64_t{0});
}

int64_t ShiftedField(int64_t five_bits, int64_t k) {
  return std::clamp(five_bits + k, int64_t{0}, int64_t{31});
}

uint32_t ShiftedPixel(int format, uint32_t pixel, int64_t k) {
  const int64_t p = pixel;
  switch (format) {
    case 16:
      return uint32_t(ShiftedField(p / 2048, k) * 2048 + ShiftedField(p / 64 % 32, k) * 64 +
                      ShiftedField(p % 32, k));
    case 17:
    case 18:
      return uint32_t(p / 32768 * 32768 + ShiftedField(p / 1024 % 32, k) * 1024 +
                      ShiftedField(p / 32 % 32, k) * 32 + ShiftedField(p % 32, k));
    default:
      return uint32_t(p / 4096 * 4096 + ShiftedField(p / 256 % 16 * 2, k) / 2 * 256 +
                      ShiftedField(p / 16 % 16 * 2, k) / 2 * 16 + ShiftedField(p % 16 * 2, k) / 2);
  }
}

}  // namespace

void FlipX(Picture& p) {
  for (int64_t y = 0; y < p.height; ++y) {
    for (int64_t x = 0; x < p.width / 2; ++x) {
      const uint32_t left = p.Get(x, y), right = p.Get(p.width - 1 - x, y);
      p.Put(x, y, right);
      p.Put(p.width - 1 - x, y, left);
    }
  }
}

void CreateRotated(Picture& dst, const Picture& src, int mode, const TRGBA* fallback) {
  const bool turn = mode & 1, second = mode & 2, mirrored = mode & 4;
  if (turn) {
    TurnQuarter(dst, src, second, mirrored);
    return;
  }
  if (second) {
    CopyReversed(dst, src);
  } else {
    DrawBitmap(dst, {0, 0, dst.width, dst.height}, src, {0, 0}, fallback);
  }
  if (mirrored) FlipX(dst);
}

void TranslateRect(Picture& dst, const CRectangulo& rect, float amount, const uint8_t* table) {
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return;
  const bool fields = dst.BytesPerPixel() == 2;
  const auto k = int64_t(fields ? double{amount} * 62 - 31 : double{amount} * 510 - 255);
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const uint32_t pixel = dst.Get(x, y);
      if (dst.format == 8) {
        dst.Put(x, y, table[pixel]);
      } else if (fields) {
        dst.Put(x, y, ShiftedPixel(dst.format, pixel, k));
      } else {
        uint32_t shifted = 0;
        for (int i = 0; i < dst.BytesPerPixel(); ++i) {
          shifted |= uint32_t(ShiftedByte(pixel >> (8 * i) & 255, k)) << (8 * i);
        }
        dst.Put(x, y, shifted);
      }
    }
  }
}

}  // namespace model
