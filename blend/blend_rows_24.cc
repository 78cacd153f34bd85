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
#include "blend/blend_words-inl.h"
// clang-format on
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class Formula>
struct BlendKernel<Rgb888, Formula> {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3, kSrcBytes = 3;
  uint32_t transparent;

  template <class D8>
  HWY_INLINE void Vector(D8 d8, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    const WordTag<D8> d;
    const Words<D8> from = LoadWords<3>(d8, dst), with = LoadWords<3>(d8, src);
    const auto blend = [&](auto below, auto above) HWY_ATTR {
      return BlendVisibleWords<Rgb888, Formula>(d, below, above, transparent);
    };
    StoreWords<3>(d8,
                  Words<D8>{blend(from.v0, with.v0), blend(from.v1, with.v1),
                            blend(from.v2, with.v2), blend(from.v3, with.v3)},
                  out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    BlendPixel<Rgb888, Formula>(out, dst, src, transparent);
  }
};

template <class Formula>
struct MaskedBlendKernel<Rgb888, Formula> {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3;

  template <class D8>
  HWY_INLINE void Vector(D8 d8, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    const WordTag<D8> d;
    const Words<D8> from = LoadWords<3>(d8, dst), with = LoadWords<3>(d8, src);
    const auto blend = [&](auto below, auto above, size_t part) HWY_ATTR {
      return InterpolateWords<Rgb888, Formula>(d, below, above,
                                               LoadWeights(d, mask + part * hn::MaxLanes(d)));
    };
    StoreWords<3>(d8,
                  Words<D8>{blend(from.v0, with.v0, 0), blend(from.v1, with.v1, 1),
                            blend(from.v2, with.v2, 2), blend(from.v3, with.v3, 3)},
                  out);
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
