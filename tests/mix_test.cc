// DrawMix at one level, and its 8-bit kernel.
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
using support::Random;
using support::Table;
using Words = std::vector<uint32_t>;

constexpr int kDirect[] = {16, 17, 18, 19, 24, 32};
constexpr int kPacked16[] = {16, 17, 18, 19};

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

Picture Mixed(const Picture& dst, const CRectangulo& rect, int level, Picture& src, CPunto at,
              unsigned char (*table)[65536] = nullptr) {
  return Compared(
      dst, {&src},
      [&](Picture& p) { return model::DrawMix(p, rect, level, src, at, table, lu_gPaleta); },
      [&](TSurfDesc& surface) {
        TSurfDesc source = Describe(src);
        return DrawMix(surface, rect, static_cast<unsigned short>(level), source, at, table);
      });
}

Words MixedRow(int format, const Words& d, int level, const Words& s) {
  Picture src = PictureOf(format, int(s.size()), 1, s);
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Mixed(dst, Whole(dst), level, src, {0, 0}));
}

// One row through a palette; index i of the row is entry i.
Words MixedThroughPalette(int format, const Words& d, int level,
                          const std::vector<TRGBA>& entries) {
  Picture src = PictureOf(8, int(entries.size()), 1, {});
  src.has_palette = true;
  for (size_t i = 0; i < entries.size(); ++i) {
    src.Put(int64_t(i), 0, uint32_t(i));
    src.palette[i] = entries[i];
  }
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Mixed(dst, Whole(dst), level, src, {0, 0}));
}

TEST(DrawMix, BytesMixRoundedDown) {
  // 10 + floor(-10 / 256) = 9; 0 + floor(255 x 100 / 256) = 99; the top byte like the others.
  EXPECT_EQ(MixedRow(32, {0x0A0A0A0A}, 1, {0}), Words{0x09090909});
  EXPECT_EQ(MixedRow(32, {0x00FF0080}, 100, {0xFF00FF80}), Words{0x639B6380});
  EXPECT_EQ(MixedRow(24, {0xFF0080}, 100, {0x00FF80}), Words{0x9B6380});
}

TEST(DrawMix, Level0KeepsBytesAndFields) {
  EXPECT_EQ(MixedRow(32, {0x12345678, 0xFFFFFFFF}, 0, {0xFFFFFFFF, 0}),
            (Words{0x12345678, 0xFFFFFFFF}));
  EXPECT_EQ(MixedRow(24, {0x345678, 0xFFFFFF}, 0, {0xFFFFFF, 0}), (Words{0x345678, 0xFFFFFF}));
  const Words d16(7, 0xFFFF), s16(7, 0x0000);
  EXPECT_EQ(MixedRow(16, d16, 0, s16), Words(7, 0xFFFF));
}

TEST(DrawMix, ClearsAlphaBitsOf16BitPixels) {
  for (int level : {0, 1, 64, 100, 128, 192, 254, 256, 300}) {
    for (int format : {17, 18, 19}) {
      const uint32_t alpha_bits = format == 19 ? 0xF000 : 0x8000;
      for (uint32_t word : MixedRow(format, Words(7, 0xFFFF), level, Words(7, 0xFFFF))) {
        EXPECT_EQ(word & alpha_bits, 0u) << format << " at " << level;
      }
    }
  }
  EXPECT_EQ(MixedRow(18, Words(7, 0xFFFF), 0, Words(7, 0)), Words(7, 0x7FFF));
  EXPECT_EQ(MixedRow(17, Words(7, 0xFFFF), 0, Words(7, 0)), Words(7, 0x7FFF));
  EXPECT_EQ(MixedRow(19, Words(7, 0xFFFF), 0, Words(7, 0)), Words(7, 0x0FFF));
}

TEST(DrawMix, Level256KeepsBytesBecauseOnlyItsLowByteCounts) {
  EXPECT_EQ(MixedRow(32, {0x12345678}, 256, {0xFFFFFFFF}), Words{0x12345678});
  EXPECT_EQ(MixedRow(24, {0x345678}, 256, {0xFFFFFF}), Words{0x345678});
  EXPECT_EQ(MixedRow(32, {0x0A0A0A0A}, 257, {0}), Words{0x09090909});
}

