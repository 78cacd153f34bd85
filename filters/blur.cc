// Directional blurs: a mask is painted once for each position along a line.
#include <algorithm>
#include <array>
#include <cmath>

#include "filters/blur_rows.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

// What a call paints. Passes are added in the order in which they are painted.
class Painting {
 public:
  // `area` is `rect`, clipped.
  Painting(const CRectangulo& area, const CRectangulo& rect) : area_(area), rect_(rect) {}

  void Add(CPunto at, uint32_t step) {
    if (step < kLeastStep) return;
    MovePoint(at, rect_, area_);
    passes_[count_++] = {at.x, at.y, step};
  }
  // Unsupported formats and masks of other depths paint nothing, and no result tells. Intended.
  void Paint(const TSurfDesc& dst, const TSurfDesc& mask, uint32_t colour) const {
    if (count_ == 0 || mask.height <= 0 || (mask.bpp != 8 && mask.bpp != 32)) return;
    Dispatch(DirectColour{}, dst, false, [&](auto format) {
      PaintPasses(SurfFormat(dst), RowsOf<decltype(format)>(dst, area_), colour,
                  {mask.pixels, mask.pitch, mask.height, int(mask.bpp / 8)},
                  {passes_.data(), count_});
      return true;
    });
  }

 private:
  CRectangulo area_, rect_;
  std::array<BlurPass, kMostPasses> passes_;
  size_t count_ = 0;
};

// Truncated toward zero, not rounded: 1.9999999 is 1. Intended. The nearest there is for what 32 bits
// do not hold.
int32_t Truncated(double value) {
  return int32_t(std::clamp(value, double{INT32_MIN}, double{INT32_MAX}));
}

// The positions of the mask along a line.
class Track {
 public:
  Track(CPunto at, float angle) : at_(at) {
    const double finite = std::isfinite(angle) ? double{angle} : 0.0;
    // Single precision makes the sine of a quarter turn 1, its cosine is a little less than 0.
    cosine_ = float(std::cos(finite));
    sine_ = float(std::sin(finite));
  }
  CPunto Position(int steps) const {
    return {Truncated(steps * double{cosine_} + at_.x), Truncated(steps * double{sine_} + at_.y)};
  }

 private:
  CPunto at_;
  float cosine_, sine_;
};

}  // namespace
}  // namespace pincel

bool FiltroMotionBlur(TSurfDesc& dst, TSurfDesc& mask, CRectangulo const& rect, CPunto const& at,
                      unsigned long colour, int length, float angle) {
  using namespace pincel;
  CRectangulo area = rect;
  if (!ClipRect(dst, area)) return false;
  CRectangulo covered = {0, 0, area.right - area.left, area.bottom - area.top};
  if (!ClipRect(mask, covered)) return false;
  area.right = area.left + covered.right;
  area.bottom = area.top + covered.bottom;
  if (length < 2) return true;

  Painting painting(area, rect);
  const Track track(at, angle);
  const int half = length / 2, step = 256 / half;
  if (step < int(kLeastStep)) return true;
  for (int k = half - 1; k >= -half; --k) painting.Add(track.Position(k), uint32_t(step));
  painting.Paint(dst, mask, uint32_t(colour));
  return true;
}

bool FiltroBrilloBlur(TSurfDesc& dst, TSurfDesc& mask, CRectangulo const& rect, CPunto const& at,
                      unsigned long colour, int length, float angle) {
  using namespace pincel;
  CRectangulo area = rect;
  if (!ClipRect(dst, area)) return true;  // and false after drawing. Intended.
  if (length < 2) return false;

  Painting painting(area, rect);
  const Track track(at, angle);
  const int half = length / 2;
  constexpr int kFarthest = 128 / int(kLeastStep);  // step 256 / 2k
  for (int k = std::min(half - 1, kFarthest); k >= std::max(-half, -kFarthest); --k) {
    painting.Add(track.Position(k), uint32_t(256 / std::max(1, std::abs(2 * k))));
  }
  painting.Paint(dst, mask, uint32_t(colour));
  return false;
}

bool FiltroMotionMask(TSurfDesc& dst, TSurfDesc& mask, CRectangulo const& rect, CPunto const& at,
                      int level) {
  using namespace pincel;
  CRectangulo area = rect;
  if (!ClipRect(dst, area)) return true;  // and false after drawing. Intended.
  Painting painting(area, rect);
  painting.Add(at, uint16_t(level));
  // White has no alpha at 32 bits and, in the half that 16 bits take, all of it. Intended.
  painting.Paint(dst, mask, 0xFFFFFF);
  return false;
}
