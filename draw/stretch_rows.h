// Row kernels of scaling, for the instruction set of the machine. Which pixels are read is worked out
// by the caller, in tiles: the columns once for all rows, and the addresses of each row.
#ifndef DRAW_STRETCH_ROWS_H_
#define DRAW_STRETCH_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "surface/rows.h"

namespace pincel {

constexpr size_t kTileColumns = 1024, kTileRows = 256;

// The columns that a row of pixels is taken from: not descending, from 0 to `last`.
struct TileColumns {
  size_t width;
  int32_t last;
  int32_t at[kTileColumns];
};

// Single pixels, copied. Of 4 bytes per pixel the fourth one is left as it is.
struct CopiedRow {
  uint8_t* dst;
  const uint8_t* src;
};
void CopyColumns(int pixel_bytes, const TileColumns& columns, const CopiedRow* rows, size_t height);

// Every pixel as a square of four, except that the left half of the first column and the upper half
// of the first row can be missing. Otherwise widths and heights, of the destination, are even.
// `pixel_bytes` is 3 or 4.
void DoublePixels(int pixel_bytes, const SourceRows& rows, bool half_column, bool half_row);

// Four neighbours, mixed into three bytes.
struct MixedColumns : TileColumns {
  uint16_t right[kTileColumns];  // how far to the next column, in 1/65536
};
struct MixedRow {
  uint8_t* dst;
  const uint8_t *top, *bottom;
  uint32_t down;  // how far from `top` to `bottom`, in 1/65536
  // Bytes to the right neighbours of the pixels of the last column.
  int32_t top_right, bottom_right;
};
enum class Mixing {
  kSmooth,       // by weights
  kInterpolate,  // along the rows, then between them
};
void MixColumns(Mixing mixing, int pixel_bytes, const MixedColumns& columns, const MixedRow* rows,
                size_t height);

// Averages of blocks of pixels.
struct Blocks {
  size_t count;        // blocks in a row, at most 255
  uint32_t least;      // the smallest of the widths; the others are one more
  uint8_t first[256];  // the source column that each block starts with, and where the last one ends
};
struct AveragedRow {
  uint8_t* dst;
  const uint8_t* src;
  uint32_t height;  // source rows, 1 to 255; in all rows together there are at most two heights,
                    // one more than the other
};
// Leaves out pixels without columns.
void AverageBlocks(int pixel_bytes, const Blocks& blocks, ptrdiff_t src_pitch,
                   const AveragedRow* rows, size_t height);

}  // namespace pincel

#endif  // DRAW_STRETCH_ROWS_H_
