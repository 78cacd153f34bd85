// Convolution filters. Peers filter from one surface into another; ours works in place and leaves a
// copy of the image in the scratch surface.
#include <functional>

#include "bench/peers.h"

namespace bench {
namespace {

using Filter = std::function<bool(TSurfDesc& image, TSurfDesc& scratch)>;

struct Pair {
  Surface image, scratch;
};

std::shared_ptr<Pair> RandomPair(Format f, int size, Random& random) {
  auto pair = std::make_shared<Pair>(Pair{Surface(f, size, size), Surface(f, size, size)});
  pair->image.FillRandom(random);
  return pair;
}

void AddFilter(const std::string& operation, Format f, int size, Filter filter) {
  AddPincel(operation, Name(f), size, double(size) * size, [=](Random& random) {
    return [pair = RandomPair(f, size, random), filter] {
      filter(pair->image.desc, pair->scratch.desc);
    };
  });
}

// A list of taps in a square of `side` x `side` pixels.
template <class Weight>
Filter ListOf(int side, int divisor, Weight weight) {
  return [=](TSurfDesc& image, TSurfDesc& scratch) {
    int weights[225];
    long offsets[225];
    for (int i = 0; i < side * side; ++i) {
      weights[i] = weight(i);
      offsets[i] = (i / side - side / 2) * image.pitch + (i % side - side / 2) * int(image.bpp / 8);
    }
    return DoConvolucion(image, scratch, side * side, weights, offsets, divisor, 0);
  };
}

#if PINCEL_BENCH_OPENCV
// `filter(dst, src)` on two surfaces.
template <class Function>
void AddOpenCv(const std::string& operation, Format f, int size, Function filter) {
  Add(operation, Name(f), size, "OpenCV", double(size) * size, [=](Random& random) {
    auto pair = RandomPair(f, size, random);
    return [pair, src = Mat(pair->image), dst = Mat(pair->scratch), filter]() mutable {
      filter(dst, src);
    };
  });
}

void AddOpenCvFilter(const std::string& operation, Format f, int size, cv::Mat kernel,
                     double bias) {
  AddOpenCv(operation, f, size, [=](cv::Mat& dst, const cv::Mat& src) {
    cv::filter2D(src, dst, -1, kernel, cv::Point(-1, -1), bias);
  });
}

cv::Mat Square(int side, std::initializer_list<int> weights, float scale = 1) {
  cv::Mat kernel(side, side, CV_32F, cv::Scalar(0));
  int i = 0;
  for (int weight : weights) {
    kernel.at<float>(i / side, i % side) = float(weight) * scale;
    ++i;
  }
  return kernel;
}
#endif

void AddAll(Format f, int size) {
  AddFilter("box 3x3", f, size, DoSuavizado);
  AddFilter("emboss", f, size, DoEmboss);
  AddFilter("sharpen", f, size, DoRealce);
  for (int number : {6, 8, 13}) {
    AddFilter(
        "kernel " + std::to_string(number), f, size,
        [=](TSurfDesc& image, TSurfDesc& scratch) { return FiltroMask(image, scratch, number); });
  }
  const auto weight = [](int i) { return 10 * i - 100; };
  AddFilter("taps 5x5", f, size, ListOf(5, 1000, weight));
  AddFilter("taps 15x15", f, size, ListOf(15, 10000, weight));
#if PINCEL_BENCH_OPENCV
  if (Bytes(f) == 2) return;  // not supported there
  AddOpenCv("box 3x3", f, size,
            [](cv::Mat& dst, const cv::Mat& src) { cv::blur(src, dst, cv::Size(3, 3)); });
  AddOpenCvFilter("emboss", f, size, Square(3, {-1, 0, 0, 0, 0, 0, 0, 0, 1}), 127);
  AddOpenCvFilter("sharpen", f, size, Square(3, {-1, -1, -1, -1, 9, -1, -1, -1, -1}), 0);
  AddOpenCvFilter("kernel 6", f, size,
                  Square(5, {-11, -9, -13, -8, 0,  -12, -11, -10, 0,  11, -10, -9, 1,
                             9,   10, -9,  0,  11, 10,  11,  0,   11, 10, 9,   10}),
                  0);
  AddOpenCvFilter("kernel 8", f, size,
                  Square(5, {-1, -1, -1, -1, -1, -1, 2,  2,  2,  -1, -1, 2, 8,
                             2,  -1, -1, 2,  2,  2,  -1, -1, -1, -1, -1, -1},
                         1.0f / 8),
                  0);
  AddOpenCvFilter(
      "kernel 13", f, size,
      Square(5, {1, 1, 1, 1, 1, 1, 2, 2, 2, 1, 1, 2, 3, 2, 1, 1, 2, 2, 2, 1, 1, 1, 1, 1, 1},
             1.0f / 3),
      0);
  for (int side : {5, 15}) {
    cv::Mat kernel(side, side, CV_32F);
    for (int i = 0; i < side * side; ++i) {
      kernel.at<float>(i / side, i % side) = float(weight(i)) / (side == 5 ? 1000 : 10000);
    }
    const std::string edge = std::to_string(side);
    AddOpenCvFilter("taps " + edge + "x" + edge, f, size, kernel, 0);
  }
#endif
#if PINCEL_BENCH_LIBYUV
  if (f == Format::k32) {
    Add("box 3x3", Name(f), size, "libyuv", double(size) * size, [=](Random& random) {
      auto pair = RandomPair(f, size, random);
      auto sums = std::make_shared<std::vector<int32_t>>(size_t(size) * size_t(size) * 4);
      return [=] {
        libyuv::ARGBBlur(pair->image.pixels(), 4 * size, pair->scratch.pixels(), 4 * size,
                         sums->data(), 16 * size, size, size, 1);
      };
    });
  }
#endif
}

}  // namespace

void AddConvolutions() {
  for (int size : kSizes) {
    for (Format f : {Format::k565, Format::k555, Format::k4444, Format::k24, Format::k32}) {
      AddAll(f, size);
    }
  }
}

}  // namespace bench
