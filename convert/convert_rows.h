// Row kernels of the conversions, for the instruction set of the machine.
#ifndef CONVERT_CONVERT_ROWS_H_
#define CONVERT_CONVERT_ROWS_H_

#include "convert/convert_pixel.h"
#include "surface/rows.h"

namespace pincel {

// The formulas that have row kernels; a function is asked for by position.
template <class... Formulas>
struct FormulaList {};

template <class Formula, class... Formulas>
constexpr size_t PositionIn(FormulaList<Formulas...>) {
  size_t position = 0;
  (void)(... || (std::is_same_v<Formula, Formulas> || (++position, false)));
  return position;
}

using Repackings =
    FormulaList<Pack565To555, Pack555To565, Pack565To1555, Pack555To1555, Pack555To4444,
                Pack565To4444, Pack4444To565, Pack4444To555, Pack565To24, Pack555To24, Pack4444To24,
                Pack565To32, Pack555To32, Pack1555To32, Pack4444To32, Pack24To565, Pack24To555,
                Pack24To4444, Pack32To565, Pack32To555, Pack32To4444, Pack24To32, Pack32To24>;
using Reductions = FormulaList<ToTruncated<Rgb565>, ToTruncated<Rgb555>, ToTruncated<Argb4444>,
                               ToTruncated<Rgb888>, ToTruncated<Argb8888>, ToCube<Rgb565>,
                               ToCube<Rgb555>, ToCube<Argb4444>, ToCube<Rgb888>, ToCube<Argb8888>>;

void RepackRows(size_t formula, const SourceRows& rows);
void ReduceRows(size_t formula, const SourceRows& rows, uint32_t hidden);

template <class Formula>
void Repack(const SourceRows& rows) {
  RepackRows(PositionIn<Formula>(Repackings{}), rows);
}

// Pixels of the colour `hidden` become 0.
template <class Formula>
void Reduce(const SourceRows& rows, uint32_t hidden) {
  ReduceRows(PositionIn<Formula>(Reductions{}), rows, hidden);
}

}  // namespace pincel

#endif  // CONVERT_CONVERT_ROWS_H_
