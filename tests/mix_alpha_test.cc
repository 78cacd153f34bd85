// DrawMix through an alpha surface, with and without a level, its 8-bit kernel, and the two that
// draw a background first.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "include/pincel.h"
#include "tests/model/mix_model.h"
#include "tests/support/cases.h"
#include "tests/support/mixing.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::Compared;
using support::Filled;
using support::GlobalPalette;
using support::PictureOf;
using support::Pixels;
using support::Placed;
using support::Random;
using support::Table;
using Words = std::vector<uint32_t>;

constexpr int kDirect[] = {16, 17, 18, 19, 24, 32};
constexpr int kPacked16[] = {16, 17, 18, 19};

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

Picture Mixed(const Picture& dst, const CRectangulo& rect, Picture& alpha, CPunto alpha_at,
              Picture& src, CPunto src_at, unsigned char (*table)[65536] = nullptr) {
  return Compared(
      dst, {&alpha, &src},
      [&](Picture& p) {
        return model::DrawMixAlpha(p, rect, alpha, alpha_at, src, src_at, table, lu_gPaleta);
      },
      [&](TSurfDesc& surface) {
        TSurfDesc a = Describe(alpha), s = Describe(src);
        return DrawMix(surface, rect, a, alpha_at, s, src_at, table);
      });
}

Picture Scaled(const Picture& dst, const CRectangulo& rect, Picture& alpha, CPunto alpha_at,
               Picture& src, CPunto src_at, int level) {
  return Compared(
      dst, {&alpha, &src},
      [&](Picture& p) {
        return model::DrawMixScaledAlpha(p, rect, alpha, alpha_at, src, src_at, level, lu_gPaleta);
      },
      [&](TSurfDesc& surface) {
        TSurfDesc a = Describe(alpha), s = Describe(src);
        return DrawMix(surface, rect, a, alpha_at, s, src_at, static_cast<unsigned short>(level));
      });
}

Words MixedRow(int format, const Words& d, const Words& a, const Words& s, int alpha_format = 8) {
  Picture src = PictureOf(format, int(s.size()), 1, s);
  Picture alpha = PictureOf(alpha_format, int(a.size()), 1, a);
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0}));
}

Words ScaledRow(int format, const Words& d, const Words& a, const Words& s, int level,
                int alpha_format = 8) {
  Picture src = PictureOf(format, int(s.size()), 1, s);
  Picture alpha = PictureOf(alpha_format, int(a.size()), 1, a);
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Scaled(dst, Whole(dst), alpha, {0, 0}, src, {0, 0}, level));
}

// Every pixel of the source is entry 0.
Picture OfOneEntry(int width, int height, const TRGBA& entry) {
  Picture src = Filled(8, width, height, 0);
  src.has_palette = true;
  src.palette[0] = entry;
  return src;
}

Words MixedThroughPalette(int format, const Words& d, const Words& a, const TRGBA& entry,
                          int alpha_format = 8) {
  Picture src = OfOneEntry(int(d.size()), 1, entry);
  Picture alpha = PictureOf(alpha_format, int(a.size()), 1, a);
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0}));
}

TEST(DrawMixAlpha, Alpha0KeepsThePixelBitForBit) {
  for (int format : kDirect) {
    const Words d(7, format == 32 ? 0xFEDCBA98 : format == 24 ? 0xDCBA98 : 0xFEDC);
    EXPECT_EQ(MixedRow(format, d, Words(7, 0), Words(7, 0)), d) << format;
    EXPECT_EQ(MixedThroughPalette(format, d, Words(7, 0), TRGBA{1, 2, 3, 4}), d) << format;
    EXPECT_EQ(ScaledRow(format, d, Words(7, 0), Words(7, 0), 256), d) << format;
  }
}

