// Makes a sequence of drawing calls out of arbitrary bytes: which operation, rectangles, points,
// levels, formats. After each call every byte of the surface must be what the model of the operation
// gives. Surfaces have their exact size, so that the address sanitizer sees every access outside.
#include <hwy/targets.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "include/pincel.h"
#include "tests/model/antialias_model.h"
#include "tests/model/blend_model.h"
#include "tests/model/blur_model.h"
#include "tests/model/convert_model.h"
#include "tests/model/convolution_model.h"
#include "tests/model/core_model.h"
#include "tests/model/draw_model.h"
#include "tests/model/fader_model.h"
#include "tests/model/flood_model.h"
#include "tests/model/line_model.h"
#include "tests/model/mask_model.h"
#include "tests/model/mix_model.h"
#include "tests/model/stretch_model.h"
#include "tests/model/tone_model.h"
#include "tests/model/transform_model.h"
#include "tests/support/random.h"

namespace {

using model::Picture;

// Takes decisions out of the input; all 0 at its end.
class Choices {
 public:
  Choices(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}
  bool Any() const { return at_ != end_; }
  uint32_t Byte() { return Any() ? *at_++ : 0; }
  uint32_t Word() {
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i) word = word << 8 | Byte();
    return word;
  }
  int Below(int n) { return int(Byte()) % n; }
  int Between(int low, int high) { return low + Below(high - low + 1); }
  bool OneIn(int n) { return Below(n) == 0; }
  // Mostly around 0 to `size`.
  int Coordinate(int size) {
    const uint32_t pick = Byte();
    return pick == 255 ? int32_t(Word()) : int(pick) % (2 * size + 8) - size / 2 - 4;
  }
  CPunto Point(const Picture& p) {
    const int x = Coordinate(p.width);
    return {x, Coordinate(p.height)};
  }
  // All of it, or anything.
  CRectangulo WholeOrRect(const Picture& p) {
    return OneIn(2) ? CRectangulo{0, 0, p.width, p.height} : Rect(p);
  }
  CRectangulo Rect(const Picture& p) {
    const CPunto a = Point(p), b = Point(p);
    return OneIn(8) ? CRectangulo{a.x, a.y, b.x, b.y}
                    : CRectangulo{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                                  std::max(a.y, b.y)};
  }
  int Level() {
    constexpr int kLevels[] = {0, 64, 128, 192, 255, 256, 511, 65535};
    return OneIn(3) ? kLevels[Below(8)] : OneIn(4) ? int(Word() & 0xFFFF) : int(Byte());
  }

 private:
  const uint8_t* at_;
  const uint8_t* const end_;
};

// The memory ends behind the last row's pixels or, for what takes it as one run of bytes, `whole`
// with that row's padding.
Picture MakePicture(Choices& choices, int format, int width, int height, bool whole = false) {
  support::PictureOptions options;
  options.exact = !whole;
  options.guard = 0;
  options.tail = format == 24;  // some operations use the byte behind a pixel
  options.max_padding = choices.Below(8);
  options.negative_pitch = choices.OneIn(4);
  support::Random random(choices.Byte());
  Picture p = support::RandomPicture(random, format, width, height, options);
  p.has_palette = format == 8 && !choices.OneIn(4);
  if (choices.OneIn(2)) {
    support::PlantKey(random, p, choices.OneIn(4) ? 0 : random.Next(),
                      choices.OneIn(2) ? 0 : p.key);
  }
  return p;
}

// A second picture for a rectangle, and the point of it that belongs to the rectangle's corner.
struct Placed {
  Picture picture;
  CPunto at;
};

