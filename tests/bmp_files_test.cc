// Real files: library, model and committed checksums must agree in every format.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/bmp_model.h"
#include "tests/support/bmp_writer.h"
#include "tests/support/checksum.h"
#include "tests/support/compare.h"
#include "tests/support/files.h"
#include "tests/support/random.h"

namespace {

struct Golden {
  const char* file;
  uint32_t crc[7];  // 8, 565, 555, 1555, 4444, 24, 32 bits: pixels, then the palette at 8 bits
};
constexpr Golden kGolden[] = {
#include "tests/checksums/bmp_files.inc"
};

const std::string kRoot = PINCEL_SOURCE_DIR "/";

// A surface that the loaders may fill, prepared as a host does; every byte is 0x11 before.
model::Picture Prepared(int format, const TSurfDesc& info) {
  model::Picture p;
  p.format = format;
  p.width = info.width;
  p.height = info.height;
  p.pitch = p.width * p.BytesPerPixel();
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  p.has_palette = format == 8;
  p.bytes.assign(size_t(p.pitch) * size_t(p.height), 0x11);
  return p;
}

// Loads a file into each format, compares with the model, and returns the seven checksums; none for
// sizes that no surface has.
std::vector<uint32_t> LoadInEveryFormat(const std::filesystem::path& path) {
  support::FileInMemory file(support::BytesOf(path), false, size_t{1} << 24);
  TSurfDesc info{};
  LoadInfoBMP(info, file.Data());
  if (info.width <= 0 || info.height <= 0 || info.width > 4096 || info.height > 1024) return {};

  std::vector<uint32_t> sums;
  for (int format : model::kFormats) {
    SCOPED_TRACE(path.filename().string());
    model::Picture expected = Prepared(format, info), actual = expected;
    model::LoadBmp(expected, file.Data(), lu_gPaleta);
    TSurfDesc surface = model::Describe(actual);
    EXPECT_TRUE(LoadBMP(surface, file.Data()));
    EXPECT_TRUE(support::Same(expected, actual, surface));
    std::vector<uint8_t> result = actual.bytes;
    for (const TRGBA& c : actual.palette) {
      if (format == 8) result.insert(result.end(), {c.blue, c.green, c.red, c.alpha});
    }
    sums.push_back(support::Crc32(result));
  }
  model::Picture expected = Prepared(8, info), actual = expected;
  model::LoadBmpAlpha(expected, file.Data());
  TSurfDesc surface = model::Describe(actual);
  EXPECT_TRUE(LoadBMPAlpha(surface, file.Data()));
  EXPECT_TRUE(support::Same(expected, actual, surface)) << path << " as an alpha map";
  return sums;
}

TEST(BmpFiles, MatchTheCommittedChecksums) {
  for (const Golden& golden : kGolden) {
    const std::vector<uint32_t> sums = LoadInEveryFormat(kRoot + golden.file);
    ASSERT_EQ(sums.size(), 7u) << golden.file;
    EXPECT_TRUE(std::equal(sums.begin(), sums.end(), golden.crc))
        << support::ChecksumLine(golden.file, sums);
  }
}

// PINCEL_TEST_BMP names a folder of further files to hold against the model.
TEST(BmpFiles, MatchTheModel) {
  std::vector<std::string> folders = {kRoot + "examples/assets/bmp", kRoot + "tests/data/bmp"};
  if (const char* const more = std::getenv("PINCEL_TEST_BMP")) folders.push_back(more);
  for (const std::string& folder : folders) {
    int loaded = 0;
    for (const auto& path : support::FilesIn(folder, ".bmp")) {
      loaded += !LoadInEveryFormat(path).empty();
    }
    EXPECT_GT(loaded, 0) << folder;
  }
}

}  // namespace
