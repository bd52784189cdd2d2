#pragma once

#include "platform/Threading.h"

namespace Vask::Platform {

// One event, which goes with this object. Set and Wait may be called from any
// thread; the rest by the owner only.
class Event {
 public:
  // Creates an event, not signalled, and owns it. Check Valid().
  explicit Event(EventReset reset, Threading& threading = SystemThreading()) noexcept
      : m_threading(threading), m_reset(reset), m_handle(threading.CreateEvent(reset)) {}

  ~Event() {
    if (m_handle != nullptr) m_threading.CloseEvent(m_handle);
  }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  [[nodiscard]] bool Valid() const noexcept { return m_handle != nullptr; }

  // Valid(), for which it tries once more to create an event that could not be had
  // before. Not while another thread may use this object.
  [[nodiscard]] bool Ensure() noexcept {
    if (m_handle == nullptr) m_handle = m_threading.CreateEvent(m_reset);
    return m_handle != nullptr;
  }

  // Both do nothing, and Wait answers false at once, on an event that is not valid.
  void Set() noexcept {
    if (m_handle != nullptr) m_threading.SetEvent(m_handle);
  }
  [[nodiscard]] bool Wait(std::uint32_t timeoutMs) noexcept {
    return m_handle != nullptr && m_threading.WaitEvent(m_handle, timeoutMs);
  }

  // Stays owned by this object.
  [[nodiscard]] NativeHandle Handle() const noexcept { return m_handle; }

 private:
  Threading& m_threading;
  const EventReset m_reset;
  NativeHandle m_handle;
};

}  // namespace Vask::Platform
