#include "Src/DailyLog.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Src/LogPrinter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/RecordingLog.h"

namespace Vask::Tests {
namespace {

const std::string kToday = "C:\\logs\\Log2018-05-14.log";

class DailyLogTest : public testing::Test {
 protected:
  DailyLogTest() { files.folders = {"C:", "C:\\logs"}; }

  FakeClock clock;  // noon of 14 May 2018, UTC
  MemoryFiles files;
  FaultySockets sockets;
  DailyLog log{clock, files, sockets};
};

TEST_F(DailyLogTest, EveryLineHasItsTimeAndLevelAndTheLogAddsNoLineEnd) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  log.Info("one\n");
  clock.Advance(1'234);
  log.Warning("two\n");
  log.Error("three");
  log.Trace("four\n");
  EXPECT_EQ(files.files[kToday].bytes,
            "12:00:00.000: Info: one\n"
            "12:00:01.234: Warning: two\n"
            "12:00:01.234: Error: three"
            "12:00:01.234: TRACE: four\n");
}

TEST_F(DailyLogTest, LevelsThatAreNotInTheMaskAreNotLoggedAtAll) {
  DailyLog errorsOnly{clock, files, sockets, static_cast<std::uint32_t>(LogLevel::Error)};
  ASSERT_TRUE(errorsOnly.Open("C:\\logs"));
  errorsOnly.SetConsoleEcho(true);
  errorsOnly.Info("i\n");
  errorsOnly.Warning("w\n");
  errorsOnly.Trace("t\n");
  errorsOnly.Error("e\n");
  EXPECT_EQ(files.files[kToday].bytes, "12:00:00.000: Error: e\n");
  EXPECT_EQ(files.console, "12:00:00.000: Error: e\n");
}

TEST_F(DailyLogTest, TheConsoleEchoIsOffUntilItIsSwitchedOn) {
  log.Info("silent\n");
  log.SetConsoleEcho(true);
  log.Info("100 %s\n");
  log.SetConsoleEcho(false);
  log.Info("silent again\n");
  EXPECT_EQ(files.console, "12:00:00.000: Info: 100 %s\n");
}

TEST_F(DailyLogTest, WithoutAFileTheConsoleAndSyslogStillGetEveryLine) {
  files.opensFiles = false;
  EXPECT_FALSE(log.Open("C:\\logs"));
  log.SetConsoleEcho(true);
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  log.Info("x\n");
  EXPECT_EQ(files.console, "12:00:00.000: Info: x\n");
  EXPECT_EQ(sockets.datagrams, std::vector<std::string>{"<134>Info: x\n"});
}

TEST_F(DailyLogTest, ThePrinterWritesToItUntilItIsDestroyed) {
  std::optional<DailyLog> mortal(std::in_place, clock, files, sockets);
  LogPrinter printer{clock, files};
  LogPrinter::Instance().SetTarget(&*mortal);
  ASSERT_TRUE(mortal->Open("C:\\logs"));
  LogPrinter::Instance().Info("%s\n", "through the printer");
  EXPECT_EQ(files.files[kToday].bytes, "12:00:00.000: Info: through the printer\n");
  LogPrinter::Instance().SetConsole(false);
  mortal.emplace(clock, files, sockets);  // another log, at the same place
  ASSERT_TRUE(mortal->Open("C:\\logs"));
  LogPrinter::Instance().Info("after it\n");
  LogPrinter::Instance().SetConsole(true);
  EXPECT_EQ(files.files[kToday].bytes, "12:00:00.000: Info: through the printer\n");
}

TEST_F(DailyLogTest, ATextThatThePrinterCutIsLoggedAsItIs) {
  LogPrinter printer{clock, files};
  printer.SetTarget(&log);
  ASSERT_TRUE(log.Open("C:\\logs"));
  const std::string text = std::string(3'000, 'e') + "\n";
  printer.Error("%s", text.c_str());
  EXPECT_EQ(files.files[kToday].bytes, "12:00:00.000: Error: " + text.substr(0, 2'047));
}

// Logs in its destructor.
struct Mourner : Thread::SingletonRef<Mourner> {
  ~Mourner() { LogPrinter::Instance().Info("last words\n"); }
};

TEST(DailyLogInstanceTest, ThePrinterLivesLongerThanTheLog) {
  Thread::DestroySingletons();
  DailyLog::Instance();
  Mourner::Instance();
  RecordingLog log;  // asks for the printer
  Thread::DestroySingletons();
  EXPECT_EQ(log.Lines(), std::vector<std::string>{"Info: last words\n"});
}

TEST_F(DailyLogTest, FilesOlderThanTheDaysToKeepAreDeleted) {
  const std::string old = "C:\\logs\\LogOld.log";
  ASSERT_TRUE(log.Open("C:\\logs"));
  files.files[old].createdAt = clock.EpochSeconds() - 5 * 86'400;
  log.SetDaysToKeep(7);
  EXPECT_TRUE(files.files.contains(old));
  log.SetDaysToKeep(3);
  EXPECT_FALSE(files.files.contains(old));
}

TEST_F(DailyLogTest, TheFolderIsEmptyUntilTheLogIsOpen) {
  EXPECT_STREQ(log.GetFolder(), "");
  ASSERT_TRUE(log.Open("C:\\logs"));
  EXPECT_STREQ(log.GetFolder(), "C:\\logs\\");
}

TEST_F(DailyLogTest, EnumerationCallsBackWithoutTheLock) {
  struct Context {
    DailyLog& log;
    std::vector<std::string> names;
  } context{log, {}};
  const auto noteAndLog = [](const char* name, const char* path, void* opaque) {
    auto& found = *static_cast<Context*>(opaque);
    found.names.push_back(name);
    // Another thread would wait for ever if this thread held the lock.
    std::thread([&found, path] { found.log.Info(path); }).join();
    return false;
  };
  EXPECT_TRUE(log.EnumerateLogFiles(noteAndLog, &context));
  ASSERT_TRUE(log.Open("C:\\logs"));
  EXPECT_FALSE(log.EnumerateLogFiles(noteAndLog, &context));
  EXPECT_EQ(context.names, std::vector<std::string>{"Log2018-05-14.log"});
  EXPECT_EQ(files.files[kToday].bytes, "12:00:00.000: Info: " + kToday);
}

TEST_F(DailyLogTest, TheSizeLimitStopsTheDayOnce) {
  log.SetSizeLimit(30);
  ASSERT_TRUE(log.Open("C:\\logs"));
  log.Info("a line\n");
  log.Info("another\n");
  log.Error("and one more\n");
  EXPECT_EQ(files.files[kToday].bytes,
            "12:00:00.000: Info: a line\n"
            "\nWARNING: File size limit of 30 bytes reached! Logging stopped until next day.\n\n");
}

TEST_F(DailyLogTest, LinesOfSeveralThreadsStayWhole) {
  ASSERT_TRUE(log.Open("C:\\logs"));
  const auto write = [this](const char* text) {
    for (int i = 0; i < 200; ++i) log.Info(text);
  };
  std::thread first(write, "first\n");
  std::thread second(write, "second\n");
  first.join();
  second.join();
  const std::string& bytes = files.files[kToday].bytes;
  std::size_t lines = 0;
  for (std::size_t at = 0; at < bytes.size(); ++lines) {
    const std::string line = bytes.substr(at, bytes.find('\n', at) + 1 - at);
    EXPECT_TRUE(line == "12:00:00.000: Info: first\n" || line == "12:00:00.000: Info: second\n")
        << line;
    at += line.size();
  }
  EXPECT_EQ(lines, 400u);
}

TEST(DailyLogInstanceTest, IsOneForTheProcess) {
  EXPECT_EQ(&DailyLog::Instance(), &DailyLog::Instance());
}

}  // namespace
}  // namespace Vask::Tests