TEST(DrawMixAlpha, Alpha0KeepsAlphaBitsInsideAMixedGroup) {
  EXPECT_EQ(MixedRow(19, Words(4, 0xF000), {0, 128, 0, 255}, Words(4, 0xAFFF)),
            (Words{0xF000, 0x0777, 0xF000, 0x0EEE}));
  EXPECT_EQ(MixedRow(18, Words(4, 0x8000), {0, 128, 0, 255}, Words(4, 0xFFFF)),
            (Words{0x8000, 15u << 10 | 15u << 5 | 15u, 0x8000, 0x7BDE}));
}

TEST(DrawMixAlpha, AlphaFactorIsOneMoreInBytePixels) {
  // 254 weighs 255/256: floor(255 x 255 / 256) = 254, and 255 + floor(-255 x 255 / 256) = 0.
  EXPECT_EQ(MixedRow(32, {0x00FF00FF}, {254}, {0xFF00FF00}), Words{0xFE00FE00});
  EXPECT_EQ(MixedRow(24, {0xFF00FF}, {254}, {0x00FF00}), Words{0x00FE00});
  // 1 weighs 2/256: floor(128 x 2 / 256) = 1.
  EXPECT_EQ(MixedRow(32, {0}, {1}, {0x80808080}), Words{0x01010101});
}

TEST(DrawMixAlpha, Alpha255CopiesThePixel) {
  EXPECT_EQ(MixedRow(32, {0x00FF00FF}, {255}, {0xAB00FF01}), Words{0xAB00FF01});
  EXPECT_EQ(MixedRow(24, {0xFF00FF}, {255}, {0x00FF01}), Words{0x00FF01});
  // Row ends copy one by one, alpha bits included.
  for (int format : kPacked16) {
    EXPECT_EQ(MixedRow(format, Words(3, 0), {255, 0, 255}, Words(3, 0xFEDC)),
              (Words{0xFEDC, 0, 0xFEDC}));
  }
}

TEST(DrawMixAlpha, OnlyFourOpaqueAlphasCopyAGroup) {
  for (int format : {18, 19}) {
    EXPECT_EQ(MixedRow(format, Words(4, 0), Words(4, 255), Words(4, 0xF321)), Words(4, 0xF321));
  }
  // Three of four: f = 255 on fields 3, 2, 1 gives 2, 1, 0 and no alpha bits.
  EXPECT_EQ(MixedRow(19, Words(4, 0), {255, 255, 254, 255}, Words(4, 0xF321)), Words(4, 0x0210));
  // A whole group, a lone 255 in the next, and a 255 at the row end.
  EXPECT_EQ(MixedRow(19, Words(9, 0), {255, 255, 255, 255, 0, 255, 0, 0, 255}, Words(9, 0xF321)),
            (Words{0xF321, 0xF321, 0xF321, 0xF321, 0, 0x0210, 0, 0, 0xF321}));
}

TEST(DrawMixAlpha, FactorIsTheAlphaItselfIn16BitPixels) {
  // In the group and at the row end: floor(63 x 130 / 256) = 31, floor(63 x 131 / 256) = 32.
  EXPECT_EQ(MixedRow(16, Words(5, 0), Words(5, 130), Words(5, 0x07E0)), Words(5, 31u << 5));
  EXPECT_EQ(MixedRow(16, Words(5, 0), Words(5, 131), Words(5, 0x07E0)), Words(5, 32u << 5));
}

TEST(DrawMixAlpha, AlphaOfTwoBytesUsesItsLowByteAndOneMore) {
  // 130 with f = 131: floor(63 x 131 / 256) = 32.
  EXPECT_EQ(MixedRow(16, Words(5, 0), Words(5, 0xEE82), Words(5, 0x07E0), 16), Words(5, 32u << 5));
  // No groups: each 255 copies for itself, 0 keeps.
  EXPECT_EQ(MixedRow(19, Words(4, 0xA000), {0x00FF, 0xFF00, 0x1234, 0x77FF}, Words(4, 0xF321), 16),
            (Words{0xF321, 0xA000, 0x0000, 0xF321}));
}

