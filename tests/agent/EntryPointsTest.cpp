#include "agent/EntryPoints.h"

#include "agent/ObjectIdentifier.h"
#include "tests/agent/AgentProcessFixture.h"

namespace Agent::Tests {

namespace {

class EntryPointsTest : public AgentProcessTest {
 protected:
  std::string Query(BYTE pduType, std::vector<SnmpVarBind> bindings) {
    SnmpVarBindList list{bindings.data(), static_cast<UINT>(bindings.size())};
    AsnInteger status = 99;
    AsnInteger index = 99;
    const BOOL result = entries.Query(pduType, &list, &status, &index);
    for (SnmpVarBind& binding : bindings) Vask::Tests::FreeText(binding.value);
    return std::string(result ? "TRUE " : "FALSE ") + std::to_string(status) + "/" +
           std::to_string(index);
  }
};

TEST_F(EntryPointsTest, InitHandsOutTheViewAndTheEventAndStartsTheClockOfTraps) {
  clock.tick = 5000;
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  EXPECT_EQ(entries.Init(&event, &view), TRUE);
  EXPECT_EQ(view.idLength, 8u);
  EXPECT_EQ(DottedText(view), FullName("P"));
  EXPECT_EQ(view.ids, agent.Prefix().ids);
  EXPECT_EQ(event, agent.Traps().EventHandle());
  EXPECT_TRUE(Has("Info: Extension agent started!"));
  link.StopThread();
  clock.tick = 5250;
  AsnObjectIdentifier enterprise{0, nullptr};
  AsnInteger generic = 0;
  AsnInteger specific = 0;
  std::uint32_t timeStamp = 0;
  SnmpVarBindList bindings{nullptr, 1};
  ASSERT_TRUE(agent.Traps().Queue("TrapStreamsOK"));
  while (specific != 12)
    ASSERT_EQ(entries.Trap(&enterprise, &generic, &specific, &timeStamp, &bindings), TRUE);
  EXPECT_EQ(timeStamp, 250u);
  EXPECT_EQ(enterprise.ids, agent.Prefix().ids);
  EXPECT_EQ(entries.Trap(&enterprise, &generic, &specific, &timeStamp, &bindings), FALSE);
}

TEST_F(EntryPointsTest, FailedStartHandsOutTheSameAndLogsTheSame) {
  threading.refusedStarts = {kLinkThread};
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  EXPECT_EQ(entries.Init(&event, &view), FALSE);
  EXPECT_EQ(DottedText(view), FullName("P"));
  EXPECT_EQ(event, agent.Traps().EventHandle());
  EXPECT_EQ(StartLines().back(), "Info: Extension agent started!");
}

TEST_F(EntryPointsTest, RequestsFindTheVariablesOfAFailedStart) {
  threading.refusedStarts = {kLinkThread};
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  ASSERT_EQ(entries.Init(&event, &view), FALSE);
  Binding binding("P.1.0");
  EXPECT_EQ(Query(SNMP_PDU_GET, {binding.Get()}), "TRUE 0/0");
}

TEST_F(EntryPointsTest, FailedStartWithoutALogWritesToTheConsole) {
  files.commonData.clear();
  Vask::Tests::RecordingLog console;
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  EXPECT_EQ(entries.Init(&event, &view), FALSE);
  EXPECT_EQ(DottedText(view), FullName("P"));
  EXPECT_EQ(console.Lines(), std::vector<std::string>{"Info: Extension agent started!\n"});
}

TEST_F(EntryPointsTest, EachTypeOfRequestHasItsStatus) {
  struct Row {
    const char* what;
    BYTE pduType;
    const char* result;
  };
  for (const Row& row : {
           Row{"Get", 0xA0, "TRUE 2/0"},
           Row{"GetNext", 0xA1, "TRUE 2/0"},
           Row{"GetResponse", 0xA2, "TRUE 2/0"},
           Row{"Set", 0xA3, "TRUE 17/0"},
           Row{"anything else", 0x42, "TRUE 2/0"},
       }) {
    Binding binding("P.0.0");
    EXPECT_EQ(Query(row.pduType, {binding.Get()}), row.result) << row.what;
    EXPECT_EQ(binding.Value(), "none") << row.what;
  }
  EXPECT_EQ(Query(0xA0, {}), "TRUE 0/0");
}

TEST_F(EntryPointsTest, EveryBindingIsServedAndTheLastStatusCounts) {
  agent.RegisterVariables();
  Binding known("P.0.0");
  Binding unknown("P.9");
  EXPECT_EQ(Query(SNMP_PDU_GET, {known.Get(), unknown.Get()}), "TRUE 2/0");
  EXPECT_EQ(Query(SNMP_PDU_GET, {unknown.Get(), known.Get()}), "TRUE 0/0");
}

}  // namespace

}  // namespace Agent::Tests
