#pragma once

#include <atomic>
#include <new>

#include "platform/CriticalSection.h"

namespace Vask::Thread {

// Destroys every singleton, the one that was completed last first. Called by
// the module hook when the module is unloaded and all of its threads have
// ended; never when the process ends (see SingletonRef). Not to be called
// beside any other use of a singleton.
//
// A destructor that asks for a singleton which is already gone gets a new one,
// and that one is destroyed as well before this returns. Asking for an
// instance later constructs anew too; what is constructed after the last call
// stays.
void DestroySingletons() noexcept;

// An entry in the list of living singletons. Part of SingletonRef.
struct SingletonLink {
  void (*destroy)() noexcept = nullptr;
  SingletonLink* older = nullptr;
};

// Puts an entry that is in no list at the newest end. Part of SingletonRef.
void RegisterSingleton(SingletonLink& link) noexcept;

// Where the one T lives. All zeros until first use and without a destructor, so
// that nothing of it runs while the module is loaded or after its hook.
template <class T>
struct SingletonSlot {
  Platform::CriticalSection lock{Platform::LockRank::Singleton};
  std::atomic<T*> instance{nullptr};
  SingletonLink link;
  alignas(T) unsigned char storage[sizeof(T)] = {};
};

template <class T>
inline constinit SingletonSlot<T> singletonSlot{};

// The one T of the process, built on first use by its default constructor.
// Instance() may be called from any thread and blocks only while the first call
// constructs the T. A constructor may ask for other singletons: those then live
// longer than its own. It must not ask for itself.
//
// The T is destroyed when the module is unloaded, in reverse order of
// construction, after its threads have ended. When the whole process ends it is
// left alone: on Windows the threads were killed wherever they stood and locks
// may be held for ever; elsewhere they may still run.
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

// The instance is forgotten only after its destructor: what that calls may
// still ask for it.
template <class T>
void SingletonRef<T>::Destroy() noexcept {
  SingletonSlot<T>& slot = singletonSlot<T>;
  slot.instance.load(std::memory_order_relaxed)->~T();
  slot.instance.store(nullptr, std::memory_order_relaxed);
}

}  // namespace Vask::Thread
