#include "agent/MibTable.h"

#include <cstring>

#include "agent/ObjectIdentifier.h"
#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

constexpr UINT kFirstSuffix[] = {1, 0};
constexpr UINT kSecondSuffix[] = {2, 0};
constexpr UINT kOtherSuffix[] = {1, 5, 7};

using MibTableTest = EmptyAgentTest;
using StartSetTest = AgentTest;

std::string NamesInOrder(const MibTable& table) {
  std::string names;
  for (auto* node = table.Ordered().Head(); node != nullptr; node = node->m_next)
    names += (names.empty() ? "" : " ") + node->m_entry->m_name;
  return names;
}

TEST_F(MibTableTest, DumpOfTheStartSetHasEightLinesFromTheLastVariableToTheFirst) {
  agent.RegisterVariables();
  const std::vector<std::string> expected{
      "Info: MIB TABLE 'AudioSourcesSilence':INT = " + FullName("P.2.4") + "\n",
      "Info: MIB TABLE 'AudioSourcesErrors':INT = " + FullName("P.2.3") + "\n",
      "Info: MIB TABLE 'AudioSourcesCount':INT = " + FullName("P.2.2") + "\n",
      "Info: MIB TABLE 'StreamsErrors':INT = " + FullName("P.2.1") + "\n",
      "Info: MIB TABLE 'StreamsCount':INT = " + FullName("P.2.0") + "\n",
      "Info: MIB TABLE 'ProductVersion':STRING = " + FullName("P.1.1") + "\n",
      "Info: MIB TABLE 'ProductName':STRING = " + FullName("P.1.0") + "\n",
      "Info: MIB TABLE 'LinkStatus':INT = " + FullName("P.0.0") + "\n",
  };
  EXPECT_EQ(log.Lines(), expected);
}

TEST_F(StartSetTest, SecondRegistrationOfTheStartSetChangesAndLogsNothing) {
  agent.RegisterVariables();
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(GetNext("P.0.0"), "0 P.1.0 = STRING 'Corvane'");
}

TEST_F(MibTableTest, VariableThatExistsAlreadyIsTheNextOfTheOneBeforeIt) {
  constexpr UINT kStreamsErrors[] = {2, 1};
  MIB_ENTRY* const present =
      agent.Variables().RegisterInt(Lend(kStreamsErrors), "StreamsErrors", nullptr, 5);
  agent.RegisterVariables();
  EXPECT_EQ(agent.Variables().Find("StreamsCount")->m_next, present);
}

TEST_F(StartSetTest, EveryVariableHasItsTypeCapacityValueAndNext) {
  struct Row {
    const char* name;
    const char* suffix;
    BYTE type;
    std::uint32_t capacity;
    const char* value;
    const char* next;
  };
  for (const Row& row : {
           Row{"LinkStatus", "0.0", 2, 0, "INT 1", "ProductName"},
           Row{"ProductName", "1.0", 4, 128, "STRING 'Corvane'", "ProductVersion"},
           Row{"ProductVersion", "1.1", 4, 64, "STRING '1.x.x'", "StreamsCount"},
           Row{"StreamsCount", "2.0", 2, 0, "INT 0", "StreamsErrors"},
           Row{"StreamsErrors", "2.1", 2, 0, "INT 0", "AudioSourcesCount"},
           Row{"AudioSourcesCount", "2.2", 2, 0, "INT 0", "AudioSourcesErrors"},
           Row{"AudioSourcesErrors", "2.3", 2, 0, "INT 0", "AudioSourcesSilence"},
           Row{"AudioSourcesSilence", "2.4", 2, 0, "INT 0", nullptr},
       }) {
    SCOPED_TRACE(row.name);
    MIB_ENTRY* const entry = agent.Variables().Find(row.name);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(DottedText(entry->m_oid), row.suffix);
    EXPECT_EQ(entry->m_type, row.type);
    EXPECT_EQ(entry->m_capacity, row.capacity);
    EXPECT_EQ(entry->m_next, row.next == nullptr ? nullptr : agent.Variables().Find(row.next));
    const std::string name = std::string("P.") + row.suffix;
    EXPECT_EQ(Get(name), "0 " + name + " = " + row.value);
  }
}

