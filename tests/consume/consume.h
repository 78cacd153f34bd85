// Draws a keyed sprite and looks at the result; for hosts with and without a C library.
#ifndef TESTS_CONSUME_CONSUME_H_
#define TESTS_CONSUME_CONSUME_H_

#include <pincel.h>

static TSurfDesc Surface(uint32_t* pixels, int width, int height) {
  TSurfDesc surface = TSurfDesc();
  surface.width = width;
  surface.height = height;
  surface.bpp = 32;
  surface.colorKey = 0xFFFFFFFF;
  surface.pitch = width * 4;
  surface.pixels = reinterpret_cast<uint8_t*>(pixels);
  return surface;
}

static bool DrawsRight() {
  static uint32_t screen_pixels[32 * 16], sprite_pixels[8 * 8];
  TSurfDesc screen = Surface(screen_pixels, 32, 16);
  TSurfDesc sprite = Surface(sprite_pixels, 8, 8);
  sprite.colorKey = 0x00FF00FF;
  const CRectangulo all = {0, 0, 32, 16}, sprite_area = {0, 0, 8, 8}, core = {2, 2, 6, 6};
  const CRectangulo place = {28, 4, 36, 12};
  const CPunto origin = {0, 0};
  IdxFillRect(screen, all, 0x00102030);
  IdxFillRect(sprite, sprite_area, 0x00FF00FF);
  IdxFillRect(sprite, core, 0x00445566);
  DrawBitmap(screen, place, sprite, origin);
  return GetPixel(screen, 28, 4) == 0x00102030 && GetPixel(screen, 30, 6) == 0x00445566 &&
         lu_gPaleta[251].red == 255;
}

#endif  // TESTS_CONSUME_CONSUME_H_
