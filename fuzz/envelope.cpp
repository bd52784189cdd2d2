// Passes texts of whole frames to the registrar of a started agent, with a subscriber for
// every message, so that every record is decoded. After any text the agent must apply the
// next message.

#include <algorithm>
#include <string>

#include "fuzz/FuzzInput.h"
#include "json/Json.h"
#include "messages/GlobalOptions.h"
#include "messages/GlobalOptions2.h"
#include "messages/Processes.h"
#include "messages/Registrar.h"
#include "messages/SNMPmessage.h"
#include "messages/SNMPtrap.h"
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

template <class M>
void Ignore(const M&, std::int32_t, void*) {}

template <class M>
void Subscribe(bool subscribe) {
  Registrar& registrar = Registrar::Instance();
  subscribe ? registrar.Subscribe<M>(&Ignore<M>) : registrar.Unsubscribe<M>(&Ignore<M>);
}

void SubscribeToAll() {
#define FUZZ_SUBSCRIBE(name, body, role) Subscribe<Messages::name>(true);
  MESSAGES_CATALOGUE(FUZZ_SUBSCRIBE)
#undef FUZZ_SUBSCRIBE
}

void SubscribeToLists(bool subscribe) {
  Subscribe<Messages::ProcessList>(subscribe);
  Subscribe<Messages::ProcessList2>(subscribe);
  Subscribe<Messages::SNMPsequence>(subscribe);
}

// A key of more than 128 characters in a list ends the process, as documented. So lists are
// not decoded if any key of the text may be so long.
bool HasLongKey(const std::string& text) {
  for (std::size_t at = text.find('"'); at < text.size(); at = text.find('"', at)) {
    const std::size_t begin = ++at;
    while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2u : 1u;
    if (at >= text.size()) return false;
    const std::size_t length = at++ - begin;
    const auto next = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                                   [](unsigned char c) { return c > ' '; });
    if (length > 128 && next != text.end() && *next == ':') return true;
  }
  return false;
}

// A started agent. This program receives what its registrar reports and sends.
struct Stand {
  Stand() {
    Registrar::Instance().SetErrorSink(&ends);
    Registrar::Instance().SetSender(&ends);
    SubscribeToAll();
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
  const bool hasLongKey = HasLongKey(text);
  if (hasLongKey) SubscribeToLists(false);
  static_cast<void>(Registrar::Instance().OnJsonMessageText(text.c_str()));
  if (hasLongKey) SubscribeToLists(true);
  FUZZ_EXPECT(Vask::Json::Constructed() - Vask::Json::Destroyed() == before);
  ExpectStillServing(stand.agent);
  DrainTraps(stand.agent);
  stand.started.log.Clear();
  return 0;
}
