#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>

#include "platform/Clock.h"

namespace Contract {

// How long the machine itself lets a thread wait that ought to run: a machine
// that is busy with other things, or is a share of another, stands still for
// parts of a second, and whatever is timed meanwhile takes so much longer. A
// thread that only sleeps a little, again and again, tells. One owner.
class MachinePauses {
 public:
  MachinePauses() : m_thread([this] { Run(); }) {}
  ~MachinePauses() {
    m_stopping = true;
    m_thread.join();
  }
  MachinePauses(const MachinePauses&) = delete;
  MachinePauses& operator=(const MachinePauses&) = delete;

  // Since construction, in milliseconds: pauses worth the name, taken together.
  std::uint32_t TotalMs() const { return m_totalMs; }

 private:
  static constexpr std::uint32_t kSleepMs = 5;
  static constexpr std::uint32_t kUsualMs = 15;  // of which the clock's step is part

  void Run() {
    Vask::Platform::Clock& clock = Vask::Platform::SystemClock();
    while (!m_stopping) {
      const std::uint32_t start = clock.TickMs();
      clock.SleepMs(kSleepMs);
      const std::uint32_t tookMs = clock.TickMs() - start;
      if (tookMs > kSleepMs + kUsualMs) m_totalMs += tookMs - kSleepMs;
    }
  }

  std::atomic<bool> m_stopping{false};
  std::atomic<std::uint32_t> m_totalMs{0};
  std::thread m_thread;
};

}  // namespace Contract
