// Per-target: the sums of taps, narrow and wide, and what they become.
#if defined(FILTERS_CONVOLUTION_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef FILTERS_CONVOLUTION_INL_H_
#undef FILTERS_CONVOLUTION_INL_H_
#else
#define FILTERS_CONVOLUTION_INL_H_
#endif

#include "filters/convolution_plan.h"
#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

// Sums to channels in 16-bit lanes; the sums are at least -32767.
struct NarrowResult {
  NarrowResult(const TapList& taps, bool sums_signed)
      : bias(taps.bias), one(taps.divisor == 1 || taps.divisor == -1), is_signed(sums_signed) {
    // The weights take the divisor's sign.
    const uint32_t divisor =
        taps.divisor < 0 ? 0u - uint32_t(taps.divisor) : uint32_t(taps.divisor);
    if (!one) reciprocal = Reciprocal<15>::Of(divisor);
  }
  template <class D16>
  HWY_INLINE hn::VFromD<D16> operator()(D16 d16, hn::VFromD<D16> sum, int bias_times) const {
    auto quotient = sum;
    if (!one) {
      const hn::RebindToUnsigned<D16> du;
      const auto sign = hn::BroadcastSignBit(sum);
      if (is_signed) quotient = hn::Sub(hn::Xor(sum, sign), sign);
      const auto product =
          hn::MulHigh(hn::BitCast(du, quotient), hn::Set(du, uint16_t(reciprocal.multiplier)));
      quotient = hn::BitCast(d16, hn::ShiftRightSame(product, reciprocal.shift));
      if (is_signed) quotient = hn::Sub(hn::Xor(quotient, sign), sign);
    }
    return hn::SaturatedAdd(quotient, hn::Set(d16, int16_t(bias * bias_times)));
  }
  int bias;
  bool one, is_signed;
  Reciprocal<15> reciprocal = {};
};

// Sums to channels in 32-bit lanes, whatever they are.
struct WideResult {
  explicit WideResult(const TapList& taps) : bias(uint32_t(taps.bias)), divisor(taps.divisor) {
    const uint32_t magnitude = divisor < 0 ? 0u - uint32_t(divisor) : uint32_t(divisor);
    one = magnitude == 1;
    if (!one) reciprocal = Reciprocal<31>::Of(magnitude);
  }
  template <class D32>
  HWY_INLINE hn::VFromD<D32> operator()(D32 d32, hn::VFromD<D32> sum, int bias_times) const {
    const hn::RebindToUnsigned<D32> du;
    auto quotient = sum;
    if (!one) {
      const auto sign = hn::BroadcastSignBit(sum);
      const auto product = hn::MulHigh(hn::BitCast(du, hn::Sub(hn::Xor(sum, sign), sign)),
                                       hn::Set(du, reciprocal.multiplier));
      const auto magnitude = hn::BitCast(d32, hn::ShiftRightSame(product, reciprocal.shift));
      quotient = hn::Sub(hn::Xor(magnitude, sign), sign);
    }
    if (divisor < 0) quotient = hn::Neg(quotient);
    return hn::Add(quotient, hn::Set(d32, int32_t(bias * uint32_t(bias_times))));
  }
  uint32_t bias;
  int32_t divisor;
  bool one;
  Reciprocal<31> reciprocal = {};
};

// The fields of 16-bit pixels in lanes of their size or wider.
template <class Format, class D, class V = hn::VFromD<D>>
HWY_INLINE void SplitFields(D d, V pixels, V& blue, V& green, V& red) {
  using F = Format;
  using T = hn::TFromD<D>;
  blue = hn::And(pixels, hn::Set(d, T(F::Blue::kMask)));
  green = hn::And(hn::ShiftRight<F::Green::kLow>(pixels), hn::Set(d, T(F::Green::kMax)));
  red = hn::ShiftRight<F::Red::kLow>(pixels);
}
template <class Format, class D, class V = hn::VFromD<D>>
HWY_INLINE V JoinFields(D d, V blue, V green, V red) {
  using F = Format;
  const auto clamped = [&](V v, uint32_t max) HWY_ATTR {
    return hn::Min(hn::Max(v, hn::Zero(d)), hn::Set(d, hn::TFromD<D>(max)));
  };
  return hn::Or(clamped(blue, F::Blue::kMax),
                hn::Or(hn::ShiftLeft<F::Green::kLow>(clamped(green, F::Green::kMax)),
                       hn::ShiftLeft<F::Red::kLow>(clamped(red, F::Red::kMax))));
}

