// The shared library as a host sees it: linked by name, nothing initialised by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "pincel.h"

namespace {

TSurfDesc Surface(std::vector<uint8_t>& bytes, int width, int height, uint32_t bpp) {
  TSurfDesc surface{};
  surface.width = width;
  surface.height = height;
  surface.bpp = bpp;
  surface.colorKey = 0xFFFFFFFF;
  surface.pitch = width * int(bpp / 8);
  bytes.assign(size_t(surface.pitch) * size_t(height), 0);
  surface.pixels = bytes.data();
  return surface;
}

TEST(SharedLibrary, ExportedPaletteIsFilledAtLoad) {
  EXPECT_EQ(lu_gPaleta[0].red, 0);
  EXPECT_EQ(lu_gPaleta[6].green, 42);
  EXPECT_EQ(lu_gPaleta[42].red, 51);
  EXPECT_EQ(lu_gPaleta[251].blue, 255);
  EXPECT_EQ(lu_gPaleta[251].alpha, 0);
  EXPECT_EQ(lu_gPaleta[252].red, 0);
}

TEST(SharedLibrary, HostMayOverwriteTheExportedPalette) {
  const TRGBA before = lu_gPaleta[7];
  lu_gPaleta[7] = {1, 2, 3, 0};
  std::vector<uint8_t> from, to;
  TSurfDesc src = Surface(from, 4, 1, 8);
  TSurfDesc dst = Surface(to, 4, 1, 32);
  from.assign(4, 7);
  EXPECT_TRUE(DrawBitmap(dst, src));
  lu_gPaleta[7] = before;
  EXPECT_EQ(to[12], 1);
  EXPECT_EQ(to[13], 2);
  EXPECT_EQ(to[14], 3);
}

TEST(SharedLibrary, ComposesAScene) {
  std::vector<uint8_t> screen_bytes, sprite_bytes;
  TSurfDesc screen = Surface(screen_bytes, 40, 20, 32);
  TSurfDesc sprite = Surface(sprite_bytes, 8, 8, 32);
  sprite.colorKey = 0x00FF00FF;
  EXPECT_TRUE(IdxFillRect(screen, {0, 0, 40, 20}, 0x00102030));
  EXPECT_TRUE(IdxFillRect(sprite, {0, 0, 8, 8}, 0x00FF00FF));
  EXPECT_TRUE(IdxFillRect(sprite, {2, 2, 6, 6}, 0x00445566));
  EXPECT_TRUE(DrawBitmap(screen, {36, 10, 44, 18}, sprite, {0, 0}));
  EXPECT_EQ(GetPixel(screen, 36, 10), 0x00102030u);
  EXPECT_EQ(GetPixel(screen, 38, 12), 0x00445566u);
  EXPECT_EQ(GetPixel(screen, 39, 15), 0x00445566u);
  EXPECT_EQ(GetPixel(screen, 39, 16), 0x00102030u);
}

}  // namespace
