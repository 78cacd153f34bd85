// How a line colours one pixel: a mix is the blend with one weight, an ink makes the mixes of a
// line's colour and level for pixels that the line covers fully or in part.
#ifndef DRAW_LINE_PIXEL_H_
#define DRAW_LINE_PIXEL_H_

#include <algorithm>
#include <cstdint>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "surface/palette.h"
#include "surface/pixel_format.h"

namespace pincel {

// The four bytes of a pixel, each in a lane of its own.
using FloatLanes = float __attribute__((vector_size(16)));
using IntLanes = int32_t __attribute__((vector_size(16)));

inline FloatLanes ToLanes(uint32_t word) {
  using Bytes = uint8_t __attribute__((vector_size(16)));
  using Halves = uint16_t __attribute__((vector_size(16)));
  const auto bytes = Bytes(IntLanes{int32_t(word), 0, 0, 0});
  const auto halves = Halves(__builtin_shufflevector(bytes, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4,
                                                     20, 5, 21, 6, 22, 7, 23));
  return __builtin_convertvector(
      IntLanes(__builtin_shufflevector(halves, Halves{}, 0, 8, 1, 9, 2, 10, 3, 11)), FloatLanes);
}

// Truncated; of numbers outside 0..255 the low byte.
inline uint32_t ToWord(FloatLanes channels) {
  const IntLanes bytes = __builtin_convertvector(channels, IntLanes) & 0xFF;
#if defined(__SSE2__)
  const auto halves = _mm_packs_epi32(__m128i(bytes), __m128i(bytes));
  return uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(halves, halves)));
#else
  return uint32_t(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | uint32_t(bytes[3]) << 24;
#endif
}

// 24 and 32 bits, in floating point: channel x (1 - weight) + target x weight, truncated, for three
// bytes; the fourth is kept. What does not depend on the pixel is computed once.
class ByteMix {
 public:
  using Target = FloatLanes;
  static Target TargetOf(Bgr colour) { return ToLanes(Rgb888::Pack(colour)); }
  static float LevelOf(int level) { return float(level) / 255.0f; }

  ByteMix(const Target& target, float weight) {
    const FloatLanes weights = weight * FloatLanes{1.0f, 1.0f, 1.0f, 0.0f};
    keep_ = 1.0f - weights;
    add_ = target * weights;
  }
  uint32_t operator()(uint32_t word) const { return ToWord(ToLanes(word) * keep_ + add_); }

 private:
  FloatLanes keep_, add_;
};

// 16 bits, in integers: each field becomes field + ((target - field) x weight >> 8); alpha bits are
// kept. Full level, 255, leaves a 256th of the difference. Intended.
//
// The fields stand side by side, 16 bits each, so that one product blends all three: field x (256 -
// weight) + target x weight. No sum leaves its 16 bits, since fields are below 64 and weights at most
// 2 x 255; the bias keeps it positive and is gone when the field is masked out.
template <class Format>
class FieldMix {
 public:
  using Target = uint64_t;
  static Target TargetOf(Bgr colour) { return Spread(Format::Pack(colour)); }
  static float LevelOf(int level) { return float(level); }

  FieldMix(Target target, float weight) {
    const auto whole = int32_t(weight);
    keep_ = uint64_t(int64_t{256 - whole});
    add_ = target * uint32_t(whole) + kBias;
  }
  uint32_t operator()(uint32_t word) const {
    const uint64_t mixed = (Spread(word) * keep_ + add_) >> 8;
    return (word & Format::Alpha::kMask) | Blue::Put(uint32_t(mixed)) |
           Green::Put(uint32_t(mixed >> 16)) | Red::Put(uint32_t(mixed >> 32));
  }

 private:
  using Blue = typename Format::Blue;
  using Green = typename Format::Green;
  using Red = typename Format::Red;
  static constexpr uint64_t kBias = uint64_t{64 << 8} * 0x0001'0001'0001;

  static constexpr uint64_t Spread(uint32_t word) {
    return Blue::Get(word) | uint64_t{Green::Get(word)} << 16 | uint64_t{Red::Get(word)} << 32;
  }

  uint64_t keep_, add_;
};

template <class Format>
using MixOf = std::conditional_t<PackedFields<Format>, FieldMix<Format>, ByteMix>;

template <class Format>
class LineInk {
 public:
  LineInk(const TSurfDesc&, Bgr colour, int level)
      : target_(Mix::TargetOf(colour)), level_(Mix::LevelOf(level)), full_(target_, level_) {}

  void Cover(uint8_t* pixel) const { Blend(pixel, full_); }
  void CoverPart(uint8_t* pixel, float coverage) const {
    Blend(pixel, Mix(target_, coverage * level_));
  }

 private:
  using Mix = MixOf<Format>;
  static void Blend(uint8_t* pixel, const Mix& mix) {
    Format::Store(pixel, typename Format::Word(mix(Format::Load(pixel))));
  }

  typename Mix::Target target_;
  float level_;
  Mix full_;
};

// 8 bits: the palette colour, mixed as at 32 bits, then the nearest entry.
template <>
class LineInk<Indexed8> {
 public:
  LineInk(const TSurfDesc& surface, Bgr colour, int level)
      : palette_(PaletteOrDefault(surface)),
        target_(ByteMix::TargetOf(colour)),
        level_(ByteMix::LevelOf(level)),
        full_(target_, level_) {
    std::fill_n(covered_, 256, kUnknown);
  }

  // What becomes of a covered index is searched once per line.
  void Cover(uint8_t* pixel) {
    int16_t& covered = covered_[*pixel];
    if (covered == kUnknown) covered = int16_t(Nearest(full_, *pixel));
    *pixel = uint8_t(covered);
  }
  void CoverPart(uint8_t* pixel, float coverage) const {
    *pixel = uint8_t(Nearest(ByteMix(target_, coverage * level_), *pixel));
  }

 private:
  static constexpr int16_t kUnknown = -1;

  int Nearest(const ByteMix& mix, uint8_t index) const {
    const Bgr mixed = ToBgr(mix(Rgb888::Pack(ToBgr(palette_[index]))));
    return NearestColor(palette_, mixed.red, mixed.green, mixed.blue);
  }

  const TRGBA* palette_;
  ByteMix::Target target_;
  float level_;
  ByteMix full_;
  int16_t covered_[256];
};

}  // namespace pincel

#endif  // DRAW_LINE_PIXEL_H_
