#include "messages/HandlerList.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

namespace Messages::Tests {
namespace {

// Handlers are plain functions, so this holds what they do and which were called.
struct Script {
  HandlerList* list = nullptr;
  std::string calls;
  std::function<void()> duringA;
  std::function<void()> duringB;
};
Script* s_script = nullptr;

void A() {}
void B() {}
void C() {}
void D() {}

void Invoke(HandlerList::Function handler, const void* record, std::int32_t id, void* context) {
  s_script->calls += handler == A ? 'A' : handler == B ? 'B' : handler == C ? 'C' : 'D';
  EXPECT_EQ(&s_script, record);
  EXPECT_EQ(7, id);
  EXPECT_EQ(nullptr, context);
  if (handler == A && s_script->duringA) s_script->duringA();
  if (handler == B && s_script->duringB) s_script->duringB();
}

class HandlerListTest : public ::testing::Test {
 protected:
  HandlerListTest() { s_script = &script; }
  ~HandlerListTest() override { s_script = nullptr; }

  // Returns the handlers that one dispatch calls, in order.
  std::string Dispatch() {
    script.calls.clear();
    list.Dispatch(&s_script, 7, Invoke);
    return script.calls;
  }
  void DispatchWithin() { list.Dispatch(&s_script, 7, Invoke); }

