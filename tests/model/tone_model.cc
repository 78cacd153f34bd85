#include "tests/model/tone_model.h"

#include <algorithm>
#include <array>

#include "tests/model/core_model.h"

namespace model {
namespace {

bool IsPacked16(int format) { return format >= 16 && format <= 19; }

// Where the fields of a 16-bit pixel begin, as powers of two, from blue to what lies above red.
std::array<uint32_t, 4> FieldBorders(int format) {
  if (format == 16) return {1, 32, 2048, 65536};
  if (format == 19) return {1, 16, 256, 4096};
  return {1, 32, 1024, 32768};
}

uint32_t DarkenedFields(int format, uint32_t pixel, int factor) {
  const std::array<uint32_t, 4> borders = FieldBorders(format);
  uint32_t darkened = pixel / borders[3] * borders[3];
  for (size_t i = 0; i < 3; ++i) {
    const uint32_t field = pixel % borders[i + 1] / borders[i];
    darkened += field * uint32_t(factor) / 256 * borders[i];
  }
  return darkened;
}

uint8_t Scaled(uint8_t byte, int factor) { return uint8_t(byte * (factor % 256) / 256); }

// Whole units of four bytes of the buffer, padding included.
void ScaleBuffer(Picture& p, int factor) {
  for (int64_t i = 0; i < int64_t{p.height} * p.pitch / 4 * 4; ++i) {
    uint8_t& byte = p.bytes.at(size_t(p.origin + i));
    byte = Scaled(byte, factor);
  }
}

// The first three bytes of pixels of `unit` bytes.
void ScaleColours(Picture& p, int64_t unit, int factor) {
  for (int64_t y = 0; y < p.height; ++y) {
    for (int64_t x = 0; x < p.width; ++x) {
      for (int64_t i = 0; i < 3; ++i) {
        uint8_t& byte = p.bytes.at(size_t(p.origin + y * p.pitch + x * unit + i));
        byte = Scaled(byte, factor);
      }
    }
  }
}

// What a source pixel counts.
int Coverage(int format, uint32_t pixel) {
  if (format == 8 || format == 32) return int(pixel % 256);
  if (format == 24) return int(std::max({pixel % 256, pixel / 256 % 256, pixel / 65536}));
  const Colour c = Unpack(format, pixel);
  return std::max({c.red, c.green, c.blue});
}

struct Rule {
  int decay, limit;
  uint8_t Value(int m, int up, int up_left, int left) const {
    if (m >= 240) return uint8_t(m);
    const int t = (up + 2 * up_left + left) / 4 % 256;
    return uint8_t(t > decay && t - decay > m ? std::min(t - decay, limit) : m);
  }
};

// Every byte of the buffer from row 1, column 1 on, padding included, as far as the source's goes.
void SpreadIndexed(Picture& shadow, const Picture& src, const Rule& rule) {
  const auto at = [&](int64_t i) -> uint8_t& { return shadow.bytes.at(size_t(shadow.origin + i)); };
  const int64_t pitch = shadow.pitch;
  const int64_t end = std::min(shadow.height * pitch, int64_t{src.height} * src.pitch);
  for (int64_t i = pitch + 1; i < end; ++i) {
    at(i) = rule.Value(src.bytes.at(size_t(src.origin + i)), at(i - pitch), at(i - pitch - 1),
                       at(i - 1));
  }
}

// Pixel by pixel into a shadow of 8 bits; left of a row lies the byte before it.
void SpreadPixels(Picture& shadow, const Picture& src, const Rule& rule) {
  for (int64_t y = 1; y < shadow.height; ++y) {
    for (int64_t x = y == 1 ? 1 : 0; x < shadow.width; ++x) {
      const int m = Coverage(src.format, src.Get(x, y));
      shadow.Put(x, y,
                 rule.Value(m, shadow.Byte(x, y - 1, 0), shadow.Byte(x, y - 1, -1),
                            shadow.Byte(x, y, -1)));
    }
  }
}

// Into a shadow of 32 bits, both as one run of pixels from row 1, column 1 on.
void SpreadWords(Picture& shadow, const Picture& src, const Rule& rule) {
  const auto at = [&](int64_t i) -> uint8_t& { return shadow.bytes.at(size_t(shadow.origin + i)); };
  for (int64_t n = 0; n < int64_t{shadow.height - 1} * shadow.width - 1; ++n) {
    const int64_t to = shadow.pitch + 4 + 4 * n, above = to - shadow.pitch;
    const int m = Coverage(src.format, src.Get(n + 1, 1));
    const int up_left = at(above - 4) | at(above - 3) | at(above - 2);
    const int left = at(to - 4) | at(to - 3) | at(to - 2);
    at(to) = at(to + 1) = at(to + 2) = rule.Value(m, at(above), up_left, left);
  }
}

}  // namespace

void Darken(Picture& p, int factor) {
  if (factor >= 256) return;
  if (p.format == 8) {
    ScaleBuffer(p, factor);
  } else if (IsPacked16(p.format)) {
    // One run of pixels from the first on, whatever the pitch.
    for (int64_t x = 0; x < int64_t{p.width} * p.height; ++x) {
      p.Put(x, 0, DarkenedFields(p.format, p.Get(x, 0), factor));
    }
  } else {
    ScaleColours(p, p.BytesPerPixel(), factor);
    if (p.format == 24) return;
    for (int64_t y = 0; y < p.height; ++y) {
      for (int64_t x = 0; x < p.width; ++x) {
        uint8_t& fourth = p.bytes.at(size_t(p.Index(x, y) + 3));
        fourth = Scaled(fourth, p.height);
      }
    }
  }
}

bool FillGradient(Picture& p, uint32_t from, uint32_t to) {
  if (p.format == 8 || p.width == 0) return false;
  for (int64_t y = 0; y < p.height; ++y) {
    for (int64_t x = 0; x < p.width; ++x) {
      int channels[3];
      for (int i = 0; i < 3; ++i) {
        const auto first = int64_t(from >> (8 * i) & 255), last = int64_t(to >> (8 * i) & 255);
        const auto step = int64_t(double(last - first) / p.width * 65536);
        channels[i] = int((first * 65536 + x * step) / 65536);
      }
      const auto [blue, green, red] = channels;
      p.Put(x, y,
            IsPacked16(p.format) ? Pack(p.format, {red, green, blue})
                                 : uint32_t((red * 256 + green) * 256 + blue));
    }
  }
  return true;
}

bool CreateMask(Picture& mask, const Picture& src, int level) {
  if (src.format == 18 && mask.format != 18) return false;
  const uint32_t bits = src.format == 8 ? 0xFF : IsPacked16(src.format) ? 0xFFFF : 0xFFFFFF;
  const uint32_t transparent = src.key == 0xFFFFFFFF ? 0 : src.key & bits;
  for (int64_t y = 0; y < mask.height; ++y) {
    for (int64_t x = 0; x < mask.width; ++x) {
      const bool visible = (src.Get(x, y) & bits) != transparent;
      const auto value = uint8_t(level == 256 ? 255 : level);
      mask.bytes.at(size_t(mask.origin + y * mask.pitch + x)) = visible ? value : uint8_t{0};
    }
  }
  return true;
}

bool CreateShadow(Picture& shadow, const Picture& src, int decay, int limit, int factor) {
  if (src.format == 18 && shadow.format != 18) return false;
  if (src.format == 8 && shadow.format != 8) return false;
  const Rule rule{decay, limit};
  const bool words = shadow.format != 8;
  if (words) {
    SpreadWords(shadow, src, rule);
  } else if (src.format == 8) {
    SpreadIndexed(shadow, src, rule);
  } else {
    SpreadPixels(shadow, src, rule);
  }
  if (factor == 256) return true;
  if (words) {
    ScaleColours(shadow, 4, factor);
  } else {
    ScaleBuffer(shadow, factor);
  }
  return true;
}

}  // namespace model
