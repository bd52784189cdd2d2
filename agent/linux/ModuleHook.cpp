// What the dynamic loader calls when the module goes: the agent is stopped
// here. See AgentProcess.h for what may be waited for.
//
// A destructor function runs both when the module is unloaded and when the
// process ends. Exit handlers tell the two apart: those that the module has
// registered run before its destructor functions at the end of the process, and
// after them at an unload.

#include <cstdlib>

#include "Src/SingletonRef.h"
#include "agent/AgentProcess.h"

namespace {

constinit bool g_processEnds = false;

[[gnu::constructor]] void OnLoad() {
  std::atexit([] { g_processEnds = true; });
}

void Stop(Agent::Ending ending) noexcept {
  try {
    Agent::AgentProcess::Instance().Stop(ending);
  } catch (...) {  // the loader could do nothing about it
  }
}

// At the end of the process the module's threads still run, and it stays
// mapped: nothing is destroyed under them.
[[gnu::destructor]] void OnUnload() {
  if (g_processEnds) {
    Stop(Agent::Ending::kProcessEnd);
    return;
  }
  Stop(Agent::Ending::kUnload);
  Vask::Thread::DestroySingletons();
}

}  // namespace
