#include "draw/stretch_rows.h"

#include <algorithm>
#include <type_traits>

#include "draw/stretch_pixel.h"
#include "surface/rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "draw/stretch_rows.cc"
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

struct Windows {
  size_t count = 0;  // vectors; 0 when the windows would be longer than four vectors, or the row
                     // is shorter than one
  size_t vectors_each = 0;
  size_t at[4 * kTileColumns / kVectorBytes + 1];         // byte of the row written to
  ptrdiff_t window[4 * kTileColumns / kVectorBytes + 1];  // byte of the source row
  alignas(64) uint8_t place[4 * kTileColumns + kVectorBytes];
};

// Pixels of `dst_bytes` from the first `width` columns, of which each has `src_bytes` bytes, in source
// rows of `readable` bytes. The last vector overlaps the one before.
template <size_t dst_bytes, size_t src_bytes>
HWY_INLINE void FindWindows(Windows& windows, const TileColumns& columns, size_t width,
                            size_t readable) {
  const size_t row_bytes = width * dst_bytes;
  if (row_bytes < kVectorBytes) return;
  const auto source_byte = [&](size_t i) {
    return size_t(columns.at[i / dst_bytes]) * src_bytes + HWY_MIN(i % dst_bytes, src_bytes - 1);
  };
  const auto find = [&](size_t size) {
    size_t count = 0;
    for (size_t from = 0; from < row_bytes; from += kVectorBytes, ++count) {
      const size_t at = HWY_MIN(from, row_bytes - kVectorBytes);
      const size_t first = size_t(columns.at[at / dst_bytes]) * src_bytes;
      const size_t window = HWY_MIN(first, readable - size);
      if (size_t(columns.at[(at + kVectorBytes - 1) / dst_bytes] + 1) * src_bytes > window + size) {
        return false;
      }
      windows.at[count] = at;
      windows.window[count] = ptrdiff_t(window);
    }
    windows.count = count;
    return true;
  };
  for (size_t vectors : {1, 2, 4}) {
    if (readable < vectors * kVectorBytes) return;
    if (!find(vectors * kVectorBytes)) continue;
    windows.vectors_each = vectors;
    for (size_t v = 0; v < windows.count; ++v) {
      for (size_t i = 0; i < kVectorBytes; ++i) {
        windows.place[v * kVectorBytes + i] =
            uint8_t(source_byte(windows.at[v] + i) - size_t(windows.window[v]));
      }
    }
    return;
  }
}

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

// The bytes at `place` in the window that starts at `src`.
template <size_t vectors_each, class D>
HWY_INLINE hn::VFromD<D> Pick(D d, const uint8_t* src, hn::VFromD<D> place) {
  constexpr size_t kHalf = vectors_each / 2 * kVectorBytes;
  const auto within = [&](size_t size)
                          HWY_ATTR { return hn::And(place, hn::Set(d, uint8_t(size - 1))); };
  if constexpr (kHaveByteTables && vectors_each == 1) {
    return hn::TableLookupLanes(hn::LoadU(d, src), hn::IndicesFromVec(d, within(kVectorBytes)));
  } else if constexpr (kHaveByteTables && vectors_each == 2) {
    return hn::TwoTablesLookupLanes(d, hn::LoadU(d, src), hn::LoadU(d, src + kVectorBytes),
                                    hn::IndicesFromVec(d, within(2 * kVectorBytes)));
  } else if constexpr (vectors_each == 1) {
    return hn::TableLookupBytes(hn::LoadU(d, src), within(kVectorBytes));
  } else {
    const auto half = hn::Set(d, uint8_t(kHalf));
    const auto upper = hn::Eq(hn::And(place, half), half);
    return hn::IfThenElse(upper, Pick<vectors_each / 2>(d, src + kHalf, place),
                          Pick<vectors_each / 2>(d, src, place));
  }
}

