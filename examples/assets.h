// The picture files of examples/assets/bmp.
#ifndef EXAMPLES_ASSETS_H_
#define EXAMPLES_ASSETS_H_

#include <string>
#include <utility>

#include "files.h"
#include "host_surface.h"

class Assets {
 public:
  explicit Assets(std::string examples_folder) : folder_(std::move(examples_folder)) {}

  File Read(const std::string& name) const { return ReadFile(folder_ + "/assets/bmp/" + name); }

  HostSurface Load(const std::string& name, Format format) const {
    File file = Read(name);
    return LoadBitmap(file, format);
  }

  // 24-bit files give no pixels to 8-bit surfaces; the photographs have a twin in 256 colours. All
  // twins share one palette.
  HostSurface LoadPhoto(const std::string& name, Format format) const {
    HostSurface photo = Load(name + (format == Format::k8 ? "-256.bmp" : ".bmp"), format);
    // Index 0 is never seen where it is transparent; elsewhere it is what shadows are drawn with.
    if (format == Format::k8) photo.Palette()[0] = {};
    return photo;
  }

 private:
  std::string folder_;
};

#endif  // EXAMPLES_ASSETS_H_
