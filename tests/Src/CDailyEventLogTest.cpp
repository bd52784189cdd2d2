#include "Src/CDailyEventLog.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/BerlinClock.h"
#include "tests/support/FakeClock.h"
#include "tests/support/MemoryFiles.h"

namespace Vask::Tests {
namespace {

constexpr std::uint32_t kHourMs = 3'600'000;
constexpr std::uint32_t kDayMs = 24 * kHourMs;
constexpr std::int64_t kDaySeconds = 86'400;

const std::string kToday = "C:\\logs\\Log2018-05-14.log";
const std::string kTomorrow = "C:\\logs\\Log2018-05-15.log";

class CDailyEventLogTest : public testing::Test {
 protected:
  CDailyEventLogTest() { files.folders = {"C:", "C:\\logs", "C:\\current"}; }

  void Write(const char* text) { log.WriteLine("T ", "P ", text); }
  std::string Bytes(const std::string& path) {
    return files.files.contains(path) ? files.files[path].bytes : "no such file";
  }

  FakeClock clock;  // noon of 14 May 2018, UTC
  MemoryFiles files;
  CDailyEventLog log{clock, files};
};

TEST_F(CDailyEventLogTest, TheFileIsNamedAfterTheLocalDate) {
  clock.utcOffsetSeconds = 13 * 3'600;
  EXPECT_TRUE(log.Open("C:\\logs"));
  Write("x\n");
  EXPECT_EQ(Bytes(kTomorrow), "T P x\n");
  EXPECT_EQ(log.Folder().Path(), "C:\\logs\\");
}

TEST_F(CDailyEventLogTest, EachPieceOfALineIsWrittenByItself) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write("x\n");
  EXPECT_EQ(files.appended, (std::vector<std::string>{"T ", "P ", "x\n"}));
}

TEST_F(CDailyEventLogTest, AFileThatIsThereIsAppendedTo) {
  files.files[kToday].bytes = "before\n";
  ASSERT_TRUE(log.Open("C:\\logs\\"));
  Write("x\n");
  EXPECT_EQ(Bytes(kToday), "before\nT P x\n");
}

TEST_F(CDailyEventLogTest, BeforeOpenNothingIsWritten) {
  Write("x\n");
  EXPECT_FALSE(log.IsOpen());
  EXPECT_TRUE(files.appended.empty());
}

TEST_F(CDailyEventLogTest, TheFirstWriteAfterMidnightGoesToTheNewDaysFile) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  clock.Advance(12 * kHourMs - 1);
  Write("last\n");
  clock.Advance(1);
  EXPECT_EQ(files.closed, 0u) << "rotation waits for a write";
  Write("first\n");
  EXPECT_EQ(Bytes(kToday), "T P last\n");
  EXPECT_EQ(Bytes(kTomorrow), "T P first\n");
  EXPECT_EQ(files.closed, 1u);
}

TEST_F(CDailyEventLogTest, EveryDayHasItsFile) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  for (int day = 0; day < 3; ++day) {
    Write("x\n");
    clock.Advance(kDayMs);
  }
  EXPECT_EQ(Bytes("C:\\logs\\Log2018-05-14.log"), "T P x\n");
  EXPECT_EQ(Bytes("C:\\logs\\Log2018-05-15.log"), "T P x\n");
  EXPECT_EQ(Bytes("C:\\logs\\Log2018-05-16.log"), "T P x\n");
}

TEST_F(CDailyEventLogTest, ADayThatEndsWithinALineTakesTheRestToTheNewFile) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  clock.Advance(12 * kHourMs - 1);
  files.afterAppend = [this] { clock.Advance(1); };
  Write("x\n");
  EXPECT_EQ(Bytes(kToday), "T ");
  EXPECT_EQ(Bytes(kTomorrow), "P x\n");
}

TEST_F(CDailyEventLogTest, AFailedRotationLeavesTheLogWithoutAFileUntilItIsOpenedAgain) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  clock.Advance(kDayMs);
  files.opensFiles = false;
  Write("dropped\n");
  files.opensFiles = true;
  Write("dropped too\n");
  EXPECT_FALSE(log.IsOpen());
  EXPECT_TRUE(files.appended.empty());
  log.SetDaysToKeep(30);
  Write("x\n");
  EXPECT_EQ(Bytes(kTomorrow), "T P x\n");
}

