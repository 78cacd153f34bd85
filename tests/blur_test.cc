// Directional blurs: colours painted through masks that are moved along a line.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include "include/pincel.h"
#include "tests/model/blur_model.h"
#include "tests/model/core_model.h"
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
using support::Noisy;
using support::PictureOf;
using support::Pixels;
using support::Random;
using Words = std::vector<uint32_t>;

constexpr float kQuarterTurn = 1.57079637f;
constexpr int kPaintedFormats[] = {16, 17, 18, 19, 24, 32};

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

struct Outcome {
  Words pixels;
  bool result;
  bool operator==(const Outcome& other) const {
    return pixels == other.pixels && result == other.result;
  }
};

// Each operation on the whole destination, in its two or one last arguments.
Outcome Motion(Picture dst, Picture mask, CPunto at, uint32_t colour, int length, float angle) {
  TSurfDesc d = Describe(dst), m = Describe(mask);
  const bool result = FiltroMotionBlur(d, m, Whole(dst), at, colour, length, angle);
  return {Pixels(dst), result};
}
Outcome Glow(Picture dst, Picture mask, CPunto at, uint32_t colour, int length, float angle) {
  TSurfDesc d = Describe(dst), m = Describe(mask);
  const bool result = FiltroBrilloBlur(d, m, Whole(dst), at, colour, length, angle);
  return {Pixels(dst), result};
}
Outcome Once(Picture dst, Picture mask, CPunto at, int level) {
  TSurfDesc d = Describe(dst), m = Describe(mask);
  const bool result = FiltroMotionMask(d, m, Whole(dst), at, level);
  return {Pixels(dst), result};
}

// A mask of one row with one set pixel.
Picture Spot(int format, int width, int x, uint32_t value = 255) {
  Picture mask = Filled(format, width, 1, 0);
  mask.Put(x, 0, value);
  return mask;
}

// Worked examples.

TEST(MotionBlur, LengthBelow2PaintsNothingAndIsTrue) {
  const Picture dst = Filled(24, 3, 1, 0x102030), mask = Filled(8, 3, 1, 255);
  for (int length : {1, 0, -1, -2, -3, INT_MIN}) {
    EXPECT_EQ(Motion(dst, mask, {0, 0}, 0xFFFFFF, length, 0), (Outcome{Words(3, 0x102030), true}))
        << length;
  }
}

TEST(MotionBlur, Length2PaintsTheMiddleAndOneBefore) {
  // k = 0 shows the mask where it is, k = -1 reads one pixel to the left: one to the right on screen.
  const Picture dst = Filled(24, 5, 1, 0);
  for (int format : {8, 32}) {
    for (int length : {2, 3}) {
      EXPECT_EQ(Motion(dst, Spot(format, 5, 2), {0, 0}, 0xFF8040, length, 0),
                (Outcome{{0, 0, 0xFF8040, 0xFF8040, 0}, true}));
    }
  }
}

TEST(MotionBlur, ByteTimesStepBy256) {
  const Picture dst = Filled(24, 2, 1, 0x646464);
  // 255 with step 256 stores the colour; 1 with step 128 does nothing: 4 positions have step 128.
  EXPECT_EQ(Once(dst, Filled(8, 2, 1, 255), {0, 0}, 256), (Outcome{Words(2, 0xFFFFFF), false}));
  EXPECT_EQ(Once(dst, Filled(8, 2, 1, 1), {0, 0}, 128), (Outcome{Words(2, 0x646464), false}));
  EXPECT_EQ(Motion(dst, Filled(8, 2, 1, 1), {0, 0}, 0xFFFFFF, 4, 0),
            (Outcome{Words(2, 0x646464), true}));
  // a = 100 * 128 / 256 = 50: 255 + floor((100 - 255) * 205 / 256) = 130.
  EXPECT_EQ(Once(dst, Filled(8, 2, 1, 100), {0, 0}, 128), (Outcome{Words(2, 0x828282), false}));
}

TEST(MotionBlur, LongerLinesPaintFainter) {
  // Length 4: step 128, so that 255 paints with 127, up to four times.
  const Picture dst = Filled(24, 6, 1, 0);
  const Outcome seen = Motion(dst, Spot(8, 6, 2), {0, 0}, 0xFF0000, 4, 0);
  const uint32_t one = (255 + (-255 * 128 - 255) / 256) << 16;  // floor(-127.5)
  EXPECT_EQ(seen, (Outcome{{0, one, one, one, one, 0}, true}));
}

