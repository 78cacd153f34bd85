#include <gtest/gtest.h>

#include <array>

#include "include/pincel.h"
#include "tests/model/line_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::ForEachCase;
using support::ForEachTarget;
using support::Random;
using support::Same;

constexpr int kMargin = 10;  // thickness and soft edges may leave the surface by less than this

// A surface inside a larger one, so that what leaves the surface stays in memory.
Picture Window(Picture p) {
  p.width -= 2 * kMargin;
  p.height -= 2 * kMargin;
  p.origin = p.Index(kMargin, kMargin);
  return p;
}

Picture RandomWindow(Random& random, int format, int width, int height,
                     support::PictureOptions options = {}) {
  return Window(
      support::RandomPicture(random, format, width + 2 * kMargin, height + 2 * kMargin, options));
}

// All pixels 0, margins too.
Picture BlackWindow(int format, int width, int height) {
  Random random(0);
  Picture p = RandomWindow(random, format, width, height);
  p.bytes.assign(p.bytes.size(), 0);
  return p;
}

bool Draw(Picture& p, CPunto p1, CPunto p2, uint32_t colour, int alpha, bool soft, int thickness) {
  TSurfDesc surface = Describe(p);
  return Line(surface, p1, p2, colour, static_cast<unsigned short>(alpha), soft, thickness);
}

// The pixels from (left, top), row by row: '#' where not 0.
std::string Shape(const Picture& p, int left, int top, int right, int bottom) {
  std::string shape;
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) shape += p.Get(x, y) ? '#' : '.';
    if (y + 1 < bottom) shape += '/';
  }
  return shape;
}

TEST(Line, DrawsBothEnds) {
  for (int format : model::kFormats) {
    Picture p = BlackWindow(format, 6, 3);
    p.has_palette = false;  // lu_gPaleta: entry 0 is black
    Draw(p, {1, 1}, {4, 1}, 0xFFFFFF, 255, false, 1);
    EXPECT_EQ(Shape(p, 0, 0, 6, 3), "....../.####./......") << format;
  }
}

TEST(Line, IsAlwaysFalse) {
  for (int format : model::kFormats) {
    Picture p = BlackWindow(format, 4, 4);
    EXPECT_FALSE(Draw(p, {0, 0}, {3, 2}, 0xFFFFFF, 255, false, 1));
    EXPECT_FALSE(Draw(p, {9, 0}, {12, 2}, 0xFFFFFF, 255, false, 1));
  }
}

TEST(Line, LevelAbove255CountsAs255) {
  for (int format : model::kFormats) {
    for (int alpha : {256, 300, 65535}) {
      Random random(7);
      Picture a = RandomWindow(random, format, 9, 9), b = a;
      Draw(a, {0, 1}, {8, 5}, 0x123456, 255, true, 2);
      Draw(b, {0, 1}, {8, 5}, 0x123456, alpha, true, 2);
      EXPECT_EQ(a.bytes, b.bytes) << format;
    }
  }
}

TEST(Line, LongerAxisLeadsAndThicknessGrowsAwayFromZero) {
  Picture p = BlackWindow(32, 6, 6);
  Draw(p, {0, 2}, {3, 2}, 0xFF, 255, false, 2);
  EXPECT_EQ(Shape(p, 0, 0, 6, 6), "....../....../####../####../....../......");
  p = BlackWindow(32, 6, 6);
  Draw(p, {2, 3}, {2, 0}, 0xFF, 255, false, 2);
  EXPECT_EQ(Shape(p, 0, 0, 6, 6), "..##../..##../..##../..##../....../......");
}

TEST(Line, EqualExtentsWalkAlongY) {
  Picture p = BlackWindow(32, 5, 5);
  Draw(p, {0, 0}, {2, 2}, 0xFF, 255, false, 2);
  EXPECT_EQ(Shape(p, 0, 0, 5, 5), "##.../.##../..##./...../.....");
}

