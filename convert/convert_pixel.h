// What the conversions do to one pixel: every formula in plain C++.
#ifndef CONVERT_CONVERT_PIXEL_H_
#define CONVERT_CONVERT_PIXEL_H_

#include "surface/moved_fields.h"

namespace pincel {

// 24- and 32-bit pixels are reduced to 8 bits with red and blue exchanged. Intended.
struct ExchangedByteFields : ByteFields {
  using Blue = Field<16, 8>;
  using Red = Field<0, 8>;
};

// An index that names its colour, RRRGGGBB (CreateTruncPal).
struct Rgb332 {
  using Blue = Field<0, 2>;
  using Green = Field<2, 3>;
  using Red = Field<5, 3>;
  using Alpha = Field<8, 0>;
};

// One direct-colour format to another.
template <class DstFormat, class SrcFormat, class Alpha = NoAlpha>
struct Repacking : MovedFields<FieldsOf<DstFormat>, FieldsOf<SrcFormat>, Alpha> {
  using Dst = DstFormat;
  using Src = SrcFormat;
  // The alpha of a 24-bit pixel is the byte that follows it: the next pixel's blue or, at the end of
  // a row, the first byte behind the row. Intended.
  static constexpr bool kReadsFollowingByte = Src::kBytes == 3 && Alpha::kFromSource;

  static void Pixel(uint8_t* dst, const uint8_t* src) {
    const uint32_t word = kReadsFollowingByte ? LoadWord<uint32_t>(src) : Src::Load(src);
    Dst::Store(dst, typename Dst::Word(Repacking::Of(word)));
  }
};

using OpaqueByte = AlphaBits<0xFF000000>;

using Pack565To555 = Repacking<Rgb555, Rgb565>;
using Pack555To565 = Repacking<Rgb565, Rgb555>;
using Pack565To1555 = Repacking<Argb1555, Rgb565, AlphaBits<0x8000>>;
using Pack555To1555 = Repacking<Argb1555, Rgb555, AlphaBits<0x8000>>;
using Pack555To4444 = Repacking<Argb4444, Rgb555>;  // alpha 0, though 565 gets 15. Intended.
using Pack565To4444 = Repacking<Argb4444, Rgb565, AlphaBits<0xF000>>;
using Pack4444To565 = Repacking<Rgb565, Argb4444>;
// The top alpha bit lands in bit 15, of 555 too, which has no alpha. Intended.
using Pack4444To555 = Repacking<Rgb555, Argb4444, AlphaOfSource>;

using Pack565To24 = Repacking<Rgb888, Rgb565>;
using Pack555To24 = Repacking<Rgb888, Rgb555>;
using Pack4444To24 = Repacking<Rgb888, Argb4444>;
using Pack565To32 = Repacking<Argb8888, Rgb565, OpaqueByte>;
using Pack555To32 = Repacking<Argb8888, Rgb555, OpaqueByte>;
using Pack1555To32 = Repacking<Argb8888, Argb1555>;  // alpha 0 whatever bit 15 says. Intended.
using Pack4444To32 = Repacking<Argb8888, Argb4444, AlphaOfSource>;

using Pack24To565 = Repacking<Rgb565, Rgb888>;
using Pack24To555 = Repacking<Rgb555, Rgb888, AlphaOfSource>;
using Pack24To4444 = Repacking<Argb4444, Rgb888, AlphaOfSource>;
using Pack32To565 = Repacking<Rgb565, Argb8888>;
using Pack32To555 = Repacking<Rgb555, Argb8888, AlphaOfSource>;
using Pack32To4444 = Repacking<Argb4444, Argb8888, AlphaOfSource>;
using Pack24To32 = Repacking<Argb8888, Rgb888, OpaqueByte>;
using Pack32To24 = Repacking<Rgb888, Argb8888>;

static_assert(Pack565To555::Of(0xFFFF) == 0x7FFF && Pack565To555::Of(0x07E0) == 0x03E0);
static_assert(Pack555To565::Of(0x7FFF) == 0xFFDF && Pack555To4444::Of(0xFFFF) == 0x0FFF);
static_assert(Pack565To4444::Of(0xFFFF) == 0xFFFF && Pack4444To565::Of(0x0FFF) == 0xF79E);
static_assert(Pack4444To555::Of(0xF000) == 0x8000 && Pack555To32::Of(0x7FFF) == 0xFFF8F8F8);
static_assert(Pack1555To32::Of(0xFFFF) == 0x00F8F8F8);

// The colour of a source pixel in reductions to 8 bits, as 0x00RRGGBB with the channels in the roles
// that they play there.
template <class Src>
using ReducedFields = std::conditional_t<PackedFields<Src>, FieldsOf<Src>, ExchangedByteFields>;
template <class Src>
using RolesOf = MovedFields<ByteFields, ReducedFields<Src>>;

// The colour of a source pixel as it stands, for comparing with the key.
template <class Src>
using ColourOf = MovedFields<ByteFields, FieldsOf<Src>>;

// Reductions of a source pixel to an index.
template <class SrcFormat>
struct ToTruncated : MovedFields<Rgb332, ReducedFields<SrcFormat>> {
  using Src = SrcFormat;
};

// The 6 x 7 x 6 cube of CreateModelPal.
constexpr uint32_t kCubeReds = 6, kCubeGreens = 7, kCubeBlues = 6;
template <class SrcFormat>
struct ToCube {
  using Src = SrcFormat;
  static constexpr uint32_t Of(uint32_t word) {
    const Bgr c = ToBgr(RolesOf<Src>::Of(word));
    return (c.red * kCubeReds >> 8) * (kCubeGreens * kCubeBlues) +
           (c.green * kCubeGreens >> 8) * kCubeBlues + (c.blue * kCubeBlues >> 8);
  }
};

static_assert(ToTruncated<Rgb888>::Of(0x0000FF) == 0xE0 && ToTruncated<Rgb888>::Of(0xFF0000) == 3);
static_assert(ToTruncated<Rgb565>::Of(0xF800) == 0xE0 && ToCube<Rgb888>::Of(0xFFFFFF) == 251);

// A reduction writes index 0 for the pixels whose colour is `hidden`: 0x00RRGGBB, or none.
constexpr uint32_t kHidesNothing = 0xFFFFFFFF;

template <class Reduction>
void ReducePixel(uint8_t* dst, const uint8_t* src, uint32_t hidden) {
  using Src = typename Reduction::Src;
  const uint32_t word = Src::Load(src);
  *dst = ColourOf<Src>::Of(word) == hidden ? 0 : uint8_t(Reduction::Of(word));
}

}  // namespace pincel

#endif  // CONVERT_CONVERT_PIXEL_H_
