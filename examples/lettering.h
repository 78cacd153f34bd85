// Small capitals, 3 x 5 pixels, drawn with the library's own fills.
#ifndef EXAMPLES_LETTERING_H_
#define EXAMPLES_LETTERING_H_

#include <string_view>

#include "host_surface.h"

// Fifteen bits per sign, the top row first, the left pixel highest. Small letters are drawn as
// capitals, unknown signs as spaces.
inline uint32_t GlyphOf(char sign) {
  static constexpr std::string_view kSigns = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.,-_:()+=/";
  static constexpr uint16_t kGlyphs[] = {
      025755, 065656, 034443, 065556, 074647, 074644, 034553, 055755, 072227, 011152,
      055655, 044447, 057755, 065555, 025552, 065644, 025563, 065655, 034216, 072222,
      055557, 055552, 055775, 055255, 055222, 071247,                                  // letters
      075557, 026227, 061247, 061216, 055711, 074616, 034652, 071222, 075757, 075711,  // digits
      000002, 000024, 000700, 000007, 002020, 024442, 021112, 002720, 007070, 011244};
  if (sign >= 'a' && sign <= 'z') sign = static_cast<char>(sign - 'a' + 'A');
  const size_t at = kSigns.find(sign);
  return at == std::string_view::npos ? 0 : kGlyphs[at];
}

// Each pixel of a sign becomes a square of `scale` pixels; signs stand four squares apart.
inline void Write(HostSurface& surface, CPunto at, std::string_view text, uint32_t colour,
                  int scale) {
  for (char sign : text) {
    const uint32_t glyph = GlyphOf(sign);
    for (int i = 0; i < 15; ++i) {
      if ((glyph >> (14 - i) & 1) == 0) continue;
      const int x = at.x + i % 3 * scale, y = at.y + i / 3 * scale;
      IdxFillRect(surface, {x, y, x + scale, y + scale}, surface.Colour(colour));
    }
    at.x += 4 * scale;
  }
}

#endif  // EXAMPLES_LETTERING_H_
