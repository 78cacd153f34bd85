// Anti-aliasing of coverage images, and edge codes.
#include <gtest/gtest.h>

#include <climits>
#include <tuple>
#include <vector>

#include "include/pincel.h"
#include "tests/model/antialias_model.h"
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

constexpr int kSoftenedFormats[] = {16, 17, 18, 19, 24, 32};

// The rectangle, the second surface and the level have no effect.
bool Soften(TSurfDesc& image, unsigned short level = 256) {
  TSurfDesc other{};
  return DoAntiAlias(image, {5, 3, INT_MIN, INT_MAX}, other, level);
}
bool SoftenByCross(TSurfDesc& image, unsigned short level = 256) {
  TSurfDesc other{};
  return DoAntiAlias2(image, {5, 3, INT_MIN, INT_MAX}, other, level);
}

using Call = bool (*)(TSurfDesc&, unsigned short);

Picture After(Picture image, Call call, unsigned short level = 256) {
  TSurfDesc d = Describe(image);
  EXPECT_TRUE(call(d, level));
  return image;
}

// The value of the coverage bits.
uint32_t Coverage(const Picture& p, int x, int y) {
  return p.Get(x, y) & (p.format >= 24 ? 255u : p.format == 19 ? 15u : 31u);
}

// An 8-bit image, all 0 but where it is told.
struct Byte {
  int x, y;
  uint32_t value;
};
Picture Bytes(int width, int height, const std::vector<Byte>& bytes) {
  Picture p = Filled(8, width, height, 0);
  for (const Byte& b : bytes) p.Put(b.x, b.y, b.value);
  return p;
}

// Worked examples.

TEST(AntiAlias, FourRowsAreTooFew) {
  for (int format : kSoftenedFormats) {
    for (int height = 0; height <= 4; ++height) {
      const Picture before = Filled(format, 6, height, 0x01234567);
      EXPECT_EQ(After(before, Soften).bytes, before.bytes) << format << " " << height;
      EXPECT_EQ(After(before, SoftenByCross).bytes, before.bytes) << format << " " << height;
    }
  }
}

TEST(AntiAlias, EvenCoverageOf200Is255) {
  EXPECT_EQ(After(Filled(32, 6, 6, 200), Soften).Get(2, 2), 255u);
  EXPECT_EQ(After(Filled(24, 6, 6, 200), Soften).Get(2, 2), 255u);
  EXPECT_EQ(After(Filled(32, 6, 6, 80), Soften).Get(2, 2), 240u);
}

TEST(AntiAliasCross, EvenCoverageOf100Is95) {
  EXPECT_EQ(After(Filled(32, 6, 6, 100), SoftenByCross).Get(2, 2), 95u);
  EXPECT_EQ(After(Filled(24, 6, 6, 100), SoftenByCross).Get(2, 2), 95u);
}

TEST(AntiAlias, ASinglePixelSpreadsOverNine) {
  for (int format : {24, 32}) {
    Picture image = Filled(format, 9, 9, 0);
    image.Put(4, 4, 100);
    const Picture after = After(image, Soften);
    for (int y = 3; y <= 5; ++y) {
      for (int x = 3; x <= 5; ++x) {
        EXPECT_EQ(after.Get(x, y), x == 4 && y == 4 ? 200u : 12u);
      }
    }
    EXPECT_EQ(after.Get(2, 4), 0u);
    EXPECT_EQ(after.Get(4, 6), 0u);
  }
}

TEST(AntiAliasCross, OnlySetPixelsChange) {
  for (int format : kSoftenedFormats) {
    const uint32_t unset = format >= 24 ? 0xABCDEF00 : format == 19 ? 0xABC0 : 0xABC0;
    Picture image = Filled(format, 9, 9, unset);
    image.Put(4, 4, unset | 9);
    const Picture after = After(image, SoftenByCross);
    for (int y = 0; y < 9; ++y) {
      for (int x = 0; x < 9; ++x) {
        if (x == 4 && y == 4) continue;
        EXPECT_EQ(after.Get(x, y), image.Get(x, y)) << format;
      }
    }
    EXPECT_EQ(Coverage(after, 4, 4), 0u) << format;  // -9 x 0.137, truncated
  }
}

