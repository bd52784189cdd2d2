#pragma once

#include "platform/Threading.h"
#include "platform/UniqueHandle.h"

namespace Vask {

// A thread that was started and its handle, which is closed with this object;
// the thread itself goes on.
class Win32Task {
 public:
  // Starts the thread. Check Valid().
  Win32Task(Platform::Threading& threading, const Platform::ThreadEntry& entry) noexcept;

  // False when no thread could be created.
  [[nodiscard]] bool Valid() const noexcept { return m_handle.Valid(); }

  // Stays owned by this object.
  [[nodiscard]] Platform::NativeHandle Handle() const noexcept { return m_handle.Get(); }

 private:
  struct Policy {
    using Type = Platform::NativeHandle;
    static constexpr Type None() noexcept { return nullptr; }
    void Close(Type thread) const noexcept { threading->CloseThread(thread); }
    Platform::Threading* threading = nullptr;
  };

  Platform::UniqueHandle<Policy> m_handle;
};

}  // namespace Vask