  HandlerList list;
  Script script;
};

TEST_F(HandlerListTest, StartsEmpty) {
  EXPECT_TRUE(list.Empty());
  EXPECT_EQ(0u, list.Count());
  EXPECT_EQ("", Dispatch());
}

TEST_F(HandlerListTest, CallsInOrderOfSubscription) {
  list.Subscribe(B);
  list.Subscribe(A);
  list.Subscribe(C);
  EXPECT_EQ("BAC", Dispatch());
  EXPECT_EQ(3u, list.Count());
  EXPECT_FALSE(list.Empty());
}

TEST_F(HandlerListTest, SubscribingTwiceLeavesOneSubscriptionAtTheEnd) {
  list.Subscribe(A);
  list.Subscribe(B);
  list.Subscribe(A);
  EXPECT_EQ("BA", Dispatch());
  EXPECT_EQ(2u, list.Count());
  list.Subscribe(A);
  EXPECT_EQ("BA", Dispatch());
  EXPECT_EQ(2u, list.Count());
}

TEST_F(HandlerListTest, HandlerIsRemovedAtHeadMiddleAndTail) {
  struct Row {
    HandlerList::Function removed;
    const char* left;
  };
  for (const Row& row : {Row{A, "BCD"}, Row{B, "ACD"}, Row{C, "ABD"}}) {
    HandlerList rest;
    for (const HandlerList::Function handler : {A, B, C}) rest.Subscribe(handler);
    rest.Unsubscribe(row.removed);
    EXPECT_EQ(2u, rest.Count());
    rest.Subscribe(D);  // goes behind the last one
    script.calls.clear();
    rest.Dispatch(&s_script, 7, Invoke);
    EXPECT_EQ(row.left, script.calls);
  }
}

TEST_F(HandlerListTest, RemovingTheOnlyHandlerEmptiesTheList) {
  list.Subscribe(A);
  list.Unsubscribe(A);
  EXPECT_TRUE(list.Empty());
  EXPECT_EQ("", Dispatch());
  list.Subscribe(B);
  EXPECT_EQ("B", Dispatch());
}

TEST_F(HandlerListTest, RemovingAHandlerThatIsNotThereChangesNothing) {
  list.Unsubscribe(A);
  list.Subscribe(B);
  list.Unsubscribe(A);
  EXPECT_EQ("B", Dispatch());
  EXPECT_EQ(1u, list.Count());
}

TEST_F(HandlerListTest, HandlerMayRemoveItself) {
  for (const HandlerList::Function handler : {A, B}) list.Subscribe(handler);
  script.duringA = [this] { list.Unsubscribe(A); };
  EXPECT_EQ("AB", Dispatch());
  EXPECT_EQ("B", Dispatch());
}

TEST_F(HandlerListTest, OnlyHandlerMayRemoveItself) {
  list.Subscribe(A);
  script.duringA = [this] {
    list.Unsubscribe(A);
    EXPECT_TRUE(list.Empty());
  };
  EXPECT_EQ("A", Dispatch());
  EXPECT_EQ("", Dispatch());
}

TEST_F(HandlerListTest, HandlerRemovedBeforeItsTurnIsNotCalled) {
  for (const HandlerList::Function handler : {A, B, C}) list.Subscribe(handler);
  script.duringA = [this] { list.Unsubscribe(B); };
  EXPECT_EQ("AC", Dispatch());
  EXPECT_EQ("AC", Dispatch());
}

TEST_F(HandlerListTest, HandlerRemovedAfterItsTurnWasCalled) {
  for (const HandlerList::Function handler : {A, B, C}) list.Subscribe(handler);
  script.duringB = [this] { list.Unsubscribe(A); };
  EXPECT_EQ("ABC", Dispatch());
  EXPECT_EQ("BC", Dispatch());
}

TEST_F(HandlerListTest, HandlerAddedDuringADispatchIsCalledByIt) {
  list.Subscribe(A);
  script.duringA = [this] { list.Subscribe(B); };
  EXPECT_EQ("AB", Dispatch());
}

TEST_F(HandlerListTest, HandlerAddedAndRemovedAgainIsNotCalled) {
  list.Subscribe(A);
  script.duringA = [this] {
    list.Subscribe(B);
    list.Unsubscribe(B);
  };
  EXPECT_EQ("A", Dispatch());
  EXPECT_EQ(1u, list.Count());
}

TEST_F(HandlerListTest, HandlerThatSubscribesItselfAgainIsCalledOncePerDispatch) {
  for (const HandlerList::Function handler : {A, B}) list.Subscribe(handler);
  script.duringA = [this] { list.Subscribe(A); };
  EXPECT_EQ("AB", Dispatch());
  EXPECT_EQ("BA", Dispatch());
  script.duringA = [this] {
    list.Unsubscribe(A);
    list.Subscribe(A);
  };
  EXPECT_EQ("BA", Dispatch());
  EXPECT_EQ(2u, list.Count());
}

TEST_F(HandlerListTest, HandlerMovedBeforeItsTurnIsCalledAtItsNewPlace) {
  for (const HandlerList::Function handler : {A, B, C}) list.Subscribe(handler);
  script.duringA = [this] { list.Subscribe(B); };
  EXPECT_EQ("ACB", Dispatch());
}

TEST_F(HandlerListTest, NestedDispatchCallsAllHandlersAndTheOuterOneContinues) {
  for (const HandlerList::Function handler : {A, B}) list.Subscribe(handler);
  bool within = false;
  script.duringA = [this, &within] {
    if (std::exchange(within, true)) return;
    DispatchWithin();
    list.Unsubscribe(A);
  };
  EXPECT_EQ("AABB", Dispatch());
  EXPECT_EQ("B", Dispatch());
}

TEST_F(HandlerListTest, HandlerAddedAndCalledInANestedDispatchIsCalledByTheOuterOneToo) {
  list.Subscribe(A);
  bool within = false;
  script.duringA = [this, &within] {
    if (std::exchange(within, true)) return;
    list.Subscribe(B);
    DispatchWithin();
  };
  EXPECT_EQ("AABB", Dispatch());
}

TEST_F(HandlerListTest, HandlerMovedByANestedDispatchIsNotCalledAgainByTheOuterOne) {
  for (const HandlerList::Function handler : {A, B, C}) list.Subscribe(handler);
  bool within = false;
  script.duringB = [this, &within] {
    if (std::exchange(within, true)) return;
    DispatchWithin();
    list.Subscribe(A);
    list.Subscribe(C);
    DispatchWithin();
  };
  // The outer dispatch has called A and B, so only C is left for it.
  EXPECT_EQ(
      "AB"
      "ABC"
      "BAC"
      "C",
      Dispatch());
}

TEST_F(HandlerListTest, AllHandlersMayBeRemovedDuringADispatch) {
  for (const HandlerList::Function handler : {A, B, C}) list.Subscribe(handler);
  script.duringA = [this] {
    for (const HandlerList::Function handler : {A, B, C}) list.Unsubscribe(handler);
  };
  EXPECT_EQ("A", Dispatch());
  EXPECT_TRUE(list.Empty());
  list.Subscribe(D);
  EXPECT_EQ("D", Dispatch());
}

}  // namespace
}  // namespace Messages::Tests
