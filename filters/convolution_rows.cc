#include "filters/convolution_rows.h"

#include "filters/convolution_plan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/convolution_rows.cc"
// clang-format off: must come before everything else that is compiled for each target
#include "hwy/foreach_target.h"
// clang-format on
#include "filters/convolution-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

// Walks an image in pieces of rows. Just before a piece is filtered, what its taps read is copied.
template <class Format, class Kernel>
class Pieces {
 public:
  HWY_INLINE Pieces(const ConvolvedImage& convolved, const TapList& taps, const Plan& plan)
      : image(convolved),
        kernel(taps, plan),
        last(int64_t(image.bytes) - kPixel),
        reach(plan.highest),
        inner_begin(-int64_t{plan.lowest}),
        inner_end(last - plan.highest) {}

  HWY_INLINE void Run() {
    const Rows& rows = image.pixels;
    for (size_t y = 0; y < rows.height; ++y) {
      int64_t at = int64_t(y) * rows.dst_pitch;
      for (size_t left = rows.width; left != 0;) {
        const size_t pixels = PieceAt(at, left);
        RunPiece(at, pixels);
        at += int64_t(pixels) * kPixel;
        left -= pixels;
      }
    }
    CopyUpTo(image.bytes);
  }

 private:
  static constexpr int64_t kPixel = Format::kBytes;

  // All taps of a pixel lie in the buffer when it begins at inner_begin to inner_end.
  bool IsInside(int64_t at, size_t pixels) const {
    return at >= inner_begin && at + int64_t(pixels - 1) * kPixel <= inner_end;
  }

  // How many of the next `left` pixels are treated alike.
  size_t PieceAt(int64_t at, size_t left) const {
    size_t pixels = std::min(left, kStaged);
    if (IsInside(at, kUnit)) {
      const auto inside = size_t((inner_end - at) / kPixel + 1);
      pixels = std::min({left, inside, Kernel::kLongest});
    }
    return pixels;
  }

  void CopyUpTo(uint64_t end) {
    // Up to three bytes at the end are not copied; taps there read what the copy had. Intended.
    const size_t to = size_t(std::min<uint64_t>(end + 3, image.bytes)) & ~size_t{3};
    if (to <= copied) return;
    std::memcpy(image.copy + copied, image.pixels.dst + copied, to - copied);
    copied = to;
  }

  HWY_INLINE void RunPiece(int64_t at, size_t pixels) {
    // A unit at least: the pixels behind a shorter piece are computed and thrown away.
    const size_t computed = std::max(pixels, kUnit);
    CopyUpTo(uint64_t(at + reach) + computed * size_t{kPixel});
    const bool inside = IsInside(at, computed);
    const auto sources = [&](const Group& taps, const uint8_t** from) HWY_ATTR {
      for (size_t i = 0; i < taps.count; ++i) {
        from[i] = inside ? image.copy + (at + taps.offsets[i])
                         : Clamped(at + taps.offsets[i], computed, staged[i]);
      }
    };
    uint8_t* dst = image.pixels.dst + at;
    if (computed == pixels) {
      kernel.Pixels(dst, pixels, inside, sources);
    } else {
      uint8_t unit[kUnit * 4];  // a whole vector at least
      kernel.Pixels(unit, kUnit, inside, sources);
      std::memcpy(dst, unit, pixels * size_t{kPixel});
    }
  }

  // The address of pixels that begin at byte `at`. Where some lie outside the buffer, they are put
  // together in `stage`: beyond its ends lie its first and its last pixel.
  const uint8_t* Clamped(int64_t at, size_t pixels, uint8_t* stage) {
    const auto count = int64_t(pixels);
    const int64_t before = at >= 0 ? 0 : std::min((kPixel - 1 - at) / kPixel, count);
    const int64_t up_to_last = at > last ? 0 : std::min((last - at) / kPixel + 1, count);
    if (before == 0 && up_to_last == count) return image.copy + at;
    if (before == count) return first_pixels.Of(image.copy);
    if (up_to_last == 0) return last_pixels.Of(image.copy + last);
    const auto put = [&](int64_t begin, int64_t end, const uint8_t* from) {
      if (begin != end) std::memcpy(stage + begin * kPixel, from, size_t((end - begin) * kPixel));
    };
    if (before != 0) put(0, before, first_pixels.Of(image.copy));
    put(before, up_to_last, image.copy + (at + before * kPixel));
    if (up_to_last != count) put(up_to_last, count, last_pixels.Of(image.copy + last));
    return stage;
  }