// Large enough for the visible part; `inside`: the point itself lies inside, clipped or not.
Placed Place(Choices& choices, const Picture& dst, const CRectangulo& rect, int format,
             bool inside = false) {
  const model::Clipped area = model::Clip(dst.width, dst.height, rect);
  const bool near = area.moved_x <= 200 && area.moved_y <= 200;
  const int x = choices.Below(4), y = choices.Below(3);
  int width = x + choices.Below(3), height = y + choices.Below(3);
  if (area.visible) {
    width += int(area.box.right - area.box.left);
    height += int(area.box.bottom - area.box.top);
  }
  CPunto at = {int32_t(x - area.moved_x), int32_t(y - area.moved_y)};
  if (inside && near) {
    width += int(area.moved_x);
    height += int(area.moved_y);
    at = {x, y};
  }
  if (!area.visible) at = {choices.Between(-9, 9), choices.Between(-9, 9)};
  return {MakePicture(choices, format, width, height), at};
}

// Of the destination's format, of another 16-bit packing, or of 8 bits.
Placed PlaceSource(Choices& choices, const Picture& dst, const CRectangulo& rect) {
  int format = dst.format;
  if (choices.OneIn(3)) {
    format = 8;
  } else if (dst.BytesPerPixel() == 2 && choices.OneIn(4)) {
    format = 16 + choices.Below(4);
  }
  return Place(choices, dst, rect, format);
}

using Planes = unsigned char (*)[65536];
Planes Table() {
  static unsigned char planes[2][65536];
  static const bool filled = [] {
    support::Random random(1);
    for (auto& plane : planes) {
      for (unsigned char& index : plane) index = static_cast<unsigned char>(random.Next());
    }
    return true;
  }();
  return filled ? planes : nullptr;
}

// The picture's rows as one run of height x pitch bytes, from the lowest in memory on. The last one
// is left out when its padding is not there.
Picture AsBuffer(const Picture& p) {
  Picture buffer = p;
  if (p.pitch < 0) {
    buffer.origin = p.Index(0, p.height - 1);
    buffer.pitch = -p.pitch;
  }
  if (buffer.Index(0, buffer.height) > int64_t(p.bytes.size())) --buffer.height;
  return buffer;
}

// What a call did, in the model and in the library.
struct Results {
  bool expected, actual;
  bool same_scratch = true;  // of a second surface that was written
};

// Calls `draw` on a part of the picture.
template <class Draw>
Results OnPart(Picture& p, const TSurfDesc& surface, Picture part, Draw&& draw) {
  TSurfDesc window = surface;
  window.pixels = surface.pixels + (part.origin - p.origin);
  window.width = part.width;
  window.height = part.height;
  window.pitch = part.pitch;
  const Results results = draw(part, window);
  p.bytes = part.bytes;
  return results;
}

unsigned short Short(int value) { return static_cast<unsigned short>(value); }

Results Fills(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.Rect(p);
  const CPunto at = choices.Point(p);
  const int length = choices.Coordinate(p.width);
  const uint32_t colour = choices.Word();
  switch (choices.Below(5)) {
    case 0:
      model::FillRect(p, rect, colour);
      return {true, IdxFillRect(surface, rect, colour)};
    case 1:
      model::LineHorizontal(p, at, length, colour);
      return {true, IdxLineHI(surface, at, length, colour)};
    case 2:
      model::LineVertical(p, at, length, colour);
      return {true, IdxLineVI(surface, at, length, colour)};
    case 3:
      model::FrameBottomRight(p, rect, colour);
      return {false, FrameBR(surface, rect, colour)};
    default: {
      const auto step = static_cast<unsigned char>(length),
                 depth = static_cast<unsigned char>(colour);
      const bool expected = model::RectShadow(p, rect, step, depth);
      return {expected, DrawRectShadow(surface, rect, step, depth)};
    }
  }
}

Results Blit(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.Rect(p);
  Placed src = Place(choices, p, rect, model::kFormats[choices.Below(7)]);
  TSurfDesc s = Describe(src.picture);
  model::DrawBitmap(p, rect, src.picture, src.at, lu_gPaleta);
  return {true, DrawBitmap(surface, rect, s, src.at)};
}

