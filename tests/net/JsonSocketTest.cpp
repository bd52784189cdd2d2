#include "net/JsonSocket.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/net/LinkFixture.h"
#include "tests/support/SmallStepSockets.h"

namespace Vask::Tests {
namespace {

using Texts = std::vector<std::string>;
using std::chrono::milliseconds;

TEST_F(JsonSocketTest, DeliversWhatThePeerSends) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send(R"(7#{"a":1})"));
  ASSERT_TRUE(WaitForBodies(1));
  EXPECT_EQ(Bodies(), Texts{R"({"a":1})"});
}

TEST_F(JsonSocketTest, BodyThatIsNoJsonIsDeliveredToo) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("7#no JSON"));
  ASSERT_TRUE(WaitForBodies(1));
  EXPECT_EQ(Bodies(), Texts{"no JSON"});
}

TEST_F(JsonSocketTest, FramesInOneSegmentAreDeliveredEach) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("1#a2#bb3#ccc"));
  ASSERT_TRUE(WaitForBodies(3));
  EXPECT_EQ(Bodies(), (Texts{"a", "bb", "ccc"}));
}

TEST_F(JsonSocketTest, FramesSplitAtEveryPositionAreReassembled) {
  OpenAndConnect();
  const std::string frames = R"(7#{"a":1}12#{"name":"x"})";
  Texts expected;
  for (std::size_t position = 1; position < frames.size(); ++position) {
    ASSERT_TRUE(m_server.SendSplit(frames, {position}, milliseconds{2})) << position;
    expected.insert(expected.end(), {R"({"a":1})", R"({"name":"x"})"});
  }
  ASSERT_TRUE(WaitForBodies(expected.size()));
  EXPECT_EQ(Bodies(), expected);
}

TEST_F(JsonSocketTest, FramesSplitAfterEveryByteAreReassembled) {
  OpenAndConnect();
  const std::string frames = R"(7#{"a":1}12#{"name":"x"})";
  std::vector<std::size_t> everywhere;
  for (std::size_t position = 1; position < frames.size(); ++position) {
    everywhere.push_back(position);
  }
  ASSERT_TRUE(m_server.SendSplit(frames, everywhere, milliseconds{2}));
  ASSERT_TRUE(WaitForBodies(2));
  EXPECT_EQ(Bodies(), (Texts{R"({"a":1})", R"({"name":"x"})"}));
}

TEST_F(JsonSocketTest, SendsLengthHashAndCompactText) {
  OpenAndConnect();
  EXPECT_TRUE(Send(R"( { "B" : [1, 2] , "a" : "é" } )"));
  const std::string expected = R"(24#{"a":"\u00e9","b":[1,2]})";
  ASSERT_TRUE(m_server.WaitForMessages(1));
  EXPECT_EQ(m_server.GetRecord().bytes, expected);
}

TEST_F(JsonSocketTest, SendsMessagesBeyondTheUsualSize) {
  OpenAndConnect();
  const std::string text(300'000, 'x');
  EXPECT_TRUE(Send("\"" + text + "\""));
  ASSERT_TRUE(m_server.WaitForMessages(1));
  EXPECT_EQ(m_server.GetRecord().bytes, "300002#\"" + text + "\"");
}

TEST_F(JsonSocketTest, NullIsNotSentButReported) {
  OpenAndConnect();
  EXPECT_FALSE(m_link.OnJsonMessage(nullptr));
  EXPECT_EQ(Faults(), Texts{"Vask::JsonSocket::OnJsonMessageNull message"});
}

TEST_F(JsonSocketTest, SendingWithoutAConnectionFailsUnreported) {
  EXPECT_FALSE(Send("{}"));
  EXPECT_EQ(Faults(), Texts{});
}

TEST_F(JsonSocketTest, SendingAfterStopFails) {
  OpenAndConnect();
  m_link.StopThread();
  EXPECT_FALSE(Send("{}"));
}

TEST_F(JsonSocketTest, ListenerMaySendFromWithinItsCall) {
  class Answering final : public IOnJsonMessageText {
   public:
    explicit Answering(JsonSocket& link) : m_link(link) {}
    bool OnJsonMessageText(const char* text) override {
      const JsonRef<Json> message = Parsed(text);
      return m_link.OnJsonMessage(message.Get());
    }

   private:
    JsonSocket& m_link;
  } answering(m_link);
  m_link.SetTextListener(&answering);
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send(R"(7#{"a":1})"));
  ASSERT_TRUE(m_server.WaitForMessages(1));
  EXPECT_EQ(m_server.GetRecord().bytes, R"(7#{"a":1})");
  m_link.StopThread();
}

