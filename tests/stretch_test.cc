// Scaling: nearest and smooth stretches, the proportional enlarger and reducer, doubling.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/stretch_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/mixing.h"
#include "tests/support/outside.h"
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

Picture Stretched(const Picture& dst, const CRectangulo& dst_rect, Picture src,
                  const CRectangulo& src_rect, bool smooth) {
  return support::Compared(
      dst, {&src}, [&](Picture& p) { return model::Stretch(p, dst_rect, src, src_rect, smooth); },
      [&](TSurfDesc& d) {
        TSurfDesc s = Describe(src);
        return BltStrech(d, dst_rect, s, src_rect, smooth);
      });
}

Picture InProportion(const Picture& dst, const CRectangulo& dst_rect, Picture src,
                     const CRectangulo& src_rect, int bits_per_pixel, bool enable = true) {
  return support::Compared(
      dst, {&src},
      [&](Picture& p) {
        return model::StretchInProportion(p, dst_rect, src, src_rect, bits_per_pixel, enable);
      },
      [&](TSurfDesc& d) {
        TSurfDesc s = Describe(src);
        const bool extra = src.width % 2 == 0;  // of no effect
        return StretchBitmap(d, dst_rect, s, src_rect, bits_per_pixel, enable, extra);
      });
}

Picture Doubled(const Picture& dst, Picture src, CPunto at) {
  return support::Compared(
      dst, {&src},
      [&](Picture& p) {
        model::DrawDouble(p, src, at);
        return false;
      },
      [&](TSurfDesc& d) {
        TSurfDesc s = Describe(src);
        return DrawDouble(d, s, at);
      });
}

// One row of grey pixels.
Picture Greys(int format, const Words& greys) {
  Picture p = Filled(format, int(greys.size()), 1, 0);
  for (size_t x = 0; x < greys.size(); ++x) p.Put(int64_t(x), 0, greys[x] * 0x010101);
  return p;
}

TEST(BltStrech, NearestCoversBlocks) {
  Words source;
  for (uint32_t i = 1; i <= 16; ++i) source.push_back(i);
  for (int format : model::kFormats) {
    const Picture src = PictureOf(format, 4, 4, source);
    const Picture dst = Stretched(Filled(format, 8, 8, 0), {0, 0, 8, 8}, src, Whole(src), false);
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 8; ++x) EXPECT_EQ(dst.Get(x, y), uint32_t(y / 2 * 4 + x / 2 + 1));
    }
  }
}

TEST(BltStrech, ClippedDestinationShowsTheWholeSourceSqueezed) {
  for (int format : model::kFormats) {
    const Picture src = PictureOf(format, 4, 1, {1, 2, 3, 4});
    EXPECT_EQ(Pixels(Stretched(Filled(format, 4, 1, 0), {2, 0, 6, 1}, src, Whole(src), false)),
              (Words{0, 0, 1, 3}));
    EXPECT_EQ(Pixels(Stretched(Filled(format, 4, 1, 0), {-6, -3, 2, 5}, src, Whole(src), false)),
              (Words{1, 3, 0, 0}));
  }
}

TEST(BltStrech, SourceIsClippedToItsSurface) {
  const Picture src = PictureOf(24, 2, 2, {1, 2, 3, 4});
  EXPECT_EQ(Pixels(Stretched(Filled(24, 2, 1, 0), {0, 0, 2, 1}, src, {1, 1, 90, 90}, false)),
            (Words{4, 4}));
  EXPECT_EQ(Pixels(Stretched(Filled(24, 2, 1, 0), {0, 0, 2, 1}, src, {-9, 1, 90, 90}, false)),
            (Words{3, 4}));
}

