// The seven blend modes in their three shapes.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "include/pincel.h"
#include "tests/model/blend_model.h"
#include "tests/model/core_model.h"
#include "tests/support/cases.h"
#include "tests/support/checksum.h"
#include "tests/support/compare.h"
#include "tests/support/golden.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Mode;
using model::Picture;
using support::Filled;
using support::PictureOf;
using support::Pixels;
using support::Random;
using Words = std::vector<uint32_t>;

constexpr int kBlendFormats[] = {16, 17, 18, 19, 24, 32};
constexpr uint32_t kNoKey = 0xFFFFFFFF;

struct Operation {
  Mode mode;
  const char* name;
  bool (*source)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&);
  bool (*colour)(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&);
  bool (*masked)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
                 CPunto const&);
};
constexpr Operation kOperations[] = {
    {Mode::kAdd, "DoSuma", DoSuma, DoSuma, DoSuma},
    {Mode::kSubtract, "DoResta", DoResta, DoResta, DoResta},
    {Mode::kMultiply, "DoMultiplica", DoMultiplica, DoMultiplica, DoMultiplica},
    {Mode::kScreen, "DoScreen", DoScreen, DoScreen, DoScreen},
    {Mode::kLighten, "DoLighten", DoLighten, DoLighten, DoLighten},
    {Mode::kDarken, "DoDarken", DoDarken, DoDarken, DoDarken},
    {Mode::kOverlay, "DoSuperponer", DoSuperponer, DoSuperponer, DoSuperponer},
};
const Operation& OperationOf(Mode mode) { return kOperations[size_t(mode)]; }

Picture Mask(int width, int height, const Words& bytes) {
  return PictureOf(8, width, height, bytes);
}

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

// The pixels of `dst` after the operation on all of it, with everything from (0, 0).
Words Blended(Mode mode, Picture dst, Picture src) {
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(OperationOf(mode).source(d, Whole(dst), s, {0, 0}));
  return Pixels(dst);
}
Words BlendedColour(Mode mode, Picture dst, uint32_t colour, Picture mask) {
  TSurfDesc d = model::Describe(dst), m = model::Describe(mask);
  EXPECT_TRUE(OperationOf(mode).colour(d, Whole(dst), colour, m, {0, 0}));
  return Pixels(dst);
}
Words BlendedMasked(Mode mode, Picture dst, Picture src, Picture mask) {
  TSurfDesc d = model::Describe(dst), s = model::Describe(src), m = model::Describe(mask);
  EXPECT_TRUE(OperationOf(mode).masked(d, Whole(dst), s, {0, 0}, m, {0, 0}));
  return Pixels(dst);
}

// One stored pixel on another.
uint32_t BlendedPixel(Mode mode, int format, uint32_t dst, uint32_t src) {
  return Blended(mode, Filled(format, 1, 1, dst), Filled(format, 1, 1, src))[0];
}
uint32_t BlendedMaskedPixel(Mode mode, int format, uint32_t dst, uint32_t src, uint32_t m) {
  return BlendedMasked(mode, Filled(format, 1, 1, dst), Filled(format, 1, 1, src),
                       Mask(1, 1, {m}))[0];
}

// Worked examples.

TEST(Blend, Formulas24) {
  EXPECT_EQ(BlendedPixel(Mode::kAdd, 24, 0xC8C801, 0x643702), 0xFFFF03u);
  EXPECT_EQ(BlendedPixel(Mode::kSubtract, 24, 0x32FF05, 0x640105), 0x00FE00u);
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 24, 0xFF8010, 0xFFFF10), 0xFE7F01u);
  EXPECT_EQ(BlendedPixel(Mode::kScreen, 24, 0xFF8000, 0x108001), 0xFFC002u);
  EXPECT_EQ(BlendedPixel(Mode::kLighten, 24, 0x10C820, 0x20C810), 0x20C820u);
  EXPECT_EQ(BlendedPixel(Mode::kDarken, 24, 0x10C820, 0x20C810), 0x10C810u);
  EXPECT_EQ(BlendedPixel(Mode::kOverlay, 24, 0x7F80FF, 0xFF4001), 0xFD42FFu);
}

TEST(Blend, Formulas565) {
  // Red 15 of 31 expands to 120, 31 to 248: 2 * 120 * 248 / 255 is 233, field 29.
  EXPECT_EQ(BlendedPixel(Mode::kOverlay, 16, 0x7800, 0xF800), 29u << 11);
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 16, 0xF800, 0xF800), 30u << 11);
  EXPECT_EQ(BlendedPixel(Mode::kAdd, 16, 0xA145, 0x6181), 0xFAC6u);
  EXPECT_EQ(BlendedPixel(Mode::kSubtract, 16, 0x4208, 0x8421), 0x0007u);
  EXPECT_EQ(BlendedPixel(Mode::kLighten, 16, 0x4208, 0x2227), 0x4228u);
  EXPECT_EQ(BlendedPixel(Mode::kDarken, 16, 0x4208, 0x2227), 0x2207u);
}

