#include "json/KeyFolding.h"

#include <gtest/gtest.h>

#include <string>

namespace Vask {
namespace {

using Letters = KeyFolding::Letters;

// The text as `folding` makes it, up to the first character that becomes zero.
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

}  // namespace
}  // namespace Vask
