// One frame of the moving scene, without a window: moving_frame <examples folder> format n out.bmp
//
// Draws frames 1 to n, as the programs with a window do that are told to stop there.
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "moving_scene.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: moving_frame <examples folder> 8|555|565|24|32 n out.bmp\n");
    return 2;
  }
  try {
    const Format format = FormatNamed(argv[2]);
    MovingScene scene(Assets(argv[1]), format);
    HostSurface screen(format, MovingScene::kWidth, MovingScene::kHeight);
    if (format == Format::k8) std::copy_n(scene.Palette(), 256, screen.palette);
    scene.Draw(screen, std::atoi(argv[3]));
    const File file = BitmapFileOf(screen);
    WriteFile(argv[4], file.data(), file.size());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