TEST(Blend, SourceShapeSkipsTheKey) {
  for (const Operation& op : kOperations) {
    Picture src = PictureOf(24, 3, 1, {0x102030, 0x000000, 0xA0B0C0});
    src.key = 0x77A0B0C0;  // the top byte does not count
    const Words after = Blended(op.mode, Filled(24, 3, 1, 0x808080), src);
    EXPECT_EQ(after[0], model::BlendPixel(op.mode, 24, 0x808080, 0x102030)) << op.name;
    EXPECT_EQ(after[1], model::BlendPixel(op.mode, 24, 0x808080, 0)) << op.name;
    EXPECT_EQ(after[2], 0x808080u) << op.name;

    src = PictureOf(16, 2, 1, {0x1234, 0x0000});
    src.key = 0xABCD1234;  // the low half counts
    EXPECT_EQ(Blended(op.mode, Filled(16, 2, 1, 0x8410), src)[0], 0x8410u) << op.name;

    src = PictureOf(32, 2, 1, {0x80123456, 0x00123456});
    src.key = 0x40123456;
    EXPECT_EQ(Blended(op.mode, Filled(32, 2, 1, 0x01020304), src), Words(2, 0x01020304)) << op.name;
  }
}

TEST(Blend, MaskedShapesIgnoreTheKey) {
  for (const Operation& op : kOperations) {
    for (int format : kBlendFormats) {
      for (uint32_t key : {kNoKey, 0u, 0x1234u}) {
        Picture src = PictureOf(format, 2, 1, {0, 0x1234});
        src.key = key;
        Picture dst = Filled(format, 2, 1, 0x6789);
        dst.key = 0x6789;
        EXPECT_EQ(BlendedMasked(op.mode, dst, src, Mask(2, 1, {200, 200})),
                  (Words{model::BlendMaskedPixel(op.mode, format, 0x6789, 0, 200),
                         model::BlendMaskedPixel(op.mode, format, 0x6789, 0x1234, 200)}))
            << op.name << " " << format;
      }
    }
  }
}

TEST(Blend, ColourIsTrueColour) {
  // 0xAARRGGBB, packed by truncation; nearly all of it at 255.
  const Picture mask = Mask(1, 1, {255});
  EXPECT_EQ(BlendedColour(Mode::kLighten, Filled(16, 1, 1, 0), 0xFFFF8040, mask)[0],
            30u << 11 | 31u << 5 | 7u);
  EXPECT_EQ(BlendedColour(Mode::kLighten, Filled(19, 1, 1, 0), 0xFFFF8F4F, mask)[0], 0x0E73u);
  EXPECT_EQ(BlendedColour(Mode::kLighten, Filled(24, 1, 1, 0), 0xFFFF8040, mask)[0], 0xFE7F3Fu);
  EXPECT_EQ(BlendedColour(Mode::kMultiply, Filled(32, 1, 1, 0xFFFFFFFF), 0x00FFFFFF, mask)[0],
            0x00FEFEFEu);
}

// Rounding of the mask.

TEST(Blend, MaskWeightRoundsDownInBothDirections) {
  // From 100 up to 200 and down to 0 by m / 256.
  EXPECT_EQ(BlendedMaskedPixel(Mode::kLighten, 24, 0x000064, 0x0000C8, 1), 0x64u);    // 100.4
  EXPECT_EQ(BlendedMaskedPixel(Mode::kLighten, 24, 0x000064, 0x0000C8, 255), 0xC7u);  // 199.6
  EXPECT_EQ(BlendedMaskedPixel(Mode::kDarken, 24, 0x000064, 0x000000, 1), 0x63u);     // 99.6
  EXPECT_EQ(BlendedMaskedPixel(Mode::kDarken, 24, 0x000064, 0x000000, 255), 0x00u);   // 0.4
  // Fields: from 10 up to 20 and down to 0, in units of the field.
  EXPECT_EQ(BlendedMaskedPixel(Mode::kLighten, 16, 10, 20, 128), 15u);
  EXPECT_EQ(BlendedMaskedPixel(Mode::kLighten, 16, 10, 20, 255), 19u);
  EXPECT_EQ(BlendedMaskedPixel(Mode::kDarken, 16, 10, 0, 1), 9u);
  EXPECT_EQ(BlendedMaskedPixel(Mode::kDarken, 16, 10, 0, 255), 0u);
}

TEST(Blend, MaskOfZerosChangesNothing) {
  for (const Operation& op : kOperations) {
    for (int format : kBlendFormats) {
      const Words before(70, 0x89ABCDEF & (format < 24 ? 0xFFFF : format == 24 ? 0xFFFFFF : ~0u));
      const Picture dst = PictureOf(format, 70, 1, before);
      const Picture mask = Mask(70, 1, Words(70, 0));
      EXPECT_EQ(BlendedColour(op.mode, dst, 0xFF336699, mask), before) << op.name << format;
      EXPECT_EQ(BlendedMasked(op.mode, dst, Filled(format, 70, 1, 0xFF336699), mask), before)
          << op.name << format;
    }
  }
}

