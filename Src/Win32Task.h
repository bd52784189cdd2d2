#pragma once

#include "platform/Threading.h"
#include "platform/UniqueHandle.h"

namespace Vask {

// A thread and its handle. The destructor closes the handle; the thread continues.
class Win32Task {
 public:
  // Starts the thread. Check Valid().
  Win32Task(Platform::Threading& threading, const Platform::ThreadEntry& entry) noexcept;

  // False if no thread could be created.
  [[nodiscard]] bool Valid() const noexcept { return m_handle.Valid(); }

  // This object keeps the ownership.
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
