// Loads arbitrary bytes as a GIF file. The first three bytes choose the surface, the rest is the file.
// Loaders get no length: behind the file stand zeros, which end a frame's data, and a trailer, which
// ends the search for the next frame. Surfaces have their exact size, so that the address sanitizer
// sees every byte written outside.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/formats.h"
#include "include/pincel.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  const int width = data[0] % 65, height = data[1] % 65;
  const Format& format = kFormats[data[2] % 7];
  const bool indices_only = (data[2] & 0x80) != 0;
  const int padding = data[2] >> 3 & 3;

  // A last extension may jump over 255 bytes, a colour table over 768.
  std::vector<uint8_t> arena(size - 3 + 2048);
  std::copy(data + 3, data + size, arena.begin());
  arena.push_back(';');

  const int pitch = width * int(format.bpp / 8) + padding;
  std::vector<uint8_t> pixels(size_t(pitch) * size_t(height));
  std::vector<TRGBA> palette(256);
  TSurfDesc surface{};
  CQXGIF gif;
  RAW frame;
  frame.width = frame.height = 0;
  if (!(indices_only ? LoadInfoGIFAlpha : LoadInfoGIF)(surface, arena.data(), gif, frame)) return 0;
  surface = {width,      height, format.bpp,    format.red,    0, 0, format.alpha,
             0xFFFFFFFF, pitch,  pixels.data(), palette.data()};
  while (gif.cursor < arena.data() + size - 3 && LoadGIFNext(surface, nullptr, gif, frame)) {
    if (indices_only && format.bpp == 8) {
      LoadGIFAlpha(surface, nullptr, gif, frame);
    } else {
      LoadGIF(surface, nullptr, gif, frame);
    }
  }
  LoadGIFEnd(surface, nullptr, gif, frame);
  return 0;
}
