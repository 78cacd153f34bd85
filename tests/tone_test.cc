// Darkening, gradients, and the making of masks and shadows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "include/pincel.h"
#include "tests/model/tone_model.h"
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
using Byte = unsigned char;
using Short = unsigned short;
using Words = std::vector<uint32_t>;

Picture Darkened(const Picture& p, int factor) {
  return support::Compared(
      p, {},
      [&](Picture& copy) {
        model::Darken(copy, factor);
        return true;
      },
      [&](TSurfDesc& surface) { return DoFactor(surface, Short(factor)); });
}

Picture Ramp(const Picture& p, uint32_t from, uint32_t to) {
  const unsigned long noisy_from = support::Noisy(from), noisy_to = support::Noisy(to);
  return support::Compared(
      p, {}, [&](Picture& copy) { return model::FillGradient(copy, from, to); },
      [&](TSurfDesc& surface) { return DoGradient(surface, noisy_from, noisy_to); });
}

Picture Masked(const Picture& mask, Picture src, int level) {
  return support::Compared(
      mask, {&src}, [&](Picture& copy) { return model::CreateMask(copy, src, level); },
      [&](TSurfDesc& surface) {
        TSurfDesc s = Describe(src);
        return CreateMask(surface, s, Short(level));
      });
}

Picture Shadowed(const Picture& shadow, Picture src, int decay, int limit, int factor) {
  return support::Compared(
      shadow, {&src},
      [&](Picture& copy) { return model::CreateShadow(copy, src, decay, limit, factor); },
      [&](TSurfDesc& surface) {
        TSurfDesc s = Describe(src);
        return CreateShadow(surface, s, Byte(decay), Byte(limit), Short(factor));
      });
}

// A picture whose last row has its padding, too: height x pitch bytes for what walks buffers.
Picture WholeBuffer(Random& random, int format, int width, int height) {
  support::PictureOptions options = support::AnyOptions(random);
  options.negative_pitch = false;
  Picture p = support::RandomPicture(random, format, width, height, options);
  if (options.exact) p.bytes.resize(size_t(p.height * p.pitch), 0x5A);
  return p;
}

// Smooth enough for shadows to spread: runs of small values, some in between, some full.
void SetCoverage(Random& random, Picture& p) {
  for (uint8_t& byte : p.bytes) {
    const int kind = random.Below(8);
    byte = uint8_t(kind < 5 ? random.Below(8) : kind < 6 ? 236 + random.Below(20) : random.Byte());
  }
}

TEST(DoFactor, From256OnNothingChangesAndTheResultIsTrue) {
  for (int format : model::kFormats) {
    for (int factor : {256, 257, 512, 0x1FF, 65535}) {
      Picture p = Filled(format, 5, 3, 0x87654321);
      const Picture before = p;
      TSurfDesc surface = Describe(p);
      EXPECT_TRUE(DoFactor(surface, Short(factor)));
      surface.bpp = 15;
      EXPECT_TRUE(DoFactor(surface, Short(factor)));
      EXPECT_EQ(p.bytes, before.bytes);
    }
  }
}

TEST(DoFactor, UnsupportedDepthBelow256IsFalse) {
  for (uint32_t bpp : {0u, 1u, 4u, 15u, 48u}) {
    Picture p = Filled(32, 5, 3, 0x87654321);
    TSurfDesc surface = Describe(p);
    surface.bpp = bpp;
    EXPECT_FALSE(DoFactor(surface, 0));
    EXPECT_FALSE(DoFactor(surface, 255));
    EXPECT_EQ(Pixels(p), Words(15, 0x87654321));
  }
}

TEST(DoFactor, FourthByteIsScaledByTheHeight) {
  EXPECT_EQ(Pixels(Darkened(Filled(32, 1, 128, 0x80FF4020), 0)), Words(128, 0x40000000));
  EXPECT_EQ(Pixels(Darkened(Filled(32, 1, 128, 0x80FF4020), 64)), Words(128, 0x403F1008));
  EXPECT_EQ(Pixels(Darkened(Filled(32, 1, 256, 0xFFFFFFFF), 0)), Words(256, 0));
  EXPECT_EQ(Pixels(Darkened(Filled(32, 1, 256, 0xFFFFFFFF), 255)), Words(256, 0x00FEFEFE));
  EXPECT_EQ(Pixels(Darkened(Filled(32, 1, 257, 0xFFFFFFFF), 255)), Words(257, 0x00FEFEFE));
}

