// DrawMix: a source drawn at a constant level or through an alpha surface.
#include "mix/mix_rows.h"
#include "mix/runs.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

// 32 bits through a palette: the fourth byte has rules of its own. Intended.
// At the general levels its weight is the blue byte just written to the pixel on the left, 0 at the
// start of a row; at 192 it loses the destination's share, at 64 the source's.
void MixFourthBytes(const SourceRows& piece, const uint8_t* old_fourth, uint8_t previous_blue,
                    unsigned level) {
  for (size_t x = 0; x < piece.width; ++x) {
    uint8_t* const pixel = piece.dst + 4 * x;
    const int d = old_fourth[x], s = piece.src[4 * x + 3];
    if (level == 192) {
      pixel[3] = uint8_t((s >> 1) + (s >> 2));
    } else if (level == 64) {
      pixel[3] = uint8_t((d >> 1) + (d >> 2));
    } else if (level != 128) {
      pixel[3] = MixByte(d, s, previous_blue);
    }
    previous_blue = pixel[0];
  }
}

void MixBytesAtLevel(int pixel_bytes, const SourceRows& rows, unsigned level) {
  const SourceRows bytes = InBytes(rows, pixel_bytes);
  if (IsQuarters(level)) {
    MixByteQuarters(bytes, int(level / 64));
  } else {
    MixByteRows(bytes, int(level & 255));  // only the low byte counts. Intended.
  }
}

void MixPaletteAtLevel32(const SourceRows& piece, size_t x, unsigned level) {
  uint8_t old_fourth[kPieceWidth];
  for (size_t i = 0; i < piece.width; ++i) old_fourth[i] = piece.dst[4 * i + 3];
  const uint8_t previous_blue = x == 0 ? 0 : piece.dst[-4];
  MixBytesAtLevel(4, piece, level);
  MixFourthBytes(piece, old_fourth, previous_blue, level);
}

template <class Format>
void MixFieldsAtLevel(int format, const MaskedRows& rows, unsigned level, bool palette) {
  const int quarters = int(level / 64);
  if (palette) {
    // Rounds towards the source and takes the whole level. Intended.
    const uint32_t weight = 256 - (level ^ 255);
    IsQuarters(level) ? MixFieldQuarters(format, Quarters::kPerPixel, rows, quarters)
                      : MixFieldRows(format, rows, weight);
    return;
  }
  auto [groups, rest] = SplitInGroupsOfFour<Format>(rows);
  if (IsQuarters(level)) {
    MixFieldQuarters(format, Quarters::kInGroup, groups, quarters);
    if (rest.width != 0) MixFieldQuarters(format, Quarters::kAtRowEnd, rest, quarters);
    return;
  }
  // Groups take the low byte of the level, the end of the row all 16 bits. Intended.
  const unsigned low_byte = level & 255;
  if (low_byte == 255 && groups.width != 0) {
    // The first group of each row is copied whole, alpha bits included. Intended.
    ForEachRow(static_cast<const SourceRows&>(groups),
               [](uint8_t* dst, const uint8_t* src) { std::memmove(dst, src, 8); });
    groups.width -= 4;
    groups.dst += 8;
    groups.src += 8;
  }
  if (groups.width != 0) MixFieldRows(format, groups, low_byte);
  if (rest.width != 0) MixFieldRows(format, rest, level);
}

// Calls `body(table)` with the pixels of an 8-bit source, null for any other.
template <class Format, class Body>
void WithSource(const TSurfDesc& src, Body&& body) {
  if (src.bpp == 8) {
    const PixelTable table = PixelsOfPalette(Format(), PaletteOrDefault(src));
    body(&table);
  } else {
    body(nullptr);
  }
}
template <class Format>
SourceRows RowsOfSource(const TSurfDesc& dst, const CRectangulo& rect, const TSurfDesc& src,
                        CPunto at) {
  return src.bpp == 8 ? RowsOf<Format, Indexed8>(dst, rect, src, at)
                      : RowsOf<Format, Format>(dst, rect, src, at);
}

bool MixAtLevel(TSurfDesc& dst, CRectangulo rect, unsigned level, const TSurfDesc& src, CPunto at) {
  return Dispatch(DirectColour{}, dst, false, [&](auto f) {
    using Format = decltype(f);
    if (!ClipRectPoint(dst, rect, at)) return true;
    const MaskedRows rows = {RowsOfSource<Format>(dst, rect, src, at), nullptr, 0};
    WithSource<Format>(src, [&](const PixelTable* table) {
      ForEachRun<Format>(rows, table, 1, [&](const MaskedRows& run, size_t x) {
        if constexpr (PackedFields<Format>) {
          MixFieldsAtLevel<Format>(SurfFormat(dst), run, level, table != nullptr);
        } else if (Format::kBytes == 4 && table != nullptr) {
          MixPaletteAtLevel32(run, x, level);
        } else {
          MixBytesAtLevel(Format::kBytes, run, level);
        }
      });
    });
    return true;
  });
}

