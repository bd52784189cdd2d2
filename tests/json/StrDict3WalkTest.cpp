#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "json/StrDict3.h"

namespace Vask {
namespace {

using Dictionary = StrDict3<int>;
using Keys = std::vector<std::string>;

bool CollectKey(const char* key, const int*, void* context) {
  static_cast<Keys*>(context)->emplace_back(key);
  return true;
}

Keys KeysOf(const Dictionary& dictionary, const char* prefix = "") {
  Keys keys;
  EXPECT_TRUE(dictionary.ForEach(prefix, &CollectKey, &keys));
  return keys;
}

TEST(StrDict3Walk, KeysComeInAscendingOrderAKeyBeforeItsExtensions) {
  Dictionary dictionary;
  for (const char* key : {"b", "a", "ab"}) dictionary.Insert(key, 0);
  EXPECT_EQ(KeysOf(dictionary), (Keys{"a", "ab", "b"}));
}

TEST(StrDict3Walk, BytesOver0x7FComeBeforeAscii) {
  Dictionary dictionary;
  for (const char* key : {"\x01", "~", "\x7F", "\x80", "\xFF", "a"}) dictionary.Insert(key, 0);
  EXPECT_EQ(KeysOf(dictionary), (Keys{"\x80", "\xFF", "\x01", "a", "~", "\x7F"}));
}

TEST(StrDict3Walk, PrefixIsPutBeforeEachKey) {
  Dictionary dictionary;
  for (const char* key : {"x", "y"}) dictionary.Insert(key, 0);
  EXPECT_EQ(KeysOf(dictionary, "Table."), (Keys{"Table.x", "Table.y"}));
}

TEST(StrDict3Walk, EmptyDictionaryIsWalkedWithoutACall) {
  EXPECT_EQ(KeysOf(Dictionary()), Keys{});
  EXPECT_EQ(KeysOf(Dictionary(), std::string(128, 'p').c_str()), Keys{});
}

// A run has at most sixteen characters, and a key before it was longer.
TEST(StrDict3Walk, KeyOfWholeRunsEndsWithItsLastRun) {
  const Keys keys{std::string(100, 'a'), std::string(16, 'b'), std::string(32, 'c')};
  Dictionary dictionary;
  for (const std::string& key : keys) dictionary.Insert(key.c_str(), 0);
  EXPECT_EQ(KeysOf(dictionary), keys);
}

TEST(StrDict3Walk, CallbackStopsTheWalk) {
  Dictionary dictionary;
  for (const char* key : {"a", "b", "c"}) dictionary.Insert(key, 0);
  Keys keys;
  const auto stopAtB = [](const char* key, const int* value, void* context) {
    return CollectKey(key, value, context) && std::string(key) != "b";
  };
  EXPECT_FALSE(dictionary.ForEach("", stopAtB, &keys));
  EXPECT_EQ(keys, (Keys{"a", "b"}));
}

TEST(StrDict3Walk, CallbackStopsTheWalkAtAKeyOfManyCharacters) {
  Dictionary dictionary;
  for (const char* key : {"streams", "streamsok", "zeta"}) dictionary.Insert(key, 0);
  for (const char* last : {"streams", "streamsok", "zeta"}) {
    struct Stop {
      std::string at;
      std::string seen;
    } stop{last, ""};
    const auto stopAtIt = [](const char* key, const int*, void* context) {
      auto& given = *static_cast<Stop*>(context);
      given.seen = key;
      return given.at != key;
    };
    EXPECT_FALSE(dictionary.ForEach("", stopAtIt, &stop)) << last;
    EXPECT_EQ(stop.seen, last);
  }
}

TEST(StrDict3Walk, StoppedWalkDoesNotReachAKeyThatIsTooLong) {
  Dictionary dictionary;
  dictionary.Insert("a", 0);
  dictionary.Insert(("a" + std::string(200, 'k')).c_str(), 0);
  const auto stop = [](const char*, const int*, void*) { return false; };
  EXPECT_FALSE(dictionary.ForEach("", stop, nullptr));
}

TEST(StrDict3Walk, CallbackMayChangeTheValue) {
  Dictionary dictionary;
  dictionary.Insert("a", 1);
  const auto increment = [](const char*, int* value, void*) {
    ++*value;
    return true;
  };
  EXPECT_TRUE(dictionary.ForEach("", increment, nullptr));
  EXPECT_EQ(*dictionary.FindValue("a"), 2);
}

// Random keys of few letters share their beginnings and branch off at many places.
TEST(StrDict3Walk, AgreesWithASortedMapOnRandomKeys) {
  std::mt19937 random(20180514);
  for (int round = 0; round < 50; ++round) {
    Dictionary dictionary(true);
    std::map<std::string, int> model;
    for (int i = 0; i < 60; ++i) {
      std::string key(1 + random() % 6, 'a');
      for (char& c : key) c = static_cast<char>('a' + random() % 3);
      dictionary.Insert(key.c_str(), i);
      model[key] = i;
    }
    Keys expected;
    for (const auto& [key, value] : model) expected.push_back(key);
    ASSERT_EQ(KeysOf(dictionary), expected) << "round " << round;
    for (const auto& [key, value] : model) {
      ASSERT_NE(dictionary.FindValue(key.c_str()), nullptr) << key;
      ASSERT_EQ(*dictionary.FindValue(key.c_str()), value) << key;
    }
    for (const auto& [key, value] : model) {
      int taken = -1;
      ASSERT_TRUE(dictionary.TakeFirst(taken));
      ASSERT_EQ(taken, value) << key;
    }
    int none = -1;
    EXPECT_FALSE(dictionary.TakeFirst(none));
    EXPECT_EQ(none, -1);
  }
}

TEST(StrDict3Walk, LongestKeyAndPrefixTogetherAreAssembled) {
  Dictionary dictionary;
  dictionary.Insert(std::string(Dictionary::kMaxVisitedKeyLength, 'k').c_str(), 0);
  EXPECT_EQ(KeysOf(dictionary), Keys{std::string(128, 'k')});
  Dictionary shorter;
  shorter.Insert(std::string(100, 'k').c_str(), 0);
  EXPECT_EQ(KeysOf(shorter, std::string(28, 'p').c_str()),
            Keys{std::string(28, 'p') + std::string(100, 'k')});
}

constexpr const char* kTooLong =
    "Vask::StrDict3: a key of more than 128 characters cannot be enumerated";

TEST(StrDict3WalkDeathTest, KeyOf129CharactersEndsTheProcess) {
  Dictionary dictionary;
  dictionary.Insert(std::string(129, 'k').c_str(), 0);
  EXPECT_DEATH(KeysOf(dictionary), kTooLong);
}

// A host program may have given its standard error a buffer.
TEST(StrDict3WalkDeathTest, ReasonIsPrintedThroughABuffer) {
  Dictionary dictionary;
  dictionary.Insert(std::string(129, 'k').c_str(), 0);
  const auto walkWithBuffer = [&] {
    static_cast<void>(std::setvbuf(stderr, nullptr, _IOFBF, 4096));
    KeysOf(dictionary);
  };
  EXPECT_DEATH(walkWithBuffer(), kTooLong);
}

// Each key leaves a sibling behind at its own depth: "b", "ab", "aab" and so on.
void InsertComb(Dictionary& dictionary, std::size_t longest) {
  for (std::size_t length = 1; length <= longest; ++length) {
    dictionary.Insert((std::string(length - 1, 'a') + "b").c_str(), 0);
  }
}

TEST(StrDict3Walk, SiblingsAtEveryDepthAreVisited) {
  Dictionary dictionary;
  InsertComb(dictionary, 128);
  EXPECT_EQ(KeysOf(dictionary).size(), 128u);
}

TEST(StrDict3WalkDeathTest, SiblingsBelowTheLongestKeyEndTheProcess) {
  for (const std::size_t longest : {std::size_t{129}, std::size_t{130}, std::size_t{131}}) {
    Dictionary dictionary;
    InsertComb(dictionary, longest);
    EXPECT_DEATH(KeysOf(dictionary), kTooLong) << longest;
  }
}

// A walk over a const dictionary cannot change it.
template <class D>
concept WalkMayWrite = requires(D& dictionary, bool (*callback)(const char*, int*, void*)) {
  dictionary.ForEach("", callback, nullptr);
};
static_assert(WalkMayWrite<Dictionary>);
static_assert(!WalkMayWrite<const Dictionary>);

TEST(StrDict3WalkDeathTest, PrefixCountsToo) {
  Dictionary dictionary;
  dictionary.Insert(std::string(100, 'k').c_str(), 0);
  EXPECT_DEATH(KeysOf(dictionary, std::string(29, 'p').c_str()), kTooLong);
  EXPECT_DEATH(KeysOf(dictionary, std::string(129, 'p').c_str()), kTooLong);
  EXPECT_DEATH(KeysOf(Dictionary(), std::string(129, 'p').c_str()), kTooLong);
}

}  // namespace
}  // namespace Vask
