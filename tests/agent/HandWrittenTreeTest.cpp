// Trees written by hand, with SEQUENCE variables in every position. For each tree
// the names must ascend, Get must read every name, and GetNext must visit all
// names and end.

#include <algorithm>
#include <vector>

#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

struct Variable {
  std::vector<UINT> suffix;
  BYTE type;
  UINT rows;  // of a SEQUENCE; row n holds "n.1" and "n.2"
};

struct Tree {
  const char* what;
  std::vector<Variable> variables;  // in the order of their names
  // The names of a walk from the prefix on, then the status and the name with
  // which it ends.
  const char* walk;
  const char* lastLine;
};

// A walk meets a first SEQUENCE by its bare name, which has no value. Behind the
// last cell it passes over a following number or text.
const Tree kTrees[] = {
    {"numbers and a text",
     {{{0, 0}, kTypeInt, 0}, {{1, 0}, kTypeString, 0}, {{2, 0}, kTypeInt, 0}},
     "P.0.0 P.1.0 P.2.0 | 2 P.2.0",
     "Info: GetNextRequest(P.2.0) END OF TABLE\n"},
    {"empty SEQUENCE alone",
     {{{1}, kTypeSequence, 0}},
     "P.1 | 2 P.1",
     "Info: GetNextRequest(P.1) END OF TABLE (SEQUENCE)\n"},
    {"one row alone",
     {{{1}, kTypeSequence, 1}},
     "P.1 P.1.1.1.1 P.1.1.2.1 | 2 P.1.1.2.1",
     "Info: GetNextRequest(P.1.1.2.1) END OF TABLE (SEQUENCE)\n"},
    {"three rows alone",
     {{{1}, kTypeSequence, 3}},
     "P.1 P.1.1.1.1 P.1.1.1.2 P.1.1.1.3 P.1.1.2.1 P.1.1.2.2 P.1.1.2.3 | 2 P.1.1.2.3",
     "Info: GetNextRequest(P.1.1.2.3) END OF TABLE (SEQUENCE)\n"},
    {"SEQUENCE last, behind a number",
     {{{0, 0}, kTypeInt, 0}, {{1, 4}, kTypeSequence, 2}},
     "P.0.0 P.1.4.1.1.1 P.1.4.1.1.2 P.1.4.1.2.1 P.1.4.1.2.2 | 2 P.1.4.1.2.2",
     "Info: GetNextRequest(P.1.4.1.2.2) END OF TABLE (SEQUENCE)\n"},
    {"empty SEQUENCE last, behind a number",
     {{{0, 0}, kTypeInt, 0}, {{1}, kTypeSequence, 0}},
     "P.0.0 | 2 P.1",
     "Info: GetNextRequest(P.1) END OF TABLE (SEQUENCE)\n"},
    {"SEQUENCE first, two numbers behind it",
     {{{1}, kTypeSequence, 1}, {{2, 0}, kTypeInt, 0}, {{3, 0}, kTypeInt, 0}},
     "P.1 P.1.1.1.1 P.1.1.2.1 P.3.0 | 2 P.3.0",
     "Info: GetNextRequest(P.3.0) END OF TABLE\n"},
    {"SEQUENCE between two numbers",
     {{{0, 0}, kTypeInt, 0}, {{1}, kTypeSequence, 2}, {{2, 0}, kTypeInt, 0}},
     "P.0.0 P.1.1.1.1 P.1.1.1.2 P.1.1.2.1 P.1.1.2.2 | 2 P.2.0",
     "Info: GetNextRequest(P.2.0) END OF TABLE\n"},
    {"two SEQUENCEs in a row",
     {{{0, 0}, kTypeInt, 0}, {{1}, kTypeSequence, 1}, {{2}, kTypeSequence, 2}},
     "P.0.0 P.1.1.1.1 P.1.1.2.1 P.2.1.1.1 P.2.1.1.2 P.2.1.2.1 P.2.1.2.2 | 2 P.2.1.2.2",
     "Info: GetNextRequest(P.2.1.2.2) END OF TABLE (SEQUENCE)\n"},
    {"two SEQUENCEs in a row, the first empty",
     {{{1}, kTypeSequence, 0}, {{2}, kTypeSequence, 1}},
     "P.1 P.2.1.1.1 P.2.1.2.1 | 2 P.2.1.2.1",
     "Info: GetNextRequest(P.2.1.2.1) END OF TABLE (SEQUENCE)\n"},
    {"two SEQUENCEs in a row, the second empty",
     {{{1}, kTypeSequence, 1}, {{2}, kTypeSequence, 0}},
     "P.1 P.1.1.1.1 P.1.1.2.1 | 2 P.2",
     "Info: GetNextRequest(P.2) END OF TABLE (SEQUENCE)\n"},
    {"SEQUENCE, then a number, then another SEQUENCE",
     {{{1}, kTypeSequence, 1}, {{2, 0}, kTypeInt, 0}, {{3}, kTypeSequence, 1}},
     "P.1 P.1.1.1.1 P.1.1.2.1 P.3.1.1.1 P.3.1.2.1 | 2 P.3.1.2.1",
     "Info: GetNextRequest(P.3.1.2.1) END OF TABLE (SEQUENCE)\n"},
};

