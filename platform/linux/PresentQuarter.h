#pragma once

#include <time.h>

#include <atomic>
#include <cstdint>

#include "platform/Clock.h"

namespace Vask::Platform {

// Converts a moment to local time with localtime_r. All zeros if that fails.
inline LocalTime BreakDown(std::int64_t epochSeconds) noexcept {
  const time_t moment = epochSeconds;
  tm broken{};
  if (localtime_r(&moment, &broken) == nullptr) return {};
  LocalTime local;
  local.year = static_cast<unsigned>(broken.tm_year + 1900);
  local.month = static_cast<unsigned>(broken.tm_mon + 1);
  local.day = static_cast<unsigned>(broken.tm_mday);
  local.hour = static_cast<unsigned>(broken.tm_hour);
  local.minute = static_cast<unsigned>(broken.tm_min);
  local.second = static_cast<unsigned>(broken.tm_sec);
  return local;
}

// Converts the present moment to local time and keeps the result for a quarter of
// an hour: localtime_r takes a lock and reads the zone's rules, which would cost
// as much as the rest of a line of the log. Zones change their offset only at
// whole quarters of an hour in UTC, and the offset of all but historic zones is a
// multiple of a quarter. In other zones nothing is kept.
//
// One atomic value holds both the quarter and its local time, so any thread may
// call without a lock.
class PresentQuarter {
 public:
  // Returns what BreakDown does, but fast within the same quarter.
  LocalTime ToLocal(std::int64_t epochSeconds) noexcept {
    const std::uint64_t kept = m_kept.load(std::memory_order_relaxed);
    const std::int64_t start = static_cast<std::int64_t>(kept >> kQuarterShift) * kQuarterSeconds;
    if (epochSeconds < start || epochSeconds >= start + kQuarterSeconds) [[unlikely]] {
      return Renew(epochSeconds);
    }
    return Unpack(kept, static_cast<std::uint32_t>(epochSeconds - start));
  }

 private:
  static constexpr std::int64_t kQuarterSeconds = 900;
  static constexpr int kQuarterShift = 32;
  static constexpr int kYearShift = 20;
  static constexpr unsigned kTooLateYear = 4096;  // needs more bits than there are
  static constexpr int kMonthShift = 16;
  static constexpr int kDayShift = 11;
  static constexpr int kHourShift = 6;
  static constexpr std::uint64_t kNothingKept = ~std::uint64_t{0};  // a quarter of the year 124,000

  // Keeps the quarter of this moment if the zone allows it. Cold path.
  [[gnu::cold, gnu::noinline]] LocalTime Renew(std::int64_t epochSeconds) noexcept {
    const std::int64_t quarter = epochSeconds / kQuarterSeconds;
    const LocalTime start = BreakDown(quarter * kQuarterSeconds);
    if (start.minute % 15 == 0 && start.second == 0 && start.year < kTooLateYear) {
      m_kept.store(static_cast<std::uint64_t>(quarter) << kQuarterShift | start.year << kYearShift |
                       start.month << kMonthShift | start.day << kDayShift |
                       start.hour << kHourShift | start.minute,
                   std::memory_order_relaxed);
    }
    return BreakDown(epochSeconds);
  }

  static LocalTime Unpack(std::uint64_t kept, std::uint32_t secondOfQuarter) noexcept {
    const auto start = static_cast<std::uint32_t>(kept);
    LocalTime local;
    local.year = start >> kYearShift;
    local.month = start >> kMonthShift & 0xF;
    local.day = start >> kDayShift & 0x1F;
    local.hour = start >> kHourShift & 0x1F;
    local.minute = (start & 0x3F) + secondOfQuarter / 60;
    local.second = secondOfQuarter % 60;
    return local;
  }

  std::atomic<std::uint64_t> m_kept{kNothingKept};
};

}  // namespace Vask::Platform
