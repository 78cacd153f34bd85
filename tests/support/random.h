// Deterministic random pictures and rectangles for the comparisons of library and model.
//
// Everything here must give the same sequence with every compiler (the committed checksums depend on
// it): draw at most one random number per expression unless the order is fixed, as it is in braces.
#ifndef TESTS_SUPPORT_RANDOM_H_
#define TESTS_SUPPORT_RANDOM_H_

#include <algorithm>
#include <cstdint>

#include "tests/model/picture.h"

namespace support {

// Small, fast and the same on every platform; a failing case is replayed from its seed.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 2 + 1) {}
  uint32_t Next() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    uint64_t x = state_;
    x ^= x >> 33;
    x *= 0xFF51AFD7ED558CCDu;
    x ^= x >> 33;
    return uint32_t(x >> 16);
  }
  int Below(int n) { return int(Next() % uint32_t(n)); }
  int Between(int low, int high) { return low + Below(high - low + 1); }  // both included
  bool OneIn(int n) { return Below(n) == 0; }
  uint8_t Byte() {  // biased towards the ends
    const uint32_t bits = Next();
    switch (bits & 7) {
      case 0:
        return 0x00;
      case 1:
        return 0xFF;
      default:
        return uint8_t(bits >> 8);
    }
  }

 private:
  uint64_t state_;
};

// The widths worth trying: all up to 70 pixels, and some around larger powers of two.
inline constexpr int kWidths = 78;
inline int WidthOf(int index) {
  const int i = index % kWidths;
  return i < 70 ? i + 1 : i < 75 ? 127 + (i - 70) : 255 + (i - 75);
}

struct PictureOptions {
  int max_padding = 7;  // bytes between rows, 0..max
  int guard = 67;       // bytes before the first and behind the last row
  bool negative_pitch = false;
  // No guards, and nothing behind the last pixel of the last row but `tail` bytes: a sanitizer then
  // sees every access past the pixels.
  bool exact = false;
  int tail = 0;
};

// Rows upwards or downwards, with guards to compare or without them for the sanitizers.
inline PictureOptions AnyOptions(Random& random) {
  PictureOptions options;
  options.max_padding = random.OneIn(3) ? 0 : 7;
  options.negative_pitch = random.OneIn(4);
  options.exact = random.OneIn(3);
  options.guard += random.Below(4);  // every alignment
  return options;
}

// A picture of random bytes, guards and padding included. Alpha mask set at random where a format
// leaves it open (24, 32 bits), fixed by the format at 16 bits. No key; palette random when 8 bits.
inline model::Picture RandomPicture(Random& random, int format, int width, int height,
                                    PictureOptions options = {}) {
  model::Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  const int row = std::max(width, 0) * p.BytesPerPixel();
  p.pitch = row + random.Between(0, options.max_padding);
  const int rows = std::max(height, 0);
  int64_t size = int64_t{rows} * p.pitch;
  if (options.exact) {
    if (rows > 0) size += row - p.pitch + options.tail;
  } else {
    p.origin = options.guard;
    size += 2 * options.guard;
  }
  p.bytes.resize(size_t(size));
  for (uint8_t& byte : p.bytes) byte = random.Byte();
  if (options.negative_pitch && rows > 0) {
    p.origin += int64_t{rows - 1} * p.pitch;
    p.pitch = -p.pitch;
  }
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  if ((format == 32 || format == 24) && random.OneIn(2)) p.alpha_mask = 0xFF000000u;
  p.has_palette = format == 8;
  for (TRGBA& entry : p.palette) {
    entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  }
  return p;
}

// Gives the picture a key and makes about one pixel in `one_in` equal to `pixel_value`.
inline void PlantKey(Random& random, model::Picture& p, uint32_t key, uint32_t pixel_value,
                     int one_in = 3) {
  p.key = key;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      if (random.OneIn(one_in)) p.Put(x, y, pixel_value);
    }
  }
}

// A rectangle somewhere around a surface of this size: inside, across each edge, outside, empty,
// inverted, far away.
inline CRectangulo RandomRect(Random& random, int width, int height) {
  const int left = random.Between(-width - 2, width + 2);
  const int top = random.Between(-height - 2, height + 2);
  switch (random.Below(16)) {
    case 0:
      return {left, top, left, top + random.Between(0, height)};
    case 1:
      return {left, top, left - random.Between(0, width + 1), top - 1};
    case 2:
      return {INT32_MIN, top, INT32_MAX, INT32_MAX};
    case 3:
      return {-1, INT32_MIN, width + 1, height + 1};
    case 4:
      return {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    case 5:
      return {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    case 6:
      return {INT32_MAX - 1, top, INT32_MAX, height};
    case 7:
      return {0, 0, width, height};
    case 8:
      return {0, top, width, top + random.Between(1, height + 2)};
    // From one of the first columns to the last or beyond: long rows at every start offset.
    case 9:
    case 10:
    case 11:
      return {random.Between(-3, 3), top, width - random.Between(-2, 2), height};
    default:
      return {left, top, left + random.Between(1, 2 * width + 2),
              top + random.Between(1, 2 * height + 2)};
  }
}

}  // namespace support

#endif  // TESTS_SUPPORT_RANDOM_H_
