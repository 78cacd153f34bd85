// Rellena: flood fill with a tolerance, along a fixed walk.
//
// A visited cell's mark is the set of its neighbours that are similar to the reference. Passes walk
// from marked cells to similar neighbours until a pass marks nothing new; every marked cell is
// painted. What the walk reaches depends on the order of its steps, so the order is part of the
// result.
#include <algorithm>
#include <bit>
#include <memory>
#include <new>
#include <utility>

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
  void Include(const Box& box) {
    left = std::min(left, box.left), right = std::max(right, box.right);
    top = std::min(top, box.top), bottom = std::max(bottom, box.bottom);
  }
};

// The marks, on a surface of the destination's size. A mark is open while one of the neighbours that
// it names is not marked: walks from other marks get nowhere, and marks are never taken back.
class Marks {
 public:
  Marks(const TSurfDesc& work, const TSurfDesc& dst)
      : work_(work), pitch_(work.pitch), width_(dst.width), height_(dst.height) {}

  uint8_t* At(int32_t x, int32_t y) const { return PixelAt<Indexed8>(work_, x, y); }
  ptrdiff_t Pitch() const { return pitch_; }

  // The first open mark of row y from column x to column `last`; behind `last` when there is none.
  int32_t NextOpen(int32_t x, int32_t y, int32_t last) const {
    while (x <= last) {
      if (0 < x && x < width_ - 8) {
        const uint64_t open = OpenAmongEight(x, y);
        if (open != 0) return x + std::countr_zero(open) / 8;
        x += 8;
      } else {
        if (IsOpen(x, y)) return x;
        ++x;
      }
    }
    return x;
  }

 private:
  bool IsOpen(int32_t x, int32_t y) const {
    const uint8_t* const mark = At(x, y);
    return ((*mark & kUp) != 0 && y > 0 && mark[-pitch_] == 0) ||
           ((*mark & kDown) != 0 && y + 1 < height_ && mark[pitch_] == 0) ||
           ((*mark & kLeft) != 0 && x > 0 && mark[-1] == 0) ||
           ((*mark & kRight) != 0 && x + 1 < width_ && mark[1] == 0);
  }

  static constexpr uint64_t kTopBits = 0x8080'8080'8080'8080;

  // The top bit of each byte that is 0.
  static uint64_t ZeroBytes(uint64_t bytes) {
    return ~(((bytes & ~kTopBits) + ~kTopBits) | bytes) & kTopBits;
  }

  // The same for the eight marks from column x on, as the top bits of eight bytes. There are marks on
  // both sides of them; where a row above or below is missing, no mark names it.
  uint64_t OpenAmongEight(int32_t x, int32_t y) const {
    const uint8_t* const mark = At(x, y);
    const uint64_t bits = LoadWord<uint64_t>(mark);
    if (bits == 0) return 0;
    const uint64_t up = y > 0 ? LoadWord<uint64_t>(mark - pitch_) : bits;
    const uint64_t down = y + 1 < height_ ? LoadWord<uint64_t>(mark + pitch_) : bits;
    const uint64_t left = LoadWord<uint64_t>(mark - 1);
    const uint64_t right = LoadWord<uint64_t>(mark + 1);
    static_assert(kUp << 7 == 0x80 && kDown << 6 == 0x80 && kRight << 5 == 0x80 &&
                  kLeft << 4 == 0x80);
    return (ZeroBytes(up) & bits << 7) | (ZeroBytes(down) & bits << 6) |
           (ZeroBytes(right) & bits << 5) | (ZeroBytes(left) & bits << 4);
  }

  const TSurfDesc& work_;
  ptrdiff_t pitch_;
  int32_t width_, height_;
};

// A segment of a row is settled once walks from all its marks got nowhere: until it gets a new mark
// they never will, and each pass would only visit the same cells there again. Fills that end after a
// few passes do without.
class Segments {
 public:
  static constexpr int32_t kWidth = 128;
  static int32_t LastColumn(int32_t x) { return x | (kWidth - 1); }

  void Allocate(int32_t width, int32_t height) {
    per_row_ = size_t(width - 1) / kWidth + 1;
    segments_.reset(new (std::nothrow) Segment[per_row_ * size_t(height)]);
  }
  // What a pass visits in the segment around a cell; null when that is not settled.
  const Box* Settled(int32_t x, int32_t y) const {
    const Segment* const segment = At(x, y);
    return segment != nullptr && segment->settled ? &segment->visited : nullptr;
  }
  void Settle(int32_t x, int32_t y, const Box& visited) {
    if (Segment* const segment = At(x, y)) *segment = {true, visited};
  }
  void Unsettle(int32_t x, int32_t y) {
    if (Segment* const segment = At(x, y)) segment->settled = false;
  }

 private:
  struct Segment {
    bool settled = false;
    Box visited;
  };
  Segment* At(int32_t x, int32_t y) const {
    return segments_ ? &segments_[size_t(y) * per_row_ + size_t(x) / kWidth] : nullptr;
  }

  size_t per_row_ = 0;
  std::unique_ptr<Segment[]> segments_;
};

template <class Format>
class FloodFill {
 public:
  FloodFill(const TSurfDesc& dst, const TSurfDesc& work, uint32_t tolerance, uint32_t reference)
      : dst_(dst),
        marks_(work, dst),
        width_(dst.width),
        height_(dst.height),
        pitch_(dst.pitch),
        tolerance_(tolerance),
        reference_(ToBgr(reference)) {}

  // Visits the start cell; whether anything around it is similar.
  bool Start(int32_t x, int32_t y) {
    const bool open = Visit(CellAt(x, y));
    whole_.Include(pass_);
    return open;
  }

