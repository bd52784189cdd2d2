#pragma once

#include "platform/Threading.h"

namespace Vask {

// A thread that was started and its handle, which is closed with this object;
// the thread itself goes on.
class Win32Task {
 public:
  // Starts the thread. Check Valid().
  Win32Task(Platform::Threading& threading, const Platform::ThreadEntry& entry) noexcept;
  ~Win32Task();
  Win32Task(const Win32Task&) = delete;
  Win32Task& operator=(const Win32Task&) = delete;

  // False when no thread could be created.
  [[nodiscard]] bool Valid() const noexcept;

  // Stays owned by this object.
  [[nodiscard]] Platform::NativeHandle Handle() const noexcept { return m_handle; }

 private:
  Platform::Threading& m_threading;
  Platform::NativeHandle m_handle;
};

}  // namespace Vask
