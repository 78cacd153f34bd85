#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "include/pincel.h"
#include "tests/model/flood_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::ForEachCase;
using support::ForEachTarget;
using support::Random;
using support::Same;

constexpr uint32_t kWhite = 0xF0F0F0;  // the same in every format

// A picture drawn in characters, rows divided by '/': '#' is kWhite, '.' is black.
Picture Drawn(int format, const std::string& shape) {
  Picture p;
  p.format = format;
  p.width = int(std::min(shape.find('/'), shape.size()));
  p.height = int(std::count(shape.begin(), shape.end(), '/')) + 1;
  p.pitch = p.width * p.BytesPerPixel() + 1;
  p.bytes.resize(size_t(p.pitch * p.height));
  const uint32_t white = format == 16   ? 0xF79E
                         : format == 19 ? 0x0FFF
                         : format < 24  ? 0x7BDE
                                        : kWhite;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      p.Put(x, y, shape[size_t(y * (p.width + 1) + x)] == '#' ? white : 0);
    }
  }
  return p;
}

Picture EmptyMask(const Picture& p, int padding = 0) {
  Picture mask;
  mask.format = 8;
  mask.width = p.width;
  mask.height = p.height;
  mask.pitch = p.width + padding;
  mask.bytes.resize(size_t(mask.pitch * p.height));
  return mask;
}

bool Fill(Picture& p, Picture& mask, int x, int y, uint32_t tolerance, uint32_t reference,
          uint32_t colour) {
  TSurfDesc surface = Describe(p), work = Describe(mask);
  return Rellena(surface, work, x, y, tolerance, reference, colour);
}

// The mask bytes as digits, row by row.
std::string Digits(const Picture& mask) {
  std::string digits;
  for (int y = 0; y < mask.height; ++y) {
    for (int x = 0; x < mask.width; ++x) digits += "0123456789ABCDEF"[mask.Get(x, y)];
    if (y + 1 < mask.height) digits += '/';
  }
  return digits;
}

// '*' where a pixel has the value.
std::string Painted(const Picture& p, uint32_t value) {
  std::string painted;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) painted += p.Get(x, y) == value ? '*' : '.';
    if (y + 1 < p.height) painted += '/';
  }
  return painted;
}

TEST(Rellena, PaintsARegionAndKeepsItsNeighbourBits) {
  Picture p = Drawn(32, "###./..#./.##.");
  Picture mask = EmptyMask(p);
  EXPECT_TRUE(Fill(p, mask, 0, 0, 0, kWhite, 0xFF0000));
  // The 7 is a black cell: down and left from (2, 0), within one round.
  EXPECT_EQ(Digits(mask), "4CA0/0730/0490");
  EXPECT_EQ(Painted(p, 0xFF0000), "***./.**./.**.");
}

TEST(Rellena, MarksADissimilarDiagonalNeighbour) {
  // Up from the start, and within the same round left from there: into the black corner, which has
  // similar neighbours of its own.
  Picture p = Drawn(32, ".#/##");
  Picture mask = EmptyMask(p);
  Fill(p, mask, 1, 1, 0, kWhite, 0xFF0000);
  EXPECT_EQ(Digits(mask), "62/49");
  EXPECT_EQ(Painted(p, 0xFF0000), "**/**");
}

TEST(Rellena, MissesCells) {
  // The walk leaves upwards; the next pass looks only at what this one entered.
  Picture p = Drawn(32, "#/#/#");
  Picture mask = EmptyMask(p);
  Fill(p, mask, 0, 1, 0, kWhite, 0xFF0000);
  EXPECT_EQ(Digits(mask), "2/3/0");
  EXPECT_EQ(Painted(p, 0xFF0000), "*/*/.");
}

TEST(Rellena, LeavesACellWithoutSimilarNeighbours) {
  Picture p = Drawn(32, ".#");
  Picture mask = EmptyMask(p);
  Fill(p, mask, 0, 0, 0, kWhite, 0xFF0000);
  EXPECT_EQ(Digits(mask), "40");
  EXPECT_EQ(p.Get(1, 0), kWhite);
}

