// Image files in memory into surfaces. The pictures are a photograph and flat art, made here; what
// the GIF and the run-length coded files hold of the photograph is dithered to a palette.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <utility>

#include "bench/peers.h"
#include "tests/support/bmp_writer.h"
#include "tests/support/gif_writer.h"
#include "tests/support/libjpeg.h"

#if PINCEL_BENCH_GIFLIB
#include <gif_lib.h>
#endif
#if PINCEL_BENCH_STB
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_BMP
#define STBI_ONLY_GIF
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#include <stb/stb_image.h>
#endif

namespace bench {
namespace {

using File = std::vector<uint8_t>;
using FilePointer = std::shared_ptr<const File>;

constexpr int kPictureSizes[] = {256, 1024};

// --- pictures ---

Surface Photograph(int size) {
  Surface photo(Format::k24, size, size);
  Random random(1);
  FillPhoto(photo, random);
  return photo;
}

// Six levels each of red, green and blue; the nearest is taken, and what it misses goes to the
// neighbours that are still to come, by the weights of Floyd and Steinberg.
constexpr int kLevels = 6, kStep = 255 / (kLevels - 1);
File Dithered(int size) {
  const Surface photo = Photograph(size);
  File indices(size_t(size) * size_t(size));
  std::vector<std::array<int, 3>> missed(size_t(size) + 2), below(size_t(size) + 2);
  for (int y = 0; y < size; ++y) {
    below.assign(below.size(), {});
    for (int x = 0; x < size; ++x) {
      const uint8_t* const pixel = photo.pixels() + (ptrdiff_t{y} * size + x) * 3;
      const size_t at = size_t(x) + 1;
      int index = 0;
      for (size_t c = 0; c < 3; ++c) {
        const int wanted = std::clamp(pixel[c] + missed[at][c] / 16, 0, 255);
        const int level = (wanted + kStep / 2) / kStep;
        const int error = wanted - level * kStep;
        index = index * kLevels + level;
        missed[at + 1][c] += 7 * error;
        below[at - 1][c] += 3 * error;
        below[at][c] += 5 * error;
        below[at + 1][c] += error;
      }
      indices[size_t(y) * size_t(size) + size_t(x)] = uint8_t(index);
    }
    std::swap(missed, below);
  }
  return indices;
}

// Filled shapes, one on the other, with thin outlines.
File FlatArt(int size) {
  Surface art(Format::k8, size, size);
  Random random(2);
  const auto coordinate = [&] { return int(random() % unsigned(size)); };
  for (int i = 0; i < 60; ++i) {
    const int x = coordinate(), y = coordinate(), w = coordinate() / 3, h = coordinate() / 3;
    IdxFillRect(art.desc, {x, y, x + w, y + h}, random() % 24);
    FrameBR(art.desc, {x, y, x + w, y + h}, 3);
  }
  return {art.pixels(), art.pixels() + art.buffer.size()};
}

std::vector<TRGBA> Colours() {
  std::vector<TRGBA> colours(256);
  for (int i = 0; i < kLevels * kLevels * kLevels; ++i) {
    const auto level = [&](int divisor) { return uint8_t(i / divisor % kLevels * kStep); };
    colours[size_t(i)] = {level(kLevels * kLevels), level(kLevels), level(1), 0};
  }
  return colours;
}

// --- files ---

File BmpOf(const File& pixels, int size, int bits) {
  support::BmpFile file;
  file.width = size;
  file.height = size;
  file.bits = uint16_t(bits);
  if (bits == 8) file.table = Colours();
  file.pixels = pixels;
  File bytes = file.Bytes();
  bytes.resize(bytes.size() + 16);  // loaders look at the byte behind a row
  return bytes;
}

// Runs of three and more as runs, what is between them as literals.
File RunLengthOf(const File& indices, int size) {
  support::RunLengthStream stream;
  for (int y = 0; y < size; ++y) {
    const uint8_t* const row = indices.data() + ptrdiff_t{y} * size;
    const auto run_at = [&](int x) {
      int end = x;
      while (end < size && row[end] == row[x] && end - x < 255) ++end;
      return end - x;
    };
    for (int x = 0; x < size;) {
      int literals = 0;
      while (x + literals < size && literals < 255 && run_at(x + literals) < 3) ++literals;
      if (literals >= 3) {
        stream.Literal({row + x, row + x + literals});
        x += literals;
      } else {
        const int count = run_at(x);
        stream.Run(count, row[x]);
        x += count;
      }
    }
    stream.EndOfLine();
  }
  stream.EndOfBitmap();
  support::BmpFile file;
  file.width = size;
  file.height = size;
  file.compression = 1;
  file.table = Colours();
  file.pixels = stream.Bytes();
  return file.Bytes();
}

File GifOf(const File& indices, int size) {
  support::GifImage image;
  image.width = image.height = size;
  image.root_bits = 8;
  image.data = support::SubBlocks(support::Compressed(indices, 8).Bytes());
  support::GifFile file;
  file.width = file.height = size;
  file.table.exponent = 7;
  for (const TRGBA& c : Colours()) {
    file.table.rgb.insert(file.table.rgb.end(), {c.red, c.green, c.blue});
  }
  file.images = {image};
  return file.Bytes();
}

File JpegOf(int size) {
  const Surface photo = Photograph(size);
  File samples(photo.pixels(), photo.pixels() + photo.buffer.size());
  for (size_t i = 0; i < samples.size(); i += 3) std::swap(samples[i], samples[i + 2]);
  return support::JpegFile(size, size, samples);
}

File Bytes24(int size) {
  const Surface photo = Photograph(size);
  return {photo.pixels(), photo.pixels() + photo.buffer.size()};
}

enum class Kind { kBmp24, kBmp8, kRunsFlat, kRunsPhoto, kGifFlat, kGifPhoto, kJpeg };
constexpr const char* kNames[] = {"load BMP 24",        "load BMP 8",    "load BMP RLE flat",
                                  "load BMP RLE photo", "load GIF flat", "load GIF photo",
                                  "load JPEG"};

// Made once.
FilePointer FileOf(Kind kind, int size) {
  static std::map<std::pair<Kind, int>, FilePointer> made;
  FilePointer& file = made[{kind, size}];
  if (file != nullptr) return file;
  switch (kind) {
    case Kind::kBmp24:
      return file = std::make_shared<File>(BmpOf(Bytes24(size), size, 24));
    case Kind::kBmp8:
      return file = std::make_shared<File>(BmpOf(Dithered(size), size, 8));
    case Kind::kRunsFlat:
      return file = std::make_shared<File>(RunLengthOf(FlatArt(size), size));
    case Kind::kRunsPhoto:
      return file = std::make_shared<File>(RunLengthOf(Dithered(size), size));
    case Kind::kGifFlat:
      return file = std::make_shared<File>(GifOf(FlatArt(size), size));
    case Kind::kGifPhoto:
      return file = std::make_shared<File>(GifOf(Dithered(size), size));
    case Kind::kJpeg:
      return file = std::make_shared<File>(JpegOf(size));
  }
  return nullptr;
}

// --- the library ---

bool Load(Kind kind, TSurfDesc& surface, const File& file) {
  uint8_t* const data = const_cast<uint8_t*>(file.data());
  switch (kind) {
    case Kind::kGifFlat:
    case Kind::kGifPhoto: {
      CQXGIF gif;
      RAW frame;
      TSurfDesc info{};
      return LoadInfoGIF(info, data, gif, frame) && LoadGIFNext(surface, data, gif, frame) &&
             LoadGIF(surface, data, gif, frame);
    }
    case Kind::kJpeg:
      return LoadJPG(surface, data, long(file.size()));
    default:
      return LoadBMP(surface, data);
  }
}

bool LoadBounded(Kind kind, TSurfDesc& surface, const File& file) {
  switch (kind) {
    case Kind::kGifFlat:
    case Kind::kGifPhoto: {
      TGifFrame frame{};
      return pincel_gif_frame(frame, file.data(), file.size()) == PINCEL_OK &&
             pincel_load_gif(surface, file.data(), file.size(), frame) == PINCEL_OK;
    }
    case Kind::kJpeg:
      return pincel_load_jpg(surface, file.data(), file.size()) == PINCEL_OK;
    default:
      return pincel_load_bmp(surface, file.data(), file.size()) == PINCEL_OK;
  }
}

// `load(surface, file)`, which must succeed, is what is timed.
template <class Loader>
void AddLoader(Kind kind, Format f, int size, const char* contender, Loader load) {
  Add(kNames[int(kind)], Name(f), size, contender, double(size) * size, [=](Random&) {
    auto surface = std::make_shared<Surface>(f, size, size);
    // Packed 8-bit rows would need no second step in LoadGIF.
    const FilePointer file = FileOf(kind, size);
    if (!load(*surface, *file)) std::abort();
    return [=] { load(*surface, *file); };
  });
}

// --- the others ---

#if PINCEL_BENCH_SDL2
bool LoadWithSdl(Surface& surface, const File& file) {
  SdlSurface loaded(SDL_LoadBMP_RW(SDL_RWFromConstMem(file.data(), int(file.size())), 1),
                    SDL_FreeSurface);
  if (loaded == nullptr) return false;
  SDL_SetSurfaceBlendMode(loaded.get(), SDL_BLENDMODE_NONE);
  return SDL_BlitSurface(loaded.get(), nullptr, Sdl(surface).get(), nullptr) == 0;
}
#endif

#if PINCEL_BENCH_STB
bool LoadWithStb(Surface& surface, const File& file) {
  int width, height, channels;
  stbi_uc* const pixels = stbi_load_from_memory(file.data(), int(file.size()), &width, &height,
                                                &channels, Bytes(surface.format));
  stbi_image_free(pixels);
  return pixels != nullptr;
}
#endif

#if PINCEL_BENCH_GIFLIB
struct Reader {
  const File& file;
  size_t at;
};
// Indices to the surface, through the colour table where it has not 8 bits.
template <class Word>
bool LoadWithGiflib(Surface& surface, const File& file) {
  Reader reader{file, 0};
  const auto read = [](GifFileType* gif, GifByteType* bytes, int count) {
    Reader& from = *static_cast<Reader*>(gif->UserData);
    const size_t part = std::min(size_t(count), from.file.size() - from.at);
    std::memcpy(bytes, from.file.data() + from.at, part);
    from.at += part;
    return int(part);
  };
  int error;
  GifFileType* const gif = DGifOpen(&reader, read, &error);
  if (gif == nullptr) return false;
  const bool loaded = DGifSlurp(gif) == GIF_OK;
  if (loaded) {
    const uint8_t* const indices = gif->SavedImages[0].RasterBits;
    const size_t count = size_t(surface.width) * size_t(surface.height);
    if (sizeof(Word) == 1) {
      std::memcpy(surface.pixels(), indices, count);
    } else {
      Word words[256];
      for (int i = 0; i < 256; ++i) {
        const GifColorType c = gif->SColorMap->Colors[i];
        words[i] = sizeof(Word) == 2
                       ? Word((c.Red & 0xF8) << 8 | (c.Green & 0xFC) << 3 | c.Blue >> 3)
                       : Word(uint32_t{c.Red} << 16 | c.Green << 8 | c.Blue);
      }
      for (size_t i = 0; i < count; ++i) {
        std::memcpy(surface.pixels() + i * sizeof(Word), &words[indices[i]], sizeof(Word));
      }
    }
  }
  DGifCloseFile(gif, &error);
  return loaded;
}
#endif

// The decoder that the library uses, called directly, with the output that it has itself.
bool LoadWithLibjpeg(Surface& surface, const File& file) {
  jpeg_error_mgr errors = support::jpeg_internal::Errors();
  jpeg_decompress_struct info{};
  info.err = &errors;
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&info, TRUE);
  JSAMPLE components[3][256];
  JSAMPROW colormap[] = {components[0], components[1], components[2]};
  switch (surface.format) {
    case Format::k8:
      info.out_color_space = JCS_EXT_BGR;
      for (int i = 0; i < 256; ++i) {
        components[0][i] = lu_gPaleta[i].blue;
        components[1][i] = lu_gPaleta[i].green;
        components[2][i] = lu_gPaleta[i].red;
      }
      info.quantize_colors = TRUE;
      info.colormap = colormap;
      info.actual_number_of_colors = 256;
      break;
    case Format::k24:
      info.out_color_space = JCS_EXT_BGR;
      break;
    case Format::k32:
      info.out_color_space = JCS_EXT_BGRX;
      break;
    default:
      info.out_color_space = JCS_RGB565;
      break;
  }
  jpeg_start_decompress(&info);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = surface.pixels() + ptrdiff_t(info.output_scanline) * surface.desc.pitch;
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  return errors.num_warnings == 0;
}

// What the indices cost as a blit through a palette.
void AddPaletteBlit(Kind kind, Format f, int size) {
  Add(kNames[int(kind)], Name(f), size, "palette blit", double(size) * size, [=](Random&) {
    auto dst = std::make_shared<Surface>(f, size, size),
         src = std::make_shared<Surface>(Format::k8, size, size);
    Load(kind, src->desc, *FileOf(kind, size));
    return [=] { DrawBitmap(dst->desc, src->desc); };
  });
}

// memcpy as a BMP file lies in memory: off the words, rows from the bottom. `moved` bytes in all.
void AddUpsideDownMemcpy(Kind kind, Format f, int size, size_t moved) {
  constexpr size_t kOffset = 54;
  const size_t row = moved / size_t(size) / 2;
  Add(kNames[int(kind)], Name(f), size, "memcpy of rows", double(size) * size, [=](Random& random) {
    auto dst = std::make_shared<Buffer>(moved / 2);
    auto src = std::make_shared<Buffer>(moved / 2 + kOffset);
    src->Fill(random);
    return [=] {
      const uint8_t* from = src->data() + kOffset;
      for (uint8_t* to = dst->data() + dst->size(); to != dst->data(); from += row) {
        to -= row;
        std::memcpy(to, from, row);
      }
    };
  });
}

// Bytes per pixel that LoadBMP reads and writes: at 32 bits it keeps the fourth byte of true colour.
size_t BytesMoved(Kind kind, Format f) {
  const size_t written = size_t(Bytes(f));
  if (kind != Kind::kBmp24) return 1 + written;
  return 3 + written + (f == Format::k32 ? written : 0);
}

void AddFile(Kind kind, Format f, int size) {
  AddLoader(kind, f, size, "pincel",
            [kind](Surface& s, const File& file) { return Load(kind, s.desc, file); });
  AddLoader(kind, f, size, "pincel:bounded",
            [kind](Surface& s, const File& file) { return LoadBounded(kind, s.desc, file); });
  const bool gif = kind == Kind::kGifFlat || kind == Kind::kGifPhoto;
  const bool bmp = !gif && kind != Kind::kJpeg;
  const size_t pixels = size_t(size) * size_t(size);
  if (bmp && f != Format::k8) {
    const size_t moved = BytesMoved(kind, f) * pixels;
    AddMemcpy(kNames[int(kind)], Name(f), size, double(pixels), moved);
    if (kind == Kind::kBmp24) {
      AddUpsideDownMemcpy(kind, f, size, moved);
    } else {
      AddPaletteBlit(kind, f, size);
    }
  }
#if PINCEL_BENCH_SDL2
  if (bmp && kind != Kind::kRunsFlat && kind != Kind::kRunsPhoto) {
    AddLoader(kind, f, size, "SDL2", LoadWithSdl);
  }
#endif
#if PINCEL_BENCH_STB
  const bool runs = kind == Kind::kRunsFlat || kind == Kind::kRunsPhoto;
  if (!runs && Bytes(f) > 2) AddLoader(kind, f, size, "stb_image", LoadWithStb);
#endif
#if PINCEL_BENCH_GIFLIB
  if (gif) {
    AddLoader(kind, f, size, "giflib",
              Bytes(f) == 1   ? LoadWithGiflib<uint8_t>
              : Bytes(f) == 2 ? LoadWithGiflib<uint16_t>
                              : LoadWithGiflib<uint32_t>);
  }
#endif
  if (kind == Kind::kJpeg && (f != Format::k555 && f != Format::k4444)) {
    AddLoader(kind, f, size, "libjpeg-turbo", LoadWithLibjpeg);
  }
}

}  // namespace

void AddLoads() {
  for (int size : kPictureSizes) {
    for (Format f : {Format::k24, Format::k32}) AddFile(Kind::kBmp24, f, size);
    for (Format f : {Format::k32, Format::k565}) AddFile(Kind::kBmp8, f, size);
    for (Kind kind : {Kind::kRunsFlat, Kind::kRunsPhoto, Kind::kGifFlat, Kind::kGifPhoto}) {
      for (Format f : {Format::k8, Format::k565, Format::k32}) AddFile(kind, f, size);
    }
    for (Format f :
         {Format::k32, Format::k24, Format::k565, Format::k555, Format::k4444, Format::k8}) {
      AddFile(Kind::kJpeg, f, size);
    }
  }
}

}  // namespace bench
