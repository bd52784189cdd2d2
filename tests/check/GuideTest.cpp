#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "check/Report.h"
#include "tests/support/BuildFolder.h"

namespace Check {
namespace {

TEST(Guide, HasTheStepsOfTheProgram) {
  const std::string page = Vask::Tests::InBuildFolder("docs/operating.md");
  std::ifstream file(page, std::ios::binary);
  const std::string guide{std::istreambuf_iterator<char>(file), {}};
  ASSERT_FALSE(guide.empty()) << page;
  EXPECT_NE(guide.find('\n' + StepTable() + '\n'), std::string::npos)
      << "The table in \"When nothing is returned\" must be:\n"
      << StepTable();
}

}  // namespace
}  // namespace Check