TEST_F(CDailyEventLogTest, AFolderThatVanishesFailsTheRotationAndIsCreatedByOpen) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  files.folders.erase("C:\\logs");
  files.files.clear();
  Write("into nothing\n");
  EXPECT_TRUE(log.IsOpen());
  clock.Advance(kDayMs);
  Write("dropped\n");
  EXPECT_FALSE(log.IsOpen());
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write("x\n");
  EXPECT_EQ(Bytes(kTomorrow), "T P x\n");
}

TEST_F(CDailyEventLogTest, ARotationThatFailsWithinALineDropsItsRest) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  clock.Advance(12 * kHourMs - 1);
  files.opensFiles = false;
  files.afterAppend = [this] { clock.Advance(1); };
  Write("x\n");
  EXPECT_EQ(Bytes(kToday), "T ");
  EXPECT_EQ(Bytes(kTomorrow), "no such file");
}

TEST_F(CDailyEventLogTest, InTheFirstHourOfADayOf25HoursTheSameFileIsOpenedAgainAndAgain) {
  BerlinClock berlin;
  CDailyEventLog dayOf25Hours{berlin, files};
  berlin.utc.epochMilliseconds = berlin.FromLocal({2018, 10, 28, 0, 30, 0, 0}) * 1'000;
  ASSERT_TRUE(dayOf25Hours.Open("C:\\logs"));
  dayOf25Hours.WriteLine("T ", "P ", "early\n");
  EXPECT_GT(files.opened, 1u);
  berlin.utc.Advance(kHourMs);
  dayOf25Hours.WriteLine("T ", "P ", "later\n");
  const std::uint32_t opened = files.opened;
  dayOf25Hours.WriteLine("T ", "P ", "settled\n");
  EXPECT_EQ(files.opened, opened);
  EXPECT_EQ(Bytes("C:\\logs\\Log2018-10-28.log"), "T P early\nT P later\nT P settled\n");
}

TEST_F(CDailyEventLogTest, OpeningDeletesFilesThatAreOver30DaysOlderThanTheNextMidnight) {
  const std::int64_t midnight = clock.FromLocal({2018, 5, 15, 0, 0, 0, 0});
  files.files["C:\\logs\\LogOld.log"].createdAt = midnight - 30 * kDaySeconds - 1;
  files.files["C:\\logs\\LogKept.log"].createdAt = midnight - 30 * kDaySeconds;
  ASSERT_TRUE(log.Open("C:\\logs"));
  EXPECT_FALSE(files.files.contains("C:\\logs\\LogOld.log"));
  EXPECT_TRUE(files.files.contains("C:\\logs\\LogKept.log"));
}

TEST_F(CDailyEventLogTest, RotationDeletesWhatHasBecomeTooOld) {
  const std::int64_t midnight = clock.FromLocal({2018, 5, 15, 0, 0, 0, 0});
  files.files["C:\\logs\\LogX.log"].createdAt = midnight - 30 * kDaySeconds;
  ASSERT_TRUE(log.Open("C:\\logs"));
  files.files[kToday].createdAt = clock.EpochSeconds();
  clock.Advance(kDayMs);
  EXPECT_TRUE(files.files.contains("C:\\logs\\LogX.log"));
  Write("x\n");
  EXPECT_FALSE(files.files.contains("C:\\logs\\LogX.log"));
  EXPECT_TRUE(files.files.contains(kToday));
}

