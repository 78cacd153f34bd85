// Per-target: values that stand in the first bytes of pixels.
#if defined(FILTERS_COVERAGE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef FILTERS_COVERAGE_INL_H_
#undef FILTERS_COVERAGE_INL_H_
#else
#define FILTERS_COVERAGE_INL_H_
#endif

#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

template <class D8>
HWY_INLINE Words<D8> Widened(D8, const HalfWords<D8>& words) {
  const WordTag<D8> d32;
  return {hn::PromoteLowerTo(d32, words.v0), hn::PromoteUpperTo(d32, words.v0),
          hn::PromoteLowerTo(d32, words.v1), hn::PromoteUpperTo(d32, words.v1)};
}

#endif  // HWY_TARGET != HWY_SCALAR

// The first byte of every pixel of `bytes` bytes, less the bits that do not belong to the value.
template <int bytes>
struct FirstByteKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = bytes;
  static constexpr bool kVectorWins = bytes != 3 || kHaveByteShuffle;
  uint8_t bits;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (bytes == 2) {
      const HalfWordTag<D> d16;
      const auto load = [&](size_t i) HWY_ATTR {
        const auto* from = reinterpret_cast<const uint16_t*>(src + i * hn::MaxLanes(D()));
        return hn::And(hn::LoadU(d16, from), hn::Set(d16, bits));
      };
      hn::StoreU(LowBytes(d, HalfWords<D>{load(0), load(1)}), d, dst);
    } else {
      const auto value = [&](auto words)
                             HWY_ATTR { return hn::And(words, hn::Set(WordTag<D>(), bits)); };
      hn::StoreU(LowBytes(d, ForEachVector(d, LoadWords<bytes>(d, src), value)), d, dst);
    }
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const { *dst = *src & bits; }
};

// The values of `count` pixels, at least one; of the last one nothing but the first byte is read.
template <int bytes>
HWY_INLINE void ReadFirstBytes(uint8_t* dst, const uint8_t* src, size_t count, uint8_t bits) {
  const FirstByteKernel<bytes> kernel{bits};
  RepeatableRow(hn::ScalableTag<uint8_t>(), kernel, dst, src, count - 1);
  kernel.Pixel(dst + count - 1, src + (count - 1) * bytes);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
