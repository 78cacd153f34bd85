// Blend modes at 16 bits.
#include "blend/blend_pixel.h"
#include "blend/blend_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blend/blend_rows_16.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
// clang-format off: after highway.h
#include "blend/blend_rows-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// One field of every pixel, at the top of its lane, zeros below. Blended fields have the result
// there, and anything below.

template <class Field, class D, class V = hn::VFromD<D>>
HWY_INLINE V ToTop(D d, V pixels) {
  constexpr int kWidth = Field::kWidth, kLow = Field::kLow;
  const V top = hn::ShiftLeft<16 - kWidth - kLow>(pixels);
  return kLow == 0 ? top : hn::And(top, hn::Set(d, uint16_t(0xFFFF << (16 - kWidth))));
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Add, D, V a, V b) {
  return hn::SaturatedAdd(a, b);
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Subtract, D, V a, V b) {
  return hn::SaturatedSub(a, b);
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Multiply, D, V a, V b) {
  return hn::MulHigh(a, b);
}

// x * y / 255, or 2 * x * y / 255 where that is less than 256, of bytes at the top; so is the result.
// 0x8081 / 2^23 is close enough to 1 / 255 for every quotient of a 16-bit number.
template <bool doubled, class D, class V = hn::VFromD<D>>
HWY_INLINE V MultiplyDivide255(D d, V x, V y) {
  constexpr int kShift = doubled ? 2 : 1;
  return hn::ShiftLeft<kShift>(hn::MulHigh(hn::MulHigh(x, y), hn::Set(d, 0x8081)));
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Screen, D d, V a, V b) {
  const V full = hn::Set(d, 0xFF00);
  return hn::Not(MultiplyDivide255<false>(d, hn::Xor(a, full), hn::Xor(b, full)));
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Lighten, D, V a, V b) {
  return hn::Max(a, b);
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Darken, D, V a, V b) {
  return hn::Min(a, b);
}

template <class D, class V = hn::VFromD<D>>
HWY_INLINE V BlendTops(Overlay, D d, V a, V b) {
  // Upside down where a is 128 or more.
  const hn::RebindToSigned<D> di;
  const V above_127 = hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(di, a)));
  const V flip = hn::And(above_127, hn::Set(d, 0xFF00));
  return hn::Xor(MultiplyDivide255<true>(d, hn::Xor(a, flip), hn::Xor(b, flip)), flip);
}

// `value(field)` of each colour field, at the top of the lane, as pixels; alpha bits 0.
template <class Format, class D, class Value>
HWY_INLINE hn::VFromD<D> FromTops(D d, Value value) {
  using V = hn::VFromD<D>;
  const auto place = [&]<class Field>(Field, V others) HWY_ATTR {
    const V placed = hn::ShiftRight<16 - Field::kWidth - Field::kLow>(value(Field()));
    return hn::OrAnd(others, placed, hn::Set(d, uint16_t(Field::kMask)));
  };
  const V blue = hn::ShiftRight<16 - Format::Blue::kWidth>(value(typename Format::Blue()));
  static_assert(Format::Blue::kLow == 0);
  return place(typename Format::Red(), place(typename Format::Green(), blue));
}

// `value(field)` of each colour field as pixels.
template <class Format, class Value>
HWY_INLINE auto JoinFields(Value value) {
  const auto place = [&]<class Field>(Field)
                         HWY_ATTR { return hn::ShiftLeft<Field::kLow>(value(Field())); };
  return hn::Or3(place(typename Format::Blue()), place(typename Format::Green()),
                 place(typename Format::Red()));
}

template <PackedFields Format, class Formula>
struct BlendKernel<Format, Formula> {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2, kSrcBytes = 2;
  uint32_t transparent;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const auto p = LoadPixels(d, dst);
    const auto s = LoadPixels(d, src);
    const auto blended = FromTops<Format>(d, [&]<class Field>(Field) HWY_ATTR {
      return BlendTops(Formula(), d, ToTop<Field>(d, p), ToTop<Field>(d, s));
    });
    const auto hidden = hn::Eq(s, hn::Set(d, Lane(transparent)));
    hn::StoreU(hn::IfThenElse(hidden, p, blended), d, reinterpret_cast<Lane*>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    BlendPixel<Format, Formula>(out, dst, src, transparent);
  }
};

template <PackedFields Format, class Formula>
struct MaskedBlendKernel<Format, Formula> {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const auto p = LoadPixels(d, dst);
    const auto s = LoadPixels(d, src);
    const auto m = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
    const auto moved = JoinFields<Format>([&]<class Field>(Field) HWY_ATTR {
      constexpr int kToBottom = 16 - Field::kWidth;
      const auto a = ToTop<Field>(d, p), t = BlendTops(Formula(), d, a, ToTop<Field>(d, s));
      const auto from = hn::ShiftRight<kToBottom>(a), to = hn::ShiftRight<kToBottom>(t);
      const hn::RebindToSigned<D> di;
      const auto product = hn::BitCast(di, hn::Mul(hn::Sub(to, from), m));
      return hn::Add(from, hn::BitCast(d, hn::ShiftRight<8>(product)));
    });
    hn::StoreU(hn::IfThenElse(hn::Eq(m, hn::Zero(d)), p, moved), d, reinterpret_cast<Lane*>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    BlendMaskedPixel<Format, Formula>(out, dst, src, *mask);
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

void BlendRows(Rgb565, BlendMode mode, const SourceRows& rows, uint32_t transparent) {
  HWY_EXPORT_T(Blend, BlendRowsOf<Rgb565>);
  HWY_DYNAMIC_DISPATCH_T(Blend)(mode, rows, transparent);
}
void BlendRows(Rgb555, BlendMode mode, const SourceRows& rows, uint32_t transparent) {
  HWY_EXPORT_T(Blend, BlendRowsOf<Rgb555>);
  HWY_DYNAMIC_DISPATCH_T(Blend)(mode, rows, transparent);
}
void BlendRows(Argb4444, BlendMode mode, const SourceRows& rows, uint32_t transparent) {
  HWY_EXPORT_T(Blend, BlendRowsOf<Argb4444>);
  HWY_DYNAMIC_DISPATCH_T(Blend)(mode, rows, transparent);
}

void BlendMaskedRows(Rgb565, BlendMode mode, const MaskedRows& rows, size_t src_step) {
  HWY_EXPORT_T(BlendMasked, BlendMaskedRowsOf<Rgb565>);
  HWY_DYNAMIC_DISPATCH_T(BlendMasked)(mode, rows, src_step);
}
void BlendMaskedRows(Rgb555, BlendMode mode, const MaskedRows& rows, size_t src_step) {
  HWY_EXPORT_T(BlendMasked, BlendMaskedRowsOf<Rgb555>);
  HWY_DYNAMIC_DISPATCH_T(BlendMasked)(mode, rows, src_step);
}
void BlendMaskedRows(Argb4444, BlendMode mode, const MaskedRows& rows, size_t src_step) {
  HWY_EXPORT_T(BlendMasked, BlendMaskedRowsOf<Argb4444>);
  HWY_DYNAMIC_DISPATCH_T(BlendMasked)(mode, rows, src_step);
}

}  // namespace pincel
#endif  // HWY_ONCE
