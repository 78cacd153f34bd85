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

// Sums to channels in 16-bit lanes; no sum is below -32767. The weights have taken the divisor's
// sign.
struct NarrowResult {
  NarrowResult(const TapList& taps, const Plan& plan)
      : bias(taps.bias), one(taps.divisor == 1 || taps.divisor == -1), is_signed(plan.is_signed) {
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

// The fourth byte of 32-bit pixels becomes 0. Intended.
template <class Format, class D8>
HWY_INLINE hn::VFromD<D8> ColourBytes(D8 d8, hn::VFromD<D8> bytes) {
  if constexpr (Format::kBytes == 4) {
    const hn::Repartition<uint32_t, D8> d32;
    bytes = hn::And(bytes, hn::BitCast(d8, hn::Set(d32, 0x00FFFFFF)));
  }
  return bytes;
}

// Sums of 16 bits. The bytes of 24 and 32 bits are filtered one like the other, whatever their
// channel.
template <class Format>
struct NarrowKernel {
  static constexpr bool kByBytes = Format::kBytes != 2;
  static constexpr size_t kLongest = kPiece;

  NarrowKernel(const TapList& list, const Plan& plan) : result(list, plan) {
    const int32_t sign = list.divisor < 0 ? -1 : 1;
    for (int i = 0; i < list.count; ++i) {
      if (list.weights[i] != 0) taps.Add(list.offset(i), list.weights[i] * sign);
    }
    if constexpr (kHaveGrids) grid = Grid::Of(taps);
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

  // Two of them give one vector of bytes; `low` is for the first eight bytes of every sixteen.
  template <class D8>
  struct Sums {
    using D16 = hn::Repartition<int16_t, D8>;
    using V16 = hn::VFromD<D16>;
    HWY_INLINE void Add(const uint8_t* first, const uint8_t* second, V16 pair) {
      const D8 d8;
      const auto a = LoadPixels(d8, first), b = LoadPixels(d8, second);
      low = hn::Add(low, PairSum(hn::InterleaveLower(d8, a, b), pair));
      high = hn::Add(high, PairSum(hn::InterleaveUpper(d8, a, b), pair));
    }
    HWY_INLINE void Store(const NarrowResult& finish, uint8_t* dst) const {
      const D8 d8;
      const D16 d16;
      // Undoes the interleaving, which is within blocks of 16 bytes as well.
      const auto bytes = hn::ReorderDemote2To(d8, finish(d16, low, 1), finish(d16, high, 1));
      hn::StoreU(ColourBytes<Format>(d8, bytes), d8, dst);
    }
    // The sum of each two bytes, weighted.
    static HWY_INLINE V16 PairSum(hn::VFromD<D8> bytes, V16 weights) {
      const D16 d16;
      const hn::RebindToUnsigned<D16> du;
      if constexpr (kHaveByteShuffle) {
        const auto signed_bytes = hn::BitCast(hn::RebindToSigned<D8>(), weights);
        return hn::SatWidenMulPairwiseAdd(d16, bytes, signed_bytes);
      } else {
        const auto even = hn::BitCast(d16, hn::And(hn::BitCast(du, bytes), hn::Set(du, 0xFF)));
        const auto odd = hn::BitCast(d16, hn::ShiftRight<8>(hn::BitCast(du, bytes)));
        return hn::Add(hn::Mul(even, hn::ShiftRight<8>(hn::ShiftLeft<8>(weights))),
                       hn::Mul(odd, hn::ShiftRight<8>(weights)));
      }
    }
    V16 low, high;
  };

  template <class D8>
  HWY_INLINE void BytesAt(D8, uint8_t* dst, const uint8_t* const* at, size_t x) const {
    const auto zero = hn::Zero(hn::Repartition<int16_t, D8>());
    Sums<D8> sums = {zero, zero};
    for (size_t i = 0; i < taps.count; i += 2) {
      sums.Add(at[i] + x, at[i + 1] + x, hn::Set(hn::Repartition<int16_t, D8>(), weights[i / 2]));
    }
    sums.Store(result, dst + x);
  }
  // Two vectors of bytes: addresses and weights are loaded once.
  template <class D8>
  HWY_INLINE void TwiceBytesAt(D8, uint8_t* dst, const uint8_t* const* at, size_t x) const {
    constexpr size_t kSize = hn::MaxLanes(D8());
    const auto zero = hn::Zero(hn::Repartition<int16_t, D8>());
    Sums<D8> first = {zero, zero}, second = first;
    for (size_t i = 0; i < taps.count; i += 2) {
      const auto weight = hn::Set(hn::Repartition<int16_t, D8>(), weights[i / 2]);
      const uint8_t *a = at[i] + x, *b = at[i + 1] + x;
      first.Add(a, b, weight);
      second.Add(a + kSize, b + kSize, weight);
    }
    first.Store(result, dst + x);
    second.Store(result, dst + x + kSize);
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

  // `sources(taps, at)` finds the addresses of taps; `inside`: they all lie in the buffer, as far
  // from each other as their offsets.
  template <class Sources>
  HWY_INLINE void Pixels(uint8_t* dst, size_t pixels, bool inside, Sources&& sources) const {
    const uint8_t* at[kGroup + 1];
    sources(taps, at);
    // The other one of the last pair; its weight is 0.
    if (taps.count % 2 != 0) at[taps.count] = at[0];
    const size_t bytes = pixels * Format::kBytes;
    size_t done = 0;
    if constexpr (kHaveGrids) {
      // At the ends of the buffer, the pixels of different taps have nothing to do with each other.
      if (inside && grid.columns != 0) done = RunGrid(dst, at, bytes);
    }
    Run(hn::ScalableTag<uint8_t>(), dst, at, done, bytes);
  }

  // At least kUnit pixels, those before byte `x` done. The last vector may overlap the one
  // before.
  template <class D8>
  HWY_INLINE void Run(D8 d8, uint8_t* dst, const uint8_t* const* at, size_t x, size_t bytes) const {
    constexpr size_t kSize = hn::MaxLanes(D8());
    if (bytes < kSize) {
      if constexpr (CanHalve(D8())) Run(hn::Half<D8>(), dst, at, x, bytes);
      return;
    }
    const auto one = [&](size_t from) HWY_ATTR {
      if constexpr (kByBytes) {
        BytesAt(d8, dst, at, from);
      } else {
        FieldsAt(hn::Repartition<int16_t, D8>(), dst, at, from);
      }
    };
    if constexpr (kByBytes) {
      for (; x + 2 * kSize <= bytes; x += 2 * kSize) TwiceBytesAt(d8, dst, at, x);
    }
    for (; x + kSize <= bytes; x += kSize) one(x);
    if (x != bytes) one(bytes - kSize);
  }

  // Taps of equal weight in rows of equal distances: each column is summed once, and the sums of
  // neighbouring columns are shifted out of two vectors. Returns how many bytes are done: the sums
  // reach as far beyond them as a vector, which must not be farther than the taps.
  HWY_INLINE size_t RunGrid(uint8_t* dst, const uint8_t* const* at, size_t bytes) const {
    const hn::ScalableTag<uint8_t> d8;
    const hn::Repartition<int16_t, decltype(d8)> d16;
    const hn::RebindToUnsigned<decltype(d16)> du;
    using V = hn::VFromD<decltype(d16)>;
    constexpr size_t kLanes = hn::MaxLanes(hn::ScalableTag<int16_t>());
    const auto column_sums = [&](size_t x) HWY_ATTR {
      const hn::Half<decltype(d8)> half;
      V sum = hn::PromoteTo(d16, hn::LoadU(half, at[0] + x));
      for (size_t i = grid.columns; i < taps.count; i += grid.columns) {
        sum = hn::Add(sum, hn::PromoteTo(d16, hn::LoadU(half, at[i] + x)));
      }
      return sum;
    };
    size_t x = 0;
    V v0 = column_sums(0);
    for (; x + 3 * kLanes <= bytes; x += 2 * kLanes) {
      const V v1 = column_sums(x + kLanes), v2 = column_sums(x + 2 * kLanes);
      V low = v0, high = v1;
      for (size_t i = 1; i < grid.columns; ++i) {
        const auto shift = hn::IndicesFromVec(d16, hn::Iota(du, grid.distances[i]));
        low = hn::Add(low, hn::TwoTablesLookupLanes(d16, v0, v1, shift));
        high = hn::Add(high, hn::TwoTablesLookupLanes(d16, v1, v2, shift));
      }
      const V weight = hn::Set(d16, int16_t(taps.weights[0]));
      const auto sums = hn::OrderedDemote2To(d8, result(d16, hn::Mul(low, weight), 1),
                                             result(d16, hn::Mul(high, weight), 1));
      hn::StoreU(ColourBytes<Format>(d8, sums), d8, dst + x);
      v0 = v2;
    }
    return x;
  }

  static constexpr bool kHaveGrids = kByBytes && HWY_TARGET <= HWY_AVX3;  // shuffles of two vectors
  NarrowResult result;
  Group taps;
  Grid grid;
  int16_t weights[kGroup];
};

// Taps of any weight: 32-bit sums, a group of taps at a time. Taps are multiplied in pairs of
// 16-bit lanes; weights of more bits are two factors, the upper one for sums that count 65536-fold.
template <class Format>
struct WideKernel {
  static constexpr bool kByBytes = Format::kBytes != 2;
  static constexpr size_t kLongest = kSummed;

  WideKernel(const TapList& list, const Plan&) : taps(list), result(list) {}

  template <class Sources>
  HWY_INLINE void Pixels(uint8_t* dst, size_t pixels, bool /*inside*/, Sources&& sources) {
    const size_t bytes = pixels * Format::kBytes;
    std::memset(sums, 0, (bytes + 64) / 2 * kSumsOf2Bytes * sizeof(sums[0]));  // a vector more
    Group group;
    const auto add = [&]() HWY_ATTR {
      const uint8_t* at[kGroup + 1];
      sources(group, at);
      at[group.count] = at[0];
      group.weights[group.count] = 0;
      for (size_t i = 0; i < group.count; i += 2) {
        low[i / 2] = Pair(group.weights[i], group.weights[i + 1]);
        // What is left of the weights without their low halves, which are signed.
        high[i / 2] = Pair(int32_t((int64_t{group.weights[i]} + 0x8000) >> 16),
                           int32_t((int64_t{group.weights[i + 1]} + 0x8000) >> 16));
        any_high |= high[i / 2] != 0;
      }
      ForEachVector(hn::ScalableTag<uint8_t>(), bytes, [&](auto d8, size_t x, int32_t* s) HWY_ATTR {
        AddTaps(d8, (group.count + 1) / 2, at, x, s);
      });
      group.count = 0;
    };
    for (int i = 0; i < taps.count; ++i) {
      if (taps.weights[i] != 0) group.Add(taps.offset(i), taps.weights[i]);
      if (group.count == kGroup) add();
    }
    if (group.count != 0) add();
    ForEachVector(hn::ScalableTag<uint8_t>(), bytes,
                  [&](auto d8, size_t x, const int32_t* s) HWY_ATTR { Store(d8, dst + x, s); });
  }

  static constexpr int32_t Pair(int32_t even, int32_t odd) {
    return int32_t((uint32_t(even) & 0xFFFF) | uint32_t(odd) << 16);
  }

  // `function(d8, x, sums)` for vectors that cover all bytes; the last one may overlap the one
  // before, with sums of its own.
  template <class D8, class Function>
  HWY_INLINE void ForEachVector(D8, size_t bytes, Function&& function) {
    constexpr size_t kSize = hn::MaxLanes(D8());
    if (bytes < kSize) {
      if constexpr (CanHalve(D8())) ForEachVector(hn::Half<D8>(), bytes, function);
      return;
    }
    int32_t* s = sums;
    for (size_t x = 0;; x += kSize, s += kSize / 2 * kSumsOf2Bytes) {
      x = std::min(x, bytes - kSize);
      function(D8(), x, s);
      if (x + kSize == bytes) return;
    }
  }

  // The weights of two taps in every pair of 16-bit lanes.
  template <class D8>
  struct Weights {
    using D32 = hn::Repartition<int32_t, D8>;
    using V32 = hn::VFromD<D32>;
    using V16 = hn::VFromD<hn::Repartition<int16_t, D8>>;
    // `values`: what the first and the second tap read, of 8 bits each.
    HWY_INLINE V32 AddTo(V32 sum, hn::VFromD<hn::Repartition<uint16_t, D8>> values) const {
      const D32 d32;
      const hn::Repartition<int16_t, D8> d16;
      const V16 v = hn::BitCast(d16, values);
      sum = hn::Add(sum, hn::WidenMulPairwiseAdd(d32, v, hn::BitCast(d16, low)));
      if (any_high) {
        const V32 upper = hn::WidenMulPairwiseAdd(d32, v, hn::BitCast(d16, high));
        sum = hn::Add(sum, hn::ShiftLeft<16>(upper));
      }
      return sum;
    }
    V32 low, high;
    bool any_high;
  };
  template <class D8>
  HWY_INLINE Weights<D8> WeightsAt(D8, size_t pair) const {
    const hn::Repartition<int32_t, D8> d32;
    return {hn::Set(d32, low[pair]), hn::Set(d32, high[pair]), any_high};
  }

  template <class D8>
  HWY_INLINE void AddTaps(D8 d8, size_t pairs, const uint8_t* const* at, size_t x,
                          int32_t* s) const {
    const hn::Repartition<int32_t, D8> d32;
    const hn::Repartition<uint16_t, D8> d16;
    constexpr size_t kLanes = hn::MaxLanes(hn::Repartition<int32_t, D8>());
    const auto load = [&](size_t i) HWY_ATTR { return hn::LoadU(d32, s + i * kLanes); };
    const auto store = [&](auto v, size_t i) HWY_ATTR { hn::StoreU(v, d32, s + i * kLanes); };
    auto s0 = load(0), s1 = load(1), s2 = load(2), s3 = load(3);
    if constexpr (kByBytes) {
      for (size_t i = 0; i < pairs; ++i) {
        const auto weights = WeightsAt(d8, i);
        const auto a = LoadPixels(d8, at[2 * i] + x), b = LoadPixels(d8, at[2 * i + 1] + x);
        const auto low_half = hn::InterleaveLower(d8, a, b),
                   high_half = hn::InterleaveUpper(d8, a, b), zero = hn::Zero(d8);
        s0 = weights.AddTo(s0, hn::BitCast(d16, hn::InterleaveLower(d8, low_half, zero)));
        s1 = weights.AddTo(s1, hn::BitCast(d16, hn::InterleaveUpper(d8, low_half, zero)));
        s2 = weights.AddTo(s2, hn::BitCast(d16, hn::InterleaveLower(d8, high_half, zero)));
        s3 = weights.AddTo(s3, hn::BitCast(d16, hn::InterleaveUpper(d8, high_half, zero)));
      }
    } else {
      auto s4 = load(4), s5 = load(5);
      for (size_t i = 0; i < pairs; ++i) {
        const auto weights = WeightsAt(d8, i);
        hn::VFromD<decltype(d16)> b0, g0, r0, b1, g1, r1;
        SplitFields<Format>(d16, LoadPixels(d16, at[2 * i] + x), b0, g0, r0);
        SplitFields<Format>(d16, LoadPixels(d16, at[2 * i + 1] + x), b1, g1, r1);
        s0 = weights.AddTo(s0, hn::InterleaveLower(d16, b0, b1));
        s1 = weights.AddTo(s1, hn::InterleaveUpper(d16, b0, b1));
        s2 = weights.AddTo(s2, hn::InterleaveLower(d16, g0, g1));
        s3 = weights.AddTo(s3, hn::InterleaveUpper(d16, g0, g1));
        s4 = weights.AddTo(s4, hn::InterleaveLower(d16, r0, r1));
        s5 = weights.AddTo(s5, hn::InterleaveUpper(d16, r0, r1));
      }
      store(s4, 4);
      store(s5, 5);
    }
    store(s0, 0);
    store(s1, 1);
    store(s2, 2);
    store(s3, 3);
  }

  // Narrowing undoes the interleaving, which is within blocks of 16 bytes as well.
  template <class D8>
  HWY_INLINE void Store(D8 d8, uint8_t* dst, const int32_t* s) const {
    const hn::Repartition<int32_t, D8> d32;
    constexpr size_t kLanes = hn::MaxLanes(hn::Repartition<int32_t, D8>());
    const auto channel = [&](size_t i, int bias_times) HWY_ATTR {
      return result(d32, hn::LoadU(d32, s + i * kLanes), bias_times);
    };
    if constexpr (kByBytes) {
      const hn::Repartition<int16_t, D8> d16;
      const auto low_half = hn::ReorderDemote2To(d16, channel(0, 1), channel(1, 1));
      const auto high_half = hn::ReorderDemote2To(d16, channel(2, 1), channel(3, 1));
      const auto bytes = hn::ReorderDemote2To(d8, low_half, high_half);
      hn::StoreU(ColourBytes<Format>(d8, bytes), d8, dst);
    } else {
      const hn::Repartition<uint16_t, D8> d16;
      constexpr auto& kTimes = Channels<Format>::kBiasTimes;
      const auto half = [&](size_t i) HWY_ATTR {
        return JoinFields<Format>(d32, channel(i, kTimes[0]), channel(i + 2, kTimes[1]),
                                  channel(i + 4, kTimes[2]));
      };
      hn::StoreU(hn::ReorderDemote2To(d16, half(0), half(1)), d16,
                 reinterpret_cast<uint16_t*>(dst));
    }
  }

  static constexpr size_t kSumsOf2Bytes = kByBytes ? 2 : 3;
  const TapList& taps;
  WideResult result;
  int32_t low[kGroup / 2], high[kGroup / 2];  // weights of pairs
  bool any_high = false;
  int32_t sums[(kSummed * Format::kBytes + 64) / 2 * kSumsOf2Bytes];
};

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
