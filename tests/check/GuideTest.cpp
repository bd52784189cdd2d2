#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "check/Report.h"

namespace Check {
namespace {

TEST(Guide, HasTheStepsOfTheProgram) {
  std::ifstream file(CORVANE_GUIDE, std::ios::binary);
  const std::string guide{std::istreambuf_iterator<char>(file), {}};
  ASSERT_FALSE(guide.empty()) << CORVANE_GUIDE;
  EXPECT_NE(guide.find('\n' + StepTable() + '\n'), std::string::npos)
      << "The table in \"When nothing is returned\" must be:\n"
      << StepTable();
}

}  // namespace
}  // namespace Check
