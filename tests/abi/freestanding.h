/* What a program for MSVC hosts needs when there is no C library to link: an entry point that calls
 * Main(), output, files. Included by one file. */
#ifndef TESTS_ABI_FREESTANDING_H_
#define TESTS_ABI_FREESTANDING_H_

#include <stddef.h>

#define KERNEL32(result) extern "C" __declspec(dllimport) result __stdcall
KERNEL32(void) ExitProcess(unsigned status);
KERNEL32(void*) GetStdHandle(unsigned long which);
KERNEL32(int)
WriteFile(void* file, const void* from, unsigned long count, unsigned long* done, void* overlapped);
KERNEL32(int)
ReadFile(void* file, void* to, unsigned long count, unsigned long* done, void* overlapped);
KERNEL32(void*)
CreateFileA(const char* path, unsigned long access, unsigned long share, void* security,
            unsigned long how, unsigned long flags, void* model);
KERNEL32(void*) GetModuleHandleA(const char* name);
KERNEL32(void*) GetProcAddress(void* module, const char* name);
#undef KERNEL32

// The compiler calls these, and wants to see that floating point is used.
extern "C" int _fltused = 0;
extern "C" void* memset(void* to, int value, size_t count) {
  for (size_t i = 0; i < count; ++i) static_cast<volatile char*>(to)[i] = static_cast<char>(value);
  return to;
}
extern "C" void* memcpy(void* to, const void* from, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    static_cast<volatile char*>(to)[i] = static_cast<const char*>(from)[i];
  }
  return to;
}

static void Print(const char* text) {
  unsigned long length = 0, done;
  while (text[length] != 0) ++length;
  WriteFile(GetStdHandle(static_cast<unsigned long>(-11)), text, length, &done, nullptr);
}

// Reads a file; 0 bytes if there is none.
static unsigned long ReadWhole(const char* path, unsigned char* to, unsigned long room) {
  const unsigned long read = 0x80000000, share_read = 1, existing = 3;
  unsigned long done = 0;
  void* const file = CreateFileA(path, read, share_read, nullptr, existing, 0, nullptr);
  ReadFile(file, to, room, &done, nullptr);
  return done;
}

static int Main();
extern "C" void Start() { ExitProcess(static_cast<unsigned>(Main())); }

#endif  // TESTS_ABI_FREESTANDING_H_
