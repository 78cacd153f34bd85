#include "draw/transform_rows.h"

#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "draw/transform_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// Mirroring. A run of Lanes(d) pixels is loaded in reverse order.
template <class Format>
struct ReversedRun {
  using Lane = typename Format::Word;
  static constexpr bool kVectorWins = true;

  template <class D>
  static HWY_INLINE hn::VFromD<D> Load(D d, const uint8_t* p) {
    return hn::Reverse(d, hn::LoadU(d, reinterpret_cast<const Lane*>(p)));
  }
  template <class D>
  static HWY_INLINE void Store(D d, hn::VFromD<D> run, uint8_t* p) {
    hn::StoreU(run, d, reinterpret_cast<Lane*>(p));
  }
};

template <>
struct ReversedRun<Rgb888> {
  using Lane = uint8_t;
  static constexpr bool kVectorWins = kHaveByteShuffle;

  template <class D>
  static HWY_INLINE auto Load(D d, const uint8_t* p) {
    if constexpr (kHaveByteTables) {
      // The middle third is all of the middle vector and bytes of the other two next to it.
      constexpr size_t kSize = hn::MaxLanes(D());
      auto run = LoadThirds(d, p);
      const auto lower = run.v0, middle = run.v1, upper = run.v2;
      run.v0 = ReversedThird<0>(d, middle, upper);
      run.v1 = ReversedThird<1>(d, middle, hn::IfThenElse(hn::FirstN(d, kSize / 2), upper, lower));
      run.v2 = ReversedThird<2>(d, lower, middle);
      return run;
    } else {
      const WordTag<D> d32;
      const Words<D> words = LoadWords<3>(d, p);
      return Words<D>{hn::Reverse(d32, words.v3), hn::Reverse(d32, words.v2),
                      hn::Reverse(d32, words.v1), hn::Reverse(d32, words.v0)};
    }
  }
  template <class D, class Run>
  static HWY_INLINE void Store(D d, const Run& run, uint8_t* p) {
    if constexpr (kHaveByteTables) {
      constexpr size_t kSize = hn::MaxLanes(D());
      hn::StoreU(run.v0, d, p);
      hn::StoreU(run.v1, d, p + kSize);
      hn::StoreU(run.v2, d, p + 2 * kSize);
    } else {
      StoreWords<3>(d, run, p);
    }
  }

 private:
  // A third of the reversed run from two vectors: the lower third is in the upper two, the upper one in
  // the lower two.
  template <size_t third, class D, class V = hn::VFromD<D>>
  static HWY_INLINE V ReversedThird(D d, V first, V second) {
    constexpr size_t kSize = hn::MaxLanes(D());
    static constexpr auto kFrom = MakeTable<uint8_t, kSize>([](size_t i) {
      const size_t byte = third * kSize + i, source = (kSize - 1 - byte / 3) * 3 + byte % 3;
      if (third != 1) return source - (third == 0 ? kSize : 0);
      return source % kSize + (source / kSize == 1 ? 0 : kSize);
    });
    return hn::TwoTablesLookupLanes(d, first, second, hn::SetTableIndices(d, kFrom.at));
  }
};

// From both ends to the middle, where the last two runs may overlap: both are loaded before either
// is stored.
template <class Format, class D>
HWY_INLINE void MirrorRow(D d, uint8_t* left, size_t width) {
  using Run = ReversedRun<Format>;
  uint8_t* right = left + width * Format::kBytes;
  if constexpr (UsesVectors<Run>()) {
    constexpr size_t kLanes = hn::MaxLanes(D()), kRunBytes = kLanes * Format::kBytes;
    while (width >= kLanes) {
      right -= kRunBytes;
      const auto from_left = Run::Load(d, left), from_right = Run::Load(d, right);
      Run::Store(d, from_right, left);
      Run::Store(d, from_left, right);
      if (width < 2 * kLanes) return;
      left += kRunBytes;
      width -= 2 * kLanes;
    }
    if constexpr (CanHalve(D())) return MirrorRow<Format>(hn::Half<D>(), left, width);
  }
  for (right -= Format::kBytes; left < right; left += Format::kBytes, right -= Format::kBytes) {
    const auto pixel = Format::Load(left);
    Format::Store(left, Format::Load(right));
    Format::Store(right, pixel);
  }
}

