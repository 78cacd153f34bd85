#include "filters/antialias_rows.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/antialias_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
// clang-format off: after highway.h
#include "filters/coverage-inl.h"
#include "filters/settled-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// The bits of a format's pixels as the values' owner sees them: the value's own and those kept.
template <class Format>
struct ValueBits {
  static constexpr uint32_t kValue = 0xFF, kKept = 0xFF000000;
};
template <PackedFields Format>
struct ValueBits<Format> {
  static constexpr uint32_t kValue = Format::Blue::kMax, kKept = Format::Alpha::kMask;
  static_assert(Format::Blue::kLow == 0);
};

// Where the values of the rows above and below lie, from a value on.
struct Around {
  ptrdiff_t row[kCoverageLines];  // two above to two below

  HWY_INLINE ptrdiff_t operator()(int dy, int dx) const { return row[dy + 2] + dx; }
};

// Pixels from their values. What is kept of a pixel stays, and so does, under a cross, a pixel of
// value 0.
template <class Format, Smoothing smoothing>
struct SmoothKernel {
  using Lane = uint8_t;
  using Bits = ValueBits<Format>;
  static constexpr size_t kDstBytes = Format::kBytes;
  static constexpr bool kCross = smoothing == Smoothing::kCross;
  static constexpr bool kVectorWins = kHaveByteShuffle || (kCross && kDstBytes != 3);
  Around around;

  // Lanes(d16) values.
  template <class D16>
  HWY_INLINE hn::VFromD<D16> Values(D16 d16, const uint8_t* at) const {
    const auto tap = [&](int dy, int dx) HWY_ATTR {
      return hn::PromoteTo(d16, hn::LoadU(hn::Rebind<uint8_t, D16>(), at + around(dy, dx)));
    };
    const auto most = hn::Set(d16, uint16_t(Bits::kValue));
    if constexpr (kCross) {
      const auto near = hn::Add(hn::Add(tap(-1, 0), tap(1, 0)), hn::Add(tap(0, -1), tap(0, 1)));
      const auto far = hn::Add(
          hn::Add(hn::Add(tap(-2, 0), tap(2, 0)), hn::Add(tap(0, -2), tap(0, 2))), tap(0, 0));
      const auto sum = hn::SaturatedSub(hn::Add(near, hn::Add(near, near)), far);
      return hn::Min(hn::MulHigh(sum, hn::Set(d16, uint16_t(kCrossFactor))), most);
    } else {
      const auto row = [&](int dy) HWY_ATTR {
        return hn::Add(tap(dy, -1), hn::Add(tap(dy, 0), tap(dy, 1)));
      };
      const auto middle = hn::Add(hn::ShiftLeft<4>(tap(0, 0)), hn::Add(tap(0, -1), tap(0, 1)));
      return hn::Min(hn::ShiftRight<3>(hn::Add(middle, hn::Add(row(-1), row(1)))), most);
    }
  }
  template <class D, class V = hn::VFromD<D>>
  static HWY_INLINE V Pixels(D d, V pixels, V values, V middle) {
    using T = hn::TFromD<D>;
    auto result = values;
    if constexpr (Bits::kKept != 0 && kDstBytes != 3) {
      result = hn::Or(result, hn::And(pixels, hn::Set(d, T(Bits::kKept))));
    }
    if constexpr (kCross) result = hn::IfThenElse(hn::Eq(middle, hn::Zero(d)), pixels, result);
    return result;
  }
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* at) const {
    const HalfWordTag<D> d16;
    constexpr size_t kHalf = hn::MaxLanes(D()) / 2;
    if constexpr (kDstBytes == 2) {
      const auto half = [&](size_t i) HWY_ATTR {
        const auto middle = hn::PromoteTo(d16, hn::LoadU(hn::Half<D>(), at + i * kHalf));
        const auto pixels = LoadPixels(d16, dst + 2 * i * kHalf);
        return Pixels(d16, pixels, Values(d16, at + i * kHalf), middle);
      };
      const auto v0 = half(0), v1 = half(1);
      hn::StoreU(v0, d16, reinterpret_cast<uint16_t*>(out));
      hn::StoreU(v1, d16, reinterpret_cast<uint16_t*>(out) + kHalf);
    } else {
      const WordTag<D> d32;
      constexpr size_t kQuarter = kHalf / 2;
      const Words<D> pixels = LoadWords<kDstBytes>(d, dst);
      const auto low = Values(d16, at), high = Values(d16, at + kHalf);
      const auto quarter = [&](auto words, auto values, size_t i) HWY_ATTR {
        const hn::Rebind<uint8_t, decltype(d32)> d8;
        const auto middle = hn::PromoteTo(d32, hn::LoadU(d8, at + i * kQuarter));
        return Pixels(d32, words, values, middle);
      };
      const Words<D> values = Widened(d, HalfWords<D>{low, high});
      StoreWords<kDstBytes>(
          d,
          Words<D>{quarter(pixels.v0, values.v0, 0), quarter(pixels.v1, values.v1, 1),
                   quarter(pixels.v2, values.v2, 2), quarter(pixels.v3, values.v3, 3)},
          out);
    }
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* at) const {
    using Word = typename Format::Word;
    const auto tap = [&](int dy, int dx) { return uint32_t{at[around(dy, dx)]}; };
    const uint32_t pixel = Format::Load(dst), kept = pixel & Bits::kKept;
    if (!kCross) {
      Format::Store(out, Word(kept | Softened(SoftenedSum(tap), Bits::kValue)));
    } else {
      Format::Store(out, Word(*at == 0 ? pixel : kept | Crossed(CrossSum(tap), Bits::kValue)));
    }
  }
};