Results Block(Choices& choices, Picture& p, TSurfDesc& surface) {
  const int x = choices.Below(p.width), y = choices.Below(p.height);
  const int width = choices.Between(1, p.width - x), height = choices.Between(1, p.height - y);
  const int from_x = choices.Below(3), from_y = choices.Below(3);
  Picture src = MakePicture(choices, p.format, from_x + width, from_y + height);
  TSurfDesc s = Describe(src);
  model::DrawBlock(p, src, from_x, from_y, x, y, width, height);
  return {true, DrawBlock(surface, s, Short(from_x), Short(from_y), Short(x), Short(y),
                          Short(width), Short(height))};
}

// Thick lines leave the surface, so this one is drawn on a part of it.
Results Lines(Choices& choices, Picture& p, TSurfDesc& surface) {
  constexpr int kMargin = 10;
  if (p.width <= 2 * kMargin || p.height <= 2 * kMargin) return {false, false};
  Picture part = p;
  part.origin = p.Index(kMargin, kMargin);
  part.width -= 2 * kMargin;
  part.height -= 2 * kMargin;
  const CPunto from = choices.Point(part), to = choices.Point(part);
  const uint32_t colour = choices.Word();
  const int alpha = choices.Level(), thickness = choices.Between(-1, 6);
  const bool soft = choices.OneIn(2);
  return OnPart(p, surface, part, [&](Picture& inner, TSurfDesc& window) -> Results {
    model::Line(inner, from, to, colour, alpha, soft, thickness, lu_gPaleta);
    return {false, Line(window, from, to, colour, Short(alpha), soft, thickness)};
  });
}

Results Flood(Choices& choices, Picture& p, TSurfDesc& surface) {
  const int x = choices.Below(p.width), y = choices.Below(p.height);
  const uint32_t tolerance = choices.OneIn(2) ? choices.Word() % 1000 : choices.Byte();
  const uint32_t reference = choices.Word(), colour = choices.Word();
  Picture mask = MakePicture(choices, 8, p.width, p.height);
  std::fill(mask.bytes.begin(), mask.bytes.end(), uint8_t{0});
  Picture expected_mask = mask;
  TSurfDesc work = Describe(mask);
  model::Flood(p, expected_mask, x, y, tolerance, reference, colour);
  const bool result = Rellena(surface, work, x, y, tolerance, reference, colour);
  return {result, result, mask.bytes == expected_mask.bytes};
}

// Between different formats: equal ones are copied with their padding, which a part has not got.
Results Converted(Choices& choices, Picture& p, TSurfDesc& surface) {
  int format = model::kFormats[choices.Below(7)];
  if (format == p.format) format = p.format == 8 ? 32 : 8;
  Picture src =
      MakePicture(choices, format, choices.Between(1, p.width), choices.Between(1, p.height));
  TSurfDesc s = Describe(src);
  uint32_t mode = uint32_t(choices.Below(6));
  if (mode == 2 && !p.has_palette) mode = 3;  // it needs the colours
  model::Convert(p, src, mode);
  return {false, Convert(surface, s, mode)};
}

Results Mixed(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.Rect(p);
  Placed src = PlaceSource(choices, p, rect), back = PlaceSource(choices, p, rect);
  Placed alpha = Place(choices, p, rect, p.BytesPerPixel() == 2 && choices.OneIn(3) ? 16 : 8);
  TSurfDesc s = Describe(src.picture), b = Describe(back.picture), a = Describe(alpha.picture);
  const int level = choices.Level();
  const bool indexed = p.format == 8 && choices.OneIn(2);
  if (indexed) src = Place(choices, p, rect, 8), s = Describe(src.picture);
  switch (choices.Below(4)) {
    case 0:
      if (indexed) {
        return {model::DrawMix8Bits(p, rect, level, src.picture, src.at, Table(), lu_gPaleta),
                DrawMix_8Bits(surface, rect, Short(level), s, src.at, Table())};
      }
      return {model::DrawMix(p, rect, level, src.picture, src.at, Table(), lu_gPaleta),
              DrawMix(surface, rect, Short(level), s, src.at, Table())};
    case 1:
      if (indexed) {
        alpha = Place(choices, p, rect, 8), a = Describe(alpha.picture);
        return {model::DrawMixAlpha8Bits(p, rect, alpha.picture, alpha.at, src.picture, src.at,
                                         Table(), lu_gPaleta),
                DrawMix_8Bits(surface, rect, a, alpha.at, s, src.at, Table())};
      }
      return {model::DrawMixAlpha(p, rect, alpha.picture, alpha.at, src.picture, src.at, Table(),
                                  lu_gPaleta),
              DrawMix(surface, rect, a, alpha.at, s, src.at, Table())};
    case 2:
      alpha = Place(choices, p, rect, 8), a = Describe(alpha.picture);
      return {model::DrawMixAlphaOver(p, rect, alpha.picture, alpha.at, src.picture, src.at,
                                      back.picture, back.at, Table(), lu_gPaleta),
              DrawMix(surface, rect, a, alpha.at, s, src.at, b, back.at, Table())};
    default:
      return {model::DrawMixOver(p, rect, level, src.picture, src.at, back.picture, back.at,
                                 Table(), lu_gPaleta),
              DrawMix(surface, rect, Short(level), s, src.at, b, back.at, Table())};
  }
}

