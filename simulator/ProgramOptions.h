#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Simulator {

// What the command line asks for.
struct ProgramOptions {
  static constexpr std::uint16_t kAgentPort = 16969;

  std::uint16_t port = kAgentPort;  // 0: any free one
  std::string script;               // a file's path; empty: none
  bool help = false;
  bool version = false;
};

// Reads the arguments after the program's name. On failure `error` says why, as
// a phrase.
[[nodiscard]] bool ParseOptions(const std::vector<std::string>& arguments, ProgramOptions& options,
                                std::string& error);

// What --help and --version print.
[[nodiscard]] std::string HelpText();
[[nodiscard]] std::string VersionText();

}  // namespace Simulator