// How many pixels, counted from `first`, start within the bytes that are known.
HWY_INLINE ptrdiff_t KnownPixels(const CoverageImage& image, ptrdiff_t first, ptrdiff_t bytes,
                                 ptrdiff_t count) {
  return std::clamp((image.known - first + bytes - 1) / bytes, ptrdiff_t{0}, count);
}

// Copies the values of a row from column -1 on. `line` has column 0.
template <class Format>
HWY_INLINE void ReadLine(const CoverageImage& image, ptrdiff_t y, uint8_t* line) {
  constexpr ptrdiff_t kBytes = Format::kBytes;
  const ptrdiff_t left = y == 0 ? 0 : -1, count = image.width + 3 - left;
  const ptrdiff_t first = y * image.pitch + left * kBytes;
  const ptrdiff_t known = KnownPixels(image, first, kBytes, count);
  if (known > 0) {
    ReadFirstBytes<kBytes>(line + left, image.pixels + first, size_t(known),
                           uint8_t(ValueBits<Format>::kValue));
  }
  std::memset(line + left + known, 0, size_t(count - known));
  if (left == 0) line[-1] = 0;
}

// Under a cross a pixel of value 0 is restored from the copy that values are read from, at 24 bits
// with the byte behind it. It is as it was, unless the copy ends before. Intended.
template <class Format>
HWY_INLINE void ClearUnknown(const CoverageImage& image, ptrdiff_t first, const uint8_t* line) {
  constexpr ptrdiff_t kBytes = Format::kBytes, kRestored = kBytes == 3 ? 4 : kBytes;
  const ptrdiff_t end = first + (image.width - 1) * kBytes + kRestored;
  ptrdiff_t x = KnownPixels(image, first + kRestored - 1, kBytes, image.width);
  for (; x < image.width && first + x * kBytes < image.known; ++x) {
    const ptrdiff_t unknown = first + x * kBytes + kRestored - image.known;
    if (line[1 + x] == 0) std::memset(image.pixels + image.known, 0, size_t(unknown));
  }
  if (x < image.width) {
    std::memset(image.pixels + first + x * kBytes, 0, size_t(end - first - x * kBytes));
  }
}

// From column 1 on, and so one pixel past the end of the row. Intended.
template <class Format, Smoothing smoothing>
HWY_INLINE void SmoothAll(const CoverageImage& image, uint8_t* lines) {
  constexpr ptrdiff_t kLines = kCoverageLines;
  const auto line = [&](ptrdiff_t y) HWY_ATTR {
    return lines + 1 + y % kLines * ptrdiff_t(CoverageLineBytes(size_t(image.width)));
  };
  for (ptrdiff_t y = 0; y < kLines - 1; ++y) ReadLine<Format>(image, y, line(y));
  for (ptrdiff_t y = 2; y < image.height - 2; ++y) {
    // Rows are read before the first pixel that lies in them is written.
    ReadLine<Format>(image, y + 2, line(y + 2));
    const uint8_t* const middle = line(y);
    Around around;
    for (ptrdiff_t i = 0; i < kLines; ++i) around.row[i] = line(y - 2 + i) - middle;
    const ptrdiff_t first = y * image.pitch + Format::kBytes;
    const SmoothKernel<Format, smoothing> kernel{around};
    OnceRow(hn::ScalableTag<uint8_t>(), kernel, size_t(image.width), image.pixels + first,
            Stream<1>{middle + 1});
    if constexpr (smoothing == Smoothing::kCross) ClearUnknown<Format>(image, first, middle);
  }
}

