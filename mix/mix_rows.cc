#include "mix/mix_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "mix/mix_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class T>
HWY_INLINE const T* As(const uint8_t* p) {
  return reinterpret_cast<const T*>(p);
}
template <class T>
HWY_INLINE T* As(uint8_t* p) {
  return reinterpret_cast<T*>(p);
}

// Bytes at even and odd places, each in a lane of 16 bits: neither has to be moved.
template <class D8, class V16>
HWY_INLINE hn::VFromD<D8> MixBytes(D8 d8, hn::VFromD<D8> dst, hn::VFromD<D8> src, V16 even_weight,
                                   V16 odd_weight) {
  const hn::Repartition<uint16_t, D8> d16;
  const auto d = hn::BitCast(d16, dst), s = hn::BitCast(d16, src);
  const auto low = hn::Set(d16, 0x00FF), high = hn::Set(d16, 0xFF00);
  const auto even_difference = hn::Sub(hn::And(s, low), hn::And(d, low));
  const auto odd_difference = hn::Sub(hn::ShiftRight<8>(s), hn::ShiftRight<8>(d));
  const auto even = hn::Add(hn::ShiftLeft<8>(d), hn::Mul(even_difference, even_weight));
  const auto odd = hn::Add(hn::And(d, high), hn::Mul(odd_difference, odd_weight));
  return hn::BitCast(d8, hn::Or(hn::ShiftRight<8>(even), hn::And(odd, high)));
}

// A MaskRule that leaves the bytes as they are and, for byte formats, adds one; and any other.
template <bool scales>
struct Rule : MaskRule {
  // Mask bytes in lanes of 16 bits.
  template <class D16, class V16 = hn::VFromD<D16>>
  HWY_INLINE V16 ScaledBytes(D16 d16, V16 bytes) const {
    if constexpr (!scales) return bytes;
    // Only the low 16 bits of the product matter.
    return hn::ShiftRight<8>(hn::Mul(bytes, hn::Set(d16, uint16_t(level))));
  }
  // ByteWeight for the two kinds of rules that byte formats have: one is added to unscaled bytes,
  // nothing to scaled ones.
  template <class D16, class V16 = hn::VFromD<D16>>
  HWY_INLINE V16 ByteWeights(D16 d16, V16 bytes) const {
    if constexpr (!scales) return hn::Add(bytes, hn::Min(bytes, hn::Set(d16, 1)));
    const auto scaled = ScaledBytes(d16, bytes);
    return hn::Sub(scaled, hn::VecFromMask(d16, hn::Eq(scaled, hn::Set(d16, 255))));
  }
};
template <class Body>
HWY_INLINE void WithRule(int format, MaskRule rule, Body&& body) {
  const bool scales = rule.level != 256 || (format >= 24 && rule.added == 0);
  scales ? body(Rule<true>{rule}) : body(Rule<false>{rule});
}

// How far one field moves, in its place, for weights of 0 to 256 (in 256ths, rounded down). Fields
// above the lowest stay where they are and use the upper half of a product with the weight at `kUp`.
template <class F, int kUp, class D16, class V16 = hn::VFromD<D16>>
HWY_INLINE V16 FieldMove(D16 d16, V16 dst, V16 src, V16 weight) {
  static_assert(F::kMax * 256 < 0x8000);  // products of the lowest field have a sign
  const hn::RebindToSigned<D16> di16;
  const V16 field = hn::Set(d16, F::kMask);
  if constexpr (F::kLow + F::kWidth == 16) {
    const V16 difference = hn::Sub(hn::ShiftRight<F::kLow>(src), hn::ShiftRight<F::kLow>(dst));
    return hn::And(hn::Mul(difference, hn::ShiftLeft<F::kLow - 8>(weight)), field);
  } else {
    const V16 difference = hn::Sub(hn::And(src, field), hn::And(dst, field));
    if constexpr (F::kLow == 0) {
      return hn::BitCast(d16, hn::ShiftRight<8>(hn::BitCast(di16, hn::Mul(difference, weight))));
    } else {
      const auto product =
          hn::MulHigh(hn::BitCast(di16, difference), hn::BitCast(di16, hn::ShiftLeft<kUp>(weight)));
      const V16 move = hn::ShiftLeft<8 - kUp>(hn::BitCast(d16, product));
      return F::kLow + kUp > 8 ? hn::And(move, field) : move;
    }
  }
}
// A weight of 0 to 256 for each field. The results stay in their fields, so the moves can be added to
// the whole pixel; what is left above the fields is cleared.
template <class Format, class D16, class V16 = hn::VFromD<D16>>
HWY_INLINE V16 MixFieldsOf(D16 d16, V16 dst, V16 src, V16 blue, V16 green, V16 red) {
  constexpr int kUp = 8 - Format::Green::kLow;
  const V16 mixed =
      hn::Add(hn::Add(dst, FieldMove<typename Format::Blue, kUp>(d16, dst, src, blue)),
              hn::Add(FieldMove<typename Format::Green, kUp>(d16, dst, src, green),
                      FieldMove<typename Format::Red, kUp>(d16, dst, src, red)));
  constexpr uint16_t kColour = kColourMask<Format>;
  return kColour == 0xFFFF ? mixed : hn::And(mixed, hn::Set(d16, kColour));
}