TEST(MotionMask, SixteenBitsTakeTheLowHalfOfWhite) {
  for (int format : {16, 17, 18, 19}) {
    EXPECT_EQ(Once(Filled(format, 2, 1, 0), Filled(8, 2, 1, 255), {0, 0}, 256),
              (Outcome{Words(2, 0xFFFF), false}))
        << format;
  }
  EXPECT_EQ(Once(Filled(32, 2, 1, 0x12345678), Filled(8, 2, 1, 255), {0, 0}, 256),
            (Outcome{Words(2, 0x00FFFFFF), false}));
}

TEST(MotionBlur, QuarterTurnOverAnIndexedMaskPaintsTheMiddleOnly) {
  Picture mask = Filled(8, 3, 5, 0), dst = Filled(24, 3, 5, 0);
  for (int y = 0; y < 5; ++y) mask.Put(1, y, uint32_t(40 * (y + 1)));
  const Outcome middle = Once(dst, mask, {0, 0}, 128);
  const Outcome blurred = Motion(dst, mask, {0, 0}, 0xFFFFFF, 4, kQuarterTurn);
  EXPECT_EQ(blurred.pixels, middle.pixels);
  EXPECT_TRUE(blurred.result);
  // A mask of 32 bits is painted in all four positions.
  Picture deep = Filled(32, 3, 5, 0);
  deep.Put(1, 2, 255);
  const uint32_t half = (255 + (-255 * 128 - 255) / 256) * 0x010101u;
  const Words column = {0, 0, 0, 0, half, 0, 0, half, 0, 0, half, 0, 0, half, 0};
  EXPECT_EQ(Motion(dst, deep, {0, 0}, 0xFFFFFF, 4, kQuarterTurn), (Outcome{column, true}));
}

// Results.

TEST(GlowBlur, ClippedAwayIsTrueAndDrawnIsFalse) {
  Picture dst = Filled(24, 3, 1, 0), mask = Filled(8, 3, 1, 255);
  TSurfDesc d = Describe(dst), m = Describe(mask);
  for (const CRectangulo& outside :
       {CRectangulo{3, 0, 9, 1}, {-5, 0, 0, 1}, {0, 1, 3, 2}, {2, 0, 1, 1}, {0, 0, 0, 0}}) {
    EXPECT_TRUE(FiltroBrilloBlur(d, m, outside, {0, 0}, 0xFFFFFF, 4, 0));
    EXPECT_TRUE(FiltroBrilloBlur(d, m, outside, {0, 0}, 0xFFFFFF, 1, 0));
    EXPECT_TRUE(FiltroMotionMask(d, m, outside, {0, 0}, 256));
    EXPECT_FALSE(FiltroMotionBlur(d, m, outside, {0, 0}, 0xFFFFFF, 4, 0));
    EXPECT_FALSE(FiltroMotionBlur(d, m, outside, {0, 0}, 0xFFFFFF, 1, 0));
  }
  EXPECT_EQ(Pixels(dst), Words(3, 0));
  EXPECT_FALSE(FiltroBrilloBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, 1, 0));
  EXPECT_FALSE(FiltroBrilloBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, INT_MIN, 0));
  EXPECT_EQ(Pixels(dst), Words(3, 0));
  EXPECT_FALSE(FiltroBrilloBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, 2, 0));
  EXPECT_EQ(Pixels(dst), Words(3, 0xFFFFFF));
}

TEST(MotionMask, ClippedAwayIsTrueAndDrawnIsFalse) {
  Picture dst = Filled(16, 3, 1, 0), mask = Filled(8, 3, 1, 255);
  TSurfDesc d = Describe(dst), m = Describe(mask);
  EXPECT_TRUE(FiltroMotionMask(d, m, {5, 0, 9, 1}, {0, 0}, 256));
  EXPECT_FALSE(FiltroMotionMask(d, m, Whole(dst), {0, 0}, 0));
  EXPECT_EQ(Pixels(dst), Words(3, 0));
  EXPECT_FALSE(FiltroMotionMask(d, m, Whole(dst), {0, 0}, 256));
  EXPECT_EQ(Pixels(dst), Words(3, 0xFFFF));
}

