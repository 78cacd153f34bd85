#include "filters/shadow_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/shadow_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
// clang-format off: after highway.h
#include "filters/coverage-inl.h"
#include "filters/settled-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class Format>
struct CoverKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = Format::kBytes;
  uint32_t key;
  uint8_t value;

  template <class D, class V = hn::VFromD<D>>
  HWY_INLINE V Cover(D d, V pixels) const {
    using T = hn::TFromD<D>;
    const auto key_bits = hn::And(pixels, hn::Set(d, T(kKeyBits<Format>)));
    return hn::IfThenZeroElse(hn::Eq(key_bits, hn::Set(d, T(key))), hn::Set(d, T(value)));
  }
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (kSrcBytes == 1) {
      hn::StoreU(Cover(d, hn::LoadU(d, src)), d, dst);
    } else if constexpr (kSrcBytes == 2) {
      const HalfWordTag<D> d16;
      const auto cover = [&](size_t i) HWY_ATTR {
        const auto* from = reinterpret_cast<const uint16_t*>(src + i * hn::MaxLanes(D()));
        return Cover(d16, hn::LoadU(d16, from));
      };
      hn::StoreU(LowBytes(d, HalfWords<D>{cover(0), cover(1)}), d, dst);
    } else {
      const auto cover = [&](auto words) HWY_ATTR { return Cover(WordTag<D>(), words); };
      hn::StoreU(LowBytes(d, ForEachVector(d, LoadWords<kSrcBytes>(d, src), cover)), d, dst);
    }
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    *dst = (Format::Load(src) & kKeyBits<Format>) == key ? uint8_t{0} : value;
  }
};

void CoverRows(int pixel_bytes, const SourceRows& rows, uint32_t key, uint8_t value) {
  switch (pixel_bytes) {
    case 1:
      return RepeatableRows(CoverKernel<Indexed8>{key, value}, rows);
    case 2:
      return RepeatableRows(CoverKernel<Any16>{key, value}, rows);
    case 3:
      return RepeatableRows(CoverKernel<Rgb888>{key, value}, rows);
    default:
      return RepeatableRows(CoverKernel<Argb8888>{key, value}, rows);
  }
}

// The highest channel of each pixel.
template <class Format>
struct HighestKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = Format::kBytes;
  static constexpr bool kVectorWins = PackedFields<Format> || kHaveByteShuffle;

  // The field at the top of the byte.
  template <class F, class D, class V = hn::VFromD<D>>
  static HWY_INLINE V Byte(D d, V words) {
    constexpr int kShift = F::kLow + F::kWidth - 8;
    auto byte = words;
    if constexpr (kShift > 0) byte = hn::ShiftRight<kShift>(words);
    if constexpr (kShift < 0) byte = hn::ShiftLeft<-kShift>(words);
    return hn::And(byte, hn::Set(d, hn::TFromD<D>(F::kMax << (8 - F::kWidth))));
  }
  template <class B, class G, class R, class D, class V = hn::VFromD<D>>
  static HWY_INLINE V Highest(D d, V words) {
    return hn::Max(Byte<B>(d, words), hn::Max(Byte<G>(d, words), Byte<R>(d, words)));
  }
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (PackedFields<Format>) {
      const HalfWordTag<D> d16;
      const auto highest = [&](size_t i) HWY_ATTR {
        const auto* from = reinterpret_cast<const uint16_t*>(src + i * hn::MaxLanes(D()));
        return Highest<typename Format::Blue, typename Format::Green, typename Format::Red>(
            d16, hn::LoadU(d16, from));
      };
      hn::StoreU(LowBytes(d, HalfWords<D>{highest(0), highest(1)}), d, dst);
    } else {
      hn::VFromD<D> blue, green, red;
      hn::LoadInterleaved3(d, src, blue, green, red);
      hn::StoreU(hn::Max(blue, hn::Max(green, red)), d, dst);
    }
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    *dst = MaskValue<Format>(Format::Load(src));
  }
};

void ReadMaskValues(int format, uint8_t* values, const uint8_t* src, size_t count) {
  const auto read = [&](auto kernel) HWY_ATTR {
    RepeatableRows(kernel, {{values, 0, count, 1}, src, 0});
  };
  switch (format) {
    case 16:
      return read(HighestKernel<Rgb565>());
    case 17:
    case 18:
      return read(HighestKernel<Rgb555>());
    case 19:
      return read(HighestKernel<Argb4444>());
    case 24:
      return read(HighestKernel<Rgb888>());
    case 32:
      return read(FirstByteKernel<4>{0xFF});
    default:
      return read(FirstByteKernel<1>{0xFF});
  }
}

// A run of shadow values: `above` and `above_left` are known, each value needs the one to its left.
struct GrowKernel {
  static constexpr int kLefts = 1;
  static constexpr size_t kLeastLanes = 32;
  ShadowRule rule;
  const uint8_t *above, *above_left, *mask;

  template <class D>
  struct Vectors {
    D d;
    hn::VFromD<D> above, above_left, mask, least, decay, limit;

