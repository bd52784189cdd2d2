#include "platform/Clock.h"

#include <time.h>

#include <atomic>

namespace Vask::Platform {

namespace {

constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kNsPerMs = 1'000'000;

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
  LocalTime ToLocal(std::int64_t epochSeconds) noexcept {
    const std::int64_t quarter = epochSeconds / kQuarterSeconds;
    std::uint64_t kept = m_kept.load(std::memory_order_relaxed);
    if (kept >> kQuarterShift != static_cast<std::uint64_t>(quarter)) {
      const LocalTime start = BreakDown(quarter * kQuarterSeconds);
      if (start.minute % 15 != 0 || start.second != 0) return BreakDown(epochSeconds);
      kept = Pack(quarter, start);
      m_kept.store(kept, std::memory_order_relaxed);
    }
    return Unpack(kept, static_cast<unsigned>(epochSeconds % kQuarterSeconds));
  }

 private:
  static constexpr std::int64_t kQuarterSeconds = 900;
  static constexpr int kQuarterShift = 32;
  static constexpr int kYearShift = 20;
  static constexpr int kMonthShift = 16;
  static constexpr int kDayShift = 11;
  static constexpr int kHourShift = 6;

  static std::uint64_t Pack(std::int64_t quarter, const LocalTime& start) noexcept {
    return static_cast<std::uint64_t>(quarter) << kQuarterShift | start.year << kYearShift |
           start.month << kMonthShift | start.day << kDayShift | start.hour << kHourShift |
           start.minute;
  }

  static LocalTime Unpack(std::uint64_t kept, unsigned secondOfQuarter) noexcept {
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

  std::atomic<std::uint64_t> m_kept{0};  // no quarter of ours
};

class PosixClock final : public Clock {
 public:
  std::uint32_t TickMs() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_sec * kMsPerSecond + now.tv_nsec / kNsPerMs);
  }

  std::int64_t EpochSeconds() noexcept override { return time(nullptr); }

  // By the coarse clock, as time() is: with the fine one, which is up to 4 ms
  // ahead, a day would begin twice. Files get their times from it too. A line of
  // the log reads these clocks four times, and the fine one takes five times as
  // long.
  LocalTime LocalNow() noexcept override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    LocalTime local = m_quarter.ToLocal(now.tv_sec);
    local.millisecond = static_cast<unsigned>(now.tv_nsec / kNsPerMs);
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

 private:
  PresentQuarter m_quarter;
};

constinit PosixClock g_clock;

}  // namespace

Clock& SystemClock() noexcept {
  return g_clock;
}

}  // namespace Vask::Platform
