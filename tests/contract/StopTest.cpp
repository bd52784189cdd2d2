// The unload of the module, and the end of a process that has it loaded.

#include "platform/ListeningSocket.h"
#include "tests/contract/ContractFixture.h"
#include "tests/contract/ProcessEnd.h"
#include "tests/support/BuildFolder.h"
#include "tests/support/RawClient.h"

namespace Contract {

namespace {

constexpr char kTerminating[] = "Info: Terminating SNMP extension agent..";

// A second, which includes the time of the system itself.
constexpr std::uint32_t kLongestEndMs = 1000;

using StopTest = ContractTest;

TEST_F(StopTest, UnloadWithTheLinkUpEndsTheConnectionInOrder) {
  StartLinked();
  EXPECT_LT(TimedUnload(), kLongestEndMs);
  ASSERT_TRUE(server->WaitForEnds(1));
  EXPECT_EQ(server->GetRecord().ends.at(0), Simulator::End::InOrder);
  EXPECT_EQ(log.Lines().back(), kTerminating);
  EXPECT_FALSE(log.Has("Lost connection"));
}

TEST_F(StopTest, UnloadWhileThePeerSendsEndsTheConnectionInOrder) {
  StartLinked();
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(server->Send(server->FramesOfUpdate()));
  EXPECT_LT(TimedUnload(), kLongestEndMs);
  ASSERT_TRUE(server->WaitForEnds(1));
  EXPECT_EQ(server->GetRecord().ends.at(0), Simulator::End::InOrder);
}

TEST_F(StopTest, UnloadWithoutAPeerEndsSoon) {
  ASSERT_TRUE(module.Init().result);
  ASSERT_TRUE(Eventually([this] { return log.Has("Lost connection"); }));
  EXPECT_LT(TimedUnload(), kLongestEndMs);
  EXPECT_EQ(log.Lines().back(), kTerminating);
}

TEST_F(StopTest, UnloadRightAfterTheStartEndsSoon) {
  ASSERT_TRUE(module.Init().result);
  EXPECT_LT(TimedUnload(), kLongestEndMs);
  EXPECT_TRUE(log.Has(kTerminating));
}

// If the peer's queue of connections is full, the next attempt waits.
TEST_F(StopTest, UnloadInMidConnectEndsSoon) {
  Vask::Platform::ListeningSocket full;
  ASSERT_TRUE(full.Open(kLinkPort, 0));
  Vask::Tests::RawClient first;
  ASSERT_TRUE(first.Connect(kLinkPort));
  ASSERT_TRUE(module.Init().result);
  Vask::Platform::SystemClock().SleepMs(200);
  ASSERT_FALSE(log.Has("Lost connection")) << "the attempt was refused";
  ASSERT_FALSE(log.Has("established")) << "the attempt was accepted";
  EXPECT_LT(TimedUnload(), kLongestEndMs);
  EXPECT_EQ(log.Lines().back(), kTerminating);
}

TEST_F(StopTest, ModuleThatWasNeverStartedUnloads) {
  EXPECT_LT(TimedUnload(), kLongestEndMs);
}

TEST_F(StopTest, ModuleWhoseStartFailedUnloads) {
  {
    const LogFolder::Blocked blocked(log);
    ASSERT_FALSE(module.Init().result);
  }
  EXPECT_LT(TimedUnload(), kLongestEndMs);
}

TEST_F(StopTest, UnloadWithTrapsInTheQueueEndsSoon) {
  StartLinked();
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(server->Send(Simulator::CorvaneServer::FrameOfFinish()));
  ASSERT_TRUE(Eventually([this] { return log.CountOf("successfully updated") == 20; }));
  EXPECT_LT(TimedUnload(), kLongestEndMs);
}

TEST_F(StopTest, ModuleServesAgainAfterItWasUnloaded) {
  StartLinked();
  module.Unload();
  Module again;
  EXPECT_TRUE(again.Init().result);
  ASSERT_TRUE(server->WaitForConnections(2));
  EXPECT_TRUE(Eventually([&] { return again.Get("P.0.0") == "0 P.0.0 = INT 0"; }));
}

class ProcessEndTest : public ContractTest {
 protected:
  ProcessEndTest() { module.Unload(); }

  // The duration of the end of the process, in milliseconds.
  static std::uint32_t TimedEnd(const char* state) {
    const ProcessEnd end = RunToItsEnd(Vask::Tests::InBuildFolder(CORVANE_MODULE_EXIT), state);
    EXPECT_EQ(end.status, 0);
    return end.tookMs;
  }
};

TEST_F(ProcessEndTest, ProcessWithTheLinkUpEndsInOrder) {
  StartServer();
  EXPECT_LT(TimedEnd("up"), kLongestEndMs);
  ASSERT_TRUE(server->WaitForEnds(1));
  EXPECT_EQ(server->GetRecord().ends.at(0), Simulator::End::InOrder);
  EXPECT_EQ(log.CountOf(kTerminating), 1u);
  EXPECT_FALSE(log.Has("Lost connection"));
}

TEST_F(ProcessEndTest, ProcessWithTheLinkDownEndsSoon) {
  EXPECT_LT(TimedEnd("down"), kLongestEndMs);
  EXPECT_EQ(log.CountOf(kTerminating), 1u);
}

TEST_F(ProcessEndTest, ProcessInMidConnectEndsSoon) {
  Vask::Platform::ListeningSocket full;
  ASSERT_TRUE(full.Open(kLinkPort, 0));
  Vask::Tests::RawClient first;
  ASSERT_TRUE(first.Connect(kLinkPort));
  EXPECT_LT(TimedEnd("started"), kLongestEndMs);
  EXPECT_EQ(log.CountOf(kTerminating), 1u);
}

TEST_F(ProcessEndTest, ProcessThatNeverStartedTheModuleEnds) {
  EXPECT_LT(TimedEnd("loaded"), kLongestEndMs);
}

TEST_F(ProcessEndTest, ProcessThatUnloadedTheModuleEnds) {
  EXPECT_LT(TimedEnd("unloaded"), kLongestEndMs);
  EXPECT_EQ(log.CountOf(kTerminating), 1u);
}

}  // namespace

}  // namespace Contract
