#include "Src/LogHead.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace Vask::Tests {
namespace {

TEST(TimeStampTest, HasLeadingZerosAndEndsInColonAndBlank) {
  const struct {
    const char* name;
    Platform::LocalTime time;
    const char* stamp;
  } rows[] = {
      {"start of the day", {2018, 5, 14, 0, 0, 0, 0}, "00:00:00.000: "},
      {"one digit each", {2018, 5, 14, 9, 5, 3, 7}, "09:05:03.007: "},
      {"two digits of milliseconds", {2018, 5, 14, 10, 20, 30, 40}, "10:20:30.040: "},
      {"the least three digits", {2018, 5, 14, 10, 20, 30, 100}, "10:20:30.100: "},
      {"end of the day", {2018, 5, 14, 23, 59, 59, 999}, "23:59:59.999: "},
  };
  for (const auto& row : rows) {
    char stamp[kTimeStampLength];
    FormatTimeStamp(row.time, stamp);
    EXPECT_EQ(std::string(stamp, sizeof stamp), row.stamp) << row.name;
  }
}

using Platform::LocalTime;

constexpr LocalTime kNoon{2018, 5, 14, 12, 0, 0, 7};

struct LevelRow {
  const char* name;
  LogLevel level;
  const char* prefix;
};

void PrintTo(const LevelRow& row, std::ostream* out) {
  *out << row.name;
}

class LogHeads : public testing::TestWithParam<LevelRow> {};

TEST_P(LogHeads, HoldTimeStampAndPrefixInOnePiece) {
  const LogHead head(kNoon, GetParam().level);
  EXPECT_EQ(head.TimeStamp(), "12:00:00.007: ");
  EXPECT_EQ(head.Prefix(), GetParam().prefix);
  EXPECT_EQ(head.Both(), "12:00:00.007: " + std::string(GetParam().prefix));
}

INSTANTIATE_TEST_SUITE_P(Rows, LogHeads,
                         testing::Values(LevelRow{"Error", LogLevel::Error, "Error: "},
                                         LevelRow{"Warning", LogLevel::Warning, "Warning: "},
                                         LevelRow{"Info", LogLevel::Info, "Info: "},
                                         LevelRow{"Trace", LogLevel::Trace, "TRACE: "}),
                         [](const auto& row) { return std::string(row.param.name); });

// All rows use the same maker, one after the other.
TEST(LogHeadMakerTest, MakesAHeadAnewForEveryOtherTimeAndLevel) {
  const struct {
    const char* name;
    LocalTime time;
    LogLevel level;
    const char* head;
  } rows[] = {
      {"first", {2018, 5, 14, 12, 0, 0, 7}, LogLevel::Info, "12:00:00.007: Info: "},
      {"the same once more", {2018, 5, 14, 12, 0, 0, 7}, LogLevel::Info, "12:00:00.007: Info: "},
      {"level", {2018, 5, 14, 12, 0, 0, 7}, LogLevel::Warning, "12:00:00.007: Warning: "},
      {"level, and back", {2018, 5, 14, 12, 0, 0, 7}, LogLevel::Info, "12:00:00.007: Info: "},
      {"level once more", {2018, 5, 14, 12, 0, 0, 7}, LogLevel::Warning, "12:00:00.007: Warning: "},
      {"millisecond", {2018, 5, 14, 12, 0, 0, 8}, LogLevel::Warning, "12:00:00.008: Warning: "},
      {"second", {2018, 5, 14, 12, 0, 59, 8}, LogLevel::Warning, "12:00:59.008: Warning: "},
      {"minute", {2018, 5, 14, 12, 30, 59, 8}, LogLevel::Warning, "12:30:59.008: Warning: "},
      {"hour, backwards",
       {2018, 5, 14, 2, 30, 59, 8},
       LogLevel::Warning,
       "02:30:59.008: Warning: "},
      {"no time at all", {}, LogLevel::Warning, "00:00:00.000: Warning: "},
      {"nor a line before it", {}, LogLevel::Info, "00:00:00.000: Info: "},
  };
  LogHeadMaker heads;
  for (const auto& row : rows)
    EXPECT_EQ(heads.Make(row.time, row.level).Both(), row.head) << row.name;
}

// A clock that fails returns a time of zeros.
TEST(LogHeadMakerTest, ATimeOfZerosHasItsHeadFromTheStart) {
  LogHeadMaker heads;
  EXPECT_EQ(heads.Make({}, LogLevel::Info).Both(), "00:00:00.000: Info: ");
}

}  // namespace
}  // namespace Vask::Tests
