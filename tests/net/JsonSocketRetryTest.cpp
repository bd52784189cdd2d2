// The link without a network and without a second thread. Its body runs inside
// OpenThread, with a clock that moves only while the body sleeps.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "net/JsonSocket.h"
#include "net/LinkInterfaces.h"
#include "tests/net/LinkFixture.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"
#include "tests/support/ForwardingClock.h"
#include "tests/support/ForwardingSockets.h"
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
  EXPECT_EQ(JsonSocket::kRetryMs, 5000u);
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

TEST_F(JsonSocketRetryTest, WithoutAPortNoSocketIsTouched) {
  StoppingClock clock(1);
  JsonSocket link(nullptr, clock, m_sockets, m_threading);
  clock.link = &link;
  EXPECT_TRUE(link.OpenThread());
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

TEST_F(JsonSocketRetryTest, ConnectionMadeJustBeforeAStopIsReportedAsLostAndClosed) {
  m_sockets.connects = true;
  m_stopAfterEvents = 2;
  EXPECT_TRUE(m_link.OpenThread());
  EXPECT_EQ(m_events, (Texts{"connecting at 0", "connected at 0", "disconnected at 0"}));
  m_sockets.calls.clear();
  m_link.StopThread();
  EXPECT_EQ(m_sockets.calls,
            (Texts{"Shutdown 7", "Shutdown 7", "Disconnect 7", "Shutdown 7", "Close 7"}));
  m_sockets.calls.clear();
  const JsonRef<Json> message = Parsed("{}");
  EXPECT_FALSE(m_link.OnJsonMessage(message.Get()));
  EXPECT_EQ(m_sockets.calls, Texts{}) << "nothing is sent after a stop";
}

// A connection without a byte. The link is stopped at the third wait for one.
class IdleSockets final : public ForwardingSockets {
 public:
  using ForwardingSockets::ForwardingSockets;

  JsonSocket* link = nullptr;
  std::vector<std::uint32_t> waits;
  int receives = 0;
  bool runsAtShutdown = false;

  Platform::Readiness WaitReadable(Platform::SocketHandle,
                                   std::uint32_t timeoutMs) noexcept override {
    waits.push_back(timeoutMs);
    if (waits.size() == 3) link->RequestStop();
    return Platform::Readiness::TimedOut;
  }
  int Receive(Platform::SocketHandle, char*, std::size_t) noexcept override {
    ++receives;
    return -1;
  }
  void Shutdown(Platform::SocketHandle socket) noexcept override {
    if (link->IsRunning()) runsAtShutdown = true;
    ForwardingSockets::Shutdown(socket);
  }
};

TEST_F(JsonSocketRetryTest, NothingIsReceivedBeforeThereIsAByte) {
  m_sockets.connects = true;
  IdleSockets sockets(m_sockets);
  JsonSocket link(nullptr, m_clock, sockets, m_threading);
  sockets.link = &link;
  link.SetPort(16969);
  EXPECT_TRUE(link.OpenThread());
  EXPECT_EQ(sockets.waits, (std::vector<std::uint32_t>{100, 100, 100}));
  EXPECT_EQ(sockets.receives, 0);
  EXPECT_FALSE(sockets.runsAtShutdown) << "the reader could connect again";
}

// Creates no event at first. Keeps the timeouts of the waits.
class LateEventsThreading final : public ForwardingThreading {
 public:
  using ForwardingThreading::ForwardingThreading;

  bool createsEvents = false;
  std::vector<std::uint32_t> waits;

  Platform::NativeHandle CreateEvent(Platform::EventReset reset) noexcept override {
    return createsEvents ? ForwardingThreading::CreateEvent(reset) : nullptr;
  }
  bool WaitEvent(Platform::NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    waits.push_back(timeoutMs);
    return ForwardingThreading::WaitEvent(event, timeoutMs);
  }
};

TEST_F(JsonSocketRetryTest, EventsThatWereMissingAtFirstAreCreatedAtTheStart) {
  LateEventsThreading threading(m_threading);
  StoppingClock clock(1);
  JsonSocket link(nullptr, clock, m_sockets, threading);
  clock.link = &link;
  link.SetPort(16969);
  EXPECT_FALSE(link.OpenThread());
  threading.createsEvents = true;
  EXPECT_TRUE(link.OpenThread());
  threading.waits.clear();
  link.StopThread();
  EXPECT_EQ(threading.waits, std::vector<std::uint32_t>{200}) << "the reader has left its loop";
}

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

// Runs the body, and then reports that it has not ended. Notes the waits for its end.
class EndlessThreading final : public ForwardingThreading {
 public:
  explicit EndlessThreading(Texts& calls) : m_calls(calls) {}

  bool WaitEvent(Platform::NativeHandle, std::uint32_t timeoutMs) noexcept override {
    if (timeoutMs == Platform::kInfinite) return true;
    m_calls.push_back("Wait " + std::to_string(timeoutMs));
    return false;
  }
  Platform::NativeHandle StartThread(const Platform::ThreadEntry& entry) noexcept override {
    entry.run(entry.argument);
    return this;
  }
  void JoinThread(Platform::NativeHandle, Platform::NativeHandle) noexcept override {}
  void CloseThread(Platform::NativeHandle) noexcept override {}

 private:
  Texts& m_calls;
};

TEST_F(JsonSocketRetryTest, StopShutsTheSocketDownAfterEachOfItsWaits) {
  m_sockets.connects = true;
  IdleSockets sockets(m_sockets);
  EndlessThreading threading(m_sockets.calls);
  JsonSocket link(nullptr, m_clock, sockets, threading);
  sockets.link = &link;
  link.SetPort(16969);
  EXPECT_TRUE(link.OpenThread());
  m_sockets.calls.clear();
  link.StopThread();
  Texts expected{"Wait 200", "Shutdown 7"};
  for (int i = 0; i < 100; ++i) expected.insert(expected.end(), {"Wait 20", "Shutdown 7"});
  expected.insert(expected.end(), {"Shutdown 7", "Disconnect 7", "Shutdown 7", "Close 7"});
  EXPECT_EQ(m_sockets.calls, expected);
}

TEST_F(JsonSocketRetryTest, NothingIsSentBeforeTheFirstConnection) {
  EXPECT_FALSE(m_link.OnJsonMessage(nullptr));
  EXPECT_EQ(m_sink.recorder.Texts(), Texts{"Vask::JsonSocket::OnJsonMessageNull message"});
  const JsonRef<Json> message = Parsed("{}");
  EXPECT_FALSE(m_link.OnJsonMessage(message.Get()));
  EXPECT_EQ(m_sockets.calls, Texts{});
}

TEST_F(JsonSocketRetryTest, ATextOfUpTo512BytesAndItsFrameNeedTwoAllocations) {
  const struct {
    const char* name;
    std::size_t textBytes;  // with its quotes
    std::uint64_t allocations;
  } rows[] = {
      {"a short one", 20, 2},
      {"512 bytes", 512, 2},
      {"513 bytes", 513, 3},
  };
  for (const auto& row : rows) {
    const JsonRef<Json> message = Parsed('"' + std::string(row.textBytes - 2, 'x') + '"');
    const std::uint64_t before = Allocations();
    EXPECT_FALSE(m_link.OnJsonMessage(message.Get())) << row.name << ": there is no connection";
    EXPECT_EQ(Allocations() - before, row.allocations) << row.name;
  }
}

TEST_F(JsonSocketRetryTest, IsIdleAfterConstruction) {
  EXPECT_FALSE(m_link.IsRunning());
  EXPECT_EQ(m_link.GetState(), FrameReader::kDisconnected);
}

}  // namespace
}  // namespace Vask::Tests
