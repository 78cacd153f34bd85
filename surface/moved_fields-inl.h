// Per-target: MovedFields on vectors of pixels.
#if defined(SURFACE_MOVED_FIELDS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef SURFACE_MOVED_FIELDS_INL_H_
#undef SURFACE_MOVED_FIELDS_INL_H_
#else
#define SURFACE_MOVED_FIELDS_INL_H_
#endif

#include "surface/moved_fields.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// kShift and kMask are those of a MovedBits.
template <int kShift, uint32_t kMask, class D>
HWY_INLINE hn::VFromD<D> MovedBitsOf(D d, hn::VFromD<D> words) {
  if constexpr (kShift > 0) words = hn::ShiftLeft<kShift>(words);
  if constexpr (kShift < 0) words = hn::ShiftRight<-kShift>(words);
  return hn::And(words, hn::Set(d, hn::TFromD<D>(kMask)));
}

// Fields::Of for every lane; lanes of 16 bits do where neither layout is wider.
template <class Fields, size_t i = 0, class D>
HWY_INLINE hn::VFromD<D> MovedFieldsOf(D d, hn::VFromD<D> words) {
  if constexpr (i == Fields::kMoves.size()) {
    return hn::Set(d, hn::TFromD<D>(Fields::kBits));
  } else if constexpr (Fields::kMoves[i].mask == 0) {
    return MovedFieldsOf<Fields, i + 1>(d, words);
  } else {
    constexpr MovedBits kMove = Fields::kMoves[i];
    return hn::Or(MovedBitsOf<kMove.shift, kMove.mask>(d, words),
                  MovedFieldsOf<Fields, i + 1>(d, words));
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
