// Convolution filters: any list of taps, the fixed filters, the stored kernels.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <utility>
#include <vector>

#include "include/pincel.h"
#include "tests/model/convolution_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using model::Tap;
using support::Filled;
using support::PictureOf;
using support::Pixels;
using support::Random;
using Words = std::vector<uint32_t>;
using Taps = std::vector<Tap>;

constexpr int kFilteredFormats[] = {16, 17, 18, 19, 24, 32};

// Taps as the library takes them. Only the low 32 bits of an offset count, so there is noise in
// others where a long has them.
struct TapArrays {
  explicit TapArrays(const Taps& taps) : count(int(taps.size())), weights(1), offsets(1) {
    for (size_t i = 0; i < taps.size(); ++i) {
      weights.insert(weights.begin() + int(i), int(taps[i].weight));
      const auto offset = uint64_t(uint32_t(taps[i].offset)) | uint64_t{0x5EA51DE5} << 32;
      offsets.insert(offsets.begin() + int(i), static_cast<long>(offset));
    }
  }
  int count;
  std::vector<int> weights;  // one more than taps: null pointers mean something else
  std::vector<long> offsets;
};

bool Convolve(TSurfDesc& image, TSurfDesc& scratch, const Taps& taps, int divisor, int bias) {
  TapArrays arrays(taps);
  return DoConvolucion(image, scratch, arrays.count, arrays.weights.data(), arrays.offsets.data(),
                       divisor, bias);
}

// The pixels of `image` after a filter. The scratch memory has the image already, so that it does not
// matter how many bytes are copied.
template <class Filter>
Words Filtered(Picture image, Filter&& filter) {
  Picture scratch = image;
  TSurfDesc i = Describe(image), s = Describe(scratch);
  EXPECT_TRUE(filter(i, s));
  return Pixels(image);
}
Words Convolved(const Picture& image, const Taps& taps, int divisor = 1, int bias = 0) {
  return Filtered(image,
                  [&](TSurfDesc& i, TSurfDesc& s) { return Convolve(i, s, taps, divisor, bias); });
}
Words FilteredByNumber(const Picture& image, int number) {
  return Filtered(image, [&](TSurfDesc& i, TSurfDesc& s) { return FiltroMask(i, s, number); });
}

// Worked examples.

TEST(Convolution, OneTapKeeps24BitsAndClearsTheFourthByteOf32) {
  const Taps identity = {{0, 1}};
  const Words pixels = {0x80123456, 0xFFFFFFFF, 0x00ABCDEF, 0x7F000001};
  const Words colours = {0x123456, 0xFFFFFF, 0xABCDEF, 0x000001};
  EXPECT_EQ(Convolved(PictureOf(24, 2, 2, colours), identity), colours);
  EXPECT_EQ(Convolved(PictureOf(32, 2, 2, pixels), identity), colours);
}

TEST(Convolution, BoxOfASinglePixelIsItsColour) {
  EXPECT_EQ(Filtered(PictureOf(32, 1, 1, {0x80C8640A}), DoSuavizado), Words{0x00C8640A});
  EXPECT_EQ(Filtered(PictureOf(24, 1, 1, {0xC8640A}), DoSuavizado), Words{0xC8640A});
  EXPECT_EQ(Filtered(PictureOf(16, 1, 1, {0xA145}), DoSuavizado), Words{0xA145});
}

TEST(Convolution, ReliefOfAFlatImageIs127) {
  EXPECT_EQ(Filtered(Filled(32, 5, 4, 0xFF204060), DoEmboss), Words(20, 0x7F7F7F));
  EXPECT_EQ(Filtered(Filled(24, 5, 4, 0x204060), DoEmboss), Words(20, 0x7F7F7F));
  EXPECT_EQ(Filtered(Filled(16, 5, 4, 0x1234), DoEmboss), Words(20, 0xFFFF));
}

TEST(Convolution, Kernel18Adds140) {
  EXPECT_EQ(FilteredByNumber(PictureOf(24, 2, 1, {0x00207F, 0x7374FF}), 18),
            (Words{0x8CACFF, 0xFFFFFF}));
  EXPECT_EQ(FilteredByNumber(PictureOf(16, 2, 1, {0x0000, 0x1234}), 18), Words(2, 0xFFFF));
}

