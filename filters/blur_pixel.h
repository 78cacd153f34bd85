// What a pass of a directional blur does to one pixel.
#ifndef FILTERS_BLUR_PIXEL_H_
#define FILTERS_BLUR_PIXEL_H_

#include "surface/pixel_format.h"

namespace pincel {

// How strongly a mask byte paints: 0 keeps the pixel, 255 stores the colour. The product has 16
// bits, whatever the step. Intended.
constexpr uint32_t PaintStrength(uint32_t mask, uint32_t step) {
  return ((mask * step) & 0xFFFF) >> 8;
}
static_assert(PaintStrength(255, 256) == 255 && PaintStrength(1, 128) == 0);

// Below this no mask byte paints anything.
constexpr uint32_t kLeastStep = 2;
static_assert(PaintStrength(255, kLeastStep) != 0 && PaintStrength(255, kLeastStep - 1) == 0);

// One channel d on its way to c: c + floor((d - c) * (255 - strength) / 256), written with the
// colour's weight. At 255 the colour itself.
constexpr uint32_t PaintChannel(uint32_t d, uint32_t c, uint32_t strength) {
  return (d * 256 + (c - d) * (strength + 1)) >> 8;
}
static_assert(PaintChannel(200, 100, 254) == 100 && PaintChannel(100, 200, 254) == 199);

template <class F>
constexpr uint32_t PaintField(uint32_t d, uint32_t c, uint32_t strength) {
  return F::Put(PaintChannel(F::Get(d), F::Get(c), strength));
}

// `colour` is packed. A mixed 16-bit pixel loses its alpha bits. Intended.
template <class Format>
constexpr uint32_t PaintPixel(uint32_t d, uint32_t colour, uint32_t strength) {
  if (strength == 0) return d;
  if (strength == 255) return colour;
  if constexpr (PackedFields<Format>) {
    return PaintField<typename Format::Blue>(d, colour, strength) |
           PaintField<typename Format::Green>(d, colour, strength) |
           PaintField<typename Format::Red>(d, colour, strength);
  } else {
    return PaintField<Field<0, 8>>(d, colour, strength) |
           PaintField<Field<8, 8>>(d, colour, strength) |
           PaintField<Field<16, 8>>(d, colour, strength) |
           PaintField<Field<24, 8>>(d, colour, strength);
  }
}

}  // namespace pincel

#endif  // FILTERS_BLUR_PIXEL_H_
