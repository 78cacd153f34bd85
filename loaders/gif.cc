// GIF files in memory, frame by frame, into any surface.
#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

#include "loaders/byte_reader.h"
#include "loaders/colour_rows.h"
#include "loaders/lzw.h"
#include "loaders/pixel_sink.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// Entries of red, green and blue; none: `entries` is 0. `rgb` is null when the file ends first.
struct ColourTable {
  const uint8_t* rgb = nullptr;
  int entries = 0;
};

ColourTable ReadColourTable(ByteReader& file, uint8_t packed) {
  if ((packed & 0x80) == 0) return {};
  const int entries = 2 << (packed & 7);
  return {file.Bytes(size_t(entries) * 3), entries};
}

void StoreColours(RAW& record, const ColourTable& table) {
  if (record.readPalette == 0) return;
  for (int i = 0; i < table.entries; ++i) {
    std::memcpy(record.palette[i], table.rgb + ptrdiff_t{3} * i, 3);
    record.palette[i][3] = 0;
  }
}

// The colours of a surface, opaque.
using Colours = std::array<TRGBA, 256>;
void SetColours(Colours& colours, const ColourTable& table) {
  for (int i = 0; i < table.entries; ++i) {
    const uint8_t* const entry = table.rgb + ptrdiff_t{3} * i;
    colours[size_t(i)] = {entry[2], entry[1], entry[0], 0xFF};
  }
}
Colours ColoursOf(const RAW& record) {
  Colours colours;
  for (size_t i = 0; i < 256; ++i) {
    const uint8_t* const entry = record.palette[i];
    colours[i] = {entry[2], entry[1], entry[0], 0xFF};
  }
  return colours;
}

struct Screen {
  uint32_t width, height;
  ColourTable colours;
};

bool IsGif(const uint8_t* data) { return std::memcmp(data, "GIF", 3) == 0; }

// False when the file ends first.
bool ReadScreen(ByteReader& file, Screen& screen) {
  const uint8_t* const header = file.Bytes(13);
  if (header == nullptr) return false;
  screen.width = LoadWord<uint16_t>(header + 6);
  screen.height = LoadWord<uint16_t>(header + 8);
  screen.colours = ReadColourTable(file, header[10]);
  return !file.RanOut();
}

struct Frame {
  uint32_t left, top, width, height;
  bool interlaced;
  ColourTable colours;
  unsigned root_bits;

  bool HasBitsFrom(unsigned least, unsigned most) const {
    return root_bits >= least && root_bits <= most;
  }
};

// What stands between the frame's "," and its codes. False when the file ends first.
bool ReadFrame(ByteReader& file, Frame& frame) {
  const uint8_t* const descriptor = file.Bytes(9);
  if (descriptor == nullptr) return false;
  frame.left = LoadWord<uint16_t>(descriptor);
  frame.top = LoadWord<uint16_t>(descriptor + 2);
  frame.width = LoadWord<uint16_t>(descriptor + 4);
  frame.height = LoadWord<uint16_t>(descriptor + 6);
  frame.interlaced = (descriptor[8] & 0x40) != 0;
  frame.colours = ReadColourTable(file, descriptor[8]);
  frame.root_bits = file.Byte();
  return !file.RanOut();
}

// Goes behind a chain of sub-blocks; calls `block(index, bytes, length)` for each complete one.
template <class Block>
void ReadSubBlocks(ByteReader& file, Block&& block) {
  for (int index = 0;; ++index) {
    const size_t length = file.Byte();
    if (length == 0) return;
    if (const uint8_t* const bytes = file.Bytes(length)) block(index, bytes, length);
  }
}

enum class NextBlock { kFrame, kTrailer, kEndOfFile };

// Goes behind the next ",". Bytes that start no block are passed over: so is what an early end code
// leaves of a frame's data. Intended. `extension(label, index, bytes, length)` gets the sub-blocks of
// the extensions on the way.
template <class Extension>
NextBlock FindFrame(ByteReader& file, Extension&& extension) {
  while (file.Left() > 0) {
    switch (file.Byte()) {
      case ',':
        return NextBlock::kFrame;
      case ';':
        return NextBlock::kTrailer;
      case '!': {
        const uint8_t label = file.Byte();
        ReadSubBlocks(file, [&](int index, const uint8_t* bytes, size_t length) {
          extension(label, index, bytes, length);
        });
        break;
      }
      default:
        break;
    }
  }
  return NextBlock::kEndOfFile;
}

