#include "gallery.h"

#include <algorithm>
#include <type_traits>

#include "gif_animation.h"
#include "lettering.h"

namespace {

constexpr uint32_t kRed = 0xE02020, kGold = 0xF0B020, kSky = 0x40A0F0, kInk = 0x102040,
                   kPaper = 0xF8F4E8, kWhite = 0xFFFFFF;

// An 8-bit picture with each colour replaced by what looks most like it in another palette.
HostSurface Redrawn(const HostSurface& picture, const HostSurface& palette) {
  HostSurface result(Format::k8, picture.width, picture.height);
  result.UsePaletteOf(palette);
  for (int y = 0; y < result.height; ++y) {
    for (int x = 0; x < result.width; ++x) {
      SetPixel(result, x, y, result.Colour(picture.Display(x, y) & 0xFFFFFF));
    }
  }
  return result;
}

// The alpha bits as a grey picture, bit 15 of 555 included.
HostSurface AlphaOf(const HostSurface& surface) {
  const uint32_t mask = surface.format() == Format::k555 ? 0x8000 : surface.aMask;
  HostSurface grey(Format::k8, surface.width, surface.height);
  CreateGreyPal(grey.Palette());
  for (int y = 0; y < grey.height; ++y) {
    for (int x = 0; x < grey.width; ++x) {
      const bool any = mask != 0;
      const uint64_t field = surface.Stored(x, y) & mask;
      SetPixel(grey, x, y, any ? uint32_t(field * 255 / mask) : 0);
    }
  }
  return grey;
}

void ExchangeRedAndBlue(HostSurface& indexed) {
  for (TRGBA& entry : indexed.Palette()) std::swap(entry.red, entry.blue);
}

// The 256 colours of a palette as a square of fields.
HostSurface Swatches(const TRGBA (&palette)[256]) {
  HostSurface square(Format::k8, 64, 64);
  for (int i = 0; i < 256; ++i) {
    square.Palette()[i] = palette[i];
    const int x = i % 16 * 4, y = i / 16 * 4;
    IdxFillRect(square, {x, y, x + 4, y + 4}, uint32_t(i));
  }
  return square;
}

// A grey picture of the canvas's size: what masks and alpha surfaces are.
template <class Value>
HostSurface Mask(Value value) {
  HostSurface mask(Format::k8, 100, 75);
  CreateGreyPal(mask.Palette());
  for (int y = 0; y < mask.height; ++y) {
    for (int x = 0; x < mask.width; ++x) SetPixel(mask, x, y, uint32_t(value(x, y)));
  }
  return mask;
}

// 255 inside, falling to 0 towards the corners.
HostSurface SoftDisc() {
  return Mask([](int x, int y) {
    const int dx = 4 * (x - 50), dy = 5 * (y - 37);
    return std::clamp((40000 - dx * dx - dy * dy) / 120, 0, 255);
  });
}

// 128, with a field from 0 at its left to 255 at its right.
HostSurface RampField() {
  return Mask([](int x, int y) {
    return x < 10 || x >= 90 || y < 10 || y >= 65 ? 128 : (x - 10) * 255 / 79;
  });
}

// A caption on a surface of the canvas's size; everything around the letters is transparent.
HostSurface Caption(const HostSurface& canvas, Format format) {
  HostSurface caption(format, canvas.width, canvas.height);
  if (format == Format::k8) {
    caption.UsePaletteOf(canvas);
  } else {
    IdxFillRect(caption, caption.Bounds(), 0xFFFF00FF);
  }
  caption.colorKey = caption.Stored(0, 0);
  Write(caption, {9, 12}, "PINC", kGold, 5);
  Write(caption, {9, 42}, "EL:)", kGold, 5);
  return caption;
}

// A grey picture of zeros, as large as another one.
HostSurface EmptyMask(const TSurfDesc& picture) {
  HostSurface mask(Format::k8, picture.width, picture.height);
  CreateGreyPal(mask.Palette());
  return mask;
}

// The nearest index of every palette entry's colour, each channel moved by `shift`.
std::vector<unsigned char> ShiftTable(const HostSurface& indexed, int shift) {
  std::vector<unsigned char> table;
  for (uint32_t i = 0; i < 256 && indexed.bpp == 8; ++i) {
    const TRGBA& entry = indexed.palette[i];
    uint32_t moved = 0;
    for (int channel : {entry.red, entry.green, entry.blue}) {
      moved = moved << 8 | uint32_t(std::clamp(channel + shift, 0, 255));
    }
    table.push_back(static_cast<unsigned char>(indexed.Colour(moved)));
  }
  return table;
}

// What a picture has in its first byte, or in its blue field, as grey.
HostSurface BlueOf(const HostSurface& picture) {
  HostSurface grey(Format::k8, picture.width, picture.height);
  CreateGreyPal(grey.Palette());
  for (int y = 0; y < grey.height; ++y) {
    for (int x = 0; x < grey.width; ++x) {
      const uint32_t value = picture.bpp == 8 ? picture.Stored(x, y) : picture.Display(x, y);
      SetPixel(grey, x, y, value & 255);
    }
  }
  return grey;
}

// A grey picture as the first bytes of 32-bit pixels.
HostSurface Deep(HostSurface grey) {
  HostSurface deep(Format::k32, grey.width, grey.height);
  DrawBitmap(deep, grey);
  return deep;
}

// Strokes and letters on black, each pixel either set or not.
HostSurface Strokes(Format format, int columns, int rows) {
  HostSurface picture(format, columns, rows);
  if (format == Format::k8) CreateGreyPal(picture.Palette());
  for (int x = 4; x < columns - 6; ++x) {
    const int dx = 2 * x - columns, y = rows - 8 - (rows - 24) * dx * dx / (columns * columns);
    IdxFillRect(picture, {x, y, x + 3, y + 3}, picture.Colour(kWhite));
  }
  Write(picture, {8, 6}, "PINCEL", kWhite, 3);
  return picture;
}

// A colour as it is stored in such a surface; on 8-bit surfaces the true colour.
uint32_t Packed(const HostSurface& surface, uint32_t rgb) {
  if (surface.bpp == 8) return rgb;
  HostSurface one(surface.format(), 1, 1);
  IdxFillRect(one, one.Bounds(), 0xFF000000 | rgb);
  return one.Stored(0, 0);
}

using Table = unsigned char (*)[65536];

// While it lives, lu_gPaleta is the palette of a surface, and there is a table for it: what mixing
// on 8-bit surfaces needs.
class MixPalette {
 public:
  MixPalette(const HostSurface& surface, bool dither) : table_(2) {
    std::copy_n(lu_gPaleta, 256, saved_);
    if (surface.bpp != 8) return;
    std::copy_n(surface.palette, 256, lu_gPaleta);
    pincel_build_mix_table(table(), lu_gPaleta, dither);
  }
  MixPalette(const MixPalette&) = delete;
  MixPalette& operator=(const MixPalette&) = delete;
  ~MixPalette() { std::copy_n(saved_, 256, lu_gPaleta); }
  Table table() { return reinterpret_cast<Table>(table_.data()); }

 private:
  struct Plane {
    unsigned char index[65536];
  };
  std::vector<Plane> table_;
  TRGBA saved_[256];
};

// GIF and JPEG files lie in folders beside that of the BMP files.
File GifFile(const Assets& assets, const char* name) {
  return assets.Read(std::string("../gif/") + name);
}
File JpegFile(const Assets& assets, const char* name) {
  return assets.Read(std::string("../jpg/") + name);
}

std::string Text(bool value) { return value ? "true" : "false"; }

using Source = HostSurface Stage::*;

struct NamedSource {
  const char* caption;
  Source source;
};
constexpr NamedSource kSources[] = {
    {"tree, with a colour key", &Stage::tree}, {"hippo", &Stage::hippo}, {"chart", &Stage::chart}};

// The same drawing in each of the seven formats. A body that returns nothing shows the canvas; it
// may also return another surface or a text. The inputs are shown in their 32-bit form.
template <class Prepare, class Body>
auto InEveryFormat(std::vector<Source> sources, Prepare prepare, Body body) {
  return [=](const Assets& assets) {
    Rendering rendering;
    Stage inputs(assets, Format::k32);
    prepare(inputs);
    rendering.inputs.push_back({"canvas before", inputs.canvas, {}});
    for (const NamedSource& named : kSources) {
      for (Source source : sources) {
        if (source == named.source) {
          rendering.inputs.push_back({named.caption, inputs.*source, {}});
        }
      }
    }
    for (const FormatFacts& facts : kFormats) {
      Stage stage(assets, facts.format);
      prepare(stage);
      using Result = decltype(body(stage));
      if constexpr (std::is_void_v<Result>) {
        body(stage);
        rendering.results.push_back({facts.name, stage.canvas, {}});
      } else if constexpr (std::is_same_v<Result, std::string>) {
        rendering.results.push_back({facts.name, std::nullopt, body(stage)});
      } else {
        rendering.results.push_back({facts.name, body(stage), {}});
      }
    }
    return rendering;
  };
}

template <class Body>
auto OnPhoto(std::vector<Source> sources, Body body) {
  return InEveryFormat(
      std::move(sources), [](Stage&) {}, body);
}

// OnPhoto for operations that take a table. `given` are inputs besides the sources.
template <class Body>
auto OnMix(std::vector<Source> sources, std::vector<Shown> given, Body body) {
  const auto render = OnPhoto(std::move(sources), [body](Stage& s) {
    MixPalette palette(s.canvas, false);
    return body(s, palette.table());
  });
  return [=](const Assets& assets) {
    Rendering rendering = render(assets);
    rendering.inputs.insert(rendering.inputs.end(), given.begin(), given.end());
    return rendering;
  };
}

// The same drawing on 8 bits alone, with the nearest colours and with dithered ones.
template <class Body>
auto OnIndexed(std::vector<Source> sources, std::vector<Shown> given, Body body) {
  return [=](const Assets& assets) {
    Rendering rendering;
    Stage inputs(assets, Format::k8);
    rendering.inputs.push_back({"canvas before", inputs.canvas, {}});
    for (const NamedSource& named : kSources) {
      if (std::count(sources.begin(), sources.end(), named.source) != 0) {
        rendering.inputs.push_back({named.caption, inputs.*named.source, {}});
      }
    }
    rendering.inputs.insert(rendering.inputs.end(), given.begin(), given.end());
    for (const bool coarse : {false, true}) {
      for (const bool dither : {false, true}) {
        Stage stage(assets, Format::k8);
        if (coarse) {
          HostSurface cube(Format::k8, 1, 1);
          CreateModelPal(cube.Palette());
          for (Source source : {&Stage::canvas, &Stage::tree, &Stage::hippo, &Stage::chart}) {
            stage.*source = Redrawn(stage.*source, cube);
          }
        }
        MixPalette palette(stage.canvas, dither);
        body(stage, palette.table());
        rendering.results.push_back({std::string(coarse ? "model palette" : "own palette") +
                                         (dither ? ", dithered" : ", nearest"),
                                     stage.canvas,
                                     {}});
      }
    }
    return rendering;
  };
}

using BlendMode = bool (*)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&);
using BlendColour = bool (*)(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&,
                             CPunto const&);
using BlendMasked = bool (*)(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
                             CPunto const&);

struct NamedMode {
  const char* name;
  BlendMode source;
  BlendColour colour;
  BlendMasked masked;
};
constexpr NamedMode kModes[] = {
    {"add", DoSuma, DoSuma, DoSuma},
    {"subtract", DoResta, DoResta, DoResta},
    {"multiply", DoMultiplica, DoMultiplica, DoMultiplica},
    {"screen", DoScreen, DoScreen, DoScreen},
    {"lighten", DoLighten, DoLighten, DoLighten},
    {"darken", DoDarken, DoDarken, DoDarken},
    {"overlay", DoSuperponer, DoSuperponer, DoSuperponer},
};

