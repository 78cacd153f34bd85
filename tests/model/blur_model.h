// Models of the directional blurs.
#ifndef TESTS_MODEL_BLUR_MODEL_H_
#define TESTS_MODEL_BLUR_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

bool MotionBlur(Picture& dst, const Picture& mask, const CRectangulo& rect, CPunto at,
                uint32_t colour, int length, float angle);
bool GlowBlur(Picture& dst, const Picture& mask, const CRectangulo& rect, CPunto at,
              uint32_t colour, int length, float angle);
bool MotionMask(Picture& dst, const Picture& mask, const CRectangulo& rect, CPunto at, int level);

}  // namespace model

#endif  // TESTS_MODEL_BLUR_MODEL_H_