TEST(DrawMixAlpha, AlphaOfAnyOtherDepthIsReadTwoBytesAPixelIn16Bits) {
  // One 32-bit alpha pixel serves two.
  for (int alpha_format : {16, 17, 19, 32}) {
    Picture src = Filled(16, 2, 1, 0x07E0);
    Picture alpha = PictureOf(alpha_format, 2, 1, {0, 0});
    alpha.bytes[0] = 130;
    alpha.bytes[1] = 9;
    alpha.bytes[2] = 255;
    const Picture dst = Filled(16, 2, 1, 0);
    EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0})),
              (Words{32u << 5, 0x07E0}));
  }
}

TEST(DrawMixAlpha, AlphaIsReadBytewiseInBytePixels) {
  for (int format : {24, 32}) {
    Picture src = Filled(format, 4, 1, 0x808080);
    Picture alpha = PictureOf(32, 1, 1, {0x00FF00FF});
    const Picture dst = Filled(format, 4, 1, 0x010203);
    EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0})),
              (Words{0x808080, 0x010203, 0x808080, 0x010203}));
  }
}

TEST(DrawMixAlpha, PaletteSourceIn16BitsWeighsTheDestination) {
  // a = 100: 101 XOR 255 = 154; 20 + floor((10 - 20) x 154 / 256) = 13.
  // a = 1: 2 XOR 255 = 253; 0 + floor((31 - 0) x 253 / 256) = 30.
  EXPECT_EQ(MixedThroughPalette(17, {0x000A}, {100}, TRGBA{0xA0, 0, 0, 0}), Words{0x000D});
  EXPECT_EQ(MixedThroughPalette(17, {0x001F}, {1}, TRGBA{0, 0, 0, 0}), Words{0x001E});
  // 0 on 63: floor(63 x 154 / 256) = 37.
  EXPECT_EQ(MixedThroughPalette(16, {63u << 5}, {100}, TRGBA{0, 0, 0, 0}), Words{37u << 5});
  // a = 254: (255 XOR 255) = 0, the source itself.
  EXPECT_EQ(MixedThroughPalette(17, {0x001F}, {254}, TRGBA{0xA0, 0, 0, 0}), Words{0x0014});
  // The same through an alpha surface of two bytes.
  EXPECT_EQ(MixedThroughPalette(17, {0x001F}, {0x00FE}, TRGBA{0xA0, 0, 0, 0}, 16), Words{0x0014});
}

TEST(DrawMixAlpha, PaletteSourceCopiesItsPackedColourAt255) {
  const TRGBA entry{0x5F, 0xA7, 0xEF, 0xC3};
  EXPECT_EQ(MixedThroughPalette(16, {0}, {255}, entry), Words{29u << 11 | 41u << 5 | 11u});
  EXPECT_EQ(MixedThroughPalette(18, {0xFFFF}, {255}, entry), Words{29u << 10 | 20u << 5 | 11u});
  EXPECT_EQ(MixedThroughPalette(19, {0xFFFF}, {255}, entry), Words{0x0EA5});
  EXPECT_EQ(MixedThroughPalette(24, {0xFFFFFF}, {255}, entry), Words{0xEFA75F});
  EXPECT_EQ(MixedThroughPalette(32, {0xFFFFFFFF}, {255}, entry), Words{0xC3EFA75F});
}

TEST(DrawMixAlpha, PaletteTopByteUsesTheSameFactor) {
  // a = 127, f = 128: half of 200 in the top byte of every pixel.
  EXPECT_EQ(MixedThroughPalette(32, Words(3, 0), Words(3, 127), TRGBA{100, 0, 0, 200}),
            Words(3, 0x64000032));
}

