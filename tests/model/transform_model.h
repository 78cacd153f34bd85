// Models of mirroring, quarter turns and the brightness shift.
#ifndef TESTS_MODEL_TRANSFORM_MODEL_H_
#define TESTS_MODEL_TRANSFORM_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

void FlipX(Picture& p);

// `fallback` is the palette of 8-bit sources that carry none.
void CreateRotated(Picture& dst, const Picture& src, int mode, const TRGBA* fallback);

void TranslateRect(Picture& dst, const CRectangulo& rect, float amount, const uint8_t* table);

}  // namespace model

#endif  // TESTS_MODEL_TRANSFORM_MODEL_H_