TEST(DoFactor, ScalesFieldsAndKeepsAlphaBits) {
  EXPECT_EQ(Pixels(Darkened(PictureOf(16, 3, 1, {0xFFFF, 0x0821, 0}), 128)), (Words{0x7BEF, 0, 0}));
  EXPECT_EQ(Pixels(Darkened(PictureOf(17, 2, 1, {0xFFFF, 0x7FFF}), 128)), (Words{0xBDEF, 0x3DEF}));
  EXPECT_EQ(Pixels(Darkened(PictureOf(18, 2, 1, {0xFFFF, 0x7FFF}), 0)), (Words{0x8000, 0}));
  EXPECT_EQ(Pixels(Darkened(PictureOf(19, 2, 1, {0xFFFF, 0x5842}), 128)), (Words{0xF777, 0x5421}));
}

TEST(DoFactor, Fields16AreScaledInOneRunWhateverThePitch) {
  // Rows of three pixels with two pixels of padding: the first six pixels of the buffer.
  for (int format : {16, 17, 18, 19}) {
    Picture p = PictureOf(format, 5, 2, Words(10, 0x0842));
    p.width = 3;
    const Picture dark = Darkened(p, 0);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(dark.Get(i, 0), i < 6 ? 0u : 0x0842u) << i;
  }
}

TEST(DoFactor, Bytes8AreScaledInWholeUnitsOfFour) {
  // Two rows of three pixels and two bytes of padding: ten bytes, of which eight are scaled.
  Picture p = Filled(8, 5, 2, 200);
  p.width = 3;
  EXPECT_EQ(Darkened(p, 128).bytes,
            (std::vector<uint8_t>{100, 100, 100, 100, 100, 100, 100, 100, 200, 200}));
  EXPECT_EQ(Pixels(Darkened(Filled(8, 3, 1, 200), 128)), Words(3, 200));
}

TEST(DoFactor, EveryFactorOfEveryByte) {
  for (int format : {8, 24, 32}) {
    Picture p = Filled(format, 256, 3, 0);
    for (int i = 0; i < 256 * 3; ++i) {
      const auto low = uint32_t(i % 256), high = 255 - low;
      p.Put(i % 256, i / 256, low | high << 8 | (low ^ 0x55) << 16 | high << 24);
    }
    for (int factor = 0; factor < 258; ++factor) {
      SCOPED_TRACE(factor);
      Darkened(p, factor);
    }
  }
}

TEST(DoFactor, EveryFactorOfEveryField) {
  for (int format : {16, 17, 18, 19}) {
    Random random(6);
    Picture p = support::RandomPicture(random, format, 640, 1);
    for (int x = 0; x < 640; ++x) {
      const int shift = x % 16;
      p.Put(x, 0, (p.Get(x, 0) & ~(63u << shift)) | uint32_t(x / 10) << shift);
    }
    for (int factor = 0; factor < 258; ++factor) {
      SCOPED_TRACE(factor);
      Darkened(p, factor);
    }
  }
}

TEST(DoFactor, AnySurfaceMatchesModel) {
  support::ForEachCase(7 * support::kWidths * 3, [](Random& random, int seed) {
    const int format = model::kFormats[seed % 7], width = support::WidthOf(seed / 7);
    const int height = random.OneIn(9) ? random.Between(100, 300) : random.Between(0, 9);
    const Picture p = format >= 24 ? support::RandomPicture(random, format, width, height,
                                                            support::AnyOptions(random))
                                   : WholeBuffer(random, format, width, height);
    const int factor = random.OneIn(16) ? random.Between(256, 65535) : random.Below(256);
    SCOPED_TRACE("factor " + std::to_string(factor));
    Darkened(p, factor);
  });
}