TEST(MotionBlur, MaskWithoutPixelsIsFalse) {
  Picture dst = Filled(24, 3, 1, 0x102030), mask = Filled(8, 3, 1, 255);
  TSurfDesc d = Describe(dst), m = Describe(mask);
  m.width = 0;
  EXPECT_FALSE(FiltroMotionBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, 4, 0));
  m = Describe(mask);
  m.height = -1;
  EXPECT_FALSE(FiltroMotionBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, 4, 0));
  EXPECT_EQ(Pixels(dst), Words(3, 0x102030));
}

TEST(MotionBlur, OtherDestinationsAreLeftAndTheResultDoesNotTell) {
  for (uint32_t bpp : {8u, 4u, 15u, 0u}) {
    const Picture before = Filled(32, 3, 2, 0x40302010);
    Picture dst = before, mask = Filled(8, 3, 2, 255);
    TSurfDesc d = Describe(dst), m = Describe(mask);
    d.bpp = bpp;
    EXPECT_TRUE(FiltroMotionBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, 4, 0)) << bpp;
    EXPECT_FALSE(FiltroMotionBlur(d, m, {9, 0, 12, 1}, {0, 0}, 0xFFFFFF, 4, 0)) << bpp;
    EXPECT_FALSE(FiltroBrilloBlur(d, m, Whole(dst), {0, 0}, 0xFFFFFF, 4, 0)) << bpp;
    EXPECT_TRUE(FiltroBrilloBlur(d, m, {9, 0, 12, 1}, {0, 0}, 0xFFFFFF, 4, 0)) << bpp;
    EXPECT_FALSE(FiltroMotionMask(d, m, Whole(dst), {0, 0}, 256)) << bpp;
    EXPECT_TRUE(FiltroMotionMask(d, m, {9, 0, 12, 1}, {0, 0}, 256)) << bpp;
    EXPECT_EQ(dst.bytes, before.bytes) << bpp;
  }
}

TEST(MotionBlur, MasksOfOtherDepthsPaintNothing) {
  for (int format : {16, 17, 18, 19, 24}) {
    const Picture dst = Filled(24, 3, 1, 0x102030), mask = Filled(format, 3, 1, 0xFFFFFF);
    EXPECT_EQ(Once(dst, mask, {0, 0}, 256), (Outcome{Words(3, 0x102030), false})) << format;
    EXPECT_EQ(Motion(dst, mask, {0, 0}, 0xFFFFFF, 4, 0), (Outcome{Words(3, 0x102030), true}));
    EXPECT_EQ(Glow(dst, mask, {0, 0}, 0xFFFFFF, 4, 0), (Outcome{Words(3, 0x102030), false}));
  }
}

// What a position paints.

TEST(MotionMask, AByteOutsideTheFirstRowsIsNotReadFromAnIndexedMask) {
  Picture mask = PictureOf(8, 3, 4, {255, 0, 0, 0, 255, 0, 255, 255, 255, 255, 255, 255});
  for (int format : kPaintedFormats) {
    const Picture dst = Filled(format, 3, 2, 0);
    const uint32_t white = format >= 24 ? 0xFFFFFF : 0xFFFF;
    EXPECT_EQ(Once(dst, mask, {0, 0}, 256).pixels, (Words{white, 0, 0, 0, white, 0}));
    // One row further down nothing counts, although the mask has the bytes.
    EXPECT_EQ(Once(dst, mask, {0, 1}, 256).pixels, Words(6, 0));
    EXPECT_EQ(Once(dst, mask, {0, 2}, 256).pixels, Words(6, 0));
    EXPECT_EQ(Once(dst, mask, {0, -1}, 256).pixels, Words(6, 0));
    // A point that is a row down and as far to the left is the same point.
    EXPECT_EQ(Once(dst, mask, {-3, 1}, 256).pixels, Once(dst, mask, {0, 0}, 256).pixels);
    EXPECT_EQ(Once(dst, mask, {4, -1}, 256).pixels, (Words{0, 0, 0, white, 0, 0}));
    EXPECT_EQ(Once(dst, mask, {-2, 1}, 256).pixels, (Words{0, 0, 0, white, 0, 0}));
    // The 32-bit mask has no such rule.
    Picture deep = PictureOf(32, 3, 4, Pixels(mask));
    EXPECT_EQ(Once(dst, deep, {0, 1}, 256).pixels, (Words{0, white, 0, white, white, white}));
  }
}

