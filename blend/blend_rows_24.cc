// Blend modes at 24 bits.
#include <array>
#include <type_traits>

#include "blend/blend_pixel.h"
#include "blend/blend_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blend/blend_rows_24.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
// clang-format off: after highway.h
#include "blend/blend_rows-inl.h"
#include "surface/pixels-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class Formula>
struct BlendKernel<Rgb888, Formula> {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3, kSrcBytes = 3;

  explicit BlendKernel(uint32_t transparent) : transparent_(transparent) {
    for (size_t i = 0; i < key_.size(); ++i) key_[i] = uint8_t(transparent >> (i % 3 * 8));
  }

  template <class D8>
  HWY_INLINE void Vector(D8 d8, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const auto from = LoadThirds(d8, dst), with = LoadThirds(d8, src);
    const auto hidden = EqualTriples(d8, with, key_.data());
    const auto blend = [&](size_t third, auto below, auto above, auto kept) HWY_ATTR {
      const auto blended = BlendBytes(Formula(), d8, below, above);
      hn::StoreU(hn::IfThenElse(kept, below, blended), d8, out + third * hn::MaxLanes(d8));
    };
    blend(0, from.v0, with.v0, hidden.v0);
    blend(1, from.v1, with.v1, hidden.v1);
    blend(2, from.v2, with.v2, hidden.v2);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    BlendPixel<Rgb888, Formula>(out, dst, src, transparent_);
  }

 private:
  uint32_t transparent_;
  std::array<uint8_t, 3 * hn::MaxLanes(hn::ScalableTag<uint8_t>())> key_;
};

template <class Formula>
struct MaskedBlendKernel<Rgb888, Formula> {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3;
  static constexpr bool kVectorWins = kHaveByteShuffle;

  template <class D8>
  HWY_INLINE void Vector(D8 d8, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const auto once = hn::LoadU(d8, mask);
    const auto blend = [&](size_t third, auto weights) HWY_ATTR {
      const size_t at = third * hn::MaxLanes(d8);
      const auto below = LoadPixels(d8, dst + at), above = LoadPixels(d8, src + at);
      const Wide<D8> d16;
      const auto pairs = hn::BitCast(d16, weights);
      const auto moved =
          InterpolateBytes<Formula>(d8, below, above, BlendBytes(Formula(), d8, below, above),
                                    hn::And(pairs, hn::Set(d16, 0x00FF)), hn::ShiftRight<8>(pairs));
      hn::StoreU(Formula::kSourceInWeight
                     ? hn::IfThenElse(hn::Eq(weights, hn::Zero(d8)), below, moved)
                     : moved,
                 d8, out + at);
    };
    blend(0, RepeatThreeTimes<0>(d8, once));
    blend(1, RepeatThreeTimes<1>(d8, once));
    blend(2, RepeatThreeTimes<2>(d8, once));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    BlendMaskedPixel<Rgb888, Formula>(out, dst, src, *mask);
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

void BlendRows(Rgb888, BlendMode mode, const SourceRows& rows, uint32_t transparent) {
  HWY_EXPORT_T(Blend, BlendRowsOf<Rgb888>);
  HWY_DYNAMIC_DISPATCH_T(Blend)(mode, rows, transparent);
}
void BlendMaskedRows(Rgb888, BlendMode mode, const MaskedRows& rows, size_t src_step) {
  HWY_EXPORT_T(BlendMasked, BlendMaskedRowsOf<Rgb888>);
  HWY_DYNAMIC_DISPATCH_T(BlendMasked)(mode, rows, src_step);
}

}  // namespace pincel
#endif  // HWY_ONCE
