// Scaling and transforms: small pictures whose results are worked out by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "include/pincel.h"
#include "tests/support/compare.h"
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

// `call` on copies of `dst`, on every instruction set; they must agree.
template <class Call>
Picture After(const Picture& dst, Call&& call) {
  Picture first;
  support::ForEachTarget([&] {
    Picture actual = dst;
    TSurfDesc d = Describe(actual);
    EXPECT_TRUE(call(d));
    if (first.bytes.empty()) first = actual;
    EXPECT_TRUE(support::Same(first, actual, d));
  });
  return first;
}

// StretchBitmap in the depth of the surfaces. The source is all of `src`.
Picture InProportion(const Picture& dst, const CRectangulo& to, Picture src) {
  TSurfDesc s = Describe(src);
  return After(dst, [&](TSurfDesc& d) {
    return StretchBitmap(d, to, s, Whole(src), src.format, true, false);
  });
}

// Every row alike, or every column.
Picture GreyColumns(int format, int height, const Words& greys) {
  Picture p = Filled(format, int(greys.size()), height, 0);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < p.width; ++x) p.Put(x, y, greys[size_t(x)] * 0x010101);
  }
  return p;
}
Words FirstBytes(const Picture& p) {
  Words bytes;
  for (uint32_t pixel : Pixels(p)) bytes.push_back(pixel & 0xFF);
  return bytes;
}

TEST(BltStrech, StepsOfSinglePrecisionFallShort) {
  // Ten for six: the step 1.6666666 is a little less than five thirds, and three of them less than 5.
  const Words greys = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
  for (int format : model::kFormats) {
    Picture row = PictureOf(format, 10, 1, greys), column = PictureOf(format, 1, 10, greys);
    TSurfDesc r = Describe(row), c = Describe(column);
    const Words expected = {10, 11, 13, 14, 16, 18};
    EXPECT_EQ(Pixels(After(Filled(format, 6, 1, 0),
                           [&](TSurfDesc& d) {
                             return BltStrech(d, {0, 0, 6, 1}, r, {0, 0, 10, 1}, false);
                           })),
              expected);
    EXPECT_EQ(Pixels(After(Filled(format, 1, 6, 0),
                           [&](TSurfDesc& d) {
                             return BltStrech(d, {0, 0, 1, 6}, c, {0, 0, 1, 10}, false);
                           })),
              expected);
  }
}

TEST(BltStrech, SmoothMixesFourNeighbours) {
  for (int format : {24, 32}) {
    Picture src =
        PictureOf(format, 2, 2, {40 * 0x010101, 80 * 0x010101, 120 * 0x010101, 160 * 0x010101});
    TSurfDesc s = Describe(src);
    const Picture dst = After(Filled(format, 4, 4, 0), [&](TSurfDesc& d) {
      return BltStrech(d, {0, 0, 4, 4}, s, {0, 0, 2, 2}, true);
    });
    // Half way in both directions: weights 16383, 16383, 16383 and 16384.
    EXPECT_EQ(dst.Get(1, 1), 99 * 0x010101u);  // 6553360 / 65536
    // Half way down only: 32766 and 32767.
    EXPECT_EQ(dst.Get(0, 1), 79 * 0x010101u);  // 5242680 / 65536
    EXPECT_EQ(dst.Get(1, 0), 59 * 0x010101u);
    EXPECT_EQ(dst.Get(0, 0), 39 * 0x010101u);
  }
}

TEST(StretchBitmap, EnlargesOrReducesWhatClippingLeaves) {
  const Picture dst = Filled(24, 20, 20, 9);
  // Two columns for three, of which one is visible: 2 x 2 / 3 = 1 column is cut off the source.
  EXPECT_EQ(InProportion(dst, {19, 0, 22, 20}, GreyColumns(24, 2, {50, 60})).bytes, dst.bytes)
      << "one column for one";
  // Three columns for two, of which one is visible: 1 x 3 / 2 = 1 is cut off, 2 remain.
  const Picture reduced = InProportion(dst, {19, 0, 21, 20}, GreyColumns(24, 40, {50, 60, 70}));
  EXPECT_EQ(reduced.Get(19, 0), 55 * 0x010101u);
  EXPECT_EQ(reduced.Get(18, 0), 9u);
}

