#include "Src/Win32Task.h"

#include <cstdint>

namespace Vask {

namespace {

// Windows has two values for "no handle"; a task holds the null one.
Platform::NativeHandle NullIfInvalid(Platform::NativeHandle handle) noexcept {
  return handle == reinterpret_cast<Platform::NativeHandle>(std::intptr_t{-1}) ? nullptr : handle;
}

}  // namespace

Win32Task::Win32Task(Platform::Threading& threading, const Platform::ThreadEntry& entry) noexcept
    : m_handle(NullIfInvalid(threading.StartThread(entry)), {&threading}) {}

}  // namespace Vask