template <class Format>
HWY_INLINE void MirrorRowsOf(const Rows& rows) {
  const hn::ScalableTag<typename ReversedRun<Format>::Lane> d;
  ForEachRow(rows, [&](uint8_t* dst) HWY_ATTR { MirrorRow<Format>(d, dst, rows.width); });
}

void MirrorRows(int pixel_bytes, const Rows& rows) {
  switch (pixel_bytes) {
    case 1:
      return MirrorRowsOf<Indexed8>(rows);
    case 2:
      return MirrorRowsOf<Any16>(rows);
    case 3:
      return MirrorRowsOf<Rgb888>(rows);
    default:
      return MirrorRowsOf<Argb8888>(rows);
  }
}

// Copying backwards: pixel x comes from x pixels before `src`.
template <class Format, class D>
HWY_INLINE void CopyBackwards(D d, uint8_t* HWY_RESTRICT dst, const uint8_t* HWY_RESTRICT src,
                              size_t width) {
  using Run = ReversedRun<Format>;
  size_t x = 0;
  if constexpr (UsesVectors<Run>()) {
    constexpr size_t kLanes = hn::MaxLanes(D());
    const auto copy = [&](size_t from) HWY_ATTR {
      const uint8_t* const run = src - ptrdiff_t((from + kLanes - 1) * Format::kBytes);
      Run::Store(d, Run::Load(d, run), dst + from * Format::kBytes);
    };
    for (; x + kLanes <= width; x += kLanes) copy(x);
    if (x == width) return;
    if (width >= kLanes) return copy(width - kLanes);  // overlaps the one before
    if constexpr (CanHalve(D())) return CopyBackwards<Format>(hn::Half<D>(), dst, src, width);
  }
  for (; x < width; ++x) {
    Format::Store(dst + x * Format::kBytes, Format::Load(src - ptrdiff_t(x * Format::kBytes)));
  }
}

template <class Format>
HWY_INLINE void CopyBackwardsOf(uint8_t* dst, const uint8_t* src, size_t count) {
  CopyBackwards<Format>(hn::ScalableTag<typename ReversedRun<Format>::Lane>(), dst, src, count);
}

void CopyReversed(int pixel_bytes, uint8_t* dst, const uint8_t* src, size_t count) {
  switch (pixel_bytes) {
    case 1:
      return CopyBackwardsOf<Indexed8>(dst, src, count);
    case 3:
      return CopyBackwardsOf<Rgb888>(dst, src, count);
    default:
      return CopyBackwardsOf<Argb8888>(dst, src, count);
  }
}

// Turning. Squares of pixels as wide as a vector are transposed: first the squares of 16 x 16 bytes in
// them, by interleaving vectors, each in its blocks of 16 bytes, then the blocks. So whole cache lines
// are read and written at a time, which must not wait for each other where they compete for the same
// places in the cache, as lines below each other often do. 24-bit pixels are words on the way.
template <class Format>
struct Square {
  using Lane = std::conditional_t<Format::kBytes == 3, uint32_t, typename Format::Word>;
  static constexpr bool kVectorWins = Format::kBytes != 3 || kHaveByteShuffle;
  // Pixels of a source row that are loaded for a side, which may be more.
  static constexpr size_t LoadedWidth(size_t side) {
    return Format::kBytes == 3 ? (side * 4 + 2) / 3 : side;
  }
};

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

