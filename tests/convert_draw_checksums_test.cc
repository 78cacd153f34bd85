// One list of cases whose results are committed: every compiler, platform and instruction set must
// give these bytes. After an intended change, PINCEL_CHECKSUMS_OUT=<file> in the environment makes
// a run of all tests here append the new lines of convert_draw.inc to that file.
#include <gtest/gtest.h>

#include <vector>

#include "include/pincel.h"
#include "tests/support/golden.h"
#include "tests/support/random.h"

namespace {

using model::Describe;
using model::Picture;
using support::Random;

constexpr support::Golden kGolden[] = {
#include "tests/checksums/convert_draw.inc"
};

// What the cases leave behind, one after the other.
class Results {
 public:
  void Add(uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) bytes_.push_back(uint8_t(number >> shift));
  }
  void Add(const Picture& p, const TSurfDesc& after, bool result) {
    bytes_.insert(bytes_.end(), p.bytes.begin(), p.bytes.end());
    Add(after.colorKey);
    Add(uint32_t{result});
  }
  uint32_t Sum() const { return support::Crc32(bytes_); }

 private:
  std::vector<uint8_t> bytes_;
};

using Case = void (*)(Random& random, int format, Results& results);

int AnyWidth(Random& random) { return support::WidthOf(random.Below(support::kWidths)); }

Picture AnyPicture(Random& random, int format, int width, int height) {
  support::PictureOptions options;
  options.max_padding = random.OneIn(3) ? 0 : 7;
  Picture p = support::RandomPicture(random, format, width, height, options);
  if (random.OneIn(2)) return p;
  const uint32_t pixel = random.Next();
  const uint32_t bits = format == 8 ? 0xFF : format < 24 ? 0xFFFF : 0xFFFFFF;
  support::PlantKey(random, p, pixel & bits, format == 8 ? 0 : pixel);
  return p;
}

void SinglePixelCase(Random& random, int format, Results& results) {
  Picture p = AnyPicture(random, format, AnyWidth(random), 3);
  TSurfDesc d = Describe(p);
  for (int i = 0; i < 10; ++i) {
    const int x = random.Below(p.width), y = random.Below(3);
    const uint32_t colour = random.Next();
    results.Add(uint32_t(GetPixel(d, x, y)));
    SetPixel(d, x, y, colour);
  }
  results.Add(p, d, true);
}

void FillCase(Random& random, int format, Results& results) {
  Picture p = AnyPicture(random, format, AnyWidth(random), 7);
  const CRectangulo rect = support::RandomRect(random, p.width, p.height);
  TSurfDesc d = Describe(p);
  const bool result = IdxFillRect(d, rect, random.Next());
  results.Add(p, d, result);
}

void LinesCase(Random& random, int format, Results& results) {
  Picture p = AnyPicture(random, format, AnyWidth(random), 9);
  TSurfDesc d = Describe(p);
  for (int i = 0; i < 4; ++i) {
    const CPunto at{random.Between(-5, p.width + 5), random.Between(-5, 14)};
    const int length = random.Between(-p.width - 5, p.width + 5);
    const uint32_t colour = random.Next();
    const bool result =
        i % 2 == 0 ? IdxLineHI(d, at, length, colour) : IdxLineVI(d, at, length, colour);
    results.Add(p, d, result);
  }
}

void FrameCase(Random& random, int format, Results& results) {
  Picture p = AnyPicture(random, format, AnyWidth(random), 9);
  const CRectangulo rect = support::RandomRect(random, p.width, p.height);
  TSurfDesc d = Describe(p);
  bool result = FrameBR(d, rect, random.Next());
  results.Add(p, d, result);
  const auto step = static_cast<unsigned char>(random.Below(256));
  const auto depth = static_cast<unsigned char>(random.Below(4));
  const CRectangulo next = support::RandomRect(random, p.width, p.height);
  result = DrawRectShadow(d, next, step, depth);
  results.Add(p, d, result);
}

void BlockCase(Random& random, int format, Results& results) {
  const int w = AnyWidth(random), h = random.Between(1, 5);
  Picture src = AnyPicture(random, format, w + 3, h + 3);
  Picture dst = AnyPicture(random, format, w + 3, h + 3);
  unsigned short at[4];
  for (unsigned short& a : at) a = static_cast<unsigned short>(random.Below(4));
  TSurfDesc d = Describe(dst), s = Describe(src);
  using Short = unsigned short;
  const bool result = DrawBlock(d, s, at[0], at[1], at[2], at[3], Short(w), Short(h));
  results.Add(dst, d, result);
}