TEST(DrawMixAlpha, EmptyAreaIsFalseIn32And24BitsOnly) {
  const Table table;
  for (int format : model::kFormats) {
    Picture dst = Filled(format, 2, 2, 0x55), src = Filled(format, 2, 2, 0);
    Picture alpha = Filled(8, 2, 2, 255), back = Filled(format, 2, 2, 1);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), a = Describe(alpha), s = Describe(src), b = Describe(back);
    const bool expected = format != 32 && format != 24;
    for (const CRectangulo& rect : {CRectangulo{2, 0, 5, 2}, CRectangulo{1, 1, 1, 2},
                                    CRectangulo{-4, 0, 0, 2}, CRectangulo{2, 2, 0, 0}}) {
      EXPECT_EQ(DrawMix(d, rect, a, {0, 0}, s, {0, 0}, table.Get()), expected) << format;
      EXPECT_EQ(DrawMix(d, rect, a, {0, 0}, s, {0, 0}, b, {0, 0}, table.Get()), expected);
      EXPECT_TRUE(DrawMix(d, rect, 77, s, {0, 0}, b, {0, 0}, table.Get()));
      if (format != 8) {
        EXPECT_TRUE(DrawMix(d, rect, a, {0, 0}, s, {0, 0}, static_cast<unsigned short>(300)));
      }
      EXPECT_EQ(dst.bytes, before);
    }
  }
}

TEST(DrawMixAlpha, UnsupportedFormatIsFalse) {
  const Table table;
  for (uint32_t bpp : {0u, 4u, 15u, 48u}) {
    Picture dst = Filled(32, 2, 2, 0x12345678), src = Filled(32, 2, 2, 0);
    Picture alpha = Filled(8, 2, 2, 255);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), a = Describe(alpha), s = Describe(src), b = Describe(src);
    d.bpp = bpp;
    EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, table.Get()));
    EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, static_cast<unsigned short>(9)));
    EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, b, {0, 0}, table.Get()));
    EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, 77, s, {0, 0}, b, {0, 0}, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMixScaledAlpha, IndexedDestinationIsFalse) {
  Picture dst = Filled(8, 2, 2, 9), src = Filled(8, 2, 2, 0), alpha = Filled(8, 2, 2, 255);
  const std::vector<uint8_t> before = dst.bytes;
  TSurfDesc d = Describe(dst), a = Describe(alpha), s = Describe(src);
  EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, static_cast<unsigned short>(256)));
  EXPECT_EQ(dst.bytes, before);
}

TEST(DrawMixScaledAlpha, LevelScalesTheAlpha) {
  // 200 at 128 is 100, and the factor is 100, not 101: floor(255 x 100 / 256) = 99.
  EXPECT_EQ(ScaledRow(32, {0}, {200}, {0xFFFFFFFF}, 128), Words{0x63636363});
  EXPECT_EQ(ScaledRow(24, {0}, {200}, {0xFFFFFF}, 128), Words{0x636363});
  // 255 at 128 is 127; at 1 everything scales to 0 and keeps.
  EXPECT_EQ(ScaledRow(32, {0}, {255}, {0xFFFFFFFF}, 128), Words{0x7E7E7E7E});
  EXPECT_EQ(ScaledRow(18, {0xFFFF}, {255}, {0}, 1), Words{0xFFFF});
  // 255 x 257 / 256 = 255: a copy. 255 x 511 / 256 = 509, cut to 253.
  EXPECT_EQ(ScaledRow(32, {0}, {255}, {0xABCDEF12}, 257), Words{0xABCDEF12});
  EXPECT_EQ(ScaledRow(32, {0}, {255}, {0xFFFFFFFF}, 511), Words{0xFCFCFCFC});
  // The level counts with all its 16 bits: 2 x 65535 / 256 = 511, cut to 255.
  EXPECT_EQ(ScaledRow(32, {0}, {2}, {0xABCDEF12}, 65535), Words{0xABCDEF12});
}

