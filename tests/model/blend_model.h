// Models of the blend modes.
#ifndef TESTS_MODEL_BLEND_MODEL_H_
#define TESTS_MODEL_BLEND_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

enum class Mode { kAdd, kSubtract, kMultiply, kScreen, kLighten, kDarken, kOverlay };
inline constexpr Mode kModes[] = {Mode::kAdd,     Mode::kSubtract, Mode::kMultiply, Mode::kScreen,
                                  Mode::kLighten, Mode::kDarken,   Mode::kOverlay};

// One channel, all values 0..255: a of the destination, b of the source.
int BlendByte(Mode mode, int a, int b);   // 24 and 32 bits
int BlendField(Mode mode, int a, int b);  // 16 bits
// From d towards the blended value t by the mask byte m; b is the source's channel.
int MixByte(Mode mode, int d, int b, int t, int m);
int MixField(int d, int t, int m);

// One pixel as stored; with a mask byte other than 0.
uint32_t BlendPixel(Mode mode, int format, uint32_t dst, uint32_t src);
uint32_t BlendMaskedPixel(Mode mode, int format, uint32_t dst, uint32_t src, int m);

// The colour 0xAARRGGBB as the format stores it for a blend.
uint32_t BlendColourPixel(int format, uint32_t colour);

// The three shapes; the result is that of the call.
bool Blend(Mode mode, Picture& dst, const CRectangulo& rect, const Picture& src, CPunto at);
bool BlendColour(Mode mode, Picture& dst, const CRectangulo& rect, uint32_t colour,
                 const Picture& mask, CPunto mask_at);
bool BlendMasked(Mode mode, Picture& dst, const CRectangulo& rect, const Picture& src,
                 CPunto src_at, const Picture& mask, CPunto mask_at);

}  // namespace model

#endif  // TESTS_MODEL_BLEND_MODEL_H_
