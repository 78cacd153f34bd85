#include "filters/blur_rows.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/blur_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
// clang-format off: after highway.h
#include "filters/coverage-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// The four bytes of 32-bit words, those at even and odd places in lanes of 16 bits. `masks` holds
// the mask byte of each word.
template <class D32, class V32 = hn::VFromD<D32>>
HWY_INLINE V32 PaintBytes(D32 d32, V32 words, V32 masks, uint32_t colour, uint32_t step) {
  const hn::Repartition<uint16_t, D32> d16;
  const auto low = hn::Set(d16, 0x00FF), high = hn::Set(d16, 0xFF00);
  const auto pairs = hn::BitCast(d16, hn::Or(masks, hn::ShiftLeft<16>(masks)));
  const auto strength = hn::ShiftRight<8>(hn::Mul(pairs, hn::Set(d16, uint16_t(step))));
  // No weight where the strength is 0, else one more than it.
  const auto weight = hn::Add(strength, hn::Min(strength, hn::Set(d16, 1)));
  const auto even_colour = hn::BitCast(d16, hn::Set(d32, colour & 0x00FF00FF));
  const auto odd_colour = hn::BitCast(d16, hn::Set(d32, (colour >> 8) & 0x00FF00FF));
  const auto d = hn::BitCast(d16, words);
  const auto even_difference = hn::Sub(even_colour, hn::And(d, low));
  const auto odd_difference = hn::Sub(odd_colour, hn::ShiftRight<8>(d));
  const auto even = hn::Add(hn::ShiftLeft<8>(d), hn::Mul(even_difference, weight));
  const auto odd = hn::Add(hn::And(d, high), hn::Mul(odd_difference, weight));
  return hn::BitCast(d32, hn::Or(hn::ShiftRight<8>(even), hn::And(odd, high)));
}

template <class Format>
struct PaintKernel;

template <>
struct PaintKernel<Argb8888> {
  using Lane = uint32_t;
  static constexpr size_t kDstBytes = 4;
  uint32_t colour, step;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* mask) const {
    const auto masks = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
    const auto painted = PaintBytes(d, LoadPixels(d, dst), masks, colour, step);
    hn::StoreU(painted, d, reinterpret_cast<uint32_t*>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* mask) const {
    Argb8888::Store(out,
                    PaintPixel<Argb8888>(Argb8888::Load(dst), colour, PaintStrength(*mask, step)));
  }
};

// 24 bits: a group of pixels spread over words.
template <>
struct PaintKernel<Rgb888> {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 3;
  static constexpr bool kVectorWins = kHaveByteShuffle;
  uint32_t colour, step;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* mask) const {
    const WordTag<D> d32;
    constexpr size_t kWords = hn::MaxLanes(WordTag<D>());
    const Words<D> pixels = LoadWords<3>(d, dst);
    const auto paint = [&](auto words, size_t i) HWY_ATTR {
      const hn::Rebind<uint8_t, decltype(d32)> d8;
      const auto masks = hn::PromoteTo(d32, hn::LoadU(d8, mask + i * kWords));
      return PaintBytes(d32, words, masks, colour, step);
    };
    StoreWords<3>(d,
                  Words<D>{paint(pixels.v0, 0), paint(pixels.v1, 1), paint(pixels.v2, 2),
                           paint(pixels.v3, 3)},
                  out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* mask) const {
    Rgb888::Store(out, PaintPixel<Rgb888>(Rgb888::Load(dst), colour, PaintStrength(*mask, step)));
  }
};

template <class F, class D, class V = hn::VFromD<D>>
HWY_INLINE V PaintFieldOf(D d, V words, V weight, uint32_t colour) {
  auto from = hn::ShiftRight<F::kLow>(words);
  if constexpr (F::kLow + F::kWidth != 16) from = hn::And(from, hn::Set(d, F::kMax));
  const auto difference = hn::Sub(hn::Set(d, uint16_t(F::Get(colour))), from);
  const auto sum = hn::Add(hn::ShiftLeft<8>(from), hn::Mul(difference, weight));
  return hn::ShiftLeft<F::kLow>(hn::ShiftRight<8>(sum));
}

template <PackedFields Format>
struct PaintKernel<Format> {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2;
  uint32_t colour, step;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst, const uint8_t* mask) const {
    const auto pixels = LoadPixels(d, dst);
    const auto bytes = hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), mask));
    const auto strength = hn::ShiftRight<8>(hn::Mul(bytes, hn::Set(d, uint16_t(step))));
    const auto weight = hn::Add(strength, hn::Set(d, 1));
    const auto mixed =
        hn::Or(PaintFieldOf<typename Format::Blue>(d, pixels, weight, colour),
               hn::Or(PaintFieldOf<typename Format::Green>(d, pixels, weight, colour),
                      PaintFieldOf<typename Format::Red>(d, pixels, weight, colour)));
    const auto stored =
        hn::IfThenElse(hn::Eq(strength, hn::Set(d, 255)), hn::Set(d, uint16_t(colour)), mixed);
    hn::StoreU(hn::IfThenElse(hn::Eq(strength, hn::Zero(d)), pixels, stored), d,
               reinterpret_cast<uint16_t*>(out));
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst, const uint8_t* mask) const {
    Format::Store(
        out, uint16_t(PaintPixel<Format>(Format::Load(dst), colour, PaintStrength(*mask, step))));
  }
};