TEST(Blend, MaskIsReadByteByByteWhateverItsDepth) {
  Picture mask = Mask(3, 1, {0, 255, 128});
  Picture dst = Filled(24, 3, 1, 0x808080), src = Filled(24, 3, 1, 0x000000);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src), m = model::Describe(mask);
  m.bpp = 32;
  EXPECT_TRUE(DoDarken(d, Whole(dst), s, {0, 0}, m, {0, 0}));
  EXPECT_EQ(Pixels(dst), (Words{0x808080, 0x000000, 0x404040}));
  EXPECT_TRUE(DoLighten(d, {0, 0, 2, 1}, 0x808080, m, {1, 0}));
  EXPECT_EQ(Pixels(dst), (Words{0x808080, 0x404040, 0x404040}));
}

// Irregular behaviour.

TEST(Blend, SourceWithoutKeyLeavesBlackOut) {
  for (const Operation& op : kOperations) {
    for (int format : kBlendFormats) {
      EXPECT_EQ(BlendedPixel(op.mode, format, 0x5A5B, 0), 0x5A5Bu) << op.name << format;
    }
    // At 32 bits the low 24 bits count; at 16 all of them do, alpha bits too.
    EXPECT_EQ(BlendedPixel(op.mode, 32, 0x11223344, 0xFF000000), 0x11223344u) << op.name;
    EXPECT_EQ(BlendedPixel(op.mode, 18, 0xFFFF, 0x8000),
              model::BlendPixel(op.mode, 18, 0xFFFF, 0x8000))
        << op.name;
  }
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 18, 0xFFFF, 0x8000), 0u);
}

TEST(Blend, BytesShiftWhereFieldsDivide) {
  Picture black = Filled(24, 1, 1, 0);
  black.key = 0x123456;
  EXPECT_EQ(Blended(Mode::kScreen, Filled(24, 1, 1, 0), black)[0], 0x010101u);
  black = Filled(32, 1, 1, 0);
  black.key = 0x123456;
  EXPECT_EQ(Blended(Mode::kScreen, Filled(32, 1, 1, 0), black)[0], 0x01010101u);
  for (int format : {16, 17, 18, 19}) {
    black = Filled(format, 1, 1, 0);
    black.key = 0x1234;
    EXPECT_EQ(Blended(Mode::kScreen, Filled(format, 1, 1, 0), black)[0], 0u);
  }
  EXPECT_EQ(BlendedPixel(Mode::kOverlay, 24, 0x787878, 0xF8F8F8), 0xE8E8E8u);  // 232
  EXPECT_EQ(model::BlendField(Mode::kOverlay, 120, 248), 233);
  EXPECT_EQ(BlendedPixel(Mode::kOverlay, 16, 0x7800, 0xF800), 29u << 11);  // 233
  EXPECT_EQ(BlendedPixel(Mode::kOverlay, 24, 0x606060, 0xAAAAAA), 0x7F7F7Fu);
  EXPECT_EQ(BlendedPixel(Mode::kOverlay, 19, 0x0666, 0x0AAA), 0x0777u);  // 2 * 96 * 160 / 255
}

TEST(Blend, FullTimesFullIs254) {
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 24, 0xFFFFFF, 0xFFFFFF), 0xFEFEFEu);
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 32, 0xFFFFFFFF, 0xFFFFFFFF), 0xFEFEFEFEu);
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 16, 0xFFFF, 0xFFFF), 30u << 11 | 62u << 5 | 30u);
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 19, 0x0FFF, 0x0FFF), 0x0EEEu);
}

TEST(Blend, FourthByteIsAChannelOfFourModes) {
  const uint32_t d = 0x40808080, s = 0x30FFFFFF;
  EXPECT_EQ(BlendedPixel(Mode::kAdd, 32, d, s) >> 24, 0x70u);
  EXPECT_EQ(BlendedPixel(Mode::kSubtract, 32, d, s) >> 24, 0x10u);
  EXPECT_EQ(BlendedPixel(Mode::kMultiply, 32, d, s) >> 24, 0x0Cu);
  EXPECT_EQ(BlendedPixel(Mode::kScreen, 32, d, s) >> 24, 0x65u);
  for (Mode mode : {Mode::kLighten, Mode::kDarken, Mode::kOverlay}) {
    EXPECT_EQ(BlendedPixel(mode, 32, d, s) >> 24, 0x40u);
    EXPECT_EQ(BlendedPixel(mode, 32, s, d) >> 24, 0x30u);
    EXPECT_EQ(BlendedMaskedPixel(mode, 32, d, s, 255) >> 24, 0x40u);
    EXPECT_EQ(BlendedMaskedPixel(mode, 32, s, d, 1) >> 24, 0x30u);
  }
  // AA of the colour takes part: half way from 0x40 towards 0x40 * 0x80 >> 8.
  EXPECT_EQ(BlendedColour(Mode::kMultiply, Filled(32, 1, 1, d), 0x80FFFFFF, Mask(1, 1, {128}))[0],
            0x307F7F7Fu);
}

