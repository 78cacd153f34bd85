// An SDL2 window with a surface of any format to draw into.
#ifndef EXAMPLES_SDL_WINDOW_H_
#define EXAMPLES_SDL_WINDOW_H_

#include <SDL.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "formats.h"

class SdlWindow {
 public:
  SdlWindow(const std::string& title, int width, int height, Format format) {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) throw std::runtime_error(SDL_GetError());
    window_ = SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width,
                               height, 0);
    // The masks say which of SDL's formats has the library's layout; at 8 bits they are 0 and there
    // is a palette. The alpha mask is left out: windows are opaque.
    const FormatFacts& facts = FactsOf(format);
    image_ = SDL_CreateRGBSurface(0, width, height, int(facts.bpp), facts.red, facts.green,
                                  facts.blue, 0);
    if (window_ == nullptr || image_ == nullptr) throw std::runtime_error(SDL_GetError());

    // SDL pads rows as it likes: its pitch counts, not the width.
    surface_ = Described(format, width, height, image_->pitch, image_->pixels);
  }
  SdlWindow(const SdlWindow&) = delete;
  SdlWindow& operator=(const SdlWindow&) = delete;
  ~SdlWindow() {
    SDL_FreeSurface(image_);
    SDL_DestroyWindow(window_);
    SDL_Quit();
  }

  TSurfDesc& Surface() { return surface_; }

  void SetTitle(const std::string& title) { SDL_SetWindowTitle(window_, title.c_str()); }

  // The colours that SDL shows the indices of an 8-bit surface in.
  void SetPalette(const TRGBA* palette) {
    SDL_Color colours[256];
    std::transform(palette, palette + 256, colours, [](const TRGBA& entry) {
      return SDL_Color{entry.red, entry.green, entry.blue, 255};  // SDL's order is the other one
    });
    SDL_SetPaletteColors(image_->format->palette, colours, 0, 256);
  }

  // Shows what was drawn. SDL converts it to the format of the screen.
  void Present() {
    SDL_BlitSurface(image_, nullptr, SDL_GetWindowSurface(window_), nullptr);
    SDL_UpdateWindowSurface(window_);
  }

  // Waits until a key is pressed or the time is over. Returns the character on the key, 0 for none
  // and 27 (Escape) also when the window is to be closed.
  static int WaitForKey(int milliseconds) {
    const Uint32 end = SDL_GetTicks() + Uint32(milliseconds);
    SDL_Event event;
    for (int left; (left = int(end - SDL_GetTicks())) > 0;) {
      if (SDL_WaitEventTimeout(&event, left) == 0) continue;
      if (event.type == SDL_QUIT) return SDLK_ESCAPE;
      if (event.type == SDL_KEYDOWN) return event.key.keysym.sym;
    }
    return 0;
  }

 private:
  SDL_Window* window_ = nullptr;
  SDL_Surface* image_ = nullptr;
  TSurfDesc surface_ = {};
};

#endif  // EXAMPLES_SDL_WINDOW_H_
