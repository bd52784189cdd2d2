#include "simulator/Text.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace Simulator {
namespace {

TEST(TextTest, WordsAreRemovedFromTheFront) {
  std::string_view rest = "  set\tName  two words \r";
  EXPECT_EQ(TakeWord(rest), "set");
  EXPECT_EQ(TakeWord(rest), "Name");
  EXPECT_EQ(rest, "two words");
}

TEST(TextTest, NoWordIsLeftInBlanks) {
  std::string_view rest = " \t\r ";
  EXPECT_EQ(TakeWord(rest), "");
  EXPECT_EQ(rest, "");
}

TEST(TextTest, CaseDoesNotMatterForAsciiLettersOnly) {
  EXPECT_TRUE(EqualsIgnoringCase("SNMPupdate", "snmpUPDATE"));
  EXPECT_FALSE(EqualsIgnoringCase("a", "ab"));
  EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
}

struct NumberRow {
  const char* name;
  const char* text;
  bool isWhole;
  std::int32_t whole;
  bool isCount;
  std::uint32_t count;
};
void PrintTo(const NumberRow& row, std::ostream* out) {
  *out << row.name << ": " << row.text;
}

class NumberTest : public testing::TestWithParam<NumberRow> {};

TEST_P(NumberTest, IsReadWholeOrNotAtAll) {
  std::int32_t whole = 0;
  std::uint32_t count = 0;
  EXPECT_EQ(ParseWhole(GetParam().text, whole), GetParam().isWhole);
  EXPECT_EQ(ParseCount(GetParam().text, count), GetParam().isCount);
  if (GetParam().isWhole) {
    EXPECT_EQ(whole, GetParam().whole);
  }
  if (GetParam().isCount) {
    EXPECT_EQ(count, GetParam().count);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, NumberTest,
    testing::Values(NumberRow{"Zero", "0", true, 0, true, 0},
                    NumberRow{"Negative", "-5", true, -5, false, 0},
                    NumberRow{"LargestWhole", "2147483647", true, 2147483647, true, 2147483647},
                    NumberRow{"OneMore", "2147483648", false, 0, true, 2147483648u},
                    NumberRow{"SmallestWhole", "-2147483648", true, -2147483647 - 1, false, 0},
                    NumberRow{"LargestCount", "4294967295", false, 0, true, 4294967295u},
                    NumberRow{"TooLarge", "4294967296", false, 0, false, 0},
                    NumberRow{"Empty", "", false, 0, false, 0},
                    NumberRow{"Trailing", "12x", false, 0, false, 0},
                    NumberRow{"Plus", "+1", false, 0, false, 0},
                    NumberRow{"Fraction", "1.5", false, 0, false, 0}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TextTest, QuotedTextIsAJsonString) {
  EXPECT_EQ(Quoted("a\"b\\c\n\x01\xC3\xA9/"), "\"a\\\"b\\\\c\\u000a\\u0001\xC3\xA9/\"");
}

struct JsonRow {
  const char* name;
  const char* text;
  bool isOne;
};
void PrintTo(const JsonRow& row, std::ostream* out) {
  *out << row.name << ": " << row.text;
}

class JsonValueTest : public testing::TestWithParam<JsonRow> {};

TEST_P(JsonValueTest, IsOneValueOrNot) {
  EXPECT_EQ(IsOneJsonValue(GetParam().text), GetParam().isOne);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, JsonValueTest,
    testing::Values(JsonRow{"Object", R"({"a":[1,2,{}]})", true}, JsonRow{"Blanks", " {} ", true},
                    JsonRow{"Number", "-3", true}, JsonRow{"String", R"("a,]b")", true},
                    JsonRow{"Array", "[1,2]", true}, JsonRow{"Empty", "", false},
                    JsonRow{"TwoValues", "1,2", false}, JsonRow{"Trailing", "{} x", false},
                    JsonRow{"Unclosed", "{", false}, JsonRow{"ClosesTooMuch", "1],[2", false},
                    JsonRow{"Word", "hello", false}, JsonRow{"LoneBracket", "]", false}),
    [](const auto& row) { return std::string(row.param.name); });

struct EscapeRow {
  const char* name;
  std::string text;
  std::string bytes;
};
void PrintTo(const EscapeRow& row, std::ostream* out) {
  *out << row.name << ": " << row.text;
}

class EscapeTest : public testing::TestWithParam<EscapeRow> {};

TEST_P(EscapeTest, BecomesItsBytes) {
  std::string bytes;
  std::string error;
  EXPECT_TRUE(Unescape(GetParam().text, bytes, error)) << error;
  EXPECT_EQ(bytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Escapes, EscapeTest,
    testing::Values(EscapeRow{"Plain", "7#{\"a\":1}", "7#{\"a\":1}"},
                    EscapeRow{"Letters", R"(\n\r\t\0\\)", std::string("\n\r\t\0\\", 5)},
                    EscapeRow{"Hexadecimal", R"(\x00\x7f\xFF)", std::string("\0\x7f\xff", 3)},
                    EscapeRow{"DigitAfterHexadecimal", R"(\x411)", "A1"}),
    [](const auto& row) { return std::string(row.param.name); });

class BadEscapeTest : public testing::TestWithParam<const char*> {};

TEST_P(BadEscapeTest, IsExplained) {
  std::string bytes;
  std::string error;
  EXPECT_FALSE(Unescape(GetParam(), bytes, error)) << GetParam();
  EXPECT_EQ(error,
            "after a backslash there must be n, r, t, 0, \\ or x and two hexadecimal digits");
}

INSTANTIATE_TEST_SUITE_P(Escapes, BadEscapeTest,
                         testing::Values("\\", "\\q", "\\x", "\\x4", "\\xg0", "\\x0g", "\\x-1"));

TEST(TextTest, EscapedBytesReadBackAsTheSame) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  std::string bytes;
  std::string error;
  EXPECT_TRUE(Unescape(Escaped(all), bytes, error)) << error;
  EXPECT_EQ(bytes, all);
  EXPECT_EQ(Escaped("a\\\n\xFF"), "a\\\\\\x0a\\xff");
}

}  // namespace
}  // namespace Simulator
