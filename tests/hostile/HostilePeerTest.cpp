// For every input of a peer: the agent answers requests, applies the next good frame,
// and holds no more memory than the bytes that arrived.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/contract/Eventually.h"
#include "tests/contract/Library.h"
#include "tests/hostile/FedLink.h"
#include "tests/hostile/Inputs.h"
#include "tests/hostile/MemoryWatch.h"
#include "tests/hostile/Target.h"
#include "tests/support/MachinePauses.h"

namespace Hostile {

namespace {

constexpr std::size_t kMiB = std::size_t{1024} * 1024;
// In addition to the bytes that arrived.
constexpr std::size_t kMostMemory = 8 * kMiB;
// In addition to what the heaps held before: the link keeps a text of up to 64 KiB for the
// next frame, and the log its twenty newest messages of up to 2 KiB each.
constexpr std::size_t kMostKept = std::size_t{64 + 20 * 2} * 1024;

constexpr std::uint32_t kLongestStopMs = 500;

class HostilePeerTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { Contract::CountWholeHeap(); }
  void SetUp() override { ASSERT_EQ(target.Begin(), ""); }

  // Runs `body`, which may make `bytes` and kMostMemory resident.
  template <class Body>
  void WithinMemory(std::size_t bytes, const Body& body) {
    const std::size_t before = watch.Restart();
    body();
    const std::size_t highest = watch.Highest();
    if (kSanitized) return;
    EXPECT_LE(highest, before + bytes + kMostMemory)
        << (highest - before) << " bytes more were resident";
  }

  const Scale scale = UsualScale();
  MemoryWatch watch;
  Target target;
};

TEST_F(HostilePeerTest, EveryListedInputLeavesTheAgentServing) {
  for (const Input& input : ListedInputs(scale.longest)) {
    SCOPED_TRACE(input.name);
    const std::size_t held = Contract::HeldMemory();
    WithinMemory(input.bytes.size() * input.memoryPerByte,
                 [&] { ASSERT_EQ(target.Take(input), ""); });
    target.Module().TakeTraps();
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_LE(Contract::HeldMemory(), held + kMostKept);
  }
}

TEST_F(HostilePeerTest, StreamsOfRandomBytesLeaveTheAgentServing) {
  std::mt19937 random(1);
  WithinMemory(0, [&] {
    for (std::size_t i = 0; i < scale.randomStreams; ++i) {
      const Input input = RandomStream(random);
      ASSERT_EQ(target.Take(input), "") << "stream " << i;
      target.Module().TakeTraps();
    }
  });
}

TEST_F(HostilePeerTest, DamagedFramesLeaveTheAgentServing) {
  constexpr std::size_t kBatch = 100;
  std::mt19937 random(2);
  WithinMemory(0, [&] {
    for (std::size_t i = 0; i < scale.damagedFrames; ++i) {
      ASSERT_TRUE(target.Peer().Send(DamagedFrame(random).bytes)) << "frame " << i;
      if (i % kBatch != 0) continue;
      ASSERT_EQ(target.Serves(), "") << "frame " << i;
    }
    ASSERT_EQ(target.Serves(), "");
  });
}

TEST_F(HostilePeerTest, FloodIsServedWhileTrapsAreTaken) {
  WithinMemory(0, [&] { ASSERT_EQ(target.Flood(scale.floodFrames, true), ""); });
}

// The agent keeps all traps. They need less memory than the frames.
TEST_F(HostilePeerTest, FloodIsServedWhileNoTrapIsTaken) {
  const std::size_t held = Contract::HeldMemory();
  WithinMemory(scale.floodFrames * StreamsFrame(1, 1).size(), [&] {
    ASSERT_EQ(target.Flood(scale.floodFrames, false), "");
    EXPECT_GE(target.Module().TakeTraps().size(), scale.floodFrames);
    ASSERT_EQ(target.Flood(2, true), "");  // the next trap frees the taken ones
  });
  target.Module().TakeTraps();
  EXPECT_LE(Contract::HeldMemory(), held + kMostKept);
}

// A peer that reads nothing: the system's buffers fill, and then a report blocks the
// link's thread.
class PeerThatNeverReadsTest : public HostilePeerTest {
 protected:
  void SetUp() override {
    HostilePeerTest::SetUp();
    target.Peer().SetReading(false);
    m_flood = std::thread([this] {
      for (std::size_t i = 0; i < scale.unreadFrames; ++i)
        if (!target.Peer().Send(ReportedFrame(i % 2 == 0 ? 1 : 0))) return;
      m_allSent = true;
    });
    ASSERT_TRUE(Contract::Eventually(
        [this] { return scale.fillsTheLink ? NothingMoves() : m_allSent.load(); }, kPatienceMs));
    EXPECT_EQ(m_allSent, !scale.fillsTheLink);
  }
  void TearDown() override { EndFlood(); }

  // Drops the link. On the next one the peer reads.
  void EndFlood() {
    target.Peer().SetReading(true);
    target.Peer().Drop();
    if (m_flood.joinable()) m_flood.join();
  }

 private:
  static constexpr std::uint32_t kPatienceMs = 120'000;
  static constexpr int kLooks = 50;  // 10 ms apart

  bool NothingMoves() {
    m_looks = target.Module().TakeTraps().empty() ? m_looks + 1 : 0;
    return m_looks >= kLooks;
  }

  std::thread m_flood;
  std::atomic<bool> m_allSent{false};
  int m_looks = 0;
};

TEST_F(PeerThatNeverReadsTest, GetAnswersAndTheLinkServesAgainAfterwards) {
  EXPECT_TRUE(
      Contract::Eventually([this] { return target.Module().Get("P.2.2") == "0 P.2.2 = INT 1"; }));
  EXPECT_EQ(target.Module().GetNext("P.2.1"), "0 P.2.2 = INT 1");
  EndFlood();
  EXPECT_EQ(target.Serves(false), "");
}

TEST_F(PeerThatNeverReadsTest, UnloadEndsSoon) {
  EXPECT_LE(Vask::Tests::TimedMs([this] { target.Module().Unload(); }), kLongestStopMs);
}

// A value that is not released would keep its slab of 4 KiB.
TEST(FedLinkTest, MillionFramesWithEmptyKeysLeaveTheHeapAsItWas) {
  constexpr std::size_t kFrames = kSanitized ? 20'000 : 1'000'000;
  Contract::CountWholeHeap();
  Target target;
  PutFedImports(target.Module().Library());
  ASSERT_EQ(target.Begin(), "");
  ASSERT_EQ(target.Flood(2, true), "");  // allocates what is built once
  const std::size_t held = Contract::HeldMemory();

  const std::vector<std::string> frames = EmptyKeyFrames();
  std::string round;
  for (const std::string& frame : frames) round += frame;
  g_feed.Start(round, kFrames / frames.size());
  ASSERT_TRUE(Contract::Eventually([] { return g_feed.Empty(); }, 20 * 60 * 1000));
  EXPECT_EQ(target.Serves(), "");
  target.Module().TakeTraps();
  EXPECT_LE(Contract::HeldMemory(), held + kMostKept);
}

}  // namespace

}  // namespace Hostile
