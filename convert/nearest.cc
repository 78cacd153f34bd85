// The distance sums, per channel, how far the entry lies below the colour, modulo 256. So it is the
// sum of the colour's channels minus the sum of the entry's, plus 256 for each channel in which the
// entry is brighter; and since the colour's part is the same for all entries, an entry costs
// (765 - sum of its channels) + 256 x (channels in which it is brighter). Which entries can be
// cheapest for some pixel of a block follows from the block's range of each channel; those are tried
// on all its pixels at once.
//
// Large surfaces also remember: the colours fall into cells of 8 x 8 x 8 neighbours, of which every
// block that had to be searched resolves one more, as long as enough blocks find all they need.
#include "convert/nearest.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <memory>

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

// Colours are words 0x00RRGGBB. Channels by themselves are kept minus 128, so that signed comparisons
// order them.
constexpr int8_t Signed(uint32_t byte) { return int8_t(int(byte & 0xFF) - 128); }

constexpr uint16_t CostOf(Bgr c) { return uint16_t(765 - c.red - c.green - c.blue); }

// A cost and, below it, the entry's place in its chunk of the palette, counted down: of the keys of a
// chunk, the smallest belongs to the last of the cheapest entries.
constexpr size_t kChunk = 32;
constexpr int kPlaceBits = 5;
constexpr size_t kChunks = kEntries / kChunk;
static_assert(kChunk == size_t{1} << kPlaceBits && (765 + 3 * 256) << kPlaceBits <= 0xFFFF);
constexpr uint16_t kKeySign = 0x8000;  // flipped in the keys, which are compared as signed numbers

constexpr uint32_t FourTimes(uint32_t byte) { return (byte & 0xFF) * 0x01010101; }

// A palette, channel by channel for trying a colour on many entries, and entry by entry for trying
// an entry on many colours: there each byte stands four times, since words are broadcast faster.
struct SearchPalette {
  int8_t red[kEntries], green[kEntries], blue[kEntries];
  uint16_t cost[kEntries];
  struct Entry {
    uint32_t red, green, blue, key_low, key_high;
  } entries[kEntries];

  explicit SearchPalette(const TRGBA* palette) {
    for (size_t i = 0; i < kEntries; ++i) {
      const Bgr c = ToBgr(palette[i]);
      red[i] = Signed(c.red);
      green[i] = Signed(c.green);
      blue[i] = Signed(c.blue);
      cost[i] = CostOf(c);
      const uint32_t key = uint32_t{cost[i]} << kPlaceBits | (kChunk - 1 - i % kChunk);
      entries[i] = {FourTimes(uint8_t(red[i])), FourTimes(uint8_t(green[i])),
                    FourTimes(uint8_t(blue[i])), FourTimes(key), FourTimes((key ^ kKeySign) >> 8)};
    }
  }
};

// The resolved cells of a call. A colour's place holds its cell above and the rest below.
class ColourCells {
 public:
  static constexpr int kInnerBits = 3, kCellShift = 3 * kInnerBits;
  static constexpr uint32_t kCells = 1u << (24 - kCellShift);

  // Without memory, and for fewer pixels than pay for the cells, there are none.
  explicit ColourCells(size_t pixels) {
    constexpr size_t kWorthwhilePixels = size_t{1} << 19;
    if (pixels < kWorthwhilePixels) return;
    resolved_.reset(static_cast<uint8_t*>(std::malloc(kCells + (size_t{1} << 24))));
    if (resolved_ != nullptr) std::memset(resolved_.get(), 0, kCells);
  }
  explicit operator bool() const { return resolved_ != nullptr; }
  bool IsResolved(uint32_t cell) const { return resolved_[cell] != 0; }
  uint8_t NearestOf(uint32_t place) const { return resolved_[kCells + place]; }
  // A block found all it needed, which is worth resolving some more cells.
  void Praise() { credit_ += 4; }
  // Whether one more cell is worth resolving. Once it is not, as with noise, there are none any more.
  bool MayResolve() {
    if (credit_ == 0) {
      resolved_.reset();
      return false;
    }
    --credit_;
    return true;
  }
  uint8_t* Resolve(uint32_t cell) {  // the entries of the cell's colours, to be filled in
    resolved_[cell] = 1;
    return &resolved_[kCells + (size_t{cell} << kCellShift)];
  }

