// Per-target: blending pixels of bytes that stand in 32-bit words, for 24 and 32 bits.
#if defined(BLEND_BLEND_WORDS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef BLEND_BLEND_WORDS_INL_H_
#undef BLEND_BLEND_WORDS_INL_H_
#else
#define BLEND_BLEND_WORDS_INL_H_
#endif

#include "blend/blend_rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// The fourth bytes come out as the format's, or meaningless where it has none.
template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendWords(D d, V dst, V src) {
  const hn::Repartition<uint8_t, D> d8;
  const V blended =
      hn::BitCast(d, BlendBytes(Formula(), d8, hn::BitCast(d8, dst), hn::BitCast(d8, src)));
  if constexpr (Format::kBytes < 4 || Formula::kBlendsFourthByte) return blended;
  return hn::BitwiseIfThenElse(hn::Set(d, 0xFF000000), dst, blended);
}

template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendVisibleWords(D d, V dst, V src, uint32_t transparent) {
  const V compared = hn::And(src, hn::Set(d, kComparedBits<Format>));
  return hn::IfThenElse(hn::Eq(compared, hn::Set(d, transparent)), dst,
                        BlendWords<Format, Formula>(d, dst, src));
}

// One mask byte for each word.
template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V InterpolateWords(D d, V dst, V src, const uint8_t* mask) {
  const hn::Repartition<uint16_t, D> d16;
  const auto low = hn::Set(d16, 0x00FF), high = hn::Set(d16, 0xFF00);
  const V m = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
  const auto d_16 = hn::BitCast(d16, dst), s_16 = hn::BitCast(d16, src);
  const auto t_16 = hn::BitCast(d16, BlendWords<Format, Formula>(d, dst, src));

  // Even and odd bytes as words, each with the weight of its pixel.
  auto even_weight = hn::BitCast(d16, hn::Or(m, hn::ShiftLeft<16>(m)));
  auto odd_weight = even_weight;
  if constexpr (Formula::kSourceInWeight) {
    even_weight = hn::Or(even_weight, hn::ShiftLeft<8>(s_16));
    odd_weight = hn::OrAnd(odd_weight, s_16, high);
  }
  const auto even = hn::Mul(hn::Sub(hn::And(t_16, low), hn::And(d_16, low)), even_weight);
  const auto odd = hn::Mul(hn::Sub(hn::ShiftRight<8>(t_16), hn::ShiftRight<8>(d_16)), odd_weight);
  const auto even_result = hn::ShiftRight<8>(hn::Add(even, hn::ShiftLeft<8>(d_16)));
  const auto odd_result = hn::Add(odd, hn::And(d_16, high));
  const V result = hn::BitCast(d, hn::OrAnd(even_result, odd_result, high));
  return hn::IfThenElse(hn::Eq(m, hn::Zero(d)), dst, result);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
