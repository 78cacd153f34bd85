// Pixels of one layout in another: which bits of a word move where.
#ifndef SURFACE_MOVED_FIELDS_H_
#define SURFACE_MOVED_FIELDS_H_

#include <array>

#include "surface/pixel_format.h"

namespace pincel {

// The channels of a 24- or 32-bit pixel as a word 0xAARRGGBB; also those of a palette entry.
struct ByteFields {
  using Blue = Field<0, 8>;
  using Green = Field<8, 8>;
  using Red = Field<16, 8>;
  using Alpha = Field<24, 8>;
};

template <class Format>
struct FieldsOfFormat {
  using Type = ByteFields;
};
template <PackedFields Format>
struct FieldsOfFormat<Format> {
  using Type = Format;
};
template <class Format>
using FieldsOf = typename FieldsOfFormat<Format>::Type;

// Bits of a word that move together: up by `shift` (down when negative), then masked.
struct MovedBits {
  int shift;
  uint32_t mask;
  constexpr uint32_t Of(uint32_t word) const {
    return (shift >= 0 ? word << shift : word >> -shift) & mask;
  }
};

// Moves the top bits of field From to the top of field To: truncated, or widened with zero low bits.
template <class To, class From>
constexpr MovedBits MoveField() {
  const int shift = To::kLow + To::kWidth - From::kLow - From::kWidth;
  return {shift, To::kMask & MovedBits{shift, ~0u}.Of(From::kMask)};
}

// Where the alpha bits of the result come from: constant bits, or the source's alpha field.
template <uint32_t bits>
struct AlphaBits {
  static constexpr uint32_t kBits = bits;
  static constexpr bool kFromSource = false;
};
using NoAlpha = AlphaBits<0>;
struct AlphaOfSource {
  static constexpr uint32_t kBits = 0;
  static constexpr bool kFromSource = true;
};

// A pixel of one layout in another.
template <class To, class From, class Alpha = NoAlpha>
struct MovedFields {
  // The moves of all fields; those by the same distance are one.
  static constexpr std::array<MovedBits, 4> kMoves = [] {
    std::array<MovedBits, 4> moves = {MoveField<typename To::Blue, typename From::Blue>(),
                                      MoveField<typename To::Green, typename From::Green>(),
                                      MoveField<typename To::Red, typename From::Red>(),
                                      MoveField<typename To::Alpha, typename From::Alpha>()};
    if (!Alpha::kFromSource) moves[3].mask = 0;
    for (size_t i = 1; i < moves.size(); ++i) {
      for (size_t j = 0; j < i; ++j) {
        if (moves[j].shift != moves[i].shift) continue;
        moves[j].mask |= moves[i].mask;
        moves[i].mask = 0;
      }
    }
    return moves;
  }();
  static constexpr uint32_t kBits = Alpha::kBits;

  static constexpr uint32_t Of(uint32_t word) {
    uint32_t result = kBits;
    for (const MovedBits& move : kMoves) result |= move.Of(word);
    return result;
  }
};

}  // namespace pincel

#endif  // SURFACE_MOVED_FIELDS_H_
