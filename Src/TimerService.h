#pragma once

#include <atomic>
#include <cstdint>

#include "Src/SingletonRef.h"
#include "Src/ThreadClass.h"
#include "platform/Clock.h"
#include "platform/CriticalSection.h"
#include "platform/Event.h"

namespace Vask {

// A client of the timer service.
class ITimerServiceClient {
 public:
  // A timer of this client is due. The timer service calls this on its thread without
  // its lock, so a client may set and kill timers here. Until it returns, all other
  // timers wait. Both arguments are 0 for timers that SetTimer made.
  virtual void OnTimer(std::uint32_t timerId, std::uint64_t parameter) = 0;

 protected:
  ~ITimerServiceClient() = default;
};

// One timer. All zeros until it is used.
struct TimerNode {
  TimerNode* next = nullptr;
  std::uint64_t dueMs = 0;  // on the timer service's own clock
  std::uint32_t periodMs = 0;
  std::uint32_t timerId = 0;
  std::uint64_t parameter = 0;
  ITimerServiceClient* client = nullptr;
};

// The memory of all timers: blocks that it frees only when it is destroyed. It
// allocates only when there are more timers at a time than ever before. Not
// thread-safe: the timer service's lock guards it.
class TimerNodeStore {
 public:
  static constexpr std::uint32_t kNodesPerBlock = 32;

  TimerNodeStore() = default;
  ~TimerNodeStore();
  TimerNodeStore(const TimerNodeStore&) = delete;
  TimerNodeStore& operator=(const TimerNodeStore&) = delete;

  // Returns a node with any contents. The store owns it; the caller may use it until
  // it calls PutBack. Throws std::bad_alloc if there is no memory for a block.
  [[nodiscard]] TimerNode* Take();
  void PutBack(TimerNode* node) noexcept;

  [[nodiscard]] std::uint32_t BlockCount() const noexcept { return m_blockCount; }

 private:
  struct Block {
    Block* next = nullptr;
    TimerNode nodes[kNodesPerBlock];
  };

  void AddBlock();

  Block* m_blocks = nullptr;
  TimerNode* m_free = nullptr;
  std::uint32_t m_blockCount = 0;
};

// Calls its clients back periodically, one after another, on one thread. The thread
// sleeps until the next timer is due.
//
// A timer is first due after its period. From then on it is due its period less 5 ms
// after the previous call began; the 5 ms allow for the time of the wake-up. Periods
// of up to 5 ms stay as they are. A timer ends when it is killed, or when its client
// sets another one.
//
// Any thread may call SetTimer and the functions after it, also from OnTimer. Killing
// a timer does not wait for a call that has begun. A client must live until the
// service has stopped, or make sure in another way that no call is under way. If a
// client throws, the service logs "Vask::TimerService::Run: exception!" and calls it
// again when it is next due.
class TimerService final : private ThreadClass, public Thread::SingletonRef<TimerService> {
 public:
  // The default arguments make the process's own service.
  explicit TimerService(Platform::Clock& clock = Platform::SystemClock(),
                        Platform::Threading& threading = Platform::SystemThreading());
  // Stops the thread if its owner did not.
  ~TimerService() override;

  // Starts the thread. Returns false if it runs already or cannot be created. Only one
  // owner may call this and StopService.
  [[nodiscard]] bool StartService();
  // Ends the thread and waits for it, also for a callback that has begun. The timers
  // stay and go on with the next start. OnTimer must not call this.
  void StopService();

  // Sets a timer for the client and removes the one that it had. Like ReplaceTimerAnd
  // it throws std::bad_alloc if there is no memory for the timer; then nothing has
  // changed.
  void SetTimer(std::uint32_t periodMs, ITimerServiceClient* client) VASK_EXCLUDES(m_lock);
  // Removes all of the client's timers.
  void KillTimer(ITimerServiceClient* client) VASK_EXCLUDES(m_lock);

  // The next two call a function of the client under the service's lock. It must be
  // short, take no lock and call nothing of the service. A client that decides in
  // KillTimerIf by values that it changes only in ReplaceTimerAnd loses no timer: the
  // timer is either killed before the replacement or seen as needed.
  //
  // Removes all of the client's timers if `condition(context)` returns true. Returns
  // what it returned.
  bool KillTimerIf(ITimerServiceClient* client, bool (*condition)(void* context), void* context)
      VASK_EXCLUDES(m_lock);
  // Removes all of the client's timers, sets a new one and calls
  // `change(context)`.
  void ReplaceTimerAnd(std::uint32_t periodMs, ITimerServiceClient* client,
                       void (*change)(void* context), void* context) VASK_EXCLUDES(m_lock);

  // One turn of the thread: calls at most one client that is due. Returns how many
  // milliseconds to wait for the next turn, kInfinite if there is no timer. Public so
  // that a test can drive the service without its thread, never beside it.
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
  TimerNode* m_first VASK_GUARDED_BY(m_lock) = nullptr;  // sorted by due time, earliest first
  std::atomic<bool> m_running{false};
  std::uint64_t m_tickExtension VASK_GUARDED_BY(m_lock) = 0;  // a multiple of 2^32
  std::uint32_t m_lastTick VASK_GUARDED_BY(m_lock) = 0;
  Platform::Clock& m_clock;
};

}  // namespace Vask
