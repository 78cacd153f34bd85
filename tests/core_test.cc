// Accessors, format classification, single pixels, start-up.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "include/pincel.h"
#include "surface/format_dispatch.h"
#include "surface/palette.h"
#include "tests/model/core_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"

namespace {

using model::Picture;
using support::PictureOf;
using support::Random;

TSurfDesc Described(uint32_t bpp, uint32_t red_mask, uint32_t alpha_mask) {
  TSurfDesc d{};
  d.bpp = bpp;
  d.rMask = red_mask;
  d.aMask = alpha_mask;
  return d;
}

TEST(Accessors, ReadTheirFields) {
  TSurfDesc d{};
  d.width = 640;
  d.height = 480;
  d.pitch = 2567;
  EXPECT_EQ(Width(d), 640);
  EXPECT_EQ(Height(d), 480);
  EXPECT_EQ(ScanWidth(d), 2567);
  EXPECT_EQ(Size(d).width, 640);
  EXPECT_EQ(Size(d).height, 480);
  d.pitch = -1280;
  EXPECT_EQ(ScanWidth(d), -1280);
  EXPECT_EQ(Size(d).width, 640);
  EXPECT_EQ(Size(d).height, 480);
}

TEST(Accessors, KeyOfZeroCountsAsKey) {
  TSurfDesc d{};
  d.colorKey = 0;
  EXPECT_TRUE(Transp(d));
  d.colorKey = 0xFFFFFFFF;
  EXPECT_FALSE(Transp(d));
  for (uint32_t key : {1u, 0x7FFFu, 0xFFFFu, 0x00FFFFFFu, 0xFFFFFFFEu, 0x7FFFFFFFu}) {
    d.colorKey = key;
    EXPECT_TRUE(Transp(d)) << key;
  }
}

TEST(SurfFormat, Codes) {
  EXPECT_EQ(pincel::SurfFormat(Described(8, 0, 0)), 8);
  EXPECT_EQ(pincel::SurfFormat(Described(24, 0xF800, 0)), 24);
  EXPECT_EQ(pincel::SurfFormat(Described(32, 0x7C00, 0x8000)), 32);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0xF800, 0)), 16);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x7C00, 0x8000)), 18);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x7C00, 1)), 18);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x7C00, 0)), 17);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x0F00, 0)), 19);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x0F00, 0xF000)), 19);
  EXPECT_EQ(pincel::SurfFormat(Described(15, 0x7C00, 0)), 15);
  EXPECT_EQ(pincel::SurfFormat(Described(4, 0, 0)), 4);
}

TEST(SurfFormat, UnknownRedMaskIs565) {
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x001F, 0)), 16);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0x001F, 0x8000)), 16);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0, 0)), 16);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0xFFFFF800, 0)), 16);
  EXPECT_EQ(pincel::SurfFormat(Described(16, 0xF000, 0)), 16);
}

TEST(SurfFormat, IgnoresGreenAndBlueMasks) {
  TSurfDesc d = Described(16, 0x7C00, 0);
  d.gMask = 0x07E0;
  d.bMask = 0xF800;
  EXPECT_EQ(pincel::SurfFormat(d), 17);
}

TEST(SurfFormat, MatchesModel) {
  for (uint32_t bpp : {0u, 1u, 4u, 8u, 15u, 16u, 24u, 32u, 48u, 64u}) {
    for (uint32_t red : {0u, 0xF800u, 0x7C00u, 0x0F00u, 0x001Fu, 0xFF0000u, 0xFFFFFFFFu}) {
      for (uint32_t alpha : {0u, 1u, 0x8000u, 0xF000u, 0xFF000000u}) {
        EXPECT_EQ(pincel::SurfFormat(Described(bpp, red, alpha)),
                  model::SurfaceFormat(bpp, red, alpha))
            << bpp << " " << red << " " << alpha;
      }
    }
  }
}

