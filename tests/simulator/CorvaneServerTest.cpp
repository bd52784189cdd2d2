#include "simulator/CorvaneServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/support/RawClient.h"
#include "tests/support/TextRecorder.h"

namespace Simulator {
namespace {

using std::chrono::milliseconds;
using Vask::Tests::RawClient;
using Vask::Tests::TextRecorder;

constexpr char kRequest[] =
    R"(70#{"data":{},"from":"SNMPd","id":0,"name":"SNMPupdate","op":"broadcast"})";

std::string Framed(const std::string& body) {
  return std::to_string(body.size()) + '#' + body;
}

std::string Wire(const std::string& name, const std::string& data) {
  return Framed(R"({"data":)" + data + R"(,"from":"Corvane","id":0,"name":")" + name +
                R"(","op":"broadcast"})");
}

TEST(EnvelopeTest, HoldsNameAndData) {
  EXPECT_EQ(WriteEnvelope("SNMPupdateFinished", "{}"),
            R"({"data":{},"from":"Corvane","id":0,"name":"SNMPupdateFinished","op":"broadcast"})");
}

TEST(EnvelopeTest, IsReadBack) {
  const Message message = ReadEnvelope(
      R"({"data":{"traptype":{"streamsfailed":{}}},"from":"SNMPd","id":0,"name":"SNMPtrap"})");
  EXPECT_EQ(message.name, "SNMPtrap");
  EXPECT_EQ(message.data, R"({"traptype":{"streamsfailed":{}}})");
}

TEST(EnvelopeTest, TextThatIsNoEnvelopeStaysWhole) {
  for (const char* text : {"no JSON", "[]", "{}", R"({"name":"x"})", R"({"name":5,"data":{}})"}) {
    const Message message = ReadEnvelope(text);
    EXPECT_EQ(message.name, "") << text;
    EXPECT_EQ(message.data, text);
  }
}

// A server on a free port, the lines that it printed, and a client.
class CorvaneServerTest : public testing::Test {
 protected:
  CorvaneServerTest() {
    EXPECT_TRUE(m_server.Start());
    EXPECT_NE(m_server.Port(), 0);
  }

  void ConnectClient() {
    ASSERT_TRUE(m_client.Connect(m_server.Port()));
    ASSERT_TRUE(m_server.WaitForConnections(1));
  }

  TextRecorder m_lines;
  CorvaneServer m_server{{0, true, true, [this](const std::string& line) { m_lines.Add(line); }}};
  RawClient m_client;
};

TEST_F(CorvaneServerTest, AnswersARequestWithEveryGroupAndTheFinish) {
  ConnectClient();
  ASSERT_TRUE(m_client.Send(kRequest));
  const std::string expected =
      Wire("SNMPmessage", R"({"messageType":{"Product":{"Name":"Corvane","Version":"1.0.0"}}})") +
      Wire("SNMPmessage", R"({"messageType":{"Streams":{"Count":12,"Errors":0}}})") +
      Wire("SNMPmessage",
           R"({"messageType":{"StreamMonitors":{"Count":4,"Errors":0,"Silence":0}}})") +
      Wire("SNMPmessage",
           R"({"messageType":{"AudioSources":{"Count":6,"Errors":0,"Silence":0}}})") +
      Wire("SNMPupdateFinished", "{}");
  EXPECT_EQ(m_client.Receive(expected.size()), expected);
  EXPECT_TRUE(m_lines.WaitForText("received SNMPupdate {}"));
  EXPECT_TRUE(m_lines.WaitForText("answered with the whole update"));
}

TEST_F(CorvaneServerTest, AnswersWithTheValuesThatWereSet) {
  ConnectClient();
  std::string error;
  ASSERT_TRUE(m_server.Set("StreamsErrors", "3", error)) << error;
  EXPECT_TRUE(m_server.Send(m_server.FrameOfGroup(Group::Streams)));
  const std::string expected =
      Wire("SNMPmessage", R"({"messageType":{"Streams":{"Count":12,"Errors":3}}})");
  EXPECT_EQ(m_client.Receive(expected.size()), expected);
}

TEST_F(CorvaneServerTest, DoesNotAnswerWhenAnsweringIsOff) {
  ConnectClient();
  m_server.SetAnswering(false);
  ASSERT_TRUE(m_client.Send(kRequest));
  ASSERT_TRUE(m_server.WaitForMessages(1));
  EXPECT_TRUE(m_server.Send("end"));
  EXPECT_EQ(m_client.Receive(3), "end");
}

