// Loads run on several threads at once. MinGW's threads without winpthread lack std::thread; the code
// is the same there.
#if !defined(_WIN32)
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <thread>
#include <vector>

#include "include/pincel.h"
#include "tests/support/checksum.h"
#include "tests/support/files.h"

namespace {

struct File {
  bool gif;
  std::vector<uint8_t> bytes;
};

std::vector<File> AllFiles() {
  std::vector<File> files;
  for (bool gif : {false, true}) {
    const std::string folder = PINCEL_SOURCE_DIR "/examples/assets/";
    for (const auto& path :
         support::FilesIn(folder + (gif ? "gif" : "bmp"), gif ? ".gif" : ".bmp")) {
      files.push_back({gif, support::BytesOf(path)});
      if (files.back().bytes.size() > 40000) files.pop_back();
    }
  }
  return files;
}

// Loads a file by both kinds of entry points into an 8-bit and a 32-bit surface.
uint32_t SumOf(const File& file) {
  const uint8_t* const data = file.bytes.data();
  const size_t length = file.bytes.size();
  TSurfDesc info{};
  const pincel_status status =
      (file.gif ? pincel_load_info_gif : pincel_load_info_bmp)(info, data, length);
  if (status != PINCEL_OK || info.width > 1024 || info.height > 1024) return 0;
  uint32_t sum = 0;
  for (uint32_t bpp : {8u, 32u}) {
    TRGBA palette[256] = {};
    std::vector<uint8_t> pixels(size_t(info.width * info.height) * (bpp / 8));
    TSurfDesc surface{};
    surface.width = info.width;
    surface.height = info.height;
    surface.bpp = bpp;
    surface.pitch = info.width * int(bpp / 8);
    surface.pixels = pixels.data();
    surface.palette = palette;
    const auto add = [&] {
      sum = support::Crc32(pixels, sum);
      for (const TRGBA& c : palette) sum = support::Crc32({c.blue, c.green, c.red}, sum);
    };
    std::vector<uint8_t> padded = file.bytes;
    padded.resize(length + 70000);
    padded.push_back(';');  // some GIF files have no trailer
    if (file.gif) {
      TGifFrame frame{};
      while (pincel_gif_frame(frame, data, length) == PINCEL_OK) {
        pincel_load_gif(surface, data, length, frame);
        add();
      }
      CQXGIF gif;
      RAW record;
      LoadInfoGIF(info, padded.data(), gif, record);
      while (LoadGIFNext(surface, padded.data(), gif, record)) {
        LoadGIF(surface, padded.data(), gif, record);
        add();
      }
    } else {
      pincel_load_bmp(surface, data, length);
      add();
      LoadBMP(surface, padded.data());
      add();
    }
  }
  return sum;
}

TEST(Loaders, RunOnManyThreadsAtOnce) {
  const std::vector<File> files = AllFiles();
  ASSERT_GT(files.size(), 50u);
  std::vector<uint32_t> expected;
  for (const File& file : files) expected.push_back(SumOf(file));
  constexpr size_t kThreads = 4;
  std::vector<std::vector<uint32_t>> sums(kThreads, std::vector<uint32_t>(files.size()));
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (size_t i = 0; i < files.size(); ++i) {
        const size_t file = (i + t * files.size() / kThreads / 2) % files.size();
        sums[t][file] = SumOf(files[file]);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& of_thread : sums) EXPECT_EQ(of_thread, expected);
}

}  // namespace
#endif
