// Painting a colour through a mask or at one level, and shading with a two-sided mask.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "include/pincel.h"
#include "tests/model/mask_model.h"
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
using support::GlobalPalette;
using support::Noisy;
using support::PictureOf;
using support::Pixels;
using support::Placed;
using support::Random;
using support::Table;
using Words = std::vector<uint32_t>;

constexpr int kDirect[] = {16, 17, 18, 19, 24, 32};
constexpr int kPacked16[] = {16, 17, 18, 19};

CRectangulo Whole(const Picture& p) { return {0, 0, p.width, p.height}; }

const CRectangulo kEmptyIn2x2[] = {{2, 0, 5, 2}, {1, 1, 1, 2}, {-4, 0, 0, 2}, {2, 2, 0, 0}};

uint32_t AnyWord(Random& random) {
  uint32_t word = 0;
  for (int i = 0; i < 4; ++i) word = word << 8 | random.Byte();
  return word;
}

// Runs of 0, of 255 and of the middle, and single ones, among random bytes.
void SetCoverage(Random& random, Picture& mask) {
  static constexpr uint8_t kValues[] = {0, 255, 254, 1, 127, 128, 126, 129};
  for (int y = 0; y < mask.height; ++y) {
    for (int x = 0; x < mask.width;) {
      const int run = random.OneIn(2) ? 1 : random.Between(1, 20), kind = random.Below(16);
      const uint8_t value = kind < 8 ? kValues[kind] : random.Byte();
      for (int i = 0; i < run && x < mask.width; ++i, ++x) {
        mask.bytes[size_t(mask.Index(x, y))] = value;
      }
    }
  }
}

// DrawMask

Picture Masked(const Picture& dst, const CRectangulo& rect, Picture& mask, CPunto mask_at,
               uint32_t colour, unsigned char (*table)[65536] = nullptr) {
  return Compared(
      dst, {&mask},
      [&](Picture& p) {
        return model::DrawMask(p, rect, mask, mask_at, colour, table, lu_gPaleta);
      },
      [&](TSurfDesc& surface) {
        TSurfDesc m = Describe(mask);
        return DrawMask(surface, rect, m, mask_at, Noisy(colour), table);
      });
}

Words MaskedRow(int format, const Words& d, const Words& m, uint32_t colour) {
  Picture mask = PictureOf(8, int(m.size()), 1, m);
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Masked(dst, Whole(dst), mask, {0, 0}, colour));
}

TEST(DrawMask, Coverage255StoresTheWholeColour) {
  EXPECT_EQ(MaskedRow(32, {0x12345678}, {255}, 0xABCDEF01), Words{0xABCDEF01});
  EXPECT_EQ(MaskedRow(24, {0x345678}, {255}, 0xABCDEF01), Words{0xCDEF01});
  for (int format : kPacked16) {
    EXPECT_EQ(MaskedRow(format, Words(5, 0), Words(5, 255), 0x7777FEDC), Words(5, 0xFEDC));
  }
}

TEST(DrawMask, Coverage0KeepsThePixelBitForBit) {
  for (int format : kDirect) {
    const Words d(5, format == 32 ? 0xFEDCBA98 : format == 24 ? 0xDCBA98 : 0xFEDC);
    EXPECT_EQ(MaskedRow(format, d, Words(5, 0), 0), d);
  }
}

TEST(DrawMask, ColourMixesWithOneMoreOf256) {
  // 254: c + floor((d - c) / 256). 10 on 200 stays 10; 200 on 10 becomes 199.
  EXPECT_EQ(MaskedRow(32, {0xC80AC80A}, {254}, 0x0AC80AC8), Words{0x0AC70AC7});
  EXPECT_EQ(MaskedRow(24, {0x0AC80A}, {254}, 0xC80AC8), Words{0xC70AC7});
  // 100: 155 of 256 stay; 0 + floor(255 x 155 / 256) = 154, 255 + floor(-255 x 155 / 256) = 100.
  EXPECT_EQ(MaskedRow(32, {0x00FF00FF}, {100}, 0xFF00FF00), Words{0x649A649A});
  // Fields: 31 on 0 at 254 becomes 31 + floor(-31 / 256) = 30, and 0 on 31 becomes 0.
  EXPECT_EQ(MaskedRow(16, {0x001F}, {254}, 0xF800), Words{30u << 11});
}

