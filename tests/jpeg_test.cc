
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/jpeg_model.h"
#include "tests/support/cases.h"
#include "tests/support/checksum.h"
#include "tests/support/compare.h"
#include "tests/support/files.h"
#include "tests/support/libjpeg.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::kFormats;
using model::Picture;
using support::DecodePlain;
using support::ForEachCase;
using support::JpegFile;
using support::JpegOptions;
using support::PlainImage;
using support::Random;
using support::Same;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t kOld = 0x11;  // every byte of a surface before it is loaded

Picture Blank(int format, int width, int height, int padding = 3) {
  Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  p.pitch = width * p.BytesPerPixel() + padding;
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  p.bytes.assign(size_t(p.pitch) * size_t(height), kOld);
  p.has_palette = format == 8;
  p.palette.fill({kOld, kOld, kOld, kOld});
  return p;
}

// The first bytes of a file in memory of exactly that size, so that sanitizers see reads behind it.
Bytes Cut(const Bytes& file, size_t length) { return {file.begin(), file.begin() + int(length)}; }

Bytes Noise(Random& random, int samples) {
  Bytes noise(static_cast<size_t>(samples));
  for (uint8_t& byte : noise) byte = random.Byte();
  return noise;
}
Bytes Uniform(int width, int height, uint8_t red, uint8_t green, uint8_t blue) {
  Bytes samples;
  for (int i = 0; i < width * height; ++i) samples.insert(samples.end(), {red, green, blue});
  return samples;
}
// Smooth, with colours of every kind.
Bytes Gradient(int width, int height) {
  Bytes samples;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      samples.insert(samples.end(), {uint8_t(255 * x / width), uint8_t(255 * y / height),
                                     uint8_t(255 - 127 * x / width - 127 * y / height)});
    }
  }
  return samples;
}

enum class Loaded { kTrue, kFalse, kThrown };

Loaded Load(TSurfDesc& surface, Bytes file) {
  try {
    return LoadJPG(surface, file.data(), long(file.size())) ? Loaded::kTrue : Loaded::kFalse;
  } catch (int) {
    return Loaded::kThrown;
  }
}
Loaded Load(Picture& p, const Bytes& file) {
  TSurfDesc surface = Describe(p);
  return Load(surface, file);
}
pincel_status LoadBounded(Picture& p, const Bytes& file) {
  TSurfDesc surface = Describe(p);
  return pincel_load_jpg(surface, file.data(), file.size());
}

// --- header scan ---

CSize ScannedSize(Bytes data) {
  TSurfDesc surface;
  std::memset(&surface, 0x55, sizeof(surface));
  EXPECT_TRUE(LoadInfoJPG(surface, data.data(), long(data.size())));
  EXPECT_EQ(surface.bpp, 24u);
  EXPECT_EQ(surface.rMask, 0x55555555u);
  EXPECT_EQ(surface.pitch, 0x55555555);
  return {surface.width, surface.height};
}
bool operator==(const CSize& a, const CSize& b) {
  return a.width == b.width && a.height == b.height;
}

const Bytes kFrame = {0xFF, 0xC0, 0, 17, 8, 0x01, 0x02, 0x03, 0x04, 3};  // 0x304 x 0x102
constexpr CSize kFrameSize = {0x304, 0x102};
// Looks like a frame of another size; must be skipped.
const Bytes kDecoy = {0xFF, 0xC0, 0, 17, 8, 0x77, 0x77, 0x77, 0x77, 3};

Bytes Joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}
// A marker and its segment.
Bytes Segment(uint8_t marker, const Bytes& contents) {
  const size_t length = contents.size() + 2;
  return Joined({{0xFF, marker, uint8_t(length >> 8), uint8_t(length)}, contents});
}

TEST(LoadInfoJPG, ReadsTheFirstFrameHeader) {
  EXPECT_TRUE(ScannedSize(Joined({{0xFF, 0xD8}, kFrame})) == kFrameSize);
  EXPECT_TRUE(ScannedSize(Joined({{0xFF, 0xD8}, kFrame, kDecoy})) == kFrameSize);
  // Neither a start of image nor any order is asked for.
  EXPECT_TRUE(ScannedSize(Joined({{1, 2, 3}, {0xFF, 0xFF, 0xFF}, kFrame})) == kFrameSize);
}

