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
    case 1: return RepeatableRows(KeyedCopy<Indexed8>{transparent}, rows);
    case 2: return RepeatableRows(KeyedCopy<Any16>{transparent}, rows);
    case 3: return RepeatableRows(KeyedCopy<Rgb888>{transparent}, rows);
    default: return RepeatableRows(KeyedCopy<Argb8888>{transparent}, rows);
  }
}

// A pattern of whole pixels of 1, 2, 3 and 4 bytes alike: three vectors are a multiple of each.
struct FillPattern {
  static constexpr size_t kVectorBytes = hn::MaxLanes(hn::ScalableTag<uint8_t>());
  uint8_t bytes[4 * kVectorBytes];  // one vector more, so that one can start at any byte of the three

  FillPattern(size_t pixel_bytes, uint32_t pixel) {
    for (size_t i = 0; i < sizeof(bytes); ++i) bytes[i] = uint8_t(pixel >> (8 * (i % pixel_bytes)));
  }
};

template <class D>
HWY_INLINE void FillRow(D d, const FillPattern& pattern, uint8_t* dst, size_t size) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  if (size >= kLanes) {
    const auto first = hn::LoadU(d, pattern.bytes);
    const auto second = hn::LoadU(d, pattern.bytes + kLanes);
    const auto third = hn::LoadU(d, pattern.bytes + 2 * kLanes);
    size_t i = 0;
    for (; i + 3 * kLanes <= size; i += 3 * kLanes) {
      hn::StoreU(first, d, dst + i);
      hn::StoreU(second, d, dst + i + kLanes);
      hn::StoreU(third, d, dst + i + 2 * kLanes);
    }
    if (i + kLanes <= size) hn::StoreU(first, d, dst + i);
    if (i + 2 * kLanes <= size) hn::StoreU(second, d, dst + i + kLanes);
    const size_t last = size - kLanes;  // the last vector overlaps; it starts inside the pattern
    hn::StoreU(hn::LoadU(d, pattern.bytes + last % (3 * kLanes)), d, dst + last);
    return;
  }
  if constexpr (kLanes > 4) {
    FillRow(hn::Half<D>(), pattern, dst, size);
  } else {
    for (size_t i = 0; i < size; ++i) dst[i] = pattern.bytes[i];
  }
}

void FillRows(int pixel_bytes, const Rows& rows, uint32_t pixel) {
  const Rows joined = Joined(rows, size_t(pixel_bytes));
  const size_t size = joined.width * size_t(pixel_bytes);
  const FillPattern pattern(size_t(pixel_bytes), pixel);
  ForEachRow(joined, [&](uint8_t* dst) HWY_ATTR {
    FillRow(hn::ScalableTag<uint8_t>(), pattern, dst, size);
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
void FillRows(int pixel_bytes, const Rows& rows, uint32_t pixel) {
  HWY_DYNAMIC_DISPATCH(FillRows)(pixel_bytes, rows, pixel);
}

}  // namespace pincel
#endif  // HWY_ONCE
