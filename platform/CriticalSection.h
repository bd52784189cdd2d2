#pragma once

#if defined(_WIN32)
#include <atomic>
#include <cstdint>
#else
#include <mutex>
#endif

#include "platform/LockRank.h"
#include "platform/ProcessExit.h"

// Names for clang's thread-safety attributes, which -Wthread-safety checks. They are
// empty for other compilers.
#if defined(__clang__)
#define VASK_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define VASK_THREAD_ATTRIBUTE(x)
#endif

#define VASK_CAPABILITY(name) VASK_THREAD_ATTRIBUTE(capability(name))
#define VASK_SCOPED_CAPABILITY VASK_THREAD_ATTRIBUTE(scoped_lockable)
#define VASK_GUARDED_BY(lock) VASK_THREAD_ATTRIBUTE(guarded_by(lock))
#define VASK_REQUIRES(...) VASK_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define VASK_EXCLUDES(...) VASK_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define VASK_ACQUIRE(...) VASK_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define VASK_RELEASE(...) VASK_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define VASK_NO_THREAD_SAFETY_ANALYSIS VASK_THREAD_ATTRIBUTE(no_thread_safety_analysis)

namespace Vask::Platform {

// A re-entrant lock with a place in the order of locks (platform/LockRank.h). Any
// thread may use it. Constructing and destroying it allocates and frees nothing, so
// objects with static lifetime may hold one.
//
// Native builds with CORVANE_CHECK_LOCK_ORDER (the presets debug, asan and tsan) end
// the process if a thread takes locks out of order.
//
// When a Windows process ends, Windows kills every other thread before it calls the
// module's hook, possibly while one of them holds a lock. From the moment that
// ProcessIsExiting() returns true, only one thread is left. Then Lock and Unlock do
// nothing, even if a killed thread holds the lock.
class VASK_CAPABILITY("mutex") CriticalSection {
 public:
#if defined(CORVANE_CHECK_LOCK_ORDER)
  explicit constexpr CriticalSection(LockRank rank) noexcept : m_rank(rank) {}
#else
  explicit constexpr CriticalSection(LockRank) noexcept {}
#endif
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  // Waits without limit for other threads. The holder may lock again, and must
  // unlock as often as it locked.
  void Lock() noexcept VASK_ACQUIRE();
  void Unlock() noexcept VASK_RELEASE();

 private:
#if defined(_WIN32)
  // Not std::recursive_mutex, which allocates at its first use and never frees:
  // a module that is loaded and unloaded often would leave that behind.
  void* m_slimLock = nullptr;              // an SRWLOCK
  std::atomic<std::uint32_t> m_holder{0};  // id of the thread that holds it, else 0
  std::uint32_t m_depth = 0;               // for the holder alone
#else
  std::recursive_mutex m_mutex;
#if defined(CORVANE_CHECK_LOCK_ORDER)
  const LockRank m_rank;
#endif
#endif
};

#if !defined(_WIN32)
inline void CriticalSection::Lock() noexcept {
  if (ProcessIsExiting()) return;
#if defined(CORVANE_CHECK_LOCK_ORDER)
  heldLocks.Take(this, m_rank);
#endif
  m_mutex.lock();
}

inline void CriticalSection::Unlock() noexcept {
  if (ProcessIsExiting()) return;
  m_mutex.unlock();
#if defined(CORVANE_CHECK_LOCK_ORDER)
  heldLocks.Release(this);
#endif
}
#endif

// Holds a CriticalSection for a scope.
class VASK_SCOPED_CAPABILITY CriticalSectionLock {
 public:
  explicit CriticalSectionLock(CriticalSection& section) noexcept VASK_ACQUIRE(section)
      : m_section(section) {
    m_section.Lock();
  }
  ~CriticalSectionLock() VASK_RELEASE() { m_section.Unlock(); }
  CriticalSectionLock(const CriticalSectionLock&) = delete;
  CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

 private:
  CriticalSection& m_section;
};

}  // namespace Vask::Platform