// 32-bit pixels lose their fourth byte.
template <class Format, class D8>
HWY_INLINE hn::VFromD<D8> ColourBytes(D8 d8, hn::VFromD<D8> bytes) {
  if constexpr (Format::kBytes == 4) {
    const hn::Repartition<uint32_t, D8> d32;
    bytes = hn::And(bytes, hn::BitCast(d8, hn::Set(d32, 0x00FFFFFF)));
  }
  return bytes;
}

// Filters pixels whose taps begin at `at[tap]`; the bytes of 24 and 32 bits are independent streams.
template <class Format>
struct NarrowKernel {
  static constexpr bool kByBytes = Format::kBytes != 2;
  static constexpr size_t kLongest = kPiece, kMultiple = 1;

  NarrowKernel(const TapList& list, const Plan& plan) : result(list, plan.is_signed) {
    const int32_t sign = list.divisor < 0 ? -1 : 1;
    if (sign < 0) result.is_signed = true;
    for (int i = 0; i < list.count; ++i) {
      if (list.weights[i] != 0) taps.Add(list.offset(i), list.weights[i] * sign);
    }
    if constexpr (kByBytes) {
      taps.offsets[taps.count] = 0;
      taps.weights[taps.count] = 0;
      for (size_t i = 0; i < taps.count; i += 2) {
        weights[i / 2] = int16_t((taps.weights[i] & 0xFF) | taps.weights[i + 1] * 256);
      }
    } else {
      for (size_t i = 0; i < taps.count; ++i) weights[i] = int16_t(taps.weights[i]);
    }
  }

  // `vectors` vectors at once.
  template <size_t vectors, class D8>
  HWY_INLINE void BytesAt(D8 d8, uint8_t* dst, const uint8_t* const* at, size_t x) const {
    const hn::Repartition<int16_t, D8> d16;
    using V = hn::VFromD<decltype(d16)>;
    constexpr size_t kLanes = hn::MaxLanes(D8());
    V low[vectors], high[vectors];
    for (size_t v = 0; v < vectors; ++v) low[v] = high[v] = hn::Zero(d16);
    for (size_t i = 0; i < taps.count; i += 2) {
      const uint8_t *first = at[i] + x, *second = at[i + 1] + x;
      const V weight = hn::Set(d16, weights[i / 2]);
      for (size_t v = 0; v < vectors; ++v) {
        const auto a = LoadPixels(d8, first + v * kLanes), b = LoadPixels(d8, second + v * kLanes);
        low[v] = hn::Add(low[v], PairSum(d8, hn::InterleaveLower(d8, a, b), weight));
        high[v] = hn::Add(high[v], PairSum(d8, hn::InterleaveUpper(d8, a, b), weight));
      }
    }
    for (size_t v = 0; v < vectors; ++v) {
      // Undoes the interleaving, within blocks of 16 bytes as well.
      const auto bytes = hn::ReorderDemote2To(d8, result(d16, low[v], 1), result(d16, high[v], 1));
      hn::StoreU(ColourBytes<Format>(d8, bytes), d8, dst + x + v * kLanes);
    }
  }
  // The sum of each two bytes, weighted.
  template <class D8, class V16>
  static HWY_INLINE V16 PairSum(D8, hn::VFromD<D8> bytes, V16 weights) {
    const hn::Repartition<int16_t, D8> d16;
    if constexpr (kHaveByteShuffle) {
      return hn::SatWidenMulPairwiseAdd(d16, bytes, hn::BitCast(hn::RebindToSigned<D8>(), weights));
    } else {
      const auto words = hn::BitCast(d16, bytes);
      const auto even = hn::And(words, hn::Set(d16, 0xFF));
      const auto odd = hn::BitCast(
          d16, hn::ShiftRight<8>(hn::BitCast(hn::RebindToUnsigned<decltype(d16)>(), words)));
      const auto low = hn::ShiftRight<8>(hn::ShiftLeft<8>(weights));
      return hn::Add(hn::Mul(even, low), hn::Mul(odd, hn::ShiftRight<8>(weights)));
    }
  }

