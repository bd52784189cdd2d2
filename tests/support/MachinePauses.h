#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>

#include "platform/Event.h"

namespace Vask::Tests {

// How long the machine itself lets a thread wait that ought to run: a machine
// that is busy with other things, or is a share of another, stands still for
// parts of a second, and whatever is timed meanwhile takes so much longer. A
// thread that only waits a little, again and again, tells. It waits for an event,
// which under Wine is a matter of the one server that everything waits for.
// Times are not by the tick count, which that server moves on when it can.
// One owner.
class MachinePauses {
 public:
  using Clock = std::chrono::steady_clock;

  MachinePauses() : m_thread([this] { Run(); }) {}
  ~MachinePauses() {
    m_stopping = true;
    m_look.Set();
    m_thread.join();
  }
  MachinePauses(const MachinePauses&) = delete;
  MachinePauses& operator=(const MachinePauses&) = delete;

  // Milliseconds from a moment since construction until now, without the pauses.
  std::uint32_t RunningMsSince(Clock::time_point begin) {
    const Clock::time_point end = Clock::now();
    LookAgain();
    Clock::duration running = end - begin;
    const std::lock_guard lock(m_mutex);
    for (const Pause& pause : m_pauses) {
      const Clock::duration shared = std::min(pause.end, end) - std::max(pause.begin, begin);
      running -= std::max(shared, Clock::duration::zero());
    }
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(running).count());
  }

 private:
  struct Pause {
    Clock::time_point begin;
    Clock::time_point end;
  };
  static constexpr std::uint32_t kWaitMs = 5;
  static constexpr std::uint32_t kUsualMs = 15;  // of which the timer's step is part

  void Run() {
    Clock::time_point last = m_constructed;
    while (!m_stopping) {
      static_cast<void>(m_look.Wait(kWaitMs));
      const Clock::time_point now = Clock::now();
      const Clock::time_point due = last + std::chrono::milliseconds(kWaitMs);
      if (now > due + std::chrono::milliseconds(kUsualMs)) Keep({due, now});
      last = now;
      m_latestLook = now;
    }
  }

  // The latest only: memory stays what it is however long this lives.
  void Keep(const Pause& pause) {
    const std::lock_guard lock(m_mutex);
    m_pauses[m_count++ % m_pauses.size()] = pause;
  }

  // A pause that has just ended for the owner may not have ended for the thread.
  void LookAgain() {
    const Clock::time_point asked = Clock::now();
    m_look.Set();
    while (m_latestLook.load() < asked) std::this_thread::yield();
  }

  const Clock::time_point m_constructed = Clock::now();
  Platform::Event m_look{Platform::EventReset::Automatic};
  std::atomic<bool> m_stopping{false};
  std::atomic<Clock::time_point> m_latestLook{Clock::time_point::min()};
  std::mutex m_mutex;
  std::array<Pause, 256> m_pauses{};
  std::size_t m_count = 0;
  std::thread m_thread;
};

// Milliseconds that a call takes, without the machine's pauses.
template <class Call>
std::uint32_t TimedMs(const Call& call) {
  MachinePauses pauses;
  const MachinePauses::Clock::time_point begin = MachinePauses::Clock::now();
  call();
  return pauses.RunningMsSince(begin);
}

}  // namespace Vask::Tests
