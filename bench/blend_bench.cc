// The seven blend modes in their three shapes.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format kFormats[] = {Format::k565, Format::k555, Format::k4444, Format::k24, Format::k32};
constexpr uint32_t kPaint = 0xFF4080C0;

using BlendSource = bool (*)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&);
using BlendColour = bool (*)(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&,
                             CPunto const&);
using BlendMasked = bool (*)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
                             CPunto const&);

enum class Mode { kAdd, kSubtract, kMultiply, kScreen, kLighten, kDarken, kOverlay };

struct NamedMode {
  Mode mode;
  const char* name;
  BlendSource source;
  BlendColour colour;
  BlendMasked masked;
};
constexpr NamedMode kModes[] = {
    {Mode::kAdd, "add", DoSuma, DoSuma, DoSuma},
    {Mode::kSubtract, "subtract", DoResta, DoResta, DoResta},
    {Mode::kMultiply, "multiply", DoMultiplica, DoMultiplica, DoMultiplica},
    {Mode::kScreen, "screen", DoScreen, DoScreen, DoScreen},
    {Mode::kLighten, "lighten", DoLighten, DoLighten, DoLighten},
    {Mode::kDarken, "darken", DoDarken, DoDarken, DoDarken},
    {Mode::kOverlay, "overlay", DoSuperponer, DoSuperponer, DoSuperponer},
};

enum class Shape { kSource, kColour, kMasked };
constexpr const char* kShapes[] = {" source", " colour+mask", " source+mask"};

struct Picture {
  Picture(Format f, int size)
      : dst(f, size, size), src(f, size, size), mask(Format::k8, size, size) {}
  Surface dst, src, mask;
  CRectangulo area() const { return {0, 0, dst.width, dst.height}; }
};

std::shared_ptr<Picture> RandomPicture(Format f, int size, Random& random) {
  auto picture = std::make_shared<Picture>(f, size);
  picture->dst.FillRandom(random);
  picture->src.FillRandom(random);
  picture->mask.FillRandom(random);
  return picture;
}

void Blend(const NamedMode& mode, Shape shape, Picture& p) {
  switch (shape) {
    case Shape::kSource:
      mode.source(p.dst.desc, p.area(), p.src.desc, {0, 0});
      break;
    case Shape::kColour:
      mode.colour(p.dst.desc, p.area(), kPaint, p.mask.desc, {0, 0});
      break;
    case Shape::kMasked:
      mode.masked(p.dst.desc, p.area(), p.src.desc, {0, 0}, p.mask.desc, {0, 0});
      break;
  }
}

#if PINCEL_BENCH_PIXMAN
// Subtraction is missing there.
pixman_op_t PixmanOperator(Mode mode) {
  constexpr pixman_op_t kOperators[] = {PIXMAN_OP_ADD,    PIXMAN_OP_CLEAR,   PIXMAN_OP_MULTIPLY,
                                        PIXMAN_OP_SCREEN, PIXMAN_OP_LIGHTEN, PIXMAN_OP_DARKEN,
                                        PIXMAN_OP_OVERLAY};
  return kOperators[int(mode)];
}

void AddPixman(const std::string& operation, Mode mode, Shape shape, Format f, int size) {
  if (mode == Mode::kSubtract || f == Format::k555 || f == Format::k4444) return;
  Add(operation, Name(f), size, "pixman", double(size) * size, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    const pixman_color_t colour = {0x4040, 0x8080, 0xC0C0, 0xFFFF};
    const PixmanImage src =
        shape == Shape::kColour
            ? PixmanImage(pixman_image_create_solid_fill(&colour), pixman_image_unref)
            : Pixman(p->src);
    const PixmanImage mask = shape == Shape::kSource ? nullptr : Pixman(p->mask);
    return [p, size, src, mask, dst = Pixman(p->dst), op = PixmanOperator(mode)] {
      pixman_image_composite32(op, src.get(), mask.get(), dst.get(), 0, 0, 0, 0, 0, 0, size, size);
    };
  });
}
#endif

#if PINCEL_BENCH_OPENCV
void AddOpenCv(const std::string& operation, Mode mode, Format f, int size) {
  if (Bytes(f) < 3 || mode == Mode::kScreen || mode == Mode::kOverlay) return;
  Add(operation, Name(f), size, "OpenCV", double(size) * size, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, mode, dst = Mat(p->dst), src = Mat(p->src)]() mutable {
      if (mode == Mode::kAdd) cv::add(dst, src, dst);
      if (mode == Mode::kSubtract) cv::subtract(dst, src, dst);
      if (mode == Mode::kMultiply) cv::multiply(dst, src, dst, 1 / 256.0);
      if (mode == Mode::kLighten) cv::max(dst, src, dst);
      if (mode == Mode::kDarken) cv::min(dst, src, dst);
    };
  });
}
#endif

#if PINCEL_BENCH_LIBYUV
void AddLibyuv(const std::string& operation, Mode mode, Format f, int size) {
  const auto blend = mode == Mode::kAdd        ? libyuv::ARGBAdd
                     : mode == Mode::kSubtract ? libyuv::ARGBSubtract
                     : mode == Mode::kMultiply ? libyuv::ARGBMultiply
                                               : nullptr;
  if (f != Format::k32 || blend == nullptr) return;
  Add(operation, Name(f), size, "libyuv", double(size) * size, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, blend, size, pitch = p->dst.desc.pitch] {
      blend(p->dst.pixels(), pitch, p->src.pixels(), pitch, p->dst.pixels(), pitch, size, size);
    };
  });
}
#endif

void AddBlend(const NamedMode& mode, Shape shape, Format f, int size) {
  const double count = double(size) * size;
  const std::string operation = std::string(mode.name) + kShapes[int(shape)];
  AddPincel(operation, Name(f), size, count, [=, &mode](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, shape, &mode] { Blend(mode, shape, *p); };
  });
  const int moved = (shape == Shape::kColour ? 2 : 3) * Bytes(f) + (shape != Shape::kSource);
  AddMemcpy(operation, Name(f), size, count, size_t(moved) * size_t(count));
#if PINCEL_BENCH_PIXMAN
  AddPixman(operation, mode.mode, shape, f, size);
#endif
  if (shape != Shape::kSource) return;
#if PINCEL_BENCH_OPENCV
  AddOpenCv(operation, mode.mode, f, size);
#endif
#if PINCEL_BENCH_LIBYUV
  AddLibyuv(operation, mode.mode, f, size);
#endif
}

}  // namespace

void AddBlends() {
  for (const Shape shape : {Shape::kSource, Shape::kColour, Shape::kMasked}) {
    for (const NamedMode& mode : kModes) {
      for (int size : kSizes) {
        for (Format f : kFormats) AddBlend(mode, shape, f, size);
      }
    }
  }
}

}  // namespace bench
