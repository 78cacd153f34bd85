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

// Whether runs of bytes at the two addresses have a byte in common.
bool Overlap(const uint8_t* a, const uint8_t* b, size_t size) {
  const uintptr_t first = reinterpret_cast<uintptr_t>(a), second = reinterpret_cast<uintptr_t>(b);
  return first < second + size && second < first + size;
}

// Copies `count` units backwards from `src`, one after the other where the areas overlap.
template <class Format>
void CopyUnitsReversed(uint8_t* dst, const uint8_t* src, size_t count) {
  constexpr ptrdiff_t kUnit = Format::kBytes;
  if (!Overlap(dst, src - ptrdiff_t(count - 1) * kUnit, count * size_t(kUnit))) {
    return CopyReversed(Format::kBytes, dst, src, count);
  }
  for (; count != 0; --count, dst += kUnit, src -= kUnit) Format::Store(dst, Format::Load(src));
}

// Copies backwards from the source's first pixel into the destination, padding included, up to its
// last pixel. Intended.
template <class Format>
void CopyReversed(const TSurfDesc& dst, const TSurfDesc& src) {
  constexpr int64_t kUnit = Format::kBytes;
  const int64_t count = (int64_t{dst.height - 1} * dst.pitch + dst.width * kUnit - kUnit) / kUnit;
  if (count <= 0) return;
  if constexpr (kUnit == 2) {
    // Each step stores a pixel and the next one as a word whose four bytes are reversed, and the
    // next step covers the second of them. So all bytes come in reverse order, and the last pixel is
    // written too. Intended.
    CopyUnitsReversed<Indexed8>(dst.pixels, src.pixels + 1, size_t(count + 1) * 2);
  } else {
    CopyUnitsReversed<Format>(dst.pixels, src.pixels, size_t(count));
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
