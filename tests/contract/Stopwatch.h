#pragma once

#include <chrono>
#include <cstdint>

namespace Contract {

// Milliseconds since construction. Not by the tick count, which Wine's server
// moves on when it finds the time.
class Stopwatch {
 public:
  std::uint32_t Ms() const {
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start).count());
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point m_start = Clock::now();
};

}  // namespace Contract