struct MixByteKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = 1;
  int weight;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const auto w = hn::Set(hn::Repartition<uint16_t, D>(), uint16_t(weight));
    hn::StoreU(MixBytes(d, LoadPixels(d, dst), LoadPixels(d, src), w, w), d, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    *out = MixByte(*dst, *src, weight);
  }
};

// Other weights than 0 to 256 come with the ends of rows and with palettes: plain code will do.
template <class Format, bool any_weight>
struct MixFieldKernel {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2, kSrcBytes = 2;
  static constexpr bool kVectorWins = !any_weight;
  uint32_t weight;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const auto w = hn::Set(d, uint16_t(weight));
    const auto mixed = MixFieldsOf<Format>(d, LoadPixels(d, dst), LoadPixels(d, src), w, w, w);
    hn::StoreU(mixed, d, As<Lane>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    Format::Store(out, MixFields<Format>(Format::Load(dst), Format::Load(src), weight));
  }
};

// The shift-and-mask formula on vectors of any lane.
template <int quarters, class D, class V = hn::VFromD<D>>
HWY_INLINE V MixQuartersOf(D d, V dst, V src, hn::TFromD<D> half, hn::TFromD<D> quarter) {
  const auto part = [&](V v, auto shift, hn::TFromD<D> mask)
                        HWY_ATTR { return hn::And(hn::ShiftRight<shift()>(v), hn::Set(d, mask)); };
  constexpr std::integral_constant<int, 1> one;
  constexpr std::integral_constant<int, 2> two;
  if constexpr (quarters == 2) {
    return hn::Add(part(src, one, half), part(dst, one, half));
  } else {
    const V more = quarters == 3 ? src : dst, less = quarters == 3 ? dst : src;
    return hn::Add(hn::Add(part(more, one, half), part(more, two, quarter)),
                   part(less, two, quarter));
  }
}

template <int quarters>
struct MixByteQuartersKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = 1;
  static constexpr uint32_t kHalf = 0x7F7F7F7F, kQuarter = 0x3F3F3F3F;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const hn::Repartition<uint32_t, D> d32;
    const auto mixed =
        MixQuartersOf<quarters>(d32, hn::BitCast(d32, LoadPixels(d, dst)),
                                hn::BitCast(d32, LoadPixels(d, src)), kHalf, kQuarter);
    hn::StoreU(hn::BitCast(d, mixed), d, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    *out = uint8_t(MixQuarters(*dst, *src, quarters, kHalf, kQuarter));
  }
};