TEST(AntiAliasCross, WeightsOfTheCross) {
  // From a pixel of 1 the neighbours count: 3 x 60 x 0.137 = 24, -60 x 0.137 is below 0.
  for (int format : {24, 32}) {
    for (const auto& [dx, dy, v] : {std::tuple{1, 0, 24u},
                                    {-1, 0, 24u},
                                    {0, 1, 24u},
                                    {0, -1, 24u},
                                    {2, 0, 0u},
                                    {0, 2, 0u},
                                    {-2, 0, 0u},
                                    {0, -2, 0u},
                                    {1, 1, 0u},
                                    {3, 0, 0u}}) {
      Picture image = Filled(format, 11, 11, 0);
      image.Put(5, 5, 1);
      image.Put(5 + dx, 5 + dy, 60);
      EXPECT_EQ(After(image, SoftenByCross).Get(5, 5), v) << dx << " " << dy;
    }
  }
}

TEST(AntiAlias, OtherBytesBecome0AndTheFourthIsKept) {
  const Picture wide = After(Filled(32, 6, 6, 0x80FFEE10), Soften);
  EXPECT_EQ(wide.Get(2, 2), 0x80000030u);
  EXPECT_EQ(wide.Get(0, 2), 0x80FFEE10u);
  EXPECT_EQ(After(Filled(32, 6, 6, 0x80FFEE64), SoftenByCross).Get(2, 2), 0x8000005Fu);
  EXPECT_EQ(After(Filled(24, 6, 6, 0xFFEE10), Soften).Get(2, 2), 0x000030u);
  EXPECT_EQ(After(Filled(24, 6, 6, 0xFFEE64), SoftenByCross).Get(2, 2), 0x00005Fu);
}

TEST(AntiAlias, SixteenBitsSoftenTheBlueFieldAndKeepAlphaBits) {
  EXPECT_EQ(After(Filled(16, 6, 6, 0xFFE4), Soften).Get(2, 2), 12u);  // 24 x 4 / 8
  EXPECT_EQ(After(Filled(16, 6, 6, 0xFFEB), Soften).Get(2, 2), 31u);  // 33
  EXPECT_EQ(After(Filled(18, 6, 6, 0xFFE4), Soften).Get(2, 2), 0x800Cu);
  EXPECT_EQ(After(Filled(18, 6, 6, 0x7FE4), Soften).Get(2, 2), 0x000Cu);
  EXPECT_EQ(After(Filled(19, 6, 6, 0xAFF4), Soften).Get(2, 2), 0xA00Cu);
  EXPECT_EQ(After(Filled(19, 6, 6, 0xAFF6), Soften).Get(2, 2), 0xA00Fu);    // 18
  EXPECT_EQ(After(Filled(16, 6, 6, 0xFFEA), SoftenByCross).Get(2, 2), 9u);  // 70 x 0.137
  EXPECT_EQ(After(Filled(18, 6, 6, 0xFFEA), SoftenByCross).Get(2, 2), 0x8009u);
  EXPECT_EQ(After(Filled(19, 6, 6, 0xAFFA), SoftenByCross).Get(2, 2), 0xA009u);
}

TEST(AntiAlias, LevelHasNoEffect) {
  for (int format : kSoftenedFormats) {
    Random random(format);
    const Picture image = support::RandomPicture(random, format, 9, 9);
    for (int level : {0, 1, 255, 300, 65535}) {
      const auto any = static_cast<unsigned short>(level);
      EXPECT_EQ(After(image, Soften, any).bytes, After(image, Soften).bytes);
      EXPECT_EQ(After(image, SoftenByCross, any).bytes, After(image, SoftenByCross).bytes);
    }
  }
}

TEST(AntiAlias, IndexedImagesAreTrueAndOtherFormatsFalse) {
  const Picture before = Filled(8, 9, 9, 77);
  Picture image = before;
  TSurfDesc d = Describe(image);
  EXPECT_TRUE(Soften(d));
  EXPECT_FALSE(SoftenByCross(d));
  for (uint32_t bpp : {4u, 15u, 0u, 48u}) {
    d.bpp = bpp;
    EXPECT_FALSE(Soften(d)) << bpp;
    EXPECT_FALSE(SoftenByCross(d)) << bpp;
  }
  EXPECT_EQ(image.bytes, before.bytes);
}

