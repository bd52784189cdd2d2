#pragma once

#include <atomic>
#include <cstdint>

#include "platform/Clock.h"

namespace Vask::Platform {

// A moment in local time by localtime_r; all zeros where that fails.
LocalTime BreakDown(std::int64_t epochSeconds) noexcept;

// The present local time, kept for a quarter of an hour at a time: localtime_r,
// which takes a lock and reads the zone's rules, would cost as much as the rest
// of a line of the log. Zones change their offset at whole quarters of an hour
// of UTC, and all but historic ones are such a multiple ahead or behind; in
// others nothing is kept.
//
// Quarter and local time share one atomic value, so that any thread may find
// and keep them without a lock.
class PresentQuarter {
 public:
  // As BreakDown, and as fast as can be while the quarter stays the same.
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
  static constexpr int kMonthShift = 16;
  static constexpr int kDayShift = 11;
  static constexpr int kHourShift = 6;
  static constexpr std::uint64_t kNothingKept = ~std::uint64_t{0};  // a quarter of the year 124,000

  // Keeps the quarter of a moment if it may be kept.
  LocalTime Renew(std::int64_t epochSeconds) noexcept;

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
