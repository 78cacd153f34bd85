// Per-target: blending pixels of bytes that stand in 32-bit words, for 24 and 32 bits.
#if defined(BLEND_BLEND_WORDS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef BLEND_BLEND_WORDS_INL_H_
#undef BLEND_BLEND_WORDS_INL_H_
#else
#define BLEND_BLEND_WORDS_INL_H_
#endif

#include "blend/blend_rows-inl.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// The fourth bytes come out as the format's, or meaningless where it has none.
template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendWords(D d, V dst, V src) {
  const hn::Repartition<uint8_t, D> d8;
  constexpr bool kKeepsFourthByte = Format::kBytes == 4 && !Formula::kBlendsFourthByte;
  const V fourth = hn::Set(d, 0xFF000000);
  // The larger of a byte and 0, the smaller of it and 255: the byte.
  if constexpr (kKeepsFourthByte && std::is_same_v<Formula, Lighten>) src = hn::AndNot(fourth, src);
  if constexpr (kKeepsFourthByte && std::is_same_v<Formula, Darken>) src = hn::Or(fourth, src);
  const V blended =
      hn::BitCast(d, BlendBytes(Formula(), d8, hn::BitCast(d8, dst), hn::BitCast(d8, src)));
  if constexpr (kKeepsFourthByte && std::is_same_v<Formula, Overlay>) {
    return hn::BitwiseIfThenElse(fourth, dst, blended);
  }
  return blended;
}

template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendVisibleWords(D d, V dst, V src, uint32_t transparent) {
  const V compared = hn::And(src, hn::Set(d, kKeyBits<Format>));
  return hn::IfThenElse(hn::Eq(compared, hn::Set(d, transparent)), dst,
                        BlendWords<Format, Formula>(d, dst, src));
}

// `weights`: a mask byte for both halves of each word, m 0 m 0.
template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V InterpolateWords(D d, V dst, V src, V weights) {
  const hn::Repartition<uint8_t, D> d8;
  const auto halves = hn::BitCast(Wide<decltype(d8)>(), weights);
  const auto blended = hn::BitCast(d8, BlendWords<Format, Formula>(d, dst, src));
  const V moved =
      hn::BitCast(d, InterpolateBytes<Formula>(d8, hn::BitCast(d8, dst), hn::BitCast(d8, src),
                                               blended, halves, halves));
  return Formula::kSourceInWeight ? hn::IfThenElse(hn::Eq(weights, hn::Zero(d)), dst, moved)
                                  : moved;
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
