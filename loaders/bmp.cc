// BMP files in memory into any surface: 8 bits, plain or run-length coded, and 24 bits for the loaders
// that trust the file; every common depth for those that do not.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <utility>

#include "convert/convert_rows.h"
#include "loaders/byte_reader.h"
#include "loaders/colour_rows.h"
#include "loaders/pixel_sink.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

constexpr ptrdiff_t kColourTableOffset = 54;

struct Header {
  int32_t width, height;  // a height below 0: the rows are stored from the top
  uint32_t bits;
  bool run_length;
  bool colour_table;  // else the library's palette serves
  int colours;        // entries of the one or the other
  const uint8_t* pixels;
};

// No field is checked. Every header that is not the one of 40 bytes is read as the one of 12.
// Intended.
Header ReadHeader(const uint8_t* file) {
  const auto half = [file](int offset) { return LoadWord<uint16_t>(file + offset); };
  const auto word = [file](int offset) { return LoadWord<uint32_t>(file + offset); };
  Header header{};
  header.colours = 256;
  if (word(14) == 40) {
    header.width = int32_t(word(18));
    header.height = int32_t(word(22));
    header.bits = half(28);
    header.run_length = word(30) == 1;
    header.colour_table = header.bits == 8;
    const uint32_t used = word(46);
    if (header.colour_table && used != 0 && used < 256) header.colours = int(used);
  } else {
    header.width = half(18);
    header.height = half(20);
    header.bits = half(24);
  }
  // A file that starts with "QX" has its pixels where others have the colour table.
  const bool fixed_offset = file[0] == 'Q' && file[1] == 'X';
  header.pixels = file + (fixed_offset ? kColourTableOffset : ptrdiff_t(word(10)));
  return header;
}

using Colours = std::array<TRGBA, 256>;

// A table of `count` entries of three or four bytes, opaque; black beyond its end.
Colours OpaqueColours(const uint8_t* table, size_t count, size_t entry_bytes) {
  Colours colours;
  if (entry_bytes == 4) {
    std::memcpy(colours.data(), table, 4 * count);
  } else {
    for (size_t i = 0; i < count; ++i) std::memcpy(&colours[i], table + 3 * i, 3);
  }
  std::fill(colours.begin() + ptrdiff_t(count), colours.end(), TRGBA{});
  for (TRGBA& colour : colours) colour.alpha = 0xFF;
  return colours;
}

// The colours of 8-bit data: opaque ones from the file's table, and black beyond its end, or the
// library's palette as it is.
Colours ReadColours(const uint8_t* file, const Header& header) {
  if (header.colour_table) {
    return OpaqueColours(file + kColourTableOffset, size_t(header.colours), 4);
  }
  Colours colours;
  std::copy_n(lu_gPaleta, 256, colours.begin());
  return colours;
}

Colours ExchangeRedAndBlue(Colours colours) {
  for (TRGBA& colour : colours) std::swap(colour.red, colour.blue);
  return colours;
}

// Rows at the surface's top left corner in the order in which the file stores them.
template <class Format>
Rows RowsInFileOrder(const TSurfDesc& surface, int32_t width, int32_t height, bool top_down) {
  if (width <= 0 || height <= 0) return {};
  return {PixelAt<Format>(surface, 0, top_down ? 0 : height - 1),
          top_down ? ptrdiff_t{surface.pitch} : -ptrdiff_t{surface.pitch}, size_t(width),
          size_t(height)};
}
// The surface's size counts, not the file's. Intended.
template <class Format>
Rows RowsInFileOrder(const TSurfDesc& surface, const Header& header) {
  return RowsInFileOrder<Format>(surface, surface.width, surface.height, header.height < 0);
}

// These rows with the file's, which are padded to whole words. The surface's width counts.
SourceRows WithPixels(const Rows& rows, const Header& header, size_t pixel_bytes) {
  return {rows, header.pixels, ptrdiff_t((rows.width * pixel_bytes + 3) / 4 * 4)};
}

// What follows literal indices of an odd number. Both are the same in a file at an even address.
enum class Padding {
  kOneByte,
  kToEvenAddress,  // the converting loader goes by the address in memory. Intended.
};

// Why run-length data leaves pixels out: it moves on, or a row or the bitmap ends.
enum class Skipped { kByMove, kByEnd };

