// Entry point of pincel.dll.
#define WIN32_LEAN_AND_MEAN
#define NOGDI  // the library has functions named GetPixel and SetPixel too
#include <windows.h>

#include "include/pincel.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(module);
    InitializeDLL();
  }
  return TRUE;
}
