#include "tests/model/convert_model.h"

#include <algorithm>

#include "tests/model/core_model.h"

namespace model {
namespace {

constexpr uint32_t kNone = 0xFFFFFFFF;

bool Is16(int format) { return format >= 16 && format <= 19; }

template <class Visit>
void ForEachPixel(const Picture& p, Visit visit) {
  for (int64_t y = 0; y < p.height; ++y) {
    for (int64_t x = 0; x < p.width; ++x) visit(x, y);
  }
}

Colour LowBytes(uint32_t number) {  // 0x??RRGGBB
  return {int(number / 65536 % 256), int(number / 256 % 256), int(number % 256)};
}

uint32_t Number(Colour c) { return uint32_t(c.red * 65536 + c.green * 256 + c.blue); }

uint32_t Word32(const TRGBA& e) { return Number({e.red, e.green, e.blue}) + e.alpha * 16777216u; }

// From 8 bits: the pixel for an entry, or for a grey level when there is no palette.
uint32_t ExpandedEntry(int to, const TRGBA& e) {
  const Colour c = {e.red, e.green, e.blue};
  switch (to) {
    case 16:
      return Pack(16, c);
    case 17:
    case 18:
      return Pack(17, c) + e.alpha / 128 * 32768u;
    case 19:
      return Pack(19, c) + 0xF000;
    case 24:
      return Number(c);
    default:
      return Number(c) + 0xFF000000;
  }
}
uint32_t ExpandedGrey(int to, int level) {
  const Colour c = {level, level, level};
  switch (to) {
    case 24:
      return Number(c);
    case 32:
      return Number(c) + 0xFF000000;
    default:
      return Pack(to, c);
  }
}

void Expand(Picture& dst, const Picture& src) {
  ForEachPixel(src, [&](int64_t x, int64_t y) {
    const uint32_t i = src.Get(x, y);
    dst.Put(x, y,
            src.has_palette ? ExpandedEntry(dst.format, src.palette[i])
                            : ExpandedGrey(dst.format, int(i)));
  });
  const TRGBA first = src.palette[0];
  const Colour colour = {first.red, first.green, first.blue};
  if (src.key == kNone) {
    if (dst.format != 32) dst.key = kNone;  // at 32 bits the key stays what it was
    return;
  }
  switch (dst.format) {
    case 16:
      dst.key = src.has_palette ? Pack(16, colour) : 0;
      break;
    case 17:
      dst.key = src.has_palette ? ExpandedEntry(17, first) : 0;
      break;
    case 18:
      dst.key = src.has_palette ? Pack(18, colour) + 0x8000 : 0x8000;
      break;
    case 19:
      dst.key = src.has_palette ? Pack(19, colour) + 0xF000 : 0xF000;
      break;
    case 24:
      dst.key = src.has_palette ? Word32(first) : 0;
      break;
    case 32:
      if (dst.alpha_mask == 0) {
        dst.key = src.key;
      } else {
        dst.key = src.has_palette ? Number(colour) + 0xFF000000 : 0xFF000000;
      }
      break;
  }
}

// To 8 bits.
void Reduce(Picture& dst, const Picture& src, uint32_t mode) {
  if (mode < 1 || mode > 4) return;
  const bool keyed = src.key != kNone;
  if (mode != 1) {
    ForEachPixel(src, [&](int64_t x, int64_t y) {
      const uint32_t pixel = src.Get(x, y);
      Colour c;
      bool transparent;
      if (Is16(src.format)) {
        c = Unpack(src.format, pixel);
        transparent = keyed && src.key == (UnpackedNumber(src.format, pixel) ^ 0x00FFFFFFu);
      } else {
        c = {int(pixel % 256), int(pixel / 256 % 256), int(pixel / 65536 % 256)};  // exchanged
        transparent = keyed && src.key == pixel % 16777216;
      }
      int index = 0;
      if (transparent) {
        index = 0;
      } else if (mode == 2) {
        index = Nearest(dst.palette.data(), c);
      } else if (mode == 3) {
        index = c.red / 32 * 32 + c.green / 32 * 4 + c.blue / 64;
      } else {
        index = 42 * (c.red * 6 / 256) + 6 * (c.green * 7 / 256) + c.blue * 6 / 256;
      }
      dst.Put(x, y, uint32_t(index));
    });
  }
  dst.key = keyed ? 0 : kNone;
}

// 16 bits to 24 or 32.
void Widen(Picture& dst, const Picture& src) {
  ForEachPixel(src, [&](int64_t x, int64_t y) {
    const uint32_t word = src.Get(x, y);
    uint32_t alpha = 255;
    if (src.format == 18) alpha = 0;
    if (src.format == 19) alpha = word / 4096 * 16;
    const uint32_t colour = Number(Unpack(src.format, word));
    dst.Put(x, y, dst.format == 32 ? colour + alpha * 16777216u : colour);
  });
  dst.key = kNone;
  if (src.key != kNone) {
    dst.key = UnpackedNumber(src.format, src.key);
    if (dst.format == 32 && dst.alpha_mask != 0) dst.key |= 0xFF000000;
  }
}

// 24 or 32 bits to 16.
void Narrow(Picture& dst, const Picture& src) {
  ForEachPixel(src, [&](int64_t x, int64_t y) {
    uint32_t word = Pack(dst.format, LowBytes(src.Get(x, y)));
    if (dst.format != 16) {
      const uint32_t next = src.Byte(x, y, 3);  // at 24 bits not of this pixel
      word += dst.format == 19 ? next / 16 * 4096 : next / 128 * 32768;
    }
    dst.Put(x, y, word);
  });
  dst.key = kNone;
  if (src.key != kNone) {
    dst.key = Pack(dst.format, LowBytes(src.key));
    if (dst.format == 18) dst.key += 0x8000;
    if (dst.format == 19) dst.key += 0xF000;
  }
}

}  // namespace

void Convert(Picture& dst, const Picture& src, uint32_t mode) {
  const int to = dst.format, from = src.format;
  if (to == 8 && from == 8) return Convert8To8(dst, src);
  if (to == 8) return Reduce(dst, src, mode);
  if (from == 8) return Expand(dst, src);
  if (to == from) {
    CopyImage(dst, src);
    dst.key = src.key;
    return;
  }
  if (Is16(to) && Is16(from)) return Repack(dst, src, from == 18 && to != 17 ? 17 : from, to);
  if (Is16(from)) return Widen(dst, src);
  if (Is16(to)) return Narrow(dst, src);
  if (to == 32) return Convert24To32(dst, src);
  Convert32To24(dst, src);
}

void CopyImage(Picture& dst, const Picture& src) {
  if (dst.pitch == src.pitch) {
    const int64_t bytes = int64_t{src.height} * src.pitch / 4 * 4;
    for (int64_t i = 0; i < bytes; ++i) {
      dst.bytes.at(size_t(dst.origin + i)) = src.bytes.at(size_t(src.origin + i));
    }
    return;
  }
  int64_t to = dst.origin, from = src.origin;
  for (int y = 0; y < std::max(src.height, 1); ++y) {
    const int64_t run = (int64_t{src.width} + 3) / 4 * 4;
    for (int64_t i = 0; i < run; ++i) {
      dst.bytes.at(size_t(to + i)) = src.bytes.at(size_t(from + i));
    }
    to += run + dst.pitch - int64_t{src.width} * src.BytesPerPixel();
    from += run + src.pitch - int64_t{src.width} * src.BytesPerPixel();
  }
}

uint32_t Repacked(int from, int to, uint32_t w) {
  const uint32_t alpha4 = w / 4096, r4 = w / 256 % 16, g4 = w / 16 % 16, b4 = w % 16;
  const uint32_t r5 = from == 16 ? w / 2048 : w / 1024 % 32, b5 = w % 32;
  const uint32_t g5 = from == 16 ? w / 64 % 32 : w / 32 % 32;  // of six bits the upper five
  switch (from * 100 + to) {
    case 1617:
      return r5 * 1024 + g5 * 32 + b5;
    case 1618:
      return r5 * 1024 + g5 * 32 + b5 + 0x8000;
    case 1619:
      return r5 / 2 * 256 + g5 / 2 * 16 + b5 / 2 + 0xF000;
    case 1716:
      return r5 * 2048 + g5 * 64 + b5;
    case 1718:
      return w % 0x8000 + 0x8000;
    case 1719:
      return r5 / 2 * 256 + g5 / 2 * 16 + b5 / 2;
    case 1817:
      return r5 / 2 * 256 + g5 / 2 * 16 + b5 / 2;
    case 1916:
      return r4 * 4096 + g4 * 128 + b4 * 2;
    default:
      return r4 * 2048 + g4 * 64 + b4 * 2 + alpha4 / 8 * 0x8000;
  }
}

void Repack(Picture& dst, const Picture& src, int from, int to) {
  ForEachPixel(src,
               [&](int64_t x, int64_t y) { dst.Put(x, y, Repacked(from, to, src.Get(x, y))); });
  dst.key = Pack(to, Unpack(from, src.key));
  if (to == 18) dst.key += 0x8000;
  if (to == 19) dst.key += 0xF000;
}

void Convert24To32(Picture& dst, const Picture& src) {
  for (int64_t y = 0; y < std::max(src.height, 1); ++y) {
    for (int64_t x = 0; x < std::max(src.width, 1); ++x) dst.Put(x, y, src.Get(x, y) + 0xFF000000);
  }
  dst.key = dst.alpha_mask != 0 ? src.key | 0xFF000000 : src.key;
}

void Convert32To24(Picture& dst, const Picture& src) {
  for (int64_t y = 0; y < std::max(src.height, 1); ++y) {
    for (int64_t x = 0; x < std::max(src.width, 1); ++x) dst.Put(x, y, src.Get(x, y));
  }
  dst.key = src.key;
}

void Convert8To8(Picture& dst, const Picture& src) {
  dst.key = src.key;
  uint32_t remap[256];
  for (int i = 0; i < 256; ++i) {
    const TRGBA& e = src.palette[size_t(i)];
    remap[i] = uint32_t(Nearest(dst.palette.data(), {e.red, e.green, e.blue}));
  }
  ForEachPixel(src, [&](int64_t x, int64_t y) { dst.Put(x, y, remap[src.Get(x, y)]); });
}

}  // namespace model