// Columns whose mask pixel starts in a range of bytes.
struct Columns {
  int64_t first, end;
};
HWY_INLINE Columns ColumnsBetween(int64_t begin, int64_t end, int64_t pixel_bytes, int64_t width) {
  const auto column = [=](int64_t bytes) {
    return bytes <= 0 ? 0 : std::min(width, (bytes + pixel_bytes - 1) / pixel_bytes);
  };
  return {column(begin), column(end)};
}

// A row of an area through a row of a mask of one byte per pixel. Not inlined: it has two callers
// for every format.
template <class Format>
HWY_NOINLINE void PaintRow(uint32_t colour, uint32_t step, uint8_t* dst, const uint8_t* mask,
                           size_t width) {
  using Kernel = PaintKernel<Format>;
  OnceRow(hn::ScalableTag<typename Kernel::Lane>(), Kernel{colour, step}, width, dst,
          Stream<1>{mask});
}

// 8 bits. The byte for row i of the area counts where it lies within row i of the mask, whatever
// row it was meant to come from: a pass has the same columns in all rows, and most passes have
// none; no pass has any when the mask's rows go upwards. Intended.
template <class Format>
HWY_INLINE void PaintWithinRows(const Rows& area, uint32_t colour, const BlurMask& mask,
                                std::span<const BlurPass> passes) {
  struct Stripe {
    int64_t first, width, offset;
    uint32_t step;
  };
  std::array<Stripe, kMostPasses> stripes;
  size_t count = 0;
  for (const BlurPass& pass : passes) {
    const int64_t offset = pass.y * mask.pitch + pass.x;
    const Columns columns = ColumnsBetween(-offset, mask.pitch - offset, 1, int64_t(area.width));
    if (columns.first >= columns.end) continue;
    stripes[count++] = {columns.first, columns.end - columns.first, offset + columns.first,
                        pass.step};
  }
  const int64_t rows = count == 0 ? 0 : std::min(int64_t(area.height), mask.height);
  for (int64_t i = 0; i < rows; ++i) {
    uint8_t* dst = area.dst + ptrdiff_t(i) * area.dst_pitch;
    const uint8_t* row = mask.pixels + ptrdiff_t(i * mask.pitch);
    for (const Stripe& stripe : std::span(stripes).first(count)) {
      PaintRow<Format>(colour, stripe.step, dst + stripe.first * Format::kBytes,
                       row + stripe.offset, size_t(stripe.width));
    }
  }
}

// 32 bits. What lies outside the mask's memory counts as 0.
template <class Format>
HWY_INLINE void PaintWithinMemory(const Rows& area, uint32_t colour, const BlurMask& mask,
                                  std::span<const BlurPass> passes) {
  constexpr int64_t kPiece = 512, kMaskBytes = 4;
  const int64_t width = int64_t(area.width), height = int64_t(area.height);
  const int64_t begin = std::min(int64_t{0}, (mask.height - 1) * mask.pitch);
  const int64_t end = begin + mask.height * std::abs(mask.pitch);
  std::array<BlurPass, kMostPasses> visible;
  size_t count = 0;
  for (const BlurPass& pass : passes) {
    const int64_t first = pass.y * mask.pitch + pass.x * kMaskBytes;
    const int64_t last = first + (height - 1) * mask.pitch;
    const bool meets =
        std::min(first, last) < end && std::max(first, last) + (width - 1) * kMaskBytes >= begin;
    if (meets) visible[count++] = pass;
  }
  if (count == 0) return;
  uint8_t bytes[kPiece];
  for (int64_t i = 0; i < height; ++i) {
    uint8_t* dst = area.dst + ptrdiff_t(i) * area.dst_pitch;
    for (const BlurPass& pass : std::span(visible).first(count)) {
      const int64_t offset = (pass.y + i) * mask.pitch + pass.x * kMaskBytes;
      const Columns columns = ColumnsBetween(begin - offset, end - offset, kMaskBytes, width);
      for (int64_t x = columns.first; x < columns.end; x += kPiece) {
        const size_t piece = size_t(std::min(kPiece, columns.end - x));
        const uint8_t* from = mask.pixels + ptrdiff_t(offset + x * kMaskBytes);
        ReadFirstBytes<kMaskBytes>(bytes, from, piece, 0xFF);
        PaintRow<Format>(colour, pass.step, dst + x * Format::kBytes, bytes, piece);
      }
    }
  }
}

void PaintPasses(int format, const Rows& area, uint32_t colour, const BlurMask& mask,
                 std::span<const BlurPass> passes) {
  const auto paint = [&](auto f) HWY_ATTR {
    using Format = decltype(f);
    if (mask.bytes == 1) {
      PaintWithinRows<Format>(area, colour, mask, passes);
    } else {
      PaintWithinMemory<Format>(area, colour, mask, passes);
    }
  };
  switch (format) {
    case 32:
      return paint(Argb8888());
    case 24:
      return paint(Rgb888());
    case 16:
      return paint(Rgb565());
    case 19:
      return paint(Argb4444());
    default:
      return paint(Rgb555());
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(PaintPasses);

void PaintPasses(int format, const Rows& area, uint32_t colour, const BlurMask& mask,
                 std::span<const BlurPass> passes) {
  HWY_DYNAMIC_DISPATCH(PaintPasses)(format, area, colour, mask, passes);
}

}  // namespace pincel
#endif  // HWY_ONCE
