// What the JPEG loaders store, pixel by pixel, given the decoder's plain output.
#ifndef TESTS_MODEL_JPEG_MODEL_H_
#define TESTS_MODEL_JPEG_MODEL_H_

#include "tests/model/picture.h"

namespace model {

// An image of `width` columns and as many rows as `samples` has: red, green, blue of each pixel, or
// one index for 8-bit pictures.
void StoreJpeg(Picture& picture, int width, const std::vector<uint8_t>& samples);

// The same for the loader that knows where the file ends.
void StoreBoundedJpeg(Picture& picture, int width, const std::vector<uint8_t>& samples);

}  // namespace model

#endif  // TESTS_MODEL_JPEG_MODEL_H_
