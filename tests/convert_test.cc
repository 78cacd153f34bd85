// Conversions between formats: the whole matrix, the exported converters, the raw copy.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>

#include "include/pincel.h"
#include "tests/model/convert_model.h"
#include "tests/model/core_model.h"
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
constexpr uint32_t kNone = 0xFFFFFFFF;

using Converter = bool (*)(TSurfDesc&, TSurfDesc&);
struct Exported {
  const char* name;
  Converter convert;
  int from, to;
};
constexpr Exported kRepackings[] = {
    {"Convert16_565_16_555", Convert16_565_16_555, 16, 17},
    {"Convert16_565_16_5551", Convert16_565_16_5551, 16, 18},
    {"Convert16_565_16_4444", Convert16_565_16_4444, 16, 19},
    {"Convert16_555_16_565", Convert16_555_16_565, 17, 16},
    {"Convert16_555_16_5551", Convert16_555_16_5551, 17, 18},
    {"Convert16_555_16_4444", Convert16_555_16_4444, 17, 19},
    {"Convert16_5551_16_555", Convert16_5551_16_555, 18, 17},
    {"Convert16_4444_16_565", Convert16_4444_16_565, 19, 16},
    {"Convert16_4444_16_555", Convert16_4444_16_555, 19, 17},
    {"Convert16_4444_16_5551", Convert16_4444_16_5551, 19, 18},
};

// What a conversion leaves in one pixel, and the key.
struct Converted {
  uint32_t pixel, key;
};
Converted Apply(Picture src, Picture dst, unsigned long mode = 0) {
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_FALSE(Convert(d, s, mode));
  return {dst.Get(0, 0), d.colorKey};
}
uint32_t PixelTo(int to, int from, uint32_t pixel, unsigned long mode = 0) {
  return Apply(Filled(from, 1, 1, pixel), Filled(to, 1, 1, 0), mode).pixel;
}
uint32_t KeyTo(int to, int from, uint32_t key, unsigned long mode = 0, uint32_t alpha_mask = 0) {
  Picture src = Filled(from, 1, 1, 0), dst = Filled(to, 1, 1, 0);
  src.key = key;
  dst.key = 0x12345678;
  if (to == 32) dst.alpha_mask = alpha_mask;
  return Apply(src, dst, mode).key;
}

// Runs a conversion on every target and compares with the model: all bytes and the key of the
// destination, and a source that is left alone.
template <class Library>
void CompareWith(const Picture& expected, bool result, const Picture& before, Picture& src,
                 Library convert) {
  const Picture src_before = src;
  TSurfDesc s = model::Describe(src);
  support::ForEachTarget([&] {
    Picture dst = before;
    TSurfDesc d = model::Describe(dst);
    ASSERT_EQ(convert(d, s), result);
    ASSERT_TRUE(support::Same(expected, dst, d));
  });
  ASSERT_TRUE(support::Same(src_before, src, s));
}

void CheckConvert(const Picture& before, Picture& src, uint32_t mode) {
  Picture expected = before;
  model::Convert(expected, src, mode);
  CompareWith(expected, false, before, src,
              [&](TSurfDesc& d, TSurfDesc& s) { return Convert(d, s, mode); });
}

// Every value of a 16-bit format once.
Picture AllWords(int format) {
  Picture p = Filled(format, 256, 256, 0);
  for (int w = 0; w < 65536; ++w) p.Put(w % 256, w / 256, uint32_t(w));
  return p;
}

// ---- Literal examples: repacking ----

TEST(Convert, Repack565To555) {
  EXPECT_EQ(PixelTo(17, 16, 0xFFFF), 0x7FFFu);
  EXPECT_EQ(PixelTo(17, 16, 0x07E0), 0x03E0u);
  EXPECT_EQ(PixelTo(17, 16, 0x0020), 0x0000u);  // the lowest green bit is dropped
  EXPECT_EQ(PixelTo(17, 16, 0xF800), 0x7C00u);
}

TEST(Convert, Repack555To565) {
  EXPECT_EQ(PixelTo(16, 17, 0x7FFF), 0xFFDFu);
  EXPECT_EQ(PixelTo(16, 17, 0x8000), 0x0000u);
  EXPECT_EQ(PixelTo(16, 18, 0xFFFF), 0xFFDFu);
}

TEST(Convert, Repack565To1555SetsAlpha) {
  EXPECT_EQ(PixelTo(18, 16, 0xFFFF), 0xFFFFu);
  EXPECT_EQ(PixelTo(18, 16, 0x0000), 0x8000u);
}

TEST(Convert, Repack555To1555SetsAlpha) {
  EXPECT_EQ(PixelTo(18, 17, 0x1234), 0x9234u);
  EXPECT_EQ(PixelTo(18, 17, 0xFFFF), 0xFFFFu);
}

TEST(Convert, Repack565To4444SetsAlpha) {
  EXPECT_EQ(PixelTo(19, 16, 0xFFFF), 0xFFFFu);
  EXPECT_EQ(PixelTo(19, 16, 0x0000), 0xF000u);
  EXPECT_EQ(PixelTo(19, 16, 0xF800), 0xFF00u);
  EXPECT_EQ(PixelTo(19, 16, 0x07E0), 0xF0F0u);
}

TEST(Convert, Repack555To4444LeavesAlphaZero) {
  EXPECT_EQ(PixelTo(19, 17, 0x7FFF), 0x0FFFu);
  EXPECT_EQ(PixelTo(19, 18, 0xFFFF), 0x0FFFu);
  EXPECT_EQ(PixelTo(19, 17, 0x7C00), 0x0F00u);
}

TEST(Convert, Repack4444To565) {
  EXPECT_EQ(PixelTo(16, 19, 0x0FFF), 0xF79Eu);
  EXPECT_EQ(PixelTo(16, 19, 0xF000), 0x0000u);
}

TEST(Convert, Repack4444To555CarriesTheTopAlphaBit) {
  EXPECT_EQ(PixelTo(17, 19, 0xF000), 0x8000u);
  EXPECT_EQ(PixelTo(17, 19, 0x7FFF), 0x7BDEu);
  EXPECT_EQ(PixelTo(18, 19, 0x8000), 0x8000u);
  EXPECT_EQ(PixelTo(18, 19, 0x7FFF), 0x7BDEu);
}

TEST(Convert, 5551To555Writes4444Layout) {
  EXPECT_EQ(PixelTo(17, 18, 0xFFFF), 0x0FFFu);
  EXPECT_EQ(PixelTo(17, 18, 0x7C00), 0x0F00u);
  EXPECT_EQ(PixelTo(17, 18, 0x03E0), 0x00F0u);
  EXPECT_EQ(PixelTo(17, 18, 0x001F), 0x000Fu);
  EXPECT_EQ(PixelTo(17, 18, 0x8421), 0x0000u);
}

TEST(Convert, 5551To555ConvertsItsKeyAs555) {
  EXPECT_EQ(KeyTo(17, 18, 0xFC1F), 0x7C1Fu);
  EXPECT_EQ(KeyTo(17, 18, 0x0421), 0x0421u);
}