// Each stage interleaves the first half of the vectors with the second.
template <class D, size_t side>
HWY_INLINE void TransposeInBlocks(D d, hn::VFromD<D> (&v)[side]) {
  HWY_UNROLL(4)
  for (size_t stage = side; stage > 1; stage /= 2) {
    hn::VFromD<D> joined[side];
    HWY_UNROLL(8)
    for (size_t i = 0; i < side / 2; ++i) {
      joined[2 * i] = hn::InterleaveLower(d, v[i], v[i + side / 2]);
      joined[2 * i + 1] = hn::InterleaveUpper(d, v[i], v[i + side / 2]);
    }
    HWY_UNROLL(16)
    for (size_t i = 0; i < side; ++i) v[i] = joined[i];
  }
}

// The lower or the upper halves of two vectors in memory. With 64 lanes it is shuffles that take the
// time, and loading halves saves some.
template <bool upper, class D, class T = hn::TFromD<D>>
HWY_INLINE hn::VFromD<D> LoadHalves(D d, const T* first, const T* second) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  if constexpr (kLanes == 64) {
    const hn::Half<D> half;
    constexpr size_t kFrom = upper ? kLanes / 2 : 0;
    return hn::Combine(d, hn::Load(half, second + kFrom), hn::Load(half, first + kFrom));
  } else if constexpr (upper) {
    return hn::ConcatUpperUpper(d, hn::Load(d, second), hn::Load(d, first));
  } else {
    return hn::ConcatLowerLower(d, hn::Load(d, second), hn::Load(d, first));
  }
}

// The even or the odd blocks of two vectors of four, in turn.
template <size_t odd, class D, class V = hn::VFromD<D>>
HWY_INLINE V InterleaveBlocks(D d, V first, V second) {
  const hn::Repartition<uint64_t, D> d64;
  static constexpr auto kFrom =
      MakeTable<uint64_t, 8>([](size_t i) { return i / 4 * 4 + i / 2 % 2 * 8 + odd * 2 + i % 2; });
  return hn::BitCast(
      d, hn::TwoTablesLookupLanes(d64, hn::BitCast(d64, first), hn::BitCast(d64, second),
                                  hn::SetTableIndices(d64, kFrom.at)));
}

// Block b of row i becomes block i of vector b.
template <class D, size_t blocks, class T = hn::TFromD<D>>
HWY_INLINE void LoadTransposedBlocks(D d, const T (&rows)[blocks][blocks * 16 / sizeof(T)],
                                     hn::VFromD<D> (&v)[blocks]) {
  if constexpr (blocks == 1) {
    v[0] = hn::Load(d, rows[0]);
  } else if constexpr (blocks == 2) {
    v[0] = LoadHalves<false>(d, rows[0], rows[1]);
    v[1] = LoadHalves<true>(d, rows[0], rows[1]);
  } else {
    const auto low_even = LoadHalves<false>(d, rows[0], rows[2]);
    const auto low_odd = LoadHalves<false>(d, rows[1], rows[3]);
    const auto high_even = LoadHalves<true>(d, rows[0], rows[2]);
    const auto high_odd = LoadHalves<true>(d, rows[1], rows[3]);
    v[0] = InterleaveBlocks<0>(d, low_even, low_odd);
    v[1] = InterleaveBlocks<1>(d, low_even, low_odd);
    v[2] = InterleaveBlocks<0>(d, high_even, high_odd);
    v[3] = InterleaveBlocks<1>(d, high_even, high_odd);
  }
}

