// DoFactor and DoGradient.
#include "filters/tone_rows.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

template <class Format>
Rows AllRows(const TSurfDesc& image) {
  return RowsOf<Format>(image, {0, 0, std::max(image.width, 0), std::max(image.height, 0)});
}

// A channel on its way from one value to another, in 16.16 fixed point. After as many steps as
// there are columns it would be there: the last column is one short. Intended.
class Ramp {
 public:
  Ramp(int from, int to, int width)
      : value_(from * 65536), step_(int32_t(double(to - from) / width * 65536)) {}

  uint8_t Next() {
    const uint8_t byte = Integer(value_);
    value_ += step_;
    return byte;
  }

 private:
  // Of a negative value the one's complement of its high half. Steps are truncated toward zero, so
  // that a ramp does not get there.
  static constexpr uint8_t Integer(int32_t value) {
    return uint8_t(value < 0 ? ~(value >> 16) : value >> 16);
  }

  int32_t value_, step_;
};

// Paints the first row and copies it to the others.
template <class Format>
void FillGradient(const TSurfDesc& image, Bgr from, Bgr to) {
  Ramp blue(from.blue, to.blue, image.width), green(from.green, to.green, image.width),
      red(from.red, to.red, image.width);
  const Rows rows = AllRows<Format>(image);
  for (size_t x = 0; x < rows.width; ++x) {
    const Bgr colour = {blue.Next(), green.Next(), red.Next()};
    Format::Store(rows.dst + x * Format::kBytes, Format::Pack(colour));
  }
  for (size_t y = 1; y < rows.height; ++y) {
    std::memmove(rows.dst + ptrdiff_t(y) * rows.dst_pitch, rows.dst, rows.width * Format::kBytes);
  }
}

}  // namespace
}  // namespace pincel

bool DoFactor(TSurfDesc& image, unsigned short factor) {
  using namespace pincel;
  if (factor >= 256) return true;  // in every format, also one that there is not. Intended.
  return Dispatch(AllFormats{}, image, false, [&](auto f) {
    using Format = decltype(f);
    if constexpr (Format::kBytes == 4) {
      // The fourth byte is scaled by the surface's height. Intended.
      ScaleWords(AllRows<Format>(image), factor, uint8_t(image.height));
    } else if constexpr (Format::kBytes == 3) {
      Rows rows = AllRows<Format>(image);
      rows.width *= 3;
      ScaleBytes(rows, factor);
    } else if constexpr (Format::kBytes == 2) {
      // The first width x height pixels of the buffer, whatever the pitch. Intended.
      const Rows rows = AllRows<Format>(image);
      const size_t pixels = std::min(rows.width * rows.height, BufferBytes(image) / 2);
      ScaleFields(SurfFormat(image), {rows.dst, 0, pixels, 1}, factor);
    } else {
      ScaleBuffer(image, factor);  // the indices themselves
    }
    return true;
  });
}

bool DoGradient(TSurfDesc& image, unsigned long const& from, unsigned long const& to) {
  using namespace pincel;
  const Bgr first = ToBgr(uint32_t(from)), last = ToBgr(uint32_t(to));
  return Dispatch(DirectColour{}, image, false, [&](auto f) {
    if (image.width == 0) return false;
    if (image.width > 0 && image.height > 0) FillGradient<decltype(f)>(image, first, last);
    return true;
  });
}
