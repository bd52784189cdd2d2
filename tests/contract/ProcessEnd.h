#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/contract/Library.h"
#include "tests/support/MachinePauses.h"

namespace Contract {

// The end of a process that has the module loaded.
struct ProcessEnd {
  int status;            // its exit status
  std::uint32_t tookMs;  // from the return of its main, without the machine's pauses
};

// Runs the program module_exit. It brings the module into a state, writes the time to
// a file and returns from main without unloading. Only one may run in a folder.
inline ProcessEnd RunToItsEnd(const std::string& moduleExit, const std::string& state) {
  const char* const noteFile = "module_exit.note";
  std::remove(noteFile);
  Vask::Tests::MachinePauses pauses;
  const int status = RunProgram(moduleExit, {state, noteFile});
  std::int64_t begin = 0;  // of a clock that all processes share
  std::ifstream(noteFile) >> begin;
  using Clock = Vask::Tests::MachinePauses::Clock;
  const std::uint32_t tookMs =
      pauses.RunningMsSince(Clock::time_point(std::chrono::milliseconds(begin)));
  std::remove(noteFile);
  return {status, tookMs};
}

}  // namespace Contract
