// corvane-sim: see HelpText.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "simulator/Console.h"
#include "simulator/Program.h"

namespace {

void PrintTo(std::FILE* file, const std::string& line) {
  static_cast<void>(std::fputs((line + '\n').c_str(), file));
  static_cast<void>(std::fflush(file));
}

int Serve(const Simulator::ProgramOptions& options) {
  Simulator::CatchStopSignals();
  Simulator::StandardInputLines input;
  Simulator::ProgramSurroundings surroundings;
  surroundings.print = [](const std::string& line) { PrintTo(stdout, line); };
  surroundings.printError = [](const std::string& line) { PrintTo(stderr, line); };
  surroundings.stopRequested = &Simulator::StopSignalCame;
  surroundings.input = &input;
  surroundings.endWithInput = Vask::Platform::StandardInputIsTerminal();
  return Simulator::RunProgram(options, surroundings);
}

}  // namespace

int main(int count, char** arguments) {
  Simulator::ProgramOptions options;
  std::string error;
  if (!Simulator::ParseOptions({arguments + 1, arguments + count}, options, error)) {
    PrintTo(stderr, "corvane-sim: " + error);
    return 2;
  }
  if (options.help || options.version) {
    const std::string text = options.help ? Simulator::HelpText() : Simulator::VersionText();
    static_cast<void>(std::fputs(text.c_str(), stdout));
    return 0;
  }
  const int status = Serve(options);
  // The thread of standard input may still wait in a read, so nothing that it
  // uses may be destroyed.
  std::_Exit(status);
}
