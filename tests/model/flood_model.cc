#include "tests/model/flood_model.h"

#include <algorithm>

#include "tests/model/core_model.h"

namespace model {
namespace {

struct Bounds {
  int left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;  // all included
  void Grow(int x, int y) {
    left = std::min(left, x), right = std::max(right, x);
    top = std::min(top, y), bottom = std::max(bottom, y);
  }
};

struct Fill {
  Picture& p;
  Picture& mask;
  uint32_t tolerance, reference;
  Bounds whole, pass;

  bool Matches(int x, int y) const {
    if (x < 0 || y < 0 || x >= p.width || y >= p.height) return false;
    const uint32_t word = p.Get(x, y);
    Colour pixel{0, 0, 0};  // at 8 bits, whatever is stored
    if (p.format >= 24) {
      pixel = {int(word >> 16 & 255), int(word >> 8 & 255), int(word & 255)};
    } else if (p.format >= 16) {
      pixel = Unpack(p.format, word);
    }
    const auto wrapped = [](uint32_t from, int byte) { return (from - uint32_t(byte)) % 256; };
    const uint32_t distance = wrapped(reference & 255, pixel.blue) +
                              wrapped(reference >> 8 & 255, pixel.green) +
                              wrapped(reference >> 16 & 255, pixel.red);
    return distance <= tolerance;
  }

  int Visit(int x, int y) {
    if (mask.Get(x, y) != 0) return -1;
    int bits = 0;
    if (Matches(x, y - 1)) bits |= 1;
    if (Matches(x, y + 1)) bits |= 2;
    if (Matches(x - 1, y)) bits |= 8;
    if (Matches(x + 1, y)) bits |= 4;
    mask.Put(x, y, uint32_t(bits));
    whole.Grow(x, y);
    pass.Grow(x, y);
    return bits;
  }

  // Returns whether the walk moved at all.
  bool Walk(int x, int y) {
    bool moved_ever = false;
    for (;;) {
      const uint32_t bits = mask.Get(x, y);
      bool moved = false;
      if ((bits & 1) && Visit(x, y - 1) >= 1) --y, moved = true;
      if ((bits & 2) && Visit(x, y + 1) >= 1) ++y, moved = true;
      if ((bits & 8) && Visit(x - 1, y) >= 1) --x, moved = true;
      if ((bits & 4) && Visit(x + 1, y) >= 1) ++x, moved = true;
      if (!moved) return moved_ever;
      moved_ever = true;
    }
  }
};

}  // namespace

void Flood(Picture& p, Picture& mask, int x, int y, uint32_t tolerance, uint32_t reference,
           uint32_t colour) {
  Fill fill{p, mask, tolerance, reference, {}, {}};
  bool changed = fill.Visit(x, y) >= 1 && reference != colour;
  while (changed) {
    changed = false;
    const Bounds scanned = fill.pass;
    fill.pass = Bounds{};
    for (int row = scanned.top; row <= scanned.bottom; ++row) {
      for (int column = scanned.left; column <= scanned.right; ++column) {
        if (mask.Get(column, row) != 0 && fill.Walk(column, row)) changed = true;
      }
    }
  }
  if (p.format == 8) return;
  for (int row = fill.whole.top; row <= fill.whole.bottom; ++row) {
    for (int column = fill.whole.left; column <= fill.whole.right; ++column) {
      if (mask.Get(column, row) == 0) continue;
      if (p.format < 24) {
        const Colour c{int(colour >> 16 & 255), int(colour >> 8 & 255), int(colour & 255)};
        p.Put(column, row, Pack(p.format, c));
      } else {
        const uint32_t fourth = p.format == 32 ? p.Get(column, row) & 0xFF000000 : 0;
        p.Put(column, row, (colour & 0xFFFFFF) | fourth);
      }
    }
  }
}

}  // namespace model