  // A pixel of the copy, as often as a piece may need it.
  struct Repeated {
    const uint8_t* Of(const uint8_t* pixel) {
      if (!made) {
        for (size_t i = 0; i < sizeof(pixels); i += kPixel) std::memcpy(pixels + i, pixel, kPixel);
        made = true;
      }
      return pixels;
    }
    bool made = false;
    uint8_t pixels[kStaged * kPixel];
  };

  const ConvolvedImage& image;
  Kernel kernel;
  const int64_t last, reach, inner_begin, inner_end;
  size_t copied = 0;
  Repeated first_pixels, last_pixels;
  uint8_t staged[kGroup][kStaged * kPixel];
};

#endif  // HWY_TARGET != HWY_SCALAR

// One pixel after the other, from a copy made before: all that there is without vectors, and what
// is left where the copy overlaps the image.
template <class Format>
void ConvolvePixels(const ConvolvedImage& image, const TapList& taps) {
  const Rows& rows = image.pixels;
  std::memmove(image.copy, rows.dst, image.bytes & ~size_t{3});
  const auto last = int64_t(image.bytes) - Format::kBytes;
  ForEachRow(rows, [&](uint8_t* row) {
    for (size_t x = 0; x < rows.width; ++x) {
      uint8_t* pixel = row + x * Format::kBytes;
      Format::Store(pixel, typename Format::Word(
                               ConvolvedPixel<Format>(image.copy, pixel - rows.dst, last, taps)));
    }
  });
}

template <class Format>
void ConvolveBuffer(const ConvolvedImage& image, const TapList& taps) {
  const auto begin = reinterpret_cast<uintptr_t>(image.pixels.dst),
             copy = reinterpret_cast<uintptr_t>(image.copy);
  const bool apart = begin - copy >= image.bytes && copy - begin >= image.bytes;
#if HWY_TARGET != HWY_SCALAR
  if (apart) {
    const Plan plan = Plan::Of<Format>(taps);
    if (plan.is_narrow) {
      Pieces<Format, NarrowKernel<Format>>(image, taps, plan).Run();
    } else {
      Pieces<Format, WideKernel<Format>>(image, taps, plan).Run();
    }
    return;
  }
#endif
  (void)apart;
  ConvolvePixels<Format>(image, taps);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

void Convolve(Argb8888, const ConvolvedImage& image, const TapList& taps) {
  HWY_EXPORT_T(Convolve32, ConvolveBuffer<Argb8888>);
  HWY_DYNAMIC_DISPATCH_T(Convolve32)(image, taps);
}
void Convolve(Rgb888, const ConvolvedImage& image, const TapList& taps) {
  HWY_EXPORT_T(Convolve24, ConvolveBuffer<Rgb888>);
  HWY_DYNAMIC_DISPATCH_T(Convolve24)(image, taps);
}
void Convolve(Rgb565, const ConvolvedImage& image, const TapList& taps) {
  HWY_EXPORT_T(Convolve565, ConvolveBuffer<Rgb565>);
  HWY_DYNAMIC_DISPATCH_T(Convolve565)(image, taps);
}
void Convolve(Rgb555, const ConvolvedImage& image, const TapList& taps) {
  HWY_EXPORT_T(Convolve555, ConvolveBuffer<Rgb555>);
  HWY_DYNAMIC_DISPATCH_T(Convolve555)(image, taps);
}
void Convolve(Argb4444, const ConvolvedImage& image, const TapList& taps) {
  HWY_EXPORT_T(Convolve4444, ConvolveBuffer<Argb4444>);
  HWY_DYNAMIC_DISPATCH_T(Convolve4444)(image, taps);
}

}  // namespace pincel
#endif  // HWY_ONCE