TEST(GetPixel, GetPixel8ChecksBounds) {
  Picture p = PictureOf(8, 2, 2, {11, 12, 13, 14});
  TSurfDesc d = model::Describe(p);
  EXPECT_EQ(GetPixel(d, CPunto{0, 0}), 11u);
  EXPECT_EQ(GetPixel(d, CPunto{1, 0}), 12u);
  EXPECT_EQ(GetPixel(d, 0, 1), 13u);
  EXPECT_EQ(GetPixel(d, 1, 1), 14u);
  EXPECT_EQ(GetPixel(d, -1, 0), 0u);
  EXPECT_EQ(GetPixel(d, 0, -1), 0u);
  EXPECT_EQ(GetPixel(d, 2, 0), 0u);
  EXPECT_EQ(GetPixel(d, 0, 2), 0u);
  EXPECT_EQ(GetPixel(d, INT32_MIN, INT32_MAX), 0u);
}

// The pixels are never looked at, so that a surface without any will do.
TEST(GetPixel, GetPixel16ReadsDescriptor) {
  TSurfDesc d = Described(16, 0xF800, 0);
  d.width = 0xF81F;  // red and blue full
  EXPECT_EQ(GetPixel(d, 0, 0), 0x00F800F8u);
  d.width = 0x07E0;  // green full, repeated in the top byte
  EXPECT_EQ(GetPixel(d, 3, 4), 0xFC00FC00u);
  d.width = 0x12340000 + 640;  // the low half: 0x0280
  EXPECT_EQ(GetPixel(d, CPunto{0, 0}), 0x50005000u);

  d = Described(16, 0x7C00, 0);
  d.width = 640;  // 0x0280: green 20 of 31
  EXPECT_EQ(GetPixel(d, 0, 0), 0xA000A000u);
  d.width = 0x7C1F;
  EXPECT_EQ(GetPixel(d, 0, 0), 0x00F800F8u);
  d.width = 0xFFFF;  // bit 15 is ignored
  EXPECT_EQ(GetPixel(d, 0, 0), 0xF8F8F8F8u);
  d.aMask = 0x8000;
  EXPECT_EQ(GetPixel(d, 0, 0), 0xF8F8F8F8u);

  d = Described(16, 0x0F00, 0xF000);
  d.width = 0xF123;  // the alpha nibble is ignored
  EXPECT_EQ(GetPixel(d, 0, 0), 0x20102030u);
}

TEST(GetPixel, GetPixel24IsZero) {
  Picture p = PictureOf(24, 1, 1, {0x123456});
  TSurfDesc d = model::Describe(p);
  EXPECT_EQ(GetPixel(d, 0, 0), 0u);
  EXPECT_EQ(GetPixel(d, CPunto{0, 0}), 0u);
}

TEST(GetPixel, WholeWordAt32Bits) {
  Picture p = PictureOf(32, 2, 1, {0x12345678, 0xFEDCBA98});
  TSurfDesc d = model::Describe(p);
  EXPECT_EQ(GetPixel(d, 0, 0), 0x12345678u);
  EXPECT_EQ(GetPixel(d, CPunto{1, 0}), 0xFEDCBA98u);
}

TEST(SetPixel, SetPixel8ChecksBounds) {
  Picture p = PictureOf(8, 2, 2, {1, 2, 3, 4});
  TSurfDesc d = model::Describe(p);
  SetPixel(d, -1, 0, 9);
  SetPixel(d, 2, 0, 9);
  SetPixel(d, CPunto{0, -1}, 9);
  SetPixel(d, CPunto{0, 2}, 9);
  SetPixel(d, INT32_MAX, INT32_MIN, 9);
  EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{1, 2, 3, 4}));
  SetPixel(d, 1, 1, 0xABCDEF77);
  SetPixel(d, CPunto{1, 0}, 0x100);
  EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{1, 0, 3, 0x77}));
}

TEST(SetPixel, Packs565) {
  Picture p = support::Filled(16, 4, 1, 0x1234);
  TSurfDesc d = model::Describe(p);
  SetPixel(d, 0, 0, 0x00FFFFFF);
  SetPixel(d, 1, 0, 0x00070307);
  SetPixel(d, CPunto{2, 0}, 0xFF080408);
  EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{0xFFFF, 0x0000, 0x0821, 0x1234}));
}

