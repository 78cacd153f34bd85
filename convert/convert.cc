// Convert, CopyImage and the exported converters: which formula and which key rule belong to which
// pair of formats.
#include <algorithm>

#include "convert/convert_rows.h"
#include "convert/keys.h"
#include "convert/nearest.h"
#include "surface/expand_rows.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// All pixels of the source and the same positions of the destination; none of an empty source.
template <class Dst, class Src>
SourceRows AllRows(const TSurfDesc& dst, const TSurfDesc& src) {
  const CRectangulo all{0, 0, std::max(src.width, 0), std::max(src.height, 0)};
  return RowsOf<Dst, Src>(dst, all, src, {0, 0});
}

template <class Formula>
void RepackPixels(const TSurfDesc& dst, const TSurfDesc& src) {
  Repack<Formula>(AllRows<typename Formula::Dst, typename Formula::Src>(dst, src));
}

// Between 16-bit formats; `alpha_bits` are set in the key.
template <class Formula, class KeyFormat = typename Formula::Dst>
bool Convert16To16(TSurfDesc& dst, const TSurfDesc& src, uint32_t alpha_bits = 0) {
  RepackPixels<Formula>(dst, src);
  dst.colorKey = RepackedKey<KeyFormat, typename Formula::Src>(src.colorKey) | alpha_bits;
  return true;
}

// Between 24 and 32 bits, where a width or height below 1 counts as 1. Intended.
template <class Formula>
bool ConvertAtLeastOnePixel(const TSurfDesc& dst, const TSurfDesc& src) {
  TSurfDesc size = src;
  size.width = std::max(src.width, 1);
  size.height = std::max(src.height, 1);
  RepackPixels<Formula>(dst, size);
  return true;
}

template <class Formula>
bool Convert16To24(TSurfDesc& dst, TSurfDesc& src) {
  RepackPixels<Formula>(dst, src);
  dst.colorKey = UnpackedKey<typename Formula::Src>(src.colorKey);
  return true;
}

// The alpha of keys on surfaces that have alpha.
uint32_t KeyAlpha(const TSurfDesc& dst) { return dst.aMask != 0 ? 0xFF000000 : 0; }

template <class Formula>
bool Convert16To32(TSurfDesc& dst, TSurfDesc& src) {
  RepackPixels<Formula>(dst, src);
  dst.colorKey = UnpackedKey<typename Formula::Src>(src.colorKey);
  if (HasKey(src)) dst.colorKey |= KeyAlpha(dst);
  return true;
}

// From 24 or 32 bits; `alpha_bits` are set in the key.
template <class Formula, uint32_t alpha_bits = 0>
bool ConvertTo16(TSurfDesc& dst, TSurfDesc& src) {
  RepackPixels<Formula>(dst, src);
  dst.colorKey = PackedKey<typename Formula::Dst>(src.colorKey, alpha_bits);
  return true;
}

// The colours of an 8-bit source; a grey ramp when it has no palette.
class SourcePalette {
 public:
  explicit SourcePalette(const TSurfDesc& src) : given_(src.palette) {
    if (given_ == nullptr) {
      for (uint32_t i = 0; i < 256; ++i) StoreWord(&grey_[i].blue, i * 0x010101);
    }
  }
  bool IsGrey() const { return given_ == nullptr; }
  const TRGBA* Entries() const { return IsGrey() ? grey_ : given_; }
  uint32_t Entry0() const { return LoadWord<uint32_t>(&Entries()->blue); }

 private:
  const TRGBA* given_;
  TRGBA grey_[256];
};

// The pixels of an 8-bit source by the formula that repacks palette entries.
template <class Formula>
void ExpandPixels(const TSurfDesc& dst, const TSurfDesc& src, const SourcePalette& palette) {
  using Dst = typename Formula::Dst;
  ExpandIndexed(Dst::kBytes, AllRows<Dst, Indexed8>(dst, src),
                TableOf(palette.Entries(), [](uint32_t entry) { return Formula::Of(entry); }),
                /*skip_index_0=*/false);
}

// A keyed 8-bit source makes the colour of entry 0 the key, whatever its own key. Intended.
// `alpha_bits` are set in the key.
template <class Formula, uint32_t alpha_bits = 0>
bool Expand(TSurfDesc& dst, TSurfDesc& src) {
  const SourcePalette palette(src);
  ExpandPixels<Formula>(dst, src, palette);
  dst.colorKey = HasKey(src) ? Formula::Of(palette.Entry0()) | alpha_bits : kNoKey;
  return true;
}

