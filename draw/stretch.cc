// Scaling: BltStrech, DrawStretch, StretchBitmap, DrawDouble. Everything that decides which pixels are
// read is computed here, in floating point where it is, and in the order written, so that every build
// reads the same ones.
#include <algorithm>
#include <cstdlib>

#include "draw/stretch_pixel.h"
#include "draw/stretch_rows.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

int32_t WidthOf(const CRectangulo& clipped) { return clipped.right - clipped.left; }
int32_t HeightOf(const CRectangulo& clipped) { return clipped.bottom - clipped.top; }

// Source positions of nearest sampling along one axis: single-precision steps, summed in double
// precision; they may fall a pixel short. Intended.
class NearestSteps {
 public:
  NearestSteps(int32_t src_size, int32_t dst_size)
      : step_(float(double(src_size) / dst_size)), last_(src_size - 1) {}
  int32_t Next() {
    const double position = std::min(position_, last_);  // a step rounded up may lead past it
    position_ += double{step_};
    return int32_t(position);
  }

 private:
  float step_;
  double last_, position_ = 0;
};

// Source positions between pixels, in 16.16 fixed point.
class FixedSteps {
 public:
  FixedSteps(int32_t src_size, int32_t dst_size) : step_((int64_t{src_size} << 16) / dst_size) {}
  int32_t at() const { return int32_t(position_ >> 16); }
  uint16_t fraction() const { return uint16_t(position_); }
  void Advance() { position_ += step_; }

 private:
  int64_t step_, position_ = 0;
};

// The memory of a surface, from its lowest row to the last pixel of its highest.
class Memory {
 public:
  explicit Memory(const TSurfDesc& surface) {
    const ptrdiff_t last_row = ptrdiff_t{surface.height - 1} * surface.pitch;
    begin_ = reinterpret_cast<uintptr_t>(surface.pixels + std::min<ptrdiff_t>(last_row, 0));
    end_ = begin_ + uintptr_t(std::abs(last_row)) +
           uintptr_t(uint64_t(surface.width) * surface.bpp / 8);
  }
  bool Holds(const uint8_t* p, size_t size) const {
    const uintptr_t at = reinterpret_cast<uintptr_t>(p);
    return at >= begin_ && at <= end_ && size <= end_ - at;
  }

 private:
  uintptr_t begin_, end_;
};

// Copies single pixels from where the steps lead. `dst` and `src` are the top-left pixels.
template <class Format>
void CopySteps(const Rows& rows, NearestSteps x_steps, NearestSteps y_steps, const uint8_t* src,
               ptrdiff_t src_pitch, int32_t src_width) {
  for (size_t left = 0; left < rows.width; left += kTileColumns) {
    TileColumns columns{std::min(kTileColumns, rows.width - left), src_width - 1, {}};
    for (size_t x = 0; x < columns.width; ++x) columns.at[x] = x_steps.Next();
    NearestSteps tile_y_steps = y_steps;
    for (size_t top = 0; top < rows.height; top += kTileRows) {
      CopiedRow copied[kTileRows];
      const size_t height = std::min(kTileRows, rows.height - top);
      for (size_t y = 0; y < height; ++y) {
        copied[y] = {rows.dst + ptrdiff_t(top + y) * rows.dst_pitch + left * Format::kBytes,
                     src + ptrdiff_t{tile_y_steps.Next()} * src_pitch};
      }
      CopyColumns(Format::kBytes, columns, copied, height);
    }
  }
}

// Mixes neighbours from where the steps lead. `last` is the column whose right neighbours are at the
// distances that `find_row(row, y)`, which also tells whether to draw it, fills in.
template <class Format, class FindRow>
void MixSteps(Mixing mixing, const Rows& rows, FixedSteps x_steps, FixedSteps y_steps, int32_t last,
              FindRow&& find_row) {
  for (size_t left = 0; left < rows.width; left += kTileColumns) {
    MixedColumns columns;
    columns.width = std::min(kTileColumns, rows.width - left);
    columns.last = last;
    for (size_t x = 0; x < columns.width; ++x, x_steps.Advance()) {
      columns.at[x] = x_steps.at();
      columns.right[x] = x_steps.fraction();
    }
    FixedSteps tile_y_steps = y_steps;
    for (size_t top = 0; top < rows.height; top += kTileRows) {
      MixedRow mixed[kTileRows];
      size_t height = 0;
      for (size_t y = top; y < std::min(rows.height, top + kTileRows);
           ++y, tile_y_steps.Advance()) {
        MixedRow& row = mixed[height];
        uint8_t* const dst = rows.dst + ptrdiff_t(y) * rows.dst_pitch;
        row.dst = dst + left * Format::kBytes;
        row.down = tile_y_steps.fraction();
        if (find_row(row, dst, tile_y_steps.at())) ++height;
      }
      MixColumns(mixing, Format::kBytes, columns, mixed, height);
    }
  }
}

