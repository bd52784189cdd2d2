#pragma once

#if defined(CORVANE_CHECK_LOCK_ORDER)
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#endif

namespace Vask::Platform {

// The one order in which a thread may take the module's locks: from the top of this
// list downwards. A lock that the thread holds already may be taken again at any
// time, because every lock is re-entrant.
//
// This excludes deadlocks: a thread that waits for a lock holds only locks above it.
//
// A new lock goes below every lock that can be held when it is taken, and above
// every lock that is taken while it is held.
enum class LockRank : unsigned char {
  Registrar,       // messages/Registrar; held for a whole dispatch, handlers included
  ErrorReport,     // messages/ErrorReport
  TimerService,    // Src/TimerService
  TrapQueue,       // agent/TrapQueue
  SequenceRows,    // the rows of a SEQUENCE variable
  LinkSending,     // net/JsonSocket; held while one frame is sent
  LinkHandle,      // net/InetSocket
  Singleton,       // Src/SingletonRef; held while an instance is constructed
  SingletonsList,  // Src/SingletonRef
  DailyLog,        // Src/DailyLog; held while one message is written
  LastError,       // Src/LogPrinter
  SocketStartUp,   // platform/win32/Sockets
};

// Two locks of this rank may be taken one in the other: a constructor may ask for
// other singletons. A circle among constructors would recurse without end in one
// thread alone, so it needs no check.
inline constexpr LockRank kRankThatNests = LockRank::Singleton;

#if defined(CORVANE_CHECK_LOCK_ORDER)

constexpr const char* LockName(LockRank rank) noexcept {
  switch (rank) {
    case LockRank::Registrar:
      return "registrar";
    case LockRank::ErrorReport:
      return "error report";
    case LockRank::TimerService:
      return "timer service";
    case LockRank::TrapQueue:
      return "trap queue";
    case LockRank::SequenceRows:
      return "rows of a SEQUENCE";
    case LockRank::LinkSending:
      return "link's sending";
    case LockRank::LinkHandle:
      return "link's handle";
    case LockRank::Singleton:
      return "singleton";
    case LockRank::SingletonsList:
      return "list of singletons";
    case LockRank::DailyLog:
      return "daily log";
    case LockRank::LastError:
      return "printer's last error";
    case LockRank::SocketStartUp:
      return "start-up of sockets";
  }
  return "unknown";
}

// The locks that one thread holds, in the order in which it took them. A lock that
// breaks the order ends the process, with one line on standard error that names it
// and a lock that must come after it.
class HeldLocks {
 public:
  // Call this before the thread waits for the lock, so that a deadlock is reported
  // and does not happen.
  void Take(const void* lock, LockRank rank) noexcept {
    if (!Holds(lock)) {
      for (std::size_t i = 0; i < m_count; ++i) {
        if (!MayFollow(m_locks[i].rank, rank)) Fail(m_locks[i].rank, rank);
      }
    }
    if (m_count == kMost) Fail(m_locks[kMost - 1].rank, rank);
    m_locks[m_count++] = {lock, rank};
  }

  void Release(const void* lock) noexcept {
    std::size_t last = m_count;
    while (last > 0 && m_locks[last - 1].lock != lock) --last;
    if (last == 0) return;
    std::move(m_locks + last, m_locks + m_count, m_locks + last - 1);
    --m_count;
  }

 private:
  struct Held {
    const void* lock;
    LockRank rank;
  };
  static constexpr std::size_t kMost = 64;  // far more than any path takes

  [[nodiscard]] bool Holds(const void* lock) const noexcept {
    return std::any_of(m_locks, m_locks + m_count,
                       [lock](const Held& held) { return held.lock == lock; });
  }
  [[nodiscard]] static bool MayFollow(LockRank held, LockRank next) noexcept {
    return next > held || (next == held && next == kRankThatNests);
  }
  [[noreturn]] static void Fail(LockRank held, LockRank next) noexcept {
    static_cast<void>(std::fprintf(stderr, "Lock order: '%s' taken while '%s' is held\n",
                                   LockName(next), LockName(held)));
    std::abort();
  }

  Held m_locks[kMost] = {};
  std::size_t m_count = 0;
};

// On Linux a thread_local without a destructor leaves nothing behind when the module is
// unloaded. The DLL must have none, so this check is never part of it.
inline constinit thread_local HeldLocks heldLocks;

#endif

}  // namespace Vask::Platform
