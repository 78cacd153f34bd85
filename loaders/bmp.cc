// BMP files in memory: 8 bits, plain or run-length coded, and 24 bits, into any surface.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "loaders/pixel_sink.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// Reads the file's bytes one after the other; how many there are is not known.
class ByteReader {
 public:
  explicit ByteReader(const uint8_t* bytes) : at_(bytes) {}

  uint8_t Byte() { return *at_++; }
  const uint8_t* Bytes(size_t count) {
    const uint8_t* const bytes = at_;
    at_ += count;
    return bytes;
  }
  bool AtOddAddress() const { return reinterpret_cast<uintptr_t>(at_) % 2 != 0; }

 private:
  const uint8_t* at_;
};

constexpr ptrdiff_t kColourTableOffset = 54;

struct Header {
  int32_t width, height;  // a height below 0: the rows are stored from the top
  uint32_t bits;
  bool run_length;
  bool colour_table;  // else the library's palette serves
  int colours;        // entries of the one or the other
  const uint8_t* pixels;
};

// No field is checked. Every header that is not the one of 40 bytes is read as the one of 12.
// Intended.
Header ReadHeader(const uint8_t* file) {
  const auto half = [file](int offset) { return LoadWord<uint16_t>(file + offset); };
  const auto word = [file](int offset) { return LoadWord<uint32_t>(file + offset); };
  Header header{};
  header.colours = 256;
  if (word(14) == 40) {
    header.width = int32_t(word(18));
    header.height = int32_t(word(22));
    header.bits = half(28);
    header.run_length = word(30) == 1;
    header.colour_table = header.bits == 8;
    const uint32_t used = word(46);
    if (header.colour_table && used != 0 && used < 256) header.colours = int(used);
  } else {
    header.width = half(18);
    header.height = half(20);
    header.bits = half(24);
  }
  // A file that starts with "QX" has its pixels where others have the colour table.
  const bool fixed_offset = file[0] == 'Q' && file[1] == 'X';
  header.pixels = file + (fixed_offset ? kColourTableOffset : ptrdiff_t(word(10)));
  return header;
}

using Colours = std::array<TRGBA, 256>;

// The colours of 8-bit data: opaque ones from the file's table, and black beyond its end, or the
// library's palette as it is.
Colours ReadColours(const uint8_t* file, const Header& header) {
  Colours colours;
  if (header.colour_table) {
    colours.fill({0, 0, 0, 0xFF});
    ByteReader table(file + kColourTableOffset);
    for (int i = 0; i < header.colours; ++i) {
      const uint8_t* const entry = table.Bytes(4);
      colours[size_t(i)] = {entry[0], entry[1], entry[2], 0xFF};
    }
  } else {
    std::copy_n(lu_gPaleta, 256, colours.begin());
  }
  return colours;
}

Colours ExchangeRedAndBlue(Colours colours) {
  for (TRGBA& colour : colours) std::swap(colour.red, colour.blue);
  return colours;
}

// The surface's rows in the order in which the file stores them.
template <class Format>
Rows RowsInFileOrder(const TSurfDesc& surface, const Header& header) {
  if (surface.width <= 0 || surface.height <= 0) return {};
  const bool top_down = header.height < 0;
  return {PixelAt<Format>(surface, 0, top_down ? 0 : surface.height - 1),
          top_down ? ptrdiff_t{surface.pitch} : -ptrdiff_t{surface.pitch}, size_t(surface.width),
          size_t(surface.height)};
}

// These rows with the file's, which are padded to whole words. The surface's width counts.
SourceRows WithPixels(const Rows& rows, const Header& header, size_t pixel_bytes) {
  return {rows, header.pixels, ptrdiff_t((rows.width * pixel_bytes + 3) / 4 * 4)};
}

// What follows literal indices of an odd number. Both are the same in a file at an even address.
enum class Padding {
  kOneByte,
  kToEvenAddress,  // the converting loader goes by the address in memory. Intended.
};

// Why run-length data leaves pixels out: it moves on, or a row or the bitmap ends.
enum class Skipped { kByMove, kByEnd };

// Never writes outside the rows: runs and literals are clipped at the row end, a position outside
// ends the decoding. `skip(dst, width, why)` gets the pixels of each row that are left out.
template <class Format, class Skip>
void DecodeRunLength(ByteReader codes, const Rows& rows, const IndexSink<Format>& sink,
                     Padding padding, Skip&& skip) {
  size_t x = 0, y = 0;
  const auto here = [&] { return rows.dst + ptrdiff_t(y) * rows.dst_pitch + x * Format::kBytes; };
  const auto skip_to = [&](size_t end_x, size_t end_y, Skipped why) {
    for (; y < end_y; ++y, x = 0) skip(here(), rows.width - x, why);
    skip(here(), end_x - x, why);
    x = end_x;
  };
  while (y < rows.height) {
    const size_t left = rows.width - x;
    const size_t count = codes.Byte();
    const uint8_t code = codes.Byte();
    if (count > 0) {
      sink.Run(here(), code, std::min(count, left));
      x += std::min(count, left);
    } else if (code == 0) {  // end of the row
      skip_to(rows.width, y, Skipped::kByEnd);
      x = 0, ++y;
    } else if (code == 1) {  // end of the bitmap
      skip_to(rows.width, rows.height - 1, Skipped::kByEnd);
      return;
    } else if (code == 2) {  // move
      const size_t end_x = x + codes.Byte();
      const size_t end_y = y + codes.Byte();
      if (end_x > rows.width || end_y >= rows.height) return;
      skip_to(end_x, end_y, Skipped::kByMove);
    } else {
      sink.Row(here(), codes.Bytes(code), std::min<size_t>(code, left));
      x += std::min<size_t>(code, left);
      if (padding == Padding::kOneByte ? code % 2 != 0 : codes.AtOddAddress()) codes.Bytes(1);
    }
  }
}

