// 8-bit pixels through a table: palette expansion and index remapping.
#ifndef SURFACE_EXPAND_ROWS_H_
#define SURFACE_EXPAND_ROWS_H_

#include "surface/rows.h"

namespace pincel {

// The stored pixel of every index, in the low bytes of a word.
struct PixelTable {
  uint32_t pixel[256];
};

// The table of `pixel(entry)` for each entry of a palette, as a word 0xXXRRGGBB.
template <class Pixel>
PixelTable TableOf(const TRGBA* palette, Pixel&& pixel) {
  PixelTable table;
  std::memcpy(table.pixel, palette, sizeof(table.pixel));
  for (uint32_t& word : table.pixel) word = pixel(word);
  return table;
}

// The colours of a palette as pixels of a format: alpha bits of 16-bit formats are 0, at 32 bits the
// whole entry is the pixel.
PixelTable PixelsOfPalette(Rgb888, const TRGBA* palette);
PixelTable PixelsOfPalette(Argb8888, const TRGBA* palette);
PixelTable PixelsOfPalette(Rgb565, const TRGBA* palette);
PixelTable PixelsOfPalette(Rgb555, const TRGBA* palette);
PixelTable PixelsOfPalette(Argb4444, const TRGBA* palette);

// Stores the lowest `pixel_bytes` bytes (1 to 4) of each source index' table entry; leaves out the
// pixels of index 0 when asked to.
void ExpandIndexed(int pixel_bytes, const SourceRows& rows, const PixelTable& table,
                   bool skip_index_0);

}  // namespace pincel

#endif  // SURFACE_EXPAND_ROWS_H_
