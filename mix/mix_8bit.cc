// Mixing on 8-bit surfaces: through the colours of lu_gPaleta and back to an index by the caller's
// table, two planes of indices by colour packed as 565.
#include "mix/bi_mask.h"
#include "surface/clip.h"
#include "surface/palette.h"
#include "surface/rows.h"

namespace pincel {
namespace {

using MixTable = const unsigned char (*)[65536];

// Three channels side by side, 20 bits each, so that products of a byte and a 9-bit weight can be
// added to one another without reaching the next.
using Channels = uint64_t;
constexpr int kMiddle = 20, kHigh = 40;
constexpr Channels Join(uint64_t low, uint64_t middle, uint64_t high) {
  return low | middle << kMiddle | high << kHigh;
}

// The 565 key of three channels in 256ths.
constexpr uint32_t KeyOf(Channels sum) {
  return uint32_t((sum >> kHigh) & 0xF800) | uint32_t((sum >> (kMiddle + 5)) & 0x07E0) |
         uint32_t((sum >> 11) & 0x001F);
}
static_assert(KeyOf(Join(0xFF00, 0, 0)) == 0x001F && KeyOf(Join(0, 0xFF00, 0)) == 0x07E0 &&
              KeyOf(Join(0, 0, 0xFF00)) == 0xF800);

// The library's palette with red in the high channel, as it goes into a key.
struct PaletteChannels {
  Channels of[256];
  PaletteChannels() {
    for (int i = 0; i < 256; ++i) {
      of[i] = Join(lu_gPaleta[i].blue, lu_gPaleta[i].green, lu_gPaleta[i].red);
    }
  }
};

// d + floor((s - d) * weight / 256) in each channel, in 256ths; weight 0 to 256.
constexpr Channels Mix(Channels d, Channels s, uint32_t weight) {
  return d * (256 - weight) + s * weight;
}

// The plane that a destination pixel looks its key up in: a checkerboard.
constexpr unsigned Phase(int32_t x, int32_t y) { return (uint32_t(x) + uint32_t(y) + 1) & 1; }

// Calls `row(y)` ... with the phase of each row's first pixel.
template <class Row>
void ForEachRowWithPhase(const CRectangulo& rect, Row&& row) {
  unsigned phase = Phase(rect.left, rect.top);
  for (int32_t y = 0; y < rect.bottom - rect.top; ++y, phase ^= 1) row(ptrdiff_t{y}, phase);
}

// A level of all 16 bits overshoots: each channel is (d * (256 - level) + s * level) mod 65536.
// One table per operand holds its part, cut to 16 bits.
struct LevelParts {
  Channels of[256];
  explicit LevelParts(uint32_t weight) {
    const auto part = [&](uint8_t channel) { return uint64_t{uint16_t(channel * weight)}; };
    for (int i = 0; i < 256; ++i) {
      const TRGBA& e = lu_gPaleta[i];
      of[i] = Join(part(e.blue), part(e.green), part(e.red));
    }
  }
};

}  // namespace
}  // namespace pincel

bool DrawMix_8Bits(TSurfDesc& dst, CRectangulo const& rect, unsigned short level, TSurfDesc& src,
                   CPunto const& at, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (dst.bpp != 8) return false;
  CRectangulo clipped = rect;
  CPunto from = at;
  if (!ClipRectPoint(dst, clipped, from)) return true;
  const SourceRows rows = RowsOf<Indexed8, Indexed8>(dst, clipped, src, from);
  const LevelParts of_dst(256u - level), of_src(level);
  ForEachRowWithPhase(clipped, [&](ptrdiff_t y, unsigned phase) {
    uint8_t* const d = rows.dst + y * rows.dst_pitch;
    const uint8_t* const s = rows.src + y * rows.src_pitch;
    for (size_t x = 0; x < rows.width; ++x) {
      d[x] = table[(phase + x) & 1][KeyOf(of_dst.of[d[x]] + of_src.of[s[x]])];
    }
  });
  return true;
}

