// Memory runs out at the n-th allocation, for every n, on every road of the
// agent: for that allocation alone, and for a stretch of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "Src/LogFolder.h"
#include "Src/LogPrinter.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "messages/Codec.h"
#include "messages/HandlerList.h"
#include "messages/SNMPsequence.h"
#include "tests/faults/FaultStand.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TempFolder.h"

namespace Agent::Tests {

namespace {

using Vask::LogPrinter;
using Vask::Tests::Binding;
using Vask::Tests::FailingAllocations;
using Vask::Tests::HeldBlocks;

// After how many allocations memory runs out, and for how many.
struct Fault {
  int allowed;
  int failures;
};

class MemoryFaultTest : public ::testing::Test {
 protected:
  MemoryFaultTest() { LogPrinter::Instance().SetConsole(false); }
  ~MemoryFaultTest() override { LogPrinter::Instance().SetConsole(true); }

  // Runs `road` for every n until one comes through without a failure; nothing
  // that it allocated may be left. Answers how many allocations have failed.
  static int ForEveryAllocation(const std::function<bool(const Fault&)>& road) {
    road({0, 0});  // what is made once is there now
    int longest = 0;
    for (const int failures : {1, 5, 50}) {
      int allowed = 0;
      for (bool reached = true; reached; ++allowed) {
        SCOPED_TRACE(std::to_string(failures) + " failures after " + std::to_string(allowed));
        const auto before = HeldBlocks();
        reached = road({allowed, failures});
        EXPECT_EQ(HeldBlocks(), before);
      }
      longest = std::max(longest, allowed - 1);
    }
    return longest;
  }

