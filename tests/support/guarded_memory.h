// Memory that ends at a page which nothing may touch: one byte further stops the program, also
// where no sanitizer looks (Windows, code of others, every instruction set).
#ifndef TESTS_SUPPORT_GUARDED_MEMORY_H_
#define TESTS_SUPPORT_GUARDED_MEMORY_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace support {

class GuardedMemory {
 public:
  explicit GuardedMemory(size_t size) : size_(RoundUp(size)), start_(Map(size_)) {}
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  ~GuardedMemory() { Unmap(start_, size_); }

  size_t size() const { return size_; }
  // The last `count` bytes.
  uint8_t* Last(size_t count) const { return start_ + size_ - count; }
  // Bytes at the end, with as many zeros behind them.
  uint8_t* Put(const std::vector<uint8_t>& bytes, size_t zeros = 0) const {
    uint8_t* const at = Last(bytes.size() + zeros);
    std::copy(bytes.begin(), bytes.end(), at);
    std::fill_n(at + bytes.size(), zeros, uint8_t{0});
    return at;
  }

  static size_t RoundUp(size_t size) { return (size + kPage - 1) / kPage * kPage; }

  // `size` bytes, a multiple of the page, and the guard behind them.
  static uint8_t* Map(size_t size) {
#if defined(_WIN32)
    void* const start =
        VirtualAlloc(nullptr, size + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (start == nullptr) throw std::bad_alloc();
    uint8_t* const bytes = static_cast<uint8_t*>(start);
    DWORD before;
    VirtualProtect(bytes + size, kPage, PAGE_NOACCESS, &before);
#else
    void* const start =
        mmap(nullptr, size + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) throw std::bad_alloc();
    uint8_t* const bytes = static_cast<uint8_t*>(start);
    mprotect(bytes + size, kPage, PROT_NONE);
#endif
    return bytes;
  }

  static void Unmap(uint8_t* start, [[maybe_unused]] size_t size) {
#if defined(_WIN32)
    VirtualFree(start, 0, MEM_RELEASE);
#else
    munmap(start, size + kPage);
#endif
  }

 private:
  static constexpr size_t kPage = 65536;  // at least the system's

  size_t size_;
  uint8_t* start_;
};

}  // namespace support

#endif  // TESTS_SUPPORT_GUARDED_MEMORY_H_
