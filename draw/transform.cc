// Mirroring, quarter turns and brightness shifts.
#include <algorithm>
#include <cmath>
#include <utility>

#include "draw/transform_rows.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

CRectangulo WholeOf(const TSurfDesc& surface) { return {0, 0, surface.width, surface.height}; }

// `mode` of CreateRotated.
constexpr int kQuarterTurn = 1, kClockwise = 2, kReversed = 2, kMirrored = 4;

// Every row of the destination is a column of the source; rows and columns beyond the other surface
// are left out.
template <class Format>
void QuarterTurn(const TSurfDesc& dst, const TSurfDesc& src, int mode) {
  const int32_t width = std::min(dst.width, src.height), height = std::min(dst.height, src.width);
  if (width <= 0 || height <= 0) return;
  SourceRows rows = RowsOf<Format, Format>(dst, {0, 0, width, height}, src, {0, 0});
  if (mode & kMirrored) {
    rows.dst = PixelAt<Format>(dst, 0, dst.height - 1);
    rows.dst_pitch = -rows.dst_pitch;
  }
  if (mode & kClockwise) {  // columns from the left, each from its bottom
    rows.src = PixelAt<Format>(src, 0, src.height - 1);
    rows.src_pitch = -rows.src_pitch;
  } else {  // columns from the right, each from its top: the same rows, written from the other end
    rows.src = PixelAt<Format>(src, src.width - height, 0);
    rows.dst += ptrdiff_t{height - 1} * rows.dst_pitch;
    rows.dst_pitch = -rows.dst_pitch;
  }
  TransposeRows(Format::kBytes, rows);
}

// Copies backwards from the source's first pixel into the destination, padding included, up to its
// last pixel. Intended.
template <class Format>
void CopyReversed(const TSurfDesc& dst, const TSurfDesc& src) {
  constexpr int64_t kUnit = Format::kBytes;
  const int64_t count = (int64_t{dst.height - 1} * dst.pitch + dst.width * kUnit - kUnit) / kUnit;
  for (int64_t k = 0; k < count; ++k) {
    const ptrdiff_t at = ptrdiff_t(k * kUnit);
    if constexpr (kUnit == 2) {
      // This pixel and the next one in a word whose four bytes are reversed; the next word covers
      // the second of them. So pixels lose the order of their bytes, and the last one is written
      // too. Intended.
      const uint32_t word = LoadWord<uint32_t>(src.pixels - at - kUnit);
      StoreWord(dst.pixels + at,
                word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24);
    } else {
      Format::Store(dst.pixels + at, Format::Load(src.pixels - at));
    }
  }
}

// trunc(amount x scale - middle), as far as it is a number that fits.
int32_t ShiftOf(float amount, double scale, double middle) {
  const double number = std::isnan(amount) ? 0.0 : double{amount};
  return int32_t(std::clamp(number * scale - middle, double{INT32_MIN}, double{INT32_MAX}));
}

}  // namespace
}  // namespace pincel

bool FlipX(TSurfDesc& surf) {
  using namespace pincel;
  return Dispatch(AllDepths{}, surf, false, [&](auto format) {
    using Format = decltype(format);
    if (surf.width > 1 && surf.height > 0) {
      MirrorRows(Format::kBytes, RowsOf<Format>(surf, WholeOf(surf)));
    }
    return true;
  });
}

bool CreateRotated(TSurfDesc& dst, TSurfDesc& src, int mode) {
  using namespace pincel;
  return Dispatch(AllDepths{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    if (mode & kQuarterTurn) {
      QuarterTurn<Format>(dst, src, mode);
      return true;
    }
    bool result = true;
    if (mode & kReversed) {
      CopyReversed<Format>(dst, src);
    } else {
      result = DrawBitmap(dst, src);
    }
    if (mode & kMirrored) FlipX(dst);
    return result;
  });
}

bool TranslateRect(TSurfDesc& dst, CRectangulo const& rect, float amount,
                   unsigned char const* table) {
  using namespace pincel;
  return Dispatch(AllFormats{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    CRectangulo area = rect;
    if (!ClipRect(dst, area)) return true;
    Rows rows = RowsOf<Format>(dst, area);
    if constexpr (Format::kBytes == 1) {
      if (table != nullptr) MapBytes(rows, table);
    } else if constexpr (Format::kBytes == 2) {
      ShiftFields(format, rows, std::clamp(ShiftOf(amount, 62, 31), -31, 31));
    } else {
      rows.width *= Format::kBytes;
      ShiftBytes(rows, ByteShift::OneWeakerDown(ShiftOf(amount, 510, 255)));
    }
    return true;
  });
}
