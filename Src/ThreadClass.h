#pragma once

#include <memory>

#include "Src/Win32Task.h"
#include "platform/Event.h"

namespace Vask {

// An object with a thread of its own. It is idle, started, finished, and after Stop idle
// again.
//
// Only the owner may call Start, Stop and the destructor, one at a time. A derived class
// must stop the thread before it destroys its own members. If there still is a thread in
// this destructor, it only logs "+++ ASSERT(%s) failed at %s(%d)\n".
class ThreadClass {
 public:
  ThreadClass(const ThreadClass&) = delete;
  ThreadClass& operator=(const ThreadClass&) = delete;

  // Starts the thread and waits until it runs. Returns false if there is a thread
  // already. Returns false also if there is no memory or the system cannot create the
  // thread or its events; then there is no thread, and the caller may try again.
  [[nodiscard]] bool Start();

  // Tells the body to end (OnStop), waits without limit until it has ended, and drops
  // the thread. Does nothing without a thread. Returns at once if the end of the process
  // killed the thread. It waits for the body only, not for the system's thread, so it
  // may be called under the loader's lock.
  void Stop();

 protected:
  // `threading` must outlive this object.
  explicit ThreadClass(Platform::Threading& threading = Platform::SystemThreading());

  // The thread's body. It must not throw.
  virtual void Run() = 0;
  // Start calls this on the owner's thread before it creates the new thread.
  virtual void OnStart() {}
  // Stop calls this on the owner's thread. It must make Run return soon.
  virtual void OnStop() {}
  virtual ~ThreadClass();

  // Whether this object has a thread. Only the owner's thread may call it.
  [[nodiscard]] bool HasThread() const noexcept { return m_pTask != nullptr; }

 private:
  static void Enter(void* self) noexcept;

  std::unique_ptr<Win32Task> m_pTask;
  Platform::Event m_started;
  Platform::Event m_finished;
  Platform::Threading& m_threading;
};

}  // namespace Vask