TEST(Blend, AlphaBitsOfBlendedPixelsAre0) {
  for (const Operation& op : kOperations) {
    EXPECT_EQ(BlendedPixel(op.mode, 18, 0xC210, 0x8421) & 0x8000, 0u) << op.name;
    EXPECT_EQ(BlendedPixel(op.mode, 17, 0xC210, 0x8421) & 0x8000, 0u) << op.name;
    EXPECT_EQ(BlendedPixel(op.mode, 19, 0xF123, 0xF321) & 0xF000, 0u) << op.name;
    EXPECT_EQ(BlendedMaskedPixel(op.mode, 18, 0xC210, 0x8421, 1) & 0x8000, 0u) << op.name;
    EXPECT_EQ(BlendedMaskedPixel(op.mode, 19, 0xF123, 0xF321, 1) & 0xF000, 0u) << op.name;
    // Pixels that are left out keep theirs.
    EXPECT_EQ(BlendedMaskedPixel(op.mode, 18, 0xC210, 0x8421, 0), 0xC210u) << op.name;
    EXPECT_EQ(BlendedMaskedPixel(op.mode, 19, 0xF123, 0xF321, 0), 0xF123u) << op.name;
    EXPECT_EQ(BlendedPixel(op.mode, 18, 0xC210, 0), 0xC210u) << op.name;
  }
}

TEST(Blend, SourceCountsInTheWeightOfAddAndSubtract) {
  // d 10, source 3: t is 13 and the weight 128 + 256 * 3, so 3 * 3 is added to 10 + 3 / 2.
  EXPECT_EQ(BlendedMaskedPixel(Mode::kAdd, 24, 0x00000A, 0x000003, 128), 20u);
  EXPECT_EQ(
      BlendedColour(Mode::kAdd, Filled(32, 1, 1, 0x0A00000A), 0x03000003, Mask(1, 1, {128}))[0],
      0x14000014u);
  // d 10, source 3: t is 7; 10 - 3 / 2 rounded down, less 3 * 3, modulo 256.
  EXPECT_EQ(BlendedMaskedPixel(Mode::kSubtract, 24, 0x00000A, 0x000003, 128), 255u);
  // d 100, source 16: t - d is 16; 16 * 16 is 256, which vanishes.
  EXPECT_EQ(BlendedMaskedPixel(Mode::kAdd, 24, 0x000064, 0x000010, 255), 115u);
  // Not so in the other modes, nor in 16-bit fields.
  EXPECT_EQ(BlendedMaskedPixel(Mode::kLighten, 24, 0x00000A, 0x00000D, 128), 11u);
  EXPECT_EQ(BlendedMaskedPixel(Mode::kAdd, 16, 10, 3, 128), 11u);
  EXPECT_EQ(BlendedMaskedPixel(Mode::kSubtract, 16, 10, 3, 128), 8u);
}

TEST(Blend, StartPointOutsideFailsOnlyWithoutMaskOrWithoutSource) {
  for (const Operation& op : kOperations) {
    for (int format : kBlendFormats) {
      const Picture before = Filled(format, 3, 2, 0x4321);
      Picture src = Filled(format, 3, 2, 0x1234), mask = Mask(3, 2, Words(6, 99));
      TSurfDesc s = model::Describe(src), m = model::Describe(mask);
      for (CPunto at : {CPunto{3, 0}, {4, 0}, {0, 2}, {-1, 0}, {0, -1}, {INT32_MIN, INT32_MAX}}) {
        Picture dst = before;
        TSurfDesc d = model::Describe(dst);
        EXPECT_FALSE(op.source(d, {0, 0, 1, 1}, s, at)) << op.name;
        EXPECT_FALSE(op.colour(d, {0, 0, 1, 1}, 0xFFFFFFFF, m, at)) << op.name;
        EXPECT_TRUE(support::Same(before, dst, d)) << op.name;
      }
      // The point as passed in counts, not where clipping moves it.
      Picture dst = before;
      TSurfDesc d = model::Describe(dst);
      EXPECT_FALSE(op.source(d, {-1, 0, 2, 1}, s, {-1, 0})) << op.name;
      EXPECT_FALSE(op.colour(d, {0, -1, 1, 1}, 0xFFFFFFFF, m, {0, -1})) << op.name;
      EXPECT_TRUE(support::Same(before, dst, d)) << op.name;
      EXPECT_TRUE(op.masked(d, {-1, -1, 2, 1}, s, {-1, -1}, m, {-1, -1})) << op.name;
      Picture expected = before;
      EXPECT_TRUE(
          model::BlendMasked(op.mode, expected, {-1, -1, 2, 1}, src, {-1, -1}, mask, {-1, -1}));
      EXPECT_TRUE(support::Same(expected, dst, d)) << op.name;
      EXPECT_NE(before.bytes, dst.bytes) << op.name;
    }
  }
}

// Results and arguments.

