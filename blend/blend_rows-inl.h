// Per-target: the blend formulas on vectors of bytes, and the choice of a kernel.
#if defined(BLEND_BLEND_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef BLEND_BLEND_ROWS_INL_H_
#undef BLEND_BLEND_ROWS_INL_H_
#else
#define BLEND_BLEND_ROWS_INL_H_
#endif

#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class D8>
using Wide = hn::RepartitionToWide<D8>;

// 255 in every byte that is 128 or more, else 0.
template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BytesAbove127(D8 d8, V v) {
  const hn::RebindToSigned<D8> di8;
  return hn::BitCast(d8, hn::BroadcastSignBit(hn::BitCast(di8, v)));
}

// Bytes: every byte of a vector is a channel.

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Add, D8, V a, V b) {
  return hn::SaturatedAdd(a, b);
}

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Subtract, D8, V a, V b) {
  return hn::SaturatedSub(a, b);
}

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Multiply, D8 d8, V a, V b) {
  // Odd bytes stay where they are, at the top of a word; even bytes of one factor move there. The
  // upper half of their product is the result, at the bottom for even bytes, else at the top.
  const Wide<D8> d16;
  const auto low = hn::Set(d16, 0x00FF), high = hn::Set(d16, 0xFF00);
  const auto a16 = hn::BitCast(d16, a), b16 = hn::BitCast(d16, b);
  const auto even = hn::MulHigh(hn::ShiftLeft<8>(a16), hn::And(b16, low));
  const auto odd = hn::MulHigh(hn::And(a16, high), hn::And(b16, high));
  return hn::BitCast(d8, hn::OrAnd(even, odd, high));
}

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Screen, D8 d8, V a, V b) {
  return hn::Not(BlendBytes(Multiply(), d8, hn::Not(a), hn::Not(b)));
}

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Lighten, D8, V a, V b) {
  return hn::Max(a, b);
}

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Darken, D8, V a, V b) {
  return hn::Min(a, b);
}

template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V BlendBytes(Overlay, D8 d8, V a, V b) {
  // Upside down where a is 128 or more; then a is at most 127, and 2 a * b >> 8 is a * b >> 7.
  const V upside_down = BytesAbove127(d8, a);
  const V a7 = hn::Xor(a, upside_down);
  const V product = BlendBytes(Multiply(), d8, hn::Add(a7, a7), hn::Xor(b, upside_down));
  return hn::Xor(product, upside_down);
}

// Moves bytes towards their blends. Weights are those of the bytes at even and at odd places, in lanes
// of 16 bits; where the source takes part in the weight, a mask byte of 0 is the caller's affair.
template <class Formula, class D8, class V = hn::VFromD<D8>, class V16 = hn::VFromD<Wide<D8>>>
HWY_INLINE V InterpolateBytes(D8 d8, V dst, V src, V blended, V16 even_weight, V16 odd_weight) {
  const Wide<D8> d16;
  const V16 low = hn::Set(d16, 0x00FF), high = hn::Set(d16, 0xFF00);
  const V16 from = hn::BitCast(d16, dst), to = hn::BitCast(d16, blended);
  if constexpr (Formula::kSourceInWeight) {
    const V16 with = hn::BitCast(d16, src);
    even_weight = hn::Or(even_weight, hn::ShiftLeft<8>(with));
    odd_weight = hn::OrAnd(odd_weight, with, high);
  }
  const V16 even = hn::Mul(hn::Sub(hn::And(to, low), hn::And(from, low)), even_weight);
  const V16 odd = hn::Mul(hn::Sub(hn::ShiftRight<8>(to), hn::ShiftRight<8>(from)), odd_weight);
  // The upper byte of each product is what is added.
  const V16 moves = hn::OrAnd(hn::ShiftRight<8>(even), odd, high);
  return hn::Add(dst, hn::BitCast(d8, moves));
}

// A kernel: see row_kernels-inl.h. Each file defines them for its formats.
template <class Format, class Formula>
struct BlendKernel;
template <class Format, class Formula>
struct MaskedBlendKernel;

template <class Format, class Formula>
void RunBlend(const SourceRows& rows, uint32_t transparent) {
  OnceRows(BlendKernel<Format, Formula>{transparent}, rows);
}

// The pixels of a source, `step` bytes apart; 0: always the same ones.
struct SteppedStream {
  const uint8_t* pixels;
  size_t step;
  HWY_INLINE const uint8_t* At(size_t x) const { return pixels + x * step; }
};

template <class Format, class Formula>
void RunMaskedBlend(const MaskedRows& rows, size_t src_step) {
  using Kernel = MaskedBlendKernel<Format, Formula>;
  const hn::ScalableTag<typename Kernel::Lane> d;
  static_assert(hn::MaxLanes(d) <= kRepeatedPixels);
  ForEachRow(rows, [&](uint8_t* dst, const uint8_t* src, const uint8_t* mask) HWY_ATTR {
    OnceRow(d, Kernel{}, rows.width, dst, SteppedStream{src, src_step}, Stream<1>{mask});
  });
}

template <class Format>
void BlendRowsOf(BlendMode mode, const SourceRows& rows, uint32_t transparent) {
  static constexpr void (*kKernels[])(const SourceRows&, uint32_t) = {
      RunBlend<Format, Add>,    RunBlend<Format, Subtract>, RunBlend<Format, Multiply>,
      RunBlend<Format, Screen>, RunBlend<Format, Lighten>,  RunBlend<Format, Darken>,
      RunBlend<Format, Overlay>};
  kKernels[size_t(mode)](rows, transparent);
}

template <class Format>
void BlendMaskedRowsOf(BlendMode mode, const MaskedRows& rows, size_t src_step) {
  static constexpr void (*kKernels[])(const MaskedRows&, size_t) = {
      RunMaskedBlend<Format, Add>,      RunMaskedBlend<Format, Subtract>,
      RunMaskedBlend<Format, Multiply>, RunMaskedBlend<Format, Screen>,
      RunMaskedBlend<Format, Lighten>,  RunMaskedBlend<Format, Darken>,
      RunMaskedBlend<Format, Overlay>};
  kKernels[size_t(mode)](rows, src_step);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
