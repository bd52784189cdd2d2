// module_cycles COUNT [linked]: loads, starts and unloads the module that often
// and fails when the process then holds more handles or more memory than after
// the first few times. Half of the times it unloads at once, half of the times
// after the link has tried or, with `linked`, come up.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/Clock.h"
#include "platform/Sockets.h"
#include "simulator/CorvaneServer.h"
#include "tests/contract/Eventually.h"
#include "tests/contract/Library.h"
#include "tests/contract/LogFolder.h"
#include "tests/contract/Module.h"

namespace {

// What comes once: the system's and the run-time's own caches.
constexpr int kWarmUpCycles = 20;

// Less than one event, one thread's stack or one buffer for each cycle.
constexpr std::size_t kMemoryPerCycle = 512;

bool Fail(int number, const char* what) {
  std::fprintf(stderr, "cycle %d: %s\n", number, what);
  return false;
}

bool Cycle(int number, bool linked) {
  Contract::Module module;
  if (!module.Init().result) return Fail(number, "start failed");
  if (module.GetNext("P.0.0") != "0 P.1.0 = STRING 'Corvane'") return Fail(number, "wrong answer");
  if (number % 2 != 0) return true;
  if (!linked) {
    Vask::Platform::SystemClock().SleepMs(20);
    return true;
  }
  const bool up = Contract::Eventually([&] { return module.Get("P.0.0") == "0 P.0.0 = INT 0"; });
  return up || Fail(number, "no link");
}

struct Holdings {
  std::size_t handles;
  std::size_t memory;
};

// Once threads that are on their way out are gone.
Holdings Measure() {
  Vask::Platform::SystemClock().SleepMs(300);
  return {Contract::OpenHandles(), Contract::HeldMemory()};
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 0;
  const bool linked = argc > 2 && std::strcmp(argv[2], "linked") == 0;
  if (count <= kWarmUpCycles) {
    std::fprintf(stderr, "at least %d cycles\n", kWarmUpCycles + 1);
    return 2;
  }
  const Contract::LogFolder folder;
  // A host of the module has sockets of its own. Without them the system's socket
  // library would come and go with the module, and leave behind what it keeps
  // for each thread.
  if (!Vask::Platform::SystemSockets().StartUp()) return 2;
  Simulator::ServerOptions options;
  options.port = Contract::kLinkPort;
  Simulator::CorvaneServer server(options);
  if (linked && !server.Start()) return 2;

  Holdings before{};
  for (int i = 1; i <= count; ++i) {
    if (!Cycle(i, linked)) return 1;
    if (i == kWarmUpCycles) before = Measure();
  }
  const Holdings after = Measure();
  std::printf("%d cycles; after %d and at the end: %zu and %zu handles, %zu and %zu bytes\n", count,
              kWarmUpCycles, before.handles, after.handles, before.memory, after.memory);
  const auto cycles = static_cast<std::size_t>(count - kWarmUpCycles);
  if (after.handles > before.handles || after.memory > before.memory + cycles * kMemoryPerCycle) {
    std::printf("FAILED: handles or memory grew\n0 passed, 1 failed\n");
    return 1;
  }
  std::printf("1 passed, 0 failed\n");
  return 0;
}
