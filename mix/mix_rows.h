// Row kernels of mixing, for the instruction set of the machine. Byte formats (24 and 32 bits) are
// mixed byte by byte where no pixel needs to be told from the next: there a row counts in bytes.
#ifndef MIX_MIX_ROWS_H_
#define MIX_MIX_ROWS_H_

#include "mix/mix_pixel.h"
#include "surface/rows.h"

namespace pincel {

// One weight for all.
void MixByteRows(const SourceRows& bytes, int weight);
void MixFieldRows(int format, const SourceRows& rows, uint32_t weight);

// The shares 1/4, 1/2, 3/4 (`quarters` 1 to 3).
enum class Quarters { kInGroup, kAtRowEnd, kPerPixel };
void MixByteQuarters(const SourceRows& bytes, int quarters);
void MixFieldQuarters(int format, Quarters form, const SourceRows& rows, int quarters);

// One mask byte per pixel.
void MixRowsMasked(int format, const MaskedRows& rows, MaskRule rule);
// 16-bit pixels four at a time; `rows.width` is a multiple of four. A group copies when all four
// bytes are 255; a lone 255 mixes with weight 255. Intended.
void MixGroupsMasked(int format, const MaskedRows& rows, MaskRule rule);

// One weight byte per byte of the pixels; at 16 bits a word of four weight bytes per pixel: blue,
// green, red and one that does not count.
void FadeByteRows(const MaskedRows& bytes);
void FadeFieldRows(int format, const MaskedRows& rows);

}  // namespace pincel

#endif  // MIX_MIX_ROWS_H_
