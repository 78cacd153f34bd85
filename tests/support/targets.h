// Runs a test body once for each instruction set that this machine and this build have.
#ifndef TESTS_SUPPORT_TARGETS_H_
#define TESTS_SUPPORT_TARGETS_H_

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstdint>
#include <vector>

namespace support {

template <class Body>
void ForEachTarget(Body&& body) {
  static const std::vector<int64_t> targets = hwy::SupportedAndGeneratedTargets();
  for (int64_t target : targets) {
    SCOPED_TRACE(hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
    body();
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace support

#endif  // TESTS_SUPPORT_TARGETS_H_
