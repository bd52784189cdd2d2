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

// A machine of which any single call can be made to fail. It has a disk of its
// own, a peer that sends one update and one faulty message, and no timers. A
// thread is run to its end by whoever starts it. One thread.
class FaultMachine {
 public:
  FaultMachine();

  [[nodiscard]] TestMachine Seams() {
    return {clock, files, sockets, threading, clock, timerThreading};
  }

  // What is in the log's files, one after another: the bytes, and the lines
  // without their time stamps. What went to the console before there was a log
  // is not among them.
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
// the agent, until the peer has nothing more to say, so that every run makes the
// same calls.
class FaultStand : public FaultMachine {
 public:
  // The agent makes its events here: the plan for `threading` may begin with it.
  static constexpr int kAllEvents = -1;
  explicit FaultStand(int failingEvent = 0);

  // What the module's exports do.
  BOOL Init();
  BOOL Query(BYTE type, Vask::Tests::Binding& binding);
  std::vector<AsnInteger> TakeTraps();  // their specific numbers

  // "P.2.0 = INT 12", or "no P.2.0"; the same for every variable; and the names
  // of a walk.
  std::string Get(const std::string& name);
  std::vector<std::string> GetAll();
  std::vector<std::string> Walk();

  WholeAgent whole;
};

using Lines = std::vector<std::string>;
using Traps = std::vector<AsnInteger>;

// What Walk answers at any time.
inline const Lines kWholeWalk{"P.0.0", "P.1.0", "P.1.1", "P.2.0",
                              "P.2.1", "P.2.2", "P.2.3", "P.2.4"};
// What the peer's update raises: errors and silence rise from 0, and it is finished.
inline const Traps kTrapsOfUpdate{13, 15, 17, 10};

// What GetAll answers once the peer's update was applied, and at first.
std::vector<std::string> UpdatedValues();
std::vector<std::string> FirstValues();

}  // namespace Agent::Tests
