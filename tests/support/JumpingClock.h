#pragma once

#include <cstdint>

#include "tests/support/FakeClock.h"
#include "tests/support/FaultPlan.h"
#include "tests/support/ForwardingClock.h"

namespace Vask::Tests {

// A clock that stands still except in SleepMs, and jumps just before its n-th
// reading. For one thread.
class JumpingClock final : public ForwardingClock {
 public:
  explicit JumpingClock(FaultPlan& plan) : ForwardingClock(clock), m_plan(plan) {}

  FakeClock clock;
  std::int64_t epochJumpMs = 0;
  std::uint32_t tickJumpMs = 0;

  std::uint32_t TickMs() noexcept override { return Jumped().TickMs(); }
  std::int64_t EpochSeconds() noexcept override { return Jumped().EpochSeconds(); }
  Platform::LocalTime LocalNow() noexcept override { return Jumped().LocalNow(); }

 private:
  FakeClock& Jumped() noexcept {
    if (m_plan.Fails()) {
      clock.epochMilliseconds += epochJumpMs;
      clock.tick += tickJumpMs;
    }
    return clock;
  }

  FaultPlan& m_plan;
};

}  // namespace Vask::Tests
