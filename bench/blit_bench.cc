// Copies and sprite blits.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format kDepths[] = {Format::k8, Format::k565, Format::k24, Format::k32};

std::string Depth(Format f) { return std::to_string(Bytes(f) * 8); }

struct Pair {
  Pair(Format dst_format, Format src_format, int size)
      : dst(dst_format, size, size), src(src_format, size, size) {}
  Surface dst, src;
};

std::shared_ptr<Pair> RandomPair(Format dst, Format src, int size, Random& random) {
  auto pair = std::make_shared<Pair>(dst, src, size);
  pair->dst.FillRandom(random);
  pair->src.FillRandom(random);
  return pair;
}

std::shared_ptr<Pair> SpritePair(Format dst, Format src, int size, Random& random) {
  auto pair = RandomPair(dst, src, size, random);
  FillSprite(pair->src, random);
  pair->src.desc.colorKey = 0;
  return pair;
}

void AddOpaque(Format f, int size) {
  const double count = double(size) * size;
  const size_t row_bytes = size_t(f == Format::k24 ? 2 : Bytes(f));  // see DrawBitmap
  AddPincel("blit opaque", Depth(f), size, count, [=](Random& random) {
    auto p = RandomPair(f, f, size, random);
    return [p] { DrawBitmap(p->dst.desc, p->src.desc); };
  });
  AddPincel("CopyImage", Depth(f), size, count, [=](Random& random) {
    auto p = RandomPair(f, f, size, random);
    return [p] { CopyImage(p->dst.desc, p->src.desc); };
  });
  AddMemcpy("blit opaque", Depth(f), size, count, 2 * row_bytes * size_t(count));
  AddMemcpy("CopyImage", Depth(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
  for (const std::string operation : {"blit opaque", "CopyImage"}) {
#if PINCEL_BENCH_SDL2
    Add(operation, Depth(f), size, "SDL2", count, [=](Random& random) {
      auto p = RandomPair(f, f, size, random);
      return [p, dst = Sdl(p->dst), src = Sdl(p->src)] {
        SDL_BlitSurface(src.get(), nullptr, dst.get(), nullptr);
      };
    });
#endif
#if PINCEL_BENCH_PIXMAN
    Add(operation, Depth(f), size, "pixman", count, [=](Random& random) {
      auto p = RandomPair(f, f, size, random);
      return [p, size, dst = Pixman(p->dst), src = Pixman(p->src)] {
        PixmanCopy(dst.get(), src.get(), size, size);
      };
    });
#endif
#if PINCEL_BENCH_OPENCV
    Add(operation, Depth(f), size, "OpenCV", count, [=](Random& random) {
      auto p = RandomPair(f, f, size, random);
      return [p, dst = Mat(p->dst), src = Mat(p->src)]() mutable { src.copyTo(dst); };
    });
#endif
#if PINCEL_BENCH_LIBYUV
    Add(operation, Depth(f), size, "libyuv", count, [=](Random& random) {
      auto p = RandomPair(f, f, size, random);
      return [p, size, pitch = p->dst.desc.pitch] {
        libyuv::CopyPlane(p->src.pixels(), pitch, p->dst.pixels(), pitch, pitch, size);
      };
    });
#endif
  }
}

// A sprite with a key: every source byte is read, drawn pixels (about half) are written. Counted as
// if all were written, like the memcpy.
void AddKeyed(Format dst, Format src, int size) {
  const double count = double(size) * size;
  const std::string operation = dst == src ? "blit keyed" : "blit palette keyed";
  const std::string format = dst == src ? Depth(dst) : "8-" + std::string(Name(dst));
  AddPincel(operation, format, size, count, [=](Random& random) {
    auto p = SpritePair(dst, src, size, random);
    return [p] { DrawBitmap(p->dst.desc, p->src.desc); };
  });
  AddMemcpy(operation, format, size, count, size_t(Bytes(dst) + Bytes(src)) * size_t(count));
#if PINCEL_BENCH_SDL2
  // The second form holds the sprite in a code of runs that is made beforehand.
  for (const bool coded : {false, true}) {
    if (coded && dst != src) continue;
    Add(operation, format, size, coded ? "SDL2 coded" : "SDL2", count, [=](Random& random) {
      auto p = SpritePair(dst, src, size, random);
      auto from = Sdl(p->src), to = Sdl(p->dst);
      SDL_SetColorKey(from.get(), SDL_TRUE, 0);
      SDL_SetSurfaceRLE(from.get(), coded);
      return [p, from, to] { SDL_BlitSurface(from.get(), nullptr, to.get(), nullptr); };
    });
  }
#endif
#if PINCEL_BENCH_OPENCV
  // The mask is made beforehand.
  if (dst == src) {
    Add(operation, format, size, "OpenCV", count, [=](Random& random) {
      auto p = SpritePair(dst, src, size, random);
      cv::Mat from = Mat(p->src), mask;
      cv::inRange(from, cv::Scalar::all(0), cv::Scalar::all(0), mask);
      cv::bitwise_not(mask, mask);
      return [p, from, mask, to = Mat(p->dst)]() mutable { from.copyTo(to, mask); };
    });
  }
#endif
}

void AddPalette(Format dst, int size) {
  const double count = double(size) * size;
  const std::string format = "8-" + std::string(Name(dst));
  AddPincel("blit palette", format, size, count, [=](Random& random) {
    auto p = RandomPair(dst, Format::k8, size, random);
    return [p] { DrawBitmap(p->dst.desc, p->src.desc); };
  });
  AddMemcpy("blit palette", format, size, count, size_t(Bytes(dst) + 1) * size_t(count));
#if PINCEL_BENCH_SDL2
  Add("blit palette", format, size, "SDL2", count, [=](Random& random) {
    auto p = RandomPair(dst, Format::k8, size, random);
    return [p, from = Sdl(p->src), to = Sdl(p->dst)] {
      SDL_BlitSurface(from.get(), nullptr, to.get(), nullptr);
    };
  });
#endif
}

}  // namespace

void AddBlits() {
  for (int size : kSizes) {
    for (Format f : kDepths) AddOpaque(f, size);
    for (Format f : kDepths) AddKeyed(f, f, size);
    for (Format f : {Format::k565, Format::k4444, Format::k24, Format::k32}) {
      AddPalette(f, size);
      AddKeyed(f, Format::k8, size);
    }
  }
}

}  // namespace bench
