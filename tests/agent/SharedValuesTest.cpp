// One thread writes a value while another reads it.

#include <atomic>
#include <string>
#include <thread>

#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

class SharedValuesTest : public AgentTest {
 protected:
  // Calls `write` repeatedly on another thread, while this thread reads `count`
  // times and passes each outcome to `check`.
  template <class Write, class Check>
  void ReadWhileWriting(Write write, const std::string& name, Check check, int count = 2'000) {
    std::atomic<bool> done{false};
    std::thread writer([&] {
      for (unsigned round = 0; !done; ++round) write(round);
    });
    for (int i = 0; i < count; ++i) check(Get(name));
    done = true;
    writer.join();
  }
};

TEST_F(SharedValuesTest, NumberIsAlwaysOneThatWasWritten) {
  MibTable& variables = agent.Variables();
  ReadWhileWriting(
      [&](unsigned round) { variables.SetInt("StreamsCount", round % 2 == 0 ? 0 : 0x7FFFFFFF); },
      "P.2.0",
      [](const std::string& outcome) {
        EXPECT_TRUE(outcome == "0 P.2.0 = INT 0" || outcome == "0 P.2.0 = INT 2147483647")
            << outcome;
      });
}

TEST_F(SharedValuesTest, TextIsAMixtureAtWorstAndStaysWithinItsCapacity) {
  MibTable& variables = agent.Variables();
  const std::string full(64, 'f');
  const std::string half(32, 'h');
  variables.SetString("ProductVersion", full.c_str());
  ReadWhileWriting(
      [&](unsigned round) {
        variables.SetString("ProductVersion", (round % 2 == 0 ? full : half).c_str());
      },
      "P.1.1",
      [](const std::string& outcome) {
        const std::string start = "0 P.1.1 = STRING '";
        ASSERT_TRUE(outcome.starts_with(start)) << outcome;
        const std::string text = outcome.substr(start.size(), outcome.size() - start.size() - 1);
        EXPECT_GE(text.size(), 32u);
        EXPECT_LE(text.size(), 64u);
        EXPECT_EQ(text.find_first_not_of(std::string("fh\0", 3)), std::string::npos) << outcome;
      });
}

TEST_F(SharedValuesTest, CellIsAlwaysOneOfItsRow) {
  constexpr UINT kSuffix[] = {3};
  MIB_ENTRY* const rows = agent.Variables().RegisterSequence(Lend(kSuffix), "Rows", nullptr);
  MibTable::AddRow(*rows, "old", "OLD");
  ReadWhileWriting(
      [&](unsigned round) {
        MibTable::SetRow(*rows, 1, round % 2 == 0 ? "new and longer than before" : "old", "x");
      },
      "P.3.1.1.1",
      [](const std::string& outcome) {
        EXPECT_TRUE(outcome == "0 P.3.1.1.1 = STRING 'old'" ||
                    outcome == "0 P.3.1.1.1 = STRING 'new and longer than before'")
            << outcome;
      });
}

TEST_F(SharedValuesTest, TwoWalksAtOnceDoNotDisturbEachOther) {
  constexpr UINT kSuffix[] = {3};
  MIB_ENTRY* const rows = agent.Variables().RegisterSequence(Lend(kSuffix), "Rows", nullptr);
  for (int row = 0; row < 3; ++row) MibTable::AddRow(*rows, "a", "b");
  std::atomic<bool> done{false};
  std::thread other([&] {
    while (!done) GetNext("P.3.1.1.1");
  });
  for (int i = 0; i < 2'000; ++i) EXPECT_EQ(GetNext("P.3.1.2.2"), "0 P.3.1.2.3 = STRING 'b'");
  done = true;
  other.join();
}

TEST(SharedTextTest, TextIsMeasuredWithinItsCapacity) {
  char cell[] = {'a', 'b', '\0', 'c'};
  EXPECT_EQ(MeasureShared(cell, 4), 2u);
  EXPECT_EQ(MeasureShared(cell, 2), 2u);
  EXPECT_EQ(MeasureShared(cell, 1), 1u);
  EXPECT_EQ(MeasureShared(cell, 0), 0u);
}

TEST(SharedTextTest, NoByteBehindTheLengthIsCopied) {
  char cell[] = "....";
  WriteShared(cell, "abcd", 2);
  EXPECT_STREQ(cell, "ab..");
  char text[] = "----";
  ReadShared(cell, text, 3);
  EXPECT_STREQ(text, "ab.-");
}

}  // namespace

}  // namespace Agent::Tests
