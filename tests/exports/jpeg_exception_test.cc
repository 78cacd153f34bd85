// The one exception that leaves the library is thrown through C code, and on Windows out of a DLL.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "pincel.h"

namespace {

TEST(LoadJPGOfTheSharedLibrary, ThrowsAnIntForErrorsInTheHeader) {
  uint32_t pixels[16] = {};
  TSurfDesc surface{};
  surface.width = surface.height = 4;
  surface.bpp = 32;
  surface.pitch = 16;
  surface.pixels = reinterpret_cast<uint8_t*>(pixels);
  std::vector<uint8_t> no_jpeg(100);
  std::vector<uint8_t> no_image = {0xFF, 0xD8, 0xFF, 0xD9};
  for (int i = 0; i < 1000; ++i) {
    EXPECT_THROW(LoadJPG(surface, no_jpeg.data(), 100), int);
    EXPECT_THROW(LoadJPG(surface, no_image.data(), 4), int);
  }
  EXPECT_EQ(pincel_load_jpg(surface, no_jpeg.data(), 100), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(pincel_load_jpg(surface, no_image.data(), 4), PINCEL_CORRUPT);
}

}  // namespace
