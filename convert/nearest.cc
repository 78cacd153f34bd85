// The distance sums, per channel, how far the entry lies below the colour, modulo 256. So it is the
// sum of the colour's channels minus the sum of the entry's, plus 256 for each channel in which the
// entry is brighter; and since the colour's part is the same for all entries, an entry costs
// (765 - sum of its channels) + 256 x (channels in which it is brighter). Which entries can be
// cheapest for some pixel of a block follows from the block's range of each channel; those few are
// tried on all its pixels at once.
#include "convert/nearest.h"

#include <algorithm>
#include <bit>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/nearest.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/moved_fields-inl.h"

#ifndef CONVERT_NEAREST_CC_ONCE_
#define CONVERT_NEAREST_CC_ONCE_
namespace pincel {

constexpr size_t kEntries = 256;
constexpr size_t kBlockPixels = 64;

// Channels are kept minus 128, so that signed comparisons order them.
constexpr int8_t Signed(uint32_t byte) { return int8_t(int(byte & 0xFF) - 128); }

constexpr uint16_t CostOf(Bgr c) { return uint16_t(765 - c.red - c.green - c.blue); }

}  // namespace pincel
#endif  // CONVERT_NEAREST_CC_ONCE_

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// A palette, channel by channel.
struct SearchPalette {
  int8_t red[kEntries], green[kEntries], blue[kEntries];
  uint16_t cost[kEntries];

  explicit SearchPalette(const TRGBA* palette) {
    for (size_t i = 0; i < kEntries; ++i) {
      const Bgr c = ToBgr(palette[i]);
      red[i] = Signed(c.red);
      green[i] = Signed(c.green);
      blue[i] = Signed(c.blue);
      cost[i] = CostOf(c);
    }
  }
};

// D is the tag of int8_t lanes.
template <class D>
class BlockSearch {
 public:
  explicit BlockSearch(const TRGBA* palette) : palette_(palette) {}

  // The nearest entries of kBlockPixels pixels, of which there must be `size`, at least one.
  template <class Reduction>
  HWY_INLINE void Run(const uint8_t* src, size_t size, uint32_t hidden, uint8_t* dst) {
    LoadPixels<typename Reduction::Src, typename Reduction::Roles>(src, size);
    FindCandidates();
    if (count_ == 1) {
      std::memset(nearest_, list_[0], kBlockPixels);
    } else {
      TryCandidates();
    }
    if (hidden <= 0xFFFFFF) Hide(ToBgr(hidden));
    std::memcpy(dst, nearest_, size);
  }

 private:
  using DU = hn::RebindToUnsigned<D>;
  using D16 = HalfWordTag<DU>;
  using V = hn::VFromD<D>;
  using VU = hn::VFromD<DU>;
  using V16 = hn::VFromD<D16>;
  static constexpr size_t kLanes = hn::MaxLanes(D());
  static constexpr size_t kVectors = kBlockPixels / kLanes;

  template <class Src, class Roles>
  HWY_INLINE void LoadPixels(const uint8_t* src, size_t size) {
    const DU d;
    const WordTag<DU> d32;
    const VU sign = hn::Set(d, 0x80);
    size_t i = 0;
    for (; i + kLanes <= size; i += kLanes) {
      const Words<DU> words = LoadWords<Src::kBytes>(d, src + i * Src::kBytes);
      const Words<DU> blue =
          ForEachVector(d, words, [&](auto v) HWY_ATTR { return MovedFieldsOf<Roles>(d32, v); });
      const Words<DU> green =
          ForEachVector(d, blue, [](auto v) HWY_ATTR { return hn::ShiftRight<8>(v); });
      const Words<DU> red =
          ForEachVector(d, blue, [](auto v) HWY_ATTR { return hn::ShiftRight<16>(v); });
      StoreSigned(hn::Xor(LowBytes(d, blue), sign), blue_ + i);
      StoreSigned(hn::Xor(LowBytes(d, green), sign), green_ + i);
      StoreSigned(hn::Xor(LowBytes(d, red), sign), red_ + i);
    }
    for (; i < size; ++i) {
      const Bgr c = ToBgr(Roles::Of(Src::Load(src + i * Src::kBytes)));
      blue_[i] = Signed(c.blue);
      green_[i] = Signed(c.green);
      red_[i] = Signed(c.red);
    }
    for (; i < kBlockPixels; ++i) {  // what is missing is like the first pixel
      blue_[i] = blue_[0];
      green_[i] = green_[0];
      red_[i] = red_[0];
    }
  }
  static HWY_INLINE void StoreSigned(VU v, int8_t* to) { hn::StoreU(hn::BitCast(D(), v), D(), to); }

