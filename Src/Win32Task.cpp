#include "Src/Win32Task.h"

#include <cstdint>

namespace Vask {

namespace {

// Windows has two values for "no handle".
Platform::NativeHandle InvalidHandle() noexcept {
  return reinterpret_cast<Platform::NativeHandle>(std::intptr_t{-1});
}

}  // namespace

Win32Task::Win32Task(Platform::Threading& threading, const Platform::ThreadEntry& entry) noexcept
    : m_threading(threading), m_handle(threading.StartThread(entry)) {}

Win32Task::~Win32Task() {
  if (Valid()) m_threading.CloseThread(m_handle);
  m_handle = InvalidHandle();
}

bool Win32Task::Valid() const noexcept {
  return m_handle != nullptr && m_handle != InvalidHandle();
}

}  // namespace Vask
