#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>

#include "platform/Clock.h"
#include "tests/contract/Library.h"

namespace Hostile {

// Reads this process's resident memory every 2 ms, on a thread of its own, and keeps
// the highest value. One thread may use it.
class MemoryWatch {
 public:
  MemoryWatch() : m_thread([this] { Run(); }) {}
  ~MemoryWatch() {
    m_stopping = true;
    m_thread.join();
  }
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;

  // Forgets the highest value and returns the present one.
  std::size_t Restart() {
    const std::size_t now = Contract::ResidentMemory();
    m_highest = now;
    return now;
  }
  std::size_t Highest() const { return std::max(m_highest.load(), Contract::ResidentMemory()); }

 private:
  void Run() {
    while (!m_stopping) {
      const std::size_t now = Contract::ResidentMemory();
      if (now > m_highest) m_highest = now;
      Vask::Platform::SystemClock().SleepMs(2);
    }
  }

  std::atomic<bool> m_stopping{false};
  std::atomic<std::size_t> m_highest{0};
  std::thread m_thread;
};

}  // namespace Hostile