TEST(SetPixel, Packs555AndClearsTopBit) {
  for (int format : {17, 18}) {
    Picture p = support::Filled(format, 3, 1, 0xFFFF);
    TSurfDesc d = model::Describe(p);
    SetPixel(d, 0, 0, 0xFFFFFFFF);
    SetPixel(d, CPunto{1, 0}, 0x00070707);
    EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{0x7FFF, 0x0000, 0xFFFF}));
    SetPixel(d, 2, 0, 0xFF081018);
    EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{0x7FFF, 0x0000, 0x0443}));
  }
}

TEST(SetPixel, Packs4444AndClearsAlpha) {
  Picture p = support::Filled(19, 3, 1, 0xFFFF);
  TSurfDesc d = model::Describe(p);
  SetPixel(d, 0, 0, 0xFFFFFFFF);
  SetPixel(d, CPunto{1, 0}, 0xFF0F0F0F);
  SetPixel(d, 2, 0, 0x00123456);
  EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{0x0FFF, 0x0000, 0x0135}));
}

TEST(SetPixel, ThreeBytesAt24Bits) {
  Picture p = PictureOf(24, 3, 1, {0x111111, 0x222222, 0x333333});
  TSurfDesc d = model::Describe(p);
  SetPixel(d, 1, 0, 0xAA123456);
  EXPECT_EQ(p.bytes,
            (std::vector<uint8_t>{0x11, 0x11, 0x11, 0x56, 0x34, 0x12, 0x33, 0x33, 0x33, 0}));
}

TEST(SetPixel, SetPixel32WritesNothing) {
  Picture p = PictureOf(32, 2, 1, {0x01020304, 0x05060708});
  TSurfDesc d = model::Describe(p);
  SetPixel(d, 0, 0, 0xFFFFFFFF);
  SetPixel(d, CPunto{1, 0}, 0);
  EXPECT_EQ(support::Pixels(p), (std::vector<uint32_t>{0x01020304, 0x05060708}));
}

TEST(SinglePixels, UnsupportedDepthDoesNothing) {
  for (uint32_t bpp : {0u, 1u, 4u, 15u, 48u, 64u}) {
    Picture p = support::Filled(32, 4, 4, 0x55555555);
    TSurfDesc d = model::Describe(p);
    d.bpp = bpp;
    EXPECT_EQ(GetPixel(d, 1, 1), 0u) << bpp;
    SetPixel(d, 1, 1, 0x123456);
    EXPECT_EQ(support::Pixels(p), std::vector<uint32_t>(16, 0x55555555)) << bpp;
  }
}

#if ULONG_MAX > 0xFFFFFFFF
TEST(SinglePixels, OnlyTheLow32BitsOfAColourAreRead) {
  const auto wide = (unsigned long)(0xFFFFFFFF00000000ull);
  for (int format : model::kFormats) {
    Picture p = support::Filled(format, 1, 1, 0xFFFFFFFF);
    TSurfDesc d = model::Describe(p);
    Picture expected = p;
    model::SetPixel(expected, 0, 0, 0x00123456);
    SetPixel(d, 0, 0, wide | 0x00123456);
    EXPECT_TRUE(support::Same(expected, p, d));
    EXPECT_EQ(GetPixel(d, 0, 0) >> 16 >> 16, 0u);
  }
}
#endif

