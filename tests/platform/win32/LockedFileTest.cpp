// Tests with a file that another program has opened and does not share.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "Src/DailyLog.h"
#include "platform/Files.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempFolder.h"

namespace Vask::Tests {
namespace {

constexpr char kTodaysName[] = "Log2018-05-14.log";

class LockedFileTest : public testing::Test {
 protected:
  // Opens a file, creates it if needed, and does not share it.
  HANDLE Lock(const std::string& path) {
    return CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
  }

  TempFolder folder;
  FakeClock clock;
};

TEST_F(LockedFileTest, IsNotOpenedUntilItIsUnlocked) {
  const std::string path = folder.Path("file");
  const HANDLE lock = Lock(path);
  ASSERT_NE(lock, INVALID_HANDLE_VALUE);
  EXPECT_EQ(Platform::SystemFiles().OpenForAppend(path.c_str()), Platform::kNoFile);
  CloseHandle(lock);
  const Platform::FileHandle file = Platform::SystemFiles().OpenForAppend(path.c_str());
  EXPECT_NE(file, Platform::kNoFile);
  EXPECT_EQ(Lock(path), INVALID_HANDLE_VALUE) << "a file in use cannot be taken away";
  Platform::SystemFiles().Close(file);
}

TEST_F(LockedFileTest, LogContinuesWithoutItAndOpensItOnceItIsUnlocked) {
  DailyLog log(clock);
  const HANDLE lock = Lock(folder.Path(kTodaysName));
  ASSERT_NE(lock, INVALID_HANDLE_VALUE);
  EXPECT_FALSE(log.Open(folder.Path().c_str()));
  log.Info("nowhere to go\n");
  CloseHandle(lock);
  log.SetDaysToKeep(30);
  log.Info("one\n");
  EXPECT_EQ(folder.Bytes(kTodaysName), "12:00:00.000: Info: one\r\n");
}

// The test locks tomorrow's file before the log creates it.
TEST_F(LockedFileTest, LogThatFindsTheNextDaysFileLockedWaitsToBeOpenedAgain) {
  DailyLog log(clock);
  ASSERT_TRUE(log.Open(folder.Path().c_str()));
  log.Info("one\n");
  const HANDLE lock = Lock(folder.Path("Log2018-05-15.log"));
  clock.Advance(86'400'000);
  log.Info("nowhere to go\n");
  CloseHandle(lock);
  ASSERT_TRUE(log.Open(folder.Path().c_str()));
  log.Info("two\n");
  EXPECT_EQ(folder.Bytes(kTodaysName), "12:00:00.000: Info: one\r\n");
  EXPECT_EQ(folder.Bytes("Log2018-05-15.log"), "12:00:00.000: Info: two\r\n");
}

}  // namespace
}  // namespace Vask::Tests
