#include "draw/stretch_rows.h"

#include <algorithm>
#include <type_traits>

#include "draw/stretch_pixel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "draw/stretch_rows.cc"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// Which source bytes go into each vector of a row is the same in all rows. As the columns do not
// descend, a vector's bytes come from a short run of the source, its window: for every vector there
// is the place of its window and the places of its bytes in there, and a row is loads and shuffles.

// Vectors of bytes that one instruction shuffles freely.
using ByteTag =
    std::conditional_t<kHaveByteTables, hn::ScalableTag<uint8_t>, hn::CappedTag<uint8_t, 16>>;
inline constexpr size_t kVectorBytes = hn::MaxLanes(ByteTag());

// For rows of `place_bytes` places per column.
template <size_t place_bytes>
struct Windows {
  static constexpr size_t kMax = place_bytes * kTileColumns / kVectorBytes + 1;
  size_t count = 0;         // 0 when they would be longer than four vectors
  size_t vectors_each = 0;  // 1, 2 or 4
  size_t first[kMax];       // column, or byte, that it starts with
  ptrdiff_t at[kMax];       // byte of the source row
  alignas(64) uint8_t place[place_bytes * kTileColumns + kVectorBytes];
};

// Windows for runs of `run` of `total` things, the last of which overlaps the one before; for a run
// from x to y, `begin(x)` to `end(y)` are the source bytes, in source rows of `readable` bytes.
// Whether such windows exist, of as few vectors as can be.
template <class Windows, class Begin, class End>
HWY_INLINE bool FindWindows(Windows& windows, size_t total, size_t run, size_t readable,
                            Begin begin, End end) {
  if (total < run) return false;
  for (size_t vectors : {size_t{1}, size_t{2}, size_t{4}}) {
    const size_t size = vectors * kVectorBytes;
    if (readable < size) return false;
    windows.vectors_each = vectors;
    windows.count = 0;
    bool fits = true;
    for (size_t next = 0; next < total && fits; next += run, ++windows.count) {
      const size_t first = HWY_MIN(next, total - run);
      const size_t at = HWY_MIN(begin(first), readable - size);
      fits = end(first + run - 1) <= at + size;
      windows.first[windows.count] = first;
      windows.at[windows.count] = ptrdiff_t(at);
    }
    if (fits) return true;
  }
  return false;
}

// Windows of single pixels, by bytes of the row.
template <int bytes>
HWY_INLINE bool FindPixels(Windows<size_t(bytes)>& windows, const TileColumns& columns) {
  const auto source = [&](size_t i) { return size_t(columns.at[i / bytes]) * bytes; };
  if (!FindWindows(windows, columns.width * bytes, kVectorBytes, size_t(columns.last + 1) * bytes,
                   source, [&](size_t i) { return source(i) + bytes; })) {
    return false;
  }
  uint8_t* place = windows.place;
  for (size_t v = 0; v < windows.count; ++v) {
    const size_t first = windows.first[v];
    for (size_t i = first; i < first + kVectorBytes; ++i) {
      *place++ = uint8_t(source(i) + i % bytes - size_t(windows.at[v]));
    }
  }
  return true;
}

// Windows of pairs of neighbours, by columns. A vector has, for each of its blocks, the channels of
// one pixel: left, 0, right, 0 of blue, then of green, of red; the zeros are put there later. Four
// vectors have all pixels of a run: first those of block 0, 4, 8, ...
inline constexpr size_t kPairBytes = 16, kPairRun = kVectorBytes / 4;

