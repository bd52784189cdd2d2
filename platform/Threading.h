#pragma once

#include <cstddef>
#include <cstdint>

namespace Vask::Platform {

// The operating system's own handle: a HANDLE on Windows; elsewhere an
// eventfd (for an event) or a small heap record (for a thread), cast to a
// pointer.
using NativeHandle = void*;

inline constexpr std::uint32_t kInfinite = 0xFFFFFFFFu;

enum class EventReset { Automatic, Manual };

// A new thread calls run(argument) and then, as its very last act, signals
// `finished`. No instruction of this module runs on that thread after the
// signal, so a thread that has seen the signal may unmap the module. A null
// argument ends the thread at once, with exit code 0 and without the signal;
// otherwise the exit code is 1.
struct ThreadEntry {
  void (*run)(void* argument) noexcept;
  void* argument;
  NativeHandle finished;
};

// Events and threads. Any thread may call any operation.
class Threading {
 public:
  // Creates an unnamed event that is not signalled. Null if the system cannot.
  [[nodiscard]] virtual NativeHandle CreateEvent(EventReset reset) noexcept = 0;
  virtual void CloseEvent(NativeHandle event) noexcept = 0;
  virtual void SetEvent(NativeHandle event) noexcept = 0;

  // Waits until the event is signalled and returns true; an automatic event is
  // then no longer signalled. Returns false after the timeout.
  [[nodiscard]] virtual bool WaitEvent(NativeHandle event, std::uint32_t timeoutMs) noexcept = 0;

  // Starts a thread with a stack of kThreadStackBytes and normal priority.
  // The entry is copied. Null if the thread cannot be created.
  [[nodiscard]] virtual NativeHandle StartThread(const ThreadEntry& entry) noexcept = 0;

  // Waits until the thread's entry has signalled `finished` or the thread is dead. (At
  // the end of a Windows process the system kills the thread, which then signals
  // nothing.) Does not wait for the thread's own end, which needs the loader's lock that
  // the caller may hold.
  virtual void JoinThread(NativeHandle thread, NativeHandle finished) noexcept = 0;

  // Closes the handle. The thread continues if it still runs.
  virtual void CloseThread(NativeHandle thread) noexcept = 0;

 protected:
  ~Threading() = default;
};

// The default stack size is the host program's and may be anything, so the
// agent's threads reserve this much.
inline constexpr std::size_t kThreadStackBytes = std::size_t{1024} * 1024;

// The machine's threads and events. The object lives as long as the process.
Threading& SystemThreading() noexcept;

}  // namespace Vask::Platform
