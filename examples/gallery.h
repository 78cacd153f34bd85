// The gallery: every operation of the library, drawn on real pictures in every format.
//
// gallery.cc holds the table; gallery_page.cc turns it into PNG files and a page, and
// gallery_digest.cc into one checksum per result. A new operation is one entry in the table.
#ifndef EXAMPLES_GALLERY_H_
#define EXAMPLES_GALLERY_H_

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "assets.h"
#include "files.h"
#include "host_surface.h"

// What an entry finds prepared, in one format. All pictures of 8 bits share one palette.
struct Stage {
  Stage(const Assets& assets, Format format);
  Stage In(Format other) const { return Stage(assets, other); }

  const Assets& assets;
  Format format;
  HostSurface canvas;  // the destination: a photograph, 100 x 75
  HostSurface tree;    // a sprite with a colour key, 35 x 72
  HostSurface hippo;   // a small photograph without a key, 36 x 28
  HostSurface chart;   // a test chart without a key, 127 x 64
  HostSurface work;    // 8 bits, as large as the canvas, all zero
};

// A picture, or a line or two of text, and what to call it.
struct Shown {
  std::string caption;
  std::optional<HostSurface> picture;
  std::string text;
};

// What an entry puts on show when it is not the same drawing in the seven formats.
class Shelf {
 public:
  explicit Shelf(const Assets& assets_in) : assets(assets_in) {}
  void From(std::string caption, HostSurface picture) {
    inputs.push_back({std::move(caption), std::move(picture), {}});
  }
  void Add(std::string caption, HostSurface picture) {
    results.push_back({std::move(caption), std::move(picture), {}});
  }
  void Add(std::string caption, std::string text) {
    results.push_back({std::move(caption), std::nullopt, std::move(text)});
  }

  const Assets& assets;
  std::vector<Shown> inputs, results;
};

struct Rendering {
  std::vector<Shown> inputs, results;
};

struct Operation {
  const char* family;
  const char* title;
  const char* sentence;  // what to see
  std::function<Rendering(const Assets&)> render;
};

const std::vector<Operation>& Operations();

#endif  // EXAMPLES_GALLERY_H_
