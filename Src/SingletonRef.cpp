#include "Src/SingletonRef.h"

namespace Vask::Thread {

namespace {

constinit Platform::CriticalSection g_lock(Platform::LockRank::SingletonsList);
constinit SingletonLink* g_newest VASK_GUARDED_BY(g_lock) = nullptr;

SingletonLink* TakeNewest() noexcept {
  const Platform::CriticalSectionLock lock(g_lock);
  SingletonLink* const newest = g_newest;
  if (newest != nullptr) g_newest = newest->older;
  return newest;
}

}  // namespace

void RegisterSingleton(SingletonLink& link) noexcept {
  const Platform::CriticalSectionLock lock(g_lock);
  link.older = g_newest;
  g_newest = &link;
}

void DestroySingletons() noexcept {
  while (SingletonLink* const newest = TakeNewest()) newest->destroy();
}

}  // namespace Vask::Thread
