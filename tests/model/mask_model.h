// Models of painting and shading through masks.
#ifndef TESTS_MODEL_MASK_MODEL_H_
#define TESTS_MODEL_MASK_MODEL_H_

#include <cstdint>

#include "tests/model/mix_model.h"
#include "tests/model/picture.h"

namespace model {

// `global` stands for lu_gPaleta. Each gives the documented result.
bool DrawMask(Picture& dst, const CRectangulo& rect, const Picture& mask, CPunto mask_at,
              uint32_t colour, MixPlanes table, const TRGBA* global);
bool DrawMask8Bits(Picture& dst, const CRectangulo& rect, const Picture& mask, CPunto mask_at,
                   uint32_t colour, MixPlanes table, const TRGBA* global);
bool MaskFillRect(Picture& dst, const CRectangulo& rect, uint32_t colour, int64_t level);
bool MaskFillRect8Bits(Picture& dst, const CRectangulo& rect, uint32_t colour, int64_t level,
                       MixPlanes table, const TRGBA* global);
bool DrawBiMask(Picture& dst, int64_t level, const CRectangulo& rect, const Picture& mask,
                CPunto mask_at, MixPlanes table, const TRGBA* global);
bool DrawBiMask8Bits(Picture& dst, int64_t level, const CRectangulo& rect, const Picture& mask,
                     CPunto mask_at, MixPlanes table, const TRGBA* global);

}  // namespace model

#endif  // TESTS_MODEL_MASK_MODEL_H_
