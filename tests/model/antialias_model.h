// Models of the anti-aliasing of coverage images.
#ifndef TESTS_MODEL_ANTIALIAS_MODEL_H_
#define TESTS_MODEL_ANTIALIAS_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

bool AntiAlias(Picture& image);
bool AntiAliasCross(Picture& image);
bool EdgeCodes(Picture& image, int64_t level);

}  // namespace model

#endif  // TESTS_MODEL_ANTIALIAS_MODEL_H_