TEST(Rellena, NeverTestsTheStartCell) {
  Picture p = Drawn(32, ".##");
  Picture mask = EmptyMask(p);
  Fill(p, mask, 0, 0, 0, kWhite, 0xFF0000);
  EXPECT_EQ(Painted(p, 0xFF0000), "***");
  p = Drawn(32, "..#");
  mask = EmptyMask(p);
  Fill(p, mask, 0, 0, 0, kWhite, 0xFF0000);
  EXPECT_EQ(Painted(p, 0xFF0000), "...");
}

TEST(Rellena, ToleranceIsOneSided) {
  for (const auto& [pixel, similar] : {std::pair<uint32_t, bool>{0x646464, true},
                                       {0x646461, true},    // 3 darker
                                       {0x636363, true},    // 1 darker in each channel
                                       {0x646460, false},   // 4 darker
                                       {0x646465, false}})  // 1 brighter counts 255
  {
    Picture p = Drawn(24, "...");
    p.Put(1, 0, pixel);
    p.Put(2, 0, 0x646464);
    Picture mask = EmptyMask(p);
    Fill(p, mask, 0, 0, 3, 0x646464, 0xFF);
    EXPECT_EQ(mask.Get(0, 0), similar ? 4u : 0u) << std::hex << pixel;
  }
}

TEST(Rellena, OutsideNeverMatchesWhateverTheTolerance) {
  Picture p = Drawn(32, "##/##");
  Picture mask = EmptyMask(p);
  Fill(p, mask, 0, 0, 0xFFFFFFFF, 0x123456, 0xFF0000);
  EXPECT_EQ(mask.Get(0, 0), 6u);
}

TEST(Rellena, ReferenceEqualToColourPaintsTheStartOnly) {
  Picture p = Drawn(32, ".##");
  Picture mask = EmptyMask(p);
  EXPECT_TRUE(Fill(p, mask, 0, 0, 0, kWhite, kWhite));
  EXPECT_EQ(Digits(mask), "400");
  EXPECT_EQ(Painted(p, kWhite), "***");
  p = Drawn(32, "#.#");
  mask = EmptyMask(p);
  EXPECT_TRUE(Fill(p, mask, 1, 0, 0, kWhite, kWhite));
  EXPECT_EQ(Digits(mask), "0C0");
  p = Drawn(32, "..#");
  mask = EmptyMask(p);
  EXPECT_TRUE(Fill(p, mask, 0, 0, 0, kWhite, kWhite));
  EXPECT_EQ(Painted(p, kWhite), "..*");
}

TEST(Rellena, StartAlreadyInTheMaskDoesNothing) {
  Picture p = Drawn(32, "###");
  Picture mask = EmptyMask(p);
  mask.Put(0, 0, 4);
  EXPECT_TRUE(Fill(p, mask, 0, 0, 0, kWhite, 0xFF0000));
  EXPECT_EQ(Painted(p, 0xFF0000), "...");
  EXPECT_EQ(Digits(mask), "400");
}

TEST(Rellena, WritesAlphaBitsZero) {
  const struct {
    int format;
    uint32_t bits, painted;
  } cases[] = {{17, 0x8000, 0x7C00}, {18, 0x8000, 0x7C00}, {19, 0xA000, 0x0F00}};
  for (const auto& c : cases) {
    Picture p = Drawn(c.format, "##");
    p.Put(0, 0, p.Get(0, 0) | c.bits);
    p.Put(1, 0, p.Get(1, 0) | c.bits);
    Picture mask = EmptyMask(p);
    Fill(p, mask, 0, 0, 0, kWhite, 0xFFFF0000);
    EXPECT_EQ(p.Get(0, 0), c.painted) << c.format;
    EXPECT_EQ(p.Get(1, 0), c.painted) << c.format;
  }
}

