#pragma once

#include <cstdint>

#include "platform/Clock.h"

namespace Contract {

// Checks `condition` every 10 ms until it holds. False if it does not hold within the
// time.
template <class Condition>
bool Eventually(Condition condition, std::uint32_t patienceMs = 60'000) {
  Vask::Platform::Clock& clock = Vask::Platform::SystemClock();
  const std::uint32_t start = clock.TickMs();
  while (!condition()) {
    if (clock.TickMs() - start > patienceMs) return false;
    clock.SleepMs(10);
  }
  return true;
}

}  // namespace Contract
