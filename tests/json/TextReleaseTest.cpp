#include <atomic>
#include <string>
#include <thread>

#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "tests/json/BalancedTest.h"

// The values of a text lie together in memory. Each must be released once, even if it was
// changed or moved before. Values that a caller holds must stay.

namespace Vask {
namespace {

class TextReleaseTest : public Tests::BalancedTest {
 protected:
  // The value lies in m_memory, like the messages that a registrar reads.
  JsonRef<JsonObject> Read(const char* text) {
    ParseResult result;
    JsonRef<JsonObject> root(static_cast<JsonObject*>(Parse(result, text, m_memory)));
    EXPECT_TRUE(root) << text << ": " << result.errorMessage;
    return root;
  }

  static JsonObject& Object(const JsonObject& around, const char* key) {
    return static_cast<JsonObject&>(*around.Find(key));
  }

  ValueMemory m_memory;
};

constexpr const char* kText = R"({"id":1,"data":{"name":"text","deep":{"end":null}},"from":"x"})";

TEST_F(TextReleaseTest, UnchangedTextIsReleasedWhole) {
  const std::uint32_t before = Living();
  JsonRef<JsonObject> root = Read(kText);
  EXPECT_EQ(Living() - before, 7u);
  root.Reset(nullptr);
  EXPECT_EQ(Living(), before);
}

TEST_F(TextReleaseTest, TextsOfEveryShapeAreReleasedWhole) {
  const std::string manyKeys = R"({"a":0,"b":0,"c":0,"d":0,"e":0,"f":0,"g":0,"h":0,"i":{"j":0}})";
  const std::string manyKeysBelow = "{\"x\":" + manyKeys + "}";
  const std::string longString = R"({"a":")" + std::string(5'000, 'x') + R"(","b":{"c":1}})";
  const std::string manySlabs = R"({"a":")" + std::string(900, 'x') + R"(","b":")" +
                                std::string(900, 'x') + R"(","c":{"d":{"e":{"f":{"g":1}}}}})";
  for (const std::string& text :
       {std::string(R"({"a":{}})"), std::string(R"({"a":[],"b":[1,{"c":[2]}]})"), manyKeys,
        manyKeysBelow, longString, manySlabs, std::string(R"({"a":1,"A":{"b":2},"a":"three"})")}) {
    const std::uint32_t before = Living();
    for (int i = 0; i < 3; ++i) Read(text.c_str());
    EXPECT_EQ(Living(), before) << text;
  }
}

TEST_F(TextReleaseTest, TextWithReplacedMembersMayBeReleasedBeforeTheNextText) {
  JsonRef<Json> first;
  JsonRef<Json> second;
  {
    ValueMemory memory;
    ParseResult result;
    first.Reset(Parse(result, R"({"a":1,"a":2})", memory));
    second.Reset(Parse(result, "7", memory));
  }
  first.Reset(nullptr);
  EXPECT_EQ(static_cast<JsonNumber&>(*second).IntValue(), 7);
}

TEST_F(TextReleaseTest, HeldValueStaysAtAnyDepth) {
  JsonRef<JsonObject> root = Read(kText);
  Json* end = Object(Object(*root, "data"), "deep").Find("end");
  end->AddRef();
  root.Reset(nullptr);
  EXPECT_EQ(end->Type(), JsonType::Null);
  EXPECT_EQ(end->RefCount(), 1);
  end->Release();
}

TEST_F(TextReleaseTest, HeldObjectStaysWithAllThatItHolds) {
  JsonRef<JsonObject> root = Read(kText);
  JsonObject* data = &Object(*root, "data");
  data->AddRef();
  root.Reset(nullptr);
  EXPECT_EQ(static_cast<JsonString*>(data->Find("name"))->Text(), "text");
  data->Release();
}

TEST_F(TextReleaseTest, ValueAddedLaterIsReleasedWithTheText) {
  JsonRef<JsonObject> root = Read(kText);
  const JsonRef<JsonNumber> number(JsonNumber::FromInt(7));
  Object(Object(*root, "data"), "deep").Set("later", number.Get());
  EXPECT_EQ(number->RefCount(), 2);
  root.Reset(nullptr);
  EXPECT_EQ(number->RefCount(), 1);
}