TEST(LoadInfoJPG, KnowsEveryFrameMarker) {
  for (int marker = 0xC0; marker <= 0xDE; ++marker) {
    const bool frame =
        (marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) || marker == 0xDE;
    Bytes file = Joined({kFrame, Bytes(60)});
    file[1] = uint8_t(marker);
    EXPECT_EQ(ScannedSize(file) == kFrameSize, frame) << marker;
  }
}

TEST(LoadInfoJPG, SkipsSegmentsByTheirLength) {
  for (int marker = 0x02; marker <= 0xFE; ++marker) {
    if (marker >= 0xC0 && marker <= 0xDF && marker != 0xC8 && marker != 0xCC) continue;
    EXPECT_TRUE(ScannedSize(Joined({Segment(uint8_t(marker), kDecoy), kFrame})) == kFrameSize)
        << marker;
    // A length below 2 counts as 2.
    for (uint8_t length : {0, 1}) {
      const Bytes file = Joined({{0xFF, uint8_t(marker), 0, length}, kFrame});
      EXPECT_TRUE(ScannedSize(file) == kFrameSize) << marker;
    }
  }
}

TEST(LoadInfoJPG, MarkersThatStandAloneHaveNoSegment) {
  for (int marker : {0x00, 0x01, 0xD0, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9}) {
    const Bytes file = Joined({{0xFF, uint8_t(marker)}, kFrame, Bytes(40)});
    EXPECT_TRUE(ScannedSize(file) == kFrameSize) << marker;
  }
}

TEST(LoadInfoJPG, WalksTablesToTheirEnd) {
  Bytes huffman(17);
  huffman[0] = 0x11;
  huffman[1] = 4;
  huffman[16] = 6;
  huffman.insert(huffman.end(), kDecoy.begin(), kDecoy.end());
  EXPECT_TRUE(ScannedSize(Joined({Segment(0xC4, Joined({huffman, huffman})), kFrame})) ==
              kFrameSize);
  // The last table ends behind its segment.
  Bytes file = Joined({Segment(0xC4, huffman), kFrame});
  file[3] = uint8_t(2 + 17);
  EXPECT_TRUE(ScannedSize(file) == kFrameSize);
  file[3] = 3;
  EXPECT_TRUE(ScannedSize(file) == kFrameSize);
  file[3] = 2;  // no table at all
  EXPECT_FALSE(ScannedSize(file) == kFrameSize);

  Bytes bytes(65), words(129);
  words[0] = 0x10;
  std::copy(kDecoy.begin(), kDecoy.end(), bytes.begin() + 40);
  std::copy(kDecoy.begin(), kDecoy.end(), words.begin() + 80);
  file = Joined({Segment(0xDB, Joined({bytes, words, bytes})), kFrame});
  EXPECT_TRUE(ScannedSize(file) == kFrameSize);
  file = Joined({Segment(0xDB, words), kFrame});
  file[3] = 4;
  EXPECT_TRUE(ScannedSize(file) == kFrameSize);
}

TEST(LoadInfoJPG, SkipsWhatHasAFixedSize) {
  EXPECT_TRUE(ScannedSize(Joined({{0xFF, 0xDC, 0, 4, 0xFF, 0xC0}, kFrame})) == kFrameSize);
  EXPECT_TRUE(ScannedSize(Joined({{0xFF, 0xDD, 9, 9, 0xFF, 0xC0}, kFrame})) == kFrameSize);
  EXPECT_TRUE(ScannedSize(Joined({{0xFF, 0xDF, 9, 9, 0xFF}, kFrame})) == kFrameSize);
}

TEST(LoadInfoJPG, SearchesCodedDataForTheNextMarker) {
  const Bytes scan = {0xFF, 0xDA, 0xEE, 0xEE, 2, 0xFF, 0xC0, 0xFF, 0xC0, 0xFF, 0xC0, 0xFF};
  const Bytes coded = {1, 2, 0xFF, 0x00, 3, 0xFF, 0xD5, 4};
  EXPECT_TRUE(ScannedSize(Joined({scan, coded, kFrame})) == kFrameSize);
}

