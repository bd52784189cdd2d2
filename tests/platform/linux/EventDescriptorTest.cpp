#include "platform/linux/EventDescriptor.h"

#include <gtest/gtest.h>
#include <poll.h>

#include "platform/Event.h"

namespace Vask::Tests {
namespace {

using Platform::Event;
using Platform::EventReset;

bool IsReadable(const Event& event) {
  pollfd waited{Platform::EventDescriptor(event.Handle()), POLLIN, 0};
  return poll(&waited, 1, 0) == 1 && (waited.revents & POLLIN) != 0;
}

TEST(EventDescriptorTest, HandleLeadsToDescriptorAndKind) {
  for (const int descriptor : {0, 1, 7, 1'000'000}) {
    for (const EventReset reset : {EventReset::Automatic, EventReset::Manual}) {
      const Platform::NativeHandle handle = Platform::EventFromDescriptor(descriptor, reset);
      EXPECT_NE(handle, nullptr);
      EXPECT_EQ(Platform::EventDescriptor(handle), descriptor);
      EXPECT_EQ(Platform::EventKind(handle), reset);
    }
  }
}

TEST(EventDescriptorTest, DescriptorIsReadableWhileSignalled) {
  Event event(EventReset::Automatic);
  EXPECT_FALSE(IsReadable(event));
  event.Set();
  EXPECT_TRUE(IsReadable(event));
  EXPECT_TRUE(event.Wait(0));
  EXPECT_FALSE(IsReadable(event));
}

TEST(EventDescriptorTest, ManualEventStaysReadable) {
  Event event(EventReset::Manual);
  event.Set();
  EXPECT_TRUE(event.Wait(0));
  EXPECT_TRUE(IsReadable(event));
}

}  // namespace
}  // namespace Vask::Tests