  struct Range {
    V low, high;
  };
  static HWY_INLINE Range RangeOf(const int8_t* pixels) {
    const D d;
    V low = hn::LoadU(d, pixels), high = low;
    for (size_t i = 1; i < kVectors; ++i) {
      const V v = hn::LoadU(d, pixels + i * kLanes);
      low = hn::Min(low, v);
      high = hn::Max(high, v);
    }
    return {hn::Set(d, hn::ReduceMin(d, low)), hn::Set(d, hn::ReduceMax(d, high))};
  }

  // 256 times the number of channels in which an entry is above a colour.
  static HWY_INLINE HalfWords<DU> Penalty(V red, V green, V blue, V above_red, V above_green,
                                          V above_blue) {
    const D d;
    const DU du;
    const V minus = hn::Add(hn::Add(hn::VecFromMask(d, hn::Lt(red, above_red)),
                                    hn::VecFromMask(d, hn::Lt(green, above_green))),
                            hn::VecFromMask(d, hn::Lt(blue, above_blue)));
    const VU channels = hn::BitCast(du, hn::Neg(minus));
    return JoinPlanes(du, hn::Zero(du), BlockOrder<uint64_t>(du, channels));
  }

  // Lists the entries that cost no more, at best, than every entry does at worst.
  HWY_INLINE void FindCandidates() {
    const D d;
    const D16 d16;
    constexpr size_t kLanes16 = kLanes / 2;
    const Range red = RangeOf(red_), green = RangeOf(green_), blue = RangeOf(blue_);
    uint16_t least[kEntries];
    V16 bound = hn::Set(d16, 0xFFFF);
    for (size_t i = 0; i < kEntries; i += kLanes) {
      const V r = hn::LoadU(d, palette_.red + i), g = hn::LoadU(d, palette_.green + i);
      const V b = hn::LoadU(d, palette_.blue + i);
      const V16 cost0 = hn::LoadU(d16, palette_.cost + i);
      const V16 cost1 = hn::LoadU(d16, palette_.cost + i + kLanes16);
      const HalfWords<DU> best = Penalty(red.high, green.high, blue.high, r, g, b);
      const HalfWords<DU> worst = Penalty(red.low, green.low, blue.low, r, g, b);
      hn::StoreU(hn::Add(cost0, best.v0), d16, least + i);
      hn::StoreU(hn::Add(cost1, best.v1), d16, least + i + kLanes16);
      bound = hn::Min(bound, hn::Min(hn::Add(cost0, worst.v0), hn::Add(cost1, worst.v1)));
    }
    bound = hn::Set(d16, hn::ReduceMin(d16, bound));
    count_ = 0;
    for (size_t i = 0; i < kEntries; i += kLanes16) {
      uint8_t bytes[8] = {};
      hn::StoreMaskBits(d16, hn::Le(hn::LoadU(d16, least + i), bound), bytes);
      for (uint64_t bits = LoadWord<uint64_t>(bytes); bits != 0; bits &= bits - 1) {
        list_[count_++] = uint8_t(i + size_t(std::countr_zero(bits)));
      }
    }
  }

  // An entry's cost for a pixel and, below it, the place in the chunk, counted down: the smallest is
  // the last of the cheapest.
  static constexpr int kPlaceBits = 5;
  static constexpr size_t kChunk = size_t{1} << kPlaceBits;
  static_assert((765 + 3 * 256) << kPlaceBits <= 0xFFFF);

