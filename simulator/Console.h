#pragma once

#include <string>

namespace Simulator {

// What the program takes from the console that started it: lines of standard
// input, and signals.

enum class LineState {
  Read,     // a line was read
  Ended,    // there will be no more lines
  Nothing,  // no line has come yet
};

// A source of commands.
class ILineSource {
 public:
  virtual ~ILineSource() = default;
  // Reads the next line without its line end. Waits for a short time only.
  virtual LineState NextLine(std::string& line) = 0;
};

// The lines of standard input. A detached thread reads them, because nothing can
// end a read from a terminal. The thread and its data live until the process
// ends, so do not return from main while an object exists: call std::_Exit. One
// object per process.
class StandardInputLines final : public ILineSource {
 public:
  StandardInputLines();
  StandardInputLines(const StandardInputLines&) = delete;
  StandardInputLines& operator=(const StandardInputLines&) = delete;
  LineState NextLine(std::string& line) override;

 private:
  struct Shared;
  Shared* const m_shared;  // for the life of the process
};

// From now on SIGINT (Ctrl-C) and SIGTERM do not end the process;
// StopSignalCame reports them.
void CatchStopSignals();

// Whether one of the two signals has come. Any thread.
[[nodiscard]] bool StopSignalCame();

}  // namespace Simulator