TEST(DoGradient, OnePixelIsFrom) {
  EXPECT_EQ(Pixels(Ramp(Filled(32, 1, 2, 0x99999999), 0x123456, 0xFFEEDD)), Words(2, 0x00123456));
  EXPECT_EQ(Pixels(Ramp(Filled(24, 1, 1, 0x999999), 0x123456, 0xFFEEDD)), Words(1, 0x123456));
  EXPECT_EQ(Pixels(Ramp(Filled(16, 1, 1, 0x9999), 0xF8FCF8, 0)), Words(1, 0xFFFF));
  EXPECT_EQ(Pixels(Ramp(Filled(18, 1, 1, 0x9999), 0xFFFFFF, 0)), Words(1, 0x7FFF));
  EXPECT_EQ(Pixels(Ramp(Filled(19, 1, 1, 0x9999), 0xFF8010, 0)), Words(1, 0x0F81));
}

TEST(DoGradient, TopBytesOfTheColoursDoNotCount) {
  EXPECT_EQ(Pixels(Ramp(Filled(32, 2, 1, 0), 0xFF000000, 0x77000080)), (Words{0, 0x40}));
}

TEST(DoGradient, LastPixelIsAStepShortOfTo) {
  EXPECT_EQ(Pixels(Ramp(Filled(32, 4, 1, 0x99999999), 0x000000, 0xFF0080)),
            (Words{0, 0x3F0020, 0x7F0040, 0xBF0060}));
  EXPECT_EQ(Pixels(Ramp(Filled(32, 4, 1, 0x99999999), 0xFF0080, 0x000000)),
            (Words{0xFF0080, 0xBF0060, 0x7F0040, 0x3F0020}));
}

TEST(DoGradient, StepIsCutTowardZero) {
  // 100 in thirds: 33 1/3 and 66 2/3; downwards from 100 the step falls short of -33 1/3.
  EXPECT_EQ(Pixels(Ramp(Filled(24, 3, 1, 0), 0, 100)), (Words{0, 33, 66}));
  EXPECT_EQ(Pixels(Ramp(Filled(24, 3, 1, 0), 100, 0)), (Words{100, 66, 33}));
  // 3 in thirds: 65536 exactly; 1 in thirds: twice 21845.
  EXPECT_EQ(Pixels(Ramp(Filled(24, 3, 1, 0), 0, 3)), (Words{0, 1, 2}));
  EXPECT_EQ(Pixels(Ramp(Filled(24, 3, 1, 0), 1, 0)), (Words{1, 0, 0}));
}

TEST(DoGradient, FieldsAreCutFromTheRampOfBytes) {
  // 0x7F and 0x80 are in two fields of 16 bits: 15 and 16 of 31.
  EXPECT_EQ(Pixels(Ramp(Filled(17, 2, 1, 0xFFFF), 0x7F7F7F, 0x818181)), (Words{0x3DEF, 0x4210}));
  EXPECT_EQ(Pixels(Ramp(Filled(16, 2, 1, 0xFFFF), 0x000700, 0x000900)), (Words{0x0020, 0x0040}));
  EXPECT_EQ(Pixels(Ramp(Filled(19, 2, 1, 0xFFFF), 0x0F0F0F, 0x111111)), (Words{0x0000, 0x0111}));
}

TEST(DoGradient, IndexedEmptyAndUnsupportedAreFalse) {
  const unsigned long from = 0x112233, to = 0x445566;
  Picture p = Filled(8, 3, 3, 7);
  TSurfDesc surface = Describe(p);
  EXPECT_FALSE(DoGradient(surface, from, to));
  EXPECT_EQ(Pixels(p), Words(9, 7));
  for (int format : {16, 17, 18, 19, 24, 32}) {
    Picture q = Filled(format, 3, 3, 7);
    TSurfDesc d = Describe(q);
    d.width = 0;
    EXPECT_FALSE(DoGradient(d, from, to));
    d.width = 3;
    d.bpp = 15;
    EXPECT_FALSE(DoGradient(d, from, to));
    EXPECT_EQ(Pixels(q), Words(9, 7));
  }
}

TEST(DoGradient, ManyRampsMatchModel) {
  support::ForEachCase(7 * support::kWidths * 4, [](Random& random, int seed) {
    const int width = random.OneIn(20) ? random.Between(300, 3000) : support::WidthOf(seed / 7);
    const Picture p = support::RandomPicture(random, model::kFormats[seed % 7], width,
                                             random.Between(0, 4), support::AnyOptions(random));
    const uint32_t from = random.Next(), to = random.Next();
    Ramp(p, from, to);
  });
}

