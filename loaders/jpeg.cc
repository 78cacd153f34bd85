// JPEG files in memory into any surface, decoded by libjpeg-turbo through its public interface.
#include <algorithm>
#include <climits>

// clang-format off
#include <cstdio>  // each of these needs the ones before
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

#include "loaders/byte_reader.h"
#include "loaders/colour_rows.h"
#include "loaders/pixel_sink.h"
#include "surface/format_dispatch.h"
#include "surface/rows.h"

namespace pincel {
namespace {

// --- header scan ---

constexpr bool IsFrameHeader(uint8_t marker) {
  const bool other_kind = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
  return (marker >= 0xC0 && marker <= 0xCF && !other_kind) || marker == 0xDE;
}

constexpr bool StandsAlone(uint8_t marker) {
  return marker <= 0x01 || (marker >= 0xD0 && marker <= 0xD9);
}

size_t ReadBigEndian(ByteReader& file) {
  const size_t high = file.Byte();
  return high << 8 | file.Byte();
}

void Skip(ByteReader& file, size_t count) { file.Bytes(count); }

// Bytes of a segment behind its length, which counts itself.
size_t ReadSegmentLength(ByteReader& file) { return std::max<size_t>(ReadBigEndian(file), 2) - 2; }

uint8_t NextMarker(ByteReader& file) {
  while (!file.RanOut() && file.Byte() != 0xFF) continue;
  uint8_t marker = 0xFF;
  while (!file.RanOut() && marker == 0xFF) marker = file.Byte();
  return marker;
}

// Tables are walked one by one, so a last one that is longer than its segment says is skipped whole.
// Intended.
template <class Table>
void SkipTables(ByteReader& file, Table&& skip_table) {
  const size_t left = file.Left(), length = ReadSegmentLength(file) + 2;
  while (!file.RanOut() && left - file.Left() < length) skip_table();
}

void SkipHuffmanTable(ByteReader& file) {
  Skip(file, 1);
  const uint8_t* const counts = file.Bytes(16);
  size_t symbols = 0;
  for (int i = 0; counts != nullptr && i < 16; ++i) symbols += counts[i];
  Skip(file, symbols);
}

void SkipQuantizationTable(ByteReader& file) {
  const bool words = file.Byte() >> 4 != 0;
  Skip(file, words ? 128 : 64);
}

// The size in the first frame header, 0 x 0 without one. Checks nothing else. Intended.
CSize FindFrameSize(ByteReader file) {
  while (!file.RanOut()) {
    const uint8_t marker = NextMarker(file);
    if (StandsAlone(marker)) continue;
    if (IsFrameHeader(marker)) {
      Skip(file, 3);
      const size_t height = ReadBigEndian(file), width = ReadBigEndian(file);
      if (!file.RanOut()) return {int32_t(width), int32_t(height)};
      continue;
    }
    switch (marker) {
      case 0xC4:
        SkipTables(file, [&] { SkipHuffmanTable(file); });
        break;
      case 0xDB:
        SkipTables(file, [&] { SkipQuantizationTable(file); });
        break;
      case 0xDA:  // start of scan; the coded data behind it is searched for the next marker
        Skip(file, 2);
        Skip(file, 2 * size_t{file.Byte()} + 3);
        break;
      case 0xDC:
      case 0xDD:
        Skip(file, 4);
        break;
      case 0xDF:
        Skip(file, 3);
        break;
      default:
        Skip(file, ReadSegmentLength(file));
    }
  }
  return {};
}

// --- decoding ---

// Scans that a file may have: as many as a sound one that sends every bit of every coefficient by
// itself, and fewer once something was wrong. Else a few bytes could ask for the work of the whole
// picture, again and again.
constexpr int kMostScans = 3 * 64 * 14, kMostScansAfterWarning = 100;

// A decompressor with its memory, its source and its errors, which are thrown as `int`. They pass
// through libjpeg-turbo's C frames; what it holds is released here.
class Decoder {
 public:
  Decoder() = default;
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { jpeg_destroy_decompress(&info_); }

