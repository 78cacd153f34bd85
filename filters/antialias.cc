// DoAntiAlias, DoAntiAlias2 and DoAntiAliasBMP.
#include <cstdlib>
#include <memory>

#include "filters/antialias_rows.h"
#include "filters/tone_rows.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

struct Free {
  void operator()(uint8_t* p) const { std::free(p); }
};

// `copied_bytes` of the image are known, in units of four but for what the buffer does not have.
template <class Format>
bool Smooth(const TSurfDesc& image, Smoothing smoothing, size_t copied_bytes) {
  const ptrdiff_t width = image.width, pitch = image.pitch;
  if (image.height <= 4 || width <= 0 || pitch < width * Format::kBytes) return true;
  const std::unique_ptr<uint8_t, Free> lines(
      static_cast<uint8_t*>(std::malloc(kCoverageLines * CoverageLineBytes(size_t(width)))));
  if (lines == nullptr) return false;
  const size_t known = std::min(InUnitsOfFour(copied_bytes), BufferBytes(image));
  SmoothRows(SurfFormat(image), smoothing,
             {image.pixels, pitch, width, image.height, ptrdiff_t(known)}, lines.get());
  return true;
}

}  // namespace
}  // namespace pincel

bool DoAntiAlias(TSurfDesc& image, CRectangulo const&, TSurfDesc&, unsigned short) {
  using namespace pincel;
  return Dispatch(AllFormats{}, image, false, [&](auto f) {
    using Format = decltype(f);
    if constexpr (Format::kBytes == 1) return true;  // nothing to do
    return Smooth<Format>(image, Smoothing::kSoften, BufferBytes(image));
  });
}

bool DoAntiAlias2(TSurfDesc& image, CRectangulo const&, TSurfDesc&, unsigned short) {
  using namespace pincel;
  return Dispatch(DirectColour{}, image, false, [&](auto f) {
    // As many rows as the image has columns. Intended.
    const size_t copied = size_t(std::max(image.width, 0)) * size_t(std::max(image.pitch, 0));
    return Smooth<decltype(f)>(image, Smoothing::kCross, copied);
  });
}

// Takes its neighbours from the bytes that it has walked over already, as codes. Intended.
bool DoAntiAliasBMP(TSurfDesc& image, unsigned short level) {
  using namespace pincel;
  const int64_t pitch = image.pitch, count = (int64_t{image.height} - 4) * pitch - 4;
  if (image.height > 4 && pitch > 0 && count > 0) {
    CodeEdges(image.pixels + 2 * pitch + 2, size_t(pitch), size_t(count));
  }
  if (level != 256) ScaleBuffer(image, uint8_t(level));
  return true;
}
