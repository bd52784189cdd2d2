// How the link's thread stops and starts again.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "net/JsonSocket.h"
#include "platform/ListeningSocket.h"
#include "tests/net/LinkFixture.h"
#include "tests/support/RawClient.h"

namespace Vask::Tests {
namespace {

using Simulator::End;
using Texts = std::vector<std::string>;
using std::chrono::milliseconds;

using JsonSocketStopTest = JsonSocketTest;

TEST_F(JsonSocketStopTest, StopGivesThePeerAnOrderlyEnd) {
  OpenAndConnect();
  EXPECT_LT(TimedMs([&] { m_link.StopThread(); }), kOneSecondMs);
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
  EXPECT_FALSE(m_link.IsRunning());
  EXPECT_EQ(m_link.GetState(), FrameReader::kDisconnected);
}

TEST_F(JsonSocketStopTest, StopGivesAnOrderlyEndAlsoWithBytesUnread) {
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

TEST_F(JsonSocketStopTest, StopDuringAFloodEndsWithinASecond) {
  OpenAndConnect();
  std::thread flooder([&] {
    while (m_server.Send("1#a1#b1#c1#d1#e1#f")) {
    }
  });
  ASSERT_TRUE(WaitForBodies(100));
  EXPECT_LT(TimedMs([&] { m_link.StopThread(); }), kOneSecondMs);
  flooder.join();
}

TEST_F(JsonSocketStopTest, StopEndsASendThatBlocks) {
  OpenAndConnect();
  m_server.SetReading(false);
  std::atomic<int> sent{0};
  std::thread sender([&] {
    while (Send('"' + std::string(100'000, 'x') + '"')) ++sent;
  });
  // The sender blocks when the count no longer grows.
  for (int before = -1; before != sent;) {
    before = sent;
    std::this_thread::sleep_for(milliseconds{200});
  }
  EXPECT_LT(TimedMs([&] { m_link.StopThread(); }), kOneSecondMs);
  sender.join();
}

TEST_F(JsonSocketStopTest, StopEndsAReaderThatBlocksInASend) {
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
  EXPECT_LT(TimedMs([&] { m_link.StopThread(); }), kOneSecondMs);
}

TEST_F(JsonSocketStopTest, StopEndsTheWaitForTheNextAttempt) {
  m_server.Stop();
  ASSERT_TRUE(m_link.OpenThread());
  ASSERT_TRUE(m_events.recorder.WaitForText("failed"));
  EXPECT_LT(TimedMs([&] { m_link.StopThread(); }), kOneSecondMs);
}

TEST_F(JsonSocketStopTest, SecondOpenIsReportedAndChangesNothing) {
  OpenAndConnect();
  EXPECT_FALSE(m_link.OpenThread());
  EXPECT_EQ(Faults(), Texts{"Vask::JsonSocket::OpenThread open failed"});
  EXPECT_TRUE(m_link.IsRunning());
  ASSERT_TRUE(m_server.Send("1#a"));
  EXPECT_TRUE(WaitForBodies(1));
  EXPECT_EQ(m_server.GetRecord().connections, 1u);
}

TEST_F(JsonSocketStopTest, CanBeOpenedAgainAfterAStop) {
  OpenAndConnect();
  m_link.StopThread();
  ASSERT_TRUE(m_link.OpenThread());
  ASSERT_TRUE(m_server.WaitForConnections(2));
  ASSERT_TRUE(m_server.Send("1#a"));
  EXPECT_TRUE(WaitForBodies(1));
}

TEST_F(JsonSocketStopTest, RequestStopEndsConnectionAndThreadWithoutWaiting) {
  OpenAndConnect();
  m_link.RequestStop();
  EXPECT_FALSE(m_link.IsRunning());
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
}

TEST_F(JsonSocketStopTest, DestructorStops) {
  {
    JsonSocket link;
    link.SetPort(m_server.Port());
    ASSERT_TRUE(link.OpenThread());
    ASSERT_TRUE(m_server.WaitForConnections(1));
  }
  ASSERT_TRUE(m_server.WaitForEnds(1));
  EXPECT_EQ(m_server.GetRecord().ends, std::vector{End::InOrder});
}

// A peer whose queue is full, so a connect neither succeeds nor fails.
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
  EXPECT_LT(TimedMs([&] { m_link.StopThread(); }), kOneSecondMs);
  EXPECT_EQ(m_events.recorder.Texts().front(), "connecting");
}

TEST_F(MidConnectTest, SendingFailsAtOnce) {
  bool sent = true;
  EXPECT_LT(TimedMs([&] { sent = Send("{}"); }), kOneSecondMs);
  EXPECT_FALSE(sent);
}

}  // namespace
}  // namespace Vask::Tests
