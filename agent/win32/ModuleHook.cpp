// What Windows calls when the module comes and goes, under the loader's lock:
// at the end of its stay the agent is stopped here. See AgentProcess.h for what may
// be waited for.

#include <windows.h>

#include "Src/SingletonRef.h"
#include "agent/AgentProcess.h"
#include "agent/win32/ThreadExceptions.h"
#include "platform/ProcessExit.h"

namespace __gnu_cxx {
// Gives back the memory that the C++ library keeps for exceptions in need. The
// library is part of this module, so nobody else uses it.
void __freeres();
}  // namespace __gnu_cxx

namespace {

void Stop(Agent::Ending ending) noexcept {
  try {
    Agent::AgentProcess::Instance().Stop(ending);
  } catch (...) {  // the loader could do nothing about it
  }
}

void Unload() noexcept {
  Stop(Agent::Ending::kUnload);
  Vask::Thread::DestroySingletons();
  __gnu_cxx::__freeres();
}

// Every other thread was killed wherever it stood. Nothing is destroyed: the
// memory goes with the process, and locks may be held for ever.
void EndProcess() noexcept {
  Vask::Platform::MarkProcessExiting();
  Stop(Agent::Ending::kProcessEnd);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_THREAD_DETACH) Agent::ForgetThreadExceptions();
  if (reason == DLL_PROCESS_DETACH) processEnds != nullptr ? EndProcess() : Unload();
  return TRUE;
}