TEST(Blend, NothingVisibleIsFalse) {
  for (const Operation& op : kOperations) {
    for (int format : kBlendFormats) {
      Picture src = Filled(format, 1, 1, 0x1234), mask = Mask(1, 1, {255});
      Picture dst = Filled(format, 4, 3, 0x11111111);
      const Picture before = dst;
      TSurfDesc d = model::Describe(dst), s = model::Describe(src), m = model::Describe(mask);
      for (const CRectangulo& r : {CRectangulo{4, 0, 9, 3},
                                   {-5, 0, 0, 3},
                                   {0, 3, 4, 9},
                                   {0, -5, 4, 0},
                                   {2, 2, 2, 3},
                                   {3, 2, 1, 3},
                                   {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}}) {
        EXPECT_FALSE(op.source(d, r, s, {0, 0})) << op.name;
        EXPECT_FALSE(op.colour(d, r, 0xFFFFFFFF, m, {0, 0})) << op.name;
        EXPECT_FALSE(op.masked(d, r, s, {0, 0}, m, {0, 0})) << op.name;
      }
      EXPECT_TRUE(support::Same(before, dst, d)) << op.name;
    }
  }
}

TEST(Blend, UnsupportedFormatsAreFalse) {
  for (const Operation& op : kOperations) {
    for (uint32_t bpp : {8u, 0u, 4u, 15u, 48u}) {
      Picture dst = Filled(8, 2, 2, 0x21), src = Filled(8, 2, 2, 0x43), mask = Filled(8, 2, 2, 255);
      const Picture before = dst;
      TSurfDesc d = model::Describe(dst), s = model::Describe(src), m = model::Describe(mask);
      d.bpp = bpp;
      EXPECT_FALSE(op.source(d, {0, 0, 2, 2}, s, {0, 0})) << op.name;
      EXPECT_FALSE(op.colour(d, {0, 0, 2, 2}, 0xFFFFFFFF, m, {0, 0})) << op.name;
      EXPECT_FALSE(op.masked(d, {0, 0, 2, 2}, s, {0, 0}, m, {0, 0})) << op.name;
      EXPECT_EQ(before.bytes, dst.bytes) << op.name;
    }
  }
}

TEST(Blend, ArgumentsAreNotChanged) {
  const CRectangulo rect = {-1, -1, 9, 9};
  const CPunto at = {0, 0};
  Picture dst = Filled(24, 2, 2, 0x102030), src = Filled(24, 4, 4, 0x010203);
  Picture mask = Filled(8, 4, 4, 255);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src), m = model::Describe(mask);
  EXPECT_TRUE(DoSuma(d, rect, s, at));
  EXPECT_TRUE(DoSuma(d, rect, 0x010203, m, at));
  EXPECT_TRUE(DoSuma(d, rect, s, at, m, at));
  EXPECT_EQ(rect.left, -1);
  EXPECT_EQ(rect.bottom, 9);
  EXPECT_EQ(at.x, 0);
  EXPECT_EQ(at.y, 0);
}

#if ULONG_MAX > 0xFFFFFFFF  // else a colour has no more bits
TEST(Blend, OnlyTheLow32BitsOfAColourCount) {
  const unsigned long high = ~0ul << 16 << 16;
  for (int format : kBlendFormats) {
    Picture one = Filled(format, 3, 1, 0x1234), two = one, mask = Mask(3, 1, {1, 128, 255});
    TSurfDesc d1 = model::Describe(one), d2 = model::Describe(two), m = model::Describe(mask);
    EXPECT_TRUE(DoScreen(d1, {0, 0, 3, 1}, 0x12345678, m, {0, 0}));
    EXPECT_TRUE(DoScreen(d2, {0, 0, 3, 1}, high | 0x12345678, m, {0, 0}));
    EXPECT_EQ(one.bytes, two.bytes);
  }
}
#endif

// Comparison with the model on every target.

// `call` on a copy of the picture on every target gives the picture and the result expected.
template <class Call>
void ExpectOnEveryTarget(const Picture& before, const Picture& expected, bool result, Call call) {
  support::ForEachTarget([&] {
    Picture p = before;
    TSurfDesc d = model::Describe(p);
    ASSERT_EQ(call(d), result);
    ASSERT_TRUE(support::Same(expected, p, d));
  });
}

int FormatOf(int seed) { return kBlendFormats[seed % 6]; }

// A surface that holds `size` pixels from `at` on, and seldom more.
struct Placed {
  Picture picture;
  CPunto at;
};
Placed AnyPlaced(Random& random, int format, int64_t width, int64_t height, int max_start) {
  const CPunto at{random.Below(max_start + 1), random.Below(max_start + 1)};
  const int w = int(at.x + width) + random.Below(3), h = int(at.y + height) + random.Below(3);
  return {support::RandomPicture(random, format, w, h, support::AnyOptions(random)), at};
}

void MaybePlantKey(Random& random, Picture& p) {
  const uint32_t pixel = random.OneIn(4) ? 0 : random.Next();
  switch (random.Below(3)) {
    case 0:
      support::PlantKey(random, p, kNoKey, 0);
      break;
    case 1: {
      const uint32_t compared = p.format == 32 ? 0x00FFFFFF : 0xFFFFFFFF;
      const uint32_t noise = random.Next() & ~(p.format < 24 ? 0xFFFFu : 0xFFFFFFu);
      support::PlantKey(random, p, (pixel & ~noise & compared) | noise, pixel & ~noise);
      break;
    }
    default:
      break;
  }
}

