#include "Src/TimerService.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace Vask::Tests {
namespace {

TEST(TimerNodeStoreTest, AllocatesBlocksOf32AsTheyAreNeeded) {
  TimerNodeStore store;
  EXPECT_EQ(store.BlockCount(), 0u);
  std::set<TimerNode*> nodes;
  for (int i = 0; i < 32; ++i) nodes.insert(store.Take());
  EXPECT_EQ(store.BlockCount(), 1u);
  nodes.insert(store.Take());
  EXPECT_EQ(store.BlockCount(), 2u);
  EXPECT_EQ(nodes.size(), 33u);
}

TEST(TimerNodeStoreTest, NodesGivenBackAreUsedBeforeAnythingIsAllocated) {
  TimerNodeStore store;
  std::vector<TimerNode*> nodes;
  for (int round = 0; round < 10; ++round) {
    for (int i = 0; i < 32; ++i) nodes.push_back(store.Take());
    while (!nodes.empty()) {
      store.GiveBack(nodes.back());
      nodes.pop_back();
    }
  }
  EXPECT_EQ(store.BlockCount(), 1u);
}

}  // namespace
}  // namespace Vask::Tests
