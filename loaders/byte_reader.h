// Reads a file in memory, with or without knowing where it ends.
#ifndef LOADERS_BYTE_READER_H_
#define LOADERS_BYTE_READER_H_

#include <cstddef>
#include <cstdint>

namespace pincel {

// Sanitizers know of bytes, not only of pages, who may read them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kBytesAreWatched = true;
#elif defined(__has_feature)
inline constexpr bool kBytesAreWatched =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kBytesAreWatched = false;
#endif

// Goes from one byte to the next. Without an end nothing is checked; with one, nothing behind it is
// read: there bytes count as 0 and `RanOut` tells so.
class ByteReader {
 public:
  explicit ByteReader(const uint8_t* bytes) : ByteReader(bytes, nullptr) {}
  // A file of known length; none at all counts as an empty one.
  static ByteReader OfFile(const uint8_t* data, size_t length) {
    static constexpr uint8_t kNothing = 0;
    return data == nullptr ? ByteReader(&kNothing, &kNothing) : ByteReader(data, data + length);
  }

  const uint8_t* At() const { return at_; }
  size_t Left() const { return end_ == nullptr ? SIZE_MAX : size_t(end_ - at_); }
  // How many bytes can be read without harm, whether or not they belong to the file, given that the
  // next one can: without an end those of its memory page.
  size_t Readable() const {
    constexpr uintptr_t kSmallestPage = 4096;
    if (end_ != nullptr) return Left();
    if (kBytesAreWatched) return 1;
    return kSmallestPage - reinterpret_cast<uintptr_t>(at_) % kSmallestPage;
  }
  bool RanOut() const { return ran_out_; }
  bool AtOddAddress() const { return reinterpret_cast<uintptr_t>(at_) % 2 != 0; }

  uint8_t Byte() {
    if (at_ != end_) return *at_++;
    ran_out_ = true;
    return 0;
  }
  // The next `count` bytes; null, and the reader at the end, when there are fewer.
  const uint8_t* Bytes(size_t count) {
    if (count > Left()) {
      at_ = end_;
      ran_out_ = true;
      return nullptr;
    }
    const uint8_t* const bytes = at_;
    at_ += count;
    return bytes;
  }

 private:
  ByteReader(const uint8_t* bytes, const uint8_t* end) : at_(bytes), end_(end) {}

  const uint8_t* at_;
  const uint8_t* end_;
  bool ran_out_ = false;
};

}  // namespace pincel

#endif  // LOADERS_BYTE_READER_H_
