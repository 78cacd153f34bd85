// The seven formats, as a byte of the input chooses them.
#ifndef FUZZ_FORMATS_H_
#define FUZZ_FORMATS_H_

#include <cstdint>

struct Format {
  uint32_t bpp, red, alpha;
};

inline constexpr Format kFormats[] = {{8, 0, 0},
                                      {16, 0xF800, 0},
                                      {16, 0x7C00, 0},
                                      {16, 0x7C00, 0x8000},
                                      {16, 0x0F00, 0xF000},
                                      {24, 0xFF0000, 0},
                                      {32, 0xFF0000, 0}};

#endif  // FUZZ_FORMATS_H_
