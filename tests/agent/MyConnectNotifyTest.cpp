#include "agent/MyConnectNotify.h"

#include <atomic>
#include <thread>

#include "tests/agent/UpdatesFixture.h"

namespace Agent::Tests {

namespace {

using MyConnectNotifyTest = UpdatesTest;
using Lines = std::vector<std::string>;

const std::string kEstablished = "Info: Connection to Corvane process established..\n";
const std::string kLost = "Warning: Lost connection to Corvane process!\n";
const std::string kRequesting = "Info: Requesting to update SNMP variables..\n";

TEST_F(MyConnectNotifyTest, FirstConnectionRequestsAfterFifteenSeconds) {
  connectNotify.OnConnecting();
  connectNotify.OnConnected();
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 0");
  Pass(14'999);
  EXPECT_TRUE(link.frames.empty());
  Pass(1);
  EXPECT_EQ(link.frames, Lines{UpdateRequestFrame()});
}

TEST_F(MyConnectNotifyTest, LaterConnectionsRequestAfterTwoAndAHalfSeconds) {
  connectNotify.OnConnected();
  connectNotify.OnDisconnected();
  connectNotify.OnConnected();
  Pass(2'499);
  EXPECT_TRUE(link.frames.empty());
  Pass(1);
  EXPECT_EQ(link.frames, Lines{UpdateRequestFrame()});
}

TEST_F(MyConnectNotifyTest, RequestIsRepeatedUntilAnUpdateHasFinished) {
  connectNotify.OnConnected();
  connectNotify.OnDisconnected();
  connectNotify.OnConnected();
  Pass(2'500);
  Pass(2'495);
  Pass(2'495);
  EXPECT_EQ(link.frames.size(), 3u);
  connectNotify.UpdateFinished();
  Pass(2'495);
  EXPECT_EQ(link.frames.size(), 3u);
}

TEST_F(MyConnectNotifyTest, TickAfterTheUpdateRemovesTheTimer) {
  connectNotify.OnConnected();
  connectNotify.UpdateFinished();
  EXPECT_NE(timers.Step(), Vask::Platform::kInfinite);
  Pass(15'000);
  EXPECT_EQ(timers.Step(), Vask::Platform::kInfinite);
  EXPECT_TRUE(link.frames.empty());
}

TEST_F(MyConnectNotifyTest, ConnectionIsLoggedAndSetsLinkStatus) {
  connectNotify.OnConnected();
  EXPECT_EQ(log.Lines(), Lines{kEstablished});
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 0");
}

// Records each line together with the value of `LinkStatus` at that moment.
class StatusAtEachLine final : public Vask::Tests::LinesOnlyLog {
 public:
  explicit StatusAtEachLine(MibTable& variables) : m_variables(variables) {
    Vask::LogPrinter::Instance().SetTarget(this);
  }
  ~StatusAtEachLine() override { Vask::LogPrinter::Instance().SetTarget(nullptr); }

  void Info(const char* text) override { Note(text); }
  void Warning(const char* text) override { Note(text); }
  void Error(const char*) override {}
  void Trace(const char*) override {}

  Lines notes;

 private:
  void Note(const std::string& text) {
    notes.push_back(std::to_string(m_variables.Find("LinkStatus")->m_number->load()) + " " + text);
  }

  MibTable& m_variables;
};

TEST_F(MyConnectNotifyTest, LinkStatusIsWrittenBeforeTheChangeIsLogged) {
  StatusAtEachLine status(agent.Variables());
  connectNotify.OnConnected();
  ASSERT_EQ(status.notes, Lines{"0 Connection to Corvane process established..\n"});
  connectNotify.OnDisconnected();
  ASSERT_GE(status.notes.size(), 2u);
  EXPECT_EQ(status.notes[1], "1 Lost connection to Corvane process!\n");
}

TEST_F(MyConnectNotifyTest, ConnectionReportedTwiceDoesNothing) {
  connectNotify.OnConnected();
  Pass(10'000);
  connectNotify.OnConnected();
  EXPECT_EQ(log.Lines(), Lines{kEstablished});
  Pass(5'000);
  EXPECT_EQ(link.frames.size(), 1u) << "the first timer was replaced";
}

TEST_F(MyConnectNotifyTest, LossIsLoggedTrappedAndSetsLinkStatus) {
  connectNotify.OnConnected();
  log.Clear();
  connectNotify.OnDisconnected();
  EXPECT_EQ(LinesBesideTraps(), Lines{kLost});
  EXPECT_EQ(TakeTraps(), Traps{11});
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");
}

TEST_F(MyConnectNotifyTest, OnlyTheFirstOfARunOfFailedAttemptsCounts) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    connectNotify.OnConnecting();
    connectNotify.OnConnectFailed();
  }
  EXPECT_EQ(LinesBesideTraps(), Lines{kLost});
  EXPECT_EQ(TakeTraps(), Traps{11});
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");
}

TEST_F(MyConnectNotifyTest, FailedAttemptsAfterALossChangeNothing) {
  connectNotify.OnConnected();
  connectNotify.OnDisconnected();
  connectNotify.OnConnectFailed();
  EXPECT_EQ(TakeTraps(), Traps{11});
}

TEST_F(MyConnectNotifyTest, EveryLossRaisesItsTrap) {
  for (int round = 0; round < 3; ++round) {
    connectNotify.OnConnected();
    connectNotify.OnDisconnected();
  }
  EXPECT_EQ(TakeTraps(), (Traps{11, 11, 11}));
}

TEST_F(MyConnectNotifyTest, LossWhileStoppingIsNeitherLoggedNorTrapped) {
  connectNotify.OnConnected();
  connectNotify.UpdateFinished();
  log.Clear();
  agent.SetTerminating();
  connectNotify.OnDisconnected();
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(agent.Traps().QueuedCount(), 0u);
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");
}

TEST_F(MyConnectNotifyTest, LossWhileStoppingKeepsTheUpdateFinished) {
  connectNotify.OnConnected();
  connectNotify.UpdateFinished();
  agent.SetTerminating();
  connectNotify.OnDisconnected();
  connectNotify.OnConnected();
  Pass(2'500);
  EXPECT_TRUE(link.frames.empty());
}

TEST_F(MyConnectNotifyTest, ReconnectionRequestsANewUpdate) {
  connectNotify.OnConnected();
  connectNotify.UpdateFinished();
  connectNotify.OnDisconnected();
  connectNotify.OnConnected();
  Pass(2'500);
  EXPECT_EQ(link.frames, Lines{UpdateRequestFrame()});
}

TEST_F(MyConnectNotifyTest, TickWithoutAConnectionDoesNothing) {
  connectNotify.OnTimer(0, 0);
  connectNotify.OnConnected();
  connectNotify.OnDisconnected();
  log.Clear();
  connectNotify.OnTimer(0, 0);
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_TRUE(link.frames.empty());
}

TEST_F(MyConnectNotifyTest, RequestIsLogged) {
  connectNotify.OnConnected();
  log.Clear();
  Pass(15'000);
  EXPECT_EQ(log.Lines(), Lines{kRequesting});
}

// Records the number of frames that were sent before each line.
class FramesBeforeEachLine final : public Vask::Tests::LinesOnlyLog {
 public:
  explicit FramesBeforeEachLine(const RecordingLink& link) : m_link(link) {
    Vask::LogPrinter::Instance().SetTarget(this);
  }
  ~FramesBeforeEachLine() override { Vask::LogPrinter::Instance().SetTarget(nullptr); }

  void Info(const char* text) override {
    notes.push_back(std::to_string(m_link.frames.size()) + " " + text);
  }
  void Warning(const char*) override {}
  void Error(const char*) override {}
  void Trace(const char*) override {}

  Lines notes;

 private:
  const RecordingLink& m_link;
};

TEST_F(MyConnectNotifyTest, RequestIsLoggedBeforeItIsSent) {
  connectNotify.OnConnected();
  const FramesBeforeEachLine frames(link);
  Pass(15'000);
  EXPECT_EQ(frames.notes, Lines{"0 Requesting to update SNMP variables..\n"});
}

// A tick that removes the timer of one connection while the next one begins must
// not remove the new timer, too.
TEST_F(MyConnectNotifyTest, ReconnectionDuringTicksKeepsItsTimer) {
  std::atomic<bool> done{false};
  std::thread ticks([this, &done] {
    while (!done) connectNotify.OnTimer(0, 0);
  });
  for (int round = 0; round < 2'000; ++round) {
    connectNotify.OnConnected();
    connectNotify.UpdateFinished();
    connectNotify.OnDisconnected();
  }
  connectNotify.OnConnected();
  done = true;
  ticks.join();
  EXPECT_NE(timers.Step(), Vask::Platform::kInfinite);
}

}  // namespace

}  // namespace Agent::Tests
