#include <gtest/gtest.h>

#include <vector>

#include "include/pincel.h"
#include "tests/model/fader_model.h"
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
using support::PictureOf;
using support::Pixels;
using support::Placed;
using support::Random;
using Words = std::vector<uint32_t>;

constexpr int kDirect[] = {16, 17, 18, 19, 24, 32};

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

Picture Faded(const Picture& dst, const CRectangulo& rect, Picture& src, CPunto at, int start,
              int step, int hold) {
  return Compared(
      dst, {&src},
      [&](Picture& p) { return model::OpenFader(p, rect, src, at, start, step, hold); },
      [&](TSurfDesc& surface) {
        TSurfDesc s = Describe(src);
        return OpenFader(surface, rect, s, at, start, step, hold);
      });
}

// A row of equal pixels onto a row of equal pixels.
Words FadedRow(int format, int width, uint32_t d, uint32_t s, int start, int step, int hold) {
  Picture src = Filled(format, width, 1, s);
  const Picture dst = Filled(format, width, 1, d);
  return Pixels(Faded(dst, Whole(dst), src, {0, 0}, start, step, hold));
}

TEST(OpenFader, Level256WeighsNothingInByte0AndOneInTheOthers) {
  EXPECT_EQ(FadedRow(32, 3, 0xFFFFFFFF, 0, 0, 0, 0), Words(3, 0xFEFEFEFF));
  EXPECT_EQ(FadedRow(32, 3, 0, 0xFFFFFFFF, 0, 0, 0), Words(3, 0));
  EXPECT_EQ(FadedRow(24, 3, 0xFFFFFF, 0, 0, 0, 0), Words(3, 0xFEFEFF));
  // Blue has byte 0, green byte 1, red byte 2.
  EXPECT_EQ(FadedRow(16, 5, 0xFFFF, 0, 0, 0, 0), Words(5, 30u << 11 | 62u << 5 | 31u));
  EXPECT_EQ(FadedRow(17, 5, 0x7FFF, 0, 0, 0, 0), Words(5, 30u << 10 | 30u << 5 | 31u));
  EXPECT_EQ(FadedRow(19, 5, 0x0FFF, 0, 0, 0, 0), Words(5, 0x0EEF));
}

TEST(OpenFader, HoldsOnePixelMoreAndThenWraps) {
  // Level 0 for three pixels, then 0xBFBFBFC0, then 0x7F7F7F80.
  EXPECT_EQ(FadedRow(32, 5, 0, 0xFFFFFFFF, 1, 64, 2), (Words{0, 0, 0, 0xBEBEBEBF, 0x7E7E7E7F}));
  EXPECT_EQ(FadedRow(24, 5, 0, 0xFFFFFF, 1, 64, 2), (Words{0, 0, 0, 0xBEBEBF, 0x7E7E7F}));
}

TEST(OpenFader, LevelWordBorrowsFromTheByteAbove) {
  EXPECT_EQ(model::FaderLevels(1, 64, 2, 0), 0);
  EXPECT_EQ(model::FaderLevels(1, 64, 2, 2), 0);
  EXPECT_EQ(model::FaderLevels(1, 64, 2, 3), 0xBFBFBFC0);
  EXPECT_EQ(model::FaderLevels(0, 0, 0, 7), 0x01010100);
  EXPECT_EQ(model::FaderLevels(-1, 64, 0, 3), 0);
  EXPECT_EQ(model::FaderLevels(-2, 200, 0, 0), 0xFFFFFF70);  // 256 - 400
  EXPECT_EQ(model::FaderLevels(-1, -1, 0, 0), 0x01010101);   // 257
  EXPECT_EQ(model::FaderLevels(-1, -1, 0, 1), 0x01010102);
  EXPECT_EQ(model::FaderLevels(1, 256, 0, 1), 0xFEFEFF00);  // a step word of 0x01010100
  EXPECT_EQ(FadedRow(32, 2, 0, 0xFFFFFFFF, 1, 256, 0), (Words{0, 0xFDFDFE00}));
  // 16 bits: weights 0xC0, 0xBF and 0xBF of 31, 63 and 31: 23, 47, 23 in the fourth pixel.
  EXPECT_EQ(FadedRow(16, 4, 0, 0xFFFF, 1, 64, 2), (Words{0, 0, 0, 23u << 11 | 47u << 5 | 23u}));
  // Of 4444's 15: 11. At 0x7F7F7F80: 7.
  EXPECT_EQ(FadedRow(19, 5, 0, 0x0FFF, 1, 64, 2), (Words{0, 0, 0, 0x0BBB, 0x0777}));
}

