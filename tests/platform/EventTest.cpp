#include "platform/Event.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/ScriptedThreading.h"

namespace Vask::Tests {
namespace {

using Platform::Event;
using Platform::EventReset;
using Platform::kInfinite;

constexpr std::uint32_t kGlanceMs = 20;

TEST(EventTest, IsNotSignalledAtFirst) {
  Event automatic(EventReset::Automatic);
  Event manual(EventReset::Manual);
  ASSERT_TRUE(automatic.Valid());
  ASSERT_TRUE(manual.Valid());
  EXPECT_FALSE(automatic.Wait(0));
  EXPECT_FALSE(manual.Wait(0));
  EXPECT_FALSE(automatic.Wait(kGlanceMs));
}

TEST(EventTest, AutomaticEventEndsOneWait) {
  Event event(EventReset::Automatic);
  event.Set();
  EXPECT_TRUE(event.Wait(0));
  EXPECT_FALSE(event.Wait(0));
}

TEST(EventTest, AutomaticEventSetTwiceEndsOneWait) {
  Event event(EventReset::Automatic);
  event.Set();
  event.Set();
  EXPECT_TRUE(event.Wait(kInfinite));
  EXPECT_FALSE(event.Wait(0));
}

TEST(EventTest, ManualEventStaysSignalled) {
  Event event(EventReset::Manual);
  event.Set();
  event.Set();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(event.Wait(kInfinite)) << i;
}

TEST(EventTest, WaitEndsWhenAnotherThreadSets) {
  for (const EventReset reset : {EventReset::Automatic, EventReset::Manual}) {
    Event event(reset);
    int written = 0;
    std::thread setter([&] {
      written = 42;
      event.Set();
    });
    EXPECT_TRUE(event.Wait(kInfinite));
    EXPECT_EQ(written, 42);
    setter.join();
  }
}

TEST(EventTest, AutomaticEventLetsOneOfTwoWaitersThrough) {
  Event event(EventReset::Automatic);
  Event passed(EventReset::Automatic);
  const auto waiter = [&] {
    if (event.Wait(kInfinite)) passed.Set();
  };
  std::thread first(waiter);
  std::thread second(waiter);
  event.Set();
  EXPECT_TRUE(passed.Wait(kInfinite));
  EXPECT_FALSE(passed.Wait(kGlanceMs));
  event.Set();
  EXPECT_TRUE(passed.Wait(kInfinite));
  first.join();
  second.join();
}

TEST(EventTest, EventThatTheSystemCannotCreateIsNotValid) {
  ScriptedThreading threading;
  threading.createsEvents = false;
  Event event(EventReset::Manual, threading);
  EXPECT_FALSE(event.Valid());
  event.Set();
  EXPECT_FALSE(event.Wait(kInfinite));
}

}  // namespace
}  // namespace Vask::Tests
