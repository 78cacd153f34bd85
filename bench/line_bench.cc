// Line, by step along its longer axis.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr int kLevel = 160;

// A slanted line that keeps away from the edges: `size` / 4 * 3 steps or so.
struct Ends {
  CPunto from, to;
};
Ends EndsFor(int size) { return {{2, size / 8 + 1}, {size - 3, size - size / 4}}; }

void AddLine(Format f, int size, bool soft) {
  const auto [from, to] = EndsFor(size);
  const double count = double(to.x - from.x + 1);
  const std::string operation = soft ? "Line soft" : "Line";
  AddPincel(operation, Name(f), size, count, [=](Random& random) {
    auto s = std::make_shared<Surface>(f, size, size);
    s->FillRandom(random);
    return [=] { Line(s->desc, from, to, 0x336699, kLevel, soft, 1); };
  });
#if PINCEL_BENCH_SDL2
  if (!soft && Bytes(f) != 1 && Bytes(f) != 3) {  // draws nothing there
    Add(operation, Name(f), size, "SDL2", count, [=](Random& random) {
      auto s = std::make_shared<Surface>(f, size, size);
      s->FillRandom(random);
      auto surface = Sdl(*s);
      std::shared_ptr<SDL_Renderer> renderer(SDL_CreateSoftwareRenderer(surface.get()),
                                             SDL_DestroyRenderer);
      SDL_SetRenderDrawBlendMode(renderer.get(), SDL_BLENDMODE_BLEND);
      SDL_SetRenderDrawColor(renderer.get(), 0x33, 0x66, 0x99, kLevel);
      return [=, keep = s, canvas = surface] {
        SDL_RenderDrawLine(renderer.get(), from.x, from.y, to.x, to.y);
        SDL_RenderFlush(renderer.get());
      };
    });
  }
#endif
#if PINCEL_BENCH_OPENCV
  // Its smooth lines are opaque; its other lines do not blend.
  if (soft && (f == Format::k24 || f == Format::k32)) {
    Add(operation, Name(f), size, "OpenCV", count, [=](Random& random) {
      auto s = std::make_shared<Surface>(f, size, size);
      s->FillRandom(random);
      return [=, keep = s, mat = Mat(*s)]() mutable {
        cv::line(mat, {from.x, from.y}, {to.x, to.y}, cv::Scalar(0x99, 0x66, 0x33, 0), 1,
                 cv::LINE_AA);
      };
    });
  }
#endif
}

}  // namespace

void AddLines() {
  for (int size : {256, 2048}) {
    for (Format f :
         {Format::k8, Format::k565, Format::k555, Format::k4444, Format::k24, Format::k32}) {
      AddLine(f, size, /*soft=*/false);
      AddLine(f, size, /*soft=*/true);
    }
  }
}

}  // namespace bench
