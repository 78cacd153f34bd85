// Every export of the DLL under each of its names, called as hosts of any compiler may call it: at all
// four offsets of the stack, with undefined upper bytes in narrow arguments.
#define WIN32_LEAN_AND_MEAN
#define NOGDI
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/exports/exported_functions.h"
#include "tests/windows/call_at_offset.h"

namespace {

using exported::Arguments;
using exported::Callable;
using exported::Format;

const void* Find(const std::string& name) {
  return reinterpret_cast<const void*>(
      GetProcAddress(GetModuleHandleA("pincel.dll"), name.c_str()));
}
const void* Find(int ordinal) {
  return reinterpret_cast<const void*>(
      GetProcAddress(GetModuleHandleA("pincel.dll"), MAKEINTRESOURCEA(ordinal)));
}

TEST(EveryExport, OrdinalsFindWhatNamesFind) {
  for (const exported::Function& function : exported::AllFunctions()) {
    SCOPED_TRACE(function.name);
    ASSERT_NE(Find(function.plain_name), nullptr);
    EXPECT_EQ(Find(function.ordinal + 512), Find(function.plain_name));
    if (function.name == function.plain_name) continue;  // an addition, which has one name
    ASSERT_NE(Find(function.itanium_name), nullptr);
    EXPECT_EQ(Find(function.ordinal), Find(function.itanium_name));
    ASSERT_NE(Find(function.msvc_name), nullptr);
    EXPECT_EQ(Find(function.ordinal + 256), Find(function.msvc_name));
  }
}

// Hosts may import by ordinal, so the table may grow at its end only.
TEST(EveryExport, OrdinalsAreThoseOfTheFirstVersion) {
  EXPECT_EQ(Find(1), Find("_ZN6CQXGIF10ReadHeaderEPhP3RAW"));
  EXPECT_EQ(Find(5), lu_gPaleta);
  EXPECT_EQ(Find(34), Find("_Z10DrawBitmapR9TSurfDesc11CRectanguloS0_6CPunto"));
  EXPECT_EQ(Find(256 + 65), Find("?LoadJPG@@YA_NAAUTSurfDesc@@PAEJ@Z"));
  EXPECT_EQ(Find(512 + 82), Find("pincel_do_suma"));
  EXPECT_EQ(Find(117), Find("_Z12CreateShadowR9TSurfDescS0_hht"));
  EXPECT_EQ(Find(512 + 125), Find("pincel_load_jpg"));
}

// Both compilers enter at one place, except where an exception would reach a host that cannot catch it.
TEST(EveryExport, MsvcNamesAreOtherNamesOfTheSameFunctions) {
  for (const exported::Function& function : exported::AllFunctions()) {
    const std::string& same =
        function.name == "LoadJPG" ? function.plain_name : function.itanium_name;
    EXPECT_EQ(Find(function.msvc_name), Find(same)) << function.name;
  }
  EXPECT_EQ(Find("?lu_gPaleta@@3PAUTRGBA@@A"), lu_gPaleta);
  EXPECT_EQ(Find("lu_gPaleta"), lu_gPaleta);
}

TEST(EveryExport, WorksAtEveryStackOffset) {
  for (const exported::Function& function : exported::AllFunctions()) {
    const struct {
      const std::string& name;
      const Callable& callable;
      bool method;  // its object goes into a register
    } ways[] = {{function.itanium_name, function.cpp, function.cpp.method},
                {function.msvc_name, function.cpp, function.cpp.method},
                {function.plain_name, function.plain, false}};
    for (const Format& dst : exported::kFormats) {
      for (const Format& others : {dst, exported::kFormats[0]}) {
        // Slow, and without surfaces: once is enough.
        if (function.name == "pincel_build_mix_table" && dst.bpp != 8) continue;
        Arguments expected(function.name, dst, others);
        const uint64_t result = function.cpp.call(expected);
        const std::vector<uint8_t> state = expected.State();
        for (const auto& way : ways) {
          for (uint32_t offset = 0; offset < 16; offset += 4) {
            SCOPED_TRACE(testing::Message() << way.name << ", " << dst.bpp << " and " << others.bpp
                                            << " bits, stack offset " << offset);
            Arguments arguments(function.name, dst, others);
            const uint64_t registers =
                CallAtOffset(offset, Find(way.name), way.callable.words(arguments),
                             way.method ? &arguments.gif : nullptr);
            EXPECT_EQ(way.callable.result(registers, arguments), result);
            EXPECT_EQ(arguments.State(), state);
          }
        }
      }
    }
  }
}

}  // namespace
