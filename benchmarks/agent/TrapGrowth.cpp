// What a trap costs, by the number of traps that wait.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "agent/TrapTable.h"

namespace {

using Agent::TrapQueue;

const std::string kName = "AudioSourcesSilence";

bool Fill(TrapQueue& queue, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) {
    if (!queue.Append(11, kName)) return false;
  }
  return true;
}

// The steps of one trap, behind all that wait: those of TrapTable::Queue, and one that the
// service takes.
void QueueAndTakeOne(benchmark::State& state) {
  TrapQueue queue;
  if (!Fill(queue, state.range(0))) return state.SkipWithError("no memory");
  for ([[maybe_unused]] const auto& iteration : state) {
    queue.PurgeSent();
    if (!queue.Append(11, kName) || !queue.Take()) state.SkipWithError("no trap");
  }
}
BENCHMARK(QueueAndTakeOne)->RangeMultiplier(2)->Range(1, 1'000'000);

void QueueAndTakeAll(benchmark::State& state) {
  for ([[maybe_unused]] const auto& iteration : state) {
    TrapQueue queue;
    if (!Fill(queue, state.range(0))) state.SkipWithError("no memory");
    while (queue.Take()) {
    }
    queue.PurgeSent();
  }
}
BENCHMARK(QueueAndTakeAll)->RangeMultiplier(2)->Range(1, 1'000'000);

}  // namespace