// A picture as large as the canvas: the chart, with its lower rows once more below it.
HostSurface Backdrop(Stage& s) {
  HostSurface picture(s.format, 100, 75);
  DrawBlock(picture, s.chart, 14, 0, 0, 0, 100, 64);
  DrawBlock(picture, s.chart, 14, 0, 0, 64, 100, 11);
  return picture;
}

// The seven modes side by side, a row for each format that has them.
template <class Body>
auto SevenModes(std::vector<Shown> given, Body body) {
  return [=](const Assets& assets) {
    Rendering rendering;
    Stage inputs(assets, Format::k32);
    rendering.inputs.push_back({"canvas before", inputs.canvas, {}});
    rendering.inputs.insert(rendering.inputs.end(), given.begin(), given.end());
    for (const FormatFacts& facts : kFormats) {
      if (facts.bpp == 8) continue;
      for (const NamedMode& mode : kModes) {
        Stage stage(assets, facts.format);
        body(stage, mode);
        rendering.results.push_back({std::string(facts.name) + ", " + mode.name, stage.canvas, {}});
      }
    }
    return rendering;
  };
}

template <class Body>
auto OnPaper(std::vector<Source> sources, Body body) {
  const auto paper = [](Stage& s) {
    IdxFillRect(s.canvas, s.canvas.Bounds(), s.canvas.Colour(kPaper));
  };
  return InEveryFormat(std::move(sources), paper, body);
}

// A picture file loaded into a surface of each format that was orange before.
template <class Body>
auto FromFile(std::string name, Body body) {
  return [=](const Assets& assets) {
    File file = assets.Read(name);
    Rendering rendering;
    for (const FormatFacts& facts : kFormats) {
      TSurfDesc size{};
      LoadInfoBMP(size, file.data());
      HostSurface surface(facts.format, size.width, size.height);
      if (facts.bpp == 8) CreateModelPal(surface.Palette());
      IdxFillRect(surface, surface.Bounds(), surface.Colour(0xFF8000));
      body(surface, file);
      rendering.results.push_back({facts.name, surface, {}});
    }
    rendering.inputs.push_back({name, std::nullopt, std::to_string(file.size() - 1) + " bytes"});
    return rendering;
  };
}

template <class Body>
auto OnShelf(Body body) {
  return [=](const Assets& assets) {
    Shelf shelf(assets);
    body(shelf);
    return Rendering{std::move(shelf.inputs), std::move(shelf.results)};
  };
}

}  // namespace

Stage::Stage(const Assets& from, Format wanted)
    : assets(from),
      format(wanted),
      canvas(assets.LoadPhoto("wuffs-peacock", wanted)),
      tree(assets.Load("gd-tree-256.bmp", wanted)),
      hippo(assets.LoadPhoto("wuffs-hippopotamus", wanted)),
      chart(assets.Load("bmpsuite-pal8.bmp", wanted)),
      work(Format::k8, canvas.width, canvas.height) {
  tree.colorKey = tree.Stored(0, 0);
  if (wanted == Format::k8) chart = Redrawn(chart, canvas);
}

