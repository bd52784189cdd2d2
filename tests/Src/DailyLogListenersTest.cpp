#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "Src/DailyLog.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"
#include "tests/support/LogBlocks.h"
#include "tests/support/MemoryFiles.h"

namespace Vask::Tests {
namespace {

using Texts = std::vector<std::string>;

// Keeps the messages of its last call, and does in its call what a test wants.
class Listener final : public IDailyLog::IListener {
 public:
  Texts calls;  // "warning" and "error"
  Texts messages;
  std::uint32_t totalLength = 0;
  std::function<void()> onCall;

  void OnWarning(const IDailyLog::ILogDataBlock* const* blocks, std::uint32_t count,
                 std::uint32_t length) override {
    Hear("warning", blocks, count, length);
  }
  void OnError(const IDailyLog::ILogDataBlock* const* blocks, std::uint32_t count,
               std::uint32_t length) override {
    Hear("error", blocks, count, length);
  }

 private:
  void Hear(const char* call, const IDailyLog::ILogDataBlock* const* blocks, std::uint32_t count,
            std::uint32_t length) {
    calls.push_back(call);
    if (onCall) onCall();
    messages = TextsOf(blocks, count);
    totalLength = length;
  }
};

class DailyLogListenersTest : public testing::Test {
 protected:
  FakeClock clock;
  MemoryFiles files;
  FaultySockets sockets;
  DailyLog log{clock, files, sockets};
  Listener a;
  Listener b;
};

TEST_F(DailyLogListenersTest, OnlyWarningsAndErrorsCallListeners) {
  log.AddListener(&a);
  log.Info("i\n");
  log.Trace("t\n");
  EXPECT_TRUE(a.calls.empty());
  log.Warning("w\n");
  log.Error("e\n");
  EXPECT_EQ(a.calls, (Texts{"warning", "error"}));
  EXPECT_EQ(a.messages, (Texts{"12:00:00.000: Info: i\n", "12:00:00.000: TRACE: t\n",
                               "12:00:00.000: Warning: w\n", "12:00:00.000: Error: e\n"}));
  EXPECT_EQ(a.totalLength, 22u + 23u + 25u + 23u);
}

TEST_F(DailyLogListenersTest, After25MessagesAWarningPassesTheNewest20OldestFirst) {
  log.AddListener(&a);
  Texts newest;
  for (int i = 1; i <= 24; ++i) {
    const std::string text = std::to_string(i) + "\n";
    log.Info(text.c_str());
    if (i > 5) newest.push_back("12:00:00.000: Info: " + text);
  }
  log.Warning("last\n");
  newest.push_back("12:00:00.000: Warning: last\n");
  EXPECT_EQ(a.messages, newest);
}

TEST_F(DailyLogListenersTest, EveryListenerIsCalledUntilItIsRemoved) {
  log.AddListener(&a);
  log.AddListener(&b);
  log.Warning("1\n");
  log.RemoveListener(&a);
  log.Warning("2\n");
  EXPECT_EQ(a.calls.size(), 1u);
  EXPECT_EQ(b.calls.size(), 2u);
}

TEST_F(DailyLogListenersTest, AListenerAddedTwiceIsCalledTwiceAndRemovedOneAtATime) {
  log.AddListener(&a);
  log.AddListener(&a);
  log.Error("1\n");
  EXPECT_EQ(a.calls.size(), 2u);
  log.RemoveListener(&a);
  log.Error("2\n");
  EXPECT_EQ(a.calls.size(), 3u);
}

TEST_F(DailyLogListenersTest, AFreedPlaceIsUsedAgainBeforeTheListGrows) {
  Texts order;
  a.onCall = [&order] { order.push_back("a"); };
  b.onCall = [&order] { order.push_back("b"); };
  Listener c;
  c.onCall = [&order] { order.push_back("c"); };
  log.AddListener(&a);
  log.AddListener(&b);
  log.RemoveListener(&a);
  log.AddListener(&c);
  log.Warning("x\n");
  EXPECT_EQ(order, (Texts{"c", "b"}));
}

TEST_F(DailyLogListenersTest, RemovingAnUnknownListenerDoesNothing) {
  log.RemoveListener(&a);
  log.AddListener(&b);
  log.RemoveListener(&a);
  log.Warning("x\n");
  EXPECT_EQ(b.calls.size(), 1u);
}

TEST_F(DailyLogListenersTest, AMessageOfAListenerIsLoggedButCallsNoListener) {
  log.AddListener(&a);
  log.AddListener(&b);
  a.onCall = [this] {
    log.Warning("from the listener\n");
    log.Error("from the listener\n");
  };
  log.SetConsoleEcho(true);
  log.Warning("x\n");
  EXPECT_EQ(a.calls, Texts{"warning"});
  EXPECT_EQ(b.calls, Texts{"warning"});
  EXPECT_EQ(files.console,
            "12:00:00.000: Warning: x\n"
            "12:00:00.000: Warning: from the listener\n"
            "12:00:00.000: Error: from the listener\n");
  a.onCall = nullptr;
  log.Warning("y\n");
  EXPECT_EQ(a.calls.size(), 2u) << "later messages call the listener again";
}

TEST_F(DailyLogListenersTest, TheMessagesStayValidDuringAListenersCall) {
  log.AddListener(&a);
  a.onCall = [this] {
    for (int i = 0; i < 100; ++i) log.Info("recycles every slot of the history\n");
  };
  log.Warning("kept\n");
  EXPECT_EQ(a.messages, Texts{"12:00:00.000: Warning: kept\n"});
}

TEST_F(DailyLogListenersTest, AListenerRemovedDuringTheRoundIsNotCalled) {
  log.AddListener(&a);
  log.AddListener(&b);
  a.onCall = [this] { log.RemoveListener(&b); };
  log.Error("x\n");
  EXPECT_TRUE(b.calls.empty());
}

TEST_F(DailyLogListenersTest, AListenerAddedDuringTheRoundWaitsForTheNext) {
  log.AddListener(&a);
  a.onCall = [this] { log.AddListener(&b); };
  log.Error("x\n");
  EXPECT_TRUE(b.calls.empty());
  a.onCall = nullptr;
  log.Error("y\n");
  EXPECT_EQ(b.calls.size(), 1u);
}

TEST_F(DailyLogListenersTest, ListenersAreCalledWithoutTheLock) {
  log.AddListener(&a);
  a.onCall = [this] {
    std::thread([this] { log.Info("another thread is not kept waiting\n"); }).join();
  };
  log.Warning("x\n");
  EXPECT_EQ(a.calls, Texts{"warning"});
}

TEST_F(DailyLogListenersTest, AWarningOfAnotherThreadDuringTheRoundCallsNoListener) {
  log.AddListener(&a);
  a.onCall = [this] { std::thread([this] { log.Warning("meanwhile\n"); }).join(); };
  log.Warning("x\n");
  EXPECT_EQ(a.calls.size(), 1u);
}

TEST_F(DailyLogListenersTest, ListenersAreAddedAndRemovedWhileOtherThreadsLog) {
  std::thread logging([this] {
    for (int i = 0; i < 300; ++i) log.Warning("x\n");
  });
  for (int i = 0; i < 300; ++i) {
    log.AddListener(&a);
    log.RemoveListener(&a);
  }
  logging.join();
  EXPECT_LE(a.calls.size(), 300u);
}

}  // namespace
}  // namespace Vask::Tests