Results MixedByScaledAlpha(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.Rect(p);
  Placed src = PlaceSource(choices, p, rect);
  if (p.BytesPerPixel() >= 3) {  // it begins at column and row y, wherever the rectangle is cut
    const int corner = choices.Below(3);
    src.picture = MakePicture(choices, p.format, corner + p.width, corner + p.height);
    src.at = {choices.Coordinate(p.width), corner};
  }
  Placed alpha = Place(choices, p, rect, p.BytesPerPixel() == 2 && choices.OneIn(3) ? 16 : 8);
  TSurfDesc s = Describe(src.picture), a = Describe(alpha.picture);
  const int level = choices.Level();
  return {model::DrawMixScaledAlpha(p, rect, alpha.picture, alpha.at, src.picture, src.at, level,
                                    lu_gPaleta),
          DrawMix(surface, rect, a, alpha.at, s, src.at, Short(level))};
}

Results Masked(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.Rect(p);
  const bool indexed = p.format == 8 && choices.OneIn(2);
  Placed mask = Place(choices, p, rect, 8);
  TSurfDesc m = Describe(mask.picture);
  const uint32_t colour = choices.Word();
  const int level = choices.Level();
  switch (choices.Below(3)) {
    case 0:
      if (indexed) {
        return {model::DrawMask8Bits(p, rect, mask.picture, mask.at, colour, Table(), lu_gPaleta),
                DrawMask_8Bits(surface, rect, m, mask.at, colour, Table())};
      }
      return {model::DrawMask(p, rect, mask.picture, mask.at, colour, Table(), lu_gPaleta),
              DrawMask(surface, rect, m, mask.at, colour, Table())};
    case 1:
      if (indexed) {
        return {model::MaskFillRect8Bits(p, rect, colour, level, Table(), lu_gPaleta),
                MaskFillRect_8Bits(surface, rect, colour, Short(level), Table())};
      }
      return {model::MaskFillRect(p, rect, colour, level),
              MaskFillRect(surface, rect, colour, Short(level))};
    default:
      if (indexed) {
        return {model::DrawBiMask8Bits(p, level, rect, mask.picture, mask.at, Table(), lu_gPaleta),
                DrawBiMask_8Bits(surface, Short(level), rect, m, mask.at, Table())};
      }
      return {model::DrawBiMask(p, level, rect, mask.picture, mask.at, Table(), lu_gPaleta),
              DrawBiMask(surface, Short(level), rect, m, mask.at, Table())};
  }
}

Results Faded(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.Rect(p);
  Placed src = Place(choices, p, rect, p.format);
  TSurfDesc s = Describe(src.picture);
  const bool tame = choices.OneIn(2);
  const int start = tame ? -choices.Below(300) : int32_t(choices.Word());
  const int step = tame ? choices.Below(70) : int32_t(choices.Word());
  const int hold = choices.OneIn(8) ? int32_t(choices.Word()) : choices.Between(-1, 80);
  return {model::OpenFader(p, rect, src.picture, src.at, start, step, hold),
          OpenFader(surface, rect, s, src.at, start, step, hold)};
}