TEST_F(JsonSocketTest, FramesOfTwoThreadsStayWhole) {
  constexpr int kEach = 100;
  SmallStepSockets sockets;
  JsonSocket link(&m_events, Platform::SystemClock(), sockets);
  link.SetPort(m_server.Port());
  ASSERT_TRUE(link.OpenThread());
  ASSERT_TRUE(m_events.recorder.WaitForText("connected"));
  const auto sendMany = [&](char letter) {
    const JsonRef<Json> message = Parsed('"' + std::string(1000, letter) + '"');
    for (int i = 0; i < kEach; ++i) EXPECT_TRUE(link.OnJsonMessage(message.Get()));
  };
  std::thread first([&] { sendMany('a'); });
  std::thread second([&] { sendMany('b'); });
  first.join();
  second.join();
  ASSERT_TRUE(m_server.WaitForMessages(2 * kEach));
  for (const Simulator::Message& message : m_server.GetRecord().messages) {
    const std::string whole(1000, message.data.at(1));
    EXPECT_EQ(message.data, '"' + whole + '"');
  }
}

TEST_F(JsonSocketTest, MissingListenerAndEventsAreSkipped) {
  m_link.SetTextListener(nullptr);
  m_link.SetEvents(nullptr);
  ASSERT_TRUE(m_link.OpenThread());
  ASSERT_TRUE(m_server.WaitForConnections(1));
  ASSERT_TRUE(m_server.Send("1#a0#"));
  EXPECT_TRUE(m_sink.recorder.WaitForCount(1));
  EXPECT_TRUE(m_server.WaitForConnections(2));
  EXPECT_EQ(Bodies(), Texts{});
}

struct GarbageRow {
  const char* name;
  const char* bytes;
  const char* fault;
};
void PrintTo(const GarbageRow& row, std::ostream* out) {
  *out << row.name << ": " << row.bytes;
}

class GarbageTest : public JsonSocketTest, public testing::WithParamInterface<GarbageRow> {};

TEST_P(GarbageTest, DropsTheConnectionAndServesTheNextGoodFrame) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send(GetParam().bytes));
  ASSERT_TRUE(m_server.WaitForConnections(2));
  ASSERT_TRUE(m_server.Send("4#good"));
  ASSERT_TRUE(WaitForBodies(1));
  EXPECT_EQ(Bodies(), Texts{"good"});
  EXPECT_EQ(Faults(), Texts{GetParam().fault});
  EXPECT_EQ(m_events.recorder.Texts(),
            (Texts{"connecting", "connected", "disconnected", "connecting", "connected"}));
}

