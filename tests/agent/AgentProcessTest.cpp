#include "agent/AgentProcess.h"

#include "tests/agent/AgentProcessFixture.h"
#include "tests/agent/UpdatesFixture.h"
#include "tests/support/ForwardingSockets.h"

namespace Agent::Tests {

namespace {

using Lines = std::vector<std::string>;

TEST_F(AgentProcessTest, StartCreatesTheLogFolderWithAllItsParents) {
  EXPECT_TRUE(process.Start());
  const Lines expected{"C:\\Data\\Veltrin Systems", "C:\\Data\\Veltrin Systems\\Corvane",
                       "C:\\Data\\Veltrin Systems\\Corvane\\SNMP",
                       "C:\\Data\\Veltrin Systems\\Corvane\\SNMP\\Logs"};
  EXPECT_EQ(files.created, expected);
}

TEST_F(AgentProcessTest, StartWithoutALogFailsSilentlyAndDoesNothingElse) {
  struct Row {
    const char* what;
    void (*spoil)(LogDisk& files);
  };
  const Row rows[] = {
      {"no common folder", [](LogDisk& disk) { disk.commonData.clear(); }},
      {"path too long", [](LogDisk& disk) { disk.commonData = "C:\\" + std::string(240, 'x'); }},
      {"product folder refused",
       [](LogDisk& disk) { disk.refused = {"C:\\Data\\Veltrin Systems\\Corvane"}; }},
      {"log folder refused",
       [](LogDisk& disk) { disk.refused = {"C:\\Data\\Veltrin Systems\\Corvane\\SNMP\\Logs"}; }},
      {"log file refused", [](LogDisk& disk) { disk.opensFiles = false; }},
  };
  for (const Row& row : rows) {
    files.commonData = "C:\\Data";
    files.refused.clear();
    files.created.clear();
    files.opensFiles = true;
    row.spoil(files);
    EXPECT_FALSE(process.Start()) << row.what;
    EXPECT_TRUE(files.Lines().empty()) << row.what;
    EXPECT_EQ(threading.starts, 0) << row.what;
    EXPECT_EQ(agent.Variables().Find("LinkStatus"), nullptr) << row.what;
    EXPECT_EQ(agent.Traps().Find("TrapStreamsOK"), nullptr) << row.what;
  }
}

// The path of the log's file is then too long, so both starts fail.
TEST_F(AgentProcessTest, LogFolderOf260CharactersIsCreatedAndOneOf261IsNot) {
  const std::string below = "\\Veltrin Systems\\Corvane\\SNMP\\Logs";
  files.commonData = "C:\\" + std::string(261 - 3 - below.size(), 'x');
  EXPECT_FALSE(process.Start());
  ASSERT_FALSE(files.created.empty());
  EXPECT_EQ(files.created.back(), files.commonData + "\\Veltrin Systems\\Corvane\\SNMP");
  files.commonData.pop_back();
  EXPECT_FALSE(process.Start());
  EXPECT_EQ(files.created.back(), files.commonData + below);
  EXPECT_EQ(files.created.back().size(), 260u);
}

TEST_F(AgentProcessTest, NoFolderIsCreatedIfThatOfTheProductWouldHave261Characters) {
  const std::string product = "\\Veltrin Systems\\Corvane\\SNMP";
  files.commonData = "C:\\" + std::string(261 - 3 - product.size(), 'x');
  EXPECT_FALSE(process.Start());
  EXPECT_TRUE(files.created.empty());
}

TEST_F(AgentProcessTest, StartRegistersEverythingBeforeTheLinkRuns) {
  EXPECT_TRUE(process.Start());
  const Lines lines = StartLines();
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(lines.front(), "Info: Starting Corvane SNMP extension agent..");
  EXPECT_EQ(lines[1], "Info: MIB TABLE 'AudioSourcesSilence':INT = " + FullName("P.2.4"));
  EXPECT_EQ(lines[9], "Info: TRAP TABLE 'TrapSoftwareLinkUp' = " + FullName("P.10"));
  EXPECT_TRUE(link.IsRunning());
  EXPECT_EQ(threading.starts, 2);
}

// The system loads libraries for its first socket. A thread that an unload waits
// for must not do that.
TEST_F(AgentProcessTest, FirstSocketIsOpenedAndEndedBeforeTheLinksThreadStarts) {
  std::vector<int> atStart;
  threading.beforeStart = [&] { atStart = {sockets.opened, sockets.disconnected, sockets.closed}; };
  EXPECT_TRUE(process.Start());
  EXPECT_EQ(atStart, (std::vector<int>{1, 1, 1}));
}

// Records the calls that end a socket. May refuse to open one.
class RecordedEnds final : public Vask::Tests::ForwardingSockets {
 public:
  using ForwardingSockets::ForwardingSockets;

