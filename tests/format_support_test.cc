// docs/format-support.md, line by line: what each function returns in each format, and whether it drew;
// and what docs/at-a-glance.md says that can be tried out. PINCEL_WRITE_TABLES=1 in the environment
// rewrites the table of the first page.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/exports/exported_functions.h"
#include "tests/support/files.h"
#include "tests/support/targets.h"

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
                                        "CreateTruncPal",
                                        "pincel_build_mix_table",
                                        "pincel_load_info_bmp",
                                        "pincel_load_info_gif",
                                        "pincel_gif_frame",
                                        "pincel_load_info_jpg"};
// Their first surface has 8 bits, or 32; what varies is the source.
const std::set<std::string> kMaskMakers = {"CreateMask", "CreateShadow"};

std::vector<uint8_t> PixelsOf(const TSurfDesc& surface) {
  return {surface.pixels, surface.pixels + ptrdiff_t{surface.height} * surface.pitch};
}

// What GetPixel makes of the pixel.
std::string Seen(const Function& function, const Format& format) {
  Arguments arguments(function.name, format, format);
  const TSurfDesc& surface = arguments.Destination();
  const CPunto at = function.plain_name == "pincel_get_pixel_at"
                        ? CPunto{3, 4}
                        : CPunto{arguments.number, arguments.number};
  uint32_t stored = 0;
  std::memcpy(&stored,
              surface.pixels + ptrdiff_t{at.y} * surface.pitch + at.x * int(format.bpp / 8),
              format.bpp / 8);
  const uint64_t seen = function.cpp.call(arguments);
  return seen == stored ? "the pixel" : seen == 0 ? "0" : "not the pixel";
}

