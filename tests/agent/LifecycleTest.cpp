#include "agent/Lifecycle.h"

#include "tests/agent/LifecycleFixture.h"

namespace Agent::Tests {

namespace {

using Lines = std::vector<std::string>;

TEST_F(LifecycleTest, StartCreatesTheLogFolderWithAllItsParents) {
  EXPECT_TRUE(lifecycle.Start());
  const Lines expected{"C:\\Data\\Veltrin Systems", "C:\\Data\\Veltrin Systems\\Corvane",
                       "C:\\Data\\Veltrin Systems\\Corvane\\SNMP",
                       "C:\\Data\\Veltrin Systems\\Corvane\\SNMP\\Logs"};
  EXPECT_EQ(files.created, expected);
}

TEST_F(LifecycleTest, StartWithoutALogFailsSilentlyAndDoesNothingElse) {
  struct Row {
    const char* what;
    void (*spoil)(StartFiles& files);
  };
  const Row rows[] = {
      {"no common folder", [](StartFiles& disk) { disk.commonData.clear(); }},
      {"path too long", [](StartFiles& disk) { disk.commonData = "C:\\" + std::string(240, 'x'); }},
      {"product folder refused",
       [](StartFiles& disk) { disk.refused = {"C:\\Data\\Veltrin Systems\\Corvane"}; }},
      {"log folder refused",
       [](StartFiles& disk) { disk.refused = {"C:\\Data\\Veltrin Systems\\Corvane\\SNMP\\Logs"}; }},
      {"log file refused", [](StartFiles& disk) { disk.opensFiles = false; }},
  };
  for (const Row& row : rows) {
    files.commonData = "C:\\Data";
    files.refused.clear();
    files.created.clear();
    files.opensFiles = true;
    row.spoil(files);
    EXPECT_FALSE(lifecycle.Start()) << row.what;
    EXPECT_TRUE(files.Lines().empty()) << row.what;
    EXPECT_EQ(threading.starts, 0) << row.what;
    EXPECT_EQ(agent.Variables().Find("LinkStatus"), nullptr) << row.what;
    EXPECT_EQ(agent.Traps().Find("TrapStreamsOK"), nullptr) << row.what;
  }
}

TEST_F(LifecycleTest, StartRegistersEverythingBeforeTheLinkRuns) {
  EXPECT_TRUE(lifecycle.Start());
  const Lines lines = StartLines();
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(lines.front(), "Info: Starting Corvane SNMP extension agent..");
  EXPECT_EQ(lines[1], "Info: MIB TABLE 'AudioSourcesSilence':INT = " + FullName("P.2.4"));
  EXPECT_EQ(lines[9], "Info: TRAP TABLE 'TrapSoftwareLinkUp' = " + FullName("P.10"));
  EXPECT_TRUE(link.IsRunning());
  EXPECT_EQ(threading.starts, 2);
}

// What the system loads for its first socket must not be loaded by a thread that
// an unload waits for.
TEST_F(LifecycleTest, FirstSocketIsOpenedAndEndedBeforeTheLinksThreadStarts) {
  std::vector<int> atStart;
  threading.beforeStart = [&] { atStart = {sockets.opened, sockets.disconnected, sockets.closed}; };
  EXPECT_TRUE(lifecycle.Start());
  EXPECT_EQ(atStart, (std::vector<int>{1, 1, 1}));
}

TEST_F(LifecycleTest, WithoutATimerThreadTheAgentStartsAllTheSame) {
  threading.refusedStarts = {kTimerThread};
  EXPECT_TRUE(lifecycle.Start());
  EXPECT_TRUE(link.IsRunning());
  lifecycle.Stop(Ending::kUnload);
  EXPECT_EQ(threading.joins, 1);
}

TEST_F(LifecycleTest, WithoutALinkThreadTheStartFailsAndSaysSo) {
  threading.refusedStarts = {kLinkThread};
  EXPECT_FALSE(lifecycle.Start());
  const Lines lines = StartLines();
  ASSERT_EQ(lines.size(), 22u);
  EXPECT_EQ(lines[20], "Error: Vask::JsonSocket::OpenThread open failed");
  EXPECT_EQ(lines[21], "Error: Unable to open JsonSocket!");
  EXPECT_FALSE(link.IsRunning());
  EXPECT_NE(agent.Variables().Find("LinkStatus"), nullptr);
  lifecycle.Stop(Ending::kUnload);
  EXPECT_EQ(threading.joins, 1);
}

TEST_F(LifecycleTest, StartCanBeTriedAgainAfterItFailed) {
  threading.refusedStarts = {kLinkThread};
  ASSERT_FALSE(lifecycle.Start());
  EXPECT_TRUE(lifecycle.Start());
  EXPECT_TRUE(link.IsRunning());
  EXPECT_EQ(threading.starts, 3);
}

TEST_F(LifecycleTest, SecondStartIsRefusedAndLeavesThreadsAndTablesAlone) {
  ASSERT_TRUE(lifecycle.Start());
  const std::size_t before = StartLines().size();
  EXPECT_FALSE(lifecycle.Start());
  const Lines lines = StartLines();
  ASSERT_EQ(lines.size(), before + 3);
  EXPECT_EQ(lines[before], "Info: Starting Corvane SNMP extension agent..");
  EXPECT_EQ(lines[before + 1], "Error: Vask::JsonSocket::OpenThread open failed");
  EXPECT_EQ(lines[before + 2], "Error: Unable to open JsonSocket!");
  EXPECT_TRUE(link.IsRunning());
  EXPECT_EQ(threading.starts, 2);
}

TEST_F(LifecycleTest, UnloadStopsBothThreads) {
  ASSERT_TRUE(lifecycle.Start());
  lifecycle.Stop(Ending::kUnload);
  EXPECT_TRUE(agent.Terminating());
  EXPECT_FALSE(link.IsRunning());
  EXPECT_EQ(threading.joins, 2);
  // The reader may still log its first failed attempt behind it.
  EXPECT_TRUE(Has("Info: Terminating SNMP extension agent.."));
}

TEST_F(LifecycleTest, EndOfTheProcessWaitsForNothing) {
  ASSERT_TRUE(lifecycle.Start());
  lifecycle.Stop(Ending::kProcessEnd);
  EXPECT_EQ(threading.joins, 0);
  EXPECT_TRUE(agent.Terminating());
  EXPECT_FALSE(link.IsRunning());
  EXPECT_TRUE(Has("Info: Terminating SNMP extension agent.."));
}

TEST_F(LifecycleTest, StopWithoutAStartJoinsNothing) {
  for (const Ending ending : {Ending::kUnload, Ending::kProcessEnd}) {
    Vask::Tests::RecordingLog console;
    lifecycle.Stop(ending);
    EXPECT_EQ(console.Lines(), Lines{"Info: Terminating SNMP extension agent..\n"});
  }
  EXPECT_EQ(threading.joins, 0);
}

}  // namespace

}  // namespace Agent::Tests