template <int bytes>
HWY_INLINE bool FindPairs(Windows<kPairBytes>& windows, const TileColumns& columns, size_t width) {
  const auto source = [&](size_t x) { return size_t(columns.at[x]) * bytes; };
  if (!FindWindows(windows, width, kPairRun, size_t(columns.last + 1) * bytes, source,
                   [&](size_t x) { return source(x) + 2 * bytes; })) {
    return false;
  }
  constexpr uint64_t kEveryByte = 0x0101010101010101,
                     kRight = uint64_t{bytes} << 16 | uint64_t{bytes} << 48;
  constexpr uint64_t kBlueGreen = 0x0101010100000000 + kRight;
  constexpr uint64_t kRed = 0x0202020202020202 + kRight;
  uint8_t* place = windows.place;
  for (size_t v = 0; v < windows.count; ++v) {
    for (size_t pixel = 0; pixel < 4; ++pixel) {
      for (size_t x = windows.first[v] + pixel; x < windows.first[v] + kPairRun; x += 4) {
        const uint64_t at = uint64_t(source(x) - size_t(windows.at[v])) * kEveryByte;
        StoreWord(place, at + kBlueGreen);
        StoreWord(place + 8, at + kRed);
        place += kPairBytes;
      }
    }
  }
  return true;
}

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

// The bytes at `place` in the window that starts at `src`. The windows inside a longer one look at
// the low bits of the place.
template <size_t vectors_each, bool inside = false, class D>
HWY_INLINE hn::VFromD<D> Pick(D d, const uint8_t* src, hn::VFromD<D> place) {
  constexpr size_t kSize = vectors_each * kVectorBytes;
  if constexpr (inside) place = hn::And(place, hn::Set(d, uint8_t(kSize - 1)));
  if constexpr (kHaveByteTables && vectors_each == 1) {
    return hn::TableLookupLanes(hn::LoadU(d, src), hn::IndicesFromVec(d, place));
  } else if constexpr (kHaveByteTables && vectors_each == 2) {
    return hn::TwoTablesLookupLanes(d, hn::LoadU(d, src), hn::LoadU(d, src + kVectorBytes),
                                    hn::IndicesFromVec(d, place));
  } else if constexpr (vectors_each == 1) {
    return hn::TableLookupBytes(hn::LoadU(d, src), place);
  } else {
    const auto half = hn::Set(d, uint8_t(kSize / 2));
    const auto upper = hn::Eq(hn::And(place, half), half);
    return hn::IfThenElse(upper, Pick<vectors_each / 2, true>(d, src + kSize / 2, place),
                          Pick<vectors_each / 2, true>(d, src, place));
  }
}

