#pragma once

#include <functional>
#include <string>

#include "simulator/LineSource.h"
#include "simulator/ProgramOptions.h"

namespace Simulator {

// What the program needs of its surroundings. The two printers get one line
// without its end, on any thread, one call at a time for each.
struct ProgramSurroundings {
  std::function<void(const std::string& line)> print;       // what happens
  std::function<void(const std::string& line)> printError;  // what went wrong
  std::function<bool()> stopRequested;
  ILineSource* input = nullptr;
  bool endWithInput = false;  // end, instead of serving on, when the input ends
};

// Serves until told to end; answers the exit status. See HelpText.
[[nodiscard]] int RunProgram(const ProgramOptions& options, ProgramSurroundings surroundings);

}  // namespace Simulator