bool DrawMix_8Bits(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha, CPunto const& alphaAt,
                   TSurfDesc& src, CPunto const& srcAt, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (dst.bpp != 8 || src.bpp != 8) return false;
  CRectangulo clipped = rect;
  CPunto alpha_at = alphaAt, from = srcAt;
  if (!ClipRectTwoPoints(dst, clipped, alpha_at, from)) return true;
  const MaskedRows rows =
      RowsOf<Indexed8, Indexed8, Indexed8>(dst, clipped, src, from, alpha, alpha_at);
  const PaletteChannels palette;
  ForEachRowWithPhase(clipped, [&](ptrdiff_t y, unsigned phase) {
    uint8_t* const d = rows.dst + y * rows.dst_pitch;
    const uint8_t* const s = rows.src + y * rows.src_pitch;
    const uint8_t* const a = rows.mask + y * rows.mask_pitch;
    for (size_t x = 0; x < rows.width; ++x) {
      if (a[x] == 0) continue;
      if (a[x] == 255) {
        d[x] = s[x];
      } else {
        const Channels mixed = Mix(palette.of[d[x]], palette.of[s[x]], a[x] + 1u);
        d[x] = table[(phase + x) & 1][KeyOf(mixed)];
      }
    }
  });
  return true;
}

bool DrawMask_8Bits(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& mask, CPunto const& maskAt,
                    unsigned long colour, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (dst.bpp != 8 || mask.bpp != 8) return false;
  CRectangulo clipped = rect;
  CPunto mask_at = maskAt;
  if (!ClipRectPoint(dst, clipped, mask_at)) return true;
  const SourceRows rows = RowsOf<Indexed8, Indexed8>(dst, clipped, mask, mask_at);
  const PaletteChannels palette;
  const Bgr c = ToBgr(uint32_t(colour));
  const Channels paint = Join(c.blue, c.green, c.red);
  ForEachRowWithPhase(clipped, [&](ptrdiff_t y, unsigned phase) {
    uint8_t* const d = rows.dst + y * rows.dst_pitch;
    const uint8_t* const m = rows.src + y * rows.src_pitch;
    for (size_t x = 0; x < rows.width; ++x) {
      if (m[x] == 0) continue;  // 255 mixes too: full cover leaves a rest. Intended.
      d[x] = table[(phase + x) & 1][KeyOf(Mix(palette.of[d[x]], paint, m[x]))];
    }
  });
  return true;
}

bool MaskFillRect_8Bits(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                        unsigned short level, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (dst.bpp != 8) return false;
  CRectangulo clipped = rect;
  if (!ClipRect(dst, clipped)) return true;
  const Rows rows = RowsOf<Indexed8>(dst, clipped);
  // Each entry's blue goes to the key's red and is tinted by the colour's red; level 0 gives key 0
  // everywhere, since the destination's share is taken modulo 256. Intended.
  const uint32_t kept = (256u - level) & 255;
  const Bgr c = ToBgr(uint32_t(colour));
  const auto share = [&](uint8_t of_entry, uint8_t of_colour) {
    return uint64_t{uint16_t(of_entry * kept + of_colour * uint32_t{level})};
  };
  uint8_t tinted[2][256];
  for (int i = 0; i < 256; ++i) {
    const TRGBA& e = lu_gPaleta[i];
    const uint32_t key =
        KeyOf(Join(share(e.red, c.blue), share(e.green, c.green), share(e.blue, c.red)));
    tinted[0][i] = table[0][key];
    tinted[1][i] = table[1][key];
  }
  ForEachRowWithPhase(clipped, [&](ptrdiff_t y, unsigned phase) {
    uint8_t* const d = rows.dst + y * rows.dst_pitch;
    for (size_t x = 0; x < rows.width; ++x) d[x] = tinted[(phase + x) & 1][d[x]];
  });
  return true;
}

bool DrawBiMask_8Bits(TSurfDesc& dst, unsigned short level, CRectangulo rect, TSurfDesc& mask,
                      CPunto maskAt, unsigned char (*const table)[65536]) {
  using namespace pincel;
  if (dst.bpp != 8) return false;
  if (!ClipRectPoint(dst, rect, maskAt)) return true;
  const BiMaskStrengths strengths(level);
  const SourceRows rows = FromLastRow(RowsOf<Indexed8, Indexed8>(dst, rect, mask, maskAt));
  ForEachRow(rows, [&](uint8_t* d, const uint8_t* m) {
    for (size_t x = 0; x < rows.width; ++x) {
      const uint32_t strength = strengths[m[x]];
      if (strength == 0) continue;
      if (strength >= kBiMaskFull) {
        d[x] = Lightens(m[x]) ? 255 : 0;
      } else {
        // Blue goes to the key's red, and the first plane serves every pixel. Intended.
        const TRGBA& e = lu_gPaleta[d[x]];
        const uint64_t light = Lightens(m[x]) ? 255 * strength : 0;
        const Channels mixed =
            Join(e.red, e.green, e.blue) * (256 - strength) + Join(light, light, light);
        d[x] = table[0][KeyOf(mixed)];
      }
    }
  });
  return true;
}
