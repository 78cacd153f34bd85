// Loads arbitrary bytes as a JPEG file. The first three bytes choose the surface, the rest is the
// file, in a block of exactly its size, as are the surface's pixels: the address sanitizer sees every
// access outside. libjpeg-turbo is not instrumented; what it writes itself is checked by guards.
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
  const int padding = data[2] >> 3 & 3;
  const size_t length = size - 3;
  const std::unique_ptr<uint8_t[]> file(new uint8_t[length]);
  std::copy(data + 3, data + size, file.get());

  const int pitch = width * int(format.bpp / 8) + padding;
  constexpr size_t kGuard = 64;
  constexpr uint8_t kUntouched = 0xA5;
  const size_t bytes = size_t(pitch) * size_t(height);
  std::vector<uint8_t> pixels(bytes + 2 * kGuard, kUntouched);
  std::vector<TRGBA> palette(256);
  uint8_t* const first =
      pixels.data() + kGuard + (upwards && height > 0 ? pitch * (height - 1) : 0);
  TSurfDesc surface = {width,      height, format.bpp, format.red,    0, 0, format.alpha,
                       0xFFFFFFFF, pitch,  first,      palette.data()};
  if (upwards) surface.pitch = -pitch;

  TSurfDesc info{};
  LoadInfoJPG(info, file.get(), long(length));
  const pincel_status header = pincel_load_info_jpg(info, file.get(), length);
  bool thrown = false, loaded = false;
  try {
    loaded = LoadJPG(surface, file.get(), long(length));
  } catch (int) {
    thrown = true;
  }
  if (thrown && header == PINCEL_OK) std::abort();
  const pincel_status status = pincel_load_jpg(surface, file.get(), length);
  if (header != PINCEL_OK && status != header) std::abort();
  if (loaded && status != PINCEL_OK && status != PINCEL_SURFACE_TOO_SMALL) std::abort();

  const auto untouched = [](const uint8_t* guard) {
    return std::all_of(guard, guard + kGuard, [](uint8_t byte) { return byte == kUntouched; });
  };
  if (!untouched(pixels.data()) || !untouched(pixels.data() + kGuard + bytes)) std::abort();
  return 0;
}
