// Mixing at one level and through alpha surfaces, masks and fades.
#include "bench/peers.h"

namespace bench {
namespace {

constexpr Format kFormats[] = {Format::k565, Format::k555, Format::k4444, Format::k24, Format::k32};
constexpr uint32_t kColour = 0xFF4080C0;

struct Picture {
  Picture(Format f, int size)
      : dst(f, size, size), src(f, size, size), alpha(Format::k8, size, size) {}
  Surface dst, src, alpha;
  CRectangulo area() const { return {0, 0, dst.width, dst.height}; }
};

std::shared_ptr<Picture> RandomPicture(Format f, int size, Random& random) {
  auto picture = std::make_shared<Picture>(f, size);
  picture->dst.FillRandom(random);
  picture->src.FillRandom(random);
  picture->alpha.FillRandom(random);
  return picture;
}

#if PINCEL_BENCH_PIXMAN
bool PixmanHas(Format f) { return f != Format::k555 && f != Format::k4444; }

PixmanImage PixmanSolid(uint32_t argb) {
  const auto channel = [argb](int shift) { return uint16_t((argb >> shift & 255) * 257); };
  const pixman_color_t colour = {channel(16), channel(8), channel(0), channel(24)};
  return PixmanImage(pixman_image_create_solid_fill(&colour), pixman_image_unref);
}

void PixmanOver(const PixmanImage& dst, const PixmanImage& src, const PixmanImage& mask, int size) {
  pixman_image_composite32(PIXMAN_OP_OVER, src.get(), mask.get(), dst.get(), 0, 0, 0, 0, 0, 0, size,
                           size);
}
#endif

void AddLevel(Format f, int size, unsigned short level) {
  const double count = double(size) * size;
  const std::string operation = "mix level " + std::to_string(level);
  AddPincel(operation, Name(f), size, count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [=] { DrawMix(p->dst.desc, p->area(), level, p->src.desc, {0, 0}, nullptr); };
  });
  AddMemcpy(operation, Name(f), size, count, 3 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_SDL2
  if (f != Format::k4444) {  // has alpha of its own there
    Add(operation, Name(f), size, "SDL2", count, [=](Random& random) {
      auto p = RandomPicture(f, size, random);
      auto from = Sdl(p->src), to = Sdl(p->dst);
      SDL_SetSurfaceBlendMode(from.get(), SDL_BLENDMODE_BLEND);
      SDL_SetSurfaceAlphaMod(from.get(), Uint8(level));
      return [p, from, to] { SDL_BlitSurface(from.get(), nullptr, to.get(), nullptr); };
    });
  }
#endif
#if PINCEL_BENCH_PIXMAN
  if (PixmanHas(f)) {
    Add(operation, Name(f), size, "pixman", count, [=](Random& random) {
      auto p = RandomPicture(f, size, random);
      return [p, size, dst = Pixman(p->dst), src = Pixman(p->src),
              mask = PixmanSolid(uint32_t(level) << 24)] { PixmanOver(dst, src, mask, size); };
    });
  }
#endif
  if (Bytes(f) < 3) return;
#if PINCEL_BENCH_OPENCV
  Add(operation, Name(f), size, "OpenCV", count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, level, dst = Mat(p->dst), src = Mat(p->src)]() mutable {
      cv::addWeighted(src, level / 256.0, dst, 1 - level / 256.0, 0, dst);
    };
  });
#endif
#if PINCEL_BENCH_LIBYUV
  Add(operation, Name(f), size, "libyuv", count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, level, size, pitch = p->dst.desc.pitch] {
      libyuv::InterpolatePlane(p->dst.pixels(), pitch, p->src.pixels(), pitch, p->dst.pixels(),
                               pitch, pitch, size, level);
    };
  });
#endif
}

void AddAlpha(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("mix alpha", Name(f), size, count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p] {
      DrawMix(p->dst.desc, p->area(), p->alpha.desc, {0, 0}, p->src.desc, {0, 0}, nullptr);
    };
  });
  AddMemcpy("mix alpha", Name(f), size, count, size_t(3 * Bytes(f) + 1) * size_t(count));
#if PINCEL_BENCH_PIXMAN
  if (PixmanHas(f)) {
    Add("mix alpha", Name(f), size, "pixman", count, [=](Random& random) {
      auto p = RandomPicture(f, size, random);
      return [p, size, dst = Pixman(p->dst), src = Pixman(p->src), mask = Pixman(p->alpha)] {
        PixmanOver(dst, src, mask, size);
      };
    });
  }
