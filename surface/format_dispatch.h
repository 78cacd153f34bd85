// The frame of every operation: classify the destination, choose the implementation, once per call.
#ifndef SURFACE_FORMAT_DISPATCH_H_
#define SURFACE_FORMAT_DISPATCH_H_

#include "surface/pixel_format.h"

namespace pincel {

// The format code of a surface: 8, 16 (565), 17 (555), 18 (1555), 19 (4444), 24, 32; any other
// depth comes back as itself and matches no format.
inline int SurfFormat(const TSurfDesc& surface) {
  if (surface.bpp != 16) return int(surface.bpp);
  if (surface.rMask == 0x7C00) return surface.aMask == 0 ? 17 : 18;
  if (surface.rMask == 0x0F00) return 19;
  return 16;  // any other layout, blue-first ones too, counts as 565. Intended.
}

// The formats that an operation supports, in the order in which they are tried.
template <class... Formats>
struct FormatList {};
using AllFormats = FormatList<Argb8888, Rgb888, Rgb565, Rgb555, Argb4444, Indexed8>;
using AllDepths = FormatList<Argb8888, Rgb888, Any16, Indexed8>;
using DirectColour = FormatList<Argb8888, Rgb888, Rgb565, Rgb555, Argb4444>;

// Calls `body(Format{})` for the first listed format that `surface` has; `unsupported` when none.
template <class... Formats, class Result, class Body>
Result Dispatch(FormatList<Formats...>, const TSurfDesc& surface, Result unsupported, Body&& body) {
  const int code = SurfFormat(surface);
  Result result = unsupported;
  (void)(... || (Formats::Accepts(code) && ((result = body(Formats{})), true)));
  return result;
}

}  // namespace pincel

#endif  // SURFACE_FORMAT_DISPATCH_H_