enum class RunLengthEnd { kComplete, kMovedOutside, kDataEnded };

// Palette indices of 1, 2 or 4 bits, the first one in a byte's top bits.
void UnpackIndices(uint8_t* dst, const uint8_t* src, size_t count, unsigned bits) {
  for (size_t i = 0; i < count; ++i) {
    const size_t bit = i * bits;
    dst[i] = uint8_t(uint8_t(src[bit / 8] << bit % 8) >> (8 - bits));
  }
}

// Neighbouring indices that come in small parts, put together and stored at once. What follows the
// last pixel of a row is the first one of the next.
template <class Format>
class JoinedIndices {
 public:
  static constexpr size_t kLongestPart = 255, kOvershoot = 64;

  JoinedIndices(const IndexSink<Format>& sink, const Rows& rows) : sink_(sink), rows_(rows) {}

  // Where the next up to kLongestPart indices, which belong at column x of row y, are to be put.
  // kOvershoot bytes may be written in any case.
  uint8_t* Part(size_t x, size_t y) {
    if (used_ > kSize - kLongestPart) Store();
    if (used_ == 0) x_ = x, y_ = y;
    return indices_ + used_;
  }
  // How many may be put there, kLongestPart or more.
  size_t Room() const { return kSize - used_; }
  void Add(size_t count) { used_ += count; }
  void Store() {
    if (used_ == 0) return;
    const uint8_t* from = indices_;
    if (x_ != 0) StorePart(from);
    if (const size_t whole = used_ / rows_.width; whole > 0) {
      sink_.Store({{At(), rows_.dst_pitch, rows_.width, whole}, from, ptrdiff_t(rows_.width)});
      from += whole * rows_.width;
      used_ -= whole * rows_.width;
      y_ += whole;
    }
    if (used_ > 0) StorePart(from);
  }

 private:
  static constexpr size_t kSize = 4096;

  uint8_t* At() const { return rows_.dst + ptrdiff_t(y_) * rows_.dst_pitch + x_ * Format::kBytes; }
  void StorePart(const uint8_t*& from) {
    const size_t count = std::min(used_, rows_.width - x_);
    sink_.Row(At(), from, count);
    from += count;
    used_ -= count;
    x_ = 0;
    ++y_;
  }

  const IndexSink<Format>& sink_;
  const Rows& rows_;
  size_t x_ = 0, y_ = 0;
  size_t used_ = 0;
  uint8_t indices_[kSize + kOvershoot];
};

// Most runs are short. Those are put down without asking how short: a wrong guess of the processor
// costs more than some bytes too many.
constexpr size_t kShortRun = 16;
void PutShortRun(uint8_t* dst, uint8_t index) { std::memset(dst, index, kShortRun); }
void PutRun(uint8_t* dst, uint8_t index, size_t count) {
  constexpr size_t kBlock = 64;
  static_assert(kBlock <= JoinedIndices<Indexed8>::kOvershoot);
  for (size_t x = 0; x < count; x += kBlock) std::memset(dst + x, index, kBlock);
}

// Codes of 8 bits from `count` literals on, for as long as literals and runs alternate and are short,
// which in dithered pictures almost all are. Both are put down without asking how short. Nor is it
// asked whether there are literals before a run: they are copied in any case, and perhaps not
// counted. Literals of an odd number are padded. Gives how many indices there are, at most `room`;
// kOvershoot bytes behind them may be written, too.
size_t PutAlternating(ByteReader& codes, size_t count, uint8_t* dst, size_t room) {
  constexpr size_t kShortLiterals = 64;
  constexpr size_t kAhead = 2 + kShortLiterals + 2 + 2;  // with their code, a run, and what is next
  static_assert(kShortLiterals <= JoinedIndices<Indexed8>::kOvershoot);
  const size_t readable = codes.Readable();
  if (count > std::min(kShortLiterals, room) || readable < kAhead) return 0;
  const uint8_t* at = codes.At();
  const uint8_t* const last = at + (readable - kAhead);
  uint8_t* const begin = dst;
  uint8_t* const end = dst + room;
  for (;;) {
    std::memcpy(dst, at, kShortLiterals);
    dst += count;
    at += (count + 1) & ~size_t{1};
    const size_t run = at[0];
    if (run - 1 >= kShortRun || run > size_t(end - dst)) break;
    PutShortRun(dst, at[1]);
    dst += run;
    at += 2;
    const uint8_t code = at[1];
    const size_t literal = 0 - size_t{at[0] == 0};  // all ones or none
    count = code & literal;
    const bool command = (literal & size_t{code < 3}) != 0;
    if (command | (count > kShortLiterals) | (count > size_t(end - dst)) | (at > last)) break;
    at += 2 & literal;
  }
  codes.Bytes(size_t(at - codes.At()));
  return size_t(dst - begin);
}

