#include "platform/Clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

namespace Vask::Tests {
namespace {

using Platform::LocalTime;

Platform::Clock& SystemClock() {
  return Platform::SystemClock();
}

TEST(ClockTest, TickAdvancesByWhatIsSlept) {
  constexpr std::uint32_t kSleepMs = 50;
  constexpr std::uint32_t kTickStepMs = 16;  // the coarsest tick of Windows
  const std::uint32_t before = SystemClock().TickMs();
  SystemClock().SleepMs(kSleepMs);
  EXPECT_GE(SystemClock().TickMs() - before, kSleepMs - kTickStepMs);
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

// Twice: the second reading may come from what the first one kept.
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

TEST_P(ClockMoments, SurviveTheWayToLocalTimeAndBack) {
  const LocalTime local = SystemClock().ToLocal(GetParam().epochSeconds);
  EXPECT_EQ(SystemClock().FromLocal(local), GetParam().epochSeconds);
  EXPECT_EQ(local.millisecond, 0u);
}

INSTANTIATE_TEST_SUITE_P(Rows, ClockMoments,
                         testing::Values(MomentRow{"MayOf2018", 1'526'299'200},
                                         MomentRow{"LeapDayOf2024", 1'709'208'000},
                                         MomentRow{"LastSecondOf2025", 1'767'225'599},
                                         MomentRow{"PastTheSignedRangeOf32Bits", 2'147'483'648}),
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

}  // namespace
}  // namespace Vask::Tests