template <class Format, int quarters, Quarters form>
struct MixFieldQuartersKernel {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2, kSrcBytes = 2;
  static constexpr bool kVectorWins = form != Quarters::kAtRowEnd;  // three pixels at most

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const auto to = LoadPixels(d, dst), from = LoadPixels(d, src);
    if constexpr (form == Quarters::kInGroup) {
      // What is cut from green and red after the sum lies below them, red's where green will be.
      using Blue = typename Format::Blue;
      constexpr uint32_t kGreen = Format::Green::kMask, kRed = Format::Red::kMask;
      const auto green =
          MixQuartersOf<quarters>(d, to, from, uint16_t(kGreen >> 1), uint16_t(kGreen >> 2));
      const auto others =
          MixQuartersOf<quarters>(d, to, from, uint16_t(kHalfField<Blue> | kRed >> 1),
                                  uint16_t(kQuarterField<Blue> | kRed >> 2));
      hn::StoreU(hn::BitwiseIfThenElse(hn::Set(d, uint16_t(kGreen)), green, others), d,
                 As<Lane>(out));
    } else {
      hn::StoreU(MixQuartersOf<quarters>(d, to, from, uint16_t(kHalfMask<Format>),
                                         uint16_t(kQuarterMask<Format>)),
                 d, As<Lane>(out));
    }
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const uint32_t d = Format::Load(dst), s = Format::Load(src);
    if constexpr (form == Quarters::kInGroup) {
      Format::Store(out, MixQuartersInGroup<Format>(d, s, quarters));
    } else if constexpr (form == Quarters::kAtRowEnd) {
      Format::Store(out, MixQuartersAtRowEnd<Format>(d, s, quarters));
    } else {
      Format::Store(out,
                    uint16_t(MixQuarters(d, s, quarters, kHalfMask<Format>, kQuarterMask<Format>)));
    }
  }
};

template <class Rule>
struct MixMaskedKernel32 {
  using Lane = uint32_t;
  static constexpr size_t kDstBytes = 4, kSrcBytes = 4, kMaskBytes = 1;
  Rule rule;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const hn::Repartition<uint8_t, D> d8;
    const hn::Repartition<uint16_t, D> d16;
    const auto weights = rule.ByteWeights(d16, hn::BitCast(d16, LoadWeights(d, mask)));
    hn::StoreU(MixBytes(d8, LoadPixels(d8, dst), LoadPixels(d8, src), weights, weights), d8, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    const int weight = rule.ByteWeight(*mask);
    for (int i = 0; i < 4; ++i) out[i] = MixByte(dst[i], src[i], weight);
  }
};

template <class Rule>
struct MixMaskedKernel24 {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3, kSrcBytes = 3, kMaskBytes = 1;
  static constexpr bool kVectorWins = kHaveByteShuffle;
  Rule rule;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const auto once = hn::LoadU(d, mask);
    const auto mix = [&](size_t third, auto three_times) HWY_ATTR {
      const size_t at = third * hn::MaxLanes(d);
      const hn::Repartition<uint16_t, D> d16;
      const auto bytes = hn::BitCast(d16, three_times);
      const auto even = rule.ByteWeights(d16, hn::And(bytes, hn::Set(d16, 255)));
      const auto odd = rule.ByteWeights(d16, hn::ShiftRight<8>(bytes));
      hn::StoreU(MixBytes(d, LoadPixels(d, dst + at), LoadPixels(d, src + at), even, odd), d,
                 out + at);
    };
    mix(0, RepeatThreeTimes<0>(d, once));
    mix(1, RepeatThreeTimes<1>(d, once));
    mix(2, RepeatThreeTimes<2>(d, once));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    const int weight = rule.ByteWeight(*mask);
    for (int i = 0; i < 3; ++i) out[i] = MixByte(dst[i], src[i], weight);
  }
};

template <class Format, class Rule>
struct MixMaskedFieldKernel {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2, kSrcBytes = 2, kMaskBytes = 1;
  Rule rule;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const auto to = LoadPixels(d, dst), from = LoadPixels(d, src);
    const auto bytes = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
    const auto scaled = rule.ScaledBytes(d, bytes);
    const auto weight = hn::Add(scaled, hn::Set(d, uint16_t(rule.added)));
    const auto mixed = MixFieldsOf<Format>(d, to, from, weight, weight, weight);
    const auto copied = hn::IfThenElse(hn::Eq(scaled, hn::Set(d, 255)), from, mixed);
    hn::StoreU(hn::IfThenElse(hn::Eq(scaled, hn::Zero(d)), to, copied), d, As<Lane>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    Format::Store(out, MixFieldsMasked<Format>(Format::Load(dst), Format::Load(src), *mask, rule));
  }
};

