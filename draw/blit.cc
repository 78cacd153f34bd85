// DrawBitmap: rectangle blit with colour key.
#include "draw/blit_pixel.h"
#include "draw/blit_rows.h"
#include "surface/clip.h"
#include "surface/expand_rows.h"
#include "surface/format_dispatch.h"
#include "surface/palette.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// An opaque 24-bit row copies two bytes per pixel: the last third of each row keeps its old
// contents. Intended.
constexpr int kOpaqueCopyBytesPerPixel24 = 2;

template <class Format>
constexpr size_t OpaqueRowBytes(size_t width) {
  return width * size_t(Format::kBytes == 3 ? kOpaqueCopyBytesPerPixel24 : Format::kBytes);
}

template <class Format>
void BlitSameDepth(const SourceRows& rows, const TSurfDesc& src) {
  if (HasKey(src)) {
    CopyKeyed(Format::kBytes, rows, TransparentValue<Format>(src.colorKey));
    return;
  }
  // Joined but for 24 bits, where each row leaves out its own last third.
  const SourceRows copied =
      Format::kBytes == 3 ? rows : Joined(rows, Format::kBytes, Format::kBytes);
  CopyBytes(OpaqueRowBytes<Format>(copied.width), copied);
}

}  // namespace
}  // namespace pincel

bool DrawBitmap(TSurfDesc& dst, CRectangulo rect, TSurfDesc& src, CPunto at) {
  using namespace pincel;
  return Dispatch(AllFormats{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    if (!ClipRectPoint(dst, rect, at)) return true;
    if (src.bpp == dst.bpp) {
      BlitSameDepth<Format>(RowsOf<Format, Format>(dst, rect, src, at), src);
    } else if constexpr (Format::kBytes > 1) {
      if (src.bpp == 8) {
        ExpandIndexed(Format::kBytes, RowsOf<Format, Indexed8>(dst, rect, src, at),
                      PixelsOfPalette(format, PaletteOrDefault(src)), HasKey(src));
      }
    }
    return true;  // pairs of other depths draw nothing
  });
}

bool DrawBitmap(TSurfDesc& dst, TSurfDesc& src) {
  return DrawBitmap(dst, {0, 0, dst.width, dst.height}, src, {0, 0});
}