// Row of the frame that comes as number `index` in an interlaced file: every eighth row from 0 and
// then from 4, every fourth from 2, every second from 1.
uint32_t InterlacedRow(uint32_t index, uint32_t height) {
  const uint32_t from_0 = (height + 7) / 8, from_4 = (height + 3) / 8, from_2 = (height + 1) / 4;
  if (index < from_0) return 8 * index;
  index -= from_0;
  if (index < from_4) return 4 + 8 * index;
  index -= from_4;
  if (index < from_2) return 2 + 4 * index;
  return 1 + 2 * (index - from_2);
}

// Splits the indices of a frame into pieces of rows: `store(x, y, indices, count)`. What comes after
// the last row is dropped.
template <class Store>
class FrameRows {
 public:
  FrameRows(const Frame& frame, Store store)
      : width_(frame.width), height_(frame.height), interlaced_(frame.interlaced), store_(store) {}

  bool WantsMore() const { return width_ > 0 && row_ < height_; }

  bool Write(const uint8_t* indices, size_t count) {
    while (count > 0 && WantsMore()) {
      const uint32_t part = uint32_t(std::min<size_t>(count, width_ - column_));
      store_(column_, interlaced_ ? InterlacedRow(row_, height_) : row_, indices, size_t{part});
      indices += part;
      count -= part;
      column_ += part;
      if (column_ == width_) column_ = 0, ++row_;
    }
    return WantsMore();
  }

 private:
  const uint32_t width_, height_;
  const bool interlaced_;
  const Store store_;
  uint32_t column_ = 0, row_ = 0;
};

// Decodes the frame at the cursor, row behind row without padding, into the first `room` bytes of
// the record's output. The fields of the decoder end up as if it had read code by code.
uint32_t DecodePacked(CQXGIF& gif, RAW* record, size_t room) {
  if (gif.cursor == nullptr || record == nullptr || record->output == nullptr) return 7;
  ByteReader file(gif.cursor);
  Frame frame;
  ReadFrame(file, frame);
  record->width = frame.width;
  record->height = frame.height;
  StoreColours(*record, frame.colours);
  gif.cursor = const_cast<uint8_t*>(file.At());
  if (!frame.HasBitsFrom(2, 9)) return 5;

  if (!frame.interlaced &&
      frame.width > 0) {  // rows for which there is no room need not be decoded
    frame.height = uint32_t(std::min<size_t>(frame.height, room / frame.width + 1));
  }
  uint8_t* const output = record->output;
  FrameRows rows(frame, [=](uint32_t x, uint32_t y, const uint8_t* indices, size_t count) {
    const size_t at = size_t{y} * frame.width + x;
    if (at < room) std::memcpy(output + at, indices, std::min(count, room - at));
  });
  CodeReader reader(file);
  DecodeCodes(reader, frame.root_bits, CodeRules::kForgiving, rows.WantsMore(), rows);
  reader.Save(gif);
  gif.endCode = (1u << frame.root_bits) + 1;
  return 0;
}

// Bytes from the surface's first pixel to the end of its last row.
size_t RoomOf(const TSurfDesc& surface) {
  const uint64_t room =
      uint64_t(std::max(surface.pitch, 0)) * uint64_t(std::max(surface.height, 0));
  return size_t(std::min<uint64_t>(room, SIZE_MAX));
}

bool DecodePacked(CQXGIF& gif, RAW& record, const TSurfDesc& surface) {
  record.output = surface.pixels;
  return DecodePacked(gif, &record, RoomOf(surface)) == 0;
}

