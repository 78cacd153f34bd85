// Per-target: groups of pixels as 32-bit words. A group is as many pixels as a vector has bytes, held
// in four vectors of words, so that it fills whole vectors at every pixel size.
#if defined(SURFACE_PIXELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef SURFACE_PIXELS_INL_H_
#undef SURFACE_PIXELS_INL_H_
#else
#define SURFACE_PIXELS_INL_H_
#endif

#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class D8>
using WordTag = hn::Repartition<uint32_t, D8>;

template <class D8>
using HalfWordTag = hn::Repartition<uint16_t, D8>;

template <class D8>
struct Words {
  hn::VFromD<WordTag<D8>> v0, v1, v2, v3;
};
template <class D8>
struct HalfWords {
  hn::VFromD<HalfWordTag<D8>> v0, v1;
};

// The same function of words applied to a whole group.
template <class D8, class Function>
HWY_INLINE Words<D8> ForEachVector(D8, const Words<D8>& words, Function&& function) {
  return {function(words.v0), function(words.v1), function(words.v2), function(words.v3)};
}

// Loads Lanes(d8) pixels of `bytes` bytes (2 to 4). At 3 bytes the top byte of each word is the byte
// that follows the pixel; that of the group's last pixel only when `following` is true: it may lie
// outside the surface.
template <int bytes, bool following = false, class D8>
Words<D8> LoadWords(D8 d8, const uint8_t* src);

// Stores the low `bytes` bytes (1 to 4) of each word.
template <int bytes, class D8>
void StoreWords(D8 d8, const Words<D8>& words, uint8_t* dst);

// The lowest byte of each lane of a group in words, or of one in two vectors of half words.
template <class D8>
hn::VFromD<D8> LowBytes(D8 d8, const Words<D8>& words);
template <class D8>
hn::VFromD<D8> LowBytes(D8 d8, const HalfWords<D8>& words);

// Joins planes of bytes, lowest first. Works within blocks of 16 bytes: pixel p of block b comes out
// where the order `BlockOrder` has put it.
template <class D8>
HalfWords<D8> JoinPlanes(D8 d8, hn::VFromD<D8> b0, hn::VFromD<D8> b1);
template <class D8>
Words<D8> JoinPlanes(D8 d8, hn::VFromD<D8> b0, hn::VFromD<D8> b1, hn::VFromD<D8> b2,
                     hn::VFromD<D8> b3);

// Puts the bytes of planes to be joined into the order in which the joined vectors come out right;
// Unit is four bytes for words, eight for half words.
template <class Unit, class D8>
hn::VFromD<D8> BlockOrder(D8 d8, hn::VFromD<D8> plane);

// `v` plus `step` in the lanes of the mask.
template <class D>
HWY_INLINE hn::VFromD<D> AddWhere(D, hn::MFromD<D> mask, hn::VFromD<D> v, hn::VFromD<D> step) {
  if constexpr (HWY_TARGET <= HWY_AVX3) {
    return hn::MaskedAddOr(v, mask, v, step);
  } else {
    return hn::Add(v, hn::IfThenElseZero(mask, step));
  }
}

#if HWY_TARGET != HWY_SCALAR  // nothing is instantiated where there are no vectors

template <class T, size_t size>
struct Table {
  alignas(64) T at[size];
};

template <class T, size_t size, class Entry>
constexpr Table<T, size> MakeTable(Entry entry) {
  Table<T, size> table{};
  for (size_t i = 0; i < size; ++i) table.at[i] = T(entry(i));
  return table;
}

