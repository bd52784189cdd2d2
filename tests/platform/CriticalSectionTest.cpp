#include "platform/CriticalSection.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>
#include <vector>

#include "platform/Event.h"
#include "platform/ProcessExit.h"

namespace Vask::Tests {
namespace {

using Platform::CriticalSection;
using Platform::CriticalSectionLock;
using Platform::Event;
using Platform::EventReset;

constexpr std::uint32_t kPatienceMs = 20'000;
constexpr std::uint32_t kGlanceMs = 20;

TEST(CriticalSectionTest, KeepsThreadsApart) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 5'000;
  CriticalSection section;
  int counter = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const CriticalSectionLock lock(section);
        ++counter;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, kThreads * kRounds);
}

// Locks and unlocks once more. Not analysed: clang knows no re-entrant locks
// and would want to be sure that the caller holds it not.
void LockWithin(CriticalSection& section) VASK_NO_THREAD_SAFETY_ANALYSIS {
  const CriticalSectionLock inner(section);
}

TEST(CriticalSectionTest, HolderMayLockAgain) {
  CriticalSection section;
  Event done(EventReset::Manual);
  std::thread holder([&] {
    const CriticalSectionLock outer(section);
    LockWithin(section);
    LockWithin(section);
    done.Set();
  });
  EXPECT_TRUE(done.Wait(kPatienceMs));
  holder.join();
}

TEST(CriticalSectionTest, InnerUnlockDoesNotLetOthersIn) {
  CriticalSection section;
  Event entered(EventReset::Manual);
  std::thread other;
  {
    const CriticalSectionLock outer(section);
    LockWithin(section);
    other = std::thread([&] {
      const CriticalSectionLock lock(section);
      entered.Set();
    });
    EXPECT_FALSE(entered.Wait(kGlanceMs));
  }
  EXPECT_TRUE(entered.Wait(kPatienceMs));
  other.join();
}

class ProcessExitDeathTest : public testing::Test {
 protected:
  ProcessExitDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// Has a thread lock that will never unlock, as one that was killed.
void LockForEver(CriticalSection& section) {
  Event locked(EventReset::Manual);
  std::thread([&] {
    const CriticalSectionLock lock(section);
    locked.Set();
    Event never(EventReset::Manual);
    static_cast<void>(never.Wait(Platform::kInfinite));
  }).detach();
  if (!locked.Wait(kPatienceMs)) std::_Exit(1);
}

TEST_F(ProcessExitDeathTest, LockOfADeadThreadIsPassedOver) {
  const auto child = [] {
    CriticalSection section;
    LockForEver(section);
    Platform::MarkProcessExiting();
    { const CriticalSectionLock lock(section); }
    { const CriticalSectionLock again(section); }
    std::_Exit(42);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(42), "");
}

TEST_F(ProcessExitDeathTest, LockHeldFromBeforeIsLeftWithoutHarm) {
  const auto child = [] {
    CriticalSection section;
    {
      const CriticalSectionLock lock(section);
      Platform::MarkProcessExiting();
    }
    { const CriticalSectionLock again(section); }
    std::_Exit(42);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(42), "");
}

TEST_F(ProcessExitDeathTest, ProcessIsExitingOnlyOnceMarked) {
  ASSERT_FALSE(Platform::ProcessIsExiting());
  const auto child = [] {
    Platform::MarkProcessExiting();
    std::_Exit(Platform::ProcessIsExiting() ? 42 : 1);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(42), "");
}

}  // namespace
}  // namespace Vask::Tests