TEST(DoGradient, EveryDifferenceAtEveryWidthUpTo40) {
  Random random(7);
  for (int width = 1; width <= 40; ++width) {
    const Picture p = support::RandomPicture(random, 24, width, 1);
    for (uint32_t from = 0; from < 256; from += 51) {
      for (uint32_t to = 0; to < 256; to += 3) Ramp(p, from | to << 8, to | from << 8 | 0x10000);
    }
    if (testing::Test::HasFailure()) return;
  }
}

// What a mask of one row is made of.
Words MaskOf(int format, const Words& pixels, uint32_t key, int level) {
  Picture src = PictureOf(format, int(pixels.size()), 1, pixels);
  src.key = key;
  return Pixels(Masked(Filled(8, src.width, 1, 0x77), src, level));
}

TEST(CreateMask, KeyedPixelsAre0) {
  EXPECT_EQ(MaskOf(32, {0x00FF00FF, 0x80FF00FF, 0x00FF00FE, 0}, 0x33FF00FF, 256),
            (Words{0, 0, 255, 255}));
  EXPECT_EQ(MaskOf(24, {0xFF00FF, 0xFF00FE, 0}, 0x33FF00FF, 256), (Words{0, 255, 255}));
  for (int format : {16, 17, 19}) {
    EXPECT_EQ(MaskOf(format, {0xF81F, 0x781F, 0}, 0x1234F81F, 256), (Words{0, 255, 255}));
  }
  EXPECT_EQ(MaskOf(8, {5, 6, 0}, 0x12345605, 256), (Words{0, 255, 255}));
}

TEST(CreateMask, WithoutKeyBlackIs0) {
  EXPECT_EQ(MaskOf(32, {0, 0xFF000000, 1, 0xFFFFFFFF}, 0xFFFFFFFF, 200), (Words{0, 0, 200, 200}));
  EXPECT_EQ(MaskOf(24, {0, 1, 0xFFFFFF}, 0xFFFFFFFF, 200), (Words{0, 200, 200}));
  for (int format : {16, 17, 19}) {
    EXPECT_EQ(MaskOf(format, {0, 0x8000, 0xFFFF}, 0xFFFFFFFF, 200), (Words{0, 200, 200}));
  }
  EXPECT_EQ(MaskOf(8, {0, 1, 255}, 0xFFFFFFFF, 200), (Words{0, 200, 200}));
  // A key of white is another matter.
  EXPECT_EQ(MaskOf(32, {0, 0xFFFFFFFF}, 0x00FFFFFF, 200), (Words{200, 0}));
}

TEST(CreateMask, Level256Is255AndOthersTheirLowByte) {
  const Words pixels{0x10, 0x20};
  for (int format : {8, 16, 17, 19, 24, 32}) {
    EXPECT_EQ(MaskOf(format, pixels, 0x20, 256), (Words{255, 0}));
    EXPECT_EQ(MaskOf(format, pixels, 0x20, 255), (Words{255, 0}));
    EXPECT_EQ(MaskOf(format, pixels, 0x20, 0), (Words{0, 0}));
    EXPECT_EQ(MaskOf(format, pixels, 0x20, 257), (Words{1, 0}));
    EXPECT_EQ(MaskOf(format, pixels, 0x20, 512), (Words{0, 0}));
    EXPECT_EQ(MaskOf(format, pixels, 0x20, 65535), (Words{255, 0}));
  }
}

TEST(CreateMask, Source1555IsFalseForThe8BitMask) {
  Picture mask = Filled(8, 2, 2, 9), src = Filled(18, 2, 2, 0x1234);
  TSurfDesc m = Describe(mask), s = Describe(src);
  EXPECT_FALSE(CreateMask(m, s, 256));
  EXPECT_EQ(Pixels(mask), Words(4, 9));
}

