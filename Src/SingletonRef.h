#pragma once

#include <atomic>
#include <new>

#include "platform/CriticalSection.h"

namespace Vask::Thread {

// Destroys every singleton, in reverse order of their completion. The module hook calls
// this when the module is unloaded and all of its threads have ended, and never when the
// process ends (see SingletonRef). No other thread may use a singleton meanwhile.
//
// If a destructor asks for a singleton that is already destroyed, it gets a new one,
// which is destroyed too before this returns. A later call of Instance() also constructs
// a new one. It stays if this function is not called again.
void DestroySingletons() noexcept;

// An entry in the list of living singletons. Part of SingletonRef.
struct SingletonLink {
  void (*destroy)() noexcept = nullptr;
  SingletonLink* older = nullptr;
};

// Appends an entry to the list. Part of SingletonRef.
void RegisterSingleton(SingletonLink& link) noexcept;

// The memory of the one T. It is constant-initialised and has no destructor, so that
// none of its code runs while the module is loaded or after its hook.
template <class T>
struct SingletonSlot {
  Platform::CriticalSection lock{Platform::LockRank::Singleton};
  std::atomic<T*> instance{nullptr};
  SingletonLink link;
  alignas(T) unsigned char storage[sizeof(T)] = {};
};

template <class T>
inline constinit SingletonSlot<T> singletonSlot{};

// The one T of the process. The first call of Instance() constructs it with its default
// constructor. Any thread may call Instance(); it blocks only while another thread
// constructs the T. A constructor may ask for other singletons, which then live longer
// than its own object. It must not ask for itself.
//
// When the module is unloaded, all singletons are destroyed in reverse order of
// construction, after the threads have ended. When the whole process ends, none is
// destroyed: on Windows the threads were killed at any point and locks may be held for
// ever; elsewhere the threads may still run.
template <class T>
class SingletonRef {
 public:
  static T& Instance();

 private:
  static void Destroy() noexcept;
};

template <class T>
T& SingletonRef<T>::Instance() {
  SingletonSlot<T>& slot = singletonSlot<T>;
  if (T* const instance = slot.instance.load(std::memory_order_acquire)) return *instance;
  const Platform::CriticalSectionLock lock(slot.lock);
  T* instance = slot.instance.load(std::memory_order_relaxed);
  if (instance == nullptr) {
    instance = ::new (slot.storage) T();
    slot.link.destroy = &Destroy;
    RegisterSingleton(slot.link);
    slot.instance.store(instance, std::memory_order_release);
  }
  return *instance;
}

// Sets the pointer to null only after the destructor, because the functions that the
// destructor calls may still ask for the instance.
template <class T>
void SingletonRef<T>::Destroy() noexcept {
  SingletonSlot<T>& slot = singletonSlot<T>;
  slot.instance.load(std::memory_order_relaxed)->~T();
  slot.instance.store(nullptr, std::memory_order_relaxed);
}

}  // namespace Vask::Thread