TEST(LoadInfoJPG, StopsAtTheGivenLength) {
  const Bytes file = JpegFile(37, 21, Gradient(37, 21));
  Bytes marker = {0xFF, 0xC0};
  const size_t frame =
      size_t(std::search(file.begin(), file.end(), marker.begin(), marker.end()) - file.begin());
  for (size_t length = 0; length <= file.size(); ++length) {
    const CSize expected = length < frame + 9 ? CSize{0, 0} : CSize{37, 21};
    ASSERT_TRUE(ScannedSize(Cut(file, length)) == expected) << length;
  }
  TSurfDesc surface{};
  Bytes copy = file;
  for (long length : {0L, -1L, -0x7FFFFFFFL}) {
    surface.width = surface.height = 5;
    EXPECT_TRUE(LoadInfoJPG(surface, copy.data(), length));
    EXPECT_EQ(surface.width, 0);
    EXPECT_EQ(surface.height, 0);
  }
  EXPECT_TRUE(LoadInfoJPG(surface, nullptr, 100));
}

TEST(LoadInfoJPG, ReportsProgressiveFiles) {
  JpegOptions options;
  options.progressive = true;
  const Bytes file = JpegFile(50, 30, Gradient(50, 30), options);
  EXPECT_TRUE(ScannedSize(file) == (CSize{50, 30}));
}

// --- decoding ---

// Quality 100 keeps grey as it is, whatever the decoder does to colours.
TEST(LoadJPG, PacksEachFormat) {
  const uint8_t grey = 0x9B;
  const Bytes file = [&] {
    JpegOptions options;
    options.quality = 100;
    return JpegFile(2, 1, Uniform(2, 1, grey, grey, grey), options);
  }();
  const struct {
    int format;
    uint32_t pixel;
  } kExpected[] = {{16, 0x9CD3}, {17, 0x4E73},   {18, 0x4E73},
                   {19, 0x0999}, {24, 0x9B9B9B}, {32, 0x119B9B9B}};
  for (const auto& expected : kExpected) {
    Picture p = Blank(expected.format, 2, 1);
    EXPECT_EQ(Load(p, file), Loaded::kTrue);
    EXPECT_EQ(p.Get(0, 0), expected.pixel) << expected.format;
    EXPECT_EQ(p.Get(1, 0), expected.pixel) << expected.format;
    EXPECT_EQ(p.bytes.back(), kOld);
  }
}

JpegOptions AnyJpegOptions(Random& random) {
  JpegOptions options;
  options.quality = random.Between(1, 100);
  constexpr J_COLOR_SPACE kSpaces[] = {JCS_YCbCr, JCS_YCbCr, JCS_YCbCr, JCS_GRAYSCALE, JCS_RGB};
  options.space = kSpaces[random.Below(5)];
  options.horizontal = random.Between(1, 2);
  options.vertical = random.Between(1, 2);
  if (options.space != JCS_YCbCr) options.horizontal = options.vertical = 1;
  if (random.OneIn(4)) options.restart_interval = random.Between(1, 5);
  options.progressive = random.OneIn(3);
  options.arithmetic = random.OneIn(5);
  if (random.OneIn(3)) options.comment = Noise(random, random.Below(300));
  return options;
}
Bytes AnyFile(Random& random, int width, int height) {
  const JpegOptions options = AnyJpegOptions(random);
  const int samples = width * height * (options.space == JCS_GRAYSCALE ? 1 : 3);
  if (options.space == JCS_GRAYSCALE || random.OneIn(3)) {
    return JpegFile(width, height, Noise(random, samples), options);
  }
  return JpegFile(width, height, Gradient(width, height), options);
}

// Every kind of file, on surfaces that are smaller, as large, and larger.
TEST(LoadJPG, AgreesWithThePlainDecoder) {
  support::ForEachTarget([] {
    ForEachCase(80, [](Random& random, int) {
      const int width = random.Between(1, 70), height = random.Between(1, 40);
      const Bytes file = AnyFile(random, width, height);
      const PlainImage colours = DecodePlain(file), indices = DecodePlain(file, lu_gPaleta);
      ASSERT_TRUE(colours.sound && indices.sound);
      for (int format : kFormats) {
        const bool same = random.OneIn(2);
        const int w = same ? width : random.Between(0, 2 * width);
        const int h = same ? height : random.Between(0, 2 * height);
        support::PictureOptions options = support::AnyOptions(random);
        if (format == 8) options.exact = false;  // all of height x pitch bytes count
        Picture expected = support::RandomPicture(random, format, w, h, options);
        Picture actual = expected, bounded = expected, expected_bounded = expected;
        const Bytes& samples = (format == 8 ? indices : colours).samples;
        model::StoreJpeg(expected, width, samples);
        TSurfDesc surface = Describe(actual);
        const bool any_pixels = surface.pixels != nullptr;
        ASSERT_EQ(Load(surface, file), any_pixels ? Loaded::kTrue : Loaded::kFalse);
        ASSERT_TRUE(Same(expected, actual, surface)) << format;

        surface = Describe(bounded);
        const bool fits = w >= width && h >= height;
        ASSERT_EQ(pincel_load_jpg(surface, file.data(), file.size()),
                  fits ? PINCEL_OK : PINCEL_SURFACE_TOO_SMALL);
        if (fits) model::StoreBoundedJpeg(expected_bounded, width, samples);
        ASSERT_TRUE(Same(expected_bounded, bounded, surface)) << format;
      }
    });
  });
}

