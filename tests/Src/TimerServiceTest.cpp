#include "Src/TimerService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <future>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/AllocationCounter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/ForwardingThreading.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScriptedThreading.h"

namespace Vask::Tests {
namespace {

TEST(TimerNodeStoreTest, AllocatesBlocksOf32AsTheyAreNeeded) {
  TimerNodeStore store;
  EXPECT_EQ(store.BlockCount(), 0u);
  std::set<TimerNode*> nodes;
  for (int i = 0; i < 32; ++i) nodes.insert(store.Take());
  EXPECT_EQ(store.BlockCount(), 1u);
  nodes.insert(store.Take());
  EXPECT_EQ(store.BlockCount(), 2u);
  EXPECT_EQ(nodes.size(), 33u);
}

TEST(TimerNodeStoreTest, FreedNodesAreUsedBeforeAnythingIsAllocated) {
  TimerNodeStore store;
  std::vector<TimerNode*> nodes;
  for (int round = 0; round < 10; ++round) {
    for (int i = 0; i < 32; ++i) nodes.push_back(store.Take());
    while (!nodes.empty()) {
      store.PutBack(nodes.back());
      nodes.pop_back();
    }
  }
  EXPECT_EQ(store.BlockCount(), 1u);
}

TEST(TimerNodeStoreTest, TheDestructorFreesEveryBlock) {
  const std::ptrdiff_t before = HeldBlocks();
  {
    TimerNodeStore store;
    for (int i = 0; i < 65; ++i) static_cast<void>(store.Take());
    ASSERT_EQ(store.BlockCount(), 3u);
  }
  EXPECT_EQ(HeldBlocks(), before);
}

using Platform::kInfinite;

// Records its name at every call and does what a test wants.
class Client final : public ITimerServiceClient {
 public:
  Client(std::string name, std::vector<std::string>& calls)
      : m_name(std::move(name)), m_calls(calls) {}

  std::function<void()> onTimer;

  void OnTimer(std::uint32_t timerId, std::uint64_t parameter) override {
    EXPECT_EQ(timerId, 0u);
    EXPECT_EQ(parameter, 0u);
    m_calls.push_back(m_name);
    if (onTimer) onTimer();
  }

 private:
  std::string m_name;
  std::vector<std::string>& m_calls;
};

class TimerServiceTest : public testing::Test {
 protected:
  // Lets time pass millisecond by millisecond, as the thread would see it. Returns the
  // times of the calls, counted from now.
  std::vector<std::uint32_t> CallTimes(std::uint32_t milliseconds) {
    std::vector<std::uint32_t> times;
    for (std::uint32_t passed = 0;; ++passed) {
      const std::size_t before = calls.size();
      while (service.Step() == 0) {
      }
      for (std::size_t i = before; i < calls.size(); ++i) times.push_back(passed);
      if (passed == milliseconds) return times;
      clock.Advance(1);
    }
  }

