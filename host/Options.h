#pragma once

#include <string>
#include <vector>

namespace Host {

// The options of the command line.
struct Options {
  std::string module;
  bool registered = false;               // true: find the module by its registration
  std::vector<std::string> listen;       // empty only behind AgentX
  std::vector<std::string> communities;  // empty only behind AgentX; traps carry the first one
  std::vector<std::string> trapSinks;
  std::string agentxSocket;  // empty: the host is an agent itself
  std::string user;          // empty: no SNMPv3 user
  std::string passPhrase;
  bool help = false;
  bool version = false;
};

// The result of reading the command line. The error is empty on success and
// otherwise one line that names the argument.
struct ParsedOptions {
  Options options;
  std::string error;
};
// Reads the arguments after the program's name.
[[nodiscard]] ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

// Returns the text of --help.
[[nodiscard]] const char* HelpText();

}  // namespace Host
