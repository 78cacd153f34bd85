// Plays an animated GIF file: every frame as a viewer shows it.
#ifndef EXAMPLES_GIF_ANIMATION_H_
#define EXAMPLES_GIF_ANIMATION_H_

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "files.h"
#include "host_surface.h"

class GifAnimation {
 public:
  explicit GifAnimation(File file) : file_(std::move(file)), screen_(Format::k32, 0, 0) {
    TSurfDesc size{};
    if (pincel_load_info_gif(size, file_.data(), file_.size()) != PINCEL_OK) {
      throw std::runtime_error("not a GIF file");
    }
    screen_ = HostSurface(Format::k32, size.width, size.height);
  }

  // Draws the next frame; false behind the last one.
  bool Next() {
    Dispose();
    if (pincel_gif_frame(frame_, file_.data(), file_.size()) != PINCEL_OK) return false;
    const CRectangulo area = frame_.area;
    const int width = area.right - area.left, height = area.bottom - area.top;
    HostSurface picture(Format::k32, width, height), opaque(Format::k8, width, height);
    pincel_load_gif(picture, file_.data(), file_.size(), frame_);
    // Transparent pixels came with alpha 0, others with 255, and what a damaged file lacks is 0 too.
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        opaque.pixels[y * opaque.pitch + x] = picture.pixels[y * picture.pitch + 4 * x + 3];
      }
    }
    DrawMix(screen_, area, opaque, {0, 0}, picture, {0, 0}, nullptr);
    return true;
  }

  // 32 bits; where nothing was drawn yet, every byte is 0.
  const HostSurface& Screen() const { return screen_; }
  const TGifFrame& Frame() const { return frame_; }

  // The screen on white paper.
  HostSurface Opaque() const {
    HostSurface shown = screen_;
    for (int y = 0; y < shown.height; ++y) {
      for (int x = 0; x < shown.width; ++x) {
        const bool empty = shown.Stored(x, y) >> 24 == 0;
        if (empty) IdxFillRect(shown, {x, y, x + 1, y + 1}, 0xFFFFFFFF);
      }
    }
    return shown;
  }

 private:
  // What becomes of the frame on the screen before the next one is drawn.
  void Dispose() {
    const bool first = frame_.offset == 0;
    if (!first && frame_.disposal == 2) IdxFillRect(screen_, frame_.area, 0);
    if (!first && frame_.disposal == 3) screen_ = before_;
    before_ = screen_;
  }

  File file_;
  TGifFrame frame_ = {};
  HostSurface screen_, before_{Format::k32, 0, 0};
};

#endif  // EXAMPLES_GIF_ANIMATION_H_
