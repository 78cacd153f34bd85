// Per-target: how a kernel walks a row. Included by the *_rows.cc files, once per instruction set.
//
// A kernel is a struct with
//   using Lane       the lane type of its widest vectors
//   kDstBytes        bytes per destination pixel
//   kSrcBytes        bytes per source pixel (kernels with a source)
//   Vector(d, dst, src)  does Lanes(d) pixels
//   Pixel(dst, src)      does one pixel, in plain C++
//   kVectorWins          (optional, default true) false where plain code is faster on this target
// Vector and Pixel do the same to every pixel, wherever it stands in the row.
#if defined(SURFACE_ROW_KERNELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef SURFACE_ROW_KERNELS_INL_H_
#undef SURFACE_ROW_KERNELS_INL_H_
#else
#define SURFACE_ROW_KERNELS_INL_H_
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// False on the targets that have no vectors; their kernels are Pixel alone.
inline constexpr bool kHaveVectors = HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128;
// Whether bytes can be shuffled freely: without it, splitting 24-bit pixels into planes is slower
// than plain code.
inline constexpr bool kHaveByteShuffle = kHaveVectors && HWY_TARGET != HWY_SSE2;
// Whether a 256-entry table fits into registers and can be looked up there.
inline constexpr bool kHaveByteTables = HWY_TARGET <= HWY_AVX3_DL;

template <class Kernel>
constexpr bool UsesVectors() {
  if constexpr (requires { Kernel::kVectorWins; }) {
    return kHaveVectors && Kernel::kVectorWins;
  } else {
    return kHaveVectors;
  }
}

// Loads pixels once. Left to itself, GCC repeats the load for every use, which costs up to a third of
// the speed (multiply at 32 bits, 2048 x 2048 pixels).
template <class D>
HWY_INLINE hn::VFromD<D> LoadPixels(D d, const uint8_t* p) {
  auto v = hn::LoadU(d, reinterpret_cast<const hn::TFromD<D>*>(p));
#if HWY_COMPILER_GCC_ACTUAL && HWY_ARCH_X86
  if constexpr (kHaveVectors) asm("" : "+v"(v.raw));
#endif
  return v;
}

// The shortest vectors worth using have 16 bytes.
template <class D>
constexpr bool CanHalve(D d) {
  return hn::MaxLanes(d) * sizeof(hn::TFromD<D>) > 16;
}

// How many pixels of `bytes` bytes to skip until stores are aligned to `boundary`, a power of two; 0
// when they are, or never will be. Stores that cross cache lines take twice the time with AVX-512.
template <size_t bytes, size_t boundary>
HWY_INLINE size_t PixelsToBoundary(const uint8_t* dst) {
  const size_t missing = (0 - reinterpret_cast<uintptr_t>(dst)) % boundary;
  if constexpr (bytes == 3) {
    constexpr size_t kInverse = size_t{0xAAAAAAAAAAAAAAAB & (boundary - 1)};  // 3 x this is 1
    return missing * kInverse % boundary;
  } else {
    return missing % bytes == 0 ? missing / bytes : 0;
  }
}
// Rows of fewer vectors are not worth it.
inline constexpr size_t kAlignedVectors = 8;

// One row of a kernel whose result does not depend on what it has already written to the row, so
// that the last vector may overlap the one before: repacking, keyed copies.
template <class D, class Kernel>
HWY_INLINE void RepeatableRow(D d, const Kernel& kernel, uint8_t* HWY_RESTRICT dst,
                              const uint8_t* HWY_RESTRICT src, size_t width) {
  if constexpr (UsesVectors<Kernel>()) {
    constexpr size_t kLanes = hn::MaxLanes(D());
    if (width >= kLanes) {
      size_t x = 0;
      if (width >= kAlignedVectors * kLanes) {
        x = PixelsToBoundary<Kernel::kDstBytes, kLanes * sizeof(hn::TFromD<D>)>(dst);
        if (x != 0) kernel.Vector(d, dst, src);
      }
      const auto vector = [&](size_t at) HWY_ATTR {
        kernel.Vector(d, dst + at * Kernel::kDstBytes, src + at * Kernel::kSrcBytes);
      };
      // Loops around short vectors cost more than what is in them.
      constexpr size_t kTimes = kLanes * sizeof(hn::TFromD<D>) == 16 ? 2 : 1;
      for (; x + kTimes * kLanes <= width; x += kTimes * kLanes) {
        vector(x);
        if constexpr (kTimes == 2) vector(x + kLanes);
      }
      if (kTimes == 2 && x + kLanes <= width) {
        vector(x);
        x += kLanes;
      }
      if (x != width) vector(width - kLanes);
      return;
    }
    if constexpr (CanHalve(D())) {
      RepeatableRow(hn::Half<D>(), kernel, dst, src, width);
      return;
    }
  }
  for (size_t x = 0; x < width; ++x) {
    kernel.Pixel(dst + x * Kernel::kDstBytes, src + x * Kernel::kSrcBytes);
  }
}