  // Without data, the file counts as empty. `memory` limits what files of several scans may take.
  void Open(const uint8_t* data, size_t length, long memory) {
    info_.err = &errors_;
    errors_.error_exit = ThrowError;
    errors_.emit_message = [](j_common_ptr info, int level) {
      if (level < 0) ++info->err->num_warnings;
    };
    errors_.reset_error_mgr = [](j_common_ptr info) {
      info->err->num_warnings = 0;
      info->err->msg_code = 0;
    };
    jpeg_create_decompress(&info_);
    info_.client_data = this;
    info_.mem->max_memory_to_use = memory;  // whatever the environment says
    jpeg_set_marker_processor(&info_, JPEG_COM, SkipComment);

    source_.next_input_byte = data;
    source_.bytes_in_buffer = data == nullptr ? 0 : length;
    source_.init_source = source_.term_source = [](j_decompress_ptr) {};
    source_.fill_input_buffer = EndData;
    source_.skip_input_data = SkipData;
    source_.resync_to_restart = jpeg_resync_to_restart;
    info_.src = &source_;
    progress_.progress_monitor = LimitScans;
    info_.progress = &progress_;
  }
  void ReadHeader() { jpeg_read_header(&info_, TRUE); }

  // Decodes to bytes of blue, green, red, and alpha 255 where a pixel has four; to the nearest
  // entries of lu_gPaleta for one byte.
  template <class Format>
  void Start() {
    const bool three_bytes = Format::kBytes == 1 || Format::kBytes == 3;
    info_.out_color_space = three_bytes ? JCS_EXT_BGR : JCS_EXT_BGRA;
    if (Format::kBytes == 1) QuantizeToPalette();
    jpeg_start_decompress(&info_);
  }

  // For the first `rows` rows, `place(y)` says where row y is decoded to, null for memory of its
  // own, and `store(y, row)` gets it there.
  template <class Place, class Store>
  void ReadRows(size_t rows, Place&& place, Store&& store) {
    const JDIMENSION row_bytes = info_.output_width * JDIMENSION(info_.output_components);
    const JSAMPROW own_row = info_.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&info_),
                                                     JPOOL_IMAGE, row_bytes, 1)[0];
    while (info_.output_scanline < info_.output_height) {
      const size_t y = info_.output_scanline;
      const bool dropped = y >= rows;
      if (dropped && errors_.num_warnings != 0) return;  // neither pixels nor result can change
      JSAMPROW row = dropped ? nullptr : place(y);
      if (row == nullptr) row = own_row;
      jpeg_read_scanlines(&info_, &row, 1);
      if (!dropped) store(y, row);
    }
    jpeg_finish_decompress(&info_);
  }

  // Runs `step`; its error becomes the result.
  template <class Step>
  bool Try(Step&& step) {
    try {
      step();
    } catch (int code) {
      error_ = code;
    }
    return error_ == 0;
  }

  // Width and height are below 65536.
  size_t Width() const { return info_.image_width; }
  size_t Height() const { return info_.image_height; }
  bool HasKnownColours() const {
    const J_COLOR_SPACE space = info_.jpeg_color_space;
    return space == JCS_GRAYSCALE || space == JCS_YCbCr || space == JCS_RGB;
  }
  bool DataEnded() const { return data_ended_; }
  // Trace messages do not count.
  bool Succeeded() const { return error_ == 0 && errors_.num_warnings == 0; }
  pincel_status Status() const {
    if (Succeeded()) return PINCEL_OK;
    if (data_ended_) return PINCEL_TRUNCATED;
    switch (error_) {
      case JERR_SOF_UNSUPPORTED:
      case JERR_BAD_PRECISION:
      case JERR_COMPONENT_COUNT:
      case JERR_IMAGE_TOO_BIG:
      case JERR_FRACT_SAMPLE_NOTIMPL:
      case JERR_CCIR601_NOTIMPL:
      case JERR_OUT_OF_MEMORY:
      case JERR_NO_BACKING_STORE:
        return PINCEL_UNSUPPORTED;
      default:
        return PINCEL_CORRUPT;
    }
  }

 private:
  [[noreturn]] static void ThrowError(j_common_ptr info) { throw int{info->err->msg_code}; }

  static Decoder& Of(j_decompress_ptr info) { return *static_cast<Decoder*>(info->client_data); }

  // Behind the last byte stands an end-of-image marker, as often as it is asked for.
  static boolean EndData(j_decompress_ptr info) {
    static constexpr JOCTET kEndOfImage[] = {0xFF, JPEG_EOI};
    info->src->next_input_byte = kEndOfImage;
    info->src->bytes_in_buffer = sizeof(kEndOfImage);
    Of(info).data_ended_ = true;
    info->err->msg_code = JWRN_JPEG_EOF;
    info->err->emit_message(reinterpret_cast<j_common_ptr>(info), -1);
    return TRUE;
  }
  static void SkipData(j_decompress_ptr info, long count) {
    if (count <= 0) return;
    jpeg_source_mgr& source = *info->src;
    if (size_t(count) > source.bytes_in_buffer) {
      EndData(info);
    } else {
      source.next_input_byte += count;
      source.bytes_in_buffer -= size_t(count);
    }
  }
  static uint8_t NextByte(j_decompress_ptr info) {
    jpeg_source_mgr& source = *info->src;
    if (source.bytes_in_buffer == 0) source.fill_input_buffer(info);
    --source.bytes_in_buffer;
    return *source.next_input_byte++;
  }
  static boolean SkipComment(j_decompress_ptr info) {
    const long high = NextByte(info);
    const long length = high << 8 | NextByte(info);
    info->src->skip_input_data(info, length - 2);
    return TRUE;
  }