TEST(DrawMixScaledAlpha, Level256DiffersFromTheAlphaOverloadByTheFactorOnly) {
  EXPECT_EQ(ScaledRow(32, {0}, {254}, {0xFFFFFFFF}, 256), Words{0xFDFDFDFD});
  EXPECT_EQ(MixedRow(32, {0}, {254}, {0xFFFFFFFF}), Words{0xFEFEFEFE});
  EXPECT_EQ(ScaledRow(32, {0}, {255}, {0xABCDEF12}, 256), Words{0xABCDEF12});
  // In 16 bits nothing differs.
  Random random(3);
  for (int format : kPacked16) {
    for (int alpha_format : {8, 16}) {
      const Picture dst = support::RandomPicture(random, format, 70, 4);
      Placed src = support::PlacedPicture(random, dst, Whole(dst), format);
      Placed alpha = support::PlacedPicture(random, dst, Whole(dst), alpha_format);
      EXPECT_EQ(Scaled(dst, Whole(dst), alpha.picture, alpha.at, src.picture, src.at, 256).bytes,
                Mixed(dst, Whole(dst), alpha.picture, alpha.at, src.picture, src.at).bytes);
    }
  }
}

TEST(DrawMixScaledAlpha, GroupsCopyWhenTheScaledAlphasAre255) {
  EXPECT_EQ(ScaledRow(19, Words(4, 0), Words(4, 255), Words(4, 0xF321), 257), Words(4, 0xF321));
  EXPECT_EQ(ScaledRow(19, Words(4, 0), Words(4, 128), Words(4, 0xF321), 510), Words(4, 0xF321));
  // 254: 3, 2, 1 become 2, 1, 0.
  EXPECT_EQ(ScaledRow(19, Words(4, 0), Words(4, 255), Words(4, 0xF321), 255), Words(4, 0x0210));
  // Two bytes of alpha: 254 scaled, factor 255; and 255 copies one by one.
  EXPECT_EQ(ScaledRow(19, Words(2, 0), {0x00FF, 0xFF00}, Words(2, 0xF321), 255, 16),
            (Words{0x0210, 0}));
  EXPECT_EQ(ScaledRow(19, Words(2, 0), {0x00FF, 0xFF01}, Words(2, 0xF321), 257, 16),
            (Words{0xF321, 0}));
}

// Each pixel says where it stands: row in the second digit, column in the first.
Picture Numbered(int format, int width, int height) {
  Picture p = Filled(format, width, height, 0);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) p.Put(x, y, uint32_t(y * 16 + x));
  }
  return p;
}

TEST(DrawMixScaledAlpha, SourceStartsAtColumnAndRowOfTheY) {
  for (int format : {24, 32}) {
    Picture src = Numbered(format, 8, 8), alpha = Filled(8, 4, 4, 255);
    const Picture dst = Filled(format, 2, 2, 0);
    EXPECT_EQ(Pixels(Scaled(dst, Whole(dst), alpha, {0, 0}, src, {5, 2}, 256)),
              (Words{0x22, 0x23, 0x32, 0x33}));
    // The point does not move with the clipping; the alpha point does.
    alpha.Put(1, 1, 0);
    EXPECT_EQ(Pixels(Scaled(dst, {-1, -1, 2, 2}, alpha, {0, 0}, src, {5, 2}, 256)),
              (Words{0, 0x23, 0x32, 0x33}));
  }
}

TEST(DrawMixScaledAlpha, SourceUsesBothCoordinatesIn16Bits) {
  for (int format : kPacked16) {
    Picture src = Numbered(format, 8, 8), alpha = Filled(8, 4, 4, 255);
    const Picture dst = Filled(format, 2, 2, 0);
    EXPECT_EQ(Pixels(Scaled(dst, Whole(dst), alpha, {0, 0}, src, {5, 2}, 256)),
              (Words{0x25, 0x26, 0x35, 0x36}));
    EXPECT_EQ(Pixels(Scaled(dst, {-1, -1, 2, 2}, alpha, {0, 0}, src, {5, 2}, 256)),
              (Words{0x36, 0x37, 0x46, 0x47}));
  }
}