TEST(Convolution, FixedFiltersOnNinePixels) {
  Words pixels;
  for (uint32_t i = 0; i < 9; ++i) pixels.push_back(i * i);
  const Picture image = PictureOf(24, 3, 3, pixels);
  // The middle sees all nine: 0 + 1 + 4 + ... + 64 = 204. The pixel left of row 1 is the last one of
  // row 0; above the first pixel and below the last one are these pixels again.
  const Words soft = Filtered(image, DoSuavizado);
  EXPECT_EQ(soft[4], 22u);
  EXPECT_EQ(soft[3], (0u + 0 + 1 + 4 + 9 + 16 + 25 + 36 + 49) / 9);
  EXPECT_EQ(soft[0], (0u + 0 + 0 + 0 + 0 + 1 + 4 + 9 + 16) / 9);
  EXPECT_EQ(soft[8], (16u + 25 + 36 + 49 + 64 + 64 + 64 + 64 + 64) / 9);
  const Words relief = Filtered(image, DoEmboss);
  EXPECT_EQ(relief[4], 0x7F7FBFu);  // 127 + 64 - 0
  EXPECT_EQ(relief[0], 0x7F7F8Fu);  // 127 + 16 - 0
  const Words sharp = Filtered(image, DoRealce);
  EXPECT_EQ(sharp[4], 0u);    // 10 x 16 - 204, clamped
  EXPECT_EQ(sharp[8], 194u);  // 10 x 64 - 446
}

TEST(Convolution, KernelsLieAroundTheirMiddle) {
  // Kernel 15 takes the pixel at the upper left; 2 the one two to the lower right, twice.
  Words pixels(25);
  pixels[0] = 30;
  pixels[24] = 40;
  const Picture image = PictureOf(24, 5, 5, pixels);
  EXPECT_EQ(FilteredByNumber(image, 15)[6], 30u);
  EXPECT_EQ(FilteredByNumber(image, 2)[12], 0x808080u + 2 * 40 - 30);
}

// What must not change anything.

TEST(Convolution, NullArraysAndDivisor0ChangeNothing) {
  const Picture before = Filled(32, 3, 2, 0xFF405060);
  const Picture scratch_before = Filled(32, 3, 2, 0x01020304);
  Picture image = before, scratch = scratch_before;
  TSurfDesc i = Describe(image), s = Describe(scratch);
  int weights[] = {2};
  long offsets[] = {0};
  EXPECT_FALSE(DoConvolucion(i, s, 1, nullptr, offsets, 1, 0));
  EXPECT_FALSE(DoConvolucion(i, s, 1, weights, nullptr, 1, 0));
  EXPECT_FALSE(DoConvolucion(i, s, 0, nullptr, nullptr, 1, 0));
  EXPECT_FALSE(DoConvolucion(i, s, 1, weights, offsets, 0, 5));
  EXPECT_TRUE(support::Same(before, image, i));
  EXPECT_TRUE(support::Same(scratch_before, scratch, s));
}

TEST(Convolution, Kernel23AndUnknownNumbersAreRefused) {
  for (int format : model::kFormats) {
    const Picture before = Filled(format, 3, 2, 0x405060);
    Picture image = before, scratch = before;
    TSurfDesc i = Describe(image), s = Describe(scratch);
    for (int number : {23, 24, 25, 1000, -1, INT_MAX, INT_MIN}) {
      EXPECT_FALSE(FiltroMask(i, s, number)) << number;
    }
    EXPECT_TRUE(support::Same(before, image, i));
    EXPECT_TRUE(support::Same(before, scratch, s));
  }
}

TEST(Convolution, OtherFormatsAreFalse) {
  for (uint32_t bpp : {8u, 4u, 15u, 0u, 48u}) {
    const Picture before = Filled(32, 3, 2, 0x405060);
    Picture image = before, scratch = before;
    TSurfDesc i = Describe(image), s = Describe(scratch);
    i.bpp = bpp;
    EXPECT_FALSE(Convolve(i, s, {{0, 1}}, 1, 0)) << bpp;
    EXPECT_FALSE(DoSuavizado(i, s)) << bpp;
    EXPECT_FALSE(DoEmboss(i, s)) << bpp;
    EXPECT_FALSE(DoRealce(i, s)) << bpp;
    EXPECT_FALSE(FiltroMask(i, s, 9)) << bpp;
    EXPECT_EQ(image.bytes, before.bytes) << bpp;
    EXPECT_EQ(scratch.bytes, before.bytes) << bpp;
  }
}

