#include "platform/Clock.h"

#include <time.h>

#include "platform/linux/PresentQuarter.h"

namespace Vask::Platform {

namespace {

constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kNsPerMs = 1'000'000;

class PosixClock final : public Clock {
 public:
  std::uint32_t TickMs() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_sec * kMsPerSecond + now.tv_nsec / kNsPerMs);
  }

  [[gnu::hot]] std::int64_t EpochSeconds() noexcept override { return time(nullptr); }

  // Reads the coarse clock, which time() and the times of files use as well. The
  // fine clock is up to 4 ms ahead, so a day would begin twice. It also takes five
  // times as long, and a line of the log reads these clocks four times.
  [[gnu::hot]] LocalTime LocalNow() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    LocalTime local = m_quarter.ToLocal(now.tv_sec);
    local.millisecond = static_cast<std::uint32_t>(now.tv_nsec) / std::uint32_t{kNsPerMs};
    return local;
  }

  LocalTime ToLocal(std::int64_t epochSeconds) noexcept override { return BreakDown(epochSeconds); }

  std::int64_t FromLocal(const LocalTime& local) noexcept override {
    tm broken{};
    broken.tm_year = static_cast<int>(local.year) - 1900;
    broken.tm_mon = static_cast<int>(local.month) - 1;
    broken.tm_mday = static_cast<int>(local.day);
    broken.tm_hour = static_cast<int>(local.hour);
    broken.tm_min = static_cast<int>(local.minute);
    broken.tm_sec = static_cast<int>(local.second);
    broken.tm_isdst = -1;  // mktime determines it
    return mktime(&broken);
  }

  void SleepMs(std::uint32_t milliseconds) noexcept override {
    timespec rest{};
    rest.tv_sec = milliseconds / kMsPerSecond;
    rest.tv_nsec = static_cast<long>(milliseconds % kMsPerSecond * kNsPerMs);
    // A rest remains only after an interruption.
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) != 0) {
    }
  }

 private:
  PresentQuarter m_quarter;
};

constinit PosixClock g_clock;

}  // namespace

Clock& SystemClock() noexcept {
  return g_clock;
}

}  // namespace Vask::Platform