template <class Format, size_t vectors_each, class Windows>
HWY_INLINE void CopyWindows(const Windows& windows, const CopiedRow* rows, size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  const auto colour = hn::BitCast(d, hn::Set(d32, 0x00FFFFFF));
  for (const CopiedRow* row = rows; row != rows + height; ++row) {
    const CopiedRow* const next = row + 1 != rows + height ? row + 1 : row;
    for (size_t v = 0; v < windows.count; ++v) {
      hwy::Prefetch(next->dst + windows.first[v]);
      hwy::Prefetch(next->src + windows.at[v]);
      auto bytes = Pick<vectors_each>(d, row->src + windows.at[v],
                                      hn::Load(d, windows.place + v * kVectorBytes));
      uint8_t* const dst = row->dst + windows.first[v];
      if constexpr (kKeepsFourthByte<Format>) {
        bytes = hn::BitwiseIfThenElse(colour, bytes, hn::LoadU(d, dst));
      }
      hn::StoreU(bytes, d, dst);
    }
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

template <class Format>
HWY_INLINE void CopyColumnsOf(const TileColumns& columns, const CopiedRow* rows, size_t height) {
  if constexpr (kHaveByteShuffle) {
    Windows<size_t(Format::kBytes)> windows;
    if (FindPixels<Format::kBytes>(windows, columns)) {
      if (windows.vectors_each == 1) return CopyWindows<Format, 1>(windows, rows, height);
      if (windows.vectors_each == 2) return CopyWindows<Format, 2>(windows, rows, height);
      return CopyWindows<Format, 4>(windows, rows, height);
    }
  }
  using Copied = std::conditional_t<kKeepsFourthByte<Format>, Rgb888, Format>;
  for (const CopiedRow* row = rows; row != rows + height; ++row) {
    for (size_t x = 0; x < columns.width; ++x) {
      Copied::Store(row->dst + x * Format::kBytes,
                    Copied::Load(row->src + ptrdiff_t{columns.at[x]} * Format::kBytes));
    }
  }
}

void CopyColumns(int pixel_bytes, const TileColumns& columns, const CopiedRow* rows,
                 size_t height) {
  switch (pixel_bytes) {
    case 1:
      return CopyColumnsOf<Indexed8>(columns, rows, height);
    case 2:
      return CopyColumnsOf<Any16>(columns, rows, height);
    case 3:
      return CopyColumnsOf<Rgb888>(columns, rows, height);
    default:
      return CopyColumnsOf<Argb8888>(columns, rows, height);
  }
}

// Doubling. Both rows are stored from the same registers: the second lies `to_second` bytes behind the
// first, 0 when there is only one.
template <class Format>
struct PixelDoubler {
  using Tag =
      std::conditional_t<Format::kBytes == 4, hn::ScalableTag<uint32_t>, hn::ScalableTag<uint8_t>>;
  static constexpr size_t kSrcBytes = Format::kBytes, kDstBytes = 2 * kSrcBytes;
  static constexpr bool kVectorWins = Format::kBytes == 4 || kHaveByteShuffle;
  ptrdiff_t to_second;

  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    HalfPixel(dst, src);
    HalfPixel(dst + Format::kBytes, src);
  }
  HWY_INLINE void HalfPixel(uint8_t* dst, const uint8_t* src) const {
    const auto pixel = Format::Load(src);
    Format::Store(dst, pixel);
    Format::Store(dst + to_second, pixel);
  }

#if HWY_TARGET != HWY_SCALAR
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (Format::kBytes == 4) {
      const auto pixels = LoadPixels(d, src);
      StoreTwice<0>(d, dst, hn::InterleaveWholeLower(d, pixels, pixels));
      StoreTwice<1>(d, dst, hn::InterleaveWholeUpper(d, pixels, pixels));
    } else {
      StoreTwice<0>(d, dst, Doubled<0>(d, src));
      StoreTwice<1>(d, dst, Doubled<1>(d, src));
      StoreTwice<2>(d, dst, Doubled<2>(d, src));
      StoreTwice<3>(d, dst, Doubled<3>(d, src));
      StoreTwice<4>(d, dst, Doubled<4>(d, src));
      StoreTwice<5>(d, dst, Doubled<5>(d, src));
    }
  }

 private:
  template <size_t index, class D>
  HWY_INLINE void StoreTwice(D d, uint8_t* dst, hn::VFromD<D> v) const {
    constexpr size_t kLanes = hn::MaxLanes(D());
    auto* const first = reinterpret_cast<hn::TFromD<D>*>(dst) + index * kLanes;
    auto* const second = reinterpret_cast<hn::TFromD<D>*>(dst + to_second) + index * kLanes;
    hn::StoreU(v, d, first);
    hn::StoreU(v, d, second);
  }

  // The source byte of a byte of a doubled row of triples, and where to start loading `size` bytes
  // for those from `byte` on, in a run of `src_size` bytes.
  static constexpr size_t SourceOf(size_t byte) { return byte / 6 * 3 + byte % 3; }
  static constexpr size_t LoadAt(size_t byte, size_t size, size_t src_size) {
    return HWY_MIN(byte / 6 * 3, src_size - size);
  }

  // For each block of 16 bytes of a doubled row, from `byte` on, the 16 that hold its source.
  template <size_t byte, size_t src_size, class D>
  static HWY_INLINE hn::VFromD<D> LoadBlocks(D d, const uint8_t* src) {
    constexpr size_t kSize = hn::MaxLanes(D());
    if constexpr (kSize == 16) {
      return hn::LoadU(d, src + LoadAt(byte, 16, src_size));
    } else {
      const hn::Half<D> half;
      return hn::Combine(d, LoadBlocks<byte + kSize / 2, src_size>(half, src),
                         LoadBlocks<byte, src_size>(half, src));
    }
  }

  // One of the six vectors that a group of triples fills when doubled.
  template <size_t sixth, class D>
  static HWY_INLINE hn::VFromD<D> Doubled(D d, const uint8_t* src) {
    constexpr size_t kSize = hn::MaxLanes(D()), kFirst = sixth * kSize, kSrcSize = 3 * kSize;
    if constexpr (kHaveByteTables && kSize > 16) {
      constexpr size_t kAt = LoadAt(kFirst, kSize, kSrcSize);
      static constexpr auto kFrom =
          MakeTable<uint8_t, kSize>([](size_t i) { return SourceOf(kFirst + i) - kAt; });
      return hn::TableLookupLanes(hn::LoadU(d, src + kAt), hn::SetTableIndices(d, kFrom.at));
    } else {
      static constexpr auto kFrom = MakeTable<uint8_t, kSize>([](size_t i) {
        return SourceOf(kFirst + i) - LoadAt(kFirst + i / 16 * 16, 16, kSrcSize);
      });
      return hn::TableLookupBytes(LoadBlocks<kFirst, kSrcSize>(d, src), hn::Load(d, kFrom.at));
    }
  }
#endif
};

