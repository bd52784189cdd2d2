#pragma once

#include <cstdint>

namespace Vask::Platform {

// A moment of the local calendar. month and day count from 1.
struct LocalTime {
  unsigned year = 0;
  unsigned month = 0;
  unsigned day = 0;
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  unsigned millisecond = 0;

  bool operator==(const LocalTime&) const = default;
};

// The agent reads the time only through a Clock that it is given, so that a test
// can pass its own. Any thread may call any operation. Only SleepMs blocks.
class Clock {
 public:
  // Milliseconds since some fixed moment; wraps to 0 after 49.7 days
  // (GetTickCount on Windows, CLOCK_MONOTONIC elsewhere).
  virtual std::uint32_t TickMs() noexcept = 0;

  // Seconds since 1970-01-01 00:00 UTC.
  virtual std::int64_t EpochSeconds() noexcept = 0;

  // The present moment in local time.
  virtual LocalTime LocalNow() noexcept = 0;

  // Breaks a moment down in local time, with millisecond 0. All zeros if the
  // system's calendar does not hold the moment (on Windows: outside the years
  // 1601 to 30827).
  virtual LocalTime ToLocal(std::int64_t epochSeconds) noexcept = 0;

  // The moment that a local time names; every field must be in its range, and
  // the millisecond is ignored. -1 if the system's calendar does not hold it.
  // A time that daylight saving repeats is one of the two moments. A time that
  // it leaves out counts on after the gap: 00:30 is 01:30 on a day that begins
  // at 01:00.
  virtual std::int64_t FromLocal(const LocalTime& local) noexcept = 0;

  // Blocks the calling thread for about that many milliseconds.
  virtual void SleepMs(std::uint32_t milliseconds) noexcept = 0;

 protected:
  ~Clock() = default;
};

// The machine's clock. The object lives as long as the process.
Clock& SystemClock() noexcept;

}  // namespace Vask::Platform
