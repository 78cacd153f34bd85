// Masks and shadows, for the instruction set of the machine.
#ifndef FILTERS_SHADOW_ROWS_H_
#define FILTERS_SHADOW_ROWS_H_

#include "filters/shadow_pixel.h"
#include "surface/rows.h"

namespace pincel {

// Writes a byte for each source pixel: 0 where the bits that count equal `key`, else `value`.
void CoverRows(int pixel_bytes, const SourceRows& rows, uint32_t key, uint8_t value);

// The mask value of each source pixel (see MaskValue), a byte each.
void ReadMaskValues(int format, uint8_t* values, const uint8_t* src, size_t count);

// One run of a shadow of bytes, from mask values. `pitch` is at least 1; a row and a byte before
// `shadow` there is a shadow already.
void GrowBytes(uint8_t* shadow, size_t pitch, const uint8_t* mask, size_t count, ShadowRule rule);
// The same for a shadow of 32-bit pixels. Their first three bytes are written.
void GrowWords(uint8_t* shadow, size_t pitch, const uint8_t* mask, size_t count, ShadowRule rule);

}  // namespace pincel

#endif  // FILTERS_SHADOW_ROWS_H_
