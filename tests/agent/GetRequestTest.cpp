#include "tests/agent/AgentFixture.h"

namespace Agent::Tests {

namespace {

using GetRequestTest = AgentTest;

TEST_F(GetRequestTest, RequestIsLoggedBeforeItsAnswer) {
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

TEST_F(GetRequestTest, FirstVariableInTheListAnswersWhereSeveralWould) {
  constexpr UINT kOuter[] = {2};
  agent.Variables().RegisterInt(Lend(kOuter), "Outer", nullptr, 77);
  EXPECT_EQ(Get("P.2.0"), "0 P.2.0 = INT 77");
}

}  // namespace

}  // namespace Agent::Tests
