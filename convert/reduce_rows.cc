#include "convert/convert_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/reduce_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/moved_fields-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// The index in the low byte of each lane.
template <class Src, class D>
HWY_INLINE hn::VFromD<D> IndicesOf(ToTruncated<Src>, D d, hn::VFromD<D> words) {
  return MovedFieldsOf<ToTruncated<Src>>(d, words);
}

// How many whole levels a channel reaches: with the channel at the top of a 16-bit lane, the upper
// half of its product with the number of levels.
template <class Channel, class D16>
HWY_INLINE hn::VFromD<D16> LevelOf(D16 d, hn::VFromD<D16> words, uint32_t levels) {
  constexpr MovedBits kToTop = MoveField<Field<8, 8>, Channel>();
  return hn::MulHigh(MovedBitsOf<kToTop.shift, kToTop.mask>(d, words),
                     hn::Set(d, uint16_t(levels)));
}

template <PackedFields Src, class D16>
HWY_INLINE hn::VFromD<D16> IndicesOf(ToCube<Src>, D16 d, hn::VFromD<D16> words) {
  const auto red = LevelOf<typename Src::Red>(d, words, kCubeReds);
  const auto green = LevelOf<typename Src::Green>(d, words, kCubeGreens);
  const auto blue = LevelOf<typename Src::Blue>(d, words, kCubeBlues);
  const auto red_green =
      hn::Add(hn::Mul(red, hn::Set(d, uint16_t(kCubeGreens))), green);  // rows of the cube
  return hn::Add(hn::Mul(red_green, hn::Set(d, uint16_t(kCubeBlues))), blue);
}

// The same with two channels to a word: bytes 0 and 2, in the roles of red and blue, then byte 1,
// green, whose neighbour, the top byte, counts nothing.
template <class Src, class D32>
HWY_INLINE hn::VFromD<D32> IndicesOf(ToCube<Src>, D32 d, hn::VFromD<D32> words) {
  const hn::Repartition<uint16_t, D32> d16;
  const hn::Repartition<int16_t, D32> di16;
  const hn::Repartition<int32_t, D32> di32;
  const auto pair = [&](uint32_t low, uint32_t high)
                        HWY_ATTR { return hn::BitCast(d16, hn::Set(d, low | high << 16)); };
  const auto weighted = [&](auto levels, auto weights) HWY_ATTR {
    return hn::WidenMulPairwiseAdd(di32, hn::BitCast(di16, levels), hn::BitCast(di16, weights));
  };
  const auto channels = hn::BitCast(d16, words);
  const auto red_blue = hn::MulHigh(hn::ShiftLeft<8>(channels), pair(kCubeReds, kCubeBlues));
  const auto green = hn::MulHigh(hn::And(channels, hn::Set(d16, 0xFF00)), pair(kCubeGreens, 0));
  return hn::BitCast(d, hn::Add(weighted(red_blue, pair(kCubeGreens * kCubeBlues, 1)),
                                weighted(green, pair(kCubeBlues, 0))));
}

template <class Formula>
struct ReduceKernel {
  using Src = typename Formula::Src;
  using Fields = FieldsOf<Src>;
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1, kSrcBytes = Src::kBytes;
  uint32_t hidden;
  uint32_t value;  // `hidden` as it stands in a source word

  HWY_INLINE explicit ReduceKernel(uint32_t hidden_colour)
      : hidden(hidden_colour), value(MovedFields<Fields, ByteFields>::Of(hidden_colour)) {}

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (PackedFields<Src>) {
      const HalfWordTag<D> d16;
      const auto* words = reinterpret_cast<const uint16_t*>(src);
      const HalfWords<D> indices{VisibleIndices(d16, hn::LoadU(d16, words)),
                                 VisibleIndices(d16, hn::LoadU(d16, words + hn::MaxLanes(d16)))};
      hn::StoreU(LowBytes(d, indices), d, dst);
    } else {
      const auto indices = ForEachVector(d, LoadWords<kSrcBytes>(d, src), [&](auto words) HWY_ATTR {
        return VisibleIndices(WordTag<D>(), words);
      });
      hn::StoreU(LowBytes(d, indices), d, dst);
    }
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    ReducePixel<Formula>(dst, src, hidden);
  }

 private:
  template <class D>
  HWY_INLINE hn::VFromD<D> VisibleIndices(D d, hn::VFromD<D> words) const {
    using T = hn::TFromD<D>;
    constexpr T kMask = T(MovedFields<Fields, Fields>::Of(~0u));
    const auto indices = IndicesOf(Formula(), d, words);
    if (hidden == kHidesNothing) return indices;
    const auto is_hidden = hn::Eq(hn::And(words, hn::Set(d, kMask)), hn::Set(d, T(value)));
    return hn::IfThenZeroElse(is_hidden, indices);
  }
};

template <class Formula>
void ReduceAll(const SourceRows& rows, uint32_t hidden) {
  RepeatableRows(ReduceKernel<Formula>(hidden), rows);
}

template <class... Formulas>
HWY_INLINE void ReduceByOneOf(FormulaList<Formulas...>, size_t formula, const SourceRows& rows,
                              uint32_t hidden) {
  static constexpr void (*kReduce[])(const SourceRows&, uint32_t) = {&ReduceAll<Formulas>...};
  kReduce[formula](rows, hidden);
}

void ReduceRows(size_t formula, const SourceRows& rows, uint32_t hidden) {
  ReduceByOneOf(Reductions{}, formula, rows, hidden);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(ReduceRows);

void ReduceRows(size_t formula, const SourceRows& rows, uint32_t hidden) {
  HWY_DYNAMIC_DISPATCH(ReduceRows)(formula, rows, hidden);
}

}  // namespace pincel
#endif  // HWY_ONCE
