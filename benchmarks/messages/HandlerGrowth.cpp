// What a message costs, by the number of its handlers.

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "messages/HandlerList.h"

namespace Messages::Benchmarks {
namespace {

constexpr std::size_t kMost = 1'000;

std::int64_t s_calls = 0;

template <std::size_t>
void Handle() {
  ++s_calls;
}

// Different functions, because a list holds each function once.
constexpr auto kHandlers = []<std::size_t... kNumber>(std::index_sequence<kNumber...>) {
  return std::array<HandlerList::Function, kMost + 1>{&Handle<kNumber>...};
}
(std::make_index_sequence<kMost + 1>());

void Call(HandlerList::Function handler, const void*, std::int32_t, void*) {
  handler();
}

void Fill(HandlerList& list, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) list.Subscribe(kHandlers[static_cast<std::size_t>(i)]);
}

void DispatchToAll(benchmark::State& state) {
  HandlerList list;
  Fill(list, state.range(0));
  s_calls = 0;
  for ([[maybe_unused]] const auto& iteration : state) list.Dispatch(nullptr, 0, &Call);
  if (s_calls % state.range(0) != 0 || s_calls == 0) state.SkipWithError("not every handler");
}
BENCHMARK(DispatchToAll)->RangeMultiplier(2)->Range(1, kMost);

void SubscribeOne(benchmark::State& state) {
  HandlerList list;
  Fill(list, state.range(0));
  for ([[maybe_unused]] const auto& iteration : state) {
    list.Subscribe(kHandlers[kMost]);
    list.Unsubscribe(kHandlers[kMost]);
  }
}
BENCHMARK(SubscribeOne)->RangeMultiplier(2)->Range(1, kMost);

}  // namespace
}  // namespace Messages::Benchmarks
