// Convolution: lists of taps, and the formula for one pixel.
#ifndef FILTERS_CONVOLUTION_PIXEL_H_
#define FILTERS_CONVOLUTION_PIXEL_H_

#include <algorithm>
#include <array>

#include "surface/pixel_format.h"

namespace pincel {

// What a host passes. Offsets are in bytes; a long may have 64 bits, of which 32 count.
struct TapList {
  int32_t offset(int i) const { return int32_t(offsets[i]); }
  int count;
  const int* weights;
  const long* offsets;
  int divisor;  // not 0
  int bias;
};

// The channels of a pixel as a convolution sees them: the fields, in their own range.
template <class Format>
struct Channels {  // bytes; the fourth one of 32 bits is none of them
  static constexpr std::array<int32_t, 3> kMax = {255, 255, 255}, kHighest = kMax;
  static constexpr std::array<int32_t, 3> kBiasTimes = {1, 1, 1};
  static constexpr std::array<uint32_t, 3> Split(uint32_t pixel) {
    return {pixel & 0xFF, pixel >> 8 & 0xFF, pixel >> 16 & 0xFF};
  }
  static constexpr uint32_t Join(std::array<uint32_t, 3> values) {
    return values[0] | values[1] << 8 | values[2] << 16;
  }
};
template <PackedFields Format>
struct Channels<Format> {
  using B = typename Format::Blue;
  using G = typename Format::Green;
  using R = typename Format::Red;
  // What is stored at most, and what is read at most: alpha bits count as high bits of red.
  // Intended.
  static constexpr std::array<int32_t, 3> kMax = {B::kMax, G::kMax, R::kMax};
  static constexpr std::array<int32_t, 3> kHighest = {B::kMax, G::kMax, 0xFFFF >> R::kLow};
  // Green gets the bias twice, and every field the bias as it stands. Intended.
  static constexpr std::array<int32_t, 3> kBiasTimes = {1, 2, 1};
  static constexpr std::array<uint32_t, 3> Split(uint32_t pixel) {
    return {B::Get(pixel), G::Get(pixel), pixel >> R::kLow};
  }
  static constexpr uint32_t Join(std::array<uint32_t, 3> values) {
    return values[0] << B::kLow | values[1] << G::kLow | values[2] << R::kLow;
  }
};

// A sum becomes a channel. Quotients and what is added to them wrap at 32 bits like the sums.
constexpr uint32_t ChannelOfSum(uint32_t sum, int32_t divisor, uint32_t bias, int32_t max) {
  const auto quotient = uint32_t(int64_t{int32_t(sum)} / divisor);
  return uint32_t(std::clamp(int32_t(quotient + bias), 0, max));
}
static_assert(ChannelOfSum(uint32_t(-7), 2, 10, 255) == 7);            // toward zero
static_assert(ChannelOfSum(0x80000000, -1, 0, 255) == 0);              // INT_MIN again
static_assert(ChannelOfSum(1, 1, 0x7FFFFFFF, 255) == 0);               // wraps
static_assert(ChannelOfSum(0, 1, 2 * uint32_t{0x80000001}, 63) == 2);  // of twice the bias, too

// The pixel at byte `at` of a copy whose last pixel begins at byte `last`. The buffer is one range:
// beyond its ends lie its first and its last pixel, beyond those of a row the next row's. Intended.
template <class Format>
uint32_t ConvolvedPixel(const uint8_t* copy, int64_t at, int64_t last, const TapList& taps) {
  using C = Channels<Format>;
  std::array<uint32_t, 3> values = {};
  for (int i = 0; i < taps.count; ++i) {
    const int64_t from = std::clamp<int64_t>(at + taps.offset(i), 0, last);
    const std::array<uint32_t, 3> pixel = C::Split(Format::Load(copy + from));
    for (size_t c = 0; c < 3; ++c) values[c] += pixel[c] * uint32_t(taps.weights[i]);
  }
  for (size_t c = 0; c < 3; ++c) {
    const uint32_t bias = uint32_t(C::kBiasTimes[c]) * uint32_t(taps.bias);
    values[c] = ChannelOfSum(values[c], taps.divisor, bias, C::kMax[c]);
  }
  return C::Join(values);
}

}  // namespace pincel

#endif  // FILTERS_CONVOLUTION_PIXEL_H_