// Lanes(d) pixels as lanes. At the end of a row, pixels of three bytes are loaded with bytes before
// them instead of behind them.
template <class Format, class D>
HWY_INLINE hn::VFromD<D> LoadLanes(D d, const uint8_t* p, bool at_end) {
  if constexpr (Format::kBytes == 3) {
    const hn::Repartition<uint8_t, D> d8;
    constexpr size_t kBefore = hn::MaxLanes(d8) / 4;
    return at_end ? SpreadTriples<kBefore>(d8, hn::LoadU(d8, p - kBefore))
                  : SpreadTriples<0>(d8, hn::LoadU(d8, p));
  } else {
    return hn::LoadU(d, reinterpret_cast<const hn::TFromD<D>*>(p));
  }
}
template <class Format, class D>
HWY_INLINE void StoreLanes(D d, hn::VFromD<D> v, uint8_t* p) {
  if constexpr (Format::kBytes == 3) {
    const hn::Repartition<uint8_t, D> d8;
    constexpr size_t kSize = hn::MaxLanes(d8);
    if constexpr (kHaveByteTables) {
      static constexpr auto kFrom =
          MakeTable<uint8_t, kSize>([](size_t i) { return HWY_MIN(i / 3 * 4 + i % 3, kSize - 1); });
      const auto triples =
          hn::TableLookupLanes(hn::BitCast(d8, v), hn::SetTableIndices(d8, kFrom.at));
      hn::BlendedStore(triples, hn::FirstN(d8, kSize / 4 * 3), d8, p);
    } else {
      const hn::Half<decltype(d8)> half;
      const hn::Half<decltype(half)> quarter;
      const auto triples = GatherTriples(d8, v);
      hn::StoreU(hn::LowerHalf(half, triples), half, p);
      hn::StoreU(hn::LowerHalf(quarter, hn::UpperHalf(half, triples)), quarter, p + kSize / 2);
    }
  } else {
    hn::StoreU(v, d, reinterpret_cast<hn::TFromD<D>*>(p));
  }
}

