#include "Src/ThreadClass.h"

#include <new>
#include <utility>

#include "Src/LogPrinter.h"

namespace Vask {

// The destructor may log. The call here makes the printer live longer.
ThreadClass::ThreadClass(Platform::Threading& threading)
    : m_started(Platform::EventReset::Automatic, threading),
      m_finished(Platform::EventReset::Automatic, threading),
      m_threading(threading) {
  LogPrinter::Instance();
}

ThreadClass::~ThreadClass() {
  if (m_pTask == nullptr) return;
  LogPrinter::Instance().Error("+++ ASSERT(%s) failed at %s(%d)\n", "m_pTask==0",
                               "..\\..\\Src\\ThreadClass", 26);
}

bool ThreadClass::Start() {
  if (m_pTask != nullptr || !m_started.Ensure() || !m_finished.Ensure()) return false;
  OnStart();
  const Platform::ThreadEntry entry{&Enter, this, m_finished.Handle()};
  std::unique_ptr<Win32Task> task(new (std::nothrow) Win32Task(m_threading, entry));
  if (task == nullptr || !task->Valid()) return false;
  m_pTask = std::move(task);
  return m_started.Wait(Platform::kInfinite);
}

void ThreadClass::Stop() {
  if (m_pTask == nullptr) return;
  OnStop();
  m_threading.JoinThread(m_pTask->Handle(), m_finished.Handle());
  m_pTask.reset();
}

// The platform's thread entry calls this with an argument that is not null. After it
// has returned, the entry signals `finished` and ends the thread with 1.
void ThreadClass::Enter(void* self) noexcept {
  auto* const thread = static_cast<ThreadClass*>(self);
  thread->m_started.Set();
  thread->Run();
}

}  // namespace Vask
