#include "host/WaitingTraps.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Host::Trap;
using Host::WaitingTraps;

Trap Numbered(std::int32_t specific) {
  Trap trap;
  trap.specific = specific;
  return trap;
}

// Adds the traps FROM to TO and returns the lines for the log.
std::string AddAll(WaitingTraps& traps, std::int32_t from, std::int32_t to) {
  std::string lines;
  for (std::int32_t i = from; i <= to; ++i) {
    const std::string line = traps.Add(Numbered(i));
    if (!line.empty()) lines += line + '\n';
  }
  return lines;
}

constexpr char kAway[] = "the AgentX master is away: traps wait for its return\n";

TEST(HostWaitingTraps, MasterThatIsThereReceivesThemInOrder) {
  WaitingTraps traps;
  EXPECT_EQ(traps.MasterArrives(), "");
  EXPECT_FALSE(traps.CanSend());
  EXPECT_EQ(AddAll(traps, 1, 2), "");
  ASSERT_TRUE(traps.CanSend());
  EXPECT_EQ(traps.Take().specific, 1);
  EXPECT_EQ(traps.Take().specific, 2);
  EXPECT_FALSE(traps.CanSend());
  EXPECT_EQ(traps.AtEnd(), "");
}

TEST(HostWaitingTraps, TheyWaitForAMasterThatIsAway) {
  WaitingTraps traps;
  EXPECT_EQ(AddAll(traps, 1, 2), kAway);
  EXPECT_FALSE(traps.CanSend());
  EXPECT_EQ(traps.MasterArrives(),
            "the AgentX master is there: it receives 2 traps that waited; 0 traps dropped");
  EXPECT_EQ(traps.Take().specific, 1);
  EXPECT_EQ(traps.Take().specific, 2);
}

TEST(HostWaitingTraps, TheyWaitAgainWhenTheMasterLeaves) {
  WaitingTraps traps;
  EXPECT_EQ(traps.MasterArrives(), "");
  traps.MasterLeaves();
  EXPECT_EQ(AddAll(traps, 1, 1), kAway);
  EXPECT_FALSE(traps.CanSend());
  EXPECT_EQ(traps.AtEnd(), "1 trap lost: the AgentX master did not return");
}

TEST(HostWaitingTraps, AThousandWaitWithoutLoss) {
  WaitingTraps traps;
  EXPECT_EQ(AddAll(traps, 1, 1000), kAway);
  EXPECT_EQ(traps.MasterArrives(),
            "the AgentX master is there: it receives 1000 traps that waited; 0 traps dropped");
  EXPECT_EQ(traps.Take().specific, 1);
}

TEST(HostWaitingTraps, OneMoreDropsTheOldest) {
  WaitingTraps traps;
  EXPECT_EQ(AddAll(traps, 1, 1003),
            std::string(kAway) +
                "more than 1000 traps wait for the AgentX master: the oldest are dropped\n");
  EXPECT_EQ(traps.AtEnd(), "1000 traps lost: the AgentX master did not return");
  EXPECT_EQ(traps.MasterArrives(),
            "the AgentX master is there: it receives 1000 traps that waited; 3 traps dropped");
  EXPECT_EQ(traps.Take().specific, 4);
}

TEST(HostWaitingTraps, DropsOfTheNextAbsenceAreReportedAgain) {
  WaitingTraps traps;
  static_cast<void>(AddAll(traps, 1, 1001));
  static_cast<void>(traps.MasterArrives());
  while (traps.CanSend()) static_cast<void>(traps.Take());
  traps.MasterLeaves();
  EXPECT_EQ(AddAll(traps, 1, 1001),
            std::string(kAway) +
                "more than 1000 traps wait for the AgentX master: the oldest are dropped\n");
}

}  // namespace
