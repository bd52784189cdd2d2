// Whole frames' texts into the registrar with the agent's own handlers behind
// it. Whatever comes, the message after it must be applied and a Get answered.

#include <string>

#include "Src/IOnError.h"
#include "Src/TimerService.h"
#include "agent/MyConnectNotify.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/Traps.h"
#include "agent/VariableUpdates.h"
#include "agent/Variables.h"
#include "fuzz/FuzzInput.h"
#include "json/Json.h"
#include "messages/Registrar.h"
#include "net/IOnJsonMessage.h"
#include "tests/support/FakeClock.h"
#include "tests/support/RecordingLog.h"

namespace {

using Agent::MIB_ENTRY;
using Messages::Registrar;

// Takes faults and sent messages, and looks at every byte of them.
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

// The agent as the module wires it, but for the link.
struct WiredAgent {
  WiredAgent() {
    Agent::RegisterVariables(agent.Variables());
    Agent::RegisterTraps(agent.Traps());
    registrar.SetErrorSink(&ends);
    registrar.SetSender(&ends);
    registrar.SetFrom("SNMPd");
    registrar.Subscribe<Messages::SNMPmessage>(&OnMessage);
    registrar.Subscribe<Messages::SNMPupdateFinished>(&OnFinished);
  }

  static WiredAgent& Instance() {
    static WiredAgent instance;
    return instance;
  }
  static void OnMessage(const Messages::SNMPmessage& record, std::int32_t, void*) {
    Instance().updates.OnMessage(record);
  }
  static void OnFinished(const Messages::SNMPupdateFinished&, std::int32_t, void*) {
    Instance().updates.OnUpdateFinished();
  }

  Vask::Tests::RecordingLog log;
  Vask::Tests::FakeClock clock;
  Ends ends;
  Registrar& registrar = Registrar::Instance();
  Vask::TimerService timers{clock};
  Agent::SNMPExtensionAgent agent{clock, Vask::Platform::SystemThreading()};
  Agent::MyConnectNotify notify{agent, timers, registrar};
  Agent::VariableUpdates updates{agent, notify, registrar};
};

void DrainTraps(Agent::SNMPExtensionAgent& agent) {
  AsnObjectIdentifier enterprise;
  AsnInteger generic;
  AsnInteger specific;
  std::uint32_t timeStampMs;
  SnmpVarBindList bindings;
  while (agent.TakeTrap(enterprise, generic, specific, timeStampMs, bindings)) {
    FUZZ_EXPECT(specific >= 10 && specific <= 20);
  }
}

void ExpectStillServing(WiredAgent& wired) {
  FUZZ_EXPECT(wired.registrar.OnJsonMessageText(
      R"({"name":"SNMPmessage","data":{"messageType":{"Streams":{"Count":77,"Errors":0}}}})"));
  const MIB_ENTRY* const entry = wired.agent.Variables().Find("StreamsCount");
  FUZZ_EXPECT(entry->m_number->load() == 77);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = Vask::Fuzz::Input(data, size).Text();
  WiredAgent& wired = WiredAgent::Instance();
  const auto before = Vask::Json::Constructed() - Vask::Json::Destroyed();
  (void)wired.registrar.OnJsonMessageText(text.c_str());
  FUZZ_EXPECT(Vask::Json::Constructed() - Vask::Json::Destroyed() == before);
  ExpectStillServing(wired);
  DrainTraps(wired.agent);
  wired.log.Clear();
  return 0;
}
