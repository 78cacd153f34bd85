#include "tests/model/gif_model.h"

#include <algorithm>
#include <array>
#include <vector>

namespace model {
namespace {

uint32_t Little16(const uint8_t* at) { return at[0] | uint32_t{at[1]} << 8; }

// A colour table of the file: stored if wanted, passed over in any case.
void ColourTable(CQXGIF& gif, RAW& frame, int packed) {
  const int entries = 2 << (packed & 7);
  for (int i = 0; i < entries; ++i, gif.cursor += 3) {
    if (!frame.readPalette) continue;
    for (int c = 0; c < 3; ++c) frame.palette[i][c] = gif.cursor[c];
    frame.palette[i][3] = 0;
  }
}

// The rows of a frame in the order in which its data fills them.
std::vector<int64_t> RowOrder(int64_t height, bool interlaced) {
  std::vector<int64_t> rows;
  if (!interlaced) {
    for (int64_t y = 0; y < height; ++y) rows.push_back(y);
    return rows;
  }
  const int64_t pass1 = (height + 7) >> 3, pass2 = (height + 3) >> 3, pass3 = (height + 1) >> 2;
  for (int64_t i = 0; i < pass1; ++i) rows.push_back(8 * i);
  for (int64_t i = 0; i < pass2; ++i) rows.push_back(4 + 8 * i);
  for (int64_t i = 0; i < pass3; ++i) rows.push_back(2 + 4 * i);
  for (int64_t i = 1; i < height; i += 2) rows.push_back(i);
  return rows;
}

uint32_t Packed(int format, const uint8_t* rgb, uint32_t alpha) {
  const uint32_t red = rgb[0], green = rgb[1], blue = rgb[2];
  switch (format) {
    case 16:
      return (red >> 3) << 11 | (green & 0xFC) << 3 | blue >> 3;
    case 17:
    case 18:
      return (alpha & 0x80) << 8 | (red & 0xF8) << 7 | (green & 0xF8) << 2 | blue >> 3;
    case 19:
      return (alpha & 0xF0) << 8 | (red & 0xF0) << 4 | (green & 0xF0) | blue >> 4;
    default:
      return red << 16 | green << 8 | blue;
  }
}

// Decodes the frame to the start of the picture's memory.
bool Decode(Picture& p, CQXGIF& gif, RAW& frame) {
  const int64_t limit = int64_t{std::max(p.pitch, 0)} * std::max(p.height, 0);
  frame.output = p.bytes.data() + p.origin;
  return GifDecodeImage(gif, frame, p.bytes.data() + p.origin, limit) == 0;
}

// Goes through the pixels from the last to the first, so that each index is read before it is
// overwritten. Rows that are longer than the pitch are left packed.
template <class Put>
void Spread(Picture& p, Put&& put) {
  if (p.width == p.pitch || p.width * p.BytesPerPixel() > p.pitch) return;
  for (int64_t y = p.height - 1; y >= 0; --y) {
    for (int64_t x = p.width - 1; x >= 0; --x) {
      put(x, y, p.bytes.at(size_t(p.origin + y * p.width + x)));
    }
  }
}

void SpreadIndices(Picture& p) {
  Spread(p, [&](int64_t x, int64_t y, uint8_t index) { p.Put(x, y, index); });
}

}  // namespace

uint32_t GifReadHeader(CQXGIF& gif, uint8_t* data, RAW& frame) {
  gif.cursor = gif.blockPos = nullptr;
  if (data == nullptr) return 7;
  if (data[0] != 'G' || data[1] != 'I' || data[2] != 'F') return 6;
  frame.width = Little16(data + 6);
  frame.height = Little16(data + 8);
  gif.cursor = data + 13;
  if (data[10] & 0x80) ColourTable(gif, frame, data[10]);
  return 0;
}

uint32_t GifNextImage(CQXGIF& gif) {
  if (gif.cursor == nullptr) return 7;
  for (;;) {
    const uint8_t block = *gif.cursor++;
    if (block == ';') return 3;
    if (block == ',') return 0;
    if (block == '!') {
      ++gif.cursor;  // the label
      while (const uint8_t length = *gif.cursor++) gif.cursor += length;
    }
  }
}

uint32_t GifReadCode(CQXGIF& gif) {
  uint32_t value = gif.bitByte >> (8 - gif.bitCount);
  while (gif.codeSize > gif.bitCount) {
    if (gif.blockLeft < 1) {
      gif.blockLeft = *gif.cursor++;
      if (gif.blockLeft == 0) return gif.endCode;
      gif.blockPos = gif.cursor;
      gif.cursor += gif.blockLeft;
    }
    gif.bitByte = *gif.blockPos++;
    value |= gif.bitByte << gif.bitCount;
    gif.bitCount += 8;
    --gif.blockLeft;
  }
  gif.bitCount -= gif.codeSize;
  return value & ((1u << gif.codeSize) - 1);
}

uint32_t GifDecodeImage(CQXGIF& gif, RAW& frame, uint8_t* memory, int64_t limit) {
  if (gif.cursor == nullptr || memory == nullptr) return 7;
  frame.width = Little16(gif.cursor + 4);
  frame.height = Little16(gif.cursor + 6);
  const int packed = gif.cursor[8];
  gif.cursor += 9;
  if (packed & 0x80) ColourTable(gif, frame, packed);

  const std::vector<int64_t> rows = RowOrder(frame.height, (packed & 0x40) != 0);
  size_t row = 0;
  int64_t column = 0;
  const auto write = [&](uint8_t index) {
    if (row == rows.size() || frame.width == 0) return;
    const int64_t at = rows[row] * frame.width + column;
    if (at < limit) memory[at] = index;
    if (++column == frame.width) column = 0, ++row;
  };

  const uint32_t size = *gif.cursor++;
  if (size < 2 || size > 9) return 5;
  const uint32_t clear = 1u << size, first_free = clear + 2;
  gif.endCode = clear + 1;
  gif.codeSize = size + 1;
  gif.blockLeft = 0;
  gif.bitCount = gif.bitByte = 0;
  uint32_t next_free = first_free, limit_code = 2 * clear;
  std::array<uint8_t, 4096> suffix{};
  std::array<uint32_t, 4096> prefix{};

  uint32_t previous = 0;
  uint8_t first = 0;
  for (uint32_t read = GifReadCode(gif); read != gif.endCode; read = GifReadCode(gif)) {
    if (read == clear) {
      next_free = first_free;
      gif.codeSize = size + 1;
      limit_code = 2 * clear;
      while (read == clear) read = GifReadCode(gif);
      if (read == gif.endCode) break;
      if (read >= first_free) read = 0;
      write(uint8_t(read));
      previous = read;
      first = uint8_t(read);
      continue;
    }
    // A code that no entry has yet can only mean the next one.
    read = std::min(read, next_free);
    std::vector<uint8_t> stack;
    uint32_t code = read;
    if (code >= next_free) {
      stack.push_back(first);
      code = previous;
    }
    for (; code >= first_free; code = prefix.at(code)) stack.push_back(suffix.at(code));
    stack.push_back(uint8_t(code));
    first = uint8_t(code);
    if (next_free < limit_code) {
      suffix.at(next_free) = first;
      prefix.at(next_free) = previous;
      ++next_free;
      previous = read;
    }
    if (next_free == limit_code && gif.codeSize < 12) {
      limit_code *= 2;
      ++gif.codeSize;
    }
    for (; !stack.empty(); stack.pop_back()) write(stack.back());
  }
  return 0;
}

bool GifInfo(CQXGIF& gif, uint8_t* data, RAW& frame, bool read_palette) {
  frame.readPalette = read_palette;
  frame.reserved = 0;
  frame.output = nullptr;
  for (auto& entry : frame.palette) std::fill(entry, entry + 4, uint8_t{0});
  return GifReadHeader(gif, data, frame) == 0;
}

bool LoadGif(Picture& p, CQXGIF& gif, RAW& frame) {
  if (!Decode(p, gif, frame)) return false;
  if (p.format == 8) {
    if (p.has_palette) {
      for (size_t i = 0; i < 256; ++i) {
        TRGBA& entry = p.palette[i];
        entry.red = frame.palette[i][0];
        entry.green = frame.palette[i][1];
        entry.blue = frame.palette[i][2];
        if (i > 0 && entry.red == 0 && entry.green == 0 && entry.blue == 0) entry.blue = 1;
      }
    }
    SpreadIndices(p);
  } else if (frame.readPalette) {
    Spread(p, [&](int64_t x, int64_t y, uint8_t index) {
      const uint32_t kept = p.format == 32 ? p.Get(x, y) & 0xFF000000u : 0;
      p.Put(x, y, kept | Packed(p.format, frame.palette[index], 0xFF));
    });
  }
  return true;
}

bool LoadGifAlpha(Picture& p, CQXGIF& gif, RAW& frame) {
  if (!Decode(p, gif, frame)) return false;
  SpreadIndices(p);
  return true;
}

}  // namespace model
