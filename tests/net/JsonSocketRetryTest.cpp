// The link without a network and without a second thread. Its body runs inside
// OpenThread, with a clock that moves only while the body sleeps.

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "net/JsonSocket.h"
#include "net/LinkInterfaces.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"
#include "tests/support/ForwardingClock.h"
#include "tests/support/ForwardingThreading.h"
#include "tests/support/LinkRecorders.h"
#include "tests/support/ScriptedThreading.h"

namespace Vask::Tests {
namespace {

using Texts = std::vector<std::string>;

class JsonSocketRetryTest : public testing::Test, protected IJsonSocketEvents {
 protected:
  JsonSocketRetryTest() {
    m_link.SetErrorSink(&m_sink);
    m_link.SetPort(16969);
    m_sockets.connects = false;
  }

  void Note(const std::string& event) {
    m_events.push_back(event + " at " + std::to_string(m_clock.tick - m_startTick));
    if (m_events.size() == m_stopAfterEvents) m_link.RequestStop();
  }
  void OnConnecting() override {
    Note("connecting");
    if (m_connectingThrows) throw std::bad_alloc();
  }
  void OnConnectFailed() override {
    Note("failed");
    m_sockets.connects = ++m_failures >= m_failuresBeforeSuccess;
  }
  void OnConnected() override {
    Note("connected");
    if (m_connectedThrows) throw std::bad_alloc();
  }
  void OnDisconnected() override { Note("disconnected"); }

  FakeClock m_clock;
  std::uint32_t m_startTick = m_clock.tick;
  FaultySockets m_sockets;
  ScriptedThreading m_threading;
  RecordingErrorSink m_sink;
  JsonSocket m_link{this, m_clock, m_sockets, m_threading};

  Texts m_events;
  bool m_connectingThrows = false;
  bool m_connectedThrows = false;
  std::size_t m_stopAfterEvents = 1;
  int m_failures = 0;
  int m_failuresBeforeSuccess = 1000;
};

TEST_F(JsonSocketRetryTest, AbsentPeerIsTriedAtOnceAndThenEveryFiveSeconds) {
  m_stopAfterEvents = 6;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "failed at 0", "connecting at 5000",
                             "failed at 5000", "connecting at 10000", "failed at 10000"}));
  EXPECT_EQ(m_link.GetState(), FrameReader::kDisconnected);
}

// An attempt that throws must not keep a processor busy.
TEST_F(JsonSocketRetryTest, ExceptionOfOnConnectingIsFollowedByAnAttemptAfterFiveSeconds) {
  m_connectingThrows = true;
  m_stopAfterEvents = 4;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "disconnected at 0", "connecting at 5000",
                             "disconnected at 5000"}));
}

TEST_F(JsonSocketRetryTest, ExceptionOfOnConnectedIsFollowedByAnAttemptAfterFiveSeconds) {
  m_sockets.connects = true;
  m_connectedThrows = true;
  m_stopAfterEvents = 6;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "connected at 0", "disconnected at 0",
                             "connecting at 5000", "connected at 5000", "disconnected at 5000"}));
  EXPECT_EQ(m_sink.recorder.Texts(),
            (Texts{"Vask::JsonSocket::Run: exception!", "Vask::JsonSocket::Run: exception!"}));
}

TEST_F(JsonSocketRetryTest, OpenAfterAStopDuringTheWaitConnectsAtOnce) {
  m_stopAfterEvents = 2;
  EXPECT_TRUE(m_link.OpenThread());
  m_link.StopThread();
  m_stopAfterEvents = 4;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events,
            (Texts{"connecting at 0", "failed at 0", "connecting at 100", "failed at 100"}));
}

TEST_F(JsonSocketRetryTest, FiveSecondsAreKeptAcrossTheWrapOfTheClock) {
  m_clock.tick = m_startTick = 0xFFFFFF00u;
  m_stopAfterEvents = 4;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events,
            (Texts{"connecting at 0", "failed at 0", "connecting at 5000", "failed at 5000"}));
}

TEST_F(JsonSocketRetryTest, StopIsNoticedWithinOnePoll) {
  m_stopAfterEvents = 2;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_clock.tick - m_startTick, JsonSocket::kPollMs);
}

TEST_F(JsonSocketRetryTest, AttemptsGoToLoopbackOnTheGivenPort) {
  m_stopAfterEvents = 2;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_sockets.calls, (Texts{"OpenTcp", "Connect 7 127.0.0.1:16969", "Close 7"}));
}

TEST_F(JsonSocketRetryTest, PeerThatAppearsIsFoundAtTheNextAttempt) {
  m_failuresBeforeSuccess = 2;
  m_stopAfterEvents = 7;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events,
            (Texts{"connecting at 0", "failed at 0", "connecting at 5000", "failed at 5000",
                   "connecting at 10000", "connected at 10000", "disconnected at 10000"}));
}

TEST_F(JsonSocketRetryTest, LostConnectionIsTriedAgainAtOnce) {
  m_sockets.connects = true;  // and every wait for a byte fails
  m_stopAfterEvents = 6;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "connected at 0", "disconnected at 0",
                             "connecting at 0", "connected at 0", "disconnected at 0"}));
}

