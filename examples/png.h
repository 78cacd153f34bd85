// Surfaces as PNG files, through libpng.
#ifndef EXAMPLES_PNG_H_
#define EXAMPLES_PNG_H_

#include <png.h>

#include <stdexcept>

#include "files.h"

// The file as bytes: three bytes a pixel, alpha left out.
inline File PngFileOf(const HostSurface& surface) {
  std::vector<uint8_t> rgb;
  rgb.reserve(size_t(surface.width) * size_t(surface.height) * 3);
  for (int y = 0; y < surface.height; ++y) {
    for (int x = 0; x < surface.width; ++x) {
      const uint32_t colour = surface.Display(x, y);
      rgb.insert(rgb.end(), {uint8_t(colour >> 16), uint8_t(colour >> 8), uint8_t(colour)});
    }
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = png_uint_32(surface.width);
  image.height = png_uint_32(surface.height);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  File file(size);
  if (!png_image_write_to_memory(&image, file.data(), &size, 0, rgb.data(), 0, nullptr)) {
    throw std::runtime_error(image.message);
  }
  file.resize(size);
  return file;
}

#endif  // EXAMPLES_PNG_H_