TEST(StretchBitmap, WhatIsCutOffTheSourceIsTruncated) {
  // Five columns for eight, of which three are cut off: 15 / 8 is one column, from either end.
  const Picture src = GreyColumns(24, 2, {0, 80, 160, 240, 250});
  EXPECT_EQ(FirstBytes(InProportion(Filled(24, 5, 3, 9), {0, 0, 8, 3}, src)),
            (Words{0, 63, 127, 191, 240, 0, 63, 127, 191, 240, 0, 63, 127, 191, 240}));
  EXPECT_EQ(FirstBytes(InProportion(Filled(24, 5, 3, 9), {-3, 0, 5, 3}, src)),
            (Words{80, 143, 207, 243, 250, 80, 143, 207, 243, 250, 80, 143, 207, 243, 250}));
}

TEST(StretchBitmap, ReducingTakesBlocksOfDifferentSizes) {
  // Five for two: blocks of two and of three.
  for (int format : {24, 32}) {
    Picture src = GreyColumns(format, 5, {0, 10, 20, 30, 40});
    for (int y = 2; y < 5; ++y) {
      for (int x = 0; x < 5; ++x) src.Put(x, y, src.Get(x, y) + 100 * 0x010101);
    }
    EXPECT_EQ(FirstBytes(InProportion(Filled(format, 2, 2, 9), {0, 0, 2, 2}, src)),
              (Words{5, 30, 105, 130}));
  }
}

TEST(StretchBitmap, ReducedPixelsWithoutASourcePixelStay) {
  // 257 columns count as one, which ten steps of 6553 / 65536 do not reach and eight of 8192 do.
  const Picture src = Filled(24, 257, 20, 70 * 0x010101);
  EXPECT_EQ(Pixels(InProportion(Filled(24, 10, 1, 9), {0, 0, 10, 1}, src)), Words(10, 9));
  EXPECT_EQ(Pixels(InProportion(Filled(24, 8, 1, 9), {0, 0, 8, 1}, src)),
            (Words{9, 9, 9, 9, 9, 9, 9, 70 * 0x010101}));
}

TEST(CreateRotated, Modes0And4AreTheBlit) {
  for (int format : model::kFormats) {
    Random random(static_cast<uint64_t>(format));
    Picture src = support::RandomPicture(random, format, 21, 5);
    support::PlantKey(random, src, format == 8 ? 3 : 0x1234, format == 8 ? 0 : 0x1234);
    TSurfDesc s = Describe(src);
    Picture drawn = support::RandomPicture(random, format, 21, 5);
    const Picture before = drawn;
    TSurfDesc d = Describe(drawn);
    EXPECT_TRUE(DrawBitmap(d, s));
    EXPECT_EQ(After(before, [&](TSurfDesc& t) { return CreateRotated(t, s, 0); }).bytes,
              drawn.bytes);
    EXPECT_TRUE(FlipX(d));
    EXPECT_EQ(After(before, [&](TSurfDesc& t) { return CreateRotated(t, s, 4); }).bytes,
              drawn.bytes);
  }
}

TEST(TranslateRect, OnlyTheRectangleIsShifted) {
  unsigned char table[256] = {};
  table[8] = 77;
  for (int format : model::kFormats) {
    const Picture before = Filled(format, 4, 3, 0x08080808);
    const Picture after = After(before, [&](TSurfDesc& d) {
      return TranslateRect(d, {-5, 1, 2, 2}, 1.0F, table);
    });
    for (int y = 0; y < 3; ++y) {
      for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(after.Get(x, y) != before.Get(x, y), y == 1 && x < 2) << format;
      }
    }
  }
}

}  // namespace
