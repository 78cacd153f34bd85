// What the loaders ask of the machine's instruction set: colours into 32-bit pixels whose fourth byte
// is not theirs.
#ifndef LOADERS_COLOUR_ROWS_H_
#define LOADERS_COLOUR_ROWS_H_

#include "surface/rows.h"

namespace pincel {

// Stores blue, green and red of pixels of `src_bytes` bytes, 3 or 4; fourth bytes are kept.
void StoreColourBytes(int src_bytes, const SourceRows& rows);

// Whether palette indices become pixels about as fast as pixels are stored.
bool ExpandsInRegisters();

}  // namespace pincel

#endif  // LOADERS_COLOUR_ROWS_H_
