// Compares what the library did to a surface with what the model did to its copy.
#ifndef TESTS_SUPPORT_COMPARE_H_
#define TESTS_SUPPORT_COMPARE_H_

#include <gtest/gtest.h>

#include "tests/model/picture.h"

namespace support {

// Every byte, guards and padding included; the palette; and the descriptor `after` the call, of
// which only the key may have changed, to that of `expected`. `actual` owns the memory that `after`
// points into.
testing::AssertionResult Same(const model::Picture& expected, model::Picture& actual,
                              const TSurfDesc& after);

}  // namespace support

#endif  // TESTS_SUPPORT_COMPARE_H_
