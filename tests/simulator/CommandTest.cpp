#include "simulator/Command.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

#include "simulator/CorvaneServer.h"
#include "simulator/Session.h"
#include "tests/support/RawClient.h"
#include "tests/support/TextRecorder.h"

namespace Simulator {
namespace {

using Vask::Tests::RawClient;
using Vask::Tests::TextRecorder;

std::string Framed(const std::string& body) {
  return std::to_string(body.size()) + '#' + body;
}

struct BadRow {
  const char* name;
  const char* line;
  const char* error;
};
void PrintTo(const BadRow& row, std::ostream* out) {
  *out << row.name << ": " << row.line;
}

class BadCommandTest : public testing::TestWithParam<BadRow> {};

TEST_P(BadCommandTest, IsExplained) {
  Command command;
  std::string error;
  EXPECT_FALSE(ParseCommand(GetParam().line, command, error));
  EXPECT_EQ(error, GetParam().error);
}

constexpr char kPositions[] = "expected ascending positions from 1 on, as in 3,7, or *";
constexpr char kEscapes[] =
    "after a backslash there must be n, r, t, 0, \\ or x and two hexadecimal digits";

INSTANTIATE_TEST_SUITE_P(
    Lines, BadCommandTest,
    testing::Values(
        BadRow{"Unknown", "jump 3", "unknown command \"jump\"; `help` lists the commands"},
        BadRow{"NothingExpected", "drop it", "drop takes no argument, not \"it\""},
        BadRow{"SetNothing", "set", "expected a name and a value"},
        BadRow{"SetWithoutValue", "set StreamsCount", "expected a name and a value"},
        BadRow{"SetWord", "set StreamsCount many",
               "expected a whole number from -2147483648 to 2147483647, not \"many\""},
        BadRow{"SetTooLarge", "set StreamsCount 2147483648",
               "expected a whole number from -2147483648 to 2147483647, not \"2147483648\""},
        BadRow{"SetBadEscape", "set ProductName a\\q", kEscapes},
        BadRow{"SendUnknown", "send Everything",
               "unknown group \"Everything\"; the groups are Product Streams StreamMonitors "
               "AudioSources, Finished and Update (all of them)"},
        BadRow{"MessageWithoutName", "message", "expected the name of a message"},
        BadRow{"MessageBadBody", "message Presets {\"a\":}", "the body is not JSON: {\"a\":}"},
        BadRow{"MessageTwoBodies", "message Presets {} {}", "the body is not JSON: {} {}"},
        BadRow{"FrameEmpty", "frame", "expected the bytes to send"},
        BadRow{"RawEmpty", "raw ", "expected the bytes to send"},
        BadRow{"RawBadEscape", "raw \\x4", kEscapes},
        BadRow{"SplitNothing", "split", "expected positions and a command that sends"},
        BadRow{"SplitZero", "split 0 raw ab", kPositions},
        BadRow{"SplitNotAscending", "split 3,3 raw abcd", kPositions},
        BadRow{"SplitNoNumber", "split a raw abcd", kPositions},
        BadRow{"SplitNoCommand", "split 1",
               "expected a command that sends (send, message, frame, raw), not \"\""},
        BadRow{"SplitDrop", "split 1 drop",
               "expected a command that sends (send, message, frame, raw), not \"drop\""},
        BadRow{"SplitBadCommand", "split 1 raw \\", kEscapes},
        BadRow{"RefuseWord", "refuse long", "expected a number of milliseconds, not \"long\""},
        BadRow{"WaitNothing", "wait", "expected a number of milliseconds, not \"\""},
        BadRow{"WaitNegative", "wait -1", "expected a number of milliseconds, not \"-1\""},
        BadRow{"AwaitNothing", "await", "expected connected, disconnected or a message's name"},
        BadRow{"AwaitWord", "await SNMPtrap soon",
               "expected a number of milliseconds, not \"soon\""},
        BadRow{"AnswerMaybe", "answer maybe", "expected on or off, not \"maybe\""},
        BadRow{"ReadNothing", "read", "expected on or off, not \"\""}),
    [](const auto& row) { return std::string(row.param.name); });

// A session on a server with one client, and the lines that it printed.
class CommandTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_server.Start());
    ASSERT_TRUE(m_client.Connect(m_server.Port()));
    ASSERT_TRUE(m_server.WaitForConnections(1));
  }

  // Returns the error, or an empty text.
  std::string Do(const std::string& line) {
    std::string error;
    return m_session.Execute(line, error) ? "" : error;
  }

  TextRecorder m_lines;
  bool m_stop = false;
  CorvaneServer m_server;
  Session m_session{
      m_server,
      {[this](const std::string& line) { m_lines.Add(line); }, [this] { return m_stop; }}};
  RawClient m_client;
};