// Irregular behaviour.

TEST(AntiAlias, TheLastProcessedPixelLiesPastTheRow) {
  for (int format : kSoftenedFormats) {
    for (Call call : {Soften, SoftenByCross}) {
      // Without padding that is the first pixel of the next row, the first of row 2 stays.
      const Picture before = Filled(format, 7, 6, 0x4);
      Picture after = After(before, call);
      EXPECT_EQ(after.Get(0, 2), before.Get(0, 2)) << format;
      EXPECT_NE(after.Get(1, 2), before.Get(1, 2)) << format;
      EXPECT_NE(after.Get(0, 3), before.Get(0, 3)) << format;
      EXPECT_EQ(after.Get(1, 4), before.Get(1, 4)) << format;
      // With padding it lies there.
      Picture padded = Filled(format, 6, 5, 0x4);
      padded.width = 5;
      after = After(padded, call);
      EXPECT_NE(after.Get(5, 2), padded.Get(5, 2)) << format;
      EXPECT_EQ(after.Get(0, 3), padded.Get(0, 3)) << format;
    }
  }
}

TEST(AntiAliasCross, LowerRowsOfATallImageReadAs0) {
  for (int format : kSoftenedFormats) {
    // Four of ten rows are copied.
    const Picture before = Filled(format, 4, 10, format >= 24 ? 0x80C0A064 : 0x7FEA);
    const Picture after = After(before, SoftenByCross);
    EXPECT_NE(Coverage(after, 2, 2), 0u) << format;
    EXPECT_NE(after.Get(2, 2), before.Get(2, 2)) << format;
    for (int y = 4; y <= 7; ++y) {
      EXPECT_EQ(after.Get(0, y), y == 4 ? after.Get(0, 4) : 0u) << format;
      for (int x = 1; x < 4; ++x) EXPECT_EQ(after.Get(x, y), 0u) << format;
    }
    EXPECT_EQ(after.Get(2, 8), before.Get(2, 8)) << format;
  }
}

TEST(AntiAliasCross, A24BitPixelOf0IsRestoredWithTheByteBehindIt) {
  // Rows 5 and 6 are not copied and read as 0, with the byte behind the last processed pixel: the
  // first byte of the second pixel of row 7, which is not processed itself.
  const Picture before = Filled(24, 5, 9, 0x112233);
  const Picture after = After(before, SoftenByCross);
  EXPECT_EQ(after.Get(5, 6), 0u);  // the same as (0, 7)
  EXPECT_EQ(after.Get(1, 7), 0x112200u);
  EXPECT_EQ(after.Get(2, 7), 0x112233u);
}

TEST(AntiAliasCross, WideImagesReadNothingBehindTheirMemory) {
  // width x pitch bytes would be more than the image has.
  for (int format : kSoftenedFormats) {
    const Picture image = Filled(format, 40, 6, 0x0A);
    const Picture after = After(image, SoftenByCross);
    EXPECT_EQ(Coverage(after, 20, 2), 9u);  // 70 x 0.137
    EXPECT_EQ(Coverage(after, 20, 3), 9u);
  }
}

// Edge codes.

TEST(EdgeCodes, AnIsolatedPixelIs3) {
  const Picture after = After(Bytes(7, 7, {{3, 3, 1}}), DoAntiAliasBMP);
  EXPECT_EQ(after.bytes, Bytes(7, 7, {{3, 3, 3}}).bytes);
}

TEST(EdgeCodes, SixEarlierNeighboursAre255) {
  const Picture after = After(
      Bytes(7, 7, {{3, 1, 9}, {3, 2, 9}, {2, 2, 9}, {1, 3, 9}, {2, 3, 9}, {2, 4, 9}, {3, 3, 9}}),
      DoAntiAliasBMP);
  EXPECT_EQ(after.Get(3, 3), 255u);
}