TEST(LoadJPG, AlphaBitsOf16BitPixelsAreZero) {
  Random random(1);
  const Bytes file = JpegFile(33, 9, Noise(random, 33 * 9 * 3));
  for (int format : {17, 18, 19}) {
    Picture p = Blank(format, 33, 9, 0);
    std::fill(p.bytes.begin(), p.bytes.end(), uint8_t{0xFF});
    EXPECT_EQ(Load(p, file), Loaded::kTrue);
    const uint32_t alpha = format == 19 ? 0xF000 : 0x8000;
    for (int i = 0; i < 33 * 9; ++i) EXPECT_EQ(p.Get(i % 33, i / 33) & alpha, 0u);
  }
}

TEST(LoadJPG, FourthBytesAreKept) {
  Random random(2);
  const Bytes file = JpegFile(33, 9, Noise(random, 33 * 9 * 3));
  Picture p = Blank(32, 33, 9);
  for (size_t i = 0; i < p.bytes.size(); ++i) p.bytes[i] = uint8_t(i);
  const Picture before = p;
  EXPECT_EQ(Load(p, file), Loaded::kTrue);
  for (int i = 0; i < 33 * 9; ++i) {
    EXPECT_EQ(p.Byte(i % 33, i / 33, 3), before.Byte(i % 33, i / 33, 3));
  }
}

TEST(LoadJPG, IndexedRowsHaveTheImagesWidthInWholeWords) {
  const Bytes file = JpegFile(10, 4, Gradient(10, 4));
  const Bytes indices = DecodePlain(file, lu_gPaleta).samples;
  for (int padding : {2, 3, 90}) {
    Picture p = Blank(8, 10, 4, padding);
    EXPECT_EQ(Load(p, file), Loaded::kTrue);
    for (size_t i = 0; i < p.bytes.size(); ++i) {
      const size_t x = i % 12, y = i / 12;
      const uint8_t expected = y >= 4 ? kOld : x >= 10 ? 0 : indices[10 * y + x];
      ASSERT_EQ(p.bytes[i], expected) << padding << ": " << i;
    }
  }
}

TEST(LoadJPG, IndexedRowsEndWithTheSurface) {
  const Bytes file = JpegFile(10, 4, Gradient(10, 4));
  const Bytes indices = DecodePlain(file, lu_gPaleta).samples;
  for (int bytes = 1; bytes <= 60; ++bytes) {
    // The same number of bytes in one row, and in one column.
    for (bool row : {true, false}) {
      Picture p = row ? Blank(8, bytes, 1, 0) : Blank(8, 1, bytes, 0);
      p.bytes.resize(size_t(bytes));
      EXPECT_EQ(Load(p, file), Loaded::kTrue);
      for (size_t i = 0; i < p.bytes.size(); ++i) {
        const size_t x = i % 12, y = i / 12;
        ASSERT_EQ(p.bytes[i], y >= 4 ? kOld : x >= 10 ? 0 : indices[10 * y + x]);
      }
    }
  }
  Picture p = Blank(8, 10, 4, 2);
  p.origin = p.pitch * 3;
  p.pitch = -p.pitch;
  const Bytes before = p.bytes;
  EXPECT_EQ(Load(p, file), Loaded::kTrue);
  EXPECT_EQ(p.bytes, before);
}