TEST_F(StartSetTest, ListIsInTheOrderOfTheObjectIdentifiers) {
  EXPECT_EQ(NamesInOrder(agent.Variables()),
            "LinkStatus ProductName ProductVersion StreamsCount StreamsErrors AudioSourcesCount "
            "AudioSourcesErrors AudioSourcesSilence");
}

TEST_F(MibTableTest, ListIsOrderedWhateverTheOrderOfRegistration) {
  MibTable& table = agent.Variables();
  table.RegisterInt(Lend(kSecondSuffix), "Second", nullptr, 0);
  table.RegisterInt(Lend(kFirstSuffix), "First", nullptr, 0);
  table.RegisterInt(Lend(kOtherSuffix), "Between", nullptr, 0);
  EXPECT_EQ(NamesInOrder(table), "First Between Second");
}

TEST_F(MibTableTest, NewVariableStandsBeforeOneOfTheSameObjectIdentifier) {
  MibTable& table = agent.Variables();
  table.RegisterInt(Lend(kFirstSuffix), "Older", nullptr, 1);
  table.RegisterInt(Lend(kFirstSuffix), "Newer", nullptr, 2);
  EXPECT_EQ(NamesInOrder(table), "Newer Older");
}

TEST_F(MibTableTest, SecondRegistrationOfANameIsRefusedAndTheFirstStays) {
  MibTable& table = agent.Variables();
  MIB_ENTRY* const first = table.RegisterInt(Lend(kFirstSuffix), "Twice", nullptr, 1);
  ASSERT_NE(first, nullptr);
  log.Clear();
  EXPECT_EQ(table.RegisterInt(Lend(kSecondSuffix), "Twice", nullptr, 2), nullptr);
  EXPECT_EQ(table.RegisterString(Lend(kSecondSuffix), "TWICE", nullptr, 8, "x"), nullptr);
  EXPECT_EQ(table.RegisterSequence(Lend(kSecondSuffix), "twice", nullptr), nullptr);
  EXPECT_EQ(table.Find("Twice"), first);
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = INT 1");
  EXPECT_EQ(NamesInOrder(table), "Twice");
}

TEST_F(MibTableTest, RefusedRegistrationWritesNoDumpLine) {
  MibTable& table = agent.Variables();
  table.RegisterInt(Lend(kFirstSuffix), "Twice", nullptr, 1);
  log.Clear();
  EXPECT_EQ(table.RegisterInt(Lend(kSecondSuffix), "Twice", nullptr, 2), nullptr);
  EXPECT_EQ(table.RegisterInt(Lend(kSecondSuffix), "", nullptr, 2), nullptr);
  EXPECT_TRUE(log.Lines().empty());
}

TEST_F(MibTableTest, DumpNamesEachType) {
  MibTable& table = agent.Variables();
  table.RegisterSequence(Lend(kOtherSuffix), "Rows", nullptr);
  EXPECT_EQ(LastLine(), "Info: MIB TABLE 'Rows':SEQUENCE = " + FullName("P.1.5.7") + "\n");
  EXPECT_STREQ(TypeWord(2), "INT");
  EXPECT_STREQ(TypeWord(4), "STRING");
  EXPECT_STREQ(TypeWord(48), "SEQUENCE");
  EXPECT_STREQ(TypeWord(6), "UNKNOWN");
}

TEST_F(StartSetTest, LookUpFoldsCaseAndKeepsTheRegisteredSpelling) {
  MIB_ENTRY* const entry = agent.Variables().Find("lINKsTATUS");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->m_name, "LinkStatus");
  EXPECT_EQ(agent.Variables().Find("Link"), nullptr);
  EXPECT_EQ(agent.Variables().Find("LinkStatus2"), nullptr);
}