  // Each number as often as it has to be there, or not at all where its record
  // could not be had; and none twice.
  static void ExpectNoneTwice(const Traps& traps) {
    for (const AsnInteger trap : {13, 15, 17})
      EXPECT_LE(std::count(traps.begin(), traps.end(), trap), 1) << trap;
  }
};

// The agent itself, which the first export of all builds.
TEST_F(MemoryFaultTest, AgentThatCannotBeBuiltLeavesNothingBehind) {
  const int failed = ForEveryAllocation([](const Fault& fault) {
    FaultMachine machine;
    try {
      const FailingAllocations failing(fault.allowed, fault.failures);
      const WholeAgent whole(machine.Seams());
    } catch (const std::bad_alloc&) {
      return true;
    }
    return FailingAllocations::Reached();
  });
  EXPECT_EQ(failed, 2) << "the nodes of both tables' names";
}

TEST_F(MemoryFaultTest, StartWorksOrSaysSoAndTheNextOneWorks) {
  const int failed = ForEveryAllocation([](const Fault& fault) {
    FaultStand stand;
    stand.peer.greeting.clear();  // the start alone
    BOOL started = TRUE;
    bool reached = false;
    {
      const FailingAllocations failing(fault.allowed, fault.failures);
      started = stand.Init();
      reached = FailingAllocations::Reached();
    }
    EXPECT_EQ(started == TRUE, stand.peer.connections > 0);
    if (started == FALSE) {
      EXPECT_EQ(stand.Init(), TRUE);
      EXPECT_EQ(stand.Walk(), kWholeWalk);
    }
    EXPECT_EQ(stand.GetAll().size(), kWholeWalk.size());
    EXPECT_TRUE(stand.whole.process.Extension().Traps().Queue("TrapStreamsOK"));
    const Traps traps = stand.TakeTraps();
    EXPECT_FALSE(traps.empty());
    if (!traps.empty()) {
      EXPECT_EQ(traps.back(), 12);
    }
    return reached;
  });
  EXPECT_GT(failed, 50);
}

// A frame that there is no memory for costs the connection, and says so; the
// next one brings everything, and no trap is raised twice.
TEST_F(MemoryFaultTest, FrameThatFindsNoMemoryArrivesWithTheNextConnection) {
  const int failed = ForEveryAllocation([](const Fault& fault) {
    FaultStand stand;
    std::optional<FailingAllocations> failing;
    bool reached = false;
    stand.peer.onFirstConnection = [&] { failing.emplace(fault.allowed, fault.failures); };
    stand.peer.onEnd = [&] {
      reached = FailingAllocations::Reached();
      failing.reset();
    };
    EXPECT_EQ(stand.Init(), TRUE);
    ExpectNoneTwice(stand.TakeTraps());
    EXPECT_EQ(stand.GetAll(), UpdatedValues());
    EXPECT_EQ(stand.Walk(), kWholeWalk);
    const int lost = stand.peer.connections - 1;
    EXPECT_EQ(stand.CountLines("Error: Vask::JsonSocket::Run: exception!"), lost);
    const int said = stand.CountLines("Warning: Lost connection to Corvane process!");
    EXPECT_EQ(said > 0, lost > 0);
    stand.whole.process.Link().StopThread();
    EXPECT_EQ(stand.peer.opened, stand.peer.closed);
    return reached;
  });
  EXPECT_GT(failed, 20);
}

// A request that there is no memory for is refused, whole or for the one
// variable, and the same one is answered right afterwards.
TEST_F(MemoryFaultTest, RequestThatFindsNoMemoryIsRefusedAndAnsweredTheNextTime) {
  struct Row {
    const char* what;
    BYTE type;
    const char* name;
    const char* answer;
  };
  const Row rows[] = {
      {"Get of an INT", SNMP_PDU_GET, "P.2.0", "P.2.0 = INT 12"},
      {"Get of a STRING", SNMP_PDU_GET, "P.1.0", "P.1.0 = STRING 'Corvane'"},
      {"GetNext from the prefix", SNMP_PDU_GETNEXT, "P", "P.0.0 = INT 0"},
      {"GetNext to a STRING", SNMP_PDU_GETNEXT, "P.0.0", "P.1.0 = STRING 'Corvane'"},
      {"GetNext to an INT", SNMP_PDU_GETNEXT, "P.1.1", "P.2.0 = INT 12"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FaultStand stand;
    ASSERT_EQ(stand.Init(), TRUE);
    const int failed = ForEveryAllocation([&](const Fault& fault) {
      Binding binding(row.name);
      SnmpVarBindList bindings{&binding.Get(), 1};
      AsnInteger status = -1;
      AsnInteger index = -1;
      BOOL answered = FALSE;
      bool reached = false;
      {
        const FailingAllocations failing(fault.allowed, fault.failures);
        answered = stand.whole.process.Entries().Query(row.type, &bindings, &status, &index);
        reached = FailingAllocations::Reached();
      }
      EXPECT_EQ(index, 0);
      if (!reached) {
        EXPECT_EQ(answered, TRUE);
        EXPECT_EQ(status, SNMP_ERRORSTATUS_NOERROR);
      } else if (answered == TRUE && status != SNMP_ERRORSTATUS_NOERROR) {
        EXPECT_EQ(status, SNMP_ERRORSTATUS_GENERR);
      } else if (answered == FALSE) {
        EXPECT_EQ(stand.LogLines().back(),
                  "Error: Cannot query the SNMP extension agent: exception!");
      }
      Binding again(row.name);
      EXPECT_EQ(stand.Query(row.type, again), TRUE);
      EXPECT_EQ(again.Name() + " = " + again.Value(), row.answer);
      return reached;
    });
    EXPECT_GT(failed, 0);
  }
}

// The agent's own variables hold no SEQUENCE; a table that does is walked by the
// same rules.
TEST_F(MemoryFaultTest, StepThroughASequenceThatFindsNoMemoryIsTakenTheNextTime) {
  struct Row {
    const char* what;
    const char* name;
    const char* answer;
  };
  constexpr UINT kSuffixes[][2] = {{1, 0}, {2, 0}, {3, 0}};
  Vask::Tests::FakeClock clock;
  SNMPExtensionAgent agent(clock, Vask::Platform::SystemThreading());
  MibTable& table = agent.Variables();
  MIB_ENTRY* const last = table.RegisterInt(Lend(kSuffixes[2]), "Last", nullptr, 7);
  MIB_ENTRY* const passed = table.RegisterInt(Lend(kSuffixes[1]), "Passed", last, 6);
  MIB_ENTRY* const rows = table.RegisterSequence(Lend(kSuffixes[0]), "Rows", passed);
  MibTable::AddRow(*rows, "a", "b");

  for (const Row& row : {
           Row{"to the first cell", "P.1.0", "P.1.0.1.1.1 = STRING 'a'"},
           Row{"to the next cell", "P.1.0.1.1.1", "P.1.0.1.2.1 = STRING 'b'"},
           Row{"out of the SEQUENCE", "P.1.0.1.2.1", "P.3.0 = INT 7"},
       }) {
    SCOPED_TRACE(row.what);
    const int failed = ForEveryAllocation([&](const Fault& fault) {
      INT status = SNMP_ERRORSTATUS_GENERR;
      Binding binding(row.name);
      bool reached = false;
      try {
        const FailingAllocations failing(fault.allowed, fault.failures);
        status = agent.GetNextRequest(binding.Get());
      } catch (const std::bad_alloc&) {  // the entry point refuses the request
      }
      reached = FailingAllocations::Reached();
      EXPECT_EQ(status, reached ? SNMP_ERRORSTATUS_GENERR : SNMP_ERRORSTATUS_NOERROR);
      Binding again(row.name);
      EXPECT_EQ(agent.GetNextRequest(again.Get()), SNMP_ERRORSTATUS_NOERROR);
      EXPECT_EQ(again.Name() + " = " + again.Value(), row.answer);
      return reached;
    });
    EXPECT_GT(failed, 0);
  }
}

// A trap that cannot be queued is lost, one that cannot be handed out waits for
// the next signal; both leave the rest alone.
TEST_F(MemoryFaultTest, TrapThatFindsNoMemoryNeverComesTwice) {
  constexpr char kLongName[] = "TrapAudioSilenceDetectFailedUpdated";
  FaultStand stand;
  ASSERT_EQ(stand.Init(), TRUE);
  ASSERT_EQ(stand.TakeTraps(), kTrapsOfUpdate);
  const int failed = ForEveryAllocation([&](const Fault& fault) {
    TakenTrap trap;
    bool taken = false;
    bool reached = false;
    {
      const FailingAllocations failing(fault.allowed, fault.failures);
      stand.whole.process.Extension().Traps().Queue(kLongName);
      taken = trap.TakeFrom(stand.whole.process.Entries());
      reached = FailingAllocations::Reached();
    }
    if (taken) {
      EXPECT_EQ(trap.specific, 20);
    }
    Traps rest = stand.TakeTraps();
    EXPECT_LE(rest.size(), taken ? 0u : 1u);
    EXPECT_TRUE(stand.whole.process.Extension().Traps().Queue("TrapStreamsOK"));
    EXPECT_EQ(stand.TakeTraps(), Traps{12});
    return reached;
  });
  EXPECT_GT(failed, 2);
}

// Hears what the log tells, as text.
class Listener final : public Vask::IDailyLog::IListener {
 public:
  using Block = Vask::IDailyLog::ILogDataBlock;

  void OnWarning(const Block* const* blocks, std::uint32_t count, std::uint32_t length) override {
    ++heard;
    std::uint32_t bytes = 0;
    for (std::uint32_t i = 0; i < count; ++i)
      for (const Block* block = blocks[i]; block != nullptr; block = block->Next())
        bytes += block->Length();
    if (bytes != length) ++wrongLengths;
  }
  void OnError(const Block* const* blocks, std::uint32_t count, std::uint32_t length) override {
    OnWarning(blocks, count, length);
  }

  int heard = 0;
  int wrongLengths = 0;
};

// The file gets every line, whatever else of the log finds no memory; and the
// next warning is told to listeners again.
TEST_F(MemoryFaultTest, LogLosesNoLineOfTheFileForWantOfMemory) {
  const std::string longText(1'500, 'x');
  const int failed = ForEveryAllocation([&](const Fault& fault) {
    FaultStand stand;
    stand.peer.greeting.clear();
    EXPECT_EQ(stand.Init(), TRUE);
    Listener listener;
    stand.whole.log.AddListener(&listener);
    bool reached = false;
    {
      const FailingAllocations failing(fault.allowed, fault.failures);
      LogPrinter& printer = LogPrinter::Instance();
      printer.Info("first line\n");
      printer.Warning("long line %s\n", longText.c_str());
      stand.clock.clock.Advance(86'400'000);
      printer.Error("line of another day\n");
      reached = FailingAllocations::Reached();
    }
    const std::string text = stand.LogText();
    EXPECT_NE(text.find("Error: line of another day\n"), std::string::npos);
    if (reached) {
      listener.heard = 0;
      LogPrinter::Instance().Warning("the next one\n");
      EXPECT_EQ(listener.heard, 1);
    } else {
      EXPECT_EQ(listener.heard, 2);
    }
    EXPECT_EQ(listener.wrongLengths, 0);
    EXPECT_EQ(stand.CountLines("Warning: the next one"), reached ? 1 : 0);
    stand.whole.log.RemoveListener(&listener);
    return reached;
  });
  EXPECT_GT(failed, 10);
}

// What lists the files lets no exception through.
TEST_F(MemoryFaultTest, OldFileThatFindsNoMemoryStaysUntilTheNextCleanUp) {
  const Vask::Tests::TempFolder disk;
  const std::string name = "Log2000-01-01.log";
  const auto exists = [&] { return std::filesystem::exists(disk.NativePath() / name); };
  std::ofstream(disk.NativePath() / name) << "old\n";
  const Vask::LogFolder folder(disk.Path().c_str());
  Vask::Platform::Files& files = Vask::Platform::SystemFiles();
  const auto count = [](const char*, const char*, void* context) {
    return ++*static_cast<int*>(context), true;
  };
  int listed = 0;
  bool whole = true;
  {
    const FailingAllocations failing;
    folder.DeleteOlderThan(files, INT64_MAX);
    whole = folder.Enumerate(files, count, &listed);
  }
  EXPECT_TRUE(exists());
  EXPECT_FALSE(whole);
  EXPECT_EQ(listed, 0);
  EXPECT_TRUE(folder.Enumerate(files, count, &listed));
  EXPECT_EQ(listed, 1);
  folder.DeleteOlderThan(files, INT64_MAX);
  EXPECT_FALSE(exists());
}

// A tick that throws, here for want of memory, is not the last one.
TEST_F(MemoryFaultTest, TimerGoesOnAfterATickThatFindsNoMemory) {
  class Client final : public Vask::ITimerServiceClient {
   public:
    void OnTimer(std::uint32_t, std::uint64_t) override {
      if (++ticks == 1) throw std::bad_alloc();
      if (ticks == 3) third.Set();
    }
    int ticks = 0;  // the timer thread's until the third
    Vask::Platform::Event third{Vask::Platform::EventReset::Automatic};
  };
  const Vask::Tests::RecordingLog log;
  Client client;
  {
    Vask::TimerService timers;
    timers.SetTimer(1, &client);
    ASSERT_TRUE(timers.StartService());
    EXPECT_TRUE(client.third.Wait(60'000));
    timers.StopService();
  }
  EXPECT_EQ(log.Lines(), Lines{"Error: Vask::TimerService::Run: exception!\n"});
}

TEST_F(MemoryFaultTest, TimerThatFindsNoMemoryLeavesTheEarlierOne) {
  class Client final : public Vask::ITimerServiceClient {
   public:
    void OnTimer(std::uint32_t, std::uint64_t) override { ++ticks; }
    int ticks = 0;
  };
  Vask::Tests::FakeClock clock;
  Vask::TimerService timers(clock);
  std::vector<Client> clients(Vask::TimerNodeStore::kNodesPerBlock);
  for (Client& client : clients) timers.SetTimer(1'000, &client);  // all that one block holds
  bool changed = false;
  const auto change = [](void* context) { *static_cast<bool*>(context) = true; };
  {
    const FailingAllocations failing;
    EXPECT_THROW(timers.SetTimer(2'000, &clients[0]), std::bad_alloc);
    EXPECT_THROW(timers.ReplaceTimerAnd(2'000, &clients[1], change, &changed), std::bad_alloc);
  }
  EXPECT_FALSE(changed);
  clock.Advance(1'000);
  while (timers.Step() == 0) {
  }
  EXPECT_EQ(clients[0].ticks, 1);
  EXPECT_EQ(clients[1].ticks, 1);
}

TEST_F(MemoryFaultTest, ThreadThatFindsNoMemoryIsNotStarted) {
  FaultStand stand;
  {
    const FailingAllocations failing;
    EXPECT_FALSE(stand.whole.process.Link().OpenThread());
  }
  EXPECT_FALSE(stand.whole.process.Link().IsRunning());
  EXPECT_EQ(stand.peer.connections, 0);
  EXPECT_EQ(stand.Init(), TRUE);
  EXPECT_EQ(stand.GetAll(), UpdatedValues());
}

TEST_F(MemoryFaultTest, HandlerThatCannotMoveToTheEndKeepsItsPlace) {
  Messages::HandlerList list;
  const auto first = [] {};
  const auto second = [] {};
  list.Subscribe(first);
  list.Subscribe(second);
  {
    const FailingAllocations failing;
    EXPECT_THROW(list.Subscribe(first), std::bad_alloc);
  }
  EXPECT_EQ(list.Count(), 2u);
  std::vector<Messages::HandlerList::Function> called;
  list.Dispatch(&called, 0, [](auto handler, const void* record, std::int32_t, void*) {
    const auto* calls = static_cast<const std::vector<Messages::HandlerList::Function>*>(record);
    const_cast<std::vector<Messages::HandlerList::Function>*>(calls)->push_back(handler);
  });
  EXPECT_EQ(called, (std::vector<Messages::HandlerList::Function>{first, second}));
}

// A listener's own affair: it costs neither who logs nor the other listeners.
TEST_F(MemoryFaultTest, ListenerThatThrowsKeepsNobodyFromBeingTold) {
  class Throwing final : public Vask::IDailyLog::IListener {
    using Block = Vask::IDailyLog::ILogDataBlock;
    void OnWarning(const Block* const*, std::uint32_t, std::uint32_t) override {
      throw std::bad_alloc();
    }
    void OnError(const Block* const*, std::uint32_t, std::uint32_t) override {
      throw std::bad_alloc();
    }
  };
  FaultStand stand;
  ASSERT_EQ(stand.Init(), TRUE);
  Throwing throwing;
  Listener listener;
  stand.whole.log.AddListener(&throwing);
  stand.whole.log.AddListener(&listener);
  stand.whole.log.Warning("one\n");
  LogPrinter::Instance().Error("two\n");
  EXPECT_EQ(listener.heard, 2);
}

// Lists and unions of a message that own memory.
TEST_F(MemoryFaultTest, MessageThatFindsNoMemoryLeavesNothingBehind) {
  Vask::ParseResult result;
  const Vask::JsonRef<Vask::Json> root(Vask::Parse(
      result, R"({"sequenceType":"x","entries":{"a":{"friendlyName":"A","errorDescription":"e"},)"
              R"("b":{"friendlyName":"B","errorDescription":"f"},"c":{"friendlyName":5}}})"));
  ASSERT_TRUE(root);
  const auto& object = static_cast<const Vask::JsonObject&>(*root);
  const int failed = ForEveryAllocation([&](const Fault& fault) {
    const FailingAllocations failing(fault.allowed, fault.failures);
    try {
      Messages::SNMPsequence record;
      if (!Messages::Decode(object, record)) std::abort();
    } catch (const std::bad_alloc&) {
      return true;
    }
    return FailingAllocations::Reached();
  });
  EXPECT_GT(failed, 5);
}

}  // namespace

}  // namespace Agent::Tests
