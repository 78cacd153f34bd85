// CreateMask and CreateShadow.
#include <algorithm>
#include <cstdlib>

#include "filters/shadow_rows.h"
#include "filters/tone_rows.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

// The format that a source is read in. Whether it is 1555 is asked of the output instead: a 1555
// source has no format, unless the output is one, which makes sources of 4444 and 8 bits 1555 too.
// Intended.
int FormatWith1555OfOutput(const TSurfDesc& src, const TSurfDesc& output) {
  const int format = SurfFormat(src);
  if (format == 32 || format == 24 || format == 16 || format == 17) return format;
  if (SurfFormat(output) == 18) return 18;
  return format == 19 || format == 8 ? format : 0;
}

constexpr int PixelBytes(int format) { return format >= 16 && format <= 19 ? 2 : format / 8; }

// How many pixels of that size a row has.
int32_t Columns(const TSurfDesc& surface, int pixel_bytes) {
  return int32_t(std::min<int64_t>(surface.width, std::abs(int64_t{surface.pitch}) / pixel_bytes));
}

// How many pixels of that size the memory has from row 1, column 1 on.
size_t PixelsFromRow1(const TSurfDesc& surface, int pixel_bytes) {
  const size_t skipped = size_t(std::max(surface.pitch, 0)) + size_t(pixel_bytes);
  const size_t bytes = BufferBytes(surface);
  return bytes < skipped ? 0 : (bytes - skipped) / size_t(pixel_bytes);
}

// Calls `grow(first, values, count)` for pieces of a run of source pixels with their mask values.
template <class Grow>
void ForEachPiece(int format, const uint8_t* src, size_t count, Grow&& grow) {
  constexpr size_t kPiece = 512;
  uint8_t values[kPiece];
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t width = std::min(kPiece, count - x);
    ReadMaskValues(format, values, src + x * size_t(PixelBytes(format)), width);
    grow(x, values, width);
  }
}

// A source of 8 bits: both buffers are one run, padding included. Intended.
void GrowLinear(const TSurfDesc& shadow, const TSurfDesc& src, ShadowRule rule) {
  const size_t count = PixelsFromRow1(shadow, 1), bytes = BufferBytes(src);
  const size_t first = BufferBytes(shadow) - count;
  if (count == 0 || bytes <= first) return;
  GrowBytes(shadow.pixels + first, size_t(shadow.pitch), src.pixels + first,
            std::min(count, bytes - first), rule);
}

// A source of more bits: pixel by pixel, each surface by its pitch. Column 0 of row 1 is left out.
void GrowByRows(const TSurfDesc& shadow, const TSurfDesc& src, int format, ShadowRule rule) {
  if (shadow.pitch <= 0) return;
  const int32_t width = std::min(Columns(shadow, 1), Columns(src, PixelBytes(format)));
  const int32_t height = std::min(shadow.height, src.height);
  for (int32_t y = 1; y < height; ++y) {
    const int32_t left = y == 1 ? 1 : 0;
    uint8_t* to = PixelAt<Indexed8>(shadow, left, y);
    const uint8_t* from = PixelAt<Indexed8>(src, left * PixelBytes(format), y);
    ForEachPiece(format, from, size_t(std::max(width - left, 0)),
                 [&](size_t x, const uint8_t* values, size_t count) {
                   GrowBytes(to + x, size_t(shadow.pitch), values, count, rule);
                 });
  }
}

// A shadow that is not of 8 bits is taken for one of 32. Rows follow each other without their
// pitch, in both surfaces. Intended.
void GrowInWords(const TSurfDesc& shadow, const TSurfDesc& src, int format, ShadowRule rule) {
  const int src_bytes = PixelBytes(format);
  const int64_t pixels = (int64_t{shadow.height} - 1) * std::max(shadow.width, 0) - 1;
  const size_t count = std::min({size_t(std::max<int64_t>(pixels, 0)), PixelsFromRow1(shadow, 4),
                                 PixelsFromRow1(src, src_bytes)});
  if (count == 0) return;
  uint8_t* to = PixelAt<Argb8888>(shadow, 1, 1);
  ForEachPiece(format, PixelAt<Indexed8>(src, src_bytes, 1), count,
               [&](size_t x, const uint8_t* values, size_t width) {
                 GrowWords(to + 4 * x, size_t(shadow.pitch), values, width, rule);
               });
}

}  // namespace
}  // namespace pincel

bool CreateMask(TSurfDesc& mask, TSurfDesc& src, unsigned short level) {
  using namespace pincel;
  const int format = FormatWith1555OfOutput(src, mask);
  if (format == 0) return false;
  const int bytes = PixelBytes(format);
  CRectangulo area = {0, 0, std::min(Columns(mask, 1), Columns(src, bytes)), src.height};
  if (!ClipRect(mask, area)) return true;
  // Without a key black is transparent. Intended.
  const uint32_t key = HasKey(src) ? src.colorKey : 0;
  const uint32_t key_bits = bytes >= 3 ? 0x00FFFFFF : bytes == 2 ? 0x0000FFFF : 0x000000FF;
  CoverRows(bytes, RowsOf<Indexed8, Indexed8>(mask, area, src, {0, 0}), key & key_bits,
            level == 256 ? uint8_t{255} : uint8_t(level));
  return true;
}

bool CreateShadow(TSurfDesc& shadow, TSurfDesc& src, unsigned char decay, unsigned char limit,
                  unsigned short factor) {
  using namespace pincel;
  const int format = FormatWith1555OfOutput(src, shadow);
  if (format == 0) return false;
  const ShadowRule rule = {decay, limit};
  const uint8_t low_byte = uint8_t(factor);
  if (SurfFormat(shadow) == 8) {
    if (format == 8) {
      GrowLinear(shadow, src, rule);
    } else {
      GrowByRows(shadow, src, format, rule);
    }
    if (factor != 256) ScaleBuffer(shadow, low_byte);
  } else {
    if (format == 8) return false;
    GrowInWords(shadow, src, format, rule);
    const CRectangulo area = {0, 0, std::max(Columns(shadow, 4), 0), std::max(shadow.height, 0)};
    if (factor != 256) ScaleWords(RowsOf<Argb8888>(shadow, area), low_byte, 256);
  }
  return true;
}
