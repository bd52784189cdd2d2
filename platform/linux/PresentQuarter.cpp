#include "platform/linux/PresentQuarter.h"

#include <time.h>

#include "platform/BrokenDownTime.h"

namespace Vask::Platform {

LocalTime BreakDown(std::int64_t epochSeconds) noexcept {
  const time_t moment = epochSeconds;
  tm broken{};
  return localtime_r(&moment, &broken) != nullptr ? AsLocalTime(broken) : LocalTime{};
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
