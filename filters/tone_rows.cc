#include "filters/tone_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/tone_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/row_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

// Bytes at even and odd places, each in a lane of 16 bits; the low half of `odd` is for the first
// of every two odd bytes.
template <class D8, class V = hn::VFromD<D8>>
HWY_INLINE V ScaledBytes(D8 d8, V bytes, uint32_t even, uint32_t odd) {
  const hn::Repartition<uint16_t, D8> d16;
  const hn::Repartition<uint32_t, D8> d32;
  const auto v = hn::BitCast(d16, bytes);
  const auto even_factor = hn::BitCast(d16, hn::Set(d32, even));
  const auto odd_factor = hn::BitCast(d16, hn::Set(d32, odd));
  const auto low = hn::ShiftRight<8>(hn::Mul(hn::And(v, hn::Set(d16, 0x00FF)), even_factor));
  const auto high = hn::And(hn::Mul(hn::ShiftRight<8>(v), odd_factor), hn::Set(d16, 0xFF00));
  return hn::BitCast(d8, hn::Or(low, high));
}

struct ScaleByteKernel {
  using Lane = uint8_t;
  static constexpr size_t kDstBytes = 1;
  uint32_t factor;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst) const {
    const uint32_t twice = factor * 0x10001;
    hn::StoreU(ScaledBytes(d, LoadPixels(d, dst), twice, twice), d, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst) const {
    *out = uint8_t(*dst * factor >> 8);
  }
};

struct ScaleWordKernel {
  using Lane = uint32_t;
  static constexpr size_t kDstBytes = 4;
  uint32_t colour, fourth;

  template <class D>
  HWY_INLINE void Vector(D, uint8_t* out, const uint8_t* dst) const {
    const hn::Repartition<uint8_t, D> d8;
    const auto scaled =
        ScaledBytes(d8, LoadPixels(d8, dst), colour * 0x10001, fourth << 16 | colour);
    hn::StoreU(scaled, d8, out);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst) const {
    for (int i = 0; i < 3; ++i) out[i] = uint8_t(dst[i] * colour >> 8);
    out[3] = uint8_t(dst[3] * fourth >> 8);
  }
};

template <class Format>
struct ScaleFieldKernel {
  using Lane = uint16_t;
  static constexpr size_t kDstBytes = 2;
  uint32_t factor;

  // The field stays where it is: what the product leaves below it is cut off.
  template <class F, class D, class V = hn::VFromD<D>>
  static HWY_INLINE V ScaledField(D d, V words, V factor_above) {
    const auto field = hn::Set(d, uint16_t(F::kMask));
    return hn::And(hn::MulHigh(hn::And(words, field), factor_above), field);
  }
  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* out, const uint8_t* dst) const {
    const auto words = LoadPixels(d, dst);
    const auto above = hn::Set(d, uint16_t(factor << 8));
    const auto scaled = hn::Or(ScaledField<typename Format::Blue>(d, words, above),
                               hn::Or(ScaledField<typename Format::Green>(d, words, above),
                                      ScaledField<typename Format::Red>(d, words, above)));
    const auto alpha = hn::And(words, hn::Set(d, uint16_t(Format::Alpha::kMask)));
    hn::StoreU(hn::Or(scaled, alpha), d, reinterpret_cast<uint16_t*>(out));
  }
  template <class F>
  HWY_INLINE uint32_t Scaled(uint32_t word) const {
    return F::Put(F::Get(word) * factor >> 8);
  }
  HWY_INLINE void Pixel(uint8_t* out, const uint8_t* dst) const {
    const uint32_t word = Format::Load(dst);
    Format::Store(
        out, uint16_t(Scaled<typename Format::Blue>(word) | Scaled<typename Format::Green>(word) |
                      Scaled<typename Format::Red>(word) | (word & Format::Alpha::kMask)));
  }
};

void ScaleBytes(const Rows& bytes, uint32_t factor) { OnceRows(ScaleByteKernel{factor}, bytes); }

void ScaleWords(const Rows& pixels, uint32_t colour, uint32_t fourth) {
  OnceRows(ScaleWordKernel{colour, fourth}, pixels);
}

void ScaleFields(int format, const Rows& pixels, uint32_t factor) {
  switch (format) {
    case 16:
      return OnceRows(ScaleFieldKernel<Rgb565>{factor}, pixels);
    case 19:
      return OnceRows(ScaleFieldKernel<Argb4444>{factor}, pixels);
    default:
      return OnceRows(ScaleFieldKernel<Rgb555>{factor}, pixels);
  }
}

void RepeatBytes(uint8_t* bytes, size_t piece, size_t size) {
  for (size_t done = piece; done < size; done += piece) {
    RepeatableRow(hn::ScalableTag<uint8_t>(), ByteCopy(), bytes + done, bytes,
                  HWY_MIN(piece, size - done));
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(ScaleBytes);
HWY_EXPORT(ScaleWords);
HWY_EXPORT(ScaleFields);
HWY_EXPORT(RepeatBytes);

void ScaleBytes(const Rows& bytes, uint32_t factor) {
  HWY_DYNAMIC_DISPATCH(ScaleBytes)(bytes, factor);
}
void ScaleWords(const Rows& pixels, uint32_t colour, uint32_t fourth) {
  HWY_DYNAMIC_DISPATCH(ScaleWords)(pixels, colour, fourth);
}
void ScaleFields(int format, const Rows& pixels, uint32_t factor) {
  HWY_DYNAMIC_DISPATCH(ScaleFields)(format, pixels, factor);
}
void RepeatBytes(uint8_t* bytes, size_t piece, size_t size) {
  HWY_DYNAMIC_DISPATCH(RepeatBytes)(bytes, piece, size);
}

}  // namespace pincel
#endif  // HWY_ONCE