template <size_t vectors_each, bool keep_fourth_byte>
HWY_INLINE void CopyWindows(const Windows& windows, const CopiedRow* rows, size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  const auto colour = hn::BitCast(d, hn::Set(d32, 0x00FFFFFF));
  for (const CopiedRow* row = rows; row != rows + height; ++row) {
    for (size_t v = 0; v < windows.count; ++v) {
      auto bytes = Pick<vectors_each>(d, row->src + windows.window[v],
                                      hn::Load(d, windows.place + v * kVectorBytes));
      uint8_t* const dst = row->dst + windows.at[v];
      if constexpr (keep_fourth_byte) {
        bytes = hn::BitwiseIfThenElse(colour, bytes, hn::LoadU(d, dst));
      }
      hn::StoreU(bytes, d, dst);
    }
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

template <class Format, bool keep_fourth_byte>
HWY_INLINE void CopyColumnsOf(const TileColumns& columns, const CopiedRow* rows, size_t height) {
  if constexpr (kHaveByteShuffle) {
    Windows windows;
    FindWindows<Format::kBytes, Format::kBytes>(windows, columns, columns.width,
                                                size_t(columns.last + 1) * Format::kBytes);
    if (windows.count != 0) {
      if (windows.vectors_each == 1) return CopyWindows<1, keep_fourth_byte>(windows, rows, height);
      if (windows.vectors_each == 2) return CopyWindows<2, keep_fourth_byte>(windows, rows, height);
      return CopyWindows<4, keep_fourth_byte>(windows, rows, height);
    }
  }
  using Copied = std::conditional_t<keep_fourth_byte, Rgb888, Format>;
  for (const CopiedRow* row = rows; row != rows + height; ++row) {
    for (size_t x = 0; x < columns.width; ++x) {
      Copied::Store(row->dst + x * Format::kBytes,
                    Copied::Load(row->src + ptrdiff_t{columns.at[x]} * Format::kBytes));
    }
  }
}

void CopyColumns(int pixel_bytes, bool keep_fourth_byte, const TileColumns& columns,
                 const CopiedRow* rows, size_t height) {
  switch (pixel_bytes) {
    case 1:
      return CopyColumnsOf<Indexed8, false>(columns, rows, height);
    case 2:
      return CopyColumnsOf<Any16, false>(columns, rows, height);
    case 3:
      return CopyColumnsOf<Rgb888, false>(columns, rows, height);
    default:
      return keep_fourth_byte ? CopyColumnsOf<Argb8888, true>(columns, rows, height)
                              : CopyColumnsOf<Argb8888, false>(columns, rows, height);
  }
}

#if HWY_TARGET != HWY_SCALAR

// Mixing works on the pairs (left, right) of one channel as two half words. Weights are taken less
// 32768, to fit into signed half words: what that takes away is a multiple of the sum.
template <class D>
HWY_INLINE hn::VFromD<D> WeightedSum(D d32, hn::VFromD<D> pairs, hn::VFromD<D> weights) {
  const hn::RebindToSigned<D> di32;
  const hn::Repartition<int16_t, D> di16;
  const auto signed_pairs = hn::BitCast(di16, pairs);
  const auto rest = hn::WidenMulPairwiseAdd(di32, signed_pairs, hn::BitCast(di16, weights));
  const auto sum = hn::WidenMulPairwiseAdd(di32, signed_pairs, hn::Set(di16, 1));
  return hn::BitCast(d32, hn::Add(rest, hn::ShiftLeft<15>(sum)));
}

// The weights (left, right) of Lanes(d32) columns, and what they become in a row.
template <Mixing mixing, class D>
struct MixedWeights {
  using V = hn::VFromD<D>;
  static constexpr uint32_t kLess32768 = 0x80008000;
  V top, bottom, down;

  HWY_INLINE MixedWeights(D d32, const uint16_t* right, uint32_t row_down) {
    const hn::Rebind<uint16_t, D> d16_right;
    const hn::Repartition<uint16_t, D> d16;
    const V to_right = hn::PromoteTo(d32, hn::LoadU(d16_right, right));
    const V both = hn::Or(hn::ShiftLeft<16>(to_right), hn::Xor(to_right, hn::Set(d32, 0xFFFF)));
    const V less = hn::Set(d32, kLess32768);
    down = hn::Set(d32, row_down);
    if constexpr (mixing == Mixing::kSmooth) {
      const auto times = [&](uint32_t factor) HWY_ATTR {
        const auto product = hn::MulHigh(hn::BitCast(d16, both), hn::Set(d16, uint16_t(factor)));
        return hn::Xor(hn::BitCast(d32, product), less);
      };
      top = times(kSmoothUnit - row_down);
      bottom = times(row_down);
    } else {
      top = bottom = hn::Xor(both, less);
    }
  }

  // Channels of the `pixel`-th pixel of each block, 256 x 256 times too large.
  template <size_t pixel>
  HWY_INLINE V Mix(D d32, V top_pairs, V bottom_pairs) const {
    const V upper = WeightedSum(d32, top_pairs, hn::Broadcast<pixel>(top));
    const V lower = WeightedSum(d32, bottom_pairs, hn::Broadcast<pixel>(bottom));
    if constexpr (mixing == Mixing::kSmooth) {
      return hn::Add(upper, lower);
    } else {
      // Up to here the weights of a pair sum to 65535; the left pixel once more makes it 65536.
      const hn::RebindToSigned<D> di32;
      const hn::Repartition<uint16_t, D> d16;
      const V left = hn::Set(d32, 0xFFFF);
      const V from = hn::Add(upper, hn::And(top_pairs, left));
      const V way = hn::Sub(hn::Add(lower, hn::And(bottom_pairs, left)), from);
      const V whole = hn::Mul(hn::BitCast(d32, hn::ShiftRight<16>(hn::BitCast(di32, way))), down);
      const V part = hn::BitCast(d32, hn::MulHigh(hn::BitCast(d16, way), hn::BitCast(d16, down)));
      return hn::Add(hn::Add(from, whole), part);
    }
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
HWY_INLINE void MixWindows(const Windows& windows, const MixedColumns& columns,
                           const MixedRow* rows, size_t height) {
  const ByteTag d;
  const WordTag<ByteTag> d32;
  const auto zero = hn::Zero(d);
  for (const MixedRow* row = rows; row != rows + height; ++row) {
    for (size_t v = 0; v < windows.count; ++v) {
      const size_t x = windows.at[v] / 4;
      const auto place = hn::Load(d, windows.place + v * kVectorBytes);
      const uint8_t* const top = row->top + windows.window[v];
      const uint8_t* const bottom = row->bottom + windows.window[v];
      const auto top_left = Pick<vectors_each>(d, top, place);
      const auto top_right = Pick<vectors_each>(d, top + Format::kBytes, place);
      const auto bottom_left = Pick<vectors_each>(d, bottom, place);
      const auto bottom_right = Pick<vectors_each>(d, bottom + Format::kBytes, place);
      // Pairs of the first and second, of the third and fourth pixel of each block.
      const auto top01 = hn::InterleaveLower(d, top_left, top_right);
      const auto top23 = hn::InterleaveUpper(d, top_left, top_right);
      const auto bottom01 = hn::InterleaveLower(d, bottom_left, bottom_right);
      const auto bottom23 = hn::InterleaveUpper(d, bottom_left, bottom_right);
      const auto low = [&](auto bytes) HWY_ATTR {
        return hn::BitCast(d32, hn::InterleaveLower(d, bytes, zero));
      };
      const auto high = [&](auto bytes) HWY_ATTR {
        return hn::BitCast(d32, hn::InterleaveUpper(d, bytes, zero));
      };
      const MixedWeights<mixing, WordTag<ByteTag>> weights(d32, columns.right + x, row->down);
      const auto mixed = JoinChannels(d32, weights.template Mix<0>(d32, low(top01), low(bottom01)),
                                      weights.template Mix<1>(d32, high(top01), high(bottom01)),
                                      weights.template Mix<2>(d32, low(top23), low(bottom23)),
                                      weights.template Mix<3>(d32, high(top23), high(bottom23)));
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
    Windows windows;
    FindWindows<4, Format::kBytes>(windows, columns, inside, size_t(columns.last) * Format::kBytes);
    if (windows.count != 0) {
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

template <class Format>
HWY_INLINE void AverageBlocksOf(const Blocks& blocks, const AveragedRow& row) {
  // Columns first. Sums wrap, in whatever order they are made.
  uint16_t columns[(255 + 1) * Format::kBytes];
  SumRows(hn::ScalableTag<uint16_t>(), row, 0, blocks.columns * Format::kBytes, columns);

  const WrappingAverage averages[] = {WrappingAverage(HWY_MAX(blocks.least, 1u) * row.height),
                                      WrappingAverage((blocks.least + 1) * row.height)};
  const uint16_t* column = columns;
  uint8_t* dst = row.dst;
  for (size_t x = 0; x < blocks.count; ++x, dst += Format::kBytes) {
    uint32_t width = blocks.widths[x];
    if (width == 0) continue;
    const WrappingAverage& average = averages[width - blocks.least];
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
HWY_EXPORT(MixColumns);
HWY_EXPORT(AverageBlocks);

void CopyColumns(int pixel_bytes, bool keep_fourth_byte, const TileColumns& columns,
                 const CopiedRow* rows, size_t height) {
  HWY_DYNAMIC_DISPATCH(CopyColumns)(pixel_bytes, keep_fourth_byte, columns, rows, height);
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
