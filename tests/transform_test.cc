// Mirroring, quarter turns, the reversed copy and the brightness shift.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/draw_model.h"
#include "tests/model/transform_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/mixing.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::Filled;
using support::PictureOf;
using support::Pixels;
using support::Random;
using Words = std::vector<uint32_t>;

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

Picture Flipped(const Picture& p) {
  return support::Compared(
      p, {},
      [](Picture& copy) {
        model::FlipX(copy);
        return true;
      },
      [](TSurfDesc& surface) { return FlipX(surface); });
}

Picture Turned(const Picture& dst, Picture src, int mode) {
  return support::Compared(
      dst, {&src},
      [&](Picture& p) {
        model::CreateRotated(p, src, mode, lu_gPaleta);
        return true;
      },
      [&](TSurfDesc& d) {
        TSurfDesc s = Describe(src);
        return CreateRotated(d, s, mode);
      });
}

Picture Shifted(const Picture& p, const CRectangulo& rect, float amount, const uint8_t* table) {
  return support::Compared(
      p, {},
      [&](Picture& copy) {
        model::TranslateRect(copy, rect, amount, table);
        return true;
      },
      [&](TSurfDesc& surface) { return TranslateRect(surface, rect, amount, table); });
}

Words ShiftedWords(int format, const Words& pixels, float amount) {
  const Picture p = PictureOf(format, int(pixels.size()), 1, pixels);
  return Pixels(Shifted(p, Whole(p), amount, nullptr));
}

TEST(FlipX, OddAndEvenRows) {
  for (int format : model::kFormats) {
    EXPECT_EQ(Pixels(Flipped(PictureOf(format, 3, 2, {1, 2, 3, 4, 5, 6}))),
              (Words{3, 2, 1, 6, 5, 4}));
    EXPECT_EQ(Pixels(Flipped(PictureOf(format, 4, 1, {1, 2, 3, 4}))), (Words{4, 3, 2, 1}));
  }
}

TEST(FlipX, MovesWholePixels) {
  EXPECT_EQ(Pixels(Flipped(PictureOf(32, 2, 1, {0x11223344, 0x55667788}))),
            (Words{0x55667788, 0x11223344}));
  EXPECT_EQ(Pixels(Flipped(PictureOf(24, 2, 1, {0x112233, 0x556677}))),
            (Words{0x556677, 0x112233}));
  EXPECT_EQ(Pixels(Flipped(PictureOf(19, 2, 1, {0x1122, 0x5566}))), (Words{0x5566, 0x1122}));
}

TEST(FlipX, WidthsBelow2ChangeNothing) {
  for (int format : model::kFormats) {
    for (int width : {1, 0, -1, -5}) {
      Picture p = Filled(format, 4, 3, 7);
      p.width = width;
      const Picture before = p;
      TSurfDesc surface = Describe(p);
      EXPECT_TRUE(FlipX(surface));
      EXPECT_TRUE(support::Same(before, p, surface));
    }
  }
}

TEST(FlipX, UnsupportedDepthIsFalse) {
  for (uint32_t bpp : {0u, 4u, 15u, 48u}) {
    Picture p = PictureOf(32, 3, 1, {1, 2, 3});
    TSurfDesc surface = Describe(p);
    surface.bpp = bpp;
    EXPECT_FALSE(FlipX(surface));
    EXPECT_EQ(Pixels(p), (Words{1, 2, 3}));
  }
}

TEST(FlipX, AnySurfaceMatchesModelAndTwiceIsTheIdentity) {
  support::ForEachCase(7 * support::kWidths * 2, [&](Random& random, int seed) {
    const Picture before =
        support::RandomPicture(random, model::kFormats[seed % 7], support::WidthOf(seed / 7),
                               random.Between(0, 4), support::AnyOptions(random));
    EXPECT_EQ(Flipped(Flipped(before)).bytes, before.bytes);
  });
}