TEST(SinglePixels, MatchModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(300, [&](Random& random, int seed) {
      const int height = random.Between(1, 6);
      Picture p = support::RandomPicture(random, format, support::WidthOf(seed), height,
                                         support::AnyOptions(random));
      TSurfDesc d = model::Describe(p);
      for (int i = 0; i < 20; ++i) {
        // Only 8 bits may go outside.
        const int out = format == 8 ? 2 : 0;
        const int x = random.Between(-out, p.width - 1 + out);
        const int y = random.Between(-out, p.height - 1 + out);
        const uint32_t colour = random.Next();
        ASSERT_EQ(GetPixel(d, x, y), model::GetPixel(p, x, y));
        ASSERT_EQ(GetPixel(d, CPunto{x, y}), model::GetPixel(p, x, y));
        Picture expected = p;
        model::SetPixel(expected, x, y, colour);
        if (random.OneIn(2)) {
          SetPixel(d, x, y, colour);
        } else {
          SetPixel(d, CPunto{x, y}, colour);
        }
        ASSERT_TRUE(support::Same(expected, p, d)) << x << ", " << y << " colour " << colour;
      }
    });
  }
}

TEST(SinglePixels, EveryWordOfThe16BitFormats) {
  for (int format : {16, 17, 18, 19}) {
    Picture p = support::Filled(format, 1, 1, 0);
    TSurfDesc d = model::Describe(p);
    for (int word = 0; word < 65536; ++word) {
      d.width = word - 65536 * (word % 3);  // the upper half does not matter
      const uint32_t expected = model::UnpackedNumber(format, uint32_t(word));
      ASSERT_EQ(GetPixel(d, 0, 0), expected) << format << " " << word;
      SetPixel(d, 0, 0, expected);
      const uint32_t alpha = format == 19 ? 0xF000 : format == 16 ? 0 : 0x8000;
      ASSERT_EQ(p.Get(0, 0), uint32_t(word) & ~alpha) << format;
    }
  }
}

TEST(StartUp, ProductTable) {
  EXPECT_EQ(pincel::MultTable[0], 0);
  EXPECT_EQ(pincel::MultTable[1 * 256 + 255], 255);
  EXPECT_EQ(pincel::MultTable[255 * 256 + 255], 65025);
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) ASSERT_EQ(pincel::MultTable[a * 256 + b], a * b);
  }
}

// Runs on the palette as the library built it when it was loaded, then on a changed one.
TEST(StartUp, DefaultPalette) {
  const auto check = [] {
    const auto is = [](int i, int red, int green, int blue) {
      EXPECT_EQ(lu_gPaleta[i].red, red) << i;
      EXPECT_EQ(lu_gPaleta[i].green, green) << i;
      EXPECT_EQ(lu_gPaleta[i].blue, blue) << i;
    };
    is(0, 0, 0, 0);
    is(1, 0, 0, 51);
    is(6, 0, 42, 0);
    is(12, 0, 85, 0);
    is(18, 0, 127, 0);
    is(24, 0, 170, 0);
    is(30, 0, 212, 0);
    is(36, 0, 255, 0);
    is(42, 51, 0, 0);
    is(251, 255, 255, 255);
    for (int i = 252; i < 256; ++i) is(i, 0, 0, 0);
    for (const TRGBA& entry : lu_gPaleta) EXPECT_EQ(entry.alpha, 0);
    TRGBA expected[256] = {};
    model::ModelPalette(expected);
    EXPECT_EQ(std::memcmp(expected, lu_gPaleta, sizeof(expected)), 0);
  };
  check();

  lu_gPaleta[7] = {1, 2, 3, 0};
  pincel::MultTable[300] = 7;
  InitializeDLL();
  check();
  EXPECT_EQ(pincel::MultTable[300], 44);  // 1 x 44
}

TEST(StartUp, RebuildKeepsWhatTheModelPaletteDoesNotCover) {
  lu_gPaleta[5].alpha = 99;
  lu_gPaleta[253] = {1, 2, 3, 4};
  InitializeDLL();
  EXPECT_EQ(lu_gPaleta[5].alpha, 99);
  EXPECT_EQ(lu_gPaleta[253].blue, 1);
  EXPECT_EQ(lu_gPaleta[253].green, 2);
  EXPECT_EQ(lu_gPaleta[253].red, 3);
  EXPECT_EQ(lu_gPaleta[253].alpha, 4);
  lu_gPaleta[5].alpha = 0;
  lu_gPaleta[253] = {};
}

}  // namespace