 private:
  struct Free {
    void operator()(uint8_t* memory) const { std::free(memory); }
  };
  std::unique_ptr<uint8_t[], Free> resolved_;
  uint32_t credit_ = 4096;
};

}  // namespace pincel
#endif  // CONVERT_NEAREST_CC_ONCE_

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// D is the tag of int8_t lanes.
template <class D>
class BlockSearch {
 public:
  BlockSearch(const TRGBA* palette, size_t pixels) : palette_(palette), cells_(pixels) {}

  // The nearest entries of kBlockPixels pixels, of which there must be `size`, at least one.
  template <class Reduction>
  HWY_INLINE void Run(const uint8_t* src, size_t size, uint32_t hidden, uint8_t* dst) {
    LoadColours<typename Reduction::Src, typename Reduction::Roles>(src, size);
    if (!cells_) {
      Search();
    } else if (const uint32_t cell = LookUp(); cell != kNoCell) {
      Search();
      if (cells_.MayResolve()) ResolveCell(cell);
    } else {
      cells_.Praise();
    }
    if (hidden != kHidesNothing) Hide(hidden);
    std::memcpy(dst, nearest_, size);
  }

 private:
  using DU = hn::RebindToUnsigned<D>;
  using D16 = HalfWordTag<DU>;
  using D32 = WordTag<DU>;
  using V = hn::VFromD<D>;
  using VU = hn::VFromD<DU>;
  using V16 = hn::VFromD<D16>;
  using D16s = hn::RebindToSigned<D16>;
  using V16s = hn::VFromD<D16s>;
  using Cells = ColourCells;
  static constexpr size_t kLanes = hn::MaxLanes(D());
  static constexpr size_t kVectors = kBlockPixels / kLanes;
  static constexpr uint32_t kNoCell = Cells::kCells;

  template <class Src, class Roles>
  HWY_INLINE void LoadColours(const uint8_t* src, size_t size) {
    const DU d;
    size_t i = 0;
    for (; i + kLanes <= size; i += kLanes) {
      const Words<DU> words = LoadWords<Src::kBytes>(d, src + i * Src::kBytes);
      const Words<DU> colours =
          ForEachVector(d, words, [](auto v) HWY_ATTR { return MovedFieldsOf<Roles>(D32(), v); });
      StoreWords<4>(d, colours, reinterpret_cast<uint8_t*>(colours_ + i));
    }
    for (; i < size; ++i) colours_[i] = Roles::Of(Src::Load(src + i * Src::kBytes));
    for (; i < kBlockPixels; ++i) colours_[i] = colours_[0];  // what is missing is like the first
  }
  HWY_INLINE Words<DU> Colours(size_t first) const {
    return LoadWords<4>(DU(), reinterpret_cast<const uint8_t*>(colours_ + first));
  }

  // The place of a colour: red, green and blue of its cell, then red, green and blue inside it.
  struct Place {
    static constexpr std::array<MovedBits, 5> kMoves = {
        {{0, 0xF80007}, {3, 0x07C000}, {6, 0x003E00}, {-10, 0x0001C0}, {-5, 0x000038}}};
    static constexpr uint32_t kBits = 0;
  };

  // Looks all pixels up. Gives the first cell that is not resolved, kNoCell when all are.
  HWY_INLINE uint32_t LookUp() {
    uint32_t places[kBlockPixels];
    for (size_t i = 0; i < kBlockPixels; i += kLanes) {
      StoreWords<4>(DU(),
                    ForEachVector(DU(), Colours(i),
                                  [](auto v) HWY_ATTR { return MovedFieldsOf<Place>(D32(), v); }),
                    reinterpret_cast<uint8_t*>(places + i));
    }
    for (size_t i = 0; i < kBlockPixels; ++i) {
      const uint32_t cell = places[i] >> Cells::kCellShift;
      if (!cells_.IsResolved(cell)) return cell;
      nearest_[i] = cells_.NearestOf(places[i]);
    }
    return kNoCell;
  }

