#include "tests/model/blend_model.h"

#include <algorithm>
#include <cstdlib>

#include "tests/model/core_model.h"

namespace model {
namespace {

bool Inside(const Picture& p, CPunto at) {
  return at.x >= 0 && at.x < p.width && at.y >= 0 && at.y < p.height;
}

int FloorDivide(int value, int by) { return value >= 0 ? value / by : -((-value + by - 1) / by); }

bool Supported(const Picture& p) { return p.format != 8; }
bool HasBytes(int format) { return format == 24 || format == 32; }

// Widths of blue, green and red in a 16-bit pixel, from bit 0 up.
struct Layout {
  int bits[3];
};
Layout LayoutOf(int format) {
  if (format == 16) return {{5, 6, 5}};
  if (format == 19) return {{4, 4, 4}};
  return {{5, 5, 5}};
}

// Calls channel(d, b, full) for the three fields of a pixel, where `full` is the number of values
// of the field, and puts the results together.
template <class Channel>
uint32_t ByField(int format, uint32_t dst, uint32_t src, Channel channel) {
  uint32_t result = 0, place = 1;
  for (int bits : LayoutOf(format).bits) {
    const int values = 1 << bits;
    const int d = int(dst / place) % values, b = int(src / place) % values;
    result += uint32_t(channel(d, b, values)) * place;
    place *= uint32_t(values);
  }
  return result;
}

// The same for the bytes of a pixel; `index` is 3 for the fourth one.
template <class Channel>
uint32_t ByByte(int format, uint32_t dst, uint32_t src, Channel channel) {
  uint32_t result = 0;
  for (int index = 0; index < format / 8; ++index) {
    const int d = int(dst >> (8 * index)) & 255, b = int(src >> (8 * index)) & 255;
    result |= uint32_t(channel(d, b, index)) << (8 * index);
  }
  return result;
}

bool KeepsFourthByte(Mode mode) {
  return mode == Mode::kLighten || mode == Mode::kDarken || mode == Mode::kOverlay;
}

int BlendedByte(Mode mode, int d, int b, int index) {
  return index == 3 && KeepsFourthByte(mode) ? d : BlendByte(mode, d, b);
}

int BlendedField(Mode mode, int d, int b, int values) {
  const int step = 256 / values;
  return BlendField(mode, d * step, b * step) / step;
}

bool Transparent(const Picture& src, uint32_t pixel) {
  const uint32_t key = src.key == 0xFFFFFFFF ? 0 : src.key;
  const uint32_t compared = HasBytes(src.format) ? 16777216 : 65536;
  return pixel % compared == key % compared;
}

}  // namespace

int BlendByte(Mode mode, int a, int b) {
  switch (mode) {
    case Mode::kAdd:
      return std::min(a + b, 255);
    case Mode::kSubtract:
      return std::max(a - b, 0);
    case Mode::kMultiply:
      return a * b / 256;
    case Mode::kScreen:
      return 255 - (255 - a) * (255 - b) / 256;
    case Mode::kLighten:
      return std::max(a, b);
    case Mode::kDarken:
      return std::min(a, b);
    case Mode::kOverlay:
      return a < 128 ? a * b / 128 : 255 - (255 - a) * (255 - b) / 128;
  }
  std::abort();
}

int BlendField(Mode mode, int a, int b) {
  switch (mode) {
    case Mode::kScreen:
      return 255 - (255 - a) * (255 - b) / 255;
    case Mode::kOverlay:
      return a < 128 ? 2 * a * b / 255 : 255 - 2 * (255 - a) * (255 - b) / 255;
    default:
      return BlendByte(mode, a, b);
  }
}

int MixByte(Mode mode, int d, int b, int t, int m) {
  const bool source_in_weight = mode == Mode::kAdd || mode == Mode::kSubtract;
  const int64_t weight = source_in_weight ? m + 256 * b : m;
  const int64_t word = ((t - d) * weight + 256 * d) % 65536;
  return int((word + 65536) % 65536 / 256);
}

int MixField(int d, int t, int m) { return d + FloorDivide((t - d) * m, 256); }

uint32_t BlendPixel(Mode mode, int format, uint32_t dst, uint32_t src) {
  if (HasBytes(format)) {
    return ByByte(format, dst, src,
                  [&](int d, int b, int index) { return BlendedByte(mode, d, b, index); });
  }
  return ByField(format, dst, src,
                 [&](int d, int b, int values) { return BlendedField(mode, d, b, values); });
}

uint32_t BlendMaskedPixel(Mode mode, int format, uint32_t dst, uint32_t src, int m) {
  if (HasBytes(format)) {
    return ByByte(format, dst, src, [&](int d, int b, int index) {
      return MixByte(mode, d, b, BlendedByte(mode, d, b, index), m);
    });
  }
  return ByField(format, dst, src, [&](int d, int b, int values) {
    return MixField(d, BlendedField(mode, d, b, values), m);
  });
}

uint32_t BlendColourPixel(int format, uint32_t colour) {
  if (HasBytes(format)) return colour;
  return Pack(format, {int(colour >> 16 & 255), int(colour >> 8 & 255), int(colour & 255)});
}

bool Blend(Mode mode, Picture& dst, const CRectangulo& rect, const Picture& src, CPunto at) {
  if (!Supported(dst) || !Inside(src, at)) return false;
  const Clipped c = Clip(dst.width, dst.height, rect);
  if (!c.visible) return false;
  for (int64_t y = c.box.top; y < c.box.bottom; ++y) {
    for (int64_t x = c.box.left; x < c.box.right; ++x) {
      const uint32_t s = src.Get(at.x + x - rect.left, at.y + y - rect.top);
      if (Transparent(src, s)) continue;
      dst.Put(x, y, BlendPixel(mode, dst.format, dst.Get(x, y), s));
    }
  }
  return true;
}

bool BlendColour(Mode mode, Picture& dst, const CRectangulo& rect, uint32_t colour,
                 const Picture& mask, CPunto mask_at) {
  if (!Supported(dst) || !Inside(mask, mask_at)) return false;
  const Clipped c = Clip(dst.width, dst.height, rect);
  if (!c.visible) return false;
  const uint32_t s = BlendColourPixel(dst.format, colour);
  for (int64_t y = c.box.top; y < c.box.bottom; ++y) {
    for (int64_t x = c.box.left; x < c.box.right; ++x) {
      const int m = mask.Byte(mask_at.x + x - rect.left, mask_at.y + y - rect.top, 0);
      if (m == 0) continue;
      dst.Put(x, y, BlendMaskedPixel(mode, dst.format, dst.Get(x, y), s, m));
    }
  }
  return true;
}

bool BlendMasked(Mode mode, Picture& dst, const CRectangulo& rect, const Picture& src,
                 CPunto src_at, const Picture& mask, CPunto mask_at) {
  if (!Supported(dst)) return false;
  const Clipped c = Clip(dst.width, dst.height, rect);
  if (!c.visible) return false;
  for (int64_t y = c.box.top; y < c.box.bottom; ++y) {
    for (int64_t x = c.box.left; x < c.box.right; ++x) {
      const int m = mask.Byte(mask_at.x + x - rect.left, mask_at.y + y - rect.top, 0);
      if (m == 0) continue;
      const uint32_t s = src.Get(src_at.x + x - rect.left, src_at.y + y - rect.top);
      dst.Put(x, y, BlendMaskedPixel(mode, dst.format, dst.Get(x, y), s, m));
    }
  }
  return true;
}

}  // namespace model