    // The mean rounded down. AverageRound rounds up: one less where the sum is odd.
    static HWY_INLINE hn::VFromD<D> Mean(D d, hn::VFromD<D> a, hn::VFromD<D> b) {
      const auto odd = hn::And(hn::Xor(a, b), hn::Set(d, 1));
      return hn::Sub(hn::AverageRound(a, b), odd);
    }
    HWY_INLINE hn::VFromD<D> Guess() const { return above; }
    HWY_INLINE hn::VFromD<D> Values(hn::VFromD<D> left, hn::VFromD<D>) const {
      // floor((above + left + 2 above_left) / 4), whatever the inner mean cuts off.
      const auto mean = Mean(d, Mean(d, above, left), above_left);
      const auto value = hn::SaturatedSub(mean, decay);
      const auto kept = hn::Eq(hn::SaturatedSub(value, least), hn::Zero(d));
      return hn::IfThenElse(kept, mask, hn::Min(value, limit));
    }
  };
  template <class D>
  HWY_INLINE Vectors<D> At(D d, size_t x) const {
    const auto m = hn::LoadU(d, mask + x);
    // What the value must exceed; nothing exceeds that of a solid pixel.
    const auto solid = hn::Eq(hn::Max(m, hn::Set(d, uint8_t{ShadowRule::kSolid})), m);
    const auto least = hn::Or(m, hn::VecFromMask(d, solid));
    return {d,     hn::LoadU(d, above + x), hn::LoadU(d, above_left + x), m,
            least, hn::Set(d, rule.decay),  hn::Set(d, rule.limit)};
  }
  HWY_INLINE uint8_t ValueAt(size_t x, uint8_t left) const {
    return rule.Value(mask[x], above[x], above_left[x], left);
  }
};

void GrowBytes(uint8_t* shadow, size_t pitch, const uint8_t* mask, size_t count, ShadowRule rule) {
  const uint8_t* above = shadow - pitch;
  SettleRun(GrowKernel{rule, above, above - 1, mask}, shadow, count, pitch);
}

// The first three bytes of 32-bit pixels or'ed: what counts to the left, where above it is the
// first byte alone. Intended.
struct AnyByteKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = 4;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    const auto any = [&](auto words) HWY_ATTR {
      const auto either =
          hn::Or(words, hn::Or(hn::ShiftRight<8>(words), hn::ShiftRight<16>(words)));
      return hn::And(either, hn::Set(WordTag<D>(), 255));
    };
    hn::StoreU(LowBytes(d, ForEachVector(d, LoadWords<4>(d, src), any)), d, dst);
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    *dst = uint8_t(src[0] | src[1] | src[2]);
  }
};

// A value in the first three bytes of each pixel.
struct GreyKernel {
  using Lane = uint32_t;
  static constexpr size_t kDstBytes = 4, kSrcBytes = 1;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const auto values = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), src));
    const auto pairs = hn::Or(values, hn::ShiftLeft<8>(values));
    const auto grey = hn::Or(pairs, hn::ShiftLeft<16>(values));
    const auto fourth = hn::And(LoadPixels(d, dst), hn::Set(d, 0xFF000000));
    hn::StoreU(hn::Or(grey, fourth), d, reinterpret_cast<uint32_t*>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    out[3] = dst[3];
    out[0] = out[1] = out[2] = *src;
  }
};

void GrowWords(uint8_t* shadow, size_t pitch, const uint8_t* mask, size_t count, ShadowRule rule) {
  // Pieces that end before the row that they are made of, with the value to the left in front.
  constexpr size_t kPiece = 512;
  uint8_t above[kPiece], above_left[kPiece], values[1 + kPiece];
  const size_t most = std::clamp<size_t>(pitch / 4, 1, kPiece);
  const hn::ScalableTag<uint8_t> d;
  for (size_t x = 0; x < count; x += most) {
    const size_t width = std::min(most, count - x);
    uint8_t* to = shadow + 4 * x;
    RepeatableRow(d, FirstByteKernel<4>{0xFF}, above, to - pitch, width);
    RepeatableRow(d, AnyByteKernel(), above_left, to - pitch - 4, width);
    AnyByteKernel().Pixel(values, to - 4);
    SettleRun(GrowKernel{rule, above, above_left, mask + x}, values + 1, width, kPiece);
    OnceRow(hn::ScalableTag<uint32_t>(), GreyKernel(), width, to, Stream<1>{values + 1});
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(CoverRows);
HWY_EXPORT(ReadMaskValues);
HWY_EXPORT(GrowBytes);
HWY_EXPORT(GrowWords);

void CoverRows(int pixel_bytes, const SourceRows& rows, uint32_t key, uint8_t value) {
  HWY_DYNAMIC_DISPATCH(CoverRows)(pixel_bytes, rows, key, value);
}
void ReadMaskValues(int format, uint8_t* values, const uint8_t* src, size_t count) {
  HWY_DYNAMIC_DISPATCH(ReadMaskValues)(format, values, src, count);
}
void GrowBytes(uint8_t* shadow, size_t pitch, const uint8_t* mask, size_t count, ShadowRule rule) {
  HWY_DYNAMIC_DISPATCH(GrowBytes)(shadow, pitch, mask, count, rule);
}
void GrowWords(uint8_t* shadow, size_t pitch, const uint8_t* mask, size_t count, ShadowRule rule) {
  HWY_DYNAMIC_DISPATCH(GrowWords)(shadow, pitch, mask, count, rule);
}

}  // namespace pincel
#endif  // HWY_ONCE
