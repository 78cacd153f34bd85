// The scene of win32_scene.cc and sdl_scene.cc: sprites with key, mix and fade over a background.
#ifndef EXAMPLES_MOVING_SCENE_H_
#define EXAMPLES_MOVING_SCENE_H_

#include <algorithm>
#include <cstdlib>

#include "assets.h"

class MovingScene {
 public:
  // An odd width shows whether a host minds the padding of rows.
  static constexpr int kWidth = 321, kHeight = 240;

  MovingScene(const Assets& assets, Format format)
      : photo_(assets.LoadPhoto("wuffs-peacock", format)),
        tree_(assets.Load("gd-tree-256.bmp", format)),
        hippo_(assets.LoadPhoto("wuffs-hippopotamus", format)),
        lens_(Format::k8, photo_.width, photo_.height),
        background_(format, kWidth, kHeight) {
    if (format == Format::k8) background_.UsePaletteOf(photo_);
    constexpr int kBands = 24, kBand = kHeight / kBands, kSky = 13;
    for (int i = 0; i < kBands; ++i) {
      const uint32_t colour =
          i < kSky ? 0x0C1034 + uint32_t(i) * 0x030509 : 0xFCFCFF - uint32_t(i - kSky) * 0x040302;
      IdxFillRect(background_, {0, i * kBand, kWidth, (i + 1) * kBand}, background_.Colour(colour));
    }
    tree_.colorKey = tree_.Stored(0, 0);  // the colour of the ground around the tree

    // The alpha surface: 255 in the middle, less and less towards an ellipse, 0 outside.
    for (int y = 0; y < lens_.height; ++y) {
      for (int x = 0; x < lens_.width; ++x) {
        const int across = (2 * x - lens_.width) * 256 / lens_.width,
                  down = (2 * y - lens_.height) * 256 / lens_.height;
        const int inside = 255 - (across * across + down * down) / 256;
        SetPixel(lens_, x, y, static_cast<unsigned long>(std::clamp(inside * 3, 0, 255)));
      }
    }
    if (format == Format::k8) {
      // At 8 bits a mixed colour must be found among 256: the library mixes the colours of
      // lu_gPaleta and asks the table for the nearest entry.
      std::copy_n(Palette(), 256, lu_gPaleta);
      pincel_build_mix_table(table_, lu_gPaleta, 1);
    }
  }

  // 256 entries for 8-bit screens; null for others.
  const TRGBA* Palette() const { return photo_.palette; }

  // Draws a frame; `screen` has the scene's size and format.
  void Draw(TSurfDesc& screen, int frame) {
    // A block is the copy for everything that covers its place completely.
    DrawBlock(screen, background_, 0, 0, 0, 0, kWidth, kHeight);

    // Key: a forest in three rows, the nearer the faster. Trees leave the screen on one side and
    // come in on the other; the library clips them.
    for (int i = 0; i < 15; ++i) {
      const int row = i / 5, way = kWidth + tree_.width;
      const int x = (i * 71 + row * 30 + frame * (row + 1)) % way - tree_.width;
      DrawBitmap(screen, At({x, 80 + 40 * row}, tree_), tree_, {0, 0});
    }
    // Mix: a picture through an alpha surface.
    const CPunto lens{Swing(frame * 2, kWidth - photo_.width), Swing(frame, 120)};
    DrawMix(screen, At(lens, photo_), lens_, {0, 0}, photo_, {0, 0}, table_);

    // Fade: a picture that comes and goes as a whole.
    const auto level = static_cast<unsigned short>(Swing(frame * 4, 255));
    DrawMix(screen, At({260, 20}, hippo_), level, hippo_, {0, 0}, table_);
  }

 private:
  // 0, 1, ... range, range - 1, ... 0, 1, ...
  static int Swing(int time, int range) { return range - std::abs(range - time % (2 * range)); }

  static CRectangulo At(CPunto at, const TSurfDesc& picture) {
    return {at.x, at.y, at.x + picture.width, at.y + picture.height};
  }

  HostSurface photo_, tree_, hippo_, lens_, background_;
  unsigned char table_[2][65536] = {};
};

#endif  // EXAMPLES_MOVING_SCENE_H_
