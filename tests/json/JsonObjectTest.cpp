#include "json/JsonObject.h"

#include "json/JsonArray.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "tests/json/BalancedTest.h"
#include "tests/json/RecordingValue.h"

namespace Vask {
namespace {

using JsonObjectTest = Tests::BalancedTest;

std::string Written(const Json& value) {
  std::string text;
  value.Write(text);
  return text;
}

// Sets a new number. The object then holds the only reference to it.
void SetInt(JsonObject& object, const char* key, int value) {
  JsonRef<JsonNumber> number(JsonNumber::FromInt(value));
  ASSERT_TRUE(object.Set(key, number.Get()));
}

TEST_F(JsonObjectTest, StartsEmptyWithOneReference) {
  JsonRef<JsonObject> object(new JsonObject);
  EXPECT_EQ(object->Type(), JsonType::Object);
  EXPECT_EQ(static_cast<int>(object->Type()), 1);
  EXPECT_TRUE(object->Empty());
  EXPECT_EQ(object->RefCount(), 1);
  EXPECT_EQ(Written(*object), "{}");
}

TEST_F(JsonObjectTest, KeysAreFoldedAndFoundInAnyCase) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, "StreamsOK", 1);
  EXPECT_EQ(Written(*object), R"({"streamsok":1})");
  Json* found = object->Find("sTREAMSok");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->Type(), JsonType::Number);
}

TEST_F(JsonObjectTest, CaseSensitiveObjectKeepsSpellingsApart) {
  JsonRef<JsonObject> object(new JsonObject(true));
  SetInt(*object, "Name", 1);
  SetInt(*object, "name", 2);
  EXPECT_EQ(Written(*object), R"({"Name":1,"name":2})");
  EXPECT_EQ(object->Find("NAME"), nullptr);
}

TEST_F(JsonObjectTest, MembersAreWrittenInAscendingOrderOfTheFoldedKey) {
  JsonRef<JsonObject> object(new JsonObject);
  for (const char* key : {"op", "From", "name", "FR", "data"}) SetInt(*object, key, 0);
  EXPECT_EQ(Written(*object), R"({"data":0,"fr":0,"from":0,"name":0,"op":0})");
}

TEST_F(JsonObjectTest, LaterValueUnderTheSameKeyReplacesAndReleasesTheEarlier) {
  std::string deleted;
  JsonRef<JsonObject> object(new JsonObject);
  JsonRef<Tests::RecordingValue> first(new Tests::RecordingValue("first", deleted));
  ASSERT_TRUE(object->Set("Key", first.Get()));
  EXPECT_EQ(first->RefCount(), 2);
  first.Reset(nullptr);
  EXPECT_EQ(deleted, "");
  SetInt(*object, "kEY", 2);
  EXPECT_EQ(deleted, "first ");
  EXPECT_EQ(Written(*object), R"({"key":2})");
}

TEST_F(JsonObjectTest, NodeOfAMemberHasItsValue) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, "key", 7);
  const JsonObject::Dictionary::Node* node = nullptr;
  ASSERT_TRUE(object->Members().Find("key", node));
  EXPECT_EQ(node->hasValue, 1);
  EXPECT_EQ(node->value, object->Find("key"));
}

TEST_F(JsonObjectTest, ObjectOfATextHasRoomForTwoNodes) {
  ValueMemory memory;
  const JsonRef<JsonObject> object(JsonObject::CreateForText(memory));
  const auto addNode = [&](const char* key) {
    JsonObject::Dictionary::Path path(object->Members());
    path.Append(key);
    return path.End();
  };
  const auto* first = addNode("a");
  EXPECT_EQ(static_cast<const void*>(first), object.Get() + 1);
  EXPECT_EQ(addNode("b"), first + 1);
  EXPECT_NE(addNode("c"), first + 2);
}

TEST_F(JsonObjectTest, SettingTheSameValueAgainKeepsIt) {
  std::string deleted;
  JsonRef<JsonObject> object(new JsonObject);
  JsonRef<Tests::RecordingValue> value(new Tests::RecordingValue("value", deleted));
  ASSERT_TRUE(object->Set("key", value.Get()));
  ASSERT_TRUE(object->Set("KEY", value.Get()));
  EXPECT_EQ(value->RefCount(), 2);
  EXPECT_EQ(deleted, "");
}

TEST_F(JsonObjectTest, NullValueIsRefusedAndChangesNothing) {
  JsonRef<JsonObject> object(new JsonObject);
  EXPECT_FALSE(object->Set("key", nullptr));
  EXPECT_TRUE(object->Empty());
  SetInt(*object, "key", 1);
  EXPECT_FALSE(object->Set("key", nullptr));
  EXPECT_EQ(Written(*object), R"({"key":1})");
}

TEST_F(JsonObjectTest, EmptyKeyStoresNothingAndItsReferenceIsNeverReleased) {
  JsonNull* value = new JsonNull;
  {
    JsonRef<JsonObject> object(new JsonObject);
    EXPECT_TRUE(object->Set("", value));
    EXPECT_TRUE(object->Set(nullptr, value));
    EXPECT_TRUE(object->Empty());
    EXPECT_EQ(Written(*object), "{}");
    EXPECT_EQ(value->RefCount(), 3);
  }
  EXPECT_EQ(value->RefCount(), 3);  // nothing else owns two of them
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): the third call deletes, not the first
  for (int i = 0; i < 3; ++i) value->Release();
}

