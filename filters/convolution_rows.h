// Convolution of whole buffers.
#ifndef FILTERS_CONVOLUTION_ROWS_H_
#define FILTERS_CONVOLUTION_ROWS_H_

#include "filters/convolution_pixel.h"
#include "surface/rows.h"

namespace pincel {

// An image's memory of `bytes` bytes, at least one pixel, and as much for the copy. `pixels.dst` is
// where the image begins; what is filtered are the pixels of its rows.
struct ConvolvedImage {
  Rows pixels;
  uint8_t* copy;
  size_t bytes;
};

void Convolve(Argb8888, const ConvolvedImage& image, const TapList& taps);
void Convolve(Rgb888, const ConvolvedImage& image, const TapList& taps);
void Convolve(Rgb565, const ConvolvedImage& image, const TapList& taps);
void Convolve(Rgb555, const ConvolvedImage& image, const TapList& taps);
void Convolve(Argb4444, const ConvolvedImage& image, const TapList& taps);

}  // namespace pincel

#endif  // FILTERS_CONVOLUTION_ROWS_H_
