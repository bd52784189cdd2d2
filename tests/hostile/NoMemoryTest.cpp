// The built module on a machine that has no memory left at all.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tests/contract/Eventually.h"
#include "tests/contract/Library.h"
#include "tests/hostile/FaultyImports.h"
#include "tests/hostile/Target.h"

namespace Hostile {

namespace {

void LoseAllMemory() {
  g_faultSwitch.On(Fault::Memory, 1, 0);
}

// Sends a frame that does not fit into the link's buffer, and waits until an
// allocation of the link's thread has failed.
bool MeetsItWithAFrame(Target& target) {
  LoseAllMemory();
  const std::size_t before = g_faultSwitch.Struck(static_cast<std::size_t>(Fault::Memory));
  const std::string longText = '"' + std::string(10'000, 'x') + '"';
  static_cast<void>(target.Peer().Send(target.Peer().FrameOfMessage("ProcessList", longText)));
  return Contract::Eventually(
      [=] { return g_faultSwitch.Struck(static_cast<std::size_t>(Fault::Memory)) > before; });
}

class NoMemoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    PutFaultyImports(target.Module().Library());
    ASSERT_EQ(target.Begin(), "");
  }
  void TearDown() override { g_faultSwitch.Off(); }

  Target target;
};

TEST_F(NoMemoryTest, RequestFailsAndSucceedsWhenThereIsMemoryAgain) {
  const std::string answer = target.Module().Get("P.1.0");
  LoseAllMemory();
  for (int i = 0; i < 100; ++i) ASSERT_NE(target.Module().Get("P.1.0"), answer) << "request " << i;
  g_faultSwitch.Off();
  EXPECT_EQ(target.Module().Get("P.1.0"), answer);
}

TEST_F(NoMemoryTest, FrameEndsTheLinkWhichWorksWhenThereIsMemoryAgain) {
  ASSERT_TRUE(MeetsItWithAFrame(target));
  g_faultSwitch.Off();
  EXPECT_EQ(target.Serves(false), "");
  EXPECT_TRUE(target.Peer().WaitForEnds(1));
}

// A thread or the module frees what the thread needs for its exceptions.
TEST(NoMemoryLivesTest, NoHandleIsLeftByThreadsThatHaveMetIt) {
  std::size_t handlesEarly = 0;
  for (int life = 1; life <= 6; ++life) {
    {
      Target target;
      PutFaultyImports(target.Module().Library());
      ASSERT_EQ(target.Begin(), "");
      EXPECT_TRUE(MeetsItWithAFrame(target));
      g_faultSwitch.Off();
    }
    if (life == 2) handlesEarly = Contract::OpenHandles();
  }
  EXPECT_TRUE(Contract::Eventually([=] { return Contract::OpenHandles() <= handlesEarly; }))
      << handlesEarly << " -> " << Contract::OpenHandles();
}

}  // namespace

}  // namespace Hostile
