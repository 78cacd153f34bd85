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

// Mask bytes as 16-bit numbers, each for both halves of its pixel's word: m 0 m 0.
template <class D, class V = hn::VFromD<D>>
HWY_INLINE V LoadWeights(D d, const uint8_t* mask) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  if constexpr (kHaveByteShuffle && kLanes >= 4) {
    // Every block of 16 bytes gets all mask bytes and picks its own four.
    const hn::Repartition<uint8_t, D> d8;
    static constexpr auto kFrom = [] {
      std::array<uint8_t, kLanes * 4> from{};
      for (size_t i = 0; i < from.size(); ++i) from[i] = uint8_t(i % 2 == 0 ? i / 4 : 0x80);
      return from;
    }();
    hn::VFromD<decltype(d8)> bytes;
    if constexpr (kLanes == 16) {
      bytes = hn::LoadDup128(d8, mask);
    } else if constexpr (kLanes == 8) {
      bytes = hn::BitCast(d8, hn::Set(hn::Repartition<uint64_t, D>(), LoadWord<uint64_t>(mask)));
    } else {
      bytes = hn::BitCast(d8, hn::Set(d, LoadWord<uint32_t>(mask)));
    }
    return hn::BitCast(d, hn::TableLookupBytesOr0(bytes, hn::LoadU(d8, kFrom.data())));
  } else {
    const V m = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
    return hn::Or(m, hn::ShiftLeft<16>(m));
  }
}

template <class Format, class Formula, class D, class V = hn::VFromD<D>>
HWY_INLINE V InterpolateWords(D d, V dst, V src, V weights) {
  const hn::Repartition<uint8_t, D> d8;
  const hn::Repartition<uint16_t, D> d16;
  const auto low = hn::Set(d16, 0x00FF), high = hn::Set(d16, 0xFF00);
  const auto from = hn::BitCast(d16, dst), with = hn::BitCast(d16, src);
  const auto to = hn::BitCast(d16, BlendWords<Format, Formula>(d, dst, src));
  // Even and odd bytes as 16-bit numbers.
  auto even_weight = hn::BitCast(d16, weights), odd_weight = even_weight;
  if constexpr (Formula::kSourceInWeight) {
    even_weight = hn::Or(even_weight, hn::ShiftLeft<8>(with));
    odd_weight = hn::OrAnd(odd_weight, with, high);
  }
  const auto even = hn::Mul(hn::Sub(hn::And(to, low), hn::And(from, low)), even_weight);
  const auto odd = hn::Mul(hn::Sub(hn::ShiftRight<8>(to), hn::ShiftRight<8>(from)), odd_weight);
  // The upper byte of each product is what is added.
  const auto moves = hn::OrAnd(hn::ShiftRight<8>(even), odd, high);
  const auto moved = hn::Add(hn::BitCast(d8, dst), hn::BitCast(d8, moves));
  return hn::IfThenElse(hn::Eq(weights, hn::Zero(d)), dst, hn::BitCast(d, moved));
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