  HWY_NOINLINE void ResolveCell(uint32_t cell) {
    constexpr size_t kSide = size_t{1} << Cells::kInnerBits;
    static_assert(kSide * kSide == kBlockPixels);
    const size_t red = cell >> 10 << 3, green = (cell >> 5 & 31) << 3, blue = (cell & 31) << 3;
    const auto range = [](size_t first) HWY_ATTR {
      return Range{hn::Set(D(), Signed(uint32_t(first))),
                   hn::Set(D(), Signed(uint32_t(first + kSide - 1)))};
    };
    FindCandidates(range(red), range(green), range(blue));
    for (size_t i = 0; i < kBlockPixels; ++i) {
      green_[i] = Signed(uint32_t(green + i / kSide));
      blue_[i] = Signed(uint32_t(blue + i % kSide));
    }
    uint8_t* const entries = cells_.Resolve(cell);
    for (size_t i = 0; i < kSide; ++i) {
      std::memset(red_, Signed(uint32_t(red + i)), kBlockPixels);
      TryCandidates(entries + i * kBlockPixels);
    }
  }

  HWY_NOINLINE void Search() {
    const DU d;
    const VU sign = hn::Set(d, 0x80);
    for (size_t i = 0; i < kBlockPixels; i += kLanes) {
      const Words<DU> blue = Colours(i);
      const Words<DU> green =
          ForEachVector(d, blue, [](auto v) HWY_ATTR { return hn::ShiftRight<8>(v); });
      const Words<DU> red =
          ForEachVector(d, blue, [](auto v) HWY_ATTR { return hn::ShiftRight<16>(v); });
      const auto store = [&](const Words<DU>& channel, int8_t* plane) HWY_ATTR {
        hn::StoreU(hn::BitCast(D(), hn::Xor(LowBytes(d, channel), sign)), D(), plane + i);
      };
      store(red, red_);
      store(green, green_);
      store(blue, blue_);
    }
    FindCandidates(RangeOf(red_), RangeOf(green_), RangeOf(blue_));
    TryCandidates(nearest_);
  }