TEST(OpenFader, FallsByOneStepAPixel) {
  EXPECT_EQ(FadedRow(32, 5, 0, 0xFFFFFFFF, -1, 64, 0),
            (Words{0xBFBFBFBF, 0x7F7F7F7F, 0x3F3F3F3F, 0, 0xBEBEBEBF}));
  EXPECT_EQ(
      FadedRow(16, 4, 0, 0xFFFF, -1, 64, 0),
      (Words{23u << 11 | 47u << 5 | 23u, 15u << 11 | 31u << 5 | 15u, 7u << 11 | 15u << 5 | 7u, 0}));
}

TEST(OpenFader, EveryRowStartsAfresh) {
  Picture src = Filled(32, 2, 3, 0xFFFFFFFF);
  const Picture dst = Filled(32, 2, 3, 0);
  EXPECT_EQ(Pixels(Faded(dst, Whole(dst), src, {0, 0}, -1, 64, 0)),
            (Words{0xBFBFBFBF, 0x7F7F7F7F, 0xBFBFBFBF, 0x7F7F7F7F, 0xBFBFBFBF, 0x7F7F7F7F}));
}

TEST(OpenFader, StartsAtTheClippedCorner) {
  Picture src = Filled(32, 4, 1, 0xFFFFFFFF);
  const Picture dst = Filled(32, 2, 1, 0);
  EXPECT_EQ(Pixels(Faded(dst, {-2, 0, 2, 1}, src, {0, 0}, -1, 64, 0)),
            (Words{0xBFBFBFBF, 0x7F7F7F7F}));
}

TEST(OpenFader, NegativeHoldCountsAs0) {
  for (int hold : {0, -1, -1000, INT32_MIN}) {
    EXPECT_EQ(FadedRow(32, 3, 0, 0xFFFFFFFF, -1, 64, hold),
              (Words{0xBFBFBFBF, 0x7F7F7F7F, 0x3F3F3F3F}));
  }
}

TEST(OpenFader, ClearsAlphaBitsOf16BitPixels) {
  EXPECT_EQ(FadedRow(17, 5, 0xFFFF, 0xFFFF, 1, 0, 0), Words(5, 0x7FFF));
  EXPECT_EQ(FadedRow(18, 5, 0xFFFF, 0xFFFF, 1, 0, 0), Words(5, 0x7FFF));
  EXPECT_EQ(FadedRow(19, 5, 0xFFFF, 0xFFFF, 1, 0, 0), Words(5, 0x0FFF));
}

TEST(OpenFader, Level255CopiesNothing) {
  EXPECT_EQ(FadedRow(16, 9, 0, 0xFFFF, -1, 1, 99), Words(9, 30u << 11 | 62u << 5 | 30u));
  EXPECT_EQ(FadedRow(32, 9, 0, 0xFFFFFFFF, -1, 1, 99), Words(9, 0xFEFEFEFE));
}

TEST(OpenFader, LevelsOf64128And192AreNotCutPerTerm) {
  for (int step : {64, 128, 192}) {
    EXPECT_EQ(FadedRow(32, 5, 0xFFFFFFFF, 0xFFFFFFFF, -1, step, 99), Words(5, 0xFFFFFFFF));
    EXPECT_EQ(FadedRow(16, 5, 0xFFFF, 0xFFFF, -1, step, 99), Words(5, 0xFFFF));
  }
}

TEST(OpenFader, SourceHasThePixelSizeOfTheDestination) {
  for (int format : kDirect) {
    Picture src = Filled(format, 5, 2, 0x1234);
    const Picture dst = Filled(format, 5, 2, 0x0567);
    Compared(
        dst, {&src},
        [&](Picture& p) {
          return model::OpenFader(p, Whole(p), src, {0, 0}, -1, 100, 3);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc s = Describe(src);
          s.bpp = 8;
          return OpenFader(surface, {0, 0, 5, 2}, s, {0, 0}, -1, 100, 3);
        });
  }
}

