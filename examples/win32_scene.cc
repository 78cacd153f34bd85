// The moving scene in a Win32 window: win32_scene [<examples folder> [8|555|565|24|32 [frames]]]
//
// The library draws into a DIB section, a bitmap whose pixels are memory of this program, and GDI
// shows it. With a number of frames the picture then stands still. Escape ends the program.
#include <windows.h>

#include <cstdlib>
#include <exception>

#include "dib_section.h"
#include "frame_time.h"
#include "moving_scene.h"

namespace {

class Host {
 public:
  Host(const char* folder, const char* format, int last_frame)
      : title_(std::string("Pincel, ") + format),
        last_frame_(last_frame),
        scene_(Assets(folder), FormatNamed(format)),
        screen_(MovingScene::kWidth, MovingScene::kHeight, FormatNamed(format), scene_.Palette()) {}

  void Draw(HWND window) {
    if (frame_ == last_frame_) return;
    TSurfDesc& surface = screen_.Surface();
    time_.Measure([&] { scene_.Draw(surface, ++frame_); });
    if (frame_ % 20 == 0) SetWindowTextA(window, time_.Title(title_).c_str());
    InvalidateRect(window, nullptr, FALSE);
  }

  void Paint(HWND window) const {
    PAINTSTRUCT paint;
    screen_.Show(BeginPaint(window, &paint));
    EndPaint(window, &paint);
  }

 private:
  std::string title_;
  int last_frame_, frame_ = 0;
  MovingScene scene_;
  DibSection screen_;
  FrameTime time_;
};

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM word, LPARAM value) {
  const auto host = reinterpret_cast<Host*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  switch (message) {
    case WM_TIMER:
      host->Draw(window);
      return 0;
    case WM_PAINT:
      host->Paint(window);
      return 0;
    case WM_KEYDOWN:
      if (word == VK_ESCAPE) DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcA(window, message, word, value);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Host host(argc > 1 ? argv[1] : "examples", argc > 2 ? argv[2] : "32",
              argc > 3 ? std::atoi(argv[3]) : -1);
    WNDCLASSA window_class = {};
    window_class.lpfnWndProc = OnMessage;
    window_class.hCursor = LoadCursor(nullptr, IDC_ARROW);
    window_class.lpszClassName = "pincel";
    RegisterClassA(&window_class);
    constexpr DWORD kStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;
    RECT frame = {0, 0, MovingScene::kWidth, MovingScene::kHeight};
    AdjustWindowRect(&frame, kStyle, FALSE);  // the size above is that of the inside
    const HWND window = CreateWindowA("pincel", "Pincel", kStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                                      frame.right - frame.left, frame.bottom - frame.top, nullptr,
                                      nullptr, nullptr, nullptr);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&host));
    ShowWindow(window, SW_SHOW);
    SetTimer(window, 1, 20, nullptr);
    for (MSG message; GetMessageA(&message, nullptr, 0, 0) > 0;) DispatchMessageA(&message);
  } catch (const std::exception& error) {
    MessageBoxA(nullptr, error.what(), "Pincel", MB_OK);
    return 1;
  }
}
