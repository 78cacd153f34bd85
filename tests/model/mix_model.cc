#include "tests/model/mix_model.h"

#include <algorithm>

#include "tests/model/core_model.h"
#include "tests/model/draw_model.h"

namespace model {
namespace {

bool IsPacked16(int format) { return format >= 16 && format <= 19; }

int64_t PowerOfTwo(int exponent) { return int64_t{1} << exponent; }

int64_t ByteOf(int64_t word, int i) { return word / PowerOfTwo(8 * i) % 256; }

const TRGBA* PaletteOf(const Picture& src, const TRGBA* global) {
  return src.has_palette ? src.palette.data() : global;
}

// A channel of a 32- or 24-bit pixel at one level. `fourth` names the fourth byte of a 32-bit pixel,
// which has rules of its own when the source has a palette: `factor` holds its weight in the general
// case, and the quarter of the darker weight is left out at 192 and 64.
int64_t MixedByte(int64_t level, int64_t s, int64_t d, bool fourth_through_palette,
                  int64_t factor) {
  switch (level) {
    case 192:
      return s / 2 + s / 4 + (fourth_through_palette ? 0 : d / 4);
    case 128:
      return s / 2 + d / 2;
    case 64:
      return d / 2 + d / 4 + (fourth_through_palette ? 0 : s / 4);
    default:
      return Weighted(d, s, factor);
  }
}

enum class Place { kGroup, kRowEnd, kPalette };

// A field of a 16-bit pixel at one level.
int64_t MixedField(int format, int channel, int64_t level, int64_t s, int64_t d, Place place) {
  const bool blue = channel == 0;
  switch (level) {
    case 192:
      if (place == Place::kGroup && !blue) return (3 * s + d) / 4;
      return s / 2 + s / 4 + d / 4;
    case 128:
      if (place == Place::kGroup && !blue) return (s + d) / 2;
      if (place == Place::kRowEnd && format != 16) {
        const int64_t quarter = PowerOfTwo(FieldBits(format, channel) - 2);
        return d / 2 % quarter + s / 2 % quarter;
      }
      return s / 2 + d / 2;
    case 64:
      if (place == Place::kGroup && !blue) return (3 * d + s) / 4;
      return d / 2 + d / 4 + s / 4;
    default:
      break;
  }
  switch (place) {
    case Place::kGroup:
      return Weighted(d, s, level % 256);
    case Place::kRowEnd: {
      // The product is kept in 16 bits, with a sign.
      const int64_t product = Mod((s - d) * level + 32768, 65536) - 32768;
      return d + FloorDiv(product, 256);
    }
    default:
      return Weighted(s, d, level ^ 255);
  }
}

uint32_t MixedWord(int format, int64_t level, const Fields& s, const Fields& d, Place place) {
  Fields mixed;
  for (int c = 0; c < 3; ++c) {
    mixed[size_t(c)] = MixedField(format, c, level, s[size_t(c)], d[size_t(c)], place);
  }
  return JoinFields(format, mixed);
}

int64_t MixedIndex(const TRGBA& s, const TRGBA& d, int64_t factor) {
  return Key565(Mod(Weighted(d.red, s.red, factor), 256),
                Mod(Weighted(d.green, s.green, factor), 256),
                Mod(Weighted(d.blue, s.blue, factor), 256));
}

// What the mixes through an alpha picture share once the points of the visible corner are known.
struct Corner {
  Box box;
  int64_t alpha_x, alpha_y, src_x, src_y;
};

// A 32- or 24-bit pixel mixed with one factor on all its bytes.
uint32_t MixedBytes(int bytes, int64_t s, int64_t d, int64_t factor) {
  int64_t mixed = 0;
  for (int i = 0; i < bytes; ++i) {
    mixed += Weighted(ByteOf(d, i), ByteOf(s, i), factor) * PowerOfTwo(8 * i);
  }
  return uint32_t(mixed);
}

int64_t Scaled(int64_t a, int64_t level) { return a * level / 256 % 256; }

// `level` 256 leaves the alpha bytes as they are.
void MixAlpha16(Picture& dst, const Corner& at, const Picture& alpha, const Picture& src,
                int64_t level, const TRGBA* global) {
  const int64_t width = at.box.right - at.box.left;
  const int alpha_bytes = alpha.format == 8 ? 1 : 2;
  const bool indexed = src.format == 8;
  for (int64_t y = at.box.top; y < at.box.bottom; ++y) {
    const int64_t row = y - at.box.top;
    const auto alpha_of = [&](int64_t column) {
      const int64_t pixel = ReadAs(alpha, at.alpha_x + column, at.alpha_y + row, alpha_bytes);
      return Scaled(pixel % 256, level);
    };
    for (int64_t x = at.box.left; x < at.box.right; ++x) {
      const int64_t column = x - at.box.left;
      const int64_t a = alpha_of(column);
      if (a == 0) continue;
      const Fields d = SplitFields(dst.format, dst.Get(x, y));
      const int64_t pixel = ReadAs(src, at.src_x + column, at.src_y + row, indexed ? 1 : 2);
      if (indexed) {
        const Fields s = EntryFields(dst.format, PaletteOf(src, global)[pixel]);
        Fields mixed = s;
        for (size_t c = 0; c < 3 && a != 255; ++c) mixed[c] = Weighted(s[c], d[c], (a + 1) ^ 255);
        dst.Put(x, y, JoinFields(dst.format, mixed));
        continue;
      }
      bool copied = a == 255;
      if (alpha_bytes == 1 && column < width / 4 * 4) {
        const int64_t group = column / 4 * 4;
        for (int64_t i = 0; i < 4; ++i) copied = copied && alpha_of(group + i) == 255;
      }
      if (copied) {
        dst.Put(x, y, uint32_t(pixel));
        continue;
      }
      const Fields s = SplitFields(dst.format, pixel);
      Fields mixed;
      for (size_t c = 0; c < 3; ++c) mixed[c] = Weighted(d[c], s[c], alpha_bytes == 1 ? a : a + 1);
      dst.Put(x, y, JoinFields(dst.format, mixed));
    }
  }
}

int NearestBySquares(const TRGBA* palette, int64_t red, int64_t green, int64_t blue) {
  int chosen = 0;
  int64_t best = -1;
  for (int i = 0; i < 256; ++i) {
    const int64_t dr = red - palette[i].red;
    const int64_t dg = green - palette[i].green;
    const int64_t db = blue - palette[i].blue;
    const int64_t distance = dr * dr + dg * dg + db * db;
    if (best < 0 || distance < best) {
      best = distance;
      chosen = i;
    }
  }
  return chosen;
}

}  // namespace

int64_t FloorDiv(int64_t value, int64_t divisor) {
  return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

int64_t Mod(int64_t value, int64_t modulus) { return value - FloorDiv(value, modulus) * modulus; }

int64_t Weighted(int64_t to, int64_t from, int64_t factor) {
  return to + FloorDiv((from - to) * factor, 256);
}

int FieldBits(int format, int channel) {
  if (format == 16) return channel == 1 ? 6 : 5;
  return format == 19 ? 4 : 5;
}

Fields SplitFields(int format, int64_t word) {
  Fields fields;
  for (int c = 0; c < 3; ++c) {
    const int64_t size = PowerOfTwo(FieldBits(format, c));
    fields[size_t(c)] = word % size;
    word /= size;
  }
  return fields;
}

uint32_t JoinFields(int format, const Fields& fields) {
  int64_t word = 0;
  for (int c = 2; c >= 0; --c) {
    const int64_t size = PowerOfTwo(FieldBits(format, c));
    word = word * size + Mod(fields[size_t(c)], size);
  }
  return uint32_t(word);
}

Fields EntryFields(int format, const TRGBA& entry) {
  const std::array<int, 3> bytes = {entry.blue, entry.green, entry.red};
  Fields fields;
  for (int c = 0; c < 3; ++c) {
    fields[size_t(c)] = bytes[size_t(c)] / PowerOfTwo(8 - FieldBits(format, c));
  }
  return fields;
}

int64_t ReadAs(const Picture& p, int64_t x, int64_t y, int bytes) {
  int64_t value = 0;
  for (int i = bytes - 1; i >= 0; --i) {
    value = value * 256 + p.bytes.at(size_t(p.origin + y * p.pitch + x * bytes + i));
  }
  return value;
}

int64_t EntryWord(const TRGBA& e) {
  return e.blue + e.green * int64_t{256} + e.red * int64_t{65536} + e.alpha * int64_t{16777216};
}

int64_t Key565(int64_t red, int64_t green, int64_t blue) {
  return red / 8 * 2048 + green / 4 * 32 + blue / 8;
}

uint8_t Dithered(MixPlanes table, int64_t x, int64_t y, int64_t key) {
  return table[(x + y + 1) % 2][key];
}

bool DrawMix(Picture& dst, const CRectangulo& rect, int64_t level, const Picture& src, CPunto at,
             MixPlanes table, const TRGBA* global) {
  if (dst.format == 8) return DrawMix8Bits(dst, rect, level, src, at, table, global);
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  const bool indexed = src.format == 8;
  const TRGBA* const palette = PaletteOf(src, global);
  const int bytes = dst.BytesPerPixel();
  const int64_t width = area.box.right - area.box.left;
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    int64_t previous_blue = 0;
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t column = x - area.box.left;
      const int64_t pixel =
          ReadAs(src, at.x + (x - rect.left), at.y + (y - rect.top), indexed ? 1 : bytes);
      const int64_t d = dst.Get(x, y);
      if (IsPacked16(dst.format)) {
        const Place place = indexed                  ? Place::kPalette
                            : column < width / 4 * 4 ? Place::kGroup
                                                     : Place::kRowEnd;
        if (place == Place::kGroup && level % 256 == 255 && column < 4) {
          dst.Put(x, y, uint32_t(pixel));
          continue;
        }
        const Fields s =
            indexed ? EntryFields(dst.format, palette[pixel]) : SplitFields(dst.format, pixel);
        dst.Put(x, y, MixedWord(dst.format, level, s, SplitFields(dst.format, d), place));
        continue;
      }
      const int64_t s = indexed ? EntryWord(palette[pixel]) : pixel;
      int64_t mixed = 0;
      for (int i = 0; i < bytes; ++i) {
        const bool fourth_through_palette = indexed && i == 3;
        const int64_t factor = fourth_through_palette ? previous_blue : level % 256;
        mixed += MixedByte(level, ByteOf(s, i), ByteOf(d, i), fourth_through_palette, factor) *
                 PowerOfTwo(8 * i);
      }
      dst.Put(x, y, uint32_t(mixed));
      previous_blue = mixed % 256;
    }
  }
  return true;
}