TEST(Line, SinglePointIsOneRow) {
  Picture p = BlackWindow(32, 6, 4);
  Draw(p, {2, 1}, {2, 1}, 0xFF, 255, false, 3);
  EXPECT_EQ(Shape(p, 0, 0, 6, 4), "....../..###./....../......");
}

TEST(Line, ColumnAtWidthIsDrawn) {
  Picture p = BlackWindow(32, 4, 3);
  Draw(p, {2, 1}, {90, 1}, 0xFF, 255, false, 1);
  EXPECT_EQ(Shape(p, 0, 0, 7, 3), "......./..###../.......");
  p = BlackWindow(32, 4, 3);
  Draw(p, {1, 1}, {1, 90}, 0xFF, 255, false, 1);
  EXPECT_EQ(Shape(p, 0, 0, 4, 6), "..../.#../.#../.#../..../....");
}

TEST(Line, ThicknessLeavesTheSurface) {
  Picture p = BlackWindow(32, 4, 3);
  Draw(p, {0, 2}, {3, 2}, 0xFF, 255, false, 3);
  EXPECT_EQ(Shape(p, 0, 0, 4, 6), "..../..../####/####/####/....");
}

TEST(Line, StepsOutsideTheOtherAxisAreLeftOut) {
  Picture p = BlackWindow(32, 8, 4);
  Draw(p, {0, -2}, {6, 4}, 0xFF, 255, false, 1);  // along y
  EXPECT_EQ(Shape(p, 0, -3, 8, 6),
            "......../......../......../..#...../...#..../....#.../.....#../......#./........");
  p = BlackWindow(32, 8, 4);
  Draw(p, {0, -2}, {7, 4}, 0xFF, 255, false, 1);  // along x
  EXPECT_EQ(Shape(p, 0, -3, 8, 6),
            "......../......../......../...#..../....#.../.....#../......#./......../........");
}

TEST(Line, BytesBlendIn255thsAndKeepTheFourth) {
  Picture p = BlackWindow(32, 2, 1);
  p.Put(0, 0, 0x7764C800);
  Draw(p, {0, 0}, {0, 0}, 0xC80064, 100, false, 1);
  // 100 * (155/255) + 200 * (100/255) = 139.2; 200 * (155/255) = 121.6; 100 * (100/255) = 39.2
  EXPECT_EQ(p.Get(0, 0), 0x778B7927u);
  p = BlackWindow(24, 2, 1);
  p.Put(0, 0, 0x64C800);
  Draw(p, {0, 0}, {0, 0}, 0xC80064, 100, false, 1);
  EXPECT_EQ(p.Get(0, 0), 0x8B7927u);
}

TEST(Line, PackedFieldsBlendIn256thsAndLeaveARestAtFullLevel) {
  Picture p = BlackWindow(16, 2, 1);
  Draw(p, {0, 0}, {0, 0}, 0xFFFFFF, 255, false, 1);
  EXPECT_EQ(p.Get(0, 0), 0xF7DEu);  // 30, 62, 30 of 31, 63, 31
  p.Put(0, 0, 0xFFFF);
  Draw(p, {0, 0}, {0, 0}, 0x000000, 255, false, 1);
  EXPECT_EQ(p.Get(0, 0), 0x0000u);  // -31 * 255 >> 8 rounds down to -31
}

TEST(Line, PackedFieldsKeepAlphaBits) {
  Picture p = BlackWindow(18, 2, 1);
  p.Put(0, 0, 0x8000);
  Draw(p, {0, 0}, {0, 0}, 0xFFFFFFFF, 255, false, 1);
  EXPECT_EQ(p.Get(0, 0), 0xFBDEu);
  p = BlackWindow(17, 2, 1);
  Draw(p, {0, 0}, {0, 0}, 0xFFFFFFFF, 255, false, 1);
  EXPECT_EQ(p.Get(0, 0), 0x7BDEu);
  p = BlackWindow(19, 2, 1);
  p.Put(0, 0, 0x5000);
  Draw(p, {0, 0}, {0, 0}, 0xFFFFFFFF, 255, false, 1);
  EXPECT_EQ(p.Get(0, 0), 0x5EEEu);
}

