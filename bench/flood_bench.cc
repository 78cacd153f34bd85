// Rellena on one colour, by painted pixel. The mask is cleared inside the timed call, as a host must
// between two fills; each call paints what the one before has painted.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr uint32_t kColours[] = {0x000000, 0xF8F8F8};

struct Fill {
  Fill(Format f, int size) : surface(f, size, size), mask(Format::k8, size, size) {
    std::memset(surface.pixels(), 0, surface.buffer.size());
  }
  void operator()() {
    std::memset(mask.pixels(), 0, mask.buffer.size());
    Rellena(surface.desc, mask.desc, 0, 0, 0, kColours[painted], kColours[1 - painted]);
    painted = 1 - painted;
  }
  size_t Marked() const {
    size_t marked = 0;
    for (size_t i = 0; i < mask.buffer.size(); ++i) marked += mask.pixels()[i] != 0;
    return marked;
  }

  Surface surface, mask;
  int painted = 0;
};

void AddFlood(Format f, int size) {
  Fill once(f, size);
  once();
  const double count = double(once.Marked());
  AddPincel("Rellena", Name(f), size, count,
            [=](Random&) { return [fill = std::make_shared<Fill>(f, size)] { (*fill)(); }; });
#if PINCEL_BENCH_OPENCV
  // Paints the whole connected area: not what Rellena does, but as many pixels here.
  if (f == Format::k24) {
    Add("Rellena", Name(f), size, "OpenCV", double(size) * size, [=](Random&) {
      auto s = std::make_shared<Surface>(f, size, size);
      return [s, mat = Mat(*s), level = 0]() mutable {
        level = (level + 40) & 255;
        cv::floodFill(mat, {0, 0}, cv::Scalar(level, level, level));
      };
    });
  }
#endif
}

}  // namespace

void AddFloods() {
  for (int size : kSizes) {
    for (Format f : {Format::k565, Format::k24, Format::k32}) AddFlood(f, size);
  }
}

}  // namespace bench
