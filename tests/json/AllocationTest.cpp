#include "tests/support/AllocationCounter.h"

#include <cstddef>
#include <string>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "json/StrDict3.h"
#include "tests/json/BalancedTest.h"

namespace Vask {
namespace {

using AllocationTest = Tests::BalancedTest;

std::uint64_t AllocationsOfParsing(const std::string& text) {
  const std::uint64_t before = Tests::Allocations();
  ParseResult result;
  JsonRef<Json> root(Parse(result, text.c_str()));
  const std::uint64_t after = Tests::Allocations();
  EXPECT_TRUE(root) << text;
  return after - before;
}

// There is one allocation for each slab. Values, the nodes of keys and the cells of
// arrays lie in it. An object that is too large for a slab has an allocation of its own.
TEST_F(AllocationTest, ValuesAndKeysShareFewAllocations) {
  struct Row {
    const char* name;
    std::string text;
    std::uint64_t allocations;
  };
  for (const Row& row : {
           Row{"Literal", "null", 1},
           Row{"Number", "123456789012345678901234567890", 1},
           Row{"String", R"("a string of more than fifteen characters")", 1},
           Row{"StringWithEscapes", R"("a string\nof more than\tfifteen characters")", 1},
           Row{"LongString", '"' + std::string(100'000, 'x') + '"', 1},
           Row{"EmptyObject", "{}", 1},
           Row{"EightKeys", R"({"a":0,"b":0,"c":0,"d":0,"e":0,"f":0,"g":0,"h":0})", 1},
           Row{"NineKeys", R"({"a":0,"b":0,"c":0,"d":0,"e":0,"f":0,"g":0,"h":0,"i":0})", 1},
           Row{"KeyOf2000Characters", "{\"" + std::string(2000, 'k') + "\":0}", 2},
           Row{"KeyOf1000Characters", "{\"" + std::string(1000, 'k') + "\":0}", 1},
           Row{"EmptyArray", "[]", 1},
           Row{"ArrayElement", "[0]", 1},
           Row{"SixteenLevels", "[[[[[[[[[[[[[[[[]]]]]]]]]]]]]]]]", 1},
       }) {
    EXPECT_EQ(AllocationsOfParsing(row.text), row.allocations) << row.name << ": " << row.text;
  }
}

// The frames of an update, and a larger one. After the first text, the memory that the
// reader keeps is enough for all others.
TEST_F(AllocationTest, TextInWarmMemoryAllocatesNothing) {
  const std::string head =
      R"({"name":"SNMPmessage","from":"Corvane","id":0,"op":"broadcast","data":{"messageType":)";
  ValueMemory memory;
  for (const char* body : {
           R"({"Product":{"Name":"Corvane","Version":"4.2.1"}}}})",
           R"({"Streams":{"Count":12,"Errors":1}}}})",
           R"({"StreamMonitors":{"Count":12,"Errors":1,"Silence":0}}}})",
           R"({"AudioSources":{"Count":12,"Errors":1,"Silence":0}}}})",
           R"({"a":[1,2,[3,{}]],"a key of more than sixteen":{"":5},"b":0,"c":0,"d":"\u00e9"}}})",
       }) {
    const std::string text = head + body;
    ParseResult result;
    std::uint64_t before = 0;
    for (int i = 0; i < 3; ++i) {
      before = Tests::Allocations();
      JsonRef<Json> root(Parse(result, text.c_str(), memory));
      EXPECT_TRUE(root) << text;
    }
    EXPECT_EQ(Tests::Allocations(), before) << text;
  }
}

// The list of members doubles up to 32 places in both cases.
TEST_F(AllocationTest, WriterKeepsOnlyTheKeysOfOpenObjects) {
  JsonRef<JsonObject> object(new JsonObject);
  JsonRef<JsonNull> value(new JsonNull);
  for (char first = 'a'; first < 'a' + 16; ++first) {
    ASSERT_TRUE(object->Set((first + std::string(99, 'k')).c_str(), value.Get()));
  }
  std::string out;
  out.reserve(100'000);
  const auto allocationsToWrite = [&](int objects) {
    JsonRef<JsonArray> array(new JsonArray);
    for (int i = 0; i < objects; ++i) array->Append(object.Get());
    const std::uint64_t before = Tests::Allocations();
    array->Write(out);
    return Tests::Allocations() - before;
  };
  EXPECT_EQ(allocationsToWrite(16), allocationsToWrite(2));
}

TEST_F(AllocationTest, DictionaryFreesItsOwnAllocator) {
  const std::ptrdiff_t before = Tests::HeldBlocks();
  {
    StrDict3<int> dictionary;
    dictionary.Insert("a", 1);
  }
  EXPECT_EQ(Tests::HeldBlocks(), before);
}

TEST_F(AllocationTest, ReleasingAllocatesNothing) {
  ParseResult result;
  JsonRef<Json> root(Parse(result, R"({"a":[{"b":[1,2,{"c":"d"}]},"e"],"f":{"g":[[[]]]}})"));
  ASSERT_TRUE(root);
  const std::uint64_t before = Tests::Allocations();
  root.Reset(nullptr);
  EXPECT_EQ(Tests::Allocations(), before);
}

}  // namespace
}  // namespace Vask
