#include "platform/linux/PresentQuarter.h"

#include <time.h>

namespace Vask::Platform {

LocalTime BreakDown(std::int64_t epochSeconds) noexcept {
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

LocalTime PresentQuarter::Renew(std::int64_t epochSeconds) noexcept {
  const std::int64_t quarter = epochSeconds / kQuarterSeconds;
  const LocalTime start = BreakDown(quarter * kQuarterSeconds);
  if (start.minute % 15 == 0 && start.second == 0) {
    m_kept.store(static_cast<std::uint64_t>(quarter) << kQuarterShift | start.year << kYearShift |
                     start.month << kMonthShift | start.day << kDayShift |
                     start.hour << kHourShift | start.minute,
                 std::memory_order_relaxed);
  }
  return BreakDown(epochSeconds);
}

}  // namespace Vask::Platform
