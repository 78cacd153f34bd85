#include "draw/blit_rows.h"

#include "draw/blit_pixel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "draw/blit_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class Format>
struct KeyedCopy {
  using Lane = typename Format::Word;
  static constexpr size_t kDstBytes = Format::kBytes, kSrcBytes = Format::kBytes;
  uint32_t transparent;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    const auto pixels = hn::LoadU(d, reinterpret_cast<const Lane*>(src));
    const auto below = hn::LoadU(d, reinterpret_cast<const Lane*>(dst));
    const auto key_bits = hn::And(pixels, hn::Set(d, Lane(kKeyBits<Format>)));
    const auto hidden = hn::Eq(key_bits, hn::Set(d, Lane(transparent)));
    hn::StoreU(hn::IfThenElse(hidden, below, pixels), d, reinterpret_cast<Lane*>(dst));
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    CopyUnlessTransparent<Format>(dst, src, transparent);
  }
};

// 24 bits: planes of blue, green and red.
template <>
struct KeyedCopy<Rgb888> {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3, kSrcBytes = 3;
  static constexpr bool kVectorWins = kHaveByteShuffle;
  uint32_t transparent;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    hn::VFromD<D> b, g, r, below_b, below_g, below_r;
    hn::LoadInterleaved3(d, src, b, g, r);
    hn::LoadInterleaved3(d, dst, below_b, below_g, below_r);
    const auto hidden = hn::And(hn::And(hn::Eq(b, hn::Set(d, uint8_t(transparent))),
                                        hn::Eq(g, hn::Set(d, uint8_t(transparent >> 8)))),
                                hn::Eq(r, hn::Set(d, uint8_t(transparent >> 16))));
    hn::StoreInterleaved3(hn::IfThenElse(hidden, below_b, b), hn::IfThenElse(hidden, below_g, g),
                          hn::IfThenElse(hidden, below_r, r), d, dst);
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    CopyUnlessTransparent<Rgb888>(dst, src, transparent);
  }
};

void CopyKeyed(int pixel_bytes, const SourceRows& rows, uint32_t transparent) {
  switch (pixel_bytes) {
    case 1:
      return RepeatableRows(KeyedCopy<Indexed8>{transparent}, rows);
    case 2:
      return RepeatableRows(KeyedCopy<Any16>{transparent}, rows);
    case 3:
      return RepeatableRows(KeyedCopy<Rgb888>{transparent}, rows);
    default:
      return RepeatableRows(KeyedCopy<Argb8888>{transparent}, rows);
  }
}

// Pixels of 1, 2, 3 or 4 bytes, one behind the other: twelve bytes are whole pixels of each kind.
// Three vectors from any byte of the first twelve can be stored again and again.
struct FillPattern {
  static constexpr size_t kVector = hn::MaxLanes(hn::ScalableTag<uint8_t>());
  static constexpr size_t kPeriod = 12;
  uint8_t bytes[kPeriod * (3 * kVector / kPeriod + 2)];

  FillPattern(size_t pixel_bytes, uint32_t pixel) {
    for (size_t i = 0; i < kPeriod; i += pixel_bytes) std::memcpy(bytes + i, &pixel, pixel_bytes);
    for (size_t i = kPeriod; i < sizeof(bytes); i += kPeriod) {
      std::memcpy(bytes + i, bytes, kPeriod);
    }
  }
};

template <class D>
HWY_INLINE void FillRow(D d, const FillPattern& pattern, uint8_t* dst, size_t size) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  if (size >= kLanes) {
    hn::StoreU(hn::LoadU(d, pattern.bytes), d, dst);
    // From here on aligned, so that no store crosses a cache line.
    size_t i = kLanes - reinterpret_cast<uintptr_t>(dst) % kLanes;
    const uint8_t* const from = pattern.bytes + i % FillPattern::kPeriod;
    const auto first = hn::LoadU(d, from);
    const auto second = hn::LoadU(d, from + kLanes);
    const auto third = hn::LoadU(d, from + 2 * kLanes);
    for (; i + 3 * kLanes <= size; i += 3 * kLanes) {
      hn::Store(first, d, dst + i);
      hn::Store(second, d, dst + i + kLanes);
      hn::Store(third, d, dst + i + 2 * kLanes);
    }
    if (i + kLanes <= size) hn::Store(first, d, dst + i);
    if (i + 2 * kLanes <= size) hn::Store(second, d, dst + i + kLanes);
    const size_t last = size - kLanes;  // overlaps what is there already
    hn::StoreU(hn::LoadU(d, pattern.bytes + last % FillPattern::kPeriod), d, dst + last);
    return;
  }
  if constexpr (kLanes > 4) {
    FillRow(hn::Half<D>(), pattern, dst, size);
  } else {
    std::memcpy(dst, pattern.bytes, size);
  }
}

void FillRows(int pixel_bytes, const Rows& rows, uint32_t pixel) {
  const size_t size = rows.width * size_t(pixel_bytes);
  const FillPattern pattern(size_t(pixel_bytes), pixel);
  ForEachRow(rows, [&](uint8_t* dst) HWY_ATTR {
    if constexpr (kHaveVectors) {
      FillRow(hn::ScalableTag<uint8_t>(), pattern, dst, size);
    } else {
      for (size_t i = 0; i < size; ++i) dst[i] = pattern.bytes[i % FillPattern::kPeriod];
    }
  });
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(CopyKeyed);
HWY_EXPORT(FillRows);

void CopyKeyed(int pixel_bytes, const SourceRows& rows, uint32_t transparent) {
  HWY_DYNAMIC_DISPATCH(CopyKeyed)(pixel_bytes, rows, transparent);
}

namespace {

// Fills past this size leave the caches: there the string store, which does not read what it
// overwrites, is 1.2 to 1.7 times as fast as vector stores (bench: fill/*/2048).
constexpr size_t kStringStoreBytes = size_t{1} << 20;

// One run of pixels by the processor's string store; false where that would be slower.
bool FillByStringStore(int pixel_bytes, const Rows& joined, uint32_t pixel) {
#if defined(__x86_64__) || defined(__i386__)
  if (joined.height != 1 || joined.width * size_t(pixel_bytes) < kStringStoreBytes) return false;
  uint8_t* dst = joined.dst;
  size_t count = joined.width;
  switch (pixel_bytes) {
    case 1:
      asm volatile("rep stosb" : "+D"(dst), "+c"(count) : "a"(pixel) : "memory");
      return true;
    case 2:
      asm volatile("rep stosw" : "+D"(dst), "+c"(count) : "a"(pixel) : "memory");
      return true;
    case 4:
      asm volatile("rep stosl" : "+D"(dst), "+c"(count) : "a"(pixel) : "memory");
      return true;
    default:
      return false;
  }
#else
  (void)pixel_bytes, (void)joined, (void)pixel;
  return false;
#endif
}

}  // namespace

void FillRows(int pixel_bytes, const Rows& rows, uint32_t pixel) {
  const Rows joined = Joined(rows, size_t(pixel_bytes));
  if (FillByStringStore(pixel_bytes, joined, pixel)) return;
  HWY_DYNAMIC_DISPATCH(FillRows)(pixel_bytes, joined, pixel);
}

}  // namespace pincel
#endif  // HWY_ONCE