TEST(LoadJPG, IndexedSurfaceGetsTheDefaultPalette) {
  const Bytes file = JpegFile(6, 2, Gradient(6, 2));
  Picture p = Blank(8, 6, 2);
  EXPECT_EQ(Load(p, file), Loaded::kTrue);
  EXPECT_EQ(std::memcmp(p.palette.data(), lu_gPaleta, sizeof(lu_gPaleta)), 0);
  Picture without = Blank(8, 6, 2);
  without.has_palette = false;
  EXPECT_EQ(Load(without, file), Loaded::kTrue);
  EXPECT_EQ(without.bytes, p.bytes);
  // The host's changes count, and the surface's palette may be the default one itself.
  const TRGBA old = lu_gPaleta[5];
  lu_gPaleta[5] = {1, 2, 3, 4};
  TSurfDesc surface = Describe(p);
  surface.palette = lu_gPaleta;
  EXPECT_EQ(Load(surface, file), Loaded::kTrue);
  EXPECT_EQ(lu_gPaleta[5].alpha, 4);
  EXPECT_EQ(Load(p, file), Loaded::kTrue);
  EXPECT_EQ(p.palette[5].red, 3);
  EXPECT_EQ(p.palette[5].alpha, 4);
  lu_gPaleta[5] = old;
}

TEST(LoadJPG, ReturnsFalseForOtherSurfaces) {
  const Bytes file = JpegFile(6, 2, Gradient(6, 2));
  for (uint32_t bpp : {0u, 1u, 15u, 20u, 64u}) {
    Picture p = Blank(32, 6, 2);
    const Bytes before = p.bytes;
    TSurfDesc surface = Describe(p);
    surface.bpp = bpp;
    EXPECT_EQ(Load(surface, file), Loaded::kFalse);
    EXPECT_EQ(p.bytes, before);
    EXPECT_EQ(pincel_load_jpg(surface, file.data(), file.size()), PINCEL_UNSUPPORTED);
  }
  // Without pixels not even the header is read.
  TSurfDesc surface = {};
  surface.bpp = 24;
  EXPECT_EQ(Load(surface, file), Loaded::kFalse);
  EXPECT_EQ(Load(surface, {}), Loaded::kFalse);
  EXPECT_EQ(pincel_load_jpg(surface, file.data(), file.size()), PINCEL_SURFACE_TOO_SMALL);
}

TEST(LoadJPG, RefusesCmyk) {
  JpegOptions options;
  options.space = JCS_CMYK;
  const Bytes file = JpegFile(6, 2, Bytes(6 * 2 * 4, 77), options);
  for (int format : kFormats) {
    Picture p = Blank(format, 6, 2);
    const Bytes before = p.bytes;
    EXPECT_EQ(Load(p, file), Loaded::kFalse);
    EXPECT_EQ(p.bytes, before);
    EXPECT_EQ(LoadBounded(p, file), PINCEL_UNSUPPORTED);
    EXPECT_EQ(p.bytes, before);
  }
}

TEST(LoadJPG, GrayscaleIsRedGreenAndBlue) {
  JpegOptions options;
  options.space = JCS_GRAYSCALE;
  options.quality = 100;
  const Bytes file = JpegFile(8, 8, Bytes(64, 200), options);
  Picture p = Blank(24, 8, 8);
  EXPECT_EQ(Load(p, file), Loaded::kTrue);
  EXPECT_EQ(p.Get(0, 0), 0xC8C8C8u);
  EXPECT_EQ(p.Get(7, 7), 0xC8C8C8u);
  EXPECT_EQ(p.bytes[24], kOld);  // rows at the surface's pitch
}

TEST(LoadJPG, WarningsGiveFalse) {
  Bytes file = JpegFile(20, 20, Gradient(20, 20));
  Picture sound = Blank(24, 20, 20), p = sound;
  EXPECT_EQ(Load(sound, file), Loaded::kTrue);
  ASSERT_EQ(file[11], 1);  // major version of JFIF
  file[11] = 2;            // a warning of the header
  EXPECT_EQ(Load(p, file), Loaded::kFalse);
  EXPECT_EQ(p.bytes, sound.bytes);
  EXPECT_EQ(LoadBounded(p, file), PINCEL_CORRUPT);
  EXPECT_EQ(p.bytes, sound.bytes);
  file[11] = 1;
  file.insert(file.end() - 2, 40, 1);  // a warning behind the last row
  EXPECT_EQ(Load(p, file), Loaded::kFalse);
  EXPECT_EQ(p.bytes, sound.bytes);
}