TEST_F(CDailyEventLogTest, SetDaysToKeepCleansUpAtOnce) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  const std::int64_t midnight = clock.FromLocal({2018, 5, 15, 0, 0, 0, 0});
  const struct {
    const char* name;
    std::uint32_t days;
    std::int64_t age;
    bool stays;
  } rows[] = {
      {"two days, just old enough", 2, 2 * kDaySeconds + 1, false},
      {"two days, not yet", 2, 2 * kDaySeconds, true},
      {"no days, made today", 0, 1, false},
      {"keep all", 0xFFFFFFFF, 40'000 * kDaySeconds, true},
      {"keep all, made earlier than any number of days reaches", 0xFFFFFFFF,
       5'000'000'000 * kDaySeconds, true},
      {"the most days but one reach back before the epoch", 0xFFFFFFFE, midnight - 1, true},
  };
  for (const auto& row : rows) {
    files.files["C:\\logs\\LogX.log"] = {"", midnight - row.age, midnight - row.age};
    log.SetDaysToKeep(row.days);
    EXPECT_EQ(files.files.contains("C:\\logs\\LogX.log"), row.stays) << row.name;
  }
  Write("x\n");
  EXPECT_EQ(Bytes(kToday), "T P x\n");
}

TEST_F(CDailyEventLogTest, SetDaysToKeepBeforeOpenOpensNothingAndOpenKeeps30Days) {
  log.SetDaysToKeep(0xFFFFFFFF);
  EXPECT_FALSE(log.IsOpen());
  EXPECT_EQ(files.opened, 0u);
  const std::int64_t midnight = clock.FromLocal({2018, 5, 15, 0, 0, 0, 0});
  files.files["C:\\logs\\LogOld.log"].createdAt = midnight - 30 * kDaySeconds - 1;
  files.files["C:\\logs\\LogKept.log"].createdAt = midnight - 30 * kDaySeconds;
  ASSERT_TRUE(log.Open("C:\\logs"));
  EXPECT_FALSE(files.files.contains("C:\\logs\\LogOld.log"));
  EXPECT_TRUE(files.files.contains("C:\\logs\\LogKept.log"));
}

constexpr char kStopped50[] =
    "\nWARNING: File size limit of 50 bytes reached! Logging stopped until next day.\n\n";

TEST_F(CDailyEventLogTest, ThePieceThatExceedsTheLimitAndAllLaterOnesAreDropped) {
  log.SetSizeLimit(50);
  ASSERT_TRUE(log.Open("C:\\logs"));
  const std::string fits(49 - 4, 'f');
  Write(fits.c_str());
  Write("too much\n");
  Write("x");
  EXPECT_EQ(Bytes(kToday), "T P " + fits + kStopped50);
}

TEST_F(CDailyEventLogTest, APieceThatJustReachesTheLimitIsDropped) {
  log.SetSizeLimit(50);
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write(std::string(50 - 4, 'f').c_str());
  EXPECT_EQ(Bytes(kToday), std::string("T P ") + kStopped50);
}

TEST_F(CDailyEventLogTest, TheBytesAlreadyInTheFileCount) {
  files.files[kToday].bytes = std::string(49, 'b');
  log.SetSizeLimit(50);
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write("x\n");
  EXPECT_EQ(Bytes(kToday), std::string(49, 'b') + kStopped50);
}

TEST_F(CDailyEventLogTest, TheNextDayStartsAgainAfterAStop) {
  log.SetSizeLimit(50);
  ASSERT_TRUE(log.Open("C:\\logs"));
  const std::string tooLong(60, 'l');
  Write(tooLong.c_str());
  clock.Advance(kDayMs);
  Write("x\n");
  Write(tooLong.c_str());
  EXPECT_EQ(Bytes(kTomorrow), std::string("T P x\nT P ") + kStopped50);
}

// A warning leaves the file shorter than the limit, so its length alone would let
// short lines in again.
TEST_F(CDailyEventLogTest, OpeningTheSameDayAgainDoesNotLiftAStop) {
  constexpr char kStopped1000[] =
      "\nWARNING: File size limit of 1000 bytes reached! Logging stopped until next day.\n\n";
  const struct {
    const char* name;
    std::function<void()> openAgain;
  } rows[] = {
      {"SetDaysToKeep", [this] { log.SetDaysToKeep(10); }},
      {"Open of the same folder", [this] { ASSERT_TRUE(log.Open("C:\\logs")); }},
      {"Open of the same folder after stdout",
       [this] {
         ASSERT_TRUE(log.Open("stdout"));
         ASSERT_TRUE(log.Open("C:\\logs\\"));
       }},
  };
  log.SetSizeLimit(1000);
  for (const auto& row : rows) {
    clock.Advance(kDayMs);
    const std::string path =
        "C:\\logs\\Log2018-05-" + std::to_string(clock.LocalNow().day) + ".log";
    ASSERT_TRUE(log.Open("C:\\logs"));
    Write(std::string(1000, 'l').c_str());
    row.openAgain();
    Write("x\n");
    Write(std::string(1000, 'l').c_str());
    EXPECT_EQ(Bytes(path), std::string("T P ") + kStopped1000) << row.name;
  }
}

TEST_F(CDailyEventLogTest, AStopIsThatOfOneFile) {
  const std::string tooLong(60, 'l');
  log.SetSizeLimit(50);
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write(tooLong.c_str());
  ASSERT_TRUE(log.Open("C:\\other"));
  Write("x\n");
  Write(tooLong.c_str());
  EXPECT_EQ(Bytes("C:\\other\\Log2018-05-14.log"), std::string("T P x\nT P ") + kStopped50);
  EXPECT_EQ(Bytes(kToday), std::string("T P ") + kStopped50);
}

TEST_F(CDailyEventLogTest, WithoutALimitNothingStops) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  files.afterAppend = [this] { files.appended.clear(); };
  const std::string text(1'000'000, 'x');
  for (int i = 0; i < 10; ++i) Write(text.c_str());
  EXPECT_EQ(Bytes(kToday).size(), 10 * (text.size() + 4));
}