INSTANTIATE_TEST_SUITE_P(
    Streams, GarbageTest,
    testing::Values(
        GarbageRow{"SizeZero", "0#",
                   "Vask::JsonSocket::ProcessByteProtocol error. Message size is zero!"},
        GarbageRow{"LetterInSize", "12a#", "Vask::JsonSocket::ProcessByteUnexpected char 'a'"},
        GarbageRow{"SizeWrapsToZero", "4294967296#",
                   "Vask::JsonSocket::ProcessByteProtocol error. Message size is zero!"},
        GarbageRow{"SizeOfTwoGigabytes", "2147483648#x",
                   "Vask::JsonSocket::ProcessByteUnexpected state!"},
        GarbageRow{"LargestSize", "4294967295#xxx",
                   "Vask::JsonSocket::ProcessByteUnexpected state!"},
        GarbageRow{"OtherProtocol", "GET / HTTP/1.1\r\n\r\n",
                   "Vask::JsonSocket::ProcessByteUnexpected char 'G'"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(JsonSocketTest, GoodFramesBeforeGarbageAreDelivered) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("1#a1#bX1#c"));
  ASSERT_TRUE(m_server.WaitForConnections(2));
  EXPECT_EQ(Bodies(), (Texts{"a", "b"}));
}

TEST_F(JsonSocketTest, PeerThatSaysNothingKeepsItsConnection) {
  OpenAndConnect();
  std::this_thread::sleep_for(milliseconds{3 * JsonSocket::kPollMs});
  EXPECT_EQ(m_events.recorder.Texts(), (Texts{"connecting", "connected"}));
  EXPECT_EQ(m_link.GetState(), FrameReader::kReadingSize);
  EXPECT_TRUE(m_server.GetRecord().Connected());
}

TEST_F(JsonSocketTest, MessageThatNeverCompletesIsNeverDelivered) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("2147483647#only this much"));
  for (int i = 0; i < 1000 && m_link.GetState() != FrameReader::kReadingBody; ++i) {
    std::this_thread::sleep_for(milliseconds{10});
  }
  EXPECT_EQ(m_link.GetState(), FrameReader::kReadingBody);
  EXPECT_TRUE(m_server.GetRecord().Connected());
  EXPECT_TRUE(m_server.Drop());
  ASSERT_TRUE(m_events.recorder.WaitForText("disconnected"));
  EXPECT_EQ(Bodies(), Texts{});
  EXPECT_EQ(Faults(), Texts{});
}

TEST_F(JsonSocketTest, PeerThatClosesInMidFrameStartsANewStream) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("10#half"));
  ASSERT_TRUE(m_server.Drop());
  ASSERT_TRUE(m_server.WaitForConnections(2));
  ASSERT_TRUE(m_server.Send("1#a"));
  ASSERT_TRUE(WaitForBodies(1));
  EXPECT_EQ(Bodies(), Texts{"a"});
  EXPECT_EQ(Faults(), Texts{});
}

TEST_F(JsonSocketTest, LostConnectionIsReplacedAtOnce) {
  OpenAndConnect();
  const std::uint32_t tookMs = TimedMs([&] {
    EXPECT_TRUE(m_server.Drop());
    EXPECT_TRUE(m_server.WaitForConnections(2));
  });
  EXPECT_LT(tookMs, JsonSocket::kRetryMs / 2);
}

TEST_F(JsonSocketTest, FloodIsDeliveredInOrder) {
#if defined(_WIN32)
  constexpr int kFrames = 500;  // a byte costs two calls of Winsock
#else
  constexpr int kFrames = 20'000;
#endif
  OpenAndConnect();
  std::string flood;
  for (int i = 0; i < kFrames; ++i) flood += Framed(std::to_string(i));
  std::thread sender([&] { EXPECT_TRUE(m_server.Send(flood)); });
  EXPECT_TRUE(WaitForBodies(kFrames));
  sender.join();
  const Texts bodies = Bodies();
  ASSERT_EQ(bodies.size(), static_cast<std::size_t>(kFrames));
  for (int i = 0; i < kFrames; ++i) {
    ASSERT_EQ(bodies[static_cast<std::size_t>(i)], std::to_string(i));
  }
}

TEST_F(JsonSocketTest, ListenerThatThrowsLosesOnlyTheConnection) {
  class Throwing final : public IOnJsonMessageText {
   public:
    bool OnJsonMessageText(const char* text) override {
      if (text[0] == 'x') throw std::runtime_error("no");
      received.recorder.Add(text);
      return true;
    }
    RecordingTextListener received;
  } throwing;
  m_link.SetTextListener(&throwing);
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("1#x"));
  ASSERT_TRUE(m_server.WaitForConnections(2));
  ASSERT_TRUE(m_server.Send("4#good"));
  EXPECT_TRUE(throwing.received.recorder.WaitForText("good"));
  m_link.StopThread();
}

}  // namespace
}  // namespace Vask::Tests