  template <class D16>
  HWY_INLINE void FieldsAt(D16 d16, uint8_t* dst, const uint8_t* const* at, size_t x) const {
    const hn::RebindToUnsigned<D16> du;
    using V = hn::VFromD<D16>;
    V blue = hn::Zero(d16), green = blue, red = blue;
    for (size_t i = 0; i < taps.count; ++i) {
      hn::VFromD<decltype(du)> b, g, r;
      SplitFields<Format>(du, LoadPixels(du, at[i] + x), b, g, r);
      const V weight = hn::Set(d16, weights[i]);
      blue = hn::Add(blue, hn::Mul(hn::BitCast(d16, b), weight));
      green = hn::Add(green, hn::Mul(hn::BitCast(d16, g), weight));
      red = hn::Add(red, hn::Mul(hn::BitCast(d16, r), weight));
    }
    constexpr auto& kTimes = Channels<Format>::kBiasTimes;
    const V pixels = JoinFields<Format>(d16, result(d16, blue, kTimes[0]),
                                        result(d16, green, kTimes[1]), result(d16, red, kTimes[2]));
    hn::StoreU(hn::BitCast(du, pixels), du, reinterpret_cast<uint16_t*>(dst + x));
  }

  template <class Sources>
  HWY_INLINE void Pixels(uint8_t* dst, size_t pixels, Sources&& sources) const {
    const uint8_t* at[kGroup + 1];
    sources(taps, at);
    at[taps.count] = at[0];  // the other one of the last pair; its weight is 0
    Run(hn::ScalableTag<uint8_t>(), dst, at, pixels * Format::kBytes);
  }

  // At least kUnit pixels. The last vector may overlap the one before.
  template <class D8>
  HWY_INLINE void Run(D8 d8, uint8_t* dst, const uint8_t* const* at, size_t bytes) const {
    constexpr size_t kSize = hn::MaxLanes(D8());
    if (bytes < kSize) {
      if constexpr (CanHalve(D8())) Run(hn::Half<D8>(), dst, at, bytes);
      return;
    }
    size_t x = 0;
    const auto one = [&](size_t from) HWY_ATTR {
      if constexpr (kByBytes) {
        BytesAt<1>(d8, dst, at, from);
      } else {
        FieldsAt(hn::Repartition<int16_t, D8>(), dst, at, from);
      }
    };
    if constexpr (kByBytes) {
      for (; x + 2 * kSize <= bytes; x += 2 * kSize) BytesAt<2>(d8, dst, at, x);
    }
    for (; x + kSize <= bytes; x += kSize) one(x);
    if (x != bytes) one(bytes - kSize);
  }

  NarrowResult result;
  Group taps;
  int16_t weights[kGroup];
};

// Taps of any weight: 32-bit sums, a group of taps at a time.
template <class Format>
struct WideKernel {
  static constexpr bool kByBytes = Format::kBytes != 2;
  static constexpr size_t kLongest = kSummed, kMultiple = kUnit;
  using D = hn::ScalableTag<int32_t>;
  using V = hn::VFromD<D>;
  static constexpr size_t kLanes = hn::MaxLanes(D());
  // Vectors at once: together they are whole pixels, and a unit is a multiple of them.
  static constexpr size_t kVectors = Format::kBytes == 2 ? 1 : size_t{Format::kBytes};
  static_assert(kUnit % kLanes == 0);

  WideKernel(const TapList& list, const Plan&) : taps(list), result(list) {}

