#include "platform/Clock.h"

#include <windows.h>

#include <time.h>

#include "platform/BrokenDownTime.h"

namespace Vask::Platform {

namespace {

// From FILETIME's 1601-01-01 to 1970-01-01, in its units of 100 ns.
constexpr std::int64_t kEpochAsFileTime = 116'444'736'000'000'000;
constexpr std::int64_t kFileTimePerSecond = 10'000'000;

class WindowsClock final : public Clock {
 public:
  std::uint32_t TickMs() noexcept override { return GetTickCount(); }

  std::int64_t EpochSeconds() noexcept override {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    const auto units = (static_cast<std::int64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    return (units - kEpochAsFileTime) / kFileTimePerSecond;
  }

  LocalTime LocalNow() noexcept override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wYear,   now.wMonth,  now.wDay,         now.wHour,
            now.wMinute, now.wSecond, now.wMilliseconds};
  }

  LocalTime ToLocal(std::int64_t epochSeconds) noexcept override {
    tm broken{};
    return _localtime64_s(&broken, &epochSeconds) == 0 ? AsLocalTime(broken) : LocalTime{};
  }

  std::int64_t FromLocal(const LocalTime& local) noexcept override {
    tm broken = AsBrokenDown(local);
    return _mktime64(&broken);
  }

  void SleepMs(std::uint32_t milliseconds) noexcept override { Sleep(milliseconds); }
};

constinit WindowsClock g_clock;

}  // namespace

Clock& SystemClock() noexcept {
  return g_clock;
}

}  // namespace Vask::Platform
