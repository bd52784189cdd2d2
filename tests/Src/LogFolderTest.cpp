#include "Src/LogFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/MemoryFiles.h"

namespace Vask::Tests {
namespace {

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

TEST_F(LogFolderTest, EnumerationStopsWhenItIsToldTo) {
  visit.stopAfter = 1;
  EXPECT_FALSE(folder.Enumerate(files, &Visit::Note, &visit));
  EXPECT_EQ(visit.lines.size(), 1u);
}

TEST_F(LogFolderTest, EnumeratingNothingSucceeds) {
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
