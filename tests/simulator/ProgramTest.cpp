#include "simulator/Program.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <deque>
#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "BuildSettings.h"
#include "simulator/CorvaneServer.h"
#include "tests/support/RawClient.h"
#include "tests/support/TextRecorder.h"

namespace Simulator {
namespace {

using Vask::Tests::RawClient;
using Vask::Tests::TextRecorder;
using Lines = std::vector<std::string>;

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
  Lines arguments;
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
        BadRow{"Unknown", {"--prot"}, "unknown option \"--prot\"; --help lists the options"},
        BadRow{"Word", {"16969"}, "unknown option \"16969\"; --help lists the options"},
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

// Has no line at the first call, then returns the given lines, then ends.
class GivenLines final : public ILineSource {
 public:
  explicit GivenLines(Lines lines) : m_lines(lines.begin(), lines.end()) {}
  LineState NextLine(std::string& line) override {
    if (std::exchange(m_isFirstQuestion, false)) return LineState::Nothing;
    if (m_lines.empty()) return LineState::Ended;
    line = m_lines.front();
    m_lines.pop_front();
    return LineState::Read;
  }

 private:
  std::deque<std::string> m_lines;
  bool m_isFirstQuestion = true;
};

// A scenario file that its destructor deletes.
class ScriptFile {
 public:
  explicit ScriptFile(const std::string& text)
      : m_path(testing::TempDir() + "corvane-sim-" +
               testing::UnitTest::GetInstance()->current_test_info()->name() + ".txt") {
    std::ofstream(m_path, std::ios::binary) << text;
  }
  ~ScriptFile() { static_cast<void>(std::remove(m_path.c_str())); }
  const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

class ProgramTest : public testing::Test {
 protected:
  ProgramTest() { m_options.port = 0; }

  int Run(const Lines& input) {
    GivenLines lines(input);
    ProgramSurroundings surroundings;
    surroundings.print = [this](const std::string& line) { m_printed.Add(line); };
    surroundings.printError = [this](const std::string& line) { m_errors.Add(line); };
    surroundings.stopRequested = [this] { return m_stop.load(); };
    surroundings.input = &lines;
    surroundings.endWithInput = m_endWithInput;
    return RunProgram(m_options, surroundings);
  }

