// Builds GIF files in memory for the loader tests.
#ifndef TESTS_SUPPORT_GIF_WRITER_H_
#define TESTS_SUPPORT_GIF_WRITER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace support {

using ByteVector = std::vector<uint8_t>;

// Cuts bytes into sub-blocks and ends them with an empty one.
inline ByteVector SubBlocks(const ByteVector& bytes, size_t longest = 255) {
  ByteVector blocks;
  for (size_t at = 0; at < bytes.size(); at += longest) {
    const size_t length = std::min(longest, bytes.size() - at);
    blocks.push_back(uint8_t(length));
    for (size_t i = 0; i < length; ++i) blocks.push_back(bytes[at + i]);
  }
  blocks.push_back(0);
  return blocks;
}

// Codes one behind the other, each with the width that a decoder expects by then.
class CodeStream {
 public:
  explicit CodeStream(int root_bits) : root_bits_(root_bits) { Restart(); }
  int ClearCode() const { return 1 << root_bits_; }
  int EndCode() const { return ClearCode() + 1; }
  int NextFree() const { return next_; }
  int Width() const { return width_; }

  CodeStream& Clear() {
    Put(ClearCode());
    Restart();
    after_clear_ = true;
    return *this;
  }
  CodeStream& End() { return Put(EndCode()); }
  // A code that is neither. The first one behind a clear code adds no entry.
  CodeStream& Code(int code) {
    Put(code);
    if (!after_clear_ && next_ < 1 << width_) {
      ++next_;
      if (next_ == 1 << width_ && width_ < 12) ++width_;
    }
    after_clear_ = false;
    return *this;
  }
  CodeStream& Codes(const std::vector<int>& codes) {
    for (int code : codes) Code(code);
    return *this;
  }
  const ByteVector& Bytes() const { return bytes_; }

 private:
  CodeStream& Put(int code) {
    for (int i = 0; i < width_; ++i, ++bits_) {
      if (bits_ % 8 == 0) bytes_.push_back(0);
      bytes_.back() |= uint8_t((code >> i & 1) << (bits_ % 8));
    }
    return *this;
  }
  void Restart() {
    next_ = ClearCode() + 2;
    width_ = root_bits_ + 1;
  }

  const int root_bits_;
  int next_ = 0, width_ = 0;
  bool after_clear_ = false;
  size_t bits_ = 0;
  ByteVector bytes_;
};

// Compresses indices as encoders do. A full table serves for `codes_when_full` more codes.
inline CodeStream Compressed(const ByteVector& indices, int root_bits, int codes_when_full = 0) {
  CodeStream stream(root_bits);
  stream.Clear();
  std::map<std::pair<int, int>, int> entries;
  int next = stream.ClearCode() + 2, left_when_full = codes_when_full;
  int prefix = -1;
  for (uint8_t index : indices) {
    const auto known = entries.find({prefix, index});
    if (prefix < 0) {
      prefix = index;
    } else if (known != entries.end()) {
      prefix = known->second;
    } else {
      stream.Code(prefix);
      if (next < 4096) {
        entries[{prefix, index}] = next++;
      } else if (left_when_full-- == 0) {
        stream.Clear();
        entries.clear();
        next = stream.ClearCode() + 2;
        left_when_full = codes_when_full;
      }
      prefix = index;
    }
  }
  if (prefix >= 0) stream.Code(prefix);
  return stream.End();
}

struct GifTable {
  int exponent = -1;  // 2 << exponent entries; -1: no table
  ByteVector rgb;     // filled up with zeros
  uint8_t Packed() const { return exponent < 0 ? 0 : uint8_t(0x80 | exponent); }
  void AppendTo(ByteVector& bytes) const {
    if (exponent < 0) return;
    ByteVector table = rgb;
    table.resize(size_t(2 << exponent) * 3);
    bytes.insert(bytes.end(), table.begin(), table.end());
  }
};

struct GifImage {
  ByteVector before;  // extensions
  int left = 0, top = 0, width = 0, height = 0;
  bool interlaced = false;
  GifTable table;
  int root_bits = 2;
  ByteVector data;  // sub-blocks with their end
};

struct GifFile {
  std::string signature = "GIF89a";
  int width = 0, height = 0;
  GifTable table;
  std::vector<GifImage> images;
  ByteVector end = {';'};

  ByteVector Bytes() const {
    ByteVector bytes(signature.begin(), signature.end());
    const auto put = [&](int value) {
      bytes.push_back(uint8_t(value));
      bytes.push_back(uint8_t(value >> 8));
    };
    put(width);
    put(height);
    bytes.insert(bytes.end(), {table.Packed(), 0, 0});
    table.AppendTo(bytes);
    for (const GifImage& image : images) {
      bytes.insert(bytes.end(), image.before.begin(), image.before.end());
      bytes.push_back(',');
      for (int value : {image.left, image.top, image.width, image.height}) put(value);
      bytes.push_back(uint8_t(image.table.Packed() | (image.interlaced ? 0x40 : 0)));
      image.table.AppendTo(bytes);
      bytes.push_back(uint8_t(image.root_bits));
      bytes.insert(bytes.end(), image.data.begin(), image.data.end());
    }
    bytes.insert(bytes.end(), end.begin(), end.end());
    return bytes;
  }
};

// What stands before a frame: how it is shown.
inline ByteVector GraphicControl(int disposal, int delay, int transparent) {
  return {'!',
          0xF9,
          4,
          uint8_t(disposal << 2 | (transparent >= 0)),
          uint8_t(delay),
          uint8_t(delay >> 8),
          uint8_t(std::max(transparent, 0)),
          0};
}

inline ByteVector LoopCount(int loops) {
  ByteVector bytes = {'!', 0xFF, 11};
  for (char c : std::string("NETSCAPE2.0")) bytes.push_back(uint8_t(c));
  bytes.insert(bytes.end(), {3, 1, uint8_t(loops), uint8_t(loops >> 8), 0});
  return bytes;
}

// A file as a host holds it, with zeros behind it, which end a frame's data, and trailers behind
// those, which end the search for the next one.
class GifInMemory {
 public:
  explicit GifInMemory(const ByteVector& bytes) : bytes_(bytes) {
    bytes_.resize(bytes.size() + 1024);
    bytes_.resize(bytes.size() + 1040, ';');
  }
  uint8_t* Data() { return bytes_.data(); }

 private:
  ByteVector bytes_;
};

}  // namespace support

#endif  // TESTS_SUPPORT_GIF_WRITER_H_