  HWY_INLINE void TryCandidates() {
    const D d;
    const DU du;
    const D16 d16;
    V red[kVectors], green[kVectors], blue[kVectors];
    for (size_t i = 0; i < kVectors; ++i) {
      red[i] = Ordered(red_ + i * kLanes);
      green[i] = Ordered(green_ + i * kLanes);
      blue[i] = Ordered(blue_ + i * kLanes);
    }
    const VU step = hn::Set(du, uint8_t((256 << kPlaceBits) >> 8));
    HalfWords<DU> cost[kVectors], place[kVectors];
    for (size_t start = 0; start < count_; start += kChunk) {
      HalfWords<DU> best[kVectors];
      for (size_t i = 0; i < kVectors; ++i) best[i].v0 = best[i].v1 = hn::Set(d16, 0xFFFF);
      const size_t size = std::min(count_ - start, kChunk);
      for (size_t j = 0; j < size; ++j) {
        const size_t entry = list_[start + j];
        const uint32_t key =
            uint32_t{palette_.cost[entry]} << kPlaceBits | uint32_t(kChunk - 1 - j);
        const V r = hn::Set(d, palette_.red[entry]), g = hn::Set(d, palette_.green[entry]);
        const V b = hn::Set(d, palette_.blue[entry]);
        const VU low = hn::Set(du, uint8_t(key)), high = hn::Set(du, uint8_t(key >> 8));
        for (size_t i = 0; i < kVectors; ++i) {
          VU sum = AddWhere(du, hn::RebindMask(du, hn::Lt(red[i], r)), high, step);
          sum = AddWhere(du, hn::RebindMask(du, hn::Lt(green[i], g)), sum, step);
          sum = AddWhere(du, hn::RebindMask(du, hn::Lt(blue[i], b)), sum, step);
          const HalfWords<DU> keys = JoinPlanes(du, low, sum);
          best[i].v0 = hn::Min(best[i].v0, keys.v0);
          best[i].v1 = hn::Min(best[i].v1, keys.v1);
        }
      }
      for (size_t i = 0; i < kVectors; ++i) {
        Merge(best[i].v0, start, cost[i].v0, place[i].v0);
        Merge(best[i].v1, start, cost[i].v1, place[i].v1);
      }
    }
    for (size_t i = 0; i < kVectors; ++i)
      hn::StoreU(LowBytes(du, place[i]), du, nearest_ + i * kLanes);
    for (uint8_t& index : nearest_) index = list_[index];
  }
  static HWY_INLINE V Ordered(const int8_t* plane) {
    const DU du;
    return hn::BitCast(D(), BlockOrder<uint64_t>(du, hn::BitCast(du, hn::LoadU(D(), plane))));
  }
  // Takes over the best of a chunk where they cost no more than those of the chunks before.
  static HWY_INLINE void Merge(V16 best, size_t start, V16& cost, V16& place) {
    const D16 d16;
    const V16 new_cost = hn::ShiftRight<kPlaceBits>(best);
    const V16 new_place = hn::Sub(hn::Set(d16, uint16_t(start + kChunk - 1)),
                                  hn::And(best, hn::Set(d16, kChunk - 1)));
    if (start == 0) {
      cost = new_cost;
      place = new_place;
      return;
    }
    place = hn::IfThenElse(hn::Le(new_cost, cost), new_place, place);
    cost = hn::Min(cost, new_cost);
  }

  HWY_INLINE void Hide(Bgr colour) {
    const D d;
    const DU du;
    const V red = hn::Set(d, Signed(colour.red)), green = hn::Set(d, Signed(colour.green));
    const V blue = hn::Set(d, Signed(colour.blue));
    for (size_t i = 0; i < kBlockPixels; i += kLanes) {
      const auto hidden = hn::And(
          hn::And(hn::Eq(hn::LoadU(d, red_ + i), red), hn::Eq(hn::LoadU(d, green_ + i), green)),
          hn::Eq(hn::LoadU(d, blue_ + i), blue));
      const VU index = hn::LoadU(du, nearest_ + i);
      hn::StoreU(hn::IfThenZeroElse(hn::RebindMask(du, hidden), index), du, nearest_ + i);
    }
  }

  SearchPalette palette_;
  int8_t red_[kBlockPixels], green_[kBlockPixels], blue_[kBlockPixels];
  uint8_t nearest_[kBlockPixels];
  uint8_t list_[kEntries];  // the candidates, in the order of the palette
  size_t count_ = 0;
};

template <class Reduction>
void ReduceAllToNearest(const SourceRows& rows, const TRGBA* palette, uint32_t hidden) {
  constexpr size_t kBytes = Reduction::Src::kBytes;
  const SourceRows joined = Joined(rows, 1, kBytes);
  if constexpr (kHaveVectors) {
    BlockSearch<hn::CappedTag<int8_t, kBlockPixels>> search(palette);
    ForEachRow(joined, [&](uint8_t* dst, const uint8_t* src) HWY_ATTR {
      for (size_t x = 0; x < joined.width; x += kBlockPixels) {
        const size_t size = std::min(joined.width - x, kBlockPixels);
        search.template Run<Reduction>(src + x * kBytes, size, Reduction::HiddenInRoles(hidden),
                                       dst + x);
      }
    });
  } else {
    ForEachRow(joined, [&](uint8_t* dst, const uint8_t* src) {
      for (size_t x = 0; x < joined.width; ++x) {
        NearestPixel<Reduction>(dst + x, src + x * kBytes, palette, hidden);
      }
    });
  }
}

template <class... Reductions>
HWY_INLINE void NearestByOneOf(FormulaList<Reductions...>, size_t reduction, const SourceRows& rows,
                               const TRGBA* palette, uint32_t hidden) {
  static constexpr void (*kReduce[])(const SourceRows&, const TRGBA*,
                                     uint32_t) = {&ReduceAllToNearest<Reductions>...};
  kReduce[reduction](rows, palette, hidden);
}

void NearestRows(size_t reduction, const SourceRows& rows, const TRGBA* palette, uint32_t hidden) {
  NearestByOneOf(NearestReductions{}, reduction, rows, palette, hidden);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(NearestRows);

void NearestRows(size_t reduction, const SourceRows& rows, const TRGBA* palette, uint32_t hidden) {
  HWY_DYNAMIC_DISPATCH(NearestRows)(reduction, rows, palette, hidden);
}

}  // namespace pincel
#endif  // HWY_ONCE
