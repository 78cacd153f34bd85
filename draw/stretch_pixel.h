// What scaling does to one pixel, in plain integers.
#ifndef DRAW_STRETCH_PIXEL_H_
#define DRAW_STRETCH_PIXEL_H_

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

// The average of a block of `pixels` pixels (1 to 65025) from a channel's sum. Sums have 16 bits and
// a sign: 32768 and more wrap. Intended. All steps stay within 16 bits without a sign.
struct WrappingAverage {
  uint16_t pixels, inverse;
  uint16_t once, twice;  // remainders above these are one and two whole pixels more
  uint16_t bias;         // at least 32768 / pixels, so that nothing divided is negative

  explicit constexpr WrappingAverage(uint32_t n)
      : pixels(uint16_t(n)),
        inverse(AtMost16Bits(65536 / n)),
        once(uint16_t(n - 1 - Offset(n))),
        twice(AtMost16Bits(2 * n - 1 - Offset(n))),
        bias(uint16_t(Bias(n))) {}

  // floor(sum / pixels) modulo 256. The product by the inverse is at most one too small.
  constexpr uint8_t operator()(uint16_t sum) const {
    const uint32_t positive = sum ^ 0x8000u;
    const uint32_t quotient = positive * inverse >> 16;
    const uint32_t rest = positive - quotient * pixels;
    return uint8_t(quotient + (rest > once) + (rest > twice) - bias);
  }

 private:
  static constexpr uint32_t Bias(uint32_t n) { return (32768 + n - 1) / n; }
  static constexpr uint32_t Offset(uint32_t n) { return Bias(n) * n - 32768; }
  static constexpr uint16_t AtMost16Bits(uint32_t n) { return uint16_t(n < 65535 ? n : 65535); }
};

static_assert(WrappingAverage(4)(1020) == 255 && WrappingAverage(3)(0) == 0);
static_assert(WrappingAverage(129)(129 * 255 & 0xFFFF) == 2);  // (32895 - 65536) / 129 = -253.03

}  // namespace pincel

#endif  // DRAW_STRETCH_PIXEL_H_
