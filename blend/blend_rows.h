// Row kernels of the blend modes, for the instruction set of the machine.
#ifndef BLEND_BLEND_ROWS_H_
#define BLEND_BLEND_ROWS_H_

#include "surface/rows.h"

namespace pincel {

// In the order of the kernel tables (blend_rows-inl.h).
enum class BlendMode { kAdd, kSubtract, kMultiply, kScreen, kLighten, kDarken, kOverlay };

// Replaces destination pixels by their blend with the source, but for source pixels whose compared
// bits equal `transparent` (see blend_pixel.h).
void BlendRows(Rgb565, BlendMode mode, const SourceRows& rows, uint32_t transparent);
void BlendRows(Rgb555, BlendMode mode, const SourceRows& rows, uint32_t transparent);
void BlendRows(Argb4444, BlendMode mode, const SourceRows& rows, uint32_t transparent);
void BlendRows(Rgb888, BlendMode mode, const SourceRows& rows, uint32_t transparent);
void BlendRows(Argb8888, BlendMode mode, const SourceRows& rows, uint32_t transparent);

// A source that is one pixel over and over has a step and a pitch of 0, and lies in memory as often
// as one step of the widest kernel reads it.
inline constexpr size_t kRepeatedPixels = 64;

// Takes destination pixels as far towards their blend with the source as the mask says; those whose
// mask byte is 0 are left alone. Source pixels are `src_step` bytes apart.
void BlendMaskedRows(Rgb565, BlendMode mode, const MaskedRows& rows, size_t src_step);
void BlendMaskedRows(Rgb555, BlendMode mode, const MaskedRows& rows, size_t src_step);
void BlendMaskedRows(Argb4444, BlendMode mode, const MaskedRows& rows, size_t src_step);
void BlendMaskedRows(Rgb888, BlendMode mode, const MaskedRows& rows, size_t src_step);
void BlendMaskedRows(Argb8888, BlendMode mode, const MaskedRows& rows, size_t src_step);

}  // namespace pincel

#endif  // BLEND_BLEND_ROWS_H_
