// Where decoded pixels go: any surface format, row by row.
#ifndef LOADERS_PIXEL_SINK_H_
#define LOADERS_PIXEL_SINK_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "surface/expand_rows.h"
#include "surface/moved_fields.h"
#include "surface/rows.h"

namespace pincel {

template <class Format>
void CopyRows(const SourceRows& rows) {
  if (rows.height == 0) return;
  const SourceRows joined = Joined(rows, Format::kBytes, Format::kBytes);
  ForEachRow(joined, [&](uint8_t* dst, const uint8_t* src) {
    std::memcpy(dst, src, joined.width * Format::kBytes);
  });
}

// The stored pixel of a colour with alpha; 16-bit formats keep the top bits of each byte.
template <class Format>
constexpr typename Format::Word PackWithAlpha(Bgr colour, uint8_t alpha) {
  using Word = typename Format::Word;
  if constexpr (PackedFields<Format>) {
    return Word(Format::Pack(colour) | Format::Alpha::FromByte(alpha));
  } else if constexpr (Format::kBytes == 4) {
    return Format::Pack(colour) | Word{alpha} << 24;
  } else {
    return Format::Pack(colour);
  }
}
template <class Format>
constexpr typename Format::Word PackEntry(const TRGBA& entry) {
  return PackWithAlpha<Format>(ToBgr(entry), entry.alpha);
}

// The same pixel all along; without writing a byte more, and quickly where there are few.
template <class Format>
void StoreRun(uint8_t* dst, typename Format::Word pixel, size_t width) {
  if constexpr (Format::kBytes == 3) {
    for (size_t x = 0; x < width; ++x) Format::Store(dst + x * Format::kBytes, pixel);
  } else {
    const uint64_t pixels = ~uint64_t{0} / ((uint64_t{1} << (8 * Format::kBytes)) - 1) * pixel;
    const size_t bytes = width * Format::kBytes;
    if (bytes >= 8) {
      for (size_t at = 0; at + 8 <= bytes; at += 8) StoreWord(dst + at, pixels);
      StoreWord(dst + bytes - 8, pixels);
    } else {
      for (size_t x = 0; x < width; ++x) Format::Store(dst + x * Format::kBytes, pixel);
    }
  }
}

// Stores palette indices as pixels: each index is packed once.
template <class Format>
class IndexSink {
 public:
  explicit IndexSink(const TRGBA* colours) : table_(PixelsOf(colours)) {}
  // Whole rows; one row or a part of it; the same pixel several times.
  void Store(const SourceRows& rows) const { ExpandIndexed(Format::kBytes, rows, table_, false); }
  void Row(uint8_t* dst, const uint8_t* indices, size_t width) const {
    constexpr size_t kWorthAKernel = 64;
    if (width >= kWorthAKernel) {
      Store({{dst, 0, width, 1}, indices, 0});
      return;
    }
    for (size_t x = 0; x < width; ++x) {
      Format::Store(dst + x * Format::kBytes, Pixel(indices[x]));
    }
  }
  void Run(uint8_t* dst, uint8_t index, size_t width) const {
    StoreRun<Format>(dst, Pixel(index), width);
  }

 private:
  static PixelTable PixelsOf(const TRGBA* colours) {
    if constexpr (FieldsOf<Format>::Alpha::kWidth % 8 == 0) {  // none, or the entry's own byte
      return PixelsOfPalette(Format(), colours);
    } else {
      return TableOf(colours, MovedFields<Format, ByteFields, AlphaOfSource>::Of);
    }
  }
  typename Format::Word Pixel(uint8_t index) const {
    return typename Format::Word(table_.pixel[index]);
  }

  PixelTable table_;
};

// 8-bit surfaces take the indices as they are; the colours go to the palette.
template <>
class IndexSink<Indexed8> {
 public:
  explicit IndexSink(const TRGBA*) {}
  void Store(const SourceRows& rows) const { CopyRows<Indexed8>(rows); }
  void Row(uint8_t* dst, const uint8_t* indices, size_t width) const {
    std::memcpy(dst, indices, width);
  }
  void Run(uint8_t* dst, uint8_t index, size_t width) const {
    StoreRun<Indexed8>(dst, index, width);
  }
};

// Gives an 8-bit surface's palette the first `count` colours of an image; fourth bytes are kept.
// Every black entry but entry 0 then becomes almost black: index 0 is the only pure black, and the
// transparent one. Intended.
inline void SetImagePalette(TRGBA* palette, const TRGBA* colours, int count) {
  for (int i = 0; i < count; ++i) {
    palette[i] = {colours[i].blue, colours[i].green, colours[i].red, palette[i].alpha};
  }
  for (int i = 255; i >= 1; --i) {
    TRGBA& entry = palette[i];
    if (entry.blue == 0 && entry.green == 0 && entry.red == 0) entry.blue = 1;
  }
}

// Whether an image of this size, at least 1 x 1, fits the surface, as far as its fields tell.
template <class Format>
bool HoldsImage(const TSurfDesc& surface, int64_t width, int64_t height) {
  const int64_t pitch = surface.pitch;
  return surface.pixels != nullptr && width <= surface.width && height <= surface.height &&
         (height <= 1 || width * Format::kBytes <= (pitch < 0 ? -pitch : pitch));
}

}  // namespace pincel

#endif  // LOADERS_PIXEL_SINK_H_