// Fills Lanes(d) columns, from x on, of as many destination rows.
template <class Format, class D>
HWY_INLINE void TransposeSquare(D d, const SourceRows& rows, size_t x, size_t y) {
  constexpr size_t kWidth = hn::MaxLanes(D()), kSide = 16 / sizeof(hn::TFromD<D>);
  constexpr size_t kBlocks = kWidth / kSide;
  const uint8_t* src = rows.src + ptrdiff_t(x) * rows.src_pitch + y * Format::kBytes;
  uint8_t* dst = rows.dst + ptrdiff_t(y) * rows.dst_pitch + x * Format::kBytes;
  const bool at_end = y + Square<Format>::LoadedWidth(kWidth) > rows.height;
  alignas(64) hn::TFromD<D> between[kSide][kBlocks][kWidth];
  for (size_t block = 0; block < kBlocks; ++block) {
    hn::VFromD<D> v[kSide];
    HWY_UNROLL(16)
    for (size_t i = 0; i < kSide; ++i, src += rows.src_pitch) {
      v[i] = LoadLanes<Format>(d, src, at_end);
    }
    TransposeInBlocks(d, v);
    HWY_UNROLL(16)
    for (size_t i = 0; i < kSide; ++i) hn::Store(v[i], d, between[i][block]);
  }
  for (size_t i = 0; i < kSide; ++i, dst += rows.dst_pitch) {
    hn::VFromD<D> v[kBlocks];
    LoadTransposedBlocks(d, between[i], v);
    HWY_UNROLL(4)
    for (size_t block = 0; block < kBlocks; ++block) {
      StoreLanes<Format>(d, v[block], dst + ptrdiff_t(block * kSide) * rows.dst_pitch);
    }
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

// The last squares of a row and of a column overlap those before.
template <class Format, class D>
HWY_INLINE void Transpose(D d, const SourceRows& rows) {
  if constexpr (UsesVectors<Square<Format>>()) {
    constexpr size_t kSide = hn::MaxLanes(D());
    if (rows.width >= kSide && rows.height >= Square<Format>::LoadedWidth(kSide)) {
      // One row of squares after the other, so that few cache lines are written at a time, but not
      // too long ones, so that source lines are near when the next row reads beside them. In long
      // rows all squares but the first start on a boundary where that holds for all rows.
      constexpr size_t kRun = 4 * kSide * sizeof(hn::TFromD<D>), kBoundary = kSide * Format::kBytes;
      size_t back = 0;
      if constexpr (Format::kBytes != 3) {
        if (rows.width > kRun && rows.dst_pitch % ptrdiff_t(kBoundary) == 0) {
          back = (kSide - PixelsToBoundary<Format::kBytes, kBoundary>(rows.dst)) % kSide;
        }
      }
      const size_t end = rows.width + back;
      for (size_t run = 0; run < end; run += kRun) {
        const size_t run_end = HWY_MIN(run + kRun, end);
        for (size_t top = 0; top < rows.height; top += kSide) {
          const size_t y = HWY_MIN(top, rows.height - kSide);
          for (size_t left = run; left < run_end; left += kSide) {
            const size_t x = HWY_MIN(left - HWY_MIN(left, back), rows.width - kSide);
            TransposeSquare<Format>(d, rows, x, y);
          }
        }
      }
      return;
    }
    if constexpr (CanHalve(D())) return Transpose<Format>(hn::Half<D>(), rows);
  }
  for (size_t y = 0; y < rows.height; ++y) {
    for (size_t x = 0; x < rows.width; ++x) {
      Format::Store(rows.dst + ptrdiff_t(y) * rows.dst_pitch + x * Format::kBytes,
                    Format::Load(rows.src + ptrdiff_t(x) * rows.src_pitch + y * Format::kBytes));
    }
  }
}

template <class Format>
HWY_INLINE void TransposeRowsOf(const SourceRows& rows) {
  Transpose<Format>(hn::ScalableTag<typename Square<Format>::Lane>(), rows);
}

void TransposeRows(int pixel_bytes, const SourceRows& rows) {
  switch (pixel_bytes) {
    case 1:
      return TransposeRowsOf<Indexed8>(rows);
    case 2:
      return TransposeRowsOf<Any16>(rows);
    case 3:
      return TransposeRowsOf<Rgb888>(rows);
    default:
      return TransposeRowsOf<Argb8888>(rows);
  }
}

// Brightness.
struct ByteShifter {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1;
  ByteShift shift;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst) const {
    const auto raised = hn::SaturatedAdd(hn::LoadU(d, dst), hn::Set(d, shift.up));
    hn::StoreU(hn::SaturatedSub(raised, hn::Set(d, shift.down)), d, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst) const { *out = shift(*dst); }
};

void ShiftBytesOf(const Rows& bytes, ByteShift shift) { OnceRows(ByteShifter{shift}, bytes); }

template <class Format>
struct FieldShifter {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2;
  int32_t shift;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst) const {
    const auto word = LoadPixels(d, dst);
    const auto colour = hn::Or(
        hn::Or(Shifted<typename Format::Blue>(d, word), Shifted<typename Format::Green>(d, word)),
        Shifted<typename Format::Red>(d, word));
    const auto alpha = hn::And(word, hn::Set(d, uint16_t(Format::Alpha::kMask)));
    hn::StoreU(hn::Or(colour, alpha), d, reinterpret_cast<uint16_t*>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst) const {
    Format::Store(out, ShiftFields<Format>(Format::Load(dst), shift));
  }

 private:
  // The field at the top of its lane, where it saturates.
  template <class Channel, class D>
  HWY_INLINE hn::VFromD<D> Shifted(D d, hn::VFromD<D> word) const {
    using Moved = ShiftedField<Channel>;
    constexpr int kUp = 16 - Moved::kLow - Moved::kWidth;
    const auto mask = hn::Set(d, uint16_t(Moved::kMax << (16 - Moved::kWidth)));
    const auto up = hn::Set(d, uint16_t(HWY_MAX(shift, 0) << 11));
    const auto down = hn::Set(d, uint16_t(HWY_MAX(-shift, 0) << 11));
    const auto field = hn::And(hn::ShiftLeft<kUp>(word), mask);
    const auto shifted = hn::SaturatedSub(hn::SaturatedAdd(field, up), down);
    return hn::ShiftRight<kUp>(hn::And(shifted, mask));
  }
};

template <class Format>
void ShiftFieldsOf(const Rows& rows, int32_t shift) {
  OnceRows(FieldShifter<Format>{shift}, rows);
}

// Tables.
struct ByteMapper {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1;
  static constexpr bool kVectorWins = false;
  const uint8_t* table;

  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst) const { *out = table[*dst]; }
};

#if HWY_TARGET <= HWY_AVX3_DL
// The table in four registers.
struct ByteMapperInRegisters : ByteMapper {
  static constexpr bool kVectorWins = true;
  using Full = hn::ScalableTag<uint8_t>;
  hn::VFromD<Full> part[4];

  HWY_INLINE explicit ByteMapperInRegisters(const uint8_t* entries) : ByteMapper{entries} {
    for (size_t i = 0; i < 4; ++i) part[i] = hn::LoadU(Full(), entries + i * 64);
  }
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst) const {
    const Full full;
    const auto index = hn::ResizeBitCast(full, hn::LoadU(d, dst));
    const auto place = hn::IndicesFromVec(full, hn::And(index, hn::Set(full, 0x7F)));
    const auto upper = hn::MaskFromVec(index);  // by the highest bit
    const auto entry =
        hn::IfThenElse(upper, hn::TwoTablesLookupLanes(full, part[2], part[3], place),
                       hn::TwoTablesLookupLanes(full, part[0], part[1], place));
    hn::StoreU(hn::ResizeBitCast(d, entry), d, out);
  }
};
#else
using ByteMapperInRegisters = ByteMapper;
#endif