  static void LimitScans(j_common_ptr info) {
    const Decoder& decoder = *static_cast<Decoder*>(info->client_data);
    const int most = info->err->num_warnings == 0 ? kMostScans : kMostScansAfterWarning;
    if (decoder.info_.input_scan_number <= most) return;
    info->err->msg_code = JWRN_BOGUS_PROGRESSION;
    ThrowError(info);
  }

  // All entries, the blue component first, as the pixels come: so that each keeps its weight.
  void QuantizeToPalette() {
    info_.quantize_colors = TRUE;
    info_.desired_number_of_colors = 256;
    info_.colormap =
        info_.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&info_), JPOOL_IMAGE, 256, 3);
    info_.actual_number_of_colors = 256;
    for (int i = 0; i < 256; ++i) {
      const Bgr colour = ToBgr(lu_gPaleta[i]);
      info_.colormap[0][i] = colour.blue;
      info_.colormap[1][i] = colour.green;
      info_.colormap[2][i] = colour.red;
    }
  }

  jpeg_decompress_struct info_{};
  jpeg_error_mgr errors_{};
  jpeg_source_mgr source_{};
  jpeg_progress_mgr progress_{};
  bool data_ended_ = false;
  int error_ = 0;
};

enum class Alpha {
  kNone,    // alpha bits of 16-bit pixels are 0, fourth bytes are kept
  kOpaque,  // all are set
};

// Whether the decoder's rows are those of the surface.
template <class Format, Alpha alpha>
constexpr bool kDecodesInPlace = Format::kBytes == 1 || Format::kBytes == 3 ||
                                 (Format::kBytes == 4 && alpha == Alpha::kOpaque);

template <class Format, Alpha alpha>
void StoreRow(uint8_t* dst, const uint8_t* decoded, size_t width) {
  if constexpr (kDecodesInPlace<Format, alpha>) {
    if (dst != decoded) std::memcpy(dst, decoded, width * Format::kBytes);
  } else if constexpr (Format::kBytes == 4) {
    StoreColourBytes(4, {{dst, 0, width, 1}, decoded, 0});
  } else {
    // The alpha bits of 1555 and 4444 are 0 without `kOpaque`. Intended.
    constexpr uint8_t kByte = alpha == Alpha::kNone ? 0 : 0xFF;
    for (size_t x = 0; x < width; ++x, dst += Format::kBytes, decoded += 4) {
      const Bgr colour = ToBgr(Argb8888::Load(decoded));
      Format::Store(dst, PackWithAlpha<Format>(colour, kByte));
    }
  }
}

// Into the surface's rows; rows and columns beyond it are dropped.
template <class Format, Alpha alpha>
void ReadIntoRows(Decoder& decoder, const TSurfDesc& surface) {
  const size_t columns = size_t(std::max(surface.width, 0));
  const size_t rows = std::min(decoder.Height(), size_t(std::max(surface.height, 0)));
  const bool in_place = kDecodesInPlace<Format, alpha> && decoder.Width() <= columns;
  const size_t width = std::min(decoder.Width(), columns);
  const auto at = [&](size_t y) { return PixelAt<Format>(surface, 0, int32_t(y)); };
  decoder.ReadRows(
      rows, [&](size_t y) { return in_place ? at(y) : nullptr; },
      [&](size_t y, const uint8_t* row) { StoreRow<Format, alpha>(at(y), row, width); });
}

// One byte a pixel, every row padded with zeros to whole words, whatever the surface's width and
// pitch; only its end, height x pitch bytes from the first pixel, counts. Intended.
void ReadPacked(Decoder& decoder, const TSurfDesc& surface) {
  const bool empty = surface.height <= 0 || surface.pitch <= 0;
  const uint64_t size = empty ? 0 : uint64_t(surface.height) * uint64_t(surface.pitch);
  const size_t width = decoder.Width(), stride = (width + 3) & ~size_t{3};
  const size_t rows = size_t(std::min<uint64_t>(decoder.Height(), (size + stride - 1) / stride));
  const auto at = [&](size_t y) { return surface.pixels + y * stride; };
  const auto room = [&](size_t y) {
    return std::min<uint64_t>(size - uint64_t{y} * stride, stride);
  };
  decoder.ReadRows(
      rows, [&](size_t y) { return room(y) >= width ? at(y) : nullptr; },
      [&](size_t y, const uint8_t* row) {
        const size_t end = size_t(room(y)), pixels = std::min(width, end);
        StoreRow<Indexed8, Alpha::kNone>(at(y), row, pixels);
        std::memset(at(y) + pixels, 0, end - pixels);
      });
}