TEST_F(JsonSocketRetryTest, OldSocketIsClosedBeforeANewOneIsOpened) {
  m_sockets.connects = true;
  m_stopAfterEvents = 5;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_sockets.calls,
            (Texts{"OpenTcp", "Connect 7 127.0.0.1:16969", "SetBlocking 7", "Shutdown 7",
                   "Disconnect 7", "Shutdown 7", "Close 7", "OpenTcp", "Connect 7 127.0.0.1:16969",
                   "SetBlocking 7", "Shutdown 7"}));
}

TEST_F(JsonSocketRetryTest, ConnectionMadeDuringAStopIsNotReported) {
  m_sockets.connects = true;
  m_stopAfterEvents = 1;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, Texts{"connecting at 0"});
  EXPECT_EQ(m_link.GetState(), FrameReader::kDisconnected);
}

TEST_F(JsonSocketRetryTest, PortZeroFailsWithoutTouchingASocket) {
  m_link.SetPort(0);
  m_stopAfterEvents = 2;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "failed at 0"}));
  EXPECT_EQ(m_sockets.calls, Texts{});
}

TEST_F(JsonSocketRetryTest, ThreadThatCannotBeCreatedIsReported) {
  m_threading.nextThread = nullptr;
  EXPECT_FALSE(m_link.OpenThread());
  EXPECT_EQ(m_sink.recorder.Texts(), Texts{"Vask::JsonSocket::OpenThread open failed"});
  EXPECT_FALSE(m_link.IsRunning());
  EXPECT_EQ(m_events, Texts{});
}

TEST_F(JsonSocketRetryTest, CanBeOpenedAfterAFailure) {
  m_threading.nextThread = nullptr;
  EXPECT_FALSE(m_link.OpenThread());
  m_threading.nextThread = &m_threading;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "failed at 0"}));
}

// Lets no time pass, and stops a link at its n-th sleep.
class StoppingClock final : public ForwardingClock {
 public:
  explicit StoppingClock(int sleeps) : m_sleeps(sleeps) {}
  JsonSocket* link = nullptr;

  void SleepMs(std::uint32_t) noexcept override {
    if (--m_sleeps == 0) link->RequestStop();
  }

 private:
  int m_sleeps;
};

TEST_F(JsonSocketRetryTest, AttemptsAreRepeatedAlsoWithoutEvents) {
  StoppingClock clock(51);  // 5,000 ms and one poll more
  JsonSocket link(nullptr, clock, m_sockets, m_threading);
  clock.link = &link;
  link.SetPort(16969);
  EXPECT_TRUE(link.OpenThread());
  EXPECT_EQ(m_sockets.calls, (Texts{"OpenTcp", "Connect 7 127.0.0.1:16969", "Close 7", "OpenTcp",
                                    "Connect 7 127.0.0.1:16969", "Close 7"}));
}

TEST_F(JsonSocketRetryTest, StopWithoutAThreadJoinsNothing) {
  m_link.StopThread();
  EXPECT_EQ(m_threading.joined, 0u);
}

TEST_F(JsonSocketRetryTest, StopJoinsTheThreadOnce) {
  EXPECT_TRUE(m_link.OpenThread());
  m_link.StopThread();
  m_link.StopThread();
  EXPECT_EQ(m_threading.joined, 1u);
}

// Reports that a thread has started although there is none, so no other event is ever
// signalled. Keeps the timeouts of the waits.
class SilentThreading final : public ForwardingThreading {
 public:
  std::vector<std::uint32_t> waits;

  bool WaitEvent(Platform::NativeHandle, std::uint32_t timeoutMs) noexcept override {
    if (timeoutMs == Platform::kInfinite) return true;
    waits.push_back(timeoutMs);
    return false;
  }
  Platform::NativeHandle StartThread(const Platform::ThreadEntry&) noexcept override {
    return this;
  }
  void JoinThread(Platform::NativeHandle, Platform::NativeHandle) noexcept override {}
  void CloseThread(Platform::NativeHandle) noexcept override {}
};

TEST(JsonSocketSilentReaderTest, StopWaits200MsAndThen100TimesFor20MsAndContinues) {
  FakeClock clock;
  FaultySockets sockets;
  SilentThreading threading;
  JsonSocket link(nullptr, clock, sockets, threading);
  ASSERT_TRUE(link.OpenThread());
  link.StopThread();
  std::vector<std::uint32_t> expected(101, 20);
  expected.front() = 200;
  EXPECT_EQ(threading.waits, expected);
}

TEST_F(JsonSocketRetryTest, NothingIsSentBeforeTheFirstConnection) {
  EXPECT_FALSE(m_link.OnJsonMessage(nullptr));
  EXPECT_EQ(m_sink.recorder.Texts(), Texts{"Vask::JsonSocket::OnJsonMessageNull message"});
  EXPECT_EQ(m_sockets.calls, Texts{});
}

TEST_F(JsonSocketRetryTest, IsIdleAfterConstruction) {
  EXPECT_FALSE(m_link.IsRunning());
  EXPECT_EQ(m_link.GetState(), FrameReader::kDisconnected);
}

}  // namespace
}  // namespace Vask::Tests