template <class Format>
HWY_INLINE void DoublePixelsOf(const SourceRows& rows, bool half_column, bool half_row) {
  const typename PixelDoubler<Format>::Tag d;
  const uint8_t* src = rows.src;
  for (size_t y = 0; y < rows.height; src += rows.src_pitch) {
    const bool single = half_row && y == 0;
    const PixelDoubler<Format> doubler{single ? 0 : rows.dst_pitch};
    uint8_t* const dst = rows.dst + ptrdiff_t(y) * rows.dst_pitch;
    if (half_column) doubler.HalfPixel(dst, src);
    const size_t done = half_column ? Format::kBytes : 0;
    RepeatableRow(d, doubler, dst + done, src + done, rows.width / 2);
    y += single ? 1 : 2;
  }
}

void DoublePixels(int pixel_bytes, const SourceRows& rows, bool half_column, bool half_row) {
  if (pixel_bytes == 3) {
    DoublePixelsOf<Rgb888>(rows, half_column, half_row);
  } else {
    DoublePixelsOf<Argb8888>(rows, half_column, half_row);
  }
}

#if HWY_TARGET != HWY_SCALAR

// Mixing works on the pairs (left, right) of one channel as two half words. Weights are taken less
// about half of their range, to fit into signed half words: what that takes away is a multiple of the
// sum of the pixels.
template <Mixing mixing, class D>
struct MixedWeights;

template <class D>
struct MixedWeights<Mixing::kSmooth, D> {
  using V = hn::VFromD<D>;
  static constexpr int16_t kLess = 32767;  // the largest weight is 65534
  V top, bottom;

  // `both` is (kSmoothUnit - right, right) of Lanes(d32) columns.
  HWY_INLINE MixedWeights(D d32, V both, uint32_t row_down)
      : top(Times(d32, both, kSmoothUnit - row_down)), bottom(Times(d32, both, row_down)) {}

  // Channels of the `pixel`-th pixel of each block, 256 x 256 times too large.
  template <size_t pixel>
  HWY_INLINE V Mix(D d32, V top_pairs, V bottom_pairs) const {
    const hn::RebindToSigned<D> di32;
    const hn::Repartition<int16_t, D> di16;
    const auto upper = hn::BitCast(di16, top_pairs), lower = hn::BitCast(di16, bottom_pairs);
    const auto above = hn::WidenMulPairwiseAdd(di32, upper, Of<pixel>(di16, top));
    const auto below = hn::WidenMulPairwiseAdd(di32, lower, Of<pixel>(di16, bottom));
    const auto less = hn::WidenMulPairwiseAdd(di32, hn::Add(upper, lower), hn::Set(di16, kLess));
    return hn::BitCast(d32, hn::Add(hn::Add(above, below), less));
  }

