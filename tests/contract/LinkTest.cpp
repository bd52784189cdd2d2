// The module and the Corvane process on the link.

#include <chrono>

#include "platform/Threading.h"
#include "tests/contract/ContractFixture.h"

namespace Contract {

namespace {

class LinkTest : public ContractTest {
 protected:
  // On its second connection the agent asks for an update after 2.5 s, not 15 s.
  void StartReconnected() {
    StartLinked();
    ASSERT_TRUE(server->Drop());
    ASSERT_TRUE(server->WaitForConnections(2));
    ASSERT_TRUE(Eventually([this] { return LinkIs("0"); }));
  }

  void Set(const std::string& name, const std::string& value) {
    std::string error;
    ASSERT_TRUE(server->Set(name, value, error)) << error;
  }
  void SendGroup(Simulator::Group group) { ASSERT_TRUE(server->Send(server->FrameOfGroup(group))); }

  // True if the trap event is signalled within 20 s.
  static bool Wait(HANDLE trapEvent) {
    return Vask::Platform::SystemThreading().WaitEvent(trapEvent, 20'000);
  }
};

TEST_F(LinkTest, AgentAsksForAnUpdateAndServesItsValues) {
  StartReconnected();
  Set("ProductName", "Corvane Main");
  Set("StreamsCount", "12");
  Set("AudioSourcesCount", "9");
  ASSERT_TRUE(server->WaitForMessages(1));
  EXPECT_EQ(server->GetRecord().bytes,
            R"(70#{"data":{},"from":"SNMPd","id":0,"name":"SNMPupdate","op":"broadcast"})");
  EXPECT_TRUE(Eventually([this] { return log.Has("SNMP variables successfully updated"); }));
  EXPECT_TRUE(Reads("P.1.0", "STRING 'Corvane Main'"));
  EXPECT_TRUE(Reads("P.2.0", "INT 12"));
  EXPECT_TRUE(Reads("P.2.2", "INT 9"));
  EXPECT_TRUE(log.Has("Info: Requesting to update SNMP variables.."));
}

TEST_F(LinkTest, ChangesRaiseTrapsAndAreReportedBack) {
  const Module::Start start = [this] {
    StartServer();
    return module.Init();
  }();
  ASSERT_TRUE(server->WaitForConnections(1));
  ASSERT_TRUE(Eventually([this] { return LinkIs("0"); }));
  Set("StreamsErrors", "3");
  SendGroup(Simulator::Group::Streams);
  EXPECT_TRUE(Wait(start.trapEvent));
  Module::Trap trap;
  ASSERT_TRUE(module.TakeTrap(trap));
  EXPECT_EQ(trap.enterprise, "P");
  EXPECT_EQ(trap.generic, 6);
  EXPECT_EQ(trap.specific, 13);
  EXPECT_EQ(trap.bindings, 0u);
  EXPECT_FALSE(module.TakeTrap(trap));
  ASSERT_TRUE(server->WaitForMessages(1));
  EXPECT_EQ(server->GetRecord().bytes,
            R"(99#{"data":{"traptype":{"streamsfailed":{}}},"from":"SNMPd","id":0,)"
            R"("name":"SNMPtrap","op":"broadcast"})");
}

TEST_F(LinkTest, TimeStampOfATrapIsMillisecondsSinceTheStart) {
  const std::uint32_t before = Now();
  StartLinked();
  const std::uint32_t after = Now();
  ASSERT_TRUE(Eventually([&] { return Now() - after >= 300; }));
  ASSERT_TRUE(server->Send(Simulator::CorvaneServer::FrameOfFinish()));
  Module::Trap trap;
  ASSERT_TRUE(Eventually([&] { return module.TakeTrap(trap); }));
  EXPECT_EQ(trap.specific, 10);
  EXPECT_GE(trap.timeStamp, 300u);
  EXPECT_LE(trap.timeStamp, Now() - before);
}

TEST_F(LinkTest, EndOfAnUpdateAndLossOfTheLinkRaiseOneTrapEach) {
  StartLinked();
  ASSERT_TRUE(server->Send(Simulator::CorvaneServer::FrameOfFinish()));
  ASSERT_TRUE(Eventually([this] { return log.Has("successfully updated"); }));
  server->RefuseFor(std::chrono::minutes(1));
  ASSERT_TRUE(server->Drop());
  ASSERT_TRUE(Eventually([this] { return LinkIs("1"); }));
  ASSERT_TRUE(Eventually([this] { return log.Has("Lost connection"); }));
  EXPECT_EQ(log.CountOf("Warning: Lost connection to Corvane process!"), 1u);
  EXPECT_TRUE(Eventually([this] { return log.Has("'TrapSoftwareLinkDown' to transmit"); }));
  EXPECT_EQ(module.TakeTraps(), (Traps{10, 11}));
}

TEST_F(LinkTest, TextsThatFillTheirCapacityAreReturnedWhole) {
  StartLinked();
  const std::string name(128, 'n');
  const std::string version(64, 'v');
  Set("ProductName", name);
  Set("ProductVersion", version);
  SendGroup(Simulator::Group::Product);
  EXPECT_TRUE(Eventually([&] { return Reads("P.1.1", "STRING '" + version + "'"); }));
  EXPECT_TRUE(Reads("P.1.0", "STRING '" + name + "'"));
  EXPECT_TRUE(log.Has("Info: GetStoredVar(ProductName) = STRING[128]: '" + name + "'"));
}

TEST_F(LinkTest, GoodFrameAfterGarbageIsApplied) {
  StartLinked();
  struct Row {
    const char* what;
    const char* bytes;
    const char* line;
  };
  const Row rows[] = {
      {"no JSON", "5#hello",
       "Error: Messages::Registrar::OnJsonMessageText: JSON parse failed at line "},
      {"no object", "2#[]",
       "Error: Messages::Registrar::OnJsonMessage: The parsed JSON message has the wrong type "
       "(expected 'object')"},
      {"no name", "2#{}",
       "Error: Messages::Registrar::OnJsonMessage: Received message missing the 'name' property"},
  };
  int count = 100;
  for (const Row& row : rows) {
    ASSERT_TRUE(server->Send(row.bytes)) << row.what;
    Set("StreamsCount", std::to_string(++count));
    SendGroup(Simulator::Group::Streams);
    EXPECT_TRUE(Eventually([&] { return Reads("P.2.0", "INT " + std::to_string(count)); }))
        << row.what;
    EXPECT_TRUE(log.Has(row.line)) << row.what;
  }
  EXPECT_EQ(server->GetRecord().connections, 1u);
}

TEST_F(LinkTest, BadFrameEndsTheConnectionAndTheNextOneWorks) {
  StartLinked();
  ASSERT_TRUE(server->Send("12a#"));
  ASSERT_TRUE(server->WaitForConnections(2));
  EXPECT_TRUE(log.Has("Error: Vask::JsonSocket::ProcessByteUnexpected char 'a'"));
  Set("StreamsCount", "55");
  SendGroup(Simulator::Group::Streams);
  EXPECT_TRUE(Eventually([this] { return Reads("P.2.0", "INT 55"); }));
}

}  // namespace

}  // namespace Contract