// Spreads the triples that start at byte `first` of a vector over words: b g r b' | b' g' r' b" ...
// The top byte of each word is the byte that follows the triple.
template <size_t first, class D8, class V = hn::VFromD<D8>>
HWY_INLINE hn::VFromD<WordTag<D8>> SpreadTriples(D8 d8, V bytes) {
  constexpr size_t kSize = hn::MaxLanes(D8());
  const WordTag<D8> d32;
  if constexpr (!kHaveByteShuffle) {
    const auto p0 = hn::ShiftRightBytes<first>(d8, bytes);
    const auto p1 = hn::ShiftRightBytes<first + 3>(d8, bytes);
    const auto p2 = hn::ShiftRightBytes<first + 6>(d8, bytes);
    const auto p3 = hn::ShiftRightBytes<first + 9>(d8, bytes);
    const hn::Repartition<uint64_t, D8> d64;
    const auto low = hn::InterleaveLower(d32, hn::BitCast(d32, p0), hn::BitCast(d32, p1));
    const auto high = hn::InterleaveLower(d32, hn::BitCast(d32, p2), hn::BitCast(d32, p3));
    return hn::BitCast(d32,
                       hn::InterleaveLower(d64, hn::BitCast(d64, low), hn::BitCast(d64, high)));
  } else if constexpr (kHaveByteTables && kSize > 16) {
    static constexpr auto kFrom = MakeTable<uint8_t, kSize>(
        [](size_t i) { return HWY_MIN(first + i / 4 * 3 + i % 4, kSize - 1); });
    return hn::BitCast(d32, hn::TableLookupLanes(bytes, hn::SetTableIndices(d8, kFrom.at)));
  } else {
    // The twelve bytes of four pixels go to each block of 16, then every triple to its word.
    auto blocks = bytes;
    if constexpr (kSize > 16) {
      static constexpr auto kFrom = MakeTable<uint32_t, kSize / 4>(
          [](size_t i) { return HWY_MIN(first / 4 + i / 4 * 3 + i % 4, kSize / 4 - 1); });
      blocks = hn::BitCast(
          d8, hn::TableLookupLanes(hn::BitCast(d32, bytes), hn::SetTableIndices(d32, kFrom.at)));
    }
    constexpr size_t kFirst = kSize > 16 ? first % 4 : first;
    static constexpr auto kByte = MakeTable<uint8_t, kSize>(
        [](size_t i) { return HWY_MIN(kFirst + i % 16 / 4 * 3 + i % 4, size_t{15}); });
    return hn::BitCast(d32, hn::TableLookupBytes(blocks, hn::Load(d8, kByte.at)));
  }
}

// The low three bytes of every word, at the bottom of the vector; the rest is undefined.
template <class D8, class V = hn::VFromD<WordTag<D8>>>
HWY_INLINE hn::VFromD<D8> GatherTriples(D8 d8, V words) {
  constexpr size_t kSize = hn::MaxLanes(D8());
  const WordTag<D8> d32;
  if constexpr (!kHaveByteShuffle) {
    const hn::Repartition<uint64_t, D8> d64;
    const auto pairs = hn::BitCast(d64, words);
    const auto first = hn::And(pairs, hn::Set(d64, 0xFFFFFF));
    const auto second = hn::And(hn::ShiftRight<8>(pairs), hn::Set(d64, uint64_t{0xFFFFFF} << 24));
    const auto sixes = hn::BitCast(d8, hn::Or(first, second));
    const auto high = hn::InterleaveUpper(d64, hn::Zero(d64), hn::BitCast(d64, sixes));
    const auto low = hn::InterleaveLower(d64, hn::BitCast(d64, sixes), hn::Zero(d64));
    return hn::Or(hn::BitCast(d8, low), hn::ShiftRightBytes<2>(d8, hn::BitCast(d8, high)));
  } else {
    static constexpr auto kByte = MakeTable<uint8_t, kSize>(
        [](size_t i) { return i % 16 < 12 ? i % 16 / 3 * 4 + i % 16 % 3 : 0x80; });
    const auto blocks = hn::TableLookupBytes(hn::BitCast(d8, words), hn::Load(d8, kByte.at));
    if constexpr (kSize == 16) return blocks;
    static constexpr auto kFrom = MakeTable<uint32_t, kSize / 4>(
        [](size_t i) { return HWY_MIN(i / 3 * 4 + i % 3, kSize / 4 - 1); });
    return hn::BitCast(
        d8, hn::TableLookupLanes(hn::BitCast(d32, blocks), hn::SetTableIndices(d32, kFrom.at)));
  }
}

