#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "Src/TimerService.h"
#include "agent/MyConnectNotify.h"
#include "agent/VariableUpdates.h"
#include "json/Json.h"
#include "messages/Registrar.h"
#include "net/LinkInterfaces.h"
#include "tests/agent/AgentFixture.h"
#include "tests/agent/TakenTrap.h"

namespace Agent::Tests {

// Stands in for the link: keeps the bytes that each message would have.
class RecordingLink final : public Vask::IOnJsonMessage {
 public:
  bool OnJsonMessage(Vask::Json* message) override {
    std::string body;
    message->Write(body);
    frames.push_back(std::to_string(body.size()) + "#" + body);
    return true;
  }
  std::vector<std::string> frames;
};

inline std::string UpdateRequestFrame() {
  return R"(70#{"data":{},"from":"SNMPd","id":0,"name":"SNMPupdate","op":"broadcast"})";
}

// An agent that has started but for its threads: the test plays the link and
// turns the timer service by hand.
class UpdatesTest : public AgentTest {
 protected:
  UpdatesTest() {
    Messages::Registrar::Instance().SetSender(&link);
    Messages::Registrar::Instance().SetFrom("SNMPd");
  }
  ~UpdatesTest() override { Messages::Registrar::Instance().SetSender(nullptr); }

  // Moves the clock and calls everybody whose time has come.
  void Pass(std::uint32_t milliseconds) {
    clock.Advance(milliseconds);
    while (timers.Step() == 0) {
    }
  }

  // Specific numbers of all traps that wait, taken out of the queue.
  std::vector<AsnInteger> TakeTraps() {
    std::vector<AsnInteger> numbers;
    TakenTrap trap;
    while (trap.TakeFrom(agent)) numbers.push_back(trap.specific);
    return numbers;
  }

  // The log without the lines of traps queued and taken.
  std::vector<std::string> LinesBesideTraps() const {
    std::vector<std::string> lines;
    for (const std::string& line : log.Lines())
      if (line.find("SNMPExtensionAgent") == std::string::npos) lines.push_back(line);
    return lines;
  }

  RecordingLink link;
  Vask::TimerService timers{clock, Vask::Platform::SystemThreading()};
  MyConnectNotify connectNotify{agent, timers, Messages::Registrar::Instance()};
  VariableUpdates updates{agent, connectNotify, Messages::Registrar::Instance()};
};

using Traps = std::vector<AsnInteger>;

}  // namespace Agent::Tests
