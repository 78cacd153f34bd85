// One list of cases whose results are committed: every compiler, platform and instruction set must
// give these bytes. After an intended change, PINCEL_CHECKSUMS_OUT=<file> in the environment makes
// a run of all tests here append the new lines of filters.inc to that file.
#include <gtest/gtest.h>

#include <vector>

#include "include/pincel.h"
#include "tests/support/golden.h"
#include "tests/support/random.h"

namespace {

using model::Describe;
using model::Picture;
using support::Random;
using Results = support::CaseResults;

constexpr support::Golden kGolden[] = {
#include "tests/checksums/filters.inc"
};

Picture AnyPicture(Random& random, int format, int height) {
  support::PictureOptions options;
  options.max_padding = random.OneIn(3) ? 0 : 7;
  const int width = support::WidthOf(random.Below(support::kWidths));
  return support::RandomPicture(random, format, width, height, options);
}

// Scratch memory for a picture, with contents of its own.
Picture Scratch(Random& random, const Picture& image) {
  return support::RandomPicture(random, 8, image.height * image.pitch, 1);
}

void TapsCase(Random& random, int format, Results& results) {
  Picture image = AnyPicture(random, format, random.Between(1, 6));
  Picture scratch = Scratch(random, image);
  const int count = random.Between(0, 40), largest = random.OneIn(4) ? 1 << 26 : 20;
  std::vector<int> weights(41);
  std::vector<long> offsets(41);
  for (int& weight : weights) weight = random.Between(-largest, largest);
  for (long& offset : offsets) offset = random.Between(-3 * image.pitch, 3 * image.pitch);
  int divisor = random.Between(-9, 99);
  if (divisor == 0) divisor = 1 << 20;
  const int bias = random.Between(-50, 200);
  TSurfDesc i = Describe(image), s = Describe(scratch);
  const bool result = DoConvolucion(i, s, count, weights.data(), offsets.data(), divisor, bias);
  results.Add(image, result);
  results.Add(scratch, result);
}

void FixedFilterCase(Random& random, int format, Results& results) {
  Picture image = AnyPicture(random, format, random.Between(1, 6));
  Picture scratch = Scratch(random, image);
  TSurfDesc i = Describe(image), s = Describe(scratch);
  for (auto filter : {DoSuavizado, DoEmboss, DoRealce}) {
    const bool result = filter(i, s);
    results.Add(image, result);
    results.Add(scratch, result);
  }
}

void KernelCase(Random& random, int format, Results& results) {
  const Picture image = AnyPicture(random, format, random.Between(1, 6));
  Picture scratch = Scratch(random, image);
  for (int number = 0; number < 24; ++number) {
    Picture filtered = image;
    TSurfDesc i = Describe(filtered), s = Describe(scratch);
    const bool result = FiltroMask(i, s, number);
    results.Add(filtered, result);
  }
}

struct Line {
  Picture dst, mask;
  CRectangulo rect;
  CPunto at;
  uint32_t colour;
  int length;
  float angle;
};
Line AnyLine(Random& random, int format) {
  Line line{};
  line.dst = AnyPicture(random, format, random.Between(1, 6));
  const int mask_height = random.Between(1, 6), mask_depth = random.OneIn(2) ? 8 : 32;
  line.mask = AnyPicture(random, mask_depth, mask_height);
  line.rect = {random.Between(-3, 3), random.Between(-3, 3), line.dst.width, 6};
  line.at = {random.Between(-4, 4), line.rect.top < 0 ? line.rect.top : random.Between(-1, 1)};
  line.colour = random.Next();
  line.length = random.Between(0, 40);
  line.angle = float(random.Between(-800, 800)) / 100;
  return line;
}

void LineCase(decltype(&FiltroMotionBlur) blur, Random& random, int format, Results& results) {
  Line line = AnyLine(random, format);
  TSurfDesc d = Describe(line.dst), m = Describe(line.mask);
  const bool result = blur(d, m, line.rect, line.at, line.colour, line.length, line.angle);
  results.Add(line.dst, result);
}

void MotionBlurCase(Random& random, int format, Results& results) {
  LineCase(FiltroMotionBlur, random, format, results);
}

void GlowBlurCase(Random& random, int format, Results& results) {
  LineCase(FiltroBrilloBlur, random, format, results);
}

void MotionMaskCase(Random& random, int format, Results& results) {
  Line line = AnyLine(random, format);
  TSurfDesc d = Describe(line.dst), m = Describe(line.mask);
  const bool result = FiltroMotionMask(d, m, line.rect, line.at, random.Below(600));
  results.Add(line.dst, result);
}

void AntiAliasCase(Random& random, int format, Results& results) {
  const Picture image = AnyPicture(random, format, random.Between(4, 40));
  for (auto soften : {DoAntiAlias, DoAntiAlias2}) {
    Picture softened = image;
    TSurfDesc d = Describe(softened), other{};
    const bool result = soften(d, {}, other, 256);
    results.Add(softened, result);
  }
}

void EdgeCodesCase(Random& random, int format, Results& results) {
  Picture image = AnyPicture(random, format, random.Between(4, 40));
  for (uint8_t& byte : image.bytes) byte = random.OneIn(2) ? byte : 0;
  TSurfDesc d = Describe(image);
  const bool result =
      DoAntiAliasBMP(d, static_cast<unsigned short>(random.OneIn(2) ? 256 : random.Below(400)));
  results.Add(image, result);
}

void Check(const char* operation, void (*body)(Random&, int format, Results&)) {
  support::CheckGoldenCases(kGolden, operation, body);
}

TEST(FilterChecksums, Taps) { Check("DoConvolucion", TapsCase); }
TEST(FilterChecksums, FixedFilters) { Check("FixedFilters", FixedFilterCase); }
TEST(FilterChecksums, Kernels) { Check("FiltroMask", KernelCase); }
TEST(FilterChecksums, MotionBlur) { Check("FiltroMotionBlur", MotionBlurCase); }
TEST(FilterChecksums, GlowBlur) { Check("FiltroBrilloBlur", GlowBlurCase); }
TEST(FilterChecksums, MotionMask) { Check("FiltroMotionMask", MotionMaskCase); }
TEST(FilterChecksums, AntiAlias) { Check("AntiAlias", AntiAliasCase); }
TEST(FilterChecksums, EdgeCodes) { Check("DoAntiAliasBMP", EdgeCodesCase); }

}  // namespace
