// Models of the convolution filters.
#ifndef TESTS_MODEL_CONVOLUTION_MODEL_H_
#define TESTS_MODEL_CONVOLUTION_MODEL_H_

#include <cstdint>
#include <vector>

#include "tests/model/picture.h"

namespace model {

struct Tap {
  int64_t offset;  // bytes
  int64_t weight;
};

// All copy the image's memory to that of `scratch`, from its pixel (0, 0) on, and read from there.
bool Convolve(Picture& image, Picture& scratch, const std::vector<Tap>& taps, int64_t divisor,
              int64_t bias);
bool Smooth(Picture& image, Picture& scratch);
bool Emboss(Picture& image, Picture& scratch);
bool Sharpen(Picture& image, Picture& scratch);
bool FilterByNumber(Picture& image, Picture& scratch, int number);

}  // namespace model

#endif  // TESTS_MODEL_CONVOLUTION_MODEL_H_
