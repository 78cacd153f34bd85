// Models of the surface core: formats, palettes, single pixels, clipping.
#ifndef TESTS_MODEL_CORE_MODEL_H_
#define TESTS_MODEL_CORE_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

struct Colour {
  int red, green, blue;  // 0..255
};

int SurfaceFormat(uint32_t bpp, uint32_t red_mask, uint32_t alpha_mask);

// 16-bit words of format 16 to 19. Unpacked fields stand at the top of their byte, low bits 0;
// packing drops low bits and writes alpha bits as 0.
Colour Unpack(int format, uint32_t word);
uint32_t Pack(int format, Colour c);
// An unpacked word as one number: green, red, green, blue from the top byte down.
uint32_t UnpackedNumber(int format, uint32_t word);

uint32_t GetPixel(const Picture& p, int64_t x, int64_t y);
void SetPixel(Picture& p, int64_t x, int64_t y, uint32_t colour);

// Write red, green and blue; the fourth bytes stay.
void ModelPalette(TRGBA* palette);
void GreyPalette(TRGBA* palette);
void TruncPalette(TRGBA* palette);

int Nearest(const TRGBA* palette, Colour c);

struct Box {
  int64_t left, top, right, bottom;
};
struct Clipped {
  Box box;
  int64_t moved_x, moved_y;  // how far the top-left corner moved
  bool visible;
};
Clipped Clip(int64_t width, int64_t height, const CRectangulo& rect);

}  // namespace model

#endif  // TESTS_MODEL_CORE_MODEL_H_
