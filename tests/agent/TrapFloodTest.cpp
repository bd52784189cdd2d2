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

TEST_F(TrapFloodTest, UndrainedQueueGrowsAndStaysFast) {
  QueueAll();
  EXPECT_EQ(agent.Traps().QueuedCount(), kFlood);
  Drain();
  EXPECT_EQ(taken, kFlood);
  EXPECT_EQ(outOfOrder, 0u);
}

TEST_F(TrapFloodTest, PurgeDuringADrainKeepsTheTakenTraps) {
  std::atomic<bool> done{false};
  std::thread purger([this, &done] {
    while (!done) agent.Traps().Queue("TrapStreamsOK");
  });
  TakenTrap trap;
  for (std::uint32_t delivered = 0; delivered < 20'000;) {
    if (!trap.TakeFrom(agent)) continue;
    EXPECT_EQ(trap.specific, 12);
    ++delivered;
  }
  done = true;
  purger.join();
}

}  // namespace

}  // namespace Agent::Tests