TEST(CreateMask, MaskOf1555MakesTheSourcesFormatCount) {
  // The test for 1555 is made on the mask, whose bytes are written all the same.
  for (int format : {17, 18, 19}) {
    Picture src = PictureOf(format, 3, 1, {0x8001, 0x0001, 0x8000});
    src.key = 0x0001;
    Picture mask = Filled(18, 3, 1, 0x0909);
    EXPECT_EQ(Masked(mask, src, 256).bytes, (std::vector<uint8_t>{255, 0, 255, 9, 9, 9}));
  }
}

TEST(CreateMask, MaskOf1555ReadsSourcesOf8BitsTwoByTwo) {
  // The test comes before that for 8 bits, and the row has room for two such pixels.
  Picture src = PictureOf(8, 4, 1, {1, 1, 0, 0});
  src.key = 0x0101;
  Picture mask = Filled(18, 2, 1, 0x0909);
  TSurfDesc m = Describe(mask), s = Describe(src);
  EXPECT_TRUE(CreateMask(m, s, 256));
  EXPECT_EQ(mask.bytes, (std::vector<uint8_t>{0, 255, 9, 9}));
  // So are sources of a depth that there is not.
  std::fill(mask.bytes.begin(), mask.bytes.end(), uint8_t{9});
  s.bpp = 15;
  EXPECT_TRUE(CreateMask(m, s, 256));
  EXPECT_EQ(mask.bytes, (std::vector<uint8_t>{0, 255, 9, 9}));
}

TEST(CreateMask, UnsupportedSourceIsFalse) {
  for (uint32_t bpp : {0u, 4u, 15u, 48u}) {
    Picture mask = Filled(8, 2, 2, 9), src = Filled(32, 2, 2, 0x1234);
    TSurfDesc m = Describe(mask), s = Describe(src);
    s.bpp = bpp;
    EXPECT_FALSE(CreateMask(m, s, 256));
    EXPECT_EQ(Pixels(mask), Words(4, 9));
  }
}

TEST(CreateMask, AnySourceMatchesModel) {
  support::ForEachCase(7 * support::kWidths * 4, [](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int width = support::WidthOf(seed / 7), height = random.Between(0, 5);
    const Picture mask =
        support::RandomPicture(random, 8, width, height, support::AnyOptions(random));
    Picture src = support::RandomPicture(random, format, width + random.Below(4),
                                         height + random.Below(3), support::AnyOptions(random));
    const uint32_t pixel = random.OneIn(4) ? 0 : random.Next();
    const uint32_t bits = format == 8 ? 0xFF : format < 24 ? 0xFFFF : 0xFFFFFF;
    const uint32_t above = random.Next() & ~bits;
    support::PlantKey(random, src, random.OneIn(3) ? 0xFFFFFFFF : (pixel & bits) | above, pixel);
    const int level = random.OneIn(4) ? 256 : int(random.Next() % 65536);
    Masked(mask, src, level);
  });
}

// A mask of 8 bits from rows of pixels, and the shadow it grows on nothing.
Words ShadowOf(int width, const Words& mask, int decay, int limit, int factor) {
  const Picture src = PictureOf(8, width, int(mask.size()) / width, mask);
  return Pixels(Shadowed(Filled(8, src.width, src.height, 0), src, decay, limit, factor));
}

TEST(CreateShadow, SpreadsDownAndToTheRight) {
  // (0 + 0 + 255) / 4 = 63, less 3; below: (255 + 0 + 0) / 4; between: (60 + 2 x 255 + 60) / 4.
  EXPECT_EQ(ShadowOf(4,
                     {0, 0, 0, 0,    //
                      0, 255, 0, 0,  //
                      0, 0, 0, 0},
                     3, 255, 256),
            (Words{0, 0, 0, 0,      //
                   0, 255, 60, 12,  //
                   0, 60, 154, 68}));
}

TEST(CreateShadow, LimitHoldsShadowsNotTheMask) {
  EXPECT_EQ(ShadowOf(3, {0, 0, 0, 0, 255, 0, 0, 0, 239}, 0, 50, 256),
            (Words{0, 0, 0, 0, 255, 50, 12, 50, 239}));
}

