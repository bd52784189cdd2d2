#pragma once

#include <atomic>
#include <cstdint>
#include <iterator>

#include "agent/Traps.h"
#include "tests/agent/AgentFixture.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/WholeAgent.h"

namespace Agent::Tests {

inline constexpr std::uint32_t kFlood = 100'000;

// Keeps no line, so that a flood measures the queue and not the memory of the
// log.
class SilentLog final : public Vask::Tests::LinesOnlyLog {
 public:
  SilentLog() { Vask::LogPrinter::Instance().SetTarget(this); }
  ~SilentLog() override { Vask::LogPrinter::Instance().SetTarget(nullptr); }
  void Info(const char*) override { lines.fetch_add(1, std::memory_order_relaxed); }
  void Warning(const char*) override {}
  void Error(const char*) override {}
  void Trace(const char*) override {}

  std::atomic<std::uint32_t> lines{0};
};

class TrapFloodTest : public ::testing::Test {
 protected:
  TrapFloodTest() { agent.RegisterTraps(); }

  static const TrapRow& TrapOf(std::uint32_t i) { return kTraps[i % std::size(kTraps)]; }

  void QueueAll() {
    for (std::uint32_t i = 0; i < kFlood; ++i) agent.Traps().Queue(TrapOf(i).name);
  }

  // Takes all waiting traps, like the service after each wake-up.
  void Drain() {
    TakenTrap trap;
    while (trap.TakeFrom(agent)) {
      if (static_cast<std::uint32_t>(trap.specific) != TrapOf(taken).specificTrap) ++outOfOrder;
      ++taken;
    }
  }

  bool WaitForEvent() {
    return Vask::Platform::SystemThreading().WaitEvent(agent.Traps().EventHandle(), 10'000);
  }

  Vask::Tests::FakeClock clock;
  SilentLog log;
  SNMPExtensionAgent agent{clock, Vask::Platform::SystemThreading()};
  std::uint32_t taken = 0;
  std::uint32_t outOfOrder = 0;
};

}  // namespace Agent::Tests