// All rows of such a kernel.
template <class Kernel>
HWY_INLINE void RepeatableRows(const Kernel& kernel, const SourceRows& rows) {
  const SourceRows joined = Joined(rows, Kernel::kDstBytes, Kernel::kSrcBytes);
  const hn::ScalableTag<typename Kernel::Lane> d;
  ForEachRow(joined, [&](uint8_t* dst, const uint8_t* src)
                         HWY_ATTR { RepeatableRow(d, kernel, dst, src, joined.width); });
}

// Bytes as they are.
struct ByteCopy {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = 1;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    hn::StoreU(hn::LoadU(d, src), d, dst);
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const { *dst = *src; }
};

// The sources of a kernel that changes what is in the destination: bytes per pixel of each.
template <size_t bytes>
struct Stream {
  static constexpr size_t kBytes = bytes;
  const uint8_t* pixels;
  HWY_INLINE const uint8_t* At(size_t x) const { return pixels + x * bytes; }
};

#if HWY_COMPILER_GCC_ACTUAL
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // misled by the two conditions below
#endif

// One row of a kernel whose result depends on the destination, so that every pixel must be done
// exactly once. Its functions read and write apart:
//   Vector(d, out, dst, src...)  does Lanes(d) pixels
//   Pixel(out, dst, src...)      does one pixel
// The last vector overlaps the one before here too, and so does the first where stores are aligned;
// these are computed before all others and stored after them.
template <class D, class Kernel, class... Source>
HWY_INLINE void OnceRow(D d, const Kernel& kernel, size_t width, uint8_t* dst, Source... source) {
  constexpr size_t kBytes = Kernel::kDstBytes;
  if constexpr (UsesVectors<Kernel>()) {
    constexpr size_t kLanes = hn::MaxLanes(D());
    if (width >= kLanes) {
      const size_t last = width - kLanes;
      const size_t first = width >= kAlignedVectors * kLanes
                               ? PixelsToBoundary<kBytes, kLanes * sizeof(hn::TFromD<D>)>(dst)
                               : 0;
      const bool overlaps = (width - first) % kLanes != 0;
      uint8_t begin[kLanes * kBytes], end[kLanes * kBytes];
      if (first != 0) kernel.Vector(d, begin, dst, source.At(0)...);
      if (overlaps) kernel.Vector(d, end, dst + last * kBytes, source.At(last)...);
      for (size_t x = first; x <= last; x += kLanes) {
        kernel.Vector(d, dst + x * kBytes, dst + x * kBytes, source.At(x)...);
      }
      if (first != 0) std::memcpy(dst, begin, sizeof(begin));
      if (overlaps) std::memcpy(dst + last * kBytes, end, sizeof(end));
      return;
    }
    if constexpr (CanHalve(D())) {
      OnceRow(hn::Half<D>(), kernel, width, dst, source...);
      return;
    }
  }
  for (size_t x = 0; x < width; ++x) {
    kernel.Pixel(dst + x * kBytes, dst + x * kBytes, source.At(x)...);
  }
}

#if HWY_COMPILER_GCC_ACTUAL
#pragma GCC diagnostic pop
#endif

// All rows of such a kernel: without a source, with one (kSrcBytes), with a source and a mask
// (kSrcBytes and kMaskBytes).
template <class Kernel>
HWY_INLINE void OnceRows(const Kernel& kernel, const Rows& rows) {
  const Rows joined = Joined(rows, Kernel::kDstBytes);
  const hn::ScalableTag<typename Kernel::Lane> d;
  ForEachRow(joined, [&](uint8_t* dst) HWY_ATTR { OnceRow(d, kernel, joined.width, dst); });
}
template <class Kernel>
HWY_INLINE void OnceRows(const Kernel& kernel, const SourceRows& rows) {
  const SourceRows joined = Joined(rows, Kernel::kDstBytes, Kernel::kSrcBytes);
  const hn::ScalableTag<typename Kernel::Lane> d;
  ForEachRow(joined, [&](uint8_t* dst, const uint8_t* src) HWY_ATTR {
    OnceRow(d, kernel, joined.width, dst, Stream<Kernel::kSrcBytes>{src});
  });
}
template <class Kernel>
HWY_INLINE void OnceRows(const Kernel& kernel, const MaskedRows& rows) {
  const MaskedRows joined = Joined(rows, Kernel::kDstBytes, Kernel::kSrcBytes, Kernel::kMaskBytes);
  const hn::ScalableTag<typename Kernel::Lane> d;
  ForEachRow(joined, [&](uint8_t* dst, const uint8_t* src, const uint8_t* mask) HWY_ATTR {
    OnceRow(d, kernel, joined.width, dst, Stream<Kernel::kSrcBytes>{src},
            Stream<Kernel::kMaskBytes>{mask});
  });
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