TEST(EdgeCodes, OneBitForEachOfSixNeighbours) {
  for (const auto& [dx, dy, bit] : {std::tuple{0, -2, 128u},
                                    {0, -1, 64u},
                                    {-1, -1, 32u},
                                    {-2, 0, 16u},
                                    {-1, 0, 8u},
                                    {-1, 1, 4u},
                                    {0, 2, 0u},
                                    {0, 1, 0u},
                                    {1, 1, 0u},
                                    {2, 0, 0u},
                                    {1, 0, 0u},
                                    {1, -1, 0u}}) {
    const Picture after = After(Bytes(9, 9, {{4, 4, 1}, {4 + dx, 4 + dy, 200}}), DoAntiAliasBMP);
    EXPECT_EQ(after.Get(4, 4), 3 + bit) << dx << " " << dy;
  }
}

TEST(EdgeCodes, EarlierNeighboursAreCodesAlready) {
  // 512 bytes to go when the walk begins, 2 being the threshold: 2 is not more, but its code 3 is.
  const Picture before = Bytes(100, 20, {{50, 6, 2}, {51, 6, 2}, {50, 12, 2}, {50, 11, 2}});
  const Picture after = After(before, DoAntiAliasBMP);
  const auto threshold = [](int x, int y) {
    return ((20 - 4) * 100 - 4 - (y * 100 + x - 202)) / 256 % 256;
  };
  ASSERT_EQ(threshold(51, 6), 4);
  EXPECT_EQ(after.Get(51, 6), 3u);
  ASSERT_EQ(threshold(50, 12), 2);
  EXPECT_EQ(after.Get(50, 12), 3u + 64u);
}

TEST(EdgeCodes, TheThresholdIsTheSecondByteOfTheCounter) {
  // 300 x 256 bytes to go at first: the second byte of the counter falls from 44 to 0, to 255, ...
  constexpr int kPitch = 300;
  const int height = 4 + 256 + 1;
  const int count = (height - 4) * kPitch - 4;
  for (int left : {count, 65536 + 255, 65536, 65535, 65280, 65279, 512, 511, 256, 255, 1}) {
    const int at = 2 * kPitch + 2 + count - left;
    const uint32_t threshold = uint32_t(left) >> 8 & 255;
    for (uint32_t neighbour : {threshold, threshold + 1}) {
      if (neighbour > 255) continue;
      Picture image = Filled(8, kPitch, height, 0);
      image.bytes[size_t(at)] = 1;
      image.bytes[size_t(at + kPitch - 1)] = uint8_t(neighbour);
      EXPECT_EQ(After(image, DoAntiAliasBMP).bytes[size_t(at)], neighbour > threshold ? 7 : 3)
          << left;
    }
  }
}

TEST(EdgeCodes, ImagesOfEveryDepthAreWalkedAsBytes) {
  for (int format : model::kFormats) {
    Picture image = Filled(format, 8, 7, 0);
    image.bytes[size_t(3 * image.pitch + 5)] = 40;
    Picture expected = image;
    expected.bytes[size_t(3 * image.pitch + 5)] = 3;
    EXPECT_EQ(After(image, DoAntiAliasBMP).bytes, expected.bytes) << format;
    TSurfDesc d = Describe(image);
    d.bpp = 15;
    EXPECT_TRUE(DoAntiAliasBMP(d, 256));
    EXPECT_EQ(image.bytes, expected.bytes) << format;
  }
}

TEST(EdgeCodes, LevelScalesTheWholeMemoryInUnitsOfFour) {
  // 15 bytes: twelve are scaled, also when there are too few rows to walk.
  const Picture image = Filled(8, 5, 3, 200);
  Words expected(12, 100);
  expected.insert(expected.end(), 3, 200);
  EXPECT_EQ(Pixels(After(image, DoAntiAliasBMP, 128)), expected);
  EXPECT_EQ(Pixels(After(image, DoAntiAliasBMP, 256)), Words(15, 200));
  // Only the low byte of other levels counts.
  expected.assign(12, 0);
  expected.insert(expected.end(), 3, 200);
  EXPECT_EQ(Pixels(After(image, DoAntiAliasBMP, 512)), expected);
  EXPECT_EQ(Pixels(After(image, DoAntiAliasBMP, 0)), expected);
}

