// Models of the blit, the fills, frames and the block copy.
#ifndef TESTS_MODEL_DRAW_MODEL_H_
#define TESTS_MODEL_DRAW_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

// `fallback` is the palette of 8-bit sources that carry none.
void DrawBitmap(Picture& dst, const CRectangulo& rect, const Picture& src, CPunto at,
                const TRGBA* fallback);

// What a fill stores for a colour 0xAARRGGBB.
uint32_t FillValue(int format, uint32_t colour);
void FillRect(Picture& dst, const CRectangulo& rect, uint32_t colour);
void LineHorizontal(Picture& dst, CPunto p, int64_t length, uint32_t colour);
void LineVertical(Picture& dst, CPunto p, int64_t length, uint32_t colour);
void FrameBottomRight(Picture& dst, const CRectangulo& rect, uint32_t colour);
bool RectShadow(Picture& dst, const CRectangulo& rect, int step, int depth);

void DrawBlock(Picture& dst, const Picture& src, int sx, int sy, int dx, int dy, int w, int h);

}  // namespace model

#endif  // TESTS_MODEL_DRAW_MODEL_H_
