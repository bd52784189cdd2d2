#include "platform/Clock.h"

#include <time.h>

namespace Vask::Platform {

namespace {

constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kNsPerMs = 1'000'000;

LocalTime FromTm(const tm& broken) noexcept {
  LocalTime local;
  local.year = static_cast<unsigned>(broken.tm_year + 1900);
  local.month = static_cast<unsigned>(broken.tm_mon + 1);
  local.day = static_cast<unsigned>(broken.tm_mday);
  local.hour = static_cast<unsigned>(broken.tm_hour);
  local.minute = static_cast<unsigned>(broken.tm_min);
  local.second = static_cast<unsigned>(broken.tm_sec);
  return local;
}

class PosixClock final : public Clock {
 public:
  std::uint32_t TickMs() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_sec * kMsPerSecond + now.tv_nsec / kNsPerMs);
  }

  // Not time(), which lags behind the clock of LocalNow by up to a tick: a day
  // must not begin twice.
  std::int64_t EpochSeconds() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
  }

  LocalTime LocalNow() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    LocalTime local = ToLocal(now.tv_sec);
    local.millisecond = static_cast<unsigned>(now.tv_nsec / kNsPerMs);
    return local;
  }

  LocalTime ToLocal(std::int64_t epochSeconds) noexcept override {
    const time_t moment = epochSeconds;
    tm broken{};
    if (localtime_r(&moment, &broken) == nullptr) return {};
    return FromTm(broken);
  }

  std::int64_t FromLocal(const LocalTime& local) noexcept override {
    tm broken{};
    broken.tm_year = static_cast<int>(local.year) - 1900;
    broken.tm_mon = static_cast<int>(local.month) - 1;
    broken.tm_mday = static_cast<int>(local.day);
    broken.tm_hour = static_cast<int>(local.hour);
    broken.tm_min = static_cast<int>(local.minute);
    broken.tm_sec = static_cast<int>(local.second);
    broken.tm_isdst = -1;
    return mktime(&broken);
  }

  void SleepMs(std::uint32_t milliseconds) noexcept override {
    timespec rest{};
    rest.tv_sec = milliseconds / kMsPerSecond;
    rest.tv_nsec = static_cast<long>(milliseconds % kMsPerSecond * kNsPerMs);
    // Only an interruption leaves a rest.
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) != 0) {
    }
  }
};

constinit PosixClock g_clock;

}  // namespace

Clock& SystemClock() noexcept {
  return g_clock;
}

}  // namespace Vask::Platform
