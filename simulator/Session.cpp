#include "simulator/Session.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "simulator/Command.h"
#include "simulator/Text.h"

namespace Simulator {

namespace {

// The longest time until a wait notices a stop request.
constexpr std::chrono::milliseconds kSlice{50};

}  // namespace

Session::Session(CorvaneServer& server, Surroundings surroundings)
    : m_server(server), m_surroundings(std::move(surroundings)) {}

bool Session::Execute(std::string_view line, std::string& error) {
  Command command;
  return ParseCommand(line, command, error) && command(*this, error);
}

void Session::Wait(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  for (auto now = std::chrono::steady_clock::now(); now < end && !StopRequested();
       now = std::chrono::steady_clock::now()) {
    std::this_thread::sleep_for(
        std::min(kSlice, std::chrono::ceil<std::chrono::milliseconds>(end - now)));
  }
}

bool Session::AwaitConnected(bool connected, std::chrono::milliseconds patience) {
  return Await([=](const Record& record) { return record.Connected() == connected; }, patience);
}

bool Session::AwaitMessage(std::string_view name, std::chrono::milliseconds patience) {
  std::size_t found = 0;
  const auto isThere = [&](const Record& record) {
    for (found = m_nextMessage; found < record.messages.size(); ++found) {
      if (EqualsIgnoringCase(record.messages[found].name, name)) return true;
    }
    return false;
  };
  if (!Await(isThere, patience)) return false;
  m_nextMessage = found + 1;
  return true;
}

bool Session::Await(const std::function<bool(const Record&)>& wanted,
                    std::chrono::milliseconds patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!m_server.WaitFor(wanted, kSlice)) {
    if (StopRequested() || std::chrono::steady_clock::now() >= end) return false;
  }
  return true;
}

}  // namespace Simulator