TEST_F(StartSetTest, TextShorterThanTheCapacityIsStoredWithItsZero) {
  const std::string text(63, 'v');
  ASSERT_TRUE(agent.Variables().SetString("ProductVersion", text.c_str()));
  const char* const cell = agent.Variables().Find("ProductVersion")->m_text;
  EXPECT_EQ(std::memcmp(cell, text.c_str(), 64), 0);
  EXPECT_EQ(Get("P.1.1"), "0 P.1.1 = STRING '" + text + "'");
}

TEST_F(StartSetTest, NothingBehindTheZeroOfATextIsStored) {
  const char text[] = "ab\0#";
  ASSERT_TRUE(agent.Variables().SetString("ProductVersion", text));
  const char* const cell = agent.Variables().Find("ProductVersion")->m_text;
  EXPECT_EQ(std::memcmp(cell, "ab\0.x", 6), 0);  // the rest of "1.x.x"
}

TEST_F(StartSetTest, TextOfTheCapacityOrMoreFillsTheCellAndLeavesNoZero) {
  for (const std::size_t length : {64u, 65u, 500u}) {
    const std::string text(length, 'v');
    ASSERT_TRUE(agent.Variables().SetString("ProductVersion", text.c_str())) << length;
    const char* const cell = agent.Variables().Find("ProductVersion")->m_text;
    EXPECT_EQ(std::memchr(cell, '\0', 64), nullptr) << length;
  }
}

TEST_F(StartSetTest, FullTextIsReturnedAndLoggedWholeAndNotReadPast) {
  const std::string text(200, 'n');
  const std::string cut(128, 'n');
  ASSERT_TRUE(agent.Variables().SetString("ProductName", text.c_str()));
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING '" + cut + "'");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(ProductName) = STRING[128]: '" + cut + "'\n");
}

TEST_F(StartSetTest, ShorterTextAfterAFullOneEndsAtItsZero) {
  ASSERT_TRUE(agent.Variables().SetString("ProductName", std::string(200, 'n').c_str()));
  ASSERT_TRUE(agent.Variables().SetString("ProductName", "short"));
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING 'short'");
}

TEST_F(MibTableTest, InitialTextIsCutAtTheCapacity) {
  agent.Variables().RegisterString(Lend(kFirstSuffix), "Text", nullptr, 4, "abcdef");
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING 'abcd'");
}

TEST_F(MibTableTest, TextOfCapacityZeroIsAlwaysEmpty) {
  agent.Variables().RegisterString(Lend(kFirstSuffix), "Text", nullptr, 0, "abc");
  EXPECT_TRUE(agent.Variables().SetString("Text", "abc"));
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING ''");
}

TEST_F(StartSetTest, SettingAnUnknownNameOrAnotherTypeChangesNothing) {
  MibTable& table = agent.Variables();
  EXPECT_FALSE(table.SetString("Nobody", "x"));
  EXPECT_FALSE(table.SetString("LinkStatus", "x"));
  EXPECT_FALSE(table.SetInt("Nobody", 5));
  EXPECT_FALSE(table.SetInt("ProductName", 5));
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING 'Corvane'");
}

TEST_F(StartSetTest, NumberIsWrittenInPlace) {
  EXPECT_TRUE(agent.Variables().SetInt("streamscount", -7));
  EXPECT_EQ(Get("P.2.0"), "0 P.2.0 = INT -7");
}

TEST_F(MibTableTest, FailedRegistrationLeavesThePreviousVariableWithoutNext) {
  MibTable& table = agent.Variables();
  MIB_ENTRY* const none = table.RegisterInt(Lend(kSecondSuffix), "", nullptr, 0);
  MIB_ENTRY* const first = table.RegisterInt(Lend(kFirstSuffix), "First", none, 0);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->m_next, nullptr);
}

