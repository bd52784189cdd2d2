#include "platform/CriticalSection.h"

#include "platform/ProcessExit.h"

namespace Vask::Platform {

void CriticalSection::Lock() noexcept {
  if (!ProcessIsExiting()) m_mutex.lock();
}

void CriticalSection::Unlock() noexcept {
  if (!ProcessIsExiting()) m_mutex.unlock();
}

}  // namespace Vask::Platform
