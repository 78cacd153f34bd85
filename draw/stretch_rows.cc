#include "draw/stretch_rows.h"

#include <type_traits>

#include "draw/stretch_pixel.h"

namespace pincel {
namespace {

template <class Format, bool keep_fourth_byte>
void CopyColumnsOf(const TileColumns& columns, const CopiedRow* rows, size_t height) {
  using Copied = std::conditional_t<keep_fourth_byte, Rgb888, Format>;
  for (const CopiedRow* row = rows; row != rows + height; ++row) {
    for (size_t x = 0; x < columns.width; ++x) {
      Copied::Store(row->dst + x * Format::kBytes,
                    Copied::Load(row->src + ptrdiff_t{columns.at[x]} * Format::kBytes));
    }
  }
}

template <class Format, Mixing mixing>
void MixColumnsOf(const MixedColumns& columns, const MixedRow* rows, size_t height) {
  for (const MixedRow* row = rows; row != rows + height; ++row) {
    for (size_t x = 0; x < columns.width; ++x) {
      const bool last = columns.at[x] == columns.last;
      const uint8_t* top = row->top + ptrdiff_t{columns.at[x]} * Format::kBytes;
      const uint8_t* bottom = row->bottom + ptrdiff_t{columns.at[x]} * Format::kBytes;
      const uint8_t* top_right = top + (last ? row->top_right : Format::kBytes);
      const uint8_t* bottom_right = bottom + (last ? row->bottom_right : Format::kBytes);
      uint8_t* dst = row->dst + x * Format::kBytes;
      if constexpr (mixing == Mixing::kSmooth) {
        MixNeighbours(dst, top, top_right, bottom, bottom_right, columns.right[x], row->down);
      } else {
        InterpolateNeighbours(dst, top, top_right, bottom, bottom_right, columns.right[x],
                              row->down);
      }
    }
  }
}

template <class Format>
void AverageBlocksOf(const Blocks& blocks, const AveragedRow& row) {
  const uint8_t* src = row.src;
  for (size_t x = 0; x < blocks.count; ++x) {
    const uint32_t width = blocks.widths[x];
    if (width == 0) continue;
    uint16_t sums[3] = {};
    for (uint32_t y = 0; y < row.height; ++y) {
      const uint8_t* pixel = src + ptrdiff_t(y) * row.src_pitch;
      for (uint32_t i = 0; i < width; ++i, pixel += Format::kBytes) {
        for (int c = 0; c < 3; ++c) sums[c] = uint16_t(sums[c] + pixel[c]);
      }
    }
    const WrappingAverage average(width * row.height);
    for (int c = 0; c < 3; ++c) row.dst[x * Format::kBytes + size_t(c)] = average(sums[c]);
    src += ptrdiff_t(width) * Format::kBytes;
  }
}

}  // namespace

void CopyColumns(int pixel_bytes, bool keep_fourth_byte, const TileColumns& columns,
                 const CopiedRow* rows, size_t height) {
  switch (pixel_bytes) {
    case 1:
      return CopyColumnsOf<Indexed8, false>(columns, rows, height);
    case 2:
      return CopyColumnsOf<Any16, false>(columns, rows, height);
    case 3:
      return CopyColumnsOf<Rgb888, false>(columns, rows, height);
    default:
      return keep_fourth_byte ? CopyColumnsOf<Argb8888, true>(columns, rows, height)
                              : CopyColumnsOf<Argb8888, false>(columns, rows, height);
  }
}

void MixColumns(Mixing mixing, int pixel_bytes, const MixedColumns& columns, const MixedRow* rows,
                size_t height) {
  if (mixing == Mixing::kSmooth) {
    return pixel_bytes == 3 ? MixColumnsOf<Rgb888, Mixing::kSmooth>(columns, rows, height)
                            : MixColumnsOf<Argb8888, Mixing::kSmooth>(columns, rows, height);
  }
  return pixel_bytes == 3 ? MixColumnsOf<Rgb888, Mixing::kInterpolate>(columns, rows, height)
                          : MixColumnsOf<Argb8888, Mixing::kInterpolate>(columns, rows, height);
}

void AverageBlocks(int pixel_bytes, const Blocks& blocks, const AveragedRow& row) {
  return pixel_bytes == 3 ? AverageBlocksOf<Rgb888>(blocks, row)
                          : AverageBlocksOf<Argb8888>(blocks, row);
}

}  // namespace pincel
