#pragma once

#include "platform/Threading.h"
#include "platform/UniqueHandle.h"

namespace Vask::Platform {

// Owns one event. Any thread may call Set and Wait; only the owner calls the
// rest.
class Event {
 public:
  // Creates an event that is not signalled. Check Valid().
  explicit Event(EventReset reset, Threading& threading = SystemThreading()) noexcept
      : m_threading(threading),
        m_reset(reset),
        m_handle(threading.CreateEvent(reset), {&threading}) {}
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  [[nodiscard]] bool Valid() const noexcept { return m_handle.Valid(); }

  // Tries once more to create an event that could not be created before, and
  // returns Valid(). No other thread may use this object meanwhile.
  [[nodiscard]] bool Ensure() noexcept {
    if (!Valid()) m_handle.Reset(m_threading.CreateEvent(m_reset));
    return Valid();
  }

  // On an event that is not valid, both do nothing and Wait returns false at
  // once.
  void Set() noexcept {
    if (Valid()) m_threading.SetEvent(Handle());
  }
  [[nodiscard]] bool Wait(std::uint32_t timeoutMs) noexcept {
    return Valid() && m_threading.WaitEvent(Handle(), timeoutMs);
  }

  // Stays owned by this object.
  [[nodiscard]] NativeHandle Handle() const noexcept { return m_handle.Get(); }

 private:
  struct Policy {
    using Type = NativeHandle;
    static constexpr Type None() noexcept { return nullptr; }
    void Close(Type event) const noexcept { threading->CloseEvent(event); }
    Threading* threading = nullptr;
  };

  Threading& m_threading;
  const EventReset m_reset;
  UniqueHandle<Policy> m_handle;
};

}  // namespace Vask::Platform
