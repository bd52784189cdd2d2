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

// The state that commands share, and the waits that a stop request ends. For one
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

  // The command `quit` calls Quit.
  void Quit() { m_quit = true; }
  bool HasQuit() const { return m_quit; }

  // Parses a line and runs it. On failure `error` is a phrase with the reason.
  [[nodiscard]] bool Execute(std::string_view line, std::string& error);

  // A stop request ends each of these early. The Await functions return false if
  // the event did not come.
  void Wait(std::chrono::milliseconds time);
  [[nodiscard]] bool AwaitConnected(bool connected, std::chrono::milliseconds patience);
  // Waits for the next message of that name after the last awaited one.
  [[nodiscard]] bool AwaitMessage(std::string_view name, std::chrono::milliseconds patience);

 private:
  bool Await(const std::function<bool(const Record&)>& wanted, std::chrono::milliseconds patience);

  CorvaneServer& m_server;
  Surroundings m_surroundings;
  bool m_quit = false;
  std::size_t m_nextMessage = 0;  // the first one after the last awaited one
};

}  // namespace Simulator
