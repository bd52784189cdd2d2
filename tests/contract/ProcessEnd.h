#pragma once

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "platform/Clock.h"
#include "tests/contract/Library.h"

namespace Contract {

// How a process ended that had the module loaded.
struct ProcessEnd {
  int status;            // its exit status
  std::uint32_t tookMs;  // from the return of its main
};

// Runs the program module_exit, which brings the module into a state, notes the
// time and returns from main without unloading. One at a time in a folder.
inline ProcessEnd RunToItsEnd(const std::string& moduleExit, const std::string& state) {
  const char* const noteFile = "module_exit.note";
  std::remove(noteFile);
  const int status = RunProgram(moduleExit, {state, noteFile});
  const std::uint32_t end = Vask::Platform::SystemClock().TickMs();
  std::uint32_t begin = 0;
  std::ifstream(noteFile) >> begin;
  std::remove(noteFile);
  return {status, end - begin};
}

}  // namespace Contract