void SmoothRows(int format, Smoothing smoothing, const CoverageImage& image, uint8_t* lines) {
  const auto smooth = [&](auto f) HWY_ATTR {
    using Format = decltype(f);
    if (smoothing == Smoothing::kSoften) {
      SmoothAll<Format, Smoothing::kSoften>(image, lines);
    } else {
      SmoothAll<Format, Smoothing::kCross>(image, lines);
    }
  };
  switch (format) {
    case 32:
      return smooth(Argb8888());
    case 24:
      return smooth(Rgb888());
    case 16:
      return smooth(Rgb565());
    case 19:
      return smooth(Argb4444());
    default:
      return smooth(Rgb555());
  }
}

// The threshold of a byte is the second byte of the number of bytes still to go. Intended.
HWY_INLINE uint8_t EdgeThreshold(size_t to_go) { return uint8_t(to_go >> 8); }

struct EdgeKernel {
  static constexpr int kLefts = 2;
  static constexpr size_t kLeastLanes = 16;
  const uint8_t* image;
  ptrdiff_t pitch;
  size_t count;

  template <class D>
  struct Vectors {
    D d;
    hn::VFromD<D> set, code, threshold;

    // `bit` where a byte is above the threshold.
    HWY_INLINE hn::VFromD<D> Bit(hn::VFromD<D> bytes, uint8_t bit) const {
      return hn::IfThenElseZero(hn::Gt(bytes, threshold), hn::Set(d, bit));
    }
    HWY_INLINE hn::VFromD<D> Guess() const { return hn::And(set, hn::Or(code, hn::Set(d, 24))); }
    HWY_INLINE hn::VFromD<D> Values(hn::VFromD<D> left, hn::VFromD<D> left2) const {
      return hn::And(set, hn::Or(code, hn::Or(Bit(left, 8), Bit(left2, 16))));
    }
  };
  template <class D>
  HWY_INLINE Vectors<D> At(D d, size_t x) const {
    const uint8_t* at = image + x;
    const size_t to_go = count - x;
    // Within a vector the threshold changes once, behind the byte whose count ends in 0.
    const auto later = hn::Gt(hn::Iota(d, 0), hn::Set(d, uint8_t(to_go)));
    const uint8_t threshold = EdgeThreshold(to_go);
    const auto thresholds =
        hn::IfThenElse(later, hn::Set(d, uint8_t(threshold - 1)), hn::Set(d, threshold));
    const auto is_set = hn::Ne(hn::LoadU(d, at), hn::Zero(d));
    Vectors<D> v{d, hn::VecFromMask(d, is_set), hn::Set(d, 3), thresholds};
    v.code = hn::Or(hn::Or(v.code, v.Bit(hn::LoadU(d, at - 2 * pitch), 128)),
                    hn::Or(v.Bit(hn::LoadU(d, at - pitch), 64),
                           hn::Or(v.Bit(hn::LoadU(d, at - 1 - pitch), 32),
                                  v.Bit(hn::LoadU(d, at + pitch - 1), 4))));
    return v;
  }
  HWY_INLINE uint8_t ValueAt(size_t x, uint8_t) const {
    const uint8_t* at = image + x;
    if (*at == 0) return 0;
    const uint8_t threshold = EdgeThreshold(count - x);
    return EdgeCode([&](ptrdiff_t dy, ptrdiff_t dx) { return at[dy * pitch + dx] > threshold; });
  }
};

void CodeEdges(uint8_t* first, size_t pitch, size_t count) {
  SettleRun(EdgeKernel{first, ptrdiff_t(pitch), count}, first, count, pitch);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(SmoothRows);
HWY_EXPORT(CodeEdges);

void SmoothRows(int format, Smoothing smoothing, const CoverageImage& image, uint8_t* lines) {
  HWY_DYNAMIC_DISPATCH(SmoothRows)(format, smoothing, image, lines);
}
void CodeEdges(uint8_t* first, size_t pitch, size_t count) {
  HWY_DYNAMIC_DISPATCH(CodeEdges)(first, pitch, count);
}

}  // namespace pincel
#endif  // HWY_ONCE
