#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>

#include "platform/Event.h"
#include "tests/contract/Stopwatch.h"

namespace Contract {

// How long the machine itself lets a thread wait that ought to run: a machine
// that is busy with other things, or is a share of another, stands still for
// parts of a second, and whatever is timed meanwhile takes so much longer. A
// thread that only waits a little, again and again, tells. It waits for an event,
// which under Wine is a matter of the one server that everything waits for.
// One owner.
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
  static constexpr std::uint32_t kWaitMs = 5;
  static constexpr std::uint32_t kUsualMs = 15;  // of which the timer's step is part

  void Run() {
    Vask::Platform::Event never(Vask::Platform::EventReset::Automatic);
    while (!m_stopping) {
      const Stopwatch watch;
      static_cast<void>(never.Wait(kWaitMs));
      const std::uint32_t tookMs = watch.Ms();
      if (tookMs > kWaitMs + kUsualMs) m_totalMs += tookMs - kWaitMs;
    }
  }

  std::atomic<bool> m_stopping{false};
  std::atomic<std::uint32_t> m_totalMs{0};
  std::thread m_thread;
};

}  // namespace Contract