// Literals, by words that overlap.
void PutLiterals(uint8_t* dst, const uint8_t* src, size_t count) {
  if (count > 16) {
    std::memcpy(dst, src, count);
  } else if (count >= 8) {
    const auto first = LoadWord<uint64_t>(src), last = LoadWord<uint64_t>(src + count - 8);
    StoreWord(dst, first);
    StoreWord(dst + count - 8, last);
  } else if (count >= 4) {
    const auto first = LoadWord<uint32_t>(src), last = LoadWord<uint32_t>(src + count - 4);
    StoreWord(dst, first);
    StoreWord(dst + count - 4, last);
  } else {
    for (size_t i = 0; i < count; ++i) dst[i] = src[i];
  }
}

// Codes of 8 bits, or of 4, whose runs alternate between two indices. Never writes outside the rows:
// runs and literals are clipped at the row end, a position outside ends the decoding.
// `skip(dst, width, why)` gets the pixels of each row that are left out.
template <class Format, class Skip>
RunLengthEnd DecodeRunLength(ByteReader codes, unsigned bits, const Rows& rows,
                             const IndexSink<Format>& sink, Padding padding, Skip&& skip) {
  size_t x = 0, y = 0;
  JoinedIndices<Format> joined(sink, rows);
  // Longer runs are stored as pixels at once, unless they take no longer as indices.
  const size_t longest_joined =
      Format::kBytes == 1 || ExpandsInRegisters() ? JoinedIndices<Format>::kLongestPart : kShortRun;
  const auto here = [&] { return rows.dst + ptrdiff_t(y) * rows.dst_pitch + x * Format::kBytes; };
  const auto add = [&](size_t count) {
    joined.Add(count);
    x += count;
  };
  const auto skip_row_to = [&](size_t end_x, Skipped why) {
    if (x == end_x) return;
    joined.Store();
    skip(here(), end_x - x, why);
    x = end_x;
  };
  const auto skip_to = [&](size_t end_x, size_t end_y, Skipped why) {
    for (; y < end_y; ++y, x = 0) skip_row_to(rows.width, why);
    skip_row_to(end_x, why);
  };
  const auto end = [&](RunLengthEnd reason) {
    joined.Store();
    return reason;
  };
  while (y < rows.height) {
    const size_t left = rows.width - x;
    const size_t count = codes.Byte();
    const uint8_t code = codes.Byte();
    if (codes.RanOut()) {
      const bool at_end = y == rows.height - 1 && left == 0;
      return end(at_end ? RunLengthEnd::kComplete : RunLengthEnd::kDataEnded);
    }
    if (count > 0) {
      const size_t fitting = std::min(count, left);
      if (bits == 8 && fitting > longest_joined) {
        joined.Store();
        sink.Run(here(), code, fitting);
        x += fitting;
        continue;
      }
      uint8_t* const part = joined.Part(x, y);
      if (bits != 8) {
        uint8_t pairs[128];
        std::memset(pairs, code, sizeof(pairs));
        UnpackIndices(part, pairs, fitting, bits);
      } else {
        PutRun(part, code, fitting);
      }
      add(fitting);
    } else if (code == 0) {  // end of the row
      skip_to(rows.width, y, Skipped::kByEnd);
      x = 0, ++y;
    } else if (code == 1) {  // end of the bitmap
      skip_to(rows.width, rows.height - 1, Skipped::kByEnd);
      return end(RunLengthEnd::kComplete);
    } else if (code == 2) {  // move
      const size_t end_x = x + codes.Byte();
      const size_t end_y = y + codes.Byte();
      if (codes.RanOut()) return end(RunLengthEnd::kDataEnded);
      if (end_x > rows.width || end_y >= rows.height) return end(RunLengthEnd::kMovedOutside);
      skip_to(end_x, end_y, Skipped::kByMove);
    } else {
      uint8_t* const part = joined.Part(x, y);
      if (bits == 8 && (padding == Padding::kOneByte || !codes.AtOddAddress())) {
        const size_t put = PutAlternating(codes, code, part, std::min(left, joined.Room()));
        add(put);
        if (put > 0) continue;
      }
      const size_t bytes = (code * bits + 7) / 8, fitting = std::min<size_t>(code, left);
      const uint8_t* const literals = codes.Bytes(bytes);
      if (literals == nullptr) return end(RunLengthEnd::kDataEnded);
      if (bits == 8) {
        PutLiterals(part, literals, fitting);
      } else {
        UnpackIndices(part, literals, fitting, bits);
      }
      add(fitting);
      if (padding == Padding::kOneByte ? bytes % 2 != 0 : codes.AtOddAddress()) codes.Bytes(1);
    }
  }
  return end(RunLengthEnd::kComplete);
}