class HandWrittenTreeTest : public EmptyAgentTest {
 protected:
  void Plant(const Tree& tree) {
    m_tree = &tree;
    MIB_ENTRY* next = nullptr;
    for (std::size_t i = tree.variables.size(); i-- > 0;)
      next = Add(tree.variables[i], "Variable" + std::to_string(i), next);
    log.Clear();
  }

  MIB_ENTRY* Add(const Variable& variable, const std::string& name, MIB_ENTRY* next) {
    MibTable& table = agent.Variables();
    const AsnObjectIdentifier suffix = Lend(variable.suffix);
    if (variable.type == kTypeInt) return table.RegisterInt(suffix, name.c_str(), next, 5);
    if (variable.type == kTypeString)
      return table.RegisterString(suffix, name.c_str(), next, 8, "text");
    MIB_ENTRY* const entry = table.RegisterSequence(suffix, name.c_str(), next);
    for (UINT row = 1; row <= variable.rows; ++row)
      MibTable::AddRow(*entry, (std::to_string(row) + ".1").c_str(),
                       (std::to_string(row) + ".2").c_str());
    return entry;
  }

  // The names that have a value, with their values, in order.
  std::vector<std::pair<std::string, std::string>> Readable() const {
    std::vector<std::pair<std::string, std::string>> all;
    for (const Variable& variable : m_tree->variables) {
      std::string name = "P";
      for (const UINT id : variable.suffix) name += "." + std::to_string(id);
      if (variable.type == kTypeInt) all.emplace_back(name, "INT 5");
      if (variable.type == kTypeString) all.emplace_back(name, "STRING 'text'");
      for (const char* const column : {"1", "2"})
        for (UINT row = 1; row <= variable.rows; ++row)
          all.emplace_back(name + ".1." + column + "." + std::to_string(row),
                           "STRING '" + std::to_string(row) + "." + column + "'");
    }
    return all;
  }

  const Tree* m_tree = nullptr;
};

class EveryTreeTest : public HandWrittenTreeTest, public ::testing::WithParamInterface<Tree> {
 protected:
  EveryTreeTest() { Plant(GetParam()); }
};

TEST_P(EveryTreeTest, NamesAreStrictlyAscending) {
  const OrderedEntries::Node* node = agent.Variables().Ordered().Head();
  ASSERT_NE(node, nullptr);
  std::size_t count = 1;
  for (; node->m_next != nullptr; node = node->m_next, ++count) {
    const AsnObjectIdentifier& first = node->m_fullName.Name();
    const AsnObjectIdentifier& second = node->m_next->m_fullName.Name();
    EXPECT_LT(CompareWhole(first, second), 0) << DottedText(first) << " and " << DottedText(second);
  }
  EXPECT_EQ(count, GetParam().variables.size());
}

TEST_P(EveryTreeTest, GetReadsEveryName) {
  for (const auto& [name, value] : Readable())
    EXPECT_EQ(Get(name), "0 " + name + " = " + value) << GetParam().what;
}

TEST_P(EveryTreeTest, GetNextVisitsAllNamesAndEnds) {
  std::string walk;
  Binding binding("P");
  INT status = agent.GetNextRequest(binding.Get());
  for (; status == SNMP_ERRORSTATUS_NOERROR && walk.size() < 1000;
       status = agent.GetNextRequest(binding.Again()))
    walk += binding.Name() + " ";
  EXPECT_EQ(walk + "| " + std::to_string(status) + " " + binding.Name(), GetParam().walk);
  std::string line = LastLine();
  if (const auto at = line.find(FullName("P")); at != std::string::npos)
    line.replace(at, FullName("P").size(), "P");
  EXPECT_EQ(line, GetParam().lastLine);
}

std::string TestName(const ::testing::TestParamInfo<Tree>& tree) {
  std::string name = tree.param.what;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == ' ' || c == ','; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Trees, EveryTreeTest, ::testing::ValuesIn(kTrees), TestName);

constexpr Tree const& kTwoRowsBetweenNumbers = kTrees[7];

