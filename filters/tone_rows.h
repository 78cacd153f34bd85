// Scaling and repeating of pixels, for the instruction set of the machine. Factors count in 256ths; 256 keeps.
#ifndef FILTERS_TONE_ROWS_H_
#define FILTERS_TONE_ROWS_H_

#include <algorithm>

#include "surface/rows.h"

namespace pincel {

// Every byte of the rows.
void ScaleBytes(const Rows& bytes, uint32_t factor);
// 32-bit pixels: a factor for the three colour bytes and one for the fourth.
void ScaleWords(const Rows& pixels, uint32_t colour, uint32_t fourth);
// The colour fields of 16-bit pixels; alpha bits are kept. `format` is that of the pixels.
void ScaleFields(int format, const Rows& pixels, uint32_t factor);

// Fills `size` bytes with copies of the first `piece` of them. For what the caches hold: there this is
// faster than memcpy.
void RepeatBytes(uint8_t* bytes, size_t piece, size_t size);

// Operations that take a surface's memory as one run know that it has height x pitch bytes.
inline size_t BufferBytes(const TSurfDesc& surface) {
  return size_t(std::max(surface.height, 0)) * size_t(std::max(surface.pitch, 0));
}
constexpr size_t InUnitsOfFour(size_t bytes) { return bytes & ~size_t{3}; }

// All bytes of the buffer in units of four, padding included: up to three at its end are left.
// Intended.
inline void ScaleBuffer(const TSurfDesc& surface, uint32_t factor) {
  ScaleBytes({surface.pixels, 0, InUnitsOfFour(BufferBytes(surface)), 1}, factor);
}

}  // namespace pincel

#endif  // FILTERS_TONE_ROWS_H_
