#include "tests/model/antialias_model.h"

#include <algorithm>
#include <vector>

namespace model {
namespace {

// How a coverage value lies in a pixel.
struct Layout {
  int64_t values;  // 0 to values - 1, in the lowest bits
  int64_t kept;    // from this bit value on, the pixel's bits are no channel
};

Layout LayoutOf(int format) {
  switch (format) {
    case 16:
      return {32, 65536};
    case 17:
    case 18:
      return {32, 32768};
    case 19:
      return {16, 4096};
    default:
      return {256, 16777216};
  }
}

struct Copy {
  std::vector<uint8_t> bytes;
  // What was not copied, and what lies outside the image's memory, is 0.
  int64_t Byte(int64_t at) const {
    return at >= 0 && at < int64_t(bytes.size()) ? bytes[size_t(at)] : 0;
  }
  int64_t Pixel(int64_t at, int count) const {
    int64_t pixel = 0;
    for (int i = count - 1; i >= 0; --i) pixel = pixel * 256 + Byte(at + i);
    return pixel;
  }
};

// The first `length` bytes of the image, in units of four.
Copy CopyOf(const Picture& image, int64_t length) {
  const int64_t size = int64_t{image.height} * image.pitch;
  Copy copy;
  copy.bytes.resize(size_t(size));
  for (int64_t i = 0; i < std::min(length / 4 * 4, size); ++i) {
    copy.bytes[size_t(i)] = image.bytes.at(size_t(image.origin + i));
  }
  return copy;
}

// The columns are those of the row but the first, and one more.
template <class Body>
void ForEachProcessed(const Picture& image, Body body) {
  for (int64_t y = 2; y <= int64_t{image.height} - 3; ++y) {
    for (int64_t x = 1; x <= image.width; ++x) {
      body(y * image.pitch + x * image.BytesPerPixel());
    }
  }
}

int64_t ReadPixel(const Picture& image, int64_t at) {
  int64_t pixel = 0;
  for (int i = image.BytesPerPixel() - 1; i >= 0; --i) {
    pixel = pixel * 256 + image.bytes.at(size_t(image.origin + at + i));
  }
  return pixel;
}

void WriteBytes(Picture& image, int64_t at, int64_t value, int count) {
  for (int i = 0; i < count; ++i) {
    image.bytes.at(size_t(image.origin + at + i)) = uint8_t(value >> (8 * i));
  }
}

void StoreCoverage(Picture& image, int64_t at, int64_t value) {
  const Layout layout = LayoutOf(image.format);
  const int64_t kept = ReadPixel(image, at) / layout.kept * layout.kept;
  const int64_t stored = std::min(std::max(value, int64_t{0}), layout.values - 1);
  WriteBytes(image, at, kept + stored, image.BytesPerPixel());
}

}  // namespace

bool AntiAlias(Picture& image) {
  if (image.format == 8) return true;
  const Copy copy = CopyOf(image, int64_t{image.height} * image.pitch);
  const int bytes = image.BytesPerPixel();
  const int64_t values = LayoutOf(image.format).values;
  ForEachProcessed(image, [&](int64_t at) {
    int64_t sum = 0;
    for (int dy = -1; dy <= 1; ++dy) {
      for (int dx = -1; dx <= 1; ++dx) {
        const int64_t weight = dx == 0 && dy == 0 ? 16 : 1;
        sum += weight * (copy.Pixel(at + int64_t{dy} * image.pitch + dx * bytes, bytes) % values);
      }
    }
    StoreCoverage(image, at, sum / 8);
  });
  return true;
}

bool AntiAliasCross(Picture& image) {
  if (image.format == 8) return false;
  const Copy copy = CopyOf(image, int64_t{image.width} * image.pitch);
  const int bytes = image.BytesPerPixel();
  const int64_t values = LayoutOf(image.format).values;
  ForEachProcessed(image, [&](int64_t at) {
    const auto value = [&](int64_t dx, int64_t dy) {
      return copy.Pixel(at + dy * image.pitch + dx * bytes, bytes) % values;
    };
    if (value(0, 0) == 0) {
      // At 24 bits four bytes go back, too.
      const int count = bytes == 3 ? 4 : bytes;
      WriteBytes(image, at, copy.Pixel(at, count), count);
      return;
    }
    const int64_t near = value(1, 0) + value(-1, 0) + value(0, 1) + value(0, -1);
    const int64_t far = value(2, 0) + value(-2, 0) + value(0, 2) + value(0, -2);
    const int64_t sum = 3 * near - far - value(0, 0);
    StoreCoverage(image, at, int64_t(double(sum) * 0.136986301369863));
  });
  return true;
}

bool EdgeCodes(Picture& image, int64_t level) {
  const int64_t pitch = image.pitch, size = int64_t{image.height} * pitch;
  const auto byte = [&](int64_t at) -> uint8_t& {
    return image.bytes.at(size_t(image.origin + at));
  };
  int64_t at = 2 * pitch + 2;
  for (int64_t left = (int64_t{image.height} - 4) * pitch - 4; left > 0; --left, ++at) {
    if (byte(at) == 0) continue;
    const int64_t threshold = left / 256 % 256;
    int64_t pattern = 0;
    for (int64_t neighbour :
         {2 * pitch, pitch, pitch + 1, int64_t{2}, int64_t{1}, 1 - pitch, -2 * pitch, -pitch,
          -1 - pitch, int64_t{-2}, int64_t{-1}, pitch - 1}) {
      pattern = pattern * 2 + (byte(at + neighbour) > threshold ? 1 : 0);
    }
    pattern = pattern * 2 + 1;
    byte(at) = uint8_t((pattern * 2 + 1) % 256);
  }
  if (level != 256) {
    for (int64_t i = 0; i < size / 4 * 4; ++i) byte(i) = uint8_t(byte(i) * (level % 256) / 256);
  }
  return true;
}

}  // namespace model
