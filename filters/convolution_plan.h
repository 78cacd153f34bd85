// Convolution: what a list of taps allows, found once per call.
#ifndef FILTERS_CONVOLUTION_PLAN_H_
#define FILTERS_CONVOLUTION_PLAN_H_

#include <algorithm>
#include <bit>

#include "filters/convolution_pixel.h"

namespace pincel {

constexpr size_t kGroup = 64;    // taps that are added at once
constexpr size_t kUnit = 16;     // pixels: pieces of fewer are computed elsewhere and copied
constexpr size_t kStaged = 64;   // pixels of a piece some of whose taps leave the buffer
constexpr size_t kSummed = 256;  // pixels of a piece whose 32-bit sums are kept between groups
constexpr size_t kPiece = 4096;  // pixels of any piece: what is copied stays in the cache

// Taps whose weight is not 0. One more has room behind the last.
struct Group {
  void Add(ptrdiff_t offset, int32_t weight) {
    offsets[count] = offset;
    weights[count] = weight;
    ++count;
  }
  size_t count = 0;
  ptrdiff_t offsets[kGroup + 1];
  int32_t weights[kGroup + 1];
};

// Taps of equal weight in rows, all with the same distances from their first one.
struct Grid {
  static Grid Of(const Group& taps) {
    Grid grid;
    size_t columns = 0;
    for (; columns < taps.count; ++columns) {
      const ptrdiff_t distance = taps.offsets[columns] - taps.offsets[0];
      if (distance < 0 || distance > kFarthest) break;
      grid.distances[columns] = uint16_t(distance);
    }
    if (columns < 2 || taps.count < 2 * columns || taps.count % columns != 0) return {};
    for (size_t i = 0; i < taps.count; ++i) {
      const size_t first = i - i % columns;
      if (taps.weights[i] != taps.weights[0]) return {};
      if (taps.offsets[i] - taps.offsets[first] != grid.distances[i - first]) return {};
    }
    grid.columns = columns;
    return grid;
  }
  static constexpr ptrdiff_t kFarthest = 32;  // words of the longest vector
  size_t columns = 0;                         // 0: the taps are no grid
  uint16_t distances[kGroup] = {};
};

// Division of magnitudes up to 2^bits, bits one less than a word has, by a constant: the high word
// of a product, shifted. With d <= 2^(shift + 1), multiplier = 2^(bits + 1 + shift) / d rounded up
// is too large by less than 1. So a product is too large by less than 2^bits, and its quotient by
// less than 2^bits / 2^(bits + 1 + shift) <= 1 / d: never enough to reach the next integer.
template <int bits>
struct Reciprocal {
  static constexpr Reciprocal Of(uint32_t divisor) {  // at least 2
    if (divisor > 1u << bits) return {0, 0};
    const int shift = int(std::bit_width(divisor - 1)) - 1;
    const uint64_t power = uint64_t{1} << (bits + 1 + shift);
    return {uint32_t((power + divisor - 1) / divisor), shift};
  }
  constexpr uint32_t operator()(uint32_t magnitude) const {
    return uint32_t(uint64_t{magnitude} * multiplier >> (bits + 1) >> shift);
  }
  uint32_t multiplier;
  int shift;
};
static_assert(Reciprocal<15>::Of(9)(32760) == 3640 && Reciprocal<15>::Of(9)(32759) == 3639);
static_assert(Reciprocal<15>::Of(32767)(32767) == 1 && Reciprocal<15>::Of(32767)(32766) == 0);
static_assert(Reciprocal<15>::Of(32768)(32767) == 0);
static_assert(Reciprocal<31>::Of(7)(0x80000000) == 0x80000000 / 7);
static_assert(Reciprocal<31>::Of(0x80000000)(0x80000000) == 1);
static_assert(Reciprocal<31>::Of(0x80000000)(0x7FFFFFFF) == 0);

// What a list of taps allows, found once per call.
struct Plan {
  template <class Format>
  static Plan Of(const TapList& taps) {
    constexpr auto& kHighest = Channels<Format>::kHighest;
    constexpr int32_t kField = std::max({kHighest[0], kHighest[1], kHighest[2]});
    // Sums of bytes are added in pairs with 8-bit weights.
    constexpr int64_t kMost = Format::kBytes == 2 ? 32767 / kField : 127;
    Plan plan;
    int64_t positive = 0, negative = 0;
    for (int i = 0; i < taps.count; ++i) {
      const int32_t weight = taps.weights[i];
      if (weight == 0) continue;
      (weight > 0 ? positive : negative) += weight;
      plan.lowest = std::min(plan.lowest, taps.offset(i));
      plan.highest = std::max(plan.highest, taps.offset(i));
      ++plan.taps;
    }
    plan.is_narrow = plan.taps <= kGroup && positive <= kMost && negative >= -kMost &&
                     taps.bias >= -kMostBias && taps.bias <= kMostBias;
    plan.is_signed = taps.divisor < 0 ? positive > 0 : negative < 0;
    return plan;
  }
  static constexpr int kMostBias = 16383;  // twice that fits
  int32_t lowest = 0, highest = 0;         // offsets; that of the pixel itself counts
  size_t taps = 0;
  bool is_narrow;  // no sum leaves 16 bits
  bool is_signed;  // a quotient may be negative
};

}  // namespace pincel

#endif  // FILTERS_CONVOLUTION_PLAN_H_
