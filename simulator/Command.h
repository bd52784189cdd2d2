#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Simulator {

class Session;

// What a line asks for, ready to run. Answers whether it could be done; if not,
// `error` says why, as a phrase.
using Command = std::function<bool(Session& session, std::string& error)>;

// Understands one line of a scenario or of standard input; a blank line or a
// comment gives a command that does nothing. False for a line that is not
// understood, with `error` saying why, as a phrase. Nothing is done here.
[[nodiscard]] bool ParseCommand(std::string_view line, Command& command, std::string& error);

// The commands, one or more lines each, as --help and `help` print them.
[[nodiscard]] std::string CommandHelp();

}  // namespace Simulator
