// What a timer costs, by the number of timers.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "Src/TimerService.h"
#include "tests/support/ForwardingClock.h"

namespace {

constexpr std::uint32_t kPeriodMs = 1000;

struct StillClock final : Vask::Tests::ForwardingClock {
  std::uint32_t TickMs() noexcept override { return tick; }

  std::uint32_t tick = 0;
};

struct Client final : Vask::ITimerServiceClient {
  void OnTimer(std::uint32_t, std::uint64_t) override { ++calls; }

  std::int64_t calls = 0;
};

// A service that no thread runs, with one timer for each of its clients. All of them are due
// at the same time.
class Timers {
 public:
  explicit Timers(std::int64_t count) : m_clients(static_cast<std::size_t>(count)) {
    for (Client& client : m_clients) service.SetTimer(kPeriodMs, &client);
  }

  // Calls one client.
  void Tick() {
    if (service.Step() != 0) clock.tick += kPeriodMs;
  }
  std::int64_t Calls() const {
    std::int64_t calls = 0;
    for (const Client& client : m_clients) calls += client.calls;
    return calls;
  }

  StillClock clock;
  Vask::TimerService service{clock};

 private:
  std::vector<Client> m_clients;
};

// The timer is due after all others.
void SetOneTimer(benchmark::State& state) {
  Timers timers(state.range(0));
  Client last;
  for ([[maybe_unused]] const auto& iteration : state) {
    timers.service.SetTimer(2 * kPeriodMs, &last);
  }
}
BENCHMARK(SetOneTimer)->RangeMultiplier(2)->Range(1, 10'000);

void CallOneTimer(benchmark::State& state) {
  Timers timers(state.range(0));
  timers.clock.tick += kPeriodMs;
  for ([[maybe_unused]] const auto& iteration : state) timers.Tick();
  if (timers.Calls() == 0) state.SkipWithError("no call");
}
BENCHMARK(CallOneTimer)->RangeMultiplier(2)->Range(1, 10'000);

}  // namespace