// The low three bytes of every word of a group: one of the three vectors that they fill, from the two
// vectors of words that it takes.
template <size_t third, class D8, class V = hn::VFromD<WordTag<D8>>>
HWY_INLINE hn::VFromD<D8> GatherThird(D8 d8, V first, V second) {
  constexpr size_t kSize = hn::MaxLanes(D8());
  static constexpr auto kFrom = MakeTable<uint8_t, kSize>([](size_t i) {
    const size_t byte = third * kSize + i;
    return byte / 3 * 4 + byte % 3 - third * kSize;
  });
  return hn::TwoTablesLookupLanes(d8, hn::BitCast(d8, first), hn::BitCast(d8, second),
                                  hn::SetTableIndices(d8, kFrom.at));
}

template <int bytes, bool following, class D8>
HWY_INLINE Words<D8> LoadWords(D8 d8, const uint8_t* HWY_RESTRICT src) {
  const WordTag<D8> d32;
  constexpr size_t kSize = hn::MaxLanes(D8());
  if constexpr (bytes == 2) {
    const hn::Rebind<uint16_t, decltype(d32)> d16;
    const auto load = [&](size_t i) HWY_ATTR {
      const auto* from = reinterpret_cast<const uint16_t*>(src + i * (kSize / 2));
      return hn::PromoteTo(d32, hn::LoadU(d16, from));
    };
    return {load(0), load(1), load(2), load(3)};
  } else if constexpr (bytes == 3) {
    // Whole vectors, the last one moved back so that it ends with the group.
    constexpr size_t kStep = kSize / 4 * 3, kEnd = following ? 1 : 0;
    return {SpreadTriples<0>(d8, hn::LoadU(d8, src)),
            SpreadTriples<0>(d8, hn::LoadU(d8, src + kStep)),
            SpreadTriples<0>(d8, hn::LoadU(d8, src + 2 * kStep)),
            SpreadTriples<kSize / 4 - kEnd>(d8, hn::LoadU(d8, src + 2 * kSize + kEnd))};
  } else {
    const auto load = [&](size_t i) HWY_ATTR {
      return hn::LoadU(d32, reinterpret_cast<const uint32_t*>(src + i * kSize));
    };
    return {load(0), load(1), load(2), load(3)};
  }
}

template <class D8>
HWY_INLINE hn::VFromD<D8> LowBytes(D8 d8, const HalfWords<D8>& words) {
  return hn::OrderedTruncate2To(d8, words.v0, words.v1);
}
template <class D8>
HWY_INLINE hn::VFromD<D8> LowBytes(D8 d8, const Words<D8>& words) {
  const HalfWordTag<D8> d16;
  return LowBytes(d8, HalfWords<D8>{hn::OrderedTruncate2To(d16, words.v0, words.v1),
                                    hn::OrderedTruncate2To(d16, words.v2, words.v3)});
}

template <int bytes, class D8>
HWY_INLINE void StoreWords(D8 d8, const Words<D8>& words, uint8_t* HWY_RESTRICT dst) {
  const WordTag<D8> d32;
  const HalfWordTag<D8> d16;
  constexpr size_t kSize = hn::MaxLanes(D8());
  if constexpr (bytes == 1) {
    hn::StoreU(LowBytes(d8, words), d8, dst);
  } else if constexpr (bytes == 2) {
    const auto low = hn::OrderedTruncate2To(d16, words.v0, words.v1);
    const auto high = hn::OrderedTruncate2To(d16, words.v2, words.v3);
    hn::StoreU(hn::BitCast(d8, low), d8, dst);
    hn::StoreU(hn::BitCast(d8, high), d8, dst + kSize);
  } else if constexpr (bytes == 3 && kHaveByteTables) {
    hn::StoreU(GatherThird<0>(d8, words.v0, words.v1), d8, dst);
    hn::StoreU(GatherThird<1>(d8, words.v1, words.v2), d8, dst + kSize);
    hn::StoreU(GatherThird<2>(d8, words.v2, words.v3), d8, dst + 2 * kSize);
  } else if constexpr (bytes == 3) {
    constexpr size_t kStep = kSize / 4 * 3;
    hn::StoreU(GatherTriples(d8, words.v0), d8,
               dst);  // each store covers the rest of the one before
    hn::StoreU(GatherTriples(d8, words.v1), d8, dst + kStep);
    hn::StoreU(GatherTriples(d8, words.v2), d8, dst + 2 * kStep);
    const hn::Half<D8> half;
    const hn::Half<decltype(half)> quarter;
    const auto last = GatherTriples(d8, words.v3);
    hn::StoreU(hn::LowerHalf(half, last), half, dst + 3 * kStep);
    hn::StoreU(hn::LowerHalf(quarter, hn::UpperHalf(half, last)), quarter,
               dst + 3 * kStep + kSize / 2);
  } else {
    const auto store = [&](size_t i, auto v) HWY_ATTR {
      hn::StoreU(v, d32, reinterpret_cast<uint32_t*>(dst + i * kSize));
    };
    store(0, words.v0);
    store(1, words.v1);
    store(2, words.v2);
    store(3, words.v3);
  }
}

