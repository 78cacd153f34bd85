// Rectangles of pixels in memory, as the row kernels take them.
#ifndef SURFACE_ROWS_H_
#define SURFACE_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "surface/pixel_format.h"

namespace pincel {

// Address of a pixel. The only place where row and column become bytes.
template <class Format>
uint8_t* PixelAt(const TSurfDesc& surface, int32_t x, int32_t y) {
  return surface.pixels + ptrdiff_t{y} * surface.pitch + ptrdiff_t{x} * Format::kBytes;
}

// The rows of one rectangle; `width` in pixels.
struct Rows {
  uint8_t* dst;
  ptrdiff_t dst_pitch;
  size_t width, height;
};

// The rows of a rectangle and the source rows that land on it.
struct SourceRows : Rows {
  const uint8_t* src;
  ptrdiff_t src_pitch;
};

// ... and the rows of a third surface that say how much of the source counts.
struct MaskedRows : SourceRows {
  const uint8_t* mask;
  ptrdiff_t mask_pitch;
};

// `rect` is clipped and not empty.
template <class Dst>
Rows RowsOf(const TSurfDesc& dst, const CRectangulo& rect) {
  return {PixelAt<Dst>(dst, rect.left, rect.top), dst.pitch, size_t(rect.right - rect.left),
          size_t(rect.bottom - rect.top)};
}
template <class Dst, class Src>
SourceRows RowsOf(const TSurfDesc& dst, const CRectangulo& rect, const TSurfDesc& src, CPunto at) {
  return {RowsOf<Dst>(dst, rect), PixelAt<Src>(src, at.x, at.y), src.pitch};
}
template <class Dst, class Src, class Mask>
MaskedRows RowsOf(const TSurfDesc& dst, const CRectangulo& rect, const TSurfDesc& src, CPunto at,
                  const TSurfDesc& mask, CPunto mask_at) {
  return {RowsOf<Dst, Src>(dst, rect, src, at), PixelAt<Mask>(mask, mask_at.x, mask_at.y),
          mask.pitch};
}

// Calls `row(dst)`, `row(dst, src)` or `row(dst, src, mask)` for each row from the top. Always inlined, so that rows of code
// for a newer instruction set are inlined with it.
template <class Row>
[[gnu::always_inline]] inline void ForEachRow(const Rows& rows, Row&& row) {
  for (size_t y = 0; y < rows.height; ++y) row(rows.dst + ptrdiff_t(y) * rows.dst_pitch);
}
template <class Row>
[[gnu::always_inline]] inline void ForEachRow(const SourceRows& rows, Row&& row) {
  for (size_t y = 0; y < rows.height; ++y) {
    row(rows.dst + ptrdiff_t(y) * rows.dst_pitch, rows.src + ptrdiff_t(y) * rows.src_pitch);
  }
}
template <class Row>
[[gnu::always_inline]] inline void ForEachRow(const MaskedRows& rows, Row&& row) {
  for (size_t y = 0; y < rows.height; ++y) {
    row(rows.dst + ptrdiff_t(y) * rows.dst_pitch, rows.src + ptrdiff_t(y) * rows.src_pitch,
        rows.mask + ptrdiff_t(y) * rows.mask_pitch);
  }
}

// One long row instead of many when no surface has anything between its rows. Only for kernels that
// treat every pixel of a row alike.
inline Rows Joined(Rows rows, size_t dst_bytes) {
  if (rows.dst_pitch == ptrdiff_t(rows.width * dst_bytes)) {
    rows.width *= rows.height;
    rows.height = 1;
  }
  return rows;
}
inline SourceRows Joined(SourceRows rows, size_t dst_bytes, size_t src_bytes) {
  if (rows.dst_pitch == ptrdiff_t(rows.width * dst_bytes) &&
      rows.src_pitch == ptrdiff_t(rows.width * src_bytes)) {
    rows.width *= rows.height;
    rows.height = 1;
  }
  return rows;
}

inline MaskedRows Joined(MaskedRows rows, size_t dst_bytes, size_t src_bytes, size_t mask_bytes) {
  if (rows.mask_pitch == ptrdiff_t(rows.width * mask_bytes)) {
    static_cast<SourceRows&>(rows) = Joined(SourceRows(rows), dst_bytes, src_bytes);
  }
  return rows;
}

}  // namespace pincel

#endif  // SURFACE_ROWS_H_
