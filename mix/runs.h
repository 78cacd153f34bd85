// Brings sources and masks of every kind into the form that the row kernels take: pixels of the
// destination's layout and one mask byte per pixel. What already has that form is passed on whole;
// the rest goes through a buffer, piece by piece.
#ifndef MIX_RUNS_H_
#define MIX_RUNS_H_

#include <algorithm>

#include "surface/expand_rows.h"
#include "surface/palette.h"
#include "surface/rows.h"

namespace pincel {

// Pixels of a piece. A multiple of four: pieces do not break groups, and a row ends once.
constexpr size_t kPieceWidth = 512;

// Calls `body(rows, x)` for all rows (x 0) or for pieces of them that start at column x. `table` is null for a source in the
// destination's layout, else the pixels of an 8-bit source. Each mask byte is the first of
// `mask_bytes`; there may be no mask.
template <class Format, class Body>
void ForEachRun(const MaskedRows& rows, const PixelTable* table, size_t mask_bytes, Body&& body) {
  if (table == nullptr && (mask_bytes == 1 || rows.mask == nullptr)) {
    body(rows, size_t{0});
    return;
  }
  uint8_t pixels[kPieceWidth * Format::kBytes], bytes[kPieceWidth];
  ForEachRow(rows, [&](uint8_t* dst, const uint8_t* src, const uint8_t* mask) {
    for (size_t x = 0; x < rows.width; x += kPieceWidth) {
      MaskedRows piece = {};
      piece.width = std::min(kPieceWidth, rows.width - x);
      piece.height = 1;
      piece.dst = dst + x * Format::kBytes;
      piece.src = src + x * (table != nullptr ? 1 : Format::kBytes);
      if (table != nullptr) {
        ExpandIndexed(Format::kBytes, {{pixels, 0, piece.width, 1}, piece.src, 0}, *table, false);
        piece.src = pixels;
      }
      if (mask != nullptr) {
        piece.mask = mask + x * mask_bytes;
        if (mask_bytes != 1) {
          for (size_t i = 0; i < piece.width; ++i) bytes[i] = piece.mask[i * mask_bytes];
          piece.mask = bytes;
        }
      }
      body(piece, x);
    }
  });
}

// Calls `body(rows, x)` with a source of one colour, for pieces as wide as its buffer.
template <class Format, class Body>
void ForEachColourRun(MaskedRows rows, uint32_t colour, size_t mask_bytes, Body&& body) {
  uint8_t pixels[kPieceWidth * Format::kBytes];
  for (size_t i = 0; i < std::min(kPieceWidth, rows.width); ++i) {
    Format::Store(pixels + i * Format::kBytes, typename Format::Word(colour));
  }
  rows.src = pixels;
  rows.src_pitch = 0;
  for (size_t left = rows.width; left > 0; left -= rows.width) {
    rows.width = std::min(kPieceWidth, left);
    ForEachRun<Format>(rows, nullptr, mask_bytes, body);
    rows.dst += rows.width * Format::kBytes;
    if (rows.mask != nullptr) rows.mask += rows.width * mask_bytes;
  }
}

// The same rows with every byte a pixel, for kernels that mix bytes.
inline SourceRows InBytes(SourceRows rows, int pixel_bytes) {
  rows.width *= size_t(pixel_bytes);
  return rows;
}

// Whole groups of four pixels, then the 0 to 3 at the end of each row. The two are mixed by rules
// of their own whatever the width of a vector.
struct GroupsAndRest {
  MaskedRows groups, rest;
};
template <class Format>
GroupsAndRest SplitInGroupsOfFour(const MaskedRows& rows) {
  GroupsAndRest split = {rows, rows};
  split.groups.width = rows.width & ~size_t{3};
  split.rest.width = rows.width & 3;
  split.rest.dst += split.groups.width * Format::kBytes;
  split.rest.src += split.groups.width * Format::kBytes;
  if (rows.mask != nullptr) split.rest.mask += split.groups.width;
  return split;
}

}  // namespace pincel

#endif  // MIX_RUNS_H_
