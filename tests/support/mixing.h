// What the tests of mixing, masks and fades share: tables, palettes, placed sources, and the
// comparison of model and library.
#ifndef TESTS_SUPPORT_MIXING_H_
#define TESTS_SUPPORT_MIXING_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "include/pincel.h"
#include "tests/model/core_model.h"
#include "tests/model/picture.h"
#include "tests/support/compare.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace support {

// Replaces lu_gPaleta, and puts the old one back.
class GlobalPalette {
 public:
  explicit GlobalPalette(const std::array<TRGBA, 256>& entries) : entries_(entries) {
    std::memcpy(before_.data(), lu_gPaleta, sizeof(before_));
    std::memcpy(lu_gPaleta, entries.data(), sizeof(entries));
  }
  ~GlobalPalette() {
    EXPECT_EQ(std::memcmp(lu_gPaleta, entries_.data(), sizeof(entries_)), 0);
    std::memcpy(lu_gPaleta, before_.data(), sizeof(before_));
  }
  GlobalPalette(const GlobalPalette&) = delete;
  GlobalPalette& operator=(const GlobalPalette&) = delete;

 private:
  std::array<TRGBA, 256> entries_, before_;
};

inline std::array<TRGBA, 256> RandomEntries(Random& random) {
  std::array<TRGBA, 256> entries;
  for (TRGBA& e : entries) e = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  return entries;
}

// Two planes on the heap, passed to the operations as the host does.
class Table {
 public:
  Table() : planes_(new Planes()) {}
  explicit Table(Random& random) : Table() {
    for (auto& plane : planes_->bytes) {
      for (unsigned char& byte : plane) byte = static_cast<unsigned char>(random.Next());
    }
  }
  unsigned char (*Get() const)[65536] { return planes_->bytes; }
  void Set(int plane, int key, int index) const {
    planes_->bytes[plane][key] = static_cast<unsigned char>(index);
  }

 private:
  struct Planes {
    unsigned char bytes[2][65536] = {};
  };
  std::unique_ptr<Planes> planes_;
};

// A second picture for a rectangle, and the point of it that belongs to the rectangle's corner.
struct Placed {
  model::Picture picture;
  CPunto at;
};

// Just large enough for the visible part of `rect`, and a few pixels more here and there. The point
// mostly lies outside the picture when the rectangle is cut at the left or at the top.
inline Placed PlacedPicture(Random& random, const model::Picture& dst, const CRectangulo& rect,
                            int format) {
  const model::Clipped area = model::Clip(dst.width, dst.height, rect);
  const int width = area.visible ? int(area.box.right - area.box.left) : random.Below(3);
  const int height = area.visible ? int(area.box.bottom - area.box.top) : random.Below(3);
  const int x = random.Below(4), y = random.Below(3);
  const int more_x = random.Below(3), more_y = random.Below(2);
  Placed placed;
  placed.picture =
      RandomPicture(random, format, x + width + more_x, y + height + more_y, AnyOptions(random));
  placed.at = {int(x - area.moved_x), int(y - area.moved_y)};
  if (!area.visible) placed.at = {random.Between(-99, 99), random.Between(-99, 99)};
  return placed;
}

// A source for `dst`: of its format, of another 16-bit packing when it has 16 bits, or with 8 bits
// and a palette of its own or none.
inline Placed PlacedSource(Random& random, const model::Picture& dst, const CRectangulo& rect) {
  int format = dst.format;
  if (random.OneIn(3)) {
    format = 8;
  } else if (dst.BytesPerPixel() == 2 && random.OneIn(4)) {
    format = 16 + random.Below(4);
  }
  Placed placed = PlacedPicture(random, dst, rect, format);
  if (format == 8 && random.OneIn(3)) placed.picture.has_palette = false;
  return placed;
}

// The levels with rules of their own, those next to them, and any other.
inline int AnyLevel(Random& random) {
  static constexpr int kLevels[] = {0,   1,   63,  64,  65,  127,   128,   129,   191,   192,
                                    193, 254, 255, 256, 257, 320,   384,   448,   510,   511,
                                    512, 767, 768, 896, 899, 32767, 32768, 40000, 65280, 65535};
  const int pick = random.Below(64), any = int(random.Next() % 65536);
  return pick < 32 ? kLevels[pick % 30] : pick < 56 ? any % 512 : any;
}

// The upper half of a colour is noise where there is one.
inline unsigned long Noisy(uint32_t colour) {
  return static_cast<unsigned long>(uint64_t{0x5EA51DE500000000} | colour);
}

// Runs the model once and the library on every instruction set, on copies of `dst`, and compares
// results and bytes; `inputs` must not change. Returns what the model made of `dst`.
template <class Model, class Library>
model::Picture Compared(const model::Picture& dst, std::initializer_list<model::Picture*> inputs,
                        Model&& model, Library&& library) {
  model::Picture expected = dst;
  const bool result = model(expected);
  std::vector<std::vector<uint8_t>> before;
  for (const model::Picture* input : inputs) before.push_back(input->bytes);
  ForEachTarget([&] {
    model::Picture actual = dst;
    TSurfDesc surface = model::Describe(actual);
    EXPECT_EQ(library(surface), result);
    EXPECT_TRUE(Same(expected, actual, surface));
  });
  size_t i = 0;
  for (const model::Picture* input : inputs) EXPECT_EQ(input->bytes, before[i++]);
  return expected;
}

}  // namespace support

#endif  // TESTS_SUPPORT_MIXING_H_
