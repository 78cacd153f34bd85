// Fills, one-pixel lines, frames and the block copy.
#include <gtest/gtest.h>

#include <climits>

#include "include/pincel.h"
#include "tests/model/draw_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Picture;
using support::Filled;
using support::PictureOf;
using support::Pixels;
using support::Random;
using Words = std::vector<uint32_t>;

// The stored value of a 1 x 1 surface filled with a colour.
uint32_t StoredBy(int format, uint32_t colour) {
  Picture p = Filled(format, 1, 1, 0x5A5A5A5A);
  TSurfDesc d = model::Describe(p);
  EXPECT_TRUE(IdxFillRect(d, {0, 0, 1, 1}, colour));
  return p.Get(0, 0);
}

// Runs `draw` on a random picture on every target and `expect` on a copy; `draw` gets a descriptor
// and returns what must equal the result of `expect`.
template <class Draw, class Expect>
void CompareOn(const Picture& before, Draw draw, Expect expect) {
  Picture expected = before;
  const bool expected_result = expect(expected);
  support::ForEachTarget([&] {
    Picture p = before;
    TSurfDesc d = model::Describe(p);
    ASSERT_EQ(draw(d), expected_result);
    ASSERT_TRUE(support::Same(expected, p, d));
  });
}

Picture AnyPicture(Random& random, int format, int seed) {
  const int height = random.Between(1, 8);
  Picture p = support::RandomPicture(random, format, support::WidthOf(seed), height,
                                     support::AnyOptions(random));
  p.key = random.OneIn(2) ? 0xFFFFFFFF : random.Next();
  return p;
}

TEST(FillRect, StoredValues) {
  EXPECT_EQ(StoredBy(8, 0x12345678), 0x78u);
  EXPECT_EQ(StoredBy(16, 0xFFFFFFFF), 0xFFFFu);
  EXPECT_EQ(StoredBy(16, 0xFF123456), 0x11AAu);
  EXPECT_EQ(StoredBy(16, 0x00070307), 0x0000u);
  EXPECT_EQ(StoredBy(24, 0xAA123456), 0x123456u);
  EXPECT_EQ(StoredBy(32, 0xAA123456), 0xAA123456u);
  EXPECT_EQ(StoredBy(19, 0x00FFFFFF), 0x0FFFu);
  EXPECT_EQ(StoredBy(17, 0x00FFFFFF), 0x7FFFu);
}

TEST(FillRect, FillFoldsAlphaBits1555) {
  for (int format : {17, 18}) {
    EXPECT_EQ(StoredBy(format, 0x01FF0000), 0xFC00u);
    EXPECT_EQ(StoredBy(format, 0x00FF0000), 0x7C00u);
    EXPECT_EQ(StoredBy(format, 0x80000000), 0x8000u);
    EXPECT_EQ(StoredBy(format, 0x7E000000), 0x0000u);
    EXPECT_EQ(StoredBy(format, 0xFF0000FF), 0x801Fu);
  }
}

TEST(FillRect, FillFoldsAlphaHalves4444) {
  EXPECT_EQ(StoredBy(19, 0x5A000000), 0xF000u);  // 5 | A
  EXPECT_EQ(StoredBy(19, 0x12000000), 0x3000u);
  EXPECT_EQ(StoredBy(19, 0x01FF8040), 0x1F84u);
  EXPECT_EQ(StoredBy(19, 0x10FF8040), 0x1F84u);
  EXPECT_EQ(StoredBy(19, 0x00FF8040), 0x0F84u);
}

TEST(FillRect, EveryAlphaByte) {
  for (int format : {17, 18, 19, 24, 32, 16, 8}) {
    for (uint32_t alpha = 0; alpha < 256; ++alpha) {
      for (uint32_t rest : {0x000000u, 0xFFFFFFu, 0x6C3A95u}) {
        const uint32_t colour = alpha << 24 | rest;
        ASSERT_EQ(StoredBy(format, colour), model::FillValue(format, colour)) << std::hex << colour;
      }
    }
  }
}

TEST(FillRect, EveryValueOfEveryChannel) {
  for (int format : model::kFormats) {
    for (uint32_t value = 0; value < 256; ++value) {
      for (int shift : {0, 8, 16}) {
        for (uint32_t rest : {0u, 0xFFFFFFFFu}) {
          const uint32_t colour = (rest & ~(0xFFu << shift)) | value << shift;
          ASSERT_EQ(StoredBy(format, colour), model::FillValue(format, colour));
        }
      }
    }
  }
}

