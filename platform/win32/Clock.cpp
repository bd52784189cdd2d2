#include "platform/Clock.h"

#include <windows.h>

#include "platform/win32/FileTime.h"

namespace Vask::Platform {

namespace {

// The system's calendar holds the years 1601 to 30827.
constexpr std::int64_t kFirstEpochSecond = -11'644'473'600;
constexpr std::int64_t kLastEpochSecond = 910'670'515'199;
constexpr unsigned kLastYear = 30'827;

LocalTime AsLocalTime(const SYSTEMTIME& time) noexcept {
  return {time.wYear,   time.wMonth,  time.wDay,         time.wHour,
          time.wMinute, time.wSecond, time.wMilliseconds};
}

// Leaves the millisecond out.
SYSTEMTIME AsSystemTime(const LocalTime& local) noexcept {
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(local.year);
  time.wMonth = static_cast<WORD>(local.month);
  time.wDay = static_cast<WORD>(local.day);
  time.wHour = static_cast<WORD>(local.hour);
  time.wMinute = static_cast<WORD>(local.minute);
  time.wSecond = static_cast<WORD>(local.second);
  return time;
}

// The zone's rules for one year; its present rules if it has none for each year, or if the user
// has switched daylight saving off.
bool ReadZone(WORD year, TIME_ZONE_INFORMATION& zone) noexcept {
  DYNAMIC_TIME_ZONE_INFORMATION present{};
  if (GetDynamicTimeZoneInformation(&present) == TIME_ZONE_ID_INVALID) return false;
  return (!present.DynamicDaylightTimeDisabled &&
          GetTimeZoneInformationForYear(year, &present, &zone)) ||
         GetTimeZoneInformation(&zone) != TIME_ZONE_ID_INVALID;
}

// A moment in local time, by the zone's rules for a year.
bool ToLocalBy(WORD year, const SYSTEMTIME& utc, SYSTEMTIME& local) noexcept {
  TIME_ZONE_INFORMATION zone{};
  return ReadZone(year, zone) && SystemTimeToTzSpecificLocalTime(&zone, &utc, &local);
}

bool ToLocalTime(std::int64_t epochSeconds, SYSTEMTIME& local) noexcept {
  if (epochSeconds < kFirstEpochSecond || epochSeconds > kLastEpochSecond) return false;
  const FILETIME moment = ToFileTime(epochSeconds);
  SYSTEMTIME utc{};
  if (!FileTimeToSystemTime(&moment, &utc) || !ToLocalBy(utc.wYear, utc, local)) return false;
  // Around New Year the local year, whose rules hold, may be another one.
  return local.wYear == utc.wYear || ToLocalBy(local.wYear, utc, local);
}

// How far `local` is ahead of the local time of a moment.
std::int64_t SecondsAhead(const SYSTEMTIME& local, std::int64_t epochSeconds) noexcept {
  SYSTEMTIME other{};
  FILETIME wanted{};
  FILETIME found{};
  if (!ToLocalTime(epochSeconds, other) || !SystemTimeToFileTime(&local, &wanted) ||
      !SystemTimeToFileTime(&other, &found)) {
    return 0;
  }
  return (FileTimeUnits(wanted) - FileTimeUnits(found)) / kFileTimePerSecond;
}

// All by the system's own zone, as GetLocalTime. The C run-time's conversions prefer the zone that
// the environment variable TZ names, so they can disagree with it by hours.
class WindowsClock final : public Clock {
 public:
  std::uint32_t TickMs() noexcept override { return GetTickCount(); }

  std::int64_t EpochSeconds() noexcept override {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return ToEpochSeconds(now);
  }

  LocalTime LocalNow() noexcept override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return AsLocalTime(now);
  }

  LocalTime ToLocal(std::int64_t epochSeconds) noexcept override {
    SYSTEMTIME local{};
    return ToLocalTime(epochSeconds, local) ? AsLocalTime(local) : LocalTime{};
  }

  std::int64_t FromLocal(const LocalTime& time) noexcept override {
    if (time.year > kLastYear) return -1;
    const SYSTEMTIME local = AsSystemTime(time);
    TIME_ZONE_INFORMATION zone{};
    SYSTEMTIME utc{};
    FILETIME moment{};
    if (!ReadZone(local.wYear, zone) || !TzSpecificLocalTimeToSystemTime(&zone, &local, &utc) ||
        !SystemTimeToFileTime(&utc, &moment)) {
      return -1;
    }
    const std::int64_t seconds = ToEpochSeconds(moment);
    // The system may name a moment before the gap that daylight saving leaves.
    const std::int64_t ahead = SecondsAhead(local, seconds);
    return ahead > 0 ? seconds + ahead : seconds;
  }

  void SleepMs(std::uint32_t milliseconds) noexcept override { Sleep(milliseconds); }
};

constinit WindowsClock g_clock;

}  // namespace

Clock& SystemClock() noexcept {
  return g_clock;
}

}  // namespace Vask::Platform
