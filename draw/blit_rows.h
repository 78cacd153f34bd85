// Row kernels of the blits and fills, for the instruction set of the machine.
#ifndef DRAW_BLIT_ROWS_H_
#define DRAW_BLIT_ROWS_H_

#include "surface/rows.h"

namespace pincel {

// Copies the pixels whose key bits differ from `transparent` (see blit_pixel.h); 1 to 4 bytes each.
void CopyKeyed(int pixel_bytes, const SourceRows& rows, uint32_t transparent);

// Copies `row_bytes` bytes of each row, from the first row to the last. Rows of one surface may
// overlap; what a row's copy overwrites of a later row is copied as it then is.
void CopyBytes(size_t row_bytes, const SourceRows& rows);

// Stores the lowest `pixel_bytes` bytes of `pixel` (1 to 4) into every pixel.
void FillRows(int pixel_bytes, const Rows& rows, uint32_t pixel);

}  // namespace pincel

#endif  // DRAW_BLIT_ROWS_H_
