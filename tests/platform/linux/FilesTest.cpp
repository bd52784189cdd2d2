#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/Files.h"
#include "tests/support/TempFolder.h"

namespace Vask::Tests {
namespace {

// A path of this many characters to a file in the folder.
std::string PathOfLength(const TempFolder& folder, std::size_t length) {
  const std::string end = "\\file";
  std::string path = folder.Path();
  while (path.size() + end.size() + 1 < length) path += "\\.";
  if (path.size() + end.size() < length) path += '\\';
  return path + end;
}

// PATH_MAX of Linux is 4096, with the NUL.
TEST(LinuxFilesTest, LongestPathOfTheSystemHas4095Characters) {
  const TempFolder folder;
  Platform::Files& files = Platform::SystemFiles();
  const std::string longest = PathOfLength(folder, 4095);
  ASSERT_EQ(longest.size(), 4095u);
  const Platform::FileHandle file = files.OpenForAppend(longest.c_str());
  EXPECT_NE(file, Platform::kNoFile);
  EXPECT_TRUE(files.Append(file, "x", 1));
  files.Close(file);
  EXPECT_EQ(folder.Bytes("file"), "x");
  EXPECT_EQ(files.OpenForAppend(PathOfLength(folder, 4096).c_str()), Platform::kNoFile);
}

// The kernel does not know when a file of /proc was made.
TEST(LinuxFilesTest, UnknownTimeOfCreationIsMinusOne) {
  std::int64_t createdAt = 0;
  const auto visit = [](const Platform::FileEntry& file, void* context) {
    *static_cast<std::int64_t*>(context) = file.createdAt;
    return true;
  };
  EXPECT_TRUE(Platform::SystemFiles().List("\\proc\\version", visit, &createdAt));
  EXPECT_EQ(createdAt, -1);
}

// The master of a pseudo-terminal is a terminal, too.
TEST(LinuxFilesTest, StandardInputIsATerminalOnlyIfItIsOne) {
  const int input = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(terminal, 0);
  dup2(terminal, STDIN_FILENO);
  EXPECT_TRUE(Platform::StandardInputIsTerminal());
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(nothing, STDIN_FILENO);
  EXPECT_FALSE(Platform::StandardInputIsTerminal());
  close(nothing);
  close(terminal);
  if (input >= 0) {
    dup2(input, STDIN_FILENO);
    close(input);
  }
}

mode_t ModeOf(const std::filesystem::path& path) {
  struct stat state {};
  EXPECT_EQ(stat(path.c_str(), &state), 0);
  return state.st_mode & 07777;
}

TEST(LinuxFilesTest, OwnerMayWriteAndOthersMayRead) {
  const TempFolder folder;
  Platform::Files& files = Platform::SystemFiles();
  const mode_t before = umask(0);
  files.Close(files.OpenForAppend(folder.Path("file").c_str()));
  EXPECT_TRUE(files.CreateFolder(folder.Path("folder").c_str()));
  umask(before);
  EXPECT_EQ(ModeOf(folder.NativePath() / "file"), 0644u);
  EXPECT_EQ(ModeOf(folder.NativePath() / "folder"), 0755u);
}

}  // namespace
}  // namespace Vask::Tests
