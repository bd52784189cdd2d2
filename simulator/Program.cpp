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

// The commands of a scenario, one for each line.
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
               " (is another program using it?)");
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

  // Reads the whole file before any command runs, and reports every bad line.
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

  // A wait that a stop request ended is no failure.
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
      error = "unknown option \"" + name + "\"; --help lists the options";
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
  return "Usage: corvane-sim [--port PORT] [--script FILE] [--help] [--version]\n"
         "\n"
         "Simulates the Corvane process's side of the SNMP agent's link: listens on\n"
         "127.0.0.1, answers the agent's update requests, and prints what it receives.\n"
         "\n"
         "  --port PORT    listen on this port, 0 for any free port (default: 16969, the\n"
         "                 agent's port)\n"
         "  --script FILE  run the commands in FILE first. If FILE holds a bad line, the\n"
         "                 program runs none of them and ends\n"
         "  --help         print this text\n"
         "  --version      print the version\n"
         "\n"
         "The program reads commands from FILE, then from standard input, one per line:\n"
         "\n" +
         CommandHelp() +
         "\n\n"
         "If a line is bad or its command fails, the program reports the line with its\n"
         "number, changes nothing and reads the next line. The program ends on `quit`, on\n"
         "SIGINT (Ctrl-C) or SIGTERM, and at the end of input that is typed at a terminal.\n"
         "When other input ends (a pipe, a file, /dev/null), the program continues to serve.\n"
         "\n"
         "Exit status: 0 on success; 1 if a command failed or the port is not available; 2 if\n"
         "the command line or FILE has an error.\n";
}

std::string VersionText() {
  return "corvane-sim " CORVANE_VERSION_TEXT "\n";
}

int RunProgram(const ProgramOptions& options, ProgramSurroundings surroundings) {
  return Program(options, std::move(surroundings)).Run();
}

}  // namespace Simulator