bool DrawMix8Bits(Picture& dst, const CRectangulo& rect, int64_t level, const Picture& src,
                  CPunto at, MixPlanes table, const TRGBA* global) {
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t s = ReadAs(src, at.x + (x - rect.left), at.y + (y - rect.top), 1);
      const int64_t key = MixedIndex(global[s], global[dst.Get(x, y)], level);
      dst.Put(x, y, Dithered(table, x, y, key));
    }
  }
  return true;
}

bool DrawMixAlpha(Picture& dst, const CRectangulo& rect, const Picture& alpha, CPunto alpha_at,
                  const Picture& src, CPunto src_at, MixPlanes table, const TRGBA* global) {
  if (dst.format == 8) {
    return DrawMixAlpha8Bits(dst, rect, alpha, alpha_at, src, src_at, table, global);
  }
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return IsPacked16(dst.format);
  const Corner at = {area.box, alpha_at.x + area.moved_x, alpha_at.y + area.moved_y,
                     src_at.x + area.moved_x, src_at.y + area.moved_y};
  if (IsPacked16(dst.format)) {
    MixAlpha16(dst, at, alpha, src, 256, global);
    return true;
  }
  const bool indexed = src.format == 8;
  const int bytes = dst.BytesPerPixel();
  for (int64_t y = at.box.top; y < at.box.bottom; ++y) {
    for (int64_t x = at.box.left; x < at.box.right; ++x) {
      const int64_t column = x - at.box.left, row = y - at.box.top;
      const int64_t a = ReadAs(alpha, at.alpha_x + column, at.alpha_y + row, 1);
      if (a == 0) continue;
      const int64_t pixel = ReadAs(src, at.src_x + column, at.src_y + row, indexed ? 1 : bytes);
      const int64_t s = indexed ? EntryWord(PaletteOf(src, global)[pixel]) : pixel;
      dst.Put(x, y, a == 255 ? uint32_t(s) : MixedBytes(bytes, s, dst.Get(x, y), a + 1));
    }
  }
  return true;
}

