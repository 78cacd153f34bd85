// Plays an animated GIF file in a window: gif_player animation.gif [frames]
//
// With a number of frames the picture then stands still. Escape ends the program.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "frame_time.h"
#include "gif_animation.h"
#include "window.h"

namespace {

// Hands out the frames as often as the file wants them.
class Player {
 public:
  explicit Player(const char* path) : file_(ReadFile(path)), animation_(file_) {}

  const GifAnimation& Animation() const { return animation_; }

  // False when all is over; then the last frame stays on the screen.
  bool Next() {
    if (animation_.Next()) return true;
    if (animation_.Frame().offset == 0) throw std::runtime_error("there are no frames");
    const int loops = animation_.Frame().loops;  // 0: for ever; -1: the file does not say
    if (loops != 0 && loops <= repeated_++) return false;
    animation_ = GifAnimation(file_);
    return animation_.Next();
  }

 private:
  File file_;
  GifAnimation animation_;
  int repeated_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: gif_player animation.gif [frames]\n");
    return 2;
  }
  try {
    Player player(argv[1]);
    const TSurfDesc size = player.Animation().Screen();
    const int last_frame = argc > 2 ? std::atoi(argv[2]) : -1;
    // Small animations are shown larger, a pixel as a square.
    const int zoom = std::max(1, 256 / std::max(1, std::max(size.width, size.height)));
    const CRectangulo inside{0, 0, size.width * zoom, size.height * zoom};
    Window window("Pincel", inside.right, inside.bottom, Format::k32);

    FrameTime time;
    bool playing = true;
    int frame = 0, delay = 0;
    do {
      if (playing && frame != last_frame) {
        time.Measure([&] {
          playing = player.Next();
          if (!playing) return;
          HostSurface picture = player.Animation().Opaque();
          DrawStretch(window.Surface(), inside, picture, picture.Bounds());
        });
        ++frame;
        delay = player.Animation().Frame().delay;  // hundredths of a second
        window.SetTitle(time.Title(argv[1]));
      }
      window.Present();
      // Files that ask for no delay are shown at ten frames a second by all viewers.
    } while (window.WaitForKey(delay < 2 ? 100 : delay * 10) != kEscape);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "gif_player: %s\n", error.what());
    return 1;
  }
}