// Random images, whole memories compared.

// The memory ends with the last row's padding, where nothing may be read or written beyond.
Picture AnyImage(Random& random, int format, int width, int height) {
  support::PictureOptions options;
  options.max_padding = random.OneIn(3) ? 0 : 7;
  options.guard = random.OneIn(2) ? 0 : 67 + random.Below(4);
  Picture image = support::RandomPicture(random, format, width, height, options);
  switch (random.Below(3)) {
    case 0:  // mostly unset pixels
      for (uint8_t& byte : image.bytes) byte = random.OneIn(3) ? byte : 0;
      break;
    case 1:  // small values
      for (uint8_t& byte : image.bytes) byte = uint8_t(byte % 24);
      break;
    default:
      break;
  }
  return image;
}

void CompareAll(const Picture& image, int level) {
  support::Compared(
      image, {}, [](Picture& p) { return model::AntiAlias(p); },
      [&](TSurfDesc& d) { return Soften(d, static_cast<unsigned short>(level)); });
  support::Compared(
      image, {}, [](Picture& p) { return model::AntiAliasCross(p); },
      [&](TSurfDesc& d) { return SoftenByCross(d, static_cast<unsigned short>(level)); });
  support::Compared(
      image, {}, [&](Picture& p) { return model::EdgeCodes(p, level); },
      [&](TSurfDesc& d) { return DoAntiAliasBMP(d, static_cast<unsigned short>(level)); });
}

int AnyScale(Random& random) { return random.OneIn(2) ? 256 : support::AnyLevel(random); }

TEST(AntiAlias, EverySizeUpTo12) {
  for (int format : model::kFormats) {
    support::ForEachCase(13 * 13, [&](Random& random, int seed) {
      const Picture image = AnyImage(random, format, seed % 13, seed / 13);
      CompareAll(image, AnyScale(random));
    });
  }
}

TEST(AntiAlias, RandomImages) {
  support::ForEachCase(7 * support::kWidths * 2, [](Random& random, int seed) {
    const int format = model::kFormats[seed % 7], width = support::WidthOf(seed / 7);
    const int height = random.OneIn(2) ? random.Between(5, 12) : random.Between(5, 90);
    const Picture image = AnyImage(random, format, width, height);
    CompareAll(image, AnyScale(random));
  });
}

TEST(AntiAlias, ImagesOfMoreThan65536Bytes) {
  support::ForEachCase(7, [](Random& random, int seed) {
    const Picture image = AnyImage(random, model::kFormats[seed % 7], 300, 240);
    CompareAll(image, AnyScale(random));
  });
}

TEST(EdgeCodes, EveryLevel) {
  Random random(1);
  const Picture image = support::RandomPicture(random, 8, 20, 15);
  for (int level = 0; level < 1024; ++level) {
    support::Compared(
        image, {}, [&](Picture& p) { return model::EdgeCodes(p, level); },
        [&](TSurfDesc& d) { return DoAntiAliasBMP(d, static_cast<unsigned short>(level)); });
  }
}

// Every sum that the cross can have, from -1275 to 3060, times the factor.
TEST(AntiAliasCross, EverySum) {
  for (int format : {24, 32}) {
    for (int low = 0; low < 256; ++low) {
      // Columns of 256 values each, seen from the row in the middle.
      Picture image = Filled(format, 258, 7, 0);
      for (int x = 0; x < 258; ++x) {
        image.Put(x, 2, uint32_t(x & 255));
        image.Put(x, 3, uint32_t((x * 7 + low) & 255));
        image.Put(x, 4, uint32_t((x + low) & 255));
        image.Put(x, 1, uint32_t((x * low) & 255));
        image.Put(x, 5, uint32_t(low));
      }
      support::Compared(
          image, {}, [](Picture& p) { return model::AntiAliasCross(p); },
          [](TSurfDesc& d) { return SoftenByCross(d); });
    }
  }
}

}  // namespace