Picture AnyDestination(Random& random, int format, int seed) {
  const int height = random.Between(1, 6);
  return support::RandomPicture(random, format, support::WidthOf(seed / 6), height,
                                support::AnyOptions(random));
}

// A rectangle whose clipping moves points by a few pixels only.
CRectangulo NearRect(Random& random, const Picture& dst) {
  for (;;) {
    const CRectangulo r = support::RandomRect(random, dst.width, dst.height);
    const model::Clipped c = model::Clip(dst.width, dst.height, r);
    if (!c.visible || (c.moved_x <= 1000 && c.moved_y <= 1000)) return r;
  }
}

// One random call of each shape, for the pictures to be blended by library and model.
struct Case {
  const Operation& op;
  Picture dst;
  CRectangulo rect;
  Placed src, mask;
  uint32_t colour;

  bool Source(TSurfDesc& d) {
    TSurfDesc s = model::Describe(src.picture);
    return op.source(d, rect, s, src.at);
  }
  bool Colour(TSurfDesc& d) {
    TSurfDesc m = model::Describe(mask.picture);
    return op.colour(d, rect, colour, m, mask.at);
  }
  bool Masked(TSurfDesc& d) {
    TSurfDesc s = model::Describe(src.picture), m = model::Describe(mask.picture);
    return op.masked(d, rect, s, src.at, m, mask.at);
  }
};

// The shapes that check their point: it lies inside, or outside on purpose.
Case AnyCheckedCase(Random& random, int format, int seed) {
  const Operation& op = kOperations[random.Below(7)];
  Picture dst = AnyDestination(random, format, seed);
  const CRectangulo r = NearRect(random, dst);
  const model::Clipped c = model::Clip(dst.width, dst.height, r);
  const int64_t w = c.visible ? c.moved_x + c.box.right - c.box.left : 1;
  const int64_t h = c.visible ? c.moved_y + c.box.bottom - c.box.top : 1;
  Placed src = AnyPlaced(random, format, w, h, 3);
  MaybePlantKey(random, src.picture);
  Placed mask = AnyPlaced(random, 8, w, h, 3);
  if (random.OneIn(20)) src.at.x = random.OneIn(2) ? -1 : src.picture.width;
  if (random.OneIn(20)) mask.at.y = random.OneIn(2) ? -1 : mask.picture.height;
  return {op, std::move(dst), r, std::move(src), std::move(mask), random.Next()};
}

// With a source and a mask the points need only end up inside, however far outside they start.
Case AnyMaskedCase(Random& random, int format, int seed) {
  const Operation& op = kOperations[random.Below(7)];
  Picture dst = AnyDestination(random, format, seed);
  const CRectangulo r = support::RandomRect(random, dst.width, dst.height);
  const model::Clipped c = model::Clip(dst.width, dst.height, r);
  const int64_t w = c.visible ? c.box.right - c.box.left : 1;
  const int64_t h = c.visible ? c.box.bottom - c.box.top : 1;
  const auto back = [&](Placed& p) {
    p.at.x = int32_t(uint32_t(p.at.x) - uint32_t(c.moved_x));
    p.at.y = int32_t(uint32_t(p.at.y) - uint32_t(c.moved_y));
  };
  Placed src = AnyPlaced(random, format, w, h, 3);
  MaybePlantKey(random, src.picture);
  Placed mask = AnyPlaced(random, 8, w, h, 3);
  back(src);
  back(mask);
  return {op, std::move(dst), r, std::move(src), std::move(mask), 0};
}

constexpr int kRandomCases = 6 * support::kWidths * 4;

TEST(Blend, RandomSources) {
  support::ForEachCase(kRandomCases, [](Random& random, int seed) {
    Case c = AnyCheckedCase(random, FormatOf(seed), seed);
    SCOPED_TRACE(c.op.name);
    Picture expected = c.dst;
    const bool result = model::Blend(c.op.mode, expected, c.rect, c.src.picture, c.src.at);
    ExpectOnEveryTarget(c.dst, expected, result, [&](TSurfDesc& d) { return c.Source(d); });
  });
}

TEST(Blend, RandomColours) {
  support::ForEachCase(kRandomCases, [](Random& random, int seed) {
    Case c = AnyCheckedCase(random, FormatOf(seed), seed);
    SCOPED_TRACE(c.op.name);
    Picture expected = c.dst;
    const bool result =
        model::BlendColour(c.op.mode, expected, c.rect, c.colour, c.mask.picture, c.mask.at);
    ExpectOnEveryTarget(c.dst, expected, result, [&](TSurfDesc& d) { return c.Colour(d); });
  });
}

TEST(Blend, RandomMaskedSources) {
  support::ForEachCase(kRandomCases, [](Random& random, int seed) {
    Case c = AnyMaskedCase(random, FormatOf(seed), seed);
    SCOPED_TRACE(c.op.name);
    Picture expected = c.dst;
    const bool result = model::BlendMasked(c.op.mode, expected, c.rect, c.src.picture, c.src.at,
                                           c.mask.picture, c.mask.at);
    ExpectOnEveryTarget(c.dst, expected, result, [&](TSurfDesc& d) { return c.Masked(d); });
  });
}

