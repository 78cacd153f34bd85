// Palettes and the start-up tables.
#ifndef SURFACE_PALETTE_H_
#define SURFACE_PALETTE_H_

#include <cstdint>

#include "include/pincel.h"

namespace pincel {

// MultTable[a * 256 + b] is a * b. Built at start-up; nothing in the library reads it.
extern uint16_t MultTable[256 * 256];

// The distance that picks palette entries: per channel, how far the entry lies below the colour,
// modulo 256. An entry one step brighter costs 255, so entries no brighter than the colour win.
// Intended.
constexpr uint32_t WrappingDistance(const TRGBA& entry, uint8_t red, uint8_t green, uint8_t blue) {
  return uint32_t{uint8_t(red - entry.red)} + uint8_t(green - entry.green) +
         uint8_t(blue - entry.blue);
}

// Index of the entry nearest to the colour; the highest among equals.
int NearestColor(const TRGBA* palette, uint8_t red, uint8_t green, uint8_t blue);

// The palette of an 8-bit surface, the library's own when it has none.
inline const TRGBA* PaletteOrDefault(const TSurfDesc& surface) {
  return surface.palette != nullptr ? surface.palette : lu_gPaleta;
}

}  // namespace pincel

#endif  // SURFACE_PALETTE_H_