TEST(CreateShadow, From240OnTheMaskStays) {
  // Beside full pixels, 239 grows and 240 does not.
  const Picture shadow = Filled(8, 2, 2, 255);
  EXPECT_EQ(Shadowed(shadow, PictureOf(8, 2, 2, {0, 0, 0, 239}), 2, 255, 256).Get(1, 1), 253u);
  EXPECT_EQ(Shadowed(shadow, PictureOf(8, 2, 2, {0, 0, 0, 240}), 2, 255, 256).Get(1, 1), 240u);
  EXPECT_EQ(Shadowed(shadow, PictureOf(8, 2, 2, {0, 0, 0, 239}), 16, 255, 256).Get(1, 1), 239u);
}

TEST(CreateShadow, FirstRowAndColumnStay) {
  for (int format : {8, 16, 17, 19, 24, 32}) {
    const Picture src = Filled(format, 2, 2, 0);
    const Picture shadow = Shadowed(Filled(8, 2, 2, 9), src, 0, 255, 256);
    EXPECT_EQ(shadow.Get(0, 0), 9u);
    EXPECT_EQ(shadow.Get(1, 0), 9u);
    EXPECT_EQ(shadow.Get(0, 1), 9u);
  }
}

TEST(CreateShadow, LaterRowsFollowTheirPredecessorsInMemory) {
  // Two columns and one byte of padding: the full pixel reaches (0, 2) through the padding.
  Picture src = Filled(8, 3, 3, 0);
  src.Put(1, 1, 255);
  src.width = 2;
  Picture shadow = Filled(8, 3, 3, 0);
  shadow.width = 2;
  EXPECT_EQ(Shadowed(shadow, src, 0, 255, 256).bytes,
            (std::vector<uint8_t>{0, 0, 0, 0, 255, 63, 15, 67, 160}));
}

TEST(CreateShadow, FactorScalesTheWholeBufferByItsLowByte) {
  EXPECT_EQ(ShadowOf(2, {0, 0, 0, 255}, 0, 255, 128), (Words{0, 0, 0, 127}));
  EXPECT_EQ(ShadowOf(2, {0, 0, 0, 255}, 0, 255, 0x180), (Words{0, 0, 0, 127}));
  EXPECT_EQ(ShadowOf(2, {0, 0, 0, 255}, 0, 255, 512), (Words{0, 0, 0, 0}));
  EXPECT_EQ(ShadowOf(2, {0, 0, 0, 255}, 0, 255, 256), (Words{0, 0, 0, 255}));
  // Row 0 and column 0 are scaled, too; not what remains behind whole units of four bytes.
  EXPECT_EQ(Pixels(Shadowed(Filled(8, 3, 3, 100), Filled(8, 3, 3, 255), 0, 0, 128)),
            (Words{50, 50, 50, 50, 127, 127, 127, 127, 255}));
}

TEST(CreateShadow, SourceOf8BitsNeedsAnIndexedShadow) {
  for (int format : {16, 17, 18, 19, 24, 32}) {
    Picture shadow = Filled(format, 2, 2, 9), src = Filled(8, 2, 2, 255);
    const Picture before = shadow;
    TSurfDesc d = Describe(shadow), s = Describe(src);
    if (format == 18) continue;
    EXPECT_FALSE(CreateShadow(d, s, 0, 255, 0));
    EXPECT_TRUE(support::Same(before, shadow, d));
  }
}

TEST(CreateShadow, Source1555IsFalseForThe8BitShadow) {
  Picture shadow = Filled(8, 2, 2, 9), src = Filled(18, 2, 2, 0x1234);
  TSurfDesc d = Describe(shadow), s = Describe(src);
  EXPECT_FALSE(CreateShadow(d, s, 0, 255, 256));
  EXPECT_EQ(Pixels(shadow), Words(4, 9));
}

TEST(CreateShadow, UnsupportedSourceIsFalse) {
  for (uint32_t bpp : {0u, 4u, 15u, 48u}) {
    Picture shadow = Filled(8, 2, 2, 9), src = Filled(32, 2, 2, 0x1234);
    TSurfDesc d = Describe(shadow), s = Describe(src);
    s.bpp = bpp;
    EXPECT_FALSE(CreateShadow(d, s, 0, 255, 0));
    EXPECT_EQ(Pixels(shadow), Words(4, 9));
  }
}

