// The passes of a directional blur, for the instruction set of the machine.
#ifndef FILTERS_BLUR_ROWS_H_
#define FILTERS_BLUR_ROWS_H_

#include <span>

#include "filters/blur_pixel.h"
#include "surface/rows.h"

namespace pincel {

// Passes of a step below kLeastStep are left out, so that there is an end to them: an even blur has
// 2h passes of step 256 / h, a glow at most two of every step.
inline constexpr size_t kMostPasses = 2 * 256 / kLeastStep;

// A mask whose pixels start with their value: 1 or 4 bytes each. It has at least one row.
struct BlurMask {
  const uint8_t* pixels;
  int64_t pitch, height;
  int bytes;
};

// The mask pixel on the area's first one, and how strongly the mask paints.
struct BlurPass {
  int64_t x, y;
  uint32_t step;
};

// Paints a packed colour onto the area, pass by pass; at most kMostPasses. `format` is that of the
// area.
void PaintPasses(int format, const Rows& area, uint32_t colour, const BlurMask& mask,
                 std::span<const BlurPass> passes);

}  // namespace pincel

#endif  // FILTERS_BLUR_ROWS_H_
