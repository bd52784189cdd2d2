#include "platform/Threading.h"

#include <errno.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <new>

#include "platform/Clock.h"
#include "platform/linux/EventDescriptor.h"

namespace Vask::Platform {

namespace {

// The eventfd of a manual event is a semaphore: a waiter takes one and adds it
// again. A signal adds this number, which is larger than the number of waiters can
// be, so that no waiter sees the event unsignalled in between.
constexpr std::uint64_t kManualSignal = std::uint64_t{1} << 32;

void WriteCount(int descriptor, std::uint64_t count) noexcept {
  while (write(descriptor, &count, sizeof count) < 0 && errno == EINTR) {
  }
}

// Returns whether the event is signalled, and resets an automatic one.
bool TryTake(NativeHandle event) noexcept {
  const int descriptor = EventDescriptor(event);
  std::uint64_t count = 0;
  ssize_t got = 0;
  do {
    got = read(descriptor, &count, sizeof count);
  } while (got < 0 && errno == EINTR);
  if (got != static_cast<ssize_t>(sizeof count)) return false;
  if (EventKind(event) == EventReset::Manual) WriteCount(descriptor, count);
  return true;
}

// Waits until the descriptor is readable; -1 waits without limit.
void PollOnce(int descriptor, int timeoutMs) noexcept {
  pollfd waited{descriptor, POLLIN, 0};
  poll(&waited, 1, timeoutMs);
}

struct Thread {
  pthread_t id = 0;
  bool joined = false;
};

void* ThreadMain(void* record) noexcept {
  const ThreadEntry entry = *static_cast<const ThreadEntry*>(record);
  delete static_cast<ThreadEntry*>(record);
  if (entry.argument == nullptr) return nullptr;
  entry.run(entry.argument);
  SystemThreading().SetEvent(entry.finished);
  return reinterpret_cast<void*>(std::uintptr_t{1});
}

// The host's signal handlers must run on the host's threads, so the agent's threads
// block every signal except those of their own faults.
sigset_t ForeignSignals() noexcept {
  sigset_t signals;
  sigfillset(&signals);
  for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
    sigdelset(&signals, own);
  }
  return signals;
}

bool CreateThread(pthread_t& id, ThreadEntry* record) noexcept {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_attr_setstacksize(&attributes, kThreadStackBytes);
  const sigset_t blocked = ForeignSignals();
  sigset_t before;
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  const bool created = pthread_create(&id, &attributes, ThreadMain, record) == 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  pthread_attr_destroy(&attributes);
  return created;
}

class PosixThreading final : public Threading {
 public:
  NativeHandle CreateEvent(EventReset reset) noexcept override {
    const int semaphore = reset == EventReset::Manual ? EFD_SEMAPHORE : 0;
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | semaphore);
    return descriptor < 0 ? nullptr : EventFromDescriptor(descriptor, reset);
  }

  void CloseEvent(NativeHandle event) noexcept override { close(EventDescriptor(event)); }

  void SetEvent(NativeHandle event) noexcept override {
    WriteCount(EventDescriptor(event), EventKind(event) == EventReset::Manual ? kManualSignal : 1);
  }

  bool WaitEvent(NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    const std::uint32_t start = SystemClock().TickMs();
    while (!TryTake(event)) {
      const std::uint32_t passed = SystemClock().TickMs() - start;
      if (timeoutMs != kInfinite && passed >= timeoutMs) return false;
      const std::uint32_t rest = std::min(timeoutMs - passed, kLongestPollMs);
      PollOnce(EventDescriptor(event), timeoutMs == kInfinite ? -1 : static_cast<int>(rest));
    }
    return true;
  }

  NativeHandle StartThread(const ThreadEntry& entry) noexcept override {
    auto* const thread = new (std::nothrow) Thread;
    auto* const record = new (std::nothrow) ThreadEntry(entry);
    if (thread != nullptr && record != nullptr && CreateThread(thread->id, record)) return thread;
    delete record;
    delete thread;
    return nullptr;
  }

  // Waits for the true end of the thread. On this system it needs no lock that the
  // caller could hold, and nothing else proves that no code of the module remains
  // on the thread's stack.
  void JoinThread(NativeHandle handle, NativeHandle) noexcept override {
    auto* const thread = static_cast<Thread*>(handle);
    if (!thread->joined) thread->joined = pthread_join(thread->id, nullptr) == 0;
  }

  void CloseThread(NativeHandle handle) noexcept override {
    auto* const thread = static_cast<Thread*>(handle);
    if (!thread->joined) pthread_detach(thread->id);
    delete thread;
  }

 private:
  static constexpr std::uint32_t kLongestPollMs = 0x7FFFFFFF;
};

constinit PosixThreading g_threading;

}  // namespace

Threading& SystemThreading() noexcept {
  return g_threading;
}

}  // namespace Vask::Platform
