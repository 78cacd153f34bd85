// The seven blend formulas and what a blend does to one pixel.
#ifndef BLEND_BLEND_PIXEL_H_
#define BLEND_BLEND_PIXEL_H_

#include <algorithm>

#include "surface/pixel_format.h"

namespace pincel {

// A formula combines a channel of the destination, a, with one of the source, b, both 0..255.
//   Bytes   for 24- and 32-bit pixels
//   Fields  for 16-bit pixels, whose fields stand at the top of a byte
// The two differ in Screen and Overlay: bytes shift right by 8 or 7, fields divide by 255. Intended.
//   kBlendsFourthByte  whether the fourth byte of 32-bit pixels is a channel like the others; the
//                      other formulas keep the destination's. Intended.
//   kSourceInWeight    see InterpolateByte

struct Add {
  static constexpr bool kBlendsFourthByte = true, kSourceInWeight = true;
  static constexpr int Bytes(int a, int b) { return std::min(a + b, 255); }
  static constexpr int Fields(int a, int b) { return Bytes(a, b); }
};

struct Subtract {
  static constexpr bool kBlendsFourthByte = true, kSourceInWeight = true;
  static constexpr int Bytes(int a, int b) { return std::max(a - b, 0); }
  static constexpr int Fields(int a, int b) { return Bytes(a, b); }
};

struct Multiply {
  static constexpr bool kBlendsFourthByte = true, kSourceInWeight = false;
  // A shift in both families: 255 by 255 gives 254. Intended.
  static constexpr int Bytes(int a, int b) { return (a * b) >> 8; }
  static constexpr int Fields(int a, int b) { return Bytes(a, b); }
};

struct Screen {
  static constexpr bool kBlendsFourthByte = true, kSourceInWeight = false;
  static constexpr int Bytes(int a, int b) { return 255 - (((255 - a) * (255 - b)) >> 8); }
  static constexpr int Fields(int a, int b) { return 255 - (255 - a) * (255 - b) / 255; }
};

struct Lighten {
  static constexpr bool kBlendsFourthByte = false, kSourceInWeight = false;
  static constexpr int Bytes(int a, int b) { return std::max(a, b); }
  static constexpr int Fields(int a, int b) { return Bytes(a, b); }
};

struct Darken {
  static constexpr bool kBlendsFourthByte = false, kSourceInWeight = false;
  static constexpr int Bytes(int a, int b) { return std::min(a, b); }
  static constexpr int Fields(int a, int b) { return Bytes(a, b); }
};

// The destination decides between multiplying and screening.
struct Overlay {
  static constexpr bool kBlendsFourthByte = false, kSourceInWeight = false;
  static constexpr int Bytes(int a, int b) {
    return a < 128 ? (a * b) >> 7 : 255 - (((255 - a) * (255 - b)) >> 7);
  }
  static constexpr int Fields(int a, int b) {
    return a < 128 ? 2 * a * b / 255 : 255 - 2 * (255 - a) * (255 - b) / 255;
  }
};

// How far a channel goes from d towards its blended value t at weight m of a mask, 0..255.

// Bytes, modulo 65536 as 16-bit words compute it. Add and Subtract put the source's channel b on top
// of the weight: m + 256 b, which adds b * (t - d) to the result. Intended.
template <class Formula>
constexpr uint8_t InterpolateByte(int d, int b, int t, int m) {
  const int weight = Formula::kSourceInWeight ? m + 256 * b : m;
  return uint8_t(uint32_t((t - d) * weight + 256 * d) >> 8);
}

// Fields, in their own precision; rounds towards minus infinity.
constexpr int InterpolateField(int d, int t, int m) { return d + (((t - d) * m) >> 8); }

// The blended pixel of a 16-bit format. Its alpha bits are 0. Intended.
template <class Formula, PackedFields Format>
constexpr uint32_t Blended(Format, uint32_t dst, uint32_t src) {
  const auto blend = [&]<class Field>(Field) {
    const int t = Formula::Fields(Field::ToByte(dst), Field::ToByte(src));
    return Field::FromByte(uint8_t(t));
  };
  return blend(typename Format::Blue()) | blend(typename Format::Green()) |
         blend(typename Format::Red());
}

// The same, then on from dst as far as the mask says; the blended value is truncated to its field
// before.
template <class Formula, PackedFields Format>
constexpr uint32_t Interpolated(Format format, uint32_t dst, uint32_t src, int m) {
  const uint32_t blended = Blended<Formula>(format, dst, src);
  const auto interpolate = [&]<class Field>(Field) {
    const int value = InterpolateField(int(Field::Get(dst)), int(Field::Get(blended)), m);
    return Field::Put(uint32_t(value));
  };
  return interpolate(typename Format::Blue()) | interpolate(typename Format::Green()) |
         interpolate(typename Format::Red());
}

// Pixels of bytes, as words. At 24 bits the top byte of the result means nothing.
template <class Formula, class Format>
constexpr uint32_t Blended(Format, uint32_t dst, uint32_t src) {
  uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const int a = uint8_t(dst >> shift), b = uint8_t(src >> shift);
    const bool kept = shift == 24 && !Formula::kBlendsFourthByte;
    result |= uint32_t(kept ? a : Formula::Bytes(a, b)) << shift;
  }
  return result;
}

template <class Formula, class Format>
constexpr uint32_t Interpolated(Format format, uint32_t dst, uint32_t src, int m) {
  const uint32_t blended = Blended<Formula>(format, dst, src);
  uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    result |= uint32_t{InterpolateByte<Formula>(uint8_t(dst >> shift), uint8_t(src >> shift),
                                                uint8_t(blended >> shift), m)}
              << shift;
  }
  return result;
}

// The value of transparent pixels. A source without a key treats 0 as transparent: black changes
// nothing, not even when multiplied. Intended.
template <class Format>
constexpr uint32_t TransparentValue(const TSurfDesc& src) {
  return HasKey(src) ? src.colorKey & kKeyBits<Format> : 0;
}

// One pixel in memory: its blend, unless the source pixel is transparent ...
template <class Format, class Formula>
void BlendPixel(uint8_t* out, const uint8_t* dst, const uint8_t* src, uint32_t transparent) {
  using Word = typename Format::Word;
  const Word d = Format::Load(dst), s = Format::Load(src);
  const bool hidden = (s & kKeyBits<Format>) == transparent;
  Format::Store(out, hidden ? d : Word(Blended<Formula>(Format(), d, s)));
}

// ... or as much of it as the mask says: none at all where it is 0.
template <class Format, class Formula>
void BlendMaskedPixel(uint8_t* out, const uint8_t* dst, const uint8_t* src, uint8_t m) {
  using Word = typename Format::Word;
  const Word d = Format::Load(dst), s = Format::Load(src);
  Format::Store(out, m == 0 ? d : Word(Interpolated<Formula>(Format(), d, s, m)));
}

static_assert(Add::Bytes(200, 100) == 255 && Subtract::Bytes(50, 100) == 0);
static_assert(Multiply::Bytes(255, 255) == 254 && Multiply::Fields(248, 248) == 240);
static_assert(Screen::Bytes(0, 0) == 1 && Screen::Fields(0, 0) == 0);
static_assert(Overlay::Bytes(127, 255) == 253 && Overlay::Fields(120, 248) == 233);

}  // namespace pincel

#endif  // BLEND_BLEND_PIXEL_H_