TEST(DrawMix, Level256MakesAnIndexedDestinationTheSourceColour) {
  std::array<TRGBA, 256> entries{};
  entries[3] = {0x10, 0x20, 0x40, 0};  // packs to 0x4102
  const GlobalPalette global(entries);
  const Table table;
  table.Set(1, 0x4102, 77);
  table.Set(0, 0x4102, 78);
  Picture src = PictureOf(8, 2, 1, {3, 3});
  const Picture dst = PictureOf(8, 2, 1, {9, 200});
  EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), 256, src, {0, 0}, table.Get())), (Words{77, 78}));
}

TEST(DrawMix, FastLevelsCutEachTermOfABytePixel) {
  EXPECT_EQ(MixedRow(32, {0x000000FF}, 128, {0x00000000}), Words{0x0000007F});
  EXPECT_EQ(MixedRow(32, {0xFF0301FF}, 128, {0x010103FF}), Words{0x7F0101FE});
  // 255/2 + 255/4 = 190, and 63 from the destination
  EXPECT_EQ(MixedRow(32, {0x00FF00FF}, 192, {0x0000FFFF}), Words{0x003FBEFD});
  EXPECT_EQ(MixedRow(32, {0x00FF00FF}, 64, {0x0000FFFF}), Words{0x00BE3FFD});
  EXPECT_EQ(MixedRow(24, {0xFF00FF}, 192, {0x00FFFF}), Words{0x3FBEFD});
  EXPECT_EQ(MixedRow(24, {0xFF00FF}, 64, {0x00FFFF}), Words{0xBE3FFD});
  EXPECT_EQ(MixedRow(24, {0x0301FF}, 128, {0x0103FF}), Words{0x0101FE});
}

TEST(DrawMix, FastLevelsAreComparedAsWhole16BitNumbers) {
  // 320 = 256 + 64: the general formula with 64 keeps 255 of 255 where the fast one gives 253.
  EXPECT_EQ(MixedRow(32, {0xFFFFFFFF}, 64, {0xFFFFFFFF}), Words{0xFDFDFDFD});
  EXPECT_EQ(MixedRow(32, {0xFFFFFFFF}, 320, {0xFFFFFFFF}), Words{0xFFFFFFFF});
  EXPECT_EQ(MixedRow(32, {0xFFFFFFFF}, 384, {0xFFFFFFFF}), Words{0xFFFFFFFF});
  EXPECT_EQ(MixedRow(32, {0xFFFFFFFF}, 448, {0xFFFFFFFF}), Words{0xFFFFFFFF});
  EXPECT_EQ(MixedRow(16, Words(4, 0xFFFF), 320, Words(4, 0xFFFF)), Words(4, 0xFFFF));
}

TEST(DrawMix, GroupsOfFourRoundGreenAndRedOnceAndTheRowEndPerTerm) {
  // All fields 1 on 1. Blue cuts each term everywhere; green and red do so at the row end only.
  EXPECT_EQ(MixedRow(16, Words(6, 0x0821), 128, Words(6, 0x0821)),
            (Words{0x0820, 0x0820, 0x0820, 0x0820, 0, 0}));
  EXPECT_EQ(MixedRow(16, Words(6, 0x0821), 192, Words(6, 0x0821)),
            (Words{0x0820, 0x0820, 0x0820, 0x0820, 0, 0}));
  EXPECT_EQ(MixedRow(16, Words(6, 0x0821), 64, Words(6, 0x0821)),
            (Words{0x0820, 0x0820, 0x0820, 0x0820, 0, 0}));
  // All fields 3: groups give blue 1 + 0 + 0, 3; row ends 1 everywhere.
  EXPECT_EQ(MixedRow(17, Words(5, 0x0C63), 192, Words(5, 0x0C63)),
            (Words{0x0C61, 0x0C61, 0x0C61, 0x0C61, 0x0421}));
  EXPECT_EQ(MixedRow(19, Words(5, 0x0333), 64, Words(5, 0x0333)),
            (Words{0x0331, 0x0331, 0x0331, 0x0331, 0x0111}));
}