// A "pixel" of this kernel is a group of four.
template <class Format, class Rule>
struct MixMaskedGroupKernel {
  using Lane = uint64_t;
  static constexpr size_t kDstBytes = 8, kSrcBytes = 8, kMaskBytes = 4;
  Rule rule;

  template <class D>
  HWY_INLINE void Vector(D d64, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const hn::Repartition<uint16_t, D> d;
    const auto to = LoadPixels(d, dst), from = LoadPixels(d, src);
    const auto bytes = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, decltype(d)>(), mask));
    const auto scaled = rule.ScaledBytes(d, bytes);
    const auto mixed = MixFieldsOf<Format>(d, to, from, scaled, scaled, scaled);
    const auto four_full = hn::BitCast(
        d,
        hn::VecFromMask(d64, hn::Eq(hn::BitCast(d64, scaled), hn::Set(d64, 0x00FF00FF00FF00FF))));
    const auto copied = hn::IfVecThenElse(four_full, from, mixed);
    hn::StoreU(hn::IfThenElse(hn::Eq(scaled, hn::Zero(d)), to, copied), d, As<uint16_t>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    uint32_t scaled[4];
    for (int i = 0; i < 4; ++i) scaled[i] = rule.Scaled(mask[i]);
    const bool four_full = (scaled[0] & scaled[1] & scaled[2] & scaled[3]) == 255;
    for (int i = 0; i < 4; ++i) {
      const uint32_t d = Format::Load(dst + 2 * i), s = Format::Load(src + 2 * i);
      const uint32_t mixed = scaled[i] == 0 ? d : MixFields<Format>(d, s, scaled[i]);
      Format::Store(out + 2 * i, uint16_t(four_full ? s : mixed));
    }
  }
};

struct FadeByteKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = 1, kMaskBytes = 1;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* weights) const {
    const hn::Repartition<uint16_t, D> d16;
    const auto w = hn::BitCast(d16, hn::LoadU(d, weights));
    hn::StoreU(MixBytes(d, LoadPixels(d, dst), LoadPixels(d, src), hn::And(w, hn::Set(d16, 255)),
                        hn::ShiftRight<8>(w)),
               d, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* weights) const {
    *out = MixByte(*dst, *src, *weights);
  }
};

template <class Format>
struct FadeFieldKernel {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2, kSrcBytes = 2, kMaskBytes = 4;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* weights) const {
    const hn::Rebind<uint8_t, D> d8;
    hn::VFromD<decltype(d8)> blue, green, red, unused;
    hn::LoadInterleaved4(d8, weights, blue, green, red, unused);
    const auto mixed =
        MixFieldsOf<Format>(d, LoadPixels(d, dst), LoadPixels(d, src), hn::PromoteTo(d, blue),
                            hn::PromoteTo(d, green), hn::PromoteTo(d, red));
    hn::StoreU(mixed, d, As<Lane>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* weights) const {
    const uint32_t d = Format::Load(dst), s = Format::Load(src);
    Format::Store(out, uint16_t(MixField<typename Format::Blue>(d, s, weights[0]) |
                                MixField<typename Format::Green>(d, s, weights[1]) |
                                MixField<typename Format::Red>(d, s, weights[2])));
  }
};

// Calls `body(Format{})` for the 16-bit format of this code.
template <class Body>
HWY_INLINE void WithFields(int format, Body&& body) {
  switch (format) {
    case 16:
      return body(Rgb565());
    case 19:
      return body(Argb4444());
    default:
      return body(Rgb555());
  }
}
template <class Body>
HWY_INLINE void WithQuarters(int quarters, Body&& body) {
  switch (quarters) {
    case 3:
      return body(std::integral_constant<int, 3>());
    case 2:
      return body(std::integral_constant<int, 2>());
    default:
      return body(std::integral_constant<int, 1>());
  }
}

void MixByteRows(const SourceRows& bytes, int weight) { OnceRows(MixByteKernel{weight}, bytes); }

void MixFieldRows(int format, const SourceRows& rows, uint32_t weight) {
  WithFields(format, [&](auto f) HWY_ATTR {
    using Format = decltype(f);
    weight <= 256 ? OnceRows(MixFieldKernel<Format, false>{weight}, rows)
                  : OnceRows(MixFieldKernel<Format, true>{weight}, rows);
  });
}