// What skipped pixels become: the colour of entry 0, but nothing where that packs to 0 and on indexed
// surfaces. From the top, this holds for moves only. Intended.
template <class Format>
typename Format::Word Background(const Colours& colours) {
  if constexpr (Format::kBytes == 1) {
    return 0;
  } else {
    return PackEntry<Format>(colours[0]);
  }
}

template <class Format>
void LoadIndexed(const TSurfDesc& surface, const Header& header, const Colours& colours) {
  const Rows rows = RowsInFileOrder<Format>(surface, header);
  if (!header.run_length) {
    const IndexSink<Format> sink(colours.data());
    ForEachRow(WithPixels(rows, header, 1),
               [&](uint8_t* dst, const uint8_t* src) { sink.Row(dst, src, rows.width); });
    return;
  }
  const bool top_down = header.height < 0;
  // Run-length data from the top comes out with red and blue exchanged at 24 bits, but for skipped
  // pixels. Intended.
  const bool exchanged = Format::kBytes == 3 && top_down;
  const IndexSink<Format> sink((exchanged ? ExchangeRedAndBlue(colours) : colours).data());
  const auto background = Background<Format>(colours);
  DecodeRunLength(ByteReader(header.pixels), rows, sink, Padding::kToEvenAddress,
                  [&](uint8_t* dst, size_t width, Skipped why) {
                    if (background == 0 || (top_down && why == Skipped::kByEnd)) return;
                    StoreRun<Format>(dst, background, width);
                  });
}

// The alpha bits of 555, 1555 and 4444 pixels come from the byte that follows the pixel in the file:
// the next pixel's blue, or what stands behind the row. A fourth byte at 32 bits is kept. Intended.
// Indexed surfaces are not written.
template <class Format>
void StoreTrueColour(uint8_t* dst, const uint8_t* src, size_t width) {
  if constexpr (Format::kBytes == 1) return;
  if constexpr (Format::kBytes == 3) {
    std::memcpy(dst, src, 3 * width);
    return;
  }
  for (size_t x = 0; x < width; ++x, dst += Format::kBytes, src += 3) {
    const Bgr colour{src[0], src[1], src[2]};
    if constexpr (!PackedFields<Format>) {
      dst[0] = colour.blue;
      dst[1] = colour.green;
      dst[2] = colour.red;
    } else if constexpr (Format::Alpha::kWidth == 0) {
      Format::Store(dst, Format::Pack(colour));
    } else {
      Format::Store(dst, PackWithAlpha<Format>(colour, src[3]));
    }
  }
}

}  // namespace
}  // namespace pincel

bool LoadInfoBMP(TSurfDesc& surface, unsigned char* bitmap) {
  const pincel::Header header = pincel::ReadHeader(bitmap);
  surface.width = header.width;
  surface.height = header.height == INT32_MIN ? INT32_MAX : std::abs(header.height);
  surface.bpp = header.bits;
  return true;
}

bool LoadBMP(TSurfDesc& surface, unsigned char* bitmap) {
  using namespace pincel;
  return Dispatch(AllFormats{}, surface, false, [&](auto format) {
    using Format = decltype(format);
    const Header header = ReadHeader(bitmap);
    const Colours colours = ReadColours(bitmap, header);
    if (Format::kBytes == 1 && surface.palette != nullptr) {
      SetImagePalette(surface.palette, colours.data(), header.colours);
    }
    if (header.bits == 8) {
      LoadIndexed<Format>(surface, header, colours);
    } else if (header.bits > 16) {  // every such depth is read as 24
      const Rows rows = RowsInFileOrder<Format>(surface, header);
      ForEachRow(WithPixels(rows, header, 3), [&](uint8_t* dst, const uint8_t* src) {
        StoreTrueColour<Format>(dst, src, rows.width);
      });
    }
    return true;
  });
}

bool LoadInfoBMPAlpha(TSurfDesc& surface, unsigned char* bitmap) {
  LoadInfoBMP(surface, bitmap);
  surface.bpp = 8;
  return true;
}

bool LoadBMPAlpha(TSurfDesc& surface, unsigned char* bitmap) {
  using namespace pincel;
  const Header header = ReadHeader(bitmap);
  const Rows rows = RowsInFileOrder<Indexed8>(surface, header);
  if (header.run_length) {
    DecodeRunLength(ByteReader(header.pixels), rows, IndexSink<Indexed8>(nullptr),
                    Padding::kOneByte, [](uint8_t*, size_t, Skipped) {});
  } else {
    ForEachRow(WithPixels(rows, header, 1),
               [&](uint8_t* dst, const uint8_t* src) { std::memcpy(dst, src, rows.width); });
  }
  return true;
}

bool LoadInfoPGF(TSurfDesc&, unsigned char*) { return false; }
bool LoadPGF(TSurfDesc&, unsigned char*) { return false; }