  struct Range {
    V low, high;
  };
  static HWY_INLINE Range RangeOf(const int8_t* plane) {
    const D d;
    V low = hn::LoadU(d, plane), high = low;
    for (size_t i = 1; i < kVectors; ++i) {
      const V v = hn::LoadU(d, plane + i * kLanes);
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

  // Marks the entries that cost no more, at best, than every entry does at worst.
  HWY_INLINE void FindCandidates(const Range& red, const Range& green, const Range& blue) {
    const D d;
    const D16 d16;
    constexpr size_t kLanes16 = kLanes / 2;
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
    uint8_t bits[kEntries / 8 + 8];  // StoreMaskBits may write eight bytes
    for (size_t i = 0; i < kEntries; i += kLanes16) {
      hn::StoreMaskBits(d16, hn::Le(hn::LoadU(d16, least + i), bound), bits + i / 8);
    }
    std::memcpy(candidates_, bits, sizeof(candidates_));
  }

  // The cheapest candidate for each pixel of the planes.
  HWY_INLINE void TryCandidates(uint8_t* nearest) {
    const DU du;
    const D16 d16;
    V red[kVectors], green[kVectors], blue[kVectors];
    HalfWords<DU> cost[kVectors], index[kVectors];
    for (size_t i = 0; i < kVectors; ++i) {
      red[i] = Ordered(red_ + i * kLanes);
      green[i] = Ordered(green_ + i * kLanes);
      blue[i] = Ordered(blue_ + i * kLanes);
      cost[i].v0 = cost[i].v1 = hn::Set(d16, 0xFFFF);
      index[i].v0 = index[i].v1 = hn::Zero(d16);
    }
    const VU step = hn::Set(du, uint8_t((256 << kPlaceBits) >> 8));
    for (size_t chunk = 0; chunk < kChunks; ++chunk) {
      if (candidates_[chunk] == 0) continue;
      V16s best0[kVectors], best1[kVectors];
      for (size_t i = 0; i < kVectors; ++i) best0[i] = best1[i] = hn::Set(D16s(), 0x7FFF);
      for (uint32_t bits = candidates_[chunk]; bits != 0; bits &= bits - 1) {
        const auto& entry = palette_.entries[chunk * kChunk + size_t(std::countr_zero(bits))];
        const V r = hn::BitCast(D(), FourBytes(entry.red));
        const V g = hn::BitCast(D(), FourBytes(entry.green));
        const V b = hn::BitCast(D(), FourBytes(entry.blue));
        const VU low = FourBytes(entry.key_low), high = FourBytes(entry.key_high);
        for (size_t i = 0; i < kVectors; ++i) {
          VU sum = AddWhere(du, hn::RebindMask(du, hn::Lt(red[i], r)), high, step);
          sum = AddWhere(du, hn::RebindMask(du, hn::Lt(green[i], g)), sum, step);
          sum = AddWhere(du, hn::RebindMask(du, hn::Lt(blue[i], b)), sum, step);
          const HalfWords<DU> keys = JoinPlanes(du, low, sum);
          best0[i] = hn::Min(best0[i], hn::BitCast(D16s(), keys.v0));
          best1[i] = hn::Min(best1[i], hn::BitCast(D16s(), keys.v1));
        }
      }
      for (size_t i = 0; i < kVectors; ++i) {
        Merge(best0[i], chunk, cost[i].v0, index[i].v0);
        Merge(best1[i], chunk, cost[i].v1, index[i].v1);
      }
    }
    for (size_t i = 0; i < kVectors; ++i) {
      hn::StoreU(LowBytes(du, index[i]), du, nearest + i * kLanes);
    }
  }
  static HWY_INLINE VU FourBytes(uint32_t word) {
    return hn::BitCast(DU(), hn::Set(WordTag<DU>(), word));
  }
  static HWY_INLINE V Ordered(const int8_t* plane) {
    const DU du;
    return hn::BitCast(D(), BlockOrder<uint64_t>(du, hn::BitCast(du, hn::LoadU(D(), plane))));
  }
  // Takes over the best of a chunk where they cost no more than those of the chunks before.
  static HWY_INLINE void Merge(V16s best_key, size_t chunk, V16& cost, V16& index) {
    const D16 d16;
    const V16 best = hn::Xor(hn::BitCast(d16, best_key), hn::Set(d16, kKeySign));
    const V16 new_cost = hn::ShiftRight<kPlaceBits>(best);
    const V16 new_index = hn::Sub(hn::Set(d16, uint16_t(chunk * kChunk + kChunk - 1)),
                                  hn::And(best, hn::Set(d16, kChunk - 1)));
    index = hn::IfThenElse(hn::Le(new_cost, cost), new_index, index);
    cost = hn::Min(cost, new_cost);
  }

  HWY_INLINE void Hide(uint32_t colour) {
    const DU du;
    for (size_t i = 0; i < kBlockPixels; i += kLanes) {
      const VU hidden = LowBytes(du, ForEachVector(du, Colours(i), [&](auto v) HWY_ATTR {
                                   return hn::VecFromMask(D32(), hn::Eq(v, hn::Set(D32(), colour)));
                                 }));
      hn::StoreU(hn::AndNot(hidden, hn::LoadU(du, nearest_ + i)), du, nearest_ + i);
    }
  }

  SearchPalette palette_;
  ColourCells cells_;
  uint32_t colours_[kBlockPixels];
  int8_t red_[kBlockPixels], green_[kBlockPixels], blue_[kBlockPixels];
  uint8_t nearest_[kBlockPixels];
  uint32_t candidates_[kChunks];  // a bit for each entry
};

template <class Reduction>
void ReduceAllToNearest(const SourceRows& rows, const TRGBA* palette, uint32_t hidden) {
  constexpr size_t kBytes = Reduction::Src::kBytes;
  const SourceRows joined = Joined(rows, 1, kBytes);
  if constexpr (kHaveVectors) {
    BlockSearch<hn::CappedTag<int8_t, kBlockPixels>> search(palette, rows.width * rows.height);
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
