#include "net/CFileName2.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/MemoryFiles.h"
#include "tests/support/TempFolder.h"

namespace Vask::Tests {
namespace {

using Platform::DriveKind;
using testing::ElementsAre;
using testing::IsEmpty;

struct PathRow {
  const char* name;
  const char* path;
  const char* root;
  const char* parent;
};

void PrintTo(const PathRow& row, std::ostream* out) {
  *out << row.name << ": \"" << row.path << '"';
}

class CFileName2Paths : public testing::TestWithParam<PathRow> {};

TEST_P(CFileName2Paths, HaveARootAndAParent) {
  const CFileName2 path(GetParam().path);
  EXPECT_STREQ(path.Root().Text(), GetParam().root);
  EXPECT_STREQ(path.Parent().Text(), GetParam().parent);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CFileName2Paths,
    testing::Values(
        PathRow{"TwoFolders", R"(C:\a\b)", "C:", R"(C:\a\)"},
        PathRow{"OneFolder", R"(C:\a)", "C:", R"(C:\)"},
        PathRow{"TrailingBackslash", R"(C:\a\)", "C:", R"(C:\a\)"},
        PathRow{"DriveRoot", R"(C:\)", "C:", R"(C:\)"}, PathRow{"DriveAlone", "C:", "C:", "C:"},
        PathRow{"RelativeToADrive", "C:a", "C:", "C:"}, PathRow{"Slashes", "C:/a/b", "C:", "C:/a/"},
        PathRow{"WithoutADrive", R"(\a\b)", "", R"(\a\)"},
        PathRow{"Relative", R"(a\b)", "", R"(a\)"}, PathRow{"NameAlone", "a", "", ""},
        PathRow{"Empty", "", "", ""},
        PathRow{"ShareAndFolder", R"(\\server\share\a)", R"(\\server\share)", R"(\\server\share\)"},
        PathRow{"ShareAlone", R"(\\server\share)", R"(\\server\share)", R"(\\server\)"},
        PathRow{"ShareWithBackslash", R"(\\server\share\)", R"(\\server\share)",
                R"(\\server\share\)"},
        PathRow{"ServerWithBackslash", R"(\\server\)", R"(\\server)", R"(\\server\)"},
        PathRow{"EmptyShare", R"(\\server\\a)", R"(\\server)", R"(\\server\\)"},
        PathRow{"ServerAlone", R"(\\server)", "", R"(\\)"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CFileName2Test, HoldsUpTo260Characters) {
  EXPECT_STREQ(CFileName2(std::string(260, 'a')).Text(), std::string(260, 'a').c_str());
  EXPECT_TRUE(CFileName2(std::string(261, 'a')).Empty());
  EXPECT_EQ(sizeof(CFileName2), 261u) << "the characters and the terminating zero";
}

class CreateFoldersTest : public testing::Test {
 protected:
  CreateFoldersTest() { files.folders = {"C:"}; }
  bool Create(const std::string& path) { return CFileName2::CreateFolders(path.c_str(), files); }

  MemoryFiles files;
};

TEST_F(CreateFoldersTest, CreatesMissingParentsFromTheOutsideIn) {
  EXPECT_TRUE(Create(R"(C:\a\b\c)"));
  EXPECT_THAT(files.created, ElementsAre(R"(C:\a)", R"(C:\a\b)", R"(C:\a\b\c)"));
}

TEST_F(CreateFoldersTest, CreatesOnlyWhatIsMissing) {
  files.folders.insert(R"(C:\a)");
  EXPECT_TRUE(Create(R"(C:\a\b)"));
  EXPECT_THAT(files.created, ElementsAre(R"(C:\a\b)"));
}

TEST_F(CreateFoldersTest, ExistingFolderSucceedsOnAnyDrive) {
  files.drive = DriveKind::Unknown;
  files.folders.insert(R"(C:\a)");
  EXPECT_TRUE(Create(R"(C:\a)"));
  EXPECT_THAT(files.created, IsEmpty());
  EXPECT_THAT(files.rootsAsked, IsEmpty());
}

TEST_F(CreateFoldersTest, TrailingBackslashIsRemoved) {
  EXPECT_TRUE(Create(R"(C:\a\)"));
  EXPECT_THAT(files.created, ElementsAre(R"(C:\a)"));
}

TEST_F(CreateFoldersTest, DriveIsQueriedWithABackslash) {
  EXPECT_TRUE(Create(R"(C:\a)"));
  EXPECT_THAT(files.rootsAsked, ElementsAre(R"(C:\)"));
}

TEST_F(CreateFoldersTest, ShareIsQueriedWithABackslash) {
  files.folders.insert(R"(\\server\share)");
  EXPECT_TRUE(Create(R"(\\server\share\a)"));
  EXPECT_THAT(files.rootsAsked, ElementsAre(R"(\\server\share\)"));
}

TEST_F(CreateFoldersTest, ShareOf260CharactersIsQueriedWithABackslashToo) {
  const std::string longest = R"(\\server\)" + std::string(251, 's');
  files.drive = DriveKind::NoRoot;
  EXPECT_FALSE(Create(longest));
  EXPECT_THAT(files.rootsAsked, ElementsAre(longest + '\\'));
}

TEST_F(CreateFoldersTest, PathWithoutADriveQueriesTheCurrentOne) {
  EXPECT_TRUE(Create("a"));
  EXPECT_THAT(files.rootsAsked, ElementsAre(R"(\)"));
  EXPECT_THAT(files.created, ElementsAre("a"));
}

TEST_F(CreateFoldersTest, FailsIfAParentCannotBeCreated) {
  files.refused.insert(R"(C:\a\b)");
  EXPECT_FALSE(Create(R"(C:\a\b\c)"));
  EXPECT_THAT(files.created, ElementsAre(R"(C:\a)"));
}

TEST_F(CreateFoldersTest, FailsIfTheFolderItselfCannotBeCreated) {
  files.refused.insert(R"(C:\a)");
  EXPECT_FALSE(Create(R"(C:\a)"));
}

TEST_F(CreateFoldersTest, EmptyPathFails) {
  EXPECT_FALSE(Create(""));
  EXPECT_FALSE(Create("\\"));
  EXPECT_THAT(files.created, IsEmpty());
}

TEST_F(CreateFoldersTest, PathOver260CharactersFails) {
  const std::string longest = "C:\\" + std::string(257, 'a');
  EXPECT_FALSE(Create(longest + 'a'));
  EXPECT_THAT(files.created, IsEmpty());
  EXPECT_TRUE(Create(longest));
}

struct DriveRow {
  const char* name;
  DriveKind drive;
  bool created;
};

void PrintTo(const DriveRow& row, std::ostream* out) {
  *out << row.name;
}

class CreateFoldersDrives : public CreateFoldersTest,
                            public testing::WithParamInterface<DriveRow> {};

TEST_P(CreateFoldersDrives, DecideWhetherFoldersAreCreated) {
  files.drive = GetParam().drive;
  EXPECT_EQ(Create(R"(C:\a\b)"), GetParam().created);
  EXPECT_EQ(files.created.size(), GetParam().created ? 2u : 0u);
}

INSTANTIATE_TEST_SUITE_P(Rows, CreateFoldersDrives,
                         testing::Values(DriveRow{"Unknown", DriveKind::Unknown, false},
                                         DriveRow{"NoRoot", DriveKind::NoRoot, false},
                                         DriveRow{"CdRom", DriveKind::CdRom, false},
                                         DriveRow{"Removable", DriveKind::Removable, true},
                                         DriveRow{"Fixed", DriveKind::Fixed, true},
                                         DriveRow{"Remote", DriveKind::Remote, true},
                                         DriveRow{"RamDisk", DriveKind::RamDisk, true}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CreateFoldersOnDiskTest, CreatesFoldersWhoseNamesHoldBlanks) {
  const TempFolder temp;
  const std::string path = temp.Path(R"(Veltrin Systems\Corvane\SNMP\Logs)");
  EXPECT_TRUE(CFileName2::CreateFolders(path.c_str()));
  EXPECT_TRUE(std::filesystem::is_directory(temp.NativePath() / "Veltrin Systems" / "Corvane" /
                                            "SNMP" / "Logs"));
  EXPECT_TRUE(CFileName2::CreateFolders(path.c_str()));
}

TEST(CreateFoldersOnDiskTest, FailsIfAFileHasTheName) {
  const TempFolder temp;
  std::ofstream(temp.NativePath() / "file") << "text";
  EXPECT_FALSE(CFileName2::CreateFolders(temp.Path(R"(file\folder)").c_str()));
  EXPECT_FALSE(CFileName2::CreateFolders(temp.Path("file").c_str()));
}

}  // namespace
}  // namespace Vask::Tests
