// One list of cases whose results are committed: every compiler, platform and instruction set must
// give these bytes.
#include <gtest/gtest.h>

#include <vector>

#include "include/pincel.h"
#include "tests/support/bmp_writer.h"
#include "tests/support/golden.h"
#include "tests/support/random.h"

namespace {

using model::Describe;
using model::Picture;
using support::Random;

constexpr support::Golden kGolden[] = {
#include "tests/checksums/line_flood_bmp.inc"
};

// The bytes that a case leaves in memory, appended case by case.
using Body = void (*)(Random& random, int format, std::vector<uint8_t>& results);

void Append(std::vector<uint8_t>& results, const Picture& p) {
  results.insert(results.end(), p.bytes.begin(), p.bytes.end());
}

void LineCase(Random& random, int format, std::vector<uint8_t>& results) {
  constexpr int kMargin = 10;  // room for what leaves the surface
  Picture p = support::RandomPicture(random, format, 40 + 2 * kMargin, 30 + 2 * kMargin);
  p.width -= 2 * kMargin;
  p.height -= 2 * kMargin;
  p.origin = p.Index(kMargin, kMargin);
  const CPunto p1{random.Between(-20, 60), random.Between(-20, 50)};
  const CPunto p2{random.Between(-20, 60), random.Between(-20, 50)};
  const uint32_t colour = random.Next();
  const auto alpha = static_cast<unsigned short>(random.Below(300));
  const bool soft = random.OneIn(2);
  const int thickness = random.Between(0, 5);
  TSurfDesc surface = Describe(p);
  Line(surface, p1, p2, colour, alpha, soft, thickness);
  Append(results, p);
}

void FloodCase(Random& random, int format, std::vector<uint8_t>& results) {
  Picture p = support::RandomPicture(random, format, 40, 30);
  const int bias = random.Between(2, 12);
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      if (!random.OneIn(bias)) p.Put(x, y, 0);
    }
  }
  Picture mask = support::RandomPicture(random, 8, 40, 30);
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) mask.Put(x, y, 0);
  }
  const int x = random.Below(40);
  const int y = random.Below(30);
  const uint32_t tolerance = random.OneIn(2) ? 0 : uint32_t(random.Below(300));
  const uint32_t reference = random.OneIn(2) ? 0 : random.Next() & 0x0F0F0F;
  TSurfDesc surface = Describe(p), work = Describe(mask);
  Rellena(surface, work, x, y, tolerance, reference, 0x80FF40);
  Append(results, p);
  Append(results, mask);
}

void BmpCase(Random& random, int format, std::vector<uint8_t>& results) {
  support::BmpFile file;
  file.width = random.Between(1, 40);
  file.height = random.Between(1, 20);
  Picture p = support::RandomPicture(random, format, file.width, file.height);
  if (random.OneIn(2)) file.height = -file.height;
  file.table.resize(256);
  for (TRGBA& entry : file.table) {
    entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  }
  const uint16_t depths[] = {8, 8, 24, 32};
  file.bits = depths[random.Below(4)];
  file.compression = file.bits == 8 && random.OneIn(2) ? 1 : 0;
  file.pixels.resize(size_t(p.height * support::BmpStride(p.width, file.bits)));
  for (uint8_t& byte : file.pixels) {
    byte = random.OneIn(3) ? uint8_t(random.Below(6)) : random.Byte();
  }
  support::FileInMemory memory(file.Bytes());
  TSurfDesc surface = Describe(p);
  LoadBMP(surface, memory.Data());
  Append(results, p);
  for (const TRGBA& c : p.palette) {
    results.insert(results.end(), {c.blue, c.green, c.red, c.alpha});
  }
}

void Check(const char* operation, Body body) {
  support::CheckGolden(kGolden, operation, [&](int format) {
    std::vector<uint8_t> results;
    for (uint64_t seed = 0; seed < 40; ++seed) {
      Random random(seed);
      body(random, format, results);
    }
    return support::Crc32(results);
  });
}

TEST(Checksums, Line) { Check("Line", LineCase); }
TEST(Checksums, Rellena) { Check("Rellena", FloodCase); }
TEST(Checksums, LoadBMP) { Check("LoadBMP", BmpCase); }

}  // namespace