TEST(DrawMix, GroupsOfFourAreCountedFromTheClippedRow) {
  // Columns 1 to 6 of the destination: four in a group, two at the end.
  Picture src = Filled(16, 6, 1, 0x0821);
  const Picture dst = Filled(16, 8, 1, 0x0821);
  EXPECT_EQ(Pixels(Mixed(dst, {1, 0, 7, 1}, 128, src, {0, 0})),
            (Words{0x0821, 0x0820, 0x0820, 0x0820, 0x0820, 0, 0, 0x0821}));
}

TEST(DrawMix, RowEndAtLevel128UsesTheQuarterMaskIn555And4444) {
  // Fields of 31 and 31: 15 + 15 = 30 in blue and 31 in green and red; 7 + 7 at the row end.
  for (int format : {17, 18}) {
    EXPECT_EQ(MixedRow(format, Words(6, 0x7FFF), 128, Words(6, 0x7FFF)),
              (Words{0x7FFE, 0x7FFE, 0x7FFE, 0x7FFE, 0x39CE, 0x39CE}));
  }
  EXPECT_EQ(MixedRow(19, Words(6, 0x0FFF), 128, Words(6, 0x0FFF)),
            (Words{0x0FFE, 0x0FFE, 0x0FFE, 0x0FFE, 0x0666, 0x0666}));
  // 565 keeps the half mask: 15 + 15, 31 + 31.
  EXPECT_EQ(MixedRow(16, Words(6, 0xFFFF), 128, Words(6, 0xFFFF)),
            (Words{0xFFFE, 0xFFFE, 0xFFFE, 0xFFFE, 0xF7DE, 0xF7DE}));
}

TEST(DrawMix, PaletteSourceAtLevel128UsesTheHalfMaskEverywhere) {
  const std::vector<TRGBA> white(6, TRGBA{255, 255, 255, 255});
  EXPECT_EQ(MixedThroughPalette(17, Words(6, 0x7FFF), 128, white), Words(6, 0x7BDE));
  EXPECT_EQ(MixedThroughPalette(19, Words(6, 0x0FFF), 128, white), Words(6, 0x0EEE));
  EXPECT_EQ(MixedThroughPalette(16, Words(6, 0xFFFF), 128, white), Words(6, 0xF7DE));
}

TEST(DrawMix, FirstGroupIsCopiedAtLevel255) {
  // Nine pixels: a copied group with its alpha bits, a mixed group, one row end. Fields 3, 2, 1 on
  // 0: floor(3 x 255 / 256) = 2, then 1, then 0.
  EXPECT_EQ(MixedRow(19, Words(9, 0), 255, Words(9, 0xF123)),
            (Words{0xF123, 0xF123, 0xF123, 0xF123, 0x0012, 0x0012, 0x0012, 0x0012, 0x0012}));
  EXPECT_EQ(MixedRow(18, Words(5, 0), 255, Words(5, 0xFFFF)),
            (Words{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0x7BDE}));
  EXPECT_EQ(MixedRow(16, Words(5, 0), 255, Words(5, 0xFFFF)),
            (Words{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xF7DE}));
  // A row without a group copies nothing.
  EXPECT_EQ(MixedRow(16, Words(3, 0), 255, Words(3, 0xFFFF)), Words(3, 0xF7DE));
}

TEST(DrawMix, FirstGroupIsCopiedInEveryRow) {
  Picture src = Filled(16, 5, 3, 0xFFFF);
  const Picture dst = Filled(16, 5, 3, 0);
  const Words row{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xF7DE};
  Words rows;
  for (int y = 0; y < 3; ++y) rows.insert(rows.end(), row.begin(), row.end());
  EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), 255, src, {0, 0})), rows);
}

TEST(DrawMix, FirstGroupIsCopiedAtEveryLevelWhoseLowByteIs255) {
  // 511 at the row end: 31 x 511 >> 8 = 61, cut to 29; 63 x 511 >> 8 = 125, cut to 61.
  EXPECT_EQ(MixedRow(16, Words(5, 0), 511, Words(5, 0xFFFF)),
            (Words{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xEFBD}));
  EXPECT_EQ(MixedRow(19, Words(4, 0), 65535, Words(4, 0xF123)), Words(4, 0xF123));
}