  template <class Sources>
  HWY_INLINE void Pixels(uint8_t* dst, size_t pixels, Sources&& sources) {
    std::memset(sums, 0, sizeof(sums));
    Group group;
    const auto add = [&]() HWY_ATTR {
      const uint8_t* at[kGroup];
      sources(group, at);
      AddGroup(group, at, pixels);
      group.count = 0;
    };
    for (int i = 0; i < taps.count; ++i) {
      if (taps.weights[i] != 0) group.Add(taps.offset(i), taps.weights[i]);
      if (group.count == kGroup) add();
    }
    if (group.count != 0) add();
    Store(dst, pixels);
  }

  HWY_INLINE void AddGroup(const Group& group, const uint8_t* const* at, size_t pixels) {
    const D d;
    if constexpr (kByBytes) {
      const hn::Rebind<uint8_t, D> d8;
      for (size_t x = 0; x < pixels * Format::kBytes; x += kVectors * kLanes) {
        V sum[kVectors];
        for (size_t v = 0; v < kVectors; ++v) sum[v] = hn::LoadU(d, sums + x + v * kLanes);
        for (size_t i = 0; i < group.count; ++i) {
          const V weight = hn::Set(d, group.weights[i]);
          const uint8_t* from = at[i] + x;
          for (size_t v = 0; v < kVectors; ++v) {
            const V bytes = hn::PromoteTo(d, hn::LoadU(d8, from + v * kLanes));
            sum[v] = hn::Add(sum[v], hn::Mul(bytes, weight));
          }
        }
        for (size_t v = 0; v < kVectors; ++v) hn::StoreU(sum[v], d, sums + x + v * kLanes);
      }
    } else {
      const hn::Rebind<uint16_t, D> d16;
      for (size_t x = 0; x < pixels; x += kLanes) {
        int32_t* at_x = sums + x;
        V blue = hn::LoadU(d, at_x), green = hn::LoadU(d, at_x + kSummed),
          red = hn::LoadU(d, at_x + 2 * kSummed);
        for (size_t i = 0; i < group.count; ++i) {
          const V weight = hn::Set(d, group.weights[i]);
          V b, g, r;
          SplitFields<Format>(d, hn::PromoteTo(d, LoadPixels(d16, at[i] + 2 * x)), b, g, r);
          blue = hn::Add(blue, hn::Mul(b, weight));
          green = hn::Add(green, hn::Mul(g, weight));
          red = hn::Add(red, hn::Mul(r, weight));
        }
        hn::StoreU(blue, d, at_x);
        hn::StoreU(green, d, at_x + kSummed);
        hn::StoreU(red, d, at_x + 2 * kSummed);
      }
    }
  }

  HWY_INLINE void Store(uint8_t* dst, size_t pixels) const {
    const D d;
    if constexpr (kByBytes) {
      const hn::Rebind<uint8_t, D> d8;
      for (size_t x = 0; x < pixels * Format::kBytes; x += kLanes) {
        const auto bytes = hn::DemoteTo(d8, result(d, hn::LoadU(d, sums + x), 1));
        hn::StoreU(ColourBytes<Format>(d8, bytes), d8, dst + x);
      }
    } else {
      const hn::Rebind<uint16_t, D> d16;
      constexpr auto& kTimes = Channels<Format>::kBiasTimes;
      for (size_t x = 0; x < pixels; x += kLanes) {
        const auto channel = [&](size_t c) HWY_ATTR {
          return result(d, hn::LoadU(d, sums + c * kSummed + x), kTimes[c]);
        };
        const V words = JoinFields<Format>(d, channel(0), channel(1), channel(2));
        hn::StoreU(hn::DemoteTo(d16, words), d16, reinterpret_cast<uint16_t*>(dst + 2 * x));
      }
    }
  }

  const TapList& taps;
  WideResult result;
  int32_t sums[kSummed * (kByBytes ? size_t{Format::kBytes} : 3)];  // of bytes, or three planes
};

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
