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

// What a new thread does: run(argument), and then, as its very last act,
// signal `finished`. No instruction of this module runs on that thread after
// the signal, so whoever saw it may unmap the module. A null argument ends the
// thread at once, with exit code 0 and without the signal; otherwise the exit
// code is 1.
struct ThreadEntry {
  void (*run)(void* argument) noexcept;
  void* argument;
  NativeHandle finished;
};

// Events and threads. All operations may be called from any thread.
class Threading {
 public:
  // A new unnamed event, not signalled; null when the system has none left.
  [[nodiscard]] virtual NativeHandle CreateEvent(EventReset reset) noexcept = 0;
  virtual void CloseEvent(NativeHandle event) noexcept = 0;
  virtual void SetEvent(NativeHandle event) noexcept = 0;

  // Waits until the event is signalled (an automatic one is taken by this) or
  // the time is over; true in the first case.
  [[nodiscard]] virtual bool WaitEvent(NativeHandle event, std::uint32_t timeoutMs) noexcept = 0;

  // Starts a thread with a stack of kThreadStackBytes and normal priority.
  // The entry is copied. Null when no thread could be created.
  [[nodiscard]] virtual NativeHandle StartThread(const ThreadEntry& entry) noexcept = 0;

  // Waits until the thread's entry has signalled `finished` or the thread is
  // dead, whichever is first (at the end of a Windows process it is killed and
  // signals nothing). Does not wait for the thread's own end, which needs the
  // loader's lock that the caller may hold.
  virtual void JoinThread(NativeHandle thread, NativeHandle finished) noexcept = 0;

  // Gives the handle back; the thread, if it still runs, goes on.
  virtual void CloseThread(NativeHandle thread) noexcept = 0;

 protected:
  ~Threading() = default;
};

// Threads take their default stack from the host's program, which may be
// anything; ours reserve this much.
inline constexpr std::size_t kThreadStackBytes = 1024 * 1024;

// The machine's own. Lives as long as the process.
Threading& SystemThreading() noexcept;

}  // namespace Vask::Platform