TEST(Convert, KeylessSourceGainsKey) {
  EXPECT_EQ(KeyTo(17, 16, kNone), 0x7FFFu);
  EXPECT_EQ(KeyTo(18, 16, kNone), 0xFFFFu);
  EXPECT_EQ(KeyTo(19, 16, kNone), 0xFFFFu);
  EXPECT_EQ(KeyTo(16, 17, kNone), 0xFFDFu);
  EXPECT_EQ(KeyTo(16, 18, kNone), 0xFFDFu);
  EXPECT_EQ(KeyTo(18, 17, kNone), 0xFFFFu);
  EXPECT_EQ(KeyTo(19, 17, kNone), 0xFFFFu);
  EXPECT_EQ(KeyTo(19, 18, kNone), 0xFFFFu);
  EXPECT_EQ(KeyTo(17, 18, kNone), 0x7FFFu);
  EXPECT_EQ(KeyTo(16, 19, kNone), 0xF79Eu);
  EXPECT_EQ(KeyTo(17, 19, kNone), 0x7BDEu);
  EXPECT_EQ(KeyTo(18, 19, kNone), 0xFBDEu);
}

TEST(Convert, KeyOf16BitSources) {
  EXPECT_EQ(KeyTo(17, 16, 0xF81F), 0x7C1Fu);
  EXPECT_EQ(KeyTo(17, 16, 0xABCDF81F), 0x7C1Fu);  // only the low half counts
  EXPECT_EQ(KeyTo(18, 16, 0), 0x8000u);
  EXPECT_EQ(KeyTo(19, 16, 0), 0xF000u);
  EXPECT_EQ(KeyTo(19, 17, 0x7C1F), 0xFF0Fu);
  EXPECT_EQ(KeyTo(17, 19, 0x8F0F), 0x781Eu);  // the key does not carry alpha
  EXPECT_EQ(KeyTo(18, 19, 0x0F0F), 0xF81Eu);
}

TEST(Convert, 24To32) {
  EXPECT_EQ(PixelTo(32, 24, 0x123456), 0xFF123456u);
  EXPECT_EQ(KeyTo(32, 24, 0x00FF00FF, 0, 0xFF000000), 0xFFFF00FFu);
  EXPECT_EQ(KeyTo(32, 24, 0x00FF00FF, 0, 0), 0x00FF00FFu);
  EXPECT_EQ(KeyTo(32, 24, 0x00FF00FF, 0, 1), 0xFFFF00FFu);  // any mask will do
  EXPECT_EQ(KeyTo(32, 24, kNone, 0, 0), kNone);
  EXPECT_EQ(KeyTo(32, 24, kNone, 0, 0xFF000000), kNone);
}

TEST(Convert, 32To24) {
  EXPECT_EQ(PixelTo(24, 32, 0x89123456), 0x123456u);
  EXPECT_EQ(KeyTo(24, 32, 0x89123456), 0x89123456u);  // top byte and all
  EXPECT_EQ(KeyTo(24, 32, kNone), kNone);
}

// ---- Literal examples: depth changes ----

TEST(Convert, 16To24) {
  EXPECT_EQ(PixelTo(24, 16, 0xFFFF), 0xF8FCF8u);
  EXPECT_EQ(PixelTo(24, 17, 0xFFFF), 0xF8F8F8u);
  EXPECT_EQ(PixelTo(24, 18, 0xFFFF), 0xF8F8F8u);
  EXPECT_EQ(PixelTo(24, 19, 0xFFFF), 0xF0F0F0u);
  EXPECT_EQ(PixelTo(24, 16, 0x0821), 0x080408u);
  EXPECT_EQ(PixelTo(24, 19, 0x0123), 0x102030u);
}

TEST(Convert, 16To32) {
  EXPECT_EQ(PixelTo(32, 16, 0xFFFF), 0xFFF8FCF8u);
  EXPECT_EQ(PixelTo(32, 17, 0x7FFF), 0xFFF8F8F8u);
  EXPECT_EQ(PixelTo(32, 17, 0xFFFF), 0xFFF8F8F8u);
  EXPECT_EQ(PixelTo(32, 19, 0x8FFF), 0x80F0F0F0u);
  EXPECT_EQ(PixelTo(32, 19, 0xF123), 0xF0102030u);
}

TEST(Convert, 1555To32IgnoresTheAlphaBit) {
  EXPECT_EQ(PixelTo(32, 18, 0xFFFF), 0x00F8F8F8u);
  EXPECT_EQ(PixelTo(32, 18, 0x7FFF), 0x00F8F8F8u);
}

TEST(Convert, WidenedKeyRepeatsGreenInTheTopByte) {
  EXPECT_EQ(KeyTo(24, 16, 0x07E0), 0xFC00FC00u);
  EXPECT_EQ(KeyTo(24, 17, 0x03E0), 0xF800F800u);
  EXPECT_EQ(KeyTo(24, 18, 0x83E0), 0xF800F800u);
  EXPECT_EQ(KeyTo(24, 19, 0xF120), 0x20102000u);
  EXPECT_EQ(KeyTo(32, 16, 0x07E0, 0, 0), 0xFC00FC00u);
  EXPECT_EQ(KeyTo(32, 16, 0x07E0, 0, 0xFF000000), 0xFF00FC00u);
  EXPECT_EQ(KeyTo(32, 16, 0xF81F, 0, 0), 0x00F800F8u);
  EXPECT_EQ(KeyTo(32, 19, 0x0F0F, 0, 1), 0xFFF000F0u);
  for (int from : {16, 17, 18, 19}) {
    EXPECT_EQ(KeyTo(24, from, kNone), kNone);
    EXPECT_EQ(KeyTo(32, from, kNone, 0, 0), kNone);
    EXPECT_EQ(KeyTo(32, from, kNone, 0, 0xFF000000), kNone);
  }
}

TEST(Convert, 24And32To16) {
  for (int from : {24, 32}) {
    EXPECT_EQ(PixelTo(16, from, 0xFFFFFF), 0xFFFFu);
    EXPECT_EQ(PixelTo(16, from, 0x070307), 0x0000u);
    EXPECT_EQ(PixelTo(16, from, 0x123456), 0x11AAu);
    EXPECT_EQ(PixelTo(17, from, 0x00FFFFFF), 0x7FFFu);
    EXPECT_EQ(PixelTo(19, from, 0x00123456), 0x0135u);
  }
}

TEST(Convert, 32To16TakesTheTopBitsOfAlpha) {
  EXPECT_EQ(PixelTo(17, 32, 0x80000000), 0x8000u);
  EXPECT_EQ(PixelTo(17, 32, 0x7FFFFFFF), 0x7FFFu);
  EXPECT_EQ(PixelTo(18, 32, 0xFF000000), 0x8000u);
  EXPECT_EQ(PixelTo(18, 32, 0x7FFFFFFF), 0x7FFFu);
  EXPECT_EQ(PixelTo(19, 32, 0xA9123456), 0xA135u);
}

TEST(Convert, NextPixelsBlueBecomesAlpha) {
  const Picture src = PictureOf(24, 3, 1, {0x000000, 0x000080, 0xFFFF7F});
  const auto pixels_to = [&](int to, uint8_t behind) {
    Picture s = src, d = Filled(to, 3, 1, 0);
    s.bytes.at(9) = behind;  // the byte after the row
    TSurfDesc from = model::Describe(s), onto = model::Describe(d);
    Convert(onto, from, 0);
    return Pixels(d);
  };
  EXPECT_EQ(pixels_to(17, 0x00), (Words{0x8000, 0x0010, 0x7FEF}));
  EXPECT_EQ(pixels_to(17, 0x80), (Words{0x8000, 0x0010, 0xFFEF}));
  EXPECT_EQ(pixels_to(18, 0xFF), (Words{0x8000, 0x0010, 0xFFEF}));
  EXPECT_EQ(pixels_to(19, 0x5F), (Words{0x8000, 0x7008, 0x5FF7}));
  EXPECT_EQ(pixels_to(16, 0xFF), (Words{0x0000, 0x0010, 0xFFEF}));
}

