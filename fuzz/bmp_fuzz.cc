// Loads arbitrary bytes as a BMP file. The first four bytes choose surface and address, the rest is
// the file. Loaders get no length: the file stands in an arena of zeros that is large enough for
// whatever its header can make them read. Surfaces have their exact size, so that the address
// sanitizer sees every byte written outside.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/formats.h"
#include "include/pincel.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  const int width = data[0] % 65, height = data[1] % 65;
  const bool odd_address = (data[3] & 1) != 0;
  const uint8_t* const file = data + 4;
  const size_t file_size = size - 4;

  constexpr size_t kLargestImage = 64 * 64 * 3 + 1, kHeaderAndTable = 54 + 256 * 4;
  std::vector<uint8_t> arena(file_size + kHeaderAndTable + kLargestImage + 1024);
  uint8_t* const bitmap = arena.data() + (odd_address ? 1 : 0);
  std::copy(file, file + file_size, bitmap);
  uint32_t offset;
  std::memcpy(&offset, bitmap + 10, 4);
  offset %= uint32_t(file_size + 1);
  std::memcpy(bitmap + 10, &offset, 4);

  const Format& format = kFormats[data[2] % 7];
  const int row_bytes = width * int(format.bpp / 8);
  std::vector<uint8_t> pixels(size_t(row_bytes) * size_t(height));
  std::vector<TRGBA> palette(256);
  TSurfDesc surface{};
  LoadInfoBMP(surface, bitmap);
  LoadInfoBMPAlpha(surface, bitmap);
  surface = {width,      height,    format.bpp,    format.red,    0, 0, format.alpha,
             0xFFFFFFFF, row_bytes, pixels.data(), palette.data()};
  LoadBMP(surface, bitmap);
  if (format.bpp == 8) LoadBMPAlpha(surface, bitmap);
  return 0;
}
