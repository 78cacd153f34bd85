// What a brightness shift does to one pixel.
#ifndef DRAW_TRANSFORM_PIXEL_H_
#define DRAW_TRANSFORM_PIXEL_H_

#include <algorithm>

#include "surface/pixel_format.h"

namespace pincel {

// A saturating shift: one of the two is 0.
struct ByteShift {
  uint8_t up, down;

  // Of the shift only the low byte counts, up or down by its sign; down is one step weaker. Intended.
  static constexpr ByteShift OneWeakerDown(int32_t shift) {
    const uint8_t low_byte = uint8_t(shift);
    if (shift >= 0) return {low_byte, 0};
    return {0, uint8_t(255 - low_byte)};
  }
  constexpr uint8_t operator()(uint8_t byte) const {
    return uint8_t(std::max(std::min(byte + up, 255) - down, 0));
  }
};

// The bits of a field that a shift on five bits moves, as a field of five bits or less: the lowest
// bit of 565's green is cleared. Intended.
template <class Channel>
using ShiftedField = Field<Channel::kLow + (Channel::kWidth > 5 ? Channel::kWidth - 5 : 0),
                           (Channel::kWidth > 5 ? 5 : Channel::kWidth)>;

// A field as a number of five bits, moved and put back. 4444 doubles its fields and halves the sum.
template <class Channel>
constexpr uint32_t ShiftField(uint32_t word, int32_t shift) {
  using Shifted = ShiftedField<Channel>;
  constexpr int kDoubled = 5 - Shifted::kWidth;
  const int32_t five_bits = int32_t(Shifted::Get(word) << kDoubled);
  return Shifted::Put(uint32_t(std::clamp(five_bits + shift, 0, 31)) >> kDoubled);
}

// `shift` is from -31 to 31: larger ones would not change more. Alpha bits are kept.
template <class Format>
constexpr uint16_t ShiftFields(uint16_t word, int32_t shift) {
  return uint16_t(ShiftField<typename Format::Blue>(word, shift) |
                  ShiftField<typename Format::Green>(word, shift) |
                  ShiftField<typename Format::Red>(word, shift) | (word & Format::Alpha::kMask));
}

static_assert(ShiftFields<Rgb565>(0xFFFF, 0) == 0xFFDF);
static_assert(ShiftFields<Argb4444>(0xF08F, -1) == 0xF07E);
static_assert(ByteShift::OneWeakerDown(-255)(255) == 1 && ByteShift::OneWeakerDown(255)(7) == 255);

}  // namespace pincel

#endif  // DRAW_TRANSFORM_PIXEL_H_
