#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/contract/Library.h"
#include "tests/support/MachinePauses.h"

namespace Contract {

// How a process ended that had the module loaded.
struct ProcessEnd {
  int status;            // its exit status
  std::uint32_t tookMs;  // from the return of its main, without the machine's pauses
};

// Runs the program module_exit, which brings the module into a state, notes the
// time and returns from main without unloading. One at a time in a folder.
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
