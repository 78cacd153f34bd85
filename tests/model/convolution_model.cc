#include "tests/model/convolution_model.h"

#include <algorithm>

namespace model {
namespace {

struct Channel {
  int64_t unit;        // value of the channel's lowest bit
  int64_t values;      // how many the taps tell apart
  int64_t maximum;     // of the result
  int64_t bias_times;  // how often the bias is added
};

std::vector<Channel> ChannelsOf(int format) {
  switch (format) {
    case 16:
      return {{1, 32, 31, 1}, {32, 64, 63, 2}, {2048, 32, 31, 1}};
    case 17:
    case 18:  // bit 15 is the sixth bit of red
      return {{1, 32, 31, 1}, {32, 32, 31, 2}, {1024, 64, 31, 1}};
    case 19:  // the alpha bits are high bits of red
      return {{1, 16, 15, 1}, {16, 16, 15, 2}, {256, 256, 15, 1}};
    default:
      return {{1, 256, 255, 1}, {256, 256, 255, 1}, {65536, 256, 255, 1}};
  }
}

int64_t Wrapped(int64_t value) {
  const int64_t all = int64_t{1} << 32, half = all / 2;
  const int64_t rest = value % all;
  return rest >= half ? rest - all : rest < -half ? rest + all : rest;
}

std::vector<int64_t> PixelStarts(const Picture& image) {
  const int bytes = image.BytesPerPixel();
  std::vector<int64_t> starts;
  if (bytes == 2) {  // all of the memory, whatever lies in it
    for (int64_t at = 0; at + 2 <= int64_t{image.height} * image.pitch; at += 2) {
      starts.push_back(at);
    }
    return starts;
  }
  for (int64_t y = 0; y < image.height; ++y) {
    for (int64_t x = 0; x < image.width; ++x) starts.push_back(y * image.pitch + x * bytes);
  }
  return starts;
}

struct Kernel {
  int side;
  int64_t divisor, bias;
  std::vector<int64_t> weights;
};

const std::vector<Kernel>& Kernels() {
  static const std::vector<Kernel> kernels = {
      {3, 1, 50, {-5, -5, -5, -5, -39, -5, -5, -5, -5}},
      {3, 1, 128, {-1, -1, 0, 1, 0, 1, 0, 1, 1}},
      {5, 1, 128, {-1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}},
      {3, 1, 0, {-4, -4, -4, -4, 20, 0, -4, 0, 0}},
      {5, 1, 0, {-4, -3, -2, -1, 0, -3, 0, 0, 0, 1, -2, 0, 0, 0, 2, -1, 0, 0, 0, 3, 0, 1, 2, 3, 4}},
      {5, 1, 90, {-1, -1, -1, -1, 0, -1, -1, -1, 0, 1, -1, -1, 0,
                  1,  1,  -1, 0,  1, 1,  1,  0,  1, 1, 1,  1}},
      {5, 1, 0, {-11, -9, -13, -8, 0,  -12, -11, -10, 0,  11, -10, -9, 1,
                 9,   10, -9,  0,  11, 10,  11,  0,   11, 10, 9,   10}},
      {5, 1, 0, {1, 1, 1, 1, 1, 1, 0, 0, 0, 1, 1, 0, -23, 0, 1, 1, 0, 0, 0, 1, 1, 1, 1, 1, 1}},
      {5, 8, 0, {-1, -1, -1, -1, -1, -1, 2,  2,  2,  -1, -1, 2, 8,
                 2,  -1, -1, 2,  2,  2,  -1, -1, -1, -1, -1, -1}},
      {3, 1, 0, {-1, -1, -1, -1, 9, -1, -1, -1, -1}},
      {3, 1, 0, {-1, -2, -1, -2, 13, -2, -1, -2, -1}},
      {5, 7, 0, {0, 0, -1, 0, 0, 0, 0, 3, 0, 0, -1, 3, 0, 3, -1, 0, 0, 3, 0, 0, 0, 0, -1, 0, 0}},
      {5, 1, 0, {1,  1, 1, 1,  1,  1,  -3, -3, -3, 1, 1, -3, -10,
                 -3, 1, 1, -3, -3, -3, 1,  1,  1,  1, 1, 1}},
      {5, 3, 0, {1, 1, 1, 1, 1, 1, 2, 2, 2, 1, 1, 2, 3, 2, 1, 1, 2, 2, 2, 1, 1, 1, 1, 1, 1}},
      {5, 4, 0, {0, 0, -1, -2, 0, 2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -1, 2, 0, 2, 1, 0, 0}},
      {3, 1, 0, {1, 0, 0, 0, 0, 0, 0, 0, 0}},
      {3, 3, 0, {0, -2, 0, -2, 0, 2, 0, 2, 0}},
      {5, 1, 0, {0, 0, 1, 2, 1, 0, 0, 0, 1, 0, 2, 0, 0, -2, 0, 0, -1, 0, 0, 0, -1, -2, -1, 0, 0}},
      {1, 1, 140, {1}},
      {5, 1, 0, {0, 1, 2, 1, 0, 1, 2, 3, 2, 1, 2, 3, -35, 3, 2, 1, 2, 3, 2, 1, 0, 1, 2, 1, 0}},
      {5, 1, 0, {-2, -2, -2, -2, -2, -2, -3, -3, -3, -2, -2, -3, 53,
                 -3, -2, -2, -3, -3, -3, -2, -2, -2, -2, -2, -2}},
      {5, 1, 0, {-5, -2, 0, 0, 0, -2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 2, 6}},
      {3, 3, 3, {1, 1, 1, 1, -7, 1, 1, 1, 1}},
      {1, 0, 0, {0}},
  };
  return kernels;
}

bool Filter(Picture& image, Picture& scratch, const Kernel& kernel) {
  const int side = kernel.side;
  std::vector<Tap> taps;
  for (int row = 0; row < side; ++row) {
    for (int column = 0; column < side; ++column) {
      taps.push_back(
          {int64_t{row - side / 2} * image.pitch + (column - side / 2) * image.BytesPerPixel(),
           kernel.weights.at(size_t(row * side + column))});
    }
  }
  return Convolve(image, scratch, taps, kernel.divisor, kernel.bias);
}

}  // namespace

bool Convolve(Picture& image, Picture& scratch, const std::vector<Tap>& taps, int64_t divisor,
              int64_t bias) {
  if (image.format == 8 || divisor == 0) return false;
  const int bytes = image.BytesPerPixel();
  const int64_t size = int64_t{image.height} * image.pitch;
  for (int64_t i = 0; i < size / 4 * 4; ++i) {
    scratch.bytes.at(size_t(scratch.origin + i)) = image.bytes.at(size_t(image.origin + i));
  }
  const std::vector<Channel> channels = ChannelsOf(image.format);
  for (int64_t start : PixelStarts(image)) {
    std::vector<int64_t> sums(channels.size());
    for (const Tap& tap : taps) {
      const int64_t at = std::min(std::max(start + tap.offset, int64_t{0}), size - bytes);
      int64_t pixel = 0;
      for (int i = bytes - 1; i >= 0; --i) {
        pixel = pixel * 256 + scratch.bytes.at(size_t(scratch.origin + at + i));
      }
      for (size_t c = 0; c < channels.size(); ++c) {
        sums[c] += tap.weight * (pixel / channels[c].unit % channels[c].values);
      }
    }
    int64_t pixel = 0;
    for (size_t c = 0; c < channels.size(); ++c) {
      const int64_t quotient = Wrapped(sums[c]) / divisor;
      const int64_t value = Wrapped(quotient + channels[c].bias_times * bias);
      pixel += std::min(std::max(value, int64_t{0}), channels[c].maximum) * channels[c].unit;
    }
    for (int i = 0; i < bytes; ++i) {
      image.bytes.at(size_t(image.origin + start + i)) = uint8_t(pixel >> (8 * i));
    }
  }
  return true;
}

bool Smooth(Picture& image, Picture& scratch) {
  return Filter(image, scratch, {3, 9, 0, {1, 1, 1, 1, 1, 1, 1, 1, 1}});
}

bool Emboss(Picture& image, Picture& scratch) {
  return Filter(image, scratch, {3, 1, 127, {-1, 0, 0, 0, 0, 0, 0, 0, 1}});
}

bool Sharpen(Picture& image, Picture& scratch) {
  return Filter(image, scratch, {3, 1, 0, {-1, -1, -1, -1, 9, -1, -1, -1, -1}});
}

bool FilterByNumber(Picture& image, Picture& scratch, int number) {
  if (number < 0 || number >= int(Kernels().size())) return false;
  return Filter(image, scratch, Kernels()[size_t(number)]);
}

}  // namespace model
