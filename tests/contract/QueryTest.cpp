// Requests through the module's exports.

#include <memory>

#include "tests/contract/ContractFixture.h"

namespace Contract {

namespace {

using Vask::Tests::Binding;

// Several bindings of one request.
class Request {
 public:
  explicit Request(const std::vector<std::string>& names) {
    for (const std::string& name : names) m_bindings.push_back(std::make_unique<Binding>(name));
  }
  std::string Ask(Module& module, BYTE pduType) {
    std::vector<SnmpVarBind> list;
    for (const auto& binding : m_bindings) list.push_back(binding->Get());
    std::string answer = module.Query(pduType, list);
    for (std::size_t i = 0; i < list.size(); ++i) m_bindings[i]->Get() = list[i];
    return answer;
  }
  std::string Outcome(std::size_t i) const {
    return m_bindings[i]->Name() + " = " + m_bindings[i]->Value();
  }

 private:
  std::vector<std::unique_ptr<Binding>> m_bindings;
};

using QueryTest = ContractTest;

TEST_F(QueryTest, ModuleThatWasNotStartedHasNoVariableAndNoTrap) {
  EXPECT_EQ(module.Get("P.0.0"), "2 P.0.0 = none");
  EXPECT_EQ(module.GetNext("P"), "2 P = none");
  EXPECT_EQ(module.TakeTraps(), Traps{});
}

TEST_F(QueryTest, StatusIsThatOfTheLastBindingAndTheIndexIsZero) {
  ASSERT_TRUE(module.Init().result);
  struct Row {
    const char* what;
    BYTE pduType;
    std::vector<std::string> names;
    const char* answer;
  };
  for (const Row& row : {
           Row{"Get, first unknown, second known", 0xA0, {"P.9", "P.0.0"}, "TRUE 0/0"},
           Row{"Get, first known, second unknown", 0xA0, {"P.0.0", "P.9"}, "TRUE 2/0"},
           Row{"Get, none", 0xA0, {}, "TRUE 0/0"},
           Row{"GetNext past the end, then a good one", 0xA1, {"P.2.4", "P"}, "TRUE 0/0"},
           Row{"GetNext, a good one, then past the end", 0xA1, {"P", "P.2.4"}, "TRUE 2/0"},
           Row{"GetResponse", 0xA2, {"P.0.0"}, "TRUE 2/0"},
           Row{"Set", 0xA3, {"P.0.0"}, "TRUE 17/0"},
           Row{"Set of nothing", 0xA3, {}, "TRUE 0/0"},
           Row{"no type at all", 0x00, {"P.0.0"}, "TRUE 2/0"},
           Row{"GetBulk", 0xA5, {"P.0.0"}, "TRUE 2/0"},
       }) {
    Request request(row.names);
    EXPECT_EQ(request.Ask(module, row.pduType), row.answer) << row.what;
  }
}

TEST_F(QueryTest, EveryBindingIsProcessedEvenIfOneBeforeItFails) {
  ASSERT_TRUE(module.Init().result);
  Request request({"P.9", "P.1.0", "P.0.1", "P.1.1.0"});
  EXPECT_EQ(request.Ask(module, 0xA0), "TRUE 0/0");
  EXPECT_EQ(request.Outcome(0), "P.9 = none");
  EXPECT_EQ(request.Outcome(1), "P.1.0 = STRING 'Corvane'");
  EXPECT_EQ(request.Outcome(2), "P.0.1 = none");
  EXPECT_EQ(request.Outcome(3), "P.1.1.0 = STRING '1.x.x'");
}

TEST_F(QueryTest, SetIsRefusedForEveryBindingAndChangesNoValue) {
  ASSERT_TRUE(module.Init().result);
  Request request({"P.0.0", "P.1.0", "P.9"});
  EXPECT_EQ(request.Ask(module, 0xA3), "TRUE 17/0");
  EXPECT_EQ(request.Outcome(0), "P.0.0 = none");
  EXPECT_EQ(module.Get("P.1.0"), "0 P.1.0 = STRING 'Corvane'");
  EXPECT_EQ(module.Get("P.0.0"), "0 P.0.0 = INT 1");
}

TEST_F(QueryTest, WalkVisitsTheEightVariablesWithTheirFirstValues) {
  ASSERT_TRUE(module.Init().result);
  const Lines expected{"0 P.0.0 = INT 1",
                       "0 P.1.0 = STRING 'Corvane'",
                       "0 P.1.1 = STRING '1.x.x'",
                       "0 P.2.0 = INT 0",
                       "0 P.2.1 = INT 0",
                       "0 P.2.2 = INT 0",
                       "0 P.2.3 = INT 0",
                       "0 P.2.4 = INT 0",
                       "2 P.2.4 = none"};
  Lines walk;
  std::string name = "P";
  do {
    walk.push_back(module.GetNext(name));
    name = walk.back().substr(2, walk.back().find(' ', 2) - 2);
  } while (walk.back()[0] == '0' && walk.size() < 20);
  EXPECT_EQ(walk, expected);
  EXPECT_TRUE(log.Has("Info: GetNextRequest(" + FullName("P.2.4") + ") END OF TABLE"));
}

TEST_F(QueryTest, RequestOfEightBindingsReturnsEightValues) {
  ASSERT_TRUE(module.Init().result);
  Request request({"P.0.0", "P.1.0", "P.1.1", "P.2.0", "P.2.1", "P.2.2", "P.2.3", "P.2.4"});
  EXPECT_EQ(request.Ask(module, 0xA0), "TRUE 0/0");
  EXPECT_EQ(request.Outcome(0), "P.0.0 = INT 1");
  EXPECT_EQ(request.Outcome(7), "P.2.4 = INT 0");
}

}  // namespace

}  // namespace Contract