TEST_F(HandWrittenTreeTest, WalkCarriesTheValuesOfTheCells) {
  Plant(kTwoRowsBetweenNumbers);
  EXPECT_EQ(GetNext("P.0.0"), "0 P.1.1.1.1 = STRING '1.1'");
  EXPECT_EQ(GetNext("P.1.1.1.1"), "0 P.1.1.1.2 = STRING '2.1'");
  EXPECT_EQ(GetNext("P.1.1.1.2"), "0 P.1.1.2.1 = STRING '1.2'");
  EXPECT_EQ(GetNext("P.1.1.2.1"), "0 P.1.1.2.2 = STRING '2.2'");
}

TEST_F(HandWrittenTreeTest, PartOfACellNameIsCompletedAndThatCellReturned) {
  Plant(kTwoRowsBetweenNumbers);
  struct Row {
    const char* what;
    const char* name;
    const char* outcome;
  };
  for (const Row& row : {
           Row{"bare name", "P.1", "0 P.1.1.1.1 = STRING '1.1'"},
           Row{"entry", "P.1.1", "0 P.1.1.1.1 = STRING '1.1'"},
           Row{"entry and column 1", "P.1.1.1", "0 P.1.1.1.1 = STRING '1.1'"},
           Row{"entry and column 2", "P.1.1.2", "0 P.1.1.2.1 = STRING '1.2'"},
           Row{"column 0", "P.1.1.0", "2 P.1.1.0 = none"},
           Row{"row 0", "P.1.1.1.0", "0 P.1.1.1.1 = STRING '1.1'"},
           Row{"row behind the last", "P.1.1.1.7", "0 P.1.1.2.1 = STRING '1.2'"},
           Row{"largest row wraps to row 0", "P.1.1.1.4294967295", "2 P.1.1.1.0 = none"},
           Row{"column 0 behind its rows", "P.1.1.0.7", "0 P.1.1.1.1 = STRING '1.1'"},
           Row{"column 3 leaves the SEQUENCE", "P.1.1.3", "2 P.2.0 = none"},
           Row{"largest column, behind its rows, wraps to 0", "P.1.1.4294967295.7",
               "2 P.1.1.4294967295.7 = none"},
           Row{"entry 0", "P.1.0", "2 P.1.0 = none"},
           Row{"entry 2", "P.1.2.1.1", "2 P.1.2.1.1 = none"},
           Row{"longer than a cell", "P.1.1.1.1.0", "2 P.1.1.1.1.0 = none"},
       }) {
    EXPECT_EQ(GetNext(row.name), row.outcome) << row.what << ": " << row.name;
  }
}

TEST_F(HandWrittenTreeTest, SequenceAfterAnUnknownNameReturnsItsBareNameWithoutValue) {
  Plant(kTwoRowsBetweenNumbers);
  EXPECT_EQ(GetNext("P.0.1"), "0 P.1 = none");
  EXPECT_EQ(LastLine(), "Info: GetNextRequest: next available = " + FullName("P.1") + "\n");
}

TEST_F(HandWrittenTreeTest, RowsMayChangeBetweenTwoSteps) {
  Plant(kTwoRowsBetweenNumbers);
  MIB_ENTRY& rows = *agent.Variables().Find("Variable1");
  EXPECT_EQ(GetNext("P.1.1.1.1"), "0 P.1.1.1.2 = STRING '2.1'");
  MibTable::AddRow(rows, "3.1", "3.2");
  EXPECT_EQ(GetNext("P.1.1.1.2"), "0 P.1.1.1.3 = STRING '3.1'");
  EXPECT_EQ(GetNext("P.1.1.1.3"), "0 P.1.1.2.1 = STRING '1.2'");
  MibTable::ClearRows(rows);
  MibTable::AddRow(rows, "new", "row");
  EXPECT_EQ(GetNext("P.1.1.1.3"), "0 P.1.1.2.1 = STRING 'row'");
  EXPECT_EQ(GetNext("P.1.1.2.1"), "2 P.2.0 = none");
  MibTable::ClearRows(rows);
  EXPECT_EQ(GetNext("P.1.1.1.1"), "2 P.2.0 = none");
}

TEST_F(HandWrittenTreeTest, StepThatFailsAfterRenamingKeepsTheNewName) {
  Plant(kTwoRowsBetweenNumbers);
  Binding binding("P.1.1.2.2");
  EXPECT_EQ(agent.GetNextRequest(binding.Get()), SNMP_ERRORSTATUS_NOSUCHNAME);
  EXPECT_EQ(binding.Name(), "P.2.0");
}

TEST_F(HandWrittenTreeTest, CellsStepIsNotLoggedAsNext) {
  Plant(kTwoRowsBetweenNumbers);
  GetNext("P.1.1.1.1");
  const std::vector<std::string> expected{"Info: GetNextRequest(" + FullName("P.1.1.1.1") + ")\n",
                                          "Info: GetStoredVar(Variable1) = SEQUENCE[3]: '2.1'\n"};
  EXPECT_EQ(log.Lines(), expected);
}

}  // namespace

}  // namespace Agent::Tests
