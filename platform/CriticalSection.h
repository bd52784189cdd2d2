#pragma once

#if defined(_WIN32)
#include <atomic>
#include <cstdint>
#else
#include <mutex>
#endif

#include "platform/ProcessExit.h"
#include "platform/ThreadAnnotations.h"

namespace Vask::Platform {

// A re-entrant lock. Any thread may use it; constructing and destroying it
// allocates and frees nothing, so objects with static lifetime may hold one.
//
// When a Windows process ends, every other thread is killed before the module
// hears of it, possibly in the middle of a locked stretch. From the moment that
// ProcessIsExiting() says so (platform/ProcessExit.h) only one thread is left,
// which nobody can disturb and nobody could let in: Lock and Unlock do nothing
// any more, whoever holds the lock.
class VASK_CAPABILITY("mutex") CriticalSection {
 public:
  constexpr CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  // Waits without limit for other threads. The holder may lock again, and
  // unlocks as often as it locked.
  void Lock() noexcept VASK_ACQUIRE();
  void Unlock() noexcept VASK_RELEASE();

 private:
#if defined(_WIN32)
  // Not std::recursive_mutex, which allocates at its first use and never frees:
  // a module that is loaded and unloaded often would leave that behind.
  void* m_slimLock = nullptr;              // an SRWLOCK
  std::atomic<std::uint32_t> m_holder{0};  // id of the thread that holds it, else 0
  std::uint32_t m_depth = 0;               // the holder's alone
#else
  std::recursive_mutex m_mutex;
#endif
};

#if !defined(_WIN32)
inline void CriticalSection::Lock() noexcept {
  if (!ProcessIsExiting()) m_mutex.lock();
}

inline void CriticalSection::Unlock() noexcept {
  if (!ProcessIsExiting()) m_mutex.unlock();
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