void BlitCase(Random& random, int format, Results& results) {
  const int width = AnyWidth(random), height = random.Between(1, 7);
  Picture dst = AnyPicture(random, format, width, height);
  const int from = random.OneIn(2)   ? format
                   : random.OneIn(2) ? 8
                                     : model::kFormats[random.Below(7)];
  Picture src = AnyPicture(random, from, 2 * width + 4, 2 * height + 4);
  src.has_palette = random.OneIn(2);
  const int x = random.Between(-width, width), y = random.Between(-height, height);
  const CRectangulo rect{x, y, x + random.Between(0, width + 2), y + random.Between(0, height + 2)};
  const CPunto at{random.Below(3), random.Below(3)};
  TSurfDesc d = Describe(dst), s = Describe(src);
  const bool result = DrawBitmap(d, rect, s, at);
  results.Add(dst, d, result);
}

void ConvertCase(Random& random, int format, Results& results) {
  const int width = AnyWidth(random), height = random.Between(1, 5);
  const int from = model::kFormats[random.Below(7)];
  Picture dst = AnyPicture(random, format, width, height);
  Picture src = AnyPicture(random, from, width, height);
  dst.key = random.Next();
  src.has_palette = from == 8 && (format == 8 || random.OneIn(2));
  if (format == from) dst.pitch = src.pitch;
  const int mode = random.Between(1, 4);
  TSurfDesc d = Describe(dst), s = Describe(src);
  const bool result = Convert(d, s, static_cast<unsigned long>(mode));
  results.Add(dst, d, result);
}

void CopyCase(Random& random, int format, Results& results) {
  const int width = random.Between(1, 70), height = random.Between(1, 6);
  Picture dst = AnyPicture(random, format, width, height);
  Picture src = AnyPicture(random, format, width, height);
  TSurfDesc d = Describe(dst), s = Describe(src);
  const bool result = CopyImage(d, s);
  results.Add(dst, d, result);
}

void RepackCase(Random& random, int format, Results& results) {
  using Converter = bool (*)(TSurfDesc&, TSurfDesc&);
  struct Exported {
    Converter convert;
    int from, to;
  };
  static constexpr Exported kExported[] = {
      {Convert16_565_16_555, 16, 17},
      {Convert16_565_16_5551, 16, 18},
      {Convert16_565_16_4444, 16, 19},
      {Convert16_555_16_565, 17, 16},
      {Convert16_555_16_5551, 17, 18},
      {Convert16_555_16_4444, 17, 19},
      {Convert16_5551_16_555, 18, 17},
      {Convert16_4444_16_565, 19, 16},
      {Convert16_4444_16_555, 19, 17},
      {Convert16_4444_16_5551, 19, 18},
      {Convert24_32_, 24, 32},
      {Convert32_24_, 32, 24},
      {Convert8_8, 8, 8},
  };
  const int width = AnyWidth(random), height = random.Between(1, 4);
  for (const Exported& e : kExported) {
    if (e.to != format) continue;
    Picture dst = AnyPicture(random, e.to, width, height);
    Picture src = AnyPicture(random, e.from, width, height);
    TSurfDesc d = Describe(dst), s = Describe(src);
    const bool result = e.convert(d, s);
    results.Add(dst, d, result);
  }
}

void PaletteCase(Random& random, int, Results& results) {
  TRGBA palette[256];
  for (TRGBA& e : palette) e = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  const auto add = [&] {
    for (const TRGBA& e : palette) {
      results.Add(uint32_t{e.blue} | uint32_t{e.green} << 8 | uint32_t{e.red} << 16 |
                  uint32_t{e.alpha} << 24);
    }
  };
  CreateModelPal(palette);
  add();
  CreateGreyPal(palette);
  add();
  CreateTruncPal(palette);
  add();
}

void Check(const char* operation, Case body) {
  support::CheckGolden(kGolden, operation, [&](int format) {
    Results results;
    for (uint64_t seed = 0; seed < 50; ++seed) {
      Random random(seed);
      body(random, format, results);
    }
    return results.Sum();
  });
}

TEST(ConvertDrawChecksums, Palettes) { Check("Palettes", PaletteCase); }
TEST(ConvertDrawChecksums, SinglePixels) { Check("SinglePixels", SinglePixelCase); }
TEST(ConvertDrawChecksums, Convert) { Check("Convert", ConvertCase); }
TEST(ConvertDrawChecksums, CopyImage) { Check("CopyImage", CopyCase); }
TEST(ConvertDrawChecksums, ExportedConverters) { Check("ExportedConverters", RepackCase); }
TEST(ConvertDrawChecksums, DrawBitmap) { Check("DrawBitmap", BlitCase); }
TEST(ConvertDrawChecksums, IdxFillRect) { Check("IdxFillRect", FillCase); }
TEST(ConvertDrawChecksums, IdxLine) { Check("IdxLine", LinesCase); }
TEST(ConvertDrawChecksums, Frames) { Check("Frames", FrameCase); }
TEST(ConvertDrawChecksums, DrawBlock) { Check("DrawBlock", BlockCase); }

}  // namespace
