#include "platform/ProcessExit.h"

#include <atomic>

namespace Vask::Platform {

namespace {
constinit std::atomic<bool> g_exiting{false};
}

bool ProcessIsExiting() noexcept {
  return g_exiting.load(std::memory_order_relaxed);
}

void MarkProcessExiting() noexcept {
  g_exiting.store(true, std::memory_order_relaxed);
}

}  // namespace Vask::Platform
