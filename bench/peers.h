// The other libraries' views of a bench::Surface, where they are installed.
#ifndef BENCH_PEERS_H_
#define BENCH_PEERS_H_

#include <memory>

#include "bench/bench.h"

#if PINCEL_BENCH_SDL2
#include <SDL.h>
#endif
#if PINCEL_BENCH_PIXMAN
#include <pixman.h>
#endif
#if PINCEL_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#if PINCEL_BENCH_LIBYUV
#include <libyuv.h>
#endif

namespace bench {

#if PINCEL_BENCH_SDL2
inline Uint32 SdlFormat(Format f) {
  constexpr Uint32 kFormats[] = {SDL_PIXELFORMAT_INDEX8,   SDL_PIXELFORMAT_RGB565,
                                 SDL_PIXELFORMAT_RGB555,   SDL_PIXELFORMAT_ARGB1555,
                                 SDL_PIXELFORMAT_ARGB4444, SDL_PIXELFORMAT_BGR24,
                                 SDL_PIXELFORMAT_RGB888};
  return kFormats[int(f)];
}

using SdlSurface = std::shared_ptr<SDL_Surface>;

// Shares the pixels; the colours of an indexed surface are copied.
inline SdlSurface Sdl(const Surface& s) {
  SdlSurface sdl(
      SDL_CreateRGBSurfaceWithFormatFrom(s.pixels(), s.width, s.height, Bytes(s.format) * 8,
                                         s.desc.pitch, SdlFormat(s.format)),
      SDL_FreeSurface);
  if (s.format == Format::k8) {
    SDL_Color colours[256];
    for (int i = 0; i < 256; ++i) {
      colours[i] = {s.palette[size_t(i)].red, s.palette[size_t(i)].green, s.palette[size_t(i)].blue,
                    255};
    }
    SDL_SetPaletteColors(sdl->format->palette, colours, 0, 256);
  }
  SDL_SetSurfaceBlendMode(sdl.get(), SDL_BLENDMODE_NONE);
  return sdl;
}
#endif

#if PINCEL_BENCH_PIXMAN
inline pixman_format_code_t PixmanFormat(Format f) {
  constexpr pixman_format_code_t kFormats[] = {PIXMAN_a8,       PIXMAN_r5g6b5,   PIXMAN_x1r5g5b5,
                                               PIXMAN_a1r5g5b5, PIXMAN_a4r4g4b4, PIXMAN_r8g8b8,
                                               PIXMAN_a8r8g8b8};
  return kFormats[int(f)];
}

using PixmanImage = std::shared_ptr<pixman_image_t>;

inline PixmanImage Pixman(const Surface& s) {
  return PixmanImage(
      pixman_image_create_bits_no_clear(PixmanFormat(s.format), s.width, s.height,
                                        reinterpret_cast<uint32_t*>(s.pixels()), s.desc.pitch),
      pixman_image_unref);
}

inline void PixmanCopy(pixman_image_t* dst, pixman_image_t* src, int width, int height) {
  pixman_image_composite32(PIXMAN_OP_SRC, src, nullptr, dst, 0, 0, 0, 0, 0, 0, width, height);
}
#endif

#if PINCEL_BENCH_OPENCV
inline cv::Mat Mat(const Surface& s) {
  constexpr int kTypes[] = {CV_8UC1, CV_8UC2, CV_8UC2, CV_8UC2, CV_8UC2, CV_8UC3, CV_8UC4};
  cv::setNumThreads(1);
  return cv::Mat(s.height, s.width, kTypes[int(s.format)], s.pixels(), size_t(s.desc.pitch));
}
#endif

}  // namespace bench

#endif  // BENCH_PEERS_H_