#endif
#if PINCEL_BENCH_LIBYUV
  if (f == Format::k32) {  // through the source's own alpha
    Add("mix alpha", Name(f), size, "libyuv", count, [=](Random& random) {
      auto p = RandomPicture(f, size, random);
      return [p, size, pitch = p->dst.desc.pitch] {
        libyuv::ARGBBlend(p->src.pixels(), pitch, p->dst.pixels(), pitch, p->dst.pixels(), pitch,
                          size, size);
      };
    });
  }
#endif
}

void AddColour(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("DrawMask", Name(f), size, count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p] { DrawMask(p->dst.desc, p->area(), p->alpha.desc, {0, 0}, kColour, nullptr); };
  });
  AddMemcpy("DrawMask", Name(f), size, count, size_t(2 * Bytes(f) + 1) * size_t(count));
  AddPincel("MaskFillRect", Name(f), size, count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p] { MaskFillRect(p->dst.desc, p->area(), kColour, 100); };
  });
  AddMemcpy("MaskFillRect", Name(f), size, count, 2 * size_t(Bytes(f)) * size_t(count));
#if PINCEL_BENCH_PIXMAN
  if (!PixmanHas(f)) return;
  Add("DrawMask", Name(f), size, "pixman", count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, size, dst = Pixman(p->dst), src = PixmanSolid(kColour), mask = Pixman(p->alpha)] {
      PixmanOver(dst, src, mask, size);
    };
  });
  Add("MaskFillRect", Name(f), size, "pixman", count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p, size, dst = Pixman(p->dst), src = PixmanSolid(0x64193240)] {  // premultiplied
      PixmanOver(dst, src, nullptr, size);
    };
  });
#endif
}

void AddFader(Format f, int size) {
  const double count = double(size) * size;
  AddPincel("OpenFader", Name(f), size, count, [=](Random& random) {
    auto p = RandomPicture(f, size, random);
    return [p] { OpenFader(p->dst.desc, p->area(), p->src.desc, {0, 0}, -1, 1, 4); };
  });
  AddMemcpy("OpenFader", Name(f), size, count, 3 * size_t(Bytes(f)) * size_t(count));
}

using Table = unsigned char (*)[65536];

Table MixTable() {
  static unsigned char table[2][65536];
  static const bool built = (pincel_build_mix_table(table, lu_gPaleta, 1), true);
  (void)built;
  return table;
}

// The same result, a pixel at a time.
void MixIndexed(const Surface& dst, const Surface& src, int level, Table table) {
  for (int y = 0; y < dst.height; ++y) {
    uint8_t* to = dst.pixels() + ptrdiff_t{y} * dst.desc.pitch;
    const uint8_t* from = src.pixels() + ptrdiff_t{y} * src.desc.pitch;
    for (int x = 0; x < dst.width; ++x) {
      const TRGBA d = lu_gPaleta[to[x]], s = lu_gPaleta[from[x]];
      const auto mix = [level](int below, int above) {
        return (below * 256 + (above - below) * level) >> 8 & 255;
      };
      const int key =
          mix(d.red, s.red) >> 3 << 11 | mix(d.green, s.green) >> 2 << 5 | mix(d.blue, s.blue) >> 3;
      to[x] = table[(x + y + 1) & 1][key];
    }
  }
}

void AddIndexed(int size) {
  const double count = double(size) * size;
  AddPincel("DrawMix_8Bits", "8", size, count, [=](Random& random) {
    auto p = RandomPicture(Format::k8, size, random);
    return [p, table = MixTable()] {
      DrawMix_8Bits(p->dst.desc, p->area(), 100, p->src.desc, {0, 0}, table);
    };
  });
  AddMemcpy("DrawMix_8Bits", "8", size, count, 3 * size_t(count));
  Add("DrawMix_8Bits", "8", size, "plain loop", count, [=](Random& random) {
    auto p = RandomPicture(Format::k8, size, random);
    return [p, table = MixTable()] { MixIndexed(p->dst, p->src, 100, table); };
  });
}

}  // namespace

void AddMixes() {
  for (int size : kSizes) {
    for (Format f : kFormats) {
      for (uint16_t level : std::initializer_list<uint16_t>{100, 64, 128, 192})
        AddLevel(f, size, level);
      AddAlpha(f, size);
      AddColour(f, size);
      AddFader(f, size);
    }
    AddIndexed(size);
  }
}

}  // namespace bench
