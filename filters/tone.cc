// DoFactor and DoGradient.
#include "convert/convert_rows.h"
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

  uint32_t Next() {
    const uint32_t byte = Integer(value_);
    value_ += step_;
    return byte;
  }

 private:
  // Of a negative value the one's complement of its high half. Steps are truncated toward zero, so
  // that a ramp does not get there.
  static constexpr uint32_t Integer(int32_t value) {
    return uint32_t(value >> 16 ^ value >> 31) & 0xFF;
  }

  int32_t value_, step_;
};

// The first row, as 32-bit pixels that are packed piece by piece.
template <class Format>
void PaintRow(uint8_t* dst, size_t width, Ramp blue, Ramp green, Ramp red) {
  constexpr size_t kPiece = 256;
  uint32_t words[kPiece];
  for (size_t x = 0; x < width; x += kPiece) {
    const size_t count = std::min(kPiece, width - x);
    for (size_t i = 0; i < count; ++i) {
      words[i] = blue.Next() | green.Next() << 8 | red.Next() << 16;
    }
    uint8_t* const to = dst + x * Format::kBytes;
    if constexpr (Format::kBytes == 4) {
      std::memcpy(to, words, count * 4);
    } else {
      using Alpha =
          std::conditional_t<FieldsOf<Format>::Alpha::kWidth % 8 == 0, NoAlpha, AlphaOfSource>;
      Repack<Repacking<Format, Argb8888, Alpha>>(
          {{to, 0, count, 1}, reinterpret_cast<const uint8_t*>(words), 0});
    }
  }
}

// Copies the first row to all others. Where rows follow each other, first to as many as the nearest
// cache holds, by ever larger pieces; these then to all others.
void RepeatFirstRow(const Rows& rows, size_t row_bytes) {
  constexpr size_t kPiece = 16384, kCached = size_t{1} << 20;
  if (rows.dst_pitch != ptrdiff_t(row_bytes)) {
    for (size_t y = 1; y < rows.height; ++y) {
      std::memmove(rows.dst + ptrdiff_t(y) * rows.dst_pitch, rows.dst, row_bytes);
    }
    return;
  }
  const size_t size = rows.height * row_bytes;
  const size_t most = std::min(std::max<size_t>(kPiece / row_bytes, 1) * row_bytes, size);
  for (size_t done = row_bytes; done < most; done *= 2) {
    std::memcpy(rows.dst + done, rows.dst, std::min(done, most - done));
  }
  if (size <= kCached) {
    RepeatBytes(rows.dst, most, size);
    return;
  }
  // The string copy behind memcpy does not read what it overwrites.
  for (size_t done = most; done < size; done += most) {
    std::memcpy(rows.dst + done, rows.dst, std::min(most, size - done));
  }
}

template <class Format>
void FillGradient(const TSurfDesc& image, Bgr from, Bgr to) {
  const Rows rows = AllRows<Format>(image);
  PaintRow<Format>(rows.dst, rows.width, Ramp(from.blue, to.blue, image.width),
                   Ramp(from.green, to.green, image.width), Ramp(from.red, to.red, image.width));
  RepeatFirstRow(rows, rows.width * Format::kBytes);
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
