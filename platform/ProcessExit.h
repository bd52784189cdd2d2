#pragma once

#include <atomic>

namespace Vask::Platform {

// What the module knows of its own end. Two ends exist: the module is unloaded
// and the process goes on (all of the module's threads are joined first, then
// everything is destroyed), or the process ends (nothing is destroyed: on
// Windows the other threads were killed wherever they stood, elsewhere they may
// still run).

namespace Detail {
inline constinit std::atomic<bool> g_processIsExiting{false};
}

// True from the moment that the module hook learned that the process ends and that
// every thread but the calling one is gone. Never reset. Any thread.
inline bool ProcessIsExiting() noexcept {
  return Detail::g_processIsExiting.load(std::memory_order_relaxed);
}

// Called by the module hook only.
inline void MarkProcessExiting() noexcept {
  Detail::g_processIsExiting.store(true, std::memory_order_relaxed);
}

}  // namespace Vask::Platform
