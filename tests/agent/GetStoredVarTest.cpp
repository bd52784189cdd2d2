#include <cstring>

#include "agent/MibTable.h"
#include "agent/ObjectIdentifier.h"
#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

constexpr UINT kSuffix[] = {3};

class GetStoredVarTest : public EmptyAgentTest {
 protected:
  MIB_ENTRY* AddSequence() {
    MIB_ENTRY* const rows = agent.Variables().RegisterSequence(Lend(kSuffix), "Rows", nullptr);
    MibTable::AddRow(*rows, "one", "first");
    MibTable::AddRow(*rows, "two", "");
    log.Clear();
    return rows;
  }
};

TEST_F(GetStoredVarTest, NumberIsAnsweredAndLogged) {
  agent.Variables().RegisterInt(Lend(kSuffix), "Number", nullptr, -2147483647 - 1);
  EXPECT_EQ(Get("P.3"), "0 P.3 = INT -2147483648");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Number) = INT: -2147483648\n");
}

TEST_F(GetStoredVarTest, TextIsAnsweredInMemoryOfTheServiceWithoutItsZero) {
  agent.Variables().RegisterString(Lend(kSuffix), "Text", nullptr, 16, "abc");
  Binding binding("P.3");
  ASSERT_EQ(agent.GetRequest(binding.Get()), SNMP_ERRORSTATUS_NOERROR);
  const AsnAny& value = binding.Get().value;
  EXPECT_EQ(value.asnType, 4);
  EXPECT_EQ(value.asnValue.string.length, 3u);
  EXPECT_TRUE(value.asnValue.string.dynamic);
  EXPECT_EQ(std::memcmp(value.asnValue.string.stream, "abc", 4), 0);
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Text) = STRING[3]: 'abc'\n");
}

TEST_F(GetStoredVarTest, CellOfASequenceIsAnsweredAndLogged) {
  AddSequence();
  EXPECT_EQ(Get("P.3.1.2.1"), "0 P.3.1.2.1 = STRING 'first'");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Rows) = SEQUENCE[5]: 'first'\n");
  EXPECT_EQ(Get("P.3.1.2.2"), "0 P.3.1.2.2 = STRING ''");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Rows) = SEQUENCE[0]: ''\n");
}

TEST_F(GetStoredVarTest, CellThatIsNotThereIsNoSuchName) {
  AddSequence();
  struct Row {
    const char* what;
    const char* name;
  };
  for (const Row& row : {
           Row{"row 0", "P.3.1.1.0"},
           Row{"row above the count", "P.3.1.1.3"},
           Row{"largest row", "P.3.1.1.4294967295"},
           Row{"column 0", "P.3.1.0.1"},
           Row{"column 3", "P.3.1.3.1"},
           Row{"bare name", "P.3"},
           Row{"entry alone", "P.3.1"},
           Row{"entry and column", "P.3.1.1"},
           Row{"longer than a cell", "P.3.1.1.1.0"},
       }) {
    EXPECT_EQ(Get(row.name), std::string("2 ") + row.name + " = none") << row.what;
    EXPECT_EQ(LastLine(), "Info: GetRequest(" + FullName(row.name) + ")\n") << row.what;
  }
}

TEST_F(GetStoredVarTest, EntryOfACellIsNotLookedAt) {
  AddSequence();
  EXPECT_EQ(Get("P.3.9.1.1"), "0 P.3.9.1.1 = STRING 'one'");
}

TEST_F(GetStoredVarTest, UnknownTypeIsAGeneralError) {
  MIB_ENTRY* const entry = agent.Variables().RegisterSequence(Lend(kSuffix), "Odd", nullptr);
  entry->m_type = 6;
  EXPECT_EQ(Get("P.3"), "5 P.3 = none");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Odd) = ERROR\n");
}

TEST_F(GetStoredVarTest, WithoutMemoryForTheAnswerItIsAGeneralError) {
  SNMPExtensionAgent poor(clock, Vask::Platform::SystemThreading(),
                          [](UINT) -> LPVOID { return nullptr; });
  constexpr UINT kTextSuffix[] = {4};
  poor.Variables().RegisterString(Lend(kTextSuffix), "Text", nullptr, 16, "abc");
  MIB_ENTRY* const rows = poor.Variables().RegisterSequence(Lend(kSuffix), "Rows", nullptr);
  MibTable::AddRow(*rows, "one", "first");
  Binding text("P.4");
  EXPECT_EQ(Outcome(poor.GetRequest(text.Get()), text), "5 P.4 = none");
  Binding cell("P.3.1.1.1");
  EXPECT_EQ(Outcome(poor.GetRequest(cell.Get()), cell), "5 P.3.1.1.1 = none");
}

}  // namespace

}  // namespace Agent::Tests
