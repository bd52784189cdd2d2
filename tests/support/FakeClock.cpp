#include "tests/support/FakeClock.h"

#include <chrono>

namespace Vask::Tests {

namespace chr = std::chrono;

Platform::LocalTime FakeClock::LocalNow() noexcept {
  const std::int64_t now = epochMilliseconds;
  Platform::LocalTime local = ToLocal(now / 1000);
  local.millisecond = static_cast<unsigned>(now % 1000);
  return local;
}

Platform::LocalTime FakeClock::ToLocal(std::int64_t epochSeconds) noexcept {
  const chr::sys_seconds moment{chr::seconds{epochSeconds + utcOffsetSeconds}};
  const auto day = chr::floor<chr::days>(moment);
  const chr::year_month_day date{day};
  const chr::hh_mm_ss time{moment - day};
  Platform::LocalTime local;
  local.year = static_cast<unsigned>(static_cast<int>(date.year()));
  local.month = static_cast<unsigned>(date.month());
  local.day = static_cast<unsigned>(date.day());
  local.hour = static_cast<unsigned>(time.hours().count());
  local.minute = static_cast<unsigned>(time.minutes().count());
  local.second = static_cast<unsigned>(time.seconds().count());
  return local;
}

std::int64_t FakeClock::FromLocal(const Platform::LocalTime& local) noexcept {
  const chr::sys_days day{chr::year{static_cast<int>(local.year)} / static_cast<int>(local.month) /
                          static_cast<int>(local.day)};
  const auto moment =
      day + chr::hours{local.hour} + chr::minutes{local.minute} + chr::seconds{local.second};
  return chr::duration_cast<chr::seconds>(moment.time_since_epoch()).count() - utcOffsetSeconds;
}

}  // namespace Vask::Tests