bool DrawMixAlpha8Bits(Picture& dst, const CRectangulo& rect, const Picture& alpha, CPunto alpha_at,
                       const Picture& src, CPunto src_at, MixPlanes table, const TRGBA* global) {
  if (src.format != 8) return false;
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t across = x - rect.left, down = y - rect.top;
      const int64_t a = ReadAs(alpha, alpha_at.x + across, alpha_at.y + down, 1);
      if (a == 0) continue;
      const int64_t s = ReadAs(src, src_at.x + across, src_at.y + down, 1);
      if (a == 255) {
        dst.Put(x, y, uint32_t(s));
        continue;
      }
      const int64_t key = MixedIndex(global[s], global[dst.Get(x, y)], a + 1);
      dst.Put(x, y, Dithered(table, x, y, key));
    }
  }
  return true;
}

bool DrawMixScaledAlpha(Picture& dst, const CRectangulo& rect, const Picture& alpha,
                        CPunto alpha_at, const Picture& src, CPunto src_at, int64_t level,
                        const TRGBA* global) {
  if (dst.format == 8) return false;
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  if (IsPacked16(dst.format)) {
    const Corner at = {area.box, alpha_at.x + area.moved_x, alpha_at.y + area.moved_y,
                       src_at.x + area.moved_x, src_at.y + area.moved_y};
    MixAlpha16(dst, at, alpha, src, level, global);
    return true;
  }
  const int bytes = dst.BytesPerPixel();
  for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
    for (int64_t x = area.box.left; x < area.box.right; ++x) {
      const int64_t a = Scaled(
          ReadAs(alpha, alpha_at.x + (x - rect.left), alpha_at.y + (y - rect.top), 1), level);
      if (a == 0) continue;
      // From the column and the row that the point's y names, wherever the rectangle was cut.
      const int64_t s =
          ReadAs(src, src_at.y + (x - area.box.left), src_at.y + (y - area.box.top), bytes);
      dst.Put(x, y, a == 255 ? uint32_t(s) : MixedBytes(bytes, s, dst.Get(x, y), a));
    }
  }
  return true;
}