// The fourth byte of 32-bit pixels is not written: it keeps the index that lay there packed, or what
// the surface held before. Intended.
class ThreeByteSink {
 public:
  explicit ThreeByteSink(const TRGBA* colours) : table_(PixelsOfPalette(Argb8888(), colours)) {}
  void Store(const SourceRows& rows) const {
    uint32_t pixels[kPixels];
    for (SourceRows row = rows; row.height > 0; --row.height) {
      for (size_t x = 0; x < rows.width; x += kPixels) {
        const size_t count = std::min(kPixels, rows.width - x);
        uint8_t* const piece = reinterpret_cast<uint8_t*>(pixels);
        ExpandIndexed(4, {{piece, 0, count, 1}, row.src + x, 0}, table_, false);
        StoreColourBytes(4, {{row.dst + 4 * x, 0, count, 1}, piece, 0});
      }
      row.dst += row.dst_pitch;
      row.src += row.src_pitch;
    }
  }

 private:
  static constexpr size_t kPixels = 2048;
  const PixelTable table_;
};
template <class Format>
using InPlaceSink =
    std::conditional_t<std::is_same_v<Format, Argb8888>, ThreeByteSink, IndexSink<Format>>;

// Turns the packed indices at the start of the surface into its pixels. The surface's width counts,
// not the frame's. Where no pixel is written, behind the rows for example, indices stay. Rows that
// are longer than the pitch stay packed. Intended.
template <class Format>
void SpreadInPlace(const TSurfDesc& surface, const TRGBA* colours) {
  if (surface.width <= 0 || surface.width == surface.pitch ||
      int64_t{surface.width} * Format::kBytes > surface.pitch) {
    return;
  }
  const InPlaceSink<Format> sink(colours);
  constexpr int32_t kIndices = 8192;
  uint8_t indices[kIndices];
  const int32_t columns = std::min(surface.width, kIndices), rows = kIndices / columns;
  // Piece by piece from the last pixel, so that no index is overwritten before it is read. A piece is
  // several rows, or a part of one.
  for (int32_t end_y = surface.height; end_y > 0;) {
    const int32_t y = std::max(end_y - rows, 0);
    const uint8_t* const packed = surface.pixels + ptrdiff_t{y} * surface.width;
    for (int32_t end_x = surface.width; end_x > 0;) {
      const int32_t x = (end_x - 1) / columns * columns;
      const size_t width = size_t(end_x - x), height = size_t(end_y - y);
      std::memcpy(indices, packed + x, width * height);
      sink.Store({{PixelAt<Format>(surface, x, y), surface.pitch, width, height},
                  indices,
                  ptrdiff_t(width)});
      end_x = x;
    }
    end_y = y;
  }
}

bool LoadInfo(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& record,
              bool read_palette) {
  record.readPalette = read_palette;
  record.reserved = 0;
  record.output = nullptr;
  std::memset(record.palette, 0, sizeof(record.palette));
  const bool found = gif.ReadHeader(data, &record) == 0;
  surface.width = int32_t(record.width);
  surface.height = int32_t(record.height);
  surface.bpp = 8;
  return found;
}

// Collects what the extensions before a frame say about it.
class FrameFacts {
 public:
  explicit FrameFacts(TGifFrame& frame) : frame_(frame) { Reset(); }

  void Extension(uint8_t label, int index, const uint8_t* bytes, size_t length) {
    if (label == 0xF9 && length >= 4) {
      frame_.disposal = bytes[0] >> 2 & 7;
      frame_.delay = LoadWord<uint16_t>(bytes + 1);
      frame_.transparent = (bytes[0] & 1) != 0 ? bytes[3] : -1;
    } else if (label == 0x01) {
      Reset();  // plain text: an image of its own, to which they belonged
    } else if (label == 0xFF && index == 0) {
      loop_follows_ = length == 11 && (std::memcmp(bytes, "NETSCAPE2.0", 11) == 0 ||
                                       std::memcmp(bytes, "ANIMEXTS1.0", 11) == 0);
    } else if (label == 0xFF && loop_follows_ && length >= 3 && bytes[0] == 1) {
      frame_.loops = LoadWord<uint16_t>(bytes + 1);
    }
  }

 private:
  void Reset() {
    frame_.delay = frame_.disposal = 0;
    frame_.transparent = -1;
  }

