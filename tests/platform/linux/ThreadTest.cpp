#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

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
  sigset_t before;
  pthread_sigmask(SIG_BLOCK, nullptr, &before);
  const Look look = RunLook();
  EXPECT_FALSE(look.takesInterrupts);
  EXPECT_TRUE(look.takesFaults);
  sigset_t after;
  pthread_sigmask(SIG_BLOCK, nullptr, &after);
  EXPECT_EQ(sigismember(&after, SIGINT), sigismember(&before, SIGINT));
}

}  // namespace
}  // namespace Vask::Tests
