#include "draw/transform_rows.h"

#include <utility>

namespace pincel {
namespace {

template <class Format>
void MirrorRowsOf(const Rows& rows) {
  ForEachRow(rows, [&](uint8_t* dst) {
    uint8_t *left = dst, *right = dst + (rows.width - 1) * Format::kBytes;
    for (; left < right; left += Format::kBytes, right -= Format::kBytes) {
      const auto pixel = Format::Load(left);
      Format::Store(left, Format::Load(right));
      Format::Store(right, pixel);
    }
  });
}

template <class Format>
void TransposeRowsOf(const SourceRows& rows) {
  for (size_t y = 0; y < rows.height; ++y) {
    for (size_t x = 0; x < rows.width; ++x) {
      Format::Store(rows.dst + ptrdiff_t(y) * rows.dst_pitch + x * Format::kBytes,
                    Format::Load(rows.src + ptrdiff_t(x) * rows.src_pitch + y * Format::kBytes));
    }
  }
}

template <class Format>
void ShiftFieldsOf(const Rows& rows, int32_t shift) {
  ForEachRow(rows, [&](uint8_t* dst) {
    for (uint8_t* p = dst; p != dst + rows.width * 2; p += 2) {
      Format::Store(p, ShiftFields<Format>(Format::Load(p), shift));
    }
  });
}

}  // namespace

void MirrorRows(int pixel_bytes, const Rows& rows) {
  switch (pixel_bytes) {
    case 1:
      return MirrorRowsOf<Indexed8>(rows);
    case 2:
      return MirrorRowsOf<Any16>(rows);
    case 3:
      return MirrorRowsOf<Rgb888>(rows);
    default:
      return MirrorRowsOf<Argb8888>(rows);
  }
}

void TransposeRows(int pixel_bytes, const SourceRows& rows) {
  switch (pixel_bytes) {
    case 1:
      return TransposeRowsOf<Indexed8>(rows);
    case 2:
      return TransposeRowsOf<Any16>(rows);
    case 3:
      return TransposeRowsOf<Rgb888>(rows);
    default:
      return TransposeRowsOf<Argb8888>(rows);
  }
}

void ShiftBytes(const Rows& bytes, ByteShift shift) {
  ForEachRow(bytes, [&](uint8_t* dst) {
    for (size_t i = 0; i < bytes.width; ++i) dst[i] = shift(dst[i]);
  });
}

void ShiftFields(Rgb565, const Rows& rows, int32_t shift) { ShiftFieldsOf<Rgb565>(rows, shift); }
void ShiftFields(Rgb555, const Rows& rows, int32_t shift) { ShiftFieldsOf<Rgb555>(rows, shift); }
void ShiftFields(Argb4444, const Rows& rows, int32_t shift) {
  ShiftFieldsOf<Argb4444>(rows, shift);
}

void MapBytes(const Rows& bytes, const uint8_t* table) {
  ForEachRow(bytes, [&](uint8_t* dst) {
    for (size_t i = 0; i < bytes.width; ++i) dst[i] = table[dst[i]];
  });
}

}  // namespace pincel
