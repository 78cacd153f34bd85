// Directional blurs, anti-aliasing, tone, gradients, masks and shadows.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format kFormats[] = {Format::k565, Format::k555, Format::k4444, Format::k24, Format::k32};
constexpr uint32_t kColour = 0xFF4080C0;

std::shared_ptr<Surface> RandomSurface(Format f, int size, Random& random) {
  auto surface = std::make_shared<Surface>(f, size, size);
  surface->FillRandom(random);
  return surface;
}

CRectangulo All(const Surface& s) { return {0, 0, s.width, s.height}; }

// Along a row, where every pass over an 8-bit mask paints; times are for one pass. Beside it the same
// passes as masks that are drawn one by one.
void AddBlur(Format f, int size) {
  constexpr int kPasses = 16;
  const double count = double(size) * size * kPasses;
  for (Format mask_format : {Format::k8, Format::k32}) {
    const std::string operation = std::string("motion blur, mask ") + Name(mask_format);
    AddPincel(operation, Name(f), size, count, [=](Random& random) {
      auto dst = RandomSurface(f, size, random), mask = RandomSurface(mask_format, size, random);
      return [dst, mask] {
        FiltroMotionBlur(dst->desc, mask->desc, All(*dst), {0, 0}, kColour, kPasses, 0);
      };
    });
    Add(operation, Name(f), size, "DrawMask", count, [=](Random& random) {
      auto dst = RandomSurface(f, size, random), mask = RandomSurface(mask_format, size, random);
      return [dst, mask] {
        for (int i = 0; i < kPasses; ++i) {
          DrawMask(dst->desc, All(*dst), mask->desc, {0, 0}, kColour, nullptr);
        }
      };
    });
  }
  // Across the rows of an 8-bit mask one pass is left of 16; times are for the one.
  AddPincel("motion blur, excluded passes", Name(f), size, count / kPasses, [=](Random& random) {
    auto dst = RandomSurface(f, size, random), mask = RandomSurface(Format::k8, size, random);
    return [dst, mask] {
      FiltroMotionBlur(dst->desc, mask->desc, All(*dst), {0, 0}, kColour, kPasses, 1.5707964F);
    };
  });
}

void AddSmoothing(Format f, int size) {
  const double count = double(size) * size;
  const size_t moved = 2 * size_t(Bytes(f)) * size_t(count);
  AddPincel("DoAntiAlias", Name(f), size, count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image] { DoAntiAlias(image->desc, All(*image), image->desc, 0); };
  });
  AddMemcpy("DoAntiAlias", Name(f), size, count, moved);
  AddPincel("DoAntiAlias2", Name(f), size, count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image] { DoAntiAlias2(image->desc, All(*image), image->desc, 0); };
  });
  AddMemcpy("DoAntiAlias2", Name(f), size, count, moved);
#if PINCEL_BENCH_OPENCV
  if (Bytes(f) < 3) return;
  // All channels, from one image to another.
  Add("DoAntiAlias", Name(f), size, "OpenCV", count, [=](Random& random) {
    auto image = RandomSurface(f, size, random), out = RandomSurface(f, size, random);
    const cv::Mat kernel = (cv::Mat_<float>(3, 3) << 1, 1, 1, 1, 16, 1, 1, 1, 1) / 8;
    return [image, out, kernel, to = Mat(*out)] { cv::filter2D(Mat(*image), to, -1, kernel); };
  });
#endif
}

// One byte after the other, as the rule is told.
void CodeEdges(const Surface& s) {
  const ptrdiff_t pitch = s.desc.pitch;
  uint8_t* p = s.pixels() + 2 * pitch + 2;
  for (ptrdiff_t left = (s.height - 4) * pitch - 4; left > 0; --left, ++p) {
    const int t = int(left >> 8 & 255);
    if (*p == 0) continue;
    *p = uint8_t((p[-2 * pitch] > t) << 7 | (p[-pitch] > t) << 6 | (p[-1 - pitch] > t) << 5 |
                 (p[-2] > t) << 4 | (p[-1] > t) << 3 | (p[pitch - 1] > t) << 2 | 3);
  }
}

void GrowShadow(const Surface& shadow, const Surface& src, int decay, int limit) {
  const ptrdiff_t pitch = shadow.desc.pitch;
  for (ptrdiff_t i = pitch + 1; i < pitch * shadow.height; ++i) {
    uint8_t* p = shadow.pixels() + i;
    const int m = src.pixels()[i], t = (p[-pitch] + 2 * p[-pitch - 1] + p[-1]) >> 2;
    *p = uint8_t(m < 240 && t > decay && t - decay > m ? std::min(t - decay, limit) : m);
  }
}

// A mask as CreateMask makes it.
void FillMask(Surface& mask, Random& random) {
  FillSprite(mask, random);
  for (size_t i = 0; i < mask.buffer.size(); ++i) {
    if (mask.pixels()[i] != 0) mask.pixels()[i] = 255;
  }
}

