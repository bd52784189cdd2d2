#pragma once

#include <mutex>

#include "platform/ThreadAnnotations.h"

namespace Vask::Platform {

// A re-entrant lock. Any thread may use it; constructing it allocates nothing
// and cannot fail, so objects with static lifetime may hold one.
//
// When a Windows process ends, every other thread is killed before the module
// hears of it, possibly in the middle of a locked stretch. Lock therefore does
// not wait once ProcessIsExiting() says so (platform/ProcessExit.h): the only
// thread left takes what nobody can give back any more.
class VASK_CAPABILITY("mutex") CriticalSection {
 public:
  constexpr CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void Lock() noexcept VASK_ACQUIRE();
  void Unlock() noexcept VASK_RELEASE();

 private:
  std::recursive_mutex m_mutex;
};

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
