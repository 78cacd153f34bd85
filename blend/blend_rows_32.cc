// Blend modes at 32 bits.
#include <array>
#include <type_traits>

#include "blend/blend_pixel.h"
#include "blend/blend_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blend/blend_rows_32.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
// clang-format off: after highway.h
#include "blend/blend_words-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class D>
HWY_INLINE void StorePixels(D d, hn::VFromD<D> v, uint8_t* p) {
  hn::StoreU(v, d, reinterpret_cast<uint32_t*>(p));
}

template <class Formula>
struct BlendKernel<Argb8888, Formula> {
  using Lane = uint32_t;
  static constexpr size_t kDstBytes = 4, kSrcBytes = 4;
  uint32_t transparent;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    StorePixels(d,
                BlendVisibleWords<Argb8888, Formula>(d, LoadPixels(d, dst), LoadPixels(d, src),
                                                     transparent),
                out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src) const {
    BlendPixel<Argb8888, Formula>(out, dst, src, transparent);
  }
};

template <class Formula>
struct MaskedBlendKernel<Argb8888, Formula> {
  using Lane = uint32_t;
  static constexpr size_t kDstBytes = 4;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* src,
                         const uint8_t* mask) const {
    StorePixels(d,
                InterpolateWords<Argb8888, Formula>(d, LoadPixels(d, dst), LoadPixels(d, src),
                                                    LoadWeights(d, mask)),
                out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* src,
                        const uint8_t* mask) const {
    BlendMaskedPixel<Argb8888, Formula>(out, dst, src, *mask);
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

void BlendRows(Argb8888, BlendMode mode, const SourceRows& rows, uint32_t transparent) {
  HWY_EXPORT_T(Blend, BlendRowsOf<Argb8888>);
  HWY_DYNAMIC_DISPATCH_T(Blend)(mode, rows, transparent);
}
void BlendMaskedRows(Argb8888, BlendMode mode, const MaskedRows& rows, size_t src_step) {
  HWY_EXPORT_T(BlendMasked, BlendMaskedRowsOf<Argb8888>);
  HWY_DYNAMIC_DISPATCH_T(BlendMasked)(mode, rows, src_step);
}

}  // namespace pincel
#endif  // HWY_ONCE