TEST(DrawMixScaledAlpha, SourceHasThePixelSizeOfTheDestination) {
  // A source that claims 8 bits is read in whole pixels at 24 and 32 bits.
  for (int format : {24, 32}) {
    Picture src = Filled(format, 2, 2, 0x563412), alpha = Filled(8, 2, 2, 255);
    const Picture dst = Filled(format, 2, 2, 0);
    Compared(
        dst, {&src, &alpha},
        [&](Picture& p) {
          return model::DrawMixScaledAlpha(p, Whole(p), alpha, {0, 0}, src, {0, 0}, 256,
                                           lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc a = Describe(alpha), s = Describe(src);
          s.bpp = 8;
          return DrawMix(surface, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0},
                         static_cast<unsigned short>(256));
        });
  }
}

TEST(DrawMixAlpha8Bits, SourceMustHave8Bits) {
  const Table table;
  for (int format : kDirect) {
    Picture dst = Filled(8, 2, 2, 9), src = Filled(format, 2, 2, 0), alpha = Filled(8, 2, 2, 255);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), a = Describe(alpha), s = Describe(src), b = Describe(dst);
    EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, table.Get()));
    EXPECT_FALSE(DrawMix_8Bits(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, table.Get()));
    EXPECT_FALSE(DrawMix_8Bits(d, {2, 2, 0, 0}, a, {0, 0}, s, {0, 0}, table.Get()));
    EXPECT_FALSE(DrawMix(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, b, {0, 0}, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMixAlpha8Bits, DestinationMustHave8Bits) {
  const Table table;
  for (int format : kDirect) {
    Picture dst = Filled(format, 2, 2, 9), src = Filled(8, 2, 2, 0), alpha = Filled(8, 2, 2, 255);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), a = Describe(alpha), s = Describe(src);
    EXPECT_FALSE(DrawMix_8Bits(d, {0, 0, 2, 2}, a, {0, 0}, s, {0, 0}, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMixAlpha8Bits, KeepsCopiesAndMixes) {
  std::array<TRGBA, 256> entries{};
  entries[1] = {10, 20, 30, 0};
  entries[2] = {110, 220, 5, 0};
  const GlobalPalette global(entries);
  const Table table;
  // a = 99, factor 100: blue 49, green 98, red 20.
  const int key = 20 / 8 * 2048 + 98 / 4 * 32 + 49 / 8;
  table.Set(1, key, 7);
  table.Set(0, key, 8);
  Picture src = PictureOf(8, 4, 1, {2, 2, 2, 2}), alpha = PictureOf(8, 4, 1, {0, 255, 99, 99});
  const Picture dst = PictureOf(8, 4, 1, {1, 1, 1, 1});
  EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0}, table.Get())),
            (Words{1, 2, 7, 8}));
}

TEST(DrawMixAlpha8Bits, KernelIsExported) {
  Random random(5);
  const GlobalPalette global(support::RandomEntries(random));
  const Table table(random);
  for (int i = 0; i < 20; ++i) {
    const Picture dst = support::RandomPicture(random, 8, 41 + i, 5);
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    Placed src = support::PlacedPicture(random, dst, rect, 8);
    Placed alpha = support::PlacedPicture(random, dst, rect, 8);
    Compared(
        dst, {&src.picture, &alpha.picture},
        [&](Picture& p) {
          return model::DrawMixAlpha8Bits(p, rect, alpha.picture, alpha.at, src.picture, src.at,
                                          table.Get(), lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc a = Describe(alpha.picture), s = Describe(src.picture);
          return DrawMix_8Bits(surface, rect, a, alpha.at, s, src.at, table.Get());
        });
  }
}

TEST(DrawMixAlpha, PointsOutsideTheirSurfacesDoNotStopIt) {
  for (int format : kDirect) {
    Picture src = Filled(format, 3, 3, 0), alpha = Filled(8, 3, 3, 200);
    const Picture dst = Filled(format, 3, 3, 0x21);
    const Picture inside = Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0});
    EXPECT_NE(inside.bytes, dst.bytes);
    EXPECT_EQ(Mixed(dst, {-5, -7, 3, 3}, alpha, {-5, -7}, src, {-5, -7}).bytes, inside.bytes);
    src.width = src.height = alpha.width = alpha.height = 0;
    EXPECT_EQ(Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0}).bytes, inside.bytes);
  }
}

