#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "simulator/Console.h"

namespace Simulator {

// The options of the command line.
struct ProgramOptions {
  static constexpr std::uint16_t kAgentPort = 16969;

  std::uint16_t port = kAgentPort;  // 0: any free one
  std::string script;               // a file's path; empty: none
  bool help = false;
  bool version = false;
};

// Reads the arguments after the program's name. On failure `error` is a phrase
// with the reason.
[[nodiscard]] bool ParseOptions(const std::vector<std::string>& arguments, ProgramOptions& options,
                                std::string& error);

// What --help and --version print.
[[nodiscard]] std::string HelpText();
[[nodiscard]] std::string VersionText();

// What the program gets from its caller. Each printer gets one line without its
// line end; any thread may call it, one call at a time.
struct ProgramSurroundings {
  std::function<void(const std::string& line)> print;       // what happens
  std::function<void(const std::string& line)> printError;  // what went wrong
  std::function<bool()> stopRequested;
  ILineSource* input = nullptr;
  bool endWithInput = false;  // end the program when the input ends
};

// Serves until something ends it, and returns the exit status. See HelpText.
[[nodiscard]] int RunProgram(const ProgramOptions& options, ProgramSurroundings surroundings);

}  // namespace Simulator
