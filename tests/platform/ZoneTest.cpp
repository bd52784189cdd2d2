// Tests local time in the zone that the environment variable TZ names. CTest runs this program once
// for each zone of the table. Under Wine a process takes its zone from the variable when it starts.
// Windows itself ignores the variable, so run this program under Wine or natively.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "Src/DailyLog.h"
#include "platform/Clock.h"
#include "tests/support/ForwardingClock.h"
#include "tests/support/TempFolder.h"

namespace Vask::Platform {

void PrintTo(const LocalTime& time, std::ostream* out) {
  *out << time.year << '-' << time.month << '-' << time.day << ' ' << time.hour << ':'
       << time.minute << ':' << time.second;
}

}  // namespace Vask::Platform

namespace Vask::Tests {
namespace {

using Platform::LocalTime;
using Platform::SystemClock;

struct Moment {
  const char* zone;
  std::int64_t epochSeconds;
  LocalTime local;
};

const Moment kMoments[] = {
    {"America/New_York", 1'526'951'640, {2018, 5, 21, 21, 14}},  // the 22nd in UTC
    {"America/New_York", 1'516'017'600, {2018, 1, 15, 7}},
    {"America/New_York", 1'520'751'599, {2018, 3, 11, 1, 59, 59}},
    {"America/New_York", 1'520'751'600, {2018, 3, 11, 3}},
    {"America/New_York", 1'541'307'599, {2018, 11, 4, 0, 59, 59}},
    {"America/New_York", 1'541'314'800, {2018, 11, 4, 2}},
    {"America/New_York", 1'142'856'000, {2006, 3, 20, 7}},  // by the rules of 2006
    {"America/Havana", 1'520'744'399, {2018, 3, 10, 23, 59, 59}},
    {"America/Havana", 1'520'744'400, {2018, 3, 11, 1}},
    {"America/Havana", 1'530'403'200, {2018, 6, 30, 20}},
    {"Europe/Berlin", 1'521'939'599, {2018, 3, 25, 1, 59, 59}},
    {"Europe/Berlin", 1'521'939'600, {2018, 3, 25, 3}},
    {"Europe/Berlin", 1'546'297'200, {2019, 1, 1}},
    {"Asia/Kathmandu", 1'546'281'000, {2019, 1, 1, 0, 15}},
    {"Asia/Kathmandu", 1'530'403'200, {2018, 7, 1, 5, 45}},
    {"Australia/Lord_Howe",
     1'530'403'200,
     {2018, 7, 1, 10, 30}},  // Wine has only its present rules
    {"Pacific/Auckland", 1'516'017'600, {2018, 1, 16, 1}},
    {"Pacific/Auckland", 1'530'403'200, {2018, 7, 1, 12}},
};

std::string ThisZone() {
  const char* const zone = std::getenv("TZ");
  return zone == nullptr ? "" : zone;
}

std::vector<Moment> MomentsOfThisZone() {
  std::vector<Moment> moments;
  for (const Moment& moment : kMoments) {
    if (ThisZone() == moment.zone) moments.push_back(moment);
  }
  EXPECT_FALSE(moments.empty()) << "set TZ to a zone of the table";
  return moments;
}

TEST(ZoneTest, MomentsAreBrokenDownInTheZone) {
  for (const Moment& moment : MomentsOfThisZone()) {
    EXPECT_EQ(SystemClock().ToLocal(moment.epochSeconds), moment.local) << moment.epochSeconds;
  }
}

TEST(ZoneTest, LocalTimesOfTheZoneNameTheirMoments) {
  for (const Moment& moment : MomentsOfThisZone()) {
    EXPECT_EQ(SystemClock().FromLocal(moment.local), moment.epochSeconds);
  }
}

// A day without a midnight must not begin on the day before.
TEST(ZoneTest, LocalTimeThatDaylightSavingLeavesOutLiesAfterTheGap) {
  struct Gap {
    const char* zone;
    LocalTime leftOut;
    std::int64_t epochSeconds;
  };
  const Gap gaps[] = {{"America/Havana", {2018, 3, 11}, 1'520'744'400},
                      {"America/Havana", {2018, 3, 11, 0, 30}, 1'520'746'200},
                      {"America/New_York", {2018, 3, 11, 2}, 1'520'751'600},
                      {"Europe/Berlin", {2018, 3, 25, 2, 15}, 1'521'940'500}};
  for (const Gap& gap : gaps) {
    if (ThisZone() != gap.zone) continue;
    EXPECT_EQ(SystemClock().FromLocal(gap.leftOut), gap.epochSeconds);
  }
}

// Stands still at a moment with a known local time. The machine's clock does the conversions.
class StandingClock final : public ForwardingClock {
 public:
  explicit StandingClock(const Moment& moment) : m_moment(moment) {}
  std::int64_t EpochSeconds() noexcept override { return m_moment.epochSeconds; }
  LocalTime LocalNow() noexcept override { return m_moment.local; }

 private:
  const Moment& m_moment;
};

std::string TwoDigits(unsigned number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

TEST(ZoneTest, LineOfTheLogLiesInTheFileOfItsLocalDay) {
  for (const Moment& moment : MomentsOfThisZone()) {
    const TempFolder folder;
    StandingClock clock(moment);
    DailyLog log(clock);
    ASSERT_TRUE(log.Open(folder.Path().c_str()));
    log.Info("text\n");
    const LocalTime& local = moment.local;
    EXPECT_EQ(folder.Bytes("Log" + std::to_string(local.year) + '-' + TwoDigits(local.month) + '-' +
                           TwoDigits(local.day) + ".log"),
              TwoDigits(local.hour) + ':' + TwoDigits(local.minute) + ':' +
                  TwoDigits(local.second) + ".000: Info: text" + TempFolder::kLineEnd);
  }
}

}  // namespace
}  // namespace Vask::Tests