TEST(CreateRotated, Mode1TurnsCounterClockwise) {
  for (int format : model::kFormats) {
    const Picture src = PictureOf(format, 2, 3,
                                  {1, 2,  //
                                   3, 4,  //
                                   5, 6});
    EXPECT_EQ(Pixels(Turned(Filled(format, 3, 2, 0), src, 1)), (Words{2, 4, 6, 1, 3, 5}));
  }
}

TEST(CreateRotated, Mode3TurnsClockwise) {
  for (int format : model::kFormats) {
    const Picture src = PictureOf(format, 2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Pixels(Turned(Filled(format, 3, 2, 0), src, 3)), (Words{5, 3, 1, 6, 4, 2}));
  }
}

TEST(CreateRotated, Bit2MirrorsTurnsTopToBottom) {
  for (int format : model::kFormats) {
    const Picture src = PictureOf(format, 2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Pixels(Turned(Filled(format, 3, 2, 0), src, 5)), (Words{1, 3, 5, 2, 4, 6}));
    EXPECT_EQ(Pixels(Turned(Filled(format, 3, 2, 0), src, 7)), (Words{6, 4, 2, 5, 3, 1}));
  }
}

TEST(CreateRotated, Mode0IsDrawBitmapWithItsKey) {
  Picture src = PictureOf(16, 3, 1, {1, 2, 3});
  src.key = 2;
  EXPECT_EQ(Pixels(Turned(Filled(16, 3, 1, 9), src, 0)), (Words{1, 9, 3}));
  EXPECT_EQ(Pixels(Turned(Filled(16, 3, 1, 9), src, 4)), (Words{3, 9, 1}));
}

TEST(CreateRotated, Mode0ConvertsPaletteSourcesAndTakesNoOthers) {
  Picture src = PictureOf(8, 2, 1, {5, 6});
  src.has_palette = true;
  src.palette[5] = {1, 2, 3, 4};
  src.palette[6] = {5, 6, 7, 8};
  EXPECT_EQ(Pixels(Turned(Filled(32, 2, 1, 9), src, 4)), (Words{0x08070605, 0x04030201}));
  EXPECT_EQ(Pixels(Turned(Filled(32, 2, 1, 9), PictureOf(24, 2, 1, {5, 6}), 0)), (Words{9, 9}));
}

TEST(CreateRotated, TurnsDoNotLookAtTheKey) {
  Picture src = PictureOf(16, 1, 3, {1, 2, 3});
  src.key = 2;
  EXPECT_EQ(Pixels(Turned(Filled(16, 3, 1, 9), src, 1)), (Words{1, 2, 3}));
}

TEST(CreateRotated, Mode0OfOpaque24BitRowsLeavesTheirLastThird) {
  const Picture src = PictureOf(24, 3, 1, {0x030201, 0x060504, 0x090807});
  EXPECT_EQ(Pixels(Turned(Filled(24, 3, 1, 0xEEEEEE), src, 0)),
            (Words{0x030201, 0x060504, 0xEEEEEE}));
  EXPECT_EQ(Pixels(Turned(Filled(24, 3, 1, 0xEEEEEE), src, 4)),
            (Words{0xEEEEEE, 0x060504, 0x030201}));
}

TEST(CreateRotated, HigherBitsOfTheModeDoNotCount) {
  const Picture src = PictureOf(8, 2, 2, {1, 2, 3, 4});
  for (int mode = 0; mode < 8; ++mode) {
    if ((mode & 3) == 2) continue;
    const Picture dst = Filled(8, 2, 2, 0);
    EXPECT_EQ(Pixels(Turned(dst, src, mode)), Pixels(Turned(dst, src, mode + 8)));
    EXPECT_EQ(Pixels(Turned(dst, src, mode)), Pixels(Turned(dst, src, mode - 1024)));
  }
}

// The source's first pixel is the last of a block.
Picture LastPixelOf(Picture p) {
  p.origin = p.Index(p.width - 1, p.height - 1);
  p.width = p.height = 1;
  return p;
}

