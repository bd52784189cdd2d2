#include "Src/LogPrinter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FakeClock.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/RecordingLog.h"

namespace Vask::Tests {
namespace {

// 3,072 characters, as a literal, because the compiler accepts only literals as formats.
#define TIMES_8(text) text text text text text text text text
#define LONG_FORMAT TIMES_8(TIMES_8(TIMES_8("format")))

VASK_PRINTF_FORMAT(3, 0)
int FailToFormat(char*, std::size_t, const char*, std::va_list) noexcept {
  return -1;
}

class LogPrinterTest : public testing::Test {
 protected:
  std::string LastError(std::size_t capacity = LogPrinter::kLastErrorCapacity) const {
    std::string text(capacity, '?');
    printer.CopyLastError(text.data(), capacity);
    return text.substr(0, text.find('\0'));
  }

  FakeClock clock;
  MemoryFiles files;
  LogPrinter printer{clock, files};
};

TEST_F(LogPrinterTest, BeforeTheLogIsOpenAnInfoLinePrintsTimeLevelAndText) {
  printer.Info("x\n");
  EXPECT_EQ(files.console, "12:00:00.000: Info: x\n");
}

TEST_F(LogPrinterTest, EveryLevelHasItsNameOnTheConsole) {
  clock.Advance(3 * 3'600'000 + 4 * 60'000 + 5 * 1'000 + 67);
  printer.Info("one\n");
  printer.Warning("two\n");
  printer.Error("three\n");
  EXPECT_EQ(files.console,
            "15:04:05.067: Info: one\n15:04:05.067: Warning: two\n15:04:05.067: Error: three\n");
}

TEST_F(LogPrinterTest, ALineGoesToTheConsoleInOnePiece) {
  printer.Info("%s\n", "whole");
  EXPECT_EQ(files.appended.size(), 1u);
}

TEST_F(LogPrinterTest, CompactLinesHaveTheLevelsFirstLetterAndTheText) {
  printer.SetCompact(true);
  printer.Info("one\n");
  printer.Warning("two\n");
  printer.Error("three\n");
  EXPECT_EQ(files.console, "Ione\nWtwo\nEthree\n");
}

TEST_F(LogPrinterTest, CompactAlonePrintsWithoutTheConsoleFlag) {
  printer.SetConsole(false);
  printer.SetCompact(true);
  printer.Info("x\n");
  EXPECT_EQ(files.console, "Ix\n");
}

TEST_F(LogPrinterTest, WithBothFlagsOffNothingIsPrinted) {
  printer.SetConsole(false);
  printer.Info("x\n");
  printer.Warning("x\n");
  printer.Error("x\n");
  EXPECT_EQ(files.console, "");
}

TEST_F(LogPrinterTest, ACompactLineOfAnEmptyTextIsTheLetterAlone) {
  printer.SetCompact(true);
  printer.Info("%s", "");
  EXPECT_EQ(files.console, "I");
}

TEST_F(LogPrinterTest, AMissingConsoleIsIgnored) {
  files.hasConsole = false;
  printer.Info("x\n");
  printer.Error("y\n");
  EXPECT_EQ(LastError(), "y\n");
}

TEST_F(LogPrinterTest, WithATargetEachLevelGoesThereAndNothingToTheConsole) {
  RecordingLog log;
  printer.SetTarget(&log);
  printer.Info("%d\n", 1);
  printer.Warning("%d\n", 2);
  printer.Error("%d\n", 3);
  EXPECT_EQ(log.Lines(), (std::vector<std::string>{"Info: 1\n", "Warning: 2\n", "Error: 3\n"}));
  EXPECT_EQ(files.console, "");
}

TEST_F(LogPrinterTest, ALogThatIsDestroyedRemovesOnlyItself) {
  RecordingLog log;
  RecordingLog other;
  printer.SetTarget(&log);
  printer.RemoveTarget(&other);
  printer.Info("kept\n");
  printer.RemoveTarget(&log);
  printer.Info("gone\n");
  EXPECT_EQ(log.Lines(), std::vector<std::string>{"Info: kept\n"});
  EXPECT_EQ(files.console, "12:00:00.000: Info: gone\n");
}

TEST_F(LogPrinterTest, AnErrorOf3000CharactersIsCutTo2047) {
  RecordingLog log;
  printer.SetTarget(&log);
  const std::string text(3000, 'e');
  printer.Error("%s", text.c_str());
  EXPECT_EQ(log.Lines(), std::vector<std::string>{"Error: " + text.substr(0, 2047)});
}

TEST_F(LogPrinterTest, ATextOf2047CharactersIsWholeOnTheConsole) {
  const std::string text(2047, 't');
  printer.Warning("%s", text.c_str());
  EXPECT_EQ(files.console, "12:00:00.000: Warning: " + text);
}

TEST_F(LogPrinterTest, FormatsMeanTheSameOnEverySystem) {
  printer.SetCompact(true);
  printer.Info("%llu %zu %lld %5.2f %s %x %%\n", 18446744073709551615ULL, std::size_t{7}, -5LL, 1.5,
               "s", 255u);
  EXPECT_EQ(files.console, "I18446744073709551615 7 -5  1.50 s ff %\n");
}

TEST_F(LogPrinterTest, AnEmptyTextIsAMessageToo) {
  printer.Info("%s", "");
  EXPECT_EQ(files.console, "12:00:00.000: Info: ");
}

TEST_F(LogPrinterTest, AMessageThatCannotBeFormattedIsReplacedAtTheSameLevel) {
  LogPrinter failing{clock, files, &FailToFormat};
  RecordingLog log;
  failing.SetTarget(&log);
  failing.Info("%d of %s\n", 1, "x");
  failing.Warning("%%");
  failing.Error("plain");
  EXPECT_EQ(log.Lines(), (std::vector<std::string>{"Info: Invalid message format: '%d of %s\n'!\n",
                                                   "Warning: Invalid message format: '%%'!\n",
                                                   "Error: Invalid message format: 'plain'!\n"}));
}

TEST_F(LogPrinterTest, AnInvalidFormatThatIsTooLongIsCutToo) {
  LogPrinter failing{clock, files, &FailToFormat};
  RecordingLog log;
  failing.SetTarget(&log);
  failing.Info(LONG_FORMAT);
  EXPECT_EQ(
      log.Lines(),
      std::vector<std::string>{
          "Info: " + ("Invalid message format: '" LONG_FORMAT + std::string()).substr(0, 2047)});
}

TEST_F(LogPrinterTest, TheLastErrorIsNoErrorAtFirst) {
  EXPECT_EQ(LastError(), "No error");
}

TEST_F(LogPrinterTest, OnlyAnErrorBecomesTheLastError) {
  printer.Error("%s\n", "first");
  printer.Warning("second\n");
  printer.Info("third\n");
  EXPECT_EQ(LastError(), "first\n");
}

TEST_F(LogPrinterTest, TheLogFindsTheErrorThatItWritesAsTheLastOne) {
  class ReadingLog final : public LinesOnlyLog {
   public:
    std::function<std::string()> lastError;
    std::string seen;

    void Info(const char*) override {}
    void Warning(const char*) override {}
    void Error(const char*) override { seen = lastError(); }
    void Trace(const char*) override {}
  } log;
  log.lastError = [this] { return LastError(); };
  printer.SetTarget(&log);
  printer.Error("first\n");
  EXPECT_EQ(log.seen, "first\n");
}

TEST_F(LogPrinterTest, TheLastErrorIsCutTo1023Characters) {
  printer.Error("%s", std::string(1023, 'a').c_str());
  EXPECT_EQ(LastError(), std::string(1023, 'a'));
  printer.Error("%s", std::string(1024, 'b').c_str());
  EXPECT_EQ(LastError(), std::string(1023, 'b'));
}

TEST_F(LogPrinterTest, TheLastErrorFitsTheReadersBuffer) {
  printer.Error("abcdef");
  EXPECT_EQ(LastError(4), "abc");
  EXPECT_EQ(LastError(1), "");
}

TEST_F(LogPrinterTest, ReadersOfTheLastErrorGetItWholeWhileOthersWriteIt) {
  RecordingLog log;
  printer.SetTarget(&log);
  printer.Error("%s", "aaaaaaaa");
  const auto write = [this](const char* text) {
    for (int i = 0; i < 500; ++i) printer.Error("%s", text);
  };
  std::thread first(write, "aaaaaaaa");
  std::thread second(write, "bbbbbbbbbbbb");
  for (int i = 0; i < 500; ++i) {
    const std::string seen = LastError();
    EXPECT_TRUE(seen == "aaaaaaaa" || seen == "bbbbbbbbbbbb") << seen;
  }
  first.join();
  second.join();
  EXPECT_EQ(log.Lines().size(), 1001u);
}

TEST(LogPrinterInstanceTest, IsOneForTheProcess) {
  EXPECT_EQ(&LogPrinter::Instance(), &LogPrinter::Instance());
}

}  // namespace
}  // namespace Vask::Tests
