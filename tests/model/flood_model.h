// What Rellena marks and paints, cell by cell.
#ifndef TESTS_MODEL_FLOOD_MODEL_H_
#define TESTS_MODEL_FLOOD_MODEL_H_

#include "tests/model/picture.h"

namespace model {

// `mask` is an 8-bit picture of the same size; it keeps the neighbour bits.
void Flood(Picture& p, Picture& mask, int x, int y, uint32_t tolerance, uint32_t reference,
           uint32_t colour);

}  // namespace model

#endif  // TESTS_MODEL_FLOOD_MODEL_H_
