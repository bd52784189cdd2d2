#pragma once

#include <atomic>
#include <cstdint>

#include "platform/Clock.h"

namespace Vask::Tests {

// A clock that stands still until a test moves it. Local time is UTC plus
// `utcOffsetSeconds`. Sleeping advances it and returns at once. Any thread may
// read and move it.
class FakeClock final : public Platform::Clock {
 public:
  std::atomic<std::uint32_t> tick{1000};
  std::atomic<std::int64_t> epochMilliseconds{1'526'299'200'000};  // 2018-05-14 12:00:00 UTC
  std::atomic<std::int64_t> utcOffsetSeconds{0};

  void Advance(std::uint32_t milliseconds) {
    tick += milliseconds;
    epochMilliseconds += milliseconds;
  }

  std::uint32_t TickMs() noexcept override { return tick; }
  std::int64_t EpochSeconds() noexcept override { return epochMilliseconds / 1000; }
  Platform::LocalTime LocalNow() noexcept override;
  Platform::LocalTime ToLocal(std::int64_t epochSeconds) noexcept override;
  std::int64_t FromLocal(const Platform::LocalTime& local) noexcept override;
  void SleepMs(std::uint32_t milliseconds) noexcept override { Advance(milliseconds); }
};

}  // namespace Vask::Tests
