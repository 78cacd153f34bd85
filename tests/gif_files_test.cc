// Real files: library, model, committed checksums and an independent decoder must agree.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/gif_model.h"
#include "tests/support/checksum.h"
#include "tests/support/compare.h"
#include "tests/support/files.h"
#include "tests/support/gif_writer.h"

namespace {

struct Golden {
  const char* file;
  // A surface of the screen's size, every byte 0x11 at first, into which the frames are loaded one
  // after the other. For 8, 565, 555, 1555, 4444, 24 and 32 bits: the surface after each frame, with
  // the palette at 8 bits.
  uint32_t crc[7];
};
constexpr Golden kGolden[] = {
#include "tests/checksums/gif_files.inc"
};

// What ImageMagick 6.9.11 decodes: convert FILE +adjoin -set colorspace sRGB -depth 8 rgb:-
struct Reference {
  const char* file;
  int frames;
  uint32_t crc;  // red, green and blue of every pixel of every frame
};
constexpr Reference kReferences[] = {
#include "tests/checksums/gif_reference.inc"
};

constexpr char kFolder[] = PINCEL_SOURCE_DIR "/examples/assets/gif/";

model::Picture Surface(int format, int width, int height) {
  model::Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  p.pitch = p.width * p.BytesPerPixel() + 1;
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  p.has_palette = format == 8;
  p.bytes.assign(size_t(p.pitch) * size_t(p.height), 0x11);
  return p;
}

// Loads all frames of a file into each format, compares with the model, and returns the seven
// checksums; none for sizes that no surface has.
std::vector<uint32_t> LoadInEveryFormat(const std::filesystem::path& path) {
  SCOPED_TRACE(path.filename().string());
  support::GifInMemory file(support::BytesOf(path));
  std::vector<uint32_t> sums;
  for (int format : model::kFormats) {
    TSurfDesc info{};
    CQXGIF gif{}, expected_gif{};
    RAW frame{}, expected_frame{};
    const bool known = model::GifInfo(expected_gif, file.Data(), expected_frame, true);
    EXPECT_EQ(LoadInfoGIF(info, file.Data(), gif, frame), known);
    if (info.width <= 0 || info.height <= 0 || info.width > 4096 || info.height > 1024) return {};
    model::Picture expected = Surface(format, info.width, info.height), actual = expected;
    TSurfDesc surface = model::Describe(actual);
    uint32_t sum = 0;
    while (model::GifNextImage(expected_gif) == 0) {
      EXPECT_TRUE(LoadGIFNext(surface, file.Data(), gif, frame));
      const bool decoded = model::LoadGif(expected, expected_gif, expected_frame);
      EXPECT_EQ(LoadGIF(surface, file.Data(), gif, frame), decoded);
      const testing::AssertionResult same = support::Same(expected, actual, surface);
      EXPECT_TRUE(same);
      EXPECT_EQ(gif.cursor, expected_gif.cursor);
      if (!same || gif.cursor != expected_gif.cursor) return {};
      sum = support::Crc32(actual.bytes, sum);
      std::vector<uint8_t> palette;
      for (const TRGBA& c : actual.palette) {
        if (format == 8) palette.insert(palette.end(), {c.blue, c.green, c.red, c.alpha});
      }
      sum = support::Crc32(palette, sum);
    }
    EXPECT_FALSE(LoadGIFNext(surface, file.Data(), gif, frame));
    sums.push_back(sum);
  }
  return sums;
}

TEST(GifFiles, MatchTheCommittedChecksums) {
  for (const Golden& golden : kGolden) {
    const std::vector<uint32_t> sums = LoadInEveryFormat(kFolder + std::string(golden.file));
    ASSERT_EQ(sums.size(), 7u) << golden.file;
    EXPECT_TRUE(std::equal(sums.begin(), sums.end(), golden.crc))
        << support::ChecksumLine(golden.file, sums);
  }
}

// No frame of this file starts with a clear code. Two of them end early for the loader that does not
// supply it, and what is left of them hides two others.
TEST(GifFiles, FramesWithoutClearCodesEndEarlyOrAreDecodedAsMeant) {
  const std::vector<uint8_t> bytes = support::BytesOf(kFolder + std::string("wuffs-muybridge.gif"));
  support::GifInMemory file(bytes);
  CQXGIF gif{};
  RAW record{};
  TSurfDesc surface{};
  ASSERT_TRUE(LoadInfoGIF(surface, file.Data(), gif, record));
  model::Picture p = Surface(8, surface.width, surface.height);
  surface = model::Describe(p);
  int frames = 0;
  for (; LoadGIFNext(surface, file.Data(), gif, record); ++frames) {
    EXPECT_TRUE(LoadGIF(surface, file.Data(), gif, record));
  }
  EXPECT_EQ(frames, 13);
  TGifFrame frame{};
  for (frames = 0; pincel_gif_frame(frame, bytes.data(), bytes.size()) == PINCEL_OK; ++frames) {
    EXPECT_EQ(pincel_load_gif(surface, bytes.data(), bytes.size(), frame), PINCEL_OK);
  }
  EXPECT_EQ(frames, 15);
}

TEST(GifFiles, EveryFileHasACommittedChecksum) {
  for (const auto& path : support::FilesIn(kFolder, ".gif")) {
    const std::string name = path.filename().string();
    const bool listed = std::any_of(std::begin(kGolden), std::end(kGolden),
                                    [&](const Golden& golden) { return golden.file == name; });
    EXPECT_TRUE(listed) << support::ChecksumLine(name, LoadInEveryFormat(path));
  }
}

// PINCEL_TEST_GIF names a folder of further files to hold against the model.
TEST(GifFiles, MatchTheModel) {
  const char* const folder = std::getenv("PINCEL_TEST_GIF");
  int loaded = 0;
  for (const auto& path : support::FilesIn(folder != nullptr ? folder : kFolder, ".gif")) {
    const bool has_size = !LoadInEveryFormat(path).empty();
    loaded += has_size;
    if (folder != nullptr) {
      std::cout << path.filename().string() << (has_size ? "\n" : ": no size to load\n");
    }
  }
  EXPECT_GT(loaded, 0);
}

TEST(GifFiles, BoundedLoaderAgreesWithAnotherDecoder) {
  for (const Reference& reference : kReferences) {
    const std::vector<uint8_t> file = support::BytesOf(kFolder + std::string(reference.file));
    int frames = 0;
    uint32_t sum = 0;
    TGifFrame frame{};
    pincel_status status;
    while ((status = pincel_gif_frame(frame, file.data(), file.size())) == PINCEL_OK) {
      model::Picture p =
          Surface(24, frame.area.right - frame.area.left, frame.area.bottom - frame.area.top);
      TSurfDesc surface = model::Describe(p);
      EXPECT_EQ(pincel_load_gif(surface, file.data(), file.size(), frame), PINCEL_OK)
          << reference.file << ", frame " << frames;
      std::vector<uint8_t> rgb;
      for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
          for (int i = 2; i >= 0; --i) rgb.push_back(p.Byte(x, y, i));
        }
      }
      sum = support::Crc32(rgb, sum);
      ++frames;
    }
    EXPECT_EQ(status, PINCEL_NO_FRAME) << reference.file;
    EXPECT_EQ(frames, reference.frames) << reference.file;
    EXPECT_EQ(sum, reference.crc) << reference.file;
  }
}

}  // namespace
