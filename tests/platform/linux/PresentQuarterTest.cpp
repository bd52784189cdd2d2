#include "platform/linux/PresentQuarter.h"

#include <gtest/gtest.h>
#include <time.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>

namespace Vask::Tests {
namespace {

using Platform::BreakDown;
using Platform::LocalTime;
using Platform::PresentQuarter;

// Sets the process's time zone for its own lifetime. The zone is given by its rules,
// so none needs to be installed.
class TimeZone {
 public:
  explicit TimeZone(const char* rules) {
    if (const char* const before = std::getenv("TZ")) m_before = before;
    setenv("TZ", rules, 1);
    tzset();
  }
  ~TimeZone() {
    if (m_before) {
      setenv("TZ", m_before->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> m_before;
};

auto Fields(const LocalTime& time) {
  return std::tuple(time.year, time.month, time.day, time.hour, time.minute, time.second,
                    time.millisecond);
}

struct ZoneRow {
  const char* name;
  const char* rules;
};

void PrintTo(const ZoneRow& row, std::ostream* out) {
  *out << row.name;
}

class Zones : public testing::TestWithParam<ZoneRow> {
 protected:
  TimeZone zone{GetParam().rules};
  PresentQuarter quarter;

  void ExpectTheSameAt(std::int64_t moment) {
    EXPECT_EQ(Fields(quarter.ToLocal(moment)), Fields(BreakDown(moment))) << moment;
  }
};

constexpr std::int64_t kDay = 86'400;
constexpr std::int64_t kSummerOf2018 = 1'522'540'800;  // begins at 1 April, 00:00 UTC
constexpr std::int64_t kYear = 365 * kDay;

TEST_P(Zones, EverySecondOfAnHourIsAsTheSystemBreaksItDown) {
  for (std::int64_t second = 0; second < 3600; ++second) ExpectTheSameAt(kSummerOf2018 + second);
}

// A step of 7 minutes and a second meets every quarter of the year, also on the days
// when summer time begins and ends.
TEST_P(Zones, AYearForwardAndBackIsAsTheSystemBreaksItDown) {
  constexpr std::int64_t kStep = 421;
  for (std::int64_t passed = 0; passed < kYear; passed += kStep) {
    ExpectTheSameAt(kSummerOf2018 + passed);
  }
  for (std::int64_t passed = kYear; passed > 0; passed -= 7 * kStep) {
    ExpectTheSameAt(kSummerOf2018 + passed);
  }
}

// A machine that has lost its clock shows such times.
TEST_P(Zones, TheEpochAndEarlierMomentsAreAsTheSystemBreaksThemDown) {
  for (const std::int64_t moment : {0, 1, 899, 900, -1, -899, -900, -901, 5, -5}) {
    ExpectTheSameAt(moment);
  }
}

// The first moment keeps its quarter, and the second one reads it.
TEST_P(Zones, DistantYearsAreAsTheSystemBreaksThemDown) {
  const std::int64_t moments[] = {4'118'083'200, 67'074'220'800, 67'105'843'200, 253'386'403'200};
  const unsigned years[] = {2100, 4095, 4096, 9999};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(quarter.ToLocal(moments[i]).year, years[i]);
    ExpectTheSameAt(moments[i] + 1);
  }
}

// The answer shows that the zone is read once: the process has another one by now.
TEST_P(Zones, LocalTimeOfAWholeQuarterIsKept) {
  if (BreakDown(kSummerOf2018).second != 0) return;  // nothing is kept in this zone
  const LocalTime first = quarter.ToLocal(kSummerOf2018);
  const TimeZone other("XXX7:11");
  LocalTime last = first;
  last.minute += 14;
  last.second = 59;
  EXPECT_EQ(Fields(quarter.ToLocal(kSummerOf2018 + 899)), Fields(last));
  ExpectTheSameAt(kSummerOf2018 + 900);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Zones,
    testing::Values(ZoneRow{"Utc", "UTC0"},
                    ZoneRow{"SummerTimeOfAnHour", "CET-1CEST,M3.5.0,M10.5.0/3"},
                    ZoneRow{"SummerTimeOfHalfAnHour", "LHST-10:30LHDT-11,M10.1.0,M4.1.0"},
                    ZoneRow{"ThreeQuartersOfAnHour", "NPT-5:45"},
                    ZoneRow{"BehindUtc", "NST3:30NDT,M3.2.0,M11.1.0"},
                    ZoneRow{"NoMultipleOfAQuarter", "LMT0:44:30"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Vask::Tests