TEST(FillRect, OutsideIsTrueAndWritesNothing) {
  for (int format : model::kFormats) {
    for (const CRectangulo& r : {CRectangulo{4, 0, 9, 3},
                                 {-5, 0, 0, 3},
                                 {0, 3, 4, 9},
                                 {0, -5, 4, 0},
                                 {2, 2, 2, 3},
                                 {3, 2, 1, 3},
                                 {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}}) {
      Picture p = Filled(format, 4, 3, 0x11111111);
      const Picture before = p;
      TSurfDesc d = model::Describe(p);
      EXPECT_TRUE(IdxFillRect(d, r, 0xFFFFFFFF));
      EXPECT_TRUE(support::Same(before, p, d));
    }
  }
}

TEST(FillRect, Inside) {
  Picture p = Filled(8, 4, 3, 1);
  TSurfDesc d = model::Describe(p);
  EXPECT_TRUE(IdxFillRect(d, {1, 1, 3, 9}, 0xFF02));
  EXPECT_EQ(Pixels(p), (Words{1, 1, 1, 1, 1, 2, 2, 1, 1, 2, 2, 1}));
}

TEST(FillRect, NoPixels) {
  for (int width : {0, -3}) {
    TSurfDesc d{};
    d.width = width;
    d.height = 5;
    d.bpp = 32;
    EXPECT_TRUE(IdxFillRect(d, {-10, -10, 10, 10}, 7));
    d.width = 5;
    d.height = width;
    EXPECT_TRUE(IdxFillRect(d, {-10, -10, 10, 10}, 7));
  }
}

TEST(FillRect, MatchesModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(1500, [&](Random& random, int seed) {
      const Picture before = AnyPicture(random, format, seed);
      const CRectangulo rect = support::RandomRect(random, before.width, before.height);
      const uint32_t colour = random.OneIn(4) ? random.Byte() * 0x01010101u : random.Next();
      CompareOn(
          before, [&](TSurfDesc& d) { return IdxFillRect(d, rect, colour); },
          [&](Picture& p) { return model::FillRect(p, rect, colour), true; });
    });
  }
}

// More than a megabyte, with and without padding, with every alignment of the start: large areas may
// be stored in another way.
TEST(FillRect, LargeAreasMatchModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(8, [&](Random& random, int seed) {
      support::PictureOptions options;
      options.guard = 64 + seed;
      options.max_padding = seed % 4 == 3 ? 7 : 0;
      const int bytes_per_pixel = format < 16 ? 1 : format < 24 ? 2 : format / 8;
      const int width = 1100 + seed;
      const int height = 1200000 / bytes_per_pixel / width;
      const Picture before = support::RandomPicture(random, format, width, height, options);
      CRectangulo rect = {0, 0, width, height};
      if (seed % 4 == 2) rect = {seed % 3, 1, width - seed % 2, height};
      const uint32_t colour = random.Next();
      CompareOn(
          before, [&](TSurfDesc& d) { return IdxFillRect(d, rect, colour); },
          [&](Picture& p) { return model::FillRect(p, rect, colour), true; });
    });
  }
}

TEST(LineHI, RowAboveThePoint) {
  Picture p = Filled(8, 16, 6, 0);
  TSurfDesc d = model::Describe(p);
  EXPECT_TRUE(IdxLineHI(d, {10, 5}, 4, 7));
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 16; ++x) EXPECT_EQ(p.Get(x, y), y == 4 && x >= 10 && x <= 13 ? 7u : 0u);
  }
  EXPECT_TRUE(IdxLineHI(d, {10, 5}, -4, 8));
  for (int x = 0; x < 16; ++x) {
    EXPECT_EQ(p.Get(x, 4), x >= 6 && x <= 9 ? 8u : x >= 10 && x <= 13 ? 7u : 0u);
    EXPECT_EQ(p.Get(x, 3), 0u);
    EXPECT_EQ(p.Get(x, 5), 0u);
  }
}

