#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "platform/Event.h"
#include "platform/Threading.h"

namespace Vask::Tests {
namespace {

// What a thread finds out about itself.
struct Look {
  std::size_t stackBytes = 0;
  bool takesInterrupts = true;
  bool takesFaults = false;
};

void LookAround(void* argument) noexcept {
  auto& look = *static_cast<Look*>(argument);
  pthread_attr_t attributes;
  pthread_getattr_np(pthread_self(), &attributes);
  pthread_attr_getstacksize(&attributes, &look.stackBytes);
  pthread_attr_destroy(&attributes);
  sigset_t blocked;
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  look.takesInterrupts = sigismember(&blocked, SIGINT) == 0 || sigismember(&blocked, SIGTERM) == 0;
  look.takesFaults = sigismember(&blocked, SIGSEGV) == 0 && sigismember(&blocked, SIGABRT) == 0;
}

Look RunLook() {
  Look look;
  Platform::Event finished(Platform::EventReset::Manual);
  Platform::Threading& threading = Platform::SystemThreading();
  const Platform::NativeHandle thread =
      threading.StartThread({LookAround, &look, finished.Handle()});
  EXPECT_NE(thread, nullptr);
  threading.JoinThread(thread, finished.Handle());
  threading.CloseThread(thread);
  return look;
}

TEST(PosixThreadTest, HasAStackOfTheAgentsSize) {
  EXPECT_EQ(RunLook().stackBytes, Platform::kThreadStackBytes);
}

TEST(PosixThreadTest, LeavesTheHostsSignalsToTheHost) {
  sigset_t none;
  sigemptyset(&none);
  sigset_t before;
  pthread_sigmask(SIG_SETMASK, &none, &before);
  const Look look = RunLook();
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, &before, &after);
  EXPECT_FALSE(look.takesInterrupts);
  EXPECT_TRUE(look.takesFaults);
  for (int signal = 1; signal < 32; ++signal) EXPECT_EQ(sigismember(&after, signal), 0) << signal;
}

// The number of mapped pieces of memory; a stack is one of them.
std::ptrdiff_t Mappings() {
  std::ifstream maps("/proc/self/maps");
  return std::count(std::istreambuf_iterator<char>(maps), {}, '\n');
}

TEST(PosixThreadTest, ThreadThatNobodyJoinsLeavesNoStackBehind) {
  constexpr int kThreads = 100;
  Platform::Threading& threading = Platform::SystemThreading();
  const std::ptrdiff_t before = Mappings();
  for (int i = 0; i < kThreads; ++i) {
    Platform::Event finished(Platform::EventReset::Manual);
    const Platform::NativeHandle thread =
        threading.StartThread({[](void*) noexcept {}, &finished, finished.Handle()});
    ASSERT_NE(thread, nullptr);
    ASSERT_TRUE(finished.Wait(10'000));
    threading.CloseThread(thread);
  }
  EXPECT_LT(Mappings() - before, kThreads / 2);
}

}  // namespace
}  // namespace Vask::Tests