TEST(Convolution, ImagesWithoutPixelsChangeNothing) {
  for (int format : kFilteredFormats) {
    for (const auto& [width, height] : {std::pair{0, 0}, {5, 0}, {0, 3}, {-4, 2}, {3, -2}}) {
      const Picture before = Filled(format, 6, 5, 0x405060);
      Picture image = before, scratch = before;
      image.width = width;
      image.height = height;
      if (width <= 0) image.pitch = 0;
      TSurfDesc i = Describe(image), s = Describe(scratch);
      EXPECT_TRUE(Convolve(i, s, {{0, 2}}, 1, 7));
      EXPECT_TRUE(DoSuavizado(i, s));
      EXPECT_TRUE(FiltroMask(i, s, 12));
      EXPECT_EQ(image.bytes, before.bytes) << format << ", " << width << " x " << height;
      EXPECT_EQ(scratch.bytes, before.bytes) << format << ", " << width << " x " << height;
    }
  }
}

// Irregular behaviour.

TEST(Convolution, PaddingOf16BitImagesIsFiltered) {
  for (int format : {16, 17, 18, 19}) {
    Picture image = Filled(format, 3, 2, 0), scratch = image;
    image.width = 2;  // the third column is padding now
    TSurfDesc i = Describe(image), s = Describe(scratch);
    EXPECT_TRUE(Convolve(i, s, {}, 1, 1));
    EXPECT_NE(image.Get(0, 0), 0u) << format;
    EXPECT_EQ(image.Get(2, 0), image.Get(0, 0)) << format;
    EXPECT_EQ(image.Get(2, 1), image.Get(0, 0)) << format;
  }
  // Also when there is nothing but padding.
  Picture padding = Filled(16, 3, 1, 0), copy = padding;
  padding.width = 0;
  TSurfDesc p = Describe(padding), c = Describe(copy);
  EXPECT_TRUE(Convolve(p, c, {}, 1, 1));
  EXPECT_EQ(padding.bytes, Filled(16, 3, 1, 0x0841).bytes);
  for (int format : {24, 32}) {
    Picture image = Filled(format, 3, 2, 0x112233), scratch = image;
    image.width = 2;
    TSurfDesc i = Describe(image), s = Describe(scratch);
    EXPECT_TRUE(Convolve(i, s, {}, 1, 1));
    EXPECT_EQ(image.Get(1, 1), 0x010101u) << format;
    EXPECT_EQ(image.Get(2, 1), 0x112233u) << format;
  }
}

TEST(Convolution, The16BitPixelsOfAnOddPitchGoOnInSteps) {
  // Two rows of five bytes are five pixels, the third one across the rows.
  Picture image = PictureOf(16, 5, 1, {1, 2, 3, 4, 5}), scratch = image;
  image.width = 2;
  image.height = 2;
  image.pitch = 5;
  TSurfDesc i = Describe(image), s = Describe(scratch);
  EXPECT_TRUE(Convolve(i, s, {{0, 2}}, 1, 0));
  EXPECT_EQ(image.bytes, PictureOf(16, 5, 1, {2, 4, 6, 8, 10}).bytes);
}

TEST(Convolution, GreenOf16BitPixelsGetsTwiceTheBias) {
  EXPECT_EQ(Convolved(Filled(16, 1, 1, 0), {}, 1, 5)[0], 5u << 11 | 10u << 5 | 5u);
  EXPECT_EQ(Convolved(Filled(17, 1, 1, 0), {}, 1, 5)[0], 5u << 10 | 10u << 5 | 5u);
  EXPECT_EQ(Convolved(Filled(18, 1, 1, 0), {}, 1, 5)[0], 5u << 10 | 10u << 5 | 5u);
  EXPECT_EQ(Convolved(Filled(19, 1, 1, 0), {}, 1, 5)[0], 5u << 8 | 10u << 4 | 5u);
  EXPECT_EQ(Convolved(Filled(24, 1, 1, 0), {}, 1, 5)[0], 0x050505u);
  EXPECT_EQ(Convolved(Filled(32, 1, 1, 0), {}, 1, 5)[0], 0x050505u);
}

