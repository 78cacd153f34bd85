#include "filters/convolution_rows.h"

namespace pincel {
namespace {

template <class Format>
void ConvolveBuffer(const ConvolvedImage& image, const TapList& taps) {
  const Rows& rows = image.pixels;
  // Up to three bytes at the end are not copied; taps there read what the copy had. Intended.
  std::memmove(image.copy, rows.dst, image.bytes & ~size_t{3});
  const auto last = int64_t(image.bytes) - Format::kBytes;
  ForEachRow(rows, [&](uint8_t* row) {
    for (size_t x = 0; x < rows.width; ++x) {
      uint8_t* pixel = row + x * Format::kBytes;
      Format::Store(pixel, typename Format::Word(
                               ConvolvedPixel<Format>(image.copy, pixel - rows.dst, last, taps)));
    }
  });
}

}  // namespace

void Convolve(Argb8888, const ConvolvedImage& i, const TapList& t) {
  ConvolveBuffer<Argb8888>(i, t);
}
void Convolve(Rgb888, const ConvolvedImage& i, const TapList& t) { ConvolveBuffer<Rgb888>(i, t); }
void Convolve(Rgb565, const ConvolvedImage& i, const TapList& t) { ConvolveBuffer<Rgb565>(i, t); }
void Convolve(Rgb555, const ConvolvedImage& i, const TapList& t) { ConvolveBuffer<Rgb555>(i, t); }
void Convolve(Argb4444, const ConvolvedImage& i, const TapList& t) {
  ConvolveBuffer<Argb4444>(i, t);
}

}  // namespace pincel