TEST(DrawMix, PaletteSourceHasNoFirstGroup) {
  // Level 255: s + floor((d - s) x 0 / 256) = s, without alpha bits.
  EXPECT_EQ(MixedThroughPalette(18, Words(6, 0xFFFF), 255,
                                std::vector<TRGBA>(6, TRGBA{0x18, 0x10, 0x08, 0xFF})),
            Words(6, 0x0443));
}

TEST(DrawMix, RowEndUsesTheFullLevelInSigned16BitProducts) {
  // Level 256: the groups keep, the row end takes the source.
  EXPECT_EQ(MixedRow(16, Words(5, 0), 256, Words(5, 0xFFFF)), (Words{0, 0, 0, 0, 0xFFFF}));
  EXPECT_EQ(MixedRow(19, Words(5, 0xF321), 256, Words(5, 0xF456)),
            (Words{0x0321, 0x0321, 0x0321, 0x0321, 0x0456}));
  // Level 40000: 31 x 40000 leaves -5184 in 16 bits, >> 8 = -21, cut to 11.
  // 63 x 40000 leaves 29632, >> 8 = 115, cut to 51.
  EXPECT_EQ(MixedRow(16, {0}, 40000, {0xFFFF}), Words{11u << 11 | 51u << 5 | 11u});
  // Level 32768: 1 x 32768 = -32768, >> 8 = -128: both fields end where they began.
  EXPECT_EQ(MixedRow(16, {0x0821}, 32768, {0x1042}), Words{0x0821});
  // Level 300: 10 + ((20 - 10) x 300 >> 8) = 21
  EXPECT_EQ(MixedRow(19, {0x0005}, 300, {0x000A}), Words{0x000A});
  EXPECT_EQ(MixedRow(17, {0x000A}, 300, {0x0014}), Words{0x0015});
}

TEST(DrawMix, PaletteSourceRoundsTheOtherWay) {
  // Level 0, 0 on 16: 16 from pixels, 0 + floor(16 x 255 / 256) = 15 through a palette.
  EXPECT_EQ(MixedRow(17, {0x0010}, 0, {0}), Words{0x0010});
  EXPECT_EQ(MixedThroughPalette(17, {0x0010}, 0, {TRGBA{0, 0, 0, 0}}), Words{0x000F});
  // Level 255, 20 on 10: 10 + floor(10 x 255 / 256) = 19; 20 + floor(-10 x 0 / 256) = 20.
  EXPECT_EQ(MixedRow(17, {0x000A}, 255, {0x0014}), Words{0x0013});
  EXPECT_EQ(MixedThroughPalette(17, {0x000A}, 255, {TRGBA{0xA0, 0, 0, 0}}), Words{0x0014});
}

TEST(DrawMix, PaletteSourceUsesTheFullLevelXor255) {
  // Level 300: 300 XOR 255 = 467; 20 + floor((10 - 20) x 467 / 256) = 20 - 19 = 1.
  EXPECT_EQ(MixedThroughPalette(17, {0x000A}, 300, {TRGBA{0xA0, 0, 0, 0}}), Words{0x0001});
}

TEST(DrawMix, PaletteColoursAreCutToTheFields) {
  const std::vector<TRGBA> entry{TRGBA{0x5F, 0xA7, 0xEF, 0xFF}};
  EXPECT_EQ(MixedThroughPalette(16, {0}, 255, entry), Words{29u << 11 | 41u << 5 | 11u});
  EXPECT_EQ(MixedThroughPalette(17, {0}, 255, entry), Words{29u << 10 | 20u << 5 | 11u});
  EXPECT_EQ(MixedThroughPalette(19, {0}, 255, entry), Words{0x0EA5});
}

TEST(DrawMix, PaletteTopByteMixesWithThePreviousPixelsBlue) {
  // Level 255: blue becomes floor(100 x 255 / 256) = 99. The first fourth byte is kept (factor 0),
  // the next ones take 99/256 of 100: 100 + 38.
  const std::vector<TRGBA> entries(3, TRGBA{100, 0, 0, 200});
  EXPECT_EQ(MixedThroughPalette(32, Words(3, 0x64000000), 255, entries),
            (Words{0x64000063, 0x8A000063, 0x8A000063}));
}

