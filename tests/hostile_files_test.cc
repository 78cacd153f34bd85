// Files that contradict themselves, end early or were made by fuzzers, through every entry point that
// loads: none may touch memory outside the file and the surface, or take long.
//
// Loaders that know a file's length read it from a block of exactly that size. The others read it
// with zeros behind it, and with memory behind those that nothing may touch. So do surfaces end at
// such memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/picture.h"
#include "tests/support/defect_files.h"
#include "tests/support/files.h"
#include "tests/support/guarded_memory.h"

namespace {

using model::Picture;
using support::DefectFile;
using support::FileKind;
using support::GuardedMemory;
using ByteVector = std::vector<uint8_t>;

// A surface whose last row ends, padding included, where the memory does.
class GuardedSurface {
 public:
  explicit GuardedSurface(int largest) : memory_(size_t(largest) * size_t(largest) * 4 + kFront) {}

  TSurfDesc Make(int format, int width, int height, int padding, bool upwards) {
    shape_.format = format;
    shape_.width = width;
    shape_.height = height;
    shape_.pitch = width * shape_.BytesPerPixel() + padding;
    shape_.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
    shape_.has_palette = format == 8;
    const size_t size = size_t(shape_.pitch) * size_t(height);
    pixels_ = memory_.Last(size);
    std::fill_n(pixels_ - kFront, kFront + size, kOld);
    TSurfDesc surface = Describe(shape_);
    surface.pixels = pixels_;
    if (upwards) {
      surface.pixels += size - size_t(shape_.pitch);
      surface.pitch = -surface.pitch;
    }
    return surface;
  }
  bool FrontIsUntouched() const {
    return std::all_of(pixels_ - kFront, pixels_, [](uint8_t byte) { return byte == kOld; });
  }

 private:
  static constexpr uint8_t kOld = 0xA5;
  static constexpr size_t kFront = 64;

  GuardedMemory memory_;
  Picture shape_;
  uint8_t* pixels_ = nullptr;
};

constexpr int kLargestSurface = 300;
constexpr size_t kLargestFile = 600000;

class HostileFiles : public testing::Test {
 protected:
  // Everything that loads, into every format; surfaces of 1 x 1, `width` x `height`, and that upside
  // down.
  void LoadWithEverything(const ByteVector& file, int width, int height) {
    ASSERT_LE(file.size(), kLargestFile);
    for (int format : model::kFormats) {
      LoadFromExactBlock(file, [&] { return surface_.Make(format, width, height, 1, false); });
      LoadFromExactBlock(file, [&] { return surface_.Make(format, width, height, 0, true); });
      LoadFromExactBlock(file, [&] { return surface_.Make(format, 1, 1, 0, false); });
      LoadFromArena(file, [&] { return surface_.Make(format, width, height, 1, false); });
      LoadFromArena(file, [&] { return surface_.Make(format, 1, 1, 3, false); });
    }
    TSurfDesc surface = surface_.Make(24, width, height, 0, false);
    surface.bpp = 20;
    uint8_t* const data = arena_.Put(file, kZeros);
    EXPECT_FALSE(LoadBMP(surface, data));
    EXPECT_FALSE(LoadPGF(surface, data));
    EXPECT_FALSE(LoadInfoPGF(surface, data));
  }

 private:
  // What a header can make the loaders without a length read behind a file, for these surfaces.
  static constexpr size_t kZeros = kLargestSurface * kLargestSurface * 3 + 8192;
  static constexpr uint32_t kFarthestPixels = 4096;