// What skipped pixels become: the colour of entry 0, but nothing where that packs to 0 and on indexed
// surfaces. From the top, this holds for moves only. Intended.
template <class Format>
typename Format::Word Background(const Colours& colours) {
  if constexpr (Format::kBytes == 1) {
    return 0;
  } else {
    return PackEntry<Format>(colours[0]);
  }
}

template <class Format>
void LoadIndexed(const TSurfDesc& surface, const Header& header, const Colours& colours) {
  const Rows rows = RowsInFileOrder<Format>(surface, header);
  if (!header.run_length) {
    const IndexSink<Format> sink(colours.data());
    sink.Store(WithPixels(rows, header, 1));
    return;
  }
  const bool top_down = header.height < 0;
  // Run-length data from the top comes out with red and blue exchanged at 24 bits, but for skipped
  // pixels. Intended.
  const bool exchanged = Format::kBytes == 3 && top_down;
  const IndexSink<Format> sink((exchanged ? ExchangeRedAndBlue(colours) : colours).data());
  const auto background = Background<Format>(colours);
  DecodeRunLength(ByteReader(header.pixels), 8, rows, sink, Padding::kToEvenAddress,
                  [&](uint8_t* dst, size_t width, Skipped why) {
                    if (background == 0 || (top_down && why == Skipped::kByEnd)) return;
                    StoreRun<Format>(dst, background, width);
                  });
}

// The alpha bits of 555, 1555 and 4444 pixels come from the byte that follows the pixel in the file:
// the next pixel's blue, or what stands behind the row. A fourth byte at 32 bits is kept. Intended.
// Indexed surfaces are not written.
template <class Format>
void StoreTrueColour(const SourceRows& rows) {
  if constexpr (Format::kBytes == 3) {
    CopyRows<Format>(rows);
  } else if constexpr (Format::kBytes == 4) {
    StoreColourBytes(3, rows);
  } else if constexpr (PackedFields<Format>) {
    using Alpha = std::conditional_t<Format::Alpha::kWidth == 0, NoAlpha, AlphaOfSource>;
    Repack<Repacking<Format, Rgb888, Alpha>>(rows);
  }
}

// --- files that are not trusted ---

// A channel of 16- or 32-bit pixels.
class Channel {
 public:
  Channel() = default;
  // `mask` has one run of ones; without any the channel is `missing`.
  Channel(uint32_t mask, uint8_t missing) : mask_(mask) {
    const unsigned width = unsigned(std::popcount(mask));
    const unsigned kept = std::min(width, 8u);
    if (width > 0) shift_ = unsigned(std::countr_zero(mask)) + width - kept;
    const unsigned most = (1u << kept) - 1;
    for (unsigned v = 0; v <= most; ++v) {
      // The top bits repeat below, so that the largest value becomes 255.
      unsigned byte = width == 0 ? missing : v << (8 - kept);
      for (unsigned filled = kept; filled < 8 && width > 0; filled *= 2) byte |= byte >> filled;
      bytes_[v] = uint8_t(byte);
    }
  }
  uint8_t Get(uint32_t pixel) const { return bytes_[(pixel & mask_) >> shift_]; }

