// Solid rectangles, straight runs, frames and the unclipped block copy.
#include <algorithm>

#include "draw/blit_rows.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// The stored pixel of a fill colour 0xAARRGGBB.
template <class Format>
uint32_t FillValue(uint32_t colour) {
  if constexpr (PackedFields<Format>) {
    // The halves of AA are folded together by OR into the alpha bits. Intended.
    const uint32_t alpha = colour >> 24;
    constexpr int kAlphaBits = Format::Alpha::kWidth;
    const uint32_t folded = alpha >> (8 - kAlphaBits) | alpha;
    return Format::Pack(ToBgr(colour)) | Format::Alpha::Put(folded);
  } else {
    return colour;
  }
}

// A coordinate of a run: computed without overflow, kept within 32 bits.
int32_t Coordinate(int64_t value) {
  return int32_t(std::clamp(value, int64_t{INT32_MIN}, int64_t{INT32_MAX}));
}

}  // namespace
}  // namespace pincel

bool IdxFillRect(TSurfDesc& dst, CRectangulo rect, unsigned long colour) {
  using namespace pincel;
  return Dispatch(AllFormats{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    if (ClipRect(dst, rect)) {
      FillRows(Format::kBytes, RowsOf<Format>(dst, rect), FillValue<Format>(uint32_t(colour)));
    }
    return true;
  });
}

bool IdxLineHI(TSurfDesc& dst, CPunto const& p, int len, unsigned long colour) {
  using pincel::Coordinate;
  const int32_t end = Coordinate(int64_t{p.x} + len);
  return IdxFillRect(
      dst, {std::min(p.x, end), Coordinate(int64_t{p.y} - 1), std::max(p.x, end), p.y}, colour);
}

bool IdxLineVI(TSurfDesc& dst, CPunto const& p, int len, unsigned long colour) {
  using pincel::Coordinate;
  const int32_t end = Coordinate(int64_t{p.y} + len);
  return IdxFillRect(
      dst, {Coordinate(int64_t{p.x} - 1), std::min(p.y, end), p.x, std::max(p.y, end)}, colour);
}

bool FrameBR(TSurfDesc& dst, CRectangulo rect, unsigned long colour) {
  using pincel::Coordinate;
  const auto [left, right] = std::minmax(rect.left, rect.right);
  const auto [top, bottom] = std::minmax(rect.top, rect.bottom);
  IdxFillRect(dst, {left, Coordinate(int64_t{rect.bottom} - 1), right, rect.bottom}, colour);
  IdxFillRect(dst, {Coordinate(int64_t{rect.right} - 1), top, rect.right, bottom}, colour);
  return false;  // always. Intended.
}

bool DrawRectShadow(TSurfDesc& dst, CRectangulo rect, unsigned char step, unsigned char depth) {
  using pincel::Coordinate;
  bool result = true;
  // FrameBR reports false, so one frame is drawn whatever the depth. Intended.
  for (int16_t left = depth; left > 0 && result; left = int16_t(left - step)) {
    rect = {Coordinate(int64_t{rect.left} + 1), Coordinate(int64_t{rect.top} + 1),
            Coordinate(int64_t{rect.right} + 1), Coordinate(int64_t{rect.bottom} + 1)};
    result = FrameBR(dst, rect, 0);
  }
  return result;
}

bool DrawBlock(TSurfDesc& dst, TSurfDesc& src, unsigned short sx, unsigned short sy,
               unsigned short dx, unsigned short dy, unsigned short w, unsigned short h) {
  using namespace pincel;
  return Dispatch(AllDepths{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    const CRectangulo block{dx, dy, dx + w, dy + h};
    ForEachRow(RowsOf<Format, Format>(dst, block, src, {sx, sy}),
               [bytes = size_t{w} * Format::kBytes](uint8_t* d, const uint8_t* s) {
                 std::memmove(d, s, bytes);
               });
    return true;
  });
}
