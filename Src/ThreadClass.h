#pragma once

#include <memory>

#include "Src/Win32Task.h"
#include "platform/Event.h"

namespace Vask {

// An object with a thread of its own: idle, started, finished, and after Stop
// idle again.
//
// Start, Stop and the destructor are the owner's, one at a time. The class that
// derives from this one must stop the thread before its own parts are gone: a
// thread that is still there in this destructor is only reported as
// "+++ ASSERT(%s) failed at %s(%d)\n".
class ThreadClass {
 public:
  ThreadClass(const ThreadClass&) = delete;
  ThreadClass& operator=(const ThreadClass&) = delete;

  // Starts the thread and waits until it runs. False when there is a thread
  // already, or when there is no memory or the system cannot create one, or the
  // events that it needs; then none is left, and it may be tried again.
  [[nodiscard]] bool Start();

  // Tells the body to end (OnStop), waits without limit until it has, and
  // forgets the thread. Does nothing without a thread. Returns at once when the
  // thread was killed by the end of the process. Waits for the body only, not
  // for the system's thread, so it may be called under the loader's lock.
  void Stop();

 protected:
  // `threading` must outlive this object.
  explicit ThreadClass(Platform::Threading& threading = Platform::SystemThreading());

  // The thread's body. Nothing may leave it by an exception.
  virtual void Run() = 0;
  // Called by Start on the owner's thread before the new thread is created.
  virtual void OnStart() {}
  // Called by Stop on the owner's thread: make Run return soon.
  virtual void OnStop() {}
  virtual ~ThreadClass();

  // Whether a thread belongs to this object. For the owner's thread only.
  [[nodiscard]] bool HasThread() const noexcept { return m_pTask != nullptr; }

 private:
  static void Enter(void* self) noexcept;

  std::unique_ptr<Win32Task> m_pTask;
  Platform::Event m_started;
  Platform::Event m_finished;
  Platform::Threading& m_threading;
};

}  // namespace Vask