TEST_F(CommandTest, BlankLinesAndCommentsDoNothing) {
  for (const char* line : {"", "  ", "# send Product", "  #", "\r"}) EXPECT_EQ(Do(line), "");
  EXPECT_EQ(m_lines.Count(), 0u);
}

struct SendRow {
  const char* name;
  const char* line;
  std::string bytes;
};
void PrintTo(const SendRow& row, std::ostream* out) {
  *out << row.name << ": " << row.line;
}

class SendingCommandTest : public CommandTest, public testing::WithParamInterface<SendRow> {};

TEST_P(SendingCommandTest, SendsItsBytes) {
  EXPECT_EQ(Do(GetParam().line), "");
  EXPECT_EQ(m_client.Receive(GetParam().bytes.size()), GetParam().bytes);
  EXPECT_EQ(m_lines.Texts().back(), "sent " + std::to_string(GetParam().bytes.size()) + " bytes");
}

TEST_P(SendingCommandTest, SendsTheSameInPieces) {
  EXPECT_EQ(Do(std::string("split * ") + GetParam().line), "");
  EXPECT_EQ(m_client.Receive(GetParam().bytes.size()), GetParam().bytes);
}

TEST_P(SendingCommandTest, FailsWithoutAConnection) {
  ASSERT_TRUE(m_server.Drop());
  EXPECT_EQ(Do(GetParam().line), "not connected, or the connection ended meanwhile");
  EXPECT_EQ(m_lines.Count(), 0u);
}

