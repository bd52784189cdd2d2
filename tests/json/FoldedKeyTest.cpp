#include "json/FoldedKey.h"

#include <gtest/gtest.h>

#include <string>

#include "json/StrDict3.h"

namespace Vask {
namespace {

using Dictionary = StrDict3<int>;

TEST(FoldedKey, FindsWhatItsTextFinds) {
  const std::string longest = "TheQuickBrownFoxJumpsOverTheLazyDog";
  for (std::size_t stored = 1; stored <= longest.size(); ++stored) {
    Dictionary dictionary;
    dictionary.Insert(longest.substr(0, stored).c_str(), 1);
    dictionary.Insert((longest.substr(0, stored / 2) + "!").c_str(), 2);
    for (std::size_t asked = 0; asked <= longest.size(); ++asked) {
      for (const char* end : {"", "!", "x"}) {
        const std::string key = longest.substr(0, asked) + end;
        EXPECT_EQ(dictionary.FindValue(FoldedKey(key.c_str())), dictionary.FindValue(key.c_str()))
            << key << " among " << longest.substr(0, stored);
      }
    }
  }
}

TEST(FoldedKey, FollowsTheFoldingOfTheDictionary) {
  struct Row {
    const char* name;
    bool caseSensitive;
    bool foldToUpper;
    bool found;
  };
  for (const Row& row :
       {Row{"ToLower", false, false, true}, Row{"ToUpper", false, true, true},
        Row{"Kept", true, false, false}, Row{"KeptWhateverTheOther", true, true, false}}) {
    Dictionary dictionary(row.caseSensitive, row.foldToUpper);
    dictionary.Insert("Name", 1);
    EXPECT_EQ(dictionary.FindValue(FoldedKey("nAME")) != nullptr, row.found) << row.name;
    EXPECT_NE(dictionary.FindValue(FoldedKey("Name")), nullptr) << row.name;
  }
}

TEST(FoldedKey, NoKeyIsNeverFound) {
  Dictionary dictionary;
  dictionary.Insert("a", 1);
  EXPECT_EQ(dictionary.FindValue(FoldedKey("")), nullptr);
  EXPECT_EQ(dictionary.FindValue(FoldedKey(nullptr)), nullptr);
}

TEST(FoldedKey, KeepsTheSpellingOfItsText) {
  EXPECT_STREQ(FoldedKey("messageType").Text(), "messageType");
}

}  // namespace
}  // namespace Vask
