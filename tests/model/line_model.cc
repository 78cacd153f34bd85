#include "tests/model/line_model.h"

#include <algorithm>
#include <cmath>

#include "tests/model/core_model.h"

namespace model {
namespace {

// One rounding to single precision per operation, whatever the compiler would like better.
float Single(float value) {
  volatile float rounded = value;
  return rounded;
}
float Sum(float a, float b) { return Single(a + b); }
float Difference(float a, float b) { return Single(a - b); }
float Product(float a, float b) { return Single(a * b); }
float Quotient(float a, float b) { return Single(a / b); }

int Truncated(float value) { return int(value); }

// The part of a value that truncation toward zero takes away, with its sign.
float Fraction(float value) { return Difference(value, float(Truncated(value))); }

uint8_t BlendByte(int channel, int target, float weight) {
  const float kept = Product(float(channel), Difference(1.0f, weight));
  return uint8_t(Truncated(Sum(kept, Product(float(target), weight))));
}

struct Field {
  int low, width;
};
struct Fields {
  Field blue, green, red;
};

Fields FieldsOf(int format) {
  if (format == 16) return {{0, 5}, {5, 6}, {11, 5}};
  if (format == 19) return {{0, 4}, {4, 4}, {8, 4}};
  return {{0, 5}, {5, 5}, {10, 5}};
}

// Field units: the colour's byte keeps its top bits. The other bits of the word stay.
uint32_t BlendField(uint32_t word, Field field, int byte, int weight) {
  const int mask = (1 << field.width) - 1;
  const int d = int(word >> field.low) & mask;
  const int c = byte >> (8 - field.width);
  const int step = int16_t((c - d) * weight) >> 8;
  const int blended = (d + step) & mask;
  return (word & ~(uint32_t(mask) << field.low)) | (uint32_t(blended) << field.low);
}

}  // namespace

void Line(Picture& p, CPunto p1, CPunto p2, uint32_t colour, int alpha, bool soft, int thickness,
          const TRGBA* fallback) {
  const TRGBA target{uint8_t(colour), uint8_t(colour >> 8), uint8_t(colour >> 16), 0};
  const TRGBA* palette = p.has_palette ? p.palette.data() : fallback;
  const int level = std::min(alpha, 255);
  const float full = Quotient(float(level), 255.0f);

  // Blends one pixel with full coverage times `coverage`; the thickness run has no coverage.
  const auto blend = [&](int64_t x, int64_t y, const float* coverage) {
    if (p.format == 8) {
      const float weight = coverage ? Product(*coverage, full) : full;
      const TRGBA old = palette[p.Get(x, y)];
      const Colour mixed{BlendByte(old.red, target.red, weight),
                         BlendByte(old.green, target.green, weight),
                         BlendByte(old.blue, target.blue, weight)};
      p.Put(x, y, uint32_t(Nearest(palette, mixed)));
    } else if (p.format >= 24) {
      const float weight = coverage ? Product(*coverage, full) : full;
      const uint32_t old = p.Get(x, y);
      p.Put(x, y,
            (old & 0xFF000000) | uint32_t{BlendByte(int(old & 255), target.blue, weight)} |
                uint32_t{BlendByte(int(old >> 8 & 255), target.green, weight)} << 8 |
                uint32_t{BlendByte(int(old >> 16 & 255), target.red, weight)} << 16);
    } else {
      const int weight = coverage ? Truncated(Product(*coverage, float(level))) : level;
      const Fields fields = FieldsOf(p.format);
      uint32_t word = p.Get(x, y);
      word = BlendField(word, fields.blue, target.blue, weight);
      word = BlendField(word, fields.green, target.green, weight);
      word = BlendField(word, fields.red, target.red, weight);
      p.Put(x, y, word);
    }
  };

  const int64_t extent_x = std::abs(int64_t{p2.x} - p1.x);
  const int64_t extent_y = std::abs(int64_t{p2.y} - p1.y);
  const bool x_major = extent_x > extent_y;

  // Along the major axis from here on; the other axis is "across".
  int64_t from = x_major ? p1.x : p1.y, from_across = x_major ? p1.y : p1.x;
  int64_t to = x_major ? p2.x : p2.y, to_across = x_major ? p2.y : p2.x;
  if (from > to) {
    std::swap(from, to);
    std::swap(from_across, to_across);
  }
  const int64_t length = to - from == 0 ? 1 : to - from;
  const float slope = Quotient(float(to_across - from_across), float(length));
  const float intercept = Difference(float(from_across), Product(float(from), slope));

  const int64_t size = x_major ? p.width : p.height;
  const int64_t size_across = x_major ? p.height : p.width;
  to = std::min(to, size);
  from = std::max(from, int64_t{0});

  const auto plot = [&](int64_t along, int64_t across, const float* coverage) {
    if (x_major) {
      blend(along, across, coverage);
    } else {
      blend(across, along, coverage);
    }
  };
  for (int64_t along = from; along <= to; ++along) {
    const float across = Sum(Product(float(along), slope), intercept);
    if (across < 0 || across >= float(size_across)) continue;
    if (soft) {
      const float far_edge = Sum(across, float(thickness));
      const float far_coverage = std::fabs(Fraction(far_edge));
      plot(along, Truncated(far_edge), &far_coverage);
      const float near_edge = Difference(across, 1.0f);
      const float near_coverage = std::fabs(Difference(1.0f, Fraction(near_edge)));
      plot(along, Truncated(near_edge), &near_coverage);
    }
    for (int i = 0; i < thickness; ++i) {
      plot(along, Truncated(Sum(across, float(i))), nullptr);
    }
  }
}

}  // namespace model
