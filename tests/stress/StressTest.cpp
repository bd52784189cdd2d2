// All activities of the agent at the same time.

#include <chrono>
#include <functional>
#include <iterator>

#include "agent/Traps.h"
#include "agent/Variables.h"
#include "tests/stress/StressFixture.h"
#include "tests/support/Binding.h"

namespace Agent::Tests {

namespace {

using Vask::Tests::Binding;

// The work of the peer. The test ends with it; the other threads run meanwhile.
constexpr int kConnections = 30;
constexpr int kChangesPerConnection = 15;

// The numbers that the peer sends. Every variable has a range of its own, so the
// test notices a value of another variable. 0 is the first value of all, and the
// value to which errors fall.
struct NumberRow {
  const char* variable;
  const char* name;
  std::int32_t lowest;
};
constexpr NumberRow kNumbers[] = {
    {"StreamsCount", "P.2.0", 100},        {"StreamsErrors", "P.2.1", 200},
    {"AudioSourcesCount", "P.2.2", 300},   {"AudioSourcesErrors", "P.2.3", 400},
    {"AudioSourcesSilence", "P.2.4", 500},
};
constexpr std::int32_t kValuesPerNumber = 100;

bool IsSent(const NumberRow& row, std::int32_t value) {
  return value == 0 || (value >= row.lowest && value < row.lowest + kValuesPerNumber);
}

// Two texts of the same few letters, so a mixture has no other letter.
constexpr char kLetters[] = "Corvane";
constexpr char kLongText[] =
    "CorvaneCorvaneCorvaneCorvaneCorvaneCorvaneCorvaneCorvaneCorvaneCorvaneCorvaneCorvane";

class StressActivitiesTest : public StressTest {
 protected:
  INT Ask(BYTE type, Binding& binding) {
    SnmpVarBindList bindings{&binding.Again(), 1};
    AsnInteger status = -1;
    AsnInteger index = -1;
    if (whole.process.Entries().Query(type, &bindings, &status, &index) != TRUE)
      Complain("query failed");
    if (index != 0) Complain("index " + std::to_string(index));
    return status;
  }

  void Check(const std::string& name, Binding& binding) {
    const AsnAny& value = binding.Get().value;
    for (const NumberRow& row : kNumbers)
      if (name == row.name && !IsSent(row, value.asnValue.number))
        Complain(std::string(row.variable) + " = " + binding.Value());
    if (name == "P.0.0" && value.asnValue.number != 0 && value.asnValue.number != 1)
      Complain("LinkStatus = " + binding.Value());
    if (name == "P.1.0") CheckText(value.asnValue.string);
  }

  void CheckText(const AsnOctetString& text) {
    const std::string_view letters(kLetters, sizeof kLetters);  // with its zero
    const std::string_view found(reinterpret_cast<const char*>(text.stream), text.length);
    if (found.size() > 128 || found.find_first_not_of(letters) != std::string_view::npos)
      Complain("ProductName = " + std::string(found));
  }

  // One walk over all variables: it must return the same names each time.
  void Walk() {
    static const std::vector<std::string> expected{"P.0.0", "P.1.0", "P.1.1", "P.2.0",
                                                   "P.2.1", "P.2.2", "P.2.3", "P.2.4"};
    Binding binding("P");
    std::vector<std::string> names;
    while (names.size() <= expected.size() && Ask(SNMP_PDU_GETNEXT, binding) == 0) {
      names.push_back(binding.Name());
      Check(names.back(), binding);
    }
    if (names != expected) Complain("a walk of " + std::to_string(names.size()));
  }

  void GetEverything() {
    for (const char* name :
         {"P.0.0", "P.1.0", "P.1.1", "P.2.0", "P.2.1", "P.2.2", "P.2.3", "P.2.4"}) {
      Binding binding(name);
      if (Ask(SNMP_PDU_GET, binding) != 0) Complain(std::string("no ") + name);
      Check(name, binding);
    }
  }

  std::string Get(const std::string& name) {
    Binding binding(name);
    return Ask(SNMP_PDU_GET, binding) == 0 ? binding.Value() : "none";
  }

  // Takes all waiting traps after each signal, like the service.
  void DrainTraps() {
    TakenTrap trap;
    static_cast<void>(threading.WaitEvent(whole.process.Extension().Traps().EventHandle(), 5));
    while (trap.TakeFrom(whole.process.Entries())) {
      const auto known =
          std::find_if(std::begin(kTraps), std::end(kTraps), [&](const TrapRow& row) {
            return static_cast<AsnInteger>(row.specificTrap) == trap.specific;
          });
      if (known == std::end(kTraps) || trap.generic != 6) {
        Complain("trap " + std::to_string(trap.specific));
      }
      ++traps;
    }
  }

