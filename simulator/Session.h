#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/CorvaneServer.h"

namespace Simulator {

// The state that commands share, and the waits that a stop request ends. One
// thread.
class Session {
 public:
  struct Surroundings {
    std::function<void(const std::string& line)> print;
    std::function<bool()> stopRequested;
  };

  Session(CorvaneServer& server, Surroundings surroundings);

  CorvaneServer& Server() { return m_server; }
  void Print(const std::string& line) { m_surroundings.print(line); }
  bool StopRequested() const { return m_surroundings.stopRequested(); }

  // Told to end by `quit`.
  void Quit() { m_quit = true; }
  bool HasQuit() const { return m_quit; }

  // Understands a line and does it. On failure `error` says why, as a phrase.
  [[nodiscard]] bool Execute(std::string_view line, std::string& error);

  // Each ends early when a stop is requested. The answer of the Await functions
  // is whether it came to pass.
  void Wait(std::chrono::milliseconds time);
  [[nodiscard]] bool AwaitConnected(bool connected, std::chrono::milliseconds patience);
  // The next message of that name, after the one that was awaited last.
  [[nodiscard]] bool AwaitMessage(std::string_view name, std::chrono::milliseconds patience);

 private:
  bool Await(const std::function<bool(const Record&)>& wanted, std::chrono::milliseconds patience);

  CorvaneServer& m_server;
  Surroundings m_surroundings;
  bool m_quit = false;
  std::size_t m_nextMessage = 0;  // the first that no await has passed yet
};

}  // namespace Simulator
