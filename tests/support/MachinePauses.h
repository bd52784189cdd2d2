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

// Measures how long the machine itself delays threads that are ready to run. A busy
// or virtual machine can stop for parts of a second, and everything that is timed
// meanwhile takes that much longer. A separate thread detects such pauses: it waits
// for a short time again and again, and notes when a wait takes too long. It waits
// for an event, because under Wine that involves the server on which all waits
// depend. It does not use the tick count, which that server updates late. For one
// owner.
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

  // Returns the milliseconds from `begin`, which is after the construction, until
  // now, without the pauses.
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
  static constexpr std::uint32_t kUsualMs = 15;  // includes the timer's step

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

  // Keeps only the latest pauses, so that the memory does not grow.
  void Keep(const Pause& pause) {
    const std::lock_guard lock(m_mutex);
    m_pauses[m_count++ % m_pauses.size()] = pause;
  }

  // Waits for the thread, because a pause may end later for it than for the owner.
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

// Returns the milliseconds that a call takes, without the machine's pauses.
template <class Call>
std::uint32_t TimedMs(const Call& call) {
  MachinePauses pauses;
  const MachinePauses::Clock::time_point begin = MachinePauses::Clock::now();
  call();
  return pauses.RunningMsSince(begin);
}

}  // namespace Vask::Tests
