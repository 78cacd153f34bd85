// Shows a BMP, GIF or JPEG file in a window: image_viewer picture [keys]
//
// The keys that `keys` lists are pressed first. What they do stands in the table below; Escape ends
// the program.
#include <algorithm>
#include <cstdio>
#include <exception>

#include "frame_time.h"
#include "load_image.h"
#include "window.h"

namespace {

constexpr int kWidth = 640, kHeight = 480;

struct View {
  HostSurface original, image;
  int percent = 100;
  bool smooth = false;
};

// A quarter turn needs a surface of the size turned.
void Turn(View& view, int mode) {
  HostSurface turned(Format::k32, view.image.height, view.image.width);
  CreateRotated(turned, view.image, mode);
  view.image = turned;
}

// Filters work in place and need room for a copy.
void Filter(View& view, bool (*filter)(TSurfDesc& image, TSurfDesc& scratch)) {
  HostSurface scratch = view.image;
  filter(view.image, scratch);
}

void Brighten(View& view, float amount) {
  TranslateRect(view.image, view.image.Bounds(), amount, nullptr);  // 0.5 leaves it as it is
}

struct Key {
  char key;
  const char* help;
  void (*press)(View&);
};

constexpr Key kKeys[] = {
    {'+', "larger", [](View& view) { view.percent = std::min(view.percent * 2, 1600); }},
    {'-', "smaller", [](View& view) { view.percent = std::max(view.percent / 2, 25); }},
    {'i', "interpolate, or not", [](View& view) { view.smooth = !view.smooth; }},
    {'l', "turn left", [](View& view) { Turn(view, 1); }},
    {'r', "turn right", [](View& view) { Turn(view, 3); }},
    {'m', "mirror", [](View& view) { FlipX(view.image); }},
    {'b', "blur", [](View& view) { Filter(view, DoSuavizado); }},
    {'s', "sharpen", [](View& view) { Filter(view, DoRealce); }},
    {'e', "emboss", [](View& view) { Filter(view, DoEmboss); }},
    {'d', "darker", [](View& view) { Brighten(view, 0.45f); }},
    {'h', "lighter", [](View& view) { Brighten(view, 0.55f); }},
    {'0', "as it was",
     [](View& view) {
       view = View{view.original, view.original};
     }},
};

void Press(View& view, int key) {
  for (const Key& entry : kKeys) {
    if (entry.key == key) entry.press(view);
  }
}

// Draws the image in the middle of the window, or its middle if it is larger. A stretch squeezes the
// whole source into what is visible, so only the visible part of it is passed.
void Show(TSurfDesc& window, View& view) {
  IdxFillRect(window, {0, 0, kWidth, kHeight}, 0xFF303438);
  const int columns = std::min(view.image.width, kWidth * 100 / view.percent),
            rows = std::min(view.image.height, kHeight * 100 / view.percent);
  const int width = columns * view.percent / 100, height = rows * view.percent / 100;
  const CPunto from{(view.image.width - columns) / 2, (view.image.height - rows) / 2},
      to{(kWidth - width) / 2, (kHeight - height) / 2};
  BltStrech(window, {to.x, to.y, to.x + width, to.y + height}, view.image,
            {from.x, from.y, from.x + columns, from.y + rows}, view.smooth);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: image_viewer picture [keys]\n");
    for (const Key& entry : kKeys) std::fprintf(stderr, "  %c  %s\n", entry.key, entry.help);
    return 2;
  }
  try {
    const HostSurface image = LoadPicture(argv[1]);
    View view{image, image};
    for (const char* key = argc > 2 ? argv[2] : ""; *key != 0; ++key) Press(view, *key);

    Window window(argv[1], kWidth, kHeight, Format::k32);
    for (int key = 0; key != kEscape; key = window.WaitForKey(1000)) {
      FrameTime time;
      time.Measure([&] {
        Press(view, key);
        Show(window.Surface(), view);
      });
      window.SetTitle(time.Title(argv[1]));
      window.Present();
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "image_viewer: %s\n", error.what());
    return 1;
  }
}