// Whole groups of 0 and of 255, and single ones, among random bytes.
void SetAlphas(Random& random, Picture& alpha) {
  const int bytes = alpha.BytesPerPixel();
  for (int y = 0; y < alpha.height; ++y) {
    for (int x = 0; x < alpha.width;) {
      const int run = random.OneIn(2) ? 1 : random.Between(1, 20), kind = random.Below(3);
      const uint8_t value = kind == 0 ? 0 : kind == 1 ? 255 : random.Byte();
      for (int i = 0; i < run && x < alpha.width; ++i, ++x) {
        alpha.bytes[size_t(alpha.Index(x, y))] = value;
        if (bytes > 1) alpha.bytes[size_t(alpha.Index(x, y)) + 1] = random.Byte();
      }
    }
  }
}

TEST(DrawMixAlpha, AnyCaseMatchesModel) {
  Random setup(2);
  const GlobalPalette global(support::RandomEntries(setup));
  const Table table(setup);
  support::ForEachCase(7 * support::kWidths * 3, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 7), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    Placed src = support::PlacedSource(random, dst, rect);
    const bool two_bytes = dst.BytesPerPixel() == 2 && random.OneIn(3);
    Placed alpha = support::PlacedPicture(random, dst, rect, two_bytes ? 16 : 8);
    SetAlphas(random, alpha.picture);
    Mixed(dst, rect, alpha.picture, alpha.at, src.picture, src.at,
          format == 8 ? table.Get() : nullptr);
  });
}

TEST(DrawMixScaledAlpha, AnyCaseMatchesModel) {
  Random setup(3);
  const GlobalPalette global(support::RandomEntries(setup));
  support::ForEachCase(6 * support::kWidths * 3, [&](Random& random, int seed) {
    const int format = kDirect[seed % 6];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 6), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    const bool packed16 = dst.BytesPerPixel() == 2;
    Placed src = support::PlacedSource(random, dst, rect);
    if (!packed16) {
      // Column and row are the point's y, from the first visible pixel on.
      const int corner = random.Below(3);
      src.picture = support::RandomPicture(random, format, corner + dst.width, corner + dst.height,
                                           support::AnyOptions(random));
      src.at = {random.Between(-999, 999), corner};
    }
    Placed alpha = support::PlacedPicture(random, dst, rect, packed16 && random.OneIn(3) ? 16 : 8);
    SetAlphas(random, alpha.picture);
    const int level = random.OneIn(3) ? 256 + random.Below(2) : support::AnyLevel(random);
    SCOPED_TRACE("level " + std::to_string(level));
    Scaled(dst, rect, alpha.picture, alpha.at, src.picture, src.at, level);
  });
}

TEST(DrawMixOver, DrawsTheBackgroundThenMixes) {
  // Half of 0x80 over 0x40, and 0x40 alone; then half everywhere.
  Picture back = Filled(32, 2, 1, 0x40404040), src = Filled(32, 2, 1, 0x80808080);
  Picture alpha = PictureOf(8, 2, 1, {127, 0});
  Picture dst = Filled(32, 2, 1, 0xFFFFFFFF);
  TSurfDesc d = Describe(dst), a = Describe(alpha), s = Describe(src), b = Describe(back);
  EXPECT_TRUE(DrawMix(d, {0, 0, 2, 1}, a, {0, 0}, s, {0, 0}, b, {0, 0}, nullptr));
  EXPECT_EQ(Pixels(dst), (Words{0x60606060, 0x40404040}));
  EXPECT_TRUE(DrawMix(d, {0, 0, 2, 1}, 128, s, {0, 0}, b, {0, 0}, nullptr));
  EXPECT_EQ(Pixels(dst), (Words{0x60606060, 0x60606060}));
}

