#include "bench/bench.h"

#include <hwy/targets.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace bench {
namespace {

std::vector<int64_t> extra_targets;

// The photograph that FillPhoto tiles, 24 bits.
const Surface& Photo() {
  static const Surface photo = [] {
    std::ifstream stream(PINCEL_SOURCE_DIR "/examples/assets/bmp/turbo-shira_bird8.bmp",
                         std::ios::binary);
    std::vector<uint8_t> file{std::istreambuf_iterator<char>(stream), {}};
    if (file.empty()) {
      std::fprintf(stderr, "examples/assets/bmp/turbo-shira_bird8.bmp is missing\n");
      std::exit(1);
    }
    file.resize(file.size() + 64);
    TSurfDesc info{};
    LoadInfoBMP(info, file.data());
    Surface s(Format::k24, info.width, info.height);
    LoadBMP(s.desc, file.data());
    return s;
  }();
  return photo;
}

}  // namespace

Surface::Surface(Format f, int w, int h)
    : format(f),
      width(w),
      height(h),
      buffer(size_t(w) * size_t(h) * size_t(Bytes(f))),
      palette(new TRGBA[256]()),
      desc{} {
  CreateModelPal(*reinterpret_cast<TRGBA(*)[256]>(palette.get()));
  desc.width = w;
  desc.height = h;
  desc.bpp = uint32_t(Bytes(f)) * 8;
  desc.rMask = f == Format::k565                         ? 0xF800
               : f == Format::k555 || f == Format::k1555 ? 0x7C00
               : f == Format::k4444                      ? 0x0F00
                                                         : 0xFF0000;
  desc.aMask = f == Format::k1555 ? 0x8000 : f == Format::k4444 ? 0xF000 : 0;
  desc.colorKey = 0xFFFFFFFF;
  desc.pitch = w * Bytes(f);
  desc.pixels = buffer.data();
  desc.palette = f == Format::k8 ? palette.get() : nullptr;
}

void FillSprite(Surface& s, Random& random) {
  s.buffer.Fill(random);
  const size_t pixel = size_t(Bytes(s.format)), end = s.buffer.size();
  bool transparent = true;
  for (size_t at = 0; at < end; transparent = !transparent) {
    const size_t run = std::min(end - at, pixel * (1 + random() % 24));
    if (transparent) std::memset(s.pixels() + at, 0, run);
    at += run;
  }
}

void FillPhoto(Surface& s, Random& random) {
  const Surface& photo = Photo();
  const int pixel = Bytes(s.format);
  for (int top = 0; top < s.height; top += photo.height) {
    for (int left = 0; left < s.width; left += photo.width) {
      const uint32_t gain = 160 + random() % 97;
      for (int y = top; y < std::min(s.height, top + photo.height); ++y) {
        for (int x = left; x < std::min(s.width, left + photo.width); ++x) {
          const uint8_t* from = photo.pixels() + ((y - top) * photo.width + x - left) * 3;
          uint8_t* to = s.pixels() + (size_t(y) * size_t(s.width) + size_t(x)) * size_t(pixel);
          for (int i = 0; i < 3; ++i) to[i] = uint8_t(from[i] * gain >> 8);
          if (pixel == 4) to[3] = 0xFF;
        }
      }
    }
  }
}

const std::vector<int64_t>& ExtraTargets() { return extra_targets; }

void UseTarget(int64_t target) {
  hwy::SetSupportedTargetsForTest(target);
  hwy::GetChosenTarget().Update(target != 0 ? target : hwy::SupportedTargets());
}

std::string TargetName(int64_t target) {
  return target == HWY_SCALAR || target == HWY_EMU128 ? "plain" : hwy::TargetName(target);
}

}  // namespace bench

// --targets: also measure the library on every instruction set of this machine and this build; a
// build with PINCEL_ALL_TARGETS has "plain", the form without vectors. --targets=<name>: on one.
int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument.rfind("--targets", 0) != 0) continue;
    const std::string wanted = argument.size() > 10 ? argument.substr(10) : "";
    for (int64_t target : hwy::SupportedAndGeneratedTargets()) {
      if (wanted.empty() || wanted == bench::TargetName(target)) {
        bench::extra_targets.push_back(target);
      }
    }
    std::copy(argv + i + 1, argv + argc, argv + i);
    --argc;
    --i;
  }
  bench::AddBlits();
  bench::AddFills();
  bench::AddConversions();
  bench::AddConvolutions();
  bench::AddLines();
  bench::AddFloods();
  bench::AddMixes();
  bench::AddBlends();
  bench::AddLoads();
  bench::AddEffects();
  bench::AddStretches();
  bench::AddTransforms();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
