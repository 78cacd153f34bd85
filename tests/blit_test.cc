// The blit with colour key.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "include/pincel.h"
#include "tests/model/draw_model.h"
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

// A source with two known palette entries.
Picture IndexedOf(int width, int height, const Words& pixels) {
  Picture p = PictureOf(8, width, height, pixels);
  p.has_palette = true;
  p.palette[0] = {0x11, 0x22, 0x33, 0x44};
  p.palette[5] = {0x9F, 0xC7, 0xE9, 0x80};  // blue, green, red, fourth
  return p;
}

Words Drawn(Picture dst, Picture src) {
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(DrawBitmap(d, s));
  return Pixels(dst);
}

TEST(Blit, VisiblePartLinesUpWhenClippedAtTheTopLeft) {
  Picture src = PictureOf(16, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  Picture dst = Filled(16, 3, 3, 0);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(DrawBitmap(d, {-1, -2, 2, 1}, s, {0, 0}));
  EXPECT_EQ(Pixels(dst), (Words{8, 9, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Blit, VisiblePartLinesUpWhenClippedAtTheBottomRight) {
  Picture src = PictureOf(16, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  Picture dst = Filled(16, 3, 3, 0);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(DrawBitmap(d, {1, 2, 4, 5}, s, {1, 0}));
  EXPECT_EQ(Pixels(dst), (Words{0, 0, 0, 0, 0, 0, 0, 2, 3}));
}

TEST(Blit, ArgumentsAreNotChanged) {
  Picture src = Filled(32, 4, 4, 1);
  Picture dst = Filled(32, 2, 2, 0);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  const CRectangulo rect = {-1, -1, 3, 3};
  const CPunto at = {0, 0};
  EXPECT_TRUE(DrawBitmap(d, rect, s, at));
  EXPECT_EQ(Pixels(dst), Words(4, 1));
  EXPECT_EQ(rect.left, -1);
  EXPECT_EQ(at.x, 0);
}

TEST(Blit, OutsideIsTrueAndWritesNothing) {
  for (int format : model::kFormats) {
    for (const CRectangulo& r : {CRectangulo{4, 0, 9, 3},
                                 {-5, 0, 0, 3},
                                 {0, 3, 4, 9},
                                 {0, -5, 4, 0},
                                 {2, 2, 2, 3},
                                 {3, 2, 1, 3},
                                 {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}}) {
      Picture src = Filled(format, 1, 1, 0);
      Picture dst = Filled(format, 4, 3, 0x11111111);
      const Picture before = dst;
      TSurfDesc d = model::Describe(dst), s = model::Describe(src);
      EXPECT_TRUE(DrawBitmap(d, r, s, {0, 0}));
      EXPECT_TRUE(support::Same(before, dst, d));
    }
  }
}

TEST(Blit, Opaque16CopiesEveryPixel) {
  EXPECT_EQ(Drawn(Filled(16, 3, 1, 1), PictureOf(16, 3, 1, {0xFFFF, 0, 0x1234})),
            (Words{0xFFFF, 0, 0x1234}));
}

TEST(Blit, Keyed16ComparesTheLowHalfOfTheKey) {
  Picture src = PictureOf(16, 3, 1, {0xF81F, 0, 0x1234});
  src.key = 0xABCDF81F;
  EXPECT_EQ(Drawn(Filled(16, 3, 1, 7), src), (Words{7, 0, 0x1234}));
}

TEST(Blit, Keyed24ComparesTheLow24Bits) {
  Picture src = PictureOf(24, 3, 1, {0xFF00FF, 0, 0x123456});
  src.key = 0x77FF00FF;
  EXPECT_EQ(Drawn(Filled(24, 3, 1, 7), src), (Words{7, 0, 0x123456}));
  src = PictureOf(24, 2, 1, {0xFFFFFF, 1});
  src.key = 0x00FFFFFF;  // white is a key, too
  EXPECT_EQ(Drawn(Filled(24, 2, 1, 7), src), (Words{7, 1}));
}

TEST(Blit, Keyed32IgnoresTheTopByteAndCopiesIt) {
  Picture src = PictureOf(32, 4, 1, {0x80FF00FF, 0x00FF00FF, 0x80FF00FE, 0xFF000000});
  src.key = 0x00FF00FF;
  EXPECT_EQ(Drawn(Filled(32, 4, 1, 7), src), (Words{7, 7, 0x80FF00FE, 0xFF000000}));
  src.key = 0x55FF00FF;
  EXPECT_EQ(Drawn(Filled(32, 4, 1, 7), src), (Words{7, 7, 0x80FF00FE, 0xFF000000}));
}

TEST(Blit, PaletteIndexZeroIsTransparentWhateverTheKey) {
  Picture src = IndexedOf(3, 1, {0, 5, 1});
  src.palette[1] = {0, 0, 0, 0};
  for (uint32_t key : {5u, 0u, 1u, 0xFFFFFFFEu}) {
    src.key = key;
    EXPECT_EQ(Drawn(Filled(8, 3, 1, 7), src), (Words{7, 5, 1})) << key;
    EXPECT_EQ(Drawn(Filled(16, 3, 1, 7), src), (Words{7, 0xEE33, 0})) << key;
    EXPECT_EQ(Drawn(Filled(17, 3, 1, 7), src), (Words{7, 0x7713, 0})) << key;
    EXPECT_EQ(Drawn(Filled(18, 3, 1, 7), src), (Words{7, 0x7713, 0})) << key;
    EXPECT_EQ(Drawn(Filled(19, 3, 1, 7), src), (Words{7, 0x0EC9, 0})) << key;
    EXPECT_EQ(Drawn(Filled(24, 3, 1, 7), src), (Words{7, 0xE9C79F, 0})) << key;
    EXPECT_EQ(Drawn(Filled(32, 3, 1, 7), src), (Words{7, 0x80E9C79F, 0})) << key;
  }
}

TEST(Blit, WithoutKeyPaletteIndexZeroIsDrawn) {
  const Picture src = IndexedOf(2, 1, {0, 5});
  EXPECT_EQ(Drawn(Filled(8, 2, 1, 7), src), (Words{0, 5}));
  EXPECT_EQ(Drawn(Filled(16, 2, 1, 7), src), (Words{0x3102, 0xEE33}));
  EXPECT_EQ(Drawn(Filled(17, 2, 1, 7), src), (Words{0x1882, 0x7713}));
  EXPECT_EQ(Drawn(Filled(18, 2, 1, 7), src), (Words{0x1882, 0x7713}));
  EXPECT_EQ(Drawn(Filled(19, 2, 1, 7), src), (Words{0x0321, 0x0EC9}));
  EXPECT_EQ(Drawn(Filled(24, 2, 1, 7), src), (Words{0x332211, 0xE9C79F}));
  EXPECT_EQ(Drawn(Filled(32, 2, 1, 7), src), (Words{0x44332211, 0x80E9C79F}));
}

TEST(Blit, EntryGoesToA32BitSurfaceWithItsFourthByte) {
  const Picture src = IndexedOf(1, 1, {5});
  EXPECT_EQ(Drawn(Filled(32, 1, 1, 0), src), (Words{0x80E9C79F}));
}

TEST(Blit, SourceWithoutPaletteUsesTheDefaultOne) {
  Picture src = PictureOf(8, 3, 1, {251, 42, 6});
  EXPECT_EQ(Drawn(Filled(32, 3, 1, 7), src), (Words{0x00FFFFFF, 0x00330000, 0x00002A00}));
  EXPECT_EQ(Drawn(Filled(16, 3, 1, 7), src), (Words{0xFFFF, 0x3000, 0x0140}));
  lu_gPaleta[42] = {1, 2, 3, 4};  // the host may change it
  EXPECT_EQ(Drawn(Filled(32, 3, 1, 7), src), (Words{0x00FFFFFF, 0x04030201, 0x00002A00}));
  lu_gPaleta[42] = {0, 0, 51, 0};
}

TEST(Blit, Blit24OpaqueLeavesLastThirdOfRow) {
  Picture src = PictureOf(24, 3, 2, {0x030201, 0x060504, 0x090807, 0x131211, 0x161514, 0x191817});
  Picture dst = Filled(24, 3, 2, 0xEEEEEE);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  EXPECT_TRUE(DrawBitmap(d, s));
  dst.bytes.resize(18);
  EXPECT_EQ(dst.bytes,
            (std::vector<uint8_t>{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0xEE, 0xEE, 0xEE,  //
                                  0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0xEE, 0xEE, 0xEE}));
}

TEST(Blit, Blit24OpaqueOfOnePixelCopiesTwoBytes) {
  EXPECT_EQ(Drawn(Filled(24, 1, 1, 0xEEEEEE), PictureOf(24, 1, 1, {0x112233})), (Words{0xEE2233}));
}

TEST(Blit, EqualDepthsCopyBitsWithoutRepacking) {
  for (int to : {16, 17, 18, 19}) {
    for (int from : {16, 17, 18, 19}) {
      EXPECT_EQ(Drawn(Filled(to, 3, 1, 0), PictureOf(from, 3, 1, {0xFFFF, 0x8421, 0x7C00})),
                (Words{0xFFFF, 0x8421, 0x7C00}));
    }
  }
}

TEST(Blit, UnsupportedPairIsTrueAndWritesNothing) {
  for (int to : model::kFormats) {
    for (int from : model::kFormats) {
      Picture src = Filled(from, 2, 2, 0xFFFFFFFF);
      Picture dst = Filled(to, 2, 2, 0);
      if (src.BytesPerPixel() == dst.BytesPerPixel() || from == 8) continue;
      for (uint32_t key : {0xFFFFFFFFu, 0u}) {
        src.key = key;
        EXPECT_EQ(Drawn(dst, src), Words(4, 0)) << to << " from " << from;
      }
    }
  }
}

TEST(Blit, UnsupportedDepthIsFalse) {
  for (uint32_t bpp : {0u, 1u, 4u, 15u, 48u, 64u}) {
    Picture dst = Filled(32, 4, 4, 0x55555555);
    Picture src = Filled(32, 4, 4, 0x11111111);
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    d.bpp = s.bpp = bpp;
    EXPECT_FALSE(DrawBitmap(d, s));
    EXPECT_FALSE(DrawBitmap(d, {0, 0, 4, 4}, s, {0, 0}));
    EXPECT_FALSE(DrawBitmap(d, {4, 4, 0, 0}, s, {0, 0}));
    EXPECT_EQ(Pixels(dst), Words(16, 0x55555555)) << bpp;
    d.bpp = 32;  // only the source is unsupported
    EXPECT_TRUE(DrawBitmap(d, s));
    EXPECT_EQ(Pixels(dst), Words(16, 0x55555555)) << bpp;
  }
}

TEST(Blit, ShortFormDrawsTheDestinationsSize) {
  Picture src = PictureOf(16, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  Picture dst = Filled(16, 2, 2, 0);
  TSurfDesc d = model::Describe(dst), s = model::Describe(src);
  s.width = s.height = 1;  // what the source says of itself does not matter
  EXPECT_TRUE(DrawBitmap(d, s));
  EXPECT_EQ(Pixels(dst), (Words{1, 2, 4, 5}));
}

// A source for the visible part of `rect` on `dst`, and in `at` the point that keeps the area that
// is read inside it.
Picture SourceFor(Random& random, int format, const Picture& dst, const CRectangulo& rect,
                  CPunto& at) {
  const int64_t left = std::max(rect.left, 0), top = std::max(rect.top, 0);
  const int64_t width = std::min(rect.right, dst.width) - left;
  const int64_t height = std::min(rect.bottom, dst.height) - top;
  if (width <= 0 || height <= 0) {
    at = {random.Between(-9, 9), random.Between(-9, 9)};
    return support::RandomPicture(random, format, 1, 1, support::AnyOptions(random));
  }
  const int x = random.Below(4), y = random.Below(3);
  const int more = random.OneIn(2) ? 0 : 2;  // 0: the area that is read ends with the source
  at = {int32_t(x - (left - rect.left)), int32_t(y - (top - rect.top))};
  const support::PictureOptions options = support::AnyOptions(random);
  return support::RandomPicture(random, format, int(width) + x + more, int(height) + y + more,
                                options);
}

// No key; one that about a third of the pixels have; one that a palette does not look at; a random
// one. Bits above the pixel's are random.
void AnyKey(Random& random, Picture& src) {
  const uint32_t pixel = random.OneIn(4) ? 0 : random.Next();
  switch (random.Below(4)) {
    case 0:
      return;
    case 1:
      src.key = random.Next();
      return;
    default:
      break;
  }
  const uint32_t above = random.OneIn(2) ? 0 : random.Next();
  const uint32_t pixel_bits = src.BytesPerPixel() == 2 ? 0xFFFF : 0xFFFFFF;
  if (src.format == 8) {
    support::PlantKey(random, src, random.Byte(), 0);
  } else {
    support::PlantKey(random, src, (pixel & pixel_bits) | (above & ~pixel_bits), pixel);
  }
}

void CheckBlit(const Picture& before, const CRectangulo& rect, Picture& src, CPunto at,
               bool short_form) {
  const Picture src_before = src;
  TSurfDesc s = model::Describe(src);
  Picture expected = before;
  model::DrawBitmap(expected, rect, src, at, lu_gPaleta);
  support::ForEachTarget([&] {
    Picture dst = before;
    TSurfDesc d = model::Describe(dst);
    ASSERT_TRUE(short_form ? DrawBitmap(d, s) : DrawBitmap(d, rect, s, at));
    ASSERT_TRUE(support::Same(expected, dst, d)) << "source code " << src.format;
  });
  EXPECT_TRUE(support::Same(src_before, src, s));
}

void CheckPairs(int cases, bool palette) {
  for (int to : model::kFormats) {
    for (int from : model::kFormats) {
      if (palette && from != 8) continue;
      support::ForEachCase(cases, [&](Random& random, int seed) {
        const int height = random.Between(1, 7);
        Picture before = support::RandomPicture(random, to, support::WidthOf(seed), height,
                                                support::AnyOptions(random));
        before.key = random.OneIn(2) ? 0xFFFFFFFF : random.Next();
        CRectangulo rect = support::RandomRect(random, before.width, before.height);
        CPunto at{};
        const bool short_form = random.OneIn(8);
        if (short_form) rect = {0, 0, before.width, before.height};
        Picture src = SourceFor(random, from, before, rect, at);
        if (short_form) {
          src.origin += at.x * src.BytesPerPixel() + int64_t{at.y} * src.pitch;
          src.width -= at.x;
          src.height -= at.y;
          at = {0, 0};
        }
        src.has_palette = palette;
        AnyKey(random, src);
        CheckBlit(before, rect, src, at, short_form);
      });
    }
  }
}

TEST(Blit, EveryPairMatchesModel) { CheckPairs(300, false); }

TEST(Blit, PaletteSourcesMatchModel) { CheckPairs(600, true); }

TEST(Blit, EqualDepthsMatchModel) {
  for (int format : model::kFormats) {
    support::ForEachCase(1200, [&](Random& random, int seed) {
      const int height = random.Between(1, 9);
      const Picture before = support::RandomPicture(random, format, support::WidthOf(seed), height,
                                                    support::AnyOptions(random));
      const CRectangulo rect = support::RandomRect(random, before.width, before.height);
      CPunto at{};
      Picture src = SourceFor(random, format, before, rect, at);
      AnyKey(random, src);
      CheckBlit(before, rect, src, at, false);
    });
  }
}

// The default palette with random fourth bytes and more colours than the model palette has.
TEST(Blit, ChangedDefaultPaletteMatchesModel) {
  TRGBA saved[256];
  std::memcpy(saved, lu_gPaleta, sizeof(saved));
  Random random(1);
  for (TRGBA& e : lu_gPaleta) e = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  for (int to : model::kFormats) {
    support::ForEachCase(80, [&](Random& again, int seed) {
      const Picture before = support::RandomPicture(again, to, support::WidthOf(seed), 3);
      const CRectangulo rect = {0, 0, before.width, before.height};
      CPunto at{};
      Picture src = SourceFor(again, 8, before, rect, at);
      src.has_palette = false;
      AnyKey(again, src);
      CheckBlit(before, rect, src, at, false);
    });
  }
  std::memcpy(lu_gPaleta, saved, sizeof(saved));
}

// Every index on every destination, keyed and opaque.
TEST(Blit, EveryPaletteIndex) {
  Random random(2);
  for (int to : model::kFormats) {
    for (uint32_t key : {0xFFFFFFFFu, 3u}) {
      Picture src = support::RandomPicture(random, 8, 256, 1);
      for (int i = 0; i < 256; ++i) src.Put(i, 0, uint32_t(i));
      src.key = key;
      const Picture before = support::RandomPicture(random, to, 256, 1);
      CheckBlit(before, {0, 0, 256, 1}, src, {0, 0}, false);
    }
  }
}

// Every 16-bit word as the key, against a row that holds it and its neighbours.
TEST(Blit, Every16BitKey) {
  for (uint32_t word = 0; word < 65536; ++word) {
    Picture src = PictureOf(16, 5, 1, {word, word ^ 1, word ^ 0x8000, ~word & 0xFFFF, word});
    src.key = word | word << 16;
    if (src.key == 0xFFFFFFFF) src.key = 0x0000FFFF;
    Picture dst = Filled(16, 5, 1, word ^ 0x0100);
    TSurfDesc d = model::Describe(dst), s = model::Describe(src);
    DrawBitmap(d, s);
    ASSERT_EQ(Pixels(dst),
              (Words{word ^ 0x0100, word ^ 1, word ^ 0x8000, ~word & 0xFFFF, word ^ 0x0100}));
  }
}

// Keys that differ from the pixel in one bit, in every depth.
TEST(Blit, OneBitBesideTheKeyIsDrawn) {
  for (int format : {16, 24, 32}) {
    const int bits = format == 16 ? 16 : 24;
    for (int bit = 0; bit < 32; ++bit) {
      Picture src = Filled(format, 70, 1, 0x00A5A5A5);
      src.key = 0x00A5A5A5u ^ 1u << bit;
      Picture dst = Filled(format, 70, 1, 0);
      const Words drawn = Drawn(dst, src);
      const uint32_t pixel = format == 16 ? 0xA5A5 : 0xA5A5A5;
      EXPECT_EQ(drawn, Words(70, bit < bits ? pixel : 0)) << format << " bit " << bit;
    }
  }
}

}  // namespace