TEST(LoadJPG, HeaderErrorsAreThrown) {
  const Bytes file = JpegFile(20, 20, Gradient(20, 20));
  Bytes no_start = file, no_table = file, twelve_bits = file;
  no_start[1] = 0xD9;
  const Bytes frame = {0xFF, 0xC0};
  const auto at = std::search(file.begin(), file.end(), frame.begin(), frame.end()) - file.begin();
  no_table[size_t(at + 9)] = 0;  // no components
  twelve_bits[size_t(at + 4)] = 12;
  for (int format : kFormats) {
    for (const Bytes& bad : {no_start, no_table, twelve_bits, Bytes(), Bytes(1, 0xFF), Bytes(90),
                             Bytes{0xFF, 0xD8, 0xFF, 0xD9}}) {
      Picture p = Blank(format, 20, 20);
      const Bytes before = p.bytes;
      EXPECT_EQ(Load(p, bad), Loaded::kThrown);
      EXPECT_EQ(p.bytes, before);
      const pincel_status status = LoadBounded(p, bad);
      EXPECT_NE(status, PINCEL_OK);
      EXPECT_EQ(p.bytes, before);
    }
  }
  Picture p = Blank(24, 20, 20);
  TSurfDesc surface = Describe(p);
  EXPECT_THROW(LoadJPG(surface, nullptr, 100), int);
  EXPECT_THROW(LoadJPG(surface, const_cast<uint8_t*>(file.data()), -1), int);
}

TEST(LoadJPG, EveryTruncation) {
  for (bool progressive : {false, true}) {
    JpegOptions options;
    options.progressive = progressive;
    options.comment = Bytes(40, 7);
    const Bytes file = JpegFile(19, 35, Gradient(19, 35), options);
    const Bytes scan = {0xFF, 0xDA};
    const auto at = std::search(file.begin(), file.end(), scan.begin(), scan.end());
    const size_t scan_header = size_t(at - file.begin()), header = scan_header + 2 + 12;
    for (size_t length = 0; length < file.size(); ++length) {
      const Bytes cut = Cut(file, length);
      for (int format : {8, 16, 24, 32}) {
        Picture p = Blank(format, 19, 35, format == 8 ? 1 : 3);
        const Bytes before = p.bytes;
        const Loaded loaded = Load(p, cut);
        // Between the two, what is put behind the data may pass for the end of the header.
        if (length < scan_header + 4) {
          ASSERT_EQ(loaded, Loaded::kThrown) << length;
          ASSERT_EQ(p.bytes, before) << length;
        } else if (length >= header) {
          ASSERT_EQ(loaded, Loaded::kFalse) << length;
          // A progressive file that ends between two scans, inside a header, gives nothing.
          ASSERT_TRUE(progressive || p.bytes != before) << length;
        } else {
          ASSERT_NE(loaded, Loaded::kTrue) << length;
        }
        const pincel_status status = LoadBounded(p, cut);
        ASSERT_EQ(status, length < 2 ? PINCEL_NOT_THIS_FORMAT : PINCEL_TRUNCATED) << length;
      }
      TSurfDesc info{};
      info.width = 5;
      const pincel_status status = pincel_load_info_jpg(info, cut.data(), cut.size());
      ASSERT_EQ(status, length < 2        ? PINCEL_NOT_THIS_FORMAT
                        : length < header ? PINCEL_TRUNCATED
                                          : PINCEL_OK)
          << length;
      ASSERT_EQ(info.width, length < header ? 5 : 19);
    }
    // Rows that came before the end are there.
    Picture whole = Blank(24, 19, 35), part = whole;
    EXPECT_EQ(Load(whole, file), Loaded::kTrue);
    EXPECT_EQ(Load(part, Cut(file, file.size() - 40)), Loaded::kFalse);
    if (!progressive) {
      EXPECT_TRUE(
          std::equal(part.bytes.begin(), part.bytes.begin() + part.pitch * 8, whole.bytes.begin()));
    }
  }
}

TEST(LoadJPG, BytesBehindTheImageDoNotCount) {
  Bytes file = JpegFile(20, 20, Gradient(20, 20));
  file.insert(file.end(), {0xFF, 0xD8, 0xFF, 1, 2, 3});
  Picture p = Blank(24, 20, 20);
  EXPECT_EQ(Load(p, file), Loaded::kTrue);
  EXPECT_EQ(LoadBounded(p, file), PINCEL_OK);
}