TEST(MotionMask, AnIndexedMaskWithRowsUpwardsPaintsNothing) {
  // A row of it would have to end before it begins.
  for (int format : {8, 32}) {
    Picture mask = Filled(format, 3, 2, 255);
    mask.origin = mask.Index(0, 1);
    mask.pitch = -mask.pitch;
    EXPECT_EQ(Once(Filled(24, 3, 2, 0), mask, {0, 0}, 256).pixels,
              Words(6, format == 8 ? 0 : 0xFFFFFF));
  }
}

TEST(MotionMask, PaddingOfAnIndexedMaskCounts) {
  Picture mask = PictureOf(8, 3, 2, {255, 0, 255, 0, 0, 255});
  mask.width = 2;
  EXPECT_EQ(Once(Filled(24, 3, 2, 0), mask, {0, 0}, 256).pixels,
            (Words{0xFFFFFF, 0, 0xFFFFFF, 0, 0, 0xFFFFFF}));
}

TEST(MotionMask, NothingIsReadBelowTheMask) {
  for (int format : {8, 32}) {
    EXPECT_EQ(Once(Filled(24, 1, 4, 0), Filled(format, 1, 2, 255), {0, 0}, 256).pixels,
              (Words{0xFFFFFF, 0xFFFFFF, 0, 0}));
  }
}

TEST(MotionMask, ThePointMovesWithTheClippedRectangle) {
  Picture dst = Filled(24, 3, 1, 0), mask = PictureOf(8, 5, 1, {10, 20, 30, 255, 255});
  TSurfDesc d = Describe(dst), m = Describe(mask);
  EXPECT_FALSE(FiltroMotionMask(d, m, {-3, 0, 2, 1}, {0, 0}, 256));
  EXPECT_EQ(Pixels(dst), (Words{0xFFFFFF, 0xFFFFFF, 0}));
}

TEST(MotionBlur, TheAreaIsNoLargerThanTheMask) {
  // In the middle position the area's last columns would show what is right of the mask: with a
  // smaller area they are not painted in the other positions either.
  Picture dst = Filled(24, 6, 3, 0), mask = Filled(32, 2, 2, 255);
  TSurfDesc d = Describe(dst), m = Describe(mask);
  EXPECT_TRUE(FiltroMotionBlur(d, m, {1, 0, 6, 3}, {0, 0}, 0xFFFFFF, 2, 0));
  EXPECT_EQ(dst.Get(0, 0), 0u);
  EXPECT_EQ(dst.Get(1, 0), 0xFFFFFFu);
  EXPECT_EQ(dst.Get(2, 1), 0xFFFFFFu);
  EXPECT_EQ(dst.Get(3, 0), 0u);
  EXPECT_EQ(dst.Get(1, 2), 0u);
  FiltroBrilloBlur(d, m, {1, 0, 6, 3}, {0, 0}, 0xFFFFFF, 2, 0);
  EXPECT_EQ(dst.Get(3, 0), 0xFFFFFFu);
}

TEST(MotionMask, ByteOfTheMaskTimesLevelIsA16BitProduct) {
  // 255 * 514 = 131070 is 65534 in 16 bits, a = 255; 255 * 65535 is 65281, a = 255; 2 * 32768 is 0.
  const Picture dst = Filled(24, 1, 1, 0x102030);
  EXPECT_EQ(Once(dst, Filled(8, 1, 1, 255), {0, 0}, 514).pixels, Words{0xFFFFFF});
  EXPECT_EQ(Once(dst, Filled(8, 1, 1, 255), {0, 0}, 65535).pixels, Words{0xFFFFFF});
  EXPECT_EQ(Once(dst, Filled(8, 1, 1, 2), {0, 0}, 32768).pixels, Words{0x102030});
  // The level's low 16 bits count.
  EXPECT_EQ(Once(dst, Filled(8, 1, 1, 255), {0, 0}, 256 + 65536).pixels, Words{0xFFFFFF});
  EXPECT_EQ(Once(dst, Filled(8, 1, 1, 255), {0, 0}, -65536).pixels, Words{0x102030});
  EXPECT_EQ(Once(dst, Filled(8, 1, 1, 255), {0, 0}, -1).pixels, Words{0xFFFFFF});
}

