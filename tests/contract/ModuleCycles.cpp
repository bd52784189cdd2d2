// module_cycles [CYCLES EXITS | --full]: loads and unloads the module many times.
//
// It loads, starts and unloads the module CYCLES times for each kind of cycle: without
// a peer, with a peer that floods it, with a peer that accepts and stays silent, and
// with an unload at once. Then it ends EXITS processes while threads are busy in the
// module. --full is 1000 and 100; without arguments it is a tenth of that.
//
// It fails if an answer is wrong, or if a stop or an end takes too long. It fails also if
// a kind of cycle leaves handles, thread slots or memory behind. The peers are processes
// of their own, so that all resources counted here are the module's.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/Clock.h"
#include "platform/Sockets.h"
#include "tests/contract/Eventually.h"
#include "tests/contract/Library.h"
#include "tests/contract/LogFolder.h"
#include "tests/contract/Module.h"
#include "tests/contract/ProcessEnd.h"
#include "tests/support/BuildFolder.h"
#include "tests/support/MachinePauses.h"

namespace {

// The system and the run-time fill their caches in the first cycles.
constexpr int kWarmUpCycles = 20;

constexpr std::size_t kMostMemoryPerCycle = 1024;
// Without the pauses of the machine.
constexpr std::uint32_t kLongestStopMs = 500;

// From the return of main to the end that another process sees. It includes the
// system's own work, also that for a sanitizer.
constexpr std::uint32_t kLongestEndMs = 1000;

bool TryTheLink(Contract::Module&) {
  Vask::Platform::SystemClock().SleepMs(20);
  return true;
}
bool LinkIsUp(Contract::Module& module) {
  return Contract::Eventually([&] { return module.Get("P.0.0") == "0 P.0.0 = INT 0"; });
}
bool FloodIsServed(Contract::Module& module) {
  return Contract::Eventually([&] { return module.Get("P.2.0") == "0 P.2.0 = INT 77"; });
}
bool AtOnce(Contract::Module&) {
  return true;
}

struct Kind {
  const char* name;
  const char* peer;  // null: no peer
  bool (*reachesState)(Contract::Module& module);
};
constexpr Kind kKinds[] = {
    {"no peer", nullptr, &TryTheLink},
    {"flooding peer", "flood", &FloodIsServed},
    {"silent peer", "silent", &LinkIsUp},
    {"unload at once", nullptr, &AtOnce},
};

struct Holdings {
  std::size_t handles;
  std::size_t freeThreadSlots;
  std::size_t memory;
};

Holdings Measure() {
  return {Contract::OpenHandles(), Contract::FreeThreadSlots(), Contract::HeldMemory()};
}

bool NothingWasLeft(const Holdings& before, const Holdings& after, int cycles) {
  return after.handles <= before.handles && after.freeThreadSlots >= before.freeThreadSlots &&
         after.memory <= before.memory + static_cast<std::size_t>(cycles) * kMostMemoryPerCycle;
}

std::unique_ptr<Contract::Companion> StartPeer(const char* mode) {
  if (mode == nullptr) return nullptr;
  return std::make_unique<Contract::Companion>(Vask::Tests::InBuildFolder(CORVANE_MODULE_PEER),
                                               std::vector<std::string>{mode});
}

// Returns the duration of the unload in `stopMs`. False if the module does not serve.
bool Cycle(const Kind& kind, Vask::Tests::MachinePauses& pauses, std::uint32_t& stopMs) {
  Contract::Module module;
  if (!module.Init().result || !module.GetNext("P.0").starts_with("0 P.0.0 = INT ")) return false;
  if (!kind.reachesState(module)) return false;
  const auto begin = Vask::Tests::MachinePauses::Clock::now();
  module.Unload();
  stopMs = pauses.RunningMsSince(begin);
  return true;
}

bool CyclesHold(const Kind& kind, int cycles) {
  const auto peer = StartPeer(kind.peer);
  Vask::Tests::MachinePauses pauses;
  Holdings before{};
  std::uint32_t longestMs = 0;
  for (int i = 1; i <= kWarmUpCycles + cycles; ++i) {
    std::uint32_t stopMs = 0;
    if (!Cycle(kind, pauses, stopMs)) {
      std::printf("%-14s  FAILED in cycle %d: the module does not serve\n", kind.name, i);
      return false;
    }
    longestMs = std::max(longestMs, stopMs);
    if (i == kWarmUpCycles) {
      // Threads that are about to end still hold resources.
      Vask::Platform::SystemClock().SleepMs(300);
      before = Measure();
    }
  }
  Holdings after{};
  const bool clean = Contract::Eventually([&] {
    after = Measure();
    return NothingWasLeft(before, after, cycles);
  });
  const bool good = longestMs <= kLongestStopMs && clean;
  std::printf("%-14s  %5d  %4u ms  %4zu -> %-4zu  %4zu -> %-4zu  %9zu -> %-9zu  %8.1f%s\n",
              kind.name, cycles, longestMs, before.handles, after.handles, before.freeThreadSlots,
              after.freeThreadSlots, before.memory, after.memory,
              (static_cast<double>(after.memory) - static_cast<double>(before.memory)) / cycles,
              good ? "" : "  FAILED");
  return good;
}

bool ExitsHold(int exits) {
  const auto peer = StartPeer("flood");
  std::uint32_t longestMs = 0;
  for (int i = 1; i <= exits; ++i) {
    const Contract::ProcessEnd end =
        Contract::RunToItsEnd(Vask::Tests::InBuildFolder(CORVANE_MODULE_EXIT), "busy");
    if (end.status != 0) {
      std::printf("process end %d  FAILED: exit status %d\n", i, end.status);
      return false;
    }
    longestMs = std::max(longestMs, end.tookMs);
  }
  const bool good = longestMs <= kLongestEndMs;
  std::printf("%d process ends with busy threads, the longest in %u ms%s\n", exits, longestMs,
              good ? "" : "  FAILED");
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  const bool full = argc == 2 && std::strcmp(argv[1], "--full") == 0;
  const int cycles = argc == 3 ? std::atoi(argv[1]) : full ? 1000 : 100;
  const int exits = argc == 3 ? std::atoi(argv[2]) : full ? 100 : 10;
  if ((argc > 1 && argc != 3 && !full) || cycles <= 0 || exits <= 0) {
    std::fprintf(stderr, "usage: %s [CYCLES EXITS | --full]\n", argv[0]);
    return 2;
  }
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  Contract::CountWholeHeap();
  const Contract::LogFolder folder;
  // A host of the module uses sockets itself. Without this call the system would load
  // and unload its socket library with the module, and that library leaves memory for
  // each thread behind.
  if (!Vask::Platform::SystemSockets().StartUp()) return 2;

  std::printf("%-14s  %5s  %7s  %-12s  %-12s  %-22s  %8s\n", "kind", "count", "stop", "handles",
              "free slots", "heap", "a cycle");
  int failed = 0;
  for (const Kind& kind : kKinds) failed += CyclesHold(kind, cycles) ? 0 : 1;
  failed += ExitsHold(exits) ? 0 : 1;
  std::printf("%zu passed, %d failed\n", std::size(kKinds) + 1 - static_cast<std::size_t>(failed),
              failed);
  return failed == 0 ? 0 : 1;
}
