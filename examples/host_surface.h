// What a host keeps around the library's plain descriptor: the memory, the palette, the format.
#ifndef EXAMPLES_HOST_SURFACE_H_
#define EXAMPLES_HOST_SURFACE_H_

#include <utility>
#include <vector>

#include "formats.h"

// A surface that owns its pixels; pass it wherever the library takes a TSurfDesc.
class HostSurface : public TSurfDesc {
 public:
  // Rows are padded to four bytes unless `row_bytes` says otherwise. Pixels start as zero.
  HostSurface(Format format, int columns, int rows, int row_bytes = 0)
      : TSurfDesc(Described(format, columns, rows, row_bytes, nullptr)), format_(format) {
    if (pitch == 0) pitch = (columns * int(bpp / 8) + 3) / 4 * 4;
    // One word more than the pixels: some conversions read the byte behind the last one.
    memory_.resize(size_t(pitch) * size_t(rows) + 4);
    palette_.resize(bpp == 8 ? 256 : 0);
    PointAtMemory();
  }
  HostSurface(const HostSurface& other)
      : TSurfDesc(other), format_(other.format_), memory_(other.memory_), palette_(other.palette_) {
    PointAtMemory();
  }
  HostSurface(HostSurface&& other) = default;  // a moved vector keeps its memory
  HostSurface& operator=(HostSurface other) {
    TSurfDesc::operator=(other);
    format_ = other.format_;
    memory_ = std::move(other.memory_);
    palette_ = std::move(other.palette_);
    PointAtMemory();
    return *this;
  }
  ~HostSurface() = default;

  Format format() const { return format_; }
  const std::vector<uint8_t>& memory() const { return memory_; }
  CRectangulo Bounds() const { return {0, 0, width, height}; }

  // The palette as the array that the palette builders take; 8-bit surfaces only.
  TRGBA (&Palette())[256] { return *reinterpret_cast<TRGBA(*)[256]>(palette_.data()); }
  void UsePaletteOf(const HostSurface& other) {
    palette_ = other.palette_;
    PointAtMemory();
  }

  // The stored value of a pixel, as colour keys and palettes' users need it.
  uint32_t Stored(int x, int y) const {
    const uint8_t* pixel = pixels + ptrdiff_t{y} * pitch + ptrdiff_t{x} * int(bpp / 8);
    uint32_t value = 0;
    for (uint32_t i = 0; i < bpp / 8; ++i) value |= uint32_t{pixel[i]} << (8 * i);
    return value;
  }

  // What fills, lines and frames take for an opaque colour 0x00RRGGBB: on 8-bit surfaces the index
  // of the entry that looks most like it. Index 0 is left out, it is the transparent one.
  uint32_t Colour(uint32_t rgb) const {
    if (bpp != 8) return rgb | 0xFF000000;
    const auto distance = [rgb](const TRGBA& entry) {
      const int red = entry.red - int(rgb >> 16 & 255), green = entry.green - int(rgb >> 8 & 255),
                blue = entry.blue - int(rgb & 255);
      return red * red + green * green + blue * blue;
    };
    uint32_t best = 1;
    for (uint32_t i = 2; i < 256; ++i) {
      if (distance(palette_[i]) < distance(palette_[best])) best = i;
    }
    return best;
  }

  // A pixel as 0xAARRGGBB for a display: fields are widened by repeating their top bits, so that
  // full is 255. Formats without alpha are opaque.
  uint32_t Display(int x, int y) const {
    const uint32_t value = Stored(x, y);
    if (bpp == 8) {
      const TRGBA& entry = palette_[value];
      return 0xFF000000u | uint32_t{entry.red} << 16 | uint32_t{entry.green} << 8 | entry.blue;
    }
    const uint32_t alpha = aMask == 0 ? 255 : Widened(value, aMask);
    return alpha << 24 | Widened(value, rMask) << 16 | Widened(value, gMask) << 8 |
           Widened(value, bMask);
  }

 private:
  void PointAtMemory() {
    pixels = memory_.data();
    palette = palette_.empty() ? nullptr : palette_.data();
  }

  static uint32_t Widened(uint32_t value, uint32_t mask) {
    const uint32_t lowest = mask & (~mask + 1);
    const uint32_t field = (value & mask) / lowest, full = mask / lowest;
    return (field * 255 + full / 2) / full;
  }

  Format format_ = Format::k32;
  std::vector<uint8_t> memory_;
  std::vector<TRGBA> palette_;
};

#endif  // EXAMPLES_HOST_SURFACE_H_
