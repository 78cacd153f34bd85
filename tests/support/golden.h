// Committed checksums: every compiler, platform and instruction set must come to the same ones.
#ifndef TESTS_SUPPORT_GOLDEN_H_
#define TESTS_SUPPORT_GOLDEN_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tests/model/picture.h"
#include "tests/support/checksum.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace support {

struct Golden {
  const char* operation;
  uint32_t crc[7];  // by format of the destination
};

// Compares `sum(format)` with the line of an operation. PINCEL_CHECKSUMS_OUT names a file to which the
// line found is added.
template <size_t lines, class Sum>
void CheckGolden(const Golden (&table)[lines], const char* operation, Sum&& sum) {
  const Golden* const golden = std::find_if(table, table + lines, [&](const Golden& g) {
    return std::strcmp(g.operation, operation) == 0;
  });
  std::string line;
  ForEachTarget([&] {
    std::vector<uint32_t> sums;
    for (int format : model::kFormats) sums.push_back(sum(format));
    line = ChecksumLine(operation, sums);
    EXPECT_TRUE(golden != table + lines && std::equal(sums.begin(), sums.end(), golden->crc))
        << line;
  });
  if (const char* out = std::getenv("PINCEL_CHECKSUMS_OUT")) {
    if (std::FILE* file = std::fopen(out, "a")) {
      std::fprintf(file, "%s\n", line.c_str());
      std::fclose(file);
    }
  }
}

// What an operation's cases leave in memory and return, one after the other.
class CaseResults {
 public:
  void Add(const model::Picture& p, bool result) {
    bytes_.insert(bytes_.end(), p.bytes.begin(), p.bytes.end());
    bytes_.push_back(result ? 1 : 0);
  }
  uint32_t Sum() const { return Crc32(bytes_); }

 private:
  std::vector<uint8_t> bytes_;
};

// Compares 50 random cases in every format.
template <size_t lines>
void CheckGoldenCases(const Golden (&table)[lines], const char* operation,
                      void (*body)(Random& random, int format, CaseResults& results)) {
  CheckGolden(table, operation, [&](int format) {
    CaseResults results;
    for (uint64_t seed = 0; seed < 50; ++seed) {
      Random random(seed);
      body(random, format, results);
    }
    return results.Sum();
  });
}

}  // namespace support

#endif  // TESTS_SUPPORT_GOLDEN_H_