TEST(Rellena, KeepsTheFourthByte) {
  Picture p = Drawn(32, "##");
  p.Put(0, 0, 0x55000000 | kWhite);
  p.Put(1, 0, 0xAA000000 | kWhite);
  Picture mask = EmptyMask(p);
  Fill(p, mask, 0, 0, 0, kWhite, 0xFF010203);
  EXPECT_EQ(p.Get(0, 0), 0x55010203u);
  EXPECT_EQ(p.Get(1, 0), 0xAA010203u);
}

TEST(Rellena, IndexedPixelsReadAsZeroAndAreNotPainted) {
  Picture p = Drawn(8, "###/###");
  const Picture before = p;
  Picture mask = EmptyMask(p);
  EXPECT_TRUE(Fill(p, mask, 0, 0, 0, kWhite, 0xFF0000));
  EXPECT_EQ(Digits(mask), "000/000");
  EXPECT_TRUE(Fill(p, mask, 0, 0, 0, 0x000000, 0xFF0000));
  EXPECT_EQ(mask.Get(0, 0), 6u);
  EXPECT_EQ(p.bytes, before.bytes);
}

TEST(Rellena, UnsupportedDepthWritesNothing) {
  Picture p = Drawn(32, "##/##");
  const Picture before = p;
  Picture mask = EmptyMask(p);
  TSurfDesc surface = Describe(p), work = Describe(mask);
  surface.bpp = 15;
  EXPECT_FALSE(Rellena(surface, work, 0, 0, 0, kWhite, 0xFF0000));
  EXPECT_EQ(p.bytes, before.bytes);
  EXPECT_EQ(Digits(mask), "00/00");
}

// Compares painted bytes and mask bytes, guards included.
void CompareFill(Picture actual, int x, int y, uint32_t tolerance, uint32_t reference,
                 uint32_t colour, int mask_padding) {
  Picture expected = actual;
  Picture expected_mask = EmptyMask(actual, mask_padding);
  for (int row = 0; row < actual.height; ++row) {
    for (int i = 0; i < mask_padding; ++i) {
      expected_mask.bytes[size_t(row * expected_mask.pitch + actual.width + i)] = 0xEE;
    }
  }
  Picture actual_mask = expected_mask;
  model::Flood(expected, expected_mask, x, y, tolerance, reference, colour);
  TSurfDesc surface = Describe(actual), work = Describe(actual_mask);
  ASSERT_TRUE(Rellena(surface, work, x, y, tolerance, reference, colour));
  ASSERT_TRUE(Same(expected, actual, surface))
      << "start " << x << ", " << y << " tolerance " << tolerance << std::hex << " reference "
      << reference << " colour " << colour;
  ASSERT_TRUE(Same(expected_mask, actual_mask, work)) << "start " << x << ", " << y;
}

// Pixels of a few colours, with the shares given by `weights`.
void PaintFewColours(Random& random, Picture& p, const uint32_t* values, int count, int bias) {
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      p.Put(x, y, values[random.OneIn(bias) ? random.Below(count) : 0]);
    }
  }
}

