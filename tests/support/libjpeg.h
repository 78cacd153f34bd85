// JPEG files for tests: written, and decoded to plain colours, by libjpeg-turbo itself.
#ifndef TESTS_SUPPORT_LIBJPEG_H_
#define TESTS_SUPPORT_LIBJPEG_H_

#include <cstdint>
#include <cstdlib>
#include <vector>

// clang-format off
#include <cstdio>  // jpeglib.h needs it
#include <jpeglib.h>
// clang-format on

#include "include/pincel.h"

namespace support {

struct JpegOptions {
  J_COLOR_SPACE space = JCS_YCbCr;  // of the file: also JCS_GRAYSCALE, JCS_RGB, JCS_CMYK
  int quality = 90;
  int horizontal = 2, vertical = 2;  // sampling of the first component
  int restart_interval = 0;
  bool progressive = false, arithmetic = false;
  std::vector<jpeg_scan_info> scans;  // instead of the usual ones
  std::vector<uint8_t> comment;
};

namespace jpeg_internal {

inline void ThrowError(j_common_ptr info) { throw int{info->err->msg_code}; }
inline void CountWarnings(j_common_ptr info, int level) {
  if (level < 0) ++info->err->num_warnings;
}
inline jpeg_error_mgr Errors() {
  jpeg_error_mgr errors;
  jpeg_std_error(&errors);
  errors.error_exit = ThrowError;
  errors.emit_message = CountWarnings;
  return errors;
}

}  // namespace jpeg_internal

// `samples`: rows of red, green, blue; of one byte for JCS_GRAYSCALE, of four for JCS_CMYK.
inline std::vector<uint8_t> JpegFile(int width, int height, const std::vector<uint8_t>& samples,
                                     const JpegOptions& options = {}) {
  jpeg_error_mgr errors = jpeg_internal::Errors();
  jpeg_compress_struct info{};
  info.err = &errors;
  jpeg_create_compress(&info);
  unsigned char* data = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &data, &size);
  info.image_width = JDIMENSION(width);
  info.image_height = JDIMENSION(height);
  info.input_components = options.space == JCS_GRAYSCALE ? 1 : options.space == JCS_CMYK ? 4 : 3;
  info.in_color_space = options.space == JCS_YCbCr ? JCS_RGB : options.space;
  jpeg_set_defaults(&info);
  jpeg_set_colorspace(&info, options.space);
  jpeg_set_quality(&info, options.quality, TRUE);
  info.comp_info[0].h_samp_factor = options.horizontal;
  info.comp_info[0].v_samp_factor = options.vertical;
  info.restart_interval = unsigned(options.restart_interval);
  info.arith_code = options.arithmetic;
  if (options.progressive) jpeg_simple_progression(&info);
  if (!options.scans.empty()) {
    info.scan_info = options.scans.data();
    info.num_scans = int(options.scans.size());
  }
  jpeg_start_compress(&info, TRUE);
  if (!options.comment.empty()) {
    jpeg_write_marker(&info, JPEG_COM, options.comment.data(), unsigned(options.comment.size()));
  }
  while (info.next_scanline < info.image_height) {
    const size_t row = size_t(info.next_scanline) * size_t(width * info.input_components);
    JSAMPROW rows[] = {const_cast<uint8_t*>(&samples[row])};
    jpeg_write_scanlines(&info, rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  std::vector<uint8_t> file(data, data + size);
  std::free(data);
  return file;
}

// What the decoder gives without any of this library's choices.
struct PlainImage {
  int width = 0, height = 0;
  std::vector<uint8_t> samples;  // red, green, blue; or indices
  bool sound = false;            // neither error nor warning
};

// Colours, or indices into `palette`, with red as the first component. Throws what is wrong with the
// header; an error further on leaves the rows behind it out.
inline PlainImage DecodePlain(const std::vector<uint8_t>& file, const TRGBA* palette = nullptr) {
  jpeg_error_mgr errors = jpeg_internal::Errors();
  struct Info : jpeg_decompress_struct {
    Info() : jpeg_decompress_struct{} {}
    ~Info() { jpeg_destroy_decompress(this); }
  } info;
  info.err = &errors;
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&info, TRUE);
  PlainImage image;
  image.width = int(info.image_width);
  image.height = int(info.image_height);
  try {
    info.out_color_space = JCS_RGB;
    JSAMPLE red[256], green[256], blue[256];
    JSAMPROW colormap[] = {red, green, blue};
    if (palette != nullptr) {
      for (int i = 0; i < 256; ++i) {
        red[i] = palette[i].red;
        green[i] = palette[i].green;
        blue[i] = palette[i].blue;
      }
      info.quantize_colors = TRUE;
      info.colormap = colormap;
      info.actual_number_of_colors = 256;
    }
    jpeg_start_decompress(&info);
    const size_t row_bytes = size_t(image.width) * (palette != nullptr ? 1 : 3);
    std::vector<uint8_t> samples(row_bytes);
    while (info.output_scanline < info.output_height) {
      JSAMPROW row = samples.data();
      jpeg_read_scanlines(&info, &row, 1);
      image.samples.insert(image.samples.end(), samples.begin(), samples.end());
    }
    jpeg_finish_decompress(&info);
    image.sound = errors.num_warnings == 0;
  } catch (int) {
  }
  return image;
}

}  // namespace support

#endif  // TESTS_SUPPORT_LIBJPEG_H_