  void Spread() {
    constexpr int kPassesBeforeSettling = 6;
    bool changed = true;
    for (int pass = 0; changed; ++pass) {
      changed = false;
      if (pass == kPassesBeforeSettling) segments_.Allocate(width_, height_);
      const Box scanned = pass_;
      pass_ = Box{};
      for (int32_t y = scanned.top; y <= scanned.bottom; ++y) {
        for (int32_t x = scanned.left, last; x <= scanned.right; x = last + 1) {
          last = std::min(Segments::LastColumn(x), scanned.right);
          if (ScanSegment(x, y, last)) changed = true;
        }
      }
      whole_.Include(pass_);
    }
  }

  void Paint(uint32_t colour) const {
    for (int32_t y = whole_.top; y <= whole_.bottom; ++y) {
      uint8_t* const row = PixelAt<Format>(dst_, 0, y);
      const uint8_t* const marks = marks_.At(0, y);
      for (int32_t x = whole_.left; x <= whole_.right; ++x) {
        if (marks[x] != 0) PaintPixel(row + ptrdiff_t{x} * Format::kBytes, ToBgr(colour));
      }
    }
  }

 private:
  // A place on the surface and on the marks.
  struct Cell {
    int32_t x, y;
    const uint8_t* pixel;
    uint8_t* mark;
  };
  Cell CellAt(int32_t x, int32_t y) const {
    return {x, y, PixelAt<Format>(dst_, x, y), marks_.At(x, y)};
  }
  Cell Above(const Cell& c) const {
    return {c.x, c.y - 1, c.pixel - pitch_, c.mark - marks_.Pitch()};
  }
  Cell Below(const Cell& c) const {
    return {c.x, c.y + 1, c.pixel + pitch_, c.mark + marks_.Pitch()};
  }
  Cell LeftOf(const Cell& c) const { return {c.x - 1, c.y, c.pixel - Format::kBytes, c.mark - 1}; }
  Cell RightOf(const Cell& c) const { return {c.x + 1, c.y, c.pixel + Format::kBytes, c.mark + 1}; }

  // One-sided: a channel brighter than the reference wraps around and counts as far away. Intended.
  bool Similar(const uint8_t* pixel) const {
    Bgr colour{0, 0, 0};  // what indexed pixels read as
    if constexpr (Format::kBytes == 2) colour = Format::Unpack(Format::Load(pixel));
    if constexpr (Format::kBytes > 2) colour = {pixel[0], pixel[1], pixel[2]};
    return uint32_t{uint8_t(reference_.blue - colour.blue)} +
               uint8_t(reference_.green - colour.green) + uint8_t(reference_.red - colour.red) <=
           tolerance_;
  }

  // Marks a cell; false when it was marked before or nothing around it is similar.
  bool Visit(const Cell& c) {
    if (*c.mark != 0) return false;
    unsigned bits = 0;
    if (c.y > 0) bits |= Similar(c.pixel - pitch_) ? kUp : 0u;
    if (c.y + 1 < height_) bits |= Similar(c.pixel + pitch_) ? kDown : 0u;
    if (c.x > 0) bits |= Similar(c.pixel - Format::kBytes) ? kLeft : 0u;
    if (c.x + 1 < width_) bits |= Similar(c.pixel + Format::kBytes) ? kRight : 0u;
    pass_.Include(c.x, c.y);
    if (bits == 0) return false;
    *c.mark = uint8_t(bits);
    segments_.Unsettle(c.x, c.y);
    return true;
  }
  bool Step(Cell& here, const Cell& there) {
    if (!Visit(there)) return false;
    // Walks through an even area go up and down whole columns, and each row is a cache line of its own.
    const ptrdiff_t ahead = ptrdiff_t{there.y - here.y} * 8;
    if (ahead != 0) {
      __builtin_prefetch(there.pixel + ahead * pitch_);
      __builtin_prefetch(there.mark + ahead * marks_.Pitch(), 1);
    }
    here = there;
    return true;
  }

  // Walks from every open mark between two columns of a segment; whether any walk moved.
  bool ScanSegment(int32_t x, int32_t y, int32_t last) {
    const bool whole =
        x % Segments::kWidth == 0 && (last == Segments::LastColumn(x) || last == width_ - 1);
    if (const Box* const visited = whole ? segments_.Settled(x, y) : nullptr) {
      pass_.Include(*visited);
      return false;
    }
    const Box before = std::exchange(pass_, Box{});
    bool changed = false;
    for (int32_t at = x; (at = marks_.NextOpen(at, y, last)) <= last; ++at) {
      if (Walk(CellAt(at, y))) changed = true;
    }
    if (whole && !changed) segments_.Settle(x, y, pass_);
    pass_.Include(before);
    return changed;
  }

  // Walks as far as it gets; whether it moved. All steps of a round follow the mark of the cell where
  // the round began, each from the cell reached so far: a step sideways after a step up or down
  // enters a diagonal neighbour, similar or not. Intended. (Behind a step up, a step down would lead
  // back to where the round began, behind a step left one to the right: these are left out.)
  bool Walk(Cell here) {
    bool walked = false;
    for (;;) {
      const uint8_t bits = *here.mark;
      bool moved = ((bits & kUp) != 0 && Step(here, Above(here))) ||
                   ((bits & kDown) != 0 && Step(here, Below(here)));
      if (((bits & kLeft) != 0 && Step(here, LeftOf(here))) ||
          ((bits & kRight) != 0 && Step(here, RightOf(here)))) {
        moved = true;
      }
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
  Marks marks_;
  int32_t width_, height_;
  ptrdiff_t pitch_;
  Segments segments_;
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
