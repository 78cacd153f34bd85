// Line: blended, with thickness and soft edges. Single precision throughout, in the order written:
// the same pixels on every machine.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "draw/line_pixel.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

// One axis of a surface: its pixels, and the bytes from one to the next.
struct Axis {
  int32_t pixels;
  ptrdiff_t step;
};

// An end point by the axis that the line follows and the other one.
struct End {
  int32_t along, across;
};

// Toward zero. Positions too large for an integer lie outside every surface.
int32_t Truncate(float position) { return int32_t(std::min(2147483520.0f, position)); }

template <class Ink>
void DrawAlong(uint8_t* pixels, Axis along, Axis across, End first, End last, Ink ink, bool soft,
               int32_t thickness) {
  if (first.along > last.along) std::swap(first, last);
  const int64_t extent = int64_t{last.along} - first.along;
  const float slope =
      float(int64_t{last.across} - first.across) / float(std::max(extent, int64_t{1}));
  const float intercept = float(first.across) - float(first.along) * slope;

  const float limit = float(across.pixels);
  const float breadth = float(thickness);
  const int64_t end = std::min(last.along, along.pixels);  // one past the surface. Intended.
  for (int64_t at = std::max(first.along, 0); at <= end; ++at) {
    const float centre = float(int32_t(at)) * slope + intercept;
    if (centre < 0.0f || centre >= limit) continue;
    uint8_t* const line = pixels + ptrdiff_t(at) * along.step;
    const auto pixel = [&](int32_t row) { return line + row * across.step; };
    if (soft) {
      const float behind = centre + breadth;
      const int32_t behind_row = Truncate(behind);
      ink.CoverPart(pixel(behind_row), std::abs(behind - float(behind_row)));
      // A centre between 0 and 1 blends row 0 here too, with a coverage above 1, and a centre of 0
      // the row before the surface. Intended.
      const float before = centre - 1.0f;
      const int32_t before_row = Truncate(before);
      ink.CoverPart(pixel(before_row), std::abs(1.0f - (before - float(before_row))));
    }
    for (int32_t i = 0; i < thickness; ++i) ink.Cover(pixel(Truncate(centre + float(i))));
  }
}

}  // namespace
}  // namespace pincel

bool Line(TSurfDesc& dst, CPunto const& p1, CPunto const& p2, unsigned long colour,
          unsigned short alpha, bool soft, int thickness) {
  using namespace pincel;
  return Dispatch(AllFormats{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    const LineInk<Format> ink(dst, ToBgr(uint32_t(colour)), std::min<int>(alpha, 255));
    const Axis columns{dst.width, Format::kBytes};
    const Axis rows{dst.height, dst.pitch};
    if (std::abs(int64_t{p2.x} - p1.x) > std::abs(int64_t{p2.y} - p1.y)) {
      DrawAlong(dst.pixels, columns, rows, {p1.x, p1.y}, {p2.x, p2.y}, ink, soft, thickness);
    } else {
      DrawAlong(dst.pixels, rows, columns, {p1.y, p1.x}, {p2.y, p2.x}, ink, soft, thickness);
    }
    return false;  // always. Intended.
  });
}