bool DrawMixAlphaOver(Picture& dst, const CRectangulo& rect, const Picture& alpha, CPunto alpha_at,
                      const Picture& src, CPunto src_at, const Picture& back, CPunto back_at,
                      MixPlanes table, const TRGBA* global) {
  DrawBitmap(dst, rect, back, back_at, global);
  return DrawMixAlpha(dst, rect, alpha, alpha_at, src, src_at, table, global);
}

bool DrawMixOver(Picture& dst, const CRectangulo& rect, int64_t level, const Picture& src,
                 CPunto src_at, const Picture& back, CPunto back_at, MixPlanes table,
                 const TRGBA* global) {
  DrawBitmap(dst, rect, back, back_at, global);
  return DrawMix(dst, rect, level, src, src_at, table, global);
}

void BuildMixTable(unsigned char (*table)[65536], const TRGBA* palette, bool dither) {
  for (int key = 0; key < 65536; ++key) {
    const Fields f = SplitFields(16, key);
    const int64_t blue = f[0] * 8 + f[0] / 4;
    const int64_t green = f[1] * 4 + f[1] / 16;
    const int64_t red = f[2] * 8 + f[2] / 4;
    const int nearest = NearestBySquares(palette, red, green, blue);
    const auto mirrored = [](int64_t wanted, int64_t got) {
      return std::clamp<int64_t>(2 * wanted - got, 0, 255);
    };
    const TRGBA& e = palette[nearest];
    table[0][key] = uint8_t(nearest);
    table[1][key] =
        uint8_t(dither ? NearestBySquares(palette, mirrored(red, e.red), mirrored(green, e.green),
                                          mirrored(blue, e.blue))
                       : nearest);
  }
}

}  // namespace model
