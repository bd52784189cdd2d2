// The log over many days. Every line must be in the files, whole and once, also if the
// clock jumps.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Src/CDailyEventLog.h"
#include "tests/support/BerlinClock.h"
#include "tests/support/MemoryFiles.h"

namespace Vask::Tests {
namespace {

using Platform::LocalTime;

constexpr std::uint32_t kMinuteMs = 60'000;
constexpr std::int64_t kDayMs = 24 * 60 * std::int64_t{kMinuteMs};

class LogOverTimeTest : public testing::Test {
 protected:
  LogOverTimeTest() { files.folders = {"C:", "C:\\logs"}; }

  void SetTime(const LocalTime& local) {
    clock.utc.epochMilliseconds = clock.FromLocal(local) * 1'000;
  }

  void Write() {
    lines.push_back("line " + std::to_string(lines.size()) + "\n");
    log.WriteLine("T ", "P ", lines.back());
  }

  // Writes a line at regular times.
  void WriteFor(std::int64_t timeMs, std::uint32_t everyMs) {
    for (std::int64_t passed = 0; passed < timeMs; passed += everyMs) {
      Write();
      clock.utc.Advance(everyMs);
    }
  }

  std::string Bytes(const std::string& date) {
    return files.files["C:\\logs\\Log" + date + ".log"].bytes;
  }

  // Expects every written line in one of the files, and nothing else there.
  void ExpectEveryLineOnce() {
    std::size_t total = 0;
    std::string all;
    for (const auto& [path, file] : files.files) all += file.bytes;
    for (const std::string& line : lines) {
      const std::string whole = "T P " + line;
      const std::size_t at = all.find(whole);
      ASSERT_NE(at, std::string::npos) << line;
      ASSERT_EQ(all.find(whole, at + 1), std::string::npos) << line;
      total += whole.size();
    }
    EXPECT_EQ(all.size(), total);
  }

  BerlinClock clock;
  MemoryFiles files;
  CDailyEventLog log{clock, files};
  std::vector<std::string> lines;
};

TEST_F(LogOverTimeTest, NoLineIsLostOrWrittenTwiceOnLongAndShortDays) {
  const struct {
    const char* name;
    LocalTime opened;
  } rows[] = {
      {"plain days", {2018, 5, 14, 12, 0, 0, 0}},
      {"end of a year", {2018, 12, 30, 23, 59, 0, 0}},
      {"day of 23 hours, from the noon before", {2018, 3, 24, 12, 0, 0, 0}},
      {"day of 23 hours, from the last hour before", {2018, 3, 24, 23, 30, 0, 0}},
      {"day of 23 hours, from its morning", {2018, 3, 25, 0, 30, 0, 0}},
      {"day of 25 hours, from the noon before", {2018, 10, 27, 12, 0, 0, 0}},
      {"day of 25 hours, from its first hour", {2018, 10, 28, 0, 10, 0, 0}},
      {"day of 25 hours, from the hour that is there twice", {2018, 10, 28, 2, 30, 0, 0}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    files.files.clear();
    lines.clear();
    SetTime(row.opened);
    ASSERT_TRUE(log.Open("C:\\logs"));
    WriteFor(3 * kDayMs, 7 * kMinuteMs);
    ExpectEveryLineOnce();
  }
}

TEST_F(LogOverTimeTest, ClockSetBackADayContinuesInTheSameFile) {
  SetTime({2018, 5, 14, 12, 0, 0, 0});
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write();
  clock.utc.epochMilliseconds -= kDayMs;
  Write();
  EXPECT_EQ(Bytes("2018-05-14"), "T P line 0\nT P line 1\n");
  clock.utc.epochMilliseconds += kDayMs;
  Write();
  clock.utc.epochMilliseconds += kDayMs;
  Write();
  EXPECT_EQ(Bytes("2018-05-14"), "T P line 0\nT P line 1\nT P line 2\n");
  EXPECT_EQ(Bytes("2018-05-15"), "T P line 3\n");
  ExpectEveryLineOnce();
}

TEST_F(LogOverTimeTest, ClockSetBackRightAfterMidnightDoesNotRotateAgain) {
  SetTime({2018, 5, 14, 23, 59, 59, 0});
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write();
  clock.utc.Advance(2'000);
  Write();
  clock.utc.epochMilliseconds -= 10'000;
  Write();
  clock.utc.epochMilliseconds += 10'000;
  Write();
  EXPECT_EQ(Bytes("2018-05-14"), "T P line 0\n");
  EXPECT_EQ(Bytes("2018-05-15"), "T P line 1\nT P line 2\nT P line 3\n");
}

TEST_F(LogOverTimeTest, ClockThatJumpsAheadByYearsLosesNothing) {
  SetTime({2018, 5, 14, 12, 0, 0, 0});
  ASSERT_TRUE(log.Open("C:\\logs"));
  log.SetDaysToKeep(CDailyEventLog::kKeepAll);
  Write();
  clock.utc.epochMilliseconds += 3'650 * kDayMs;
  WriteFor(kDayMs, 60 * kMinuteMs);
  ExpectEveryLineOnce();
}

}  // namespace
}  // namespace Vask::Tests