TEST_F(MibTableTest, RowsAreAddedReplacedAndCleared) {
  MIB_ENTRY* const rows = agent.Variables().RegisterSequence(Lend(kFirstSuffix), "Rows", nullptr);
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(MibTable::RowCount(*rows), 0u);
  MibTable::AddRow(*rows, "a", "b");
  MibTable::AddRow(*rows, "c", "d");
  EXPECT_EQ(MibTable::RowCount(*rows), 2u);
  EXPECT_TRUE(MibTable::SetRow(*rows, 1, "A", "B"));
  EXPECT_TRUE(MibTable::SetRow(*rows, 2, "e", "f"));
  EXPECT_FALSE(MibTable::SetRow(*rows, 0, "x", "y"));
  EXPECT_FALSE(MibTable::SetRow(*rows, 3, "x", "y"));
  EXPECT_EQ(Get("P.1.0.1.1.1"), "0 P.1.0.1.1.1 = STRING 'A'");
  EXPECT_EQ(Get("P.1.0.1.2.2"), "0 P.1.0.1.2.2 = STRING 'f'");
  MibTable::ClearRows(*rows);
  EXPECT_EQ(MibTable::RowCount(*rows), 0u);
}

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

TEST_F(GetStoredVarTest, NumberIsReturnedAndLogged) {
  agent.Variables().RegisterInt(Lend(kSuffix), "Number", nullptr, -2147483647 - 1);
  EXPECT_EQ(Get("P.3"), "0 P.3 = INT -2147483648");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Number) = INT: -2147483648\n");
}

TEST_F(GetStoredVarTest, TextIsReturnedInMemoryOfTheServiceWithoutItsZero) {
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

TEST_F(GetStoredVarTest, CellOfASequenceIsReturnedAndLogged) {
  AddSequence();
  EXPECT_EQ(Get("P.3.1.2.1"), "0 P.3.1.2.1 = STRING 'first'");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Rows) = SEQUENCE[5]: 'first'\n");
  EXPECT_EQ(Get("P.3.1.2.2"), "0 P.3.1.2.2 = STRING ''");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Rows) = SEQUENCE[0]: ''\n");
}

TEST_F(GetStoredVarTest, MissingCellIsNoSuchName) {
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

TEST_F(GetStoredVarTest, EntryOfACellIsIgnored) {
  AddSequence();
  EXPECT_EQ(Get("P.3.9.1.1"), "0 P.3.9.1.1 = STRING 'one'");
}

TEST_F(GetStoredVarTest, UnknownTypeIsAGeneralError) {
  MIB_ENTRY* const entry = agent.Variables().RegisterSequence(Lend(kSuffix), "Odd", nullptr);
  entry->m_type = 6;
  EXPECT_EQ(Get("P.3"), "5 P.3 = none");
  EXPECT_EQ(LastLine(), "Info: GetStoredVar(Odd) = ERROR\n");
}

TEST_F(GetStoredVarTest, MemoryForATextHasRoomForItsZeroAndNoMore) {
  static std::vector<UINT> s_sizes;
  s_sizes.clear();
  SNMPExtensionAgent counted(clock, Vask::Platform::SystemThreading(), [](UINT bytes) {
    s_sizes.push_back(bytes);
    return SnmpUtilMemAlloc(bytes);
  });
  constexpr UINT kTextSuffix[] = {4};
  counted.Variables().RegisterString(Lend(kTextSuffix), "Text", nullptr, 16, "abc");
  MIB_ENTRY* const rows = counted.Variables().RegisterSequence(Lend(kSuffix), "Rows", nullptr);
  MibTable::AddRow(*rows, "", "first");
  for (const char* const name : {"P.4", "P.3.1.1.1", "P.3.1.2.1"}) {
    Binding binding(name);
    EXPECT_EQ(counted.GetRequest(binding.Get()), SNMP_ERRORSTATUS_NOERROR) << name;
  }
  EXPECT_EQ(s_sizes, (std::vector<UINT>{4, 1, 6}));
}

TEST_F(GetStoredVarTest, MissingMemoryForTheTextIsAGeneralError) {
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
