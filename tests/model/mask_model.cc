#include "tests/model/mask_model.h"

#include "tests/model/core_model.h"

namespace model {
namespace {

bool IsPacked16(int format) { return format >= 16 && format <= 19; }

int64_t ByteOf(int64_t word, int i) { return word / (int64_t{1} << (8 * i)) % 256; }

// The colour laid over every byte with the weight of the rest, `keep`, on the destination.
uint32_t Painted(int bytes, int64_t colour, int64_t d, int64_t keep) {
  int64_t painted = 0;
  for (int i = bytes - 1; i >= 0; --i) {
    painted = painted * 256 + Weighted(ByteOf(colour, i), ByteOf(d, i), keep);
  }
  return uint32_t(painted);
}

struct Shade {
  int64_t k;
  bool lighten;
};
Shade ShadeOf(int64_t m, int64_t level) {
  if (m < 128) return {(127 - m) * level / 128, false};
  return {(m - 128) * level / 128, true};
}

}  // namespace

bool DrawMask(Picture& dst, const CRectangulo& rect, const Picture& mask, CPunto mask_at,
              uint32_t colour, MixPlanes table, const TRGBA* global) {
  if (dst.format == 8) return DrawMask8Bits(dst, rect, mask, mask_at, colour, table, global);
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t m = ReadAs(mask, mask_at.x + (x - rect.left), mask_at.y + (y - rect.top),
                               mask.format == 32 ? 4 : 1) %
                        256;
      if (m == 0) continue;
      if (m == 255) {
        dst.Put(x, y, colour);
        continue;
      }
      const int64_t d = dst.Get(x, y);
      if (!IsPacked16(dst.format)) {
        dst.Put(x, y, Painted(dst.BytesPerPixel(), colour, d, m ^ 255));
        continue;
      }
      const Fields c = SplitFields(dst.format, colour);
      Fields painted = SplitFields(dst.format, d);
      for (size_t i = 0; i < 3; ++i) painted[i] = Weighted(c[i], painted[i], m ^ 255);
      dst.Put(x, y, JoinFields(dst.format, painted));
    }
  }
  return true;
}

bool DrawMask8Bits(Picture& dst, const CRectangulo& rect, const Picture& mask, CPunto mask_at,
                   uint32_t colour, MixPlanes table, const TRGBA* global) {
  if (mask.format != 8) return false;
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t m = ReadAs(mask, mask_at.x + (x - rect.left), mask_at.y + (y - rect.top), 1);
      if (m == 0) continue;
      const TRGBA& d = global[dst.Get(x, y)];
      const int64_t red = Mod(Weighted(d.red, ByteOf(colour, 2), m), 256);
      const int64_t green = Mod(Weighted(d.green, ByteOf(colour, 1), m), 256);
      const int64_t blue = Mod(Weighted(d.blue, ByteOf(colour, 0), m), 256);
      dst.Put(x, y, Dithered(table, x, y, Key565(red, green, blue)));
    }
  }
  return true;
}

bool MaskFillRect(Picture& dst, const CRectangulo& rect, uint32_t colour, int64_t level) {
  if (dst.format == 8) return false;
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  const int64_t low = level % 256;
  const int64_t width = area.box.right - area.box.left;
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t d = dst.Get(x, y);
      if (!IsPacked16(dst.format)) {
        dst.Put(x, y, Painted(dst.BytesPerPixel(), colour, d, low ^ 255));
        continue;
      }
      const bool in_group = x - area.box.left < width / 4 * 4;
      if (in_group && low == 255) {
        dst.Put(x, y, colour);
        continue;
      }
      const Fields c = SplitFields(dst.format, colour);
      Fields painted = SplitFields(dst.format, d);
      for (size_t i = 0; i < 3; ++i) {
        painted[i] = Weighted(painted[i], c[i], in_group ? low : level);
      }
      dst.Put(x, y, JoinFields(dst.format, painted));
    }
  }
  return true;
}

bool MaskFillRect8Bits(Picture& dst, const CRectangulo& rect, uint32_t colour, int64_t level,
                       MixPlanes table, const TRGBA* global) {
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  const int64_t weight = Mod(256 - level, 256);
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const TRGBA& e = global[dst.Get(x, y)];
      // The entry's first byte, its blue, meets the colour's red.
      const int64_t first = (e.blue * weight + ByteOf(colour, 2) * level) / 256 % 256;
      const int64_t second = (e.green * weight + ByteOf(colour, 1) * level) / 256 % 256;
      const int64_t third = (e.red * weight + ByteOf(colour, 0) * level) / 256 % 256;
      dst.Put(x, y, Dithered(table, x, y, Key565(first, second, third)));
    }
  }
  return true;
}

bool DrawBiMask(Picture& dst, int64_t level, const CRectangulo& rect, const Picture& mask,
                CPunto mask_at, MixPlanes table, const TRGBA* global) {
  if (IsPacked16(dst.format)) return false;
  if (dst.format == 8) return DrawBiMask8Bits(dst, level, rect, mask, mask_at, table, global);
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  for (int64_t y = area.box.bottom - 1; y >= area.box.top; --y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const Shade shade =
          ShadeOf(ReadAs(mask, mask_at.x + (x - rect.left), mask_at.y + (y - rect.top), 1), level);
      if (shade.k == 0) continue;
      const TRGBA& target = global[shade.lighten ? 255 : 0];
      uint8_t* const pixel = &dst.bytes.at(size_t(dst.Index(x, y)));
      if (shade.k >= 254) {
        pixel[0] = target.blue;
        pixel[1] = target.green;
        pixel[2] = target.red;
        continue;
      }
      const int64_t sum = (target.blue + pixel[0]) % 256;
      for (int i = 0; i < 3; ++i) pixel[i] = uint8_t((256 - shade.k) % 256);
      // At 24 bits this is the byte behind the pixel: the next one's blue, before its own turn.
      dst.bytes.at(size_t(dst.Index(x, y) + 3)) = uint8_t(dst.format == 32 ? sum : sum * sum / 256);
    }
  }
  return true;
}

bool DrawBiMask8Bits(Picture& dst, int64_t level, const CRectangulo& rect, const Picture& mask,
                     CPunto mask_at, MixPlanes table, const TRGBA* global) {
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  for (int64_t y = area.box.bottom - 1; y >= area.box.top; --y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const Shade shade =
          ShadeOf(ReadAs(mask, mask_at.x + (x - rect.left), mask_at.y + (y - rect.top), 1), level);
      if (shade.k == 0) continue;
      if (shade.k >= 254) {
        dst.Put(x, y, shade.lighten ? 255 : 0);
        continue;
      }
      const TRGBA& e = global[dst.Get(x, y)];
      const int64_t weight = 256 - shade.k;
      const int64_t added = shade.lighten ? 255 * shade.k : 0;
      // Sums of at most 65280; the first byte, the entry's blue, ends at the top of the key.
      const int64_t first = (e.blue * weight + added) / 256;
      const int64_t second = (e.green * weight + added) / 256;
      const int64_t third = (e.red * weight + added) / 256;
      dst.Put(x, y, table[0][Key565(first, second, third)]);
    }
  }
  return true;
}

}  // namespace model
