#include "tests/model/jpeg_model.h"

namespace model {
namespace {

uint32_t Packed(int format, uint32_t r, uint32_t g, uint32_t b) {
  switch (format) {
    case 16:
      return (r & 0xF8) << 8 | (g & 0xFC) << 3 | b >> 3;
    case 17:
    case 18:
      return (r & 0xF8) << 7 | (g & 0xF8) << 2 | b >> 3;
    case 19:
      return (r & 0xF0) << 4 | (g & 0xF0) | b >> 4;
    default:
      return r << 16 | g << 8 | b;
  }
}

template <class Pixel>
void ForEachVisible(const Picture& picture, int width, size_t samples, Pixel&& pixel) {
  for (size_t i = 0; i < samples; ++i) {
    const int x = int(i % size_t(width)), y = int(i / size_t(width));
    if (x < picture.width && y < picture.height) pixel(i, x, y);
  }
}

void StoreColours(Picture& picture, int width, const std::vector<uint8_t>& samples,
                  uint32_t alpha) {
  ForEachVisible(picture, width, samples.size() / 3, [&](size_t i, int x, int y) {
    const uint8_t* const rgb = &samples[3 * i];
    const uint32_t kept = picture.format == 32 ? picture.Get(x, y) & 0xFF000000 : 0;
    picture.Put(x, y, kept | alpha | Packed(picture.format, rgb[0], rgb[1], rgb[2]));
  });
}

}  // namespace

void StoreJpeg(Picture& picture, int width, const std::vector<uint8_t>& samples) {
  if (picture.format != 8) {
    StoreColours(picture, width, samples, 0);
    return;
  }
  for (int i = 0; i < 256 && picture.has_palette; ++i) picture.palette[size_t(i)] = lu_gPaleta[i];
  const int64_t end = picture.pitch < 0 ? 0 : int64_t{picture.height} * picture.pitch;
  int64_t at = 0;
  const auto put = [&](uint8_t byte) {
    if (at < end) picture.bytes.at(size_t(picture.origin + at)) = byte;
    ++at;
  };
  for (size_t i = 0; i < samples.size(); ++i) {
    put(samples[i]);
    const bool row_ends = (i + 1) % size_t(width) == 0;
    while (row_ends && at % 4 != 0) put(0);
  }
}

void StoreBoundedJpeg(Picture& picture, int width, const std::vector<uint8_t>& samples) {
  if (picture.format == 8) {
    for (int i = 0; i < 256 && picture.has_palette; ++i) {
      TRGBA& entry = picture.palette[size_t(i)];
      entry = {lu_gPaleta[i].blue, lu_gPaleta[i].green, lu_gPaleta[i].red, entry.alpha};
      if (i > 0 && entry.blue + entry.green + entry.red == 0) entry.blue = 1;
    }
    ForEachVisible(picture, width, samples.size(),
                   [&](size_t i, int x, int y) { picture.Put(x, y, samples[i]); });
    return;
  }
  const uint32_t alpha = picture.format == 32                           ? 0xFF000000
                         : picture.format == 19                         ? 0xF000
                         : picture.format == 17 || picture.format == 18 ? 0x8000
                                                                        : 0;
  StoreColours(picture, width, samples, alpha);
}

}  // namespace model
