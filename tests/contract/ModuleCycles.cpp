// module_cycles COUNT: loads, starts and unloads the module that often and
// fails when the process then holds more handles or more memory than after the
// first few times. Every other time it waits for the link to have tried.

#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "platform/Clock.h"
#include "tests/contract/Library.h"
#include "tests/contract/LogFolder.h"
#include "tests/contract/Module.h"

namespace {

// What comes once: the system's and the run-time's own caches.
constexpr int kWarmUpCycles = 20;

// Less than one event, one thread's stack or one buffer for each cycle.
constexpr std::size_t kMemoryPerCycle = 512;

bool Cycle(int number) {
  Contract::Module module;
  if (!module.Init().result) {
    std::fprintf(stderr, "cycle %d: start failed\n", number);
    return false;
  }
  if (module.GetNext("P.0.0") != "0 P.1.0 = STRING 'Corvane'") {
    std::fprintf(stderr, "cycle %d: wrong answer\n", number);
    return false;
  }
  if (number % 2 == 0) Vask::Platform::SystemClock().SleepMs(20);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 200;
  if (count <= kWarmUpCycles) {
    std::fprintf(stderr, "at least %d cycles\n", kWarmUpCycles + 1);
    return 2;
  }
  const Contract::LogFolder folder;
  std::size_t handles = 0;
  std::size_t memory = 0;
  for (int i = 1; i <= count; ++i) {
    if (!Cycle(i)) return 1;
    if (i != kWarmUpCycles) continue;
    handles = Contract::OpenHandles();
    memory = Contract::HeldMemory();
  }
  const std::size_t handlesNow = Contract::OpenHandles();
  const std::size_t memoryNow = Contract::HeldMemory();
  std::printf("%d cycles; after %d and at the end: %zu and %zu handles, %zu and %zu bytes\n", count,
              kWarmUpCycles, handles, handlesNow, memory, memoryNow);
  const auto cycles = static_cast<std::size_t>(count - kWarmUpCycles);
  if (handlesNow > handles || memoryNow > memory + cycles * kMemoryPerCycle) {
    std::fprintf(stderr, "FAILED: handles or memory grew\n");
    return 1;
  }
  return 0;
}
