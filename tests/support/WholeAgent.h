#pragma once

#include "Src/DailyLog.h"
#include "Src/TimerService.h"
#include "agent/AgentProcess.h"
#include "tests/support/BareMachine.h"
#include "tests/support/FakeClock.h"
#include "tests/support/RecordingLog.h"

namespace Agent::Tests {

// What a test's agent runs on. The timer service has a clock and threads of its
// own, so that a test can let it run faster than the rest, or not at all.
struct TestMachine {
  Vask::Platform::Clock& clock;
  Vask::Platform::Files& files;
  Vask::Platform::Sockets& sockets;
  Vask::Platform::Threading& threading;
  Vask::Platform::Clock& timerClock;
  Vask::Platform::Threading& timerThreading;
};

// The agent as the module wires it, on a machine that the test chooses. Only one may
// exist at a time.
struct WholeAgent {
  explicit WholeAgent(const TestMachine& machine)
      : log(machine.clock, machine.files, machine.sockets),
        timers(machine.timerClock, machine.timerThreading),
        process({machine.clock, machine.files, machine.sockets, machine.threading}, log, timers) {}

  Vask::DailyLog log;
  Vask::TimerService timers;
  AgentProcess process;
};

// The agent after its start, on a machine without threads and network: the test
// plays the link, and drives the timer service by its Step. From the end of the
// start on, all lines go to `log`.
struct StartedAgent {
  StartedAgent() {
    static_cast<void>(whole.process.Start());  // false: there is no thread for the link
    Vask::LogPrinter::Instance().SetTarget(&log);
  }

  Vask::Tests::FakeClock clock;
  LogDisk files;
  NoNetwork sockets;
  NoThreads threading;
  WholeAgent whole{{clock, files, sockets, threading, clock, threading}};
  Vask::Tests::RecordingLog log;
};

// The outputs of one call that takes a trap.
struct TakenTrap {
  // Returns false if no trap waits.
  [[nodiscard]] bool TakeFrom(SNMPExtensionAgent& agent) {
    return agent.TakeTrap(enterprise, generic, specific, timeStamp, bindings);
  }
  [[nodiscard]] bool TakeFrom(EntryPoints& entries) {
    return entries.Trap(&enterprise, &generic, &specific, &timeStamp, &bindings) == TRUE;
  }

  AsnObjectIdentifier enterprise{};
  AsnInteger generic = 0;
  AsnInteger specific = 0;
  std::uint32_t timeStamp = 0;
  SnmpVarBindList bindings{};
};

}  // namespace Agent::Tests
