// The bytes of a picture, with a page behind them that nothing may touch.
#ifndef TESTS_SUPPORT_PIXEL_BYTES_H_
#define TESTS_SUPPORT_PIXEL_BYTES_H_

#include <cstdint>
#include <vector>

// Under the address sanitizer its own guards see as much, on both sides; on Windows the pages would
// take longer than all the tests.
#if defined(_WIN32) || defined(PINCEL_ADDRESS_SANITIZER)

namespace support {
using PixelBytes = std::vector<uint8_t>;
}  // namespace support

#else

#include <algorithm>
#include <cstddef>
#include <map>
#include <mutex>

#include "tests/support/guarded_memory.h"

namespace support {

// Blocks that are free to be used again; asking the system each time would take most of the tests'
// time.
class SpareBlocks {
 public:
  uint8_t* Take(size_t size) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      std::vector<uint8_t*>& spare = spare_[size];
      if (!spare.empty()) {
        uint8_t* const start = spare.back();
        spare.pop_back();
        return start;
      }
    }
    return GuardedMemory::Map(size);
  }
  void Give(uint8_t* start, size_t size) {
    const std::lock_guard<std::mutex> lock(mutex_);
    spare_[size].push_back(start);
  }
  static SpareBlocks& Instance() {
    static SpareBlocks& blocks = *new SpareBlocks;  // lives as long as any vector
    return blocks;
  }

 private:
  std::mutex mutex_;
  std::map<size_t, std::vector<uint8_t*>> spare_;
};

// For vectors whose last byte is the last before such a page.
template <class T>
struct GuardedAllocator {
  static_assert(sizeof(T) == 1);
  using value_type = T;

  T* allocate(size_t count) {
    const size_t size = GuardedMemory::RoundUp(count);
    return reinterpret_cast<T*>(SpareBlocks::Instance().Take(size) + size - count);
  }
  void deallocate(T* bytes, size_t count) {
    const size_t size = GuardedMemory::RoundUp(count);
    SpareBlocks::Instance().Give(reinterpret_cast<uint8_t*>(bytes) + count - size, size);
  }
  bool operator==(const GuardedAllocator&) const { return true; }
};

class PixelBytes : public std::vector<uint8_t, GuardedAllocator<uint8_t>> {
 public:
  using vector::vector;
  operator std::vector<uint8_t>() const { return {begin(), end()}; }
  bool operator==(const std::vector<uint8_t>& other) const {
    return std::equal(begin(), end(), other.begin(), other.end());
  }
  bool operator==(const PixelBytes& other) const {
    return std::equal(begin(), end(), other.begin(), other.end());
  }
};

}  // namespace support

#endif

#endif  // TESTS_SUPPORT_PIXEL_BYTES_H_