template <class D8>
HWY_INLINE HalfWords<D8> JoinPlanes(D8 d8, hn::VFromD<D8> b0, hn::VFromD<D8> b1) {
  const HalfWordTag<D8> d16;
  return {hn::BitCast(d16, hn::InterleaveLower(d8, b0, b1)),
          hn::BitCast(d16, hn::InterleaveUpper(d8, b0, b1))};
}
template <class D8>
HWY_INLINE Words<D8> JoinPlanes(D8 d8, hn::VFromD<D8> b0, hn::VFromD<D8> b1, hn::VFromD<D8> b2,
                                hn::VFromD<D8> b3) {
  const HalfWordTag<D8> d16;
  const WordTag<D8> d32;
  const HalfWords<D8> low = JoinPlanes(d8, b0, b1), high = JoinPlanes(d8, b2, b3);
  return {hn::BitCast(d32, hn::InterleaveLower(d16, low.v0, high.v0)),
          hn::BitCast(d32, hn::InterleaveUpper(d16, low.v0, high.v0)),
          hn::BitCast(d32, hn::InterleaveLower(d16, low.v1, high.v1)),
          hn::BitCast(d32, hn::InterleaveUpper(d16, low.v1, high.v1))};
}

template <class Unit, class D8>
HWY_INLINE hn::VFromD<D8> BlockOrder(D8 d8, hn::VFromD<D8> plane) {
  constexpr size_t kBlocks = hn::MaxLanes(D8()) / 16, kVectors = 16 / sizeof(Unit);
  if constexpr (kBlocks == 1) {
    return plane;
  } else {
    const hn::Repartition<Unit, D8> units;
    static constexpr auto kFrom = MakeTable<Unit, kBlocks * kVectors>(
        [](size_t i) { return i % kVectors * kBlocks + i / kVectors; });
    return hn::BitCast(
        d8, hn::TableLookupLanes(hn::BitCast(units, plane), hn::SetTableIndices(units, kFrom.at)));
  }
}

// Mask bytes as 16-bit numbers, each for both halves of its pixel's word: m 0 m 0.
template <class D, class V = hn::VFromD<D>>
HWY_INLINE V LoadWeights(D d, const uint8_t* mask) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  if constexpr (kHaveByteShuffle && kLanes >= 4) {
    // Every block of 16 bytes gets all mask bytes and picks its own four.
    const hn::Repartition<uint8_t, D> d8;
    static constexpr auto kFrom =
        MakeTable<uint8_t, kLanes * 4>([](size_t i) { return i % 2 == 0 ? i / 4 : 0x80; });
    hn::VFromD<decltype(d8)> bytes;
    if constexpr (kLanes == 16) {
      bytes = hn::LoadDup128(d8, mask);
    } else if constexpr (kLanes == 8) {
      bytes = hn::BitCast(d8, hn::Set(hn::Repartition<uint64_t, D>(), LoadWord<uint64_t>(mask)));
    } else {
      bytes = hn::BitCast(d8, hn::Set(d, LoadWord<uint32_t>(mask)));
    }
    return hn::BitCast(d, hn::TableLookupBytesOr0(bytes, hn::Load(d8, kFrom.at)));
  } else {
    const V m = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
    return hn::Or(m, hn::ShiftLeft<16>(m));
  }
}