 private:
  uint32_t mask_ = 0;
  unsigned shift_ = 0;
  std::array<uint8_t, 256> bytes_{};
};

constexpr bool IsOneRun(uint32_t mask) {
  if (mask == 0) return true;
  const uint32_t ones = mask >> std::countr_zero(mask);
  return (ones & (ones + 1)) == 0;
}

enum Compression : uint32_t {
  kPlain = 0,
  kRunLength8 = 1,
  kRunLength4 = 2,
  kMasks = 3,
  kMasksWithAlpha = 6
};

struct Image {
  int32_t width, height;
  bool top_down;
  uint32_t bits, compression;
  std::array<uint32_t, 4> masks;  // red, green, blue, alpha
  size_t table_at, colours, colour_bytes;
  size_t pixels_at;

  uint64_t RowBytes() const { return (uint64_t(width) * bits + 7) / 8; }
};

bool IsKnownHeader(uint32_t bytes) {
  constexpr uint32_t kKnown[] = {12, 16, 40, 52, 56, 64, 108, 124};
  return std::find(std::begin(kKnown), std::end(kKnown), bytes) != std::end(kKnown);
}

bool IsSupported(const Image& image) {
  switch (image.compression) {
    case kPlain:
      return image.bits == 1 || image.bits == 2 || image.bits == 4 || image.bits == 8 ||
             image.bits == 16 || image.bits == 24 || image.bits == 32;
    case kRunLength8:
      return image.bits == 8;
    case kRunLength4:
      return image.bits == 4;
    case kMasks:
    case kMasksWithAlpha:
      return (image.bits == 16 || image.bits == 32) &&
             std::all_of(image.masks.begin(), image.masks.end(), IsOneRun);
    default:
      return false;
  }
}

pincel_status ReadImage(const uint8_t* data, size_t length, Image& image) {
  constexpr size_t kFileHeader = 14, kMasksAt = 54;
  if (data == nullptr) return PINCEL_NOT_THIS_FORMAT;
  const bool fixed_offset = length >= 2 && data[0] == 'Q' && data[1] == 'X';
  if (!fixed_offset && (length < 2 || data[0] != 'B' || data[1] != 'M')) {
    return PINCEL_NOT_THIS_FORMAT;
  }
  const auto half = [=](size_t at) { return LoadWord<uint16_t>(data + at); };
  const auto word = [=](size_t at) { return LoadWord<uint32_t>(data + at); };
  if (length < kFileHeader + 4) return PINCEL_TRUNCATED;
  const uint32_t header = word(14);
  if (!IsKnownHeader(header)) return PINCEL_UNSUPPORTED;
  image.table_at = kFileHeader + header;
  if (length < image.table_at) return PINCEL_TRUNCATED;

  int32_t height;
  uint32_t used = 0;
  image.compression = kPlain;
  if (header == 12) {
    image.width = half(18);
    height = half(20);
    image.bits = half(24);
  } else {
    image.width = int32_t(word(18));
    height = int32_t(word(22));
    image.bits = half(28);
    if (header >= 40) {
      image.compression = word(30);
      used = word(46);
    }
  }
  if (header == 64 && image.compression > kRunLength4) return PINCEL_UNSUPPORTED;
  const bool has_masks = image.compression == kMasks || image.compression == kMasksWithAlpha;
  const bool has_alpha = header >= 56 || image.compression == kMasksWithAlpha;
  if (has_masks) {
    const size_t masks_end = kMasksAt + (has_alpha ? 16 : 12);
    if (length < masks_end) return PINCEL_TRUNCATED;
    image.table_at = std::max(image.table_at, masks_end);
    image.masks = {word(kMasksAt), word(kMasksAt + 4), word(kMasksAt + 8),
                   has_alpha ? word(kMasksAt + 12) : 0};
  } else if (image.bits == 16) {
    image.masks = {0x7C00, 0x03E0, 0x001F, 0};
  } else {
    image.masks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
  }
  if (!IsSupported(image)) return PINCEL_UNSUPPORTED;
  if (image.width <= 0 || height == 0 || height == INT32_MIN) return PINCEL_CORRUPT;
  image.top_down = height < 0;
  image.height = std::abs(height);
  const size_t most_colours = image.bits <= 8 ? size_t{1} << image.bits : 0;
  image.colours = used == 0 || used > most_colours ? most_colours : used;
  image.colour_bytes = header == 12 ? 3 : 4;
  image.pixels_at = fixed_offset ? size_t{kColourTableOffset} : word(10);
  return image.pixels_at < kFileHeader + header ? PINCEL_CORRUPT : PINCEL_OK;
}

