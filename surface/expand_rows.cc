#include "surface/expand_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surface/expand_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/moved_fields-inl.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// One byte of each of the 256 table entries, in four registers.
struct BytePlane {
  using D = hn::ScalableTag<uint8_t>;
  using V = hn::VFromD<D>;
  V part[4];

  HWY_INLINE BytePlane(const PixelTable& table, int byte) {
    const D d;
    for (size_t i = 0; i < 4; ++i) {
      const auto* pixels = reinterpret_cast<const uint8_t*>(table.pixel + i * 64);
      part[i] = LowBytes(d, ForEachVector(d, LoadWords<4>(d, pixels), [&](auto v) HWY_ATTR {
                           return hn::ShiftRightSame(v, byte * 8);
                         }));
    }
  }

  HWY_INLINE V operator()(V index) const {
    const D d;
    const hn::RebindToSigned<D> di;
    const auto low_bits = hn::IndicesFromVec(d, hn::And(index, hn::Set(d, 0x7F)));
    const auto upper = hn::RebindMask(d, hn::Lt(hn::BitCast(di, index), hn::Zero(di)));
    return hn::IfThenElse(upper, hn::TwoTablesLookupLanes(d, part[2], part[3], low_bits),
                          hn::TwoTablesLookupLanes(d, part[0], part[1], low_bits));
  }
};

template <int bytes>
struct BytePlanes;
template <>
struct BytePlanes<1> {
  BytePlane b0;
  HWY_INLINE explicit BytePlanes(const PixelTable& table) : b0(table, 0) {}
};
template <>
struct BytePlanes<2> : BytePlanes<1> {
  BytePlane b1;
  HWY_INLINE explicit BytePlanes(const PixelTable& table) : BytePlanes<1>(table), b1(table, 1) {}
};
template <>
struct BytePlanes<3> : BytePlanes<2> {
  BytePlane b2;
  HWY_INLINE explicit BytePlanes(const PixelTable& table) : BytePlanes<2>(table), b2(table, 2) {}
};
template <>
struct BytePlanes<4> : BytePlanes<3> {
  BytePlane b3;
  HWY_INLINE explicit BytePlanes(const PixelTable& table) : BytePlanes<3>(table), b3(table, 3) {}
};

// Looked up in memory.
template <class Format, bool skip_index_0>
struct Expand {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = Format::kBytes, kSrcBytes = 1;
  static constexpr bool kVectorWins = !skip_index_0;
  const PixelTable& table;

  HWY_INLINE explicit Expand(const PixelTable& pixels) : table(pixels) {}

  template <class D>
  HWY_INLINE void Vector(D, uint8_t* dst, const uint8_t* src) const {
    for (size_t i = 0; i < hn::MaxLanes(D()); i += 4) FourPixels(dst + i * kDstBytes, src + i);
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    uint32_t pixel = table.pixel[*src];
    if constexpr (skip_index_0) {  // chosen without a branch: sprites are full of edges
      const uint32_t drawn = *src != 0 ? ~uint32_t{0} : 0;
      pixel = (pixel & drawn) | (Format::Load(dst) & ~drawn);
    }
    Format::Store(dst, typename Format::Word(pixel));
  }

 private:
  // Fewer and wider stores than four single pixels.
  HWY_INLINE void FourPixels(uint8_t* dst, const uint8_t* src) const {
    const uint32_t p0 = table.pixel[src[0]], p1 = table.pixel[src[1]];
    const uint32_t p2 = table.pixel[src[2]], p3 = table.pixel[src[3]];
    if constexpr (kDstBytes == 1) {
      StoreWord(dst, (p0 & 0xFF) | (p1 & 0xFF) << 8 | (p2 & 0xFF) << 16 | p3 << 24);
    } else if constexpr (kDstBytes == 2) {
      StoreWord(dst, (p0 & 0xFFFF) | p1 << 16);
      StoreWord(dst + 4, (p2 & 0xFFFF) | p3 << 16);
    } else if constexpr (kDstBytes == 3) {
      StoreWord(dst, (p0 & 0xFFFFFF) | p1 << 24);
      StoreWord(dst + 4, (p1 >> 8 & 0xFFFF) | p2 << 16);
      StoreWord(dst + 8, (p2 >> 16 & 0xFF) | p3 << 8);
    } else {
      StoreWord(dst, p0 | uint64_t{p1} << 32);
      StoreWord(dst + 8, p2 | uint64_t{p3} << 32);
    }
  }
};

// Looked up in registers.
template <class Format, bool skip_index_0>
struct ExpandInRegisters : Expand<Format, skip_index_0> {
  using Expand<Format, skip_index_0>::kDstBytes;
  static constexpr bool kVectorWins = true;
  BytePlanes<Format::kBytes> planes;

