// Row kernels of the blits and fills, for the instruction set of the machine.
#ifndef DRAW_BLIT_ROWS_H_
#define DRAW_BLIT_ROWS_H_

#include "surface/rows.h"

namespace pincel {

// Copies the pixels whose key bits differ from `transparent` (see blit_pixel.h); 1 to 4 bytes each.
void CopyKeyed(int pixel_bytes, const SourceRows& rows, uint32_t transparent);

// Stores the lowest `pixel_bytes` bytes of `pixel` (1 to 4) into every pixel.
void FillRows(int pixel_bytes, const Rows& rows, uint32_t pixel);

}  // namespace pincel

#endif  // DRAW_BLIT_ROWS_H_