// A call in one word or two.
std::string Outcome(const Function& function, const Format& dst, const Format& others) {
  if (function.name == "GetPixel") return Seen(function, dst);
  Arguments arguments(function.name, dst, others);
  const std::vector<uint8_t> before = PixelsOf(arguments.Destination());
  const bool is_status = function.name.find("pincel_") == 0;
  const bool result = (function.cpp.call(arguments) == PINCEL_OK) == is_status;
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
    if (function.name == "GetPixel") continue;
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

// docs/at-a-glance.md: the cells of each function's row, without the first.
enum Column { kColours, kClipping, kResult, kOneArea, kCommonPalette, kExample, kColumns };
using Facts = std::map<std::string, std::vector<std::string>>;

Facts ReadFacts() {
  const std::vector<uint8_t> bytes = support::BytesOf(PINCEL_SOURCE_DIR "/docs/at-a-glance.md");
  std::istringstream page(std::string(bytes.begin(), bytes.end()));
  Facts facts;
  for (std::string line; std::getline(page, line);) {
    if (line.find("| `") != 0) continue;
    std::vector<std::string> cells;
    for (size_t at = 2; at < line.size();) {
      const size_t end = std::min(line.find(" |", at), line.size());
      cells.push_back(line.substr(at, end - at));
      at = end + 3;
    }
    const std::string names = cells.front();
    cells.erase(cells.begin());
    for (size_t at = names.find('`'); at != std::string::npos; at = names.find('`', at)) {
      const size_t end = names.find('`', at + 1);
      EXPECT_TRUE(facts.emplace(names.substr(at + 1, end - at - 1), cells).second) << names;
      at = end + 1;
    }
  }
  return facts;
}

class FunctionsPage : public testing::Test {
 protected:
  FunctionsPage() { std::copy(std::begin(lu_gPaleta), std::end(lu_gPaleta), palette_.begin()); }
  ~FunctionsPage() override { std::copy(palette_.begin(), palette_.end(), lu_gPaleta); }

  const std::string& Cell(const Function& function, Column column) {
    return facts_.at(function.plain_name).at(column);
  }
  static bool StartsWith(const std::string& cell, const std::string& words) {
    return cell.compare(0, words.size(), words) == 0;
  }

  Facts facts_ = ReadFacts();

 private:
  std::array<TRGBA, 256> palette_;  // which all tests share
};

TEST_F(FunctionsPage, HasEveryFunctionOnce) {
  std::set<std::string> wanted, listed;
  for (const Function& function : exported::AllFunctions()) wanted.insert(function.plain_name);
  for (const auto& [name, cells] : facts_) {
    listed.insert(name);
    EXPECT_EQ(cells.size(), size_t{kColumns}) << name;
  }
  EXPECT_EQ(listed, wanted);
}

TEST_F(FunctionsPage, WhatIsAlwaysTheResultIsAlwaysTheResult) {
  for (const Function& function : exported::AllFunctions()) {
    const std::string& cell = Cell(function, kResult);
    std::set<bool> results;
    for (const Format& dst : exported::kFormats) {
      for (const Format& others : {dst, exported::kFormats[0]}) {
        Arguments arguments(function.name, dst, others);
        results.insert(function.cpp.call(arguments) != 0);
      }
    }
    Arguments arguments(function.name, kOtherDepth, kOtherDepth);
    results.insert(function.cpp.call(arguments) != 0);
    if (StartsWith(cell, "always ")) {
      EXPECT_EQ(results, std::set<bool>{StartsWith(cell, "always true")}) << function.plain_name;
    }
  }
}

// All sources are the destination itself, or copies of it; alpha surfaces and masks are neither.
std::vector<uint8_t> DrawnFromItself(const Function& function, const Format& format,
                                     bool in_place) {
  const bool through_mask = function.plain_name.find("_alpha") != std::string::npos;
  const size_t mask = through_mask                                                   ? 1
                      : function.plain_name.find("source_mask") != std::string::npos ? 2
                                                                                     : 9;
  Arguments arguments(function.name, format, format);
  arguments.UseDestinationAsSource(in_place, mask);
  function.cpp.call(arguments);
  return PixelsOf(arguments.Destination());
}

TEST_F(FunctionsPage, SourceAndDestinationMayBeOneAreaWhereItSaysSo) {
  size_t allowed = 0;
  for (const Function& function : exported::AllFunctions()) {
    const std::string& cell = Cell(function, kOneArea);
    EXPECT_TRUE(cell == "allowed" || cell == "not allowed" || StartsWith(cell, "one surface") ||
                StartsWith(cell, "no surface"))
        << function.plain_name;
    if (cell != "allowed") continue;
    ++allowed;
    for (const Format& format : exported::kFormats) {
      support::ForEachTarget([&] {
        EXPECT_EQ(DrawnFromItself(function, format, true), DrawnFromItself(function, format, false))
            << function.plain_name << ", " << format.bpp << " bits, red " << format.red;
      });
    }
  }
  EXPECT_GT(allowed, 20u);
}

// Whether the palette that all share makes a difference.
bool ReadsCommonPalette(const Function& function, const Format& dst, const Format& others,
                        bool with_palettes) {
  std::vector<uint8_t> states[2];
  for (int i = 0; i < 2; ++i) {
    Arguments arguments(function.name, dst, others);
    if (!with_palettes) arguments.TakePalettesAway();
    const TSurfDesc before = arguments.Destination();  // some calls set the size
    for (TRGBA& entry : lu_gPaleta) {
      const auto byte = uint8_t(&entry - lu_gPaleta);
      entry = i == 0 ? TRGBA{byte, uint8_t(byte * 7), uint8_t(byte * 13), 0}
                     : TRGBA{uint8_t(byte * 11), uint8_t(~byte), byte, 9};
    }
    function.cpp.call(arguments);
    states[i] = PixelsOf(before);
  }
  return states[0] != states[1];
}

TEST_F(FunctionsPage, CommonPaletteIsReadWhereItSaysSo) {
  // With its own palette away this writes through the null pointer that it asks for.
  const std::set<std::string> need_palettes = {"pincel_convert", "pincel_convert8_8",
                                               "pincel_load_bmp_trusted"};
  for (const Function& function : exported::AllFunctions()) {
    const auto reads = [&](bool indexed, bool with_palettes) {
      bool any = false;
      for (const Format& dst : exported::kFormats) {
        if ((dst.bpp == 8) != indexed) continue;
        for (const Format& others : {dst, exported::kFormats[0]}) {
          any |= ReadsCommonPalette(function, dst, others, with_palettes);
        }
      }
      return any;
    };
    std::string seen = "no";
    if (reads(false, true)) {
      seen = "every format";
    } else if (reads(true, true)) {
      seen = "8 bits";
    } else if (need_palettes.count(function.plain_name) == 0 &&
               (reads(false, false) || reads(true, false))) {
      seen = "8 bits without a palette";
    }
    if (function.name == "InitializeDLL") seen = "writes it: no other call may run";
    // The file of this test has a table.
    if (function.name == "LoadBMP") seen = "8-bit files without a colour table";
    EXPECT_EQ(Cell(function, kCommonPalette), seen) << function.plain_name;
  }
}

}  // namespace