  template <class MakeSurface>
  void LoadFromExactBlock(const ByteVector& file, MakeSurface make_surface) {
    const ByteVector block(file);  // sanitizers see what lies before it, too
    for (const uint8_t* data : {static_cast<const uint8_t*>(exact_.Put(file)), block.data()}) {
      TSurfDesc info{};
      const pincel_status bmp = pincel_load_info_bmp(info, data, file.size());
      const pincel_status gif = pincel_load_info_gif(info, data, file.size());
      const pincel_status jpg = pincel_load_info_jpg(info, data, file.size());
      LoadInfoJPG(info, const_cast<uint8_t*>(data), long(file.size()));

      TSurfDesc surface = make_surface();
      const pincel_status loaded_bmp = pincel_load_bmp(surface, data, file.size());
      EXPECT_TRUE(bmp == PINCEL_OK || loaded_bmp == bmp);
      const pincel_status loaded_jpg = pincel_load_jpg(surface, data, file.size());
      EXPECT_TRUE(jpg == PINCEL_OK || loaded_jpg == jpg);
      TGifFrame frame{};
      size_t before = 0;
      while (pincel_gif_frame(frame, data, file.size()) == PINCEL_OK) {
        ASSERT_EQ(gif, PINCEL_OK);
        ASSERT_GT(frame.offset, before);
        before = frame.offset;
        pincel_load_gif(surface, data, file.size(), frame);
      }
      LoadThrowing(surface, data, file.size());
      EXPECT_TRUE(surface_.FrontIsUntouched());
    }
  }

  static void LoadThrowing(TSurfDesc& surface, const uint8_t* data, size_t length) {
    const pincel_status status = pincel_load_jpg(surface, data, length);
    try {
      const bool loaded = LoadJPG(surface, const_cast<uint8_t*>(data), long(length));
      EXPECT_TRUE(!loaded || status == PINCEL_OK || status == PINCEL_SURFACE_TOO_SMALL) << status;
      EXPECT_NE(status, PINCEL_NOT_THIS_FORMAT);
    } catch (int) {
      EXPECT_NE(status, PINCEL_OK);
    }
  }

  template <class MakeSurface>
  void LoadFromArena(const ByteVector& file, MakeSurface make_surface) {
    TSurfDesc surface = make_surface();
    // Zeros end a frame's data; a trailer as the very last byte ends the search for another frame.
    for (bool indices_only : {false, true}) {
      if (indices_only && surface.bpp != 8) continue;
      uint8_t* const data = arena_.Put(file, 2048);
      *arena_.Last(1) = ';';
      TSurfDesc info{};
      CQXGIF gif;
      RAW frame;
      frame.width = frame.height = 0;
      if ((indices_only ? LoadInfoGIFAlpha : LoadInfoGIF)(info, data, gif, frame)) {
        while (LoadGIFNext(surface, data, gif, frame)) {
          (indices_only ? LoadGIFAlpha : LoadGIF)(surface, data, gif, frame);
        }
      }
      EXPECT_TRUE(LoadGIFEnd(info, data, gif, frame));
    }
    EXPECT_TRUE(surface_.FrontIsUntouched());

    // Run-length data is padded by its address.
    for (size_t odd : {0, 1}) {
      uint8_t* const data = arena_.Put(file, kZeros + odd);
      TSurfDesc info{};
      EXPECT_TRUE(LoadInfoBMP(info, data));
      EXPECT_TRUE(LoadInfoBMPAlpha(info, data));
      const bool fixed = data[0] == 'Q' && data[1] == 'X';
      const uint32_t pixels = data[10] | data[11] << 8 | data[12] << 16 | uint32_t{data[13]} << 24;
      // Such a loader follows the header wherever it points.
      if (!fixed && pixels > file.size() + kFarthestPixels) continue;
      EXPECT_TRUE(LoadBMP(surface, data));
      EXPECT_TRUE(surface.bpp != 8 || LoadBMPAlpha(surface, data));
    }
    EXPECT_TRUE(surface_.FrontIsUntouched());
  }

