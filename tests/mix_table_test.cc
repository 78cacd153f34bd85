// Tables for the 8-bit mixes.
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "include/pincel.h"
#include "tests/model/core_model.h"
#include "tests/model/mix_model.h"
#include "tests/support/mixing.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using support::ForEachTarget;
using support::Random;
using support::Table;
using Entries = std::array<TRGBA, 256>;

void Build(const Table& table, const Entries& palette, int dither) {
  pincel_build_mix_table(table.Get(), palette.data(), dither);
}

Entries Grey() {
  Entries palette{};
  model::GreyPalette(palette.data());
  return palette;
}

// Entry 0 black, all others white.
Entries BlackAndWhite() {
  Entries palette{};
  for (size_t i = 1; i < 256; ++i) palette[i] = {255, 255, 255, 0};
  return palette;
}

TEST(MixTable, LowestIndexAmongTheNearest) {
  ForEachTarget([] {
    const Table table;
    Build(table, BlackAndWhite(), 0);
    for (int plane : {0, 1}) {
      EXPECT_EQ(table.Get()[plane][0x0000], 0);
      EXPECT_EQ(table.Get()[plane][0xFFFF], 1);
      // Fields 15, 31, 15 are 123, 125, 123: nearer to black. 16, 32, 16 are 132, 130, 132.
      EXPECT_EQ(table.Get()[plane][15 << 11 | 31 << 5 | 15], 0);
      EXPECT_EQ(table.Get()[plane][16 << 11 | 32 << 5 | 16], 1);
    }
  });
}

TEST(MixTable, FieldsWidenByRepetition) {
  ForEachTarget([] {
    const Table table;
    Build(table, Grey(), 0);
    for (int plane : {0, 1}) {
      EXPECT_EQ(table.Get()[plane][0xFFFF], 255);
      // 4 << 3 | 4 >> 2 = 33 for red and blue, 8 << 2 | 8 >> 4 = 32 for green: the mean is 32 2/3.
      EXPECT_EQ(table.Get()[plane][4 << 11 | 8 << 5 | 4], 33);
      // Full red alone: the mean is 85.
      EXPECT_EQ(table.Get()[plane][0xF800], 85);
    }
  });
}

TEST(MixTable, DitherMakesTheTwoPlanesAverageToTheColour) {
  ForEachTarget([] {
    const Table table;
    Build(table, BlackAndWhite(), 1);
    const int dark = 15 << 11 | 31 << 5 | 15, light = 16 << 11 | 32 << 5 | 16;
    EXPECT_EQ(table.Get()[0][dark], 0);
    EXPECT_EQ(table.Get()[1][dark], 1);
    EXPECT_EQ(table.Get()[0][light], 1);
    EXPECT_EQ(table.Get()[1][light], 0);
    // Twice a quarter is nearer to black again.
    EXPECT_EQ(table.Get()[0][7 << 11 | 15 << 5 | 7], 0);
    EXPECT_EQ(table.Get()[1][7 << 11 | 15 << 5 | 7], 0);
    EXPECT_EQ(table.Get()[0][0xFFFF], 1);
    EXPECT_EQ(table.Get()[1][0xFFFF], 1);
  });
}

TEST(MixTable, IgnoresTheFourthBytes) {
  Random random(4);
  Entries palette = support::RandomEntries(random), other = palette;
  for (TRGBA& e : other) e.alpha = uint8_t(~e.alpha);
  for (int dither : {0, 1}) {
    const Table a, b;
    Build(a, palette, dither);
    Build(b, other, dither);
    EXPECT_EQ(std::memcmp(a.Get(), b.Get(), 2 * 65536), 0);
  }
}

void CompareWithModel(const Entries& palette, int dither) {
  const Table expected;
  model::BuildMixTable(expected.Get(), palette.data(), dither != 0);
  ForEachTarget([&] {
    const Table actual;
    Build(actual, palette, dither);
    for (int plane = 0; plane < 2; ++plane) {
      int differing = 0, first = 0;
      for (int key = 0; key < 65536; ++key) {
        if (actual.Get()[plane][key] == expected.Get()[plane][key]) continue;
        if (differing++ == 0) first = key;
      }
      EXPECT_EQ(differing, 0) << "plane " << plane << ", first at " << first << ": "
                              << int{actual.Get()[plane][first]} << ", expected "
                              << int{expected.Get()[plane][first]};
    }
  });
}

TEST(MixTable, ModelPaletteMatchesModel) {
  Entries palette{};  // entries 252 to 255 are black once more
  model::ModelPalette(palette.data());
  CompareWithModel(palette, 0);
  CompareWithModel(palette, 1);
}

TEST(MixTable, GreyPaletteMatchesModel) {
  CompareWithModel(Grey(), 0);
  CompareWithModel(Grey(), -5);
}

TEST(MixTable, EqualEntriesMatchModel) {
  CompareWithModel(Entries{}, 1);
  Random random(6);
  Entries palette = support::RandomEntries(random);
  for (size_t i = 0; i < 256; ++i) palette[i] = palette[i % 37];
  CompareWithModel(palette, 1);
}

TEST(MixTable, RandomPalettesMatchModel) {
  for (uint64_t seed = 0; seed < 3; ++seed) {
    Random random(seed);
    CompareWithModel(support::RandomEntries(random), seed == 0 ? 0 : 1);
  }
}

}  // namespace
