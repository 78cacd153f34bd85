#include "surface/palette.h"

#include "surface/pixel_format.h"

namespace {

void SetColour(TRGBA& entry, int red, int green, int blue) {  // keeps the fourth byte
  entry.red = uint8_t(red);
  entry.green = uint8_t(green);
  entry.blue = uint8_t(blue);
}

}  // namespace

void CreateModelPal(TRGBA (&palette)[256]) {
  for (int r = 0; r < 6; ++r) {
    for (int g = 0; g < 7; ++g) {
      for (int b = 0; b < 6; ++b) {
        SetColour(palette[42 * r + 6 * g + b], 51 * r, 255 * g / 6, 51 * b);
      }
    }
  }
}

void CreateGreyPal(TRGBA (&palette)[256]) {
  for (int i = 0; i < 256; ++i) SetColour(palette[i], i, i, i);
}

void CreateTruncPal(TRGBA (&palette)[256]) {
  for (int i = 0; i < 256; ++i) SetColour(palette[i], i & 0xE0, (i & 0x1C) << 3, (i & 0x03) << 6);
}

namespace pincel {

int NearestColor(const TRGBA* palette, uint8_t red, uint8_t green, uint8_t blue) {
  uint32_t best = 0xFFFFFF;
  int nearest = 0;
  for (int i = 0; i < 256; ++i) {
    const uint32_t distance = WrappingDistance(palette[i], red, green, blue);
    if (distance <= best) {
      best = distance;
      nearest = i;
    }
  }
  return nearest;
}

}  // namespace pincel
