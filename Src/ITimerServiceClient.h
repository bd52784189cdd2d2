#pragma once

#include <cstdint>

namespace Vask {

// Whoever has a timer in the timer service.
class ITimerServiceClient {
 public:
  // A timer of this client is due. Called on the timer service's thread without
  // its lock, so it may set and kill timers; while it runs, all other timers
  // wait. Both arguments are 0 for timers that SetTimer made.
  virtual void OnTimer(std::uint32_t timerId, std::uint64_t parameter) = 0;

 protected:
  ~ITimerServiceClient() = default;
};

}  // namespace Vask
