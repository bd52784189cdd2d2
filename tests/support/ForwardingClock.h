#pragma once

#include "platform/Clock.h"

namespace Vask::Tests {

// Forwards every call to another Clock object. A test derives from it and overrides one or
// two operations. As safe to share between threads as the other object.
class ForwardingClock : public Platform::Clock {
 public:
  // `base` must outlive this object.
  explicit ForwardingClock(Platform::Clock& base = Platform::SystemClock()) : m_base(base) {}

  std::uint32_t TickMs() noexcept override { return m_base.TickMs(); }
  std::int64_t EpochSeconds() noexcept override { return m_base.EpochSeconds(); }
  Platform::LocalTime LocalNow() noexcept override { return m_base.LocalNow(); }
  Platform::LocalTime ToLocal(std::int64_t epochSeconds) noexcept override {
    return m_base.ToLocal(epochSeconds);
  }
  std::int64_t FromLocal(const Platform::LocalTime& local) noexcept override {
    return m_base.FromLocal(local);
  }
  void SleepMs(std::uint32_t milliseconds) noexcept override { m_base.SleepMs(milliseconds); }

 protected:
  ~ForwardingClock() = default;

 private:
  Platform::Clock& m_base;
};

}  // namespace Vask::Tests
