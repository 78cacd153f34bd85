// Loads arbitrary bytes through the loaders that know the file's length. The first three bytes choose
// the surface, the rest is the file, in a block of exactly its size, as are the surface's pixels: the
// address sanitizer sees every access outside.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "fuzz/formats.h"
#include "include/pincel.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  const int width = data[0] % 65, height = data[1] % 65;
  const Format& format = kFormats[data[2] % 7];
  const bool upwards = (data[2] & 0x80) != 0;
  const size_t length = size - 3;
  const std::unique_ptr<uint8_t[]> file(new uint8_t[length]);
  std::copy(data + 3, data + size, file.get());

  const int pitch = width * int(format.bpp / 8);
  std::vector<uint8_t> pixels(size_t(pitch) * size_t(height));
  std::vector<TRGBA> palette(256);
  uint8_t* const first = pixels.data() + (upwards && height > 0 ? pitch * (height - 1) : 0);
  TSurfDesc surface = {width,      height, format.bpp, format.red,    0, 0, format.alpha,
                       0xFFFFFFFF, pitch,  first,      palette.data()};
  if (upwards) surface.pitch = -pitch;

  TSurfDesc info{};
  const pincel_status bmp = pincel_load_info_bmp(info, file.get(), length);
  const pincel_status loaded = pincel_load_bmp(surface, file.get(), length);
  if (bmp != PINCEL_OK && loaded != bmp) std::abort();

  pincel_load_info_gif(info, file.get(), length);
  TGifFrame frame{};
  size_t before = 0;
  while (pincel_gif_frame(frame, file.get(), length) == PINCEL_OK) {
    if (frame.offset <= before) std::abort();  // the walk must come to an end
    before = frame.offset;
    pincel_load_gif(surface, file.get(), length, frame);
  }
  return 0;
}
