#include "json/JsonArray.h"

#include <vector>

#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "tests/json/BalancedTest.h"
#include "tests/json/RecordingValue.h"

namespace Vask {
namespace {

using JsonArrayTest = Tests::BalancedTest;

void AppendInt(JsonArray& array, int value) {
  JsonRef<JsonNumber> number(JsonNumber::FromInt(value));
  array.Append(number.Get());
}

TEST_F(JsonArrayTest, StartsEmpty) {
  JsonRef<JsonArray> array(new JsonArray);
  EXPECT_EQ(array->Type(), JsonType::Array);
  EXPECT_EQ(static_cast<int>(array->Type()), 2);
  EXPECT_EQ(array->Count(), 0u);
  EXPECT_TRUE(array->begin() == array->end());
  std::string text = "before";
  array->Write(text);
  EXPECT_EQ(text, "[]");
}

TEST_F(JsonArrayTest, ElementsKeepTheOrderOfAppending) {
  JsonRef<JsonArray> array(new JsonArray);
  for (const int value : {3, 1, 2}) AppendInt(*array, value);
  EXPECT_EQ(array->Count(), 3u);
  std::vector<std::int64_t> values;
  for (Json* element : *array) values.push_back(static_cast<JsonNumber*>(element)->IntValue());
  EXPECT_EQ(values, (std::vector<std::int64_t>{3, 1, 2}));
}

TEST_F(JsonArrayTest, IteratorIsMovedInBothForms) {
  JsonRef<JsonArray> array(new JsonArray);
  for (const int value : {3, 1}) AppendInt(*array, value);
  JsonArray::Iterator at = array->begin();
  EXPECT_EQ(static_cast<JsonNumber*>(*at++)->IntValue(), 3);
  EXPECT_EQ(static_cast<JsonNumber*>(*at)->IntValue(), 1);
  EXPECT_TRUE(++at == array->end());
}

TEST_F(JsonArrayTest, AppendTakesAReferenceOfItsOwn) {
  JsonRef<JsonBool> value(new JsonBool(true));
  {
    JsonRef<JsonArray> array(new JsonArray);
    array->Append(value.Get());
    array->Append(value.Get());
    EXPECT_EQ(value->RefCount(), 3);
  }
  EXPECT_EQ(value->RefCount(), 1);
}

TEST_F(JsonArrayTest, AdoptedReferenceBelongsToTheArray) {
  JsonRef<JsonArray> array(new JsonArray);
  Json* value = new JsonBool(true);
  array->AppendAdopted(value);
  EXPECT_EQ(value->RefCount(), 1);
}

TEST_F(JsonArrayTest, ReleasesElementsFromTheHead) {
  std::string deleted;
  JsonRef<JsonArray> array(new JsonArray);
  for (const char* name : {"first", "second", "third"}) {
    array->AppendAdopted(new Tests::RecordingValue(name, deleted));
  }
  array.Reset(nullptr);
  EXPECT_EQ(deleted, "first second third ");
}

}  // namespace
}  // namespace Vask
