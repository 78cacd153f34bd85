// BMP, GIF and JPEG files into a surface of 32 bits, whatever their origin.
#ifndef EXAMPLES_LOAD_IMAGE_H_
#define EXAMPLES_LOAD_IMAGE_H_

#include <stdexcept>
#include <string>

#include "files.h"
#include "gif_animation.h"

// The file's first bytes decide, not its name. Damaged files show what could be read of them.
inline HostSurface LoadPicture(const std::string& path) {
  const File file = ReadFile(path);
  TSurfDesc size{};
  if (pincel_load_info_gif(size, file.data(), file.size()) == PINCEL_OK) {
    GifAnimation animation(file);
    animation.Next();
    return animation.Opaque();
  }
  const bool bmp = pincel_load_info_bmp(size, file.data(), file.size()) == PINCEL_OK;
  if (!bmp && pincel_load_info_jpg(size, file.data(), file.size()) != PINCEL_OK) {
    throw std::runtime_error(path + " is no BMP, GIF or JPEG file that can be read");
  }
  HostSurface image(Format::k32, size.width, size.height);
  (bmp ? pincel_load_bmp : pincel_load_jpg)(image, file.data(), file.size());
  return image;
}

#endif  // EXAMPLES_LOAD_IMAGE_H_
