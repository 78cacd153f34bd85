// Rellena: flood fill with a tolerance, along a fixed walk.
//
// A visited cell's mark is the set of its neighbours that are similar to the reference. Passes walk
// from marked cells to similar neighbours until a pass marks nothing new; every marked cell is
// painted. What the walk reaches depends on the order of its steps, so the order is part of the
// result.
#include <algorithm>

#include "surface/clip.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

constexpr uint8_t kUp = 1, kDown = 2, kRight = 4, kLeft = 8;

// The smallest box around the cells that were visited; all edges included.
struct Box {
  int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;

  void Include(int32_t x, int32_t y) {
    left = std::min(left, x), right = std::max(right, x);
    top = std::min(top, y), bottom = std::max(bottom, y);
  }
};

template <class Format>
class FloodFill {
 public:
  FloodFill(const TSurfDesc& dst, const TSurfDesc& marks, uint32_t tolerance, uint32_t reference)
      : dst_(dst), marks_(marks), tolerance_(tolerance), reference_(ToBgr(reference)) {}

  // Visits the start cell; whether anything around it is similar.
  bool Start(int32_t x, int32_t y) { return Visit(x, y); }

  void Spread() {
    bool changed = true;
    while (changed) {
      changed = false;
      const Box scanned = pass_;
      pass_ = Box{};
      for (int32_t y = scanned.top; y <= scanned.bottom; ++y) {
        for (int32_t x = scanned.left; x <= scanned.right; ++x) {
          if (Mark(x, y) != 0 && Walk(x, y)) changed = true;
        }
      }
    }
  }

  void Paint(uint32_t colour) const {
    for (int32_t y = whole_.top; y <= whole_.bottom; ++y) {
      for (int32_t x = whole_.left; x <= whole_.right; ++x) {
        if (Mark(x, y) != 0) PaintPixel(PixelAt<Format>(dst_, x, y), ToBgr(colour));
      }
    }
  }

 private:
  uint8_t& Mark(int32_t x, int32_t y) const { return *PixelAt<Indexed8>(marks_, x, y); }

  // One-sided: a channel brighter than the reference wraps around and counts as far away. Intended.
  bool Similar(int32_t x, int32_t y) const {
    if (!PointInSurface(dst_, {x, y})) return false;
    Bgr pixel{0, 0, 0};  // what indexed pixels read as
    if constexpr (Format::kBytes > 1) {
      pixel = Format::Unpack(Format::Load(PixelAt<Format>(dst_, x, y)));
    }
    return uint32_t{uint8_t(reference_.blue - pixel.blue)} +
               uint8_t(reference_.green - pixel.green) + uint8_t(reference_.red - pixel.red) <=
           tolerance_;
  }

  // Marks a cell; false when it was marked before or nothing around it is similar.
  bool Visit(int32_t x, int32_t y) {
    uint8_t& mark = Mark(x, y);
    if (mark != 0) return false;
    mark = uint8_t((Similar(x, y - 1) ? kUp : 0) | (Similar(x, y + 1) ? kDown : 0) |
                   (Similar(x - 1, y) ? kLeft : 0) | (Similar(x + 1, y) ? kRight : 0));
    pass_.Include(x, y);
    whole_.Include(x, y);
    return mark != 0;
  }

  // Walks as far as it gets; whether it moved. All steps of a round follow the mark of the cell where
  // the round began, each from the cell reached so far: a step sideways after a step up or down
  // enters a diagonal neighbour, similar or not. Intended.
  bool Walk(int32_t x, int32_t y) {
    bool walked = false;
    for (;;) {
      const uint8_t mark = Mark(x, y);
      bool moved = false;
      if ((mark & kUp) != 0 && Visit(x, y - 1)) --y, moved = true;
      if ((mark & kDown) != 0 && Visit(x, y + 1)) ++y, moved = true;
      if ((mark & kLeft) != 0 && Visit(x - 1, y)) --x, moved = true;
      if ((mark & kRight) != 0 && Visit(x + 1, y)) ++x, moved = true;
      if (!moved) return walked;
      walked = true;
    }
  }

  static void PaintPixel(uint8_t* pixel, Bgr colour) {
    if constexpr (PackedFields<Format>) {
      Format::Store(pixel, Format::Pack(colour));
    } else if constexpr (Format::kBytes > 1) {  // a fourth byte is kept
      Rgb888::Store(pixel, Rgb888::Pack(colour));
    }
  }

  const TSurfDesc& dst_;
  const TSurfDesc& marks_;
  uint32_t tolerance_;
  Bgr reference_;
  Box pass_, whole_;
};

}  // namespace
}  // namespace pincel

bool Rellena(TSurfDesc& dst, TSurfDesc& work, int x, int y, unsigned long tolerance,
             unsigned long reference, unsigned long colour) {
  using namespace pincel;
  return Dispatch(AllFormats{}, dst, false, [&](auto format) {
    if (!PointInSurface(dst, {x, y})) return true;
    FloodFill<decltype(format)> fill(dst, work, uint32_t(tolerance), uint32_t(reference));
    if (fill.Start(x, y) && uint32_t(reference) != uint32_t(colour)) fill.Spread();
    fill.Paint(uint32_t(colour));
    return true;
  });
}
