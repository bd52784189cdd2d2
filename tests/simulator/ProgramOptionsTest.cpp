#include "simulator/ProgramOptions.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "BuildSettings.h"

namespace Simulator {
namespace {

using Arguments = std::vector<std::string>;

TEST(ProgramOptionsTest, WithoutArgumentsTheAgentsPortAndNoScript) {
  ProgramOptions options;
  std::string error;
  ASSERT_TRUE(ParseOptions({}, options, error));
  EXPECT_EQ(options.port, 16969);
  EXPECT_EQ(options.script, "");
  EXPECT_FALSE(options.help);
  EXPECT_FALSE(options.version);
}

TEST(ProgramOptionsTest, AllAreRead) {
  ProgramOptions options;
  std::string error;
  ASSERT_TRUE(
      ParseOptions({"--port", "0", "--script", "tour.txt", "--help", "--version"}, options, error));
  EXPECT_EQ(options.port, 0);
  EXPECT_EQ(options.script, "tour.txt");
  EXPECT_TRUE(options.help);
  EXPECT_TRUE(options.version);
}

struct BadRow {
  const char* name;
  Arguments arguments;
  const char* error;
};
void PrintTo(const BadRow& row, std::ostream* out) {
  *out << row.name;
}

class BadOptionsTest : public testing::TestWithParam<BadRow> {};

TEST_P(BadOptionsTest, AreExplained) {
  ProgramOptions options;
  std::string error;
  EXPECT_FALSE(ParseOptions(GetParam().arguments, options, error));
  EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BadOptionsTest,
    testing::Values(
        BadRow{"Unknown", {"--prot"}, "no option is called \"--prot\"; --help shows them"},
        BadRow{"Word", {"16969"}, "no option is called \"16969\"; --help shows them"},
        BadRow{"PortMissing", {"--port"}, "--port expects a value"},
        BadRow{"ScriptMissing", {"--script"}, "--script expects a value"},
        BadRow{"PortTooLarge",
               {"--port", "65536"},
               "--port expects a number from 0 to 65535, not \"65536\""},
        BadRow{"PortNegative",
               {"--port", "-1"},
               "--port expects a number from 0 to 65535, not \"-1\""},
        BadRow{"PortWord", {"--port", "x"}, "--port expects a number from 0 to 65535, not \"x\""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ProgramOptionsTest, HelpNamesEveryOptionAndCommand) {
  const std::string help = HelpText();
  for (const char* word :
       {"--port",   "--script", "--help",     "--version", "  set ",
        "  show ",  "  send ",  "  message ", "  frame ",  "  raw ",
        "  split ", "  drop ",  "  refuse ",  "  answer ", "  read ",
        "  wait ",  "  await ", "  help ",    "  quit ",   "AudioSourcesSilence"}) {
    EXPECT_NE(help.find(word), std::string::npos) << word;
  }
}

TEST(ProgramOptionsTest, HelpFitsATerminal) {
  std::istringstream help(HelpText());
  for (std::string line; std::getline(help, line);) EXPECT_LE(line.size(), 100u) << line;
}

TEST(ProgramOptionsTest, VersionIsTheProjects) {
  EXPECT_EQ(VersionText(), "corvane-sim " CORVANE_VERSION_TEXT "\n");
}

}  // namespace
}  // namespace Simulator
