// pincel_build_mix_table: the nearest palette entry of every 565 colour.
#include "include/pincel.h"
#include "surface/rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "mix/mix_table.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// Squared distances to all entries, each with its index below it, so that the smallest of them names
// the nearest entry and the lowest of equals.
class NearestBySquares {
 public:
  explicit NearestBySquares(const TRGBA* palette) {
    for (int i = 0; i < 256; ++i) {
      blue_green_[2 * i] = palette[i].blue;
      blue_green_[2 * i + 1] = palette[i].green;
      red_[2 * i] = palette[i].red;
      red_[2 * i + 1] = 0;
    }
  }
  template <class D = hn::ScalableTag<int32_t>>
  uint8_t operator()(int red, int green, int blue) const {
    if constexpr (kHaveVectors) {
      const D d;
      const hn::RepartitionToNarrow<D> d16;
      const auto colour_bg = hn::BitCast(d16, hn::Set(d, blue | green << 16));
      const auto colour_r = hn::BitCast(d16, hn::Set(d, red));
      auto nearest = hn::Set(d, INT32_MAX);
      for (size_t i = 0; i < 256; i += hn::MaxLanes(d)) {
        const auto bg = hn::Sub(hn::Load(d16, blue_green_ + 2 * i), colour_bg);
        const auto r = hn::Sub(hn::Load(d16, red_ + 2 * i), colour_r);
        const auto distance =
            hn::Add(hn::WidenMulPairwiseAdd(d, bg, bg), hn::WidenMulPairwiseAdd(d, r, r));
        nearest = hn::Min(nearest, hn::Or(hn::ShiftLeft<8>(distance), hn::Iota(d, int32_t(i))));
      }
      return uint8_t(hn::ReduceMin(d, nearest));
    } else {
      int nearest = INT32_MAX;
      for (int i = 0; i < 256; ++i) {
        const int b = blue_green_[2 * i] - blue, g = blue_green_[2 * i + 1] - green,
                  r = red_[2 * i] - red;
        nearest = HWY_MIN(nearest, (b * b + g * g + r * r) << 8 | i);
      }
      return uint8_t(nearest);
    }
  }

 private:
  HWY_ALIGN int16_t blue_green_[512], red_[512];  // pairs, as the pairwise product takes them
};

uint8_t Reflected(int colour, int entry) {  // as far on the other side
  return uint8_t(HWY_MIN(HWY_MAX(2 * colour - entry, 0), 255));
}

void BuildMixTable(unsigned char (*table)[65536], const TRGBA* palette, bool dither) {
  const NearestBySquares nearest(palette);
  for (uint32_t key = 0; key < 65536; ++key) {
    const uint32_t r5 = Rgb565::Red::Get(key), g6 = Rgb565::Green::Get(key),
                   b5 = Rgb565::Blue::Get(key);
    const int red = int(r5 << 3 | r5 >> 2), green = int(g6 << 2 | g6 >> 4),
              blue = int(b5 << 3 | b5 >> 2);
    const uint8_t first = nearest(red, green, blue);
    table[0][key] = table[1][key] = first;
    if (dither) {
      const TRGBA& e = palette[first];
      table[1][key] =
          nearest(Reflected(red, e.red), Reflected(green, e.green), Reflected(blue, e.blue));
    }
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {
namespace {
HWY_EXPORT(BuildMixTable);
}
}  // namespace pincel

void pincel_build_mix_table(unsigned char table[2][65536], const TRGBA palette[256], int dither) {
  using namespace pincel;
  HWY_DYNAMIC_DISPATCH(BuildMixTable)(table, palette, dither != 0);
}
#endif  // HWY_ONCE