  TGifFrame& frame_;
  bool loop_follows_ = false;
};

pincel_status OpenFile(ByteReader& file, Screen& screen) {
  if (file.Left() < 3 || !IsGif(file.At())) return PINCEL_NOT_THIS_FORMAT;
  return ReadScreen(file, screen) ? PINCEL_OK : PINCEL_TRUNCATED;
}

// Goes to the frame that the walk has found.
pincel_status OpenFrame(ByteReader& file, size_t offset, Frame& frame) {
  if (offset >= file.Left() || file.At()[offset] != ',') return PINCEL_NO_FRAME;
  file.Bytes(offset + 1);
  return ReadFrame(file, frame) ? PINCEL_OK : PINCEL_TRUNCATED;
}

template <class Format>
pincel_status LoadFrame(const TSurfDesc& surface, const Frame& frame, const ByteReader& file,
                        const Colours& colours) {
  const IndexSink<Format> sink(colours.data());
  FrameRows rows(frame, [&](uint32_t x, uint32_t y, const uint8_t* indices, size_t count) {
    sink.Row(PixelAt<Format>(surface, int32_t(x), int32_t(y)), indices, count);
  });
  CodeReader reader(file);
  switch (DecodeCodes(reader, frame.root_bits, CodeRules::kStrict, rows.WantsMore(), rows)) {
    case CodesEnd::kNothingWanted:
      return PINCEL_OK;
    case CodesEnd::kWrongCode:
      return PINCEL_CORRUPT;
    default:
      return PINCEL_TRUNCATED;
  }
}

}  // namespace
}  // namespace pincel

uint32_t CQXGIF::ReadHeader(unsigned char* data, RAW* record) {
  using namespace pincel;
  cursor = blockPos = nullptr;
  if (data == nullptr || record == nullptr) return 7;
  if (!IsGif(data)) return 6;
  ByteReader file(data);
  Screen screen;
  ReadScreen(file, screen);
  record->width = screen.width;
  record->height = screen.height;
  StoreColours(*record, screen.colours);
  cursor = const_cast<uint8_t*>(file.At());
  return 0;
}

uint32_t CQXGIF::NextImage() {
  using namespace pincel;
  if (cursor == nullptr) return 7;
  ByteReader file(cursor);
  const NextBlock found = FindFrame(file, [](uint8_t, int, const uint8_t*, size_t) {});
  cursor = const_cast<uint8_t*>(file.At());
  return found == NextBlock::kFrame ? 0 : 3;
}

uint32_t CQXGIF::DecodeImage(RAW* record) { return pincel::DecodePacked(*this, record, SIZE_MAX); }

uint32_t CQXGIF::ReadCode() {
  const uint32_t width = std::min(codeSize, pincel::CodeReader::kMaxWidth);
  uint32_t value = bitByte >> ((8 - bitCount) & 31);
  while (bitCount < width) {
    if (blockLeft < 1) {
      blockLeft = *cursor++;
      if (blockLeft == 0) return endCode;
      blockPos = cursor;
      cursor += blockLeft;
    }
    bitByte = *blockPos++;
    value |= bitByte << bitCount;
    bitCount += 8;
    --blockLeft;
  }
  bitCount -= width;
  return value & ((1u << width) - 1);
}

bool LoadInfoGIF(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame) {
  return pincel::LoadInfo(surface, data, gif, frame, /*read_palette=*/true);
}

bool LoadInfoGIFAlpha(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame) {
  return pincel::LoadInfo(surface, data, gif, frame, /*read_palette=*/false);
}

bool LoadGIFNext(TSurfDesc&, unsigned char*, CQXGIF& gif, RAW&) { return gif.NextImage() == 0; }

bool LoadGIFAlphaNext(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame) {
  return LoadGIFNext(surface, data, gif, frame);
}

