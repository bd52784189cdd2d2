#include <cstdlib>
#include <new>
#include <string>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "tests/json/BalancedTest.h"
#include "tests/support/AllocationFault.h"

namespace Vask {
namespace {

using OutOfMemoryTest = Tests::BalancedTest;

// Runs `body` again and again, and allows one allocation more each time, until it
// succeeds. Returns the number of failures.
template <class Body>
int FailuresUntilItWorks(Body body) {
  for (int allowed = 0;; ++allowed) {
    try {
      const Tests::FailingAllocations fromThenOn(allowed);
      body();
      return allowed;
    } catch (const std::bad_alloc&) {  // one allocation more, then
    }
  }
}

TEST_F(OutOfMemoryTest, ParsingLosesNothingWhereverMemoryRunsOut) {
  const std::string text = R"({"key":[1,2.5,{"long key of more than sixteen":"x\n"},[[]],true],)"
                           R"("other":{"a":null},"KEY":")" +
                           std::string(40, 'x') + "\",\"deep\":" + std::string(1'200, '[') +
                           std::string(1'200, ']') + "}";
  const std::uint32_t before = Living();
  const int failures = FailuresUntilItWorks([&] {
    ParseResult result;
    JsonRef<Json> root(Parse(result, text.c_str()));
    if (!root) std::abort();  // memory running out must not look like bad text
  });
  EXPECT_GT(failures, 20);
  EXPECT_EQ(Living(), before);
}

TEST_F(OutOfMemoryTest, ValueUnderAnEmptyKeyIsReleasedWhereverMemoryRunsOut) {
  for (const char* text : {R"({"":[1]})", R"({"":{"a":[2]}})", R"([{"":{"":[{"\u0000":[3]}]}}])"}) {
    const std::uint32_t before = Living();
    const int failures = FailuresUntilItWorks([&] {
      ParseResult result;
      JsonRef<Json> root(Parse(result, text));
      if (!root) std::abort();
    });
    EXPECT_GT(failures, 0) << text;
    EXPECT_EQ(Living(), before) << text;
  }
}

TEST_F(OutOfMemoryTest, MemberWithoutMemoryLeavesTheObjectAsItWas) {
  JsonRef<JsonObject> object(new JsonObject);
  JsonRef<JsonObject> value(new JsonObject);
  ASSERT_TRUE(object->Set("a", value.Get()));
  // Needs 32 nodes. A failed attempt keeps the nodes that it got: 0, 1, 2 and so on.
  const std::string longKey(500, 'k');
  const int failures = FailuresUntilItWorks([&] {
    try {
      object->Set(longKey.c_str(), value.Get());
    } catch (const std::bad_alloc&) {
      if (value->RefCount() != 2) std::abort();
      throw;
    }
  });
  EXPECT_EQ(failures, 8);
  EXPECT_EQ(value->RefCount(), 3);
  EXPECT_EQ(object->Find(longKey.substr(1).c_str()), nullptr);
}

TEST_F(OutOfMemoryTest, ElementWithoutMemoryLeavesTheArrayAsItWas) {
  JsonRef<JsonArray> array(new JsonArray);
  JsonRef<JsonObject> value(new JsonObject);
  const int failures = FailuresUntilItWorks([&] {
    try {
      array->Append(value.Get());
    } catch (const std::bad_alloc&) {
      if (value->RefCount() != 1 || array->Count() != 0) std::abort();
      throw;
    }
  });
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(value->RefCount(), 2);
}

TEST_F(OutOfMemoryTest, KeyThatWouldDivideAnotherLeavesItWhole) {
  JsonRef<JsonObject> object(new JsonObject);
  JsonRef<JsonObject> value(new JsonObject);
  for (char last = 'a'; last < 'a' + 16; ++last) {
    ASSERT_TRUE(object->Set((std::string(1, last) + "-key").c_str(), value.Get()));
  }
  EXPECT_EQ(FailuresUntilItWorks([&] {
              EXPECT_NE(object->Find("b-key"), nullptr);
              EXPECT_EQ(object->Find("b-"), nullptr);
              object->Set("b-", value.Get());
            }),
            1);
  EXPECT_NE(object->Find("b-key"), nullptr);
  EXPECT_NE(object->Find("b-"), nullptr);
}

TEST_F(OutOfMemoryTest, WritingLeavesTheTreeAsItWas) {
  ParseResult result;
  JsonRef<Json> root(Parse(result, R"({"a":[1,{"b":"a text that no small string holds"}]})"));
  ASSERT_TRUE(root);
  std::string before;
  root->Write(before);
  EXPECT_GT(FailuresUntilItWorks([&] {
              std::string out;
              root->Write(out);
            }),
            2);
  std::string after;
  root->Write(after);
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace Vask
