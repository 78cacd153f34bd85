#include "loaders/colour_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "loaders/colour_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

constexpr uint32_t kColour = 0x00FFFFFF;

// What is stored again is the same again, so vectors may overlap.
template <class Src>
struct ColourBytes {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 4, kSrcBytes = Src::kBytes;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    const Words<D> below = LoadWords<4>(d, dst), words = LoadWords<kSrcBytes>(d, src);
    StoreWords<4>(d,
                  Words<D>{Joined(d, below.v0, words.v0), Joined(d, below.v1, words.v1),
                           Joined(d, below.v2, words.v2), Joined(d, below.v3, words.v3)},
                  dst);
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const {
    const uint32_t below = Argb8888::Load(dst);
    Argb8888::Store(dst, (Src::Load(src) & kColour) | (below & ~kColour));
  }

 private:
  template <class D, class V>
  static HWY_INLINE V Joined(D, V below, V words) {
    const auto colour = hn::Set(WordTag<D>(), kColour);
    return hn::OrAnd(hn::AndNot(colour, below), words, colour);
  }
};

void StoreColourBytes(int src_bytes, const SourceRows& rows) {
  if (src_bytes == 3) {
    RepeatableRows(ColourBytes<Rgb888>(), rows);
  } else {
    RepeatableRows(ColourBytes<Argb8888>(), rows);
  }
}

bool ExpandsInRegisters() { return kHaveByteTables; }

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(StoreColourBytes);
HWY_EXPORT(ExpandsInRegisters);

void StoreColourBytes(int src_bytes, const SourceRows& rows) {
  HWY_DYNAMIC_DISPATCH(StoreColourBytes)(src_bytes, rows);
}
bool ExpandsInRegisters() { return HWY_DYNAMIC_DISPATCH(ExpandsInRegisters)(); }

}  // namespace pincel
#endif  // HWY_ONCE
