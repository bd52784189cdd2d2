// Passes texts of whole frames to the registrar of a started agent. After any text
// the agent must apply the next message.

#include <string>

#include "fuzz/FuzzInput.h"
#include "json/Json.h"
#include "messages/Registrar.h"
#include "tests/support/WholeAgent.h"

namespace {

using Messages::Registrar;

// Receives the reported faults and the sent messages, and reads every byte.
class Ends final : public Vask::IOnError, public Vask::IOnJsonMessage {
 public:
  void OnError(Vask::Json* message, const char* text) override {
    FUZZ_EXPECT(std::string(text).size() < 100'000);
    FUZZ_EXPECT(message == nullptr || message->Type() == Vask::JsonType::Object);
  }
  bool OnJsonMessage(Vask::Json* message) override {
    std::string text;
    message->Write(text);
    FUZZ_EXPECT(text.find("\"from\":\"SNMPd\"") != std::string::npos);
    return true;
  }
};

// A started agent. This program receives what its registrar reports and sends.
struct Stand {
  Stand() {
    Registrar::Instance().SetErrorSink(&ends);
    Registrar::Instance().SetSender(&ends);
  }

  Ends ends;
  Agent::Tests::StartedAgent started;
  Agent::SNMPExtensionAgent& agent = started.whole.process.Extension();
};

void DrainTraps(Agent::SNMPExtensionAgent& agent) {
  Agent::Tests::TakenTrap trap;
  while (trap.TakeFrom(agent)) FUZZ_EXPECT(trap.specific >= 10 && trap.specific <= 20);
}

void ExpectStillServing(Agent::SNMPExtensionAgent& agent) {
  FUZZ_EXPECT(Registrar::Instance().OnJsonMessageText(
      R"({"name":"SNMPmessage","data":{"messageType":{"Streams":{"Count":77,"Errors":0}}}})"));
  FUZZ_EXPECT(agent.Variables().Find("StreamsCount")->m_number->load() == 77);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = Vask::Fuzz::Input(data, size).Text();
  static Stand stand;
  const auto before = Vask::Json::Constructed() - Vask::Json::Destroyed();
  static_cast<void>(Registrar::Instance().OnJsonMessageText(text.c_str()));
  FUZZ_EXPECT(Vask::Json::Constructed() - Vask::Json::Destroyed() == before);
  ExpectStillServing(stand.agent);
  DrainTraps(stand.agent);
  stand.started.log.Clear();
  return 0;
}