// Files of several scans are held in memory as coefficients, up to six bytes a pixel. A surface
// that could hold the picture says how much to expect; pictures far larger than that fail.
long MemoryFor(const TSurfDesc& surface) {
  constexpr int64_t kAlways = 512 << 20, kPerPixel = 16;
  const int64_t pixels =
      int64_t{std::clamp(surface.width, 0, 0xFFFF)} * std::clamp(surface.height, 0, 0xFFFF);
  return long(std::min<int64_t>(kAlways + kPerPixel * pixels, LONG_MAX));
}

bool IsJpeg(const uint8_t* data, size_t length) {
  return data != nullptr && length >= 2 && data[0] == 0xFF && data[1] == 0xD8;
}

// The header, up to the first scan.
pincel_status OpenFile(Decoder& decoder, const uint8_t* data, size_t length, long memory) {
  if (!IsJpeg(data, length)) return PINCEL_NOT_THIS_FORMAT;
  const bool read = decoder.Try([&] {
    decoder.Open(data, length, memory);
    decoder.ReadHeader();
  });
  if (!read || decoder.DataEnded()) return decoder.Status();
  return decoder.HasKnownColours() ? PINCEL_OK : PINCEL_UNSUPPORTED;
}

}  // namespace
}  // namespace pincel

bool LoadInfoJPG(TSurfDesc& surface, unsigned char* data, long length) {
  using namespace pincel;
  const CSize size = FindFrameSize(ByteReader::OfFile(data, size_t(std::max(length, 0L))));
  surface.width = size.width;
  surface.height = size.height;
  surface.bpp = 24;
  return true;
}

bool LoadJPG(TSurfDesc& surface, unsigned char* data, long length) {
  using namespace pincel;
  if (surface.pixels == nullptr) return false;
  return Dispatch(AllFormats{}, surface, false, [&](auto format) {
    using Format = decltype(format);
    if (Format::kBytes == 1 && surface.palette != nullptr) {
      std::memmove(surface.palette, lu_gPaleta, sizeof(lu_gPaleta));
    }
    Decoder decoder;
    const bool opened =
        decoder.Try([&] { decoder.Open(data, size_t(std::max(length, 0L)), MemoryFor(surface)); });
    if (!opened) return false;
    decoder.ReadHeader();  // not caught: its errors reach the caller. Intended.
    decoder.Try([&] {
      decoder.Start<Format>();
      if constexpr (Format::kBytes == 1) {
        ReadPacked(decoder, surface);
      } else {
        ReadIntoRows<Format, Alpha::kNone>(decoder, surface);
      }
    });
    return decoder.Succeeded();
  });
}

pincel_status pincel_load_info_jpg(TSurfDesc& surface, const unsigned char* data, size_t length) {
  using namespace pincel;
  Decoder decoder;
  const pincel_status status = OpenFile(decoder, data, length, /*memory=*/0);
  if (status == PINCEL_OK) {
    surface.width = int32_t(decoder.Width());
    surface.height = int32_t(decoder.Height());
    surface.bpp = 24;
  }
  return status;
}

pincel_status pincel_load_jpg(TSurfDesc& surface, const unsigned char* data, size_t length) {
  using namespace pincel;
  Decoder decoder;
  const pincel_status status = OpenFile(decoder, data, length, MemoryFor(surface));
  if (status != PINCEL_OK) return status;
  return Dispatch(AllFormats{}, surface, PINCEL_UNSUPPORTED, [&](auto format) {
    using Format = decltype(format);
    if (!HoldsImage<Format>(surface, int64_t(decoder.Width()), int64_t(decoder.Height()))) {
      return PINCEL_SURFACE_TOO_SMALL;
    }
    decoder.Try([&] {
      decoder.Start<Format>();
      if (Format::kBytes == 1 && surface.palette != nullptr) {
        SetImagePalette(surface.palette, lu_gPaleta, 256);
      }
      ReadIntoRows<Format, Alpha::kOpaque>(decoder, surface);
    });
    return decoder.Status();
  });
}
