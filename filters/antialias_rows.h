// Anti-aliasing, for the instruction set of the machine.
#ifndef FILTERS_ANTIALIAS_ROWS_H_
#define FILTERS_ANTIALIAS_ROWS_H_

#include "filters/antialias_pixel.h"
#include "surface/rows.h"

namespace pincel {

// An image whose pixels start with their value. Rows are at least as long as their pixels, and
// there are at least five.
struct CoverageImage {
  uint8_t* pixels;
  ptrdiff_t pitch, width, height;
  ptrdiff_t known;  // bytes from `pixels` on that are read; what lies behind counts as 0
};

enum class Smoothing { kSoften, kCross };

// Values of five rows are kept, with one pixel more on the left and two on the right.
constexpr size_t CoverageLineBytes(size_t width) { return width + 1 + 3; }
inline constexpr size_t kCoverageLines = 5;

// `lines` has room for the values of kCoverageLines rows. `format` is that of the image.
void SmoothRows(int format, Smoothing smoothing, const CoverageImage& image, uint8_t* lines);

// Edge codes, in place: `count` bytes from `first` on.
void CodeEdges(uint8_t* first, size_t pitch, size_t count);

}  // namespace pincel

#endif  // FILTERS_ANTIALIAS_ROWS_H_
