#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/faults/InlineThreading.h"
#include "tests/faults/ScriptedPeer.h"
#include "tests/support/Binding.h"
#include "tests/support/DataFolder.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/FailingSockets.h"
#include "tests/support/FailingThreading.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/WholeAgent.h"

namespace Agent::Tests {

// A machine on which a test can let any single call fail. It has a disk of its
// own, a peer that sends one update and one faulty message, and no timers. The
// call that starts a thread runs it to its end. One thread.
class FaultMachine {
 public:
  FaultMachine();

  [[nodiscard]] TestMachine Seams() {
    return {clock, files, sockets, threading, clock, timerThreading};
  }

  // The content of the log's files, one after another: the bytes, and the lines
  // without their time stamps. Does not include the lines that went to the console
  // before there was a log.
  [[nodiscard]] std::string LogText() const;
  [[nodiscard]] std::vector<std::string> LogLines() const;
  [[nodiscard]] int CountLines(const std::string& line) const;

  Vask::Tests::FaultPlan clockPlan;
  Vask::Tests::FaultPlan filesPlan;
  Vask::Tests::FaultPlan socketsPlan;
  Vask::Tests::FaultPlan threadingPlan;

  Vask::Tests::JumpingClock clock{clockPlan};
  Vask::Tests::DataFolder disk;
  Vask::Tests::FailingFiles files{disk, filesPlan};
  ScriptedPeer peer;
  Vask::Tests::FailingSockets sockets{peer, socketsPlan};
  InlineThreading inlineThreads;
  NoThreads noThreads;
  Vask::Tests::FailingThreading threading{inlineThreads, threadingPlan};
  Vask::Tests::FailingThreading timerThreading{noThreads, threadingPlan};
};

// The whole agent on such a machine. The link runs within the call that starts
// the agent, until the peer has sent everything, so every run makes the same
// calls.
class FaultStand : public FaultMachine {
 public:
  // The n-th event or thread of the agent fails; 0: none. The constructor creates
  // events, so the plan begins with it.
  static constexpr int kAllEvents = -1;
  explicit FaultStand(int failingEvent = 0);

  // The module's exports.
  BOOL Init();
  BOOL Query(BYTE type, Vask::Tests::Binding& binding);
  std::vector<AsnInteger> TakeTraps();  // their specific numbers

  // Returns "P.2.0 = INT 12" or "no P.2.0"; the same for every variable; and the
  // names of a walk.
  std::string Get(const std::string& name);
  std::vector<std::string> GetAll();
  std::vector<std::string> Walk();

  WholeAgent whole;
};

using Lines = std::vector<std::string>;
using Traps = std::vector<AsnInteger>;

// The result of Walk at any time.
inline const Lines kWholeWalk{"P.0.0", "P.1.0", "P.1.1", "P.2.0",
                              "P.2.1", "P.2.2", "P.2.3", "P.2.4"};
// The traps of the peer's update: errors and silence rise from 0, and it finishes.
inline const Traps kTrapsOfUpdate{13, 15, 17, 10};

// The results of GetAll after the peer's update, and before it.
std::vector<std::string> UpdatedValues();
std::vector<std::string> FirstValues();

}  // namespace Agent::Tests