TEST(MotionBlur, AlphaBitsOfMixed16BitPixelsAre0) {
  for (const auto& [format, before, stored] :
       {std::tuple{17, 0x8000u, 0xFFFFu}, {18, 0x8000u, 0xFFFFu}, {19, 0xA000u, 0xF321u}}) {
    const Picture dst = Filled(format, 1, 1, before);
    EXPECT_EQ(Motion(dst, Filled(32, 1, 1, 255), {0, 0}, stored, 2, kQuarterTurn).pixels,
              Words{stored});
    const uint32_t mixed =
        Motion(dst, Filled(32, 1, 1, 254), {0, 0}, stored, 2, kQuarterTurn).pixels[0];
    EXPECT_EQ(mixed & (format == 19 ? 0xF000u : 0x8000u), 0u);
    EXPECT_NE(mixed, 0u);
    EXPECT_EQ(Motion(dst, Filled(32, 1, 1, 0), {0, 0}, stored, 2, kQuarterTurn).pixels,
              Words{before});
  }
}

TEST(MotionBlur, FourthByteIsMixedLikeAChannel) {
  // a = 100: 0x80 + floor((0x10 - 0x80) * 155 / 256) = 60.
  const Picture dst = Filled(32, 1, 1, 0x10000000);
  EXPECT_EQ(Motion(dst, Spot(32, 1, 0, 100), {0, 0}, 0x80000000, 2, kQuarterTurn).pixels[0] >> 24,
            60u);
}

TEST(GlowBlur, StepsFallOffWithTheDistance) {
  // Steps 256 at k = 0, 128 at 1 and -1, 64 at 2 and -2, ...
  const Picture dst = Filled(24, 9, 1, 0);
  const Outcome glow = Glow(dst, Spot(8, 9, 4), {0, 0}, 0x0000FF, 7, 0);
  const auto painted = [](int a) { return uint32_t(255 - (255 * (255 - a) + 255) / 256); };
  EXPECT_EQ(glow, (Outcome{{0, 0, painted(63), painted(127), 255, painted(127), painted(63),
                            painted(255 * 42 / 256), 0},
                           false}));
}

TEST(GlowBlur, PositionsFartherThan128PaintNothing) {
  const Picture dst = Filled(24, 400, 1, 0), mask = Spot(8, 400, 200);
  const Outcome glow = Glow(dst, mask, {0, 0}, 0xFFFFFF, 258, 0);
  EXPECT_EQ(Glow(dst, mask, {0, 0}, 0xFFFFFF, 300, 0), glow);
  EXPECT_EQ(Glow(dst, mask, {0, 0}, 0xFFFFFF, INT_MAX, 0), glow);
  // An even blur of more than 512 positions has step 0.
  EXPECT_EQ(Motion(dst, mask, {0, 0}, 0xFFFFFF, 514, 0), (Outcome{Words(400, 0), true}));
  EXPECT_EQ(Motion(dst, mask, {0, 0}, 0xFFFFFF, INT_MAX, 0), (Outcome{Words(400, 0), true}));
}

TEST(MotionBlur, PointsAreTruncatedTowardZero) {
  // cos(0.5) is 0.878: k = 1, 0, -1, -2 give x = 0.878, 0, -0.878, -1.755.
  const Picture dst = Filled(24, 6, 1, 0), mask = Spot(32, 6, 2);
  EXPECT_EQ(Motion(dst, mask, {0, 0}, 0x0000FF, 4, 0.5F).pixels, (Words{0, 0, 223, 127, 0, 0}));
  // The point is added before: -0.122, -1, -1.878, -2.755.
  EXPECT_EQ(Motion(dst, mask, {-1, 0}, 0x0000FF, 4, 0.5F).pixels, (Words{0, 0, 127, 191, 127, 0}));
}

