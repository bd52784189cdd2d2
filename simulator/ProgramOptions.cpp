#include "simulator/ProgramOptions.h"

#include "BuildSettings.h"
#include "simulator/Command.h"
#include "simulator/Text.h"

namespace Simulator {

namespace {

bool ParsePort(const std::string& text, std::uint16_t& port, std::string& error) {
  std::uint32_t number = 0;
  if (!ParseCount(text, number) || number > 0xFFFF) {
    error = "--port expects a number from 0 to 65535, not \"" + text + '"';
    return false;
  }
  port = static_cast<std::uint16_t>(number);
  return true;
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& arguments, ProgramOptions& options,
                  std::string& error) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (name == "--help" || name == "-h") {
      options.help = true;
    } else if (name == "--version") {
      options.version = true;
    } else if (name != "--port" && name != "--script") {
      error = "no option is called \"" + name + "\"; --help shows them";
      return false;
    } else if (++i == arguments.size()) {
      error = name + " expects a value";
      return false;
    } else if (name == "--script") {
      options.script = arguments[i];
    } else if (!ParsePort(arguments[i], options.port, error)) {
      return false;
    }
  }
  return true;
}

std::string HelpText() {
  return "usage: corvane-sim [--port PORT] [--script FILE] [--help] [--version]\n"
         "\n"
         "Plays the Corvane process's side of the SNMP agent's link: listens on 127.0.0.1,\n"
         "answers the agent's requests for an update, and prints what it receives.\n"
         "\n"
         "  --port PORT    listen there, 0 for any free port (16969, where the agent looks)\n"
         "  --script FILE  run the commands in FILE first. A file with a line that is not\n"
         "                 understood is refused as a whole\n"
         "  --help         print this text\n"
         "  --version      print the version\n"
         "\n"
         "Commands are read from the scenario file, then from standard input, one a line:\n"
         "\n" +
         CommandHelp() +
         "\n\n"
         "A line that is not understood, or cannot be done, is reported with its number and\n"
         "changes nothing; the next one is read. The program ends with `quit`, with SIGINT\n"
         "(Ctrl-C) or SIGTERM, and at the end of input that is typed at a terminal. When\n"
         "other input ends (a pipe, a file, /dev/null) it goes on serving.\n"
         "\n"
         "Exit status: 0; 1 when a command failed or the port cannot be had; 2 when the\n"
         "command line or the scenario file is not understood.\n";
}

std::string VersionText() {
  return "corvane-sim " CORVANE_VERSION_TEXT "\n";
}

}  // namespace Simulator
