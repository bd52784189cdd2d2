// Starts of the module: those that succeed and those that fail.

#include "tests/contract/ContractFixture.h"

namespace Contract {

namespace {

using StartTest = ContractTest;

std::string ViewOf(const AsnObjectIdentifier& view) {
  std::string text;
  for (UINT i = 0; i < view.idLength; ++i) text += (i > 0 ? "." : "") + std::to_string(view.ids[i]);
  return Vask::Tests::ShortName(text);
}

TEST_F(StartTest, InitReturnsThePrefixAndTheTrapEvent) {
  const Module::Start start = module.Init();
  EXPECT_TRUE(start.result);
  EXPECT_EQ(start.view.idLength, 8u);
  EXPECT_EQ(ViewOf(start.view), "P");
  EXPECT_NE(start.trapEvent, nullptr);
}

TEST_F(StartTest, LogHoldsEachStepOfTheStart) {
  ASSERT_TRUE(module.Init().result);
  Lines lines;
  for (const std::string& line : log.Lines())
    if (line.find("Lost connection") == std::string::npos &&
        line.find("TrapSoftwareLinkDown' to") == std::string::npos)
      lines.push_back(line);
  ASSERT_EQ(lines.size(), 21u);
  EXPECT_EQ(lines.front(), "Info: Starting Corvane SNMP extension agent..");
  EXPECT_EQ(lines[1], "Info: MIB TABLE 'AudioSourcesSilence':INT = " + FullName("P.2.4"));
  EXPECT_EQ(lines[8], "Info: MIB TABLE 'LinkStatus':INT = " + FullName("P.0.0"));
  EXPECT_EQ(lines[9], "Info: TRAP TABLE 'TrapSoftwareLinkUp' = " + FullName("P.10"));
  EXPECT_EQ(lines[19],
            "Info: TRAP TABLE 'TrapAudioSilenceDetectFailedUpdated' = " + FullName("P.20"));
  EXPECT_EQ(lines.back(), "Info: Extension agent started!");
}

TEST_F(StartTest, WithoutAServerTheAgentStartsAndReportsOneLoss) {
  const Module::Start start = module.Init();
  EXPECT_TRUE(start.result);
  EXPECT_TRUE(LinkIs("1"));
  EXPECT_TRUE(Eventually([this] { return log.Has("to transmit queue.."); }));
  EXPECT_EQ(log.CountOf("Warning: Lost connection to Corvane process!"), 1u);
  EXPECT_EQ(module.TakeTraps(), Traps{11});
  EXPECT_EQ(module.TakeTraps(), Traps{});
}

TEST_F(StartTest, StartFailsIfTheLogFolderCannotBeCreated) {
  const LogFolder::Blocked blocked(log);
  const Module::Start start = module.Init();
  EXPECT_FALSE(start.result);
  EXPECT_EQ(ViewOf(start.view), "P");
  EXPECT_NE(start.trapEvent, nullptr);
  EXPECT_EQ(module.Get("P.0.0"), "2 P.0.0 = none");
  EXPECT_EQ(module.GetNext("P"), "2 P = none");
  EXPECT_EQ(module.TakeTraps(), Traps{});
}

TEST_F(StartTest, StartAfterAFailedOneSucceeds) {
  {
    const LogFolder::Blocked blocked(log);
    ASSERT_FALSE(module.Init().result);
  }
  EXPECT_TRUE(module.Init().result);
  EXPECT_TRUE(LinkIs("1"));
}

TEST_F(StartTest, SecondInitReturnsFalseAndTheAgentKeepsRunning) {
  StartLinked();
  const Module::Start again = module.Init();
  EXPECT_FALSE(again.result);
  EXPECT_EQ(ViewOf(again.view), "P");
  EXPECT_EQ(log.CountOf("MIB TABLE"), 8u);
  EXPECT_EQ(log.CountOf("TRAP TABLE"), 11u);
  EXPECT_EQ(log.CountOf("Error: Vask::JsonSocket::OpenThread open failed"), 1u);
  EXPECT_EQ(log.CountOf("Error: Unable to open JsonSocket!"), 1u);
  EXPECT_EQ(log.CountOf("Info: Extension agent started!"), 2u);
  EXPECT_TRUE(LinkIs("0"));
  EXPECT_EQ(server->GetRecord().connections, 1u);
  std::string error;
  ASSERT_TRUE(server->Set("StreamsCount", "17", error)) << error;
  ASSERT_TRUE(server->Send(server->FrameOfGroup(Simulator::Group::Streams)));
  EXPECT_TRUE(Eventually([this] { return Reads("P.2.0", "INT 17"); }));
}

}  // namespace

}  // namespace Contract
