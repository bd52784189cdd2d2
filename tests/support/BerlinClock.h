#pragma once

#include <cstdint>

#include "platform/Clock.h"
#include "tests/support/FakeClock.h"

namespace Vask::Tests {

// A FakeClock that keeps the local time of Berlin in 2018: two hours ahead of
// UTC from 25 March to 28 October, one hour otherwise. For one thread.
class BerlinClock final : public Platform::Clock {
 public:
  FakeClock utc;

  std::uint32_t TickMs() noexcept override { return utc.TickMs(); }
  std::int64_t EpochSeconds() noexcept override { return utc.EpochSeconds(); }
  Platform::LocalTime LocalNow() noexcept override {
    utc.utcOffsetSeconds = OffsetAt(utc.EpochSeconds());
    return utc.LocalNow();
  }
  Platform::LocalTime ToLocal(std::int64_t epochSeconds) noexcept override {
    utc.utcOffsetSeconds = OffsetAt(epochSeconds);
    return utc.ToLocal(epochSeconds);
  }
  // Returns the second moment for a time in the hour that occurs twice.
  std::int64_t FromLocal(const Platform::LocalTime& local) noexcept override {
    utc.utcOffsetSeconds = kWinterOffset;
    const std::int64_t asWinter = utc.FromLocal(local);
    const std::int64_t offset = OffsetAt(asWinter);
    return asWinter + kWinterOffset - offset;
  }
  void SleepMs(std::uint32_t milliseconds) noexcept override { utc.Advance(milliseconds); }

 private:
  static constexpr std::int64_t kWinterOffset = 3'600;

  static std::int64_t OffsetAt(std::int64_t epochSeconds) noexcept {
    constexpr std::int64_t kSummerBegins = 1'521'939'600;  // 2018-03-25 01:00 UTC
    constexpr std::int64_t kSummerEnds = 1'540'688'400;    // 2018-10-28 01:00 UTC
    const bool summer = epochSeconds >= kSummerBegins && epochSeconds < kSummerEnds;
    return summer ? 2 * kWinterOffset : kWinterOffset;
  }
};

}  // namespace Vask::Tests