// The rows that the file has, of those that the surface takes.
struct StoredRows {
  SourceRows rows;
  pincel_status status;
};
StoredRows RowsOfFile(const Rows& rows, const Image& image, const ByteReader& pixels) {
  const uint64_t row_bytes = image.RowBytes(), stride = (row_bytes + 3) / 4 * 4;
  const uint64_t whole = pixels.Left() < row_bytes ? 0 : (pixels.Left() - row_bytes) / stride + 1;
  StoredRows stored = {{rows, pixels.At(), ptrdiff_t(stride)}, PINCEL_OK};
  if (whole < rows.height) {
    stored.rows.height = size_t(whole);
    stored.status = PINCEL_TRUNCATED;
  }
  return stored;
}

template <class Format>
pincel_status LoadIndices(const Rows& rows, const Image& image, const ByteReader& pixels,
                          const Colours& colours) {
  const IndexSink<Format> sink(colours.data());
  if (image.compression != kPlain) {
    const RunLengthEnd end =
        DecodeRunLength(pixels, image.bits, rows, sink, Padding::kOneByte,
                        [&](uint8_t* dst, size_t width, Skipped) { sink.Run(dst, 0, width); });
    return end == RunLengthEnd::kComplete    ? PINCEL_OK
           : end == RunLengthEnd::kDataEnded ? PINCEL_TRUNCATED
                                             : PINCEL_CORRUPT;
  }
  const StoredRows stored = RowsOfFile(rows, image, pixels);
  if (image.bits == 8) {
    sink.Store(stored.rows);
    return stored.status;
  }
  ForEachRow(stored.rows, [&](uint8_t* dst, const uint8_t* src) {
    constexpr size_t kPiece = 256;  // a whole number of bytes
    uint8_t indices[kPiece];
    for (size_t x = 0; x < rows.width; x += kPiece, src += kPiece * image.bits / 8) {
      const size_t count = std::min(kPiece, rows.width - x);
      UnpackIndices(indices, src, count, image.bits);
      sink.Row(dst + x * Format::kBytes, indices, count);
    }
  });
  return stored.status;
}

// `colour(src)` gives the colour of a pixel of `src_bytes` bytes.
template <class Format, class Colour>
void StoreColours(const SourceRows& rows, size_t src_bytes, Colour&& colour) {
  ForEachRow(rows, [&](uint8_t* dst, const uint8_t* src) {
    for (size_t x = 0; x < rows.width; ++x, dst += Format::kBytes, src += src_bytes) {
      Format::Store(dst, PackEntry<Format>(colour(src)));
    }
  });
}

// 24-bit pixels, opaque.
template <class Format>
void StoreOpaque(const SourceRows& rows) {
  if constexpr (Format::kBytes == 3) {
    CopyRows<Format>(rows);
  } else if constexpr (Format::kBytes == 4) {
    Repack<Pack24To32>(rows);
  } else if constexpr (Format::Alpha::kWidth == 0) {
    Repack<Repacking<Format, Rgb888>>(rows);
  } else {
    StoreColours<Format>(rows, 3, [](const uint8_t* src) {
      return TRGBA{src[0], src[1], src[2], 0xFF};
    });
  }
}

template <class Format>
pincel_status LoadTrueColour(const Rows& all_rows, const Image& image, const ByteReader& pixels) {
  const auto [rows, status] = RowsOfFile(all_rows, image, pixels);
  if (image.bits == 24) {
    StoreOpaque<Format>(rows);
    return status;
  }
  const Channel red(image.masks[0], 0), green(image.masks[1], 0), blue(image.masks[2], 0);
  const Channel alpha(image.masks[3], 0xFF);
  const auto colour = [&](uint32_t pixel) {
    return TRGBA{blue.Get(pixel), green.Get(pixel), red.Get(pixel), alpha.Get(pixel)};
  };
  if (image.bits == 16) {
    StoreColours<Format>(rows, 2,
                         [&](const uint8_t* src) { return colour(LoadWord<uint16_t>(src)); });
  } else {
    StoreColours<Format>(rows, 4,
                         [&](const uint8_t* src) { return colour(LoadWord<uint32_t>(src)); });
  }
  return status;
}

}  // namespace
}  // namespace pincel