void MapBytesOf(const Rows& bytes, const uint8_t* table) {
  OnceRows(ByteMapperInRegisters{table}, bytes);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(MirrorRows);
HWY_EXPORT(CopyReversed);
HWY_EXPORT(TransposeRows);
HWY_EXPORT(ShiftBytesOf);
HWY_EXPORT(MapBytesOf);

void MirrorRows(int pixel_bytes, const Rows& rows) {
  HWY_DYNAMIC_DISPATCH(MirrorRows)(pixel_bytes, rows);
}
void CopyReversed(int pixel_bytes, uint8_t* dst, const uint8_t* src, size_t count) {
  HWY_DYNAMIC_DISPATCH(CopyReversed)(pixel_bytes, dst, src, count);
}
void TransposeRows(int pixel_bytes, const SourceRows& rows) {
  HWY_DYNAMIC_DISPATCH(TransposeRows)(pixel_bytes, rows);
}
void ShiftBytes(const Rows& bytes, ByteShift shift) {
  HWY_DYNAMIC_DISPATCH(ShiftBytesOf)(bytes, shift);
}
void ShiftFields(Rgb565, const Rows& rows, int32_t shift) {
  HWY_EXPORT_T(ShiftFields565, ShiftFieldsOf<Rgb565>);
  HWY_DYNAMIC_DISPATCH_T(ShiftFields565)(rows, shift);
}
void ShiftFields(Rgb555, const Rows& rows, int32_t shift) {
  HWY_EXPORT_T(ShiftFields555, ShiftFieldsOf<Rgb555>);
  HWY_DYNAMIC_DISPATCH_T(ShiftFields555)(rows, shift);
}
void ShiftFields(Argb4444, const Rows& rows, int32_t shift) {
  HWY_EXPORT_T(ShiftFields4444, ShiftFieldsOf<Argb4444>);
  HWY_DYNAMIC_DISPATCH_T(ShiftFields4444)(rows, shift);
}
void MapBytes(const Rows& bytes, const uint8_t* table) {
  HWY_DYNAMIC_DISPATCH(MapBytesOf)(bytes, table);
}

}  // namespace pincel
#endif  // HWY_ONCE
