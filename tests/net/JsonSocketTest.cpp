#include "net/JsonSocket.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "net/FrameWriter.h"
#include "platform/ListeningSocket.h"
#include "simulator/CorvaneServer.h"
#include "tests/support/LinkRecorders.h"
#include "tests/support/RawClient.h"
#include "tests/support/SmallStepSockets.h"

namespace Vask::Tests {
namespace {

using Simulator::CorvaneServer;
using Simulator::End;
using Texts = std::vector<std::string>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::string Framed(const std::string& body) {
  std::string frame;
  AppendFrame(frame, body);
  return frame;
}

JsonRef<Json> Parsed(const std::string& text) {
  ParseResult result;
  return JsonRef<Json>(Parse(result, text.c_str()));
}

// How long a call takes.
milliseconds Duration(const std::function<void()>& call) {
  const auto start = steady_clock::now();
  call();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

constexpr milliseconds kOneSecond{1000};

// A link with its recorders; not yet opened.
class LinkTest : public testing::Test {
 protected:
  LinkTest() {
    m_link.SetTextListener(&m_listener);
    m_link.SetErrorSink(&m_sink);
  }

  [[nodiscard]] bool Send(const std::string& json) {
    const JsonRef<Json> message = Parsed(json);
    return m_link.OnJsonMessage(message.Get());
  }
  Texts Bodies() const { return m_listener.recorder.Texts(); }
  Texts Faults() const { return m_sink.recorder.Texts(); }

  RecordingTextListener m_listener;
  RecordingErrorSink m_sink;
  RecordingSocketEvents m_events;
  JsonSocket m_link{&m_events};
};

// A link that is connected to a scripted peer.
class JsonSocketTest : public LinkTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_server.Start());
    m_link.SetPort(m_server.Port());
  }
  void TearDown() override { m_link.StopThread(); }

  void OpenAndConnect() {
    ASSERT_TRUE(m_link.OpenThread());
    ASSERT_TRUE(m_server.WaitForConnections(1));
    ASSERT_TRUE(m_events.recorder.WaitForText("connected"));
  }
  [[nodiscard]] bool WaitForBodies(std::size_t count) {
    return m_listener.recorder.WaitForCount(count);
  }

  CorvaneServer m_server{{0, false, true, {}}};
};

TEST_F(JsonSocketTest, DeliversWhatThePeerSends) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send(R"(7#{"a":1})"));
  ASSERT_TRUE(WaitForBodies(1));
  EXPECT_EQ(Bodies(), Texts{R"({"a":1})"});
}

TEST_F(JsonSocketTest, BodyThatIsNoJsonIsDeliveredAllTheSame) {
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

TEST_F(JsonSocketTest, PeerThatClosesInMidFrameIsMetAgainAfresh) {
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("10#half"));
  ASSERT_TRUE(m_server.Drop());
  ASSERT_TRUE(m_server.WaitForConnections(2));
  ASSERT_TRUE(m_server.Send("1#a"));
  ASSERT_TRUE(WaitForBodies(1));
  EXPECT_EQ(Bodies(), Texts{"a"});
  EXPECT_EQ(Faults(), Texts{});
}

