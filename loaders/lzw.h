// The code stream of a GIF frame: codes of growing width in sub-blocks, and the strings of palette
// indices that they stand for.
#ifndef LOADERS_LZW_H_
#define LOADERS_LZW_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "loaders/byte_reader.h"
#include "surface/pixel_format.h"

namespace pincel {

// Takes codes, lowest bit first, out of sub-blocks: a length byte and that many bytes each, until a
// length of 0. Bytes are fetched ahead inside a sub-block, never from the next one.
class CodeReader {
 public:
  static constexpr unsigned kMaxWidth = 12;

  explicit CodeReader(const ByteReader& blocks) : blocks_(blocks) {}

  unsigned width = 0;  // bits of the next code, up to kMaxWidth

  // False at the end of the data.
  bool Read(uint32_t& code) {
    if (count_ < width && !Fill()) return false;
    code = uint32_t(bits_) & ((1u << width) - 1);
    bits_ >>= width;
    count_ -= width;
    return true;
  }

  // As if bytes had been fetched one by one, when a code needed them.
  void Save(CQXGIF& gif) {
    if (!ended_) {
      at_ -= count_ / 8;
      left_ += count_ / 8;
      count_ %= 8;
    }
    gif.cursor = const_cast<uint8_t*>(blocks_.At());
    if (at_ != nullptr) gif.blockPos = const_cast<uint8_t*>(at_);
    gif.blockLeft = int32_t(left_);
    gif.bitCount = count_;
    gif.bitByte = at_ != nullptr ? at_[-1] : 0;
    gif.codeSize = width;
  }

 private:
  bool Fill() {
    do {
      if (left_ == 0 && !NextBlock()) {
        ended_ = true;
        return false;
      }
      if (left_ >= 8) {
        // Bits of a byte that does not fit whole come once more with the next word: the same bits.
        bits_ |= LoadWord<uint64_t>(at_) << count_;
        const unsigned taken = (63 - count_) / 8;
        at_ += taken;
        left_ -= taken;
        count_ += 8 * taken;
      } else {
        for (; left_ > 0 && count_ <= 56; --left_, count_ += 8) bits_ |= uint64_t{*at_++} << count_;
      }
    } while (count_ < width);
    return true;
  }

  bool NextBlock() {
    const size_t length = blocks_.Byte();
    left_ = std::min(length, blocks_.Left());
    if (left_ == 0) return false;
    at_ = blocks_.Bytes(left_);
    return true;
  }

  ByteReader blocks_;
  const uint8_t* at_ = nullptr;
  size_t left_ = 0;  // bytes at `at_`
  uint64_t bits_ = 0;
  unsigned count_ = 0;  // valid bits
  bool ended_ = false;
};

// The strings that codes stand for. Each is kept as its last one to eight indices and the code of
// the string before them, so that it is copied eight indices at a time.
class StringTable {
 public:
  static constexpr size_t kSize = size_t{1} << CodeReader::kMaxWidth;
  static constexpr size_t kLongest = kSize, kOvershoot = 8;

  explicit StringTable(uint32_t roots) {
    for (uint32_t code = 0; code < roots; ++code) {
      tails_[code] = code & 0xFF;  // roots beyond a byte lose their top bit
      lengths_[code] = 1;
    }
  }

  // Returns the length; up to kOvershoot bytes more may be written.
  size_t Copy(uint8_t* dst, uint32_t code) const {
    const size_t length = lengths_[code];
    size_t at = (length - 1) & ~size_t{7};
    StoreWord(dst + at, tails_[code]);
    for (; at != 0; StoreWord(dst + at, tails_[code])) {
      code = prefixes_[code];
      at -= 8;
    }
    return length;
  }

  // The string of `prefix` with one more index.
  void Add(uint32_t code, uint32_t prefix, uint8_t last) {
    const unsigned length = lengths_[prefix];
    const unsigned in_tail = length % 8;
    lengths_[code] = uint16_t(length + 1);
    tails_[code] = (in_tail == 0 ? 0 : tails_[prefix]) | uint64_t{last} << (8 * in_tail);
    prefixes_[code] = in_tail == 0 ? uint16_t(prefix) : prefixes_[prefix];
  }

 private:
  // No code is used before it has been added.
  std::array<uint64_t, kSize> tails_;
  std::array<uint16_t, kSize> prefixes_, lengths_;
};

enum class CodeRules {
  // The stream need not start with a clear code: the first code then adds an entry, its first index
  // behind a 0. A code above the next free one counts as that, a code behind a clear code that is
  // no index counts as 0, and the stream is read on to its end when nothing more is wanted. Intended.
  kForgiving,
  // A missing clear code is supplied, wrong codes end the decoding, and so does the last pixel.
  kStrict,
};

enum class CodesEnd { kEndCode, kDataEnded, kNothingWanted, kWrongCode };

// Gives the strings to `sink.Write(indices, count)`, which tells whether it wants more; `wanted` tells
// whether it wants any. Every step takes a code from the data, so the data bounds the work.
template <class Sink>
CodesEnd DecodeCodes(CodeReader& reader, unsigned root_bits, CodeRules rules, bool wanted,
                     Sink&& sink) {
  const uint32_t clear = 1u << root_bits, end = clear + 1, first_free = clear + 2;
  const bool strict = rules == CodeRules::kStrict;
  StringTable strings(clear);
  constexpr size_t kFlushAt = 4096;
  std::array<uint8_t, kFlushAt + StringTable::kLongest + StringTable::kOvershoot> indices;
  size_t used = 0;

  uint32_t next = first_free, limit = 2 * clear, previous = 0;
  reader.width = root_bits + 1;
  bool after_clear = strict;
  CodesEnd reason = CodesEnd::kNothingWanted;
  while (wanted || !strict) {
    uint32_t code;
    if (!reader.Read(code)) {
      reason = CodesEnd::kDataEnded;
      break;
    }
    if (code >= clear && code < first_free) {
      if (code == end) {
        reason = CodesEnd::kEndCode;
        break;
      }
      next = first_free;
      limit = 2 * clear;
      reader.width = root_bits + 1;
      after_clear = true;
      continue;
    }
    const bool known = code < (after_clear ? first_free : next);
    if (strict && !known && (after_clear || code > next)) {
      reason = CodesEnd::kWrongCode;
      break;
    }
    if (after_clear) {
      after_clear = false;
      previous = known ? code : 0;
      if (wanted) indices[used++] = uint8_t(previous);
    } else {
      if (wanted) {
        uint8_t* const string = indices.data() + used;
        size_t length = strings.Copy(string, known ? code : previous);
        if (!known) string[length++] = string[0];
        if (next < limit) strings.Add(next, previous, string[0]);
        used += length;
      }
      if (next < limit) {
        previous = known ? code : next;
        ++next;
      }
    }
    if (next == limit && reader.width < CodeReader::kMaxWidth) {
      limit *= 2;
      ++reader.width;
    }
    if (used >= kFlushAt) {
      wanted = sink.Write(indices.data(), used);
      used = 0;
    }
  }
  if (used > 0 && !sink.Write(indices.data(), used)) wanted = false;
  return wanted ? reason : CodesEnd::kNothingWanted;
}

}  // namespace pincel

#endif  // LOADERS_LZW_H_
