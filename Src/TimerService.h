#pragma once

#include <atomic>
#include <cstdint>

#include "Src/ITimerServiceClient.h"
#include "Src/SingletonRef.h"
#include "Src/ThreadClass.h"
#include "Src/TimerNodeStore.h"
#include "platform/Clock.h"
#include "platform/CriticalSection.h"
#include "platform/Event.h"

namespace Vask {

// Calls its clients back periodically, all of them one after another on one
// thread that sleeps until the next timer is due.
//
// A timer is first due after its period; from then on it is due its period less
// 5 ms after the previous call began (time for waking up; periods up to 5 ms
// stay as they are). It ends by KillTimer, or when its client sets another.
//
// SetTimer and its kin may be called from any thread, from OnTimer too. Killing
// a timer does not wait for a call that has begun: a client lives until the
// service has stopped, or makes sure in another way. A client that throws is
// called again at its next turn; the log says "Vask::TimerService::Run: exception!".
class TimerService final : private ThreadClass, public Thread::SingletonRef<TimerService> {
 public:
  // The default arguments make the process's own service.
  explicit TimerService(Platform::Clock& clock = Platform::SystemClock(),
                        Platform::Threading& threading = Platform::SystemThreading());
  // Stops the thread if its owner did not.
  ~TimerService() override;

  // Starts the thread; false when it runs already or cannot be created. Like
  // StopService, for one owner.
  [[nodiscard]] bool StartService();
  // Ends the thread and waits for it, also for a callback that has begun. The
  // timers stay and go on with the next start. Not to be called from OnTimer.
  void StopService();

  // Replaces the client's timer, if it has one. Like ReplaceTimerAnd it throws
  // std::bad_alloc, with nothing changed, when there is no memory for another
  // timer than there ever were at a time.
  void SetTimer(std::uint32_t periodMs, ITimerServiceClient* client) VASK_EXCLUDES(m_lock);
  // Removes all of the client's timers.
  void KillTimer(ITimerServiceClient* client) VASK_EXCLUDES(m_lock);

  // A decision and what it decides on, under the service's lock. The functions
  // must be short, take no lock and call nothing of the service. Whoever decides
  // in KillTimerIf by values that others change in ReplaceTimerAnd can lose no
  // timer: it is either killed before the replacement or seen as needed.
  //
  // Removes all of the client's timers if `condition(context)` holds; answers
  // whether it did.
  bool KillTimerIf(ITimerServiceClient* client, bool (*condition)(void* context), void* context)
      VASK_EXCLUDES(m_lock);
  // Removes all of the client's timers, sets a new one and calls
  // `change(context)`.
  void ReplaceTimerAnd(std::uint32_t periodMs, ITimerServiceClient* client,
                       void (*change)(void* context), void* context) VASK_EXCLUDES(m_lock);

  // One turn of the thread: calls at most one client that is due, and answers
  // how many milliseconds to wait for the next turn, kInfinite when there is no
  // timer. Public so that the service can be driven without its thread; never
  // beside it.
  std::uint32_t Step() VASK_EXCLUDES(m_lock);

 private:
  void Run() override;
  void OnStop() override;

  std::uint64_t Now() VASK_REQUIRES(m_lock);
  std::uint32_t StepGuarded() noexcept;
  void Add(TimerNode* node, std::uint32_t periodMs, ITimerServiceClient* client)
      VASK_REQUIRES(m_lock);
  void Insert(TimerNode* node) VASK_REQUIRES(m_lock);
  TimerNode TakeFirstAndRearm() VASK_REQUIRES(m_lock);
  void RemoveUnnamed(ITimerServiceClient* client) VASK_REQUIRES(m_lock);
  void RemoveAll(ITimerServiceClient* client) VASK_REQUIRES(m_lock);
  std::uint32_t WaitFrom(std::uint64_t nowMs) const VASK_REQUIRES(m_lock);

  Platform::CriticalSection m_lock{Platform::LockRank::TimerService};
  Platform::Event m_wake;
  TimerNodeStore m_nodes VASK_GUARDED_BY(m_lock);
  TimerNode* m_first VASK_GUARDED_BY(m_lock) = nullptr;  // by due time, earliest first
  std::atomic<bool> m_running{false};
  std::uint64_t m_tickExtension VASK_GUARDED_BY(m_lock) = 0;  // a multiple of 2^32
  std::uint32_t m_lastTick VASK_GUARDED_BY(m_lock) = 0;
  Platform::Clock& m_clock;
};

}  // namespace Vask