TEST_F(TextReleaseTest, ValueThatMovedToAnotherTreeStaysThere) {
  const JsonRef<JsonObject> other(new JsonObject);
  JsonRef<JsonObject> root = Read(kText);
  JsonObject& data = Object(*root, "data");
  other->Set("kept", &Object(data, "deep"));
  const JsonRef<JsonNumber> number(JsonNumber::FromInt(7));
  data.Set("deep", number.Get());  // so that the other tree alone holds the old one
  root.Reset(nullptr);
  EXPECT_NE(Object(*other, "kept").Find("end"), nullptr);
}

TEST_F(TextReleaseTest, MembersThatWereChangedDirectlyAreReleased) {
  JsonRef<JsonObject> root = Read(kText);
  root->Members().Insert("later", JsonNumber::FromInt(7));  // with the creator's reference
  root.Reset(nullptr);
}

TEST_F(TextReleaseTest, TextBehindALivingOneIsReleasedAlone) {
  JsonRef<JsonObject> first = Read(kText);
  JsonRef<JsonObject> second = Read(R"({"second":{"of":"two"}})");
  first.Reset(nullptr);
  EXPECT_EQ(static_cast<JsonString*>(Object(*second, "second").Find("of"))->Text(), "two");
  JsonRef<JsonObject> third = Read(kText);
  second.Reset(nullptr);
  EXPECT_EQ(static_cast<JsonString*>(third->Find("from"))->Text(), "x");
}

TEST_F(TextReleaseTest, TextMayOutliveItsMemory) {
  JsonRef<JsonObject> root;
  {
    ValueMemory memory;
    ParseResult result;
    root.Reset(static_cast<JsonObject*>(Parse(result, kText, memory)));
  }
  EXPECT_EQ(static_cast<JsonString*>(root->Find("from"))->Text(), "x");
}

TEST_F(TextReleaseTest, AnyThreadMayReleaseTheText) {
  for (int round = 0; round < 100; ++round) {
    JsonRef<JsonObject> root = Read(kText);
    std::thread([&] { root.Reset(nullptr); }).join();
  }
}

TEST_F(TextReleaseTest, TextThatFailedLeavesNothingBehind) {
  for (const char* text : {R"({"a":{"b":1)", R"({"a":{"b":1},)", R"({"a":{"b":)"}) {
    ParseResult result;
    EXPECT_EQ(Parse(result, text, m_memory), nullptr) << text;
  }
}

// Thread 1 releases the root. After that, only thread 2 holds a child of it. Meanwhile
// thread 2 adds a member to that child and releases it. In each round both wait for each
// other, and one of them waits a little longer, so that their steps occur in many orders.
// The test checks the number's reference count, because the counters of all values are
// exact for one thread only.
TEST(TextOfTwoThreads, ThreadsMayReleaseAndChangePartsOfOneText) {
  constexpr int kRounds = 10'000;
  const JsonRef<JsonNumber> number(JsonNumber::FromInt(7));
  std::atomic<int> arrived{0};
  std::atomic<JsonObject*> child{nullptr};
  const auto meet = [&](int round, int delay) {
    ++arrived;
    while (arrived < 2 * round) std::this_thread::yield();
    for (int i = 0; i < delay; ++i) static_cast<void>(arrived.load());
  };
  ValueMemory memory;
  std::thread other([&] {
    for (int round = 1; round <= kRounds; ++round) {
      meet(2 * round - 1, 0);
      JsonObject* const mine = child;
      meet(2 * round, round % 64);
      mine->Set("later", number.Get());
      mine->Release();
    }
  });
  for (int round = 1; round <= kRounds; ++round) {
    ParseResult result;
    const auto root = static_cast<JsonObject*>(Parse(result, R"({"a":{"b":1}})", memory));
    child = static_cast<JsonObject*>(root->Find("a"));
    child.load()->AddRef();
    meet(2 * round - 1, 0);
    meet(2 * round, round / 64 % 64);
    root->Release();
  }
  other.join();
  EXPECT_EQ(number->RefCount(), 1);
}

}  // namespace
}  // namespace Vask
