// GoogleTest wants std::mutex here, which MinGW's win32 thread model does not have. Only
// GoogleTest's tests of itself start threads, so nothing waits on this class.
#ifndef PINCEL_TESTS_WINDOWS_GTEST_NOTIFICATION_H_
#define PINCEL_TESTS_WINDOWS_GTEST_NOTIFICATION_H_

namespace testing {
namespace internal {

class Notification {
 public:
  void Notify() {}
  void WaitForNotification() {}
};

}  // namespace internal
}  // namespace testing

#endif  // PINCEL_TESTS_WINDOWS_GTEST_NOTIFICATION_H_
