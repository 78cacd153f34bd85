// Row kernel of the loaders: colours into 32-bit pixels whose fourth byte is not theirs.
#ifndef LOADERS_COLOUR_ROWS_H_
#define LOADERS_COLOUR_ROWS_H_

#include "surface/rows.h"

namespace pincel {

// Stores blue, green and red of pixels of `src_bytes` bytes, 3 or 4; fourth bytes are kept.
void StoreColourBytes(int src_bytes, const SourceRows& rows);

}  // namespace pincel

#endif  // LOADERS_COLOUR_ROWS_H_
