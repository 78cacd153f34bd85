// Mirroring, quarter turns and brightness shifts.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format kDepths[] = {Format::k8, Format::k565, Format::k24, Format::k32};

std::string Depth(Format f) { return std::to_string(Bytes(f) * 8); }

std::shared_ptr<Surface> RandomSurface(Format f, int size, Random& random) {
  auto surface = std::make_shared<Surface>(f, size, size);
  surface->FillRandom(random);
  return surface;
}

void AddMirror(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("FlipX", Depth(f), size, count, [=](Random& random) {
    auto s = RandomSurface(f, size, random);
    return [s] { FlipX(s->desc); };
  });
  AddMemcpy("FlipX", Depth(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_OPENCV
  Add("FlipX", Depth(f), size, "OpenCV", count, [=](Random& random) {
    auto s = RandomSurface(f, size, random);
    return [s, mat = Mat(*s)]() mutable { cv::flip(mat, mat, 1); };
  });
#endif
#if PINCEL_BENCH_LIBYUV
  // Not in place.
  if (f == Format::k8 || f == Format::k24 || f == Format::k32) {
    Add("FlipX", Depth(f), size, "libyuv", count, [=](Random& random) {
      auto s = RandomSurface(f, size, random), d = RandomSurface(f, size, random);
      return [=] {
        const int pitch = s->desc.pitch;
        if (f == Format::k8) {
          libyuv::MirrorPlane(s->pixels(), pitch, d->pixels(), pitch, size, size);
        } else {
          (f == Format::k24 ? libyuv::RGB24Mirror : libyuv::ARGBMirror)(
              s->pixels(), pitch, d->pixels(), pitch, size, size);
        }
      };
    });
  }
#endif
}

void AddTurn(Format f, int size, int mode) {
  const double count = double(size) * size;
  const std::string operation = mode == 1 ? "turn left" : "turn right";
  AddPincel(operation, Depth(f), size, count, [=](Random& random) {
    auto s = RandomSurface(f, size, random), d = RandomSurface(f, size, random);
    return [=] { CreateRotated(d->desc, s->desc, mode); };
  });
  AddMemcpy(operation, Depth(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_OPENCV
  Add(operation, Depth(f), size, "OpenCV", count, [=](Random& random) {
    auto s = RandomSurface(f, size, random), d = RandomSurface(f, size, random);
    return [s, d, mode, from = Mat(*s), to = Mat(*d)]() mutable {
      cv::rotate(from, to, mode == 1 ? cv::ROTATE_90_COUNTERCLOCKWISE : cv::ROTATE_90_CLOCKWISE);
    };
  });
#endif
#if PINCEL_BENCH_LIBYUV
  if (f == Format::k8 || f == Format::k32) {
    Add(operation, Depth(f), size, "libyuv", count, [=](Random& random) {
      auto s = RandomSurface(f, size, random), d = RandomSurface(f, size, random);
      const auto turn = f == Format::k8 ? libyuv::RotatePlane : libyuv::ARGBRotate;
      return [=] {
        turn(s->pixels(), s->desc.pitch, d->pixels(), d->desc.pitch, size, size,
             mode == 1 ? libyuv::kRotate270 : libyuv::kRotate90);
      };
    });
  }
#endif
}

void AddReversed(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("reversed copy", Depth(f), size, count, [=](Random& random) {
    auto s = RandomSurface(f, size, random), d = RandomSurface(f, size, random);
    s->desc.pixels += s->buffer.size() - size_t(Bytes(f));
    return [=] { CreateRotated(d->desc, s->desc, 2); };
  });
  AddMemcpy("reversed copy", Depth(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_OPENCV
  Add("reversed copy", Depth(f), size, "OpenCV", count, [=](Random& random) {
    auto s = RandomSurface(f, size, random), d = RandomSurface(f, size, random);
    return [s, d, from = Mat(*s), to = Mat(*d)]() mutable { cv::rotate(from, to, cv::ROTATE_180); };
  });
#endif
}

void AddShift(Format f, int size, float amount) {
  const double count = double(size) * size;
  const std::string operation = amount > 0.5f ? "brighten" : "darken";
  AddPincel(operation, Name(f), size, count, [=](Random& random) {
    auto s = RandomSurface(f, size, random);
    return [=] { TranslateRect(s->desc, {0, 0, size, size}, amount, nullptr); };
  });
  AddMemcpy(operation, Name(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_OPENCV
  if (Bytes(f) < 3) return;
  Add(operation, Name(f), size, "OpenCV", count, [=](Random& random) {
    auto s = RandomSurface(f, size, random);
    return [s, amount, mat = Mat(*s)]() mutable {
      cv::add(mat, cv::Scalar::all(double(amount) * 510 - 255), mat);
    };
  });
#endif
}

void AddTable(int size) {
  const double count = double(size) * size;
  std::shared_ptr<uint8_t[]> table(new uint8_t[256]);
  for (int i = 0; i < 256; ++i) table[size_t(i)] = uint8_t(i * 7 + 3);
  AddPincel("map", "8", size, count, [=](Random& random) {
    auto s = RandomSurface(Format::k8, size, random);
    return [=] { TranslateRect(s->desc, {0, 0, size, size}, 0, table.get()); };
  });
  AddMemcpy("map", "8", size, count, 2 * size_t(count));
#if PINCEL_BENCH_OPENCV
  Add("map", "8", size, "OpenCV", count, [=](Random& random) {
    auto s = RandomSurface(Format::k8, size, random);
    return [s, table, mat = Mat(*s), lut = cv::Mat(1, 256, CV_8UC1, table.get())]() mutable {
      cv::LUT(mat, lut, mat);
    };
  });
#endif
}

}  // namespace

void AddTransforms() {
  for (int size : kSizes) {
    for (Format f : kDepths) AddMirror(f, size);
    for (Format f : kDepths) {
      for (int mode : {1, 3}) AddTurn(f, size, mode);
    }
    for (Format f : kDepths) AddReversed(f, size);
    for (Format f : {Format::k565, Format::k555, Format::k4444, Format::k24, Format::k32}) {
      for (float amount : {0.6f, 0.4f}) AddShift(f, size, amount);
    }
    AddTable(size);
  }
}

}  // namespace bench