TEST(BltStrech, NearestAndSmoothKeepTheFourthByte) {
  const Picture src = PictureOf(32, 2, 1, {0x11223344, 0x55667788});
  const Picture dst = PictureOf(32, 2, 1, {0xAA000000, 0xBB000000});
  EXPECT_EQ(Pixels(Stretched(dst, Whole(dst), src, Whole(src), false)),
            (Words{0xAA223344, 0xBB667788}));
  for (uint32_t pixel : Pixels(Stretched(dst, Whole(dst), src, Whole(src), true))) {
    EXPECT_TRUE(pixel >> 24 == 0xAA || pixel >> 24 == 0xBB) << std::hex << pixel;
  }
}

TEST(BltStrech, SmoothWhiteIs254) {
  for (int format : {24, 32}) {
    const Picture src = Filled(format, 3, 3, 0xFFFFFFFF);
    const Picture before = Filled(format, 3, 3, 0x55000000);
    const uint32_t fourth = format == 32 ? 0x55000000 : 0;
    EXPECT_EQ(Pixels(Stretched(before, Whole(before), src, Whole(src), true)),
              Words(9, fourth | 0xFEFEFE));
  }
}

TEST(BltStrech, SmoothWeightsComeFrom65535) {
  // 200 x 65534; 200 x 32766 + 100 x 32767; 100 x 65534; and 100 beside itself: each by 65536.
  const Picture src = Greys(32, {200, 100});
  EXPECT_EQ(Pixels(Stretched(Filled(32, 4, 1, 0), {0, 0, 4, 1}, src, Whole(src), true)),
            (Words{199 * 0x010101, 149 * 0x010101, 99 * 0x010101, 99 * 0x010101}));
}

TEST(BltStrech, SmoothReadsBeyondTheRectangle) {
  // The last pixel lies half way between columns 1 and 2, of which 2 is outside the rectangle.
  for (int format : {24, 32}) {
    const Picture src = Greys(format, {200, 100, 0});
    EXPECT_EQ(Pixels(Stretched(Filled(format, 4, 1, 0), {0, 0, 4, 1}, src, {0, 0, 2, 1}, true)),
              (Words{199 * 0x010101, 149 * 0x010101, 99 * 0x010101, 49 * 0x010101}));
  }
}

TEST(BltStrech, SmoothTakesThePixelThatFollowsARowInMemory) {
  Picture src = Greys(32, {200, 100});
  src.width = 1;
  src.height = 2;
  src.pitch = 4;  // rows without padding: beside (0, 0) lies (0, 1)
  const Picture dst = Stretched(Filled(32, 2, 2, 0), {0, 0, 2, 2}, src, Whole(src), true);
  EXPECT_EQ(Pixels(dst), (Words{199 * 0x010101, 149 * 0x010101, 99 * 0x010101, 99 * 0x010101}));
}

TEST(BltStrech, OtherDepthsAreNeverSmooth) {
  for (int format : {8, 16, 17, 18, 19}) {
    const Picture src = PictureOf(format, 2, 1, {0xFF, 0x11});
    EXPECT_EQ(Pixels(Stretched(Filled(format, 4, 1, 0), {0, 0, 4, 1}, src, Whole(src), true)),
              (Words{0xFF, 0xFF, 0x11, 0x11}));
  }
}

TEST(BltStrech, EmptyRectanglesAreFalse) {
  for (int format : model::kFormats) {
    for (bool smooth : {false, true}) {
      for (const CRectangulo& empty : {CRectangulo{0, 0, 0, 2},
                                       {2, 0, 4, 2},
                                       {0, -3, 2, 0},
                                       {1, 1, 0, 0},
                                       {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}}) {
        Picture dst = Filled(format, 2, 2, 7), src = Filled(format, 2, 2, 9);
        TSurfDesc d = Describe(dst), s = Describe(src);
        EXPECT_FALSE(BltStrech(d, empty, s, {0, 0, 2, 2}, smooth));
        EXPECT_FALSE(BltStrech(d, {0, 0, 2, 2}, s, empty, smooth));
        EXPECT_FALSE(DrawStretch(d, empty, s, {0, 0, 2, 2}));
        EXPECT_EQ(Pixels(dst), Words(4, 7));
      }
    }
  }
}

