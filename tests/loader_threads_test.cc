// Loads run on several threads at once. MinGW's threads without winpthread lack std::thread; the code
// is the same there.
#if !defined(_WIN32)
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "include/pincel.h"
#include "tests/support/files.h"

namespace {

using Bytes = std::vector<uint8_t>;

enum class Kind { kBmp, kGif, kJpeg };

struct File {
  Kind kind;
  Bytes bytes;
  Bytes padded;  // for loaders that get no length
};

// Real files, those of up to `largest` bytes.
std::vector<File> FilesUpTo(size_t largest) {
  const struct {
    Kind kind;
    const char* name;
  } kFolders[] = {{Kind::kBmp, "bmp"}, {Kind::kGif, "gif"}, {Kind::kJpeg, "jpg"}};
  std::vector<File> files;
  for (const auto& folder : kFolders) {
    const std::string name = folder.name;
    for (const auto& path :
         support::FilesIn(PINCEL_SOURCE_DIR "/examples/assets/" + name, "." + name)) {
      File file{folder.kind, support::BytesOf(path), {}};
      if (file.bytes.size() > largest) continue;
      file.padded = Bytes(file.bytes.size() + 70000);
      std::copy(file.bytes.begin(), file.bytes.end(), file.padded.begin());
      file.padded.back() = ';';  // some GIF files have no trailer
      files.push_back(std::move(file));
    }
  }
  return files;
}

pincel_status InfoOf(const File& file, TSurfDesc& info) {
  const auto load_info = file.kind == Kind::kBmp   ? pincel_load_info_bmp
                         : file.kind == Kind::kGif ? pincel_load_info_gif
                                                   : pincel_load_info_jpg;
  return load_info(info, file.bytes.data(), file.bytes.size());
}

// Loads every picture of a file with both kinds of entry points; `loaded()` after each.
template <class Loaded>
void LoadAll(const File& file, TSurfDesc& surface, Loaded&& loaded) {
  const uint8_t* const data = file.bytes.data();
  const size_t length = file.bytes.size();
  uint8_t* const padded = const_cast<uint8_t*>(file.padded.data());
  switch (file.kind) {
    case Kind::kBmp:
      pincel_load_bmp(surface, data, length);
      loaded();
      LoadBMP(surface, padded);
      loaded();
      break;
    case Kind::kGif: {
      TGifFrame frame{};
      while (pincel_gif_frame(frame, data, length) == PINCEL_OK) {
        pincel_load_gif(surface, data, length, frame);
        loaded();
      }
      TSurfDesc info{};
      CQXGIF gif;
      RAW record;
      LoadInfoGIF(info, padded, gif, record);
      while (LoadGIFNext(surface, padded, gif, record)) {
        LoadGIF(surface, padded, gif, record);
        loaded();
      }
      break;
    }
    case Kind::kJpeg:
      pincel_load_jpg(surface, data, length);
      loaded();
      LoadJPG(surface, padded, long(length));
      loaded();
      break;
  }
}

// Every pixel and palette entry that the loads give, at 8, 16 and 32 bits.
Bytes PixelsOf(const File& file) {
  Bytes all;
  TSurfDesc info{};
  if (InfoOf(file, info) != PINCEL_OK || info.width > 1024 || info.height > 1024) return all;
  for (uint32_t bpp : {8u, 16u, 32u}) {
    TRGBA palette[256] = {};
    Bytes pixels(size_t(info.width * info.height) * (bpp / 8));
    TSurfDesc surface{};
    surface.width = info.width;
    surface.height = info.height;
    surface.bpp = bpp;
    surface.rMask = 0xF800;
    surface.pitch = info.width * int(bpp / 8);
    surface.pixels = pixels.data();
    surface.palette = palette;
    LoadAll(file, surface, [&] {
      all.insert(all.end(), pixels.begin(), pixels.end());
      for (const TRGBA& c : palette) all.insert(all.end(), {c.blue, c.green, c.red, c.alpha});
    });
  }
  return all;
}

TEST(Loaders, RunOnManyThreadsAtOnce) {
  const std::vector<File> files = FilesUpTo(33000);
  std::vector<Bytes> expected;
  size_t loadable[3] = {};
  for (const File& file : files) {
    expected.push_back(PixelsOf(file));
    loadable[size_t(file.kind)] += !expected.back().empty();
  }
  for (size_t count : loadable) ASSERT_GT(count, 3u);
  constexpr size_t kThreads = 6;
  std::vector<std::vector<size_t>> different(kThreads);
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (size_t i = 0; i < files.size(); ++i) {
        const size_t file = (i + t * files.size() / kThreads) % files.size();
        if (PixelsOf(files[file]) != expected[file]) different[t].push_back(file);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& of_thread : different) EXPECT_TRUE(of_thread.empty());
}

}  // namespace
#endif
