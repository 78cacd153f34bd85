// What scaling does to one pixel, in plain integers.
#ifndef DRAW_STRETCH_PIXEL_H_
#define DRAW_STRETCH_PIXEL_H_

#include <algorithm>
#include <bit>

#include "surface/pixel_format.h"

namespace pincel {

// Scaling writes the three colour bytes of 32-bit pixels and keeps the fourth. Intended.
template <class Format>
constexpr bool kKeepsFourthByte = Format::kBytes == 4;

// The positions between two pixels, and the largest weight. Not 65536: the four weights sum to a
// little less than one, and white comes out as 254. Intended.
constexpr uint32_t kSmoothUnit = 65535;

// How much each of four neighbours counts, in 1/65536, at 0 to 65535 of the way to the right and
// down.
struct SmoothWeights {
  uint32_t top_left, top_right, bottom_left, bottom_right;

  constexpr SmoothWeights(uint32_t right, uint32_t down)
      : top_left((kSmoothUnit - right) * (kSmoothUnit - down) >> 16),
        top_right(right * (kSmoothUnit - down) >> 16),
        bottom_left((kSmoothUnit - right) * down >> 16),
        bottom_right(right * down >> 16) {}
};

// The three colour bytes of a smoothly stretched pixel.
inline void MixNeighbours(uint8_t* dst, const uint8_t* top_left, const uint8_t* top_right,
                          const uint8_t* bottom_left, const uint8_t* bottom_right, uint32_t right,
                          uint32_t down) {
  const SmoothWeights weights(right, down);
  for (int i = 0; i < 3; ++i) {
    dst[i] =
        uint8_t((top_left[i] * weights.top_left + top_right[i] * weights.top_right +
                 bottom_left[i] * weights.bottom_left + bottom_right[i] * weights.bottom_right) >>
                16);
  }
}

// The three colour bytes of an enlarged pixel: first along both rows, in 16.16 fixed point, then from
// the upper to the lower one.
inline void InterpolateNeighbours(uint8_t* dst, const uint8_t* top_left, const uint8_t* top_right,
                                  const uint8_t* bottom_left, const uint8_t* bottom_right,
                                  uint32_t right, uint32_t down) {
  for (int i = 0; i < 3; ++i) {
    const auto along = [right](int32_t from, int32_t to) {
      return (from << 16) + (to - from) * int32_t(right);
    };
    const int32_t top = along(top_left[i], top_right[i]);
    const int32_t bottom = along(bottom_left[i], bottom_right[i]);
    dst[i] = uint8_t((top + int32_t(int64_t{bottom - top} * down >> 16)) >> 16);
  }
}

// The averages of blocks of some number of pixels (1 to 65025) from a channel's sum. Sums have 16 bits
// and a sign: 32768 and more wrap. Intended. All steps stay within 16 bits.
struct WrappingAverage {
  uint16_t scale, inverse;
  int shift;

  // The shift that a number of pixels needs. One less will do too: what is divided has 15 bits.
  static constexpr int ShiftFor(uint32_t pixels) {
    return std::min(UpperLog(pixels), 15);  // more than 32768 pixels: 0 in any case
  }
  constexpr WrappingAverage(uint32_t pixels, int shift_used)
      : scale(shift_used < UpperLog(pixels) ? 1 : 2),
        inverse(
            uint16_t(((uint32_t{0x10000} << shift_used) + scale * pixels - 1) / (scale * pixels))),
        shift(shift_used) {}
  explicit constexpr WrappingAverage(uint32_t pixels) : WrappingAverage(pixels, ShiftFor(pixels)) {}

  // floor(sum / pixels) modulo 256. That of a negative sum is the inverted one of the inverted sum.
  constexpr uint8_t operator()(uint16_t sum) const {
    const uint16_t sign = sum < 0x8000 ? 0 : 0xFFFF;
    const uint32_t scaled = uint32_t(sum ^ sign) * scale;
    return uint8_t((scaled * inverse >> 16 >> shift) ^ sign);
  }

 private:
  static constexpr int UpperLog(uint32_t n) { return int(std::bit_width(n - 1)); }
};

static_assert(WrappingAverage(4)(1020) == 255 && WrappingAverage(3)(0) == 0);
static_assert(WrappingAverage(6, 2)(1529) == 254 && WrappingAverage(6, 3)(1529) == 254);
static_assert(WrappingAverage(129)(129 * 255 & 0xFFFF) == 2);  // (32895 - 65536) / 129 = -253.03

}  // namespace pincel

#endif  // DRAW_STRETCH_PIXEL_H_