template <class Format>
void StretchNearest(const TSurfDesc& dst, const CRectangulo& to, const TSurfDesc& src,
                    const CRectangulo& from) {
  CopySteps<Format>(RowsOf<Format>(dst, to), NearestSteps(WidthOf(from), WidthOf(to)),
                    NearestSteps(HeightOf(from), HeightOf(to)),
                    PixelAt<Format>(src, from.left, from.top), src.pitch, WidthOf(from));
}

// The right and lower neighbours of the rectangle's last column and row are those outside it, and
// behind a row's end what follows in memory. Where the surface's memory ends its last pixel or row
// stands for them. Intended.
template <class Format>
void StretchSmooth(const TSurfDesc& dst, const CRectangulo& to, const TSurfDesc& src,
                   const CRectangulo& from) {
  const Memory memory(src);
  const auto right_of_last = [&](int32_t y) {
    return memory.Holds(PixelAt<Format>(src, src.width, y), Format::kBytes) ? Format::kBytes : 0;
  };
  MixSteps<Format>(Mixing::kSmooth, RowsOf<Format>(dst, to), FixedSteps(WidthOf(from), WidthOf(to)),
                   FixedSteps(HeightOf(from), HeightOf(to)), src.width - 1 - from.left,
                   [&](MixedRow& row, const uint8_t*, int32_t y) {
                     const int32_t top = from.top + y, bottom = std::min(top + 1, src.height - 1);
                     row.top = PixelAt<Format>(src, from.left, top);
                     row.bottom = PixelAt<Format>(src, from.left, bottom);
                     row.top_right = right_of_last(top);
                     row.bottom_right = right_of_last(bottom);
                     return true;
                   });
}

// What clipping left of the source, not nothing, when the destination was clipped from `before` to
// `after`, both not empty.
CRectangulo InProportion(const CRectangulo& src, const CRectangulo& before,
                         const CRectangulo& after) {
  const auto moved = [](int32_t at, int32_t from, int32_t to, int64_t src_size, int64_t dst_size) {
    return int32_t(at + (int64_t{to} - from) * src_size / dst_size);
  };
  const int64_t src_width = WidthOf(src), dst_width = int64_t{before.right} - before.left;
  const int64_t src_height = HeightOf(src), dst_height = int64_t{before.bottom} - before.top;
  return {moved(src.left, before.left, after.left, src_width, dst_width),
          moved(src.top, before.top, after.top, src_height, dst_height),
          moved(src.right, before.right, after.right, src_width, dst_width),
          moved(src.bottom, before.bottom, after.bottom, src_height, dst_height)};
}

template <class Format>
void Enlarge(const TSurfDesc& dst, const CRectangulo& to, const TSurfDesc& src,
             const CRectangulo& from) {
  const int32_t src_width = WidthOf(from), src_height = HeightOf(from);
  const Memory dst_memory(dst), src_memory(src);
  const size_t dst_bytes = size_t(WidthOf(to)) * Format::kBytes;
  const size_t src_bytes = size_t(src_width) * Format::kBytes;
  MixSteps<Format>(Mixing::kInterpolate, RowsOf<Format>(dst, to),
                   FixedSteps(src_width, WidthOf(to)), FixedSteps(src_height, HeightOf(to)),
                   src_width - 1, [&](MixedRow& row, const uint8_t* dst_row, int32_t y) {
                     row.top = PixelAt<Format>(src, from.left, from.top + y);
                     row.bottom = y + 1 < src_height ? row.top + src.pitch : row.top;
                     row.top_right = row.bottom_right = 0;
                     return dst_memory.Holds(dst_row, dst_bytes) &&
                            src_memory.Holds(row.top, src_bytes) &&
                            src_memory.Holds(row.bottom, src_bytes);
                   });
}

// Sizes while reducing have 8 bits. Intended.
using ReducedSize = uint8_t;

template <class Format>
void Reduce(const TSurfDesc& dst, const CRectangulo& to, const TSurfDesc& src,
            const CRectangulo& from) {
  const ReducedSize dst_width = ReducedSize(WidthOf(to)), dst_height = ReducedSize(HeightOf(to));
  const ReducedSize src_width = ReducedSize(WidthOf(from)),
                    src_height = ReducedSize(HeightOf(from));
  if (dst_width == 0 || dst_height == 0) return;
  const uint32_t x_step = (uint32_t{src_width} << 16) / dst_width;
  const uint32_t y_step = (uint32_t{src_height} << 16) / dst_height;
  Blocks blocks;
  blocks.count = dst_width;
  blocks.least = x_step >> 16;
  for (uint32_t x = 0; x <= dst_width; ++x) blocks.first[x] = uint8_t(x * x_step >> 16);

  const Memory dst_memory(dst), src_memory(src);
  const size_t dst_bytes = size_t{dst_width} * Format::kBytes;
  const size_t src_bytes = size_t{src_width} * Format::kBytes;
  // The way from a row's end to the next row has 16 bits. Intended.
  const ptrdiff_t to_next_row =
      ptrdiff_t(dst_bytes) + int16_t(uint32_t(dst.pitch) - uint32_t(dst_bytes));
  AveragedRow rows[255];
  size_t height = 0;
  uint8_t* dst_row = PixelAt<Format>(dst, to.left, to.top);
  const uint8_t* src_row = PixelAt<Format>(src, from.left, from.top);
  for (uint32_t y = 0; y < dst_height; ++y, dst_row += to_next_row) {
    const uint32_t block_height = ((y + 1) * y_step >> 16) - (y * y_step >> 16);
    const uint8_t* const next = src_row + ptrdiff_t(block_height) * src.pitch;
    if (block_height != 0 && dst_memory.Holds(dst_row, dst_bytes) &&
        src_memory.Holds(src_row, src_bytes) && src_memory.Holds(next - src.pitch, src_bytes)) {
      rows[height++] = {dst_row, src_row, block_height};
    }
    src_row = next;
  }
  AverageBlocks(Format::kBytes, blocks, src.pitch, rows, height);
}