bool ExpandTo4444(TSurfDesc& dst, TSurfDesc& src) {
  constexpr uint32_t kOpaque = 0xF000;  // of palette colours and keys; grey has alpha 0. Intended.
  return src.palette == nullptr
             ? Expand<Pack32To4444, kOpaque>(dst, src)
             : Expand<Repacking<Argb4444, Argb8888, AlphaBits<kOpaque>>>(dst, src);
}

bool ExpandTo24(TSurfDesc& dst, TSurfDesc& src) {
  const SourcePalette palette(src);
  ExpandPixels<Pack32To24>(dst, src, palette);
  dst.colorKey = HasKey(src) ? palette.Entry0() : kNoKey;  // with the fourth byte. Intended.
  return true;
}

bool ExpandTo32(TSurfDesc& dst, TSurfDesc& src) {
  const SourcePalette palette(src);
  ExpandPixels<Repacking<Argb8888, Argb8888, OpaqueByte>>(dst, src, palette);
  // A source without a key leaves the destination's as it is; without alpha, the index is copied as
  // if it were a colour. Intended.
  if (HasKey(src)) {
    dst.colorKey = dst.aMask != 0 ? palette.Entry0() | KeyAlpha(dst) : src.colorKey;
  }
  return true;
}

bool CopyPixelsAndKey(TSurfDesc& dst, TSurfDesc& src) {
  CopyImage(dst, src);
  dst.colorKey = src.colorKey;
  return true;
}

template <class Formula>
void ReduceByFormula(const TSurfDesc& dst, const TSurfDesc& src) {
  using Src = typename Formula::Src;
  Reduce<Formula>(AllRows<Indexed8, Src>(dst, src), HiddenColour<Src>(src.colorKey));
}

// To 8 bits: the source's format and the mode choose the formula.
template <class Src>
bool ReduceTo8(TSurfDesc& dst, const TSurfDesc& src, uint32_t mode) {
  switch (mode) {
    case 1:
      break;  // the key alone
    case 2:
      ReduceToNearest<ToNearest<Src>>(AllRows<Indexed8, Src>(dst, src), dst.palette,
                                      HiddenColour<Src>(src.colorKey));
      break;
    case 3:
      ReduceByFormula<ToTruncated<Src>>(dst, src);
      break;
    case 4:
      ReduceByFormula<ToCube<Src>>(dst, src);
      break;
    default:
      return false;
  }
  dst.colorKey = ReducedKey(src.colorKey);
  return true;
}

using Converter = bool (*)(TSurfDesc& dst, TSurfDesc& src);
constexpr Converter kByMode = nullptr;

// Rows: destinations 8, 565, 555, 1555, 4444, 24, 32; columns: sources in the same order.
constexpr int kFormatCodes[] = {8, 16, 17, 18, 19, 24, 32};
constexpr size_t kFormats = std::size(kFormatCodes);
constexpr Converter kConverters[kFormats][kFormats] = {
    {Convert8_8, kByMode, kByMode, kByMode, kByMode, kByMode, kByMode},
    {Expand<Pack32To565>, CopyPixelsAndKey, Convert16_555_16_565, Convert16_555_16_565,
     Convert16_4444_16_565, ConvertTo16<Pack24To565>, ConvertTo16<Pack32To565>},
    {Expand<Pack32To555>, Convert16_565_16_555, CopyPixelsAndKey, Convert16_5551_16_555,
     Convert16_4444_16_555, ConvertTo16<Pack24To555>, ConvertTo16<Pack32To555>},
    {Expand<Pack32To555, 0x8000>, Convert16_565_16_5551, Convert16_555_16_5551, CopyPixelsAndKey,
     Convert16_4444_16_5551, ConvertTo16<Pack24To555, 0x8000>, ConvertTo16<Pack32To555, 0x8000>},
    {ExpandTo4444, Convert16_565_16_4444, Convert16_555_16_4444, Convert16_555_16_4444,
     CopyPixelsAndKey, ConvertTo16<Pack24To4444, 0xF000>, ConvertTo16<Pack32To4444, 0xF000>},
    {ExpandTo24, Convert16To24<Pack565To24>, Convert16To24<Pack555To24>, Convert16To24<Pack555To24>,
     Convert16To24<Pack4444To24>, CopyPixelsAndKey, Convert32_24_},
    {ExpandTo32, Convert16To32<Pack565To32>, Convert16To32<Pack555To32>,
     Convert16To32<Pack1555To32>, Convert16To32<Pack4444To32>, Convert24_32_, CopyPixelsAndKey},
};
constexpr auto kReducers = std::to_array<bool (*)(TSurfDesc& dst, const TSurfDesc& src, uint32_t)>(
    {nullptr, ReduceTo8<Rgb565>, ReduceTo8<Rgb555>, ReduceTo8<Rgb555>, ReduceTo8<Argb4444>,
     ReduceTo8<Rgb888>, ReduceTo8<Argb8888>});
