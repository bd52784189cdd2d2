#pragma once

#include <string>
#include <vector>

namespace Host {

// What the command line asks for.
struct Options {
  std::string module;
  bool registered = false;  // the registration names the module
  std::string listen = "udp:127.0.0.1:1161";
  std::string community = "public";
  std::vector<std::string> trapSinks;
  std::string agentxSocket;  // empty: the host is an agent of its own
  std::string user;          // empty: no SNMPv3 user
  std::string passPhrase;
  bool help = false;
  bool version = false;
};

// Reads the arguments (without the program's name). The error is empty on
// success and otherwise one line that names the argument.
struct ParsedOptions {
  Options options;
  std::string error;
};
[[nodiscard]] ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

// What --help prints.
[[nodiscard]] const char* HelpText();

}  // namespace Host
