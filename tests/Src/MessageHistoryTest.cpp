#include "Src/MessageHistory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/AllocationCounter.h"
#include "tests/support/LogBlocks.h"

namespace Vask::Tests {
namespace {

using Sizes = std::vector<std::uint32_t>;

TEST(MessageChunkTest, IsFilledUpTo128BytesBehindWhatItHolds) {
  MessageChunk chunk;
  EXPECT_EQ(chunk.Fill("ab"), 2u);
  EXPECT_EQ(chunk.Fill(std::string(100, 'c')), 100u);
  EXPECT_EQ(chunk.Fill(std::string(27, 'd')), 26u);
  EXPECT_EQ(chunk.Fill("e"), 0u);
  EXPECT_EQ(TextOf(&chunk), "ab" + std::string(100, 'c') + std::string(26, 'd'));
}

class MessageHistoryTest : public testing::Test {
 protected:
  void Store(const std::string& text) { history.Store("12:00:00.000: Info: ", text); }

  MessageHistory history;
};

TEST_F(MessageHistoryTest, ATextStartsInAChunkOfItsOwnAndFillsChunks) {
  const struct {
    const char* name;
    std::size_t length;
    Sizes chunks;
  } rows[] = {
      {"nothing", 0, {20}},
      {"one byte", 1, {20, 1}},
      {"one less than a chunk", 127, {20, 127}},
      {"a whole chunk leaves no empty one behind", 128, {20, 128}},
      {"one more than a chunk", 129, {20, 128, 1}},
      {"two whole chunks", 256, {20, 128, 128}},
      {"300 bytes", 300, {20, 128, 128, 44}},
  };
  for (const auto& row : rows) {
    MessageHistory fresh;
    const std::string text(row.length, 't');
    fresh.Store("12:00:00.000: Info: ", text);
    const MessageHistoryCopy copy = fresh.Copy();
    ASSERT_EQ(copy.Count(), 1u) << row.name;
    EXPECT_EQ(ChunkSizes(copy.Blocks()[0]), row.chunks) << row.name;
    EXPECT_EQ(TextOf(copy.Blocks()[0]), "12:00:00.000: Info: " + text) << row.name;
    EXPECT_EQ(copy.TotalLength(), 20 + row.length) << row.name;
    EXPECT_EQ(fresh.FreeChunks(), 0u) << row.name << ": no more than it needs";
  }
}

TEST_F(MessageHistoryTest, AHeadIsCutToOneChunk) {
  history.Store("T " + std::string(200, 'p'), "text");
  EXPECT_EQ(TextOf(history.Copy().Blocks()[0]), "T " + std::string(126, 'p') + "text");
}

TEST_F(MessageHistoryTest, FewMessagesAreAllKeptOldestFirst) {
  Store("1");
  Store("2");
  const MessageHistoryCopy copy = history.Copy();
  EXPECT_EQ(TextsOf(copy.Blocks(), copy.Count()),
            (std::vector<std::string>{"12:00:00.000: Info: 1", "12:00:00.000: Info: 2"}));
}

TEST_F(MessageHistoryTest, TheTwentyNewestStayOldestFirst) {
  std::vector<std::string> newest;
  std::uint32_t length = 0;
  for (int i = 1; i <= 25; ++i) {
    Store(std::to_string(i));
    if (i <= 5) continue;
    newest.push_back("12:00:00.000: Info: " + std::to_string(i));
    length += static_cast<std::uint32_t>(newest.back().size());
  }
  const MessageHistoryCopy copy = history.Copy();
  EXPECT_EQ(TextsOf(copy.Blocks(), copy.Count()), newest);
  EXPECT_EQ(copy.TotalLength(), length);
}

TEST_F(MessageHistoryTest, TheCopyOfAnEmptyHistoryIsEmpty) {
  const std::uint64_t before = Allocations();
  const MessageHistoryCopy copy = history.Copy();
  EXPECT_EQ(Allocations() - before, 0u);
  EXPECT_EQ(copy.Count(), 0u);
  EXPECT_EQ(copy.TotalLength(), 0u);
}

TEST_F(MessageHistoryTest, LaterMessagesDoNotChangeACopy) {
  Store("kept");
  const MessageHistoryCopy copy = history.Copy();
  for (int i = 0; i < 40; ++i) Store("later");
  EXPECT_EQ(TextsOf(copy.Blocks(), copy.Count()),
            std::vector<std::string>{"12:00:00.000: Info: kept"});
}

TEST_F(MessageHistoryTest, ChunksOfReplacedMessagesAreUsedAgain) {
  for (int i = 0; i < 20; ++i) Store(std::string(300, 'l'));
  EXPECT_EQ(history.FreeChunks(), 0u);
  Store("short");
  EXPECT_EQ(history.FreeChunks(), 2u);
  for (int i = 0; i < 19; ++i) Store("short");
  EXPECT_EQ(history.FreeChunks(), 40u);
  for (int i = 0; i < 20; ++i) Store(std::string(300, 'l'));
  EXPECT_EQ(history.FreeChunks(), 0u);
  for (int i = 0; i < 20; ++i) Store("short");
  EXPECT_EQ(history.FreeChunks(), 40u);
}

TEST_F(MessageHistoryTest, AMessageThatNeedsMoreThanTheFreeChunksGetsThemAndNewOnes) {
  for (int i = 0; i < 20; ++i) Store(std::string(300, 'l'));
  Store("short");
  Store("short");
  EXPECT_EQ(history.FreeChunks(), 4u);
  Store(std::string(10 * 128, 'h'));
  EXPECT_EQ(history.FreeChunks(), 0u);
  const MessageHistoryCopy copy = history.Copy();
  EXPECT_EQ(TextOf(copy.Blocks()[19]), "12:00:00.000: Info: " + std::string(10 * 128, 'h'));
}

TEST_F(MessageHistoryTest, AMessageOfOneChunkIsFollowedByOthers) {
  Store("");
  Store("");
  Store("text");
  const MessageHistoryCopy copy = history.Copy();
  EXPECT_EQ(TextsOf(copy.Blocks(), copy.Count()),
            (std::vector<std::string>{
                "12:00:00.000: Info: ", "12:00:00.000: Info: ", "12:00:00.000: Info: text"}));
}

TEST(MessageHistoryMemoryTest, TheDestructorFreesUsedAndFreeChunks) {
  const std::ptrdiff_t before = HeldBlocks();
  {
    MessageHistory mortal;
    for (int i = 0; i < 20; ++i) mortal.Store("head", std::string(300, 'l'));
    mortal.Store("head", "short");
    ASSERT_EQ(mortal.FreeChunks(), 2u);
  }
  EXPECT_EQ(HeldBlocks(), before);
}

}  // namespace
}  // namespace Vask::Tests
