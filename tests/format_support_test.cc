// docs/format-support.md, line by line: what each function returns in each format, and whether it drew.
// PINCEL_WRITE_TABLES=1 in the environment rewrites the page's table.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "tests/exports/exported_functions.h"
#include "tests/support/files.h"

namespace {

using exported::Arguments;
using exported::Format;
using exported::Function;

const std::string kPage = PINCEL_SOURCE_DIR "/docs/format-support.md";
const std::string kBegin =
    "<!-- The table; tests/format_support_test.cc writes and checks it. -->\n";
const std::string kEnd = "<!-- End of the table. -->\n";

constexpr Format kOtherDepth = {15, 0x7C00, 0};

// They draw into no surface.
const std::set<std::string> kReaders = {"Width",
                                        "Height",
                                        "ScanWidth",
                                        "Size",
                                        "Transp",
                                        "GetPixel",
                                        "LoadInfoBMP",
                                        "LoadInfoBMPAlpha",
                                        "LoadInfoGIF",
                                        "LoadGIFNext",
                                        "LoadGIFEnd",
                                        "LoadInfoJPG",
                                        "LoadInfoGIFAlpha",
                                        "LoadGIFAlphaNext",
                                        "LoadGIFAlphaEnd",
                                        "LoadInfoPGF",
                                        "LoadPGF",
                                        "InitializeDLL",
                                        "CreateModelPal",
                                        "CreateGreyPal",
                                        "CreateTruncPal"};
// Their first surface has 8 bits, or 32; what varies is the source.
const std::set<std::string> kMaskMakers = {"CreateMask", "CreateShadow"};

std::vector<uint8_t> PixelsOf(const TSurfDesc& surface) {
  return {surface.pixels, surface.pixels + ptrdiff_t{surface.height} * surface.pitch};
}

// A call in one word or two.
std::string Outcome(const Function& function, const Format& dst, const Format& others) {
  Arguments arguments(function.name, dst, others);
  const std::vector<uint8_t> before = PixelsOf(arguments.Destination());
  const bool result = function.cpp.call(arguments) != 0;
  const bool drew = PixelsOf(arguments.Destination()) != before;
  if (function.name == "SetPixel") return drew ? "drawn" : "nothing";
  if (drew) return result ? "yes" : "drawn, false";
  return result ? "true, nothing" : "false";
}

template <class OutcomeIn>
std::string Cells(OutcomeIn&& outcome_in) {
  std::string cells;
  for (const Format& format : exported::kFormats) cells += " | " + outcome_in(format);
  return cells + " | " + outcome_in(kOtherDepth) + " |\n";
}

std::string Table() {
  std::string table =
      "| function | other surfaces | 8 | 565 | 555 | 1555 | 4444 | 24 | 32 | other depth |\n"
      "|---|---|---|---|---|---|---|---|---|---|\n";
  for (const Function& function : exported::AllFunctions()) {
    if (kReaders.count(function.name) != 0 || function.name.find("::") != std::string::npos) {
      continue;
    }
    const auto add = [&](const std::string& others, const std::string& cells) {
      table += "| `" + function.plain_name + "` | " + others + cells;
    };
    if (kMaskMakers.count(function.name) != 0) {
      for (const Format& output : {exported::kFormats[0], exported::kFormats[6]}) {
        add("onto " + std::to_string(output.bpp) + " bits, from",
            Cells([&](const Format& source) { return Outcome(function, output, source); }));
      }
      continue;
    }
    const std::string alike = Cells([&](const Format& dst) { return Outcome(function, dst, dst); });
    const std::string indexed =
        Cells([&](const Format& dst) { return Outcome(function, dst, exported::kFormats[0]); });
    if (alike == indexed) {
      add("either", alike);
    } else {
      add("same format", alike);
      add("8 bits", indexed);
    }
  }
  return table;
}

TEST(FormatSupport, PageSaysWhatEveryFunctionDoesInEveryFormat) {
  const std::vector<uint8_t> bytes = support::BytesOf(kPage);
  const std::string page(bytes.begin(), bytes.end());
  const size_t begin = page.find(kBegin), end = page.find(kEnd);
  ASSERT_NE(begin, std::string::npos);
  ASSERT_NE(end, std::string::npos);
  const size_t first = begin + kBegin.size();
  const std::string table = Table();
  if (std::getenv("PINCEL_WRITE_TABLES") != nullptr) {
    std::ofstream(kPage, std::ios::binary) << page.substr(0, first) << table << page.substr(end);
    return;
  }
  EXPECT_EQ(page.substr(first, end - first), table);
}

// What the table calls nothing is not for want of something to draw.
TEST(FormatSupport, EveryFunctionOfTheTableDrawsInSomeFormat) {
  std::set<std::string> idle;
  for (const Function& function : exported::AllFunctions()) {
    if (kReaders.count(function.name) != 0 || function.name.find("::") != std::string::npos) {
      continue;
    }
    bool draws = false;
    for (const Format& dst : exported::kFormats) {
      for (const Format& others : {dst, exported::kFormats[0]}) {
        const std::string outcome = Outcome(function, dst, others);
        draws |= outcome == "yes" || outcome.find("drawn") == 0;
      }
    }
    if (!draws) idle.insert(function.plain_name);
  }
  EXPECT_EQ(idle, std::set<std::string>{"pincel_draw_stretch_table"});
}

}  // namespace