// Every byte three times, for the channels of 24-bit pixels: one of the three vectors that they fill.
template <size_t third, class D8, class V = hn::VFromD<D8>>
HWY_INLINE V RepeatThreeTimes(D8 d8, V bytes) {
  constexpr size_t kSize = hn::MaxLanes(D8());
  constexpr auto source = [](size_t i) { return (third * kSize + i) / 3; };
  if constexpr (kHaveByteTables && kSize > 16) {
    static constexpr auto kFrom = MakeTable<uint8_t, kSize>(source);
    return hn::TableLookupLanes(bytes, hn::SetTableIndices(d8, kFrom.at));
  } else {
    // The words that hold what a block of 16 bytes needs go to that block first.
    constexpr auto first_word = [=](size_t i) {
      return kSize > 16 ? source(i & ~size_t{15}) / 4 : 0;
    };
    auto blocks = bytes;
    if constexpr (kSize > 16) {
      const WordTag<D8> d32;
      static constexpr auto kWord = MakeTable<uint32_t, kSize / 4>(
          [=](size_t i) { return HWY_MIN(first_word(4 * i) + i % 4, kSize / 4 - 1); });
      blocks = hn::BitCast(
          d8, hn::TableLookupLanes(hn::BitCast(d32, bytes), hn::SetTableIndices(d32, kWord.at)));
    }
    static constexpr auto kByte =
        MakeTable<uint8_t, kSize>([=](size_t i) { return source(i) - 4 * first_word(i); });
    return hn::TableLookupBytes(blocks, hn::Load(d8, kByte.at));
  }
}

// Three vectors of 24-bit pixels, or what belongs to their bytes.
template <class V>
struct Thirds {
  V v0, v1, v2;
};
template <class D8>
HWY_INLINE Thirds<hn::VFromD<D8>> LoadThirds(D8 d8, const uint8_t* p) {
  constexpr size_t kSize = hn::MaxLanes(D8());
  return {LoadPixels(d8, p), LoadPixels(d8, p + kSize), LoadPixels(d8, p + 2 * kSize)};
}

// The bytes of those 24-bit pixels that equal the pixel repeated in `key`.
template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE Thirds<hn::MFromD<D8>> EqualTriples(D8 d8, const Thirds<V>& pixels, const uint8_t* key) {
  constexpr size_t kSize = hn::MaxLanes(D8());
  const auto equal = [&](size_t third, V bytes) HWY_ATTR {
    uint8_t bits[8] = {};
    hn::StoreMaskBits(d8, hn::Eq(bytes, hn::LoadU(d8, key + third * kSize)), bits);
    return LoadWord<uint64_t>(bits);
  };
  const uint64_t e0 = equal(0, pixels.v0), e1 = equal(1, pixels.v1), e2 = equal(2, pixels.v2);
  // A bit for the first byte of each pixel that has all three; in the second vector that is every
  // third byte from kPhase1 on.
  constexpr uint64_t kFirst = 0x9249249249249249;
  const auto first = [](uint64_t low, uint64_t high, size_t phase) {
    const uint64_t second = low >> 1 | high << (kSize - 1);
    const uint64_t third = low >> 2 | high << (kSize - 2);
    return low & second & third & (kFirst << phase);
  };
  constexpr size_t kPhase1 = 2 * kSize % 3, kPhase2 = kSize % 3;
  static_assert((kSize + kPhase1) % 3 == 0 && (2 * kSize + kPhase2) % 3 == 0);
  const uint64_t f0 = first(e0, e1, 0), f1 = first(e1, e2, kPhase1), f2 = first(e2, 0, kPhase2);
  // Back to three bytes each. The last pixel has its last kPhase1 (1 or 2) bytes in the next vector.
  // Bits from kSize on are not read.
  const uint64_t rest_0 = (f0 >> (kSize - 3 + kPhase1)) * (2 * kPhase1 - 1);
  const uint64_t rest_1 = (f1 >> (kSize - 3 + kPhase2)) * (2 * kPhase2 - 1);
  const auto mask = [&](uint64_t bits) HWY_ATTR {
    return hn::LoadMaskBits(d8, reinterpret_cast<uint8_t*>(&bits));
  };
  return {mask(f0 * 7), mask(f1 * 7 | rest_0), mask(f2 * 7 | rest_1)};
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