void AddRuns(int size) {
  const double count = double(size) * size;
  const auto sprite = [size](Random& random) {
    auto mask = std::make_shared<Surface>(Format::k8, size, size);
    FillMask(*mask, random);
    return mask;
  };
  AddPincel("DoAntiAliasBMP", "8", size, count, [=](Random& random) {
    auto image = sprite(random);
    return [image] { DoAntiAliasBMP(image->desc, 256); };
  });
  AddMemcpy("DoAntiAliasBMP", "8", size, count, 2 * size_t(count));
  Add("DoAntiAliasBMP", "8", size, "plain loop", count, [=](Random& random) {
    auto image = sprite(random);
    return [image] { CodeEdges(*image); };
  });
  for (Format f : {Format::k8, Format::k32}) {
    AddPincel("CreateShadow", Name(f), size, count, [=](Random& random) {
      auto shadow = std::make_shared<Surface>(f, size, size);
      auto src = std::make_shared<Surface>(f, size, size);
      FillMask(*src, random);
      return [shadow, src] { CreateShadow(shadow->desc, src->desc, 8, 160, 256); };
    });
    AddMemcpy("CreateShadow", Name(f), size, count, 3 * size_t(Bytes(f)) * size_t(count));
  }
  Add("CreateShadow", "8", size, "plain loop", count, [=](Random& random) {
    auto shadow = std::make_shared<Surface>(Format::k8, size, size);
    auto src = sprite(random);
    return [shadow, src] { GrowShadow(*shadow, *src, 8, 160); };
  });
}

void AddFactor(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("DoFactor", Name(f), size, count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image] { DoFactor(image->desc, 255); };
  });
  AddMemcpy("DoFactor", Name(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_OPENCV
  if (Bytes(f) == 2) return;
  Add("DoFactor", Name(f), size, "OpenCV", count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image, to = Mat(*image)]() mutable { to.convertTo(to, -1, 255 / 256.0); };
  });
#endif
#if PINCEL_BENCH_LIBYUV
  if (f != Format::k32) return;
  Add("DoFactor", Name(f), size, "libyuv", count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image, size, pitch = image->desc.pitch] {
      libyuv::ARGBShade(image->pixels(), pitch, image->pixels(), pitch, size, size, 0xFFFEFEFE);
    };
  });
#endif
}

void AddCreateMask(Format f, int size) {
  const double count = double(size) * size;
  const auto sprite = [=](Random& random) {
    auto src = std::make_shared<Surface>(f, size, size);
    FillSprite(*src, random);
    return src;
  };
  AddPincel("CreateMask", Name(f), size, count, [=](Random& random) {
    auto mask = RandomSurface(Format::k8, size, random), src = sprite(random);
    return [mask, src] { CreateMask(mask->desc, src->desc, 256); };
  });
  AddMemcpy("CreateMask", Name(f), size, count, size_t(Bytes(f) + 1) * size_t(count));
#if PINCEL_BENCH_OPENCV
  if (Bytes(f) == 2) return;
  Add("CreateMask", Name(f), size, "OpenCV", count, [=](Random& random) {
    auto mask = RandomSurface(Format::k8, size, random), src = sprite(random);
    return [mask, src, to = Mat(*mask), highest = Bytes(src->format) == 4 ? 255 : 0] {
      cv::inRange(Mat(*src), cv::Scalar(0, 0, 0, 0), cv::Scalar(0, 0, 0, highest), to);
    };
  });
#endif
}

void AddGradient(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("DoGradient", Name(f), size, count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image] { DoGradient(image->desc, 0xFF8000, 0x0040FF); };
  });
  Add("DoGradient", Name(f), size, "IdxFillRect", count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    return [image] { IdxFillRect(image->desc, All(*image), kColour); };
  });
#if PINCEL_BENCH_PIXMAN
  if (f == Format::k555 || f == Format::k4444) return;
  Add("DoGradient", Name(f), size, "pixman", count, [=](Random& random) {
    auto image = RandomSurface(f, size, random);
    const pixman_point_fixed_t from = {0, 0}, to = {pixman_int_to_fixed(size), 0};
    const pixman_gradient_stop_t stops[] = {{0, {0xFFFF, 0x8000, 0, 0xFFFF}},
                                            {pixman_fixed_1, {0, 0x4000, 0xFFFF, 0xFFFF}}};
    return
        [image, size, dst = Pixman(*image),
         ramp = PixmanImage(pixman_image_create_linear_gradient(&from, &to, stops, 2),
                            pixman_image_unref)] { PixmanCopy(dst.get(), ramp.get(), size, size); };
  });
#endif
}

}  // namespace

void AddEffects() {
  for (int size : kSizes) {
    for (Format f : kFormats) {
      AddBlur(f, size);
      AddSmoothing(f, size);
      AddFactor(f, size);
      AddCreateMask(f, size);
      AddGradient(f, size);
    }
    AddFactor(Format::k8, size);
    AddCreateMask(Format::k8, size);
    AddRuns(size);
  }
}

}  // namespace bench
