// Convert: whole surfaces between formats.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format k8 = Format::k8, k565 = Format::k565, k555 = Format::k555, k1555 = Format::k1555,
                 k4444 = Format::k4444, k24 = Format::k24, k32 = Format::k32;

using Call = void (*)(const Surface& dst, const Surface& src);

#if PINCEL_BENCH_LIBYUV
Call LibyuvCall(Format dst, Format src) {
  struct Entry {
    Format dst, src;
    Call call;
  };
  static const Entry kCalls[] = {
      {k32, k565,
       [](const Surface& d, const Surface& s) {
         libyuv::RGB565ToARGB(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width,
                              s.height);
       }},
      {k32, k1555,
       [](const Surface& d, const Surface& s) {
         libyuv::ARGB1555ToARGB(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width,
                                s.height);
       }},
      {k32, k4444,
       [](const Surface& d, const Surface& s) {
         libyuv::ARGB4444ToARGB(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width,
                                s.height);
       }},
      {k32, k24,
       [](const Surface& d, const Surface& s) {
         libyuv::RGB24ToARGB(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width, s.height);
       }},
      {k565, k32,
       [](const Surface& d, const Surface& s) {
         libyuv::ARGBToRGB565(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width,
                              s.height);
       }},
      {k1555, k32,
       [](const Surface& d, const Surface& s) {
         libyuv::ARGBToARGB1555(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width,
                                s.height);
       }},
      {k4444, k32,
       [](const Surface& d, const Surface& s) {
         libyuv::ARGBToARGB4444(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width,
                                s.height);
       }},
      {k24, k32,
       [](const Surface& d, const Surface& s) {
         libyuv::ARGBToRGB24(s.pixels(), s.desc.pitch, d.pixels(), d.desc.pitch, s.width, s.height);
       }},
  };
  for (const Entry& e : kCalls) {
    if (e.dst == dst && e.src == src) return e.call;
  }
  return nullptr;
}
#endif

#if PINCEL_BENCH_OPENCV
int OpenCvCode(Format dst, Format src) {
  struct Entry {
    Format dst, src;
    int code;
  };
  static const Entry kCodes[] = {
      {k32, k565, cv::COLOR_BGR5652BGRA},  {k32, k555, cv::COLOR_BGR5552BGRA},
      {k32, k1555, cv::COLOR_BGR5552BGRA}, {k24, k565, cv::COLOR_BGR5652BGR},
      {k24, k555, cv::COLOR_BGR5552BGR},   {k32, k24, cv::COLOR_BGR2BGRA},
      {k24, k32, cv::COLOR_BGRA2BGR},      {k565, k32, cv::COLOR_BGRA2BGR565},
      {k555, k32, cv::COLOR_BGRA2BGR555},  {k1555, k32, cv::COLOR_BGRA2BGR555},
      {k565, k24, cv::COLOR_BGR2BGR565},   {k555, k24, cv::COLOR_BGR2BGR555},
  };
  for (const Entry& e : kCodes) {
    if (e.dst == dst && e.src == src) return e.code;
  }
  return -1;
}
#endif

struct Pair {
  Pair(Format dst_format, Format src_format, int size)
      : dst(dst_format, size, size), src(src_format, size, size) {}
  Surface dst, src;
};

std::shared_ptr<Pair> RandomPair(Format dst, Format src, int size, bool photo, Random& random) {
  auto p = std::make_shared<Pair>(dst, src, size);
  p->dst.FillRandom(random);
  p->src.FillRandom(random);
  if (photo && Bytes(src) >= 3) FillPhoto(p->src, random);
  if (photo && Bytes(src) == 2) {
    Surface colours(k32, size, size);
    FillPhoto(colours, random);
    Convert(p->src.desc, colours.desc, 0);
    p->src.desc.colorKey = 0xFFFFFFFF;
  }
  return p;
}

void AddConversion(Format dst, Format src, int size, unsigned long mode = 0, bool photo = false) {
  const double count = double(size) * size;
  const std::string operation =
      mode == 0 ? "Convert"
                : "Convert mode " + std::to_string(mode) + (photo ? " photo" : " noise");
  const std::string format = std::string(Name(src)) + "-" + Name(dst);
  AddPincel(operation, format, size, count, [=](Random& random) {
    auto p = RandomPair(dst, src, size, photo, random);
    return [p, mode] { Convert(p->dst.desc, p->src.desc, mode); };
  });
  AddMemcpy(operation, format, size, count, size_t(Bytes(dst) + Bytes(src)) * size_t(count));
#if PINCEL_BENCH_SDL2
  // To 8 bits SDL2 has the 3-3-2 form only.
  if (mode == 3 || mode == 0) {
    Add(operation, format, size, "SDL2", count, [=](Random& random) {
      auto p = RandomPair(dst, src, size, photo, random);
      auto from = Sdl(p->src), to = Sdl(p->dst);
      return [p, from, to] { SDL_BlitSurface(from.get(), nullptr, to.get(), nullptr); };
    });
  }
#endif
#if PINCEL_BENCH_PIXMAN
  if (dst != k8 && src != k8) {
    Add(operation, format, size, "pixman", count, [=](Random& random) {
      auto p = RandomPair(dst, src, size, photo, random);
      return [p, size, to = Pixman(p->dst), from = Pixman(p->src)] {
        PixmanCopy(to.get(), from.get(), size, size);
      };
    });
  }
#endif
#if PINCEL_BENCH_OPENCV
  if (const int code = OpenCvCode(dst, src); code >= 0) {
    Add(operation, format, size, "OpenCV", count, [=](Random& random) {
      auto p = RandomPair(dst, src, size, photo, random);
      return [p, code, to = Mat(p->dst), from = Mat(p->src)]() mutable {
        cv::cvtColor(from, to, code);
      };
    });
  }
#endif
#if PINCEL_BENCH_LIBYUV
  if (const Call call = LibyuvCall(dst, src)) {
    Add(operation, format, size, "libyuv", count, [=](Random& random) {
      auto p = RandomPair(dst, src, size, photo, random);
      return [p, call] { call(p->dst, p->src); };
    });
  }
#endif
}

}  // namespace

void AddConversions() {
  const struct {
    Format dst, src;
  } kCells[] = {
      {k555, k565},  {k565, k555},  {k1555, k565}, {k4444, k565}, {k555, k1555}, {k4444, k555},
      {k565, k4444}, {k555, k4444}, {k32, k565},   {k32, k555},   {k32, k1555},  {k32, k4444},
      {k565, k32},   {k555, k32},   {k1555, k32},  {k4444, k32},  {k32, k24},    {k24, k32},
      {k24, k565},   {k24, k555},   {k24, k4444},  {k565, k24},   {k555, k24},   {k4444, k24},
      {k565, k8},    {k555, k8},    {k4444, k8},   {k24, k8},     {k32, k8},     {k8, k8},
  };
  for (int size : kSizes) {
    for (const auto& cell : kCells) AddConversion(cell.dst, cell.src, size);
    for (unsigned long mode : {2, 3, 4}) {
      for (Format src : {k565, k555, k4444, k24, k32}) {
        AddConversion(k8, src, size, mode, /*photo=*/true);
        AddConversion(k8, src, size, mode, /*photo=*/false);
      }
    }
  }
}

}  // namespace bench
