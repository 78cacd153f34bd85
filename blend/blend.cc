// The seven blend modes, each with a source, with a colour through a mask, and with a source through
// a mask.
#include "blend/blend_pixel.h"
#include "blend/blend_rows.h"
#include "surface/clip.h"
#include "surface/format_dispatch.h"

namespace pincel {
namespace {

// The point as passed in must lie inside, wherever clipping moves it, and nothing visible is a
// failure. Intended.
bool BlendSource(BlendMode mode, const TSurfDesc& dst, CRectangulo rect, const TSurfDesc& src,
                 CPunto at) {
  return Dispatch(DirectColour{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    if (!PointInSurface(src, at)) return false;
    if (!ClipRectPoint(dst, rect, at)) return false;
    BlendRows(format, mode, RowsOf<Format, Format>(dst, rect, src, at),
              TransparentValue<Format>(src));
    return true;
  });
}

// The mask byte of each pixel follows that of its neighbour, the source's pixels stand `src_step`
// bytes apart.
template <class Format>
void BlendMasked(Format format, BlendMode mode, const MaskedRows& rows, size_t src_step) {
  BlendMaskedRows(format, mode, Joined(rows, Format::kBytes, src_step, 1), src_step);
}

// A colour 0xAARRGGBB as the format stores it.
template <class Format>
uint32_t StoredColour(uint32_t colour) {
  if constexpr (PackedFields<Format>) return Format::Pack(ToBgr(colour));
  return colour;
}

// As BlendSource, with the point in the mask.
bool BlendColour(BlendMode mode, const TSurfDesc& dst, CRectangulo rect, uint32_t colour,
                 const TSurfDesc& mask, CPunto mask_at) {
  return Dispatch(DirectColour{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    if (!PointInSurface(mask, mask_at)) return false;
    if (!ClipRectPoint(dst, rect, mask_at)) return false;
    alignas(64) uint8_t pixels[kRepeatedPixels * Format::kBytes];
    for (size_t i = 0; i < sizeof(pixels); i += Format::kBytes) {
      Format::Store(pixels + i, typename Format::Word(StoredColour<Format>(colour)));
    }
    const SourceRows rows = RowsOf<Format, Indexed8>(dst, rect, mask, mask_at);
    BlendMasked(format, mode, {{rows, pixels, 0}, rows.src, rows.src_pitch}, 0);
    return true;
  });
}

// Here no start point is checked. Intended.
bool BlendMaskedSource(BlendMode mode, const TSurfDesc& dst, CRectangulo rect, const TSurfDesc& src,
                       CPunto src_at, const TSurfDesc& mask, CPunto mask_at) {
  return Dispatch(DirectColour{}, dst, false, [&](auto format) {
    using Format = decltype(format);
    if (!ClipRectTwoPoints(dst, rect, src_at, mask_at)) return false;
    BlendMasked(format, mode,
                RowsOf<Format, Format, Indexed8>(dst, rect, src, src_at, mask, mask_at),
                Format::kBytes);
    return true;
  });
}

}  // namespace
}  // namespace pincel

using pincel::BlendMode;

bool DoSuma(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kAdd, dst, rect, src, at);
}
bool DoSuma(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
            CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kAdd, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoSuma(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
            TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kAdd, dst, rect, src, srcAt, mask, maskAt);
}

bool DoResta(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kSubtract, dst, rect, src, at);
}
bool DoResta(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
             CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kSubtract, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoResta(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
             TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kSubtract, dst, rect, src, srcAt, mask, maskAt);
}

bool DoMultiplica(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kMultiply, dst, rect, src, at);
}
bool DoMultiplica(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
                  CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kMultiply, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoMultiplica(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
                  TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kMultiply, dst, rect, src, srcAt, mask, maskAt);
}

bool DoScreen(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kScreen, dst, rect, src, at);
}
bool DoScreen(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
              CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kScreen, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoScreen(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
              TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kScreen, dst, rect, src, srcAt, mask, maskAt);
}

bool DoLighten(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kLighten, dst, rect, src, at);
}
bool DoLighten(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
               CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kLighten, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoLighten(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
               TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kLighten, dst, rect, src, srcAt, mask, maskAt);
}

bool DoDarken(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kDarken, dst, rect, src, at);
}
bool DoDarken(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
              CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kDarken, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoDarken(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
              TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kDarken, dst, rect, src, srcAt, mask, maskAt);
}

bool DoSuperponer(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at) {
  return pincel::BlendSource(BlendMode::kOverlay, dst, rect, src, at);
}
bool DoSuperponer(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour, TSurfDesc& mask,
                  CPunto const& maskAt) {
  return pincel::BlendColour(BlendMode::kOverlay, dst, rect, uint32_t(colour), mask, maskAt);
}
bool DoSuperponer(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
                  TSurfDesc& mask, CPunto const& maskAt) {
  return pincel::BlendMaskedSource(BlendMode::kOverlay, dst, rect, src, srcAt, mask, maskAt);
}