TEST(Rellena, MatchesTheModel) {
  ForEachTarget([] {
    ForEachCase(600, [](Random& random, int) {
      for (int format : model::kFormats) {
        const int width = random.Between(1, 28), height = random.Between(1, 28);
        Picture p =
            support::RandomPicture(random, format, width, height, support::AnyOptions(random));
        uint32_t reference = random.Next() & 0xFFFFFF;
        if (!random.OneIn(5)) {
          uint32_t values[4];
          for (uint32_t& value : values) value = random.Next();
          PaintFewColours(random, p, values, 4, random.Between(1, 12));
          // The colour of the most common value, as far as the format can tell it.
          const uint32_t w = values[0];
          switch (format) {
            case 16:
              reference = (w >> 8 & 0xF8) << 16 | (w >> 3 & 0xFC) << 8 | (w << 3 & 0xF8);
              break;
            case 17:
            case 18:
              reference = (w >> 7 & 0xF8) << 16 | (w >> 2 & 0xF8) << 8 | (w << 3 & 0xF8);
              break;
            case 19:
              reference = (w >> 4 & 0xF0) << 16 | (w & 0xF0) << 8 | (w << 4 & 0xF0);
              break;
            default:
              reference = w & 0xFFFFFF;
              break;
          }
          if (random.OneIn(4)) reference = (reference + 0x010101 * (random.Next() % 9)) & 0xFFFFFF;
        }
        const uint32_t tolerances[] = {0, 0, 1, 3, 24, 255, 764, 765, 766, 0xFFFFFFFF};
        const uint32_t tolerance =
            random.OneIn(3) ? uint32_t(random.Below(766)) : tolerances[random.Below(10)];
        const uint32_t colour = random.OneIn(8) ? reference : random.Next() & 0xFFFFFF;
        const int x = random.OneIn(4) ? (random.OneIn(2) ? 0 : width - 1) : random.Below(width);
        const int y = random.OneIn(4) ? (random.OneIn(2) ? 0 : height - 1) : random.Below(height);
        ASSERT_NO_FATAL_FAILURE(
            CompareFill(p, x, y, tolerance, reference, colour, random.Below(6)));
      }
    });
  });
}

// Every black and white picture of 3 x 4 cells, from every start.
TEST(Rellena, EverySmallPicture) {
  for (int bits = 0; bits < 1 << 12; ++bits) {
    std::string shape;
    for (int i = 0; i < 12; ++i) {
      shape += bits >> i & 1 ? '#' : '.';
      if (i % 3 == 2 && i < 11) shape += '/';
    }
    const Picture p = Drawn(32, shape);
    for (int start = 0; start < 12; ++start) {
      ASSERT_NO_FATAL_FAILURE(CompareFill(p, start % 3, start / 3, 0, kWhite, 0xFF, 0)) << shape;
    }
  }
}

TEST(Rellena, OneColourFromEveryStart) {
  Random random(3);
  for (int format : {16, 24, 32}) {
    Picture p = support::RandomPicture(random, format, 23, 17);
    for (int y = 0; y < p.height; ++y) {
      for (int x = 0; x < p.width; ++x) p.Put(x, y, 0);
    }
    for (int y = 0; y < p.height; ++y) {
      for (int x = 0; x < p.width; ++x) {
        ASSERT_NO_FATAL_FAILURE(CompareFill(p, x, y, 0, 0, 0xFFFFFF, 1));
      }
    }
  }
}

// Walls one cell thick with gaps: long walks, dead ends, many passes.
TEST(Rellena, Mazes) {
  ForEachCase(60, [](Random& random, int) {
    const int width = random.Between(5, 60), height = random.Between(5, 60);
    Picture p = support::RandomPicture(random, random.OneIn(2) ? 32 : 17, width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const bool wall =
            (x % 2 == 1 && y % 2 == 1) || ((x % 2 == 1 || y % 2 == 1) && random.OneIn(2));
        p.Put(x, y, wall ? 0x1234 : 0);
      }
    }
    const int x = random.Below(width);
    const int y = random.Below(height);
    ASSERT_NO_FATAL_FAILURE(CompareFill(p, x, y, 0, 0, 0x80FF00, 0));
  });
}

TEST(Rellena, LargePictures) {
  ForEachCase(12, [](Random& random, int seed) {
    Picture p = support::RandomPicture(random, seed % 2 ? 32 : 16, 200, 150);
    const uint32_t values[] = {0, 0xFFFF};
    const int biases[] = {2, 3, 4, 6, 10, 40, 200, 1000, 30000, 5, 5, 5};
    PaintFewColours(random, p, values, 2, biases[seed % 12]);
    const int x = random.Below(200);
    const int y = random.Below(150);
    ASSERT_NO_FATAL_FAILURE(CompareFill(p, x, y, 0, 0, 0x80FF00, 3));
  });
}

}  // namespace
