#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/Files.h"
#include "tests/support/TempFolder.h"

namespace Vask::Tests {
namespace {

class CommonDataTest : public testing::Test {
 protected:
  CommonDataTest() {
    if (const char* const before = std::getenv("CORVANE_DATA")) m_before = before;
  }
  ~CommonDataTest() override { Set(m_before); }

  void Set(const std::string& folder) {
    if (folder.empty()) {
      unsetenv("CORVANE_DATA");
    } else {
      setenv("CORVANE_DATA", folder.c_str(), 1);
    }
  }
  std::string CommonData() {
    char path[260] = "";
    return Platform::SystemFiles().CommonApplicationData(path, sizeof path) ? path : "";
  }

  TempFolder temp;

 private:
  std::string m_before;
};

TEST_F(CommonDataTest, IsVarLibUnlessSet) {
  Set("");
  EXPECT_EQ(CommonData(), "\\var\\lib");
}

TEST_F(CommonDataTest, IsTheFolderThatTheEnvironmentNames) {
  Set(temp.NativePath().string());
  EXPECT_EQ(CommonData(), temp.Path());
}

TEST_F(CommonDataTest, LosesATrailingSlash) {
  Set(temp.NativePath().string() + '/');
  EXPECT_EQ(CommonData(), temp.Path());
}

TEST_F(CommonDataTest, IsCreatedIfMissing) {
  Set((temp.NativePath() / "data").string());
  EXPECT_EQ(CommonData(), temp.Path("data"));
  EXPECT_TRUE(std::filesystem::is_directory(temp.NativePath() / "data"));
}

TEST_F(CommonDataTest, CannotBeTheRootOfTheTree) {
  Set("/");
  EXPECT_EQ(CommonData(), "");
}

TEST_F(CommonDataTest, DriveOfAPathIsIgnored) {
  const std::string path = "C:" + temp.Path("folder");
  EXPECT_TRUE(Platform::SystemFiles().CreateFolder(path.c_str()));
  EXPECT_TRUE(std::filesystem::is_directory(temp.NativePath() / "folder"));
}

TEST_F(CommonDataTest, DriveIsALetterOfEitherCase) {
  for (const char drive : {'A', 'Z', 'a', 'z', '@', '[', '`', '{'}) {
    const bool isLetter = drive == 'A' || drive == 'Z' || drive == 'a' || drive == 'z';
    EXPECT_EQ(Platform::SystemFiles().IsFolder((drive + (":" + temp.Path())).c_str()), isLetter)
        << drive;
  }
}

}  // namespace
}  // namespace Vask::Tests
