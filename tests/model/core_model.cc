#include "tests/model/core_model.h"

namespace model {

int SurfaceFormat(uint32_t bpp, uint32_t red_mask, uint32_t alpha_mask) {
  if (bpp != 16) return int(bpp);
  if (red_mask == 0xF800) return 16;
  if (red_mask == 0x7C00 && alpha_mask == 0) return 17;
  if (red_mask == 0x7C00) return 18;
  if (red_mask == 0x0F00) return 19;
  return 16;
}

Colour Unpack(int format, uint32_t word) {
  const int w = int(word % 65536);
  switch (format) {
    case 16:
      return {w / 2048 * 8, w / 32 % 64 * 4, w % 32 * 8};
    case 17:
    case 18:
      return {w / 1024 % 32 * 8, w / 32 % 32 * 8, w % 32 * 8};
    default:
      return {w / 256 % 16 * 16, w / 16 % 16 * 16, w % 16 * 16};
  }
}

uint32_t Pack(int format, Colour c) {
  switch (format) {
    case 16:
      return uint32_t(c.red / 8 * 2048 + c.green / 4 * 32 + c.blue / 8);
    case 17:
    case 18:
      return uint32_t(c.red / 8 * 1024 + c.green / 8 * 32 + c.blue / 8);
    default:
      return uint32_t(c.red / 16 * 256 + c.green / 16 * 16 + c.blue / 16);
  }
}

uint32_t UnpackedNumber(int format, uint32_t word) {
  const Colour c = Unpack(format, word);
  return uint32_t(((int64_t{c.green} * 256 + c.red) * 256 + c.green) * 256 + c.blue);
}

uint32_t GetPixel(const Picture& p, int64_t x, int64_t y) {
  switch (p.format) {
    case 32:
      return p.Get(x, y);
    case 24:
      return 0;
    case 8:
      return x >= 0 && x < p.width && y >= 0 && y < p.height ? p.Get(x, y) : 0;
    default:
      return UnpackedNumber(p.format, uint32_t(p.width) % 65536);
  }
}

void SetPixel(Picture& p, int64_t x, int64_t y, uint32_t colour) {
  switch (p.format) {
    case 32:
      return;
    case 24:
      p.Put(x, y, colour);
      return;
    case 8:
      if (x >= 0 && x < p.width && y >= 0 && y < p.height) p.Put(x, y, colour);
      return;
    default:
      p.Put(
          x, y,
          Pack(p.format, {int(colour / 65536 % 256), int(colour / 256 % 256), int(colour % 256)}));
  }
}

void ModelPalette(TRGBA* palette) {
  for (int r = 0; r < 6; ++r) {
    for (int g = 0; g < 7; ++g) {
      for (int b = 0; b < 6; ++b) {
        TRGBA& entry = palette[42 * r + 6 * g + b];
        entry.red = uint8_t(51 * r);
        entry.green = uint8_t(255 * g / 6);
        entry.blue = uint8_t(51 * b);
      }
    }
  }
}

void GreyPalette(TRGBA* palette) {
  for (int i = 0; i < 256; ++i) palette[i].red = palette[i].green = palette[i].blue = uint8_t(i);
}

void TruncPalette(TRGBA* palette) {
  for (int i = 0; i < 256; ++i) {
    palette[i].red = uint8_t(i / 32 * 32);
    palette[i].green = uint8_t(i / 4 % 8 * 32);
    palette[i].blue = uint8_t(i % 4 * 64);
  }
}

int Nearest(const TRGBA* palette, Colour c) {
  int chosen = 0;
  int best = 0xFFFFFF;
  for (int i = 0; i < 256; ++i) {
    const int distance = (c.red - palette[i].red + 256) % 256 +
                         (c.green - palette[i].green + 256) % 256 +
                         (c.blue - palette[i].blue + 256) % 256;
    if (distance <= best) {
      best = distance;
      chosen = i;
    }
  }
  return chosen;
}

Clipped Clip(int64_t width, int64_t height, const CRectangulo& rect) {
  Clipped c;
  c.box.left = rect.left > 0 ? rect.left : 0;
  c.box.top = rect.top > 0 ? rect.top : 0;
  c.box.right = rect.right < width ? rect.right : width;
  c.box.bottom = rect.bottom < height ? rect.bottom : height;
  c.moved_x = c.box.left - rect.left;
  c.moved_y = c.box.top - rect.top;
  c.visible = c.box.left < c.box.right && c.box.top < c.box.bottom;
  return c;
}

}  // namespace model
