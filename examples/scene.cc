// A host composes a scene with the library alone, once in each format, and writes it as BMP files:
// scene <examples folder> <folder to write to>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>

#include "assets.h"
#include "lettering.h"

namespace {

constexpr int kWidth = 320, kHeight = 240, kPanelTop = 214;

constexpr uint32_t kSkyTop = 0x0C1034, kSkyBottom = 0x5878A8, kFarHill = 0x7890B8, kSnow = 0xE8EEF8,
                   kShade = 0xB8C8E0, kMoon = 0xF8ECC0, kAurora = 0x50F0A0, kRope = 0x302820,
                   kGold = 0xC89830, kBrown = 0x583818, kPanel = 0x283040, kWhite = 0xFFFFFF;

void Fill(HostSurface& screen, CRectangulo rect, uint32_t rgb) {
  IdxFillRect(screen, rect, screen.Colour(rgb));
}

// A colour `step` steps of `steps` on the way between two others.
uint32_t Between(uint32_t from, uint32_t to, int step, int steps) {
  uint32_t colour = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int a = from >> shift & 255, b = to >> shift & 255;
    colour |= uint32_t(a + (b - a) * step / steps) << shift;
  }
  return colour;
}

void DrawSky(HostSurface& screen) {
  constexpr int kBands = 40, kBand = 4;
  for (int i = 0; i < kBands; ++i) {
    Fill(screen, {0, i * kBand, kWidth, (i + 1) * kBand}, Between(kSkyTop, kSkyBottom, i, kBands));
  }
  uint32_t random = 7;
  for (int i = 0; i < 70; ++i) {
    random = random * 1664525 + 1013904223;
    const int x = int(random >> 8) % kWidth, y = int(random >> 20) % 110;
    Fill(screen, {x, y, x + 1, y + 1}, Between(kSkyBottom, kWhite, i % 5, 4));
  }
  // Wide soft lines at a low level, one over the other.
  constexpr CPunto kBow[] = {{8, 62}, {60, 36}, {110, 24}, {160, 26}, {210, 18}};
  for (int layer = 0; layer < 4; ++layer) {
    for (int i = 0; i < 4; ++i) {
      const CPunto a{kBow[i].x + 1, kBow[i].y + layer * 3},
          b{kBow[i + 1].x, kBow[i + 1].y + layer * 3};
      Line(screen, a, b, kAurora, 40, true, 12 - layer * 2);
    }
  }
}

// An outline of lines, then a flood fill. The reference is a little brighter than the sky behind:
// the fill takes darker neighbours only.
void DrawMoon(HostSurface& screen) {
  constexpr CPunto kCentre{268, 38};
  constexpr CPunto kRim[] = {{20, 0},   {18, 8},  {14, 14},  {8, 18},   {0, 20},    {-8, 18},
                             {-14, 14}, {-18, 8}, {-20, 0},  {-18, -8}, {-14, -14}, {-8, -18},
                             {0, -20},  {8, -18}, {14, -14}, {18, -8},  {20, 0}};
  for (int i = 0; i < 16; ++i) {
    Line(screen, {kCentre.x + kRim[i].x, kCentre.y + kRim[i].y},
         {kCentre.x + kRim[i + 1].x, kCentre.y + kRim[i + 1].y}, kMoon, 255, false, 2);
  }
  HostSurface work(Format::k8, kWidth, kHeight);
  Rellena(screen, work, kCentre.x, kCentre.y, 160, 0x404870, kMoon);
}

void DrawHills(HostSurface& screen) {
  for (int x = 0; x < kWidth; ++x) {
    const int far = 132 + (x - 210) * (x - 210) / 1400 - (x % 64) * (64 - x % 64) / 220;
    IdxLineVI(screen, {x + 1, far}, kPanelTop - far, screen.Colour(kFarHill));
  }
  for (int x = 0; x < kWidth; ++x) {
    const int near = 168 - (x - 90) * (x - 90) / 2600 + (x > 90 ? (x - 90) / 12 : 0);
    IdxLineVI(screen, {x + 1, near}, kPanelTop - near, screen.Colour(kSnow));
    IdxLineVI(screen, {x + 1, near + 26 + x / 16}, 40, screen.Colour(kShade));
  }
}

void DrawSprite(HostSurface& screen, HostSurface& sprite, CPunto at) {
  DrawBitmap(screen, {at.x, at.y, at.x + sprite.width, at.y + sprite.height}, sprite, {0, 0});
}

// A picture on an easel: legs, frame, shadow, and the picture itself as a block.
void DrawEasel(HostSurface& screen, HostSurface& picture, CPunto at) {
  const CRectangulo frame{at.x - 5, at.y - 5, at.x + picture.width + 5, at.y + picture.height + 5};
  const int middle = at.x + picture.width / 2;
  Line(screen, {middle, at.y - 14}, {frame.left + 8, frame.bottom + 20}, kBrown, 255, true, 3);
  Line(screen, {middle, at.y - 14}, {frame.right - 12, frame.bottom + 20}, kBrown, 255, true, 3);
  Fill(screen, frame, kGold);
  DrawRectShadow(screen, frame, 1, 2);
  FrameBR(screen, frame, screen.Colour(kBrown));
  FrameBR(screen, {at.x - 6, at.y - 6, at.x, at.y}, screen.Colour(kMoon));
  DrawBlock(screen, picture, 0, 0, static_cast<unsigned short>(at.x),
            static_cast<unsigned short>(at.y), static_cast<unsigned short>(picture.width),
            static_cast<unsigned short>(picture.height));
}