struct BlendMode {
  model::Mode mode;
  bool (*source)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&);
  bool (*colour)(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&);
  bool (*masked)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
                 CPunto const&);
};
constexpr BlendMode kBlendModes[] = {
    {model::Mode::kAdd, DoSuma, DoSuma, DoSuma},
    {model::Mode::kSubtract, DoResta, DoResta, DoResta},
    {model::Mode::kMultiply, DoMultiplica, DoMultiplica, DoMultiplica},
    {model::Mode::kScreen, DoScreen, DoScreen, DoScreen},
    {model::Mode::kLighten, DoLighten, DoLighten, DoLighten},
    {model::Mode::kDarken, DoDarken, DoDarken, DoDarken},
    {model::Mode::kOverlay, DoSuperponer, DoSuperponer, DoSuperponer},
};

Results Blended(Choices& choices, Picture& p, TSurfDesc& surface) {
  const BlendMode& blend = kBlendModes[choices.Below(7)];
  const int shape = choices.Below(3);
  const CRectangulo rect = choices.Rect(p);
  Placed src = Place(choices, p, rect, p.format, /*inside=*/shape != 2);
  Placed mask = Place(choices, p, rect, 8, /*inside=*/shape != 2);
  TSurfDesc s = Describe(src.picture), m = Describe(mask.picture);
  const uint32_t colour = choices.Word();
  switch (shape) {
    case 0:
      return {model::Blend(blend.mode, p, rect, src.picture, src.at),
              blend.source(surface, rect, s, src.at)};
    case 1:
      return {model::BlendColour(blend.mode, p, rect, colour, mask.picture, mask.at),
              blend.colour(surface, rect, colour, m, mask.at)};
    default:
      return {model::BlendMasked(blend.mode, p, rect, src.picture, src.at, mask.picture, mask.at),
              blend.masked(surface, rect, s, src.at, m, mask.at)};
  }
}

Results Copied(Choices& choices, Picture& p, TSurfDesc& surface) {
  return OnPart(p, surface, AsBuffer(p), [&](Picture& dst, TSurfDesc& window) -> Results {
    const int width = choices.Between(1, dst.width), row = width * dst.BytesPerPixel();
    const int pitch = choices.OneIn(2) ? dst.pitch : row + choices.Below(9);
    // What a row copies, and how far it is to the next one.
    const bool one_run = pitch == dst.pitch;
    const int copied = one_run ? pitch : (width + 3) / 4 * 4;
    const auto step = [&](int of_pitch) { return of_pitch + (one_run ? 0 : copied - row); };
    const int room = dst.height * dst.pitch - copied;
    if (room < 0) return {true, true};
    const int height = choices.Between(1, 1 + room / step(dst.pitch));
    Picture src = MakePicture(choices, 8, (height - 1) * step(pitch) + copied, 1);
    src.format = dst.format;
    src.width = width;
    src.height = height;
    src.pitch = pitch;
    TSurfDesc s = Describe(src);
    model::CopyImage(dst, src);
    return {true, CopyImage(window, s)};
  });
}

Results Stretched(Choices& choices, Picture& p, TSurfDesc& surface) {
  const int format = p.BytesPerPixel() == 2 ? 16 + choices.Below(4) : p.format;
  const int width = choices.Between(1, 120), height = choices.Between(1, 60);
  Picture src = MakePicture(choices, format, width, height);
  TSurfDesc s = Describe(src);
  const CRectangulo to = choices.WholeOrRect(p), from = choices.WholeOrRect(src);
  const CPunto at = choices.Point(p);
  const bool smooth = choices.OneIn(2);
  switch (choices.Below(4)) {
    case 0:
      return {model::Stretch(p, to, src, from, smooth), BltStrech(surface, to, s, from, smooth)};
    case 1:
      return {model::Stretch(p, to, src, from, false), DrawStretch(surface, to, s, from)};
    case 2:
      return {p.BytesPerPixel() != 2, DrawStretch(surface, to, s, from, nullptr)};
    default:
      model::DrawDouble(p, src, at);
      return {false, DrawDouble(surface, s, at)};
  }
}

