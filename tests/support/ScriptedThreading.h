#pragma once

#include <cstdint>
#include <vector>

#include "platform/Threading.h"

namespace Vask::Tests {

// The machine's events, with threads that a test controls: StartThread either fails
// or runs the body on the caller's thread. For one thread.
class ScriptedThreading final : public Platform::Threading {
 public:
  bool createsEvents = true;
  // The result of StartThread. The body runs only if this is a valid handle.
  Platform::NativeHandle nextThread = this;
  std::vector<Platform::NativeHandle> closedThreads;
  std::uint32_t started = 0;
  std::uint32_t joined = 0;

  Platform::NativeHandle CreateEvent(Platform::EventReset reset) noexcept override {
    return createsEvents ? m_system.CreateEvent(reset) : nullptr;
  }
  void CloseEvent(Platform::NativeHandle event) noexcept override { m_system.CloseEvent(event); }
  void SetEvent(Platform::NativeHandle event) noexcept override { m_system.SetEvent(event); }
  bool WaitEvent(Platform::NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    return m_system.WaitEvent(event, timeoutMs);
  }
  Platform::NativeHandle StartThread(const Platform::ThreadEntry& entry) noexcept override {
    ++started;
    if (nextThread == this) {
      entry.run(entry.argument);
      m_system.SetEvent(entry.finished);
    }
    return nextThread;
  }
  void JoinThread(Platform::NativeHandle, Platform::NativeHandle finished) noexcept override {
    ++joined;
    static_cast<void>(m_system.WaitEvent(finished, Platform::kInfinite));
  }
  void CloseThread(Platform::NativeHandle thread) noexcept override {
    closedThreads.push_back(thread);
  }

 private:
  Platform::Threading& m_system = Platform::SystemThreading();
};

}  // namespace Vask::Tests
