// Per-target: runs of bytes in which each depends on the ones before it, vector by vector. A vector
// is computed from a guess of the bytes to the left until what comes out agrees with what went in.
// There is one such result only, the one that byte after byte would give, and since a byte has
// little influence on those to its right, it is there after a few rounds.
//
// A kernel is a struct with
//   kLefts                    how many bytes to the left count: 1 or 2
//   kLeastLanes               shorter vectors lose to plain code
//   At(d, x)                  what is known about Lanes(d) bytes from x on: a struct with Guess()
//                             of their values and Values(left, left2), given their neighbours
//   ValueAt(x, left)          one byte, in plain C++
#if defined(FILTERS_SETTLED_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef FILTERS_SETTLED_INL_H_
#undef FILTERS_SETTLED_INL_H_
#else
#define FILTERS_SETTLED_INL_H_
#endif

#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class D, class Kernel>
HWY_INLINE void SettleVectors(D d, const Kernel& kernel, uint8_t* out, size_t x, size_t count,
                              size_t distance) {
  if constexpr (UsesVectors<Kernel>()) {
    constexpr size_t kLanes = hn::MaxLanes(D());
    if (kLanes >= Kernel::kLeastLanes && kLanes <= distance) {
      const auto first_lane = hn::FirstN(d, 1);
      for (; x + kLanes <= count; x += kLanes) {
        const auto before = hn::IfThenElseZero(first_lane, hn::Set(d, out[ptrdiff_t(x) - 1]));
        auto before2 = hn::Zero(d);
        if constexpr (Kernel::kLefts > 1) {
          before2 = hn::IfThenElseZero(first_lane, hn::Set(d, out[ptrdiff_t(x) - 2]));
        }
        const auto known = kernel.At(d, x);
        auto left = hn::Or(hn::Slide1Up(d, known.Guess()), before);
        for (;;) {
          auto left2 = left;
          if constexpr (Kernel::kLefts > 1) left2 = hn::Or(hn::Slide1Up(d, left), before2);
          const auto values = known.Values(left, left2);
          const auto moved = hn::Or(hn::Slide1Up(d, values), before);
          if (hn::AllTrue(d, hn::Eq(moved, left))) {
            hn::StoreU(values, d, out + x);
            break;
          }
          left = moved;
        }
      }
    }
    if constexpr (CanHalve(D())) {
      return SettleVectors(hn::Half<D>(), kernel, out, x, count, distance);
    }
  }
  for (; x < count; ++x) out[x] = kernel.ValueAt(x, out[ptrdiff_t(x) - 1]);
}

// Writes `count` bytes; as many as count stand before them. The kernel reads nothing that is
// written less than `distance` bytes before.
template <class Kernel>
HWY_INLINE void SettleRun(const Kernel& kernel, uint8_t* out, size_t count, size_t distance) {
  SettleVectors(hn::ScalableTag<uint8_t>(), kernel, out, 0, count, distance);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