  GuardedMemory exact_{kLargestFile}, arena_{kLargestFile + kZeros + 1};
  GuardedSurface surface_{kLargestSurface};
};

// Also of 32-bit builds, and also where nothing but the memory's end guards.
TEST_F(HostileFiles, EveryDefect) {
  const auto start = std::chrono::steady_clock::now();
  for (const DefectFile& file : support::DefectFiles()) {
    SCOPED_TRACE(file.defect);
    LoadWithEverything(file.bytes, support::kDefectSurface, support::kDefectSurface);
    LoadWithEverything(file.bytes, 5, 3);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(120));
}

pincel_status StatusOf(const ByteVector& file, FileKind kind, int size) {
  Picture p;
  p.format = 24;
  p.width = p.height = size;
  p.pitch = size * 3;
  p.bytes.resize(size_t(p.pitch) * size_t(size));
  TSurfDesc surface = Describe(p);
  if (kind == FileKind::kBmp) return pincel_load_bmp(surface, file.data(), file.size());
  if (kind == FileKind::kJpeg) return pincel_load_jpg(surface, file.data(), file.size());
  TGifFrame frame{};
  const pincel_status found = pincel_gif_frame(frame, file.data(), file.size());
  return found != PINCEL_OK ? found : pincel_load_gif(surface, file.data(), file.size(), frame);
}

TEST(DefectFiles, AreReported) {
  for (const DefectFile& file : support::DefectFiles()) {
    EXPECT_EQ(StatusOf(file.bytes, file.kind, support::kDefectSurface), file.status) << file.defect;
  }
  for (const DefectFile& file : support::SoundFiles()) {
    EXPECT_EQ(StatusOf(file.bytes, file.kind, support::kDefectSurface), PINCEL_OK) << file.defect;
  }
}

TEST_F(HostileFiles, EveryTruncation) {
  for (const DefectFile& file : support::SoundFiles()) {
    SCOPED_TRACE(file.defect);
    for (size_t length = 0; length < file.bytes.size(); ++length) {
      LoadWithEverything({file.bytes.begin(), file.bytes.begin() + int(length)}, 12, 9);
    }
  }
}

// One byte at a time.
TEST_F(HostileFiles, ChangedBytes) {
  for (const DefectFile& file : support::SoundFiles()) {
    SCOPED_TRACE(file.defect);
    for (size_t i = 0; i < std::min<size_t>(file.bytes.size(), 100); ++i) {
      for (uint8_t value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        ByteVector changed = file.bytes;
        changed[i] = value;
        LoadWithEverything(changed, 12, 9);
      }
    }
  }
}

TEST_F(HostileFiles, RealOnes) {
  const auto start = std::chrono::steady_clock::now();
  int files = 0;
  for (const char* extension : {".gif", ".bmp", ".jpg"}) {
    for (const auto& path : support::FilesIn(PINCEL_SOURCE_DIR "/tests/data/hostile", extension)) {
      SCOPED_TRACE(path.filename().string());
      const ByteVector file = support::BytesOf(path);
      LoadWithEverything(file, 40, 40);
      LoadWithEverything(file, kLargestSurface, kLargestSurface);
      ++files;
    }
  }
  EXPECT_GT(files, 60);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(120));
}

TEST(DefectFiles, RealOnesAreReported) {
  const struct {
    const char* name;
    FileKind kind;
    pincel_status status;
  } cases[] = {{"gd-truncated.bmp", FileKind::kBmp, PINCEL_TRUNCATED},
               {"bmpsuite-badheadersize.bmp", FileKind::kBmp, PINCEL_UNSUPPORTED},
               {"bmpsuite-badwidth.bmp", FileKind::kBmp, PINCEL_CORRUPT},
               {"bmpsuite-badpalettesize.bmp", FileKind::kBmp, PINCEL_OK},
               {"gifconf-truncated_lzw.gif", FileKind::kGif, PINCEL_TRUNCATED},
               {"wuffs-hippopotamus.interlaced.truncated.gif", FileKind::kGif, PINCEL_TRUNCATED},
               {"wuffs-art-no-frames.gif", FileKind::kGif, PINCEL_NO_FRAME},
               {"pillow-decompression_bomb.gif", FileKind::kGif, PINCEL_CORRUPT},
               {"wuffs-art-zero-width-frame.gif", FileKind::kGif, PINCEL_OK},
               {"wuffs-peacock.default.truncated.jpg", FileKind::kJpeg, PINCEL_TRUNCATED}};
  for (const auto& c : cases) {
    const ByteVector file =
        support::BytesOf(PINCEL_SOURCE_DIR "/tests/data/hostile/" + std::string(c.name));
    EXPECT_EQ(StatusOf(file, c.kind, 1000), c.status) << c.name;
  }
}

}  // namespace
