// Row kernels of mirroring, turning and brightness shifts, for the instruction set of the machine.
#ifndef DRAW_TRANSFORM_ROWS_H_
#define DRAW_TRANSFORM_ROWS_H_

#include "draw/transform_pixel.h"
#include "surface/rows.h"

namespace pincel {

// Reverses the order of the pixels of each row, in place.
void MirrorRows(int pixel_bytes, const Rows& rows);

// Copies `count` pixels of 1, 3 or 4 bytes, from `src` backwards. The areas must not overlap.
void CopyReversed(int pixel_bytes, uint8_t* dst, const uint8_t* src, size_t count);

// Destination row y becomes source column y, read downwards: dst(x, y) = src(y, x). Either pitch may
// be negative, which turns one way or the other.
void TransposeRows(int pixel_bytes, const SourceRows& rows);

// Shifts every byte.
void ShiftBytes(const Rows& bytes, ByteShift shift);

// Shifts the fields of 16-bit pixels by -31 to 31.
void ShiftFields(Rgb565, const Rows& rows, int32_t shift);
void ShiftFields(Rgb555, const Rows& rows, int32_t shift);
void ShiftFields(Argb4444, const Rows& rows, int32_t shift);

// Replaces every byte by its entry in a table of 256.
void MapBytes(const Rows& bytes, const uint8_t* table);

}  // namespace pincel

#endif  // DRAW_TRANSFORM_ROWS_H_
