#include "tests/model/draw_model.h"

#include <algorithm>

#include "tests/model/core_model.h"

namespace model {
namespace {

struct Area {
  int64_t left, top, right, bottom;
};

// Calls visit(x, y) for the cells of the area that lie inside the picture.
template <class Visit>
void ForEachCell(const Picture& p, const Area& a, Visit visit) {
  for (int64_t y = std::max<int64_t>(a.top, 0); y < a.bottom && y < p.height; ++y) {
    for (int64_t x = std::max<int64_t>(a.left, 0); x < a.right && x < p.width; ++x) visit(x, y);
  }
}

Area ToArea(const CRectangulo& r) { return {r.left, r.top, r.right, r.bottom}; }

void Fill(Picture& dst, const Area& area, uint32_t colour) {
  const uint32_t value = FillValue(dst.format, colour);
  ForEachCell(dst, area, [&](int64_t x, int64_t y) { dst.Put(x, y, value); });
}

// The last row, then the last column.
void Frame(Picture& dst, const Area& a, uint32_t colour) {
  Fill(dst, {std::min(a.left, a.right), a.bottom - 1, std::max(a.left, a.right), a.bottom}, colour);
  Fill(dst, {a.right - 1, std::min(a.top, a.bottom), a.right, std::max(a.top, a.bottom)}, colour);
}

bool Transparent(const Picture& src, uint32_t pixel) {
  if (src.key == 0xFFFFFFFF) return false;
  switch (src.BytesPerPixel()) {
    case 1:
      return pixel == 0;
    case 2:
      return pixel == src.key % 65536;
    default:
      return pixel % 16777216 == src.key % 16777216;
  }
}

uint32_t EntryValue(int format, const TRGBA& e) {
  switch (format) {
    case 24:
      return uint32_t(e.blue + e.green * 256 + e.red * 65536);
    case 32:
      return uint32_t(e.blue + e.green * 256 + e.red * 65536 + e.alpha * int64_t{16777216});
    default:
      return Pack(format, {e.red, e.green, e.blue});
  }
}

}  // namespace

void DrawBitmap(Picture& dst, const CRectangulo& rect, const Picture& src, CPunto at,
                const TRGBA* fallback) {
  const bool same_depth = dst.BytesPerPixel() == src.BytesPerPixel();
  if (!same_depth && src.format != 8) return;
  const TRGBA* const palette = src.has_palette ? src.palette.data() : fallback;
  const int64_t first_column = std::max(rect.left, 0);
  const int64_t width = std::min(rect.right, dst.width) - first_column;
  ForEachCell(dst, ToArea(rect), [&](int64_t x, int64_t y) {
    const int64_t from_x = at.x + (x - rect.left);
    const int64_t from_y = at.y + (y - rect.top);
    const uint32_t pixel = src.Get(from_x, from_y);
    if (Transparent(src, pixel)) return;
    if (!same_depth) {
      dst.Put(x, y, EntryValue(dst.format, palette[pixel]));
      return;
    }
    if (dst.format == 24 && src.key == 0xFFFFFFFF) {
      // An opaque row copies two bytes for each of its pixels, from the start of the row.
      for (int i = 0; i < 3; ++i) {
        if ((x - first_column) * 3 + i < width * 2) {
          dst.bytes.at(size_t(dst.Index(x, y) + i)) = src.Byte(from_x, from_y, i);
        }
      }
      return;
    }
    dst.Put(x, y, pixel);
  });
}

uint32_t FillValue(int format, uint32_t colour) {
  const int aa = int(colour / 16777216), rr = int(colour / 65536 % 256);
  const int gg = int(colour / 256 % 256), bb = int(colour % 256);
  switch (format) {
    case 8:
      return uint32_t(bb);
    case 16:
      return Pack(16, {rr, gg, bb});
    case 17:
    case 18:
      return Pack(format, {rr, gg, bb}) + (aa / 128 == 1 || aa % 2 == 1 ? 32768u : 0u);
    case 19:
      return Pack(19, {rr, gg, bb}) + uint32_t((aa / 16) | (aa % 16)) * 4096u;
    case 24:
      return colour % 16777216;
    default:
      return colour;
  }
}

void FillRect(Picture& dst, const CRectangulo& rect, uint32_t colour) {
  Fill(dst, ToArea(rect), colour);
}

void LineHorizontal(Picture& dst, CPunto p, int64_t length, uint32_t colour) {
  const int64_t x = p.x, y = p.y;
  Fill(dst, {std::min(x, x + length), y - 1, std::max(x, x + length), y}, colour);
}

void LineVertical(Picture& dst, CPunto p, int64_t length, uint32_t colour) {
  const int64_t x = p.x, y = p.y;
  Fill(dst, {x - 1, std::min(y, y + length), x, std::max(y, y + length)}, colour);
}

void FrameBottomRight(Picture& dst, const CRectangulo& rect, uint32_t colour) {
  Frame(dst, ToArea(rect), colour);
}

bool RectShadow(Picture& dst, const CRectangulo& rect, int step, int depth) {
  Area a = ToArea(rect);
  int countdown = depth;
  bool result = true;
  while (countdown > 0) {
    a = {a.left + 1, a.top + 1, a.right + 1, a.bottom + 1};
    Frame(dst, a, 0);
    result = false;  // what the frame reports
    countdown -= step;
    if (!result) break;
  }
  return result;
}

void DrawBlock(Picture& dst, const Picture& src, int sx, int sy, int dx, int dy, int w, int h) {
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) dst.Put(dx + x, dy + y, src.Get(sx + x, sy + y));
  }
}

}  // namespace model