TEST(CreateShadow, DeepSourcesCountByTheirHighestChannel) {
  const auto value = [](int format, uint32_t pixel) {
    const Picture src = PictureOf(format, 2, 2, {0, 0, 0, pixel});
    return Shadowed(Filled(8, 2, 2, 0), src, 0, 255, 256).Get(1, 1);
  };
  EXPECT_EQ(value(24, 0x102030), 0x30u);
  EXPECT_EQ(value(24, 0x304020), 0x40u);
  EXPECT_EQ(value(24, 0x506040), 0x60u);
  // Fields are expanded to bytes with low bits of 0.
  EXPECT_EQ(value(16, 0x1800 | 0x0120 | 5), 5u * 8);
  EXPECT_EQ(value(16, 0x07E0), 63u * 4);
  EXPECT_EQ(value(16, 0xB800), 23u * 8);
  EXPECT_EQ(value(17, 0x8C00 | 2), 3u * 8) << "not the highest bit";
  EXPECT_EQ(value(19, 0xF12E), 14u * 16) << "not the alpha bits";
  EXPECT_EQ(value(32, 0xFFFFFF12), 0x12u) << "the first byte alone";
}

TEST(CreateShadow, WordsTakeTheFirstByteAndWriteThree) {
  const Picture src = PictureOf(32, 3, 2, {0, 0, 0, 0, 0x11223380, 0xFFFFFF00});
  const Picture shadow = Filled(32, 3, 2, 0xAA000000);
  EXPECT_EQ(Pixels(Shadowed(shadow, src, 2, 255, 256)),
            (Words{0xAA000000, 0xAA000000, 0xAA000000, 0xAA000000, 0xAA808080, 0xAA1E1E1E}));
}

TEST(CreateShadow, WordsTakeOneByteAboveAndAllThreeBesideThem) {
  // Above 0x00, above left 0x0F, left 0xF0: (0 + 30 + 240) / 4 = 67.
  const Picture shadow = PictureOf(32, 2, 2, {0x770C0201, 0x55444400, 0x66F00000, 0x99000000});
  EXPECT_EQ(Shadowed(shadow, Filled(32, 2, 2, 0), 0, 255, 256).Get(1, 1), 0x99434343u);
  // Above 0x04, above left and left 0.
  const Picture above = PictureOf(32, 2, 2, {0x77000000, 0x55440004, 0x66000000, 0x99000000});
  EXPECT_EQ(Shadowed(above, Filled(32, 2, 2, 0), 0, 255, 256).Get(1, 1), 0x99010101u);
}

TEST(CreateShadow, WordsIgnoreThePitchBetweenRows) {
  // Pitches of three pixels, two columns: the walk takes the pixels from (1, 1) on one by one.
  Picture src = Filled(32, 3, 3, 0xFF), shadow = Filled(32, 3, 3, 0);
  src.width = shadow.width = 2;
  const Picture drawn = Shadowed(shadow, src, 0, 255, 256);
  Words words;
  for (int i = 0; i < 9; ++i) words.push_back(drawn.Get(i, 0));
  EXPECT_EQ(words, (Words{0, 0, 0, 0, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0, 0}));
}

TEST(CreateShadow, ShadowOf1555MakesTheSourcesFormatCount) {
  // The test for 1555 is made on the shadow, which is then written as 32 bits.
  const Picture src = PictureOf(18, 2, 2, {0, 0, 0, 0x7FFF});
  const Picture shadow = Filled(18, 4, 2, 0x0909);
  Picture narrow = shadow;
  narrow.width = 2;
  EXPECT_EQ(Shadowed(narrow, src, 0, 255, 256).bytes,
            (std::vector<uint8_t>{9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 0xF8, 0xF8, 0xF8, 9}));
}

TEST(CreateShadow, ShadowOf1555Reads4444As1555) {
  // 0x0F00 is red 15 of 15 in 4444, but green 24 and red 3 of 31 in 1555.
  for (const auto& [format, value] : {std::pair{18, 0xC0}, {32, 0xF0}}) {
    Picture src = PictureOf(19, 2, 2, {0, 0, 0, 0x0F00});
    Picture shadow = Filled(format, 4, 4, 0);
    TSurfDesc d = Describe(shadow), s = Describe(src);
    d.width = d.height = 2;
    EXPECT_TRUE(CreateShadow(d, s, 0, 255, 256));
    EXPECT_EQ(shadow.bytes[size_t(d.pitch) + 4], value);
  }
}

