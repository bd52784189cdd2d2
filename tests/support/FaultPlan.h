#pragma once

#include <atomic>

namespace Vask::Tests {

// Which call of a faulty seam fails: the n-th of all that are made through the
// seams that share the plan, counted from 1; none at first. Any thread.
class FaultPlan {
 public:
  // Counts anew from here.
  void FailAt(int n) noexcept {
    m_calls = 0;
    m_failAt = n;
  }
  void FailNever() noexcept {
    FailAt(0);
    m_failAll = false;
  }
  void FailAlways() noexcept { m_failAll = true; }

  // Asked by the seam in every call.
  [[nodiscard]] bool Fails() noexcept { return ++m_calls == m_failAt || m_failAll; }

  [[nodiscard]] bool Reached() const noexcept { return m_failAt != 0 && m_calls >= m_failAt; }

 private:
  std::atomic<int> m_calls{0};
  std::atomic<int> m_failAt{0};
  std::atomic<bool> m_failAll{false};
};

// Calls run(n) for n = 1, 2, ... until one comes to its end without reaching the
// n-th call, and answers how many calls failed on the way. `run` makes a plan
// fail at n and answers whether that was reached.
template <class Run>
int ForEveryFault(Run run) {
  int n = 1;
  while (run(n)) ++n;
  return n - 1;
}

}  // namespace Vask::Tests
