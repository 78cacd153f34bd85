// Run-length coded pictures as encoders make them, many short literals and runs, in memory that ends
// with the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "include/pincel.h"
#include "tests/model/bmp_model.h"
#include "tests/support/bmp_writer.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/guarded_memory.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Picture;
using support::BmpFile;
using support::ForEachCase;
using support::ForEachTarget;
using support::GuardedMemory;
using support::Random;
using support::RunLengthStream;
using support::Same;

std::vector<uint8_t> Literals(Random& random, int count) {
  std::vector<uint8_t> indices(size_t(count), 0);
  for (uint8_t& index : indices) index = random.Byte();
  return indices;
}

// Rows that are filled, most of them exactly, and end of their own.
RunLengthStream Encoded(Random& random, int width, int height, bool moves) {
  RunLengthStream stream;
  for (int y = 0; y < height; ++y) {
    int left = width;
    while (left > 0) {
      int count = random.Between(1, random.OneIn(10) ? 255 : random.OneIn(3) ? 70 : 18);
      if (count > left && !random.OneIn(20)) count = left;
      if (count >= 3 && random.OneIn(2)) {
        stream.Literal(Literals(random, count));
      } else if (moves && random.OneIn(30)) {
        count = std::min(count, left);
        stream.Delta(count, 0);
      } else {
        stream.Run(count, random.Byte());
      }
      left -= count;
    }
    stream.EndOfLine();
  }
  return stream.EndOfBitmap();
}

BmpFile FileOf(Random& random, int width, int height, const RunLengthStream& stream) {
  BmpFile file;
  file.width = width;
  file.height = random.OneIn(2) ? -height : height;
  file.compression = 1;
  file.table.resize(256);
  for (TRGBA& entry : file.table) {
    entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  }
  file.pixels = stream.Bytes();
  return file;
}

TEST(LoadBMP, EncodedPicturesMatchTheModel) {
  ForEachTarget([] {
    const GuardedMemory memory(1 << 18);
    ForEachCase(150, [&](Random& random, int) {
      const int width = random.Between(1, random.OneIn(4) ? 5000 : 700);
      const int height = random.Between(1, 9);
      const std::vector<uint8_t> bytes =
          FileOf(random, width, height, Encoded(random, width, height, true)).Bytes();
      // At an odd address what is behind the file is read for codes.
      uint8_t* const data = memory.Put(bytes, random.OneIn(3) ? 4095 : 0);
      for (int format : model::kFormats) {
        Picture expected =
            support::RandomPicture(random, format, width, height, support::AnyOptions(random));
        Picture actual = expected;
        TSurfDesc surface = model::Describe(actual);
        model::LoadBmp(expected, data, lu_gPaleta);
        ASSERT_TRUE(LoadBMP(surface, data));
        ASSERT_TRUE(Same(expected, actual, surface));
        if (format == 8) {
          model::LoadBmpAlpha(expected, data);
          ASSERT_TRUE(LoadBMPAlpha(surface, data));
          ASSERT_TRUE(Same(expected, actual, surface));
        }
      }
    });
  });
}

TEST(BoundedBmp, CutOffPicturesAreTheBeginningOfTheWholeOne) {
  constexpr uint8_t kOld = 0x5A;
  const GuardedMemory memory(1 << 16);
  ForEachTarget([&] {
    ForEachCase(4, [&](Random& random, int) {
      const int width = random.Between(100, 300), height = 3;
      BmpFile file = FileOf(random, width, height, Encoded(random, width, height, false));
      file.height = -height;
      const std::vector<uint8_t> bytes = file.Bytes();
      const size_t pixels = bytes.size() - file.pixels.size();
      for (const uint32_t depth : {8u, 32u}) {
        const size_t size = size_t(width) * size_t(height) * depth / 8;
        const auto load = [&](size_t length, std::vector<uint8_t>& picture) {
          picture.assign(size, kOld);
          TSurfDesc surface{};
          surface.width = width;
          surface.height = height;
          surface.bpp = depth;
          surface.pitch = width * int(depth / 8);
          surface.pixels = picture.data();
          return pincel_load_bmp(
              surface, memory.Put({bytes.begin(), bytes.begin() + ptrdiff_t(length)}), length);
        };
        std::vector<uint8_t> whole, part;
        ASSERT_EQ(load(bytes.size(), whole), PINCEL_OK);
        size_t decoded = 0;
        for (size_t length = pixels; length < bytes.size(); ++length) {
          const pincel_status status = load(length, part);
          ASSERT_EQ(status, part == whole ? PINCEL_OK : PINCEL_TRUNCATED) << length;
          size_t same = 0;
          while (same < size && part[same] == whole[same]) ++same;
          for (size_t i = same; i < size; ++i) ASSERT_EQ(part[i], kOld) << length << " " << i;
          ASSERT_GE(same, decoded);
          decoded = same;
        }
      }
    });
  });
}

}  // namespace