  HWY_INLINE explicit ExpandInRegisters(const PixelTable& pixels)
      : Expand<Format, skip_index_0>(pixels), planes(pixels) {}

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    constexpr size_t kSize = hn::MaxLanes(D());
    const auto index = hn::LoadU(d, src);
    if constexpr (kDstBytes == 1) {
      auto pixels = Take(d, planes.b0, index);
      if constexpr (skip_index_0) pixels = Blend(d, hn::LoadU(d, dst), pixels, src);
      hn::StoreU(pixels, d, dst);
    } else if constexpr (kDstBytes == 2) {
      const auto order = BlockOrder<uint64_t>(d, index);
      const HalfWords<D> pixels =
          JoinPlanes(d, Take(d, planes.b0, order), Take(d, planes.b1, order));
      Store(d, pixels.v0, dst, src);
      Store(d, pixels.v1, dst + kSize, src + kSize / 2);
    } else {
      Words<D> words = TakeWords(d, BlockOrder<uint32_t>(d, index));
      if constexpr (skip_index_0) {
        const Words<D> below = LoadWords<kDstBytes>(d, dst);
        words = {Blend(d, below.v0, words.v0, src), Blend(d, below.v1, words.v1, src + kSize / 4),
                 Blend(d, below.v2, words.v2, src + kSize / 2),
                 Blend(d, below.v3, words.v3, src + kSize / 4 * 3)};
      }
      StoreWords<kDstBytes>(d, words, dst);
    }
  }

 private:
  template <class D>
  static HWY_INLINE hn::VFromD<D> Take(D d, const BytePlane& plane, hn::VFromD<D> index) {
    const BytePlane::D full;
    return hn::ResizeBitCast(d, plane(hn::ZeroExtendResizeBitCast(full, d, index)));
  }

  template <class D>
  HWY_INLINE Words<D> TakeWords(D d, hn::VFromD<D> order) const {
    auto top = hn::Zero(d);
    if constexpr (kDstBytes == 4) top = Take(d, planes.b3, order);
    return JoinPlanes(d, Take(d, planes.b0, order), Take(d, planes.b1, order),
                      Take(d, planes.b2, order), top);
  }

  // `pixels` where the index at `src` is to be drawn, else `below`.
  template <class D, class V>
  static HWY_INLINE V Blend(D, V below, V pixels, const uint8_t* src) {
    const hn::DFromV<V> d;
    const hn::Rebind<uint8_t, decltype(d)> d8;
    auto index = hn::Zero(d);
    if constexpr (sizeof(hn::TFromD<decltype(d)>) == 1) {
      index = hn::LoadU(d8, src);
    } else {
      index = hn::PromoteTo(d, hn::LoadU(d8, src));
    }
    return hn::IfThenElse(hn::Eq(index, hn::Zero(d)), below, pixels);
  }

  template <class D>
  static HWY_INLINE void Store(D, hn::VFromD<HalfWordTag<D>> pixels, uint8_t* dst,
                               const uint8_t* src) {
    const HalfWordTag<D> d16;
    auto* const words = reinterpret_cast<uint16_t*>(dst);
    if constexpr (skip_index_0) pixels = Blend(D(), hn::LoadU(d16, words), pixels, src);
    hn::StoreU(pixels, d16, words);
  }
};

template <class Format, bool skip_index_0>
HWY_INLINE void ExpandTo(const SourceRows& rows, const PixelTable& table) {
  using Kernel = std::conditional_t<kHaveByteTables, ExpandInRegisters<Format, skip_index_0>,
                                    Expand<Format, skip_index_0>>;
  RepeatableRows(Kernel(table), rows);
}

template <bool skip_index_0>
HWY_INLINE void ExpandDepth(int pixel_bytes, const SourceRows& rows, const PixelTable& table) {
  switch (pixel_bytes) {
    case 1:
      return ExpandTo<Indexed8, skip_index_0>(rows, table);
    case 2:
      return ExpandTo<Any16, skip_index_0>(rows, table);
    case 3:
      return ExpandTo<Rgb888, skip_index_0>(rows, table);
    default:
      return ExpandTo<Argb8888, skip_index_0>(rows, table);
  }
}

template <class Format>
void PackTable(PixelTable& table) {
  using Packing = MovedFields<Format, ByteFields>;
  if constexpr (kHaveVectors) {
    const hn::ScalableTag<uint32_t> d;
    for (size_t i = 0; i < 256; i += hn::MaxLanes(d)) {
      hn::StoreU(MovedFieldsOf<Packing>(d, hn::LoadU(d, table.pixel + i)), d, table.pixel + i);
    }
  } else {
    for (uint32_t& word : table.pixel) word = Packing::Of(word);
  }
}

void ExpandIndexed(int pixel_bytes, const SourceRows& rows, const PixelTable& table,
                   bool skip_index_0) {
  if (skip_index_0) {
    ExpandDepth<true>(pixel_bytes, rows, table);
  } else {
    ExpandDepth<false>(pixel_bytes, rows, table);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(ExpandIndexed);
HWY_EXPORT_T(PackTable565, PackTable<Rgb565>);
HWY_EXPORT_T(PackTable555, PackTable<Rgb555>);
HWY_EXPORT_T(PackTable4444, PackTable<Argb4444>);

PixelTable PixelsOfPalette(Argb8888, const TRGBA* palette) {
  PixelTable table;
  std::memcpy(table.pixel, palette, sizeof(table.pixel));
  return table;
}
PixelTable PixelsOfPalette(Rgb888, const TRGBA* palette) {
  return PixelsOfPalette(Argb8888(), palette);  // the top byte is not stored
}
PixelTable PixelsOfPalette(Rgb565, const TRGBA* palette) {
  PixelTable table = PixelsOfPalette(Argb8888(), palette);
  HWY_DYNAMIC_DISPATCH_T(PackTable565)(table);
  return table;
}
PixelTable PixelsOfPalette(Rgb555, const TRGBA* palette) {
  PixelTable table = PixelsOfPalette(Argb8888(), palette);
  HWY_DYNAMIC_DISPATCH_T(PackTable555)(table);
  return table;
}
PixelTable PixelsOfPalette(Argb4444, const TRGBA* palette) {
  PixelTable table = PixelsOfPalette(Argb8888(), palette);
  HWY_DYNAMIC_DISPATCH_T(PackTable4444)(table);
  return table;
}

void ExpandIndexed(int pixel_bytes, const SourceRows& rows, const PixelTable& table,
                   bool skip_index_0) {
  HWY_DYNAMIC_DISPATCH(ExpandIndexed)(pixel_bytes, rows, table, skip_index_0);
}

}  // namespace pincel
#endif  // HWY_ONCE