TEST(MotionBlur, PositionsAreNotRoundedToSinglePrecision) {
  // The cosine is 0.83333331, so that k = 6 is at 4.9999999, which single precision takes for 5; the
  // sine is 0.5527708.
  const Picture dst = Filled(24, 20, 20, 0);
  Picture mask = Filled(32, 20, 20, 0);
  mask.Put(10, 10, 255);
  const Words seen = Motion(dst, mask, {0, 0}, 0x0000FF, 14, 0.585685551F).pixels;
  EXPECT_NE(seen[20 * (10 - 3) + 10 - 4], 0u);
  EXPECT_EQ(seen[20 * (10 - 3) + 10 - 5], 0u);
}

TEST(MotionBlur, AQuarterTurnFromAnotherColumnLeansByOne) {
  // The cosine of the nearest float is -4.4e-8: 2 and k times that is less than 2 for k = 1, while
  // nothing is lost beside 0.
  Picture dst = Filled(24, 3, 4, 0), mask = Filled(32, 5, 9, 0);
  mask.Put(3, 4, 255);
  EXPECT_EQ(Motion(dst, mask, {2, 3}, 0x0000FF, 4, kQuarterTurn).pixels,
            (Words{0, 0, 127,  // k = 1
                   0, 127, 0,  // k = 0
                   0, 127, 0,  // k = -1
                   0, 127, 0}));
  mask.Put(1, 4, 255);
  EXPECT_EQ(Motion(dst, mask, {0, 3}, 0x0000FF, 4, kQuarterTurn).pixels,
            (Words{0, 127, 0, 0, 127, 0, 0, 127, 0, 0, 127, 0}));
}

