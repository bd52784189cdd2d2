#include "Src/LogFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/BerlinClock.h"
#include "tests/support/FakeClock.h"
#include "tests/support/MemoryFiles.h"

namespace Vask::Tests {
namespace {

using Platform::LocalTime;

std::string Date(const LocalTime& day) {
  char date[kLogDateLength];
  FormatLogDate(day, date);
  return std::string(date, sizeof date);
}

TEST(LogFileNameTest, TheDateHasLeadingZeros) {
  EXPECT_EQ(Date({2018, 5, 14, 23, 59, 59, 999}), "2018-05-14");
  EXPECT_EQ(Date({1999, 12, 31, 0, 0, 0, 0}), "1999-12-31");
  EXPECT_EQ(Date({123, 1, 2, 0, 0, 0, 0}), "0123-01-02");
}

TEST(LogFileNameTest, TheNextRotationIsTheNextLocalMidnight) {
  const struct {
    const char* name;
    std::int64_t utcOffset;
    LocalTime now;
    LocalTime rotation;
  } rows[] = {
      {"noon", 0, {2018, 5, 14, 12, 0, 0, 0}, {2018, 5, 15, 0, 0, 0, 0}},
      {"midnight itself", 0, {2018, 5, 14, 0, 0, 0, 0}, {2018, 5, 15, 0, 0, 0, 0}},
      {"last second", 0, {2018, 5, 14, 23, 59, 59, 0}, {2018, 5, 15, 0, 0, 0, 0}},
      {"end of the year", 0, {2018, 12, 31, 1, 2, 3, 0}, {2019, 1, 1, 0, 0, 0, 0}},
      {"leap day", 0, {2020, 2, 28, 1, 2, 3, 0}, {2020, 2, 29, 0, 0, 0, 0}},
      {"east of Greenwich", 5 * 3600 + 1800, {2018, 5, 14, 2, 0, 0, 0}, {2018, 5, 15, 0, 0, 0, 0}},
      {"west of Greenwich", -8 * 3600, {2018, 5, 14, 22, 0, 0, 0}, {2018, 5, 15, 0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    FakeClock clock;
    clock.utcOffsetSeconds = row.utcOffset;
    EXPECT_EQ(NextLogRotation(clock, clock.FromLocal(row.now)), clock.FromLocal(row.rotation))
        << row.name;
  }
}

// In 24 hours it is not always tomorrow. The log follows the rule all the same.
TEST(LogFileNameTest, OnDaysOf23And25HoursTheRotationFollowsTheRule) {
  const struct {
    const char* name;
    LocalTime now;
    LocalTime rotation;
  } rows[] = {
      {"25 hours, after the first hour", {2018, 10, 28, 1, 0, 0, 0}, {2018, 10, 29, 0, 0, 0, 0}},
      {"25 hours, within the first hour", {2018, 10, 28, 0, 59, 59, 0}, {2018, 10, 28, 0, 0, 0, 0}},
      {"25 hours, evening", {2018, 10, 28, 23, 30, 0, 0}, {2018, 10, 29, 0, 0, 0, 0}},
      {"23 hours, morning", {2018, 3, 25, 0, 0, 0, 0}, {2018, 3, 26, 0, 0, 0, 0}},
      {"eve of 23 hours", {2018, 3, 24, 22, 59, 59, 0}, {2018, 3, 25, 0, 0, 0, 0}},
      {"eve of 23 hours, last hour", {2018, 3, 24, 23, 0, 0, 0}, {2018, 3, 26, 0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    BerlinClock clock;
    EXPECT_EQ(NextLogRotation(clock, clock.FromLocal(row.now)), clock.FromLocal(row.rotation))
        << row.name;
  }
}

using Lines = std::vector<std::string>;

// Notes "name|path" of every file and stops after `stopAfter` of them.
struct Visit {
  Lines lines;
  std::size_t stopAfter = 100;

  static bool Note(const char* name, const char* path, void* context) {
    auto& visit = *static_cast<Visit*>(context);
    visit.lines.push_back(std::string(name) + "|" + path);
    return visit.lines.size() < visit.stopAfter;
  }
};

class LogFolderTest : public testing::Test {
 protected:
  LogFolderTest() {
    for (const char* name : {"Log2018-05-13.log", "Log2018-05-14.log", "Logs.txt", "Other.log"}) {
      files.files[std::string("C:\\logs\\") + name];
    }
  }

  MemoryFiles files;
  LogFolder folder{"C:\\logs"};
  Visit visit;
};

TEST_F(LogFolderTest, ThePathEndsInOneBackslash) {
  EXPECT_EQ(LogFolder("C:\\logs").Path(), "C:\\logs\\");
  EXPECT_EQ(LogFolder("C:\\logs\\").Path(), "C:\\logs\\");
  EXPECT_EQ(LogFolder().Path(), "");
}

TEST_F(LogFolderTest, EnumeratesLogFilesWithNameAndPath) {
  EXPECT_TRUE(folder.Enumerate(files, &Visit::Note, &visit));
  EXPECT_EQ(visit.lines, (Lines{"Log2018-05-13.log|C:\\logs\\Log2018-05-13.log",
                                "Log2018-05-14.log|C:\\logs\\Log2018-05-14.log"}));
}

TEST_F(LogFolderTest, EnumerationStopsWhenTheCallbackReturnsFalse) {
  visit.stopAfter = 1;
  EXPECT_FALSE(folder.Enumerate(files, &Visit::Note, &visit));
  EXPECT_EQ(visit.lines.size(), 1u);
}

TEST_F(LogFolderTest, ACallbackThatThrowsStopsTheEnumeration) {
  int calls = 0;
  const auto throwing = [](const char*, const char*, void* context) -> bool {
    ++*static_cast<int*>(context);
    throw std::runtime_error("no");
  };
  EXPECT_FALSE(folder.Enumerate(files, throwing, &calls));
  EXPECT_EQ(calls, 1);
}

TEST_F(LogFolderTest, EnumeratingNothingSucceeds) {
  files.files["Log2018-05-14.log"];  // in no folder
  EXPECT_TRUE(LogFolder("C:\\empty").Enumerate(files, &Visit::Note, &visit));
  EXPECT_TRUE(LogFolder().Enumerate(files, &Visit::Note, &visit));
  EXPECT_TRUE(visit.lines.empty());
}

TEST_F(LogFolderTest, DeletesWhatWasCreatedBeforeTheCutOff) {
  constexpr std::int64_t kCutOff = 1'000'000;
  const struct {
    const char* name;
    std::int64_t createdAt;
    std::int64_t writtenAt;
    bool stays;
  } rows[] = {
      {"created a second before", kCutOff - 1, kCutOff + 1, false},
      {"created at the cut-off", kCutOff, kCutOff - 1, true},
      {"creation unknown, written a second before", -1, kCutOff - 1, false},
      {"creation unknown, written at the cut-off", -1, kCutOff, true},
  };
  for (const auto& row : rows) {
    files.files["C:\\logs\\LogX.log"] = {"", row.createdAt, row.writtenAt};
    folder.DeleteOlderThan(files, kCutOff);
    EXPECT_EQ(files.files.contains("C:\\logs\\LogX.log"), row.stays) << row.name;
  }
  EXPECT_TRUE(files.files.contains("C:\\logs\\Other.log"));
  EXPECT_TRUE(files.files.contains("C:\\logs\\Logs.txt"));
}

}  // namespace
}  // namespace Vask::Tests
