// What makes a shadow out of a mask.
#ifndef FILTERS_SHADOW_PIXEL_H_
#define FILTERS_SHADOW_PIXEL_H_

#include <algorithm>

#include "surface/pixel_format.h"

namespace pincel {

struct ShadowRule {
  uint8_t decay, limit;

  // Mask values from here on are kept.
  static constexpr uint32_t kSolid = 240;

  // The shadow at a pixel, from its mask value and the shadow around it. The limit holds for what
  // spreads, not for the mask. Intended.
  constexpr uint8_t Value(uint32_t mask, uint32_t above, uint32_t above_left, uint32_t left) const {
    const uint32_t mean = (above + 2 * above_left + left) >> 2;
    if (mask >= kSolid || mean <= decay || mean - decay <= mask) return uint8_t(mask);
    return uint8_t(std::min(mean - decay, uint32_t{limit}));
  }
};

// What a source pixel says: the first byte of one and of four bytes, else the highest channel.
template <class Format>
constexpr uint8_t MaskValue(uint32_t pixel) {
  if constexpr (Format::kBytes == 1 || Format::kBytes == 4) {
    return uint8_t(pixel);
  } else {
    const Bgr colour = Format::Unpack(pixel);
    return std::max({colour.blue, colour.green, colour.red});
  }
}

}  // namespace pincel

#endif  // FILTERS_SHADOW_PIXEL_H_
