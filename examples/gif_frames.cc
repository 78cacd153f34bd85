// Writes every frame of an animated GIF file as a viewer shows it: gif_frames animation.gif folder
//
// The frames become frame-1.bmp, frame-2.bmp, ..., transparent parts white, and a line each says how
// long it is shown.
#include <cstdio>
#include <exception>
#include <string>

#include "files.h"
#include "gif_animation.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: gif_frames animation.gif folder\n");
    return 2;
  }
  try {
    GifAnimation animation(ReadFile(argv[1]));
    for (int number = 1; animation.Next(); ++number) {
      const std::string name = "frame-" + std::to_string(number) + ".bmp";
      const File file = BitmapFileOf(animation.Opaque());
      WriteFile(std::string(argv[2]) + "/" + name, file.data(), file.size());
      std::printf("%s %d.%02d s\n", name.c_str(), animation.Frame().delay / 100,
                  animation.Frame().delay % 100);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
