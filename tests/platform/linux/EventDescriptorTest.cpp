#include "platform/linux/EventDescriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <thread>

#include "platform/Event.h"
#include "tests/platform/linux/BlockedThread.h"

namespace Vask::Tests {
namespace {

using Platform::Event;
using Platform::EventReset;

bool IsReadable(const Event& event) {
  pollfd waited{Platform::EventDescriptor(event.Handle()), POLLIN, 0};
  return poll(&waited, 1, 0) == 1 && (waited.revents & POLLIN) != 0;
}

TEST(EventDescriptorTest, HandleLeadsToDescriptorAndKind) {
  for (const int descriptor : {0, 1, 7, 1'000'000}) {
    for (const EventReset reset : {EventReset::Automatic, EventReset::Manual}) {
      const Platform::NativeHandle handle = Platform::EventFromDescriptor(descriptor, reset);
      EXPECT_NE(handle, nullptr);
      EXPECT_EQ(Platform::EventDescriptor(handle), descriptor);
      EXPECT_EQ(Platform::EventKind(handle), reset);
    }
  }
}

// A service may run without a standard input, whose descriptor is then free.
TEST(EventDescriptorTest, EventMayHaveTheDescriptorZero) {
  const int input = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
  close(STDIN_FILENO);
  {
    Event event(EventReset::Automatic);
    EXPECT_TRUE(event.Valid());
    EXPECT_EQ(Platform::EventDescriptor(event.Handle()), 0);
    event.Set();
    EXPECT_TRUE(event.Wait(0));
  }
  if (input >= 0) {
    dup2(input, STDIN_FILENO);
    close(input);
  }
}

TEST(EventDescriptorTest, DescriptorIsReadableWhileSignalled) {
  Event event(EventReset::Automatic);
  EXPECT_FALSE(IsReadable(event));
  event.Set();
  EXPECT_TRUE(IsReadable(event));
  EXPECT_TRUE(event.Wait(0));
  EXPECT_FALSE(IsReadable(event));
}

TEST(EventDescriptorTest, ManualEventStaysReadable) {
  Event event(EventReset::Manual);
  event.Set();
  EXPECT_TRUE(event.Wait(0));
  EXPECT_TRUE(IsReadable(event));
}

// How often this thread has left the processor to wait for something.
long Waits() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw;
}

TEST(EventDescriptorTest, WaitLeavesTheProcessorToOthers) {
  Event event(EventReset::Automatic);
  const long before = Waits();
  EXPECT_FALSE(event.Wait(50));
  EXPECT_GT(Waits(), before);
}

TEST(EventDescriptorTest, WaitWithoutLimitLeavesTheProcessorToOthers) {
  Event event(EventReset::Automatic);
  std::thread setter([&event, waiter = gettid()] {
    EXPECT_TRUE(AwaitBlockedIn(SYS_poll, waiter));
    event.Set();
  });
  const long before = Waits();
  EXPECT_TRUE(event.Wait(Platform::kInfinite));
  EXPECT_GT(Waits(), before);
  setter.join();
}

}  // namespace
}  // namespace Vask::Tests
