// The seven pixel formats as stateless types. Code that works for several formats takes one of
// these as a template parameter; shifts and masks stand here and nowhere else.
#ifndef SURFACE_PIXEL_FORMAT_H_
#define SURFACE_PIXEL_FORMAT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "include/pincel.h"

namespace pincel {

// A colour as three bytes; a format unpacks to it and packs from it.
struct Bgr {
  uint8_t blue, green, red;
};

constexpr Bgr ToBgr(const TRGBA& entry) { return {entry.blue, entry.green, entry.red}; }
constexpr Bgr ToBgr(uint32_t true_colour) {
  return {uint8_t(true_colour), uint8_t(true_colour >> 8), uint8_t(true_colour >> 16)};
}

// The true colour of an unpacked 16-bit pixel as the library reports it and compares keys with it:
// the top byte repeats green. Intended.
constexpr uint32_t GreenInTopByte(Bgr c) {
  return uint32_t{c.green} << 24 | uint32_t{c.red} << 16 | uint32_t{c.green} << 8 | c.blue;
}

// The colour key that stands for none.
constexpr uint32_t kNoKey = 0xFFFFFFFF;
constexpr bool HasKey(const TSurfDesc& surface) { return surface.colorKey != kNoKey; }

// Where a channel sits in a 16-bit word.
template <int low, int width>
struct Field {
  static constexpr int kLow = low, kWidth = width;
  static constexpr uint32_t kMax = (1u << width) - 1, kMask = kMax << low;
  static constexpr uint32_t Get(uint32_t word) { return (word >> low) & kMax; }
  static constexpr uint32_t Put(uint32_t value) { return (value & kMax) << low; }
  // The field at the top of a byte, low bits zero.
  static constexpr uint8_t ToByte(uint32_t word) { return uint8_t(Get(word) << (8 - width)); }
  static constexpr uint32_t FromByte(uint8_t byte) { return Put(uint32_t{byte} >> (8 - width)); }
};

template <class Word>
Word LoadWord(const uint8_t* p) {  // pixels need no alignment
  Word word;
  std::memcpy(&word, p, sizeof(word));
  return word;
}
template <class Word>
void StoreWord(uint8_t* p, Word word) {
  std::memcpy(p, &word, sizeof(word));
}

template <class B, class G, class R, class A>
struct Packed16 {
  using Word = uint16_t;
  using Blue = B;
  using Green = G;
  using Red = R;
  using Alpha = A;  // the bits that no colour channel uses
  static constexpr int kBytes = 2;
  static Word Load(const uint8_t* p) { return LoadWord<Word>(p); }
  static void Store(uint8_t* p, Word word) { StoreWord(p, word); }
  static constexpr Bgr Unpack(uint32_t word) {
    return {B::ToByte(word), G::ToByte(word), R::ToByte(word)};
  }
  static constexpr Word Pack(Bgr c) {  // alpha bits 0
    return Word(B::FromByte(c.blue) | G::FromByte(c.green) | R::FromByte(c.red));
  }
};

struct Indexed8 {
  using Word = uint8_t;
  static constexpr int kBytes = 1;
  static constexpr bool Accepts(int code) { return code == 8; }
  static Word Load(const uint8_t* p) { return *p; }
  static void Store(uint8_t* p, Word word) { *p = word; }
};

struct Rgb565 : Packed16<Field<0, 5>, Field<5, 6>, Field<11, 5>, Field<16, 0>> {
  static constexpr bool Accepts(int code) { return code == 16; }
};
// 555 and 1555: most operations treat them alike and list this type alone.
struct Rgb555 : Packed16<Field<0, 5>, Field<5, 5>, Field<10, 5>, Field<15, 1>> {
  static constexpr bool Accepts(int code) { return code == 17 || code == 18; }
};
// Listed before Rgb555 where 1555 has an implementation of its own.
struct Argb1555 : Rgb555 {
  static constexpr bool Accepts(int code) { return code == 18; }
};
struct Argb4444 : Packed16<Field<0, 4>, Field<4, 4>, Field<8, 4>, Field<12, 4>> {
  static constexpr bool Accepts(int code) { return code == 19; }
};
// For operations that move 16-bit pixels without looking at their fields.
struct Any16 {
  using Word = uint16_t;
  static constexpr int kBytes = 2;
  static constexpr bool Accepts(int code) { return code >= 16 && code <= 19; }
  static Word Load(const uint8_t* p) { return LoadWord<Word>(p); }
  static void Store(uint8_t* p, Word word) { StoreWord(p, word); }
};

struct Rgb888 {
  using Word = uint32_t;  // 0x00RRGGBB
  static constexpr int kBytes = 3;
  static constexpr bool Accepts(int code) { return code == 24; }
  static Word Load(const uint8_t* p) {
    return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16;
  }
  static void Store(uint8_t* p, Word word) {
    p[0] = uint8_t(word);
    p[1] = uint8_t(word >> 8);
    p[2] = uint8_t(word >> 16);
  }
  static constexpr Bgr Unpack(uint32_t word) { return ToBgr(word); }
  static constexpr Word Pack(Bgr c) {
    return uint32_t{c.blue} | uint32_t{c.green} << 8 | uint32_t{c.red} << 16;
  }
};

struct Argb8888 {
  using Word = uint32_t;  // 0xAARRGGBB
  static constexpr int kBytes = 4;
  static constexpr bool Accepts(int code) { return code == 32; }
  static Word Load(const uint8_t* p) { return LoadWord<Word>(p); }
  static void Store(uint8_t* p, Word word) { StoreWord(p, word); }
  static constexpr Bgr Unpack(uint32_t word) { return ToBgr(word); }
  static constexpr Word Pack(Bgr c) { return Rgb888::Pack(c); }  // alpha 0
};

// Whether a format packs its channels into a 16-bit word of known fields.
template <class Format>
concept PackedFields = requires {
  typename Format::Green;
};

// The bits of a pixel that are compared with the colour key: the top byte of 32 bits never counts.
template <class Format>
constexpr uint32_t kKeyBits = Format::kBytes >= 3   ? 0x00FFFFFF
                              : Format::kBytes == 2 ? 0x0000FFFF
                                                    : 0x000000FF;

static_assert(Rgb565::Pack({0xFF, 0xFF, 0xFF}) == 0xFFFF && Rgb565::Pack({7, 3, 7}) == 0);
static_assert(Rgb555::Pack({0xFF, 0xFF, 0xFF}) == 0x7FFF);
static_assert(Argb4444::Pack({0x12, 0x34, 0x56}) == 0x0531);
static_assert(Rgb565::Unpack(0xFFFF).green == 0xFC && Rgb565::Unpack(0xFFFF).red == 0xF8);

}  // namespace pincel

#endif  // SURFACE_PIXEL_FORMAT_H_
