// The moving scene in an SDL2 window: sdl_scene <examples folder> [8|555|565|24|32 [frames]]
//
// With a number of frames the picture then stands still. Escape ends the program.
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "frame_time.h"
#include "moving_scene.h"
#include "sdl_window.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: sdl_scene <examples folder> [8|555|565|24|32 [frames]]\n");
    return 2;
  }
  try {
    const std::string format = argc > 2 ? argv[2] : "32";
    const int last_frame = argc > 3 ? std::atoi(argv[3]) : -1;
    MovingScene scene(Assets(argv[1]), FormatNamed(format));
    SdlWindow window("Pincel", MovingScene::kWidth, MovingScene::kHeight, FormatNamed(format));
    if (scene.Palette() != nullptr) window.SetPalette(scene.Palette());

    FrameTime time;
    int frame = 0;
    do {
      if (frame != last_frame) {
        time.Measure([&] { scene.Draw(window.Surface(), ++frame); });
        if (frame % 20 == 0) window.SetTitle(time.Title("Pincel, " + format));
      }
      window.Present();
    } while (SdlWindow::WaitForKey(20) != SDLK_ESCAPE);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "sdl_scene: %s\n", error.what());
    return 1;
  }
}
