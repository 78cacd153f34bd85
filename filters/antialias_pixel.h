// What anti-aliasing makes of a value and the values around it.
#ifndef FILTERS_ANTIALIAS_PIXEL_H_
#define FILTERS_ANTIALIAS_PIXEL_H_

#include <algorithm>

#include "surface/pixel_format.h"

namespace pincel {

// Values of a pixel and of its neighbours, by row and column: at(dy, dx).
template <class At>
constexpr uint32_t SoftenedSum(At&& at) {
  return 16 * at(0, 0) + at(-1, -1) + at(-1, 0) + at(-1, 1) + at(0, -1) + at(0, 1) + at(1, -1) +
         at(1, 0) + at(1, 1);
}
constexpr uint32_t Softened(uint32_t sum, uint32_t most) { return std::min(sum >> 3, most); }

// A cross: weight 3 at distance 1, -1 at distance 2 and in the middle. A sum below zero counts as
// 0.
template <class At>
constexpr uint32_t CrossSum(At&& at) {
  const uint32_t near = 3 * (at(-1, 0) + at(0, -1) + at(0, 1) + at(1, 0));
  const uint32_t far = at(-2, 0) + at(0, -2) + at(0, 0) + at(0, 2) + at(2, 0);
  return near > far ? near - far : 0;
}
// The sum times 0.136986301369863, truncated; in integers, which give the same for every sum.
constexpr uint32_t kCrossFactor = 8978;
constexpr uint32_t Crossed(uint32_t sum, uint32_t most) {
  return std::min(sum * kCrossFactor >> 16, most);
}
constexpr bool CrossedIsTruncatedProduct() {
  for (uint32_t sum = 0; sum <= 12 * 255; ++sum) {
    if (Crossed(sum, 255) != std::min(uint32_t(sum * 0.136986301369863), 255u)) return false;
  }
  return true;
}
static_assert(CrossedIsTruncatedProduct());

// The edge code of a byte that is set: a bit for each neighbour above the threshold, and the two
// lowest bits. Of twelve neighbours these six fit into the byte. Intended.
template <class At>
constexpr uint8_t EdgeCode(At&& above_threshold) {
  return uint8_t(above_threshold(-2, 0) << 7 | above_threshold(-1, 0) << 6 |
                 above_threshold(-1, -1) << 5 | above_threshold(0, -2) << 4 |
                 above_threshold(0, -1) << 3 | above_threshold(1, -1) << 2 | 3);
}

}  // namespace pincel

#endif  // FILTERS_ANTIALIAS_PIXEL_H_