TEST(DrawMixOver, AnyCaseMatchesModel) {
  Random setup(4);
  const GlobalPalette global(support::RandomEntries(setup));
  const Table table(setup);
  support::ForEachCase(7 * support::kWidths, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 7), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    Placed src = support::PlacedSource(random, dst, rect);
    Placed back = support::PlacedSource(random, dst, rect);
    if (random.OneIn(2)) back.picture.key = random.Next() % 65536;
    Placed alpha = support::PlacedPicture(random, dst, rect, 8);
    SetAlphas(random, alpha.picture);
    const int level = support::AnyLevel(random);
    Compared(
        dst, {&src.picture, &alpha.picture, &back.picture},
        [&](Picture& p) {
          return model::DrawMixAlphaOver(p, rect, alpha.picture, alpha.at, src.picture, src.at,
                                         back.picture, back.at, table.Get(), lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc a = Describe(alpha.picture), s = Describe(src.picture);
          TSurfDesc b = Describe(back.picture);
          return DrawMix(surface, rect, a, alpha.at, s, src.at, b, back.at, table.Get());
        });
    Compared(
        dst, {&src.picture, &back.picture},
        [&](Picture& p) {
          return model::DrawMixOver(p, rect, level, src.picture, src.at, back.picture, back.at,
                                    table.Get(), lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc s = Describe(src.picture), b = Describe(back.picture);
          return DrawMix(surface, rect, static_cast<unsigned short>(level), s, src.at, b, back.at,
                         table.Get());
        });
  });
}

// One picture for each alpha: all pairs of bytes.
TEST(DrawMixAlpha, AllAlphasOnAllBytePairs) {
  for (int format : {24, 32}) {
    Picture dst = Filled(format, format == 32 ? 128 : 171, 128, 0), src = dst;
    for (size_t i = 0; i < dst.bytes.size(); ++i) {
      dst.bytes[i] = uint8_t(i);
      src.bytes[i] = uint8_t(i / 256);
    }
    for (uint32_t a = 0; a < 256; ++a) {
      Picture alpha = Filled(8, dst.width, dst.height, a);
      Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0});
      Scaled(dst, Whole(dst), alpha, {0, 0}, src, {0, 0}, 256);
    }
  }
}

// Rows of 64 are groups of four only, rows of 3 have none; with two bytes of alpha, too.
TEST(DrawMixAlpha, AllAlphasOnAllFieldPairs) {
  for (int format : kPacked16) {
    const int values = format == 16 ? 64 : format == 19 ? 16 : 32;
    for (int source_format : {format, 8}) {
      for (int width : {64, 3}) {
        const int height = (values * values + width - 1) / width;
        Picture dst = Filled(format, width, height, 0);
        Picture src = Filled(source_format, width, height, 0);
        src.has_palette = true;
        for (int i = 0; i < 256; ++i) {
          const uint8_t v = uint8_t(i);
          src.palette[size_t(i)] = {v, v, v, v};
        }
        for (int i = 0; i < width * height; ++i) {
          const int d = i % values, s = i / values % values;
          dst.Put(i % width, i / width, model::JoinFields(format, {d, d, d}));
          src.Put(i % width, i / width,
                  source_format == 8 ? uint32_t(s * (256 / values))
                                     : model::JoinFields(format, {s, s, s}));
        }
        for (uint32_t a = 0; a < 256; ++a) {
          Picture alpha = Filled(8, width, height, a), wide = Filled(16, width, height, 0xA500 + a);
          Mixed(dst, Whole(dst), alpha, {0, 0}, src, {0, 0});
          Mixed(dst, Whole(dst), wide, {0, 0}, src, {0, 0});
        }
      }
    }
  }
}

}  // namespace
