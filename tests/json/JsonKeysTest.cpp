#include <string>

#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "tests/json/BalancedTest.h"

namespace Vask {
namespace {

using JsonKeysTest = Tests::BalancedTest;

// Parses an object with one key and returns the stored key.
std::string OnlyKey(const std::string& text) {
  ParseResult result;
  const JsonRef<JsonObject> root(static_cast<JsonObject*>(Parse(result, text.c_str())));
  EXPECT_TRUE(root) << text << ": " << result.errorMessage;
  std::string keys;
  const auto collect = [](const char* key, Json* const*, void* context) {
    *static_cast<std::string*>(context) += key;
    return true;
  };
  if (root) root->Members().ForEach("", collect, &keys);
  return keys;
}

// The parser reads sixteen characters of a key at a time, unless a character is special
// or the text ends soon. The result must be the same.
TEST_F(JsonKeysTest, EveryCharacterIsReadAnywhereInAKey) {
  for (unsigned c = 1; c < 256; ++c) {
    if (c == '"' || c == '\\') continue;
    const std::string character(1, static_cast<char>(c));
    const std::string folded(1, static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c));
    for (const std::size_t length : {1u, 2u, 15u, 16u, 17u, 33u}) {
      for (std::size_t at = 0; at < length; ++at) {
        const std::string before(at, 'K');
        const std::string behind(length - at - 1, 'z');
        const std::string expected = std::string(at, 'k') + folded + behind;
        for (const char* rest : {":1}", ":\"so that the text does not end soon\"}"}) {
          const std::string text = "{\"" + before + character + behind + "\"" + rest;
          ASSERT_EQ(OnlyKey(text), expected) << text;
        }
      }
    }
  }
}

TEST_F(JsonKeysTest, EscapesAreReadAnywhereInAKey) {
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string before(length, 'k');
    EXPECT_EQ(OnlyKey("{\"" + before + R"(\u0041\n\"Z":"and some more text"})"), before + "a\n\"z");
  }
}

TEST_F(JsonKeysTest, KeysThatShareTheirBeginningStayApart) {
  const std::string longest = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (std::size_t first = 1; first <= longest.size(); ++first) {
    for (std::size_t second = 1; second <= longest.size(); ++second) {
      const std::string one = longest.substr(0, first);
      const std::string other = longest.substr(0, second) + "!";
      ParseResult result;
      const JsonRef<JsonObject> root(static_cast<JsonObject*>(
          Parse(result, ("{\"" + one + "\":1,\"" + other + "\":[]}").c_str())));
      ASSERT_TRUE(root);
      EXPECT_EQ(root->Find(one.c_str())->Type(), JsonType::Number) << one;
      EXPECT_EQ(root->Find(other.c_str())->Type(), JsonType::Array) << other;
      EXPECT_EQ(root->Find((one + "?").c_str()), nullptr) << one;
    }
  }
}

}  // namespace
}  // namespace Vask