  ProgramOptions m_options;
  std::atomic<bool> m_stop{false};
  bool m_endWithInput = true;
  TextRecorder m_printed;
  TextRecorder m_errors;
};

TEST_F(ProgramTest, EndsWithTypedInput) {
  EXPECT_EQ(Run({}), 0);
  ASSERT_EQ(m_printed.Count(), 2u);
  EXPECT_EQ(m_printed.Texts().front().rfind("listening on 127.0.0.1:", 0), 0u);
  EXPECT_EQ(m_printed.Texts().back(), "ended");
}

TEST_F(ProgramTest, EndsWithQuitAndIgnoresTheRest) {
  EXPECT_EQ(Run({"quit", "nonsense"}), 0);
  EXPECT_EQ(m_errors.Texts(), Lines{});
}

TEST_F(ProgramTest, BadLineIsReportedWithItsNumberAndTheNextOneRuns) {
  EXPECT_EQ(Run({"# a comment", "jump", "show"}), 1);
  EXPECT_EQ(m_errors.Texts(), Lines{"corvane-sim: standard input:2: unknown command \"jump\"; "
                                    "`help` lists the commands"});
  EXPECT_TRUE(m_printed.WaitForText("StreamsCount = 12"));
}

TEST_F(ProgramTest, CommandThatFailsIsReportedWithItsNumber) {
  EXPECT_EQ(Run({"drop"}), 1);
  EXPECT_EQ(m_errors.Texts(), Lines{"corvane-sim: standard input:1: not connected"});
}

TEST_F(ProgramTest, ScriptRunsBeforeInput) {
  const ScriptFile script("set StreamsCount 1\n\n# comment\nshow\nset StreamsCount 2\n");
  m_options.script = script.Path();
  EXPECT_EQ(Run({"show"}), 0);
  const Lines printed = m_printed.Texts();
  ASSERT_EQ(printed.size(), 22u);
  EXPECT_EQ(printed[3], "StreamsCount = 1");
  EXPECT_EQ(printed[13], "StreamsCount = 2");
}

TEST_F(ProgramTest, ScriptWithWindowsLineEndsIsUnderstood) {
  const ScriptFile script("set ProductName Main\r\nquit\r\n");
  m_options.script = script.Path();
  EXPECT_EQ(Run({"nonsense"}), 0);
  EXPECT_EQ(m_errors.Texts(), Lines{});
}

TEST_F(ProgramTest, ScriptWithBadLinesIsRefusedAsAWhole) {
  const ScriptFile script("show\njump\nset StreamsCount x\n");
  m_options.script = script.Path();
  EXPECT_EQ(Run({}), 2);
  EXPECT_EQ(m_errors.Texts(),
            (Lines{"corvane-sim: " + script.Path() +
                       ":2: unknown command \"jump\"; `help` lists the commands",
                   "corvane-sim: " + script.Path() +
                       ":3: expected a whole number from -2147483648 to 2147483647, not \"x\""}));
  EXPECT_EQ(m_printed.Texts(), Lines{});
}

TEST_F(ProgramTest, ScriptThatIsNotThereIsReported) {
  m_options.script = "no such file";
  EXPECT_EQ(Run({}), 2);
  EXPECT_EQ(m_errors.Texts(), Lines{"corvane-sim: cannot read no such file"});
}

TEST_F(ProgramTest, FailureInAScriptIsReportedWithItsLine) {
  const ScriptFile script("\nsend Product\nshow\n");
  m_options.script = script.Path();
  EXPECT_EQ(Run({}), 1);
  EXPECT_EQ(m_errors.Texts(), Lines{"corvane-sim: " + script.Path() +
                                    ":2: not connected, or the connection ended meanwhile"});
  EXPECT_TRUE(m_printed.WaitForText("StreamsCount = 12"));
}

TEST_F(ProgramTest, PortThatIsTakenIsReported) {
  CorvaneServer holder;
  ASSERT_TRUE(holder.Start());
  m_options.port = holder.Port();
  EXPECT_EQ(Run({}), 1);
  EXPECT_EQ(m_errors.Texts(),
            Lines{"corvane-sim: cannot listen on 127.0.0.1:" + std::to_string(holder.Port()) +
                  " (is another program using it?)"});
}

TEST_F(ProgramTest, ContinuesToServeAfterOtherInputHasEnded) {
  m_endWithInput = false;
  int status = -1;
  std::thread program([&] { status = Run({"show"}); });
  ASSERT_TRUE(m_printed.WaitForCount(11));
  const std::string first = m_printed.Texts().front();
  RawClient client;
  EXPECT_TRUE(
      client.Connect(static_cast<std::uint16_t>(std::stoi(first.substr(first.rfind(':') + 1)))));
  EXPECT_TRUE(m_printed.WaitForText("connected"));
  m_stop = true;
  program.join();
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(client.ReceivesEnd());
}

TEST_F(ProgramTest, StopRequestEndsAWaitWithoutFailure) {
  int status = -1;
  std::thread program([&] { status = Run({"show", "await connected 600000", "nonsense"}); });
  ASSERT_TRUE(m_printed.WaitForCount(11));
  m_stop = true;
  program.join();
  EXPECT_EQ(status, 0);
  EXPECT_EQ(m_errors.Texts(), Lines{});
}

TEST(StopSignalTest, BothSignalsAreNoted) {
  CatchStopSignals();
  EXPECT_EQ(std::raise(SIGTERM), 0);
  EXPECT_TRUE(StopSignalCame());
  EXPECT_EQ(std::raise(SIGINT), 0);
  EXPECT_TRUE(StopSignalCame());
}

}  // namespace
}  // namespace Simulator
