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

// Ignores the millisecond.
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

// Reads the zone's rules for one year. Reads the present rules if the zone has none by year, or if
// the user has switched daylight saving off.
bool ReadZone(WORD year, TIME_ZONE_INFORMATION& zone) noexcept {
  DYNAMIC_TIME_ZONE_INFORMATION present{};
  if (GetDynamicTimeZoneInformation(&present) == TIME_ZONE_ID_INVALID) return false;
  return (!present.DynamicDaylightTimeDisabled &&
          GetTimeZoneInformationForYear(year, &present, &zone)) ||
         GetTimeZoneInformation(&zone) != TIME_ZONE_ID_INVALID;
}

// Converts a moment to local time by the zone's rules for a year.
bool ToLocalBy(WORD year, const SYSTEMTIME& utc, SYSTEMTIME& local) noexcept {
  TIME_ZONE_INFORMATION zone{};
  return ReadZone(year, zone) && SystemTimeToTzSpecificLocalTime(&zone, &utc, &local);
}

bool ToLocalTime(std::int64_t epochSeconds, SYSTEMTIME& local) noexcept {
  if (epochSeconds < kFirstEpochSecond || epochSeconds > kLastEpochSecond) return false;
  const FILETIME moment = ToFileTime(epochSeconds);
  SYSTEMTIME utc{};
  if (!FileTimeToSystemTime(&moment, &utc) || !ToLocalBy(utc.wYear, utc, local)) return false;
  // Near New Year the local year may be another one; its rules apply.
  return local.wYear == utc.wYear || ToLocalBy(local.wYear, utc, local);
}

// Returns how far `local` is ahead of the local time of a moment.
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

// Uses the system's own zone everywhere, as GetLocalTime does. The C run-time's conversions prefer
// the zone in the environment variable TZ, so they can differ from GetLocalTime by hours.
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
