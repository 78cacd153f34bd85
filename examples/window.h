// A window with a surface to draw into, as the platform has it.
#ifndef EXAMPLES_WINDOW_H_
#define EXAMPLES_WINDOW_H_

#ifdef _WIN32
#include "win32_window.h"
using Window = Win32Window;
#else
#include "sdl_window.h"
using Window = SdlWindow;
#endif

inline constexpr int kEscape = 27;

#endif  // EXAMPLES_WINDOW_H_