  bool opens = true;
  Lines calls;

  Vask::Platform::SocketHandle OpenTcp() noexcept override {
    return opens ? ForwardingSockets::OpenTcp() : Vask::Platform::kInvalidSocket;
  }
  Vask::Platform::Disconnection Disconnect(Vask::Platform::SocketHandle socket) noexcept override {
    calls.push_back("disconnect " + std::to_string(socket));
    return ForwardingSockets::Disconnect(socket);
  }
  void Close(Vask::Platform::SocketHandle socket) noexcept override {
    calls.push_back("close " + std::to_string(socket));
    ForwardingSockets::Close(socket);
  }
};

// There is no link thread here, so the start alone uses the sockets.
TEST(AgentProcessSocketsTest, FirstSocketIsDisconnectedAndThenClosedIfItOpens) {
  for (const bool opens : {true, false}) {
    LogDisk files;
    NoThreads threading;
    NoNetwork network;
    RecordedEnds sockets(network);
    sockets.opens = opens;
    Vask::Tests::FakeClock clock;
    WholeAgent whole({clock, files, sockets, threading, clock, threading});
    EXPECT_FALSE(whole.process.Start());
    EXPECT_EQ(sockets.calls, opens ? (Lines{"disconnect 7", "close 7"}) : Lines{}) << opens;
  }
}

TEST_F(AgentProcessTest, StartSucceedsWithoutATimerThread) {
  threading.refusedStarts = {kTimerThread};
  EXPECT_TRUE(process.Start());
  EXPECT_TRUE(link.IsRunning());
  process.Stop(Ending::kUnload);
  EXPECT_EQ(threading.joins, 1);
}

TEST_F(AgentProcessTest, StartFailsWithoutALinkThreadAndLogsThat) {
  threading.refusedStarts = {kLinkThread};
  EXPECT_FALSE(process.Start());
  const Lines lines = StartLines();
  ASSERT_EQ(lines.size(), 22u);
  EXPECT_EQ(lines[20], "Error: Vask::JsonSocket::OpenThread open failed");
  EXPECT_EQ(lines[21], "Error: Unable to open JsonSocket!");
  EXPECT_FALSE(link.IsRunning());
  EXPECT_NE(agent.Variables().Find("LinkStatus"), nullptr);
  process.Stop(Ending::kUnload);
  EXPECT_EQ(threading.joins, 1);
}

TEST_F(AgentProcessTest, StartCanBeTriedAgainAfterItFailed) {
  threading.refusedStarts = {kLinkThread};
  ASSERT_FALSE(process.Start());
  EXPECT_TRUE(process.Start());
  EXPECT_TRUE(link.IsRunning());
  EXPECT_EQ(threading.starts, 3);
}

TEST_F(AgentProcessTest, SecondStartIsRefusedAndLeavesThreadsAndTablesAlone) {
  ASSERT_TRUE(process.Start());
  const std::size_t before = StartLines().size();
  EXPECT_FALSE(process.Start());
  const Lines lines = StartLines();
  ASSERT_EQ(lines.size(), before + 3);
  EXPECT_EQ(lines[before], "Info: Starting Corvane SNMP extension agent..");
  EXPECT_EQ(lines[before + 1], "Error: Vask::JsonSocket::OpenThread open failed");
  EXPECT_EQ(lines[before + 2], "Error: Unable to open JsonSocket!");
  EXPECT_TRUE(link.IsRunning());
  EXPECT_EQ(threading.starts, 2);
}

// The running link continues.
TEST_F(AgentProcessTest, SecondStartOpensNoSocketAndKeepsTheSender) {
  ASSERT_TRUE(process.Start());
  ASSERT_EQ(sockets.openedByOwner, 1);
  RecordingLink sender;
  Messages::Registrar::Instance().SetSender(&sender);
  EXPECT_FALSE(process.Start());
  EXPECT_EQ(sockets.openedByOwner, 1);
  Messages::Registrar::Instance().SendSNMPupdate();
  EXPECT_EQ(sender.frames.size(), 1u);
}

TEST(AgentProcessWiringTest, MessagesReachTheExistingAgent) {
  const auto receive = [](const std::string& data) {
    return Messages::Registrar::Instance().OnJsonMessageText(data.c_str());
  };
  const auto streams = [](const std::string& count) {
    return R"({"name":"SNMPmessage","data":{"messageType":{"Streams":{"Count":)" + count +
           R"(,"Errors":0}}}})";
  };
  for (const int count : {5, 7}) {
    StartedAgent started;
    SNMPExtensionAgent& agent = started.whole.process.Extension();
    const auto stored = [&agent] {
      return agent.Variables().Find("StreamsCount")->m_number->load();
    };
    EXPECT_EQ(stored(), 0);
    EXPECT_TRUE(receive(streams(std::to_string(count))));
    EXPECT_EQ(stored(), count);
    EXPECT_TRUE(receive(R"({"name":"SNMPupdateFinished","data":{}})"));
    EXPECT_EQ(started.log.Lines().at(1), "Info: SNMP variables successfully updated\n");
  }
  // No agent is left that a handler could call.
  EXPECT_TRUE(receive(streams("9")));
}

TEST_F(AgentProcessTest, UnloadStopsBothThreads) {
  ASSERT_TRUE(process.Start());
  process.Stop(Ending::kUnload);
  EXPECT_TRUE(agent.Terminating());
  EXPECT_FALSE(link.IsRunning());
  // The link's thread may set a timer, so it ends first.
  EXPECT_EQ(threading.joined, (std::vector<int>{kLinkThread, kTimerThread}));
  // The reader may log its first failed attempt after this line.
  EXPECT_TRUE(Has("Info: Terminating SNMP extension agent.."));
}

TEST(AgentProcessEndTest, DestructorStopsBothThreadsAndUnwiresTheRegistrar) {
  LogDisk files;
  CountedThreading threading;
  NoNetwork sockets;
  Vask::Tests::FakeClock clock;
  StillClock stillClock(clock);
  Vask::DailyLog log(stillClock, files, sockets);
  Vask::TimerService timers(clock, threading);
  RecordingLink sender;
  {
    AgentProcess process({stillClock, files, sockets, threading}, log, timers);
    ASSERT_TRUE(process.Start());
    Messages::Registrar::Instance().SetSender(&sender);
  }
  EXPECT_EQ(threading.joined, (std::vector<int>{kLinkThread, kTimerThread}));
  const std::size_t before = files.Lines().size();
  Messages::Registrar::Instance().ReportError("nobody takes this");
  EXPECT_EQ(files.Lines().size(), before);
  EXPECT_TRUE(Messages::Registrar::Instance().SendSNMPupdate());
  EXPECT_TRUE(sender.frames.empty());
}

TEST_F(AgentProcessTest, EndOfTheProcessWaitsForNothing) {
  ASSERT_TRUE(process.Start());
  process.Stop(Ending::kProcessEnd);
  EXPECT_EQ(threading.joins, 0);
  EXPECT_TRUE(agent.Terminating());
  EXPECT_FALSE(link.IsRunning());
  EXPECT_TRUE(Has("Info: Terminating SNMP extension agent.."));
}

TEST_F(AgentProcessTest, StopWithoutAStartJoinsNothing) {
  for (const Ending ending : {Ending::kUnload, Ending::kProcessEnd}) {
    Vask::Tests::RecordingLog console;
    process.Stop(ending);
    EXPECT_EQ(console.Lines(), Lines{"Info: Terminating SNMP extension agent..\n"});
  }
  EXPECT_EQ(threading.joins, 0);
}

}  // namespace

}  // namespace Agent::Tests
