#include "tests/model/stretch_model.h"

#include <algorithm>

#include "tests/model/core_model.h"

namespace model {
namespace {

constexpr int64_t kOne = 65536;  // in 16.16 fixed point

int64_t Address(const Picture& p, int64_t x, int64_t y, int64_t unit) {
  return p.origin + y * p.pitch + x * unit;
}

// A number divided by a power of two, rounded down.
int64_t Floor(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

void StretchNearest(Picture& dst, const Box& d, const Picture& src, const Box& s) {
  const int64_t unit = dst.BytesPerPixel();
  const double width = double(d.right - d.left), height = double(d.bottom - d.top);
  const auto step_x = float(double(s.right - s.left) / width);
  const auto step_y = float(double(s.bottom - s.top) / height);
  double at_y = 0;
  for (int64_t y = d.top; y < d.bottom; ++y, at_y += double{step_y}) {
    double at_x = 0;
    for (int64_t x = d.left; x < d.right; ++x, at_x += double{step_x}) {
      const int64_t from = Address(src, s.left + int64_t(at_x), s.top + int64_t(at_y), unit);
      for (int64_t i = 0; i < std::min(unit, int64_t{3}); ++i) {
        dst.bytes.at(size_t(Address(dst, x, y, unit) + i)) = src.bytes.at(size_t(from + i));
      }
    }
  }
}

// The source as the smooth stretch sees it one pixel beyond the rectangle: rows below the last are
// the last one; right of a row's end lies what follows in memory, and where that ends, behind the
// row that lies highest there, the row's last pixel.
int64_t Neighbour(const Picture& src, int64_t x, int64_t y, int64_t unit) {
  const int64_t row = std::min(y, int64_t{src.height} - 1);
  const int64_t highest = src.pitch < 0 ? 0 : src.height - 1;
  const int64_t column = row == highest ? std::min(x, int64_t{src.width} - 1) : x;
  return Address(src, column, row, unit);
}

void StretchSmooth(Picture& dst, const Box& d, const Picture& src, const Box& s) {
  const int64_t unit = dst.BytesPerPixel();
  const double width = double(d.right - d.left), height = double(d.bottom - d.top);
  const auto step_x = int64_t(double(s.right - s.left) / width * 65536.0);
  const auto step_y = int64_t(double(s.bottom - s.top) / height * 65536.0);
  for (int64_t j = 0; j < d.bottom - d.top; ++j) {
    for (int64_t i = 0; i < d.right - d.left; ++i) {
      const int64_t fx = i * step_x % kOne, fy = j * step_y % kOne;
      const int64_t x = s.left + i * step_x / kOne, y = s.top + j * step_y / kOne;
      const int64_t weights[] = {(65535 - fx) * (65535 - fy) / kOne, fx * (65535 - fy) / kOne,
                                 (65535 - fx) * fy / kOne, fx * fy / kOne};
      for (int64_t c = 0; c < 3; ++c) {
        int64_t sum = 0;
        for (int64_t n = 0; n < 4; ++n) {
          sum += weights[n] * src.bytes.at(size_t(Neighbour(src, x + n % 2, y + n / 2, unit) + c));
        }
        dst.bytes.at(size_t(Address(dst, d.left + i, d.top + j, unit) + c)) = uint8_t(sum / kOne);
      }
    }
  }
}

// a + (b - a) x weight, rounded down.
int64_t Between(int64_t a, int64_t b, int64_t weight) { return a + Floor((b - a) * weight, kOne); }

void Enlarge(Picture& dst, const Box& d, const Picture& src, const Box& s, int64_t unit) {
  const int64_t width = s.right - s.left, height = s.bottom - s.top;
  const int64_t step_x = width * kOne * kOne / ((d.right - d.left) * kOne);
  const int64_t step_y = height * kOne * kOne / ((d.bottom - d.top) * kOne);
  int64_t row = 0, fy = 0;
  for (int64_t y = d.top; y < d.bottom; ++y) {
    const int64_t below = row + 1 < height ? row + 1 : row;
    int64_t column = 0, fx = 0;
    for (int64_t x = d.left; x < d.right; ++x) {
      const int64_t right = column + 1 < width ? column + 1 : column;
      for (int64_t c = 0; c < 3; ++c) {
        const auto value = [&](int64_t at_x, int64_t at_y) {
          return kOne * src.bytes.at(size_t(Address(src, s.left + at_x, s.top + at_y, unit) + c));
        };
        const int64_t top = Between(value(column, row), value(right, row), fx);
        const int64_t bottom = Between(value(column, below), value(right, below), fx);
        dst.bytes.at(size_t(Address(dst, x, y, unit) + c)) =
            uint8_t(Between(top, bottom, fy) / kOne);
      }
      fx += step_x;
      if (fx >= kOne) fx -= kOne, ++column;
    }
    fy += step_y;
    if (fy >= kOne) fy -= kOne, ++row;
  }
}

int64_t Signed(int64_t value, int bits) {
  const int64_t range = int64_t{1} << bits, low = (value % range + range) % range;
  return low < range / 2 ? low : low - range;
}

void Reduce(Picture& dst, const Box& d, const Picture& src, const Box& s, int64_t unit) {
  const int64_t dst_width = (d.right - d.left) % 256, dst_height = (d.bottom - d.top) % 256;
  const int64_t src_width = (s.right - s.left) % 256, src_height = (s.bottom - s.top) % 256;
  if (dst_width == 0 || dst_height == 0) return;
  const int64_t step_x = src_width * kOne / dst_width, step_y = src_height * kOne / dst_height;
  // From the end of a row to the start of the next, in 16 bits.
  const int64_t advance = Signed(dst.pitch - dst_width * unit, 16);
  int64_t to = Address(dst, d.left, d.top, unit);
  for (int64_t j = 0; j < dst_height; ++j, to += advance) {
    const int64_t top = j * step_y / kOne, m = (j + 1) * step_y / kOne - top;
    for (int64_t i = 0; i < dst_width; ++i, to += unit) {
      const int64_t left = i * step_x / kOne, n = (i + 1) * step_x / kOne - left;
      if (n * m == 0) continue;  // no mean of nothing
      for (int64_t c = 0; c < 3; ++c) {
        int64_t sum = 0;
        for (int64_t y = top; y < top + m; ++y) {
          for (int64_t x = left; x < left + n; ++x) {
            sum += src.bytes.at(size_t(Address(src, s.left + x, s.top + y, unit) + c));
          }
        }
        const int64_t mean = Signed(sum % 65536 * kOne, 32) * kOne / (m * n * kOne);
        dst.bytes.at(size_t(to + c)) = uint8_t(Floor(mean, kOne));
      }
    }
  }
}

}  // namespace

bool Stretch(Picture& dst, const CRectangulo& dst_rect, const Picture& src,
             const CRectangulo& src_rect, bool smooth) {
  const Clipped d = Clip(dst.width, dst.height, dst_rect);
  const Clipped s = Clip(src.width, src.height, src_rect);
  if (!d.visible || !s.visible) return false;
  if (smooth && dst.BytesPerPixel() >= 3) {
    StretchSmooth(dst, d.box, src, s.box);
  } else {
    StretchNearest(dst, d.box, src, s.box);
  }
  return true;
}

bool StretchInProportion(Picture& dst, const CRectangulo& dst_rect, const Picture& src,
                         const CRectangulo& src_rect, int bits_per_pixel, bool enable) {
  const Clipped d = Clip(dst.width, dst.height, dst_rect);
  if (!d.visible) return true;
  Box s = Clip(src.width, src.height, src_rect).box;
  const int64_t dst_width = int64_t{dst_rect.right} - dst_rect.left;
  const int64_t dst_height = int64_t{dst_rect.bottom} - dst_rect.top;
  const int64_t src_width = s.right - s.left, src_height = s.bottom - s.top;
  s.left += d.moved_x * src_width / dst_width;
  s.top += d.moved_y * src_height / dst_height;
  s.right += (d.box.right - dst_rect.right) * src_width / dst_width;
  s.bottom += (d.box.bottom - dst_rect.bottom) * src_height / dst_height;
  if (s.left >= s.right || s.top >= s.bottom) return true;
  if (dst.BytesPerPixel() != src.BytesPerPixel()) return false;
  if (!enable || (bits_per_pixel != 24 && bits_per_pixel != 32)) return true;
  const int64_t more_columns = d.box.right - d.box.left - (s.right - s.left);
  const int64_t more_rows = d.box.bottom - d.box.top - (s.bottom - s.top);
  if (more_columns > 0 && more_rows > 0) Enlarge(dst, d.box, src, s, bits_per_pixel / 8);
  if (more_columns < 0 && more_rows < 0) Reduce(dst, d.box, src, s, bits_per_pixel / 8);
  return true;
}

void DrawDouble(Picture& dst, const Picture& src, CPunto at) {
  if (dst.BytesPerPixel() < 3) return;
  const int64_t right = int64_t{at.x} + 2 * int64_t{src.width};
  const int64_t bottom = int64_t{at.y} + 2 * int64_t{src.height};
  const int64_t width = std::min(right, int64_t{dst.width}) - std::max(at.x, 0);
  const int64_t height = std::min(bottom, int64_t{dst.height}) - std::max(at.y, 0);
  if (width <= 0 || height <= 0) return;
  for (int64_t j = 0; j < height / 2 * 2; ++j) {
    for (int64_t i = 0; i < width / 2 * 2; ++i) {
      const int64_t x = at.x + i, y = at.y + j;
      if (x >= 0 && x < dst.width && y >= 0 && y < dst.height) dst.Put(x, y, src.Get(i / 2, j / 2));
    }
  }
}

}  // namespace model