static_assert(kReducers.size() == kFormats);

size_t PositionOf(int format_code) {
  return size_t(std::find(std::begin(kFormatCodes), std::end(kFormatCodes), format_code) -
                std::begin(kFormatCodes));
}

// Copies `size` bytes; nothing when it is not positive.
void CopyBytes(uint8_t* dst, const uint8_t* src, int64_t size) {
  if (size > 0) std::memmove(dst, src, size_t(size));
}

}  // namespace
}  // namespace pincel

bool Convert(TSurfDesc& dst, TSurfDesc& src, unsigned long mode) {
  using namespace pincel;
  const size_t to = PositionOf(SurfFormat(dst)), from = PositionOf(SurfFormat(src));
  if (to < kFormats && from < kFormats) {
    const Converter convert = kConverters[to][from];
    convert != kByMode ? convert(dst, src) : kReducers[from](dst, src, uint32_t(mode));
  }
  return false;  // always. Intended.
}

bool CopyImage(TSurfDesc& dst, TSurfDesc& src) {
  using pincel::CopyBytes;
  if (dst.pitch == src.pitch) {
    CopyBytes(dst.pixels, src.pixels, int64_t{src.height} * src.pitch & ~int64_t{3});
    return true;
  }
  // A row copies as many bytes as it has pixels, rounded up to words, and the next one starts a
  // pitch less a row's real bytes behind the last byte copied, so that rows of deeper surfaces
  // drift. At least one row is copied. Intended.
  const int64_t copied = (int64_t{src.width} + 3) & ~int64_t{3};
  if (copied <= 0) return true;
  const int64_t step = copied - int64_t{src.width} * (src.bpp / 8);
  int64_t dst_row = 0, src_row = 0;
  for (int32_t rows = std::max(src.height, 1);;) {
    CopyBytes(dst.pixels + dst_row, src.pixels + src_row, copied);
    if (--rows == 0) return true;
    dst_row += step + dst.pitch;
    src_row += step + src.pitch;
  }
}

bool Convert16_565_16_555(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack565To555>(dst, src);
}
bool Convert16_4444_16_555(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack4444To555>(dst, src);
}
bool Convert16_555_16_4444(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack555To4444>(dst, src, 0xF000);
}
bool Convert16_565_16_4444(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack565To4444>(dst, src, 0xF000);
}
bool Convert16_4444_16_565(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack4444To565>(dst, src);
}
bool Convert16_4444_16_5551(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack4444To555>(dst, src, 0x8000);
}
bool Convert16_555_16_5551(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack555To1555>(dst, src, 0x8000);
}
bool Convert16_5551_16_555(TSurfDesc& dst, TSurfDesc& src) {
  // The pixels become 4444 values, the key a 555 one. Intended.
  return pincel::Convert16To16<pincel::Pack555To4444, pincel::Rgb555>(dst, src);
}
bool Convert16_565_16_5551(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack565To1555>(dst, src, 0x8000);
}
bool Convert16_555_16_565(TSurfDesc& dst, TSurfDesc& src) {
  return pincel::Convert16To16<pincel::Pack555To565>(dst, src);
}

bool Convert24_32_(TSurfDesc& dst, TSurfDesc& src) {
  dst.colorKey = src.colorKey | pincel::KeyAlpha(dst);
  return pincel::ConvertAtLeastOnePixel<pincel::Pack24To32>(dst, src);
}

bool Convert32_24_(TSurfDesc& dst, TSurfDesc& src) {
  dst.colorKey = src.colorKey;
  return pincel::ConvertAtLeastOnePixel<pincel::Pack32To24>(dst, src);
}

bool Convert8_8(TSurfDesc& dst, TSurfDesc& src) {
  using namespace pincel;
  if (src.width > 0 && src.height > 0) {
    uint8_t nearest[256];
    NearestEntries(nearest, src.palette, dst.palette);
    PixelTable table;
    std::copy(std::begin(nearest), std::end(nearest), table.pixel);
    ExpandIndexed(1, AllRows<Indexed8, Indexed8>(dst, src), table, /*skip_index_0=*/false);
  }
  dst.colorKey = src.colorKey;  // not mapped. Intended.
  return true;
}
