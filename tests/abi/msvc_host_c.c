/* The part of the host that is written in C. */
#include "pincel.h"

const char* WrongInPlainC(void);

static uint32_t screen_pixels[16 * 8];

const char* WrongInPlainC(void) {
  static unsigned char table[2][65536];
  const CRectangulo all = {0, 0, 16, 8}, corner = {0, 0, 2, 2};
  TSurfDesc screen = {16, 8, 32, 0, 0, 0, 0, 0xFFFFFFFF, 64, (uint8_t*)screen_pixels, 0};
  CSize size = {0, 0};
  TGifFrame frame = {0, {0, 0, 0, 0}, 0, 0, 0, 0};
  static const unsigned char no_image[8] = {0};

  pincel_size(&screen, &size);
  if (size.width != 16 || size.height != 8) return "C: pincel_size";
  if (pincel_transp(&screen) != 0) return "C: pincel_transp";
  if (pincel_idx_fill_rect(&screen, &all, 0x00336699) != 1) return "C: pincel_idx_fill_rect";
  pincel_idx_fill_rect(&screen, &corner, 0x00FFFFFF);
  if (screen_pixels[17] != 0x00FFFFFF || screen_pixels[18] != 0x00336699) return "C: pixels";
  if (pincel_get_pixel(&screen, 3, 3) != 0x00336699) return "C: pincel_get_pixel";
  if (lu_gPaleta[42].red != 51) return "C: lu_gPaleta";
  pincel_build_mix_table(table, lu_gPaleta, 0);
  if (table[0][0] != 0 || table[1][0xFFFF] != 251) return "C: pincel_build_mix_table";
  if (pincel_gif_frame(&frame, no_image, 8) != PINCEL_NOT_THIS_FORMAT) return "C: pincel_gif_frame";
  return 0;
}