TEST(DrawMix, PaletteTopByteStartsAfreshInEveryRow) {
  Picture src = Filled(8, 2, 2, 0);
  src.has_palette = true;
  src.palette[0] = {100, 0, 0, 200};
  const Picture dst = Filled(32, 2, 2, 0x64000000);
  EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), 255, src, {0, 0})),
            (Words{0x64000063, 0x8A000063, 0x64000063, 0x8A000063}));
}

TEST(DrawMix, PaletteTopByteOfTheFastLevelsLeavesOneSideOut) {
  const std::vector<TRGBA> entries(1, TRGBA{255, 255, 255, 200});
  EXPECT_EQ(MixedThroughPalette(32, {0x64FFFFFF}, 192, entries), Words{0x96FDFDFD});  // 100 + 50
  EXPECT_EQ(MixedThroughPalette(32, {0x64FFFFFF}, 128, entries), Words{0x96FEFEFE});  // 100 + 50
  EXPECT_EQ(MixedThroughPalette(32, {0x64FFFFFF}, 64, entries), Words{0x4BFDFDFD});   // 50 + 25
}

TEST(DrawMix, IgnoresTheColourKey) {
  for (int format : kDirect) {
    Picture src = Filled(format, 5, 1, 0);
    const Picture dst = Filled(format, 5, 1, 0x21);
    const Words without = Pixels(Mixed(dst, Whole(dst), 200, src, {0, 0}));
    src.key = 0;
    EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), 200, src, {0, 0})), without);
    EXPECT_NE(without, Pixels(dst));
  }
}

