#include "platform/Threading.h"

#include <windows.h>

#include <new>

#undef CreateEvent  // <windows.h> makes the operation's name a macro

namespace Vask::Platform {

namespace {

// Does everything that a thread does in this module but its last step. Returns the
// event to signal, or null for a thread without an argument. It must not be inlined:
// ThreadMain needs no stack frame only as long as it contains nothing else.
[[gnu::noinline]] HANDLE RunEntry(void* record) noexcept {
  const ThreadEntry entry = *static_cast<const ThreadEntry*>(record);
  delete static_cast<ThreadEntry*>(record);
  if (entry.argument == nullptr) return nullptr;
  entry.run(entry.argument);
  return entry.finished;
}

// The thread's first and last function in this module. A thread that waits for the
// finished event may unmap the module as soon as the event is signalled, so no
// instruction may follow here: the call of SetEvent must be a jump, which returns
// directly to the system. Its result, TRUE, is the exit code 1. The attributes
// produce the jump in unoptimised builds, too; a test finds it in the machine code.
[[gnu::optimize("O2"), gnu::no_stack_protector]] DWORD WINAPI ThreadMain(void* record) {
  auto* const finished = RunEntry(record);
  if (finished == nullptr) return 0;
  return static_cast<DWORD>(::SetEvent(finished));
}

class WindowsThreading final : public Threading {
 public:
  NativeHandle CreateEvent(EventReset reset) noexcept override {
    return CreateEventA(nullptr, reset == EventReset::Manual, FALSE, nullptr);
  }

  void CloseEvent(NativeHandle event) noexcept override { CloseHandle(event); }

  void SetEvent(NativeHandle event) noexcept override { ::SetEvent(event); }

  bool WaitEvent(NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    return WaitForSingleObject(event, timeoutMs) == WAIT_OBJECT_0;
  }

  NativeHandle StartThread(const ThreadEntry& entry) noexcept override {
    auto* const record = new (std::nothrow) ThreadEntry(entry);
    if (record == nullptr) return nullptr;
    auto* const thread = CreateThread(nullptr, kThreadStackBytes, ThreadMain, record,
                                      STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr) {
      delete record;
      return nullptr;
    }
    SetThreadPriority(thread, THREAD_PRIORITY_NORMAL);
    return thread;
  }

  void JoinThread(NativeHandle thread, NativeHandle finished) noexcept override {
    const HANDLE either[] = {finished, thread};
    WaitForMultipleObjects(2, either, FALSE, INFINITE);
  }

  void CloseThread(NativeHandle thread) noexcept override { CloseHandle(thread); }
};

constinit WindowsThreading g_threading;

}  // namespace

Threading& SystemThreading() noexcept {
  return g_threading;
}

}  // namespace Vask::Platform
