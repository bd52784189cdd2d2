#include <gtest/gtest.h>
#include <windows.h>

#undef CreateEvent  // <windows.h> makes the operation's name a macro

#include "platform/Event.h"
#include "platform/Threading.h"

namespace Vask::Tests {
namespace {

using Platform::Event;
using Platform::EventReset;
using Platform::NativeHandle;

constexpr DWORD kPatienceMs = 20'000;

class WindowsThreadTest : public testing::Test {
 protected:
  NativeHandle Start(void (*run)(void*) noexcept, void* argument) {
    return threading.StartThread({run, argument, finished.Handle()});
  }
  DWORD ExitCode(HANDLE thread) {
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(thread, kPatienceMs), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    return code;
  }

  Platform::Threading& threading = Platform::SystemThreading();
  Event finished{EventReset::Manual};
};

TEST_F(WindowsThreadTest, ExitCodeIsOneAfterTheBody) {
  int ran = 0;
  const NativeHandle thread =
      Start([](void* flag) noexcept { *static_cast<int*>(flag) = 1; }, &ran);
  EXPECT_EQ(ExitCode(thread), 1u);
  EXPECT_EQ(ran, 1);
  threading.CloseThread(thread);
}

TEST_F(WindowsThreadTest, ExitCodeIsZeroForANullArgument) {
  const NativeHandle thread = Start([](void*) noexcept {}, nullptr);
  EXPECT_EQ(ExitCode(thread), 0u);
  threading.CloseThread(thread);
}

TEST_F(WindowsThreadTest, HasNormalPriority) {
  Event mayEnd(EventReset::Manual);
  const auto body = [](void* event) noexcept {
    static_cast<void>(static_cast<Event*>(event)->Wait(Platform::kInfinite));
  };
  const NativeHandle thread = Start(body, &mayEnd);
  EXPECT_EQ(GetThreadPriority(thread), THREAD_PRIORITY_NORMAL);
  mayEnd.Set();
  threading.JoinThread(thread, finished.Handle());
  threading.CloseThread(thread);
}

TEST_F(WindowsThreadTest, HasAStackOfTheAgentsSize) {
  std::size_t stackBytes = 0;
  const auto measure = [](void* result) noexcept {
    MEMORY_BASIC_INFORMATION region{};
    VirtualQuery(&region, &region, sizeof region);
    const auto* const stack = static_cast<const char*>(region.AllocationBase);
    const char* end = stack;
    while (VirtualQuery(end, &region, sizeof region) != 0 && region.AllocationBase == stack) {
      end += region.RegionSize;
    }
    *static_cast<std::size_t*>(result) = static_cast<std::size_t>(end - stack);
  };
  const NativeHandle thread = Start(measure, &stackBytes);
  threading.JoinThread(thread, finished.Handle());
  threading.CloseThread(thread);
  EXPECT_EQ(stackBytes, Platform::kThreadStackBytes);
}

TEST_F(WindowsThreadTest, JoinOfAKilledThreadReturnsWithoutItsSignal) {
  Event running(EventReset::Manual);
  const auto body = [](void* event) noexcept {
    static_cast<Event*>(event)->Set();
    Sleep(INFINITE);
  };
  const NativeHandle thread = Start(body, &running);
  ASSERT_TRUE(running.Wait(kPatienceMs));
  ASSERT_TRUE(TerminateThread(thread, 1));
  threading.JoinThread(thread, finished.Handle());
  EXPECT_FALSE(finished.Wait(0));
  threading.CloseThread(thread);
}

}  // namespace
}  // namespace Vask::Tests