TEST(Blend, SurfaceOnItself) {
  support::ForEachCase(300, [](Random& random, int seed) {
    const int format = FormatOf(seed);
    const Operation& op = kOperations[random.Below(7)];
    Picture dst = AnyDestination(random, format, seed);
    MaybePlantKey(random, dst);
    SCOPED_TRACE(op.name);
    Picture expected = dst;
    model::Blend(op.mode, expected, Whole(dst), dst, {0, 0});
    ExpectOnEveryTarget(dst, expected, true, [&](TSurfDesc& d) {
      return op.source(d, Whole(dst), d, {0, 0});
    });
  });
}

// Committed results: every compiler, platform and instruction set must give these bytes. After an
// intended change, PINCEL_CHECKSUMS_OUT=<file> in the environment makes a run of BlendChecksums.*
// append the new lines of blend.inc to that file.

constexpr support::Golden kGolden[] = {
#include "tests/checksums/blend.inc"
};

template <class MakeCase>
void Check(const char* operation, MakeCase make, bool (Case::*call)(TSurfDesc&)) {
  support::CheckGolden(kGolden, operation, [&](int format) {
    uint32_t sum = 0;
    for (int seed = 0; seed < 300; ++seed) {
      Random random{uint64_t(seed)};
      Case c = make(random, format, seed);
      TSurfDesc d = model::Describe(c.dst);
      const bool result = (c.*call)(d);
      sum = support::Crc32({uint8_t(result)}, support::Crc32(c.dst.bytes, sum));
    }
    return sum;
  });
}

TEST(BlendChecksums, Sources) { Check("BlendSources", AnyCheckedCase, &Case::Source); }
TEST(BlendChecksums, Colours) { Check("BlendColours", AnyCheckedCase, &Case::Colour); }
TEST(BlendChecksums, MaskedSources) { Check("BlendMaskedSources", AnyMaskedCase, &Case::Masked); }

// Every value.

// Fields of a 16-bit pixel whose values are each some bijection of n modulo the field's size.
uint32_t FieldsOf(int format, uint32_t n) {
  return model::Pack(format, {int(n * 8 * (format == 19 ? 2 : 1) + 80) & 255,
                              int(n * (format == 16   ? 4
                                       : format == 19 ? 16
                                                      : 8)) &
                                  255,
                              int(n * 8 * (format == 19 ? 2 : 1) + 160) & 255});
}
// The bytes of a pixel, each with its own offset.
uint32_t BytesOf(int format, uint32_t n) {
  const uint32_t word =
      (n & 255) | ((n + 85) & 255) << 8 | ((n + 170) & 255) << 16 | ((n + 40) & 255) << 24;
  return format == 24 ? word & 0xFFFFFF : word;
}
uint32_t PixelOf(int format, uint32_t n) {
  return format >= 24 ? BytesOf(format, n) : FieldsOf(format, n);
}

// Columns run through the values of the destination, rows through those of the source.
template <class Value>
Picture Grid(int format, int side, Value value) {
  Words pixels;
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) pixels.push_back(value(uint32_t(x), uint32_t(y)));
  }
  return PictureOf(format, side, side, pixels);
}

int SideOf(int format) { return format >= 24 ? 256 : 64; }

TEST(Blend, EveryPairOfChannelValues) {
  for (int format : kBlendFormats) {
    const int side = SideOf(format);
    const uint32_t alpha = format == 18 ? 0x8000 : format == 19 ? 0xA000 : 0;
    const Picture dst =
        Grid(format, side, [&](uint32_t x, uint32_t) { return PixelOf(format, x) | alpha; });
    Picture src = Grid(format, side, [&](uint32_t, uint32_t y) { return PixelOf(format, y); });
    src.key = format >= 24 ? 0x010203 : 0xFFFE;  // no source pixel has this value
    TSurfDesc s = model::Describe(src);
    for (const Operation& op : kOperations) {
      Picture expected = dst;
      for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
          expected.Put(x, y, model::BlendPixel(op.mode, format, dst.Get(x, y), src.Get(x, y)));
        }
      }
      SCOPED_TRACE(op.name);
      ExpectOnEveryTarget(dst, expected, true, [&](TSurfDesc& d) {
        return op.source(d, Whole(dst), s, {0, 0});
      });
    }
  }
}

TEST(Blend, EveryPairOfChannelValuesThroughChosenMasks) {
  for (int format : kBlendFormats) {
    const int side = SideOf(format);
    const Picture dst =
        Grid(format, side, [&](uint32_t x, uint32_t) { return PixelOf(format, x); });
    Picture src = Grid(format, side, [&](uint32_t, uint32_t y) { return PixelOf(format, y); });
    for (uint32_t weight : {0u, 1u, 2u, 127u, 128u, 129u, 254u, 255u}) {
      Picture mask = Filled(8, side, side, weight);
      TSurfDesc s = model::Describe(src), m = model::Describe(mask);
      for (const Operation& op : kOperations) {
        Picture expected = dst;
        model::BlendMasked(op.mode, expected, Whole(dst), src, {0, 0}, mask, {0, 0});
        SCOPED_TRACE(op.name);
        ExpectOnEveryTarget(dst, expected, true, [&](TSurfDesc& d) {
          return op.masked(d, Whole(dst), s, {0, 0}, m, {0, 0});
        });
      }
    }
  }
}

