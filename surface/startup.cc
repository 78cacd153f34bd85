#include "surface/palette.h"

TRGBA lu_gPaleta[256];

namespace pincel {
uint16_t MultTable[256 * 256];
}

void InitializeDLL(void) {
  for (uint32_t a = 0; a < 256; ++a) {
    for (uint32_t b = 0; b < 256; ++b) pincel::MultTable[a * 256 + b] = uint16_t(a * b);
  }
  CreateModelPal(lu_gPaleta);
}

// A DLL initialises from its entry point (dll_main.cc). Everywhere else this runs before the
// host's own static constructors, which may already draw.
#if !defined(_WIN32) || defined(PINCEL_STATIC)
namespace {
[[gnu::constructor(101)]] void InitializeAtLoad() { InitializeDLL(); }
}  // namespace
#endif
