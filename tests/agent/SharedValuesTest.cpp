// Values that one thread writes while others ask for them.

#include <atomic>
#include <string>
#include <thread>

#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

class SharedValuesTest : public AgentTest {
 protected:
  // Runs `write` again and again on another thread while this one asks `count`
  // times and hands each answer to `check`.
  template <class Write, class Check>
  void AskWhileWriting(Write write, const std::string& name, Check check, int count = 2'000) {
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
  AskWhileWriting(
      [&](unsigned round) { variables.SetInt("StreamsCount", round % 2 == 0 ? 0 : 0x7FFFFFFF); },
      "P.2.0",
      [](const std::string& answer) {
        EXPECT_TRUE(answer == "0 P.2.0 = INT 0" || answer == "0 P.2.0 = INT 2147483647") << answer;
      });
}

TEST_F(SharedValuesTest, TextIsAMixtureAtWorstAndNeverLeavesItsRoom) {
  MibTable& variables = agent.Variables();
  const std::string full(64, 'f');
  const std::string half(32, 'h');
  variables.SetString("ProductVersion", full.c_str());
  AskWhileWriting(
      [&](unsigned round) {
        variables.SetString("ProductVersion", (round % 2 == 0 ? full : half).c_str());
      },
      "P.1.1",
      [](const std::string& answer) {
        const std::string start = "0 P.1.1 = STRING '";
        ASSERT_TRUE(answer.starts_with(start)) << answer;
        const std::string text = answer.substr(start.size(), answer.size() - start.size() - 1);
        EXPECT_GE(text.size(), 32u);
        EXPECT_LE(text.size(), 64u);
        EXPECT_EQ(text.find_first_not_of(std::string("fh\0", 3)), std::string::npos) << answer;
      });
}

TEST_F(SharedValuesTest, CellIsAlwaysOneOfItsRow) {
  constexpr UINT kSuffix[] = {3};
  MIB_ENTRY* const rows = agent.Variables().RegisterSequence(Lend(kSuffix), "Rows", nullptr);
  MibTable::AddRow(*rows, "old", "OLD");
  AskWhileWriting(
      [&](unsigned round) {
        MibTable::SetRow(*rows, 1, round % 2 == 0 ? "new and longer than before" : "old", "x");
      },
      "P.3.1.1.1",
      [](const std::string& answer) {
        EXPECT_TRUE(answer == "0 P.3.1.1.1 = STRING 'old'" ||
                    answer == "0 P.3.1.1.1 = STRING 'new and longer than before'")
            << answer;
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

TEST(SharedTextTest, TextIsMeasuredWithinItsRoom) {
  char cell[] = {'a', 'b', '\0', 'c'};
  EXPECT_EQ(MeasureShared(cell, 4), 2u);
  EXPECT_EQ(MeasureShared(cell, 2), 2u);
  EXPECT_EQ(MeasureShared(cell, 1), 1u);
  EXPECT_EQ(MeasureShared(cell, 0), 0u);
}

}  // namespace

}  // namespace Agent::Tests