TEST(BltStrech, OnlyTheDestinationsDepthCounts) {
  for (int format : model::kFormats) {
    Picture dst = Filled(format, 2, 2, 0), src = Filled(format, 2, 2, 9);
    TSurfDesc d = Describe(dst), s = Describe(src);
    s.bpp = 7;
    EXPECT_TRUE(BltStrech(d, {0, 0, 2, 2}, s, {0, 0, 2, 2}, false));
    EXPECT_EQ(Pixels(dst), Words(4, 9));
    d.bpp = 15;
    s.bpp = 16;
    EXPECT_FALSE(BltStrech(d, {0, 0, 1, 1}, s, {1, 1, 2, 2}, false));
    EXPECT_EQ(Pixels(dst), Words(4, 9));
  }
}

TEST(BltStrech, AnyCaseMatchesModel) {
  support::ForEachCase(7 * support::kWidths * 4, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int height = random.Between(1, 9);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 7), height,
                                               support::AnyOptions(random));
    int from = format;
    if (dst.BytesPerPixel() == 2 && random.OneIn(3)) from = 16 + random.Below(4);
    const int src_width = random.OneIn(3) ? random.Between(1, 6) : random.Between(1, 300);
    const int src_height = random.Between(1, 12);
    const Picture src =
        support::RandomPicture(random, from, src_width, src_height, support::AnyOptions(random));
    const CRectangulo dst_rect = support::RandomRect(random, dst.width, dst.height);
    const CRectangulo src_rect = support::RandomRect(random, src.width, src.height);
    Stretched(dst, dst_rect, src, src_rect, random.OneIn(2));
  });
}

