// The daily log on a file system that is full or read-only. Runs natively only, through
// in-own-mounts.sh, which creates both.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Src/DailyLog.h"
#include "tests/support/FakeClock.h"

namespace Vask::Tests {
namespace {

namespace fs = std::filesystem;

// A folder on which the script has mounted a file system.
fs::path Mounted(const char* name) {
  const char* const mounts = std::getenv("CORVANE_MOUNTS");
  return mounts == nullptr ? fs::path() : fs::path(mounts) / name;
}

class DiskFaultsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_FALSE(Mounted("").empty()) << "run by in-own-mounts.sh"; }
  // The tests use the same disk one after the other.
  void TearDown() override {
    for (const auto& entry : fs::directory_iterator(Mounted("full"))) fs::remove_all(entry.path());
  }

  static std::string AgentPath(const fs::path& path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
  }
  static std::string Bytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void Write(int number) { log.Info(Text(number).c_str()); }
  static std::string Text(int number) {
    return "line " + std::to_string(number) + std::string(80, '.') + "\n";
  }
  static std::string Line(int number) { return "12:00:00.000: Info: " + Text(number); }

  FakeClock clock;
  DailyLog log{clock};
};

TEST_F(DiskFaultsTest, FullFileSystemLosesOnlyTheLinesThatItCannotStore) {
  const fs::path folder = Mounted("full");
  const fs::path ballast = folder / "ballast";
  std::ofstream(ballast) << std::string(32 * 1024, 'b');
  ASSERT_TRUE(log.Open(AgentPath(folder).c_str()));
  const int tooMany = 1'000;
  for (int i = 0; i < tooMany; ++i) Write(i);
  const std::string full = Bytes(folder / "Log2018-05-14.log");
  int taken = 0;
  std::string expected;
  for (; full.starts_with(expected + Line(taken)); ++taken) expected += Line(taken);
  EXPECT_GT(taken, 100);
  EXPECT_LT(taken, tooMany);
  fs::remove(ballast);
  for (int i = tooMany; i < tooMany + 100; ++i) Write(i);
  const std::string later = Bytes(folder / "Log2018-05-14.log");
  EXPECT_EQ(later.substr(0, full.size()), full);
  std::string all;
  for (int i = tooMany; i < tooMany + 100; ++i) all += Line(i);
  EXPECT_EQ(later.substr(full.size()), all);
}

TEST_F(DiskFaultsTest, FullFileSystemAtMidnightLosesNoLineOnceThereIsSpace) {
  const fs::path folder = Mounted("full");
  const fs::path ballast = folder / "ballast";
  ASSERT_TRUE(log.Open(AgentPath(folder).c_str()));
  std::ofstream(ballast) << std::string(256 * 1024, 'b');
  clock.Advance(86'400'000);
  Write(1);
  fs::remove(ballast);
  Write(2);
  Write(3);
  EXPECT_EQ(Bytes(folder / "Log2018-05-15.log"), Line(2) + Line(3));
}

TEST_F(DiskFaultsTest, ReadOnlyFileSystemHasNoLogAndNoOtherEffect) {
  EXPECT_FALSE(log.Open(AgentPath(Mounted("read-only")).c_str()));
  Write(1);
  EXPECT_FALSE(log.Open(AgentPath(Mounted("read-only") / "new" / "folder").c_str()));
  Write(2);
  EXPECT_TRUE(fs::is_empty(Mounted("read-only")));
  ASSERT_TRUE(log.Open(AgentPath(Mounted("full") / "after").c_str()));
  Write(3);
  EXPECT_EQ(Bytes(Mounted("full") / "after" / "Log2018-05-14.log"), Line(3));
}

}  // namespace
}  // namespace Vask::Tests
