// What the conversions make of the colour key.
#ifndef CONVERT_KEYS_H_
#define CONVERT_KEYS_H_

#include "convert/convert_pixel.h"

namespace pincel {

// Between 16-bit formats every key is converted, the one that stands for none too, so that a surface
// without a key leaves a key behind. Intended.
template <class Dst, class Src>
uint32_t RepackedKey(uint32_t key) {
  return Dst::Pack(Src::Unpack(key & 0xFFFF));
}

// From 16 bits up: green in the top byte as well. Intended.
template <class Src>
uint32_t UnpackedKey(uint32_t key) {
  return key == kNoKey ? kNoKey : GreenInTopByte(Src::Unpack(key & 0xFFFF));
}

// From 24 or 32 bits down; `alpha_bits` are set in every key.
template <class Dst>
uint32_t PackedKey(uint32_t key, uint32_t alpha_bits) {
  return key == kNoKey ? kNoKey : Dst::Pack(ToBgr(key)) | alpha_bits;
}

// Reductions make index 0 the transparent one.
constexpr uint32_t ReducedKey(uint32_t key) { return key == kNoKey ? kNoKey : 0; }

// The colour of the source pixels that a reduction takes for transparent.
template <class Src>
uint32_t HiddenColour(uint32_t key) {
  if constexpr (PackedFields<Src>) {
    // The unpacked pixel, green in the top byte, is compared after an exclusive-or of the colour
    // bits, which real keys do not survive. Intended.
    const uint32_t unpacked = key ^ 0x00FFFFFF;
    const Bgr colour = ToBgr(unpacked);
    const bool possible =
        key != kNoKey && GreenInTopByte(Src::Unpack(Src::Pack(colour))) == unpacked;
    return possible ? Rgb888::Pack(colour) : kHidesNothing;
  } else {
    // The whole key is compared with the colour bytes: one with a top byte matches nothing.
    // Intended.
    return key <= 0x00FFFFFF ? key : kHidesNothing;
  }
}

}  // namespace pincel

#endif  // CONVERT_KEYS_H_
