#pragma once

#include "platform/Threading.h"

namespace Vask::Tests {

// Forwards every call to another Threading object. A test derives from it and overrides one or
// two operations. As safe to share between threads as the other object.
class ForwardingThreading : public Platform::Threading {
 public:
  // `base` must outlive this object.
  explicit ForwardingThreading(Platform::Threading& base = Platform::SystemThreading())
      : m_base(base) {}

  Platform::NativeHandle CreateEvent(Platform::EventReset reset) noexcept override {
    return m_base.CreateEvent(reset);
  }
  void CloseEvent(Platform::NativeHandle event) noexcept override { m_base.CloseEvent(event); }
  void SetEvent(Platform::NativeHandle event) noexcept override { m_base.SetEvent(event); }
  bool WaitEvent(Platform::NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    return m_base.WaitEvent(event, timeoutMs);
  }
  Platform::NativeHandle StartThread(const Platform::ThreadEntry& entry) noexcept override {
    return m_base.StartThread(entry);
  }
  void JoinThread(Platform::NativeHandle thread,
                  Platform::NativeHandle finished) noexcept override {
    m_base.JoinThread(thread, finished);
  }
  void CloseThread(Platform::NativeHandle thread) noexcept override { m_base.CloseThread(thread); }

 protected:
  ~ForwardingThreading() = default;

 private:
  Platform::Threading& m_base;
};

}  // namespace Vask::Tests
