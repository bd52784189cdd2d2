#include "platform/Clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

namespace Vask::Tests {
namespace {

using Platform::LocalTime;

Platform::Clock& SystemClock() {
  return Platform::SystemClock();
}

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::uint32_t kTickStepMs = 16;  // the coarsest tick of Windows

milliseconds Since(steady_clock::time_point began) {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - began);
}

// Returns by how much the tick and the standard library's clock differ after the
// thread has slept.
milliseconds TickErrorOverASleepOf(std::uint32_t sleepMs) {
  const std::uint32_t tick = SystemClock().TickMs();
  const steady_clock::time_point began = steady_clock::now();
  SystemClock().SleepMs(sleepMs);
  const milliseconds passed = Since(began);
  const milliseconds ticked(SystemClock().TickMs() - tick);
  return ticked > passed ? ticked - passed : passed - ticked;
}

// Wine's tick stops while its server waits for a processor, and jumps afterwards. On
// a busy machine most readings may be wrong; a clock that does not count
// milliseconds is wrong in each.
TEST(ClockTest, TickCountsMilliseconds) {
  constexpr std::uint32_t kSleepMs = 5 * kTickStepMs;
  constexpr milliseconds kAllowed(2 * kTickStepMs);  // one step at each end
  milliseconds least = milliseconds::max();
  for (int reading = 0; reading < 200 && least > kAllowed; ++reading) {
    least = std::min(least, TickErrorOverASleepOf(kSleepMs));
  }
  EXPECT_LE(least, kAllowed);
}

TEST(ClockTest, SleepLastsAtLeastTheGivenTime) {
  constexpr std::uint32_t kSleepMs = 5 * kTickStepMs;
  const steady_clock::time_point began = steady_clock::now();
  SystemClock().SleepMs(kSleepMs);
  EXPECT_GE(Since(began), milliseconds(kSleepMs - kTickStepMs));
}

TEST(ClockTest, EpochSecondsLieInThisCentury) {
  EXPECT_GT(SystemClock().EpochSeconds(), 1'700'000'000);
  EXPECT_LT(SystemClock().EpochSeconds(), 4'102'444'800);
}

TEST(ClockTest, LocalNowIsThePresentMoment) {
  const std::int64_t before = SystemClock().EpochSeconds();
  const LocalTime now = SystemClock().LocalNow();
  const std::int64_t after = SystemClock().EpochSeconds();
  EXPECT_GE(SystemClock().FromLocal(now), before);
  EXPECT_LE(SystemClock().FromLocal(now), after);
  EXPECT_LT(now.millisecond, 1000u);
}

// A sleep of 37 ms moves the reading within its second, so not every one is zero.
TEST(ClockTest, LocalNowCountsMilliseconds) {
  unsigned highest = 0;
  for (int reading = 0; reading < 60 && highest == 0; ++reading) {
    highest = std::max(highest, SystemClock().LocalNow().millisecond);
    SystemClock().SleepMs(37);
  }
  EXPECT_GT(highest, 0u);
}

// Reads twice, because the clock may keep the first reading for the second.
TEST(ClockTest, LocalNowAgreesWithTheSecondThatItLiesIn) {
  for (int reading = 0; reading < 2; ++reading) {
    LocalTime now;
    std::int64_t second = 0;
    do {
      second = SystemClock().EpochSeconds();
      now = SystemClock().LocalNow();
    } while (SystemClock().EpochSeconds() != second);
    const LocalTime expected = SystemClock().ToLocal(second);
    EXPECT_EQ(now.year, expected.year);
    EXPECT_EQ(now.month, expected.month);
    EXPECT_EQ(now.day, expected.day);
    EXPECT_EQ(now.hour, expected.hour);
    EXPECT_EQ(now.minute, expected.minute);
    EXPECT_EQ(now.second, expected.second);
  }
}

struct MomentRow {
  const char* name;
  std::int64_t epochSeconds;
};

void PrintTo(const MomentRow& row, std::ostream* out) {
  *out << row.name << ": " << row.epochSeconds;
}

class ClockMoments : public testing::TestWithParam<MomentRow> {};

TEST_P(ClockMoments, SurviveTheConversionToLocalTimeAndBack) {
  const LocalTime local = SystemClock().ToLocal(GetParam().epochSeconds);
  EXPECT_EQ(SystemClock().FromLocal(local), GetParam().epochSeconds);
  EXPECT_EQ(local.millisecond, 0u);
}

INSTANTIATE_TEST_SUITE_P(Rows, ClockMoments,
                         testing::Values(MomentRow{"SecondDayOf1601", -11'644'387'200},
                                         MomentRow{"BeforeTheEpoch", -86'401},
                                         MomentRow{"MayOf2018", 1'526'299'200},
                                         MomentRow{"LeapDayOf2024", 1'709'208'000},
                                         MomentRow{"LastSecondOf2025", 1'767'225'599},
                                         MomentRow{"PastTheSignedRangeOf32Bits", 2'147'483'648},
                                         MomentRow{"LastDayButOneOf30827", 910'670'428'799}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ClockTest, LocalTimeCountsMonthsAndDaysFromOne) {
  const LocalTime local = SystemClock().ToLocal(1'526'299'200);  // noon in UTC
  EXPECT_EQ(local.year, 2018u);
  EXPECT_EQ(local.month, 5u);
  EXPECT_GE(local.day, 13u);
  EXPECT_LE(local.day, 15u);
}

TEST(ClockTest, LocalMidnightIsAMomentOfTheSameDay) {
  LocalTime midnight = SystemClock().ToLocal(1'526'299'200);
  midnight.hour = midnight.minute = midnight.second = 0;
  const LocalTime again = SystemClock().ToLocal(SystemClock().FromLocal(midnight));
  EXPECT_EQ(again.day, midnight.day);
  EXPECT_EQ(again.hour, 0u);
}

// Both ends of Windows' calendar.
TEST(ClockTest, MomentOutsideTheYears1601To30827IsConvertedOrRefused) {
  for (const std::int64_t moment : {-11'644'473'601, 910'670'515'200}) {
    const LocalTime local = SystemClock().ToLocal(moment);
    EXPECT_TRUE(local == LocalTime{} || SystemClock().FromLocal(local) == moment) << moment;
  }
}

TEST(ClockTest, MomentThatHasNoLocalTimeIsAllZeros) {
  for (const std::int64_t moment :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    const LocalTime local = SystemClock().ToLocal(moment);
    for (const unsigned field : {local.year, local.month, local.day, local.hour, local.minute,
                                 local.second, local.millisecond}) {
      EXPECT_EQ(field, 0u) << moment;
    }
  }
}

TEST(ClockTest, LocalTimeOfAFarYearIsConvertedOrRefused) {
  for (const unsigned year : {1600u, 30'828u, 67'554u}) {
    const LocalTime local{year, 5, 14, 12};
    const std::int64_t moment = SystemClock().FromLocal(local);
    EXPECT_TRUE(moment == -1 || SystemClock().ToLocal(moment) == local) << year;
  }
}

}  // namespace
}  // namespace Vask::Tests
