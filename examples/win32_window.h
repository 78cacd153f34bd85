// A Win32 window with a surface of any format that GDI shows.
#ifndef EXAMPLES_WIN32_WINDOW_H_
#define EXAMPLES_WIN32_WINDOW_H_

#include <windows.h>

#include <string>

#include "dib_section.h"

class Win32Window {
 public:
  Win32Window(const std::string& title, int width, int height, Format format)
      : section_(width, height, format, nullptr) {
    WNDCLASSA window_class = {};
    window_class.lpfnWndProc = OnMessage;
    window_class.hCursor = LoadCursor(nullptr, IDC_ARROW);
    window_class.lpszClassName = "pincel window";
    RegisterClassA(&window_class);
    constexpr DWORD kStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;
    RECT frame = {0, 0, width, height};
    AdjustWindowRect(&frame, kStyle, FALSE);  // the size above is that of the inside
    window_ = CreateWindowA(window_class.lpszClassName, title.c_str(), kStyle, CW_USEDEFAULT,
                            CW_USEDEFAULT, frame.right - frame.left, frame.bottom - frame.top,
                            nullptr, nullptr, nullptr, nullptr);
    if (window_ == nullptr) throw std::runtime_error("there is no window");
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ShowWindow(window_, SW_SHOW);
  }
  Win32Window(const Win32Window&) = delete;
  Win32Window& operator=(const Win32Window&) = delete;
  ~Win32Window() { DestroyWindow(window_); }

  TSurfDesc& Surface() { return section_.Surface(); }

  void SetTitle(const std::string& title) { SetWindowTextA(window_, title.c_str()); }

  // Shows what was drawn.
  void Present() {
    InvalidateRect(window_, nullptr, FALSE);
    UpdateWindow(window_);
  }

  // Waits until a key is pressed or the time is over. Returns the character on the key, 0 for none
  // and 27 (Escape) also when the window is to be closed.
  int WaitForKey(int milliseconds) {
    const DWORD end = GetTickCount() + DWORD(milliseconds);
    for (;;) {
      key_ = 0;
      for (MSG message; key_ == 0 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0;) {
        TranslateMessage(&message);  // makes characters of keys
        DispatchMessageA(&message);
      }
      const int left = int(end - GetTickCount());
      if (key_ != 0 || left <= 0) return key_;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, DWORD(left), QS_ALLINPUT);
    }
  }

 private:
  static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM word, LPARAM value) {
    const auto self = reinterpret_cast<Win32Window*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (self == nullptr) return DefWindowProcA(window, message, word, value);  // not yet
    switch (message) {
      case WM_PAINT: {
        PAINTSTRUCT paint;
        self->section_.Show(BeginPaint(window, &paint));
        EndPaint(window, &paint);
        return 0;
      }
      case WM_CHAR:
        self->key_ = int(word);
        return 0;
      case WM_CLOSE:
        self->key_ = VK_ESCAPE;
        return 0;
      default:
        return DefWindowProcA(window, message, word, value);
    }
  }

  DibSection section_;
  HWND window_ = nullptr;
  int key_ = 0;
};

#endif  // EXAMPLES_WIN32_WINDOW_H_