TEST(Blend, EveryColourValueOnEveryDestinationValue) {
  const Words weights = {0, 1, 127, 128, 255};
  for (int format : kBlendFormats) {
    const int side = SideOf(format);
    Words pixels, bytes;
    for (uint32_t weight : weights) {
      for (int x = 0; x < side; ++x) {
        pixels.push_back(PixelOf(format, uint32_t(x)));
        bytes.push_back(weight);
      }
    }
    const Picture dst = PictureOf(format, side, int(weights.size()), pixels);
    Picture mask = Mask(side, int(weights.size()), bytes);
    TSurfDesc m = model::Describe(mask);
    for (uint32_t n = 0; n < 256; ++n) {
      const uint32_t colour = BytesOf(32, n);
      for (const Operation& op : kOperations) {
        Picture expected = dst;
        model::BlendColour(op.mode, expected, Whole(dst), colour, mask, {0, 0});
        SCOPED_TRACE(op.name);
        ExpectOnEveryTarget(dst, expected, true, [&](TSurfDesc& d) {
          return op.colour(d, Whole(dst), colour, m, {0, 0});
        });
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

TEST(Blend, EveryWordOf16Bits) {
  for (int format : {16, 17, 18, 19}) {
    const Picture dst = Grid(format, 256, [](uint32_t x, uint32_t y) { return x | y << 8; });
    Picture src = Grid(format, 256, [](uint32_t x, uint32_t y) {
      return ((x | y << 8) * 40503u + 12345u) & 0xFFFF;  // each word once, in another order
    });
    Picture mask = Grid(8, 256, [](uint32_t x, uint32_t y) { return (x * 7 + y * 13) & 255; });
    TSurfDesc s = model::Describe(src), m = model::Describe(mask);
    for (const Operation& op : kOperations) {
      SCOPED_TRACE(op.name);
      Picture expected = dst;
      model::Blend(op.mode, expected, Whole(dst), src, {0, 0});
      ExpectOnEveryTarget(dst, expected, true, [&](TSurfDesc& d) {
        return op.source(d, Whole(dst), s, {0, 0});
      });
      expected = dst;
      model::BlendMasked(op.mode, expected, Whole(dst), src, {0, 0}, mask, {0, 0});
      ExpectOnEveryTarget(dst, expected, true, [&](TSurfDesc& d) {
        return op.masked(d, Whole(dst), s, {0, 0}, m, {0, 0});
      });
    }
  }
}

// Bytes are channels whatever pixel they belong to, so that one row has all 65,536 pairs.
TEST(Blend, EveryMaskWeightOnEveryPairOfBytes) {
  std::vector<uint8_t> expected(65536), a(65538), b(65538), actual;
  for (size_t i = 0; i < a.size(); ++i) {
    a[i] = uint8_t(i >> 8);
    b[i] = uint8_t(i);
  }
  std::vector<uint8_t> mask(65538 / 3);
  const auto surface = [](std::vector<uint8_t>& bytes, uint32_t bpp) {
    TSurfDesc d{};
    d.bpp = bpp;
    d.width = int32_t(bytes.size() / (bpp / 8));
    d.height = 1;
    d.pitch = int32_t(bytes.size());
    d.colorKey = kNoKey;
    d.pixels = bytes.data();
    return d;
  };
  TSurfDesc m = surface(mask, 8);
  for (const Operation& op : kOperations) {
    SCOPED_TRACE(op.name);
    for (int weight = 1; weight < 256; ++weight) {
      std::memset(mask.data(), weight, mask.size());
      for (int i = 0; i < 65536; ++i) {
        const int d = i >> 8, s = i & 255;
        expected[size_t(i)] =
            uint8_t(model::MixByte(op.mode, d, s, model::BlendByte(op.mode, d, s), weight));
      }
      support::ForEachTarget([&] {
        actual = a;
        TSurfDesc d = surface(actual, 24), s = surface(b, 24);
        ASSERT_TRUE(op.masked(d, {0, 0, d.width, 1}, s, {0, 0}, m, {0, 0}));
        ASSERT_EQ(std::memcmp(actual.data(), expected.data(), expected.size()), 0) << weight;
        actual.assign(a.begin(), a.begin() + 65536);
        d = surface(actual, 32), s = surface(b, 32);
        ASSERT_TRUE(op.masked(d, {0, 0, d.width, 1}, s, {0, 0}, m, {0, 0}));
        for (size_t i = 3; i < 65536; i += 4) {  // the fourth bytes are compared elsewhere
          actual[i] = expected[i];
        }
        ASSERT_EQ(actual, expected) << weight;
      });
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace
