// For calls whose result is nobody's promise: they may draw anything, but only inside the surface.
#ifndef TESTS_SUPPORT_OUTSIDE_H_
#define TESTS_SUPPORT_OUTSIDE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "tests/model/picture.h"

namespace support {

// Whether only bytes from the lowest row on to `row_bytes` of the highest row differ.
inline testing::AssertionResult SameOutside(const model::Picture& before,
                                            const model::Picture& after, int64_t row_bytes) {
  const int64_t last = int64_t{before.height - 1} * before.pitch;
  const int64_t begin = before.origin + std::min(last, int64_t{0});
  const int64_t end = begin + std::abs(last) + row_bytes;
  for (int64_t i = 0; i < int64_t(before.bytes.size()); ++i) {
    if ((i < begin || i >= end) && before.bytes[size_t(i)] != after.bytes[size_t(i)]) {
      return testing::AssertionFailure() << "byte " << i - before.origin << " from pixel (0, 0)";
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace support

#endif  // TESTS_SUPPORT_OUTSIDE_H_
