#include "platform/Clock.h"

#include <gtest/gtest.h>
#include <time.h>

namespace Vask::Tests {
namespace {

std::uint32_t MonotonicMs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
}

// The tests of all systems allow for a clock that is a little slow.
TEST(PosixClockTest, TickIsTheMonotonicClockInMilliseconds) {
  const std::uint32_t before = MonotonicMs();
  const std::uint32_t tick = Platform::SystemClock().TickMs();
  const std::uint32_t after = MonotonicMs();
  EXPECT_LE(tick - before, after - before);
}

TEST(PosixClockTest, SleepOfMoreThanASecondIsNotCut) {
  const std::uint32_t before = MonotonicMs();
  Platform::SystemClock().SleepMs(1'050);
  EXPECT_GE(MonotonicMs() - before, 1'049u);
}

}  // namespace
}  // namespace Vask::Tests
