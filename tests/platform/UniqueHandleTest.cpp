#include "platform/UniqueHandle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace Vask::Tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> g_closed;

struct CountedPolicy {
  using Type = int;
  static constexpr Type None() noexcept { return -1; }
  static void Close(Type handle) noexcept { g_closed.push_back(handle); }
};
using Counted = Platform::UniqueHandle<CountedPolicy>;

class UniqueHandleTest : public testing::Test {
 protected:
  UniqueHandleTest() { g_closed.clear(); }
};

TEST_F(UniqueHandleTest, ClosesAtTheEndOfItsScope) {
  {
    const Counted handle(3);
    EXPECT_TRUE(handle.Valid());
    EXPECT_EQ(handle.Get(), 3);
    EXPECT_THAT(g_closed, IsEmpty());
  }
  EXPECT_THAT(g_closed, ElementsAre(3));
}

TEST_F(UniqueHandleTest, ClosesNothingIfItHoldsNothing) {
  {
    const Counted never;
    const Counted failed(-1);
    EXPECT_FALSE(never.Valid());
    EXPECT_FALSE(failed.Valid());
  }
  EXPECT_THAT(g_closed, IsEmpty());
}

TEST_F(UniqueHandleTest, ReleasedHandleIsNotClosed) {
  {
    Counted handle(3);
    EXPECT_EQ(handle.Release(), 3);
    EXPECT_FALSE(handle.Valid());
  }
  EXPECT_THAT(g_closed, IsEmpty());
}

TEST_F(UniqueHandleTest, ResetClosesTheOldHandle) {
  {
    Counted handle(3);
    handle.Reset(4);
    EXPECT_THAT(g_closed, ElementsAre(3));
  }
  EXPECT_THAT(g_closed, ElementsAre(3, 4));
}

TEST_F(UniqueHandleTest, MovedHandleIsClosedOnce) {
  {
    Counted first(3);
    Counted second(std::move(first));
    Counted third(4);
    third = std::move(second);
    EXPECT_EQ(third.Get(), 3);
    EXPECT_THAT(g_closed, ElementsAre(4));
  }
  EXPECT_THAT(g_closed, ElementsAre(4, 3));
}

// A policy with a member: each handle is closed by the policy that it came with.
struct ListedPolicy {
  using Type = int;
  static constexpr Type None() noexcept { return 0; }
  void Close(Type handle) const noexcept { list->push_back(handle); }
  std::vector<int>* list = nullptr;
};

TEST_F(UniqueHandleTest, MovedHandleIsClosedByItsOwnPolicy) {
  std::vector<int> first;
  std::vector<int> second;
  {
    Platform::UniqueHandle<ListedPolicy> handle(1, {&first});
    handle = Platform::UniqueHandle<ListedPolicy>(2, {&second});
    EXPECT_THAT(first, ElementsAre(1));
    handle.Reset(3);
  }
  EXPECT_THAT(first, ElementsAre(1));
  EXPECT_THAT(second, ElementsAre(2, 3));
}

}  // namespace
}  // namespace Vask::Tests
