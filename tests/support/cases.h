// Random cases that can be run again one by one.
#ifndef TESTS_SUPPORT_CASES_H_
#define TESTS_SUPPORT_CASES_H_

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/random.h"

namespace support {

// Calls `body(random, seed)` for the seeds 0 to count - 1, stopping at the first that fails, and
// names the seed in every failure. In the environment, PINCEL_TEST_SEED=<n> runs seed n alone and
// PINCEL_TEST_CASES=<n> runs n times as many seeds.
template <class Body>
void ForEachCase(int count, Body&& body) {
  const char* const only = std::getenv("PINCEL_TEST_SEED");
  const char* const times = std::getenv("PINCEL_TEST_CASES");
  const int first = only != nullptr ? std::atoi(only) : 0;
  const int end = only != nullptr ? first + 1 : times != nullptr ? count * std::atoi(times) : count;
  for (int seed = first; seed < end && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("replay: PINCEL_TEST_SEED=" + std::to_string(seed));
    Random random{uint64_t(seed)};
    body(random, seed);
  }
}

}  // namespace support

#endif  // TESTS_SUPPORT_CASES_H_
