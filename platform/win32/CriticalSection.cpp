#include "platform/CriticalSection.h"

#include <windows.h>

#include "platform/ProcessExit.h"

namespace Vask::Platform {

namespace {

// A null pointer is an SRWLOCK that no thread holds.
SRWLOCK* AsSlimLock(void*& lock) noexcept {
  static_assert(sizeof(SRWLOCK) == sizeof(void*));
  return reinterpret_cast<SRWLOCK*>(&lock);
}

}  // namespace

// A thread's id is stored only by that thread, so a relaxed load is enough to find out
// whether this thread is the holder.
void CriticalSection::Lock() noexcept {
  if (ProcessIsExiting()) return;
  const DWORD self = GetCurrentThreadId();
  if (m_holder.load(std::memory_order_relaxed) != self) {
    AcquireSRWLockExclusive(AsSlimLock(m_slimLock));
    m_holder.store(self, std::memory_order_relaxed);
  }
  ++m_depth;
}

void CriticalSection::Unlock() noexcept {
  if (ProcessIsExiting() || --m_depth != 0) return;
  m_holder.store(0, std::memory_order_relaxed);
  ReleaseSRWLockExclusive(AsSlimLock(m_slimLock));
}

}  // namespace Vask::Platform
