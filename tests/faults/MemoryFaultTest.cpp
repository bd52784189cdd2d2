// The n-th allocation of each activity of the agent fails, for every n: that
// allocation alone, or several in a row.

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
#include "messages/SNMPmessage.h"
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

// How many allocations succeed first, and how many then fail.
struct Fault {
  int allowed;
  int failures;
};

class MemoryFaultTest : public ::testing::Test {
 protected:
  MemoryFaultTest() { LogPrinter::Instance().SetConsole(false); }
  ~MemoryFaultTest() override { LogPrinter::Instance().SetConsole(true); }

  // Runs `activity` for every n until no allocation fails any more. Each run must
  // free everything that it allocated. Returns the number of runs with a failure.
  static int ForEveryAllocation(const std::function<bool(const Fault&)>& activity) {
    activity({0, 0});  // makes what is made only once
    int longest = 0;
    for (const int failures : {1, 5, 50}) {
      int allowed = 0;
      for (bool reached = true; reached; ++allowed) {
        SCOPED_TRACE(std::to_string(failures) + " failures after " + std::to_string(allowed));
        const auto before = HeldBlocks();
        reached = activity({allowed, failures});
        EXPECT_EQ(HeldBlocks(), before);
      }
      longest = std::max(longest, allowed - 1);
    }
    return longest;
  }

  // A trap is missing if there was no memory for its record. None comes twice.
  static void ExpectNoneTwice(const Traps& traps) {
    for (const AsnInteger trap : {13, 15, 17})
      EXPECT_LE(std::count(traps.begin(), traps.end(), trap), 1) << trap;
  }
};

// The first call of an export builds the agent.
TEST_F(MemoryFaultTest, AgentWithoutMemoryLeavesNothingBehind) {
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

TEST_F(MemoryFaultTest, StartSucceedsOrFailsAndTheNextOneSucceeds) {
  const int failed = ForEveryAllocation([](const Fault& fault) {
    FaultStand stand;
    stand.peer.greeting.clear();  // only the start
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

// A frame without memory ends the connection, which the log says. The next
// connection brings all values, and no trap is raised twice.
TEST_F(MemoryFaultTest, FrameWithoutMemoryArrivesWithTheNextConnection) {
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

// A request without memory fails, whole or for one variable. The same request
// succeeds immediately afterwards.
TEST_F(MemoryFaultTest, RequestWithoutMemoryFailsAndSucceedsTheNextTime) {
  struct Row {
    const char* what;
    BYTE type;
    const char* name;
    const char* result;
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
      BOOL served = FALSE;
      bool reached = false;
      {
        const FailingAllocations failing(fault.allowed, fault.failures);
        served = stand.whole.process.Entries().Query(row.type, &bindings, &status, &index);
        reached = FailingAllocations::Reached();
      }
      EXPECT_EQ(index, 0);
      if (!reached) {
        EXPECT_EQ(served, TRUE);
        EXPECT_EQ(status, SNMP_ERRORSTATUS_NOERROR);
      } else if (served == TRUE && status != SNMP_ERRORSTATUS_NOERROR) {
        EXPECT_EQ(status, SNMP_ERRORSTATUS_GENERR);
      } else if (served == FALSE) {
        EXPECT_EQ(stand.LogLines().back(),
                  "Error: Cannot query the SNMP extension agent: exception!");
      }
      Binding again(row.name);
      EXPECT_EQ(stand.Query(row.type, again), TRUE);
      EXPECT_EQ(again.Name() + " = " + again.Value(), row.result);
      return reached;
    });
    EXPECT_GT(failed, 0);
  }
}

// The agent's own variables hold no SEQUENCE, so this table has one.
TEST_F(MemoryFaultTest, StepThroughASequenceWithoutMemorySucceedsTheNextTime) {
  struct Row {
    const char* what;
    const char* name;
    const char* result;
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
      } catch (const std::bad_alloc&) {  // the entry point catches this
      }
      reached = FailingAllocations::Reached();
      EXPECT_EQ(status, reached ? SNMP_ERRORSTATUS_GENERR : SNMP_ERRORSTATUS_NOERROR);
      Binding again(row.name);
      EXPECT_EQ(agent.GetNextRequest(again.Get()), SNMP_ERRORSTATUS_NOERROR);
      EXPECT_EQ(again.Name() + " = " + again.Value(), row.result);
      return reached;
    });
    EXPECT_GT(failed, 0);
  }
}

// A trap without memory for its record is lost. A trap without memory for its
// copy waits for the next signal. Other traps are not affected.
TEST_F(MemoryFaultTest, TrapWithoutMemoryNeverComesTwice) {
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

// Counts the messages of the log and checks their lengths.
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

// The file gets every line, even if another part of the log has no memory, and the
// listeners get the next warning.
TEST_F(MemoryFaultTest, LogWithoutMemoryLosesNoLineOfTheFile) {
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

// The listing of the files lets no exception through.
TEST_F(MemoryFaultTest, OldFileStaysIfTheCleanUpHasNoMemory) {
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

// A tick that throws is not the last one.
TEST_F(MemoryFaultTest, TimerContinuesAfterATickThatThrows) {
  class Client final : public Vask::ITimerServiceClient {
   public:
    void OnTimer(std::uint32_t, std::uint64_t) override {
      if (++ticks == 1) throw std::bad_alloc();
      if (ticks == 3) third.Set();
    }
    int ticks = 0;  // written by the timer thread until the third tick
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

TEST_F(MemoryFaultTest, TimerWithoutMemoryLeavesTheEarlierOne) {
  class Client final : public Vask::ITimerServiceClient {
   public:
    void OnTimer(std::uint32_t, std::uint64_t) override { ++ticks; }
    int ticks = 0;
  };
  Vask::Tests::FakeClock clock;
  Vask::TimerService timers(clock);
  std::vector<Client> clients(Vask::TimerNodeStore::kNodesPerBlock);
  for (Client& client : clients) timers.SetTimer(1'000, &client);  // fills one block
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

TEST_F(MemoryFaultTest, ThreadWithoutMemoryIsNotStarted) {
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

TEST_F(MemoryFaultTest, HandlerWithoutMemoryToMoveKeepsItsPlace) {
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

// A listener that throws affects neither the logging thread nor other listeners.
TEST_F(MemoryFaultTest, ThrowingListenerDoesNotAffectOthers) {
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

// The lists and unions of a message own memory.
TEST_F(MemoryFaultTest, MessageWithoutMemoryLeavesNothingBehind) {
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