Results StretchedInProportion(Choices& choices, Picture& p, TSurfDesc& surface) {
  const int format = choices.OneIn(16) ? model::kFormats[choices.Below(7)] : p.format;
  // Often smaller or larger in both directions.
  const int limit = choices.OneIn(2) ? 30 : 255;
  const int width = choices.Between(1, limit), height = choices.Between(1, limit / 2);
  Picture src = MakePicture(choices, format, width, height);
  TSurfDesc s = Describe(src);
  const CRectangulo to = choices.WholeOrRect(p), from = choices.WholeOrRect(src);
  // Other depths than that of the surfaces would leave them.
  const int bits = choices.OneIn(16) ? 16 : p.format;
  const bool enable = !choices.OneIn(16), extra = choices.OneIn(2);
  return {model::StretchInProportion(p, to, src, from, bits, enable),
          StretchBitmap(surface, to, s, from, bits, enable, extra)};
}

Results Turned(Choices& choices, Picture& p, TSurfDesc& surface) {
  const int mode = choices.Below(16);
  Picture src;
  if (mode & 1) {  // of any size: what does not fit is left out
    const int width = choices.Between(1, 60), height = choices.Between(1, 100);
    src = MakePicture(choices, p.format, width, height);
  } else if (mode & 2) {  // the last pixel of a block
    const int pixels = std::abs(p.pitch) * p.height / p.BytesPerPixel() + 4;
    src = MakePicture(choices, p.format, pixels, 1);
    src.origin = src.Index(pixels - 1, 0);
    src.width = 1;
  } else {
    const int width = p.width + choices.Below(3), height = p.height + choices.Below(3);
    src = MakePicture(choices, model::kFormats[choices.Below(7)], width, height);
  }
  TSurfDesc s = Describe(src);
  model::CreateRotated(p, src, mode, lu_gPaleta);
  return {true, CreateRotated(surface, s, mode)};
}

Results Transformed(Choices& choices, Picture& p, TSurfDesc& surface) {
  if (choices.OneIn(3)) {
    model::FlipX(p);
    return {true, FlipX(surface)};
  }
  const CRectangulo rect = choices.Rect(p);
  const float amount = float(choices.Between(-30, 180)) / 100;
  uint8_t table[256];
  support::Random random(choices.Byte());
  for (uint8_t& byte : table) byte = random.Byte();
  model::TranslateRect(p, rect, amount, table);
  return {true, TranslateRect(surface, rect, amount, table)};
}

struct FixedFilter {
  bool (*model)(Picture&, Picture&);
  bool (*library)(TSurfDesc&, TSurfDesc&);
};
constexpr FixedFilter kFixedFilters[] = {
    {model::Smooth, DoSuavizado}, {model::Emboss, DoEmboss}, {model::Sharpen, DoRealce}};

// Neighbours, or bytes anywhere.
std::vector<model::Tap> Taps(Choices& choices, const Picture& image) {
  std::vector<model::Tap> taps(size_t(choices.Below(30)));
  const bool any = choices.OneIn(8);
  for (model::Tap& tap : taps) {
    const int dx = choices.Between(-3, 3), dy = choices.Between(-3, 3);
    tap.offset = any ? int32_t(choices.Word()) : dy * image.pitch + dx * image.BytesPerPixel();
    tap.weight = any ? int32_t(choices.Word()) : choices.Between(-9, 9);
  }
  return taps;
}

