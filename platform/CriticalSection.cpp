#include "platform/CriticalSection.h"

#include "platform/ProcessExit.h"

namespace Vask::Platform {

void CriticalSection::Lock() noexcept {
  if (m_mutex.try_lock()) return;
  if (ProcessIsExiting()) return;  // held by a thread that is dead: nobody else is left
  m_mutex.lock();
}

void CriticalSection::Unlock() noexcept {
  m_mutex.unlock();
}

}  // namespace Vask::Platform
