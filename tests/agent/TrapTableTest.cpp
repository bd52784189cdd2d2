#include "agent/TrapTable.h"

#include "agent/ObjectIdentifier.h"
#include "tests/agent/AgentFixture.h"
#include "tests/support/ForwardingThreading.h"

namespace Agent::Tests {

namespace {

// The outputs of SnmpExtensionTrap as one text, or "none".
std::string TakeTrap(SNMPExtensionAgent& agent) {
  AsnObjectIdentifier enterprise{};
  AsnInteger generic = -1;
  AsnInteger specific = -1;
  std::uint32_t timeStamp = 0;
  SnmpVarBind unused{};
  SnmpVarBindList bindings{&unused, 1};
  if (!agent.TakeTrap(enterprise, generic, specific, timeStamp, bindings)) {
    const bool untouched = enterprise.ids == nullptr && generic == -1 && specific == -1 &&
                           bindings.list == &unused && bindings.len == 1;
    return untouched ? "none" : "none, but outputs were written";
  }
  return Vask::Tests::ShortName(DottedText(enterprise)) + " " + std::to_string(generic) + "/" +
         std::to_string(specific) + " at " + std::to_string(timeStamp) + ", " +
         std::to_string(bindings.len) + (bindings.list == nullptr ? " bindings" : " odd bindings");
}

class TrapTableTest : public AgentTest {
 protected:
  bool EventIsSet() {
    return Vask::Platform::SystemThreading().WaitEvent(agent.Traps().EventHandle(), 0);
  }
};

TEST_F(TrapTableTest, DumpOfTheTrapsHasElevenLinesInOrder) {
  SNMPExtensionAgent fresh(clock, Vask::Platform::SystemThreading());
  fresh.RegisterTraps();
  const std::vector<std::string> expected{
      "Info: TRAP TABLE 'TrapSoftwareLinkUp' = " + FullName("P.10") + "\n",
      "Info: TRAP TABLE 'TrapSoftwareLinkDown' = " + FullName("P.11") + "\n",
      "Info: TRAP TABLE 'TrapStreamsOK' = " + FullName("P.12") + "\n",
      "Info: TRAP TABLE 'TrapStreamsFailed' = " + FullName("P.13") + "\n",
      "Info: TRAP TABLE 'TrapAudioSourcesOK' = " + FullName("P.14") + "\n",
      "Info: TRAP TABLE 'TrapAudioSourcesFailed' = " + FullName("P.15") + "\n",
      "Info: TRAP TABLE 'TrapAudioSilenceDetectPassed' = " + FullName("P.16") + "\n",
      "Info: TRAP TABLE 'TrapAudioSilenceDetectFailed' = " + FullName("P.17") + "\n",
      "Info: TRAP TABLE 'TrapStreamsFailedUpdated' = " + FullName("P.18") + "\n",
      "Info: TRAP TABLE 'TrapAudioSourcesFailedUpdated' = " + FullName("P.19") + "\n",
      "Info: TRAP TABLE 'TrapAudioSilenceDetectFailedUpdated' = " + FullName("P.20") + "\n",
  };
  EXPECT_EQ(log.Lines(), expected);
}

TEST_F(TrapTableTest, SecondRegistrationOfANameIsRefusedAndTheFirstNumberStays) {
  EXPECT_EQ(agent.Traps().Register(99, "TrapStreamsOK"), nullptr);
  EXPECT_EQ(agent.Traps().Register(99, "trapstreamsok"), nullptr);
  EXPECT_EQ(agent.Traps().Register(99, ""), nullptr);
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(agent.Traps().Find("TrapStreamsOK")->m_specificTrap, 12u);
}

TEST_F(TrapTableTest, UnknownNameChangesNeitherQueueNorEventNorLog) {
  EXPECT_FALSE(agent.Traps().Queue("TrapNobodyKnows"));
  EXPECT_EQ(agent.Traps().QueuedCount(), 0u);
  EXPECT_FALSE(EventIsSet());
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(TakeTrap(agent), "none");
}

TEST_F(TrapTableTest, QueuedTrapSignalsTheEventAndIsTakenOnce) {
  EXPECT_TRUE(agent.Traps().Queue("TrapStreamsFailed"));
  EXPECT_TRUE(EventIsSet());
  EXPECT_FALSE(EventIsSet());
  EXPECT_EQ(TakeTrap(agent), "P 6/13 at 1000, 0 bindings");
  EXPECT_EQ(TakeTrap(agent), "none");
  const std::vector<std::string> expected{
      "Info: SNMPExtensionAgent: Added trap 'TrapStreamsFailed' to transmit queue..\n",
      "Info: SNMPExtensionAgent::Trap 'TrapStreamsFailed' transmitted!\n"};
  EXPECT_EQ(log.Lines(), expected);
}

TEST_F(TrapTableTest, ThreeTrapsAreTakenInTheOrderOfQueueing) {
  agent.RecordStart();
  for (const char* const name : {"TrapStreamsFailed", "TrapSoftwareLinkUp", "TrapStreamsFailed"})
    EXPECT_TRUE(agent.Traps().Queue(name));
  EXPECT_EQ(TakeTrap(agent), "P 6/13 at 0, 0 bindings");
  EXPECT_EQ(TakeTrap(agent), "P 6/10 at 0, 0 bindings");
  EXPECT_EQ(TakeTrap(agent), "P 6/13 at 0, 0 bindings");
  EXPECT_EQ(TakeTrap(agent), "none");
}

TEST_F(TrapTableTest, TimeStampIsMillisecondsFromTheStartUntilTheTrapIsTaken) {
  agent.RecordStart();
  clock.Advance(500);
  agent.Traps().Queue("TrapStreamsOK");
  clock.Advance(1500);
  EXPECT_EQ(TakeTrap(agent), "P 6/12 at 2000, 0 bindings");
}

TEST_F(TrapTableTest, TimeStampContinuesWhenTheTickWraps) {
  clock.tick = 0xFFFFFF00u;
  agent.RecordStart();
  agent.Traps().Queue("TrapStreamsOK");
  clock.Advance(0x200);
  EXPECT_EQ(TakeTrap(agent), "P 6/12 at 512, 0 bindings");
}

TEST_F(TrapTableTest, TakenRecordStaysUntilTheNextQueueing) {
  agent.Traps().Queue("TrapStreamsOK");
  agent.Traps().Queue("TrapStreamsFailed");
  TakeTrap(agent);
  EXPECT_EQ(agent.Traps().QueuedCount(), 2u);
  agent.Traps().Queue("TrapStreamsOK");
  EXPECT_EQ(agent.Traps().QueuedCount(), 2u);
  EXPECT_EQ(TakeTrap(agent), "P 6/13 at 1000, 0 bindings");
  EXPECT_EQ(TakeTrap(agent), "P 6/12 at 1000, 0 bindings");
  EXPECT_EQ(agent.Traps().QueuedCount(), 2u);
  EXPECT_FALSE(agent.Traps().Queue("TrapNobodyKnows"));
  EXPECT_EQ(agent.Traps().QueuedCount(), 2u);
}

TEST_F(TrapTableTest, NameIsFoundInAnyCaseAndLoggedAsRegistered) {
  EXPECT_TRUE(agent.Traps().Queue("TRAPSTREAMSOK"));
  EXPECT_EQ(LastLine(),
            "Info: SNMPExtensionAgent: Added trap 'TrapStreamsOK' to transmit queue..\n");
}

// Refuses to create events until it is told otherwise.
class LateEvents final : public Vask::Tests::ForwardingThreading {
 public:
  bool refuses = true;

  Vask::Platform::NativeHandle CreateEvent(Vask::Platform::EventReset reset) noexcept override {
    return refuses ? nullptr : ForwardingThreading::CreateEvent(reset);
  }
};

TEST_F(TrapTableTest, RegistrationCreatesTheEventThatTheSystemRefusedBefore) {
  LateEvents threading;
  SNMPExtensionAgent late(clock, threading);
  EXPECT_EQ(late.Traps().EventHandle(), nullptr);
  threading.refuses = false;
  late.RegisterTraps();
  EXPECT_NE(late.Traps().EventHandle(), nullptr);
}

TEST_F(TrapTableTest, EventExistsAndIsNotSignalledAtFirst) {
  EXPECT_NE(agent.Traps().EventHandle(), nullptr);
  EXPECT_FALSE(EventIsSet());
}

}  // namespace

}  // namespace Agent::Tests
