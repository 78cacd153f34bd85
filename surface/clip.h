// Clipping: which pixels an operation may touch. Defined for every 32-bit coordinate.
#ifndef SURFACE_CLIP_H_
#define SURFACE_CLIP_H_

#include <algorithm>

#include "include/pincel.h"

namespace pincel {

inline bool PointInSurface(const TSurfDesc& surface, const CPunto& point) {
  return 0 <= point.x && point.x < surface.width && 0 <= point.y && point.y < surface.height;
}

// Clamps the rectangle into the surface, written back in any case; false when nothing is left.
inline bool ClipRect(const TSurfDesc& surface, CRectangulo& rect) {
  rect.left = std::max(rect.left, 0);
  rect.top = std::max(rect.top, 0);
  rect.right = std::min(rect.right, surface.width);
  rect.bottom = std::min(rect.bottom, surface.height);
  return rect.left < rect.right && rect.top < rect.bottom;
}

// Moves a source point by as much as clipping moved the top-left corner; wraps, never overflows.
inline void MovePoint(CPunto& point, const CRectangulo& before, const CRectangulo& after) {
  const auto moved = [](int32_t at, int32_t from, int32_t to) {
    return int32_t(uint32_t(at) + uint32_t(to) - uint32_t(from));
  };
  point.x = moved(point.x, before.left, after.left);
  point.y = moved(point.y, before.top, after.top);
}

// ClipRect that keeps a source point on the rectangle's top-left corner. The point is not checked.
inline bool ClipRectPoint(const TSurfDesc& surface, CRectangulo& rect, CPunto& point) {
  const CRectangulo before = rect;
  const bool visible = ClipRect(surface, rect);
  MovePoint(point, before, rect);
  return visible;
}

inline bool ClipRectTwoPoints(const TSurfDesc& surface, CRectangulo& rect, CPunto& first,
                              CPunto& second) {
  const CRectangulo before = rect;
  const bool visible = ClipRect(surface, rect);
  MovePoint(first, before, rect);
  MovePoint(second, before, rect);
  return visible;
}

}  // namespace pincel

#endif  // SURFACE_CLIP_H_
