// Reads a file in memory, with or without knowing where it ends.
#ifndef LOADERS_BYTE_READER_H_
#define LOADERS_BYTE_READER_H_

#include <cstddef>
#include <cstdint>

namespace pincel {

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
