// Convolution filters: any list of taps, three fixed filters, 24 stored kernels.
#include <algorithm>

#include "filters/convolution_rows.h"
#include "filters/kernel_table.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// The pixels that are filtered: those of the rows, but at 16 bits every two bytes of the buffer,
// whatever the width: padding is filtered too, and pixels lie across rows of odd pitch. Intended.
template <class Format>
Rows FilteredPixels(const TSurfDesc& image, size_t bytes) {
  if constexpr (Format::kBytes == 2) {
    return {image.pixels, 0, bytes / 2, 1};
  } else {
    return Joined(
        {image.pixels, image.pitch, size_t(std::max(image.width, 0)), size_t(image.height)},
        Format::kBytes);
  }
}

bool ConvolveImage(const TSurfDesc& image, const TSurfDesc& scratch, const TapList& taps) {
  return Dispatch(DirectColour{}, image, false, [&](auto format) {
    using Format = decltype(format);
    const int64_t bytes = int64_t{image.height} * image.pitch;
    if (image.height > 0 && bytes >= Format::kBytes) {
      Convolve(format,
               {FilteredPixels<Format>(image, size_t(bytes)), scratch.pixels, size_t(bytes)}, taps);
    }
    return true;
  });
}

// A square of weights around each pixel, row by row.
bool ConvolveSquare(const TSurfDesc& image, const TSurfDesc& scratch, int side, const int* weights,
                    int divisor, int bias) {
  if (divisor == 0) return false;
  const int64_t pixel = image.bpp / 8;
  long offsets[25];
  for (int i = 0; i < side * side; ++i) {
    const int64_t row = i / side - side / 2, column = i % side - side / 2;
    offsets[i] = long(row * image.pitch + column * pixel);
  }
  return ConvolveImage(image, scratch, {side * side, weights, offsets, divisor, bias});
}

}  // namespace
}  // namespace pincel

bool DoConvolucion(TSurfDesc& image, TSurfDesc& scratch, int count, int* const weights,
                   long* const offsets, int divisor, int bias) {
  if (weights == nullptr || offsets == nullptr || divisor == 0) return false;
  return pincel::ConvolveImage(image, scratch, {count, weights, offsets, divisor, bias});
}

bool DoSuavizado(TSurfDesc& image, TSurfDesc& scratch) {
  constexpr int kBox[] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  return pincel::ConvolveSquare(image, scratch, 3, kBox, 9, 0);
}

bool DoEmboss(TSurfDesc& image, TSurfDesc& scratch) {
  constexpr int kRelief[] = {-1, 0, 0, 0, 0, 0, 0, 0, 1};
  return pincel::ConvolveSquare(image, scratch, 3, kRelief, 1, 127);
}

bool DoRealce(TSurfDesc& image, TSurfDesc& scratch) {
  constexpr int kSharpen[] = {-1, -1, -1, -1, 9, -1, -1, -1, -1};
  return pincel::ConvolveSquare(image, scratch, 3, kSharpen, 1, 0);
}

bool FiltroMask(TSurfDesc& image, TSurfDesc& scratch, int number) {
  using namespace pincel;
  if (number < 0 || number >= kKernels) return false;
  const StoredKernel& kernel = kKernelTable[number];
  return ConvolveSquare(image, scratch, kernel.side, kernel.weights, kernel.divisor, kernel.bias);
}
