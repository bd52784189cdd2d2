// The dynamic loader calls this when it unloads the module. AgentProcess.h describes what
// the stop of the agent may wait for.
//
// A destructor function runs both at an unload and at the end of the process. An exit
// handler distinguishes the two: it runs before the module's destructor functions at the
// end of the process, and after them at an unload.

#include <cstdlib>

#include "Src/SingletonRef.h"
#include "agent/AgentProcess.h"

namespace {

constinit bool g_processEnds = false;

// Without the exit handler, the end of the process is handled like an unload.
[[gnu::constructor]] void OnLoad() {
  static_cast<void>(std::atexit([] { g_processEnds = true; }));
}

void Stop(Agent::Ending ending) noexcept {
  try {
    Agent::AgentProcess::Instance().Stop(ending);
  } catch (...) {  // the loader cannot handle a failure
  }
}

// At the end of the process the module's threads still run, and the module stays
// mapped, so this destroys nothing.
[[gnu::destructor]] void OnUnload() {
  if (g_processEnds) {
    Stop(Agent::Ending::kProcessEnd);
    return;
  }
  Stop(Agent::Ending::kUnload);
  Vask::Thread::DestroySingletons();
}

}  // namespace