bool LoadInfoBMP(TSurfDesc& surface, unsigned char* bitmap) {
  const pincel::Header header = pincel::ReadHeader(bitmap);
  surface.width = header.width;
  surface.height = header.height == INT32_MIN ? INT32_MAX : std::abs(header.height);
  surface.bpp = header.bits;
  return true;
}

bool LoadBMP(TSurfDesc& surface, unsigned char* bitmap) {
  using namespace pincel;
  return Dispatch(AllFormats{}, surface, false, [&](auto format) {
    using Format = decltype(format);
    const Header header = ReadHeader(bitmap);
    const Colours colours = ReadColours(bitmap, header);
    if (Format::kBytes == 1 && surface.palette != nullptr) {
      SetImagePalette(surface.palette, colours.data(), header.colours);
    }
    if (header.bits == 8) {
      LoadIndexed<Format>(surface, header, colours);
    } else if (header.bits > 16) {  // every such depth is read as 24
      StoreTrueColour<Format>(WithPixels(RowsInFileOrder<Format>(surface, header), header, 3));
    }
    return true;
  });
}

bool LoadInfoBMPAlpha(TSurfDesc& surface, unsigned char* bitmap) {
  LoadInfoBMP(surface, bitmap);
  surface.bpp = 8;
  return true;
}

bool LoadBMPAlpha(TSurfDesc& surface, unsigned char* bitmap) {
  using namespace pincel;
  const Header header = ReadHeader(bitmap);
  const Rows rows = RowsInFileOrder<Indexed8>(surface, header);
  if (header.run_length) {
    DecodeRunLength(ByteReader(header.pixels), 8, rows, IndexSink<Indexed8>(nullptr),
                    Padding::kOneByte, [](uint8_t*, size_t, Skipped) {});
  } else {
    CopyRows<Indexed8>(WithPixels(rows, header, 1));
  }
  return true;
}

bool LoadInfoPGF(TSurfDesc&, unsigned char*) { return false; }
bool LoadPGF(TSurfDesc&, unsigned char*) { return false; }

pincel_status pincel_load_info_bmp(TSurfDesc& surface, const unsigned char* data, size_t length) {
  using namespace pincel;
  Image image;
  const pincel_status status = ReadImage(data, length, image);
  if (status == PINCEL_OK) {
    surface.width = image.width;
    surface.height = image.height;
    surface.bpp = image.bits;
  }
  return status;
}

pincel_status pincel_load_bmp(TSurfDesc& surface, const unsigned char* data, size_t length) {
  using namespace pincel;
  Image image;
  const pincel_status status = ReadImage(data, length, image);
  if (status != PINCEL_OK) return status;
  return Dispatch(AllFormats{}, surface, PINCEL_UNSUPPORTED, [&](auto format) {
    using Format = decltype(format);
    if (Format::kBytes == 1 && image.bits > 8) return PINCEL_UNSUPPORTED;
    if (!HoldsImage<Format>(surface, image.width, image.height)) return PINCEL_SURFACE_TOO_SMALL;
    ByteReader table = ByteReader::OfFile(data, length), pixels = table;
    table.Bytes(image.table_at);
    const uint8_t* const entries = table.Bytes(image.colours * image.colour_bytes);
    pixels.Bytes(image.pixels_at);
    if (table.RanOut() || pixels.RanOut()) return PINCEL_TRUNCATED;

    const Rows rows = RowsInFileOrder<Format>(surface, image.width, image.height, image.top_down);
    if constexpr (Format::kBytes != 1) {
      if (image.bits > 8) return LoadTrueColour<Format>(rows, image, pixels);
    }
    const Colours colours = OpaqueColours(entries, image.colours, image.colour_bytes);
    if (Format::kBytes == 1 && surface.palette != nullptr) {
      SetImagePalette(surface.palette, colours.data(), 256);
    }
    return LoadIndices<Format>(rows, image, pixels, colours);
  });
}
