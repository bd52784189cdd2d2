// module_exit STATE NOTE: loads the module, brings it into a state, writes the time
// to the file NOTE and returns from main while the module is loaded.
//
//   loaded     not started
//   started    started, in any state of the link
//   down, up   started, with the link down or up
//   unloaded   started and unloaded again
//   busy       started, while a peer floods the link and threads of the host read
//              values and take traps without a pause, so that a thread probably holds
//              each lock at the end

#include <chrono>
#include <cstdio>
#include <fstream>
#include <new>
#include <string>
#include <thread>

#include "platform/Clock.h"
#include "tests/contract/Eventually.h"
#include "tests/contract/Module.h"

namespace {

// Starts threads that end with the process.
void KeepBusy(Contract::Module& module) {
  for (int i = 0; i < 2; ++i) {
    std::thread([&module] {
      for (;;) module.GetNext("P.1.0");
    }).detach();
  }
  std::thread([&module] {
    for (;;) module.TakeTraps();
  }).detach();
}

bool Reach(Contract::Module& module, const std::string& state) {
  if (state == "loaded") return true;
  if (!module.Init().result) return false;
  if (state == "started") {
    Vask::Platform::SystemClock().SleepMs(200);
    return true;
  }
  if (state == "unloaded") {
    module.Unload();
    return true;
  }
  if (state == "busy") {
    const bool flooded =
        Contract::Eventually([&] { return module.Get("P.2.0") == "0 P.2.0 = INT 77"; });
    KeepBusy(module);
    Vask::Platform::SystemClock().SleepMs(20);
    return flooded;
  }
  const std::string wanted = state == "up" ? "0 P.0.0 = INT 0" : "0 P.0.0 = INT 1";
  return Contract::Eventually([&] { return module.Get("P.0.0") == wanted; });
}

// Storage of a module that is never destroyed, so that it stays loaded.
alignas(Contract::Module) unsigned char g_storage[sizeof(Contract::Module)];

}  // namespace

// The thread sanitizer calls this at its start. At the end of a process the module
// waits for no thread, on purpose, and the test measures the time of that end.
extern "C" [[gnu::visibility("default")]] const char* __tsan_default_options() {
  return "report_thread_leaks=0:atexit_sleep_ms=0";
}

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  auto* const module = ::new (g_storage) Contract::Module;
  if (!Reach(*module, argv[1])) {
    std::fprintf(stderr, "the module does not reach the state %s\n", argv[1]);
    return 1;
  }
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  std::ofstream(argv[2]) << std::chrono::ceil<std::chrono::milliseconds>(now).count() << "\n";
  return 0;
}
