#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define CORVANE_LEAK_SANITIZER
#endif
#endif

namespace Vask::Tests {

// Allocations while one of these lives may leak. It is for code that loses memory on
// purpose; the test then counts the loss by other means.
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
