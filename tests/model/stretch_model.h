// Models of the scaling operations.
#ifndef TESTS_MODEL_STRETCH_MODEL_H_
#define TESTS_MODEL_STRETCH_MODEL_H_

#include "tests/model/picture.h"

namespace model {

// The source is read as pixels of the destination's size, whatever its own format.
bool Stretch(Picture& dst, const CRectangulo& dst_rect, const Picture& src,
             const CRectangulo& src_rect, bool smooth);

bool StretchInProportion(Picture& dst, const CRectangulo& dst_rect, const Picture& src,
                         const CRectangulo& src_rect, int bits_per_pixel, bool enable);

void DrawDouble(Picture& dst, const Picture& src, CPunto at);

}  // namespace model

#endif  // TESTS_MODEL_STRETCH_MODEL_H_
