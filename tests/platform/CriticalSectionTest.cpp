#include "platform/CriticalSection.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <thread>
#include <utility>
#include <vector>

#include "platform/Event.h"
#include "platform/ProcessExit.h"

namespace Vask::Tests {
namespace {

using Platform::CriticalSection;
using Platform::CriticalSectionLock;
using Platform::Event;
using Platform::EventReset;
using Platform::LockRank;

constexpr std::uint32_t kPatienceMs = 20'000;
constexpr std::uint32_t kGlanceMs = 20;

TEST(CriticalSectionTest, KeepsThreadsApart) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 5'000;
  CriticalSection section{LockRank::Registrar};
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

// Locks and unlocks once more. Not analysed, because clang knows no re-entrant locks
// and would want the caller not to hold it.
void LockWithin(CriticalSection& section) VASK_NO_THREAD_SAFETY_ANALYSIS {
  const CriticalSectionLock inner(section);
}

TEST(CriticalSectionTest, HolderMayLockAgain) {
  CriticalSection section{LockRank::Registrar};
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
  CriticalSection section{LockRank::Registrar};
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

// Locks on a thread that never unlocks, like a thread that was killed.
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
    CriticalSection section{LockRank::Registrar};
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
    CriticalSection section{LockRank::Registrar};
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

#if !defined(CORVANE_CHECK_LOCK_ORDER) && defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#error "the builds with a sanitizer must check the order of locks"
#endif
#endif

#if defined(CORVANE_CHECK_LOCK_ORDER)

class LockOrderTest : public testing::Test {
 protected:
  LockOrderTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  CriticalSection m_traps{LockRank::TrapQueue};
  CriticalSection m_sending{LockRank::LinkSending};
  CriticalSection m_log{LockRank::DailyLog};
};

using LockOrderDeathTest = LockOrderTest;

TEST_F(LockOrderDeathTest, TakingALockOfALowerRankEndsTheProcessAndNamesBoth) {
  const auto child = [this] {
    const CriticalSectionLock outer(m_log);
    const CriticalSectionLock inner(m_traps);
  };
  EXPECT_DEATH(child(), "Lock order: 'trap queue' taken while 'daily log' is held");
}

TEST_F(LockOrderDeathTest, TheLocksBelowTheLastOneCountToo) {
  const auto child = [this] {
    const CriticalSectionLock sending(m_sending);
    const CriticalSectionLock log(m_log);
    LockWithin(m_sending);
    const CriticalSectionLock traps(m_traps);
  };
  EXPECT_DEATH(child(), "Lock order: 'trap queue' taken while 'link's sending' is held");
}

TEST_F(LockOrderDeathTest, TakingAnotherLockOfTheSameRankEndsTheProcess) {
  CriticalSection otherLog{LockRank::DailyLog};
  const auto child = [&] {
    const CriticalSectionLock outer(m_log);
    const CriticalSectionLock inner(otherLog);
  };
  EXPECT_DEATH(child(), "Lock order: 'daily log' taken while 'daily log' is held");
}

TEST_F(LockOrderTest, RisingRanksAndLocksHeldAlreadyMayBeTaken) {
  const CriticalSectionLock traps(m_traps);
  const CriticalSectionLock sending(m_sending);
  const CriticalSectionLock log(m_log);
  LockWithin(m_traps);
  LockWithin(m_log);
}

TEST_F(LockOrderTest, ALockThatWasReleasedCountsNoMore) {
  { const CriticalSectionLock log(m_log); }
  const CriticalSectionLock traps(m_traps);
  { const CriticalSectionLock log(m_log); }
  const CriticalSectionLock sending(m_sending);
}

TEST_F(LockOrderTest, LocksOfOtherThreadsDoNotCount) {
  const CriticalSectionLock log(m_log);
  std::thread([this] { const CriticalSectionLock traps(m_traps); }).join();
}

TEST_F(LockOrderTest, SingletonsMayBeConstructedOneInAnother) {
  static CriticalSection outer{LockRank::Singleton};
  static CriticalSection inner{LockRank::Singleton};
  const CriticalSectionLock outerLock(outer);
  const CriticalSectionLock innerLock(inner);
}

TEST(LockNameTest, EachRankHasItsName) {
  const std::pair<LockRank, const char*> kNames[] = {
      {LockRank::Registrar, "registrar"},
      {LockRank::ErrorReport, "error report"},
      {LockRank::TimerService, "timer service"},
      {LockRank::TrapQueue, "trap queue"},
      {LockRank::SequenceRows, "rows of a SEQUENCE"},
      {LockRank::LinkSending, "link's sending"},
      {LockRank::LinkHandle, "link's handle"},
      {LockRank::Singleton, "singleton"},
      {LockRank::SingletonsList, "list of singletons"},
      {LockRank::DailyLog, "daily log"},
      {LockRank::LastError, "printer's last error"},
      {LockRank::SocketStartUp, "start-up of sockets"},
  };
  for (const auto& [rank, name] : kNames) EXPECT_STREQ(Platform::LockName(rank), name);
}

// The tests below need no real locks: the addresses stand for them.
class HeldLocksDeathTest : public testing::Test {
 protected:
  HeldLocksDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  const int m_traps = 0;
  const int m_sending = 0;
  const int m_log = 0;
  const int m_other = 0;
  Platform::HeldLocks m_held;
};

TEST_F(HeldLocksDeathTest, LockReleasedBelowOthersLeavesThemHeld) {
  m_held.Take(&m_traps, LockRank::TrapQueue);
  m_held.Take(&m_sending, LockRank::LinkSending);
  m_held.Take(&m_log, LockRank::DailyLog);
  m_held.Release(&m_traps);
  EXPECT_EXIT(m_held.Take(&m_other, LockRank::LinkHandle), testing::KilledBySignal(SIGABRT),
              "'link's handle' taken while 'daily log' is held");
  m_held.Release(&m_log);
  EXPECT_EXIT(m_held.Take(&m_other, LockRank::TrapQueue), testing::KilledBySignal(SIGABRT),
              "'trap queue' taken while 'link's sending' is held");
  m_held.Release(&m_sending);
  m_held.Take(&m_other, LockRank::Registrar);
}

TEST_F(HeldLocksDeathTest, ReleaseOfALockThatIsNotHeldChangesNothing) {
  m_held.Release(&m_other);
  m_held.Take(&m_log, LockRank::DailyLog);
  m_held.Release(&m_other);
  EXPECT_DEATH(m_held.Take(&m_traps, LockRank::TrapQueue),
               "'trap queue' taken while 'daily log' is held");
}

TEST_F(HeldLocksDeathTest, AThreadMayHold64LocksAndNoMore) {
  for (int i = 0; i < 63; ++i) m_held.Take(&m_traps, LockRank::TrapQueue);
  m_held.Take(&m_sending, LockRank::LinkSending);
  EXPECT_DEATH(m_held.Take(&m_log, LockRank::DailyLog),
               "'daily log' taken while 'link's sending' is held");
}

#endif

}  // namespace
}  // namespace Vask::Tests