TEST_F(CDailyEventLogTest, ALogNamedStdoutWritesToTheStandardOutputAndNeverRotates) {
  log.SetSizeLimit(1);
  EXPECT_TRUE(log.Open("stdout"));
  Write("one\n");
  clock.Advance(2 * kDayMs);
  log.SetDaysToKeep(1);
  Write("two\n");
  EXPECT_EQ(files.console, "T P one\nT P two\n");
  EXPECT_EQ(files.opened, 0u);
  EXPECT_EQ(files.closed, 0u);
  EXPECT_FALSE(files.folders.contains("stdout"));
  EXPECT_EQ(log.Folder().Path(), "");
}

TEST_F(CDailyEventLogTest, ALogCanMoveBetweenStdoutAndAFolder) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  ASSERT_TRUE(log.Open("stdout"));
  EXPECT_EQ(files.closed, 1u);
  EXPECT_EQ(log.Folder().Path(), "");
  clock.Advance(2 * kDayMs);
  Write("console\n");
  ASSERT_TRUE(log.Open("C:\\logs"));
  Write("file\n");
  EXPECT_EQ(files.console, "T P console\n");
  EXPECT_EQ(Bytes("C:\\logs\\Log2018-05-16.log"), "T P file\n");
}

TEST_F(CDailyEventLogTest, WithoutAFolderTheCurrentOneIsUsed) {
  EXPECT_TRUE(log.Open(nullptr));
  EXPECT_EQ(log.Folder().Path(), "C:\\current\\");
  EXPECT_TRUE(files.files.contains("C:\\current\\Log2018-05-14.log"));
  files.currentFolder = "";
  EXPECT_FALSE(log.Open(nullptr));
  EXPECT_FALSE(log.IsOpen());
}

TEST_F(CDailyEventLogTest, AMissingFolderIsCreatedWithItsParents) {
  files.folders = {"C:"};
  EXPECT_TRUE(log.Open("C:\\a\\b\\c"));
  EXPECT_TRUE(files.folders.contains("C:\\a\\b\\c"));
  EXPECT_TRUE(files.files.contains("C:\\a\\b\\c\\Log2018-05-14.log"));
}

TEST_F(CDailyEventLogTest, AnEmptyFolderIsRefused) {
  EXPECT_FALSE(log.Open(""));
  EXPECT_FALSE(log.IsOpen());
}

TEST_F(CDailyEventLogTest, AFolderIsTooLongWhenTheFilesPathDoesNotFit) {
  // 260 characters less backslash and "Log2018-05-14.log".
  const std::string longest = "C:\\" + std::string(242 - 3, 'd');
  EXPECT_TRUE(log.Open(longest.c_str()));
  EXPECT_TRUE(files.files.contains(longest + "\\Log2018-05-14.log"));
  EXPECT_FALSE(log.Open((longest + "d").c_str()));
  EXPECT_FALSE(log.Open(std::string(100'000, 'd').c_str()));
  EXPECT_FALSE(files.folders.contains(longest + "d")) << "no folder is created";
  EXPECT_FALSE(log.IsOpen());
}

TEST_F(CDailyEventLogTest, AFileThatCannotBeOpenedIsAFailedOpen) {
  files.opensFiles = false;
  EXPECT_FALSE(log.Open("C:\\logs"));
  Write("x\n");
  EXPECT_TRUE(files.appended.empty());
}

TEST_F(CDailyEventLogTest, DestructionClosesTheFileButNotTheStandardOutput) {
  {
    CDailyEventLog file{clock, files};
    ASSERT_TRUE(file.Open("C:\\logs"));
    CDailyEventLog console{clock, files};
    ASSERT_TRUE(console.Open("stdout"));
  }
  EXPECT_EQ(files.closed, 1u);
}

}  // namespace
}  // namespace Vask::Tests