TEST(Convert, NarrowedKey) {
  for (int from : {24, 32}) {
    EXPECT_EQ(KeyTo(16, from, 0x00FF00FF), 0xF81Fu);
    EXPECT_EQ(KeyTo(17, from, 0x00FF00FF), 0x7C1Fu);
    EXPECT_EQ(KeyTo(17, from, 0xFFFF00FF), 0x7C1Fu);
    EXPECT_EQ(KeyTo(18, from, 0x00FF00FF), 0xFC1Fu);
    EXPECT_EQ(KeyTo(19, from, 0x00FF00FF), 0xFF0Fu);
    for (int to : {16, 17, 18, 19}) EXPECT_EQ(KeyTo(to, from, kNone), kNone);
  }
}

// ---- Literal examples: from 8 bits ----

Picture Indexed(uint32_t index, bool palette, uint32_t key) {
  Picture p = Filled(8, 1, 1, index);
  p.has_palette = palette;
  p.palette[0] = {0x11, 0x22, 0x33, 0x44};  // blue, green, red, fourth
  p.palette[7] = {0x9F, 0xC7, 0xE9, 0x80};
  p.palette[8] = {0x9F, 0xC7, 0xE9, 0x7F};
  p.key = key;
  return p;
}
Converted Expanded(int to, const Picture& src, uint32_t alpha_mask = 0) {
  Picture dst = Filled(to, 1, 1, 0x5A5A5A5A);
  dst.key = 0x12345678;
  if (to == 32) dst.alpha_mask = alpha_mask;
  return Apply(src, dst);
}

TEST(Convert, PixelsFromPalette) {
  EXPECT_EQ(Expanded(16, Indexed(7, true, kNone)).pixel, 0xEE33u);
  EXPECT_EQ(Expanded(17, Indexed(7, true, kNone)).pixel, 0xF713u);
  EXPECT_EQ(Expanded(17, Indexed(8, true, kNone)).pixel, 0x7713u);
  EXPECT_EQ(Expanded(18, Indexed(7, true, kNone)).pixel, 0xF713u);
  EXPECT_EQ(Expanded(18, Indexed(8, true, kNone)).pixel, 0x7713u);
  EXPECT_EQ(Expanded(19, Indexed(8, true, kNone)).pixel, 0xFEC9u);
  EXPECT_EQ(Expanded(24, Indexed(7, true, kNone)).pixel, 0xE9C79Fu);
  EXPECT_EQ(Expanded(32, Indexed(8, true, kNone)).pixel, 0xFFE9C79Fu);
}

TEST(Convert, WithoutPaletteIndicesAreGreys) {
  EXPECT_EQ(Expanded(16, Indexed(0x9D, false, kNone)).pixel, 0x9CF3u);
  EXPECT_EQ(Expanded(17, Indexed(0x9D, false, kNone)).pixel, 0x4E73u);
  EXPECT_EQ(Expanded(18, Indexed(0x9D, false, kNone)).pixel, 0x4E73u);
  EXPECT_EQ(Expanded(19, Indexed(0x9D, false, kNone)).pixel, 0x0999u);  // alpha 0
  EXPECT_EQ(Expanded(24, Indexed(0x9D, false, kNone)).pixel, 0x9D9D9Du);
  EXPECT_EQ(Expanded(32, Indexed(0x9D, false, kNone)).pixel, 0xFF9D9D9Du);
}

TEST(Convert, KeyedPaletteSourceGivesTheColourOfEntryZero) {
  for (uint32_t key : {7u, 0u, 200u}) {
    EXPECT_EQ(Expanded(16, Indexed(7, true, key)).key, 0x3102u);
    EXPECT_EQ(Expanded(17, Indexed(7, true, key)).key, 0x1882u);
    EXPECT_EQ(Expanded(18, Indexed(7, true, key)).key, 0x9882u);
    EXPECT_EQ(Expanded(19, Indexed(7, true, key)).key, 0xF321u);
    EXPECT_EQ(Expanded(24, Indexed(7, true, key)).key, 0x44332211u);  // fourth byte and all
    EXPECT_EQ(Expanded(32, Indexed(7, true, key), 0xFF000000).key, 0xFF332211u);
    EXPECT_EQ(Expanded(32, Indexed(7, true, key), 1).key, 0xFF332211u);
  }
  Picture alpha = Indexed(7, true, 3);
  alpha.palette[0].alpha = 0x80;
  EXPECT_EQ(Expanded(17, alpha).key, 0x9882u);  // bit 7 of the fourth byte
}

TEST(Convert, Key24TakesTheWholeEntry) {
  EXPECT_EQ(Expanded(24, Indexed(7, true, 9)).key, 0x44332211u);
  EXPECT_EQ(Expanded(24, Indexed(7, true, kNone)).key, kNone);
}

TEST(Convert, PaletteGives4444AlphaGreyDoesNot) {
  EXPECT_EQ(Expanded(19, Indexed(7, true, 9)).pixel, 0xFEC9u);
  EXPECT_EQ(Expanded(19, Indexed(0x9D, false, 9)).pixel, 0x0999u);
  EXPECT_EQ(Expanded(19, Indexed(7, true, 9)).key, 0xF321u);
  EXPECT_EQ(Expanded(19, Indexed(0x9D, false, 9)).key, 0xF000u);
}

TEST(Convert, KeyedGreySourceGivesBlack) {
  EXPECT_EQ(Expanded(16, Indexed(7, false, 9)).key, 0u);
  EXPECT_EQ(Expanded(17, Indexed(7, false, 9)).key, 0u);
  EXPECT_EQ(Expanded(18, Indexed(7, false, 9)).key, 0x8000u);
  EXPECT_EQ(Expanded(19, Indexed(7, false, 9)).key, 0xF000u);
  EXPECT_EQ(Expanded(24, Indexed(7, false, 9)).key, 0u);
  EXPECT_EQ(Expanded(32, Indexed(7, false, 9), 0xFF000000).key, 0xFF000000u);
}

TEST(Convert, PaletteIndexBecomes32BitKey) {
  for (bool palette : {true, false}) {
    EXPECT_EQ(Expanded(32, Indexed(7, palette, 200), 0).key, 200u);
    EXPECT_EQ(Expanded(32, Indexed(7, palette, 0xABCD0007), 0).key, 0xABCD0007u);
  }
}

TEST(Convert, KeylessPaletteSourceLeaves32BitKeyAlone) {
  for (bool palette : {true, false}) {
    EXPECT_EQ(Expanded(32, Indexed(7, palette, kNone), 0).key, 0x12345678u);
    EXPECT_EQ(Expanded(32, Indexed(7, palette, kNone), 0xFF000000).key, 0x12345678u);
    for (int to : {16, 17, 18, 19, 24}) {
      EXPECT_EQ(Expanded(to, Indexed(7, palette, kNone)).key, kNone);
    }
  }
}

// ---- Literal examples: to 8 bits ----

TEST(Convert, RedBlueExchangedForReductionsFrom24And32) {
  for (int from : {24, 32}) {
    EXPECT_EQ(PixelTo(8, from, 0x0000FF, 3), 0xE0u);  // blue
    EXPECT_EQ(PixelTo(8, from, 0xFF0000, 3), 0x03u);  // red
    EXPECT_EQ(PixelTo(8, from, 0x00FF00, 3), 0x1Cu);
    EXPECT_EQ(PixelTo(8, from, 0x0000FF, 4), 210u);
    EXPECT_EQ(PixelTo(8, from, 0xFF0000, 4), 5u);
    Picture dst = Filled(8, 1, 1, 0);
    dst.has_palette = true;
    dst.palette[20] = {0, 0, 0xFF, 0};  // red
    dst.palette[30] = {0xFF, 0, 0, 0};  // blue
    EXPECT_EQ(Apply(Filled(from, 1, 1, 0x0000FF), dst, 2).pixel, 20u);
    EXPECT_EQ(Apply(Filled(from, 1, 1, 0xFF0000), dst, 2).pixel, 30u);
  }
}

