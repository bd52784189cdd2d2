#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define CORVANE_LEAK_SANITIZER
#endif
#endif

namespace Vask::Tests {

// What is allocated while one of these lives may leak: for behaviour that is
// meant to lose something, which the test then counts by other means.
class ExpectedLeak {
 public:
#if defined(CORVANE_LEAK_SANITIZER)
  ExpectedLeak() {
    __lsan_disable();
  }
  ~ExpectedLeak() {
    __lsan_enable();
  }
#else
  ExpectedLeak() = default;
  ~ExpectedLeak() {}  // not trivial, so that an instance counts as used
#endif
  ExpectedLeak(const ExpectedLeak&) = delete;
  ExpectedLeak& operator=(const ExpectedLeak&) = delete;
};

}  // namespace Vask::Tests
