// DrawMask, MaskFillRect and DrawBiMask on direct-colour surfaces.
#include "mix/bi_mask.h"
#include "mix/mix_rows.h"
#include "mix/runs.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

template <class Format>
void FillThroughMask(const TSurfDesc& dst, const CRectangulo& rect, const TSurfDesc& mask,
                     CPunto mask_at, uint32_t colour) {
  const size_t mask_bytes = mask.bpp == 32 ? 4 : 1;
  MaskedRows rows = {};
  static_cast<Rows&>(rows) = RowsOf<Format>(dst, rect);
  rows.mask = mask_bytes == 4 ? PixelAt<Argb8888>(mask, mask_at.x, mask_at.y)
                              : PixelAt<Indexed8>(mask, mask_at.x, mask_at.y);
  rows.mask_pitch = mask.pitch;
  ForEachColourRun<Format>(rows, colour, mask_bytes, [&](const MaskedRows& run, size_t) {
    MixRowsMasked(SurfFormat(dst), run, {256, 1});
  });
}

template <class Format>
void TintRows(const TSurfDesc& dst, const CRectangulo& rect, uint32_t colour, uint32_t level) {
  MaskedRows rows = {};
  static_cast<Rows&>(rows) = RowsOf<Format>(dst, rect);
  const uint32_t low_byte = level & 255;
  ForEachColourRun<Format>(rows, colour, 1, [&](const MaskedRows& run, size_t) {
    if constexpr (PackedFields<Format>) {
      const int format = SurfFormat(dst);
      const auto [groups, rest] = SplitInGroupsOfFour<Format>(run);
      if (groups.width != 0 && low_byte == 255) {
        // Groups of four take the whole colour, the end of the row does not. Intended.
        ForEachRow(static_cast<const SourceRows&>(groups),
                   [bytes = groups.width * Format::kBytes](uint8_t* d, const uint8_t* s) {
                     std::memcpy(d, s, bytes);
                   });
      } else if (groups.width != 0) {
        MixFieldRows(format, groups, low_byte);
      }
      // ... and all 16 bits of the level. Intended.
      if (rest.width != 0) MixFieldRows(format, rest, level);
    } else {
      MixByteRows(InBytes(run, Format::kBytes), int(low_byte + 1));
    }
  });
}

}  // namespace
}  // namespace pincel

bool DrawMask(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& mask, CPunto const& maskAt,
              unsigned long colour, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (SurfFormat(dst) == 8) return DrawMask_8Bits(dst, rect, mask, maskAt, colour, table);
  return Dispatch(DirectColour{}, dst, false, [&](auto f) {
    CRectangulo clipped = rect;
    CPunto at = maskAt;
    if (ClipRectPoint(dst, clipped, at)) {
      FillThroughMask<decltype(f)>(dst, clipped, mask, at, uint32_t(colour));
    }
    return true;
  });
}

bool MaskFillRect(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                  unsigned short level) {
  using namespace pincel;
  return Dispatch(DirectColour{}, dst, false, [&](auto f) {
    CRectangulo clipped = rect;
    if (ClipRect(dst, clipped)) TintRows<decltype(f)>(dst, clipped, uint32_t(colour), level);
    return true;
  });
}

namespace pincel {
namespace {

// What becomes of a pixel between the two ends is a grey that does not depend on it. Intended.
template <class Format>
void DrawBiMaskPixel(uint8_t* pixel, uint32_t strength, const TRGBA& target) {
  if (strength == 0) return;
  if (strength >= kBiMaskFull) {
    pixel[0] = target.blue;
    pixel[1] = target.green;
    pixel[2] = target.red;
    return;
  }
  const uint8_t grey = uint8_t(256 - strength);
  const uint8_t sum = uint8_t(target.blue + pixel[0]);
  pixel[0] = pixel[1] = pixel[2] = grey;
  // At 24 bits this is the byte behind the pixel: the next one's blue, before it is looked at, or
  // the byte behind the row. Intended.
  pixel[3] = Format::kBytes == 4 ? sum : uint8_t(sum * sum >> 8);
}

}  // namespace
}  // namespace pincel

bool DrawBiMask(TSurfDesc& dst, unsigned short level, CRectangulo rect, TSurfDesc& mask,
                CPunto maskAt, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (dst.bpp == 8) return DrawBiMask_8Bits(dst, level, rect, mask, maskAt, table);
  return Dispatch(FormatList<Argb8888, Rgb888>{}, dst, false, [&](auto f) {
    using Format = decltype(f);
    if (!ClipRectPoint(dst, rect, maskAt)) return true;
    const BiMaskStrengths strengths(level);
    const SourceRows rows = FromLastRow(RowsOf<Format, Indexed8>(dst, rect, mask, maskAt));
    ForEachRow(rows, [&](uint8_t* d, const uint8_t* m) {
      for (size_t x = 0; x < rows.width; ++x) {
        DrawBiMaskPixel<Format>(d + x * Format::kBytes, strengths[m[x]], BiMaskTarget(m[x]));
      }
    });
    return true;
  });
}