TEST(Convert, ReductionsFrom16DoNotExchange) {
  EXPECT_EQ(PixelTo(8, 16, 0xF800, 3), 0xE0u);
  EXPECT_EQ(PixelTo(8, 16, 0x001F, 3), 0x03u);
  EXPECT_EQ(PixelTo(8, 17, 0x7C00, 3), 0xE0u);
  EXPECT_EQ(PixelTo(8, 18, 0x7C00, 3), 0xE0u);
  EXPECT_EQ(PixelTo(8, 18, 0xFC00, 3), 0xE0u);
  EXPECT_EQ(PixelTo(8, 19, 0x0F00, 3), 0xE0u);
  EXPECT_EQ(PixelTo(8, 16, 0xF800, 4), 210u);
  Picture dst = Filled(8, 1, 1, 0);
  dst.has_palette = true;
  dst.palette[20] = {0, 0, 0xF8, 0};
  dst.palette[30] = {0xF8, 0, 0, 0};
  EXPECT_EQ(Apply(Filled(16, 1, 1, 0xF800), dst, 2).pixel, 20u);
}

TEST(Convert, ModelCubeIndices) {
  EXPECT_EQ(PixelTo(8, 24, 0xFFFFFF, 4), 251u);
  EXPECT_EQ(PixelTo(8, 24, 0x000000, 4), 0u);
  EXPECT_EQ(PixelTo(8, 24, 0x808080, 4), 42u * 3 + 6 * 3 + 3);
  EXPECT_EQ(PixelTo(8, 24, 0x2A242A, 4), 0u);
  EXPECT_EQ(PixelTo(8, 24, 0x2B252B, 4), 42u + 6 + 1);
}

TEST(Convert, ModeOneSetsTheKeyOnly) {
  for (int from : {16, 17, 18, 19, 24, 32}) {
    Picture src = Filled(from, 2, 2, 0xFFFFFFFF), dst = Filled(8, 2, 2, 9);
    dst.key = 77;
    src.key = 5;
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    EXPECT_FALSE(Convert(d, s, 1));
    EXPECT_EQ(Pixels(dst), Words(4, 9));
    EXPECT_EQ(d.colorKey, 0u);
    s.colorKey = kNone;
    EXPECT_FALSE(Convert(d, s, 1));
    EXPECT_EQ(Pixels(dst), Words(4, 9));
    EXPECT_EQ(d.colorKey, kNone);
  }
}

TEST(Convert, OtherModesDoNothing) {
  for (int from : {16, 17, 18, 19, 24, 32}) {
    for (uint32_t mode : {0u, 5u, 6u, 255u, 0x102u, 0x80000002u, 0xFFFFFFFFu}) {
      Picture src = Filled(from, 2, 2, 0xFFFFFFFF), dst = Filled(8, 2, 2, 9);
      dst.key = 77;
      src.key = 5;
      const Picture before = dst;
      TSurfDesc d = model::Describe(dst), s = model::Describe(src);
      EXPECT_FALSE(Convert(d, s, mode));
      EXPECT_TRUE(support::Same(before, dst, d)) << from << " mode " << mode;
    }
  }
}

#if ULONG_MAX > 0xFFFFFFFF
TEST(Convert, OnlyTheLow32BitsOfTheModeAreRead) {
  EXPECT_EQ(PixelTo(8, 16, 0xF800, (unsigned long)(0x100000003ull)), 0xE0u);
}
#endif

TEST(Convert, ReducedKeyedPixelsBecomeZero) {
  for (int from : {24, 32}) {
    Picture src = Filled(from, 1, 1, 0x804020);
    src.key = 0x00804020;
    for (unsigned long mode : {3ul, 4ul}) {
      const Converted c = Apply(src, Filled(8, 1, 1, 9), mode);
      EXPECT_EQ(c.pixel, 0u);
      EXPECT_EQ(c.key, 0u);
    }
    src.key = 0x00804021;
    EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).pixel, 0x2Au);  // 001 010 10
  }
}

TEST(Convert, ReducedKeyWithTopByteNeverMatches) {
  Picture src = Filled(32, 1, 1, 0xFF804020);
  src.key = 0xFF804020;
  const Converted c = Apply(src, Filled(8, 1, 1, 9), 3);
  EXPECT_EQ(c.pixel, 0x2Au);
  EXPECT_EQ(c.key, 0u);
  src.key = 0x00804020;  // the pixel's own top byte does not matter
  EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).pixel, 0u);
}

TEST(Convert, Reduced16BitKeyIsComparedInverted) {
  Picture src = Filled(16, 1, 1, 0xF800);
  src.key = 0xF800;  // a key as hosts write it: no effect on the pixel
  EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).pixel, 0xE0u);
  EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).key, 0u);
  src.key = 0x0007FFFF;  // 0x00F80000 exclusive-or 0x00FFFFFF
  EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).pixel, 0u);
  src = Filled(16, 1, 1, 0x07E0);
  src.key = 0xFCFF03FF;  // green stands in the top byte as well
  EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).pixel, 0u);
  src.key = 0x00FF03FF;
  EXPECT_EQ(Apply(src, Filled(8, 1, 1, 9), 3).pixel, 0x1Cu);
}

TEST(Convert, ReducedKeyIsZeroOrNone) {
  for (int from : {16, 17, 18, 19, 24, 32}) {
    for (unsigned long mode : {1ul, 3ul, 4ul}) {
      EXPECT_EQ(KeyTo(8, from, 0, mode), 0u);
      EXPECT_EQ(KeyTo(8, from, 0x1234, mode), 0u);
      EXPECT_EQ(KeyTo(8, from, kNone, mode), kNone);
    }
  }
}

// ---- 8 to 8 bits ----

TEST(Convert8To8, RemapsAndCopiesTheKey) {
  Picture src = PictureOf(8, 3, 1, {0, 1, 2}), dst = Filled(8, 3, 1, 9);
  src.has_palette = dst.has_palette = true;
  src.palette[0] = {0, 0, 200, 0};
  src.palette[1] = {0, 200, 0, 0};
  src.palette[2] = {200, 0, 0, 0};
  dst.palette[50] = {0, 0, 200, 0};
  dst.palette[60] = {0, 199, 0, 0};
  dst.palette[70] = {201, 0, 0, 0};  // one step above costs 255, black 200
  src.key = 2;
  for (unsigned long mode : {0ul, 1ul, 2ul, 9ul}) {  // the mode is not read
    Picture out = dst;
    TSurfDesc d = model::Describe(out), s = model::Describe(src);
    EXPECT_FALSE(Convert(d, s, mode));
    EXPECT_EQ(Pixels(out), (Words{50, 60, 255}));
    EXPECT_EQ(d.colorKey, 2u);
  }
  Picture out = dst;
  TSurfDesc d = model::Describe(out), s = model::Describe(src);
  s.colorKey = kNone;
  EXPECT_TRUE(Convert8_8(d, s));
  EXPECT_EQ(Pixels(out), (Words{50, 60, 255}));
  EXPECT_EQ(d.colorKey, kNone);
}

