#include <atomic>
#include <thread>

#include "tests/agent/TrapFloodFixture.h"

namespace Agent::Tests {

namespace {

TEST_F(TrapFloodTest, EveryTrapIsDeliveredOnceAndInOrderWhileOthersAreQueued) {
  std::thread link([this] { QueueAll(); });
  while (taken < kFlood && WaitForEvent()) Drain();
  link.join();
  EXPECT_EQ(taken, kFlood);
  EXPECT_EQ(outOfOrder, 0u);
}

TEST_F(TrapFloodTest, QueueThatNobodyDrainsGrowsWithoutGrowingSlow) {
  QueueAll();
  EXPECT_EQ(agent.Traps().QueuedCount(), kFlood);
  Drain();
  EXPECT_EQ(taken, kFlood);
  EXPECT_EQ(outOfOrder, 0u);
}

TEST_F(TrapFloodTest, PurgeRunsBesideADrainWithoutTouchingWhatItHandsOut) {
  std::atomic<bool> done{false};
  std::thread purger([this, &done] {
    while (!done) agent.Traps().Queue("TrapStreamsOK");
  });
  AsnObjectIdentifier enterprise{};
  AsnInteger generic = 0;
  AsnInteger specific = 0;
  std::uint32_t timeStamp = 0;
  SnmpVarBindList bindings{};
  for (std::uint32_t delivered = 0; delivered < 20'000;) {
    if (!agent.TakeTrap(enterprise, generic, specific, timeStamp, bindings)) continue;
    EXPECT_EQ(specific, 12);
    ++delivered;
  }
  done = true;
  purger.join();
}

}  // namespace

}  // namespace Agent::Tests
