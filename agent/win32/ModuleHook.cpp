// Windows calls this when it loads and unloads the module, under the loader's lock. An
// unload and the end of the process stop the agent here; AgentProcess.h describes what
// the stop may wait for.

#include <windows.h>

#include "Src/SingletonRef.h"
#include "agent/AgentProcess.h"
#include "agent/win32/RuntimeMemory.h"
#include "platform/ProcessExit.h"

namespace __gnu_cxx {
// Frees the memory that the C++ library reserves for exceptions. The library is
// part of this module, so no other module uses that memory.
void __freeres();
}  // namespace __gnu_cxx

namespace {

void Stop(Agent::Ending ending) noexcept {
  try {
    Agent::AgentProcess::Instance().Stop(ending);
  } catch (...) {  // the loader cannot handle a failure
  }
}

void Unload() noexcept {
  Stop(Agent::Ending::kUnload);
  Vask::Thread::DestroySingletons();
  __gnu_cxx::__freeres();
}

// Windows has killed every other thread at an unknown point. This destroys nothing: the
// system frees the memory of the process, and a dead thread may hold a lock.
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