void DrawGarland(HostSurface& screen, CPunto from, CPunto to) {
  constexpr int kParts = 8;
  constexpr uint32_t kLights[] = {0xF04030, 0xF8D040, 0x40C0F0, 0x60D060};
  const auto knot = [&](int i) {
    return CPunto{from.x + (to.x - from.x) * i / kParts,
                  from.y + (to.y - from.y) * i / kParts + i * (kParts - i)};
  };
  for (int i = 0; i < kParts; ++i) Line(screen, knot(i), knot(i + 1), kRope, 255, true, 1);
  for (int i = 1; i < kParts; ++i) {
    const CRectangulo light{knot(i).x - 1, knot(i).y + 1, knot(i).x + 2, knot(i).y + 5};
    Fill(screen, light, kLights[i % 4]);
    DrawRectShadow(screen, light, 1, 1);
  }
}

// What a paint program has at the bottom: a name, colour fields, brushes.
void DrawPanel(HostSurface& screen, const char* name) {
  Fill(screen, {0, kPanelTop, kWidth, kHeight}, kPanel);
  IdxLineHI(screen, {0, kPanelTop + 1}, kWidth, screen.Colour(kWhite));
  Write(screen, {8, kPanelTop + 8}, std::string("Pincel ") + name, kWhite, 2);
  constexpr uint32_t kColours[] = {0x000000, 0x808080, kWhite,   0xE02020, 0xF08020,
                                   0xF0E020, 0x20A040, 0x20C0C0, 0x2040E0, 0xA030C0};
  for (int i = 0; i < 10; ++i) {
    const int x = 106 + i * 15, y = kPanelTop + 7;
    const CRectangulo field{x, y, x + 12, y + 12};
    Fill(screen, field, kColours[i]);
    FrameBR(screen, field, screen.Colour(0x606878));
    DrawRectShadow(screen, field, 1, 1);
  }
  for (int i = 0; i < 3; ++i) {
    const int x = 264 + i * 17;
    Line(screen, {x, kPanelTop + 18}, {x + 10, kPanelTop + 7}, kWhite, 255, i > 0, 1 + i);
  }
}

// Cuts a picture out of its grey ground: flood fills from both edges paint the ground in the key. A
// fill takes what is at most a little darker than its reference and never what is brighter in any
// channel, so greys from dark to bright take the whole ground and leave the colours alone. 8-bit
// surfaces are not painted, so for them the sprite is cut out at 24 bits and then converted.
HostSurface CutOut(const Assets& assets, const HostSurface& screen) {
  const bool indexed = screen.format() == Format::k8;
  HostSurface sprite =
      assets.LoadPhoto("wuffs-hippopotamus", indexed ? Format::k24 : screen.format());
  for (uint32_t grey = 0x7F; grey <= 0xFF; grey += 0x20) {
    for (int y = 0; y < sprite.height; y += 3) {
      for (int x : {0, sprite.width - 1}) {
        HostSurface work(Format::k8, sprite.width, sprite.height);
        Rellena(sprite, work, x, y, 130, grey * 0x010101, 0xFF00FF);
      }
    }
  }
  sprite.colorKey = sprite.Stored(0, 0);
  if (!indexed) return sprite;

  HostSurface reduced(Format::k8, sprite.width, sprite.height);
  reduced.UsePaletteOf(screen);
  // Reductions from 24 bits exchange red and blue; with a palette that does so too they come right.
  for (TRGBA& entry : reduced.Palette()) std::swap(entry.red, entry.blue);
  Convert(reduced, sprite, 2);
  return reduced;
}

HostSurface DrawScene(const Assets& assets, const FormatFacts& facts) {
  const Format format = facts.format;
  HostSurface peacock = assets.LoadPhoto("wuffs-peacock", format);
  HostSurface tree = assets.Load("gd-tree-256.bmp", format);
  tree.colorKey = tree.Stored(0, 0);  // the ground of the sprite

  HostSurface screen(format, kWidth, kHeight);
  if (format == Format::k8) screen.UsePaletteOf(peacock);
  DrawSky(screen);
  DrawMoon(screen);
  DrawHills(screen);
  for (CPunto at : {CPunto{-14, 92}, {132, 96}, {164, 88}, {196, 98}, {226, 92}, {258, 102}}) {
    DrawSprite(screen, tree, at);
  }
  DrawGarland(screen, {150, 102}, {214, 104});
  DrawGarland(screen, {214, 104}, {276, 112});
  DrawEasel(screen, peacock, {26, 92});
  for (CPunto at : {CPunto{296, 128}, {114, 134}}) DrawSprite(screen, tree, at);
  HostSurface hippo = CutOut(assets, screen);
  for (CPunto at : {CPunto{158, 172}, {206, 180}, {262, 176}}) DrawSprite(screen, hippo, at);
  DrawPanel(screen, facts.name);
  return screen;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: scene <examples folder> <folder to write to>\n");
    return 2;
  }
  try {
    for (const FormatFacts& facts : kFormats) {
      const File file = BitmapFileOf(DrawScene(Assets(argv[1]), facts));
      WriteFile(std::string(argv[2]) + "/scene-" + facts.name + ".bmp", file.data(), file.size());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "scene: %s\n", error.what());
    return 1;
  }
  return 0;
}