TEST(LineVI, ColumnLeftOfThePoint) {
  Picture p = Filled(8, 5, 12, 0);
  TSurfDesc d = model::Describe(p);
  EXPECT_TRUE(IdxLineVI(d, {3, 6}, 4, 7));
  EXPECT_TRUE(IdxLineVI(d, {3, 6}, -4, 8));
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x < 5; ++x) {
      EXPECT_EQ(p.Get(x, y), x != 2 ? 0u : y >= 6 && y <= 9 ? 7u : y >= 2 && y <= 5 ? 8u : 0u);
    }
  }
}

TEST(LineHI, LengthZeroDrawsNothing) {
  for (int format : model::kFormats) {
    Picture p = Filled(format, 4, 4, 0);
    const Picture before = p;
    TSurfDesc d = model::Describe(p);
    EXPECT_TRUE(IdxLineHI(d, {2, 2}, 0, 0xFFFFFFFF));
    EXPECT_TRUE(IdxLineVI(d, {2, 2}, 0, 0xFFFFFFFF));
    EXPECT_TRUE(support::Same(before, p, d));
  }
}

// At the ends of the number range a run stops; it does not wrap around into the surface.
TEST(LineHI, LargestCoordinatesDoNotWrap) {
  Picture p = Filled(8, 3, 3, 0);
  TSurfDesc d = model::Describe(p);
  EXPECT_TRUE(IdxLineHI(d, {1, 2}, INT32_MAX, 5));
  EXPECT_TRUE(IdxLineVI(d, {1, 2}, INT32_MIN, 6));
  EXPECT_EQ(Pixels(p), (Words{6, 0, 0, 6, 5, 5, 0, 0, 0}));
  p = Filled(8, 3, 3, 0);
  d = model::Describe(p);
  EXPECT_TRUE(IdxLineHI(d, {1, INT32_MIN}, 2, 5));
  EXPECT_TRUE(IdxLineVI(d, {INT32_MIN, 1}, 2, 5));
  EXPECT_TRUE(IdxLineHI(d, {INT32_MIN, 1}, INT32_MIN, 5));
  EXPECT_TRUE(IdxLineHI(d, {INT32_MAX, 1}, INT32_MAX, 5));
  EXPECT_EQ(Pixels(p), Words(9, 0));
  EXPECT_TRUE(IdxLineHI(d, {INT32_MAX, 1}, INT32_MIN, 5));  // from -1 to the far right
  EXPECT_EQ(Pixels(p), (Words{5, 5, 5, 0, 0, 0, 0, 0, 0}));
}

int AnyCoordinate(Random& random, int size) {
  switch (random.Below(12)) {
    case 0:
      return INT32_MIN + random.Below(3);
    case 1:
      return INT32_MAX - random.Below(3);
    default:
      return random.Between(-4, size + 4);
  }
}

TEST(LineHI, MatchesModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(800, [&](Random& random, int seed) {
      const Picture before = AnyPicture(random, format, seed);
      const CPunto at = {AnyCoordinate(random, before.width), AnyCoordinate(random, before.height)};
      const int length = AnyCoordinate(random, before.width) / random.Between(1, 2);
      const uint32_t colour = random.Next();
      CompareOn(
          before, [&](TSurfDesc& d) { return IdxLineHI(d, at, length, colour); },
          [&](Picture& p) { return model::LineHorizontal(p, at, length, colour), true; });
      CompareOn(
          before, [&](TSurfDesc& d) { return IdxLineVI(d, at, length, colour); },
          [&](Picture& p) { return model::LineVertical(p, at, length, colour), true; });
    });
  }
}

TEST(FrameBR, LastRowAndColumnAndAlwaysFalse) {
  for (int format : model::kFormats) {
    Picture p = Filled(format, 5, 4, 0);
    TSurfDesc d = model::Describe(p);
    EXPECT_FALSE(FrameBR(d, {0, 0, 4, 3}, 0xFFFFFFFF));
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 5; ++x) {
        EXPECT_EQ(p.Get(x, y) != 0, (y == 2 && x <= 3) || (x == 3 && y <= 2)) << x << ", " << y;
      }
    }
  }
}

TEST(FrameBR, InvertedRectangleDrawsItsEdges) {
  Picture p = Filled(8, 6, 6, 0);
  TSurfDesc d = model::Describe(p);
  EXPECT_FALSE(FrameBR(d, {4, 5, 2, 3}, 9));  // row 2 from x 2 to 3, column 1 from y 3 to 4
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 6; ++x) {
      EXPECT_EQ(p.Get(x, y) != 0, (y == 2 && (x == 2 || x == 3)) || (x == 1 && (y == 3 || y == 4)));
    }
  }
}