TEST(Convert8To8, SamePaletteIsNoCopyWhereEntriesRepeat) {
  Picture src = PictureOf(8, 2, 1, {3, 200}), dst = Filled(8, 2, 1, 0);
  src.has_palette = dst.has_palette = true;
  src.palette[3] = src.palette[200] = {1, 2, 3, 0};
  dst.palette = src.palette;
  Apply(src, dst);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(Convert8_8(d, s));
  EXPECT_EQ(Pixels(dst), (Words{200, 200}));
}

TEST(Convert8To8, WithoutRowsCopiesTheKeyOnly) {
  for (int height : {0, -1, INT32_MIN}) {
    Picture src = Filled(8, 2, 2, 1), dst = Filled(8, 2, 2, 9);
    src.has_palette = dst.has_palette = true;
    src.key = 33;
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    s.height = height;
    EXPECT_TRUE(Convert8_8(d, s));
    EXPECT_EQ(Pixels(dst), Words(4, 9));
    EXPECT_EQ(d.colorKey, 33u);
  }
}

// ---- The dispatcher ----

TEST(Convert, AlwaysFalse) {
  for (int to : model::kFormats) {
    for (int from : model::kFormats) {
      for (unsigned long mode = 0; mode < 6; ++mode) {
        Picture src = Filled(from, 4, 1, 1), dst = Filled(to, 4, 1, 0);
        src.has_palette = dst.has_palette = true;
        TSurfDesc d = model::Describe(dst), s = model::Describe(src);
        EXPECT_FALSE(Convert(d, s, mode));
      }
    }
  }
}

TEST(Convert, UnsupportedFormatsDoNothing) {
  for (uint32_t bpp : {0u, 1u, 4u, 7u, 15u, 20u, 33u, 48u, 64u, 0xFFFFFFF8u}) {
    for (int format : model::kFormats) {
      Picture src = Filled(format, 2, 2, 0x11111111), dst = Filled(32, 2, 2, 0x55555555);
      src.has_palette = true;
      src.key = 1;
      TSurfDesc d = model::Describe(dst), s = model::Describe(src);
      d.bpp = bpp;
      EXPECT_FALSE(Convert(d, s, 3));
      EXPECT_EQ(d.colorKey, kNone);
      s.bpp = bpp;
      EXPECT_FALSE(Convert(d, s, 3));
      EXPECT_EQ(d.colorKey, kNone);
      d.bpp = 32;
      EXPECT_FALSE(Convert(d, s, 3));
      EXPECT_EQ(d.colorKey, kNone);
      EXPECT_EQ(Pixels(dst), Words(4, 0x55555555)) << bpp;
    }
  }
}

TEST(Convert, EqualFormatsAreCopiedWithTheKey) {
  for (int format : {16, 17, 18, 19, 24, 32}) {
    Picture src = Filled(format, 4, 2, 0x12345678), dst = Filled(format, 4, 2, 0);
    src.bytes.resize(32), dst.bytes.resize(32);
    src.key = 0xABCDEF01;
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    EXPECT_FALSE(Convert(d, s, 0));
    EXPECT_EQ(Pixels(dst), Pixels(src)) << format;
    EXPECT_EQ(d.colorKey, 0xABCDEF01u);
    s.colorKey = kNone;
    EXPECT_FALSE(Convert(d, s, 0));
    EXPECT_EQ(d.colorKey, kNone);
  }
}

// The source's size counts; the destination's is not read.
TEST(Convert, WalksTheSourcesSize) {
  Picture src = Filled(16, 2, 1, 0xFFFF), dst = Filled(32, 3, 2, 0);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  d.width = d.height = 0;
  EXPECT_FALSE(Convert(d, s, 0));
  EXPECT_EQ(Pixels(dst), (Words{0xFFF8FCF8, 0xFFF8FCF8, 0, 0, 0, 0}));
}

TEST(Convert, EmptySourceConvertsTheKeyOnly) {
  for (int to : model::kFormats) {
    for (int from : model::kFormats) {
      if (to == from || (to >= 24 && from >= 24)) continue;
      for (int size : {0, -1, INT32_MIN}) {
        for (bool rows : {true, false}) {
          Picture src = Filled(from, 2, 2, 0x11111111), dst = Filled(to, 2, 2, 0x5A5A5A5A);
          src.has_palette = dst.has_palette = true;
          src.key = 0x1234;
          Picture empty = src, expected = dst;
          (rows ? empty.width : empty.height) = size;
          model::Convert(expected, empty, 3);
          TSurfDesc d = model::Describe(dst), s = model::Describe(src);
          (rows ? s.width : s.height) = size;
          EXPECT_FALSE(Convert(d, s, 3));
          EXPECT_TRUE(support::Same(expected, dst, d)) << from << " to " << to;
        }
      }
    }
  }
}

// ---- The exported converters called directly ----

TEST(Repack, EmptySourceConvertsTheKeyOnlyAndIsTrue) {
  for (const Exported& e : kRepackings) {
    for (int size : {0, -1, INT32_MIN}) {
      for (bool rows : {true, false}) {
        Picture src = Filled(e.from, 2, 2, 0x1111), dst = Filled(e.to, 2, 2, 0x5A5A);
        Picture expected = Filled(e.to, 2, 2, 0x5A5A), one = src;
        Picture scratch = dst;
        model::Repack(scratch, one, e.from, e.to);
        expected.key = scratch.key;
        TSurfDesc d = model::Describe(dst), s = model::Describe(src);
        (rows ? s.width : s.height) = size;
        EXPECT_TRUE(e.convert(d, s)) << e.name;
        EXPECT_TRUE(support::Same(expected, dst, d)) << e.name;
      }
    }
  }
}

TEST(Repack, FormatsAreNotChecked) {
  for (const Exported& e : kRepackings) {
    Picture src = AllWords(e.from), dst = Filled(e.to, 256, 256, 0);
    src.key = 0x4321;
    Picture expected = dst;
    model::Repack(expected, src, e.from, e.to);
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    d.bpp = s.bpp = 0;
    d.rMask = s.rMask = d.aMask = s.aMask = 0x00FF00FF;
    EXPECT_TRUE(e.convert(d, s)) << e.name;
    EXPECT_EQ(dst.bytes, expected.bytes) << e.name;
    EXPECT_EQ(d.colorKey, expected.key) << e.name;
  }
}

TEST(Repack, EveryWordOnEveryTarget) {
  for (const Exported& e : kRepackings) {
    SCOPED_TRACE(e.name);
    Picture src = AllWords(e.from);
    const Picture before = Filled(e.to, 256, 256, 0x5A5A);
    Picture expected = before;
    model::Repack(expected, src, e.from, e.to);
    CompareWith(expected, true, before, src, e.convert);
  }
}

TEST(Repack, EveryKey) {
  for (const Exported& e : kRepackings) {
    Picture src = Filled(e.from, 1, 1, 0), dst = Filled(e.to, 1, 1, 0);
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    for (uint32_t key = 0; key < 65536; ++key) {
      src.key = s.colorKey = key | (key * 0x9E37u) << 16;
      model::Repack(dst, src, e.from, e.to);
      e.convert(d, s);
      ASSERT_EQ(d.colorKey, dst.key) << e.name << " " << key;
    }
  }
}