TEST(DrawMix, CheckerboardStartsWithPlane1) {
  const GlobalPalette global({});
  const Table table;
  table.Set(0, 0, 50);
  table.Set(1, 0, 51);
  Picture src = Filled(8, 3, 2, 0);
  const Picture dst = Filled(8, 4, 3, 0);
  // The phase is that of the destination's own columns and rows.
  EXPECT_EQ(Pixels(Mixed(dst, {0, 0, 3, 2}, 99, src, {0, 0}, table.Get())),
            (Words{51, 50, 51, 0, 50, 51, 50, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Pixels(Mixed(dst, {1, 1, 4, 3}, 99, src, {0, 0}, table.Get())),
            (Words{0, 0, 0, 0, 0, 51, 50, 51, 0, 50, 51, 50}));
}

TEST(DrawMix, IndexedMixUsesTheGlobalPaletteAndTheFullLevel) {
  std::array<TRGBA, 256> entries{};
  entries[1] = {10, 20, 30, 0};
  entries[2] = {110, 220, 5, 0};
  const GlobalPalette global(entries);
  const Table table;
  // Level 100: blue 10 + 39 = 49, green 20 + 78 = 98, red 30 + floor(-9.8) = 20.
  table.Set(1, 20 / 8 * 2048 + 98 / 4 * 32 + 49 / 8, 7);
  // Level 600: blue 10 + 234 = 244, green 20 + 468 = 232 above 256, red 30 - 59 = 227 below 0.
  table.Set(0, 227 / 8 * 2048 + 232 / 4 * 32 + 244 / 8, 8);
  Picture src = PictureOf(8, 1, 1, {2});
  src.has_palette = true;  // not looked at
  Picture dst = PictureOf(8, 2, 1, {1, 1});
  dst.has_palette = true;
  EXPECT_EQ(Pixels(Mixed(dst, {0, 0, 1, 1}, 100, src, {0, 0}, table.Get())), (Words{7, 1}));
  EXPECT_EQ(Pixels(Mixed(dst, {1, 0, 2, 1}, 600, src, {0, 0}, table.Get())), (Words{1, 8}));
}

TEST(DrawMix, IndexedMixReadsAnySourceBytewise) {
  const GlobalPalette global({});
  const Table table;
  table.Set(0, 0, 50);
  table.Set(1, 0, 51);
  Picture src = Filled(32, 1, 1, 0);
  const Picture dst = Filled(8, 4, 1, 0);
  EXPECT_EQ(Pixels(Mixed(dst, Whole(dst), 99, src, {0, 0}, table.Get())), (Words{51, 50, 51, 50}));
}

TEST(DrawMix, KernelOf8BitsIsExported) {
  Random random(5);
  const GlobalPalette global(support::RandomEntries(random));
  const Table table(random);
  for (int level : {0, 64, 128, 192, 255, 256, 1000, 65535}) {
    const Picture dst = support::RandomPicture(random, 8, 41, 5);
    support::Placed src = support::PlacedPicture(random, dst, {3, -1, 50, 4}, 8);
    Compared(
        dst, {&src.picture},
        [&](Picture& p) {
          return model::DrawMix8Bits(p, {3, -1, 50, 4}, level, src.picture, src.at, table.Get(),
                                     lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc source = Describe(src.picture);
          return DrawMix_8Bits(surface, {3, -1, 50, 4}, static_cast<unsigned short>(level), source,
                               src.at, table.Get());
        });
  }
}

TEST(DrawMix, KernelOf8BitsNeedsADestinationOf8Bits) {
  const Table table;
  for (int format : kDirect) {
    Picture dst = Filled(format, 2, 2, 9), src = Filled(8, 2, 2, 0);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), s = Describe(src);
    EXPECT_FALSE(DrawMix_8Bits(d, {0, 0, 2, 2}, 99, s, {0, 0}, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMix, EmptyAreaIsTrue) {
  const Table table;
  for (int format : model::kFormats) {
    Picture src = Filled(format, 2, 2, 0);
    const Picture dst = Filled(format, 2, 2, 0x55);
    for (int level : {64, 128, 192, 255, 7}) {
      for (const CRectangulo& rect : {CRectangulo{2, 0, 5, 2}, CRectangulo{1, 1, 1, 2},
                                      CRectangulo{-4, 0, 0, 2}, CRectangulo{2, 2, 0, 0}}) {
        Picture p = dst;
        TSurfDesc surface = Describe(p), source = Describe(src);
        EXPECT_TRUE(DrawMix(surface, rect, static_cast<unsigned short>(level), source, {0, 0},
                            table.Get()));
        EXPECT_EQ(p.bytes, dst.bytes);
      }
    }
  }
}

TEST(DrawMix, UnsupportedFormatIsFalse) {
  const Table table;
  for (uint32_t bpp : {0u, 1u, 4u, 15u, 48u, 64u}) {
    for (int level : {64, 128, 192, 200}) {
      Picture dst = Filled(32, 4, 4, 0x12345678), src = Filled(32, 4, 4, 0);
      const std::vector<uint8_t> before = dst.bytes;
      TSurfDesc surface = Describe(dst), source = Describe(src);
      surface.bpp = bpp;
      EXPECT_FALSE(DrawMix(surface, {0, 0, 4, 4}, static_cast<unsigned short>(level), source,
                           {0, 0}, table.Get()));
      EXPECT_EQ(dst.bytes, before);
    }
  }
}

TEST(DrawMix, PointOutsideTheSourceDoesNotStopIt) {
  // A rectangle that starts left of the destination needs a point left of the source; and a source
  // that claims no size at all is read all the same.
  for (int format : kDirect) {
    Picture src = Filled(format, 3, 3, 0);
    const Picture dst = Filled(format, 3, 3, 0x21);
    const Picture inside = Mixed(dst, Whole(dst), 200, src, {0, 0});
    EXPECT_NE(inside.bytes, dst.bytes);
    EXPECT_EQ(Mixed(dst, {-5, -7, 3, 3}, 200, src, {-5, -7}).bytes, inside.bytes);
    src.width = src.height = 0;
    EXPECT_EQ(Mixed(dst, Whole(dst), 200, src, {0, 0}).bytes, inside.bytes);
  }
}

TEST(DrawMix, SourceMayBeTheDestination) {
  Random random(11);
  for (int format : kDirect) {
    for (int level : {64, 128, 192, 255, 77}) {
      const Picture dst = support::RandomPicture(random, format, 39, 4);
      const Picture src = dst;
      Compared(
          dst, {},
          [&](Picture& p) {
            return model::DrawMix(p, {2, 1, 37, 4}, level, src, {2, 1}, nullptr, lu_gPaleta);
          },
          [&](TSurfDesc& surface) {
            return DrawMix(surface, {2, 1, 37, 4}, static_cast<unsigned short>(level), surface,
                           {2, 1}, nullptr);
          });
    }
  }
}

TEST(DrawMix, AnyCaseMatchesModel) {
  Random setup(1);
  const GlobalPalette global(support::RandomEntries(setup));
  const Table table(setup);
  support::ForEachCase(7 * support::kWidths * 4, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 7), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    support::Placed src = support::PlacedSource(random, dst, rect);
    const int level = support::AnyLevel(random);
    SCOPED_TRACE("level " + std::to_string(level) + ", source " +
                 std::to_string(src.picture.format));
    Mixed(dst, rect, level, src.picture, src.at, format == 8 ? table.Get() : nullptr);
  });
}

// Every pair of field values, the pixels in rows of `width`.
struct Pairs {
  Picture dst, src;
};
Pairs FieldPairs(int format, int width, int source_format) {
  const int values = format == 16 ? 64 : format == 19 ? 16 : 32;
  const int height = (values * values + width - 1) / width;
  Pairs pairs = {Filled(format, width, height, 0), Filled(source_format, width, height, 0)};
  for (int i = 0; i < width * height; ++i) {
    const int d = i % values, s = i / values % values;
    const uint32_t alpha = uint32_t(i * 7 % 16) << 12;
    const auto word = [&](int value) {
      return model::JoinFields(format, {value, value, value}) | (format == 19 ? alpha : 0);
    };
    pairs.dst.Put(i % width, i / width, word(d));
    pairs.src.Put(i % width, i / width,
                  source_format == 8 ? uint32_t(s * (256 / values)) : word(s));
  }
  pairs.src.has_palette = true;
  for (int i = 0; i < 256; ++i) {
    const uint8_t v = uint8_t(i);
    pairs.src.palette[size_t(i)] = {v, v, v, v};
  }
  return pairs;
}

std::vector<int> ManyLevels(int end) {
  std::vector<int> levels;
  for (int level = 0; level < end; ++level) levels.push_back(level);
  for (int level : {512, 767, 896, 1000, 4095, 16384, 32703, 32767, 32768, 32769, 40000, 49151,
                    65280, 65344, 65408, 65472, 65535}) {
    levels.push_back(level);
  }
  return levels;
}

// Rows of 64 are groups of four only; rows of 3 have none.
TEST(DrawMix, AllFieldPairsAtAllLevelsInGroups) {
  for (int format : kPacked16) {
    Pairs pairs = FieldPairs(format, 64, format);
    for (int level : ManyLevels(512)) Mixed(pairs.dst, Whole(pairs.dst), level, pairs.src, {0, 0});
  }
}

TEST(DrawMix, AllFieldPairsAtAllLevelsAtRowEnds) {
  for (int format : kPacked16) {
    Pairs pairs = FieldPairs(format, 3, format);
    for (int level : ManyLevels(512)) Mixed(pairs.dst, Whole(pairs.dst), level, pairs.src, {0, 0});
  }
}

TEST(DrawMix, AllFieldPairsAtAllLevelsThroughAPalette) {
  for (int format : kPacked16) {
    Pairs pairs = FieldPairs(format, 67, 8);
    for (int level : ManyLevels(512)) Mixed(pairs.dst, Whole(pairs.dst), level, pairs.src, {0, 0});
  }
}

TEST(DrawMix, AllBytePairsAtAllLevels) {
  for (int format : {24, 32}) {
    Picture dst = Filled(format, format == 32 ? 128 : 171, 128, 0), src = dst;
    for (size_t i = 0; i < dst.bytes.size(); ++i) {
      dst.bytes[i] = uint8_t(i);
      src.bytes[i] = uint8_t(i / 256);
    }
    for (int level : ManyLevels(258)) Mixed(dst, Whole(dst), level, src, {0, 0});
  }
}

}  // namespace
