#pragma once

#include <atomic>

namespace Vask::Tests {

// Chooses the call of a faulty seam that fails: the n-th of all calls through the seams
// that share the plan, counted from 1. At first none fails. Any thread may use it.
class FaultPlan {
 public:
  // Starts to count at 1 again.
  void FailAt(int n) noexcept {
    m_calls = 0;
    m_failAt = n;
  }
  void FailNever() noexcept {
    FailAt(0);
    m_failAll = false;
  }
  void FailAlways() noexcept { m_failAll = true; }

  // True if this call must fail. The seam asks in every call.
  [[nodiscard]] bool Fails() noexcept { return ++m_calls == m_failAt || m_failAll; }

  [[nodiscard]] bool Reached() const noexcept { return m_failAt != 0 && m_calls >= m_failAt; }

 private:
  std::atomic<int> m_calls{0};
  std::atomic<int> m_failAt{0};
  std::atomic<bool> m_failAll{false};
};

// Calls run(n) for n = 1, 2, ... until a run ends before its n-th call. Returns the
// number of calls that failed. `run` makes a plan fail at n and returns whether the
// n-th call was reached.
template <class Run>
int ForEveryFault(Run run) {
  int n = 1;
  while (run(n)) ++n;
  return n - 1;
}

}  // namespace Vask::Tests
