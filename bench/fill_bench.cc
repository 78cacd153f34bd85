// Solid rectangles.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr uint32_t kColour = 0xFF336699;  // bytes that differ: no shortcut for equal bytes

void AddFill(Format f, int size) {
  const double count = double(size) * size;
  const std::string format = std::to_string(Bytes(f) * 8);
  const auto surface = [=](Random& random) {
    auto s = std::make_shared<Surface>(f, size, size);
    s->FillRandom(random);
    return s;
  };
  AddPincel("fill", format, size, count, [=](Random& random) {
    return [s = surface(random), size] { IdxFillRect(s->desc, {0, 0, size, size}, kColour); };
  });
  Add("fill", format, size, "memset", count, [=](Random& random) {
    return [s = surface(random)] { std::memset(s->pixels(), 0x33, s->buffer.size()); };
  });
#if PINCEL_BENCH_SDL2
  Add("fill", format, size, "SDL2", count, [=](Random& random) {
    auto s = surface(random);
    return [s, to = Sdl(*s)] { SDL_FillRect(to.get(), nullptr, kColour); };
  });
#endif
#if PINCEL_BENCH_PIXMAN
  if (f != Format::k24) {  // not supported there
    Add("fill", format, size, "pixman", count, [=](Random& random) {
      return [s = surface(random), size] {
        pixman_fill(reinterpret_cast<uint32_t*>(s->pixels()), s->desc.pitch / 4, int(s->desc.bpp),
                    0, 0, size, size, kColour);
      };
    });
  }
#endif
#if PINCEL_BENCH_OPENCV
  Add("fill", format, size, "OpenCV", count, [=](Random& random) {
    auto s = surface(random);
    return [s, to = Mat(*s)]() mutable { to.setTo(cv::Scalar(0x33, 0x66, 0x99, 0xFF)); };
  });
#endif
#if PINCEL_BENCH_LIBYUV
  if (f == Format::k8) {
    Add("fill", format, size, "libyuv", count, [=](Random& random) {
      return [s = surface(random), size] { libyuv::SetPlane(s->pixels(), size, size, size, 0x99); };
    });
  }
  if (f == Format::k32) {
    Add("fill", format, size, "libyuv", count, [=](Random& random) {
      return [s = surface(random), size] {
        libyuv::ARGBRect(s->pixels(), 4 * size, 0, 0, size, size, kColour);
      };
    });
  }
#endif
}

}  // namespace

void AddFills() {
  for (int size : kSizes) {
    for (Format f : {Format::k8, Format::k565, Format::k24, Format::k32}) AddFill(f, size);
  }
}

}  // namespace bench
