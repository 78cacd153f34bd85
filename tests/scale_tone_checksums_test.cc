// Scaling, transforms, tone, masks and shadows: one list of cases whose results are committed. Every
// compiler, platform and instruction set must give these bytes. After an intended change, replace the
// lines of scale_tone.inc with those that the failing tests print.
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
#include "tests/checksums/scale_tone.inc"
};

int AnyWidth(Random& random) { return support::WidthOf(random.Below(support::kWidths)); }

Picture AnyPicture(Random& random, int format, int width, int height) {
  support::PictureOptions options;
  options.max_padding = random.OneIn(3) ? 0 : 7;
  return support::RandomPicture(random, format, width, height, options);
}

void StretchCase(Random& random, int format, Results& results) {
  const int width = AnyWidth(random), height = random.Between(1, 8);
  Picture dst = AnyPicture(random, format, width, height);
  const int src_width = AnyWidth(random), src_height = random.Between(1, 8);
  Picture src = AnyPicture(random, format, src_width, src_height);
  const CRectangulo to = support::RandomRect(random, width, height);
  const CRectangulo from = support::RandomRect(random, src_width, src_height);
  TSurfDesc d = Describe(dst), s = Describe(src);
  for (bool smooth : {false, true}) {
    const bool result = BltStrech(d, to, s, from, smooth);
    results.Add(dst, result);
  }
  const bool result = DrawStretch(d, {0, 0, width, height}, s, {0, 0, src_width, src_height});
  results.Add(dst, result);
}

void InProportionCase(Random& random, int format, Results& results) {
  const int width = random.Between(1, 60), height = random.Between(1, 12);
  Picture dst = AnyPicture(random, format, width, height);
  Picture small = AnyPicture(random, format, random.Between(1, width), 4);
  Picture large = AnyPicture(random, format, random.Between(width, 4 * width), 40);
  const CRectangulo to{random.Between(-4, 4), 0, width + random.Below(4), height};
  TSurfDesc d = Describe(dst);
  for (Picture* src : {&small, &large}) {
    TSurfDesc s = Describe(*src);
    const bool result =
        StretchBitmap(d, to, s, {0, 0, src->width, src->height}, format, true, false);
    results.Add(dst, result);
  }
}

void DoubleCase(Random& random, int format, Results& results) {
  Picture dst = AnyPicture(random, format, AnyWidth(random), 9);
  Picture src = AnyPicture(random, format, AnyWidth(random), 4);
  const int x = random.Between(-9, 9), y = random.Between(-5, 5);
  TSurfDesc d = Describe(dst), s = Describe(src);
  const bool result = DrawDouble(d, s, {x, y});
  results.Add(dst, result);
}

void TurnCase(Random& random, int format, Results& results) {
  const int width = AnyWidth(random), height = random.Between(1, 40);
  Picture src = AnyPicture(random, format, width, height);
  TSurfDesc s = Describe(src);
  for (int mode : {0, 1, 3, 4, 5, 7}) {
    Picture dst = AnyPicture(random, format, mode & 1 ? height : width, mode & 1 ? width : height);
    TSurfDesc d = Describe(dst);
    const bool result = CreateRotated(d, s, mode);
    results.Add(dst, result);
  }
  const bool result = FlipX(s);
  results.Add(src, result);
}

void ReversedCase(Random& random, int format, Results& results) {
  const int height = random.Between(1, 5), width = AnyWidth(random);
  Picture dst = AnyPicture(random, format, width, height);
  const int room = dst.pitch * dst.height / dst.BytesPerPixel() + 2;
  Picture src = AnyPicture(random, format, room, 1);
  src.origin = src.Index(room - 1, 0);
  src.width = 1;
  const int mode = random.OneIn(2) ? 2 : 6;
  TSurfDesc d = Describe(dst), s = Describe(src);
  const bool result = CreateRotated(d, s, mode);
  results.Add(dst, result);
}

