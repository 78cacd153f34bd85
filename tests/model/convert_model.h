// Models of the conversions between formats.
#ifndef TESTS_MODEL_CONVERT_MODEL_H_
#define TESTS_MODEL_CONVERT_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

void Convert(Picture& dst, const Picture& src, uint32_t mode);
void CopyImage(Picture& dst, const Picture& src);

// One pixel, and the whole surface with its key, from one 16-bit packing to another; 18 to 16 and
// to 19 are those from 17.
uint32_t Repacked(int from, int to, uint32_t word);
void Repack(Picture& dst, const Picture& src, int from, int to);
void Convert24To32(Picture& dst, const Picture& src);
void Convert32To24(Picture& dst, const Picture& src);
void Convert8To8(Picture& dst, const Picture& src);

}  // namespace model

#endif  // TESTS_MODEL_CONVERT_MODEL_H_