// Families in the order of the page; inside one, the plain case before the irregular ones.
const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      // ---------------------------------------------------------------------------------- Loading
      {"Loading", "LoadInfoBMP",
       "Size and depth, read from the header alone; a top-down file reports its height positive.",
       OnShelf([](Shelf& shelf) {
         for (const char* name : {"bmpsuite-pal8topdown.bmp", "bmpsuite-rgb24.bmp",
                                  "turbo-shira_bird8.bmp", "gd-tree-256.bmp"}) {
           File file = shelf.assets.Read(name);
           TSurfDesc size{};
           LoadInfoBMP(size, file.data());
           shelf.Add(name, std::to_string(size.width) + " x " + std::to_string(size.height) + ", " +
                               std::to_string(size.bpp) + " bits");
         }
       })},
      {"Loading", "LoadBMP, 24-bit file",
       "One file decoded straight into each format. An 8-bit surface gets no pixels from it: it "
       "stays orange, with the default palette.",
       FromFile("bmpsuite-rgb24.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, 8-bit file",
       "Indices go through the file's colour table; an 8-bit surface receives both, so it shows "
       "the picture as exactly as 24 and 32 bits do.",
       FromFile("bmpsuite-pal8.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, run-length coded", "The same picture, packed in runs: the same pixels.",
       FromFile("bmpsuite-pal8rle.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, run-length coded, with skipped pixels",
       "The file skips the inside of the letters. Skipped pixels take the colour of entry 0; at 8 "
       "bits they keep what was there, the index of orange in a palette that is now the file's.",
       FromFile("bmpsuite-pal8rletrns.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, top-down", "A negative height in the file: rows come from the top.",
       FromFile("bmpsuite-pal8topdown.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, top-down run-length",
       "The run-length file with its height negated, so it stands on its head; at 24 bits red and "
       "blue are exchanged. Intended.",
       FromFile("bmpsuite-pal8rle.bmp",
                [](HostSurface& surface, File& file) {
                  const int32_t height = -surface.height;
                  for (int i = 0; i < 4; ++i) file[size_t(22 + i)] = uint8_t(height >> (8 * i));
                  LoadBMP(surface, file.data());
                })},
      {"Loading", "LoadBMP, 12-byte header",
       "The colour table of such a file is not read; its indices meet lu_gPaleta, the default "
       "palette, instead. Intended.",
       FromFile("bmpsuite-pal8os2.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, 32-bit file",
       "Depths above 24 are read as 24, so a 32-bit file comes out wrong, and 8 bits get nothing. "
       "Intended.",
       FromFile("bmpsuite-rgb32.bmp",
                [](HostSurface& surface, File& file) { LoadBMP(surface, file.data()); })},
      {"Loading", "LoadBMP, alpha bits of a 24-bit file",
       "Bit 15 of 555 and 1555, the alpha of 4444: the top bits of the byte behind the pixel, "
       "mostly the next pixel's blue. Intended.",
       OnShelf([](Shelf& shelf) {
         for (Format format : {Format::k555, Format::k1555, Format::k4444}) {
           const HostSurface picture = shelf.assets.Load("bmpsuite-rgb24.bmp", format);
           shelf.Add(std::string(FactsOf(format).name) + ", alpha", AlphaOf(picture));
         }
       })},
      {"Loading", "LoadInfoBMPAlpha, LoadBMPAlpha",
       "The bytes of an 8-bit file as they stand, here shown as grey: a mask, whatever the "
       "colour table says.",
       OnShelf([](Shelf& shelf) {
         for (const char* name : {"bmpsuite-pal8.bmp", "bmpsuite-pal8rle.bmp", "gd-tree-256.bmp"}) {
           File file = shelf.assets.Read(name);
           TSurfDesc size{};
           LoadInfoBMPAlpha(size, file.data());
           HostSurface mask(Format::k8, size.width, size.height);
           CreateGreyPal(mask.Palette());
           LoadBMPAlpha(mask, file.data());
           shelf.Add(name, mask);
         }
       })},
      {"Loading", "LoadInfoGIF",
       "The size of the screen, from the header alone, and the file's global colour table in a "
       "palette that is black otherwise.",
       OnShelf([](Shelf& shelf) {
         for (const char* name : {"wuffs-hat.gif", "wuffs-muybridge.gif", "gd-bug00066.gif"}) {
           File file = GifFile(shelf.assets, name);
           TSurfDesc size{};
           CQXGIF gif{};
           RAW frame{};
           LoadInfoGIF(size, file.data(), gif, frame);
           TRGBA palette[256];
           for (int i = 0; i < 256; ++i) {
             palette[i] = {frame.palette[i][2], frame.palette[i][1], frame.palette[i][0], 0};
           }
           shelf.Add(name, std::to_string(size.width) + " x " + std::to_string(size.height) + ", " +
                               std::to_string(size.bpp) + " bits");
           shelf.Add(std::string(name) + ", colours", Swatches(palette));
         }
       })},
      {"Loading", "LoadGIFNext, LoadGIF",
       "A walk over the frames of a file, each decoded into a surface of the screen's size. Here "
       "every frame fills the screen; position, transparency and disposal are not read.",
       OnShelf([](Shelf& shelf) {
         File file = GifFile(shelf.assets, "imagegif-moon_impact.gif");
         TSurfDesc size{};
         CQXGIF gif{};
         RAW frame{};
         LoadInfoGIF(size, file.data(), gif, frame);
         for (int number = 1; LoadGIFNext(size, file.data(), gif, frame); ++number) {
           HostSurface picture(Format::k32, size.width, size.height);
           LoadGIF(picture, file.data(), gif, frame);
           shelf.Add("frame " + std::to_string(number), picture);
         }
         LoadGIFEnd(size, file.data(), gif, frame);
       })},
      {"Loading", "LoadGIF in every format",
       "One frame decoded straight into each format; an 8-bit surface receives the palette too.",
       OnShelf([](Shelf& shelf) {
         File file = GifFile(shelf.assets, "wuffs-hat.gif");
         for (const FormatFacts& facts : kFormats) {
           TSurfDesc size{};
           CQXGIF gif{};
           RAW frame{};
           LoadInfoGIF(size, file.data(), gif, frame);
           HostSurface picture(facts.format, size.width, size.height);
           LoadGIFNext(picture, file.data(), gif, frame);
           LoadGIF(picture, file.data(), gif, frame);
           LoadGIFEnd(picture, file.data(), gif, frame);
           shelf.Add(facts.name, picture);
         }
       })},
      {"Loading", "LoadInfoGIFAlpha, LoadGIFAlpha",
       "The indices of a frame as they stand, here shown as grey: a mask, whatever the colours.",
       OnShelf([](Shelf& shelf) {
         File file = GifFile(shelf.assets, "wuffs-hat.gif");
         TSurfDesc size{};
         CQXGIF gif{};
         RAW frame{};
         LoadInfoGIFAlpha(size, file.data(), gif, frame);
         HostSurface mask(Format::k8, size.width, size.height);
         CreateGreyPal(mask.Palette());
         LoadGIFAlphaNext(mask, file.data(), gif, frame);
         LoadGIFAlpha(mask, file.data(), gif, frame);
         LoadGIFAlphaEnd(mask, file.data(), gif, frame);
         shelf.Add("wuffs-hat.gif", mask);
       })},
      {"Loading", "CQXGIF",
       "The steps that the GIF loaders are made of: a header, the way to an image, its indices; "
       "here as grey. The codes of an image are what ReadCode reads one by one.",
       OnShelf([](Shelf& shelf) {
         File file = GifFile(shelf.assets, "wuffs-hat.gif");
         CQXGIF gif{};
         RAW frame{};
         gif.ReadHeader(file.data(), &frame);
         gif.NextImage();
         HostSurface indices(Format::k8, int(frame.width), int(frame.height), int(frame.width));
         CreateGreyPal(indices.Palette());
         frame.output = indices.pixels;
         CQXGIF reader = gif;
         gif.DecodeImage(&frame);
         shelf.Add("wuffs-hat.gif", indices);
         // A second reader: behind the descriptor of the image lies the width of the first code.
         reader.cursor += 9;
         reader.codeSize = *reader.cursor++ + 1u;
         reader.endCode = (1u << (reader.codeSize - 1)) + 1;
         std::string codes;
         for (int i = 0; i < 6; ++i) codes += std::to_string(reader.ReadCode()) + " ";
         shelf.Add("the first codes", codes);
       })},
      {"Loading", "pincel_load_bmp", "A file of 4 bits, of whatever origin, into each format.",
       OnShelf([](Shelf& shelf) {
         const File file = shelf.assets.Read("bmpsuite-pal4.bmp");
         for (const FormatFacts& facts : kFormats) {
           TSurfDesc size{};
           if (pincel_load_info_bmp(size, file.data(), file.size()) != PINCEL_OK) continue;
           HostSurface picture(facts.format, size.width, size.height);
           if (pincel_load_bmp(picture, file.data(), file.size()) != PINCEL_OK) continue;
           shelf.Add(facts.name, picture);
         }
       })},
      {"Loading", "pincel_load_gif",
       "The second frame of an animation into each format: only what the file has for it, which is "
       "a part of the screen.",
       OnShelf([](Shelf& shelf) {
         const File file = GifFile(shelf.assets, "imagers-mixed-disposal.gif");
         TSurfDesc screen{};
         if (pincel_load_info_gif(screen, file.data(), file.size()) != PINCEL_OK) return;
         TGifFrame frame{};
         for (int i = 0; i < 2; ++i) pincel_gif_frame(frame, file.data(), file.size());
         for (const FormatFacts& facts : kFormats) {
           HostSurface picture(facts.format, frame.area.right - frame.area.left,
                               frame.area.bottom - frame.area.top);
           if (pincel_load_gif(picture, file.data(), file.size(), frame) != PINCEL_OK) continue;
           shelf.Add(facts.name, picture);
         }
       })},
      {"Loading", "pincel_load_jpg",
       "A photograph of whatever origin into each format; at 8 bits dithered to lu_gPaleta.",
       OnShelf([](Shelf& shelf) {
         const File file = JpegFile(shelf.assets, "wuffs-bricks-color.jpg");
         for (const FormatFacts& facts : kFormats) {
           TSurfDesc size{};
           if (pincel_load_info_jpg(size, file.data(), file.size()) != PINCEL_OK) continue;
           HostSurface picture(facts.format, size.width, size.height);
           if (pincel_load_jpg(picture, file.data(), file.size()) != PINCEL_OK) continue;
           shelf.Add(facts.name, picture);
         }
       })},
      {"Loading", "pincel_gif_frame, pincel_load_gif",
       "An animation as viewers show it: each frame is drawn into its rectangle, without its "
       "transparent pixels, and disposed of before the next. examples/gif_animation.h does that.",
       OnShelf([](Shelf& shelf) {
         GifAnimation animation(GifFile(shelf.assets, "imagers-mixed-disposal.gif"));
         while (animation.Next()) {
           const TGifFrame& frame = animation.Frame();
           shelf.Add("disposal " + std::to_string(frame.disposal) + ", " +
                         std::to_string(frame.delay * 10) + " ms",
                     animation.Screen());
         }
       })},
      {"Loading", "LoadInfoJPG, LoadJPG",
       "A photograph decoded straight into each format; at 8 bits dithered to lu_gPaleta.",
       OnShelf([](Shelf& shelf) {
         File file = JpegFile(shelf.assets, "wuffs-bricks-color.jpg");
         for (const FormatFacts& facts : kFormats) {
           TSurfDesc size{};
           LoadInfoJPG(size, file.data(), long(file.size()));
           HostSurface picture(facts.format, size.width, size.height);
           LoadJPG(picture, file.data(), long(file.size()));
           shelf.Add(facts.name, picture);
         }
       })},
      {"Loading", "pincel_load_jpg of half a file",
       "The loaders that know a file's length say what became of it: here that it ends early. What "
       "came before is there.",
       OnShelf([](Shelf& shelf) {
         const File file = JpegFile(shelf.assets, "wuffs-bricks-color.jpg");
         TSurfDesc size{};
         pincel_load_info_jpg(size, file.data(), file.size());
         HostSurface picture(Format::k32, size.width, size.height);
         const pincel_status status = pincel_load_jpg(picture, file.data(), file.size() / 2);
         shelf.Add("status " + std::to_string(status), picture);
       })},
      {"Loading", "LoadInfoPGF, LoadPGF", "Kept for an image format that is not supported.",
       OnShelf([](Shelf& shelf) {
         HostSurface surface(Format::k32, 16, 16);
         uint8_t data[16] = {};
         shelf.Add("LoadInfoPGF", Text(LoadInfoPGF(surface, data)));
         shelf.Add("LoadPGF", Text(LoadPGF(surface, data)));
       })},

      // ------------------------------------------------------------------------------- Conversion
      {"Conversion", "Convert, every pair",
       "Down: the source's format. Across: the destination's. Channels are truncated, never "
       "dithered. 24 and 32 bits reach 8 with red and blue exchanged, 1555 reaches 555 as 4444 "
       "values; both intended.",
       OnShelf([](Shelf& shelf) {
         for (const FormatFacts& from : kFormats) {
           Stage s(shelf.assets, from.format);
           shelf.From(from.name, s.canvas);
           const Stage indexed(shelf.assets, Format::k8);
           for (const FormatFacts& to : kFormats) {
             HostSurface result(to.format, s.canvas.width, s.canvas.height);
             if (to.bpp == 8) result.UsePaletteOf(indexed.canvas);
             Convert(result, s.canvas, 2);
             shelf.Add(std::string(from.name) + " to " + to.name, result);
           }
         }
       })},
      {"Conversion", "Convert to 8 bits, the four modes",
       "Mode 1 writes no pixel, 2 searches the palette, 3 packs 3-3-2, 4 uses the model cube. From "
       "24 bits red and blue are exchanged. Intended.",
       OnShelf([](Shelf& shelf) {
         for (Format from : {Format::k565, Format::k24}) {
           HostSurface chart = shelf.assets.Load("bmpsuite-pal8.bmp", from);
           shelf.From(FactsOf(from).name, chart);
           for (uint32_t mode = 1; mode <= 4; ++mode) {
             HostSurface result(Format::k8, chart.width, chart.height);
             CreateModelPal(result.Palette());
             if (mode == 3) CreateTruncPal(result.Palette());
             Convert(result, chart, mode);
             shelf.Add(std::string(FactsOf(from).name) + ", mode " + std::to_string(mode), result);
           }
         }
       })},
      {"Conversion", "Convert to 8 bits with the colours right",
       "A host that wants the true colours of a 24-bit picture lends the conversion its palette "
       "with red and blue exchanged as well.",
       OnShelf([](Shelf& shelf) {
         Stage deep(shelf.assets, Format::k24), indexed(shelf.assets, Format::k8);
         HostSurface result = indexed.canvas;
         ExchangeRedAndBlue(result);
         Convert(result, deep.canvas, 2);
         ExchangeRedAndBlue(result);
         shelf.From("24 bits", deep.canvas);
         shelf.Add("8 bits", result);
       })},
      {"Conversion", "Convert takes the colour key along",
       "A keyed 32-bit sprite, converted and then drawn. Only 555 shows its ground: full alpha "
       "sets "
       "bit 15 of the pixels, but not of the key. Intended.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 HostSurface deep = s.In(Format::k32).tree;
                 deep.colorKey &= 0xFFFFFF;  // reductions to 8 bits ask for a key without alpha
                 HostSurface sprite = s.tree;
                 sprite.colorKey = kNoKey;
                 if (s.format == Format::k8) ExchangeRedAndBlue(sprite);
                 Convert(sprite, deep, 2);
                 DrawBitmap(s.canvas, {33, 2, 68, 74}, sprite, {0, 0});
               })},
      {"Conversion", "Convert, alpha bits",
       "From 32 bits the alpha bits come from the pixel's own alpha (here a ramp); from 24 bits "
       "from the byte behind the pixel, mostly the next one's blue. Intended.",
       OnShelf([](Shelf& shelf) {
         HostSurface deep = Stage(shelf.assets, Format::k32).canvas;
         for (int x = 0; x < deep.width; ++x) {
           for (int y = 0; y < deep.height; ++y) {
             IdxFillRect(deep, {x, y, x + 1, y + 1},
                         (deep.Stored(x, y) & 0xFFFFFF) | uint32_t(x * 255 / 99) << 24);
           }
         }
         HostSurface plain(Format::k24, deep.width, deep.height);
         Convert32_24_(plain, deep);
         shelf.From("32 bits", deep);
         shelf.From("its alpha", AlphaOf(deep));
         for (Format format : {Format::k555, Format::k1555, Format::k4444}) {
           HostSurface from32(format, deep.width, deep.height), from24 = from32;
           Convert(from32, deep, 0);
           Convert(from24, plain, 0);
           shelf.Add(std::string("32 to ") + FactsOf(format).name + ", alpha", AlphaOf(from32));
           shelf.Add(std::string("24 to ") + FactsOf(format).name + ", alpha", AlphaOf(from24));
         }
       })},
      {"Conversion", "Convert16_...",
       "The ten repackers by name. Convert16_5551_16_555 writes 4444 values into the 555 surface, "
       "so its colours come out wrong. Intended.",
       OnShelf([](Shelf& shelf) {
         struct Repacker {
           const char* name;
           Format from, to;
           bool (*convert)(TSurfDesc&, TSurfDesc&);
         };
         const Repacker repackers[] = {
             {"Convert16_565_16_555", Format::k565, Format::k555, Convert16_565_16_555},
             {"Convert16_4444_16_555", Format::k4444, Format::k555, Convert16_4444_16_555},
             {"Convert16_555_16_4444", Format::k555, Format::k4444, Convert16_555_16_4444},
             {"Convert16_565_16_4444", Format::k565, Format::k4444, Convert16_565_16_4444},
             {"Convert16_4444_16_565", Format::k4444, Format::k565, Convert16_4444_16_565},
             {"Convert16_4444_16_5551", Format::k4444, Format::k1555, Convert16_4444_16_5551},
             {"Convert16_555_16_5551", Format::k555, Format::k1555, Convert16_555_16_5551},
             {"Convert16_5551_16_555", Format::k1555, Format::k555, Convert16_5551_16_555},
             {"Convert16_565_16_5551", Format::k565, Format::k1555, Convert16_565_16_5551},
             {"Convert16_555_16_565", Format::k555, Format::k565, Convert16_555_16_565},
         };
         for (const Repacker& repacker : repackers) {
           HostSurface chart = shelf.assets.Load("bmpsuite-pal8.bmp", repacker.from);
           if (shelf.inputs.empty()) shelf.From("chart", chart);
           HostSurface result(repacker.to, chart.width, chart.height);
           repacker.convert(result, chart);
           shelf.Add(repacker.name, result);
         }
       })},
      {"Conversion", "Convert24_32_, Convert32_24_",
       "The colour bytes travel unchanged; 32 bits get a full fourth byte, 24 bits drop it.",
       OnShelf([](Shelf& shelf) {
         HostSurface plain = shelf.assets.Load("bmpsuite-rgb24.bmp", Format::k24);
         HostSurface deep(Format::k32, plain.width, plain.height);
         Convert24_32_(deep, plain);
         shelf.From("24 bits", plain);
         shelf.Add("Convert24_32_", deep);
         HostSurface back(Format::k24, plain.width, plain.height);
         Convert32_24_(back, deep);
         shelf.Add("Convert32_24_", back);
       })},
      {"Conversion", "Convert8_8",
       "Each palette entry of the source becomes the nearest of the destination's. Nearest means "
       "no brighter in any channel where that is possible, so results lean to the dark side.",
       OnShelf([](Shelf& shelf) {
         HostSurface photo = Stage(shelf.assets, Format::k8).canvas;
         shelf.From("source", photo);
         HostSurface result = photo;
         CreateModelPal(result.Palette());
         Convert8_8(result, photo);
         shelf.Add("to CreateModelPal", result);
         CreateTruncPal(result.Palette());
         Convert8_8(result, photo);
         shelf.Add("to CreateTruncPal", result);
         CreateGreyPal(result.Palette());
         Convert8_8(result, photo);
         shelf.Add("to CreateGreyPal", result);
       })},
      {"Conversion", "CopyImage",
       "The raw bytes of a surface of the same format and pitch; at 8 bits the host takes the "
       "palette along.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface copy(s.format, s.canvas.width, s.canvas.height);
                 if (s.format == Format::k8) copy.UsePaletteOf(s.canvas);
                 CopyImage(copy, s.canvas);
                 return copy;
               })},
      {"Conversion", "CopyImage, different pitches",
       "Each row copies as many bytes as the surface has pixels, so only 8 bits come out whole; "
       "the deeper formats drift apart. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface copy(s.format, s.canvas.width, s.canvas.height, s.canvas.pitch + 8);
                 if (s.format == Format::k8) copy.UsePaletteOf(s.canvas);
                 CopyImage(copy, s.canvas);
                 return copy;
               })},

      // ------------------------------------------------------------------------------------ Blits
      {"Blits", "DrawBitmap, keyed sprite",
       "Pixels that equal the source's key are left out; at 8 bits those of index 0.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 DrawBitmap(s.canvas, {33, 2, 68, 74}, s.tree, {0, 0});
               })},
      {"Blits", "DrawBitmap, opaque",
       "Without a key every pixel is copied, except at 24 bits, where the last third of each row "
       "keeps its old contents. Intended; give the source a key, or use DrawBlock.",
       OnPhoto({&Stage::chart},
               [](Stage& s) {
                 DrawBitmap(s.canvas, {8, 8, 92, 68}, s.chart, {20, 2});
               })},
      {"Blits", "DrawBitmap, clipped",
       "Trees that reach over the edges: what lies outside is cut off, and the source point moves "
       "along, so the rest stays where it belongs.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 DrawBitmap(s.canvas, {-20, -30, 15, 42}, s.tree, {0, 0});
                 DrawBitmap(s.canvas, {85, 30, 120, 102}, s.tree, {0, 0});
               })},
      {"Blits", "DrawBitmap, whole surface",
       "The short form: as large as the destination, from the source's first pixel. Opaque, so 24 "
       "bits get two thirds of each row again.",
       OnPhoto({&Stage::chart},
               [](Stage& s) {
                 HostSurface window(s.format, 60, 64);
                 if (s.format == Format::k8) window.UsePaletteOf(s.canvas);
                 DrawBitmap(window, s.chart);
                 return window;
               })},
      {"Blits", "DrawBitmap, 8-bit source",
       "An 8-bit sprite on every depth: its palette gives the colours, index 0 is transparent. "
       "Here 24 bits write all three bytes, with a key or without.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 HostSurface sprite = s.In(Format::k8).tree;
                 DrawBitmap(s.canvas, {10, 2, 45, 74}, sprite, {0, 0});
                 sprite.colorKey = kNoKey;
                 DrawBitmap(s.canvas, {55, 2, 90, 74}, sprite, {0, 0});
               })},
      {"Blits", "DrawBitmap, 8-bit source without a palette",
       "Then lu_gPaleta, the default palette, gives the colours. An 8-bit destination takes the "
       "indices as they are.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 HostSurface sprite = s.In(Format::k8).tree;
                 sprite.palette = nullptr;
                 DrawBitmap(s.canvas, {33, 2, 68, 74}, sprite, {0, 0});
               })},
      {"Blits", "DrawBitmap, 565 source",
       "Equal depths copy bits, not colours: 555, 1555 and 4444 show the 565 words misread. Other "
       "depths draw nothing, and the call returns true all the same.",
       OnPhoto({&Stage::chart},
               [](Stage& s) {
                 HostSurface words = s.In(Format::k565).chart;
                 DrawBitmap(s.canvas, {8, 8, 92, 68}, words, {20, 2});
               })},
      {"Blits", "DrawBlock",
       "A block of pixels without key, clipping or conversion; whole at 24 bits too.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 DrawBlock(s.canvas, s.hippo, 0, 0, 8, 8, 36, 28);
                 DrawBlock(s.canvas, s.hippo, 10, 4, 60, 40, 26, 24);
               })},

      // ------------------------------------------------------------------------- Fills and frames
      {"Fills and frames", "IdxFillRect",
       "Rectangles in one colour, clipped. Direct formats take 0xAARRGGBB, 8 bits take an index.",
       OnPhoto({},
               [](Stage& s) {
                 IdxFillRect(s.canvas, {10, 10, 50, 40}, s.canvas.Colour(kRed));
                 IdxFillRect(s.canvas, {40, 30, 70, 60}, s.canvas.Colour(kGold));
                 IdxFillRect(s.canvas, {80, 50, 500, 500}, s.canvas.Colour(kSky));
               })},
      {"Fills and frames", "IdxFillRect, alpha bits",
       "Sixteen columns with alpha 0x00, 0x11, ... 0xFF above, 0x00, 0x01, ... 0x0F below. The "
       "16-bit formats fold the two halves of alpha together by OR: 4444 shows one ramp twice, bit "
       "15 "
       "of 555 and 1555 is bit 7 or bit 0. Intended.",
       OnShelf([](Shelf& shelf) {
         for (Format format : {Format::k555, Format::k1555, Format::k4444, Format::k32}) {
           HostSurface surface(format, 96, 48);
           for (int i = 0; i < 16; ++i) {
             IdxFillRect(surface, {i * 6, 0, i * 6 + 6, 24}, uint32_t(i * 0x11) << 24);
             IdxFillRect(surface, {i * 6, 24, i * 6 + 6, 48}, uint32_t(i) << 24);
           }
           shelf.Add(std::string(FactsOf(format).name) + ", alpha", AlphaOf(surface));
         }
       })},
      {"Fills and frames", "IdxLineHI, IdxLineVI",
       "Straight runs in the row above and the column left of the point; a negative length runs "
       "back: red to the right and down, blue to the left and up.",
       OnPaper({},
               [](Stage& s) {
                 for (int i = 2; i < 25; i += 2) {
                   IdxLineHI(s.canvas, {25, 12 + 2 * i}, i, s.canvas.Colour(kRed));
                   IdxLineHI(s.canvas, {25, 12 + 2 * i}, -i, s.canvas.Colour(kSky));
                   IdxLineVI(s.canvas, {48 + 2 * i, 37}, i, s.canvas.Colour(kRed));
                   IdxLineVI(s.canvas, {48 + 2 * i, 37}, -i, s.canvas.Colour(kSky));
                 }
               })},
      {"Fills and frames", "FrameBR",
       "The last row and the last column of a rectangle. The result is always false. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 for (int i = 0; i < 30; i += 5) {
                   FrameBR(s.canvas, {10 + i, 5 + i, 60 + i, 35 + i}, s.canvas.Colour(kGold));
                 }
               })},
      {"Fills and frames", "DrawRectShadow",
       "One black frame, moved by one pixel, whatever step and depth ask for. Intended: the "
       "card with depth 1 and the card with depth 8 look the same.",
       OnPhoto({},
               [](Stage& s) {
                 IdxFillRect(s.canvas, {10, 15, 45, 60}, s.canvas.Colour(kWhite));
                 DrawRectShadow(s.canvas, {10, 15, 45, 60}, 1, 1);
                 IdxFillRect(s.canvas, {55, 15, 90, 60}, s.canvas.Colour(kWhite));
                 DrawRectShadow(s.canvas, {55, 15, 90, 60}, 1, 8);
               })},

      // ------------------------------------------------------------------------------------ Lines
      {"Lines", "Line",
       "One pixel thick at full level; no smoothing, so the slopes show their steps. The colour "
       "is 0x00RRGGBB at 8 bits too.",
       OnPaper({},
               [](Stage& s) {
                 for (int i = 4; i <= 96; i += 8)
                   Line(s.canvas, {4, 70}, {i, 4}, kInk, 255, false, 1);
                 for (int i = 12; i <= 70; i += 8)
                   Line(s.canvas, {4, 70}, {96, i}, kRed, 255, false, 1);
               })},
      {"Lines", "Line, soft",
       "The same fan with its two edge pixels blended by coverage. 8 bits take the nearest entry "
       "of the palette.",
       OnPaper({},
               [](Stage& s) {
                 for (int i = 4; i <= 96; i += 8)
                   Line(s.canvas, {4, 70}, {i, 4}, kInk, 255, true, 1);
                 for (int i = 12; i <= 70; i += 8)
                   Line(s.canvas, {4, 70}, {96, i}, kRed, 255, true, 1);
               })},
      {"Lines", "Line, level and thickness",
       "Levels 42, 84, ... 252 from the top, each a pixel thicker than the last: thickness grows "
       "downwards from the line, not to both sides.",
       OnPhoto({},
               [](Stage& s) {
                 for (int i = 1; i <= 6; ++i) {
                   const int y = 5 * i + i * (i - 1) / 2 - 2;
                   const auto level = static_cast<unsigned short>(i * 42);
                   Line(s.canvas, {4, y}, {96, y + 20}, kWhite, level, true, i);
                 }
               })},
      {"Lines", "Line, soft edges only",
       "Thickness 0: nothing but the two blended edge pixels of each step.",
       OnPaper({},
               [](Stage& s) {
                 for (int i = 4; i <= 96; i += 8)
                   Line(s.canvas, {4, 70}, {i, 4}, kInk, 255, true, 0);
               })},

      // ---------------------------------------------------------------------------------- Scaling
      {"Scaling", "BltStrech, nearest",
       "The hippo at two and a half times its size. At 32 bits three bytes of a pixel are copied, "
       "the fourth stays the canvas's.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 BltStrech(s.canvas, {5, 2, 95, 72}, s.hippo, s.hippo.Bounds(), false);
               })},
      {"Scaling", "BltStrech, smooth",
       "The same with neighbours mixed at 24 and 32 bits; the others sample the nearest pixel.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 BltStrech(s.canvas, {5, 2, 95, 72}, s.hippo, s.hippo.Bounds(), true);
               })},
      {"Scaling", "BltStrech, smaller",
       "A part of the chart, enlarged, and all of it at half its size.",
       OnPhoto({&Stage::chart},
               [](Stage& s) {
                 BltStrech(s.canvas, {4, 4, 96, 37}, s.chart, {0, 0, 46, 16}, true);
                 BltStrech(s.canvas, {18, 40, 82, 72}, s.chart, s.chart.Bounds(), true);
               })},
      {"Scaling", "BltStrech, clipped destination",
       "A rectangle that lies to one half outside the canvas: the whole hippo is squeezed into the "
       "other half. Intended.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 BltStrech(s.canvas, {50, 2, 150, 72}, s.hippo, s.hippo.Bounds(), false);
               })},
      {"Scaling", "DrawStretch",
       "BltStrech without smoothing, four times. With a table it would draw nothing. Intended.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 unsigned char table[256] = {};
                 DrawStretch(s.canvas, s.canvas.Bounds(), s.hippo, s.hippo.Bounds(), table);
                 for (int i = 0; i < 4; ++i) {
                   const CRectangulo to = {i * 24, 4 + i * 6, i * 24 + 12 + 5 * i, 70 - i * 8};
                   DrawStretch(s.canvas, to, s.hippo, s.hippo.Bounds());
                 }
               })},
      {"Scaling", "StretchBitmap, enlarging",
       "24 and 32 bits alone: pixels are interpolated, the last column and row repeated.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 StretchBitmap(s.canvas, {5, 2, 95, 72}, s.hippo, s.hippo.Bounds(),
                               int(s.canvas.bpp), true, false);
               })},
      {"Scaling", "StretchBitmap, reducing",
       "The chart at less than half its size: each pixel is the mean of a block.",
       OnPhoto({&Stage::chart},
               [](Stage& s) {
                 StretchBitmap(s.canvas, {20, 22, 80, 52}, s.chart, s.chart.Bounds(),
                               int(s.canvas.bpp), true, false);
               })},
      {"Scaling", "StretchBitmap, clipped destination",
       "The rectangle of BltStrech above, one half outside: the source shrinks with it, the hippo "
       "keeps its shape.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 StretchBitmap(s.canvas, {50, 2, 150, 72}, s.hippo, s.hippo.Bounds(),
                               int(s.canvas.bpp), true, false);
               })},
      {"Scaling", "StretchBitmap, blocks that are too large",
       "A ramp from black to white at a twentieth of its size, enlarged. From a third on the sum "
       "of a "
       "block no longer fits into 16 bits and wraps. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface ramp(s.format, 240, 60), small(s.format, 12, 3);
                 DoGradient(ramp, 0x000000, kWhite);
                 StretchBitmap(small, small.Bounds(), ramp, ramp.Bounds(), int(s.canvas.bpp), true,
                               false);
                 if (s.canvas.bpp < 24) return;
                 BltStrech(s.canvas, {14, 10, 86, 30}, ramp, ramp.Bounds(), false);
                 BltStrech(s.canvas, {14, 35, 86, 65}, small, small.Bounds(), false);
               })},
      {"Scaling", "The three ways to scale",
       "Up and down: the nearest pixel; mixed neighbours, which skip pixels when they reduce; "
       "StretchBitmap, whose means do not.",
       OnShelf([](Shelf& shelf) {
         const Stage s(shelf.assets, Format::k24);
         HostSurface hippo = s.hippo, chart = s.chart;
         shelf.From("hippo", hippo);
         shelf.From("chart", chart);
         const char* const names[] = {"nearest", "smooth", "StretchBitmap"};
         for (HostSurface* source : {&hippo, &chart}) {
           const CRectangulo to =
               source == &hippo ? CRectangulo{0, 0, 108, 84} : CRectangulo{0, 0, 50, 25};
           for (int way = 0; way < 3; ++way) {
             HostSurface result(Format::k24, to.right, to.bottom);
             if (way == 2) {
               StretchBitmap(result, to, *source, source->Bounds(), 24, true, false);
             } else {
               BltStrech(result, to, *source, source->Bounds(), way == 1);
             }
             shelf.Add(names[way], result);
           }
         }
       })},
      {"Scaling", "DrawDouble",
       "Twice the size, 24 and 32 bits alone; cut at the border to whole pixels of the source.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 DrawDouble(s.canvas, s.hippo, {14, 10});
                 DrawDouble(s.canvas, s.hippo, {81, 61});
               })},
      {"Scaling", "DrawDouble, negative position",
       "The size is cut at the border, but drawing starts outside it with the first pixel: the "
       "hippo ends early on its right. Intended.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 DrawDouble(s.canvas, s.hippo, {-24, 10});
               })},

      // ------------------------------------------------------------------------------- Transforms
      {"Transforms", "FlipX", "The photograph, mirrored left to right in place.",
       OnPhoto({}, [](Stage& s) { FlipX(s.canvas); })},
      {"Transforms", "CreateRotated, quarter turns",
       "Modes 1 and 3, counter-clockwise and clockwise, and below them 5 and 7, mirrored top to "
       "bottom as well.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 for (const int mode : {1, 3, 5, 7}) {
                   HostSurface turned(s.format, s.hippo.height, s.hippo.width);
                   CreateRotated(turned, s.hippo, mode);
                   const auto x = static_cast<unsigned short>(mode & 2 ? 57 : 15);
                   const auto y = static_cast<unsigned short>(mode & 4 ? 38 : 1);
                   DrawBlock(s.canvas, turned, 0, 0, x, y, 28, 36);
                 }
               })},
      {"Transforms", "CreateRotated, modes 0 and 4",
       "The source as DrawBitmap draws it, its key counting; with 4 the whole is then mirrored.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 for (const int mode : {0, 4}) {
                   HostSurface copy(s.format, s.tree.width, s.tree.height);
                   IdxFillRect(copy, copy.Bounds(), s.canvas.Colour(kSky));
                   CreateRotated(copy, s.tree, mode);
                   DrawBlock(s.canvas, copy, 0, 0, mode == 0 ? 10 : 55, 2, 35, 72);
                 }
               })},
      {"Transforms", "CreateRotated, mode 2",
       "A copy that walks backwards through memory, from the last pixel of the hippo: half a turn. "
       "At 16 bits the bytes of each pixel are swapped on the way. Intended.",
       OnPhoto({&Stage::hippo},
               [](Stage& s) {
                 TSurfDesc last = s.hippo;
                 last.pixels += 27 * last.pitch + 35 * int(last.bpp / 8);
                 HostSurface turned(s.format, 36, 28);
                 CreateRotated(turned, last, 2);
                 DrawBlock(s.canvas, turned, 0, 0, 32, 23, 36, 28);
               })},
      {"Transforms", "TranslateRect",
       "Eight stripes from amount 9/32 to 23/32, one half being the photograph as it is. At 8 bits "
       "a table for each does the same with the nearest colours.",
       OnPhoto({},
               [](Stage& s) {
                 for (int i = 0; i < 8; ++i) {
                   const std::vector<unsigned char> table = ShiftTable(s.canvas, 32 * i - 112);
                   const int left = 2 + 12 * i;
                   TranslateRect(s.canvas, {left, 6, left + 12, 69}, float(2 * i + 9) / 32,
                                 table.data());
                 }
               })},
      {"Transforms", "TranslateRect, the whole range",
       "Amounts 0, 1/2 and 1. All but black: a negative shift is one step weaker than a positive "
       "one, so white becomes 1. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 for (int i = 0; i < 3; ++i) {
                   const std::vector<unsigned char> table = ShiftTable(s.canvas, 255 * i - 255);
                   const int left = 5 + 30 * i;
                   TranslateRect(s.canvas, {left, 10, left + 30, 65}, float(i) / 2, table.data());
                 }
               })},
      {"Transforms", "TranslateRect, alpha",
       "The fourth byte of 32-bit pixels is shifted like a colour; alpha bits of 16-bit pixels are "
       "kept. Intended.",
       OnShelf([](Shelf& shelf) {
         for (Format format : {Format::k1555, Format::k4444, Format::k32}) {
           HostSurface surface(format, 64, 32);
           IdxFillRect(surface, surface.Bounds(), 0x80000000 | kSky);
           shelf.From(FactsOf(format).name, AlphaOf(surface));
           TranslateRect(surface, {16, 8, 48, 24}, 0.75f, nullptr);
           shelf.Add(std::string(FactsOf(format).name) + ", alpha", AlphaOf(surface));
         }
       })},

      // -------------------------------------------------------------------- Mixing, masks and fades
      {"Mixing, masks and fades", "DrawMix, levels",
       "Eight stripes of the chart, each with more of it: the level counts in 256ths of the "
       "source. The photograph shines through.",
       OnMix(
           {&Stage::chart}, {{"levels", {}, "32, 60, 90, 120\n150, 180, 210, 240"}},
           [](Stage& s, Table table) {
             for (int i = 0; i < 8; ++i) {
               const auto level = static_cast<unsigned short>(i == 0 ? 32 : 30 + 30 * i);
               const int left = 2 + 12 * i;
               DrawMix(s.canvas, {left, 6, left + 12, 69}, level, s.chart, {14 + 12 * i, 0}, table);
             }
           })},
      {"Mixing, masks and fades", "DrawMix, levels 64, 128 and 192",
       "A quarter, a half, three quarters. Each stripe is 30 wide, so two pixels of a 16-bit row "
       "are left over: at 128 the leftovers of 555, 1555 and 4444 lose a bit and come out dark. "
       "Intended.",
       OnMix(
           {&Stage::chart}, {{"levels", {}, "64, 128, 192"}},
           [](Stage& s, Table table) {
             for (int i = 0; i < 3; ++i) {
               const auto level = static_cast<unsigned short>(64 * (i + 1));
               const int left = 2 + 33 * i;
               DrawMix(s.canvas, {left, 6, left + 30, 69}, level, s.chart, {14 + 33 * i, 0}, table);
             }
           })},
      {"Mixing, masks and fades", "DrawMix, levels from 256 on",
       "32 and 24 bits read the low byte only, so 256 draws nothing and 384 is a half. At 16 bits "
       "the three pixels left over at the right of each stripe read the whole level and overshoot; "
       "8 bits always do. Intended.",
       OnMix(
           {&Stage::chart}, {{"levels", {}, "256, 320, 384, 448"}},
           [](Stage& s, Table table) {
             for (int i = 0; i < 4; ++i) {
               const auto level = static_cast<unsigned short>(256 + 64 * i);
               const int left = 2 + 24 * i;
               DrawMix(s.canvas, {left, 6, left + 23, 69}, level, s.chart, {14 + 24 * i, 0}, table);
             }
           })},
      {"Mixing, masks and fades", "DrawMix, level 255 and alpha bits",
       "Opaque gold over a canvas without alpha: the alpha bits of mixed 16-bit pixels become 0, "
       "but at level 255 the first four pixels of each row are copied instead and keep theirs. "
       "Intended.",
       OnShelf([](Shelf& shelf) {
         for (Format format : {Format::k1555, Format::k4444}) {
           Stage s(shelf.assets, format);
           IdxFillRect(s.chart, s.chart.Bounds(), 0xFF000000 | kGold);
           if (shelf.inputs.empty()) {
             shelf.From("alpha of the source", AlphaOf(s.chart));
             IdxFillRect(s.canvas, s.canvas.Bounds(), kSky);
             shelf.From("alpha of the canvas", AlphaOf(s.canvas));
           }
           for (const int level : {200, 255}) {
             IdxFillRect(s.canvas, s.canvas.Bounds(), kSky);
             DrawMix(s.canvas, {10, 10, 90, 65}, uint16_t(level), s.chart, {0, 0}, nullptr);
             shelf.Add(
                 std::string(FactsOf(format).name) + ", level " + std::to_string(level) + ", alpha",
                 AlphaOf(s.canvas));
           }
         }
       })},
      {"Mixing, masks and fades", "DrawMix, 8-bit source",
       "An 8-bit source on every depth: its palette gives the colours, no index is transparent.",
       OnMix({&Stage::chart}, {{"levels", {}, "50, 100, 150, 200"}},
             [](Stage& s, Table table) {
               HostSurface chart = s.In(Format::k8).chart;
               for (int i = 0; i < 4; ++i) {
                 const auto level = static_cast<unsigned short>(50 * (i + 1));
                 const int left = 2 + 24 * i;
                 DrawMix(s.canvas, {left, 6, left + 24, 69}, level, chart, {14 + 24 * i, 0}, table);
               }
             })},
      {"Mixing, masks and fades", "DrawMix through an alpha surface",
       "A level for each pixel: where the alpha surface is white the chart is copied, where it is "
       "black the photograph stays, between they fade into each other.",
       OnMix({&Stage::chart}, {{"alpha surface", SoftDisc(), {}}},
             [](Stage& s, Table table) {
               HostSurface alpha = SoftDisc();
               DrawMix(s.canvas, {4, 6, 96, 69}, alpha, {4, 6}, s.chart, {16, 0}, table);
             })},
      {"Mixing, masks and fades", "DrawMix through an alpha surface, 8-bit source",
       "The same with the 8-bit chart and its palette.",
       OnMix({&Stage::chart}, {{"alpha surface", SoftDisc(), {}}},
             [](Stage& s, Table table) {
               HostSurface chart = s.In(Format::k8).chart, alpha = SoftDisc();
               DrawMix(s.canvas, {4, 6, 96, 69}, alpha, {4, 6}, chart, {16, 0}, table);
             })},
      {"Mixing, masks and fades", "DrawMix through an alpha surface, alpha bits",
       "Pixels under 0 keep theirs, mixed ones lose theirs. Pixels under 255 are copied with "
       "theirs, but only four at a time: the white inside has an edge in steps of four. Intended.",
       OnShelf([](Shelf& shelf) {
         HostSurface alpha = SoftDisc();
         shelf.From("alpha surface", alpha);
         for (Format format : {Format::k1555, Format::k4444}) {
           Stage s(shelf.assets, format);
           IdxFillRect(s.canvas, s.canvas.Bounds(), 0xFF000000 | kSky);
           HostSurface source = s.canvas;
           DrawMix(s.canvas, s.canvas.Bounds(), alpha, {0, 0}, source, {0, 0}, nullptr);
           shelf.Add(std::string(FactsOf(format).name) + ", alpha", AlphaOf(s.canvas));
         }
       })},
      {"Mixing, masks and fades", "DrawMix through an alpha surface and a level",
       "Each alpha byte is scaled by the level first, so the whole disc is fainter. The source "
       "point has equal coordinates; see the next entry. 8 bits draw nothing.",
       OnMix({&Stage::chart}, {{"alpha surface", SoftDisc(), {}}, {"level", {}, "160"}},
             [](Stage& s, Table) {
               HostSurface alpha = SoftDisc();
               DrawMix(s.canvas, {4, 6, 96, 69}, alpha, {4, 6}, s.chart, {1, 1}, 160);
             })},
      {"Mixing, masks and fades", "DrawMix through an alpha surface and a level, source point",
       "The source point is (60, 2). 16 bits begin there; 24 and 32 bits take its y for both "
       "coordinates and begin at (2, 2). Intended.",
       OnMix({&Stage::chart}, {{"alpha surface", SoftDisc(), {}}, {"level", {}, "256"}},
             [](Stage& s, Table) {
               HostSurface alpha = SoftDisc();
               DrawMix(s.canvas, {20, 8, 80, 68}, alpha, {20, 8}, s.chart, {60, 2}, 256);
             })},
      {"Mixing, masks and fades", "DrawMix over a background, through an alpha surface",
       "The tree is drawn first, with its key, then the chart through the disc.",
       OnMix({&Stage::tree, &Stage::chart}, {{"alpha surface", SoftDisc(), {}}},
             [](Stage& s, Table table) {
               HostSurface alpha = SoftDisc();
               DrawMix(s.canvas, {33, 8, 68, 72}, alpha, {20, 0}, s.chart, {40, 0}, s.tree, {0, 4},
                       table);
             })},
      {"Mixing, masks and fades", "DrawMix over a background, at one level",
       "The tree with its key, then the chart at 100 of 256 over both.",
       OnMix({&Stage::tree, &Stage::chart}, {{"level", {}, "100"}},
             [](Stage& s, Table table) {
               DrawMix(s.canvas, {33, 8, 68, 72}, 100, s.chart, {40, 0}, s.tree, {0, 4}, table);
             })},
      {"Mixing, masks and fades", "DrawMask",
       "One colour through a mask: a red spot that fades out.",
       OnMix({}, {{"mask", SoftDisc(), {}}},
             [](Stage& s, Table table) {
               HostSurface mask = SoftDisc();
               DrawMask(s.canvas, s.canvas.Bounds(), mask, {0, 0}, Packed(s.canvas, kRed), table);
             })},
      {"Mixing, masks and fades", "DrawMask, a picture as mask",
       "A 32-bit mask counts by its first byte, blue: where the chart is blue or white, gold paint "
       "covers the photograph. 8 bits want an 8-bit mask and draw nothing.",
       OnMix({&Stage::chart}, {},
             [](Stage& s, Table table) {
               HostSurface mask = s.In(Format::k32).chart;
               DrawMask(s.canvas, {4, 6, 96, 69}, mask, {16, 0}, Packed(s.canvas, kGold), table);
             })},
      {"Mixing, masks and fades", "MaskFillRect",
       "A tint in one colour at one level, here eight of them. 8 bits have a function of their "
       "own.",
       OnMix({}, {{"levels", {}, "24, 56, 88, 120\n152, 184, 216, 248"}},
             [](Stage& s, Table) {
               for (int i = 0; i < 8; ++i) {
                 const auto level = static_cast<unsigned short>(24 + 32 * i);
                 const int left = 2 + 12 * i;
                 MaskFillRect(s.canvas, {left, 6, left + 12, 69}, Packed(s.canvas, kRed), level);
               }
             })},
      {"Mixing, masks and fades", "MaskFillRect, levels from 256 on",
       "The low byte counts, as if the level were 0, 64, 128, 192; but the three pixels left over "
       "at the right of each 16-bit stripe read the whole level and overshoot. Intended.",
       OnMix({}, {{"levels", {}, "256, 320, 384, 448"}},
             [](Stage& s, Table) {
               for (int i = 0; i < 4; ++i) {
                 const auto level = static_cast<unsigned short>(256 + 64 * i);
                 const int left = 2 + 24 * i;
                 MaskFillRect(s.canvas, {left, 6, left + 23, 69}, Packed(s.canvas, kSky), level);
               }
             })},
      {"Mixing, masks and fades", "DrawBiMask",
       "Below 128 the mask darkens, above it lightens, but at 24 and 32 bits anything between "
       "none and full is a grey that does not depend on the picture. 16 bits draw nothing. "
       "Intended.",
       OnMix({}, {{"mask", RampField(), {}}, {"level", {}, "256"}},
             [](Stage& s, Table table) {
               HostSurface mask = RampField();
               DrawBiMask(s.canvas, 256, s.canvas.Bounds(), mask, {0, 0}, table);
             })},
      {"Mixing, masks and fades", "DrawBiMask, half strength",
       "Level 128: half the strength, so the greys stop in the middle, where full black and white "
       "would be. Intended.",
       OnMix({}, {{"mask", RampField(), {}}, {"level", {}, "128"}},
             [](Stage& s, Table table) {
               HostSurface mask = RampField();
               DrawBiMask(s.canvas, 128, s.canvas.Bounds(), mask, {0, 0}, table);
             })},
      {"Mixing, masks and fades", "OpenFader",
       "The chart, held for 21 pixels and then fading by 3 of 256 per pixel, until nothing of it "
       "is left. 8 bits draw nothing.",
       OnMix({&Stage::chart}, {{"start, step, hold", {}, "-1, 3, 20"}},
             [](Stage& s, Table) {
               OpenFader(s.canvas, {0, 6, 100, 69}, s.chart, {14, 0}, -1, 3, 20);
             })},
      {"Mixing, masks and fades", "OpenFader beyond zero",
       "The level falls as one word with a weight for each channel. Below zero it wraps to nearly "
       "full and borrows from the next byte: the picture comes back. Intended.",
       OnMix({&Stage::chart}, {{"start, step, hold", {}, "-1, 8, 0"}},
             [](Stage& s, Table) {
               OpenFader(s.canvas, {0, 6, 100, 69}, s.chart, {14, 0}, -1, 8, 0);
             })},
      {"Mixing, masks and fades", "OpenFader, start above zero",
       "Then the level begins at 0: the photograph for the first 31 pixels, and after the first "
       "step the wrapped level. Intended.",
       OnMix({&Stage::chart}, {{"start, step, hold", {}, "1, 3, 30"}},
             [](Stage& s, Table) {
               OpenFader(s.canvas, {0, 6, 100, 69}, s.chart, {14, 0}, 1, 3, 30);
             })},

      // ----------------------------------------------------------------------------- 8-bit mixing
      {"8-bit mixing", "pincel_build_mix_table",
       "What the table has for a slice of its keys, red rightwards, blue downwards, green in the "
       "middle: the nearest colours of the model palette; with dither each plane errs to the other "
       "side.",
       OnShelf([](Shelf& shelf) {
         for (const bool dither : {false, true}) {
           HostSurface cube(Format::k8, 64, 64);
           CreateModelPal(cube.Palette());
           cube.Palette()[252] = cube.Palette()[253] = cube.Palette()[254] =
               cube.Palette()[255] = {};
           static unsigned char table[2][65536];
           pincel_build_mix_table(table, cube.palette, dither);
           if (!dither) shelf.From("palette", Swatches(cube.Palette()));
           HostSurface planes[] = {cube, cube, cube};
           for (int y = 0; y < 64; ++y) {
             for (int x = 0; x < 64; ++x) {
               const int key = (x / 2) << 11 | 32 << 5 | y / 2;
               SetPixel(planes[0], x, y, table[0][key]);
               SetPixel(planes[1], x, y, table[1][key]);
               SetPixel(planes[2], x, y, table[(x + y + 1) % 2][key]);
             }
           }
           const std::string name = dither ? "dithered, " : "nearest, ";
           shelf.Add(name + "first plane", planes[0]);
           shelf.Add(name + "second plane", planes[1]);
           shelf.Add(name + "both", planes[2]);
         }
       })},
      {"8-bit mixing", "DrawMix_8Bits",
       "The stripes again. A palette made for the photograph needs no dither; the model palette, "
       "whose colours are far apart, gains from it.",
       OnIndexed({&Stage::chart}, {{"levels", {}, "32, 60, 90, 120\n150, 180, 210, 240"}},
                 [](Stage& s, Table table) {
                   for (int i = 0; i < 8; ++i) {
                     const auto level = static_cast<unsigned short>(i == 0 ? 32 : 30 + 30 * i);
                     const int left = 2 + 12 * i;
                     DrawMix_8Bits(s.canvas, {left, 6, left + 12, 69}, level, s.chart,
                                   {14 + 12 * i, 0}, table);
                   }
                 })},
      {"8-bit mixing", "DrawMix_8Bits through an alpha surface",
       "Where the alpha surface is 0 or 255 indices stay or are copied; only mixtures go through "
       "the table.",
       OnIndexed({&Stage::chart}, {{"alpha surface", SoftDisc(), {}}},
                 [](Stage& s, Table table) {
                   HostSurface alpha = SoftDisc();
                   DrawMix_8Bits(s.canvas, {4, 6, 96, 69}, alpha, {4, 6}, s.chart, {16, 0}, table);
                 })},
      {"8-bit mixing", "DrawMask_8Bits",
       "A red spot; unlike deeper surfaces, a mask byte of 255 leaves a trace of the photograph. "
       "Intended.",
       OnIndexed({}, {{"mask", SoftDisc(), {}}},
                 [](Stage& s, Table table) {
                   HostSurface mask = SoftDisc();
                   DrawMask_8Bits(s.canvas, s.canvas.Bounds(), mask, {0, 0}, kRed, table);
                 })},
      {"8-bit mixing", "MaskFillRect_8Bits",
       "A tint in red, and the photograph below it with red and blue exchanged. Level 0, the first "
       "stripe, is black instead of nothing. Intended.",
       OnIndexed({}, {{"colour and levels", {}, "red\n0, 64, 128, 192"}},
                 [](Stage& s, Table table) {
                   for (int i = 0; i < 4; ++i) {
                     const auto level = static_cast<unsigned short>(64 * i);
                     const int left = 2 + 24 * i;
                     MaskFillRect_8Bits(s.canvas, {left, 6, left + 24, 69}, kRed, level, table);
                   }
                 })},
      {"8-bit mixing", "DrawBiMask_8Bits",
       "The one two-sided mask that darkens and lightens the picture, with red and blue exchanged; "
       "only the first plane of the table is read, so dither is of no use. Intended.",
       OnIndexed({}, {{"mask", RampField(), {}}, {"level", {}, "256"}},
                 [](Stage& s, Table table) {
                   HostSurface mask = RampField();
                   DrawBiMask_8Bits(s.canvas, 256, s.canvas.Bounds(), mask, {0, 0}, table);
                 })},

      // ------------------------------------------------------------------------------ Blend modes
      {"Blend modes", "The seven modes, a source",
       "Without a key pixels of value 0 are transparent, so the black in the chart neither "
       "multiplies nor darkens; in 555, 1555 and 4444 black has alpha bits and is not 0. Intended.",
       SevenModes({},
                  [](Stage& s, const NamedMode& mode) {
                    HostSurface chart = Backdrop(s);
                    mode.source(s.canvas, s.canvas.Bounds(), chart, {0, 0});
                  })},
      {"Blend modes", "The seven modes, a colour through a mask",
       "Gold through the disc: none of it at 0, nearly all of the blend at 255. Add and subtract "
       "at 24 and 32 bits weigh with mask and colour together and wrap, which looks like noise. "
       "Intended.",
       SevenModes({{"mask", SoftDisc(), {}}},
                  [](Stage& s, const NamedMode& mode) {
                    HostSurface mask = SoftDisc();
                    mode.colour(s.canvas, s.canvas.Bounds(), kGold, mask, {0, 0});
                  })},
      {"Blend modes", "The seven modes, a source through a mask",
       "The chart through the disc; no pixel is transparent here, black ones darken. Add and "
       "subtract at 24 and 32 bits weigh with mask and source together and wrap. Intended.",
       SevenModes({{"mask", SoftDisc(), {}}},
                  [](Stage& s, const NamedMode& mode) {
                    HostSurface chart = Backdrop(s), mask = SoftDisc();
                    mode.masked(s.canvas, s.canvas.Bounds(), chart, {0, 0}, mask, {0, 0});
                  })},
      {"Blend modes", "DoMultiplica, keyed sprite",
       "A source with a key leaves out the pixels of that value, and only those. 8 bits draw "
       "nothing.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 DoMultiplica(s.canvas, {33, 2, 68, 74}, s.tree, {0, 0});
               })},
      {"Blend modes", "DoDarken, black without a key",
       "Black letters should darken everything, but without a key pixels of value 0 are "
       "transparent. Left as they are, right with a key that does not occur. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface letter(s.format, 40, 60);
                 IdxFillRect(letter, letter.Bounds(), 0xFF000000 | kWhite);
                 IdxFillRect(letter, {8, 8, 16, 52}, 0);
                 IdxFillRect(letter, {16, 44, 34, 52}, 0);
                 DoDarken(s.canvas, {6, 8, 46, 68}, letter, {0, 0});
                 letter.colorKey = 0x0123;
                 DoDarken(s.canvas, {54, 8, 94, 68}, letter, {0, 0});
               })},
      {"Blend modes", "The fourth byte of 32-bit pixels",
       "Alpha 192 on the canvas, 64 in the source: add, subtract, multiply and screen blend it "
       "like a channel, lighten, darken and overlay keep it. Intended.",
       OnShelf([](Shelf& shelf) {
         for (const NamedMode& mode : kModes) {
           HostSurface canvas(Format::k32, 64, 32), source(Format::k32, 32, 16);
           IdxFillRect(canvas, canvas.Bounds(), 0xC0000000 | kSky);
           IdxFillRect(source, source.Bounds(), 0x40000000 | kGold);
           if (shelf.inputs.empty()) {
             shelf.From("alpha of the canvas", AlphaOf(canvas));
             shelf.From("alpha of the source", AlphaOf(source));
           }
           mode.source(canvas, {16, 8, 48, 24}, source, {0, 0});
           shelf.Add(std::string(mode.name) + ", alpha", AlphaOf(canvas));
         }
       })},

      // ------------------------------------------------------------------ Tone, masks and shadows
      {"Tone, masks and shadows", "DoFactor",
       "The photograph at 128/256. At 8 bits it is the indices that are halved, which darkens grey "
       "pictures only. Intended.",
       OnPhoto({}, [](Stage& s) { DoFactor(s.canvas, 128); })},
      {"Tone, masks and shadows", "DoFactor, grey picture of 8 bits",
       "With a grey palette an index is its brightness: factors 64, 128, 192 and 255.",
       OnShelf([](Shelf& shelf) {
         const Stage s(shelf.assets, Format::k32);
         HostSurface grey = EmptyMask(s.canvas);
         for (int y = 0; y < grey.height; ++y) {
           for (int x = 0; x < grey.width; ++x) SetPixel(grey, x, y, s.canvas.Stored(x, y) >> 8);
         }
         shelf.From("green of the photograph", grey);
         for (unsigned short factor : {64, 128, 192, 255}) {
           HostSurface dark = grey;
           DoFactor(dark, factor);
           shelf.Add(std::to_string(factor), dark);
         }
       })},
      {"Tone, masks and shadows", "DoFactor, the fourth byte",
       "Alpha 255 at 32 bits, scaled by the height of the surface, whatever the factor: heights "
       "16, "
       "64 and 128. Intended.",
       OnShelf([](Shelf& shelf) {
         for (int height : {16, 64, 128}) {
           HostSurface surface(Format::k32, 32, height);
           IdxFillRect(surface, surface.Bounds(), 0xFF000000 | kSky);
           DoFactor(surface, 255);
           shelf.Add(std::to_string(height) + " high, alpha", AlphaOf(surface));
         }
       })},
      {"Tone, masks and shadows", "DoGradient",
       "A ramp from blue to gold. 16-bit formats show steps, their fields are cut; 8 bits are left "
       "as they are.",
       OnPhoto({}, [](Stage& s) { DoGradient(s.canvas, kSky, kGold); })},
      {"Tone, masks and shadows", "DoGradient, few columns",
       "From black towards white in 4 columns, each a quarter further: the last is a step short of "
       "white.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface ramp(s.format, 4, 1);
                 if (DoGradient(ramp, 0x000000, kWhite)) {
                   DrawStretch(s.canvas, {10, 10, 90, 65}, ramp, ramp.Bounds());
                 }
               })},
      {"Tone, masks and shadows", "CreateMask",
       "The tree without its background, level 256. There is no mask for 1555. Intended.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 HostSurface mask = EmptyMask(s.tree);
                 CreateMask(mask, s.tree, 256);
                 return mask;
               })},
      {"Tone, masks and shadows", "CreateMask without a key",
       "The chart, level 160. Pixels of value 0 count as transparent: the black in the chart, "
       "which at 555 and 4444 has alpha bits and is not 0. Intended.",
       OnPhoto({&Stage::chart},
               [](Stage& s) {
                 HostSurface mask = EmptyMask(s.chart);
                 CreateMask(mask, s.chart, 160);
                 return mask;
               })},
      {"Tone, masks and shadows", "A caption and its shadow",
       "CreateMask takes the shape of the letters, CreateShadow grows it to the lower right, "
       "DrawMask paints it, DrawBitmap puts the letters on top.",
       OnMix({}, {},
             [](Stage& s, Table table) {
               HostSurface letters = Caption(s.canvas, Format::k32);
               HostSurface mask = EmptyMask(letters), shadow = EmptyMask(letters);
               CreateMask(mask, letters, 256);
               CreateShadow(shadow, mask, 12, 200, 256);
               DrawMask(s.canvas, s.canvas.Bounds(), shadow, {0, 0}, Packed(s.canvas, kInk), table);
               HostSurface drawn = Caption(s.canvas, s.format);
               DrawBitmap(s.canvas, drawn);
             })},
      {"Tone, masks and shadows", "CreateShadow",
       "What grows out of the letters at decay 4, 16 and 40, with a limit of 128, and scaled by "
       "128 "
       "in the end.",
       OnShelf([](Shelf& shelf) {
         struct Growth {
           const char* name;
           unsigned char decay, limit;
           unsigned short factor;
         };
         Stage s(shelf.assets, Format::k32);
         HostSurface letters = Caption(s.canvas, Format::k32), mask = EmptyMask(letters);
         CreateMask(mask, letters, 256);
         shelf.From("mask", mask);
         for (const Growth& g : {Growth{"decay 4", 4, 255, 256},
                                 {"decay 16", 16, 255, 256},
                                 {"decay 40", 40, 255, 256},
                                 {"limit 128", 4, 128, 256},
                                 {"factor 128", 4, 255, 128}}) {
           HostSurface shadow = EmptyMask(letters);
           CreateShadow(shadow, mask, g.decay, g.limit, g.factor);
           shelf.Add(g.name, shadow);
         }
       })},
      {"Tone, masks and shadows", "CreateShadow, sources of every format",
       "The letters themselves instead of a mask: their highest channel counts, at 32 bits the "
       "first byte, at 8 bits the index. 1555 gets none. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface letters(s.format, 100, 75);
                 if (s.format == Format::k8) letters.UsePaletteOf(s.canvas);
                 Write(letters, {9, 12}, "PINC", 0xF8F8F8, 5);
                 Write(letters, {9, 42}, "EL:)", 0xF8F8F8, 5);
                 HostSurface shadow = EmptyMask(letters);
                 CreateShadow(shadow, letters, 6, 255, 256);
                 return shadow;
               })},
      {"Tone, masks and shadows", "CreateShadow, 32 bits",
       "A source of 32 bits onto a shadow of 32 bits: the value in the first three bytes, the "
       "fourth "
       "is kept.",
       OnShelf([](Shelf& shelf) {
         HostSurface letters(Format::k32, 100, 75), shadow(Format::k32, 100, 75);
         Write(letters, {9, 25}, "PINC", kWhite, 5);
         IdxFillRect(shadow, shadow.Bounds(), 0xFF000000);
         shelf.From("source", letters);
         CreateShadow(shadow, letters, 6, 200, 256);
         shelf.Add("shadow", shadow);
       })},

      // ---------------------------------------------------------------------------------- Filters
      {"Filters", "DoSuavizado",
       "The mean of three by three pixels, twice. Alpha bits count as red, so that 1555 and 4444 "
       "turn red where they are set; 8 bits are not filtered. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 DoSuavizado(s.canvas, scratch);
                 DoSuavizado(s.canvas, scratch);
               })},
      {"Filters", "DoEmboss",
       "A relief on a grey of 127. 16-bit fields are filtered as they are and hold less than that: "
       "white, but for edges of the alpha of 4444. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 DoEmboss(s.canvas, scratch);
               })},
      {"Filters", "DoRealce", "Nine times the pixel minus its neighbours.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 DoRealce(s.canvas, scratch);
               })},
      {"Filters", "FiltroMask, all 24 kernels",
       "Reliefs, edges, sharpening, a blur, a shift and a bias. Number 23 is refused.",
       OnShelf([](Shelf& shelf) {
         const Stage s(shelf.assets, Format::k24);
         shelf.From("canvas before", s.canvas);
         for (int number = 0; number < 24; ++number) {
           HostSurface filtered = s.canvas, scratch = s.canvas;
           const bool done = FiltroMask(filtered, scratch, number);
           shelf.Add(std::to_string(number) + (done ? "" : ", false"), filtered);
         }
       })},
      {"Filters", "FiltroMask in every format",
       "Number 8, sharpening over five by five pixels. 8 bits are not filtered.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 FiltroMask(s.canvas, scratch, 8);
               })},
      {"Filters", "FiltroMask, bias",
       "Number 18 adds 140 to bytes, but also to fields of five bits, and twice that to green: "
       "white. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 FiltroMask(s.canvas, scratch, 18);
               })},
      {"Filters", "DoConvolucion",
       "Taps of one's own: sixteen pixels along a falling line, each with the same weight.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 int weights[16];
                 long offsets[16];
                 for (int i = 0; i < 16; ++i) {
                   weights[i] = 1;
                   offsets[i] = (i - 8) * int(s.canvas.bpp / 8) + (i - 8) / 4 * s.canvas.pitch;
                 }
                 DoConvolucion(s.canvas, scratch, 16, weights, offsets, 16, 0);
               })},
      {"Filters", "DoConvolucion at the edges",
       "One tap, thirty pixels to the left: left of a row lies the end of the row above. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface scratch = s.canvas;
                 int weight = 1;
                 long offset = -30 * int(s.canvas.bpp / 8);
                 DoConvolucion(s.canvas, scratch, 1, &weight, &offset, 1, 0);
               })},

      // ------------------------------------------------------------------------ Directional blurs
      {"Directional blurs", "FiltroMotionBlur",
       "Letters as a mask, smeared over 24 positions, in gold. 8 bits draw nothing.",
       OnMix({}, {{"mask", BlueOf(Strokes(Format::k8, 100, 75)), {}}},
             [](Stage& s, Table) {
               HostSurface mask = Deep(Strokes(Format::k8, 100, 75));
               const uint32_t gold = Packed(s.canvas, kGold);
               FiltroMotionBlur(s.canvas, mask, s.canvas.Bounds(), {0, 0}, gold, 24, 0.5F);
             })},
      {"Directional blurs", "FiltroMotionBlur, eight directions",
       "An eighth of a turn from picture to picture: a line is the same both ways, but for one "
       "position at its end.",
       OnShelf([](Shelf& shelf) {
         HostSurface mask = Deep(Strokes(Format::k8, 100, 75));
         shelf.From("mask", mask);
         for (int i = 0; i < 8; ++i) {
           Stage s(shelf.assets, Format::k24);
           const float angle = 0.78539816F * float(i);
           FiltroMotionBlur(s.canvas, mask, s.canvas.Bounds(), {0, 0}, kWhite, 16, angle);
           shelf.Add(std::to_string(45 * i) + " degrees", s.canvas);
         }
       })},
      {"Directional blurs", "FiltroMotionBlur, mask of 8 bits",
       "The mask and the angle of the first picture, but 8 bits: positions that begin in another "
       "row of the mask paint nothing. Intended.",
       OnMix({}, {{"mask", BlueOf(Strokes(Format::k8, 100, 75)), {}}},
             [](Stage& s, Table) {
               HostSurface mask = Strokes(Format::k8, 100, 75);
               const uint32_t gold = Packed(s.canvas, kGold);
               FiltroMotionBlur(s.canvas, mask, s.canvas.Bounds(), {0, 0}, gold, 24, 0.5F);
             })},
      {"Directional blurs", "FiltroBrilloBlur",
       "A glow to both sides of the letters, which fades with the distance.",
       OnMix({}, {{"mask", BlueOf(Strokes(Format::k8, 100, 75)), {}}},
             [](Stage& s, Table) {
               HostSurface mask = Strokes(Format::k8, 100, 75);
               const uint32_t gold = Packed(s.canvas, kGold);
               FiltroBrilloBlur(s.canvas, mask, s.canvas.Bounds(), {0, 0}, gold, 24, 0);
             })},
      {"Directional blurs", "FiltroMotionMask",
       "White through a soft mask, once. White is 0xFFFFFF everywhere: at 16 bits its low half.",
       OnMix({}, {{"mask", SoftDisc(), {}}},
             [](Stage& s, Table) {
               HostSurface mask = SoftDisc();
               FiltroMotionMask(s.canvas, mask, s.canvas.Bounds(), {0, 0}, 256);
             })},
      {"Directional blurs", "A caption with shadow, glow and trail",
       "CreateMask takes the letters' shape, CreateShadow grows their shadow, FiltroMotionBlur "
       "draws the trail and FiltroBrilloBlur the glow; the letters come last.",
       OnMix({}, {},
             [](Stage& s, Table table) {
               HostSurface letters = Caption(s.canvas, s.format), shape = EmptyMask(s.canvas);
               HostSurface plain = Caption(s.canvas, Format::k32);
               CreateMask(shape, plain, 256);
               HostSurface shadow = EmptyMask(shape), deep = Deep(shape);
               CreateShadow(shadow, shape, 16, 200, 256);
               const CRectangulo all = s.canvas.Bounds();
               DrawMask(s.canvas, all, shadow, {0, 0}, Packed(s.canvas, kInk), table);
               FiltroMotionBlur(s.canvas, deep, all, {-9, 0}, Packed(s.canvas, kSky), 20, 0);
               FiltroBrilloBlur(s.canvas, deep, all, {0, 0}, Packed(s.canvas, kWhite), 8, 0.78F);
               FiltroBrilloBlur(s.canvas, deep, all, {0, 0}, Packed(s.canvas, kWhite), 8, 2.36F);
               DrawBitmap(s.canvas, letters);
             })},

      // ---------------------------------------------------------------------------- Anti-aliasing
      {"Anti-aliasing", "DoAntiAlias",
       "Strokes without grey, softened; shown is the blue of each pixel, which holds the value. 8 "
       "bits are left as they are.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface strokes = Strokes(s.format, 100, 75);
                 DoAntiAlias(strokes, strokes.Bounds(), strokes, 256);
                 return BlueOf(strokes);
               })},
      {"Anti-aliasing", "DoAntiAlias2",
       "By a cross, and only pixels that are set: corners are taken off.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface strokes = Strokes(s.format, 100, 75);
                 DoAntiAlias2(strokes, strokes.Bounds(), strokes, 256);
                 return BlueOf(strokes);
               })},
      {"Anti-aliasing", "DoAntiAlias2, higher than wide",
       "As many rows are copied as the image has columns, the others read as 0 and become 0. "
       "Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface strokes(s.format, 50, 75);
                 HostSurface wide = Strokes(s.format, 100, 75);
                 DrawBlock(strokes, wide, 20, 0, 0, 0, 50, 75);
                 if (s.format == Format::k8) strokes.UsePaletteOf(wide);
                 DoAntiAlias2(strokes, strokes.Bounds(), strokes, 256);
                 return BlueOf(strokes);
               })},
      {"Anti-aliasing", "One pixel past the row",
       "A bar from edge to edge, ten times as large. Rows 2 to 6 are processed, each from its "
       "second pixel to the first pixel of the next row. Intended.",
       OnShelf([](Shelf& shelf) {
         HostSurface bar(Format::k32, 12, 9);
         IdxFillRect(bar, {0, 1, 12, 8}, 0xFF000060);
         const auto magnified = [](HostSurface& small) {
           HostSurface large(Format::k32, 120, 90);
           BltStrech(large, large.Bounds(), small, small.Bounds(), false);
           return BlueOf(large);
         };
         shelf.From("before", magnified(bar));
         DoAntiAlias(bar, bar.Bounds(), bar, 256);
         shelf.Add("DoAntiAlias", magnified(bar));
       })},
      {"Anti-aliasing", "DoAntiAliasBMP",
       "Codes of the edges: a bit for each of six neighbours above a threshold that falls along "
       "the "
       "image. Five of them are codes already, small numbers that count below only. Intended.",
       OnShelf([](Shelf& shelf) {
         const HostSurface strokes = Strokes(Format::k8, 100, 75);
         shelf.From("coverage", BlueOf(strokes));
         for (int level : {256, 128}) {
           HostSurface codes = strokes;
           DoAntiAliasBMP(codes, static_cast<unsigned short>(level));
           shelf.Add("level " + std::to_string(level), BlueOf(codes));
         }
       })},

      // ------------------------------------------------------------------------------- Flood fill
      {"Flood fill", "Rellena",
       "The paper inside the outline, filled from one point. 8-bit surfaces are not painted.",
       OnPaper({},
               [](Stage& s) {
                 const CPunto star[] = {{50, 6},  {60, 28}, {88, 30}, {66, 46}, {74, 70}, {50, 56},
                                        {26, 70}, {34, 46}, {12, 30}, {40, 28}, {50, 6}};
                 for (int i = 0; i < 10; ++i) {
                   Line(s.canvas, star[i], star[i + 1], kInk, 255, false, 2);
                 }
                 Rellena(s.canvas, s.work, 50, 40, 24, kPaper, kGold);
               })},
      {"Flood fill", "Rellena, tolerance",
       "The ground below the hippo, from the bottom left corner, with tolerances 60, 180 and 260.",
       OnPaper({&Stage::hippo},
               [](Stage& s) {
                 int x = 0;
                 for (unsigned long tolerance : {60UL, 180UL, 260UL}) {
                   HostSurface picture = s.hippo, work(Format::k8, 36, 28);
                   Rellena(picture, work, 0, 27, tolerance, kWhite, kRed);
                   DrawBlock(s.canvas, picture, 0, 0, static_cast<unsigned short>(x), 20, 32, 28);
                   x += 34;
                 }
               })},
      {"Flood fill", "Rellena, one-sided comparison",
       "Two ramps around mid-grey, reference mid-grey, tolerance 120: darker neighbours are "
       "similar, brighter ones never are. Intended.",
       OnPaper({},
               [](Stage& s) {
                 for (int x = 0; x < 100; ++x) {
                   const uint32_t grey = uint32_t(64 + x * 128 / 99);
                   IdxFillRect(s.canvas, {x, 10, x + 1, 65}, s.canvas.Colour(grey * 0x010101));
                 }
                 Rellena(s.canvas, s.work, 49, 40, 120, 0x808080, kRed);
               })},
      {"Flood fill", "Rellena, the visited mask",
       "What the work surface keeps: bits 1 up, 2 down, 4 right and 8 left of similar neighbours, "
       "here times sixteen. Clear it before the next fill.",
       OnPhoto({},
               [](Stage& s) {
                 Rellena(s.canvas, s.work, 20, 40, 240, 0xFFF0E0, kRed);
                 HostSurface mask = s.work;
                 CreateGreyPal(mask.Palette());
                 for (TRGBA& entry : mask.Palette()) {
                   entry.red = entry.green = entry.blue = uint8_t(entry.blue * 16);
                 }
                 return mask;
               })},

      // ---------------------------------------------------------------------- Pixels and palettes
      {"Pixels and palettes", "Width, Height, ScanWidth, Size, Transp",
       "The fields of the descriptor, here of the sprite.",
       OnPhoto({&Stage::tree},
               [](Stage& s) {
                 const CSize size = Size(s.tree);
                 return "Width " + std::to_string(Width(s.tree)) +  //
                        "\nHeight " + std::to_string(Height(s.tree)) + "\nScanWidth " +
                        std::to_string(ScanWidth(s.tree)) + "\nSize " + std::to_string(size.width) +
                        " x " + std::to_string(size.height) + "\nTransp " + Text(Transp(s.tree));
               })},
      {"Pixels and palettes", "GetPixel",
       "The picture as GetPixel reports it. 8 and 32 bits report the pixel; 24 bits always 0; "
       "the 16-bit formats the surface's width as a colour. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 HostSurface report(Format::k32, s.canvas.width, s.canvas.height);
                 for (int y = 0; y < report.height; ++y) {
                   for (int x = 0; x < report.width; ++x) {
                     auto colour = uint32_t(GetPixel(s.canvas, x, y));
                     if (s.format == Format::k8) colour = s.canvas.Display(int(x), y);
                     IdxFillRect(report, {x, y, x + 1, y + 1}, colour | 0xFF000000);
                   }
                 }
                 return report;
               })},
      {"Pixels and palettes", "SetPixel",
       "A pattern of single pixels. 32-bit surfaces are left unchanged. Intended.",
       OnPhoto({},
               [](Stage& s) {
                 const uint32_t colour = s.format == Format::k8 ? s.canvas.Colour(kGold) : kGold;
                 for (int y = 5; y < 70; ++y) {
                   for (int x = 5; x < 95; ++x) {
                     if ((x * x + y * y) / 16 % 8 == 0) SetPixel(s.canvas, x, y, colour);
                   }
                 }
               })},
      {"Pixels and palettes", "CreateModelPal, CreateGreyPal, CreateTruncPal, lu_gPaleta",
       "The palettes that the library builds: a cube of 6 x 7 x 6 colours, a grey ramp, 3-3-2. "
       "lu_gPaleta is the cube; its last four entries stay as they are.",
       OnShelf([](Shelf& shelf) {
         TRGBA palette[256] = {};
         CreateModelPal(palette);
         shelf.Add("CreateModelPal", Swatches(palette));
         CreateGreyPal(palette);
         shelf.Add("CreateGreyPal", Swatches(palette));
         CreateTruncPal(palette);
         shelf.Add("CreateTruncPal", Swatches(palette));
         shelf.Add("lu_gPaleta", Swatches(lu_gPaleta));
       })},
      {"Pixels and palettes", "InitializeDLL",
       "Runs by itself when the library is loaded; called again it rebuilds lu_gPaleta, here after "
       "the host has painted it over. Entries 252 to 255 are the host's and stay.",
       OnShelf([](Shelf& shelf) {
         for (TRGBA& entry : lu_gPaleta) entry = {0x20, 0x60, 0xE0, 0};
         shelf.Add("overwritten by the host", Swatches(lu_gPaleta));
         InitializeDLL();
         shelf.Add("after InitializeDLL", Swatches(lu_gPaleta));
         for (int i = 252; i < 256; ++i) lu_gPaleta[i] = {};
       })},
  };
  return operations;
}
