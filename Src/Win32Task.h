#pragma once

#include "platform/Threading.h"

namespace Vask {

// A thread and its handle. The destructor closes the handle; the thread goes on.
class Win32Task {
 public:
  // Starts the thread. Check Valid().
  Win32Task(Platform::Threading& threading, const Platform::ThreadEntry& entry) noexcept;
  ~Win32Task();
  Win32Task(const Win32Task&) = delete;
  Win32Task& operator=(const Win32Task&) = delete;

  // False if no thread could be created.
  [[nodiscard]] bool Valid() const noexcept;

  // This object keeps the ownership.
  [[nodiscard]] Platform::NativeHandle Handle() const noexcept { return m_handle; }

 private:
  Platform::Threading& m_threading;
  Platform::NativeHandle m_handle;
};

}  // namespace Vask
