// Every plain C name does what its C++ function does.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/exports/exported_functions.h"

namespace {

using exported::Arguments;
using exported::Format;

TEST(PlainC, EachNameDoesWhatItsFunctionDoes) {
  for (const exported::Function& function : exported::AllFunctions()) {
    if (function.name == function.plain_name) continue;  // an addition, which has one name
    for (const Format& dst : exported::kFormats) {
      for (const Format& others : {dst, exported::kFormats[0]}) {
        SCOPED_TRACE(testing::Message() << function.name << " and " << function.plain_name << ", "
                                        << dst.bpp << " and " << others.bpp << " bits");
        Arguments by_cpp(function.name, dst, others), by_plain(function.name, dst, others);
        const uint64_t result = function.cpp.call(by_cpp);
        EXPECT_EQ(function.plain.call(by_plain), result);
        EXPECT_EQ(by_plain.State(), by_cpp.State());
      }
    }
  }
}

// A call that changes nothing compares nothing.
TEST(PlainC, AllChangeSomethingButThoseThatRead) {
  std::set<std::string> readers;
  for (const exported::Function& function : exported::AllFunctions()) {
    bool changed = false;
    for (const Format& dst : exported::kFormats) {
      for (const Format& others : {dst, exported::kFormats[0]}) {
        Arguments arguments(function.name, dst, others);
        const std::vector<uint8_t> before = arguments.State();
        function.plain.call(arguments);
        changed |= arguments.State() != before;
      }
    }
    if (!changed) readers.insert(function.plain_name);
  }
  const std::set<std::string> expected = {"pincel_width",
                                          "pincel_height",
                                          "pincel_scan_width",
                                          "pincel_transp",
                                          "pincel_get_pixel",
                                          "pincel_get_pixel_at",
                                          "pincel_initialize_dll",  // makes what is there already
                                          "pincel_draw_stretch_table",
                                          "pincel_load_info_pgf",
                                          "pincel_load_pgf"};
  EXPECT_EQ(readers, expected);
}

TEST(PlainC, BoolsAreOneOrZero) {
  TSurfDesc surface{};
  surface.colorKey = 0xFFFFFFFF;
  EXPECT_EQ(pincel_transp(&surface), 0);
  surface.colorKey = 0;
  EXPECT_EQ(pincel_transp(&surface), 1);
}

TEST(PlainC, LoadsThatThrowGiveZero) {
  std::vector<uint8_t> no_jpeg(100), pixels(64);
  TSurfDesc surface{};
  surface.width = surface.height = 4;
  surface.bpp = 32;
  surface.pitch = 16;
  surface.pixels = pixels.data();
  EXPECT_THROW(LoadJPG(surface, no_jpeg.data(), 100), int);
  EXPECT_EQ(pincel_load_jpg_trusted(&surface, no_jpeg.data(), 100), 0);
}

}  // namespace