TEST(Repack, MatchesModel) {
  for (const Exported& e : kRepackings) {
    SCOPED_TRACE(e.name);
    support::ForEachCase(250, [&](Random& random, int seed) {
      const int height = random.Between(1, 5);
      const support::PictureOptions from_options = support::AnyOptions(random);
      const support::PictureOptions to_options = support::AnyOptions(random);
      Picture src =
          support::RandomPicture(random, e.from, support::WidthOf(seed), height, from_options);
      src.key = random.OneIn(3) ? kNone : random.Next();
      const int more = random.Below(3);
      const Picture before =
          support::RandomPicture(random, e.to, src.width + more, height, to_options);
      Picture expected = before;
      model::Repack(expected, src, e.from, e.to);
      CompareWith(expected, true, before, src, e.convert);
    });
  }
}

TEST(Repack24And32, SizesBelowOneCountAsOne) {
  for (int width : {1, 0, -1, INT32_MIN}) {
    for (int height : {1, 0, -1, INT32_MIN}) {
      Picture src = Filled(24, 2, 2, 0x123456), dst = Filled(32, 2, 2, 0x5A5A5A5A);
      TSurfDesc d = model::Describe(dst), s = model::Describe(src);
      s.width = width;
      s.height = height;
      EXPECT_TRUE(Convert24_32_(d, s));
      EXPECT_EQ(Pixels(dst), (Words{0xFF123456, 0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A}));

      Picture wide = Filled(32, 2, 2, 0x89ABCDEF), narrow = Filled(24, 2, 2, 0x5A5A5A);
      TSurfDesc n = model::Describe(narrow), w = model::Describe(wide);
      w.width = width;
      w.height = height;
      EXPECT_TRUE(Convert32_24_(n, w));
      EXPECT_EQ(Pixels(narrow), (Words{0xABCDEF, 0x5A5A5A, 0x5A5A5A, 0x5A5A5A}));
    }
  }
}

TEST(Repack24And32, MatchesModel) {
  for (bool widen : {true, false}) {
    support::ForEachCase(1000, [&](Random& random, int seed) {
      const int height = random.Between(1, 5);
      const support::PictureOptions from_options = support::AnyOptions(random);
      const support::PictureOptions to_options = support::AnyOptions(random);
      Picture src = support::RandomPicture(random, widen ? 24 : 32, support::WidthOf(seed), height,
                                           from_options);
      src.key = random.OneIn(3) ? kNone : random.Next();
      const int more = random.Below(3);
      const Picture before =
          support::RandomPicture(random, widen ? 32 : 24, src.width + more, height, to_options);
      Picture expected = before;
      (widen ? model::Convert24To32 : model::Convert32To24)(expected, src);
      CompareWith(expected, true, before, src, widen ? Convert24_32_ : Convert32_24_);
    });
  }
}

// ---- CopyImage ----

TEST(CopyImage, EqualPitchesCopyWholeWords) {
  Picture src = Filled(8, 10, 3, 7), dst = Filled(8, 10, 3, 1);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(CopyImage(d, s));
  Words expected(30, 7);
  expected[28] = expected[29] = 1;
  EXPECT_EQ(Pixels(dst), expected);
}

TEST(CopyImage, EqualPitchesCopyThePaddingToo) {
  Picture src = Filled(8, 8, 3, 7), dst = Filled(8, 8, 3, 1);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  s.width = 1;
  EXPECT_TRUE(CopyImage(d, s));
  EXPECT_EQ(Pixels(dst), Words(24, 7));
}

TEST(CopyImage, NeitherKeyNorPaletteIsCopied) {
  Picture src = Filled(8, 4, 1, 7), dst = Filled(8, 4, 1, 1);
  src.has_palette = dst.has_palette = true;
  src.key = 5;
  src.palette[3] = {1, 2, 3, 4};
  Picture expected = src;
  expected.key = kNone;
  expected.palette = dst.palette;
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(CopyImage(d, s));
  EXPECT_TRUE(support::Same(expected, dst, d));
}

