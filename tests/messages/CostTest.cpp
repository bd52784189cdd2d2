#include "messages/SNMPmessage.h"
#include "tests/messages/MessageTest.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/UpdateFrames.h"

namespace Messages::Tests {
namespace {

int s_handled = 0;
void Count(const SNMPmessage&, std::int32_t, void*) {
  ++s_handled;
}

// Counts the allocations of a frame, which do not depend on the machine.
class CostTest : public MessageTest {
 protected:
  // Returns the allocations of one call, after a first call that makes what stays.
  template <class Call>
  static std::uint64_t AllocationsOf(Call call) {
    call();
    const std::uint64_t before = Vask::Tests::Allocations();
    call();
    return Vask::Tests::Allocations() - before;
  }
};

TEST_F(CostTest, CounterCounts) {
  EXPECT_EQ(1u, AllocationsOf([] { (new Vask::JsonObject())->Release(); }));
}

TEST_F(CostTest, WarmFrameOfTheUpdateAllocatesNothing) {
  registrar.Subscribe<SNMPmessage>(Count);
  for (const char* frame : Vask::Tests::kUpdateFrames) {
    s_handled = 0;
    EXPECT_EQ(0u, AllocationsOf([&] { EXPECT_TRUE(registrar.OnJsonMessageText(frame)); })) << frame;
    EXPECT_EQ(2, s_handled) << frame;
  }
  registrar.Unsubscribe<SNMPmessage>(Count);
}

TEST_F(CostTest, MatchingAndSkippingAllocatesNothingAfterTheParse) {
  for (const char* name : {"Confirmation", "SNMPsequence", "SetNtpConfiguration", "Unheard-of"}) {
    const auto root = ParseObject(R"({"name":")" + std::string(name) + R"(","data":{},"id":1})");
    EXPECT_EQ(0u, AllocationsOf([&] { EXPECT_TRUE(registrar.OnJsonMessage(root.Get())); })) << name;
  }
}

TEST_F(CostTest, DecodingAndDispatchAllocateNothingForTheUpdatesMessages) {
  registrar.Subscribe<SNMPmessage>(Count);
  const auto root = ParseObject(
      R"({"name":"SNMPmessage","data":{"messageType":{"Streams":{"Count":1,"Errors":1}}}})");
  EXPECT_EQ(0u, AllocationsOf([&] { EXPECT_TRUE(registrar.OnJsonMessage(root.Get())); }));
  registrar.Unsubscribe<SNMPmessage>(Count);
}

TEST_F(CostTest, ReportWithoutASinkIsNotFormatted) {
  registrar.SetErrorSink(nullptr);
  const std::string text(5000, 'x');
  EXPECT_EQ(0u, AllocationsOf([&] { registrar.ReportError("%s", text.c_str()); }));
}

}  // namespace
}  // namespace Messages::Tests
