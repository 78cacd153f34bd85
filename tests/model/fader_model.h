// Model of the mix whose level falls along every row.
#ifndef TESTS_MODEL_FADER_MODEL_H_
#define TESTS_MODEL_FADER_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

// The four weights of a pixel, lowest byte first, from the start of a row: `pixel` counts from 0.
int64_t FaderLevels(int64_t start, int64_t step, int64_t hold, int64_t pixel);

bool OpenFader(Picture& dst, const CRectangulo& rect, const Picture& src, CPunto at, int start,
               int step, int hold);

}  // namespace model

#endif  // TESTS_MODEL_FADER_MODEL_H_
