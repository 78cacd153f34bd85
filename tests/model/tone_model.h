// Models of the darkening factor, the gradient, and the making of masks and shadows.
#ifndef TESTS_MODEL_TONE_MODEL_H_
#define TESTS_MODEL_TONE_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

void Darken(Picture& p, int factor);

bool FillGradient(Picture& p, uint32_t from, uint32_t to);

bool CreateMask(Picture& mask, const Picture& src, int level);

bool CreateShadow(Picture& shadow, const Picture& src, int decay, int limit, int factor);

}  // namespace model

#endif  // TESTS_MODEL_TONE_MODEL_H_