bool LoadGIF(TSurfDesc& surface, unsigned char*, CQXGIF& gif, RAW& frame) {
  using namespace pincel;
  return Dispatch(AllFormats{}, surface, false, [&](auto format) {
    using Format = decltype(format);
    if (!DecodePacked(gif, frame, surface)) return false;
    // Without colour tables, the indices stay packed. Intended.
    if (Format::kBytes != 1 && frame.readPalette == 0) return true;
    const Colours colours = ColoursOf(frame);
    if (Format::kBytes == 1 && surface.palette != nullptr) {
      SetImagePalette(surface.palette, colours.data(), 256);
    }
    SpreadInPlace<Format>(surface, colours.data());
    return true;
  });
}

bool LoadGIFAlpha(TSurfDesc& surface, unsigned char*, CQXGIF& gif, RAW& frame) {
  using namespace pincel;
  if (!DecodePacked(gif, frame, surface)) return false;
  SpreadInPlace<Indexed8>(surface, nullptr);
  return true;
}

bool LoadGIFEnd(TSurfDesc&, unsigned char*, CQXGIF& gif, RAW&) {
  gif.cursor = gif.blockPos = nullptr;
  return true;
}

bool LoadGIFAlphaEnd(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame) {
  return LoadGIFEnd(surface, data, gif, frame);
}

pincel_status pincel_load_info_gif(TSurfDesc& surface, const unsigned char* data, size_t length) {
  using namespace pincel;
  ByteReader file = ByteReader::OfFile(data, length);
  Screen screen;
  const pincel_status status = OpenFile(file, screen);
  if (status == PINCEL_OK) {
    surface.width = int32_t(screen.width);
    surface.height = int32_t(screen.height);
    surface.bpp = 8;
  }
  return status;
}

pincel_status pincel_gif_frame(TGifFrame& frame, const unsigned char* data, size_t length) {
  using namespace pincel;
  ByteReader file = ByteReader::OfFile(data, length);
  TGifFrame found = frame;
  Frame image;
  if (frame.offset == 0) {
    Screen screen;
    const pincel_status status = OpenFile(file, screen);
    if (status != PINCEL_OK) return status;
    found.loops = -1;
  } else {
    const pincel_status status = OpenFrame(file, frame.offset, image);
    if (status != PINCEL_OK) return status;
    ReadSubBlocks(file, [](int, const uint8_t*, size_t) {});
  }
  FrameFacts facts(found);
  const NextBlock next =
      FindFrame(file, [&](uint8_t label, int index, const uint8_t* bytes, size_t size) {
        facts.Extension(label, index, bytes, size);
      });
  if (file.RanOut()) return PINCEL_TRUNCATED;
  if (next != NextBlock::kFrame) return PINCEL_NO_FRAME;
  found.offset = size_t(file.At() - data) - 1;
  if (!ReadFrame(file, image)) return PINCEL_TRUNCATED;
  const auto left = int32_t(image.left), top = int32_t(image.top);
  found.area = {left, top, left + int32_t(image.width), top + int32_t(image.height)};
  frame = found;
  return PINCEL_OK;
}

pincel_status pincel_load_gif(TSurfDesc& surface, const unsigned char* data, size_t length,
                              const TGifFrame& frame) {
  using namespace pincel;
  ByteReader start = ByteReader::OfFile(data, length), file = start;
  Screen screen;
  Frame image;
  pincel_status status = OpenFile(start, screen);
  if (status != PINCEL_OK) return status;
  status = OpenFrame(file, frame.offset, image);
  if (status != PINCEL_OK) return status;
  if (!image.HasBitsFrom(1, 8)) return PINCEL_CORRUPT;
  return Dispatch(AllFormats{}, surface, PINCEL_UNSUPPORTED, [&](auto format) {
    using Format = decltype(format);
    if (!HoldsImage<Format>(surface, image.width, image.height)) return PINCEL_SURFACE_TOO_SMALL;
    Colours colours{};
    colours.fill({0, 0, 0, 0xFF});
    SetColours(colours, screen.colours);
    SetColours(colours, image.colours);
    if (frame.transparent >= 0 && frame.transparent < 256) {
      colours[size_t(frame.transparent)].alpha = 0;
    }
    if (Format::kBytes == 1 && surface.palette != nullptr) {
      SetImagePalette(surface.palette, colours.data(), 256);
    }
    return LoadFrame<Format>(surface, image, file, colours);
  });
}