std::string Wire(const std::string& name, const std::string& data) {
  const std::string body = R"({"data":)" + data + R"(,"from":"Corvane","id":0,"name":")" + name +
                           R"(","op":"broadcast"})";
  return Framed(body);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, SendingCommandTest,
    testing::Values(
        SendRow{"Group", "send streams",
                Wire("SNMPmessage", R"({"messageType":{"Streams":{"Count":12,"Errors":0}}})")},
        SendRow{"Finish", "send Finished", Wire("SNMPupdateFinished", "{}")},
        SendRow{"MessageWithoutBody", "message Presets", Wire("Presets", "{}")},
        SendRow{"MessageWithBody", "message Presets  {\"a\": [1, 2]} ",
                Wire("Presets", "{\"a\": [1, 2]}")},
        SendRow{"MessageWithOddBody", "message SNMPmessage 5", Wire("SNMPmessage", "5")},
        SendRow{"Frame", "frame {\"a\":1}", "7#{\"a\":1}"},
        SendRow{"FrameWithEscapes", "frame a\\x00\\n", std::string("3#a\0\n", 5)},
        SendRow{"Raw", "raw 4294967296#", "4294967296#"},
        SendRow{"RawWithEscapes", "raw \\xffA",
                "\xff"
                "A"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(CommandTest, SetChangesWhatIsSent) {
  EXPECT_EQ(Do("set ProductName Main server"), "");
  EXPECT_EQ(Do("set productversion \" 2.1\""), "");
  EXPECT_EQ(Do("send Product"), "");
  const std::string expected =
      Wire("SNMPmessage", R"({"messageType":{"Product":{"Name":"Main server","Version":" 2.1"}}})");
  EXPECT_EQ(m_client.Receive(expected.size()), expected);
}

TEST_F(CommandTest, UpdateIsEveryGroupAndTheFinish) {
  EXPECT_EQ(Do("send update"), "");
  const std::string expected = m_server.FramesOfUpdate();
  EXPECT_EQ(m_client.Receive(expected.size()), expected);
  const std::string finish = Wire("SNMPupdateFinished", "{}");
  EXPECT_TRUE(expected.ends_with(finish));
  EXPECT_GT(expected.size(), 4 * finish.size());
}

TEST_F(CommandTest, TextCanBeSetToNothing) {
  EXPECT_EQ(Do("set ProductName \"\""), "");
  EXPECT_EQ(Do("show"), "");
  EXPECT_EQ(m_lines.Texts().front(), "ProductName = ");
}

TEST_F(CommandTest, BadCommandChangesNothing) {
  const auto before = m_server.ValueLines();
  EXPECT_NE(Do("set StreamsErrors 3 4"), "");
  EXPECT_NE(Do("split 99999 send Product"), "");
  EXPECT_EQ(m_server.ValueLines(), before);
  EXPECT_TRUE(m_server.Send("x"));
  EXPECT_EQ(m_client.Receive(1), "x");
}

TEST_F(CommandTest, SplitPositionMustLieWithinTheBytes) {
  EXPECT_EQ(Do("split 1,2 raw abc"), "");
  EXPECT_EQ(Do("split 3 raw abc"), "position 3 does not lie within the 3 bytes");
}

TEST_F(CommandTest, DropEndsTheConnection) {
  EXPECT_EQ(Do("drop"), "");
  EXPECT_TRUE(m_client.ReceivesEnd());
  EXPECT_EQ(Do("drop"), "not connected");
}

TEST_F(CommandTest, RefuseRefuses) {
  EXPECT_EQ(Do("refuse 60000"), "");
  RawClient other;
  EXPECT_FALSE(other.Connect(m_server.Port()));
}

TEST_F(CommandTest, AnswerAndReadSwitchTheServer) {
  EXPECT_EQ(Do("answer off"), "");
  EXPECT_EQ(Do("read off"), "");
  ASSERT_TRUE(m_client.Send(Framed(R"({"name":"SNMPupdate","data":{}})")));
  EXPECT_EQ(Do("await SNMPupdate 50"), "SNMPupdate did not come within 50 ms");
  EXPECT_EQ(Do("read on"), "");
  EXPECT_EQ(Do("await snmpUPDATE"), "");
  EXPECT_EQ(Do("raw x"), "");
  EXPECT_EQ(m_client.Receive(1), "x");
}

TEST_F(CommandTest, AwaitTakesEachMessageOnce) {
  ASSERT_TRUE(
      m_client.Send(Framed(R"({"name":"a","data":1})") + Framed(R"({"name":"b","data":1})")));
  EXPECT_EQ(Do("await a"), "");
  EXPECT_EQ(Do("await b"), "");
  EXPECT_EQ(Do("await a 10"), "a did not come within 10 ms");
}

TEST_F(CommandTest, AwaitFollowsTheConnection) {
  EXPECT_EQ(Do("await connected"), "");
  EXPECT_EQ(Do("await disconnected 10"), "disconnected did not come within 10 ms");
  m_client.Close();
  EXPECT_EQ(Do("await disconnected"), "");
}

TEST_F(CommandTest, StopRequestEndsAWait) {
  m_stop = true;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("wait 60000"), "");
  EXPECT_NE(Do("await disconnected 60000"), "");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{20});
}

TEST_F(CommandTest, WaitLastsForTheGivenTime) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("wait 120"), "");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds{120});
}

TEST_F(CommandTest, QuitIsNoted) {
  EXPECT_FALSE(m_session.HasQuit());
  EXPECT_EQ(Do("QUIT"), "");
  EXPECT_TRUE(m_session.HasQuit());
}

TEST_F(CommandTest, HelpPrintsTheCommands) {
  EXPECT_EQ(Do("help"), "");
  EXPECT_EQ(m_lines.Texts(), std::vector{CommandHelp()});
}

}  // namespace
}  // namespace Simulator
