#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Simulator {

class Session;

// A parsed line, ready to run. Returns false on failure; `error` is then a phrase
// with the reason.
using Command = std::function<bool(Session& session, std::string& error)>;

// Parses one line of a scenario or of standard input, and runs nothing. A blank
// line or a comment becomes a command that does nothing. False for a bad line;
// `error` is then a phrase with the reason.
[[nodiscard]] bool ParseCommand(std::string_view line, Command& command, std::string& error);

// Returns the commands, one or more lines each, as --help and `help` print them.
[[nodiscard]] std::string CommandHelp();

}  // namespace Simulator
