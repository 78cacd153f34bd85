#include "tests/exports/exported_functions.h"

#include <algorithm>

#include "tests/support/files.h"

namespace exported {
namespace {

// Some functions look at the bytes before and behind a surface; and those that do not check the
// format write pixels of up to four bytes, whatever the surface has.
constexpr size_t kMargin = 1024;

const std::vector<uint8_t>& FileFor(const std::string& function) {
  static const std::string folder = PINCEL_SOURCE_DIR "/examples/assets/";
  static const std::vector<uint8_t> bmp = support::BytesOf(folder + "bmp/bmpsuite-pal8.bmp");
  static const std::vector<uint8_t> gif = support::BytesOf(folder + "gif/pillow-hopper.gif");
  static const std::vector<uint8_t> jpg = support::BytesOf(folder + "jpg/wuffs-hippopotamus.jpg");
  // The additions refuse images that are larger than the surface.
  static const std::vector<uint8_t> small_bmp =
      support::BytesOf(folder + "bmp/imagers-Info_8_Bit_Top_Down.bmp");
  static const std::vector<uint8_t> small_gif =
      support::BytesOf(folder + "gif/gifconf-static_4x4_red.gif");
  static const std::vector<uint8_t> small_jpg =
      support::BytesOf(folder + "jpg/jpegdec-jpg-size-15x15.jpg");
  if (function.find("_bmp") != std::string::npos) return small_bmp;
  if (function.find("_gif") != std::string::npos) return small_gif;
  if (function.find("_jpg") != std::string::npos) return small_jpg;
  if (function.find("GIF") != std::string::npos) return gif;
  return function.find("JPG") != std::string::npos ? jpg : bmp;
}

template <class T>
void Append(std::vector<uint8_t>& bytes, const T& value) {
  const auto* const from = reinterpret_cast<const uint8_t*>(&value);
  bytes.insert(bytes.end(), from, from + sizeof(T));
}

template <class Cpp, class Plain>
Function Listed(int ordinal, const char* name, const char* plain_name, const char* itanium_name,
                const char* msvc_name, Cpp cpp, Plain plain) {
  return {
      ordinal, name, plain_name, itanium_name, msvc_name, MakeCallable(cpp), MakeCallable(plain)};
}

// The two planes that 8-bit mixing looks colours up in.
unsigned char (*MixTable())[65536] {
  static unsigned char table[2][65536];
  static const bool built = (pincel_build_mix_table(table, lu_gPaleta, 1), true);
  (void)built;
  return table;
}

}  // namespace

Arguments::Arguments(const std::string& function, const Format& dst, const Format& others)
    : table(MixTable()), file(FileFor(function)) {
  for (uint32_t i = 0; i < surfaces_.size(); ++i) Fill(surfaces_[i], i == 0 ? dst : others, i);
  if (function.find("GIF") != std::string::npos) {
    TSurfDesc screen{};
    LoadInfoGIF(screen, file.data(), gif, frame);
    decoded_.resize(size_t(screen.width) * size_t(screen.height));
    frame.output = decoded_.data();
    if (function != "CQXGIF::NextImage") gif.NextImage();
    gif.codeSize = 9;
  }
  if (function == "pincel_build_mix_table") {
    built_.resize(2 * 65536);
    table = reinterpret_cast<unsigned char(*)[65536]>(built_.data());
    CreateTruncPal(palette);
  }
  // A length has the type of a colour.
  if (function.find("pincel_") == 0) colours_[0] = file.size();
  if (function == "pincel_load_gif") pincel_gif_frame(gif_frame, file.data(), file.size());
  if (function == "DrawBlock") level = 3;      // position and size
  if (function == "Convert") colours_[0] = 3;  // mode
  if (function == "StretchBitmap") number = int(dst.bpp);
  if (function.find("Filtro") == 0) points_[0].y = 0;  // the mask's first row: others do not count
  if (function == "Rellena") {
    colours_[0] = 600;  // tolerance
    std::fill(surfaces_[1].bytes.begin(), surfaces_[1].bytes.end(), uint8_t{0});
  }
}

void Arguments::Fill(Picture& picture, const Format& format, uint32_t seed) {
  const size_t bytes = 4 * kWidth * kHeight;
  picture.bytes.resize(kMargin + bytes + kMargin);
  for (uint8_t& byte : picture.bytes) {
    seed = seed * 1664525 + 1013904223;
    byte = uint8_t(seed >> 24);
  }
  CreateTruncPal(picture.palette);
  picture.desc.width = kWidth;
  picture.desc.height = kHeight;
  picture.desc.bpp = format.bpp;
  picture.desc.rMask = format.red;
  picture.desc.aMask = format.alpha;
  picture.desc.colorKey = 0x12;
  picture.desc.pitch = (kWidth * int(format.bpp / 8) + 3) & ~3;
  picture.desc.pixels = picture.bytes.data() + kMargin;
  picture.desc.palette = picture.palette;
}

void Arguments::UseDestinationAsSource(bool in_place, size_t except) {
  for (size_t i = 1; i < surfaces_.size(); ++i) {
    if (i == except) continue;
    surfaces_[i].bytes = surfaces_[0].bytes;
    surfaces_[i].desc = surfaces_[0].desc;
    if (!in_place) surfaces_[i].desc.pixels = surfaces_[i].bytes.data() + kMargin;
  }
  for (CPunto& point : points_) point = {rectangles_[0].left, rectangles_[0].top};
}

void Arguments::TakePalettesAway() {
  for (Picture& picture : surfaces_) picture.desc.palette = nullptr;
}

std::vector<uint8_t> Arguments::State() const {
  std::vector<uint8_t> state;
  for (const Picture& picture : surfaces_) {
    state.insert(state.end(), picture.bytes.begin(), picture.bytes.end());
    // Up to the padding before the addresses.
    const auto* const desc = reinterpret_cast<const uint8_t*>(&picture.desc);
    state.insert(state.end(), desc, desc + offsetof(TSurfDesc, pitch) + sizeof(picture.desc.pitch));
    Append(state, picture.palette);
  }
  state.insert(state.end(), decoded_.begin(), decoded_.end());
  state.insert(state.end(), built_.begin(), built_.end());
  Append(state, frame.width);
  Append(state, frame.height);
  Append(state, frame.palette);
  Append(state, gif.cursor == nullptr ? ptrdiff_t{-1} : gif.cursor - file.data());
  Append(state, gif.bitCount);
  Append(state, gif.bitByte);
  Append(state, gif_frame);
  Append(state, size);
  Append(state, palette);
  Append(state, lu_gPaleta);
  return state;
}

const std::vector<Function>& AllFunctions() {
  static const std::vector<Function> functions = {
#include "tests/exports/export_list.inc"
  };
  return functions;
}

}  // namespace exported
