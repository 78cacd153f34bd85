// What Line draws, pixel by pixel.
#ifndef TESTS_MODEL_LINE_MODEL_H_
#define TESTS_MODEL_LINE_MODEL_H_

#include "tests/model/picture.h"

namespace model {

// `fallback` holds the 256 colours of an 8-bit picture that has no palette of its own.
void Line(Picture& p, CPunto p1, CPunto p2, uint32_t colour, int alpha, bool soft, int thickness,
          const TRGBA* fallback);

}  // namespace model

#endif  // TESTS_MODEL_LINE_MODEL_H_
