// Stretching, enlarging, reducing and doubling. Sizes and pixels are those of the destination.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format kDepths[] = {Format::k8, Format::k565, Format::k24, Format::k32};

std::string Depth(Format f) { return std::to_string(Bytes(f) * 8); }

struct Pair {
  Pair(Format f, int dst_size, int src_size)
      : dst(f, dst_size, dst_size), src(f, src_size, src_size) {}
  Surface dst, src;
};

std::shared_ptr<Pair> RandomPair(Format f, int dst_size, int src_size, Random& random) {
  auto pair = std::make_shared<Pair>(f, dst_size, src_size);
  pair->dst.FillRandom(random);
  pair->src.FillRandom(random);
  return pair;
}

CRectangulo Whole(const Surface& s) { return {0, 0, s.width, s.height}; }

#if PINCEL_BENCH_OPENCV
void AddOpenCv(const std::string& operation, Format f, int size, int src_size, int method) {
  Add(operation, Depth(f), size, "OpenCV", double(size) * size, [=](Random& random) {
    auto p = RandomPair(f, size, src_size, random);
    return [p, method, dst = Mat(p->dst), src = Mat(p->src)]() mutable {
      cv::resize(src, dst, dst.size(), 0, 0, method);
    };
  });
}
#endif

#if PINCEL_BENCH_PIXMAN
void AddPixman(const std::string& operation, Format f, int size, int src_size,
               pixman_filter_t filter) {
  if (f == Format::k24) return;
  Add(operation, Depth(f), size, "pixman", double(size) * size, [=](Random& random) {
    auto p = RandomPair(f, size, src_size, random);
    auto dst = Pixman(p->dst), src = Pixman(p->src);
    pixman_transform_t scale;
    const auto ratio = pixman_double_to_fixed(double(src_size) / size);
    pixman_transform_init_scale(&scale, ratio, ratio);
    pixman_image_set_transform(src.get(), &scale);
    pixman_image_set_filter(src.get(), filter, nullptr, 0);
    return [p, size, dst, src] { PixmanCopy(dst.get(), src.get(), size, size); };
  });
}
#endif

#if PINCEL_BENCH_LIBYUV
void AddLibyuv(const std::string& operation, Format f, int size, int src_size,
               libyuv::FilterMode filter) {
  if (f != Format::k8 && f != Format::k32) return;
  Add(operation, Depth(f), size, "libyuv", double(size) * size, [=](Random& random) {
    auto p = RandomPair(f, size, src_size, random);
    return [=] {
      const TSurfDesc &d = p->dst.desc, &s = p->src.desc;
      if (f == Format::k8) {
        libyuv::ScalePlane(s.pixels, s.pitch, s.width, s.height, d.pixels, d.pitch, d.width,
                           d.height, filter);
      } else {
        libyuv::ARGBScale(s.pixels, s.pitch, s.width, s.height, d.pixels, d.pitch, d.width,
                          d.height, filter);
      }
    };
  });
}
#endif

#if PINCEL_BENCH_SDL2
void AddSdl(const std::string& operation, Format f, int size, int src_size, bool smooth) {
  if (smooth && f != Format::k32) return;
  Add(operation, Depth(f), size, "SDL2", double(size) * size, [=](Random& random) {
    auto p = RandomPair(f, size, src_size, random);
    return [p, smooth, dst = Sdl(p->dst), src = Sdl(p->src)] {
      (smooth ? SDL_SoftStretchLinear : SDL_SoftStretch)(src.get(), nullptr, dst.get(), nullptr);
    };
  });
}
#endif

// Bytes moved: every destination byte and as many source bytes, or all of a smaller source.
size_t Moved(Format f, int size, int src_size) {
  const auto bytes = [f](int side) { return size_t(Bytes(f)) * size_t(side) * size_t(side); };
  return bytes(size) + bytes(std::min(size, src_size));
}

void AddStretch(Format f, int size, int src_size, bool smooth) {
  const double count = double(size) * size;
  const std::string operation = std::string("stretch ") + (smooth ? "smooth " : "nearest ") +
                                (src_size < size ? "up" : "down");
  AddPincel(operation, Depth(f), size, count, [=](Random& random) {
    auto p = RandomPair(f, size, src_size, random);
    return [=] { BltStrech(p->dst.desc, Whole(p->dst), p->src.desc, Whole(p->src), smooth); };
  });
  AddMemcpy(operation, Depth(f), size, count, Moved(f, size, src_size));
#if PINCEL_BENCH_OPENCV
  AddOpenCv(operation, f, size, src_size, smooth ? cv::INTER_LINEAR : cv::INTER_NEAREST);
#endif
#if PINCEL_BENCH_PIXMAN
  AddPixman(operation, f, size, src_size, smooth ? PIXMAN_FILTER_BILINEAR : PIXMAN_FILTER_NEAREST);
#endif
#if PINCEL_BENCH_LIBYUV
  AddLibyuv(operation, f, size, src_size, smooth ? libyuv::kFilterBilinear : libyuv::kFilterNone);
#endif
#if PINCEL_BENCH_SDL2
  AddSdl(operation, f, size, src_size, smooth);
#endif
}

void AddProportional(Format f, int size, int src_size) {
  const double count = double(size) * size;
  const std::string operation = src_size < size ? "StretchBitmap up" : "StretchBitmap down";
  AddPincel(operation, Depth(f), size, count, [=](Random& random) {
    auto p = RandomPair(f, size, src_size, random);
    return [=] {
      StretchBitmap(p->dst.desc, Whole(p->dst), p->src.desc, Whole(p->src), Bytes(f) * 8, true,
                    false);
    };
  });
  AddMemcpy(operation, Depth(f), size, count, Moved(f, size, src_size));
#if PINCEL_BENCH_OPENCV
  AddOpenCv(operation, f, size, src_size, src_size < size ? cv::INTER_LINEAR : cv::INTER_AREA);
#endif
#if PINCEL_BENCH_LIBYUV
  AddLibyuv(operation, f, size, src_size,
            src_size < size ? libyuv::kFilterBilinear : libyuv::kFilterBox);
#endif
}

void AddDouble(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("DrawDouble", Depth(f), size, count, [=](Random& random) {
    auto p = RandomPair(f, size, size / 2, random);
    return [=] { DrawDouble(p->dst.desc, p->src.desc, {0, 0}); };
  });
  AddMemcpy("DrawDouble", Depth(f), size, count, Moved(f, size, size / 2));
#if PINCEL_BENCH_OPENCV
  AddOpenCv("DrawDouble", f, size, size / 2, cv::INTER_NEAREST);
#endif
#if PINCEL_BENCH_LIBYUV
  AddLibyuv("DrawDouble", f, size, size / 2, libyuv::kFilterNone);
#endif
}

}  // namespace

void AddStretches() {
  for (int size : kSizes) {
    for (int src_size : {size * 3 / 4, size * 3 / 2}) {
      for (Format f : kDepths) AddStretch(f, size, src_size, false);
      for (Format f : {Format::k24, Format::k32}) AddStretch(f, size, src_size, true);
    }
    for (Format f : {Format::k24, Format::k32}) {
      AddProportional(f, size, size * 3 / 4);
      AddDouble(f, size);
    }
  }
  // Reducing is meant for sides of at most 255.
  for (int size : {16, 102}) {
    for (Format f : {Format::k24, Format::k32}) AddProportional(f, size, size * 5 / 2);
  }
}

}  // namespace bench