TEST(Line, IndexedStoresTheNearestEntryOfTheMixedColour) {
  Picture p = BlackWindow(8, 2, 1);
  p.palette.fill({0, 0, 0, 9});
  p.palette[3] = {0, 0, 90, 9};
  p.palette[4] = {0, 0, 101, 9};  // one brighter than the mixed colour: 255 away
  p.palette[5] = {0, 0, 90, 9};   // as near as entry 3: the highest index wins
  Draw(p, {0, 0}, {0, 0}, 0xFF0000, 100, false, 1);
  EXPECT_EQ(p.Get(0, 0), 5u);
}

TEST(Line, IndexedWithoutPaletteUsesTheLibrarysPalette) {
  Picture p = BlackWindow(8, 2, 1);
  p.has_palette = false;
  Draw(p, {0, 0}, {0, 0}, 0xFFFFFF, 255, false, 1);
  EXPECT_EQ(p.Get(0, 0), 251u);
}

TEST(Line, SoftEdgesTakeTheirCoverage) {
  Picture p = BlackWindow(32, 5, 6);
  // Along x, y = 2, 2.25, 2.5, 2.75, 3.
  Draw(p, {0, 2}, {4, 3}, 0xC8, 255, true, 1);
  const uint32_t expected[6][5] = {
      {0, 0, 0, 0, 0},        {200, 150, 100, 50, 0}, {200, 200, 200, 200, 200},
      {0, 50, 100, 150, 200}, {0, 0, 0, 0, 0},        {0, 0, 0, 0, 0},
  };
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 5; ++x) EXPECT_EQ(p.Get(x, y), expected[y][x]) << x << ", " << y;
  }
}

TEST(Line, SoftEdgeInTheFirstRowWeighsMoreThanOne) {
  // At x = 1 the centre is 0.5. The far edge (thickness 0) lies in row 0 too: 255 * 0.5 = 127. The
  // near edge is at -0.5, which truncates to row 0 with weight 1.5: 127 * -0.5 + 255 * 1.5 = 319,
  // and the low byte is stored.
  Picture p = BlackWindow(32, 4, 4);
  Draw(p, {0, 0}, {2, 1}, 0xFF, 255, true, 0);
  EXPECT_EQ(p.Get(1, 0), 63u);
}

TEST(Line, SoftEdgeOfACentreOnTheFirstRowLeavesTheSurface) {
  Picture p = BlackWindow(32, 4, 4);
  Draw(p, {0, 0}, {2, 0}, 0xFF, 255, true, 1);
  EXPECT_EQ(Shape(p, 0, -2, 4, 2), "..../###./###./....");
}

TEST(Line, ThicknessBelowOneDrawsTheSoftEdgesOnly) {
  Picture p = BlackWindow(32, 4, 4);
  Draw(p, {0, 2}, {3, 2}, 0xFF, 255, false, 0);
  EXPECT_EQ(Shape(p, 0, 0, 4, 4), "..../..../..../....");
  Draw(p, {0, 2}, {3, 2}, 0xFF, 255, true, -1);
  EXPECT_EQ(Shape(p, 0, 0, 4, 4), "..../####/..../....");
}

TEST(Line, UnsupportedDepthWritesNothing) {
  Picture p = BlackWindow(32, 4, 4);
  TSurfDesc surface = Describe(p);
  surface.bpp = 15;
  EXPECT_FALSE(Line(surface, {0, 0}, {3, 3}, 0xFFFFFF, 255, true, 3));
  EXPECT_EQ(Shape(p, -4, -4, 8, 8), Shape(BlackWindow(32, 4, 4), -4, -4, 8, 8));
}

