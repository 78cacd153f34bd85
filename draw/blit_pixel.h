// What a keyed blit does to one pixel.
#ifndef DRAW_BLIT_PIXEL_H_
#define DRAW_BLIT_PIXEL_H_

#include "surface/pixel_format.h"

namespace pincel {

// The value that transparent pixels of a keyed source have. Indexed sources ignore the key's value:
// index 0 is the transparent one. Intended.
template <class Format>
constexpr uint32_t TransparentValue(uint32_t key) {
  return Format::kBytes == 1 ? 0 : key & kKeyBits<Format>;
}

template <class Format>
void CopyUnlessTransparent(uint8_t* dst, const uint8_t* src, uint32_t transparent) {
  const typename Format::Word pixel = Format::Load(src);
  if ((pixel & kKeyBits<Format>) != transparent) Format::Store(dst, pixel);
}

}  // namespace pincel

#endif  // DRAW_BLIT_PIXEL_H_