 private:
  static HWY_INLINE V Times(D d32, V both, uint32_t factor) {
    const hn::Repartition<uint16_t, D> d16;
    const auto weights = hn::MulHigh(hn::BitCast(d16, both), hn::Set(d16, uint16_t(factor)));
    return hn::BitCast(d32, hn::Sub(weights, hn::Set(d16, uint16_t(kLess))));
  }
  template <size_t pixel, class D16>
  static HWY_INLINE hn::VFromD<D16> Of(D16 di16, V weights) {
    return hn::BitCast(di16, hn::Broadcast<pixel>(weights));
  }
};

template <class D>
struct MixedWeights<Mixing::kInterpolate, D> {
  using V = hn::VFromD<D>;
  static constexpr uint32_t kLess = 0x80008000;
  V along, down;

  HWY_INLINE MixedWeights(D d32, V both, uint32_t row_down)
      : along(hn::Xor(both, hn::Set(d32, kLess))), down(hn::Set(d32, row_down)) {}

  template <size_t pixel>
  HWY_INLINE V Mix(D d32, V top_pairs, V bottom_pairs) const {
    const hn::RebindToSigned<D> di32;
    const hn::Repartition<uint16_t, D> d16;
    const V weights = hn::Broadcast<pixel>(along);
    const V from = Along(d32, top_pairs, weights);
    const V way = hn::Sub(Along(d32, bottom_pairs, weights), from);
    const V whole = hn::Mul(hn::BitCast(d32, hn::ShiftRight<16>(hn::BitCast(di32, way))), down);
    const V part = hn::BitCast(d32, hn::MulHigh(hn::BitCast(d16, way), hn::BitCast(d16, down)));
    return hn::Add(hn::Add(from, whole), part);
  }

 private:
  static HWY_INLINE V Along(D d32, V pairs, V weights) {
    const hn::RebindToSigned<D> di32;
    const hn::Repartition<int16_t, D> di16;
    const auto signed_pairs = hn::BitCast(di16, pairs);
    const auto rest = hn::WidenMulPairwiseAdd(di32, signed_pairs, hn::BitCast(di16, weights));
    const auto sum = hn::WidenMulPairwiseAdd(di32, signed_pairs, hn::Set(di16, 1));
    // The weights sum to 65535; the left pixel once more makes it 65536.
    const V left = hn::And(pairs, hn::Set(d32, 0xFFFF));
    return hn::Add(hn::BitCast(d32, hn::Add(rest, hn::ShiftLeft<15>(sum))), left);
  }
};

// Four vectors of channels, as MixedWeights::Mix leaves them, as pixels.
template <class D>
HWY_INLINE hn::VFromD<D> JoinChannels(D d32, hn::VFromD<D> p0, hn::VFromD<D> p1, hn::VFromD<D> p2,
                                      hn::VFromD<D> p3) {
  const hn::Repartition<uint8_t, D> d8;
  const auto byte = [&](auto v, int low)
                        HWY_ATTR { return hn::And(v, hn::Set(d32, uint32_t{0xFF} << low)); };
  const auto joined =
      hn::Or(hn::Or(byte(hn::ShiftRight<16>(p0), 0), byte(hn::ShiftRight<8>(p1), 8)),
             hn::Or(byte(p2, 16), byte(hn::ShiftLeft<8>(p3), 24)));
  static constexpr auto kByte =
      MakeTable<uint8_t, kVectorBytes>([](size_t i) { return i % 4 * 4 + i % 16 / 4; });
  return hn::BitCast(d32, hn::TableLookupBytes(hn::BitCast(d8, joined), hn::Load(d8, kByte.at)));
}

