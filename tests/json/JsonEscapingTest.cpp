#include "json/JsonEscaping.h"

#include <gtest/gtest.h>

namespace Vask {
namespace {

std::string Escaped(std::string_view text) {
  std::string out = "before:";
  AppendEscaped(out, text);
  EXPECT_EQ(out.substr(0, 7), "before:");
  return out.substr(7);
}

TEST(JsonEscaping, WritesEachKindOfByteAsItsRuleSays) {
  struct Row {
    const char* name;
    std::string_view text;
    const char* escaped;
  };
  for (const Row& row : {
           Row{"Empty", "", ""},
           Row{"Plain", "Main 4.2 ~", "Main 4.2 ~"},
           Row{"Delete", "a\x7F", "a\x7F"},
           Row{"Backspace", "\b", "\\b"},
           Row{"Tab", "\t", "\\t"},
           Row{"LineFeed", "\n", "\\n"},
           Row{"FormFeed", "\f", "\\f"},
           Row{"CarriageReturn", "\r", "\\r"},
           Row{"Quote", "\"", "\\\""},
           Row{"Slash", "a/b", "a\\/b"},
           Row{"Backslash", "a\\b", "a\\\\b"},
           Row{"ControlCharacterIsDropped", "a\x01z", "az"},
           Row{"OtherControlCharactersAreDropped", "\x02\x07\x0B\x0E\x1F", ""},
           Row{"TwoBytes", "caf\xC3\xA9!", "caf\\u00e9!"},
           Row{"TwoBytesLast", "\xDF\xBF", "\\u07ff"},
           Row{"ThreeBytes", "\xE2\x82\xAC", "\\u20ac"},
           Row{"ThreeBytesLast", "\xEF\xBF\xBF", "\\uffff"},
           Row{"SequenceOfZero", "\xC0\x80", "\\u0000"},
           Row{"FourBytesAreDropped", "a\xF0\x9F\x98\x80z", "az"},
           Row{"StrayContinuationIsDropped", "a\x80\xBFz", "az"},
           Row{"TwoBytesCutByTheEnd", "a\xC3", "a"},
           Row{"ThreeBytesCutByTheEnd", "a\xE2", "a"},
           Row{"ThreeBytesCutAfterTheSecond", "a\xE2\x82", "a"},
           Row{"CutSequenceLosesOnlyItsFirstByte", "\xE2z", "z"},
           Row{"NoContinuationGivesItsLowSixBits",
               "\xC3"
               "A.",
               "\\u00c1."},
           Row{"NoContinuationsInThreeBytes",
               "\xE2"
               "AB.",
               "\\u2042."},
           Row{"LeadByteAsContinuation", "\xC3\xC3\xA9", "\\u00c3"},
           Row{"EndsAtNul", std::string_view("a\0b", 3), "a"},
           Row{"NulCutsASequence", std::string_view("a\xC3\0\xA9", 4), "a"},
           Row{"Mixed", "one\ttwo/\"\xC3\xA9\"\x03.", "one\\ttwo\\/\\\"\\u00e9\\\"."},
       }) {
    EXPECT_EQ(Escaped(row.text), row.escaped) << row.name << ": " << row.text;
  }
}

}  // namespace
}  // namespace Vask
