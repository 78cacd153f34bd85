#include "tests/model/blur_model.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tests/model/core_model.h"
#include "tests/model/mix_model.h"

namespace model {
namespace {

struct Place {
  int64_t x, y;
};

// The mask's byte for one pixel of the painted area, `corner` being the mask pixel that belongs to
// the area's first pixel.
int64_t Coverage(const Picture& mask, Place corner, int64_t column, int64_t row) {
  if (mask.format != 8 && mask.format != 32) return 0;
  const int64_t at = (corner.y + row) * mask.pitch + (corner.x + column) * mask.BytesPerPixel();
  if (mask.format == 8) {
    const int64_t row_start = row * mask.pitch;
    if (at < row_start || at >= row_start + mask.pitch) return 0;
  }
  // The memory of a mask is all of its rows, padding included.
  const int64_t last_row = int64_t{mask.height - 1} * mask.pitch;
  const int64_t first = std::min(int64_t{0}, last_row);
  const int64_t size = int64_t{mask.height} * std::abs(mask.pitch);
  if (mask.width < 1 || mask.height < 1 || at < first || at >= first + size) return 0;
  return mask.bytes.at(size_t(mask.origin + at));
}

// Points are 32-bit numbers: what the rectangle's cut adds to them wraps.
int64_t Moved(int64_t coordinate, int64_t by) {
  return Mod(coordinate + by + 0x80000000, 0x100000000) - 0x80000000;
}

// The nearest 32-bit number towards zero.
int64_t Truncated(double value) {
  return int64_t(std::trunc(std::min(std::max(value, -2147483648.0), 2147483647.0)));
}

// One position of the mask. `q` belongs to the corner of `rect`, of which `area` is to be painted.
void Paint(Picture& dst, const Picture& mask, const CRectangulo& rect, const Box& area, Place q,
           int64_t colour, int64_t step) {
  if (dst.format == 8) return;
  const Place corner{Moved(q.x, area.left - rect.left), Moved(q.y, area.top - rect.top)};
  for (int64_t y = area.top; y < area.bottom; ++y) {
    for (int64_t x = area.left; x < area.right; ++x) {
      const int64_t m = Coverage(mask, corner, x - area.left, y - area.top);
      const int64_t a = m * step % 65536 / 256;
      if (a == 0) continue;
      if (a == 255) {
        dst.Put(x, y, uint32_t(colour));
        continue;
      }
      if (dst.BytesPerPixel() == 2) {
        const Fields c = SplitFields(dst.format, colour);
        Fields d = SplitFields(dst.format, dst.Get(x, y));
        for (size_t i = 0; i < d.size(); ++i) d[i] = Weighted(c[i], d[i], 255 - a);
        dst.Put(x, y, JoinFields(dst.format, d));
        continue;
      }
      int64_t mixed = 0;
      for (int i = dst.BytesPerPixel() - 1; i >= 0; --i) {
        const int64_t c = colour >> (8 * i) & 255;
        mixed = mixed * 256 + Weighted(c, dst.Byte(x, y, i), 255 - a);
      }
      dst.Put(x, y, uint32_t(mixed));
    }
  }
}

// All positions of the mask along the line, the farthest one ahead first. `step_of(k)` is the
// strength k positions away from the middle.
template <class StepOf>
void PaintLine(Picture& dst, const Picture& mask, const CRectangulo& rect, const Box& area,
               CPunto at, uint32_t colour, int half, float angle, StepOf step_of) {
  const double direction = std::isfinite(angle) ? double{angle} : 0.0;
  const double across = float(std::cos(direction)), down = float(std::sin(direction));
  for (int64_t k = int64_t{half} - 1; k >= -half; --k) {
    const int64_t step = step_of(k);
    if (step == 0) continue;
    const Place q{Truncated(double(k) * across + at.x), Truncated(double(k) * down + at.y)};
    Paint(dst, mask, rect, area, q, colour, step);
  }
}

}  // namespace

bool MotionBlur(Picture& dst, const Picture& mask, const CRectangulo& rect, CPunto at,
                uint32_t colour, int length, float angle) {
  const Clipped clipped = Clip(dst.width, dst.height, rect);
  if (!clipped.visible || mask.width < 1 || mask.height < 1) return false;
  Box area = clipped.box;
  area.right = std::min(area.right, area.left + mask.width);
  area.bottom = std::min(area.bottom, area.top + mask.height);
  if (length < 2) return true;
  const int half = length / 2;
  PaintLine(dst, mask, rect, area, at, colour, half, angle, [&](int64_t) { return 256 / half; });
  return true;
}

bool GlowBlur(Picture& dst, const Picture& mask, const CRectangulo& rect, CPunto at,
              uint32_t colour, int length, float angle) {
  const Clipped clipped = Clip(dst.width, dst.height, rect);
  if (!clipped.visible) return true;
  if (length < 2) return false;
  PaintLine(dst, mask, rect, clipped.box, at, colour, length / 2, angle,
            [](int64_t k) { return 256 / std::max(int64_t{1}, std::abs(2 * k)); });
  return false;
}

bool MotionMask(Picture& dst, const Picture& mask, const CRectangulo& rect, CPunto at, int level) {
  const Clipped clipped = Clip(dst.width, dst.height, rect);
  if (!clipped.visible) return true;
  Paint(dst, mask, rect, clipped.box, {at.x, at.y}, 0xFFFFFF, Mod(level, 65536));
  return false;
}

}  // namespace model