// Every pair of widths: the repeated additions of the step must not drift.
TEST(BltStrech, EveryRatioMatchesModel) {
  Random random(1);
  for (int width = 1; width <= 70; ++width) {
    for (int src_width = 1; src_width <= 70; ++src_width) {
      const int format = model::kFormats[(width + src_width) % 7];
      const Picture dst = support::RandomPicture(random, format, width, 1);
      const Picture src = support::RandomPicture(random, format, src_width, 1);
      Stretched(dst, Whole(dst), src, Whole(src), src_width % 2 == 0);
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(BltStrech, LongRowsMatchModel) {
  Random random(2);
  for (int format : model::kFormats) {
    for (int width : {1023, 4099, 20011}) {
      const Picture dst = support::RandomPicture(random, format, width, 2);
      const Picture src = support::RandomPicture(random, format, random.Between(1, 30000), 3);
      Stretched(dst, Whole(dst), src, Whole(src), false);
      Stretched(dst, Whole(dst), src, Whole(src), true);
    }
  }
}

TEST(DrawStretch, IsTheNearestStretch) {
  support::ForEachCase(70, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const Picture before = support::RandomPicture(random, format, random.Between(1, 40), 5);
    Picture src = support::RandomPicture(random, format, random.Between(1, 40), 7);
    const CRectangulo dst_rect = support::RandomRect(random, before.width, before.height);
    const CRectangulo src_rect = support::RandomRect(random, src.width, src.height);
    Picture plain = before, stretched = before;
    TSurfDesc s = Describe(src), d = Describe(plain), e = Describe(stretched);
    EXPECT_EQ(DrawStretch(d, dst_rect, s, src_rect), BltStrech(e, dst_rect, s, src_rect, false));
    EXPECT_TRUE(support::Same(stretched, plain, d));
  });
}

TEST(DrawStretch, WithATableDrawsNothing) {
  unsigned char table[256] = {};
  for (int format : model::kFormats) {
    const Picture before = Filled(format, 2, 2, 7);
    Picture dst = before, src = Filled(format, 2, 2, 9);
    TSurfDesc d = Describe(dst), s = Describe(src);
    const bool supported = format == 8 || format >= 24;
    EXPECT_EQ(DrawStretch(d, {0, 0, 2, 2}, s, {0, 0, 2, 2}, table), supported) << format;
    EXPECT_EQ(DrawStretch(d, {2, 2, 0, 0}, s, {0, 0, 0, 0}, nullptr), supported) << format;
    EXPECT_TRUE(support::Same(before, dst, d));
    d.bpp = 15;
    EXPECT_FALSE(DrawStretch(d, {0, 0, 2, 2}, s, {0, 0, 2, 2}, table));
  }
}

TEST(StretchBitmap, RefusalsButOtherDepthsAreTrue) {
  Picture dst = Filled(24, 20, 20, 1);
  const Picture before = dst;
  Picture src = Filled(24, 30, 30, 2);
  TSurfDesc d = Describe(dst), s = Describe(src);
  const CRectangulo whole{0, 0, 20, 20}, ten{0, 0, 10, 10};
  EXPECT_TRUE(StretchBitmap(d, whole, s, ten, 24, false, true)) << "not enabled";
  EXPECT_TRUE(StretchBitmap(d, whole, s, ten, 16, true, true)) << "other depth asked for";
  EXPECT_TRUE(StretchBitmap(d, whole, s, ten, 8, true, true));
  EXPECT_TRUE(StretchBitmap(d, {20, 0, 40, 20}, s, ten, 24, true, true)) << "nothing visible";
  EXPECT_TRUE(StretchBitmap(d, whole, s, {30, 0, 40, 10}, 24, true, true)) << "no source";
  EXPECT_TRUE(StretchBitmap(d, whole, s, {5, 5, 5, 9}, 24, true, true));
  EXPECT_TRUE(StretchBitmap(d, {0, 0, 20, 5}, s, ten, 24, true, true)) << "wider, but lower";
  EXPECT_TRUE(StretchBitmap(d, {0, 0, 5, 20}, s, ten, 24, true, true)) << "higher, but narrower";
  EXPECT_TRUE(StretchBitmap(d, ten, s, ten, 24, true, true)) << "the same size";
  EXPECT_TRUE(StretchBitmap(d, {0, 0, 10, 20}, s, ten, 24, true, true)) << "the same width";
  EXPECT_TRUE(support::Same(before, dst, d));
}

TEST(StretchBitmap, SurfacesOfDifferentDepthsAreFalse) {
  Picture dst = Filled(24, 20, 20, 1);
  const Picture before = dst;
  Picture src = Filled(32, 10, 10, 2);
  TSurfDesc d = Describe(dst), s = Describe(src);
  EXPECT_FALSE(StretchBitmap(d, {0, 0, 20, 20}, s, {0, 0, 10, 10}, 24, true, false));
  EXPECT_FALSE(StretchBitmap(d, {0, 0, 20, 20}, s, {0, 0, 10, 10}, 24, false, false));
  EXPECT_FALSE(StretchBitmap(d, {0, 0, 10, 10}, s, {0, 0, 10, 10}, 9, true, false));
  EXPECT_TRUE(StretchBitmap(d, {20, 20, 9, 9}, s, {0, 0, 10, 10}, 24, true, false));
  EXPECT_TRUE(StretchBitmap(d, {0, 0, 20, 20}, s, {10, 0, 20, 10}, 24, true, false));
  EXPECT_TRUE(support::Same(before, dst, d));
}

TEST(StretchBitmap, EnlargingRepeatsTheLastColumnAndRow) {
  for (int format : {24, 32}) {
    Picture src = Filled(format, 2, 2, 0);
    for (int i = 0; i < 4; ++i) src.Put(i % 2, i / 2, uint32_t(i * 80) * 0x010101);
    const Picture dst =
        InProportion(Filled(format, 4, 4, 0x99000000), {0, 0, 4, 4}, src, Whole(src), format);
    Words greys;
    for (uint32_t pixel : Pixels(dst)) {
      greys.push_back(pixel & 0xFF);
      EXPECT_EQ(pixel >> 24, format == 32 ? 0x99u : 0u) << "the fourth byte is kept";
    }
    EXPECT_EQ(greys, (Words{0, 40, 80, 80,       //
                            80, 120, 160, 160,   //
                            160, 200, 240, 240,  //
                            160, 200, 240, 240}));
  }
}

TEST(StretchBitmap, EnlargingKeepsFractionsBetweenPixels) {
  // Three pixels for two: the step is 43690 / 65536. Down from 10 to 5: 10 - 5 x 0.667 = 6.67.
  const Picture src = PictureOf(24, 2, 2, {0x05000A, 0x0A0005, 0x05000A, 0x0A0005});
  const Picture dst = InProportion(Filled(24, 3, 3, 0), {0, 0, 3, 3}, src, Whole(src), 24);
  EXPECT_EQ(dst.Get(0, 0), 0x05000Au);
  EXPECT_EQ(dst.Get(1, 0), 0x080006u);
  EXPECT_EQ(dst.Get(2, 0), 0x0A0005u);
}

TEST(StretchBitmap, SourceShrinksWithTheClippedDestination) {
  Words columns;
  for (uint32_t i = 0; i < 20; ++i) columns.push_back(i * 10 * 0x010101);
  const Picture src = PictureOf(24, 10, 2, columns);
  // Twice as large, the left half cut off: the right half of the source remains.
  const Picture dst = InProportion(Filled(24, 10, 4, 0), {-10, 0, 10, 4}, src, Whole(src), 24);
  for (int x = 0; x < 10; x += 2) EXPECT_EQ(dst.Get(x, 0), uint32_t(50 + x * 5) * 0x010101);
  // And the other way round.
  const Picture left = InProportion(Filled(24, 10, 4, 0), {0, 0, 20, 4}, src, Whole(src), 24);
  for (int x = 0; x < 10; x += 2) EXPECT_EQ(left.Get(x, 0), uint32_t(x * 5) * 0x010101);
}

TEST(StretchBitmap, ReducingAveragesBlocks) {
  for (int format : {24, 32}) {
    Picture src = Filled(format, 4, 2, 0);
    for (int i = 0; i < 8; ++i) src.Put(i % 4, i / 4, uint32_t(i * 10) * 0x010101);
    const Picture dst =
        InProportion(Filled(format, 2, 1, 0x99000000), {0, 0, 2, 1}, src, Whole(src), format);
    const uint32_t fourth = format == 32 ? 0x99000000 : 0;
    EXPECT_EQ(Pixels(dst), (Words{fourth | 25 * 0x010101, fourth | 45 * 0x010101}));
  }
}

TEST(StretchBitmap, SumsOf32768OrMoreWrap) {
  // 11 x 11 white pixels are 30855. 12 x 12 are 36720, taken as -28816: by 144 that is -200.1, of
  // which the whole number below is -201: byte 55.
  for (int format : {24, 32}) {
    const Picture dst = Filled(format, 2, 2, 0);
    const Picture white = Filled(format, 24, 24, 0xFFFFFF);
    EXPECT_EQ(Pixels(InProportion(dst, Whole(dst), white, {0, 0, 22, 22}, format)),
              Words(4, 0xFFFFFF));
    EXPECT_EQ(Pixels(InProportion(dst, Whole(dst), white, {0, 0, 24, 24}, format)),
              Words(4, 55 * 0x010101));
    // 17 x 17 are 73695: past 16 bits 8159 remain, by 289.
    const Picture one = Filled(format, 1, 1, 0);
    const Picture large = Filled(format, 17, 17, 0xFFFFFF);
    EXPECT_EQ(Pixels(InProportion(one, Whole(one), large, Whole(large), format)),
              Words(1, 28 * 0x010101));
  }
}

TEST(StretchBitmap, ReducerCountsModulo256) {
  // 300 columns count as 44, 258 as 2: two columns are drawn, from 22 pixels each.
  for (int format : {24, 32}) {
    Picture src = Filled(format, 300, 4, 50 * 0x010101);
    for (int y = 0; y < 4; ++y) {
      for (int x = 22; x < 300; ++x) src.Put(x, y, (x < 44 ? 70u : 200u) * 0x010101);
    }
    const Picture dst =
        InProportion(Filled(format, 258, 2, 9), {0, 0, 258, 2}, src, Whole(src), format);
    Words row(258, 9);
    row[0] = 50 * 0x010101;
    row[1] = 70 * 0x010101;
    row.insert(row.end(), row.begin(), row.end());
    EXPECT_EQ(Pixels(dst), row);
  }
}

TEST(StretchBitmap, ReducedSidesThatAreMultiplesOf256DrawNothing) {
  struct Sides {
    int dst_width, dst_height, src_width, src_height;
  };
  for (const Sides& sides : {Sides{256, 10, 300, 20},
                             {10, 256, 20, 300},
                             {10, 10, 256, 20},
                             {10, 10, 20, 256},
                             {256, 256, 512, 512}}) {
    Picture dst = Filled(24, sides.dst_width, sides.dst_height, 9);
    const Picture before = dst;
    Picture src = Filled(24, sides.src_width, sides.src_height, 50);
    TSurfDesc d = Describe(dst), s = Describe(src);
    EXPECT_TRUE(StretchBitmap(d, Whole(dst), s, Whole(src), 24, true, true));
    EXPECT_TRUE(support::Same(before, dst, d));
  }
}

TEST(StretchBitmap, ReducerAdvancesRowsIn16Bits) {
  // A pitch of 65536 + 20 with two pixels of three bytes: 65550 to the next row counts as 14, so
  // that rows are drawn 20 bytes apart.
  Picture dst = Filled(24, 2, 1, 0);
  dst.height = 2;
  dst.pitch = 65536 + 20;
  dst.bytes.assign(size_t(2 * dst.pitch), 0);
  const Picture drawn =
      InProportion(dst, {0, 0, 2, 2}, Filled(24, 4, 4, 0x030201), {0, 0, 4, 4}, 24);
  EXPECT_EQ(drawn.bytes[20], 1);
  EXPECT_EQ(drawn.bytes[25], 3);
  EXPECT_EQ(drawn.bytes[size_t(dst.pitch)], 0);
}

TEST(StretchBitmap, WorksInTheDepthAskedFor) {
  // 24-bit pixels on 32-bit surfaces: the rectangle's columns are three bytes apart.
  const Picture src = PictureOf(32, 4, 2,
                                {0x04030201, 0x08070605, 0x0C0B0A09, 0x100F0E0D,  //
                                 0x04030201, 0x08070605, 0x0C0B0A09, 0x100F0E0D});
  const Picture dst = InProportion(Filled(32, 4, 4, 0), {0, 0, 4, 4}, src, {0, 0, 2, 2}, 24);
  EXPECT_EQ(dst.Get(0, 0) & 0xFFFFFF, 0x030201u);
  // Bytes 6 and 7 are of the third pixel, which is source pixel 1 at bytes 3 and 4.
  EXPECT_EQ(dst.Get(1, 2) >> 16, 0x0504u);
}

TEST(StretchBitmap, AnyCaseMatchesModel) {
  support::ForEachCase(support::kWidths * 20, [&](Random& random, int seed) {
    const int format = random.OneIn(2) ? 24 : 32;
    const int width = support::WidthOf(seed), height = random.Between(1, 9);
    const Picture dst =
        support::RandomPicture(random, format, width, height, support::AnyOptions(random));
    // Mostly smaller or larger in both directions.
    const bool enlarge = random.OneIn(2);
    const int src_width = random.OneIn(5) ? random.Between(1, 2 * width)
                          : enlarge       ? random.Between(1, width)
                                          : random.Between(width, 4 * width + 3);
    const int src_height = random.OneIn(5) ? random.Between(1, 20)
                           : enlarge       ? random.Between(1, height)
                                           : random.Between(height, 3 * height + 3);
    const Picture src =
        support::RandomPicture(random, format, src_width, src_height, support::AnyOptions(random));
    const CRectangulo dst_rect =
        random.OneIn(3) ? Whole(dst) : support::RandomRect(random, width, height);
    const CRectangulo src_rect =
        random.OneIn(2) ? Whole(src) : support::RandomRect(random, src_width, src_height);
    InProportion(dst, dst_rect, src, src_rect, format, !random.OneIn(20));
  });
}

TEST(StretchBitmap, EnlargingOneColumnOrRowRepeatsIt) {
  const Picture src = PictureOf(24, 3, 3, {1, 2, 3, 4, 0x050505, 6, 7, 8, 9});
  EXPECT_EQ(Pixels(InProportion(Filled(24, 3, 2, 0), {0, 0, 3, 2}, src, {1, 1, 2, 2}, 24)),
            Words(6, 0x050505));
}

TEST(StretchBitmap, OtherDepthsThanTheSurfacesMatchModel) {
  support::ForEachCase(200, [](Random& random, int) {
    // Pixels of four bytes on surfaces of three, where three quarters of the columns have room for
    // them, and the other way round.
    const int format = random.OneIn(2) ? 24 : 32, bits = 56 - format;
    const int width = random.Between(2, 60), height = random.Between(1, 6);
    const int src_width = random.Between(2, 90), src_height = random.Between(1, 15);
    const Picture dst = support::RandomPicture(random, format, width, height);
    const Picture src = support::RandomPicture(random, format, src_width, src_height);
    InProportion(dst, {0, 0, width * 3 / 4, height}, src,
                 {0, 0, std::max(src_width * 3 / 4, 1), src_height}, bits);
  });
}

TEST(StretchBitmap, SidesBeyond255MatchModel) {
  support::ForEachCase(60, [](Random& random, int) {
    const int width = random.OneIn(2) ? random.Between(1, 300) : random.Between(1, 40);
    const int height = random.Between(1, 20);
    const int src_width = random.Between(width + 1, 700);
    const int src_height = random.OneIn(4) ? random.Between(257, 300) : random.Between(21, 60);
    const Picture dst = support::RandomPicture(random, 24, width, height);
    const Picture src = support::RandomPicture(random, 24, src_width, src_height);
    InProportion(dst, Whole(dst), src, Whole(src), 24);
  });
}

// Surfaces of any depth taken for 24 or 32 bits: rows that leave the surface are not drawn.
TEST(StretchBitmap, DepthsThatDoNotFitStayInMemory) {
  support::ForEachCase(400, [](Random& random, int) {
    const int format = model::kFormats[random.Below(7)];
    const int width = random.Between(1, 40), height = random.Between(1, 6);
    const Picture before =
        support::RandomPicture(random, format, width, height, support::AnyOptions(random));
    Picture dst = before;
    Picture src = support::RandomPicture(random, format, random.Between(1, 90),
                                         random.Between(1, 15), support::AnyOptions(random));
    TSurfDesc d = Describe(dst), s = Describe(src);
    EXPECT_TRUE(StretchBitmap(d, Whole(dst), s, Whole(src), random.OneIn(2) ? 24 : 32, true, true));
    EXPECT_TRUE(support::SameOutside(before, dst, width * dst.BytesPerPixel()));
  });
}

// Every pair of sides up to 40, and blocks of every size whose sums wrap or do not.
TEST(StretchBitmap, EveryBlockSizeMatchesModel) {
  Random random(3);
  for (int to = 1; to <= 40; ++to) {
    for (int from = 1; from <= 40; ++from) {
      const int format = (to + from) % 2 == 0 ? 24 : 32;
      const Picture dst = support::RandomPicture(random, format, to, to);
      const Picture src = support::RandomPicture(random, format, from, from);
      InProportion(dst, Whole(dst), src, Whole(src), format);
      if (testing::Test::HasFailure()) return;
    }
  }
  for (int n = 2; n <= 255; n += n < 20 ? 1 : 13) {
    for (int m = 2; m <= 40; m += m < 20 ? 1 : 7) {
      const Picture dst = support::RandomPicture(random, 24, 1, 1);
      const Picture src = support::RandomPicture(random, 24, n, m);
      InProportion(dst, Whole(dst), src, Whole(src), 24);
    }
  }
}

TEST(DrawDouble, FillsABlockAndIsFalse) {
  for (int format : {24, 32}) {
    const Picture src = PictureOf(format, 3, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Pixels(Doubled(Filled(format, 7, 5, 0), src, {0, 0})), (Words{1, 1, 2, 2, 3, 3, 0,  //
                                                                            1, 1, 2, 2, 3, 3, 0,  //
                                                                            4, 4, 5, 5, 6, 6, 0,  //
                                                                            4, 4, 5, 5, 6, 6, 0,  //
                                                                            0, 0, 0, 0, 0, 0, 0}));
  }
}

TEST(DrawDouble, CopiesAllFourBytes) {
  EXPECT_EQ(Pixels(Doubled(Filled(32, 2, 2, 0), Filled(32, 1, 1, 0xAABBCCDD), {0, 0})),
            Words(4, 0xAABBCCDD));
}

TEST(DrawDouble, IsCutToWholeSourcePixels) {
  for (int format : {24, 32}) {
    const Picture src = PictureOf(format, 3, 2, {1, 2, 3, 4, 5, 6});
    // Three columns and three rows are visible: one source pixel in each direction.
    EXPECT_EQ(Pixels(Doubled(Filled(format, 4, 4, 0), src, {1, 1})),
              (Words{0, 0, 0, 0, 0, 1, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Pixels(Doubled(Filled(format, 4, 4, 0), src, {3, 0})), Words(16, 0));
    EXPECT_EQ(Pixels(Doubled(Filled(format, 4, 4, 0), src, {0, 3})), Words(16, 0));
  }
}

TEST(DrawDouble, NegativePositionStartsAtTheSourcesFirstPixel) {
  for (int format : {24, 32}) {
    const Picture src = PictureOf(format, 4, 2, {1, 2, 3, 4, 5, 6, 7, 8});
    // Six columns are visible, three source pixels are drawn, of which the first lies outside.
    EXPECT_EQ(Pixels(Doubled(Filled(format, 9, 4, 0), src, {-2, 0})),
              (Words{2, 2, 3, 3, 0, 0, 0, 0, 0,  //
                     2, 2, 3, 3, 0, 0, 0, 0, 0,  //
                     6, 6, 7, 7, 0, 0, 0, 0, 0,  //
                     6, 6, 7, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Pixels(Doubled(Filled(format, 2, 2, 0), src, {-3, -1})), (Words{0, 0, 0, 0}));
  }
}

TEST(DrawDouble, OtherFormatsDrawNothing) {
  for (int format : {8, 16, 17, 18, 19}) {
    EXPECT_EQ(Pixels(Doubled(Filled(format, 4, 4, 7), Filled(format, 2, 2, 9), {0, 0})),
              Words(16, 7));
  }
}

TEST(DrawDouble, AnyCaseMatchesModel) {
  support::ForEachCase(support::kWidths * 8, [&](Random& random, int seed) {
    const int format = seed % 16 == 15 ? model::kFormats[random.Below(7)] : seed % 2 ? 24 : 32;
    const int height = random.Between(1, 9);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed), height,
                                               support::AnyOptions(random));
    const Picture src = support::RandomPicture(random, format, random.Between(1, dst.width + 3),
                                               random.Between(1, 6), support::AnyOptions(random));
    CPunto at{random.Between(-8, 8), random.Between(-4, 4)};
    if (random.OneIn(4)) {
      at = {random.Between(-2 * src.width - 2, dst.width + 2),
            random.Between(-2 * src.height - 2, dst.height + 2)};
    }
    if (random.OneIn(30)) at.x = random.OneIn(2) ? INT32_MAX : INT32_MIN;
    if (random.OneIn(30)) at.y = random.OneIn(2) ? INT32_MAX : INT32_MIN;
    Doubled(dst, src, at);
  });
}

}  // namespace
