#include "simulator/Program.h"

#include <chrono>
#include <cstddef>
#include <fstream>
#include <utility>

#include "BuildSettings.h"
#include "simulator/Command.h"
#include "simulator/CorvaneServer.h"
#include "simulator/Session.h"
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

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kNotUnderstood = 2;

constexpr std::chrono::milliseconds kServingSlice{200};

// The lines of a scenario and what each asks for.
struct Scenario {
  std::vector<Command> commands;
};

std::string Where(const std::string& source, std::size_t number) {
  return source + ':' + std::to_string(number) + ": ";
}

class Program {
 public:
  Program(const ProgramOptions& options, ProgramSurroundings surroundings)
      : m_options(options),
        m_surroundings(std::move(surroundings)),
        m_server({options.port, true, false, m_surroundings.print}),
        m_session(m_server, {m_surroundings.print, m_surroundings.stopRequested}) {}

  int Run() {
    Scenario scenario;
    if (!m_options.script.empty() && !Load(scenario)) return kNotUnderstood;
    if (!m_server.Start()) {
      Complain("cannot listen on 127.0.0.1:" + std::to_string(m_options.port) +
               "; is something else listening there?");
      return kFailed;
    }
    m_surroundings.print("listening on 127.0.0.1:" + std::to_string(m_server.Port()));
    RunScenario(scenario);
    ServeInput();
    m_server.Stop();
    m_surroundings.print("ended");
    return m_status;
  }

 private:
  bool Ending() const { return m_session.HasQuit() || m_session.StopRequested(); }

  void Complain(const std::string& text) { m_surroundings.printError("corvane-sim: " + text); }

  // Reads all of it before any of it runs, and complains of every bad line.
  bool Load(Scenario& scenario) {
    std::ifstream file(m_options.script);
    if (!file) {
      Complain("cannot read " + m_options.script);
      return false;
    }
    bool good = true;
    std::string line;
    while (std::getline(file, line)) {
      std::string error;
      Command& command = scenario.commands.emplace_back();
      if (ParseCommand(line, command, error)) continue;
      Complain(Where(m_options.script, scenario.commands.size()) + error);
      good = false;
    }
    return good;
  }

  void RunScenario(const Scenario& scenario) {
    for (std::size_t i = 0; i < scenario.commands.size() && !Ending(); ++i) {
      std::string error;
      if (!scenario.commands[i](m_session, error)) Fail(Where(m_options.script, i + 1) + error);
    }
  }

  void ServeInput() {
    std::string line;
    std::string error;
    for (std::size_t number = 1; !Ending();) {
      switch (m_surroundings.input->NextLine(line)) {
        case LineState::Read:
          if (!m_session.Execute(line, error)) Fail(Where("standard input", number) + error);
          ++number;
          break;
        case LineState::Ended:
          if (m_surroundings.endWithInput) return;
          m_session.Wait(kServingSlice);
          break;
        case LineState::Nothing:
          break;
      }
    }
  }

  // A wait that a stop request cut short is no failure.
  void Fail(const std::string& text) {
    if (m_session.StopRequested()) return;
    Complain(text);
    m_status = kFailed;
  }

  const ProgramOptions& m_options;
  const ProgramSurroundings m_surroundings;
  CorvaneServer m_server;
  Session m_session;
  int m_status = kDone;
};

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

int RunProgram(const ProgramOptions& options, ProgramSurroundings surroundings) {
  return Program(options, std::move(surroundings)).Run();
}

}  // namespace Simulator