TEST(OpenFader, IndexedOrUnsupportedIsFalse) {
  for (uint32_t bpp : {0u, 4u, 8u, 15u, 48u}) {
    Picture dst = Filled(32, 2, 2, 0x12345678), src = Filled(32, 2, 2, 0);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), s = Describe(src);
    d.bpp = bpp;
    EXPECT_FALSE(OpenFader(d, {0, 0, 2, 2}, s, {0, 0}, -1, 64, 0));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(OpenFader, EmptyAreaIsTrue) {
  for (int format : kDirect) {
    Picture dst = Filled(format, 2, 2, 0x55), src = Filled(format, 2, 2, 0);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), s = Describe(src);
    for (const CRectangulo& rect : {CRectangulo{2, 0, 5, 2}, CRectangulo{1, 1, 1, 2},
                                    CRectangulo{-4, 0, 0, 2}, CRectangulo{2, 2, 0, 0}}) {
      EXPECT_TRUE(OpenFader(d, rect, s, {0, 0}, -1, 64, 0));
      EXPECT_EQ(dst.bytes, before);
    }
  }
}

TEST(OpenFader, PointOutsideTheSourceDoesNotStopIt) {
  for (int format : kDirect) {
    Picture src = Filled(format, 3, 3, 0);
    const Picture dst = Filled(format, 3, 3, 0x21);
    const Picture inside = Faded(dst, Whole(dst), src, {0, 0}, -1, 64, 0);
    EXPECT_NE(inside.bytes, dst.bytes);
    EXPECT_EQ(Faded(dst, {-5, -7, 3, 3}, src, {-5, -7}, -1, 64, 0).bytes, inside.bytes);
    src.width = src.height = 0;
    EXPECT_EQ(Faded(dst, Whole(dst), src, {0, 0}, -1, 64, 0).bytes, inside.bytes);
  }
}

int AnyInt(Random& random) {
  static constexpr int kInts[] = {
      INT32_MIN, INT32_MIN + 1, -65536, -257, -256,  -255,     -2, -1, 0, 1,
      2,         255,           256,    257,  65536, INT32_MAX};
  const int pick = random.Below(32);
  if (pick < 16) return kInts[pick];
  const uint32_t bits = random.Next();
  return pick < 28 ? int(bits % 601) - 300 : int(bits);
}

TEST(OpenFader, AnyCaseMatchesModel) {
  support::ForEachCase(6 * support::kWidths * 6, [](Random& random, int seed) {
    const int format = kDirect[seed % 6];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 6), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    Placed src = support::PlacedPicture(
        random, dst, rect,
        dst.BytesPerPixel() == 2 && random.OneIn(3) ? 16 + random.Below(4) : format);
    const bool tame = random.OneIn(2);  // levels and steps as hosts use them
    const int start = tame ? -random.Below(4) : AnyInt(random);
    const int step = tame ? random.Between(0, 70) : AnyInt(random);
    const int hold = random.OneIn(8) ? AnyInt(random) : random.Between(-1, 80);
    SCOPED_TRACE("start " + std::to_string(start) + ", step " + std::to_string(step) + ", hold " +
                 std::to_string(hold));
    Faded(dst, rect, src.picture, src.at, start, step, hold);
  });
}

// A step of 1 from 256 runs through every level, and on through the wrapped words.
TEST(OpenFader, AllLevelsOnManyPairs) {
  Random random(12);
  for (int format : kDirect) {
    const Picture dst = support::RandomPicture(random, format, 600, 60);
    Placed src = support::PlacedPicture(random, dst, Whole(dst), format);
    Faded(dst, Whole(dst), src.picture, src.at, -1, 1, 0);
    Faded(dst, Whole(dst), src.picture, src.at, 0, 0, 0);
    Faded(dst, Whole(dst), src.picture, src.at, -1, -1, 5);
  }
}

}  // namespace