void ShiftCase(Random& random, int format, Results& results) {
  Picture p = AnyPicture(random, format, AnyWidth(random), 6);
  uint8_t table[256];
  for (uint8_t& byte : table) byte = random.Byte();
  TSurfDesc surface = Describe(p);
  for (int i = 0; i < 4; ++i) {
    const CRectangulo rect = support::RandomRect(random, p.width, p.height);
    const float amount = float(random.Below(1025)) / 1024;
    const bool result = TranslateRect(surface, rect, amount, table);
    results.Add(p, result);
  }
}

void FactorCase(Random& random, int format, Results& results) {
  const int height = random.Between(1, 9), width = AnyWidth(random);
  Picture p = AnyPicture(random, format, width, height);
  TSurfDesc surface = Describe(p);
  const bool result = DoFactor(surface, static_cast<unsigned short>(random.Below(257)));
  results.Add(p, result);
}

void GradientCase(Random& random, int format, Results& results) {
  Picture p = AnyPicture(random, format, AnyWidth(random), 3);
  const unsigned long from = random.Next(), to = random.Next();
  TSurfDesc surface = Describe(p);
  const bool result = DoGradient(surface, from, to);
  results.Add(p, result);
}

void MaskCase(Random& random, int format, Results& results) {
  Picture src = AnyPicture(random, format, AnyWidth(random), 4);
  const uint32_t pixel = random.Next();
  const bool keyed = random.OneIn(2);
  const uint32_t bits = format == 8 ? 0xFF : format < 24 ? 0xFFFF : 0xFFFFFF;
  support::PlantKey(random, src, keyed ? pixel & bits : 0xFFFFFFFF, keyed ? pixel : 0);
  Picture mask = AnyPicture(random, 8, src.width, 4);
  const int level = random.OneIn(2) ? 256 : random.Below(256);
  TSurfDesc m = Describe(mask), s = Describe(src);
  const bool result = CreateMask(m, s, static_cast<unsigned short>(level));
  results.Add(mask, result);
}

void ShadowCase(Random& random, int format, Results& results) {
  const int width = AnyWidth(random);
  Picture src = AnyPicture(random, format, width, 8);
  for (uint8_t& byte : src.bytes) byte = random.OneIn(4) ? 250 : byte & 31;
  Picture shadow = AnyPicture(random, 8, width, 8);
  Picture words = AnyPicture(random, 32, width, 8);
  if (format == 8) shadow.pitch = src.pitch = width;  // both buffers as one run of bytes
  const auto decay = static_cast<unsigned char>(random.Below(24));
  const auto limit = static_cast<unsigned char>(random.Below(256));
  const auto factor = static_cast<unsigned short>(random.OneIn(2) ? 256 : random.Below(256));
  TSurfDesc s = Describe(src), d = Describe(shadow), e = Describe(words);
  bool result = CreateShadow(d, s, decay, limit, factor);
  results.Add(shadow, result);
  if (format != 32) return;
  result = CreateShadow(e, s, decay, limit, factor);
  results.Add(words, result);
}

void Check(const char* operation, void (*body)(Random&, int format, Results&)) {
  support::CheckGoldenCases(kGolden, operation, body);
}

TEST(ScaleToneChecksums, Stretch) { Check("Stretch", StretchCase); }
TEST(ScaleToneChecksums, StretchBitmap) { Check("StretchBitmap", InProportionCase); }
TEST(ScaleToneChecksums, DrawDouble) { Check("DrawDouble", DoubleCase); }
TEST(ScaleToneChecksums, Turns) { Check("Turns", TurnCase); }
TEST(ScaleToneChecksums, ReversedCopy) { Check("ReversedCopy", ReversedCase); }
TEST(ScaleToneChecksums, TranslateRect) { Check("TranslateRect", ShiftCase); }
TEST(ScaleToneChecksums, DoFactor) { Check("DoFactor", FactorCase); }
TEST(ScaleToneChecksums, DoGradient) { Check("DoGradient", GradientCase); }
TEST(ScaleToneChecksums, CreateMask) { Check("CreateMask", MaskCase); }
TEST(ScaleToneChecksums, CreateShadow) { Check("CreateShadow", ShadowCase); }

}  // namespace
