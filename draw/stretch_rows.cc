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
  size_t vectors_each = 0;  // 1, 2 or 4; 0 for rows shorter than a vector, their own window
  size_t row_bytes = 0;     // of such rows
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
    const bool short_rows = kHaveByteTables && readable < kVectorBytes;
    if (readable < size && !short_rows) return false;
    windows.vectors_each = short_rows ? 0 : vectors;
    windows.row_bytes = readable;
    const size_t last = short_rows ? 0 : readable - size;
    windows.count = 0;
    bool fits = true;
    for (size_t next = 0; next < total && fits; next += run, ++windows.count) {
      const size_t first = HWY_MIN(next, total - run);
      const size_t at = HWY_MIN(begin(first), last);
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
// vectors have all pixels of a run: first those of block 0, 4, 8, ... The last column is beside itself.
inline constexpr size_t kPairBytes = 16, kPairRun = kVectorBytes / 4;

template <int bytes>
HWY_INLINE bool FindPairs(Windows<kPairBytes>& windows, const TileColumns& columns) {
  const auto source = [&](size_t x) { return size_t(columns.at[x]) * bytes; };
  const auto to_right = [&](size_t x) { return columns.at[x] != columns.last ? bytes : 0; };
  if (!FindWindows(windows, columns.width, kPairRun, size_t(columns.last + 1) * bytes, source,
                   [&](size_t x) { return source(x) + size_t(to_right(x) + bytes); })) {
    return false;
  }
  constexpr uint64_t kEveryByte = 0x0101010101010101, kRightBytes = 0x0001000000010000;
  constexpr uint64_t kBlueGreen = 0x0101010100000000, kRed = 0x0202020202020202;
  uint8_t* place = windows.place;
  for (size_t v = 0; v < windows.count; ++v) {
    for (size_t pixel = 0; pixel < 4; ++pixel) {
      for (size_t x = windows.first[v] + pixel; x < windows.first[v] + kPairRun; x += 4) {
        const uint64_t at = uint64_t(source(x) - size_t(windows.at[v])) * kEveryByte +
                            uint64_t(to_right(x)) * kRightBytes;
        StoreWord(place, at + kBlueGreen);
        StoreWord(place + 8, at + kRed);
        place += kPairBytes;
      }
    }
  }
  return true;
}

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

template <class D, size_t vectors>
struct Window {
  hn::VFromD<D> v[vectors];

  HWY_INLINE Window(D d, const uint8_t* src) {
    for (size_t i = 0; i < vectors; ++i) v[i] = hn::LoadU(d, src + i * kVectorBytes);
  }
};

// The bytes at `place` in a window of `vectors`. The windows inside a longer one look at the low bits
// of the place.
template <size_t vectors, bool inside = false, class D>
HWY_INLINE hn::VFromD<D> PickFrom(D d, const hn::VFromD<D>* window, hn::VFromD<D> place) {
  constexpr size_t kSize = vectors * kVectorBytes;
  if constexpr (inside) place = hn::And(place, hn::Set(d, uint8_t(kSize - 1)));
  if constexpr (kHaveByteTables && vectors == 1) {
    return hn::TableLookupLanes(window[0], hn::IndicesFromVec(d, place));
  } else if constexpr (kHaveByteTables && vectors == 2) {
    return hn::TwoTablesLookupLanes(d, window[0], window[1], hn::IndicesFromVec(d, place));
  } else if constexpr (vectors == 1) {
    return hn::TableLookupBytes(window[0], place);
  } else {
    const auto half = hn::Set(d, uint8_t(kSize / 2));
    return hn::IfThenElse(hn::TestBit(place, half),
                          PickFrom<vectors / 2, true>(d, window + vectors / 2, place),
                          PickFrom<vectors / 2, true>(d, window, place));
  }
}
template <size_t vectors_each, class D, class Windows>
HWY_INLINE hn::VFromD<D> Pick(D d, const Windows& windows, size_t v, const uint8_t* src,
                              hn::VFromD<D> place) {
  if constexpr (vectors_each == 0) {
    const auto row = hn::LoadN(d, src, windows.row_bytes);
    return PickFrom<1>(d, &row, place);
  } else {
    return PickFrom<vectors_each>(d, Window<D, vectors_each>(d, src + windows.at[v]).v, place);
  }
}

// Calls `function` with the number as a type.
template <class Function>
HWY_INLINE void WithVectors(size_t vectors_each, Function&& function) {
  if (vectors_each == 1) return function(std::integral_constant<size_t, 1>());
  if (vectors_each == 2) return function(std::integral_constant<size_t, 2>());
  if (vectors_each == 4) return function(std::integral_constant<size_t, 4>());
  if constexpr (kHaveByteTables) function(std::integral_constant<size_t, 0>());
}

template <class Format, size_t vectors_each, class Windows>
HWY_NOINLINE void CopyWindows(const Windows& windows, const CopiedRow* rows, size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  const auto colour = hn::BitCast(d, hn::Set(d32, 0x00FFFFFF));
  for (const CopiedRow* row = rows; row != rows + height; ++row) {
    const CopiedRow* const next = row + 1 != rows + height ? row + 1 : row;
    for (size_t v = 0; v < windows.count; ++v) {
      hwy::Prefetch(next->dst + windows.first[v]);
      hwy::Prefetch(next->src + windows.at[v]);
      auto bytes = Pick<vectors_each>(d, windows, v, row->src,
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
      return WithVectors(windows.vectors_each, [&](auto vectors) HWY_ATTR {
        CopyWindows<Format, decltype(vectors)::value>(windows, rows, height);
      });
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

// Doubling, into one row or into both from the same registers: the second lies `to_second` bytes behind
// the first.
template <class Format, bool both_rows>
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
    if constexpr (both_rows) Format::Store(dst + to_second, pixel);
  }

#if HWY_TARGET != HWY_SCALAR
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (Format::kBytes == 4) {
      const auto pixels = LoadPixels(d, src);
      StoreRows<0>(d, dst, hn::InterleaveWholeLower(d, pixels, pixels));
      StoreRows<1>(d, dst, hn::InterleaveWholeUpper(d, pixels, pixels));
    } else {
      StoreRows<0>(d, dst, Doubled<0>(d, src));
      StoreRows<1>(d, dst, Doubled<1>(d, src));
      StoreRows<2>(d, dst, Doubled<2>(d, src));
      StoreRows<3>(d, dst, Doubled<3>(d, src));
      StoreRows<4>(d, dst, Doubled<4>(d, src));
      StoreRows<5>(d, dst, Doubled<5>(d, src));
    }
  }

 private:
  template <size_t index, class D>
  HWY_INLINE void StoreRows(D d, uint8_t* dst, hn::VFromD<D> v) const {
    constexpr size_t kLanes = hn::MaxLanes(D());
    hn::StoreU(v, d, reinterpret_cast<hn::TFromD<D>*>(dst) + index * kLanes);
    if constexpr (both_rows) {
      hn::StoreU(v, d, reinterpret_cast<hn::TFromD<D>*>(dst + to_second) + index * kLanes);
    }
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

// Areas that caches do not hold are written row by row: one stream is faster there than two.
inline constexpr size_t kDoubledTogether = size_t{8} << 20;

template <class Format, bool both_rows>
HWY_INLINE void DoubleRow(const SourceRows& rows, bool half_column, uint8_t* dst,
                          const uint8_t* src) {
  const typename PixelDoubler<Format, both_rows>::Tag d;
  const PixelDoubler<Format, both_rows> doubler{rows.dst_pitch};
  if (half_column) doubler.HalfPixel(dst, src);
  const size_t done = half_column ? Format::kBytes : 0;
  RepeatableRow(d, doubler, dst + done, src + done, rows.width / 2);
}

template <class Format>
HWY_INLINE void DoublePixelsOf(const SourceRows& rows, bool half_column, bool half_row) {
  const bool together = rows.width * rows.height <= kDoubledTogether / Format::kBytes;
  const uint8_t* src = rows.src;
  for (size_t y = 0; y < rows.height; src += rows.src_pitch) {
    uint8_t* const dst = rows.dst + ptrdiff_t(y) * rows.dst_pitch;
    const bool single = half_row && y == 0;
    if (single || !together) {
      DoubleRow<Format, false>(rows, half_column, dst, src);
      if (!single) DoubleRow<Format, false>(rows, half_column, dst + rows.dst_pitch, src);
    } else {
      DoubleRow<Format, true>(rows, half_column, dst, src);
    }
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

// Stores the low three bytes of words as pixels.
template <class Format, class D>
HWY_INLINE void StoreColours(D d, hn::VFromD<D> words, uint8_t* dst) {
  const WordTag<D> d32;
  if constexpr (kKeepsFourthByte<Format>) {
    const auto colour = hn::BitCast(d, hn::Set(d32, 0x00FFFFFF));
    hn::StoreU(hn::BitwiseIfThenElse(colour, words, hn::LoadU(d, dst)), d, dst);
  } else {
    const hn::Half<D> half;
    const hn::Half<decltype(half)> quarter;
    const auto triples = GatherTriples(d, hn::BitCast(d32, words));
    hn::StoreU(hn::LowerHalf(half, triples), half, dst);
    hn::StoreU(hn::LowerHalf(quarter, hn::UpperHalf(half, triples)), quarter,
               dst + hn::MaxLanes(half));
  }
}

// Mixing works on the pairs (left, right) of one channel as two half words. Weights are taken less
// about half of their range, to fit into signed half words: what that takes away is a multiple of the
// sum of the pixels.
template <class D>
struct SmoothMixer {
  using V = hn::VFromD<D>;
  static constexpr int16_t kLess = 32767;  // the largest weight is 65534
  V top, bottom;

  // `both` is (kSmoothUnit - right, right) of Lanes(d32) columns.
  HWY_INLINE SmoothMixer(D d32, V both, uint32_t row_down)
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

// Channels between the pixels of a row, in 16.16 fixed point. `weights` is (kSmoothUnit - right, right),
// less 32768.
template <class D, class V = hn::VFromD<D>>
HWY_INLINE V InterpolateAlong(D d32, V pairs, V weights) {
  const hn::RebindToSigned<D> di32;
  const hn::Repartition<int16_t, D> di16;
  const auto signed_pairs = hn::BitCast(di16, pairs);
  const auto rest = hn::WidenMulPairwiseAdd(di32, signed_pairs, hn::BitCast(di16, weights));
  const auto less = hn::WidenMulPairwiseAdd(di32, signed_pairs, hn::Set(di16, -32768));
  // The weights sum to 65535; the left pixel once more makes it 65536.
  const V left = hn::And(pairs, hn::Set(d32, 0xFFFF));
  return hn::Add(hn::BitCast(d32, hn::Sub(rest, less)), left);
}

// From a channel of the upper row towards that of the lower one.
template <class D, class V = hn::VFromD<D>>
HWY_INLINE V InterpolateDown(D d32, V top, V bottom, V down) {
  const hn::RebindToSigned<D> di32;
  const hn::Repartition<uint16_t, D> d16;
  const V way = hn::Sub(bottom, top);
  const V whole = hn::Mul(hn::BitCast(d32, hn::ShiftRight<16>(hn::BitCast(di32, way))), down);
  const V part = hn::BitCast(d32, hn::MulHigh(hn::BitCast(d16, way), hn::BitCast(d16, down)));
  return hn::Add(hn::Add(top, whole), part);
}

// Four vectors of channels, 256 x 256 times too large, as pixels.
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

// (kSmoothUnit - right, right) of the columns of a window.
template <class D>
HWY_INLINE hn::VFromD<D> LoadBoth(D d32, const MixedColumns& columns, size_t x) {
  const hn::Rebind<uint16_t, D> d_right;
  const auto right = hn::PromoteTo(d32, hn::LoadU(d_right, columns.right + x));
  return hn::Or(hn::Xor(right, hn::Set(d32, kSmoothUnit)), hn::ShiftLeft<16>(right));
}

// The pairs of the `pixel`-th pixel of each block of window `v`.
template <size_t vectors_each, class D>
HWY_INLINE hn::VFromD<D> LoadPairs(D d32, const Windows<kPairBytes>& windows, size_t v,
                                   const uint8_t* src, size_t pixel) {
  const ByteTag d;
  const auto place = hn::Load(d, windows.place + (v * 4 + pixel) * kVectorBytes);
  return hn::And(hn::BitCast(d32, Pick<vectors_each>(d, windows, v, src, place)),
                 hn::Set(d32, 0x00FF00FF));
}

template <class Format, size_t vectors_each>
HWY_NOINLINE void SmoothWindows(const Windows<kPairBytes>& windows, const MixedColumns& columns,
                                const MixedRow* rows, size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  for (const MixedRow* row = rows; row != rows + height; ++row) {
    const MixedRow* const next = row + 1 != rows + height ? row + 1 : row;
    for (size_t v = 0; v < windows.count; ++v) {
      const size_t x = windows.first[v];
      hwy::Prefetch(next->dst + x * Format::kBytes);
      hwy::Prefetch(next->bottom + windows.at[v]);
      const SmoothMixer<WordTag<ByteTag>> mixer(d32, LoadBoth(d32, columns, x), row->down);
      const auto pairs = [&](const uint8_t* src, size_t pixel) HWY_ATTR {
        return LoadPairs<vectors_each>(d32, windows, v, src, pixel);
      };
      const auto mixed =
          JoinChannels(d32, mixer.template Mix<0>(d32, pairs(row->top, 0), pairs(row->bottom, 0)),
                       mixer.template Mix<1>(d32, pairs(row->top, 1), pairs(row->bottom, 1)),
                       mixer.template Mix<2>(d32, pairs(row->top, 2), pairs(row->bottom, 2)),
                       mixer.template Mix<3>(d32, pairs(row->top, 3), pairs(row->bottom, 3)));
      StoreColours<Format>(d, hn::BitCast(d, mixed), row->dst + x * Format::kBytes);
    }
  }
}

// What InterpolateAlong makes of a source row, window by window. Enlarging needs that again in the next
// rows.
struct InterpolatedRow {
  const uint8_t* src = nullptr;
  alignas(64) uint32_t channels[4 * (kTileColumns + kPairRun)];

  template <size_t vectors_each>
  HWY_INLINE void Set(const Windows<kPairBytes>& windows, const MixedColumns& columns,
                      const uint8_t* new_src) {
    const WordTag<ByteTag> d32;
    src = new_src;
    for (size_t v = 0; v < windows.count; ++v) {
      const auto weights =
          hn::Xor(LoadBoth(d32, columns, windows.first[v]), hn::Set(d32, 0x80008000));
      SetPixels<vectors_each, 0>(d32, windows, v, weights);
      SetPixels<vectors_each, 1>(d32, windows, v, weights);
      SetPixels<vectors_each, 2>(d32, windows, v, weights);
      SetPixels<vectors_each, 3>(d32, windows, v, weights);
    }
  }

 private:
  template <size_t vectors_each, size_t pixel, class D>
  HWY_INLINE void SetPixels(D d32, const Windows<kPairBytes>& windows, size_t v,
                            hn::VFromD<D> weights) {
    const auto pairs = LoadPairs<vectors_each>(d32, windows, v, src, pixel);
    hn::Store(InterpolateAlong(d32, pairs, hn::Broadcast<pixel>(weights)), d32,
              channels + (v * 4 + pixel) * kPairRun);
  }
};

template <class Format, size_t vectors_each>
HWY_NOINLINE void InterpolateWindows(const Windows<kPairBytes>& windows,
                                     const MixedColumns& columns, const MixedRow* rows,
                                     size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  InterpolatedRow interpolated[2];
  InterpolatedRow *top = &interpolated[0], *bottom = &interpolated[1];
  for (const MixedRow* row = rows; row != rows + height; ++row) {
    if (bottom->src == row->top) std::swap(top, bottom);
    if (top->src != row->top) top->template Set<vectors_each>(windows, columns, row->top);
    if (bottom->src != row->bottom)
      bottom->template Set<vectors_each>(windows, columns, row->bottom);
    const auto down = hn::Set(d32, row->down);
    const MixedRow* const next = row + 1 != rows + height ? row + 1 : row;
    for (size_t v = 0; v < windows.count; ++v) {
      const size_t x = windows.first[v];
      hwy::Prefetch(next->dst + x * Format::kBytes);
      hwy::Prefetch(next->bottom + windows.at[v]);
      const auto channels = [&](size_t pixel) HWY_ATTR {
        const size_t at = (v * 4 + pixel) * kPairRun;
        return InterpolateDown(d32, hn::Load(d32, top->channels + at),
                               hn::Load(d32, bottom->channels + at), down);
      };
      const auto mixed = JoinChannels(d32, channels(0), channels(1), channels(2), channels(3));
      StoreColours<Format>(d, hn::BitCast(d, mixed), row->dst + x * Format::kBytes);
    }
  }
}

template <class Format, Mixing mixing, size_t vectors_each>
HWY_INLINE void MixWindows(const Windows<kPairBytes>& windows, const MixedColumns& columns,
                           const MixedRow* rows, size_t height) {
  if constexpr (mixing == Mixing::kSmooth) {
    SmoothWindows<Format, vectors_each>(windows, columns, rows, height);
  } else {
    InterpolateWindows<Format, vectors_each>(windows, columns, rows, height);
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

template <class Format, Mixing mixing>
HWY_INLINE void MixColumnsOf(const MixedColumns& columns, const MixedRow* rows, size_t height) {
  size_t mixed = 0;
  if constexpr (kHaveByteShuffle) {
    Windows<kPairBytes> windows;
    if (FindPairs<Format::kBytes>(windows, columns)) {
      mixed = columns.width;
      if constexpr (mixing == Mixing::kSmooth) {
        // The last column, which may have other right neighbours, is done again.
        const int32_t* const end = columns.at + columns.width;
        mixed = size_t(std::lower_bound(columns.at, end, columns.last) - columns.at);
      }
      WithVectors(windows.vectors_each, [&](auto vectors) HWY_ATTR {
        MixWindows<Format, mixing, decltype(vectors)::value>(windows, columns, rows, height);
      });
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

// Blocks are summed in columns first: the rows of a row of blocks, byte by byte, in 16 bits. Sums wrap,
// in whatever order they are made.
struct ColumnSums {
  // Pixels are read as four lanes, or in windows that may reach beyond the end.
  alignas(64) uint16_t at[255 * 4 + 2 * 4 + 4 * kVectorBytes / 2];
};

template <size_t vectors, class D>
HWY_INLINE void SumRowsAt(D d, const uint8_t* src, ptrdiff_t src_pitch, uint32_t height,
                          uint16_t* sums) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  const hn::Rebind<uint8_t, D> d8;
  hn::VFromD<D> sum[vectors];
  for (size_t i = 0; i < vectors; ++i) sum[i] = hn::PromoteTo(d, hn::LoadU(d8, src + i * kLanes));
  for (uint32_t y = 1; y < height; ++y) {
    src += src_pitch;
    for (size_t i = 0; i < vectors; ++i) {
      sum[i] = hn::Add(sum[i], hn::PromoteTo(d, hn::LoadU(d8, src + i * kLanes)));
    }
  }
  for (size_t i = 0; i < vectors; ++i) hn::StoreU(sum[i], d, sums + i * kLanes);
}

// `size` bytes of each row; the last vector overlaps the one before.
template <class D>
HWY_INLINE void SumRows(D d, const AveragedRow& row, ptrdiff_t src_pitch, size_t size,
                        ColumnSums& sums) {
  constexpr size_t kLanes = hn::MaxLanes(D()), kTimes = 4;
  const auto sum = [&](auto vectors, size_t at) HWY_ATTR {
    SumRowsAt<decltype(vectors)::value>(d, row.src + at, src_pitch, row.height, sums.at + at);
  };
  if (size >= kLanes) {
    size_t at = 0;
    for (; at + kTimes * kLanes <= size; at += kTimes * kLanes) {
      sum(std::integral_constant<size_t, kTimes>(), at);
    }
    for (; at + kLanes <= size; at += kLanes) sum(std::integral_constant<size_t, 1>(), at);
    if (at != size) sum(std::integral_constant<size_t, 1>(), size - kLanes);
  } else if constexpr (kLanes > 1) {
    SumRows(hn::Half<D>(), row, src_pitch, size, sums);
  }
}

// What blocks of one height are divided by, for four lanes of each block.
struct BlockAverages {
  uint32_t height = 0;
  int shift = 0;
  alignas(64) uint16_t scale[4 * 255], inverse[4 * 255];
  uint16_t wider[4 * 255];  // ~0 where blocks have more than the least number of columns

  void Set(const Blocks& blocks, uint32_t new_height) {
    if (height == new_height) return;
    height = new_height;
    const WrappingAverage narrow(blocks.least * height);
    const WrappingAverage wide((blocks.least + 1) * height, narrow.shift);
    shift = narrow.shift;
    for (size_t x = 0; x < blocks.count; ++x) {
      const bool is_wide = blocks.first[x + 1] - blocks.first[x] > int(blocks.least);
      const WrappingAverage& average = is_wide ? wide : narrow;
      constexpr uint64_t kEveryLane = 0x0001000100010001;
      StoreWord(reinterpret_cast<uint8_t*>(scale + 4 * x), average.scale * kEveryLane);
      StoreWord(reinterpret_cast<uint8_t*>(inverse + 4 * x), average.inverse * kEveryLane);
      StoreWord(reinterpret_cast<uint8_t*>(wider + 4 * x), is_wide * ~uint64_t{0});
    }
  }

  // WrappingAverage of a vector of sums, from that of block `x` on.
  template <class D, class V = hn::VFromD<D>>
  HWY_INLINE V Average(D d, V sums, size_t x) const {
    const hn::RebindToSigned<D> di;
    const V sign = hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(di, sums)));
    const V scaled = hn::Mul(hn::Xor(sums, sign), hn::LoadU(d, scale + 4 * x));
    const V quotient = hn::MulHigh(scaled, hn::LoadU(d, inverse + 4 * x));
    return hn::Xor(hn::ShiftRightSame(quotient, shift), sign);
  }
};

// Sums of whole blocks, four lanes for each, the last of no meaning.
struct BlockSums {
  alignas(64) uint16_t at[4 * 255];
};

// Which columns each block is made of, by their lanes: `least` from the first on, and another one that
// is zero in narrow blocks.
struct BlockColumns {
  uint16_t first[255], another[255];
};

// `least` 0: as many as there are.
template <class Format, size_t least>
HWY_INLINE void SumBlocks(const Blocks& blocks, const BlockColumns& places,
                          const ColumnSums& columns, BlockSums& sums) {
  const hn::CappedTag<uint16_t, 4> d;
  for (size_t x = 0; x < blocks.count; ++x) {
    const uint16_t* column = columns.at + places.first[x];
    auto sum = hn::LoadU(d, columns.at + places.another[x]);
    for (size_t i = least != 0 ? least : blocks.least; i != 0; --i, column += Format::kBytes) {
      sum = hn::Add(sum, hn::LoadU(d, column));
    }
    hn::StoreU(sum, d, sums.at + 4 * x);
  }
}

#if HWY_TARGET != HWY_SCALAR

// As many pixels as vectors of words have lanes; the last vector overlaps the one before.
template <class Format, class D>
HWY_INLINE void StoreAverages(D d, const BlockAverages& averages, const BlockSums& sums,
                              uint8_t* dst, size_t count) {
  const WordTag<D> d32;
  const HalfWordTag<D> d16;
  constexpr size_t kPixels = hn::MaxLanes(d32);
  if (count >= kPixels) {
    for (size_t x = 0; x < count; x += kPixels) {
      const size_t at = HWY_MIN(x, count - kPixels);
      const auto average = [&](size_t from) HWY_ATTR {
        return averages.Average(d16, hn::LoadU(d16, sums.at + 4 * from), from);
      };
      StoreColours<Format>(d, hn::OrderedTruncate2To(d, average(at), average(at + kPixels / 2)),
                           dst + at * Format::kBytes);
    }
  } else if constexpr (CanHalve(D())) {
    StoreAverages<Format>(hn::Half<D>(), averages, sums, dst, count);
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

template <class Format>
HWY_INLINE void AverageColumns(const Blocks& blocks, uint32_t height, const ColumnSums& columns,
                               uint8_t* dst) {
  const WrappingAverage narrow(HWY_MAX(blocks.least, 1u) * height);
  const WrappingAverage wide((blocks.least + 1) * height);
  for (size_t x = 0; x < blocks.count; ++x, dst += Format::kBytes) {
    const size_t first = blocks.first[x], end = blocks.first[x + 1];
    if (first == end) continue;
    const WrappingAverage& average = end - first > blocks.least ? wide : narrow;
    uint32_t sums[3] = {};
    for (size_t column = first; column != end; ++column) {
      for (size_t i = 0; i < 3; ++i) sums[i] += columns.at[column * Format::kBytes + i];
    }
    for (size_t i = 0; i < 3; ++i) dst[i] = average(uint16_t(sums[i]));
  }
}

// Windows of the columns of blocks, by bytes of the block sums: places are those of the first columns.
using BlockWindows = Windows<8>;

template <class Format>
HWY_INLINE bool FindBlocks(BlockWindows& windows, const Blocks& blocks) {
  constexpr size_t kColumn = 2 * Format::kBytes;
  const auto source = [&](size_t i) { return blocks.first[i / 8] * kColumn + i % 8; };
  const auto find = [&](size_t boundary) {
    return FindWindows(
        windows, blocks.count * 8, kVectorBytes, sizeof(ColumnSums),
        [&](size_t i) { return source(i) / boundary * boundary; },
        [&](size_t i) { return source(i) + blocks.least * kColumn + 1; });
  };
  // Where they fit, windows that are loaded as they were stored.
  if (!find(kVectorBytes) && !find(1)) return false;
  constexpr uint64_t kEveryByte = 0x0101010101010101, kCount = 0x0706050403020100;
  uint8_t* place = windows.place;
  for (size_t v = 0; v < windows.count; ++v) {
    for (size_t i = 0; i < kVectorBytes; i += 8, place += 8) {
      const size_t first = source(windows.first[v] + i) - size_t(windows.at[v]);
      StoreWord(place, first * kEveryByte + kCount);
    }
  }
  return true;
}

#if HWY_TARGET != HWY_SCALAR

template <class Format, size_t vectors_each>
HWY_NOINLINE void AverageWindows(const BlockWindows& windows, const Blocks& blocks,
                                 const BlockAverages& averages, const ColumnSums& columns,
                                 uint8_t* dst) {
  const ByteTag d;
  const HalfWordTag<ByteTag> d16;
  const hn::Half<ByteTag> half;
  for (size_t v = 0; v < windows.count; ++v) {
    const Window<ByteTag, vectors_each> window(
        d, reinterpret_cast<const uint8_t*>(columns.at) + windows.at[v]);
    auto place = hn::Load(d, windows.place + v * kVectorBytes);
    const auto next = [&]() HWY_ATTR {
      const auto column = hn::BitCast(d16, PickFrom<vectors_each>(d, window.v, place));
      place = hn::Add(place, hn::Set(d, uint8_t{2 * Format::kBytes}));
      return column;
    };
    auto sum = next();
    for (size_t i = 1; i < blocks.least; ++i) sum = hn::Add(sum, next());
    const size_t x = windows.first[v] / 8;
    sum = hn::Add(sum, hn::And(next(), hn::LoadU(d16, averages.wider + 4 * x)));
    StoreColours<Format>(half, hn::TruncateTo(half, averages.Average(d16, sum, x)),
                         dst + x * Format::kBytes);
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

template <class Format>
HWY_INLINE void AverageBlocksOf(const Blocks& blocks, ptrdiff_t src_pitch, const AveragedRow* rows,
                                size_t height) {
  const size_t src_bytes = blocks.first[blocks.count] * size_t{Format::kBytes};
  ColumnSums columns;
  if constexpr (kHaveVectors) {
    if (blocks.least != 0 && blocks.count >= 4) {
      std::fill_n(columns.at + src_bytes, 2 * 4, uint16_t{0});
      BlockAverages averages[2];
      const auto with = [&](auto&& average) HWY_ATTR {
        for (const AveragedRow* row = rows; row != rows + height; ++row) {
          BlockAverages& of_height = averages[row->height % 2];
          of_height.Set(blocks, row->height);
          SumRows(hn::ScalableTag<uint16_t>(), *row, src_pitch, src_bytes, columns);
          average(of_height, row->dst);
        }
      };
      if constexpr (kHaveByteTables) {
        BlockWindows windows;
        if (FindBlocks<Format>(windows, blocks)) {
          return WithVectors(windows.vectors_each, [&](auto vectors) HWY_ATTR {
            constexpr size_t kVectors = HWY_MAX(decltype(vectors)::value, 1);  // never short
            with([&](const BlockAverages& of_height, uint8_t* dst) HWY_ATTR {
              AverageWindows<Format, kVectors>(windows, blocks, of_height, columns, dst);
            });
          });
        }
      }
      BlockColumns places;
      for (size_t x = 0; x < blocks.count; ++x) {
        const size_t first = blocks.first[x], end = blocks.first[x + 1];
        places.first[x] = uint16_t(first * Format::kBytes);
        places.another[x] =
            uint16_t(end - first > blocks.least ? (end - 1) * Format::kBytes : src_bytes);
      }
      const auto with_blocks = [&](auto least) HWY_ATTR {
        with([&](const BlockAverages& of_height, uint8_t* dst) HWY_ATTR {
          BlockSums sums;
          SumBlocks<Format, decltype(least)::value>(blocks, places, columns, sums);
          StoreAverages<Format>(hn::ScalableTag<uint8_t>(), of_height, sums, dst, blocks.count);
        });
      };
      if (blocks.least == 1) return with_blocks(std::integral_constant<size_t, 1>());
      if (blocks.least == 2) return with_blocks(std::integral_constant<size_t, 2>());
      return with_blocks(std::integral_constant<size_t, 0>());
    }
  }
  for (const AveragedRow* row = rows; row != rows + height; ++row) {
    SumRows(hn::ScalableTag<uint16_t>(), *row, src_pitch, src_bytes, columns);
    AverageColumns<Format>(blocks, row->height, columns, row->dst);
  }
}

void AverageBlocks(int pixel_bytes, const Blocks& blocks, ptrdiff_t src_pitch,
                   const AveragedRow* rows, size_t height) {
  if (pixel_bytes == 3) {
    AverageBlocksOf<Rgb888>(blocks, src_pitch, rows, height);
  } else {
    AverageBlocksOf<Argb8888>(blocks, src_pitch, rows, height);
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
void AverageBlocks(int pixel_bytes, const Blocks& blocks, ptrdiff_t src_pitch,
                   const AveragedRow* rows, size_t height) {
  HWY_DYNAMIC_DISPATCH(AverageBlocks)(pixel_bytes, blocks, src_pitch, rows, height);
}

}  // namespace pincel
#endif  // HWY_ONCE
