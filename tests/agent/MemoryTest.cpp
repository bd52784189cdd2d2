// The agent without memory; and the agent frees all its memory.

#include <new>
#include <string>

#include "Src/ErrReporter.h"
#include "agent/MibTable.h"
#include "agent/ObjectIdentifier.h"
#include "tests/agent/AgentProcessFixture.h"
#include "tests/agent/TrapFloodFixture.h"
#include "tests/agent/UpdatesFixture.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/RecordingLog.h"

namespace Agent::Tests {

namespace {

constexpr UINT kFirstSuffix[] = {1, 0};

using Vask::Tests::FailingAllocations;
using Vask::Tests::HeldBlocks;

using MibTableMemoryTest = EmptyAgentTest;
using StepMemoryTest = AgentTest;

class TrapMemoryTest : public AgentTest {
 protected:
  bool EventIsSet() {
    return Vask::Platform::SystemThreading().WaitEvent(agent.Traps().EventHandle(), 0);
  }
};

TEST_F(MibTableMemoryTest, RegistrationWithoutMemoryForTheValueLeavesNothingBehind) {
  MibTable& table = agent.Variables();
  const auto before = HeldBlocks();
  {
    const FailingAllocations failing(1, 1);  // enough for the entry and the node
    EXPECT_EQ(table.RegisterInt(Lend(kFirstSuffix), "Number", nullptr, 1), nullptr);
  }
  {
    const FailingAllocations failing(1, 1);
    EXPECT_EQ(table.RegisterString(Lend(kFirstSuffix), "Text", nullptr, 64, "x"), nullptr);
  }
  {
    const FailingAllocations failing(2);  // enough for entry and value, not for the node
    EXPECT_EQ(table.RegisterInt(Lend(kFirstSuffix), "Number", nullptr, 1), nullptr);
  }
  EXPECT_EQ(HeldBlocks(), before);
  EXPECT_EQ(table.Find("Number"), nullptr);
  EXPECT_EQ(table.Find("Text"), nullptr);
  EXPECT_EQ(table.Ordered().Head(), nullptr);
}

TEST_F(TrapMemoryTest, QueueWithoutMemoryStaysEmptyAndTakeKeepsTheRecord) {
  TrapQueue queue;
  const std::string name = "TrapAudioSilenceDetectFailedUpdated";
  for (const int allowed : {0, 1}) {
    const FailingAllocations failing(allowed);
    EXPECT_FALSE(queue.Append(20, name)) << allowed;
  }
  EXPECT_EQ(queue.Count(), 0u);
  EXPECT_TRUE(queue.Append(20, name));
  {
    const FailingAllocations failing;
    EXPECT_THROW(static_cast<void>(queue.Take()), std::bad_alloc);
  }
  const auto trap = queue.Take();
  ASSERT_TRUE(trap.has_value());
  EXPECT_EQ(trap->m_name, name);
}

TEST_F(TrapMemoryTest, TrapWithoutMemoryDoesNotSignalTheEvent) {
  log.Clear();
  bool known = false;
  {
    // RecordingLog allocates: no line may reach it.
    Vask::LogPrinter::Instance().SetTarget(nullptr);
    Vask::LogPrinter::Instance().SetConsole(false);
    const FailingAllocations failing;
    known = agent.Traps().Queue("TrapAudioSilenceDetectFailedUpdated");
  }
  Vask::LogPrinter::Instance().SetConsole(true);
  EXPECT_TRUE(known);
  EXPECT_EQ(agent.Traps().QueuedCount(), 0u);
  EXPECT_FALSE(EventIsSet());
}

TEST_F(TrapFloodTest, MemoryIsFreedAfterAFloodIsDelivered) {
  agent.Traps().Queue("TrapStreamsOK");
  const auto before = HeldBlocks();
  QueueAll();
  EXPECT_GT(HeldBlocks(), before + static_cast<std::ptrdiff_t>(kFlood));
  Drain();
  agent.Traps().Queue("TrapStreamsOK");
  EXPECT_EQ(agent.Traps().QueuedCount(), 1u);
  EXPECT_EQ(HeldBlocks(), before);
}

// Takes lines without an allocation.
class ReservedLog final : public Vask::Tests::LinesOnlyLog {
 public:
  ReservedLog() { lines.reserve(256); }

