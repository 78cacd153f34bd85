// OpenFader: a source that fades out from left to right.
#include "mix/mix_rows.h"
#include "mix/runs.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

// The level of each pixel of a row, a weight in every byte of a word. It falls as one 32-bit number:
// a byte that passes below zero wraps and borrows from the next. Intended.
class FaderLevels {
 public:
  FaderLevels(int start, int step, int hold) : hold_(hold) {
    const uint32_t size = start < 0 ? 0u - uint32_t(start) : uint32_t(start);
    level_ = InEveryByte(start > 0 ? 0 : 256 - size * uint32_t(step));
    step_ = InEveryByte(uint32_t(step));
  }
  uint32_t Next() {
    const uint32_t level = level_;
    if (--hold_ < 0) level_ -= step_;
    return level;
  }

 private:
  static uint32_t InEveryByte(uint32_t value) {
    return value | value << 8 | value << 16 | value << 24;  // 256 gives 0x01010100. Intended.
  }
  uint32_t level_, step_;
  int64_t hold_;
};

}  // namespace
}  // namespace pincel

bool OpenFader(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at, int start,
               int step, int hold) {
  using namespace pincel;
  return Dispatch(DirectColour{}, dst, false, [&](auto f) {
    using Format = decltype(f);
    CRectangulo clipped = rect;
    CPunto from = at;
    if (!ClipRectPoint(dst, clipped, from)) return true;
    // Bytes of pixels have a weight byte each; 16-bit pixels a word of them.
    constexpr size_t kWeightBytes = PackedFields<Format> ? 4 : Format::kBytes;
    uint8_t weights[kPieceWidth * 4];
    FaderLevels levels(start, step, hold);
    MaskedRows rows = {RowsOf<Format, Format>(dst, clipped, src, from), weights, 0};
    for (size_t left = rows.width; left > 0; left -= rows.width) {
      rows.width = std::min(kPieceWidth, left);
      for (size_t x = 0; x < rows.width; ++x) {
        StoreWord(weights + x * kWeightBytes,
                  levels.Next());  // at 24 bits the next covers the rest
      }
      if constexpr (PackedFields<Format>) {
        FadeFieldRows(SurfFormat(dst), rows);
      } else {
        MaskedRows bytes = rows;
        bytes.width *= Format::kBytes;
        FadeByteRows(bytes);
      }
      rows.dst += rows.width * Format::kBytes;
      rows.src += rows.width * Format::kBytes;
    }
    return true;
  });
}