TEST_F(CorvaneServerTest, RecordsMessagesAndBytes) {
  ConnectClient();
  const std::string trap = Framed(
      R"({"data":{"traptype":{"streamsfailed":{}}},"from":"SNMPd","id":0,"name":"SNMPtrap"})");
  ASSERT_TRUE(m_client.Send(trap + "2#hi"));
  ASSERT_TRUE(m_server.WaitForMessages(2));
  const Record record = m_server.GetRecord();
  EXPECT_EQ(record.messages[0].name, "SNMPtrap");
  EXPECT_EQ(record.messages[0].data, R"({"traptype":{"streamsfailed":{}}})");
  EXPECT_EQ(record.messages[1].data, "hi");
  EXPECT_EQ(record.bytes, trap + "2#hi");
  EXPECT_TRUE(m_lines.WaitForText(R"(received SNMPtrap {"traptype":{"streamsfailed":{}}})"));
  EXPECT_TRUE(m_lines.WaitForText("received a frame: hi"));
}

TEST_F(CorvaneServerTest, SplitBytesArriveInOrder) {
  ConnectClient();
  EXPECT_TRUE(m_server.SendSplit("0123456789", {1, 2, 9}, milliseconds{1}));
  EXPECT_EQ(m_client.Receive(10), "0123456789");
}

TEST_F(CorvaneServerTest, NothingCanBeSentWithoutAConnection) {
  EXPECT_FALSE(m_server.Send("x"));
  EXPECT_FALSE(m_server.SendSplit("xy", {1}, milliseconds{1}));
  EXPECT_FALSE(m_server.Drop());
}

TEST_F(CorvaneServerTest, DropEndsTheConnectionInOrder) {
  ConnectClient();
  EXPECT_TRUE(m_server.Drop());
  EXPECT_TRUE(m_client.ReceivesEnd());
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::Dropped});
  EXPECT_FALSE(m_server.GetRecord().Connected());
  EXPECT_TRUE(m_lines.WaitForText("disconnected: dropped"));
}

TEST_F(CorvaneServerTest, NoticesThatTheAgentCloses) {
  ConnectClient();
  m_client.Close();
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
  EXPECT_TRUE(m_lines.WaitForText("disconnected: closed by the agent"));
}

TEST_F(CorvaneServerTest, DropsAPeerThatSendsNoFrames) {
  ConnectClient();
  ASSERT_TRUE(m_client.Send("GET /"));
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::NoFrame});
  EXPECT_TRUE(m_lines.WaitForText(
      "received an invalid frame: Vask::JsonSocket::ProcessByteUnexpected char 'G'"));
}

TEST_F(CorvaneServerTest, ServesTheNextConnectionAfterOneHasEnded) {
  ConnectClient();
  m_client.Close();
  ASSERT_TRUE(m_server.WaitForEnds(1));
  ASSERT_TRUE(m_client.Connect(m_server.Port()));
  ASSERT_TRUE(m_server.WaitForConnections(2));
  EXPECT_TRUE(m_server.Send("again"));
  EXPECT_EQ(m_client.Receive(5), "again");
}

TEST_F(CorvaneServerTest, RefusesConnectionsForAWhile) {
  m_server.RefuseFor(milliseconds{2000});
  EXPECT_FALSE(m_client.Connect(m_server.Port()));
  ASSERT_TRUE(m_lines.WaitForText("listening again"));
  EXPECT_TRUE(m_client.Connect(m_server.Port()));
  EXPECT_TRUE(m_server.WaitForConnections(1));
}

TEST_F(CorvaneServerTest, RefusingKeepsThePresentConnection) {
  ConnectClient();
  m_server.RefuseFor(milliseconds{2000});
  EXPECT_TRUE(m_server.Send("still here"));
  EXPECT_EQ(m_client.Receive(10), "still here");
  EXPECT_TRUE(m_lines.WaitForText("listening again"));
}

TEST_F(CorvaneServerTest, BytesThatWaitAreReadLater) {
  ConnectClient();
  m_server.SetReading(false);
  ASSERT_TRUE(m_client.Send("2#hi"));
  EXPECT_FALSE(m_server.WaitFor([](const Record& record) { return !record.bytes.empty(); },
                                milliseconds{100}));
  m_server.SetReading(true);
  EXPECT_TRUE(m_server.WaitForMessages(1));
}

TEST_F(CorvaneServerTest, StopEndsTheConnectionInOrder) {
  ConnectClient();
  m_server.Stop();
  EXPECT_TRUE(m_client.ReceivesEnd());
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::Dropped});
}

TEST_F(CorvaneServerTest, StopFreesASenderThatTheAgentKeepsWaiting) {
  ConnectClient();
  std::thread sender([this] {
    while (m_server.Send(std::string(100'000, 'x'))) {
    }
  });
  m_server.Stop();
  sender.join();
  EXPECT_FALSE(m_server.GetRecord().Connected());
}

TEST_F(CorvaneServerTest, SecondServerDoesNotGetThePort) {
  CorvaneServer second({m_server.Port(), true, true, {}});
  EXPECT_FALSE(second.Start());
}

TEST_F(CorvaneServerTest, PortIsFreeAfterStop) {
  ConnectClient();
  m_server.Stop();
  CorvaneServer second({m_server.Port(), true, true, {}});
  EXPECT_TRUE(second.Start());
}

}  // namespace
}  // namespace Simulator