  void Info(const char* text) override { lines += text; }
  void Warning(const char* text) override { lines += text; }
  void Error(const char* text) override { lines += text; }
  void Trace(const char* text) override { lines += text; }

  std::string lines;
};

TEST_F(MibTableMemoryTest, VariableWithoutMemoryForItsValueIsLogged) {
  ReservedLog reserved;
  Vask::LogPrinter::Instance().SetTarget(&reserved);
  {
    const FailingAllocations failing(2, 1);  // enough for the entry and its name
    agent.RegisterVariables();
  }
  Vask::LogPrinter::Instance().SetTarget(&log);
  EXPECT_TRUE(
      reserved.lines.starts_with("Unable to register variable 'AudioSourcesSilence'!\n"
                                 "MIB TABLE 'AudioSourcesErrors':INT = "))
      << reserved.lines;
  EXPECT_EQ(agent.Variables().Find("AudioSourcesSilence"), nullptr);
  EXPECT_EQ(agent.Variables().Find("AudioSourcesErrors")->m_next, nullptr);
}

#if defined(CORVANE_MALLOC_IS_WRAPPED)
// Lets each allocation of the step fail in turn.
TEST_F(StepMemoryTest, StepThatSucceedsHasTheNextNameAndItsValue) {
  Vask::LogPrinter::Instance().SetTarget(nullptr);
  Vask::LogPrinter::Instance().SetConsole(false);
  for (const char* const name : {"P", "P.0.0"}) {
    const std::string next =
        name == std::string("P") ? "P.0.0 = INT 1" : "P.1.0 = STRING 'Corvane'";
    int allowed = 0;
    for (bool reached = true; reached; ++allowed) {
      Binding binding(name);
      INT status = SNMP_ERRORSTATUS_GENERR;
      try {
        const FailingAllocations failing(allowed, 1);
        status = agent.GetNextRequest(binding.Get());
      } catch (const std::bad_alloc&) {  // the entry point returns false
      }
      reached = FailingAllocations::Reached();
      const bool succeeded = status == SNMP_ERRORSTATUS_NOERROR;
      EXPECT_TRUE(succeeded || reached) << name << ", " << allowed;
      if (succeeded) {
        EXPECT_EQ(binding.Name() + " = " + binding.Value(), next) << allowed;
      }
    }
    EXPECT_GT(allowed, 1) << name;
  }
  Vask::LogPrinter::Instance().SetConsole(true);
}
#endif

// A connection without its timer would never request an update. So it does not
// count, and the next one is the first again.
TEST_F(UpdatesTest, ConnectionWithoutMemoryForItsTimerLeavesTheStateAsBefore) {
  const auto connectWithoutMemory = [this] {
    ReservedLog reserved;
    Vask::LogPrinter::Instance().SetTarget(&reserved);
    {
      const FailingAllocations failing;
      EXPECT_THROW(connectNotify.OnConnected(), std::bad_alloc);
    }
    Vask::LogPrinter::Instance().SetTarget(&log);
    EXPECT_EQ(reserved.lines, "Connection to Corvane process established..\n");
  };
  connectWithoutMemory();
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");
  EXPECT_EQ(timers.Step(), Vask::Platform::kInfinite);

  connectNotify.OnConnectFailed();
  EXPECT_EQ(TakeTraps(), Traps{11}) << "the state was still unknown";
  connectWithoutMemory();
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");

  connectNotify.OnConnected();
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 0");
  Pass(14'999);
  EXPECT_TRUE(link.frames.empty());
  Pass(1);
  EXPECT_EQ(link.frames, std::vector<std::string>{UpdateRequestFrame()});
}

// Takes one report without an allocation.
class ReservedSink final : public Vask::IOnError {
 public:
  ReservedSink() { text.reserve(256); }

  void OnError(Vask::Json*, const char* report) override { text += report; }

  std::string text;
};

TEST_F(UpdatesTest, MessageWithoutMemoryIsReportedAndNotSent) {
  ReservedSink sink;
  Messages::Registrar& registrar = Messages::Registrar::Instance();
  registrar.SetErrorSink(&sink);
  bool sent = true;
  {
    const FailingAllocations failing;
    sent = registrar.SendSNMPupdate();
  }
  registrar.SetErrorSink(nullptr);
  EXPECT_FALSE(sent);
  EXPECT_EQ(sink.text, "Messages::Registrar::Send: No memory for a message 'SNMPupdate'");
  EXPECT_TRUE(link.frames.empty());
}

// No exception leaves an entry point.
TEST_F(AgentProcessTest, ExceptionInInitIsLoggedAndReturnsFalse) {
  const std::string line = "Error: Cannot initialize SNMP extension agent: exception!";
  for (int start = 0; start < 100; ++start) threading.refusedStarts.insert(start);
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  ASSERT_EQ(entries.Init(&event, &view), FALSE);  // creates the log and its folders
  ASSERT_FALSE(Has(line));
  // Let each allocation of the start be the first that fails.
  for (int allowed = 0; allowed < 30; ++allowed) {
    const FailingAllocations failing(allowed);
    EXPECT_EQ(entries.Init(&event, &view), FALSE);
  }
  EXPECT_TRUE(Has(line));
}

TEST_F(AgentProcessTest, ExceptionInQueryAndTrapIsLoggedAndReturnsFalse) {
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  ASSERT_EQ(entries.Init(&event, &view), TRUE);
  ASSERT_TRUE(agent.Traps().Queue("TrapAudioSilenceDetectFailedUpdated"));
  link.StopThread();
  Binding binding("P.1.0");
  SnmpVarBindList bindings{&binding.Get(), 1};
  AsnInteger number = 0;
  std::uint32_t timeStamp = 0;
  BOOL query = TRUE;
  BOOL trap = TRUE;
  {
    const FailingAllocations failing;
    query = entries.Query(SNMP_PDU_GET, &bindings, &number, &number);
    trap = entries.Trap(&view, &number, &number, &timeStamp, &bindings);
  }
  EXPECT_EQ(query, FALSE);
  EXPECT_EQ(trap, FALSE);
  const auto lines = files.Lines();
  ASSERT_GE(lines.size(), 2u);
  const std::string line = "Error: Cannot query the SNMP extension agent: exception!";
  EXPECT_EQ(lines[lines.size() - 2], line);
  EXPECT_EQ(lines[lines.size() - 1], line);
}

TEST_F(AgentProcessTest, AgentFreesAllItsMemory) {
  const auto cycle = [this] {
    SNMPExtensionAgent fresh(clock, threading);
    fresh.RegisterVariables();
    fresh.RegisterTraps();
    fresh.Traps().Queue("TrapStreamsOK");
    Binding binding("P");
    while (fresh.GetNextRequest(binding.Get()) == SNMP_ERRORSTATUS_NOERROR) {
      Binding taken("P");
      std::swap(taken.Get().value, binding.Get().value);
    }
  };
  ASSERT_TRUE(whole.log.Open("C:\\Data"));
  Vask::LogPrinter::Instance().SetTarget(&whole.log);
  for (int warmUp = 0; warmUp < 3; ++warmUp) cycle();
  const auto before = HeldBlocks();
  cycle();
  EXPECT_EQ(HeldBlocks(), before);
}

}  // namespace

}  // namespace Agent::Tests