// 8 bits, 4 pixels: exact whatever the pitches.
TEST(CopyImage, DifferentPitchesAreExactFor8BitsAndMultiplesOfFour) {
  Picture src = PictureOf(8, 6, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  Picture dst = Filled(8, 5, 2, 99);
  src.width = 4;
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(CopyImage(d, s));
  EXPECT_EQ(Pixels(dst), (Words{1, 2, 3, 4, 99, 7, 8, 9, 10, 99}));
}

// Four 16-bit pixels: four bytes are copied, then the pointers move by their pitch less eight. From
// the run's end at byte 4 the source goes on at 4 + 12 - 8 = 8, the destination at 4 + 10 - 8 = 6.
TEST(CopyImage, CopyImageDriftsOnDeeperSurfaces) {
  Picture src = PictureOf(16, 6, 2,
                          {0x0201, 0x0403, 0x0605, 0x0807, 0x0A09, 0x0C0B,  //
                           0x1211, 0x1413, 0x1615, 0x1817, 0x1A19, 0x1C1B});
  Picture dst = Filled(16, 5, 2, 0xEEEE);
  src.width = 4;
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(CopyImage(d, s));
  EXPECT_EQ(Pixels(dst), (Words{0x0201, 0x0403, 0xEEEE, 0x0A09, 0x0C0B,  //
                                0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE}));
}

// Three bytes are rounded up to four, and the advance starts there: from byte 4 the source goes on at
// 4 + 5 - 3 = 6, the destination at 4 + 4 - 3 = 5.
TEST(CopyImage, CopyImageRowsAreRoundedUpToFourBytes) {
  Picture src = PictureOf(8, 5, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  Picture dst = Filled(8, 4, 3, 99);
  src.width = 3;
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(CopyImage(d, s));
  EXPECT_EQ(Pixels(dst), (Words{1, 2, 3, 4, 99, 7, 8, 9, 10, 99, 99, 99}));
}

TEST(CopyImage, WithoutRowsDifferentPitchesCopyOneRow) {
  for (int height : {1, 0, -1, INT32_MIN}) {
    Picture src = Filled(8, 4, 2, 7), dst = Filled(8, 5, 2, 1);
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    s.height = height;
    EXPECT_TRUE(CopyImage(d, s));
    EXPECT_EQ(Pixels(dst), (Words{7, 7, 7, 7, 1, 1, 1, 1, 1, 1}));
  }
}

TEST(CopyImage, WithoutRowsEqualPitchesCopyNothing) {
  for (int height : {0, -1, INT32_MIN}) {
    Picture src = Filled(8, 4, 2, 7), dst = Filled(8, 4, 2, 1);
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    s.height = height;
    EXPECT_TRUE(CopyImage(d, s));
    EXPECT_EQ(Pixels(dst), Words(8, 1));
  }
}

TEST(CopyImage, EqualNegativePitchesCopyNothing) {
  Picture src = Filled(8, 4, 2, 7), dst = Filled(8, 4, 2, 1);
  src.origin = dst.origin = 4;
  src.pitch = dst.pitch = -4;
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(CopyImage(d, s));
  dst.origin = 0;
  dst.pitch = 4;
  EXPECT_EQ(Pixels(dst), Words(8, 1));
}

// The bytes of a surface that CopyImage reaches, from pixel (0, 0).
struct Reach {
  int64_t first = 0, end = 0;
};
Reach ReachOfCopy(const Picture& p, int pitch, int other_pitch) {
  const int64_t row = int64_t{p.width} * p.BytesPerPixel();
  Reach reach;
  const auto include = [&](int64_t first, int64_t end) {
    reach.first = std::min(reach.first, first);
    reach.end = std::max(reach.end, end);
  };
  if (pitch == other_pitch) {
    include(0, std::max<int64_t>(int64_t{p.height} * pitch, row));
  } else {
    const int64_t run = (p.width + 3) / 4 * 4;
    for (int y = 0; y < std::max(p.height, 1); ++y) {
      const int64_t at = y * (run + pitch - row);
      include(at, at + run);
    }
  }
  return reach;
}

Picture CopyPicture(Random& random, const Picture& shape, int pitch, int other_pitch, int guard) {
  Picture p = shape;
  p.pitch = pitch;
  const Reach reach = ReachOfCopy(p, pitch, other_pitch);
  p.origin = guard - reach.first;
  p.bytes.resize(size_t(reach.end - reach.first + 2 * guard));
  for (uint8_t& byte : p.bytes) byte = random.Byte();
  p.key = random.OneIn(2) ? kNone : random.Next();
  return p;
}

// Two surfaces of one format and size, pitches equal or not, upwards too; the memory ends with what
// is copied, or has guards.
struct CopyPair {
  Picture src, dst;
};
CopyPair AnyCopyPair(Random& random, int format, int width) {
  Picture shape;
  shape.format = format;
  shape.width = width;
  shape.height = random.Between(0, 9);
  if (shape.height == 0) shape.height = random.Between(-2, 1);
  shape.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  const int row = width * shape.BytesPerPixel();
  int pitch = row + random.Below(9);
  int other = random.OneIn(3) ? pitch : row + random.Below(9);
  if (random.OneIn(8) && pitch != other) pitch = -pitch;
  if (random.OneIn(8) && pitch != other) other = -other;
  const int guard = random.OneIn(3) ? 0 : 40 + random.Below(4);
  Picture src = CopyPicture(random, shape, pitch, other, guard);
  Picture dst = CopyPicture(random, shape, other, pitch, guard);
  return {src, dst};
}

TEST(CopyImage, MatchesModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(1000, [&](Random& random, int seed) {
      CopyPair pair = AnyCopyPair(random, format, support::WidthOf(seed));
      Picture expected = pair.dst;
      model::CopyImage(expected, pair.src);
      CompareWith(expected, true, pair.dst, pair.src, CopyImage);
    });
  }
}

// ---- The whole matrix against the model ----

// A key of the kind that the source's format makes interesting, present in the pixels.
void AnyKey(Random& random, Picture& src) {
  const uint32_t pixel = random.OneIn(4) ? 0 : random.Next();
  switch (random.Below(6)) {
    case 0:
    case 1:
      src.key = kNone;
      return;
    case 2:
      src.key = random.Next();
      return;
    case 3:
      src.key = uint32_t(random.Below(65536));
      return;
    default:
      break;
  }
  switch (src.format) {
    case 8:
      support::PlantKey(random, src, pixel & 0xFF, pixel);
      return;
    case 24:
    case 32:
      support::PlantKey(random, src, pixel & 0xFFFFFF, pixel);
      return;
    default:
      support::PlantKey(random, src, model::UnpackedNumber(src.format, pixel) ^ 0x00FFFFFF, pixel);
  }
}

void CheckCell(int to, int from, int cases) {
  support::ForEachCase(cases, [&](Random& random, int seed) {
    const int width = support::WidthOf(seed);
    const int height = random.Between(1, 4);
    support::PictureOptions from_options = support::AnyOptions(random);
    const support::PictureOptions to_options = support::AnyOptions(random);
    from_options.tail = from == 24 && to >= 17 && to <= 19 ? 1 : 0;
    Picture src = support::RandomPicture(random, from, width, height, from_options);
    const int more_columns = random.Below(3);
    const int more_rows = random.Below(2);
    Picture before =
        support::RandomPicture(random, to, width + more_columns, height + more_rows, to_options);
    if (to == from && to != 8) {
      CopyPair pair = AnyCopyPair(random, to, width);
      src = pair.src;
      before = pair.dst;
    }
    src.has_palette = from == 8 ? to == 8 || random.OneIn(2) : random.OneIn(4);
    if (to >= 24) before.alpha_mask = random.OneIn(2) ? 0 : 0xFF000000u;
    before.key = random.OneIn(2) ? kNone : random.Next();
    if (!(to == from && to != 8)) AnyKey(random, src);
    const uint32_t modes[] = {2, 3, 4, 3, 4, 1, 0, 5, random.Next()};
    CheckConvert(before, src, modes[random.Below(9)]);
  });
}

TEST(ConvertMatrix, To8MatchesModel) {
  for (int from : model::kFormats) CheckCell(8, from, 700);
}
TEST(ConvertMatrix, To16MatchesModel) {
  for (int to : {16, 17, 18, 19}) {
    for (int from : model::kFormats) CheckCell(to, from, 400);
  }
}
TEST(ConvertMatrix, To24MatchesModel) {
  for (int from : model::kFormats) CheckCell(24, from, 500);
}
TEST(ConvertMatrix, To32MatchesModel) {
  for (int from : model::kFormats) CheckCell(32, from, 500);
}

// Every cell with every mode, key, palette and alpha mask at least once.
TEST(ConvertMatrix, EveryCombinationOfSwitches) {
  for (int to : model::kFormats) {
    for (int from : model::kFormats) {
      for (int switches = 0; switches < 6 * 8; ++switches) {
        Random random(uint64_t(to * 40 + from));
        const uint32_t mode = uint32_t(switches / 8);
        Picture src = support::RandomPicture(random, from, 21, 2);
        Picture before = support::RandomPicture(random, to, 21, 2);
        if (to == from && to != 8) before.pitch = src.pitch;
        before.key = 0x12345678;
        if (switches & 1) AnyKey(random, src);
        if (to == 32) before.alpha_mask = switches & 2 ? 0xFF000000 : 0;
        if (from == 8 && to != 8) src.has_palette = (switches & 4) != 0;
        CheckConvert(before, src, mode);
        if (HasFailure()) FAIL() << to << " from " << from << " switches " << switches;
      }
    }
  }
}

TEST(ConvertMatrix, EveryWordOfThe16BitFormats) {
  for (int from : {16, 17, 18, 19}) {
    Picture src = AllWords(from);
    for (int to : {16, 17, 18, 19, 24, 32}) {
      CheckConvert(Filled(to, 256, 256, 0x5A5A5A5A), src, 0);
    }
    Picture indexed = Filled(8, 256, 256, 0x5A);
    indexed.has_palette = true;
    Random random{uint64_t(from)};
    for (TRGBA& e : indexed.palette) e = {random.Byte(), random.Byte(), random.Byte(), 0};
    for (uint32_t mode : {2u, 3u, 4u}) {
      src.key = kNone;
      CheckConvert(indexed, src, mode);
      src.key = model::UnpackedNumber(from, 0x1234) ^ 0x00FFFFFF;
      CheckConvert(indexed, src, mode);
    }
  }
}

TEST(ConvertMatrix, EveryPaletteIndex) {
  Random random(5);
  for (int to : model::kFormats) {
    for (bool palette : {true, false}) {
      if (to == 8 && !palette) continue;
      for (uint32_t key : {kNone, 9u}) {
        Picture src = support::RandomPicture(random, 8, 256, 1);
        for (int i = 0; i < 256; ++i) src.Put(i, 0, uint32_t(i));
        src.has_palette = palette;
        src.key = key;
        CheckConvert(support::RandomPicture(random, to, 256, 1), src, 0);
      }
    }
  }
}

// All pairs of two channels, the others fixed: 256 x 256 pixels.
TEST(ConvertMatrix, EveryPairOfChannelValues) {
  for (int from : {24, 32}) {
    for (int first = 0; first < 4; ++first) {
      for (int second = first + 1; second < from / 8; ++second) {
        Picture src = Filled(from, 256, 256, 0x6B93C75E);
        for (int y = 0; y < 256; ++y) {
          for (int x = 0; x < 256; ++x) {
            const int64_t at = src.Index(x, y);
            src.bytes[size_t(at + first)] = uint8_t(x);
            src.bytes[size_t(at + second)] = uint8_t(y);
          }
        }
        for (int to : {16, 17, 18, 19, 24, 32}) {
          if (to != from) CheckConvert(Filled(to, 256, 256, 0), src, 0);
        }
        for (uint32_t mode : {3u, 4u}) CheckConvert(Filled(8, 256, 256, 0), src, mode);
      }
    }
  }
}

// ---- The nearest entry: palettes and pictures of every kind ----

void AnyPalette(Random& random, TRGBA (&palette)[256]) {
  const int kind = random.Below(8);
  for (int i = 0; i < 256; ++i) {
    TRGBA& e = palette[i];
    e = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
    if (kind == 1) {  // few colours, many equal entries
      e.red &= 0xC0;
      e.green &= 0x80;
      e.blue &= 0xC0;
    }
    if (kind == 2) e.red = e.green = e.blue = uint8_t(i);                            // grey ramp
    if (kind == 3) e.red = e.green = e.blue = uint8_t(255 - i / 2);                  // bright greys
    if (kind == 4) e = {uint8_t(255 - e.blue / 16), 255, uint8_t(e.red | 0xF0), 0};  // no dark ones
    if (kind == 5 && i > 16) e = palette[random.Below(16)];
  }
  if (kind == 6) CreateModelPal(palette);
  if (kind == 7) CreateTruncPal(palette);
}

enum Content { kNoise, kRuns, kPaletteColours, kGradient, kContents };

void Paint(Random& random, Content content, const TRGBA (&palette)[256], Picture& p) {
  const int slope = random.Between(1, 5);
  uint32_t pixel = 0;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      model::Colour c = {x * slope / 4 % 256, y * slope / 3 % 256, (x + y) / 4 % 256};
      const int step = random.Between(-1, 1);
      switch (content) {
        case kNoise:
          pixel = random.Next();
          break;
        case kRuns:
          pixel = random.OneIn(6) ? random.Next() : pixel;
          break;
        case kPaletteColours: {  // or one step beside them
          const TRGBA& e = palette[random.Below(256)];
          c = {e.red, e.green, e.blue};
          [[fallthrough]];
        }
        default:
          c.green = std::clamp(c.green + step, 0, 255);
          pixel = p.format < 24 ? model::Pack(p.format, c)
                                : uint32_t(c.red + c.green * 256 + c.blue * 65536);  // exchanged
      }
      p.Put(x, y, pixel);
    }
  }
}