TEST(DrawMask, ClearsAlphaBitsOfMixed16BitPixels) {
  EXPECT_EQ(MaskedRow(18, {0xFFFF}, {128}, 0xFFFF), Words{0x7FFF});
  EXPECT_EQ(MaskedRow(19, {0xFFFF}, {128}, 0xFFFF), Words{0x0FFF});
}

TEST(DrawMask, MaskOf32BitsCountsWithItsLowByte) {
  for (int format : kDirect) {
    Picture mask = PictureOf(32, 3, 1, {0xFFFFFF00, 0x000000FF, 0x12345600});
    const Picture dst = Filled(format, 3, 1, 0x0102);
    EXPECT_EQ(Pixels(Masked(dst, Whole(dst), mask, {0, 0}, 0x0304)),
              (Words{0x0102, 0x0304, 0x0102}));
  }
}

TEST(DrawMask, IndexedMixesAt255TooAndKeepsAt0) {
  std::array<TRGBA, 256> entries{};
  entries[1] = {10, 20, 30, 0};
  const GlobalPalette global(entries);
  const Table table;
  // Red 110, green 220, blue 5. 100: red 30 + 31, green 20 + 78, blue 10 + floor(-1.95) = 8.
  table.Set(1, 61 / 8 * 2048 + 98 / 4 * 32 + 8 / 8, 40);
  // 255: red 30 + 79, green 20 + 199, blue 10 + floor(-4.98) = 5.
  table.Set(0, 109 / 8 * 2048 + 219 / 4 * 32 + 5 / 8, 41);
  Picture mask = PictureOf(8, 3, 1, {100, 255, 0});
  const Picture dst = PictureOf(8, 3, 1, {1, 1, 1});
  EXPECT_EQ(Pixels(Masked(dst, Whole(dst), mask, {0, 0}, 0x776EDC05, table.Get())),
            (Words{40, 41, 1}));
}

