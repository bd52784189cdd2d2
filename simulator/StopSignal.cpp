#include "simulator/StopSignal.h"

#include <atomic>
#include <csignal>

namespace Simulator {

namespace {

std::atomic<bool> g_came{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set in a signal handler");

// Windows forgets the handler when it calls it.
void Note(int signal) {
  g_came = true;
  (void)std::signal(signal, &Note);
}

}  // namespace

void CatchStopSignals() {
  (void)std::signal(SIGINT, &Note);
  (void)std::signal(SIGTERM, &Note);
}

bool StopSignalCame() {
  return g_came;
}

}  // namespace Simulator