Results Filtered(Choices& choices, Picture& p, TSurfDesc& surface) {
  return OnPart(p, surface, AsBuffer(p), [&](Picture& image, TSurfDesc& window) -> Results {
    Picture scratch = MakePicture(choices, 8, image.height * image.pitch, 1);
    Picture expected = scratch;
    TSurfDesc s = Describe(scratch);
    Results results{};
    switch (choices.Below(3)) {
      case 0: {
        const FixedFilter& filter = kFixedFilters[choices.Below(3)];
        results = {filter.model(image, expected), filter.library(window, s)};
        break;
      }
      case 1: {
        const int number = choices.Between(-1, 24);
        results = {model::FilterByNumber(image, expected, number), FiltroMask(window, s, number)};
        break;
      }
      default: {
        const std::vector<model::Tap> taps = Taps(choices, image);
        std::vector<int> weights(taps.size() + 1);
        std::vector<long> offsets(taps.size() + 1);
        for (size_t i = 0; i < taps.size(); ++i) {
          weights[i] = int(taps[i].weight);
          offsets[i] = long(taps[i].offset);
        }
        const int divisor = choices.OneIn(8) ? int32_t(choices.Word()) : choices.Between(-2, 40);
        const int bias = choices.OneIn(8) ? int32_t(choices.Word()) : choices.Between(-99, 150);
        results = {model::Convolve(image, expected, taps, divisor, bias),
                   DoConvolucion(window, s, int(taps.size()), weights.data(), offsets.data(),
                                 divisor, bias)};
        break;
      }
    }
    results.same_scratch = scratch.bytes == expected.bytes;
    return results;
  });
}

Results Blurred(Choices& choices, Picture& p, TSurfDesc& surface) {
  const CRectangulo rect = choices.WholeOrRect(p);
  const int format = choices.OneIn(16)  ? model::kFormats[choices.Below(7)]
                     : choices.OneIn(2) ? 8
                                        : 32;
  const int width = choices.Between(1, 100), height = choices.Between(1, 40);
  Picture mask = MakePicture(choices, format, width, height, /*whole=*/true);
  TSurfDesc m = Describe(mask);
  // Mostly a point that lands at the mask's beginning after the rectangle is cut.
  const model::Clipped area = model::Clip(p.width, p.height, rect);
  const int x = choices.Between(-3, 3), y = choices.OneIn(2) ? 0 : choices.Between(-2, 2);
  const CPunto near = {int32_t(x - area.moved_x), int32_t(y - area.moved_y)};
  const CPunto at = choices.OneIn(4) ? choices.Point(p) : near;
  const uint32_t colour = choices.Word();
  const int length = choices.OneIn(16) ? 2 * choices.Between(125, 260) : choices.Below(40);
  const float angle =
      choices.OneIn(2) ? 1.57079637F * float(choices.Between(-2, 4)) : float(choices.Byte()) / 40;
  switch (choices.Below(3)) {
    case 0:
      return {model::MotionBlur(p, mask, rect, at, colour, length, angle),
              FiltroMotionBlur(surface, m, rect, at, colour, length, angle)};
    case 1:
      return {model::GlowBlur(p, mask, rect, at, colour, length, angle),
              FiltroBrilloBlur(surface, m, rect, at, colour, length, angle)};
    default: {
      const int level = choices.Level();
      return {model::MotionMask(p, mask, rect, at, level),
              FiltroMotionMask(surface, m, rect, at, level)};
    }
  }
}

Results AntiAliased(Choices& choices, Picture& p, TSurfDesc& surface) {
  return OnPart(p, surface, AsBuffer(p), [&](Picture& image, TSurfDesc& window) -> Results {
    TSurfDesc other{};
    const int level = choices.Level();
    switch (choices.Below(3)) {
      case 0:
        return {model::AntiAlias(image), DoAntiAlias(window, {}, other, Short(level))};
      case 1:
        return {model::AntiAliasCross(image), DoAntiAlias2(window, {}, other, Short(level))};
      default:
        return {model::EdgeCodes(image, level), DoAntiAliasBMP(window, Short(level))};
    }
  });
}

Results Toned(Choices& choices, Picture& p, TSurfDesc& surface) {
  if (choices.OneIn(2)) {
    const uint32_t first = choices.Word(), last = choices.Word();
    const unsigned long from = first, to = last;
    return {model::FillGradient(p, first, last), DoGradient(surface, from, to)};
  }
  const int factor = choices.Level();
  return OnPart(p, surface, AsBuffer(p), [&](Picture& image, TSurfDesc& window) -> Results {
    const bool result = DoFactor(window, Short(factor));
    model::Darken(image, factor);
    return {true, result};
  });
}