void CheckNearest(Random& random, Content content, int from, int width, int height) {
  const support::PictureOptions options = support::AnyOptions(random);
  Picture src = support::RandomPicture(random, from, width, height, options);
  Picture before = support::RandomPicture(random, 8, width, height);
  TRGBA palette[256];
  AnyPalette(random, palette);
  std::copy(palette, palette + 256, before.palette.begin());
  Paint(random, content, palette, src);
  if (random.OneIn(3)) AnyKey(random, src);
  CheckConvert(before, src, 2);
}

TEST(NearestEntry, SmallPicturesMatchModel) {
  for (int from : {16, 17, 18, 19, 24, 32}) {
    support::ForEachCase(80, [&](Random& random, int seed) {
      const int height = random.Between(1, 12);
      CheckNearest(random, Content(seed % kContents), from, support::WidthOf(seed * 5), height);
    });
  }
}

TEST(NearestEntry, LargePicturesMatchModel) {
  for (int from : {16, 18, 19, 24, 32}) {
    support::ForEachCase(8, [&](Random& random, int seed) {
      CheckNearest(random, Content(seed % kContents), from, 150 + 37 * (seed % 3), 150);
    });
  }
}

// More than half a million pixels: what is found may then be remembered for later pixels.
TEST(NearestEntry, HugePicturesMatchModel) {
  const int formats[] = {24, 16, 32, 24};
  support::ForEachCase(4, [&](Random& random, int seed) {
    CheckNearest(random, Content(seed % kContents), formats[seed % 4], 1021, 530);
  });
}

TEST(Convert8To8, MatchesModel) {
  support::ForEachCase(120, [&](Random& random, int seed) {
    const int height = random.Between(1, 4);
    const support::PictureOptions from_options = support::AnyOptions(random);
    const support::PictureOptions to_options = support::AnyOptions(random);
    Picture src = support::RandomPicture(random, 8, support::WidthOf(seed), height, from_options);
    Picture before = support::RandomPicture(random, 8, src.width, height, to_options);
    TRGBA palette[256];
    AnyPalette(random, palette);
    std::copy(palette, palette + 256, before.palette.begin());
    src.key = random.OneIn(2) ? kNone : random.Next();
    Picture expected = before;
    model::Convert8To8(expected, src);
    CompareWith(expected, true, before, src, Convert8_8);
  });
}

// ---- Properties ----

// The words that come back from another format.
Words ThereAndBack(int format, int by) {
  Picture words = AllWords(format), other = Filled(by, 256, 256, 0), back = words;
  TSurfDesc w = model::Describe(words), o = model::Describe(other), b = model::Describe(back);
  Convert(o, w, 0);
  Convert(b, o, 0);
  return Pixels(back);
}

TEST(ConvertProperties, WideFormatsKeepEveryBit) {
  const Words back565_24 = ThereAndBack(16, 24), back565_32 = ThereAndBack(16, 32);
  const Words back555_565 = ThereAndBack(17, 16), back4444_32 = ThereAndBack(19, 32);
  for (uint32_t w = 0; w < 65536; ++w) {
    ASSERT_EQ(back565_24[w], w);
    ASSERT_EQ(back565_32[w], w);
    ASSERT_EQ(back555_565[w], w & 0x7FFF);
    ASSERT_EQ(back4444_32[w], w);
  }
}

TEST(ConvertProperties, 24To32AndBackIsIdentity) {
  Random random(3);
  Picture src = support::RandomPicture(random, 24, 61, 7), wide = Filled(32, 61, 7, 0);
  Picture back = Filled(24, 61, 7, 0);
  TSurfDesc s = model::Describe(src), w = model::Describe(wide), b = model::Describe(back);
  Convert(w, s, 0);
  Convert(b, w, 0);
  EXPECT_EQ(Pixels(back), Pixels(src));
}

// The index formulas of modes 3 and 4 name entries of the palettes that belong to them.
TEST(ConvertProperties, PaletteColoursReduceToTheirOwnIndex) {
  for (uint32_t mode : {3u, 4u}) {
    Picture src = Filled(8, 256, 1, 0), deep = Filled(24, 256, 1, 0), back = Filled(8, 256, 1, 9);
    src.has_palette = true;
    TRGBA palette[256] = {};
    if (mode == 3) {
      CreateTruncPal(palette);
    } else {
      CreateModelPal(palette);
    }
    for (size_t i = 0; i < 256; ++i) {
      src.Put(int64_t(i), 0, uint32_t(i));
      src.palette[i] = palette[i];
      std::swap(src.palette[i].red, src.palette[i].blue);  // these reductions exchange them
    }
    TSurfDesc s = model::Describe(src), d = model::Describe(deep), b = model::Describe(back);
    Convert(d, s, 0);
    Convert(b, d, mode);
    for (int i = 0; i < (mode == 3 ? 256 : 252); ++i) EXPECT_EQ(back.Get(i, 0), uint32_t(i));
  }
}

}  // namespace