// 16 bits: what an alpha byte weighs depends on the kinds of source and alpha surface. Intended.
template <class Format>
void MixFieldsThroughAlpha(int format, const MaskedRows& rows, const TSurfDesc& src,
                           size_t alpha_bytes, uint32_t level) {
  WithSource<Format>(src, [&](const PixelTable* table) {
    ForEachRun<Format>(rows, table, alpha_bytes, [&](const MaskedRows& run, size_t) {
      if (table != nullptr) {
        MixRowsMasked(format, run, {level, 2});
      } else if (alpha_bytes == 2) {
        MixRowsMasked(format, run, {level, 1});
      } else {
        const auto [groups, rest] = SplitInGroupsOfFour<Format>(run);
        if (groups.width != 0) MixGroupsMasked(format, groups, {level, 0});
        if (rest.width != 0) MixRowsMasked(format, rest, {level, 0});
      }
    });
  });
}

struct AlphaMix {
  const TSurfDesc& alpha;
  CPunto alpha_at;
  const TSurfDesc& src;
  CPunto src_at;
};

template <class Format>
void MixFieldsThroughAlpha(const TSurfDesc& dst, const CRectangulo& rect, const AlphaMix& mix,
                           uint32_t level) {
  // Any alpha surface that is not 8-bit is read two bytes a pixel, the low one counts. Intended.
  const size_t alpha_bytes = mix.alpha.bpp == 8 ? 1 : 2;
  const SourceRows rows = RowsOfSource<Format>(dst, rect, mix.src, mix.src_at);
  const uint8_t* const mask = alpha_bytes == 1
                                  ? PixelAt<Indexed8>(mix.alpha, mix.alpha_at.x, mix.alpha_at.y)
                                  : PixelAt<Any16>(mix.alpha, mix.alpha_at.x, mix.alpha_at.y);
  MixFieldsThroughAlpha<Format>(SurfFormat(dst), {rows, mask, mix.alpha.pitch}, mix.src,
                                alpha_bytes, level);
}

bool MixThroughAlpha(TSurfDesc& dst, CRectangulo rect, AlphaMix mix) {
  return Dispatch(DirectColour{}, dst, false, [&](auto f) {
    using Format = decltype(f);
    const bool visible = ClipRectTwoPoints(dst, rect, mix.alpha_at, mix.src_at);
    if constexpr (PackedFields<Format>) {
      if (visible) MixFieldsThroughAlpha<Format>(dst, rect, mix, 256);
      return true;
    } else {
      if (!visible) return false;  // true at 16 bits. Intended.
      const SourceRows rows = RowsOfSource<Format>(dst, rect, mix.src, mix.src_at);
      const uint8_t* const mask = PixelAt<Indexed8>(mix.alpha, mix.alpha_at.x, mix.alpha_at.y);
      WithSource<Format>(mix.src, [&](const PixelTable* table) {
        ForEachRun<Format>({rows, mask, mix.alpha.pitch}, table, 1,
                           [&](const MaskedRows& run, size_t) {
                             MixRowsMasked(Format::kBytes * 8, run, {256, 1});
                           });
      });
      return true;
    }
  });
}

bool MixThroughAlphaAtLevel(TSurfDesc& dst, CRectangulo rect, AlphaMix mix, uint32_t level) {
  return Dispatch(DirectColour{}, dst, false, [&](auto f) {
    using Format = decltype(f);
    if constexpr (PackedFields<Format>) {
      if (ClipRectTwoPoints(dst, rect, mix.alpha_at, mix.src_at)) {
        MixFieldsThroughAlpha<Format>(dst, rect, mix, level);
      }
    } else if (ClipRectPoint(dst, rect, mix.alpha_at)) {
      // The y coordinate serves for both, x is not read, and clipping does not move it. Intended.
      const CPunto src_at = {mix.src_at.y, mix.src_at.y};
      MixRowsMasked(
          Format::kBytes * 8,
          RowsOf<Format, Format, Indexed8>(dst, rect, mix.src, src_at, mix.alpha, mix.alpha_at),
          {level, 0});
    }
    return true;
  });
}

}  // namespace
}  // namespace pincel

bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, unsigned short level, TSurfDesc& src,
             CPunto const& at, unsigned char (*const table)[65536]) {
  if (pincel::SurfFormat(dst) == 8) return DrawMix_8Bits(dst, rect, level, src, at, table);
  return pincel::MixAtLevel(dst, rect, level, src, at);
}

bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha, CPunto const& alphaAt,
             TSurfDesc& src, CPunto const& srcAt, unsigned char (*const table)[65536]) {
  if (pincel::SurfFormat(dst) == 8) {
    return DrawMix_8Bits(dst, rect, alpha, alphaAt, src, srcAt, table);
  }
  return pincel::MixThroughAlpha(dst, rect, {alpha, alphaAt, src, srcAt});
}

bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha, CPunto const& alphaAt,
             TSurfDesc& src, CPunto const& srcAt, unsigned short level) {
  return pincel::MixThroughAlphaAtLevel(dst, rect, {alpha, alphaAt, src, srcAt}, level);
}

bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha, CPunto const& alphaAt,
             TSurfDesc& src, CPunto const& srcAt, TSurfDesc& back, CPunto const& backAt,
             unsigned char (*const table)[65536]) {
  return DrawBitmap(dst, rect, back, backAt) &&
         DrawMix(dst, rect, alpha, alphaAt, src, srcAt, table);
}

bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, unsigned short level, TSurfDesc& src,
             CPunto const& srcAt, TSurfDesc& back, CPunto const& backAt,
             unsigned char (*const table)[65536]) {
  return DrawBitmap(dst, rect, back, backAt) && DrawMix(dst, rect, level, src, srcAt, table);
}