TEST(FrameBR, MatchesModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(800, [&](Random& random, int seed) {
      const Picture before = AnyPicture(random, format, seed);
      CRectangulo rect = support::RandomRect(random, before.width, before.height);
      if (random.OneIn(4)) {
        rect = {AnyCoordinate(random, before.width), AnyCoordinate(random, before.height),
                AnyCoordinate(random, before.width), AnyCoordinate(random, before.height)};
      }
      const uint32_t colour = random.Next();
      CompareOn(
          before, [&](TSurfDesc& d) { return FrameBR(d, rect, colour); },
          [&](Picture& p) { return model::FrameBottomRight(p, rect, colour), false; });
    });
  }
}

TEST(DrawRectShadow, ShadowDrawsOneFrame) {
  Picture p = Filled(8, 8, 8, 5);
  TSurfDesc d = model::Describe(p);
  EXPECT_FALSE(DrawRectShadow(d, {1, 2, 4, 5}, 1, 3));
  for (int y = 0; y < 8; ++y) {  // the frame of (2, 3, 5, 6)
    for (int x = 0; x < 8; ++x) {
      const bool frame = (y == 5 && x >= 2 && x <= 4) || (x == 4 && y >= 3 && y <= 5);
      EXPECT_EQ(p.Get(x, y), frame ? 0u : 5u) << x << ", " << y;
    }
  }
  for (int depth : {1, 2, 127, 128, 255}) {  // always the same one
    for (int step : {0, 1, 2, 255}) {
      Picture again = Filled(8, 8, 8, 5);
      TSurfDesc e = model::Describe(again);
      EXPECT_FALSE(DrawRectShadow(e, {1, 2, 4, 5}, (unsigned char)(step), (unsigned char)(depth)));
      EXPECT_EQ(again.bytes, p.bytes) << depth << " " << step;
    }
  }
}

TEST(DrawRectShadow, DepthZeroDrawsNothingAndIsTrue) {
  for (int format : model::kFormats) {
    Picture p = Filled(format, 8, 8, 0x55555555);
    const Picture before = p;
    TSurfDesc d = model::Describe(p);
    EXPECT_TRUE(DrawRectShadow(d, {1, 2, 4, 5}, 1, 0));
    EXPECT_TRUE(support::Same(before, p, d));
  }
}

TEST(DrawRectShadow, MatchesModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(300, [&](Random& random, int seed) {
      const Picture before = AnyPicture(random, format, seed);
      const CRectangulo rect = support::RandomRect(random, before.width, before.height);
      const int step = random.Byte();
      const int depth = random.Byte();
      CompareOn(
          before,
          [&](TSurfDesc& d) {
            return DrawRectShadow(d, rect, (unsigned char)(step), (unsigned char)(depth));
          },
          [&](Picture& p) { return model::RectShadow(p, rect, step, depth); });
    });
  }
}

TEST(Primitives, UnsupportedDepthDoesNothing) {
  for (uint32_t bpp : {0u, 1u, 4u, 15u, 48u, 64u}) {
    Picture p = Filled(32, 4, 4, 0x55555555);
    Picture source = Filled(32, 4, 4, 0x11111111);
    TSurfDesc d = model::Describe(p);
    TSurfDesc s = model::Describe(source);
    d.bpp = s.bpp = bpp;
    EXPECT_FALSE(IdxFillRect(d, {0, 0, 4, 4}, 1));
    EXPECT_FALSE(IdxFillRect(d, {4, 4, 0, 0}, 1));
    EXPECT_FALSE(IdxLineHI(d, {0, 1}, 4, 1));
    EXPECT_FALSE(IdxLineVI(d, {1, 0}, 4, 1));
    EXPECT_FALSE(FrameBR(d, {0, 0, 4, 4}, 1));
    EXPECT_FALSE(DrawRectShadow(d, {0, 0, 3, 3}, 1, 1));
    EXPECT_FALSE(DrawBlock(d, s, 0, 0, 0, 0, 4, 4));
    EXPECT_EQ(Pixels(p), Words(16, 0x55555555)) << bpp;
  }
}

