#include "agent/SNMPExtensionAgent.h"

#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

using GetRequestTest = AgentTest;

TEST_F(GetRequestTest, RequestIsLoggedBeforeItsValue) {
  EXPECT_EQ(Get("P.0.0"), "0 P.0.0 = INT 1");
  const std::vector<std::string> expected{"Info: GetRequest(" + FullName("P.0.0") + ")\n",
                                          "Info: GetStoredVar(LinkStatus) = INT: 1\n"};
  EXPECT_EQ(log.Lines(), expected);
}

TEST_F(GetRequestTest, EveryNameUnderAVariableReadsIt) {
  for (const std::string name : {"P.0.0", "P.0.0.0", "P.0.0.7.4294967295"})
    EXPECT_EQ(Get(name), "0 " + name + " = INT 1");
  for (const std::string name : {"P.1.0", "P.1.0.0", "P.1.0.5"})
    EXPECT_EQ(Get(name), "0 " + name + " = STRING 'Corvane'");
}

TEST_F(GetRequestTest, NameUnderNoVariableIsNoSuchNameWithoutFurtherLine) {
  for (const std::string name :
       {"P.3", "P", "P.0", "P.1", "P.2.5", "P.0.1", "1.3.6.1.4.1", "1", "2.0", ""}) {
    log.Clear();
    EXPECT_EQ(Get(name), "2 " + name + " = none");
    EXPECT_EQ(log.Lines(), std::vector<std::string>{"Info: GetRequest(" + FullName(name) + ")\n"});
  }
}

TEST_F(GetRequestTest, FirstOfSeveralMatchingVariablesIsRead) {
  constexpr UINT kOuter[] = {2};
  agent.Variables().RegisterInt(Lend(kOuter), "Outer", nullptr, 77);
  EXPECT_EQ(Get("P.2.0"), "0 P.2.0 = INT 77");
}

using GetNextRequestTest = AgentTest;

TEST_F(GetNextRequestTest, EachNameLeadsToTheNextVariable) {
  struct Row {
    const char* what;
    const char* name;
    const char* outcome;
  };
  for (const Row& row : {
           Row{"the prefix", "P", "0 P.0.0 = INT 1"},
           Row{"before the prefix", "1.3.6.1.4.1", "0 P.0.0 = INT 1"},
           Row{"first of all names", "0", "0 P.0.0 = INT 1"},
           Row{"no name", "", "0 P.0.0 = INT 1"},
           Row{"a group's name", "P.1", "0 P.1.0 = STRING 'Corvane'"},
           Row{"first variable", "P.0.0", "0 P.1.0 = STRING 'Corvane'"},
           Row{"a text", "P.1.0", "0 P.1.1 = STRING '1.x.x'"},
           Row{"under a text", "P.1.0.5", "0 P.1.1 = STRING '1.x.x'"},
           Row{"last of a group", "P.1.1", "0 P.2.0 = INT 0"},
           Row{"between two groups", "P.1.2", "0 P.2.0 = INT 0"},
           Row{"between two variables of different groups", "P.0.7", "0 P.1.0 = STRING 'Corvane'"},
           Row{"last variable", "P.2.4", "2 P.2.4 = none"},
           Row{"under the last variable", "P.2.4.0", "2 P.2.4.0 = none"},
           Row{"behind the last of the last group", "P.2.5", "2 P.2.5 = none"},
           Row{"behind all groups", "P.3", "2 P.3 = none"},
           Row{"far behind all groups", "P.5", "2 P.5 = none"},
           Row{"behind the prefix", "2", "2 2 = none"},
       }) {
    EXPECT_EQ(GetNext(row.name), row.outcome) << row.what;
  }
}

TEST_F(GetNextRequestTest, WalkFromThePrefixVisitsAllVariablesAndEnds) {
  std::string walk;
  Binding binding("P");
  while (agent.GetNextRequest(binding.Again()) == SNMP_ERRORSTATUS_NOERROR && walk.size() < 500)
    walk += binding.Name() + " ";
  EXPECT_EQ(walk, "P.0.0 P.1.0 P.1.1 P.2.0 P.2.1 P.2.2 P.2.3 P.2.4 ");
  EXPECT_EQ(LastLine(), "Info: GetNextRequest(" + FullName("P.2.4") + ") END OF TABLE\n");
}

TEST_F(GetNextRequestTest, StepToTheFirstLaterVariableIsLogged) {
  GetNext("P");
  const std::vector<std::string> expected{
      "Info: GetNextRequest(" + FullName("P") + ")\n",
      "Info: GetNextRequest: next available = " + FullName("P.0.0") + "\n",
      "Info: GetStoredVar(LinkStatus) = INT: 1\n"};
  EXPECT_EQ(log.Lines(), expected);
}

TEST_F(GetNextRequestTest, StepToTheNextVariableIsLoggedWithItsType) {
  GetNext("P.1.0");
  const std::vector<std::string> text{
      "Info: GetNextRequest(" + FullName("P.1.0") + ")\n",
      "Info: GetNextRequest: next = " + FullName("P.1.1") + ", type 4\n",
      "Info: GetStoredVar(ProductVersion) = STRING[5]: '1.x.x'\n"};
  EXPECT_EQ(log.Lines(), text);
  log.Clear();
  GetNext("P.1.1");
  EXPECT_EQ(log.Lines().at(1), "Info: GetNextRequest: next = " + FullName("P.2.0") + ", type 2\n");
}

TEST_F(GetNextRequestTest, EndOfTheTableIsLogged) {
  GetNext("P.2.4");
  const std::vector<std::string> expected{
      "Info: GetNextRequest(" + FullName("P.2.4") + ")\n",
      "Info: GetNextRequest(" + FullName("P.2.4") + ") END OF TABLE\n"};
  EXPECT_EQ(log.Lines(), expected);
}

TEST_F(GetNextRequestTest, NameBehindAllVariablesIsNotLoggedAsEndOfTheTable) {
  for (const std::string name : {"P.3", "P.5", "P.2.5"}) {
    log.Clear();
    GetNext(name);
    EXPECT_EQ(log.Lines(),
              std::vector<std::string>{"Info: GetNextRequest(" + FullName(name) + ")\n"});
  }
}

TEST_F(GetNextRequestTest, AgentWithoutVariablesReturnsNoSuchName) {
  SNMPExtensionAgent empty(clock, Vask::Platform::SystemThreading());
  Binding binding("P");
  EXPECT_EQ(Outcome(empty.GetNextRequest(binding.Get()), binding), "2 P = none");
}

TEST_F(GetNextRequestTest, UnknownTypeOfTheNextVariableIsAGeneralErrorUnderItsName) {
  agent.Variables().Find("ProductName")->m_type = 6;
  EXPECT_EQ(GetNext("P.0.0"), "5 P.1.0 = none");
  agent.Variables().Find("ProductName")->m_type = kTypeString;  // so that its cell is freed
}

}  // namespace

}  // namespace Agent::Tests
