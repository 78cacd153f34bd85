// What mixing does to one pixel. Every weight counts in 256ths of the source.
#ifndef MIX_MIX_PIXEL_H_
#define MIX_MIX_PIXEL_H_

#include "surface/pixel_format.h"

namespace pincel {

// One byte channel: d + floor((s - d) * weight / 256), weight 0 to 256.
constexpr uint8_t MixByte(int d, int s, int weight) {
  return uint8_t((d * 256 + (s - d) * weight) >> 8);
}

// One field: the same formula, cut to the field. A weight above 256 overshoots and wraps; only the
// product's low 16 bits can reach the field.
template <class F>
constexpr uint32_t MixField(uint32_t d, uint32_t s, uint32_t weight) {
  const uint32_t from = F::Get(d), to = F::Get(s);
  return F::Put(from + (((to - from) * weight) >> 8));
}
// All fields of a 16-bit pixel; bits that belong to none become 0.
template <class Format>
constexpr uint16_t MixFields(uint32_t d, uint32_t s, uint32_t weight) {
  return uint16_t(MixField<typename Format::Blue>(d, s, weight) |
                  MixField<typename Format::Green>(d, s, weight) |
                  MixField<typename Format::Red>(d, s, weight));
}

// The levels 64, 128 and 192 have shift-and-mask kernels: each term is cut on its own, so that the
// result differs from the general formula. Intended. `quarters` is the source's share: 1, 2 or 3.
constexpr bool IsQuarters(unsigned level) { return level == 64 || level == 128 || level == 192; }

// Masks of a word for fields that were shifted right by one and by two.
template <class Format>
constexpr uint32_t kColourMask = Format::Blue::kMask | Format::Green::kMask | Format::Red::kMask;
template <class F>
constexpr uint32_t kHalfField = F::kMask&(F::kMask >> 1);
template <class F>
constexpr uint32_t kQuarterField = F::kMask&(F::kMask >> 2);
template <class Format>
constexpr uint32_t kHalfMask =
    kHalfField<typename Format::Blue> | kHalfField<typename Format::Green> |
    kHalfField<typename Format::Red>;
template <class Format>
constexpr uint32_t kQuarterMask =
    kQuarterField<typename Format::Blue> | kQuarterField<typename Format::Green> |
    kQuarterField<typename Format::Red>;
static_assert(kHalfMask<Rgb565> == 0x7BEF && kQuarterMask<Rgb565> == 0x39E7);
static_assert(kHalfMask<Rgb555> == 0x3DEF && kQuarterMask<Rgb555> == 0x1CE7);
static_assert(kHalfMask<Argb4444> == 0x0777 && kQuarterMask<Argb4444> == 0x0333);

// Any word of channels: `half` and `quarter` are its masks.
constexpr uint32_t MixQuarters(uint32_t d, uint32_t s, int quarters, uint32_t half,
                               uint32_t quarter) {
  switch (quarters) {
    case 3:
      return ((s >> 1) & half) + ((s >> 2) & quarter) + ((d >> 2) & quarter);
    case 2:
      return ((s >> 1) & half) + ((d >> 1) & half);
    default:
      return ((d >> 1) & half) + ((d >> 2) & quarter) + ((s >> 2) & quarter);
  }
}

// Pixels in groups of four sum green and red before they cut, blue after; the pixels at the end of
// a row and those of a palette cut every term. Results differ by one. Intended.
template <class F>
constexpr uint32_t MixQuartersOfField(uint32_t d, uint32_t s, int quarters) {
  d &= F::kMask;
  s &= F::kMask;
  switch (quarters) {
    case 3:
      return ((s >> 1) + (s >> 2) + (d >> 2)) & F::kMask;
    case 2:
      return ((s >> 1) + (d >> 1)) & F::kMask;
    default:
      return ((d >> 1) + (d >> 2) + (s >> 2)) & F::kMask;
  }
}
template <class Format>
constexpr uint16_t MixQuartersInGroup(uint32_t d, uint32_t s, int quarters) {
  using Blue = typename Format::Blue;
  return uint16_t(MixQuarters(d, s, quarters, kHalfField<Blue>, kQuarterField<Blue>) |
                  MixQuartersOfField<typename Format::Green>(d, s, quarters) |
                  MixQuartersOfField<typename Format::Red>(d, s, quarters));
}
// At level 128 the end of a row of 555 or 4444 uses the quarter mask for its halves and so loses
// their top bits. Intended.
template <class Format>
constexpr bool kRowEndHalvesLoseTopBit = Format::Green::kWidth < 6;
template <class Format>
constexpr uint16_t MixQuartersAtRowEnd(uint32_t d, uint32_t s, int quarters) {
  const uint32_t half =
      quarters == 2 && kRowEndHalvesLoseTopBit<Format> ? kQuarterMask<Format> : kHalfMask<Format>;
  return uint16_t(MixQuarters(d, s, quarters, half, kQuarterMask<Format>));
}

// Mixing through a mask: what a coverage or alpha byte means.
struct MaskRule {
  // The byte is scaled first: (byte * level / 256) mod 256; 256 keeps it.
  uint32_t level = 256;
  // Then 0 keeps the destination and 255 copies the source; anything between mixes with the byte
  // plus this as weight.
  uint32_t added = 0;

  constexpr uint32_t Scaled(uint32_t byte) const { return (byte * level >> 8) & 255; }
  // The weight where keeping and copying need no case of their own.
  constexpr int ByteWeight(uint32_t byte) const {
    const uint32_t scaled = Scaled(byte);
    return scaled == 0 ? 0 : scaled == 255 ? 256 : int(scaled + added);
  }
};

template <class Format>
constexpr uint16_t MixFieldsMasked(uint32_t d, uint32_t s, uint32_t byte, MaskRule rule) {
  const uint32_t scaled = rule.Scaled(byte);
  if (scaled == 0) return uint16_t(d);
  if (scaled == 255) return uint16_t(s);
  return MixFields<Format>(d, s, scaled + rule.added);
}

}  // namespace pincel

#endif  // MIX_MIX_PIXEL_H_