TEST(BoundedJpeg, Statuses) {
  const Bytes file = JpegFile(9, 7, Gradient(9, 7));
  const auto load = [](const Bytes& bytes, int format = 24, int width = 9, int height = 7) {
    Picture p = Blank(format, width, height);
    return LoadBounded(p, bytes);
  };
  for (int format : kFormats) {
    EXPECT_EQ(load(file, format), PINCEL_OK);
    EXPECT_EQ(load(file, format, 8, 7), PINCEL_SURFACE_TOO_SMALL);
    EXPECT_EQ(load(file, format, 9, 6), PINCEL_SURFACE_TOO_SMALL);
  }
  TSurfDesc surface{};
  EXPECT_EQ(pincel_load_jpg(surface, nullptr, 0), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(pincel_load_info_jpg(surface, nullptr, 9), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(load({'B', 'M', 0}), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(load({0xFF, 0xD8}), PINCEL_TRUNCATED);
  EXPECT_EQ(pincel_load_info_jpg(surface, file.data(), file.size()), PINCEL_OK);
  EXPECT_EQ(surface.width, 9);
  EXPECT_EQ(surface.height, 7);
  EXPECT_EQ(surface.bpp, 24u);

  const Bytes frame = {0xFF, 0xC0};
  const auto at =
      size_t(std::search(file.begin(), file.end(), frame.begin(), frame.end()) - file.begin());
  const auto changed = [&](size_t offset, uint8_t value) {
    Bytes bytes = file;
    bytes[at + offset] = value;
    return bytes;
  };
  for (uint8_t marker : {0xC3, 0xC5, 0xC6, 0xC7, 0xCB, 0xCD, 0xCE, 0xCF}) {
    EXPECT_EQ(load(changed(1, marker)), PINCEL_UNSUPPORTED) << marker;
  }
  EXPECT_EQ(load(changed(4, 12)), PINCEL_UNSUPPORTED);
  EXPECT_EQ(load(changed(5, 0xFF)), PINCEL_SURFACE_TOO_SMALL);
  Bytes huge = changed(5, 0xFF);
  huge[at + 6] = 0xFF;
  EXPECT_EQ(load(huge), PINCEL_UNSUPPORTED);  // above 65500
  EXPECT_EQ(load(changed(6, 0)), PINCEL_CORRUPT);
  EXPECT_EQ(load(changed(12, 9)), PINCEL_CORRUPT);  // a quantization table that is not there
}

// --- size and time ---

constexpr std::chrono::seconds kLimit(20);

// 65500 x 65500 pixels in a few hundred bytes.
TEST(HostileJpeg, HugeImagesEndSoon) {
  const auto start = std::chrono::steady_clock::now();
  for (bool progressive : {false, true}) {
    JpegOptions options;
    options.progressive = progressive;
    Bytes file = JpegFile(16, 16, Gradient(16, 16), options);
    const Bytes frame = {0xFF, uint8_t(progressive ? 0xC2 : 0xC0)};
    const auto at = std::search(file.begin(), file.end(), frame.begin(), frame.end());
    for (int i = 5; i < 9; i += 2) at[i] = 65500 >> 8, at[i + 1] = 65500 & 0xFF;
    for (int format : kFormats) {
      Picture p = Blank(format, 100, 30, 0);
      EXPECT_EQ(Load(p, file), Loaded::kFalse);
      EXPECT_EQ(LoadBounded(p, file), PINCEL_SURFACE_TOO_SMALL);
    }
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, kLimit);
}

// The same scan again and again, each of them the work of the whole picture.
TEST(HostileJpeg, RepeatedScansEndSoon) {
  const auto start = std::chrono::steady_clock::now();
  JpegOptions options;
  options.progressive = true;
  const Bytes file = JpegFile(2000, 2000, Uniform(2000, 2000, 9, 99, 200), options);
  const Bytes marker = {0xFF, 0xDA};
  const auto first = std::search(file.begin(), file.end(), marker.begin(), marker.end());
  auto second = std::search(first + 1, file.end(), marker.begin(), marker.end());
  second = std::search(second + 1, file.end(), marker.begin(), marker.end());
  const auto last = std::find_end(file.begin(), file.end(), marker.begin(), marker.end());
  Bytes bomb(file.begin(), second);
  for (int i = 0; i < 20000; ++i) bomb.insert(bomb.end(), last, last + 14);
  bomb.insert(bomb.end(), {0xFF, 0xD9});
  Picture p = Blank(24, 2000, 2000);
  EXPECT_EQ(Load(p, bomb), Loaded::kFalse);
  EXPECT_EQ(LoadBounded(p, bomb), PINCEL_CORRUPT);
  EXPECT_LT(std::chrono::steady_clock::now() - start, kLimit);
}

// Whole coefficients can be sent twice without a warning.
TEST(HostileJpeg, ScansAreLimited) {
  JpegOptions options;
  options.space = JCS_GRAYSCALE;
  options.horizontal = options.vertical = 1;
  options.scans = {{1, {0, 0, 0, 0}, 0, 0, 0, 0}, {1, {0, 0, 0, 0}, 1, 63, 0, 0}};
  const Bytes file = JpegFile(64, 64, Bytes(64 * 64, 99), options);
  const Bytes marker = {0xFF, 0xDA};
  const auto last = std::find_end(file.begin(), file.end(), marker.begin(), marker.end());
  const Bytes scan(last, file.end() - 2);
  for (int scans : {1000, 2688, 2689, 3000}) {
    Bytes many(file.begin(), last);
    for (int i = 1; i < scans; ++i) many.insert(many.end(), scan.begin(), scan.end());
    many.insert(many.end(), {0xFF, 0xD9});
    Picture p = Blank(24, 64, 64);
    EXPECT_EQ(Load(p, many), scans <= 2688 ? Loaded::kTrue : Loaded::kFalse) << scans;
    EXPECT_EQ(LoadBounded(p, many), scans <= 2688 ? PINCEL_OK : PINCEL_CORRUPT) << scans;
  }
}

// Small files with some bytes changed; no pixel outside the surface may change.
TEST(HostileJpeg, ChangedBytes) {
  ForEachCase(600, [](Random& random, int) {
    Bytes file = AnyFile(random, random.Between(1, 40), random.Between(1, 40));
    for (int i = random.Between(1, 4); i > 0; --i) {
      file[size_t(random.Below(int(file.size())))] = random.Byte();
    }
    const int format = kFormats[random.Below(7)];
    Picture p =
        support::RandomPicture(random, format, random.Between(1, 40), random.Between(1, 40));
    const Picture before = p;
    Load(p, file);
    LoadBounded(p, file);
    const int64_t end = p.origin + int64_t{p.height} * p.pitch;
    for (int64_t i = 0; i < int64_t(p.bytes.size()); ++i) {
      if (i >= p.origin && i < end) continue;
      ASSERT_EQ(p.bytes[size_t(i)], before.bytes[size_t(i)]);
    }
  });
}

// --- real files ---

struct Golden {
  const char* file;
  // 8, 565, 555, 1555, 4444, 24 and 32 bits: a surface of the image's size, every byte 0x11 at first,
  // with the palette at 8 bits. The last but one is what any decoder gives that uses the accurate
  // integer transform.
  uint32_t crc[7];
};
constexpr Golden kGolden[] = {
#include "tests/checksums/jpeg_files.inc"
};

uint32_t SumOf(const Picture& p) {
  uint32_t sum = support::Crc32(p.bytes);
  for (const TRGBA& c : p.palette) sum = support::Crc32({c.blue, c.green, c.red, c.alpha}, sum);
  return sum;
}

// Loads a file into each format, compares with the plain decoder, and returns the seven checksums.
std::vector<uint32_t> LoadInEveryFormat(const Bytes& file) {
  std::vector<uint32_t> sums;
  const CSize size = ScannedSize(file);
  for (int format : kFormats) {
    Picture expected = Blank(format, size.width, size.height), actual = expected;
    const PlainImage image = DecodePlain(file, format == 8 ? lu_gPaleta : nullptr);
    EXPECT_EQ(image.width, size.width);
    EXPECT_EQ(image.height, size.height);
    model::StoreJpeg(expected, image.width, image.samples);
    TSurfDesc surface = Describe(actual);
    EXPECT_EQ(Load(surface, file), image.sound ? Loaded::kTrue : Loaded::kFalse);
    EXPECT_TRUE(Same(expected, actual, surface));
    sums.push_back(SumOf(actual));
  }
  return sums;
}

TEST(JpegFiles, RealFiles) {
  const auto paths = support::FilesIn(PINCEL_SOURCE_DIR "/examples/assets/jpg", ".jpg");
  EXPECT_EQ(paths.size(), std::size(kGolden));
  for (const auto& path : paths) {
    const std::string name = path.filename().string();
    SCOPED_TRACE(name);
    const std::vector<uint32_t> sums = LoadInEveryFormat(support::BytesOf(path));
    const auto golden = std::find_if(std::begin(kGolden), std::end(kGolden),
                                     [&](const Golden& g) { return name == g.file; });
    if (golden == std::end(kGolden) || !std::equal(sums.begin(), sums.end(), golden->crc)) {
      ADD_FAILURE() << support::ChecksumLine(name, sums);
    }
  }
}

}  // namespace