TEST(CreateRotated, Mode2WalksBackFromTheFirstPixel) {
  for (int format : {8, 24, 32}) {
    const Picture src = LastPixelOf(PictureOf(format, 4, 1, {1, 2, 3, 4}));
    EXPECT_EQ(Pixels(Turned(Filled(format, 4, 1, 9), src, 2)), (Words{4, 3, 2, 9}));
    EXPECT_EQ(Pixels(Turned(Filled(format, 4, 1, 9), src, 6)), (Words{9, 2, 3, 4}));
  }
}

TEST(CreateRotated, Mode2Swaps16BitBytesAndFillsTheLastPixel) {
  for (int format : {16, 17, 18, 19}) {
    const Picture src = LastPixelOf(PictureOf(format, 4, 1, {0x0102, 0x0304, 0x0506, 0x0708}));
    EXPECT_EQ(Pixels(Turned(Filled(format, 4, 1, 9), src, 2)),
              (Words{0x0807, 0x0605, 0x0403, 0x0201}));
    EXPECT_EQ(Pixels(Turned(Filled(format, 1, 1, 9), src, 2)), (Words{9}));
  }
}

TEST(CreateRotated, Mode2FillsPaddingToo) {
  Picture dst = Filled(8, 5, 2, 9);
  dst.width = 3;  // two bytes of padding
  Picture src = LastPixelOf(PictureOf(8, 10, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(Turned(dst, src, 2).bytes, (std::vector<uint8_t>{10, 9, 8, 7, 6, 5, 4, 9, 9, 9}));
}

TEST(CreateRotated, UnsupportedDepthIsFalse) {
  for (int mode = 0; mode < 8; ++mode) {
    Picture dst = Filled(32, 2, 2, 7), src = Filled(32, 2, 2, 9);
    TSurfDesc d = Describe(dst), s = Describe(src);
    d.bpp = s.bpp = 15;
    EXPECT_FALSE(CreateRotated(d, s, mode));
    EXPECT_EQ(Pixels(dst), Words(4, 7));
  }
}

TEST(CreateRotated, WhatDoesNotFitIsLeftOut) {
  const Picture src = PictureOf(16, 2, 3, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(Pixels(Turned(Filled(16, 4, 3, 0), src, 1)),
            (Words{2, 4, 6, 0, 1, 3, 5, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Pixels(Turned(Filled(16, 2, 1, 0), src, 1)), (Words{2, 4}));
  EXPECT_EQ(Pixels(Turned(Filled(16, 2, 1, 0), src, 3)), (Words{5, 3}));
  for (int format : model::kFormats) {
    for (int mode : {1, 3, 5, 7}) {
      Random random(uint64_t(mode + 100 * format));
      const Picture large = support::RandomPicture(random, format, 40, 30);
      const Picture small = support::RandomPicture(random, format, 9, 11);
      Turned(large, small, mode);
      Turned(small, large, mode);
    }
  }
}

TEST(CreateRotated, AnyTurnMatchesModel) {
  support::ForEachCase(7 * support::kWidths * 3, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int width = support::WidthOf(seed / 7);
    const int height = random.OneIn(4) ? random.Between(1, 80) : random.Between(1, 20);
    const bool turn = random.OneIn(2);
    const Picture dst = support::RandomPicture(random, format, turn ? height : width,
                                               turn ? width : height, support::AnyOptions(random));
    const int mode = random.Below(8);
    Picture src =
        support::RandomPicture(random, format, mode & 1 ? dst.height : dst.width,
                               mode & 1 ? dst.width : dst.height, support::AnyOptions(random));
    if (random.OneIn(3)) support::PlantKey(random, src, 0x1234, format == 8 ? 0 : 0x1234);
    if ((mode & 3) == 2) {
      // Room for the memory in front of the first pixel, and for padding of the destination.
      const int room = std::abs(dst.pitch) * dst.height + 8;
      src = support::RandomPicture(random, format, room / src.BytesPerPixel() + 1, 1);
      src = LastPixelOf(src);
    }
    Turned(dst, src, mode);
  });
}

TEST(CreateRotated, FourTurnsAreTheIdentity) {
  support::ForEachCase(70, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int width = random.Between(1, 70), height = random.Between(1, 70);
    Picture upright = support::RandomPicture(random, format, width, height);
    Picture turned = support::RandomPicture(random, format, height, width);
    Picture back = support::RandomPicture(random, format, width, height);
    TSurfDesc u = Describe(upright), t = Describe(turned), b = Describe(back);
    EXPECT_TRUE(CreateRotated(t, u, 1));
    EXPECT_TRUE(CreateRotated(b, t, 3));
    EXPECT_EQ(Pixels(upright), Pixels(back));
  });
}

TEST(CreateRotated, LargeSurfacesMatchModel) {
  Random random(5);
  for (int format : model::kFormats) {
    for (int mode : {1, 3, 5, 7}) {
      const Picture src = support::RandomPicture(random, format, 333, 517);
      Turned(support::RandomPicture(random, format, 517, 333), src, mode);
    }
  }
}

TEST(TranslateRect, AmountsOfTheWorkedExample) {
  const Words pixels{0x00000000, 0x01FE7F80, 0xFFFFFFFF, 0xFE00FF01};
  EXPECT_EQ(ShiftedWords(32, pixels, 0.5f), pixels);
  EXPECT_EQ(ShiftedWords(32, pixels, 1.0f), Words(4, 0xFFFFFFFF));
  EXPECT_EQ(ShiftedWords(32, pixels, 0.0f), (Words{0, 0, 0x01010101, 0x00000100}));
  EXPECT_EQ(ShiftedWords(24, {0x01FE7F, 0xFFFFFF}, 0.5f), (Words{0x01FE7F, 0xFFFFFF}));
  EXPECT_EQ(ShiftedWords(24, {0x01FE7F, 0xFFFFFF}, 1.0f), (Words{0xFFFFFF, 0xFFFFFF}));
  EXPECT_EQ(ShiftedWords(24, {0x01FE7F, 0xFFFFFF}, 0.0f), (Words{0, 0x010101}));
}

TEST(TranslateRect, NegativeShiftIsOneStepWeaker) {
  // 0.75 x 510 - 255 = 127.5: 127; 0.25 gives -127, of which 126 is subtracted.
  EXPECT_EQ(ShiftedWords(32, {0x40404040}, 0.75f), (Words{0xBFBFBFBF}));
  EXPECT_EQ(ShiftedWords(32, {0x80808080}, 0.25f), (Words{0x02020202}));
  // A shift by -1 leaves everything as it is.
  const float minus_one = float((255 - 1.5) / 510);
  EXPECT_EQ(ShiftedWords(24, {0x80FF00}, minus_one), (Words{0x80FF00}));
}

TEST(TranslateRect, AmountIsNotRoundedOnTheWay) {
  // 0.7f is a little less than 0.7: 101.999994.
  EXPECT_EQ(ShiftedWords(24, {0}, 0.7f), (Words{0x656565}));
}

TEST(TranslateRect, BytePixelsTakeTheLowByteOfTheShift) {
  // 1.5 x 510 - 255 = 510, whose low byte is 254; -0.5 gives -510, low byte 2: 253 is subtracted.
  EXPECT_EQ(ShiftedWords(24, {0x000001}, 1.5f), (Words{0xFEFEFF}));
  EXPECT_EQ(ShiftedWords(24, {0xFFFE00}, -0.5f), (Words{0x020100}));
  // 256 adds nothing, -256 takes 255.
  EXPECT_EQ(ShiftedWords(24, {0x80FF00}, float(511.5 / 510)), (Words{0x80FF00}));
  EXPECT_EQ(ShiftedWords(24, {0x80FF00}, float(-1.5 / 510)), (Words{0}));
}

TEST(TranslateRect, Greens565LowestBitIsCleared) {
  EXPECT_EQ(ShiftedWords(16, {0xFFFF, 0x0020, 0x1234, 0x07E0}, 0.5f),
            (Words{0xFFDF, 0x0000, 0x1214, 0x07C0}));
}

TEST(TranslateRect, FieldsOf555And4444) {
  // 0.75 x 62 - 31 = 15.5: 15 is added.
  EXPECT_EQ(ShiftedWords(17, {0x0000, 0x7FFF, 0x0421}, 0.75f), (Words{0x3DEF, 0x7FFF, 0x4210}));
  EXPECT_EQ(ShiftedWords(17, {0x0000, 0x7FFF, 0x4210}, 0.25f), (Words{0x0000, 0x4210, 0x0421}));
  // 4444: (2 x 5 + 15) / 2 = 12; (2 x 12 - 15) / 2 = 4.
  EXPECT_EQ(ShiftedWords(19, {0x0555}, 0.75f), (Words{0x0CCC}));
  EXPECT_EQ(ShiftedWords(19, {0x0CCC, 0x0777}, 0.25f), (Words{0x0444, 0x0000}));
  EXPECT_EQ(ShiftedWords(19, {0x0FFF, 0x0123}, 0.5f), (Words{0x0FFF, 0x0123}));
}

TEST(TranslateRect, AlphaBitsAreKept) {
  for (float amount : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
    for (int format : {17, 18}) {
      const Words words = ShiftedWords(format, {0x9234, 0x1234}, amount);
      EXPECT_EQ(words[0] & 0x8000, 0x8000u);
      EXPECT_EQ(words[1] & 0x8000, 0x0000u);
    }
    EXPECT_EQ(ShiftedWords(19, {0xA234}, amount)[0] & 0xF000, 0xA000u);
  }
}

TEST(TranslateRect, IndexedPixelsGoThroughTheTable) {
  uint8_t table[256];
  for (int i = 0; i < 256; ++i) table[i] = uint8_t(255 - i);
  const Picture p = PictureOf(8, 4, 1, {0, 1, 128, 255});
  for (float amount : {0.0f, 0.5f, 7.0f}) {
    EXPECT_EQ(Pixels(Shifted(p, {1, 0, 4, 1}, amount, table)), (Words{0, 254, 127, 0}));
  }
}

TEST(TranslateRect, IndexedWithoutATableStays) {
  Picture p = PictureOf(8, 4, 1, {0, 1, 128, 255});
  TSurfDesc surface = Describe(p);
  EXPECT_TRUE(TranslateRect(surface, {0, 0, 4, 1}, 1.0f, nullptr));
  EXPECT_EQ(Pixels(p), (Words{0, 1, 128, 255}));
}

TEST(TranslateRect, EmptyIsTrueAndUnsupportedIsFalse) {
  uint8_t table[256] = {};
  for (int format : model::kFormats) {
    Picture p = Filled(format, 2, 2, 7);
    const Picture before = p;
    TSurfDesc surface = Describe(p);
    for (const CRectangulo& empty : {CRectangulo{0, 0, 0, 2},
                                     {2, 0, 4, 2},
                                     {0, -3, 2, 0},
                                     {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}}) {
      EXPECT_TRUE(TranslateRect(surface, empty, 1.0f, table));
    }
    EXPECT_TRUE(support::Same(before, p, surface));
    surface.bpp = 15;
    EXPECT_FALSE(TranslateRect(surface, {0, 0, 2, 2}, 1.0f, table));
    EXPECT_FALSE(TranslateRect(surface, {0, 0, 0, 0}, 1.0f, table));
    EXPECT_EQ(p.bytes, before.bytes);
  }
}

// The smallest float whose shift is k, for shifts from `-scale / 2` to `scale / 2`.
float AmountOf(int k, int scale) {
  const double exact = (k + (k < 0 ? -0.5 : k > 0 ? 0.5 : 0) + scale / 2.0) / scale;
  return float(exact);
}

TEST(TranslateRect, EveryShiftOfEveryByte) {
  for (int format : {24, 32}) {
    Picture p = Filled(format, 260, 1, 0);
    for (int x = 0; x < 260; ++x) {
      const auto low = uint32_t(x % 256), high = 255 - low;
      p.Put(x, 0, low | high << 8 | (low ^ 0x55) << 16 | high << 24);
    }
    for (int k = -255; k <= 255; ++k) {
      SCOPED_TRACE(k);
      Shifted(p, {1, 0, 259, 1}, AmountOf(k, 510), nullptr);
    }
  }
}

TEST(TranslateRect, EveryShiftOfEveryField) {
  for (int format : {16, 17, 18, 19}) {
    // Every value of every field, with random neighbours.
    Random random(6);
    Picture p = support::RandomPicture(random, format, 640, 1);
    for (int x = 0; x < 640; ++x) {
      const uint32_t word = p.Get(x, 0);
      const int shift = x % 16;
      p.Put(x, 0, (word & ~(63u << shift)) | uint32_t(x / 10) << shift);
    }
    for (int k = -31; k <= 31; ++k) {
      SCOPED_TRACE(k);
      Shifted(p, Whole(p), AmountOf(k, 62), nullptr);
    }
  }
}

TEST(TranslateRect, AllWordsAtSomeShifts) {
  for (int format : {16, 17, 18, 19}) {
    Picture p = Filled(format, 256, 256, 0);
    for (int i = 0; i < 65536; ++i) p.Put(i % 256, i / 256, uint32_t(i));
    for (int k : {-31, -16, -7, -1, 0, 1, 8, 30, 31}) {
      SCOPED_TRACE(k);
      Shifted(p, Whole(p), AmountOf(k, 62), nullptr);
    }
  }
}

// Amounts next to the borders between two shifts, where rounding in another precision shows.
TEST(TranslateRect, AmountsAtTheBorders) {
  for (int format : {16, 24}) {
    const int scale = format == 16 ? 62 : 510;
    const Picture p = Filled(format, 1, 1, format == 16 ? 0x7BEF : 0x808080);
    for (int k = -scale / 2; k <= scale / 2; ++k) {
      const auto middle = float((k + scale / 2) / double(scale));
      for (float amount : {std::nextafter(middle, -9.f), middle, std::nextafter(middle, 9.f)}) {
        SCOPED_TRACE(k);
        Shifted(p, Whole(p), amount, nullptr);
      }
    }
  }
}

TEST(TranslateRect, AnyCaseMatchesModel) {
  Random setup(8);
  std::array<uint8_t, 256> table;
  for (uint8_t& byte : table) byte = setup.Byte();
  support::ForEachCase(7 * support::kWidths * 3, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int height = random.Between(1, 6);
    const Picture p = support::RandomPicture(random, format, support::WidthOf(seed / 7), height,
                                             support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, p.width, p.height);
    const float amount = float(random.Between(-100, 1100)) / 1000;
    SCOPED_TRACE("amount " + std::to_string(amount));
    Shifted(p, rect, amount, table.data());
  });
}

// What no shift can be computed from draws something, and nothing else happens.
TEST(TranslateRect, AnyFloatStaysInTheRectangle) {
  for (int format : {16, 17, 18, 19, 24, 32}) {
    for (float amount :
         {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN(), 1e30f, -1e30f, 4.3e6f, -4.3e6f}) {
      support::ForEachTarget([&] {
        Random random(4);
        const Picture before = support::RandomPicture(random, format, 40, 3);
        Picture p = before;
        TSurfDesc surface = Describe(p);
        EXPECT_TRUE(TranslateRect(surface, {5, 1, 30, 2}, amount, nullptr));
        for (int y = 0; y < 3; ++y) {
          for (int x = 5; x < 30 && y == 1; ++x) p.Put(x, y, before.Get(x, y));
        }
        EXPECT_EQ(p.bytes, before.bytes);
      });
    }
  }
}

}  // namespace
