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

}  // namespace

unsigned char (*MixTable())[65536] {
  static unsigned char table[2][65536];
  static const bool built = (pincel_build_mix_table(table, lu_gPaleta, 1), true);
  (void)built;
  return table;
}

Arguments::Arguments(const std::string& function, const Format& dst, const Format& others)
    : file(FileFor(function)) {
  for (uint32_t i = 0; i < surfaces_.size(); ++i) Fill(surfaces_[i], i == 0 ? dst : others, i);
  if (function.find("GIF") != std::string::npos) {
    TSurfDesc screen{};
    LoadInfoGIF(screen, file.data(), gif, frame);
    decoded_.resize(size_t(screen.width) * size_t(screen.height));
    frame.output = decoded_.data();
    if (function != "CQXGIF::NextImage") gif.NextImage();
    gif.codeSize = 9;
  }
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
  Append(state, frame.width);
  Append(state, frame.height);
  Append(state, frame.palette);
  Append(state, gif.cursor == nullptr ? ptrdiff_t{-1} : gif.cursor - file.data());
  Append(state, gif.bitCount);
  Append(state, gif.bitByte);
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