TEST_F(JsonSocketTest, LostConnectionIsMadeAgainAtOnce) {
  OpenAndConnect();
  const milliseconds took = Duration([&] {
    EXPECT_TRUE(m_server.Drop());
    EXPECT_TRUE(m_server.WaitForConnections(2));
  });
  EXPECT_LT(took.count(), JsonSocket::kRetryMs / 2);
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

TEST_F(JsonSocketTest, ListenerThatThrowsCostsTheConnectionOnly) {
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

TEST_F(JsonSocketTest, StopGivesThePeerAnOrderlyEnd) {
  OpenAndConnect();
  const milliseconds took = Duration([&] { m_link.StopThread(); });
  EXPECT_LT(took, kOneSecond);
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
  EXPECT_FALSE(m_link.IsRunning());
  EXPECT_EQ(m_link.GetState(), FrameReader::kDisconnected);
}

TEST_F(JsonSocketTest, StopGivesAnOrderlyEndAlsoWithBytesUnread) {
  class Slow final : public IOnJsonMessageText {
   public:
    bool OnJsonMessageText(const char*) override {
      entered = true;
      while (!leave) std::this_thread::yield();
      return true;
    }
    std::atomic<bool> entered{false};
    std::atomic<bool> leave{false};
  } slow;
  m_link.SetTextListener(&slow);
  OpenAndConnect();
  ASSERT_TRUE(m_server.Send("1#a" + Framed(std::string(50'000, 'x'))));
  while (!slow.entered) std::this_thread::yield();
  std::thread stopper([&] { m_link.StopThread(); });
  while (m_link.IsRunning()) std::this_thread::yield();
  slow.leave = true;
  stopper.join();
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
}

TEST_F(JsonSocketTest, StopDuringAFloodEndsWithinASecond) {
  OpenAndConnect();
  std::thread flooder([&] {
    while (m_server.Send("1#a1#b1#c1#d1#e1#f")) {
    }
  });
  ASSERT_TRUE(WaitForBodies(100));
  EXPECT_LT(Duration([&] { m_link.StopThread(); }), kOneSecond);
  flooder.join();
}

TEST_F(JsonSocketTest, StopFreesASenderWhomThePeerKeepsWaiting) {
  OpenAndConnect();
  m_server.SetReading(false);
  std::atomic<int> sent{0};
  std::thread sender([&] {
    while (Send('"' + std::string(100'000, 'x') + '"')) ++sent;
  });
  // The sender is stuck as soon as nothing goes out any more.
  for (int before = -1; before != sent;) {
    before = sent;
    std::this_thread::sleep_for(milliseconds{200});
  }
  EXPECT_LT(Duration([&] { m_link.StopThread(); }), kOneSecond);
  sender.join();
}

TEST_F(JsonSocketTest, StopFreesAReaderThatSendsToAPeerThatDoesNotRead) {
  class SendingForEver final : public IOnJsonMessageText {
   public:
    explicit SendingForEver(JsonSocket& link) : m_link(link) {}
    bool OnJsonMessageText(const char*) override {
      const JsonRef<Json> message = Parsed('"' + std::string(100'000, 'x') + '"');
      while (m_link.OnJsonMessage(message.Get())) ++sent;
      return true;
    }
    std::atomic<int> sent{0};

   private:
    JsonSocket& m_link;
  } sending(m_link);
  m_link.SetTextListener(&sending);
  OpenAndConnect();
  m_server.SetReading(false);
  ASSERT_TRUE(m_server.Send("1#a"));
  for (int before = -1; before != sending.sent || before == 0;) {
    before = sending.sent;
    std::this_thread::sleep_for(milliseconds{200});
  }
  EXPECT_LT(Duration([&] { m_link.StopThread(); }), kOneSecond);
}

TEST_F(JsonSocketTest, StopEndsTheWaitForTheNextAttempt) {
  m_server.Stop();
  ASSERT_TRUE(m_link.OpenThread());
  ASSERT_TRUE(m_events.recorder.WaitForText("failed"));
  EXPECT_LT(Duration([&] { m_link.StopThread(); }), kOneSecond);
}

TEST_F(JsonSocketTest, SecondOpenIsReportedAndHarmsNothing) {
  OpenAndConnect();
  EXPECT_FALSE(m_link.OpenThread());
  EXPECT_EQ(Faults(), Texts{"Vask::JsonSocket::OpenThread open failed"});
  EXPECT_TRUE(m_link.IsRunning());
  ASSERT_TRUE(m_server.Send("1#a"));
  EXPECT_TRUE(WaitForBodies(1));
  EXPECT_EQ(m_server.GetRecord().connections, 1u);
}

TEST_F(JsonSocketTest, CanBeOpenedAgainAfterAStop) {
  OpenAndConnect();
  m_link.StopThread();
  ASSERT_TRUE(m_link.OpenThread());
  ASSERT_TRUE(m_server.WaitForConnections(2));
  ASSERT_TRUE(m_server.Send("1#a"));
  EXPECT_TRUE(WaitForBodies(1));
}

TEST_F(JsonSocketTest, RequestStopEndsConnectionAndThreadWithoutWaiting) {
  OpenAndConnect();
  m_link.RequestStop();
  EXPECT_FALSE(m_link.IsRunning());
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
}

TEST_F(JsonSocketTest, DestructorStops) {
  {
    JsonSocket link;
    link.SetPort(m_server.Port());
    ASSERT_TRUE(link.OpenThread());
    ASSERT_TRUE(m_server.WaitForConnections(1));
  }
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
}

// A peer whose queue is full, so that a connect neither succeeds nor fails.
class MidConnectTest : public LinkTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_listener.Open(0, 0));
    ASSERT_TRUE(m_inQueue.Connect(m_listener.Port()));
    m_link.SetPort(m_listener.Port());
    ASSERT_TRUE(m_link.OpenThread());
    ASSERT_TRUE(m_events.recorder.WaitForText("connecting"));
    std::this_thread::sleep_for(milliseconds{300});
    ASSERT_EQ(m_events.recorder.Texts(), Texts{"connecting"});
  }

  Platform::ListeningSocket m_listener;
  RawClient m_inQueue;
};

TEST_F(MidConnectTest, StopEndsTheConnect) {
  EXPECT_LT(Duration([&] { m_link.StopThread(); }), kOneSecond);
  EXPECT_EQ(m_events.recorder.Texts().front(), "connecting");
}

TEST_F(MidConnectTest, SendingFailsAtOnce) {
  bool sent = true;
  EXPECT_LT(Duration([&] { sent = Send("{}"); }), kOneSecond);
  EXPECT_FALSE(sent);
}

}  // namespace
}  // namespace Vask::Tests
