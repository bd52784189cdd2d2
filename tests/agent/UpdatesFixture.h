#pragma once

#include <string>
#include <vector>

#include "json/Json.h"
#include "messages/Registrar.h"
#include "net/LinkInterfaces.h"
#include "tests/agent/AgentFixture.h"
#include "tests/support/WholeAgent.h"

namespace Agent::Tests {

// Takes the place of the link and keeps the bytes of each message.
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

// The agent after its start, with an empty log: the test plays the link and
// drives the timer service.
class UpdatesTest : public ::testing::Test {
 protected:
  UpdatesTest() {
    Messages::Registrar::Instance().SetSender(&link);
    log.Clear();
  }

  std::string Get(const std::string& name) {
    Binding binding(name);
    const INT status = agent.GetRequest(binding.Get());
    return Outcome(status, binding);
  }

  // Moves the clock and calls every client that is due.
  void Pass(std::uint32_t milliseconds) {
    clock.Advance(milliseconds);
    while (timers.Step() == 0) {
    }
  }

  // Takes all waiting traps and returns their specific numbers.
  std::vector<AsnInteger> TakeTraps() {
    std::vector<AsnInteger> numbers;
    TakenTrap trap;
    while (trap.TakeFrom(agent)) numbers.push_back(trap.specific);
    return numbers;
  }

  // The log without the lines about queued and sent traps.
  std::vector<std::string> LinesBesideTraps() const {
    std::vector<std::string> lines;
    for (const std::string& line : log.Lines())
      if (line.find("SNMPExtensionAgent") == std::string::npos) lines.push_back(line);
    return lines;
  }

  StartedAgent started;
  RecordingLink link;
  Vask::Tests::FakeClock& clock = started.clock;
  Vask::Tests::RecordingLog& log = started.log;
  Vask::TimerService& timers = started.whole.timers;
  SNMPExtensionAgent& agent = started.whole.process.Extension();
  MyConnectNotify& connectNotify = started.whole.process.ConnectNotify();
  VariableUpdates& updates = started.whole.process.Updates();
};

using Traps = std::vector<AsnInteger>;

}  // namespace Agent::Tests