// A coordinate inside, near, outside or at the ends of the numbers.
int RandomCoordinate(Random& random, int size) {
  switch (random.Below(12)) {
    case 0:
      return random.Between(-4 * size, -1);
    case 1:
      return random.Between(size, 5 * size);
    case 2:
      return random.Between(-100000, 100000);
    case 3: {
      const int ends[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, INT32_MAX};
      return ends[random.Below(4)];
    }
    default:
      return random.Between(-1, size);
  }
}

TEST(Line, MatchesTheModel) {
  ForEachTarget([] {
    ForEachCase(400, [](Random& random, int) {
      for (int format : model::kFormats) {
        const int width = random.Between(0, 40), height = random.Between(0, 40);
        support::PictureOptions options;
        options.negative_pitch = random.OneIn(4);
        Picture expected = RandomWindow(random, format, width, height, options);
        expected.has_palette = format == 8 && !random.OneIn(4);
        Picture actual = expected;
        CPunto p1, p2;
        p1.x = RandomCoordinate(random, width + 1);
        p1.y = RandomCoordinate(random, height + 1);
        p2.x = random.OneIn(6) ? p1.x : RandomCoordinate(random, width + 1);
        p2.y = random.OneIn(6) ? p1.y : RandomCoordinate(random, height + 1);
        const int levels[] = {0, 1, 127, 128, 254, 255, 256, 300, 65535};
        const int alpha = random.OneIn(2) ? random.Below(256) : levels[random.Below(9)];
        const uint32_t colour = random.Next();
        const bool soft = random.OneIn(2);
        const int thickness = random.Between(-1, 6);

        model::Line(expected, p1, p2, colour, alpha, soft, thickness, lu_gPaleta);
        TSurfDesc surface = Describe(actual);
        ASSERT_FALSE(
            Line(surface, p1, p2, colour, static_cast<unsigned short>(alpha), soft, thickness));
        ASSERT_TRUE(Same(expected, actual, surface))
            << "(" << p1.x << ", " << p1.y << ") to (" << p2.x << ", " << p2.y << ") colour "
            << colour << " alpha " << alpha << " soft " << soft << " thickness " << thickness;
      }
    });
  });
}

// Every pair of a field's value and a colour's, at every level: one pixel each.
TEST(Line, EveryFieldPairAndLevel) {
  for (int level = 0; level < 256; ++level) {
    for (int byte = 0; byte < 256; byte += 4) {
      Picture expected = BlackWindow(16, 1, 64);
      for (int y = 0; y < 64; ++y) expected.Put(0, y, uint32_t(y << 5 | y >> 1 << 11 | y >> 1));
      Picture actual = expected;
      const uint32_t colour = uint32_t(byte) * 0x10101;
      model::Line(expected, {0, 0}, {0, 63}, colour, level, false, 1, lu_gPaleta);
      Draw(actual, {0, 0}, {0, 63}, colour, level, false, 1);
      ASSERT_EQ(expected.bytes, actual.bytes) << "level " << level << " byte " << byte;
    }
  }
}

TEST(Line, EveryBytePairAtSomeLevels) {
  for (int level : {0, 1, 2, 3, 51, 85, 100, 127, 128, 129, 200, 253, 254, 255}) {
    for (int target = 0; target < 256; ++target) {
      Picture expected = BlackWindow(24, 1, 256);
      for (int y = 0; y < 256; ++y) expected.Put(0, y, uint32_t(y) * 0x10101);
      Picture actual = expected;
      const uint32_t colour = uint32_t(target) * 0x10101;
      model::Line(expected, {0, 0}, {0, 255}, colour, level, false, 1, lu_gPaleta);
      Draw(actual, {0, 0}, {0, 255}, colour, level, false, 1);
      ASSERT_EQ(expected.bytes, actual.bytes) << "level " << level << " target " << target;
    }
  }
}

}  // namespace
