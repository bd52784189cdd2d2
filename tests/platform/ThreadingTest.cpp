#include "platform/Threading.h"

#include <gtest/gtest.h>

#include <atomic>

#include "platform/Event.h"

namespace Vask::Tests {
namespace {

using Platform::Event;
using Platform::EventReset;
using Platform::NativeHandle;
using Platform::SystemThreading;

constexpr std::uint32_t kGlanceMs = 50;

void Count(void* counter) noexcept {
  ++*static_cast<std::atomic<int>*>(counter);
}

class ThreadingTest : public testing::Test {
 protected:
  NativeHandle Start(void (*run)(void*) noexcept, void* argument) {
    return SystemThreading().StartThread({run, argument, finished.Handle()});
  }
  void JoinAndClose(NativeHandle thread) {
    SystemThreading().JoinThread(thread, finished.Handle());
    SystemThreading().CloseThread(thread);
  }

  Event finished{EventReset::Manual};
  std::atomic<int> counter{0};
};

TEST_F(ThreadingTest, ThreadRunsItsBodyOnceAndSignals) {
  const NativeHandle thread = Start(Count, &counter);
  ASSERT_NE(thread, nullptr);
  EXPECT_TRUE(finished.Wait(Platform::kInfinite));
  EXPECT_EQ(counter, 1);
  JoinAndClose(thread);
}

TEST_F(ThreadingTest, JoinWaitsForTheBody) {
  struct Held {
    Event mayEnd{EventReset::Manual};
    std::atomic<bool> ended{false};
  } held;
  const auto body = [](void* argument) noexcept {
    auto& shared = *static_cast<Held*>(argument);
    shared.ended = shared.mayEnd.Wait(Platform::kInfinite);
  };
  const NativeHandle thread = Start(body, &held);
  ASSERT_NE(thread, nullptr);
  EXPECT_FALSE(finished.Wait(kGlanceMs));
  held.mayEnd.Set();
  JoinAndClose(thread);
  EXPECT_TRUE(held.ended);
}

TEST_F(ThreadingTest, NullArgumentRunsAndSignalsNothing) {
  const NativeHandle thread = Start(Count, nullptr);
  ASSERT_NE(thread, nullptr);
  JoinAndClose(thread);
  EXPECT_FALSE(finished.Wait(0));
}

TEST_F(ThreadingTest, ThreadContinuesAfterItsHandleIsClosed) {
  const NativeHandle thread = Start(Count, &counter);
  ASSERT_NE(thread, nullptr);
  SystemThreading().CloseThread(thread);
  EXPECT_TRUE(finished.Wait(Platform::kInfinite));
  EXPECT_EQ(counter, 1);
}

TEST_F(ThreadingTest, ManyThreadsComeAndGo) {
  constexpr int kThreads = 500;
  for (int i = 0; i < kThreads; ++i) {
    const Event ended(EventReset::Manual);
    const NativeHandle thread = SystemThreading().StartThread({Count, &counter, ended.Handle()});
    ASSERT_NE(thread, nullptr) << i;
    SystemThreading().JoinThread(thread, ended.Handle());
    SystemThreading().CloseThread(thread);
  }
  EXPECT_EQ(counter, kThreads);
}

}  // namespace
}  // namespace Vask::Tests
