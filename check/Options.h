#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Check {

struct Options {
  std::string community;  // empty: the first of the service's list that may read
  std::uint16_t port = 161;
  std::string manager;  // empty: any permitted manager other than this machine
  bool noTraps = false;
  bool json = false;
  bool steps = false;
  bool help = false;
  bool version = false;
};

// The options, or a sentence about the wrong argument.
struct ParsedOptions {
  Options options;
  std::string error;
};

// Reads the arguments without the program's name.
[[nodiscard]] ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

// Returns the text of --help.
[[nodiscard]] std::string HelpText();

}  // namespace Check