#if ULONG_MAX > 0xFFFFFFFF
TEST(Primitives, OnlyTheLow32BitsOfAColourAreRead) {
  const auto wide = (unsigned long)(0xFFFFFFFF00000000ull);
  for (int format : model::kFormats) {
    Picture p = Filled(format, 3, 3, 0x5A5A5A5A);
    Picture expected = p;
    TSurfDesc d = model::Describe(p);
    IdxFillRect(d, {1, 1, 2, 2}, wide | 0x00123456);
    IdxLineHI(d, {0, 1}, 2, wide | 0x00654321);
    FrameBR(d, {1, 1, 3, 3}, wide | 0x00020202);
    model::FillRect(expected, {1, 1, 2, 2}, 0x00123456);
    model::LineHorizontal(expected, {0, 1}, 2, 0x00654321);
    model::FrameBottomRight(expected, {1, 1, 3, 3}, 0x00020202);
    EXPECT_TRUE(support::Same(expected, p, d));
  }
}
#endif

TEST(DrawBlock, CopiesTheBlock) {
  Picture source = PictureOf(16, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  Picture p = Filled(16, 4, 3, 0);
  TSurfDesc s = model::Describe(source), d = model::Describe(p);
  EXPECT_TRUE(DrawBlock(d, s, 1, 1, 2, 0, 2, 2));
  EXPECT_EQ(Pixels(p), (Words{0, 0, 5, 6, 0, 0, 8, 9, 0, 0, 0, 0}));
}

TEST(DrawBlock, IgnoresTheKey) {
  for (int format : model::kFormats) {
    Picture source = Filled(format, 2, 2, 0);
    source.key = 0;
    Picture p = Filled(format, 2, 2, 0xFFFFFFFF);
    TSurfDesc s = model::Describe(source), d = model::Describe(p);
    EXPECT_TRUE(DrawBlock(d, s, 0, 0, 0, 0, 2, 2));
    EXPECT_EQ(Pixels(p), Words(4, 0));
  }
}

TEST(DrawBlock, CopiesBitsWhateverThe16BitFormat) {
  for (int to : {16, 17, 18, 19}) {
    for (int from : {16, 17, 18, 19}) {
      Picture source = PictureOf(from, 2, 1, {0xFFFF, 0x1234});
      Picture p = Filled(to, 2, 1, 0);
      TSurfDesc s = model::Describe(source), d = model::Describe(p);
      EXPECT_TRUE(DrawBlock(d, s, 0, 0, 0, 0, 2, 1));
      EXPECT_EQ(Pixels(p), (Words{0xFFFF, 0x1234}));
    }
  }
}

TEST(DrawBlock, EmptyBlockCopiesNothing) {
  for (int format : model::kFormats) {
    Picture source = Filled(format, 2, 2, 0);
    Picture p = Filled(format, 2, 2, 0xFFFFFFFF);
    const Picture before = p;
    TSurfDesc s = model::Describe(source), d = model::Describe(p);
    EXPECT_TRUE(DrawBlock(d, s, 0, 0, 0, 0, 0, 2));
    EXPECT_TRUE(DrawBlock(d, s, 0, 0, 0, 0, 2, 0));
    EXPECT_TRUE(DrawBlock(d, s, 0, 0, 0, 0, 0, 0));
    EXPECT_TRUE(support::Same(before, p, d));
  }
}

TEST(DrawBlock, MatchesModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(800, [&](Random& random, int seed) {
      const int w = support::WidthOf(seed);
      const int h = random.Between(1, 6);
      const int sx = random.Below(4), sy = random.Below(3);
      const int dx = random.Below(4), dy = random.Below(3);
      const int more = random.Below(3);  // 0: the block ends with the surfaces
      const Picture before = support::RandomPicture(random, format, w + dx + more, h + dy,
                                                    support::AnyOptions(random));
      Picture source = support::RandomPicture(random, format, w + sx + more, h + sy,
                                              support::AnyOptions(random));
      source.key = random.OneIn(2) ? 0xFFFFFFFF : 0;
      const Picture source_before = source;
      TSurfDesc s = model::Describe(source);
      CompareOn(
          before,
          [&](TSurfDesc& d) {
            using Short = unsigned short;
            return DrawBlock(d, s, Short(sx), Short(sy), Short(dx), Short(dy), Short(w), Short(h));
          },
          [&](Picture& p) { return model::DrawBlock(p, source, sx, sy, dx, dy, w, h), true; });
      EXPECT_TRUE(support::Same(source_before, source, s));
    });
  }
}

}  // namespace