TEST(CreateShadow, ScaledWordsKeepTheirFourthByte) {
  EXPECT_EQ(Pixels(Shadowed(Filled(32, 2, 2, 0xAAC08040), Filled(32, 2, 2, 0xFF), 0, 0, 128)),
            (Words{0xAA604020, 0xAA604020, 0xAA604020, 0xAA7F7F7F}));
}

// Any decay, limit and factor, and often pictures in which shadows spread.
void CompareShadows(Random& random, Picture shadow, Picture src) {
  if (random.OneIn(2)) SetCoverage(random, src);
  if (random.OneIn(2)) SetCoverage(random, shadow);
  const int decay = random.OneIn(2) ? random.Below(12) : random.Below(256);
  const int limit = random.OneIn(2) ? 255 : random.Below(256);
  const int factor = random.OneIn(2) ? 256 : random.Below(700);
  Shadowed(shadow, src, decay, limit, factor);
}

TEST(CreateShadow, AnyIndexedMaskMatchesModel) {
  support::ForEachCase(support::kWidths * 12, [](Random& random, int seed) {
    const int width = support::WidthOf(seed), height = random.Between(0, 9);
    const Picture src = WholeBuffer(random, 8, width, height);
    CompareShadows(random, WholeBuffer(random, 8, width, height), src);
  });
}

TEST(CreateShadow, AnyDeepMaskMatchesModel) {
  static constexpr int kSources[] = {16, 17, 19, 24, 32};
  support::ForEachCase(5 * support::kWidths * 3, [](Random& random, int seed) {
    const int width = support::WidthOf(seed / 5), height = random.Between(0, 9);
    const Picture src = support::RandomPicture(random, kSources[seed % 5], width, height,
                                               support::AnyOptions(random));
    CompareShadows(random, WholeBuffer(random, 8, width, height), src);
  });
}

TEST(CreateShadow, AnyShadowOfWordsMatchesModel) {
  static constexpr int kSources[] = {32, 16, 32, 17, 32, 19, 32, 24};
  support::ForEachCase(support::kWidths * 8, [](Random& random, int seed) {
    const int width = support::WidthOf(seed / 8), height = random.Between(0, 9);
    const Picture src = WholeBuffer(random, kSources[seed % 8], width, height);
    CompareShadows(random, WholeBuffer(random, 32, width, height), src);
  });
}

// Rows upwards, sources that are smaller than the output, outputs of other depths than they should
// have, sizes below 0: anything may be drawn, but nothing outside.
TEST(Tone, NothingIsWrittenOutsideWhateverTheDescriptors) {
  support::ForEachCase(3000, [](Random& random, int) {
    support::PictureOptions options = support::AnyOptions(random);
    options.negative_pitch = random.OneIn(2);
    const auto any_picture = [&] {
      const int format = model::kFormats[random.Below(7)], width = random.Between(1, 40);
      return support::RandomPicture(random, format, width, random.Between(1, 9), options);
    };
    Picture out = any_picture(), src = any_picture();
    for (Picture* p : {&out, &src}) {  // every row with its padding
      if (options.exact) p->bytes.resize(size_t(p->height * std::abs(p->pitch)));
    }
    const Picture before = out;
    TSurfDesc d = Describe(out), s = Describe(src);
    if (random.OneIn(9)) d.width = -d.width;
    if (random.OneIn(9)) d.height = -d.height;
    const std::vector<uint8_t> src_bytes = src.bytes;
    switch (random.Below(4)) {
      case 0:
        DoFactor(d, Short(random.Below(256)));
        break;
      case 1:
        DoGradient(d, 0x112233, 0xFFEEDD);
        break;
      case 2:
        CreateMask(d, s, 256);
        break;
      default:
        CreateShadow(d, s, 3, 255, Short(random.Below(300)));
        break;
    }
    EXPECT_TRUE(support::SameOutside(before, out, std::abs(before.pitch)));
    EXPECT_EQ(src.bytes, src_bytes);
  });
}

}  // namespace