TEST(Convolution, AlphaBitsCountAsHighBitsOfRed) {
  const Taps identity = {{0, 1}};
  EXPECT_EQ(Convolved(PictureOf(18, 2, 1, {0x8000, 0x0421}), identity), (Words{0x7C00, 0x0421}));
  EXPECT_EQ(Convolved(PictureOf(17, 2, 1, {0x8000, 0x0421}), identity), (Words{0x7C00, 0x0421}));
  EXPECT_EQ(Convolved(PictureOf(19, 2, 1, {0x1000, 0x0123}), identity), (Words{0x0F00, 0x0123}));
  // Half of 32 + 4, of 240 + 2.
  EXPECT_EQ(Convolved(PictureOf(18, 1, 1, {0x9000}), identity, 2), Words{18u << 10});
  EXPECT_EQ(Convolved(PictureOf(19, 1, 1, {0xF200}), identity, 20), Words{12u << 8});
}

TEST(Convolution, TheImageIsOneRunOfBytes) {
  // Left of a row lies the end of the row above, its padding included; before the first pixel and
  // behind the last one these are repeated.
  Picture image = PictureOf(24, 3, 2, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(Convolved(image, {{-3, 1}}), (Words{1, 1, 2, 3, 4, 5}));
  EXPECT_EQ(Convolved(image, {{3, 1}}), (Words{2, 3, 4, 5, 6, 6}));
  EXPECT_EQ(Convolved(image, {{-9, 1}}), (Words{1, 1, 1, 1, 2, 3}));
  EXPECT_EQ(Convolved(image, {{INT_MIN, 1}, {INT_MAX, 10}}), Words(6, 61));
  image.width = 2;
  EXPECT_EQ(Convolved(image, {{-3, 1}}), (Words{1, 1, 3, 4}));
  EXPECT_EQ(Convolved(image, {{9, 1}}), (Words{4, 5, 6, 6}));
}

TEST(Convolution, TapsNeedNoWholePixels) {
  EXPECT_EQ(Convolved(PictureOf(24, 2, 1, {0x030201, 0x060504}), {{1, 1}}),
            (Words{0x040302, 0x060504}));
  EXPECT_EQ(Convolved(PictureOf(32, 2, 1, {0x04030201, 0x08070605}), {{-1, 1}}),
            (Words{0x030201, 0x060504}));
  EXPECT_EQ(Convolved(PictureOf(16, 2, 1, {0x0201, 0x0403}), {{1, 1}}), (Words{0x0302, 0x0403}));
}

TEST(Convolution, TapsOfEqualWeightAreClampedEachForItself) {
  // Two rows of taps ten bytes apart, which is no whole pixel: the first of a row is moved to the
  // image's first pixel, the second is not.
  Words pixels;
  for (uint32_t i = 0; i < 48; ++i) pixels.push_back(0x804000 + i * 0x020105);
  const Picture image = PictureOf(24, 48, 1, pixels);
  Picture expected = image, scratch = image;
  const Taps taps = {{-5, 1}, {5, 1}, {-16, 1}, {-6, 1}};
  model::Convolve(expected, scratch, taps, 4, 0);
  support::ForEachTarget([&] { EXPECT_EQ(Convolved(image, taps, 4), Pixels(expected)); });
}

TEST(Convolution, UpTo3BytesAtTheEndAreReadFromTheOldScratch) {
  // Nine bytes: eight are copied. The last pixel's red comes from what the scratch had.
  Picture image = PictureOf(24, 3, 1, {0x010203, 0x040506, 0x070809});
  image.bytes.resize(9);
  Picture scratch = image;
  scratch.bytes.assign(9, 0x55);
  TSurfDesc i = Describe(image), s = Describe(scratch);
  EXPECT_TRUE(Convolve(i, s, {{0, 1}}, 1, 0));
  EXPECT_EQ(Pixels(image), (Words{0x010203, 0x040506, 0x550809}));
  EXPECT_EQ(scratch.bytes, (std::vector<uint8_t>{3, 2, 1, 6, 5, 4, 9, 8, 0x55}));
}

TEST(Convolution, SumsAndBiasesWrapAt32Bits) {
  const Picture image = Filled(24, 1, 1, 0x040201);
  // 4 x 0x40000000 is 0, 2 x is INT_MIN, 1 x stays.
  EXPECT_EQ(Convolved(image, {{0, 0x40000000}}, 0x10000000)[0], 0x000004u);
  EXPECT_EQ(Convolved(image, {{0, 0x40000000}}, -0x10000000)[0], 0x000800u);
  EXPECT_EQ(Convolved(image, {{0, INT_MIN}, {0, INT_MIN}}, 1, 9)[0], 0x090909u);
  // INT_MIN by -1 is INT_MIN again.
  EXPECT_EQ(Convolved(image, {{0, 0x40000000}}, -1)[0], 0u);
  EXPECT_EQ(Convolved(image, {{0, 0x40000000}}, -1, INT_MIN)[0], 0x0000FFu);
  EXPECT_EQ(Convolved(image, {{0, 1}}, 1, INT_MAX)[0], 0u);
  EXPECT_EQ(Convolved(Filled(16, 1, 1, 0), {}, 1, INT_MIN)[0], 0u);
  EXPECT_EQ(Convolved(Filled(16, 1, 1, 0x1F), {}, 1, INT_MAX)[0], 0xF81Fu);
}

TEST(Convolution, QuotientsAreTruncatedTowardZeroBeforeTheBias) {
  const Picture image = Filled(24, 1, 1, 0x070605);
  EXPECT_EQ(Convolved(image, {{0, -1}}, 4, 10)[0], 0x090909u);  // -7/4, -6/4, -5/4: -1
  EXPECT_EQ(Convolved(image, {{0, 1}}, -4, 10)[0], 0x090909u);
  EXPECT_EQ(Convolved(image, {{0, -1}}, -4, 10)[0], 0x0B0B0Bu);
  EXPECT_EQ(Convolved(image, {{0, 255}}, INT_MIN, 10)[0], 0x0A0A0Au);
}

TEST(Convolution, NoTapsAreASumOf0) {
  for (int count : {0, -1, INT_MIN}) {
    Picture image = Filled(24, 3, 1, 0x405060), scratch = image;
    TSurfDesc i = Describe(image), s = Describe(scratch);
    int weight = 1;
    long offset = 0;
    EXPECT_TRUE(DoConvolucion(i, s, count, &weight, &offset, 3, 8));
    EXPECT_EQ(Pixels(image), Words(3, 0x080808)) << count;
  }
}

// Random images, whole memories compared.

struct Images {
  Picture image, scratch;
};

// The scratch memory ends where the copy may end; its descriptor says something else.
Images AnyImages(Random& random, int format, int width, int height) {
  support::PictureOptions options;
  options.max_padding = random.OneIn(3) ? 0 : 7;
  options.guard = random.OneIn(3) ? 0 : 67 + random.Below(4);
  Images images;
  images.image = support::RandomPicture(random, format, width, height, options);
  options.max_padding = 0;
  options.guard = random.OneIn(3) ? 0 : 67 + random.Below(4);
  images.scratch = support::RandomPicture(random, 8, height * images.image.pitch, 1, options);
  images.scratch.format = model::kFormats[random.Below(7)];
  return images;
}

template <class Model, class Library>
void ExpectOnEveryTarget(const Images& before, Model&& model, Library&& library) {
  Images expected = before;
  const bool result = model(expected.image, expected.scratch);
  support::ForEachTarget([&] {
    Images actual = before;
    TSurfDesc i = Describe(actual.image), s = Describe(actual.scratch);
    EXPECT_EQ(library(i, s), result);
    EXPECT_TRUE(support::Same(expected.image, actual.image, i));
    EXPECT_TRUE(support::Same(expected.scratch, actual.scratch, s)) << "(scratch)";
  });
}

int64_t AnyWeight(Random& random, int style) {
  // Factors of the largest byte around which sums leave 16 and 32 bits.
  static constexpr int kEdges[] = {127, 128, 129, 256, 257, 258, 8421504, 8421505, 16843009};
  switch (style) {
    case 0:
      return random.Between(-5, 5);
    case 1:
      return random.Between(-300, 300);
    case 2: {
      const int edge = kEdges[random.Below(9)];
      return random.OneIn(2) ? edge : -edge;
    }
    case 3:
      return random.OneIn(2) ? 0 : random.Between(-60000, 60000);
    default:
      return int32_t(random.Next());
  }
}

Taps AnyTaps(Random& random, const Picture& image) {
  const int bytes = image.BytesPerPixel();
  const int size = image.height * image.pitch;
  const int style = random.Below(7), shape = random.Below(7);
  const int64_t equal = random.OneIn(2) ? 1 : random.Between(-20, 60);
  Taps taps;
  const auto add = [&](int64_t offset) {
    taps.push_back({offset, style > 4 ? equal : AnyWeight(random, style)});
  };
  if (shape < 3) {  // rows of taps: around the pixel, or anywhere and with gaps
    const int columns = random.Between(1, 7), rows = random.Between(1, 5);
    const bool around = random.OneIn(2);
    const int step = around || random.OneIn(2) ? bytes : random.Between(0, 12);
    const int down = around || random.OneIn(2) ? image.pitch : random.Between(-50, 50);
    const int first = around ? -columns / 2 * step - rows / 2 * down : random.Between(-99, 99);
    for (int y = 0; y < rows; ++y) {
      for (int x = 0; x < columns; ++x) add(first + y * down + x * step);
    }
    if (random.OneIn(3)) std::swap(taps.front(), taps[size_t(random.Below(int(taps.size())))]);
    if (random.OneIn(4)) taps.pop_back();
    return taps;
  }
  int count = random.OneIn(2) ? random.Below(6) : random.Between(0, 60);
  if (random.OneIn(12)) count += random.Between(4, 100);
  for (; count > 0; --count) {
    switch (shape) {
      case 3: {  // single neighbours
        const int dx = random.Between(-4, 4), dy = random.Between(-3, 3);
        add(int64_t{dy} * image.pitch + dx * bytes);
        break;
      }
      case 4:
        add(random.Between(-2 * image.pitch, 2 * image.pitch));
        break;
      case 5:
        add(random.Between(-2 * size, 2 * size));
        break;
      default: {
        static constexpr int kFar[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, -1, 0};
        add(random.OneIn(2) ? kFar[random.Below(6)] : int32_t(random.Next()));
        break;
      }
    }
  }
  return taps;
}

int AnyDivisor(Random& random) {
  static constexpr int kDivisors[] = {1,  1,    9,     8,       3,       7,      25,
                                      -1, -9,   2,     256,     255,     -128,   65536,
                                      81, 1000, 32768, INT_MAX, INT_MIN, -65537, 1 << 30};
  if (random.OneIn(3)) return random.Between(1, 700);
  if (random.OneIn(8)) return int(random.Next() | 1);
  return kDivisors[random.Below(21)];
}

int AnyBias(Random& random) {
  static constexpr int kBiases[] = {0, 0, 127, 128, -128, 3, -3, 300, -40000, INT_MAX, INT_MIN};
  return random.OneIn(6) ? int(random.Next()) : kBiases[random.Below(11)];
}

TEST(Convolution, RandomTaps) {
  support::ForEachCase(6 * support::kWidths * 3, [](Random& random, int seed) {
    const int height = random.Between(1, 7);
    const Images images =
        AnyImages(random, kFilteredFormats[seed % 6], support::WidthOf(seed / 6), height);
    const Taps taps = AnyTaps(random, images.image);
    const int divisor = AnyDivisor(random), bias = AnyBias(random);
    ExpectOnEveryTarget(
        images, [&](Picture& i, Picture& s) { return model::Convolve(i, s, taps, divisor, bias); },
        [&](TSurfDesc& i, TSurfDesc& s) { return Convolve(i, s, taps, divisor, bias); });
  });
}

TEST(Convolution, RandomFixedFilters) {
  struct Fixed {
    const char* name;
    bool (*library)(TSurfDesc&, TSurfDesc&);
    bool (*model)(Picture&, Picture&);
  };
  static constexpr Fixed kFixed[] = {{"box", DoSuavizado, model::Smooth},
                                     {"relief", DoEmboss, model::Emboss},
                                     {"sharpening", DoRealce, model::Sharpen}};
  for (const Fixed& fixed : kFixed) {
    SCOPED_TRACE(fixed.name);
    support::ForEachCase(6 * support::kWidths, [&](Random& random, int seed) {
      const int height = random.Between(1, 9);
      const Images images =
          AnyImages(random, kFilteredFormats[seed % 6], support::WidthOf(seed / 6), height);
      ExpectOnEveryTarget(images, fixed.model, fixed.library);
    });
  }
}

TEST(Convolution, EveryKernelInEveryFormatAndSize) {
  for (int number = 0; number < 24; ++number) {
    SCOPED_TRACE(number);
    support::ForEachCase(6 * 7, [&](Random& random, int seed) {
      int width = random.Between(1, 9), height = random.Between(1, 9);
      switch (seed / 6) {
        case 0:
          width = height = 1;
          break;
        case 1:
          height = 1;
          break;
        case 2:
          width = 1;
          break;
        case 3:
          break;
        default:
          width = support::WidthOf(random.Below(support::kWidths));
          break;
      }
      const Images images = AnyImages(random, kFilteredFormats[seed % 6], width, height);
      ExpectOnEveryTarget(
          images, [&](Picture& i, Picture& s) { return model::FilterByNumber(i, s, number); },
          [&](TSurfDesc& i, TSurfDesc& s) { return FiltroMask(i, s, number); });
    });
  }
}

// One tap anywhere around the ends of small images: what is read, and when it was copied.
TEST(Convolution, EveryOffset) {
  for (int offset = -260; offset <= 260; ++offset) {
    SCOPED_TRACE(offset);
    support::ForEachCase(6, [&](Random& random, int seed) {
      const int width = random.Between(1, 40), height = random.Between(1, 3);
      const Images images = AnyImages(random, kFilteredFormats[seed % 6], width, height);
      const int weight = random.OneIn(2) ? 1 : 1 << 16;  // sums of 16 or of 32 bits
      const Taps taps = {{offset, weight}};
      ExpectOnEveryTarget(
          images, [&](Picture& i, Picture& s) { return model::Convolve(i, s, taps, weight, 0); },
          [&](TSurfDesc& i, TSurfDesc& s) { return Convolve(i, s, taps, weight, 0); });
    });
  }
}

TEST(Convolution, RandomLargerImages) {
  support::ForEachCase(6 * 4, [](Random& random, int seed) {
    const int width = random.Between(130, 300), height = random.Between(20, 60);
    const Images images = AnyImages(random, kFilteredFormats[seed % 6], width, height);
    if (seed < 6) return ExpectOnEveryTarget(images, model::Smooth, DoSuavizado);
    if (seed < 12) {
      const Taps taps = AnyTaps(random, images.image);
      return ExpectOnEveryTarget(
          images, [&](Picture& i, Picture& s) { return model::Convolve(i, s, taps, 31, 5); },
          [&](TSurfDesc& i, TSurfDesc& s) { return Convolve(i, s, taps, 31, 5); });
    }
    const int number = random.Below(23);
    ExpectOnEveryTarget(
        images, [&](Picture& i, Picture& s) { return model::FilterByNumber(i, s, number); },
        [&](TSurfDesc& i, TSurfDesc& s) { return FiltroMask(i, s, number); });
  });
}

// Every sum from 0 to 65535, and its negative, by divisors that are easy to get wrong.
TEST(Convolution, EveryQuotientOf16BitSums) {
  constexpr int kColumns = 65536;
  for (int format : {24, 32}) {
    Picture image = Filled(format, kColumns, 2, 0);
    for (int x = 0; x < kColumns; ++x) {
      image.Put(x, 0, uint32_t(x & 255) * 0x010101);
      image.Put(x, 1, uint32_t(x >> 8) * 0x010101);
    }
    const Picture before = image;
    Picture scratch = image;
    for (int high : {127, 256}) {
      for (int sign : {1, -1}) {
        for (int divisor : {2, 3, 7, 8, 9, 25, 49, 100, 255, 256, 257, 1000, -7}) {
          support::ForEachTarget([&] {
            image = before;
            TSurfDesc i = Describe(image), s = Describe(scratch);
            ASSERT_TRUE(
                Convolve(i, s, {{0, sign}, {image.pitch, int64_t{sign} * high}}, divisor, 100));
            for (int x = 0; x < kColumns; ++x) {
              const int sum = sign * ((x & 255) + high * (x >> 8));
              const int value = std::min(std::max(sum / divisor + 100, 0), 255);
              ASSERT_EQ(image.Get(x, 0), uint32_t(value) * 0x010101) << sum << " / " << divisor;
            }
          });
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }
}

}  // namespace