Results MaskMade(Choices& choices, Picture& p, TSurfDesc& surface) {
  int format = model::kFormats[choices.Below(7)];
  if (p.format == 18 && format == 8) format = 18;  // it would be read as 1555
  const int width = p.width + choices.Below(3), height = p.height + choices.Below(3);
  Picture src = MakePicture(choices, format, width, height);
  TSurfDesc s = Describe(src);
  const int level = choices.Level();
  return {model::CreateMask(p, src, level), CreateMask(surface, s, Short(level))};
}

Results ShadowMade(Choices& choices, Picture& p, TSurfDesc& surface) {
  if (p.format != 8 && p.format != 32) return MaskMade(choices, p, surface);
  return OnPart(p, surface, AsBuffer(p), [&](Picture& shadow, TSurfDesc& window) -> Results {
    const int width = shadow.width + choices.Below(3), height = shadow.height + choices.Below(3);
    const int format = model::kFormats[choices.Below(7)];
    Picture src = AsBuffer(MakePicture(choices, format, width, height, /*whole=*/true));
    TSurfDesc s = Describe(src);
    const auto decay =
        static_cast<unsigned char>(choices.OneIn(2) ? choices.Below(9) : int(choices.Byte()));
    const auto limit = static_cast<unsigned char>(255 - choices.Byte());
    const int factor = choices.OneIn(2) ? 256 : choices.Level();
    return {model::CreateShadow(shadow, src, decay, limit, factor),
            CreateShadow(window, s, decay, limit, Short(factor))};
  });
}

struct Step {
  const char* name;
  Results (*draw)(Choices&, Picture&, TSurfDesc&);
};
constexpr Step kSteps[] = {
    {"fill", Fills},
    {"blit", Blit},
    {"block", Block},
    {"line", Lines},
    {"flood", Flood},
    {"convert", Converted},
    {"copy", Copied},
    {"mix", Mixed},
    {"mix by scaled alpha", MixedByScaledAlpha},
    {"mask", Masked},
    {"fader", Faded},
    {"blend", Blended},
    {"stretch", Stretched},
    {"stretch in proportion", StretchedInProportion},
    {"turn", Turned},
    {"transform", Transformed},
    {"filter", Filtered},
    {"blur", Blurred},
    {"anti-alias", AntiAliased},
    {"tone", Toned},
    {"make a mask", MaskMade},
    {"make a shadow", ShadowMade},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  static const std::vector<int64_t> targets = hwy::SupportedAndGeneratedTargets();
  const int64_t target = targets[size_t(choices.Below(int(targets.size())))];
  hwy::SetSupportedTargetsForTest(target);
  hwy::GetChosenTarget().Update(target);
  support::Random colours(choices.Byte());
  for (TRGBA& e : lu_gPaleta) e = {colours.Byte(), colours.Byte(), colours.Byte(), colours.Byte()};

  const int format = model::kFormats[choices.Below(7)];
  const int width = choices.Between(1, 90), height = choices.Between(1, 40);
  Picture expected = MakePicture(choices, format, width, height);
  Picture actual = expected;
  TSurfDesc surface = Describe(actual);
  for (int steps = 0; steps < 20 && choices.Any(); ++steps) {
    const Step& step = kSteps[choices.Below(int(std::size(kSteps)))];
    const Results results = step.draw(choices, expected, surface);
    const bool same_palette =
        std::memcmp(expected.palette.data(), actual.palette.data(), sizeof(expected.palette)) == 0;
    if (results.expected == results.actual && results.same_scratch &&
        expected.bytes == actual.bytes && same_palette && expected.key == surface.colorKey) {
      continue;
    }
    std::fprintf(stderr, "step %d, %s, differs from the model: format %d, %s\n", steps, step.name,
                 format, hwy::TargetName(target));
    std::abort();
  }
  return 0;
}