  // Adds one listener once and another twice, and removes them again.
  void Listen() {
    whole.log.AddListener(&once);
    whole.log.AddListener(&twice);
    whole.log.AddListener(&twice);
    Vask::LogPrinter::Instance().Warning("a listener's own line\n");
    whole.log.RemoveListener(&twice);
    whole.log.RemoveListener(&once);
    whole.log.RemoveListener(&twice);
  }

  // The peer sends other values, every fifth time 0, and every third time also a
  // message that the agent must refuse.
  void Change(int change) {
    for (const NumberRow& row : kNumbers)
      Tell(row.variable, change % 5 == 0 ? 0 : row.lowest + change % kValuesPerNumber);
    Tell("ProductName", change % 2 == 0 ? kLongText : kLetters);
    for (const Simulator::Group group : Simulator::kGroups) server.Send(server.FrameOfGroup(group));
    if (change % 3 == 0)
      server.Send(server.FrameOfMessage("SNMPmessage", R"({"messageType":{"Streams":{}}})"));
  }
  void Tell(const char* variable, std::int32_t value) { Tell(variable, std::to_string(value)); }
  void Tell(const char* variable, const std::string& value) {
    std::string error;
    if (!server.Set(variable, value, error)) Complain(error);
  }

  // Sends values on each connection. Drops every second connection while data
  // are under way, and the others after all data have arrived. Keeps the last.
  void PlayPeer() {
    for (int connection = 1; connection <= kConnections; ++connection) {
      if (!server.WaitForConnections(static_cast<std::size_t>(connection)))
        return Complain("no connection " + std::to_string(connection));
      for (int i = 0; i < kChangesPerConnection; ++i)
        Change(connection * kChangesPerConnection + i);
      if (connection % 2 == 0) BringStreamsCount(kNumbers[0].lowest + connection);
      if (connection < kConnections) server.Drop();
    }
  }

  // Sends a value until a Get returns it. The server may still send an older value
  // afterwards, as its reply to a request for an update.
  void BringStreamsCount(std::int32_t value) {
    const std::string wanted = "INT " + std::to_string(value);
    Tell("StreamsCount", value);
    for (int i = 0; i < 10'000; ++i) {
      if (i % 100 == 0) server.Send(server.FrameOfGroup(Simulator::Group::Streams));
      if (Get("P.2.0") == wanted) return;
      std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
    Complain("StreamsCount never became " + std::to_string(value));
  }

  // Calls `body` repeatedly on a new thread until the peer is done. The thread pauses
  // between two calls. Otherwise the other threads would hardly get the log's lock.
  void Meanwhile(const std::function<void()>& body) {
    helpers.emplace_back([this, body] {
      do {
        body();
        std::this_thread::sleep_for(std::chrono::milliseconds{1});
      } while (!peerIsDone);
    });
  }
  void JoinAll() {
    peerIsDone = true;
    for (std::thread& helper : helpers) helper.join();
  }

  std::atomic<bool> peerIsDone{false};
  std::vector<std::thread> helpers;
  std::atomic<int> traps{0};
  ReadingListener once;
  ReadingListener twice;
};

TEST_F(StressActivitiesTest, NothingIsLostOrMixedUp) {
  ASSERT_TRUE(whole.process.Start());
  Meanwhile([this] { Walk(); });
  Meanwhile([this] { GetEverything(), Walk(); });
  Meanwhile([this] { DrainTraps(); });
  Meanwhile([this] { Listen(); });
  PlayPeer();
  JoinAll();
  BringStreamsCount(kNumbers[0].lowest + kValuesPerNumber - 1);

  EXPECT_EQ(complaints.Texts(), std::vector<std::string>{});
  EXPECT_EQ(Get("P.0.0"), "INT 0");
  EXPECT_GT(traps, kConnections);
  EXPECT_GT(once.heard, 0u);
  EXPECT_EQ(once.wrongLengths + twice.wrongLengths, 0u);
  const auto asked = [](const Simulator::Record& record) {
    return std::any_of(record.messages.begin(), record.messages.end(),
                       [](const auto& message) { return message.name == "SNMPupdate"; });
  };
  EXPECT_TRUE(server.WaitFor(asked)) << "the timer ticks";

  whole.process.Stop(Ending::kUnload);
  EXPECT_TRUE(server.WaitForEnds(kConnections));
}

}  // namespace

}  // namespace Agent::Tests
