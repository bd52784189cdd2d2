#include "json/ValueMemory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "tests/json/BalancedTest.h"
#include "tests/support/AllocationCounter.h"

namespace Vask {
namespace {

// Every slab must be freed as well.
class ValueMemoryTest : public Tests::BalancedTest {
 protected:
  void SetUp() override {
    BalancedTest::SetUp();
    m_blocksBefore = Tests::HeldBlocks();
  }
  void TearDown() override {
    EXPECT_EQ(Tests::HeldBlocks(), m_blocksBefore);
    BalancedTest::TearDown();
  }

 private:
  std::ptrdiff_t m_blocksBefore = 0;
};

// Takes pieces of `bytes` until one needs another allocation.
int PiecesPerSlab(std::size_t bytes) {
  ValueMemory memory;
  std::vector<void*> pieces{memory.Take(bytes)};
  pieces.reserve(1000);
  const std::uint64_t before = Tests::Allocations();
  while (Tests::Allocations() == before) pieces.push_back(memory.Take(bytes));
  for (void* piece : pieces) ValueMemory::Free(piece);
  return static_cast<int>(pieces.size()) - 1;
}

TEST_F(ValueMemoryTest, ManyPiecesTakeOneAllocation) {
  EXPECT_EQ(ValueMemory::kSlabBytes, 4096u);
  EXPECT_EQ(PiecesPerSlab(64), (4096 - 8) / (64 + 8));
  EXPECT_EQ(PiecesPerSlab(57), (4096 - 8) / (64 + 8));
  EXPECT_EQ(PiecesPerSlab(65), (4096 - 8) / (72 + 8));
  EXPECT_EQ(PiecesPerSlab(48), 73) << "these fill the slab to its last byte";
}

TEST_F(ValueMemoryTest, PieceThatIsTooLargeForANewSlabHasItsOwnAllocation) {
  ValueMemory memory;
  std::vector<void*> pieces;
  pieces.reserve(10);
  for (const std::size_t bytes : {ValueMemory::kLargestPiece, ValueMemory::kLargestPiece + 1,
                                  std::size_t{100'000}, std::size_t{8}}) {
    pieces.push_back(memory.Take(bytes));
    std::memset(pieces.back(), 0xAA, bytes);
  }
  const std::uint64_t before = Tests::Allocations();
  pieces.push_back(memory.Take(ValueMemory::kLargestPiece));  // the slab still has room
  EXPECT_EQ(Tests::Allocations(), before);
  pieces.push_back(memory.Take(4096));
  EXPECT_EQ(Tests::Allocations(), before + 1);
  pieces.push_back(memory.Take(8));  // and still has it afterwards
  EXPECT_EQ(Tests::Allocations(), before + 1);
  for (void* piece : pieces) ValueMemory::Free(piece);
}

TEST_F(ValueMemoryTest, PieceOf1024BytesOpensASlabAndOneOf1025DoesNot) {
  ValueMemory memory;
  std::vector<void*> pieces;
  pieces.reserve(7);
  const auto allocationsToTake = [&](std::size_t bytes) {
    const std::uint64_t before = Tests::Allocations();
    pieces.push_back(memory.Take(bytes));
    return Tests::Allocations() - before;
  };
  EXPECT_EQ(allocationsToTake(1024), 1u);
  EXPECT_EQ(allocationsToTake(1024), 0u);
  EXPECT_EQ(allocationsToTake(1024), 0u) << "a fourth one does not fit";
  EXPECT_EQ(allocationsToTake(1025), 1u);
  EXPECT_EQ(allocationsToTake(8), 0u);
  EXPECT_EQ(allocationsToTake(1024), 1u);
  EXPECT_EQ(allocationsToTake(1024), 0u);
  for (void* piece : pieces) ValueMemory::Free(piece);
}

TEST_F(ValueMemoryTest, PiecesAreAlignedAndApart) {
  ValueMemory memory;
  std::vector<unsigned char*> pieces;
  for (std::size_t bytes = 1; bytes <= 40; ++bytes) {
    auto* piece = static_cast<unsigned char*>(memory.Take(bytes));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece) % 8, 0u);
    std::memset(piece, static_cast<int>(bytes), bytes);
    pieces.push_back(piece);
  }
  for (std::size_t bytes = 1; bytes <= 40; ++bytes) {
    unsigned char* piece = pieces[bytes - 1];
    EXPECT_TRUE(std::all_of(piece, piece + bytes, [&](unsigned char c) { return c == bytes; }));
    ValueMemory::Free(piece);
  }
}

TEST_F(ValueMemoryTest, PiecesMayBeFreedInAnyOrderWhileOthersAreTaken) {
  std::mt19937 random(7);
  std::vector<void*> pieces;
  {
    ValueMemory memory;
    for (int i = 0; i < 5'000; ++i) {
      pieces.push_back(memory.Take(1 + random() % 1'200));
      std::memset(pieces.back(), 0x55, 1);
      std::swap(pieces[random() % pieces.size()], pieces.back());
      if (random() % 3 == 0) {
        ValueMemory::Free(pieces.back());
        pieces.pop_back();
      }
    }
  }
  std::shuffle(pieces.begin(), pieces.end(), random);
  ValueMemory::Returns returns;
  for (void* piece : pieces) returns.Add(piece);
}

TEST_F(ValueMemoryTest, KeptValueOutlivesTheMessageItCameWith) {
  ParseResult result;
  JsonRef<JsonObject> root(static_cast<JsonObject*>(
      Parse(result, R"({"id":1,"data":{"name":"kept","other":[1,2,3]},"from":"x"})")));
  ASSERT_TRUE(root);
  auto* data = static_cast<JsonObject*>(root->Find("data"));
  auto* name = static_cast<JsonString*>(data->Find("name"));
  name->AddRef();
  root.Reset(nullptr);
  EXPECT_EQ(name->Text(), "kept");
  EXPECT_EQ(name->RefCount(), 1);
  name->Release();
}

TEST_F(ValueMemoryTest, ClearedMembersAreFreed) {
  const JsonRef<JsonObject> object(new JsonObject);
  for (const char* key : {"a", "b", "c"}) object->Members().Insert(key, nullptr);
  object->Members().Clear();
  EXPECT_TRUE(object->Empty());
}

TEST_F(ValueMemoryTest, TextAfterTextAllocatesNothingMore) {
  ValueMemory memory;
  ParseResult result;
  const auto parse = [&] { return JsonRef<Json>(Parse(result, R"({"id":1,"from":"x"})", memory)); };
  EXPECT_TRUE(parse());
  const std::uint64_t before = Tests::Allocations();
  for (int i = 0; i < 1'000; ++i) EXPECT_TRUE(parse());
  EXPECT_EQ(Tests::Allocations(), before);
}

TEST_F(ValueMemoryTest, RewindingKeepsPiecesInUse) {
  ValueMemory memory;
  auto* kept = static_cast<char*>(memory.Take(8));
  std::memset(kept, 0x11, 8);
  for (int i = 0; i < 1'000; ++i) {
    memory.Rewind();
    void* other = memory.Take(64);
    std::memset(other, 0x22, 64);
    ValueMemory::Free(other);
  }
  EXPECT_TRUE(std::all_of(kept, kept + 8, [](char c) { return c == 0x11; }));
  ValueMemory::Free(kept);
}

TEST_F(ValueMemoryTest, ValuesOutliveTheMemoryTheyLieIn) {
  ParseResult result;
  JsonRef<Json> first;
  JsonRef<Json> second;
  {
    ValueMemory memory;
    first.Reset(Parse(result, R"("one")", memory));
    second.Reset(Parse(result, R"("two")", memory));
  }
  EXPECT_EQ(static_cast<JsonString&>(*first).Text(), "one");
  first.Reset(nullptr);
  EXPECT_EQ(static_cast<JsonString&>(*second).Text(), "two");
}

TEST_F(ValueMemoryTest, ThreadsMayFreePiecesOfOneSlab) {
  std::uint64_t allocations = 0;
  for (int round = 0; round < 200; ++round) {
    std::vector<void*> pieces[2];
    for (std::vector<void*>& half : pieces) half.reserve(20);
    const std::uint64_t before = Tests::Allocations();
    {
      ValueMemory memory;
      for (int i = 0; i < 40; ++i) pieces[i % 2].push_back(memory.Take(48));
    }
    allocations += Tests::Allocations() - before;
    const auto giveBack = [](const std::vector<void*>& mine) {
      for (void* piece : mine) ValueMemory::Free(piece);
    };
    std::thread other([&] { giveBack(pieces[0]); });
    giveBack(pieces[1]);
    other.join();
  }
  EXPECT_EQ(allocations, 200u);
}

}  // namespace
}  // namespace Vask
