// A signal that arrives while a thread waits for an event does not make the wait longer.

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>

#include <chrono>
#include <thread>

#include "platform/Event.h"
#include "tests/platform/linux/Interruption.h"

namespace Vask::Tests {
namespace {

TEST(InterruptedWaitTest, EndsAtItsTime) {
  using Time = std::chrono::steady_clock;
  using namespace std::chrono_literals;
  const Interruption interruption;
  Platform::Event never(Platform::EventReset::Manual);
  const auto start = Time::now();
  bool signalled = true;
  std::thread waiter = Interruption::Run(SYS_poll, [&] { signalled = never.Wait(1'000); });
  std::this_thread::sleep_until(start + 800ms);  // most of its time is over
  pthread_kill(waiter.native_handle(), SIGUSR1);
  waiter.join();
  EXPECT_FALSE(signalled);
  EXPECT_GE(Time::now() - start, 999ms);  // the clock of the wait counts whole milliseconds
  EXPECT_LT(Time::now() - start, 2'500ms);
}

}  // namespace
}  // namespace Vask::Tests
