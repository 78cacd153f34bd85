// Palette builders and the search for the nearest entry.
#include "surface/palette.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/model/core_model.h"
#include "tests/support/cases.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using support::Random;

void ExpectEntry(const TRGBA& e, int red, int green, int blue) {
  EXPECT_EQ(e.red, red);
  EXPECT_EQ(e.green, green);
  EXPECT_EQ(e.blue, blue);
}

// Builds on a palette full of 0xA5, so that what stays is seen.
template <class Build>
void CheckBuilder(Build build, void (*expected_builder)(TRGBA*)) {
  TRGBA palette[256], expected[256];
  std::memset(palette, 0xA5, sizeof(palette));
  std::memset(expected, 0xA5, sizeof(expected));
  build(palette);
  expected_builder(expected);
  EXPECT_EQ(std::memcmp(palette, expected, sizeof(palette)), 0);
}

TEST(Palettes, ModelPalette) {
  TRGBA palette[256] = {};
  CreateModelPal(palette);
  ExpectEntry(palette[0], 0, 0, 0);
  ExpectEntry(palette[1], 0, 0, 51);
  ExpectEntry(palette[5], 0, 0, 255);
  ExpectEntry(palette[6], 0, 42, 0);
  ExpectEntry(palette[42], 51, 0, 0);
  ExpectEntry(palette[42 * 2 + 6 * 3 + 4], 102, 127, 204);
  ExpectEntry(palette[251], 255, 255, 255);
  ExpectEntry(palette[252], 0, 0, 0);
  CheckBuilder(CreateModelPal, model::ModelPalette);
}

TEST(Palettes, ModelPaletteKeepsLastFourEntriesAndFourthBytes) {
  TRGBA palette[256];
  std::memset(palette, 0x77, sizeof(palette));
  CreateModelPal(palette);
  for (const TRGBA& e : palette) EXPECT_EQ(e.alpha, 0x77);
  for (int i = 252; i < 256; ++i) ExpectEntry(palette[i], 0x77, 0x77, 0x77);
}

TEST(Palettes, GreyPalette) {
  TRGBA palette[256] = {};
  palette[9].alpha = 3;
  CreateGreyPal(palette);
  ExpectEntry(palette[0], 0, 0, 0);
  ExpectEntry(palette[100], 100, 100, 100);
  ExpectEntry(palette[255], 255, 255, 255);
  EXPECT_EQ(palette[9].alpha, 3);
  CheckBuilder(CreateGreyPal, model::GreyPalette);
}

TEST(Palettes, TruncPalette) {
  TRGBA palette[256] = {};
  palette[9].alpha = 3;
  CreateTruncPal(palette);
  ExpectEntry(palette[0x1F], 0, 224, 192);
  ExpectEntry(palette[0xE0], 224, 0, 0);
  ExpectEntry(palette[0x01], 0, 0, 64);
  ExpectEntry(palette[255], 224, 224, 192);
  EXPECT_EQ(palette[9].alpha, 3);
  CheckBuilder(CreateTruncPal, model::TruncPalette);
}

TEST(NearestColor, WhiteInTheModelPalette) {
  EXPECT_EQ(pincel::NearestColor(lu_gPaleta, 255, 255, 255), 251);
}

// The four black entries behind the cube cost as much as entry 0, and the highest index wins.
TEST(NearestColor, DarkGreyInTheDefaultPaletteIsTheLastBlack) {
  EXPECT_EQ(pincel::NearestColor(lu_gPaleta, 10, 10, 10), 255);
}

TEST(NearestColor, DarkGreyIsEntryZeroWhereNoOtherIsBlack) {
  TRGBA palette[256];
  std::memset(palette, 0xFF, sizeof(palette));
  CreateModelPal(palette);
  EXPECT_EQ(pincel::NearestColor(palette, 10, 10, 10), 0);
}

TEST(NearestColor, HighestIndexAmongEqualsWins) {
  TRGBA palette[256];
  std::memset(palette, 0xFF, sizeof(palette));
  palette[3] = palette[200] = {50, 60, 70, 0};
  EXPECT_EQ(pincel::NearestColor(palette, 70, 60, 50), 200);
  EXPECT_EQ(pincel::NearestColor(palette, 75, 61, 50), 200);
  TRGBA equal[256] = {};
  EXPECT_EQ(pincel::NearestColor(equal, 1, 2, 3), 255);
}

TEST(NearestColor, OneStepBrighterCostsAlmostEverything) {
  TRGBA palette[256];
  std::memset(palette, 0xFF, sizeof(palette));
  palette[10] = {100, 100, 101, 0};  // one red step above: 255
  palette[20] = {100, 20, 100, 0};   // eighty green steps below: 80
  EXPECT_EQ(pincel::NearestColor(palette, 100, 100, 100), 20);
}

TEST(NearestColor, FourthByteDoesNotMatter) {
  TRGBA palette[256];
  std::memset(palette, 0, sizeof(palette));
  palette[7] = {9, 9, 9, 255};
  EXPECT_EQ(pincel::NearestColor(palette, 9, 9, 9), 7);
}

TEST(NearestColor, MatchesModel) {
  support::ForEachCase(40, [](Random& random, int seed) {
    TRGBA palette[256];
    for (TRGBA& e : palette) e = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
    if (seed % 4 == 1) CreateModelPal(palette);
    if (seed % 4 == 2) CreateTruncPal(palette);
    if (seed % 4 == 3) {  // few different entries
      for (TRGBA& e : palette) {
        e.red &= 0xC0;
        e.green &= 0x80;
        e.blue &= 0xC0;
      }
    }
    uint8_t colours[200][3];
    int expected[200];
    for (int i = 0; i < 200; ++i) {
      const TRGBA& e = palette[random.Below(256)];  // often close to an entry
      const bool near = random.OneIn(2);
      colours[i][0] = near ? uint8_t(e.red + random.Between(-1, 1)) : random.Byte();
      colours[i][1] = near ? uint8_t(e.green + random.Between(-1, 1)) : random.Byte();
      colours[i][2] = near ? uint8_t(e.blue + random.Between(-1, 1)) : random.Byte();
      expected[i] = model::Nearest(palette, {colours[i][0], colours[i][1], colours[i][2]});
    }
    support::ForEachTarget([&] {
      for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(pincel::NearestColor(palette, colours[i][0], colours[i][1], colours[i][2]),
                  expected[i])
            << int{colours[i][0]} << " " << int{colours[i][1]} << " " << int{colours[i][2]};
      }
    });
  });
}

}  // namespace
