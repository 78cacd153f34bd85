// Exact search for the nearest palette entry of many pixels.
#ifndef CONVERT_NEAREST_H_
#define CONVERT_NEAREST_H_

#include "convert/convert_rows.h"
#include "surface/palette.h"

namespace pincel {

// Reduction to the index that NearestColor gives. `SrcFields` has the channels in the roles in which
// they are searched for.
template <class SrcFormat, class SrcFields = ReducedFields<SrcFormat>>
struct ToNearest {
  using Src = SrcFormat;
  using Roles = MovedFields<ByteFields, SrcFields>;

  // A colour to hide, in these roles.
  static constexpr uint32_t HiddenInRoles(uint32_t hidden) {
    return PackedFields<Src> || hidden == kHidesNothing ? hidden : Roles::Of(hidden);
  }
};
using EntryToNearest = ToNearest<Argb8888, ByteFields>;

using NearestReductions = FormulaList<ToNearest<Rgb565>, ToNearest<Rgb555>, ToNearest<Argb4444>,
                                      ToNearest<Rgb888>, ToNearest<Argb8888>, EntryToNearest>;

template <class Reduction>
void NearestPixel(uint8_t* dst, const uint8_t* src, const TRGBA* palette, uint32_t hidden) {
  const uint32_t word = Reduction::Src::Load(src);
  const Bgr c = ToBgr(Reduction::Roles::Of(word));
  *dst = ColourOf<typename Reduction::Src>::Of(word) == hidden
             ? 0
             : uint8_t(NearestColor(palette, c.red, c.green, c.blue));
}

void NearestRows(size_t reduction, const SourceRows& rows, const TRGBA* palette, uint32_t hidden);

// Every pixel becomes the index of its nearest entry, those of the colour `hidden` 0.
template <class Reduction>
void ReduceToNearest(const SourceRows& rows, const TRGBA* palette, uint32_t hidden) {
  NearestRows(PositionIn<Reduction>(NearestReductions{}), rows, palette, hidden);
}

// The nearest entry of `palette` for each of the 256 `colours`.
inline void NearestEntries(uint8_t (&nearest)[256], const TRGBA* colours, const TRGBA* palette) {
  const SourceRows row{{nearest, 256, 256, 1}, &colours->blue, 4 * 256};
  ReduceToNearest<EntryToNearest>(row, palette, kHidesNothing);
}

}  // namespace pincel

#endif  // CONVERT_NEAREST_H_
