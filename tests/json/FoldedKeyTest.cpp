#include "json/FoldedKey.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "json/StrDict3.h"

namespace Vask {
namespace {

TEST(Ascii, FoldsLettersAndNothingElse) {
  for (int c = 0; c < 256; ++c) {
    const char expected = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    EXPECT_EQ(FoldAscii(static_cast<char>(c)), expected) << c;
    EXPECT_EQ(IsDigit(static_cast<char>(c)), c >= '0' && c <= '9') << c;
  }
}

TEST(Ascii, TextsOfOneLengthAreComparedWithoutTheCaseOfLetters) {
  EXPECT_TRUE(EqualsIgnoringCase("", ""));
  EXPECT_TRUE(EqualsIgnoringCase("SNMPupdate", "snmpUPDATE"));
  EXPECT_FALSE(EqualsIgnoringCase("a", "ab"));
  EXPECT_FALSE(EqualsIgnoringCase("ab", "a"));
  EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
  EXPECT_FALSE(EqualsIgnoringCase("\xC4", "\xE4"));
  const std::string_view longer = "SNMPupdate.";
  EXPECT_TRUE(EqualsIgnoringCase(longer.substr(0, 10), "snmpupdate")) << "what follows is no part";
}

constexpr std::string_view kText = "0123456789abcdef";

KeyPiece Piece(std::string_view characters) {
  KeyPiece piece;
  for (const char c : characters) piece.Add(static_cast<signed char>(c));
  return piece;
}

void ExpectIs(const KeyPiece& found, std::string_view characters) {
  const KeyPiece expected = Piece(characters);
  EXPECT_EQ(found.low, expected.low) << characters;
  EXPECT_EQ(found.high, expected.high) << characters;
  EXPECT_EQ(found.length, characters.size()) << characters;
}

TEST(KeyPiece, IsDividedAnywhere) {
  for (std::size_t length = 0; length <= kText.size(); ++length) {
    const std::string_view text = kText.substr(0, length);
    for (std::size_t at = 0; at <= length; ++at) {
      ExpectIs(Piece(text).CutTo(at), text.substr(0, at));
      ExpectIs(Piece(text).Behind(at), text.substr(at));
    }
  }
}

TEST(KeyPiece, CommonLengthEndsAtTheFirstDifference) {
  for (std::size_t at = 0; at < kText.size(); ++at) {
    std::string other(kText);
    other[at] = '\x80';
    EXPECT_EQ(Piece(kText).CommonLength(Piece(other)), at);
    EXPECT_EQ(Piece(other).CommonLength(Piece(kText)), at);
    EXPECT_EQ(Piece(kText).CommonLength(Piece(kText.substr(0, at))), at);
  }
  EXPECT_EQ(Piece(kText).CommonLength(Piece(kText)), kText.size());
}

TEST(KeyPiece, IsCopiedWithZerosBehindIt) {
  for (std::size_t length = 0; length <= kText.size(); ++length) {
    char out[KeyPiece::kMaxLength];
    Piece(kText.substr(0, length)).CopyTo(out);
    EXPECT_EQ(std::string(out, sizeof out),
              std::string(kText.substr(0, length)) + std::string(16 - length, '\0'));
  }
}

TEST(KeyPiece, CharactersAreSigned) {
  EXPECT_EQ(Piece("\x80z").First(), -128);
  EXPECT_EQ(Piece("z\x80").First(), 'z');
}

using Letters = KeyFolding::Letters;

// Returns the folded text, up to the first character that becomes zero.
std::string Folded(const KeyFolding& folding, const char* text) {
  std::string folded;
  for (; folding.Fold(*text) != 0; ++text) folded += static_cast<char>(folding.Fold(*text));
  return folded;
}

TEST(KeyFolding, ChangesAsciiLettersAndNothingElse) {
  struct Row {
    const char* name;
    Letters letters;
    const char* folded;
  };
  for (const Row& row : {
           Row{"Kept", Letters::Kept, "@AZ[`az{ 09\x7F\xC4\xE4"},
           Row{"ToLower", Letters::ToLower, "@az[`az{ 09\x7F\xC4\xE4"},
           Row{"ToUpper", Letters::ToUpper, "@AZ[`AZ{ 09\x7F\xC4\xE4"},
       }) {
    EXPECT_EQ(Folded(KeyFolding(row.letters), "@AZ[`az{ 09\x7F\xC4\xE4"), row.folded) << row.name;
  }
}

TEST(KeyFolding, BytesBeyondAsciiAreNegative) {
  const KeyFolding folding(Letters::ToLower);
  EXPECT_EQ(folding.Fold('\x7F'), 127);
  EXPECT_EQ(folding.Fold('\x80'), -128);
  EXPECT_EQ(folding.Fold('\xFF'), -1);
}

TEST(KeyFolding, KeyEndsAtAnyOfTheGivenEnds) {
  const KeyFolding folding(Letters::ToUpper, "\"=");
  EXPECT_EQ(Folded(folding, "key\"rest"), "KEY");
  EXPECT_EQ(Folded(folding, "key=rest"), "KEY");
  EXPECT_EQ(Folded(folding, "key"), "KEY");
}

TEST(KeyFolding, CaseSensitiveDictionariesKeepTheirLetters) {
  struct Row {
    bool caseSensitive;
    bool foldToUpper;
    const char* folded;
  };
  for (const Row& row : {Row{false, false, "ab"}, Row{false, true, "AB"}, Row{true, false, "aB"},
                         Row{true, true, "aB"}}) {
    EXPECT_EQ(Folded(KeyFolding::For(row.caseSensitive, row.foldToUpper), "aB"), row.folded)
        << row.caseSensitive << row.foldToUpper;
  }
}

using Dictionary = StrDict3<int>;

TEST(FoldedKey, FindsTheSameAsItsText) {
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

TEST(FoldedKey, EmptyKeyIsNeverFound) {
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