TEST(MotionBlur, AnglesThatAreNotFiniteCountAs0) {
  const Picture dst = Filled(24, 9, 1, 0), mask = Spot(8, 9, 4);
  const float inf = std::numeric_limits<float>::infinity();
  for (float angle : {inf, -inf, std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_EQ(Motion(dst, mask, {0, 0}, 0xFFFFFF, 4, angle),
              Motion(dst, mask, {0, 0}, 0xFFFFFF, 4, 0));
    EXPECT_EQ(Glow(dst, mask, {0, 0}, 0xFFFFFF, 4, angle), Glow(dst, mask, {0, 0}, 0xFFFFFF, 4, 0));
  }
}

// Random pictures, whole memories compared.

struct Case {
  Picture dst, mask;
  CRectangulo rect;
  CPunto at;
  uint32_t colour;
  int length;
  float angle;
  int level;
};

float AnyAngle(Random& random) {
  static constexpr float kAngles[] = {0.0f,        1.57079637f, 3.14159274f, -1.57079637f,
                                      0.78539818f, 6.28318548f, 1.04719758f, 0.52359879f,
                                      1.0e10f,     -0.0f,       1.0e-6f};
  if (random.OneIn(2)) return kAngles[random.Below(11)];
  return float(random.Between(-100000, 100000)) / 10000;
}

Case AnyCase(Random& random, int format, int seed) {
  Case c;
  const int height = random.Between(1, 8);
  c.dst = support::RandomPicture(random, format, support::WidthOf(seed), height,
                                 support::AnyOptions(random));
  c.rect = support::RandomRect(random, c.dst.width, height);
  if (random.OneIn(2)) c.rect = Whole(c.dst);
  const int mask_width = random.OneIn(2) ? c.dst.width : random.Between(1, 2 * c.dst.width);
  const int mask_height = random.OneIn(2) ? height : random.Between(1, 2 * height);
  const int mask_format = random.OneIn(12) ? 16 + 8 * random.Below(2) : random.OneIn(2) ? 8 : 32;
  support::PictureOptions options;
  options.max_padding = random.OneIn(2) ? 0 : 7;
  options.guard = random.OneIn(2) ? 0 : 67 + random.Below(4);
  options.negative_pitch = random.OneIn(10);
  c.mask = support::RandomPicture(random, mask_format, mask_width, mask_height, options);
  // Mostly a point that lands in the mask after the rectangle is cut.
  const model::Clipped clipped = model::Clip(c.dst.width, height, c.rect);
  const int x = random.OneIn(3) ? 0 : random.Between(-5, 5);
  const int y = random.OneIn(2) ? 0 : random.Between(-2, 2);
  if (random.OneIn(8)) {
    static constexpr int kFar[] = {INT_MIN, INT_MAX, INT_MAX - 3, 1 << 30, -100};
    c.at = {kFar[random.Below(5)], random.OneIn(2) ? 0 : kFar[random.Below(5)]};
  } else if (clipped.visible && random.OneIn(8)) {
    // A row down and a pitch to the left: the rules of indexed masks look at the sum.
    const int pixels = c.mask.pitch / c.mask.BytesPerPixel();
    c.at = {int(x - pixels - clipped.moved_x), int(1 - clipped.moved_y)};
  } else {
    c.at = {int(x - clipped.moved_x), int(y - clipped.moved_y)};
  }
  c.colour = random.Next();
  static constexpr int kLengths[] = {0, 1, 2, 2, 3, 4, 5, 6, 7, 8, 11, 16, 30, 64, 257, 513, 600};
  c.length = kLengths[random.Below(17)];
  c.angle = AnyAngle(random);
  const int level = int(random.Next());
  c.level = random.OneIn(2) ? 256 : random.OneIn(2) ? level % 600 : level;
  return c;
}

// `model(dst, c)` and `library(dst, mask, c)` on random cases.
template <class Model, class Library>
void CompareRandomCases(Model&& model, Library&& library) {
  support::ForEachCase(7 * support::kWidths * 3, [&](Random& random, int seed) {
    Case c = AnyCase(random, model::kFormats[seed % 7], seed / 7);
    TSurfDesc m = Describe(c.mask);
    support::Compared(
        c.dst, {&c.mask}, [&](Picture& dst) { return model(dst, c); },
        [&](TSurfDesc& d) { return library(d, m, c); });
  });
}

void CompareLines(decltype(&model::MotionBlur) model, decltype(&FiltroMotionBlur) library) {
  CompareRandomCases(
      [&](Picture& dst, const Case& c) {
        return model(dst, c.mask, c.rect, c.at, c.colour, c.length, c.angle);
      },
      [&](TSurfDesc& d, TSurfDesc& m, const Case& c) {
        return library(d, m, c.rect, c.at, Noisy(c.colour), c.length, c.angle);
      });
}

TEST(MotionBlur, RandomPictures) { CompareLines(model::MotionBlur, FiltroMotionBlur); }

TEST(GlowBlur, RandomPictures) { CompareLines(model::GlowBlur, FiltroBrilloBlur); }

TEST(MotionMask, RandomPictures) {
  CompareRandomCases(
      [](Picture& dst, const Case& c) {
        return model::MotionMask(dst, c.mask, c.rect, c.at, c.level);
      },
      [](TSurfDesc& d, TSurfDesc& m, const Case& c) {
        return FiltroMotionMask(d, m, c.rect, c.at, c.level);
      });
}

// Every strength on every destination value.
TEST(MotionMask, EveryMaskByteOnEveryValue) {
  for (int format : kPaintedFormats) {
    Picture dst = Filled(format, 256, 256, 0), mask = Filled(8, 256, 256, 0);
    for (int y = 0; y < 256; ++y) {
      for (int x = 0; x < 256; ++x) {
        dst.Put(x, y, uint32_t(x) * 0x010101u + 0x40302010u + (format < 24 ? uint32_t(x) << 8 : 0));
        mask.Put(x, y, uint32_t(y));
      }
    }
    TSurfDesc m = Describe(mask);
    for (int level : {256, 128, 257, 65535}) {
      support::Compared(
          dst, {&mask},
          [&](Picture& d) {
            return model::MotionMask(d, mask, Whole(dst), {0, 0}, level);
          },
          [&](TSurfDesc& d) {
            return FiltroMotionMask(d, m, Whole(dst), {0, 0}, level);
          });
    }
    const uint32_t colour = 0x5AA5C33C;
    support::Compared(
        dst, {&mask},
        [&](Picture& d) {
          return model::GlowBlur(d, mask, Whole(dst), {0, 0}, colour, 2, 0);
        },
        [&](TSurfDesc& d) {
          return FiltroBrilloBlur(d, m, Whole(dst), {0, 0}, colour, 2, 0);
        });
  }
}

}  // namespace