void MixByteQuarters(const SourceRows& bytes, int quarters) {
  WithQuarters(quarters, [&](auto q) HWY_ATTR { OnceRows(MixByteQuartersKernel<q()>(), bytes); });
}

void MixFieldQuarters(int format, Quarters form, const SourceRows& rows, int quarters) {
  WithFields(format, [&](auto f) HWY_ATTR {
    using Format = decltype(f);
    WithQuarters(quarters, [&](auto q) HWY_ATTR {
      switch (form) {
        case Quarters::kInGroup:
          return OnceRows(MixFieldQuartersKernel<Format, q(), Quarters::kInGroup>(), rows);
        case Quarters::kAtRowEnd:
          return OnceRows(MixFieldQuartersKernel<Format, q(), Quarters::kAtRowEnd>(), rows);
        case Quarters::kPerPixel:
          return OnceRows(MixFieldQuartersKernel<Format, q(), Quarters::kPerPixel>(), rows);
      }
    });
  });
}

void MixRowsMasked(int format, const MaskedRows& rows, MaskRule mask_rule) {
  WithRule(format, mask_rule, [&](auto rule) HWY_ATTR {
    using Rule = decltype(rule);
    if (format == 32) return OnceRows(MixMaskedKernel32<Rule>{rule}, rows);
    if (format == 24) return OnceRows(MixMaskedKernel24<Rule>{rule}, rows);
    WithFields(format, [&](auto f) HWY_ATTR {
      OnceRows(MixMaskedFieldKernel<decltype(f), Rule>{rule}, rows);
    });
  });
}

void MixGroupsMasked(int format, const MaskedRows& rows, MaskRule mask_rule) {
  MaskedRows groups = rows;
  groups.width /= 4;
  WithRule(format, mask_rule, [&](auto rule) HWY_ATTR {
    WithFields(format, [&](auto f) HWY_ATTR {
      OnceRows(MixMaskedGroupKernel<decltype(f), decltype(rule)>{rule}, groups);
    });
  });
}

void FadeByteRows(const MaskedRows& bytes) { OnceRows(FadeByteKernel(), bytes); }

void FadeFieldRows(int format, const MaskedRows& rows) {
  WithFields(format, [&](auto f) HWY_ATTR { OnceRows(FadeFieldKernel<decltype(f)>(), rows); });
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(MixByteRows);
HWY_EXPORT(MixFieldRows);
HWY_EXPORT(MixByteQuarters);
HWY_EXPORT(MixFieldQuarters);
HWY_EXPORT(MixRowsMasked);
HWY_EXPORT(MixGroupsMasked);
HWY_EXPORT(FadeByteRows);
HWY_EXPORT(FadeFieldRows);

void MixByteRows(const SourceRows& bytes, int weight) {
  HWY_DYNAMIC_DISPATCH(MixByteRows)(bytes, weight);
}
void MixFieldRows(int format, const SourceRows& rows, uint32_t weight) {
  HWY_DYNAMIC_DISPATCH(MixFieldRows)(format, rows, weight);
}
void MixByteQuarters(const SourceRows& bytes, int quarters) {
  HWY_DYNAMIC_DISPATCH(MixByteQuarters)(bytes, quarters);
}
void MixFieldQuarters(int format, Quarters form, const SourceRows& rows, int quarters) {
  HWY_DYNAMIC_DISPATCH(MixFieldQuarters)(format, form, rows, quarters);
}
void MixRowsMasked(int format, const MaskedRows& rows, MaskRule rule) {
  HWY_DYNAMIC_DISPATCH(MixRowsMasked)(format, rows, rule);
}
void MixGroupsMasked(int format, const MaskedRows& rows, MaskRule rule) {
  HWY_DYNAMIC_DISPATCH(MixGroupsMasked)(format, rows, rule);
}
void FadeByteRows(const MaskedRows& bytes) { HWY_DYNAMIC_DISPATCH(FadeByteRows)(bytes); }
void FadeFieldRows(int format, const MaskedRows& rows) {
  HWY_DYNAMIC_DISPATCH(FadeFieldRows)(format, rows);
}

}  // namespace pincel
#endif  // HWY_ONCE