template <class Format, Mixing mixing, size_t vectors_each>
HWY_INLINE void MixWindows(const Windows<kPairBytes>& windows, const MixedColumns& columns,
                           const MixedRow* rows, size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  const hn::Rebind<uint16_t, decltype(d32)> d_right;
  for (const MixedRow* row = rows; row != rows + height; ++row) {
    const MixedRow* const next = row + 1 != rows + height ? row + 1 : row;
    for (size_t v = 0; v < windows.count; ++v) {
      const size_t x = windows.first[v];
      hwy::Prefetch(next->dst + x * Format::kBytes);
      hwy::Prefetch(next->bottom + windows.at[v]);
      const auto right = hn::PromoteTo(d32, hn::LoadU(d_right, columns.right + x));
      const auto left = hn::Xor(right, hn::Set(d32, kSmoothUnit));
      const MixedWeights<mixing, WordTag<ByteTag>> weights(
          d32, hn::Or(left, hn::ShiftLeft<16>(right)), row->down);
      const auto pairs = [&](const uint8_t* src, size_t pixel) HWY_ATTR {
        const auto place = hn::Load(d, windows.place + (v * 4 + pixel) * kVectorBytes);
        return hn::And(hn::BitCast(d32, Pick<vectors_each>(d, src + windows.at[v], place)),
                       hn::Set(d32, 0x00FF00FF));
      };
      const auto mixed =
          JoinChannels(d32, weights.template Mix<0>(d32, pairs(row->top, 0), pairs(row->bottom, 0)),
                       weights.template Mix<1>(d32, pairs(row->top, 1), pairs(row->bottom, 1)),
                       weights.template Mix<2>(d32, pairs(row->top, 2), pairs(row->bottom, 2)),
                       weights.template Mix<3>(d32, pairs(row->top, 3), pairs(row->bottom, 3)));
      uint8_t* const dst = row->dst + x * Format::kBytes;
      if constexpr (Format::kBytes == 4) {
        const auto below = hn::BitCast(d32, hn::LoadU(d, dst));
        const auto colour = hn::Set(d32, 0x00FFFFFF);
        hn::StoreU(hn::BitCast(d, hn::BitwiseIfThenElse(colour, mixed, below)), d, dst);
      } else {
        const hn::Half<ByteTag> half;
        const hn::Half<decltype(half)> quarter;
        const auto triples = GatherTriples(d, mixed);
        hn::StoreU(hn::LowerHalf(half, triples), half, dst);
        hn::StoreU(hn::LowerHalf(quarter, hn::UpperHalf(half, triples)), quarter,
                   dst + hn::MaxLanes(half));
      }
    }
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

template <class Format, Mixing mixing>
HWY_INLINE void MixColumnsOf(const MixedColumns& columns, const MixedRow* rows, size_t height) {
  size_t mixed = 0;
  if constexpr (kHaveByteShuffle) {
    // Up to the last column, which has a right neighbour of its own.
    const int32_t* const end = columns.at + columns.width;
    const size_t inside = size_t(std::lower_bound(columns.at, end, columns.last) - columns.at);
    Windows<kPairBytes> windows;
    if (FindPairs<Format::kBytes>(windows, columns, inside)) {
      mixed = inside;
      if (windows.vectors_each == 1) {
        MixWindows<Format, mixing, 1>(windows, columns, rows, height);
      } else if (windows.vectors_each == 2) {
        MixWindows<Format, mixing, 2>(windows, columns, rows, height);
      } else {
        MixWindows<Format, mixing, 4>(windows, columns, rows, height);
      }
    }
  }
  for (const MixedRow* row = rows; row != rows + height; ++row) {
    for (size_t x = mixed; x < columns.width; ++x) {
      const bool last = columns.at[x] == columns.last;
      const uint8_t* top = row->top + ptrdiff_t{columns.at[x]} * Format::kBytes;
      const uint8_t* bottom = row->bottom + ptrdiff_t{columns.at[x]} * Format::kBytes;
      const uint8_t* top_right = top + (last ? row->top_right : Format::kBytes);
      const uint8_t* bottom_right = bottom + (last ? row->bottom_right : Format::kBytes);
      uint8_t* dst = row->dst + x * Format::kBytes;
      if constexpr (mixing == Mixing::kSmooth) {
        MixNeighbours(dst, top, top_right, bottom, bottom_right, columns.right[x], row->down);
      } else {
        InterpolateNeighbours(dst, top, top_right, bottom, bottom_right, columns.right[x],
                              row->down);
      }
    }
  }
}

template <class Format>
HWY_INLINE void MixColumnsAs(Mixing mixing, const MixedColumns& columns, const MixedRow* rows,
                             size_t height) {
  if (mixing == Mixing::kSmooth) {
    MixColumnsOf<Format, Mixing::kSmooth>(columns, rows, height);
  } else {
    MixColumnsOf<Format, Mixing::kInterpolate>(columns, rows, height);
  }
}

void MixColumns(Mixing mixing, int pixel_bytes, const MixedColumns& columns, const MixedRow* rows,
                size_t height) {
  if (pixel_bytes == 3) {
    MixColumnsAs<Rgb888>(mixing, columns, rows, height);
  } else {
    MixColumnsAs<Argb8888>(mixing, columns, rows, height);
  }
}

// Sums of `height` rows, byte by byte, in 16 bits. A vector that is not full is done by smaller ones.
template <class D>
HWY_INLINE void SumRows(D d, const AveragedRow& row, size_t from, size_t size, uint16_t* sums) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  const hn::Rebind<uint8_t, D> d8;
  for (; from + kLanes <= size; from += kLanes) {
    auto sum = hn::Zero(d);
    const uint8_t* src = row.src + from;
    for (uint32_t y = 0; y < row.height; ++y, src += row.src_pitch) {
      sum = hn::Add(sum, hn::PromoteTo(d, hn::LoadU(d8, src)));
    }
    hn::StoreU(sum, d, sums + from);
  }
  if constexpr (kLanes > 1) SumRows(hn::Half<D>(), row, from, size, sums);
}

// WrappingAverage of a vector of sums.
template <class D, class V = hn::VFromD<D>>
HWY_INLINE V Average(D d, V sums, V pixels, V inverse, V once, V twice, V bias) {
  const V positive = hn::Xor(sums, hn::Set(d, 0x8000));
  const V quotient = hn::MulHigh(positive, inverse);
  const V rest = hn::Sub(positive, hn::Mul(quotient, pixels));
  const V more = hn::Add(hn::VecFromMask(d, hn::Gt(rest, once)),  // -1 where it is
                         hn::VecFromMask(d, hn::Gt(rest, twice)));
  return hn::Sub(hn::Sub(quotient, more), bias);
}

// Four lanes for each pixel, the last of no meaning. Blocks have `least` columns or one more.
inline constexpr size_t kQuadLanes = 4 * 256;

template <class Format>
HWY_INLINE void SumBlocks(const Blocks& blocks, const uint16_t* column, uint16_t* sums) {
  const hn::CappedTag<uint16_t, 4> d;
  for (size_t x = 0; x < blocks.count; ++x) {
    const uint16_t* const begin = column;
    column += blocks.widths[x] * size_t(Format::kBytes);
    auto sum = hn::And(hn::LoadU(d, begin + blocks.least * size_t(Format::kBytes)),
                       hn::LoadU(d, blocks.wider + 4 * x));
    for (const uint16_t* p = begin; p != begin + blocks.least * size_t(Format::kBytes);
         p += Format::kBytes) {
      sum = hn::Add(sum, hn::LoadU(d, p));
    }
    hn::StoreU(sum, d, sums + 4 * x);
  }
}

HWY_INLINE void AverageSums(const Blocks& blocks, const WrappingAverage& narrow,
                            const WrappingAverage& wide, uint16_t* sums) {
  const hn::ScalableTag<uint16_t> d;
  for (size_t i = 0; i < 4 * blocks.count; i += hn::Lanes(d)) {
    const auto wider = hn::MaskFromVec(hn::LoadU(d, blocks.wider + i));
    const auto pick = [&](uint16_t WrappingAverage::*member) HWY_ATTR {
      return hn::IfThenElse(wider, hn::Set(d, wide.*member), hn::Set(d, narrow.*member));
    };
    const auto average = Average(d, hn::LoadU(d, sums + i), pick(&WrappingAverage::pixels),
                                 pick(&WrappingAverage::inverse), pick(&WrappingAverage::once),
                                 pick(&WrappingAverage::twice), pick(&WrappingAverage::bias));
    hn::StoreU(average, d, sums + i);
  }
}

template <class Format>
HWY_INLINE void AverageBlocksOf(const Blocks& blocks, const AveragedRow& row) {
  // Columns first. Sums wrap, in whatever order they are made. The last block looks beyond its end.
  uint16_t columns[(255 + 2) * 4];
  const size_t end = blocks.columns * Format::kBytes;
  SumRows(hn::ScalableTag<uint16_t>(), row, 0, end, columns);

  const WrappingAverage narrow(HWY_MAX(blocks.least, 1u) * row.height);
  const WrappingAverage wide((blocks.least + 1) * row.height);
  uint8_t* dst = row.dst;
  if constexpr (kHaveVectors) {
    if (blocks.least != 0) {
      std::fill_n(columns + end, 2 * 4, uint16_t{0});
      const hn::ScalableTag<uint16_t> d;
      uint16_t sums[kQuadLanes + hn::MaxLanes(d)];
      SumBlocks<Format>(blocks, columns, sums);
      hn::StoreU(hn::Zero(d), d, sums + 4 * blocks.count);  // the rest of the last vector
      AverageSums(blocks, narrow, wide, sums);
      for (size_t x = 0; x < blocks.count; ++x, dst += Format::kBytes) {
        for (size_t i = 0; i < 3; ++i) dst[i] = uint8_t(sums[4 * x + i]);
      }
      return;
    }
  }
  const uint16_t* column = columns;
  for (size_t x = 0; x < blocks.count; ++x, dst += Format::kBytes) {
    uint32_t width = blocks.widths[x];
    if (width == 0) continue;
    const WrappingAverage& average = width > blocks.least ? wide : narrow;
    uint32_t blue = 0, green = 0, red = 0;
    for (; width != 0; --width, column += Format::kBytes) {
      blue += column[0];
      green += column[1];
      red += column[2];
    }
    dst[0] = average(uint16_t(blue));
    dst[1] = average(uint16_t(green));
    dst[2] = average(uint16_t(red));
  }
}

void AverageBlocks(int pixel_bytes, const Blocks& blocks, const AveragedRow& row) {
  if (pixel_bytes == 3) {
    AverageBlocksOf<Rgb888>(blocks, row);
  } else {
    AverageBlocksOf<Argb8888>(blocks, row);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(CopyColumns);
HWY_EXPORT(DoublePixels);
HWY_EXPORT(MixColumns);
HWY_EXPORT(AverageBlocks);

void CopyColumns(int pixel_bytes, const TileColumns& columns, const CopiedRow* rows,
                 size_t height) {
  HWY_DYNAMIC_DISPATCH(CopyColumns)(pixel_bytes, columns, rows, height);
}
void DoublePixels(int pixel_bytes, const SourceRows& rows, bool half_column, bool half_row) {
  HWY_DYNAMIC_DISPATCH(DoublePixels)(pixel_bytes, rows, half_column, half_row);
}
void MixColumns(Mixing mixing, int pixel_bytes, const MixedColumns& columns, const MixedRow* rows,
                size_t height) {
  HWY_DYNAMIC_DISPATCH(MixColumns)(mixing, pixel_bytes, columns, rows, height);
}
void AverageBlocks(int pixel_bytes, const Blocks& blocks, const AveragedRow& row) {
  HWY_DYNAMIC_DISPATCH(AverageBlocks)(pixel_bytes, blocks, row);
}

}  // namespace pincel
#endif  // HWY_ONCE
