// Builds BMP files in memory for the loader tests.
#ifndef TESTS_SUPPORT_BMP_WRITER_H_
#define TESTS_SUPPORT_BMP_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "include/pincel.h"

namespace support {

struct BmpFile {
  bool qx = false;       // signature "QX" instead of "BM"
  uint32_t header = 40;  // 12 for the short form
  int32_t width = 0, height = 0;
  uint16_t bits = 8;
  uint32_t compression = 0;
  uint32_t colours_used = 0;
  std::vector<TRGBA> table;  // three bytes each behind a 12-byte header, else four
  int gap = 0;               // zero bytes between the table and the pixels
  std::vector<uint8_t> pixels;

  std::vector<uint8_t> Bytes() const {
    std::vector<uint8_t> bytes;
    const auto put = [&](uint32_t value, int count) {
      for (int i = 0; i < count; ++i) bytes.push_back(uint8_t(value >> (8 * i)));
    };
    const size_t entry = header == 12 ? 3 : 4;
    const size_t offset = 14 + size_t{header} + entry * table.size() + size_t(gap);
    put(qx ? 0x5851 : 0x4D42, 2);
    put(uint32_t(offset + pixels.size()), 4);
    put(0, 4);
    put(uint32_t(offset), 4);
    put(header, 4);
    if (header == 12) {
      put(uint32_t(width), 2);
      put(uint32_t(height), 2);
      put(1, 2);
      put(bits, 2);
    } else {
      put(uint32_t(width), 4);
      put(uint32_t(height), 4);
      put(1, 2);
      put(bits, 2);
      put(compression, 4);
      for (int i = 0; i < 3; ++i) put(0, 4);  // size of the pixels and resolution: not read
      put(colours_used, 4);
      put(0, 4);
    }
    bytes.resize(14 + size_t{header});
    for (const TRGBA& c : table) {
      bytes.insert(bytes.end(), {c.blue, c.green, c.red});
      if (entry == 4) bytes.push_back(c.alpha);
    }
    bytes.resize(offset);
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    return bytes;
  }
};

// Bytes of one stored row, padding included.
inline int BmpStride(int width, int bits) { return (width * bits + 31) / 32 * 4; }

// A stream of run-length codes, built one by one.
class RunLengthStream {
 public:
  RunLengthStream& Run(int count, int index) { return Raw({uint8_t(count), uint8_t(index)}); }
  RunLengthStream& Literal(const std::vector<uint8_t>& indices) {  // 3 to 255 of them
    Raw({0, uint8_t(indices.size())});
    Raw(indices);
    return indices.size() % 2 ? Raw({0}) : *this;
  }
  RunLengthStream& EndOfLine() { return Raw({0, 0}); }
  RunLengthStream& EndOfBitmap() { return Raw({0, 1}); }
  RunLengthStream& Delta(int right, int onward) {
    return Raw({0, 2, uint8_t(right), uint8_t(onward)});
  }
  RunLengthStream& Raw(const std::vector<uint8_t>& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  const std::vector<uint8_t>& Bytes() const { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

// A file as a host holds it, at an even or an odd address, with zeros behind it: loaders get no
// length, and zeros read as ends of lines.
class FileInMemory {
 public:
  explicit FileInMemory(const std::vector<uint8_t>& bytes, bool odd_address = false,
                        size_t zeros = 1 << 16)
      : bytes_(bytes.size() + zeros + 2) {
    const bool odd = (reinterpret_cast<uintptr_t>(bytes_.data()) & 1) != 0;
    start_ = odd == odd_address ? 0 : 1;
    for (size_t i = 0; i < bytes.size(); ++i) bytes_[start_ + i] = bytes[i];
  }
  uint8_t* Data() { return bytes_.data() + start_; }

 private:
  std::vector<uint8_t> bytes_;
  size_t start_ = 0;
};

}  // namespace support

#endif  // TESTS_SUPPORT_BMP_WRITER_H_