  FakeClock clock;
  TimerService service{clock};
  std::vector<std::string> calls;
  Client a{"a", calls};
  Client b{"b", calls};
  Client c{"c", calls};
};

using Times = std::vector<std::uint32_t>;
using Calls = std::vector<std::string>;

TEST_F(TimerServiceTest, ATimerIsDueAfterItsPeriodAndThenFiveMillisecondsEarlier) {
  service.SetTimer(2500, &a);
  EXPECT_EQ(CallTimes(10'000), (Times{2500, 2500 + 2495, 2500 + 2 * 2495, 2500 + 3 * 2495}));
}

TEST_F(TimerServiceTest, ALaterSetTimerOfTheSameClientReplacesItsTimer) {
  service.SetTimer(2500, &a);
  EXPECT_EQ(CallTimes(2500), Times{2500});
  service.SetTimer(15'000, &a);
  EXPECT_EQ(CallTimes(30'000), (Times{15'000, 15'000 + 14'995}));
}

TEST_F(TimerServiceTest, TheRepeatPeriodIsFiveLessOnlyAboveFive) {
  const struct {
    const char* name;
    std::uint32_t period;
    Times times;
  } rows[] = {
      {"3 ms stay 3 ms", 3, {3, 6, 9, 12}},
      {"5 ms stay 5 ms", 5, {5, 10}},
      {"6 ms repeat after 1 ms", 6, {6, 7, 8, 9, 10, 11, 12}},
      {"10 ms repeat after 5 ms", 10, {10}},
  };
  for (const auto& row : rows) {
    service.SetTimer(row.period, &a);
    EXPECT_EQ(CallTimes(12), row.times) << row.name;
  }
}

TEST_F(TimerServiceTest, EachClientHasItsOwnTimer) {
  service.SetTimer(20, &a);
  service.SetTimer(30, &b);
  service.SetTimer(10, &c);
  clock.Advance(30);
  while (service.Step() == 0) {
  }
  EXPECT_EQ(calls, (Calls{"c", "a", "b"}));
}

TEST_F(TimerServiceTest, TheLatestOfTimersDueTogetherIsCalledFirst) {
  service.SetTimer(20, &a);
  service.SetTimer(20, &b);
  clock.Advance(10);
  service.SetTimer(10, &c);
  clock.Advance(10);
  while (service.Step() == 0) {
  }
  EXPECT_EQ(calls, (Calls{"c", "b", "a"}));
}

TEST_F(TimerServiceTest, AStepCallsOneClientAndReturnsHowLongToWait) {
  EXPECT_EQ(service.Step(), kInfinite);
  service.SetTimer(20, &a);
  service.SetTimer(20, &b);
  EXPECT_EQ(service.Step(), 20u);
  clock.Advance(19);
  EXPECT_EQ(service.Step(), 1u);
  clock.Advance(1);
  EXPECT_EQ(service.Step(), 0u);
  EXPECT_EQ(calls, Calls{"b"});
  EXPECT_EQ(service.Step(), 15u);
  EXPECT_EQ(calls, (Calls{"b", "a"}));
}

TEST_F(TimerServiceTest, AKilledTimerIsNeverCalledAndOthersStay) {
  service.SetTimer(10, &a);
  service.SetTimer(12, &b);
  service.KillTimer(&a);
  EXPECT_EQ(CallTimes(12), Times{12});
  EXPECT_EQ(calls, Calls{"b"});
  service.KillTimer(&b);
  EXPECT_EQ(service.Step(), kInfinite);
}

TEST_F(TimerServiceTest, KillingWithinItsOwnCallStopsATimer) {
  a.onTimer = [this] { service.KillTimer(&a); };
  service.SetTimer(10, &a);
  clock.Advance(10);
  EXPECT_EQ(service.Step(), kInfinite);
  clock.Advance(1'000);
  EXPECT_EQ(service.Step(), kInfinite);
  EXPECT_EQ(calls, Calls{"a"});
}

TEST_F(TimerServiceTest, SettingWithinItsOwnCallReplacesTheTimer) {
  a.onTimer = [this] { service.SetTimer(100, &a); };
  service.SetTimer(10, &a);
  EXPECT_EQ(CallTimes(310), (Times{10, 110, 210, 310}));
}

TEST_F(TimerServiceTest, ACallMaySetAndKillTimersOfOthers) {
  a.onTimer = [this] {
    service.KillTimer(&b);
    service.SetTimer(4, &c);
  };
  service.SetTimer(10, &a);
  service.SetTimer(11, &b);
  EXPECT_EQ(CallTimes(14), (Times{10, 14}));
  EXPECT_EQ(calls, (Calls{"a", "c"}));
}

TEST_F(TimerServiceTest, TheNextPeriodCountsFromTheBeginningOfASlowCall) {
  a.onTimer = [this] { clock.Advance(50); };
  service.SetTimer(105, &a);
  clock.Advance(105);
  EXPECT_EQ(service.Step(), 100u);
  EXPECT_EQ(service.Step(), 50u);
}

TEST_F(TimerServiceTest, AfterALongSleepATimerIsCalledOnceAndContinuesFromThere) {
  service.SetTimer(100, &a);
  clock.Advance(100'000);
  EXPECT_EQ(service.Step(), 95u);
  EXPECT_EQ(calls, Calls{"a"});
}

TEST_F(TimerServiceTest, AWrapOfTheTickNeitherFiresNorStallsTimers) {
  clock.tick = 0xFFFFFFF0u;
  service.SetTimer(0x10, &a);
  service.SetTimer(0x40, &b);
  EXPECT_EQ(service.Step(), 0x10u);
  clock.tick = 0x10;
  EXPECT_EQ(service.Step(), 0x10u - 5u);
  EXPECT_EQ(calls, Calls{"a"});
  service.KillTimer(&a);
  EXPECT_EQ(service.Step(), 0x20u);
  clock.tick = 0x30;
  EXPECT_EQ(service.Step(), 0x40u - 5u);
  EXPECT_EQ(calls, (Calls{"a", "b"}));
}

TEST_F(TimerServiceTest, TheClockRisesOverManyWraps) {
  service.SetTimer(0x80000000u, &a);
  for (int i = 0; i < 9; ++i) {
    clock.Advance(0x40000000u);
    service.Step();
  }
  EXPECT_EQ(calls.size(), 4u);
}

TEST_F(TimerServiceTest, TheLongestPeriodIsNoInfiniteWait) {
  service.SetTimer(kInfinite, &a);
  EXPECT_EQ(service.Step(), kInfinite - 1);
  clock.Advance(kInfinite - 1);
  EXPECT_EQ(service.Step(), 1u);
  clock.Advance(1);
  EXPECT_EQ(service.Step(), kInfinite - 5);
  EXPECT_EQ(calls, Calls{"a"});
}

TEST_F(TimerServiceTest, KillTimerIfKillsOnlyWhenTheConditionHolds) {
  bool done = false;
  const auto isDone = [](void* context) { return *static_cast<bool*>(context); };
  service.SetTimer(10, &a);
  EXPECT_FALSE(service.KillTimerIf(&a, isDone, &done));
  EXPECT_EQ(service.Step(), 10u);
  done = true;
  EXPECT_TRUE(service.KillTimerIf(&a, isDone, &done));
  EXPECT_EQ(service.Step(), kInfinite);
}

TEST_F(TimerServiceTest, ReplaceTimerAndChangesTheTimerAndTheState) {
  bool changed = false;
  service.SetTimer(10, &a);
  service.ReplaceTimerAnd(
      30, &a, [](void* context) { *static_cast<bool*>(context) = true; }, &changed);
  EXPECT_TRUE(changed);
  EXPECT_EQ(CallTimes(30), Times{30});
}

// The state is not atomic, so a race detector sees whether the lock protects it.
TEST_F(TimerServiceTest, DecisionsAndReplacementsExcludeEachOther) {
  constexpr int kRounds = 2'000;
  int generation = 0;
  std::thread replacing([this, &generation] {
    for (int i = 0; i < kRounds; ++i) {
      service.ReplaceTimerAnd(
          1'000, &a, [](void* context) { ++*static_cast<int*>(context); }, &generation);
    }
  });
  for (int i = 0; i < kRounds; ++i) {
    service.KillTimerIf(
        &a, [](void* context) { return *static_cast<int*>(context) < kRounds; }, &generation);
  }
  replacing.join();
  EXPECT_EQ(generation, kRounds);
  EXPECT_EQ(service.Step(), 1'000u) << "the last replacement's timer is never killed";
}

TEST_F(TimerServiceTest, TimersThatAreKilledOrReplacedLeaveTheirMemoryToTheNext) {
  const auto nothing = [](void*) {};
  const auto always = [](void*) { return true; };
  const auto round = [&] {
    for (int i = 0; i < 32; ++i) {  // as many as a block holds
      service.SetTimer(10, &a);
      service.KillTimer(&a);
      service.SetTimer(10, &a);
      service.KillTimerIf(&a, always, nullptr);
      service.ReplaceTimerAnd(10, &a, nothing, nullptr);
    }
    service.KillTimer(&a);
  };
  round();
  const std::uint64_t before = Allocations();
  for (int i = 0; i < 10; ++i) round();
  EXPECT_EQ(Allocations() - before, 0u);
}

TEST_F(TimerServiceTest, MoreTimersThanABlockHoldsAreAllCalled) {
  std::vector<Client> clients(100, Client{"x", calls});
  for (Client& client : clients) service.SetTimer(10, &client);
  clock.Advance(10);
  while (service.Step() == 0) {
  }
  EXPECT_EQ(calls.size(), 100u);
}

// The machine's threads and events. Keeps the timeout of every wait of the service's
// thread.
class WaitRecorder final : public ForwardingThreading {
 public:
  // Blocks until the thread has begun that many waits, and returns their timeouts.
  std::vector<std::uint32_t> Waits(std::size_t count) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this, count] { return m_waits.size() >= count; });
    return m_waits;
  }

  bool WaitEvent(Platform::NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    if (std::this_thread::get_id() != m_owner) {
      const std::lock_guard lock(m_mutex);
      m_waits.push_back(timeoutMs);
      m_changed.notify_all();
    }
    return ForwardingThreading::WaitEvent(event, timeoutMs);
  }

 private:
  const std::thread::id m_owner = std::this_thread::get_id();
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::vector<std::uint32_t> m_waits;
};

TEST(TimerServiceThreadTest, AnIdleServiceWaitsWithoutLimitAndWakesOnlyForAReason) {
  FakeClock clock;
  WaitRecorder threading;
  TimerService service(clock, threading);
  std::vector<std::string> calls;
  Client client("client", calls);
  ASSERT_TRUE(service.StartService());
  threading.Waits(2);
  service.SetTimer(60'000, &client);
  threading.Waits(3);
  service.StopService();
  EXPECT_EQ(threading.Waits(3), (std::vector<std::uint32_t>{0, kInfinite, 60'000}));
  EXPECT_TRUE(calls.empty());
}

TEST(TimerServiceThreadTest, AfterASlowCallTheWaitIsCountedAgain) {
  FakeClock clock;
  WaitRecorder threading;
  TimerService service(clock, threading);
  std::vector<std::string> calls;
  Client client("client", calls);
  client.onTimer = [&clock] { clock.Advance(50); };
  service.SetTimer(3'600'005, &client);
  clock.Advance(3'600'005);
  ASSERT_TRUE(service.StartService());
  threading.Waits(3);
  service.StopService();
  EXPECT_EQ(threading.Waits(3), (std::vector<std::uint32_t>{0, 3'600'000, 3'599'950}));
}

TEST(TimerServiceThreadTest, AClientThatThrowsIsReportedAndTheServiceLooksForMoreAtOnce) {
  FakeClock clock;
  WaitRecorder threading;
  RecordingLog log;
  TimerService service(clock, threading);
  std::vector<std::string> calls;
  Client client("client", calls);
  client.onTimer = [&] {
    service.KillTimer(&client);
    throw std::runtime_error("no");
  };
  ASSERT_TRUE(service.StartService());
  threading.Waits(2);
  service.SetTimer(0, &client);
  threading.Waits(4);
  service.StopService();
  EXPECT_EQ(threading.Waits(4), (std::vector<std::uint32_t>{0, kInfinite, 0, kInfinite}));
  EXPECT_EQ(calls, Calls{"client"});
  EXPECT_EQ(log.Lines(), Calls{"Error: Vask::TimerService::Run: exception!\n"});
}

TEST(TimerServiceThreadTest, ATimerWakesTheThreadAndClientsAreCalledThere) {
  TimerService service;
  std::vector<std::string> calls;
  Client client("client", calls);
  std::promise<std::thread::id> called;
  client.onTimer = [&] {
    service.KillTimer(&client);
    called.set_value(std::this_thread::get_id());
  };
  ASSERT_TRUE(service.StartService());
  service.SetTimer(1, &client);
  EXPECT_NE(called.get_future().get(), std::this_thread::get_id());
  service.StopService();
}

TEST(TimerServiceThreadTest, StartsOnceAndStartsAgainAfterStopping) {
  TimerService service;
  service.StopService();
  ASSERT_TRUE(service.StartService());
  EXPECT_FALSE(service.StartService());
  service.StopService();
  EXPECT_TRUE(service.StartService());
  service.StopService();
}

TEST(TimerServiceThreadTest, ARefusedStartLeavesTheServiceRunning) {
  TimerService service;
  std::vector<std::string> calls;
  Client client("client", calls);
  std::promise<void> called;
  client.onTimer = [&] {
    service.KillTimer(&client);
    called.set_value();
  };
  ASSERT_TRUE(service.StartService());
  EXPECT_FALSE(service.StartService());
  service.SetTimer(1, &client);
  EXPECT_EQ(called.get_future().wait_for(std::chrono::minutes(1)), std::future_status::ready);
  service.StopService();
}

TEST(TimerServiceThreadTest, AServiceWhoseThreadCannotStartReportsItAndCanBeDestroyed) {
  FakeClock clock;
  ScriptedThreading threading;
  threading.nextThread = nullptr;
  TimerService service(clock, threading);
  EXPECT_FALSE(service.StartService());
  service.StopService();
  EXPECT_EQ(threading.joined, 0u);
}

TEST(TimerServiceThreadTest, StoppingWaitsForACallThatHasBegun) {
  TimerService service;
  std::vector<std::string> calls;
  Client client("client", calls);
  std::promise<void> begun;
  std::promise<void> mayEnd;
  bool ended = false;
  client.onTimer = [&] {
    service.KillTimer(&client);
    begun.set_value();
    mayEnd.get_future().wait();
    ended = true;
  };
  ASSERT_TRUE(service.StartService());
  service.SetTimer(1, &client);
  begun.get_future().wait();
  std::thread releasing([&mayEnd] { mayEnd.set_value(); });
  service.StopService();
  EXPECT_TRUE(ended);
  releasing.join();
}

// Counts the waits of the service's thread. After a wake-up by the owner it gives that thread
// time to begin another wait, before the owner continues.
class SlowWaker final : public ForwardingThreading {
 public:
  // Blocks until the thread has begun that many waits. From then on wake-ups are slow.
  void StartAfterWaits(int count) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this, count] { return m_waits >= count; });
    m_expected = count;
  }
  int Waits() {
    const std::lock_guard lock(m_mutex);
    return m_waits;
  }

  void SetEvent(Platform::NativeHandle event) noexcept override {
    ForwardingThreading::SetEvent(event);
    std::unique_lock lock(m_mutex);
    if (m_expected == 0 || std::this_thread::get_id() != m_owner) return;
    m_wake = event;
    m_changed.wait_for(lock, std::chrono::milliseconds(200),
                       [this] { return m_waits > m_expected; });
  }
  bool WaitEvent(Platform::NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    if (std::this_thread::get_id() != m_owner) {
      const std::lock_guard lock(m_mutex);
      ++m_waits;
      m_changed.notify_all();
    }
    return ForwardingThreading::WaitEvent(event, timeoutMs);
  }
  void JoinThread(Platform::NativeHandle thread,
                  Platform::NativeHandle finished) noexcept override {
    ForwardingThreading::SetEvent(m_wake);  // a test that fails must end too
    ForwardingThreading::JoinThread(thread, finished);
  }

 private:
  const std::thread::id m_owner = std::this_thread::get_id();
  std::mutex m_mutex;
  std::condition_variable m_changed;
  int m_waits = 0;
  int m_expected = 0;
  Platform::NativeHandle m_wake = nullptr;
};

TEST(TimerServiceThreadTest, AThreadThatAStopWakesDoesNotWaitAgain) {
  FakeClock clock;
  SlowWaker threading;
  TimerService service(clock, threading);
  ASSERT_TRUE(service.StartService());
  threading.StartAfterWaits(2);
  service.StopService();
  EXPECT_EQ(threading.Waits(), 2);
}

class JoinCounter final : public ForwardingThreading {
 public:
  int joined = 0;

  void JoinThread(Platform::NativeHandle thread,
                  Platform::NativeHandle finished) noexcept override {
    ForwardingThreading::JoinThread(thread, finished);
    ++joined;
  }
};

TEST(TimerServiceThreadTest, TheDestructorStopsARunningService) {
  FakeClock clock;
  JoinCounter threading;
  RecordingLog log;
  ASSERT_TRUE(TimerService(clock, threading).StartService());
  EXPECT_EQ(threading.joined, 1);
  EXPECT_EQ(log.Lines(), Calls()) << "the thread class reports a thread that was not stopped";
}

}  // namespace
}  // namespace Vask::Tests
