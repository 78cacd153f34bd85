// What a two-sided mask byte asks for: below 128 it darkens, from 128 on it lightens.
#ifndef MIX_BI_MASK_H_
#define MIX_BI_MASK_H_

#include "surface/palette.h"
#include "surface/rows.h"

namespace pincel {

constexpr uint32_t kBiMaskFull = 254;  // strength from which on a pixel becomes the target

constexpr bool Lightens(uint8_t mask) { return mask >= 128; }

// The palette entry that a mask byte moves a pixel towards.
inline const TRGBA& BiMaskTarget(uint8_t mask) { return lu_gPaleta[Lightens(mask) ? 255 : 0]; }

// The strength of every mask byte at a level; 0 keeps the pixel.
class BiMaskStrengths {
 public:
  explicit BiMaskStrengths(uint32_t level) {
    for (uint32_t m = 0; m < 256; ++m) {
      const uint32_t distance = Lightens(uint8_t(m)) ? m - 128 : 127 - m;
      strength_[m] = distance * level >> 7;
    }
  }
  uint32_t operator[](uint8_t mask) const { return strength_[mask]; }

 private:
  uint32_t strength_[256];
};

// The same rows from the last to the first.
inline SourceRows FromLastRow(SourceRows rows) {
  const ptrdiff_t last = ptrdiff_t(rows.height) - 1;
  rows.dst += last * rows.dst_pitch;
  rows.src += last * rows.src_pitch;
  rows.dst_pitch = -rows.dst_pitch;
  rows.src_pitch = -rows.src_pitch;
  return rows;
}

}  // namespace pincel

#endif  // MIX_BI_MASK_H_