TEST_F(JsonObjectTest, FindReturnsNullForAbsentKeysAndForPrefixes) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, "names", 1);
  EXPECT_EQ(object->Find("name"), nullptr);
  EXPECT_EQ(object->Find("namesake"), nullptr);
  EXPECT_EQ(object->Find("other"), nullptr);
  EXPECT_EQ(object->Find(""), nullptr);
  EXPECT_EQ(object->Find(nullptr), nullptr);
}

TEST_F(JsonObjectTest, FindDoesNotChangeTheCount) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, "key", 1);
  EXPECT_EQ(object->Find("key")->RefCount(), 1);
  EXPECT_EQ(object->Find("key")->RefCount(), 1);
}

TEST_F(JsonObjectTest, MembersCanBeWalkedInOrder) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, "b", 2);
  SetInt(*object, "A", 1);
  std::string walked;
  const auto collect = [](const char* key, Json* const* value, void* context) {
    *static_cast<std::string*>(context) += key + std::string("=") + Written(**value) + " ";
    return true;
  };
  EXPECT_TRUE(object->Members().ForEach("", collect, &walked));
  EXPECT_EQ(walked, "a=1 b=2 ");
}

TEST_F(JsonObjectTest, ReleasingVisitsMembersInOrderAndEachWithAllThatItHolds) {
  std::string deleted;
  JsonRef<JsonObject> object(new JsonObject);
  const auto set = [&](JsonObject& parent, const char* key, const char* name) {
    JsonRef<Json> value(new Tests::RecordingValue(name, deleted));
    parent.Set(key, value.Get());
  };
  {
    JsonRef<JsonObject> inner(new JsonObject);
    JsonRef<JsonArray> array(new JsonArray);
    set(*inner, "y", "b.y");
    set(*inner, "x", "b.x");
    for (const char* name : {"b.z0", "b.z1"}) {
      JsonRef<Json> value(new Tests::RecordingValue(name, deleted));
      array->Append(value.Get());
    }
    inner->Set("z", array.Get());
    object->Set("b", inner.Get());
  }
  set(*object, "c", "c");
  set(*object, "ab", "ab");
  set(*object, "a", "a");
  object.Reset(nullptr);
  EXPECT_EQ(deleted, "a ab b.x b.y b.z0 b.z1 c ");
}

TEST_F(JsonObjectTest, ValueHeldElsewhereOutlivesTheObject) {
  JsonRef<JsonObject> inner(new JsonObject);
  SetInt(*inner, "key", 1);
  JsonRef<JsonObject> outer(new JsonObject);
  outer->Set("inner", inner.Get());
  outer.Reset(nullptr);
  EXPECT_EQ(inner->RefCount(), 1);
  EXPECT_EQ(Written(*inner), R"({"key":1})");
}

TEST_F(JsonObjectTest, ValueMayBeInTwoObjects) {
  JsonRef<JsonObject> first(new JsonObject);
  JsonRef<JsonObject> second(new JsonObject);
  {
    JsonRef<JsonNumber> shared(JsonNumber::FromInt(7));
    first->Set("a", shared.Get());
    second->Set("b", shared.Get());
  }
  EXPECT_EQ(first->Find("a")->RefCount(), 2);
  first.Reset(nullptr);
  EXPECT_EQ(Written(*second), R"({"b":7})");
}

TEST_F(JsonObjectTest, KeyOfAnyLengthIsReleasedWithoutBeingAssembled) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, std::string(70'000, 'k').c_str(), 1);
  SetInt(*object, std::string(129, 'l').c_str(), 2);
  EXPECT_NE(object->Find(std::string(129, 'L').c_str()), nullptr);
}

using JsonObjectDeathTest = Tests::BalancedTest;

constexpr const char* kTooLong =
    "Vask::StrDict3: a key of more than 128 characters cannot be enumerated";

TEST_F(JsonObjectDeathTest, WritingAKeyOf129CharactersEndsTheProcess) {
  JsonRef<JsonObject> object(new JsonObject);
  SetInt(*object, std::string(128, 'k').c_str(), 1);
  EXPECT_EQ(Written(*object), "{\"" + std::string(128, 'k') + "\":1}");
  SetInt(*object, std::string(129, 'k').c_str(), 1);
  EXPECT_DEATH(Written(*object), kTooLong);
}

// The counters before the first test.
const std::uint32_t kConstructedAtFirst = Json::Constructed();
const std::uint32_t kDestroyedAtFirst = Json::Destroyed();

TEST_F(JsonObjectTest, CountersBeginAtZero) {
  EXPECT_EQ(kConstructedAtFirst, 0u);
  EXPECT_EQ(kDestroyedAtFirst, 0u);
}

TEST_F(JsonObjectTest, CountersFollowEveryKind) {
  const std::uint32_t constructed = Json::Constructed();
  const std::uint32_t destroyed = Json::Destroyed();
  for (Json* value :
       std::initializer_list<Json*>{new JsonObject, new JsonArray, new JsonBool, new JsonNull,
                                    JsonString::Create(), JsonNumber::FromInt(0)}) {
    value->Release();
  }
  EXPECT_EQ(Json::Constructed() - constructed, 6u);
  EXPECT_EQ(Json::Destroyed() - destroyed, 6u);
}

}  // namespace
}  // namespace Vask