template <class Format>
void EnlargeOrReduce(const TSurfDesc& dst, const CRectangulo& to, const TSurfDesc& src,
                     const CRectangulo& from) {
  if (WidthOf(from) < WidthOf(to) && HeightOf(from) < HeightOf(to)) {
    Enlarge<Format>(dst, to, src, from);
  } else if (WidthOf(from) > WidthOf(to) && HeightOf(from) > HeightOf(to)) {
    Reduce<Format>(dst, to, src, from);
  }
}

}  // namespace
}  // namespace pincel

bool BltStrech(TSurfDesc& dst, CRectangulo dRect, TSurfDesc& src, CRectangulo sRect, bool smooth) {
  using namespace pincel;
  return Dispatch(AllDepths{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    // Each on its own: a clipped destination shows the whole source, squeezed. Intended.
    if (!ClipRect(dst, dRect) || !ClipRect(src, sRect)) return false;
    if constexpr (Format::kBytes >= 3) {
      if (smooth) {
        StretchSmooth<Format>(dst, dRect, src, sRect);
        return true;
      }
    }
    StretchNearest<Format>(dst, dRect, src, sRect);
    return true;
  });
}

bool DrawStretch(TSurfDesc& dst, CRectangulo const& dRect, TSurfDesc& src,
                 CRectangulo const& sRect) {
  return BltStrech(dst, dRect, src, sRect, false);
}

bool DrawStretch(TSurfDesc& dst, CRectangulo const&, TSurfDesc&, CRectangulo const&,
                 unsigned char*) {
  return dst.bpp == 8 || dst.bpp == 24 || dst.bpp == 32;  // draws nothing. Intended.
}

bool StretchBitmap(TSurfDesc& dst, CRectangulo dRect, TSurfDesc& src, CRectangulo sRect,
                   int bitsPerPixel, bool enable, bool /*extra*/) {
  using namespace pincel;
  // True for everything that cannot be drawn but a pair of different depths. Intended.
  const CRectangulo before = dRect;
  if (!ClipRect(dst, dRect)) return true;
  if (!ClipRect(src, sRect)) return true;
  sRect = InProportion(sRect, before, dRect);
  if (dst.bpp != src.bpp) return false;
  if (!enable) return true;
  // The depth is that of the argument, not of the surfaces. Intended.
  if (bitsPerPixel == 24) EnlargeOrReduce<Rgb888>(dst, dRect, src, sRect);
  if (bitsPerPixel == 32) EnlargeOrReduce<Argb8888>(dst, dRect, src, sRect);
  return true;
}

bool DrawDouble(TSurfDesc& dst, TSurfDesc& src, CPunto at) {
  using namespace pincel;
  return Dispatch(FormatList<Argb8888, Rgb888>{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    const auto end = [](int32_t from, int32_t size) {
      return int32_t(std::clamp(from + 2 * int64_t{size}, int64_t{INT32_MIN}, int64_t{INT32_MAX}));
    };
    CRectangulo area{at.x, at.y, end(at.x, src.width), end(at.y, src.height)};
    if (!ClipRect(dst, area)) return false;
    // Clipping shortens the area, but it still starts at `at`, outside the surface as the case may
    // be. Intended.
    const int64_t right = int64_t{at.x} + WidthOf(area) / 2 * 2;
    const int64_t bottom = int64_t{at.y} + HeightOf(area) / 2 * 2;
    if (right <= area.left || bottom <= area.top) return false;
    area.right = int32_t(right);
    area.bottom = int32_t(bottom);
    const int64_t left_out = int64_t{area.left} - at.x, top_out = int64_t{area.top} - at.y;
    const CPunto first{int32_t(left_out / 2), int32_t(top_out / 2)};
    DoublePixels(Format::kBytes, RowsOf<Format, Format>(dst, area, src, first), left_out % 2 != 0,
                 top_out % 2 != 0);
    return false;  // always. Intended.
  });
}
