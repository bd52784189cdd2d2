#pragma once

#include <atomic>

namespace Vask::Platform {

// Reports whether the process ends. The module can end in two ways. If it is unloaded and
// the process continues, the module joins its threads and then destroys everything. If
// the process ends, the module destroys nothing: Windows has killed the other threads at
// an unknown point, and on other systems they may still run.

namespace Detail {
inline constinit std::atomic<bool> g_processIsExiting{false};
}

// True after the module hook has learned that the process ends and that the
// calling thread is the only one left. Never reset. Any thread may call it.
inline bool ProcessIsExiting() noexcept {
  return Detail::g_processIsExiting.load(std::memory_order_relaxed);
}

// For the module hook only.
inline void MarkProcessExiting() noexcept {
  Detail::g_processIsExiting.store(true, std::memory_order_relaxed);
}

}  // namespace Vask::Platform