TEST(DrawMask, IndexedNeedsAMaskOf8Bits) {
  const Table table;
  for (int format : kDirect) {
    Picture dst = Filled(8, 2, 2, 9), mask = Filled(format, 2, 2, 0xFF);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), m = Describe(mask);
    EXPECT_FALSE(DrawMask(d, {0, 0, 2, 2}, m, {0, 0}, 5, table.Get()));
    EXPECT_FALSE(DrawMask_8Bits(d, {0, 0, 2, 2}, m, {0, 0}, 5, table.Get()));
    EXPECT_FALSE(DrawMask_8Bits(d, {2, 2, 0, 0}, m, {0, 0}, 5, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMask, KernelOf8BitsNeedsADestinationOf8Bits) {
  const Table table;
  for (int format : kDirect) {
    Picture dst = Filled(format, 2, 2, 9), mask = Filled(8, 2, 2, 255);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), m = Describe(mask);
    EXPECT_FALSE(DrawMask_8Bits(d, {0, 0, 2, 2}, m, {0, 0}, 5, table.Get()));
    EXPECT_FALSE(DrawBiMask_8Bits(d, 256, {0, 0, 2, 2}, m, {0, 0}, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMask, UnsupportedFormatIsFalse) {
  const Table table;
  for (uint32_t bpp : {0u, 4u, 15u, 48u}) {
    Picture dst = Filled(32, 2, 2, 0x12345678), mask = Filled(8, 2, 2, 255);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), m = Describe(mask);
    d.bpp = bpp;
    EXPECT_FALSE(DrawMask(d, {0, 0, 2, 2}, m, {0, 0}, 5, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawMask, EmptyAreaIsTrue) {
  const Table table;
  for (int format : model::kFormats) {
    Picture dst = Filled(format, 2, 2, 0x55), mask = Filled(8, 2, 2, 255);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), m = Describe(mask);
    for (const CRectangulo& rect : kEmptyIn2x2) {
      EXPECT_TRUE(DrawMask(d, rect, m, {0, 0}, 5, table.Get()));
      EXPECT_EQ(dst.bytes, before);
    }
  }
}

TEST(DrawMask, PointOutsideTheMaskDoesNotStopIt) {
  for (int format : kDirect) {
    Picture mask = Filled(8, 3, 3, 200);
    const Picture dst = Filled(format, 3, 3, 0x21);
    const Picture inside = Masked(dst, Whole(dst), mask, {0, 0}, 0);
    EXPECT_NE(inside.bytes, dst.bytes);
    EXPECT_EQ(Masked(dst, {-5, -7, 3, 3}, mask, {-5, -7}, 0).bytes, inside.bytes);
    mask.width = mask.height = 0;
    EXPECT_EQ(Masked(dst, Whole(dst), mask, {0, 0}, 0).bytes, inside.bytes);
  }
}

TEST(DrawMask, AnyCaseMatchesModel) {
  Random setup(5);
  const GlobalPalette global(support::RandomEntries(setup));
  const Table table(setup);
  support::ForEachCase(7 * support::kWidths * 3, [&](Random& random, int seed) {
    const int format = model::kFormats[seed % 7];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 7), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    Placed mask = support::PlacedPicture(random, dst, rect, random.OneIn(3) ? 32 : 8);
    SetCoverage(random, mask.picture);
    const uint32_t colour = AnyWord(random);
    Masked(dst, rect, mask.picture, mask.at, colour, format == 8 ? table.Get() : nullptr);
    if (format != 8) return;
    Compared(
        dst, {&mask.picture},
        [&](Picture& p) {
          return model::DrawMask8Bits(p, rect, mask.picture, mask.at, colour, table.Get(),
                                      lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc m = Describe(mask.picture);
          return DrawMask_8Bits(surface, rect, m, mask.at, Noisy(colour), table.Get());
        });
  });
}

// Rows of one coverage each, with every byte in them; one call for each byte of the colour.
TEST(DrawMask, AllCoveragesOnAllBytePairs) {
  for (int format : {24, 32}) {
    const int width = format == 32 ? 64 : 86;
    Picture dst = Filled(format, width, 256, 0), mask = Filled(8, width, 256, 0);
    for (int y = 0; y < 256; ++y) {
      for (int x = 0; x < width; ++x) mask.Put(x, y, uint32_t(y));
      for (int i = 0; i < dst.pitch; ++i) dst.bytes[size_t(dst.Index(0, y) + i)] = uint8_t(i);
    }
    for (uint32_t c = 0; c < 256; ++c) Masked(dst, Whole(dst), mask, {0, 0}, c * 0x01010101);
  }
}

TEST(DrawMask, AllCoveragesOnAllFieldPairs) {
  for (int format : kPacked16) {
    const int values = format == 16 ? 64 : format == 19 ? 16 : 32;
    Picture dst = Filled(format, values, 256, 0), mask = Filled(8, values, 256, 0);
    for (int y = 0; y < 256; ++y) {
      for (int x = 0; x < values; ++x) {
        mask.Put(x, y, uint32_t(y));
        dst.Put(x, y, model::JoinFields(format, {x, x, x}));
      }
    }
    for (int c = 0; c < values; ++c) {
      Masked(dst, Whole(dst), mask, {0, 0}, model::JoinFields(format, {c, c, c}));
    }
  }
}

// MaskFillRect

Picture Tinted(const Picture& dst, const CRectangulo& rect, uint32_t colour, int level) {
  return Compared(
      dst, {}, [&](Picture& p) { return model::MaskFillRect(p, rect, colour, level); },
      [&](TSurfDesc& surface) {
        return MaskFillRect(surface, rect, Noisy(colour), static_cast<unsigned short>(level));
      });
}

Words TintedRow(int format, const Words& d, uint32_t colour, int level) {
  const Picture dst = PictureOf(format, int(d.size()), 1, d);
  return Pixels(Tinted(dst, Whole(dst), colour, level));
}

TEST(MaskFillRect, BytesWeighWithTheLowByteOfTheLevel) {
  // 100: 155 of 256 stay, as through a mask of 100.
  EXPECT_EQ(TintedRow(32, {0x00FF00FF}, 0xFF00FF00, 100), Words{0x649A649A});
  EXPECT_EQ(TintedRow(24, {0xFF00FF}, 0x00FF00, 100), Words{0x9A649A});
  EXPECT_EQ(TintedRow(32, {0x00FF00FF}, 0xFF00FF00, 356), Words{0x649A649A});
  EXPECT_EQ(TintedRow(32, {0x12345678}, 0xABCDEF01, 255), Words{0xABCDEF01});
  EXPECT_EQ(TintedRow(24, {0x345678}, 0xCDEF01, 511), Words{0xCDEF01});
  // Level 0 still moves a brighter channel down by one: 0 + floor(200 x 255 / 256) = 199.
  EXPECT_EQ(TintedRow(32, {0x000000C8}, 0, 0), Words{0x000000C7});
}

TEST(MaskFillRect, GroupsStoreTheWholeColourAt255) {
  // The row end: 31 x 255 / 256 = 30, 63 x 255 / 256 = 62.
  EXPECT_EQ(TintedRow(16, Words(9, 0), 0xFFFF, 255),
            (Words{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xF7DE}));
  EXPECT_EQ(TintedRow(18, Words(5, 0), 0xFFFF, 255),
            (Words{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0x7BDE}));
  EXPECT_EQ(TintedRow(19, Words(6, 0), 0xF321, 255),
            (Words{0xF321, 0xF321, 0xF321, 0xF321, 0x0210, 0x0210}));
  // Every level whose low byte is 255; 3, 2, 1 x 511 / 256 = 5, 3, 1 at the row end.
  EXPECT_EQ(TintedRow(19, Words(5, 0), 0xF321, 511),
            (Words{0xF321, 0xF321, 0xF321, 0xF321, 0x0531}));
}

TEST(MaskFillRect, RowEndUsesTheFullLevel) {
  EXPECT_EQ(TintedRow(16, Words(5, 0), 0xFFFF, 256), (Words{0, 0, 0, 0, 0xFFFF}));
  EXPECT_EQ(TintedRow(17, Words(5, 0x000A), 0x0014, 300),
            (Words{0x000B, 0x000B, 0x000B, 0x000B, 0x0015}));
}

TEST(MaskFillRect, ClearsAlphaBitsOf16BitPixels) {
  EXPECT_EQ(TintedRow(18, Words(5, 0xFFFF), 0xFFFF, 100), Words(5, 0x7FFF));
  EXPECT_EQ(TintedRow(19, Words(5, 0xFFFF), 0xFFFF, 0), Words(5, 0x0FFF));
}

TEST(MaskFillRect, IndexedOrUnsupportedIsFalse) {
  for (uint32_t bpp : {0u, 4u, 8u, 15u, 48u}) {
    Picture dst = Filled(32, 2, 2, 0x12345678);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst);
    d.bpp = bpp;
    EXPECT_FALSE(MaskFillRect(d, {0, 0, 2, 2}, 5, 100));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(MaskFillRect, EmptyAreaIsTrue) {
  for (int format : kDirect) {
    Picture dst = Filled(format, 2, 2, 0x55);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst);
    for (const CRectangulo& rect : kEmptyIn2x2) EXPECT_TRUE(MaskFillRect(d, rect, 5, 255));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(MaskFillRect, AnyCaseMatchesModel) {
  support::ForEachCase(6 * support::kWidths * 3, [](Random& random, int seed) {
    const int format = kDirect[seed % 6];
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, format, support::WidthOf(seed / 6), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    const uint32_t colour = AnyWord(random);
    Tinted(dst, rect, colour, support::AnyLevel(random));
  });
}

// A band of rows for each colour, all at one level in one comparison.
Picture TintedInBands(const Picture& dst, const Words& colours, int level) {
  const int rows = dst.height / int(colours.size());
  const auto band = [&](size_t i) {
    return CRectangulo{0, int(i) * rows, dst.width, int(i + 1) * rows};
  };
  return Compared(
      dst, {},
      [&](Picture& p) {
        bool done = true;
        for (size_t i = 0; i < colours.size(); ++i) {
          done = model::MaskFillRect(p, band(i), colours[i], level) && done;
        }
        return done;
      },
      [&](TSurfDesc& surface) {
        bool done = true;
        for (size_t i = 0; i < colours.size(); ++i) {
          done = MaskFillRect(surface, band(i), Noisy(colours[i]),
                              static_cast<unsigned short>(level)) &&
                 done;
        }
        return done;
      });
}

TEST(MaskFillRect, AllLevelsOnAllBytePairs) {
  for (int format : {24, 32}) {
    // Every byte in each place of a pixel; the places of the colours share the bytes among them.
    const int places = format / 8, count = format == 32 ? 64 : 86;
    Words colours;
    for (int c = 0; c < count; ++c) {
      uint32_t colour = 0;
      for (int i = 0; i < places; ++i) colour |= uint32_t((c + i * count) % 256) << (8 * i);
      colours.push_back(colour);
    }
    Picture dst = Filled(format, 256, count, 0);
    for (int y = 0; y < count; ++y) {
      for (int x = 0; x < 256; ++x) dst.Put(x, y, uint32_t(x) * 0x01010101);
    }
    for (int level = 0; level < 257; ++level) TintedInBands(dst, colours, level);
  }
}

// Rows of a group of four and three pixels at the end.
TEST(MaskFillRect, AllLevelsOnAllFieldPairs) {
  for (int format : kPacked16) {
    const int values = format == 16 ? 64 : format == 19 ? 16 : 32;
    Words colours;
    for (int c = 0; c < values; ++c) colours.push_back(model::JoinFields(format, {c, c, c}));
    Picture dst = Filled(format, 7, values * values, 0);
    for (int y = 0; y < dst.height; ++y) {
      for (int x = 0; x < 7; ++x) dst.Put(x, y, colours[size_t(y % values)]);
    }
    for (int level = 0; level < 530; ++level) {
      TintedInBands(dst, colours, level < 512 ? level : (level - 511) * 3449 % 65536);
    }
  }
}

// MaskFillRect_8Bits

Picture Tinted8(const Picture& dst, const CRectangulo& rect, uint32_t colour, int level,
                unsigned char (*table)[65536]) {
  return Compared(
      dst, {},
      [&](Picture& p) {
        return model::MaskFillRect8Bits(p, rect, colour, level, table, lu_gPaleta);
      },
      [&](TSurfDesc& surface) {
        return MaskFillRect_8Bits(surface, rect, Noisy(colour), static_cast<unsigned short>(level),
                                  table);
      });
}

TEST(MaskFillRect8Bits, PairsTheEntrysBlueWithTheColoursRed) {
  std::array<TRGBA, 256> entries{};
  entries[1] = {100, 50, 10, 0};
  const GlobalPalette global(entries);
  const Table table;
  // Level 64, weight 192: 100 x 192 + 200 x 64 = 32000, 50 x 192 + 100 x 64 = 16000 and 10 x 192 +
  // 40 x 64 = 4480: key 0x7800 | 0x1E0 | 2.
  table.Set(1, 31202, 40);
  table.Set(0, 31202, 41);
  const Picture dst = PictureOf(8, 2, 1, {1, 1});
  EXPECT_EQ(Pixels(Tinted8(dst, Whole(dst), 0x77C86428, 64, table.Get())), (Words{40, 41}));
}

TEST(MaskFillRect8Bits, Level0GivesKey0) {
  Random random(8);
  const GlobalPalette global(support::RandomEntries(random));
  const Table table;
  table.Set(1, 0, 50);
  table.Set(0, 0, 51);
  const Picture dst = PictureOf(8, 4, 1, {1, 99, 200, 255});
  EXPECT_EQ(Pixels(Tinted8(dst, Whole(dst), 0xFFFFFFFF, 0, table.Get())), (Words{50, 51, 50, 51}));
}

TEST(MaskFillRect8Bits, Level256LeavesTheColourWithRedOnTop) {
  const GlobalPalette global({});
  const Table table;
  table.Set(1, 0xC8 / 8 * 2048 + 0x64 / 4 * 32 + 0x28 / 8, 60);
  const Picture dst = PictureOf(8, 1, 1, {1});
  EXPECT_EQ(Pixels(Tinted8(dst, Whole(dst), 0x00C86428, 256, table.Get())), Words{60});
}

TEST(MaskFillRect8Bits, DestinationMustHave8Bits) {
  const Table table;
  for (int format : kDirect) {
    Picture dst = Filled(format, 2, 2, 9);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst);
    EXPECT_FALSE(MaskFillRect_8Bits(d, {0, 0, 2, 2}, 5, 100, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(MaskFillRect8Bits, EmptyAreaIsTrue) {
  const Table table;
  Picture dst = Filled(8, 2, 2, 0x55);
  const std::vector<uint8_t> before = dst.bytes;
  TSurfDesc d = Describe(dst);
  for (const CRectangulo& rect : kEmptyIn2x2) {
    EXPECT_TRUE(MaskFillRect_8Bits(d, rect, 5, 255, table.Get()));
  }
  EXPECT_EQ(dst.bytes, before);
}

TEST(MaskFillRect8Bits, AnyCaseMatchesModel) {
  Random setup(6);
  const GlobalPalette global(support::RandomEntries(setup));
  const Table table(setup);
  support::ForEachCase(support::kWidths * 8, [&](Random& random, int seed) {
    const int height = random.Between(1, 5);
    const Picture dst = support::RandomPicture(random, 8, support::WidthOf(seed), height,
                                               support::AnyOptions(random));
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    const uint32_t colour = AnyWord(random);
    Tinted8(dst, rect, colour, support::AnyLevel(random), table.Get());
  });
}

// DrawBiMask

Picture Shaded(const Picture& dst, int level, const CRectangulo& rect, Picture& mask,
               CPunto mask_at, unsigned char (*table)[65536] = nullptr) {
  return Compared(
      dst, {&mask},
      [&](Picture& p) {
        return model::DrawBiMask(p, level, rect, mask, mask_at, table, lu_gPaleta);
      },
      [&](TSurfDesc& surface) {
        TSurfDesc m = Describe(mask);
        return DrawBiMask(surface, static_cast<unsigned short>(level), rect, m, mask_at, table);
      });
}

std::array<TRGBA, 256> DarkAndLight() {
  std::array<TRGBA, 256> entries{};
  entries[0] = {1, 2, 3, 4};
  entries[255] = {251, 252, 253, 254};
  return entries;
}

// The row's pixels, and behind a 24-bit row the byte that follows it.
Words ShadedRow(int format, const Words& d, const Words& m, int level) {
  const GlobalPalette global(DarkAndLight());
  Picture mask = PictureOf(8, int(m.size()), 1, m);
  Picture dst = PictureOf(format, int(d.size()), 1, d);
  if (format == 24) dst.bytes.back() = 0x99;
  const Picture shaded = Shaded(dst, level, Whole(dst), mask, {0, 0});
  Words words = Pixels(shaded);
  if (format == 24) words.push_back(shaded.bytes.back());
  return words;
}

TEST(DrawBiMask, MiddleKeepsAtAnyLevel) {
  for (int level : {0, 1, 128, 255, 256, 300, 65535}) {
    EXPECT_EQ(ShadedRow(32, {0x12345678, 0x9ABCDEF0}, {127, 128}, level),
              (Words{0x12345678, 0x9ABCDEF0}));
    EXPECT_EQ(ShadedRow(24, {0x345678, 0xBCDEF0}, {127, 128}, level),
              (Words{0x345678, 0xBCDEF0, 0x99}));
  }
  EXPECT_EQ(ShadedRow(32, {0x12345678, 0x9ABCDEF0}, {0, 255}, 0), (Words{0x12345678, 0x9ABCDEF0}));
}

TEST(DrawBiMask, From254OnThePixelTakesTheEntryAndKeepsItsFourthByte) {
  // 127 x 256 >> 7 = 254.
  EXPECT_EQ(ShadedRow(32, {0xAABBCCDD, 0xAABBCCDD}, {0, 255}, 256),
            (Words{0xAA030201, 0xAAFDFCFB}));
  EXPECT_EQ(ShadedRow(24, {0xBBCCDD, 0xBBCCDD}, {0, 255}, 256), (Words{0x030201, 0xFDFCFB, 0x99}));
  // 1 x 65535 >> 7 = 511.
  EXPECT_EQ(ShadedRow(32, {0xAABBCCDD, 0xAABBCCDD}, {126, 129}, 65535),
            (Words{0xAA030201, 0xAAFDFCFB}));
}

TEST(DrawBiMask, WritesGreyWhateverTheDestination) {
  // 63 x 128 >> 7 = 63: grey 193, and above it 1 + 0xDD.
  EXPECT_EQ(ShadedRow(32, {0xAABBCCDD}, {64}, 128), Words{0xDEC1C1C1});
  // 64: grey 192, and 251 + 0xDD = 472, cut to 0xD8.
  EXPECT_EQ(ShadedRow(32, {0xAABBCCDD}, {192}, 128), Words{0xD8C0C0C0});
  // k = 253: grey 3.
  EXPECT_EQ(ShadedRow(32, {0}, {0}, 255), Words{0x01030303});
  EXPECT_EQ(ShadedRow(24, {0x332211}, {64}, 128)[0], 0xC1C1C1u);
}

TEST(DrawBiMask, StoresAByteBehindThe24BitPixel) {
  // (1 + 0x10) squared is 289, / 256 = 1: the next pixel's blue when that one is kept.
  EXPECT_EQ(ShadedRow(24, {0x332210, 0x665544}, {64, 128}, 128), (Words{0xC1C1C1, 0x665501, 0x99}));
  // Behind the row's last pixel it stays: (251 + 0x20) cut to 27, squared 729, / 256 = 2.
  EXPECT_EQ(ShadedRow(24, {0x332210, 0x665520}, {128, 192}, 128), (Words{0x332210, 0xC0C0C0, 2}));
}

TEST(DrawBiMask, TheByteBehindIsThereBeforeTheNext24BitPixelsTurn) {
  // The second pixel's blue, 0x80, has become 1: (1 + 1) squared / 256 = 0, not 129 squared.
  EXPECT_EQ(ShadedRow(24, {0x332210, 0x665580}, {64, 64}, 128), (Words{0xC1C1C1, 0xC1C1C1, 0}));
  // A pixel that takes the entry's colour (k = 254) covers it.
  EXPECT_EQ(ShadedRow(24, {0x332210, 0x665580}, {64, 0}, 256), (Words{0x828282, 0x030201, 0x99}));
}

TEST(DrawBiMask, RowsGoFromTheBottomUp) {
  // Rows of one pixel without padding: the lower one is grey when the upper one's byte lands on it.
  const GlobalPalette global(DarkAndLight());
  Picture mask = PictureOf(8, 1, 2, {64, 64});
  const Picture dst = PictureOf(24, 1, 2, {0x00001F, 0x665580});
  const Picture shaded = Shaded(dst, 128, Whole(dst), mask, {0, 0});
  EXPECT_EQ(Pixels(shaded), (Words{0xC1C1C1, 0xC1C104}));  // (1 + 31) squared / 256 = 4
  EXPECT_EQ(shaded.bytes.back(), 65);                      // (1 + 128) squared / 256
}

TEST(DrawBiMask, SixteenBitsAndOtherDepthsAreFalse) {
  const Table table;
  for (int format : kPacked16) {
    Picture dst = Filled(format, 2, 2, 0x1234), mask = Filled(8, 2, 2, 0);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), m = Describe(mask);
    EXPECT_FALSE(DrawBiMask(d, 256, {0, 0, 2, 2}, m, {0, 0}, table.Get()));
    EXPECT_FALSE(DrawBiMask(d, 256, {2, 2, 0, 0}, m, {0, 0}, table.Get()));
    d.bpp = 15;
    EXPECT_FALSE(DrawBiMask(d, 256, {0, 0, 2, 2}, m, {0, 0}, table.Get()));
    EXPECT_EQ(dst.bytes, before);
  }
}

TEST(DrawBiMask, IndexedWritesIndices0And255) {
  const GlobalPalette global(DarkAndLight());
  const Table table;
  Picture mask = PictureOf(8, 4, 1, {0, 255, 127, 128});
  const Picture dst = PictureOf(8, 4, 1, {9, 9, 9, 9});
  EXPECT_EQ(Pixels(Shaded(dst, 256, Whole(dst), mask, {0, 0}, table.Get())), (Words{0, 255, 9, 9}));
}

TEST(DrawBiMask, IndexedUsesTheFirstPlaneOnly) {
  std::array<TRGBA, 256> entries{};
  entries[1] = {100, 50, 10, 0};
  const GlobalPalette global(entries);
  const Table table;
  // k = 63, weight 193: 19300, 9650, 1930: key 0x4800 | 0x120 | 0, the entry's blue on top.
  table.Set(0, 18720, 40);
  // k = 64, weight 192, 16320 added: 35520, 25920, 18240: key 0x8800 | 0x320 | 8.
  table.Set(0, 35624, 41);
  Picture mask = PictureOf(8, 4, 1, {64, 64, 192, 192});
  const Picture dst = PictureOf(8, 4, 1, {1, 1, 1, 1});
  EXPECT_EQ(Pixels(Shaded(dst, 128, Whole(dst), mask, {0, 0}, table.Get())),
            (Words{40, 40, 41, 41}));
}

TEST(DrawBiMask, EmptyAreaIsTrue) {
  const Table table;
  for (int format : {8, 24, 32}) {
    Picture dst = Filled(format, 2, 2, 0x55), mask = Filled(8, 2, 2, 0);
    const std::vector<uint8_t> before = dst.bytes;
    TSurfDesc d = Describe(dst), m = Describe(mask);
    for (const CRectangulo& rect : kEmptyIn2x2) {
      EXPECT_TRUE(DrawBiMask(d, 256, rect, m, {0, 0}, table.Get()));
      EXPECT_EQ(dst.bytes, before);
    }
  }
}

TEST(DrawBiMask, PointOutsideTheMaskDoesNotStopIt) {
  const GlobalPalette global(DarkAndLight());
  const Table table;
  for (int format : {8, 24, 32}) {
    Picture mask = Filled(8, 3, 3, 0);
    const Picture dst = Filled(format, 3, 3, 0x21);
    const Picture inside = Shaded(dst, 256, Whole(dst), mask, {0, 0}, table.Get());
    EXPECT_NE(inside.bytes, dst.bytes);
    EXPECT_EQ(Shaded(dst, 256, {-5, -7, 3, 3}, mask, {-5, -7}, table.Get()).bytes, inside.bytes);
    mask.width = mask.height = 0;
    EXPECT_EQ(Shaded(dst, 256, Whole(dst), mask, {0, 0}, table.Get()).bytes, inside.bytes);
  }
}

TEST(DrawBiMask, AnyCaseMatchesModel) {
  Random setup(7);
  const GlobalPalette global(support::RandomEntries(setup));
  const Table table(setup);
  support::ForEachCase(3 * support::kWidths * 6, [&](Random& random, int seed) {
    const int format = seed % 3 == 0 ? 8 : seed % 3 == 1 ? 24 : 32;
    const int height = random.Between(1, 5);
    support::PictureOptions options = support::AnyOptions(random);
    options.tail = 1;
    const Picture dst =
        support::RandomPicture(random, format, support::WidthOf(seed / 3), height, options);
    const CRectangulo rect = support::RandomRect(random, dst.width, dst.height);
    Placed mask = support::PlacedPicture(random, dst, rect, 8);
    SetCoverage(random, mask.picture);
    const int level = support::AnyLevel(random);
    SCOPED_TRACE("level " + std::to_string(level));
    Shaded(dst, level, rect, mask.picture, mask.at, format == 8 ? table.Get() : nullptr);
    if (format != 8) return;
    Compared(
        dst, {&mask.picture},
        [&](Picture& p) {
          return model::DrawBiMask8Bits(p, level, rect, mask.picture, mask.at, table.Get(),
                                        lu_gPaleta);
        },
        [&](TSurfDesc& surface) {
          TSurfDesc m = Describe(mask.picture);
          return DrawBiMask_8Bits(surface, static_cast<unsigned short>(level), rect, m, mask.at,
                                  table.Get());
        });
  });
}

TEST(DrawBiMask, AllMaskBytesAtAllLevels) {
  Random random(9);
  const GlobalPalette global(support::RandomEntries(random));
  const Table table(random);
  for (int format : {8, 24, 32}) {
    const Picture dst = support::RandomPicture(random, format, 256, 1);
    Picture mask = Filled(8, 256, 1, 0);
    for (int x = 0; x < 256; ++x) mask.Put(x, 0, uint32_t(x * 37 % 256));
    for (int level = 0; level < 530; ++level) {
      const int any = level < 512 ? level : (level - 511) * 3449 % 65536;
      Shaded(dst, any, Whole(dst), mask, {0, 0}, table.Get());
    }
  }
}

}  // namespace
