// Palette animation in a window: palette_animation [frames]
//
// A picture of 8 bits is drawn once; then only its colours move. With a number of frames they then
// stand still. Escape ends the program.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "frame_time.h"
#include "host_surface.h"
#include "lettering.h"
#include "window.h"

namespace {

constexpr int kWidth = 320, kHeight = 240;

// Entries 1 to 192 move. Entry 0, which means transparent to many operations, is left alone, and
// the last one is for what keeps its colour.
constexpr int kFirst = 1, kMoving = 192, kInk = 255;

// A palette entry has the layout of a 32-bit pixel, so a part of a palette is a surface of one row.
void SetRamp(TRGBA* first, int entries, unsigned long from, unsigned long to) {
  TSurfDesc row{};
  row.width = entries;
  row.height = 1;
  row.bpp = 32;
  row.pitch = entries * 4;
  row.pixels = reinterpret_cast<uint8_t*>(first);
  DoGradient(row, from, to);
}

// Rings around two points: the index of a pixel grows with its distances from both.
void DrawRings(HostSurface& picture) {
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const double way = 3 * std::hypot(x - 90, y - 70) + 2 * std::hypot(x - 260, y - 190);
      SetPixel(picture, x, y, kFirst + static_cast<unsigned long>(way) % kMoving);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const int last_frame = argc > 1 ? std::atoi(argv[1]) : -1;
    HostSurface picture(Format::k8, kWidth, kHeight);
    TRGBA* moving = picture.palette + kFirst;
    SetRamp(moving, 64, 0x081848, 0x2080C0);
    SetRamp(moving + 64, 64, 0x2080C0, 0xE0F0F0);
    SetRamp(moving + 128, 64, 0xE0F0F0, 0x081848);
    picture.palette[kInk] = {255, 255, 255, 255};
    DrawRings(picture);
    Write(picture, {16, 214}, "PINCEL", 0xFFFFFF, 3);

    Window window("Pincel", kWidth, kHeight, Format::k32);
    FrameTime time;
    int frame = 0;
    do {
      if (frame != last_frame) {
        time.Measure([&] {
          std::rotate(moving, moving + kMoving - 1, moving + kMoving);  // outwards
          Convert(window.Surface(), picture, 0);  // the picture's palette gives the colours
        });
        if (++frame % 20 == 0) window.SetTitle(time.Title("Pincel, palette"));
      }
      window.Present();
    } while (window.WaitForKey(20) != kEscape);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "palette_animation: %s\n", error.what());
    return 1;
  }
}
