#include "json/JsonParser.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "tests/json/BalancedTest.h"

namespace Vask {
namespace {

using JsonParserTest = Tests::BalancedTest;

std::string Dump(const Json& value);

std::string DumpText(std::string_view text) {
  std::string dump = "'";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F) {
      dump += c;
    } else {
      constexpr const char* kDigits = "0123456789ABCDEF";
      dump += {'<', kDigits[byte >> 4], kDigits[byte & 15], '>'};
    }
  }
  return dump + "'";
}

std::string DumpNumber(const JsonNumber& number) {
  const std::string text(number.Text());
  const std::string integer = std::to_string(number.IntValue());
  char real[40];
  std::snprintf(real, sizeof real, "%.17g", number.DoubleValue());
  if (!number.IsInteger()) return "real " + text + " " + real + " " + integer;
  EXPECT_EQ(number.DoubleValue(), static_cast<double>(number.IntValue()));
  return "int " + text + " " + integer;
}

std::string DumpObject(const JsonObject& object) {
  std::string dump;
  const auto add = [](const char* key, Json* const* value, void* context) {
    auto& text = *static_cast<std::string*>(context);
    text += (text.empty() ? "" : ", ") + DumpText(key) + ": " + Dump(**value);
    return true;
  };
  object.Members().ForEach("", add, &dump);
  return "{" + dump + "}";
}

std::string DumpArray(const JsonArray& array) {
  std::string dump;
  for (const Json* element : array) dump += (dump.empty() ? "" : ", ") + Dump(*element);
  return "[" + dump + "]";
}

// Returns a value on one line, with all of its readings and bytes.
std::string Dump(const Json& value) {
  switch (value.Type()) {
    case JsonType::Object:
      return DumpObject(static_cast<const JsonObject&>(value));
    case JsonType::Array:
      return DumpArray(static_cast<const JsonArray&>(value));
    case JsonType::String:
      return DumpText(static_cast<const JsonString&>(value).Text());
    case JsonType::Number:
      return DumpNumber(static_cast<const JsonNumber&>(value));
    case JsonType::Bool:
      return static_cast<const JsonBool&>(value).Value() ? "true" : "false";
    case JsonType::Null:
      return "null";
  }
  return "?";
}

struct Row {
  const char* name;
  std::string text;
  std::string outcome;  // dump or quoted message, then line:column
};

std::string Outcome(const std::string& text) {
  ParseResult result{"left over", 77, 77};
  JsonRef<Json> root(Parse(result, text.c_str()));
  const std::string at = " " + std::to_string(result.line) + ":" + std::to_string(result.column);
  if (!root) return "\"" + result.errorMessage + "\"" + at;
  EXPECT_EQ(result.errorMessage, "");
  EXPECT_EQ(root->RefCount(), 1);
  return Dump(*root) + at;
}

void ExpectOutcomes(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(Outcome(row.text), row.outcome) << row.name << ": " << row.text;
  }
}

TEST_F(JsonParserTest, ReadsScalars) {
  ExpectOutcomes({
      {"True", "true", "true 1:5"},
      {"False", "false", "false 1:6"},
      {"Null", "null", "null 1:5"},
      {"Zero", "0", "int 0 0 1:2"},
      {"MinusZero", "-0", "int -0 0 1:3"},
      {"Integer", "1024", "int 1024 1024 1:5"},
      {"Negative", "-17", "int -17 -17 1:4"},
      {"LeadingZeros", "0012", "int 0012 12 1:5"},
      {"ExponentAloneStaysIntegral", "1e3", "int 1e3 1 1:4"},
      {"CapitalExponent", "2E+10", "int 2E+10 2 1:6"},
      {"ExponentWithoutDigits", "1e", "int 1e 1 1:3"},
      {"ExponentWithSignOnly", "1e-", "int 1e- 1 1:4"},
      {"Real", "2.5", "real 2.5 2.5 2 1:4"},
      {"RealWithoutFraction", "2.0", "real 2.0 2 2 1:4"},
      {"PointWithoutDigits", "1.", "real 1. 1 1 1:3"},
      {"NegativeReal", "-2.75", "real -2.75 -2.75 -2 1:6"},
      {"RealWithExponent", "1.5e3", "real 1.5e3 1500 1500 1:6"},
      {"IntegerSaturates", "9223372036854775808",
       "int 9223372036854775808 9223372036854775807 1:20"},
      {"NegativeSaturates", "-9223372036854775809",
       "int -9223372036854775809 -9223372036854775808 1:21"},
      {"RealTooLargeForAnInteger", "1.0e30",
       "real 1.0e30 1e+30"
       " 9223372036854775807 1:7"},
      {"SecondPointEndsTheNumber", "1.2.3", "real 1.2 1.2 1 1:4"},
  });
}

TEST_F(JsonParserTest, ReadsStringsWithEveryEscape) {
  ExpectOutcomes({
      {"Empty", R"("")", "'' 1:3"},
      {"Plain", R"("Main")", "'Main' 1:7"},
      {"Quote", R"("a\"b")", "'a\"b' 1:6"},
      {"Slash", R"("a\/b")", "'a/b' 1:6"},
      {"Backslash", R"("a\\b")", "'a\\b' 1:6"},
      {"Backspace", R"("\b")", "'<08>' 1:4"},
      {"FormFeed", R"("\f")", "'<0C>' 1:4"},
      {"LineFeed", R"("\n")", "'<0A>' 1:4"},
      {"CarriageReturn", R"("\r")", "'<0D>' 1:4"},
      {"Tab", R"("\t")", "'<09>' 1:4"},
      {"UnicodeNul", R"("a\u0000b")", "'ab' 1:11"},
      {"UnicodeOneByte", R"("\u0041\u007f")", "'A<7F>' 1:15"},
      {"UnicodeTwoBytesFirst", R"("\u0080")", "'<C2><80>' 1:9"},
      {"UnicodeTwoBytes", R"("\u00e9")", "'<C3><A9>' 1:9"},
      {"UnicodeTwoBytesLast", R"("\u07FF")", "'<DF><BF>' 1:9"},
      {"UnicodeThreeBytesFirst", R"("\u0800")", "'<E0><A0><80>' 1:9"},
      {"UnicodeThreeBytes", R"("\u20AC")", "'<E2><82><AC>' 1:9"},
      {"UnicodeLast", R"("\uffff")", "'<EF><BF><BF>' 1:9"},
      {"SurrogatesStaySeparate", R"("\ud83d\ude00")", "'<ED><A0><BD><ED><B8><80>' 1:15"},
      {"UnknownEscapeDropsTheBackslash", R"("\q")", "'q' 1:5"},
      {"CapitalsAreNoEscapes", R"("\N\U0041")", "'NU0041' 1:11"},
      {"RawBytesStay", "\"\x01\t\x7F\xC3\xA9\xFF\"", "'<01><09><7F><C3><A9><FF>' 1:9"},
      {"RawLineFeed", "\"a\nb\"", "'a<0A>b' 2:3"},
      {"EscapedRawLineFeed", "\"a\\\nb\"", "'a<0A>b' 2:3"},
      {"RunsBetweenEscapes", R"("one\ttwo\tthree")", "'one<09>two<09>three' 1:16"},
  });
}

TEST_F(JsonParserTest, ReadsContainers) {
  ExpectOutcomes({
      {"EmptyObject", "{}", "{} 1:3"},
      {"EmptyArray", "[]", "[] 1:3"},
      {"EmptyWithSpace", "[ { } , [ ] ]", "[{}, []] 1:14"},
      {"KeyIsFolded", "  {\"A\":1}", "{'a': int 1 1} 1:10"},
      {"MembersComeInOrder", R"({"op":1,"From":2,"fr":3})",
       "{'fr': int 3 3, 'from': int 2 2, 'op': int 1 1} 1:25"},
      {"LaterDuplicateWins", R"({"Key":1,"other":2,"kEY":[3]})",
       "{'key': [int 3 3], 'other': int 2 2} 1:30"},
      {"KeyWithEscapes", R"({"a\u0042\n\"":1})", "{'ab<0A>\"': int 1 1} 1:16"},
      {"KeyOfHighBytesComesFirst", "{\"a\":1,\"\xC3\xA9\":2}",
       "{'<C3><A9>': int 2 2, 'a': int 1 1} 1:15"},
      {"Mixed", R"([1,"x",null,true,{"a":[false]}])",
       "[int 1 1, 'x', null, true, {'a': [false]}] 1:32"},
      {"NestedTwentyDeep", std::string(20, '[') + std::string(20, ']'),
       std::string(20, '[') + std::string(20, ']') + " 1:41"},
      {"EveryKindOfSpace", " \t\v\f\r[ 1\t,\v2\f]", "[int 1 1, int 2 2] 1:15"},
      {"SpaceAroundColonsAndCommas", "{ \"a\" : 1 , \"b\" : 2 }",
       "{'a': int 1 1, 'b': int 2 2} 1:22"},
      {"LinesAreCounted", "{\n \"a\":\n\n  [1,\n2]\n}", "{'a': [int 1 1, int 2 2]} 6:2"},
      {"LiteralsEndAtTheirLastLetter", "[nullx", "\"\" 1:6"},
  });
}

// The parser reads a number of one to seven digits in another way, if the text goes on for
// eight bytes.
TEST_F(JsonParserTest, IntegersOfEveryLengthAreReadAtEveryDistanceFromTheEnd) {
  const std::string allDigits = "1234567890123456789";
  for (std::size_t length = 1; length <= allDigits.size(); ++length) {
    const std::string digits = allDigits.substr(0, length);
    for (std::size_t blanks = 0; blanks <= 9; ++blanks) {
      const std::string text = "[" + digits + std::string(blanks, ' ') + "]";
      EXPECT_EQ(Outcome(text),
                "[int " + digits + " " + digits + "] 1:" + std::to_string(text.size() + 1));
    }
  }
}

TEST_F(JsonParserTest, NumberReadsTheSameFarFromTheEndOfTheText) {
  for (const char* number : {"0", "007", "-7", "1.5", "12e3", "123E-1", "1234567", "1234567.25",
                             "12345678", "1234567e1", "0.0", "7e0"}) {
    const std::string end = " 1:" + std::to_string(std::strlen(number) + 1);
    std::string alone = Outcome(number);
    ASSERT_TRUE(alone.ends_with(end)) << alone;
    alone.resize(alone.size() - end.size());
    const std::string text = "[" + std::string(number) + ",        true]";
    EXPECT_EQ(Outcome(text), "[" + alone + ", true] 1:" + std::to_string(text.size() + 1));
  }
}

TEST_F(JsonParserTest, NulFollowsTheTextOfANumber) {
  ParseResult result;
  const JsonRef<Json> root(Parse(result, "7        "));
  ASSERT_EQ(root->Type(), JsonType::Number);
  EXPECT_STREQ(static_cast<const JsonNumber*>(root.Get())->Text().data(), "7");
}

// The next value lies directly behind the room of a text.
TEST_F(JsonParserTest, NulFollowsATextOfAnyLengthBeforeOtherValues) {
  for (std::size_t length = 1; length <= 40; ++length) {
    const std::string digits(length, '7');
    const std::string letters(length, 'x');
    ParseResult result;
    const std::string text = "[" + digits + ",\"" + letters + "\",\"\n" + letters + "\",true]";
    const JsonRef<JsonArray> root(static_cast<JsonArray*>(Parse(result, text.c_str())));
    ASSERT_TRUE(root);
    auto element = root->begin();
    EXPECT_STREQ(static_cast<JsonNumber*>(*element)->Text().data(), digits.c_str());
    EXPECT_STREQ(static_cast<JsonString*>(*++element)->CStr(), letters.c_str());
    EXPECT_STREQ(static_cast<JsonString*>(*++element)->CStr(), ("\n" + letters).c_str());
  }
}

TEST_F(JsonParserTest, ResultBeginsAtTheFirstCharacter) {
  const ParseResult result;
  EXPECT_EQ(result.errorMessage, "");
  EXPECT_EQ(result.line, 1u);
  EXPECT_EQ(result.column, 1u);
}

TEST_F(JsonParserTest, IgnoresWhatFollowsTheFirstValue) {
  ExpectOutcomes({
      {"AfterTrue", "true false", "true 1:5"},
      {"AfterNull", "nullx", "null 1:5"},
      {"AfterNumber", "12x", "int 12 12 1:3"},
      {"AfterString", "\"a\"b", "'a' 1:4"},
      {"AfterObject", "{}}", "{} 1:3"},
      {"AfterArray", "[]\n\n[", "[] 1:3"},
  });
}

TEST_F(JsonParserTest, FailsWithTheInnermostMessageWhereTheFaultIs) {
  ExpectOutcomes({
      {"EmptyText", "", "\"Unexpected token\" 1:1"},
      {"OnlySpace", " \n ", "\"Unexpected token\" 2:2"},
      {"MisspeltTrue", "trux", "\"Unexpected token\" 1:1"},
      {"MisspeltFalse", " fals", "\"Unexpected token\" 1:2"},
      {"MisspeltNull", "[nul]", "\"Unexpected token\" 1:2"},
      {"CapitalLiteral", "True", "\"Unexpected token\" 1:1"},
      {"StrayBracket", "]", "\"Unexpected token\" 1:1"},
      {"HighByte", "\xFF", "\"Unexpected token\" 1:1"},
      {"PlusSign", "+1", "\"Unexpected token\" 1:1"},
      {"PointFirst", ".5", "\"Unexpected token\" 1:1"},
      {"LoneMinus", "-", "\"Expected a digit\" 1:2"},
      {"MinusAndLetter", "[1,-x]", "\"Expected a digit\" 1:5"},
      {"BadFirstHexDigit", R"("\uG234")", "\"Unable to parse unicode symbol\" 1:4"},
      {"BadThirdHexDigit", R"("\u12G4")", "\"Unable to parse unicode symbol\" 1:6"},
      {"TextEndsInUnicode", R"("\u123)", "\"Unable to parse unicode symbol\" 1:7"},
      {"QuoteEndsUnicode", R"("\u12")", "\"Unable to parse unicode symbol\" 1:6"},
      {"NoClosingQuote", "\"abc", "\"Missing closing quote\" 1:5"},
      {"LoneQuote", "\"", "\"Missing closing quote\" 1:2"},
      {"BackslashAtTheEnd", "\"a\\", "\"Missing closing quote\" 1:4"},
      {"EscapedQuoteAtTheEnd", "\"a\\\"", "\"Missing closing quote\" 1:4"},
      {"FirstFaultInAStringCounts", R"("\uXX)", "\"Unable to parse unicode symbol\" 1:4"},
      {"KeyWithoutClosingQuote", R"({"a)", "\"Missing closing quote\" 1:4"},
      {"KeyWithBadUnicode", R"({"\u00x":1})", "\"Unable to parse unicode symbol\" 1:7"},
      {"NoKeyAtAll", "{", "\"Expected object property string\" 1:2"},
      {"KeyIsANumber", "{1:2}", "\"Expected object property string\" 1:2"},
      {"TrailingCommaInObject", R"({"a":1,})", "\"Expected object property string\" 1:8"},
      {"NoColon", R"({"a" 1})", "\"Expected property/value separator colon\" 1:6"},
      {"TextEndsBeforeColon", R"({"a")", "\"Expected property/value separator colon\" 1:5"},
      {"NoValue", R"({"a":})", "\"Unexpected token\" 1:6"},
      {"NoComma", R"({"a":1 "b":2})", "\"Expected property separator comma\" 1:8"},
      {"TextEndsAfterValue", R"({"a":1)", "\"Expected property separator comma\" 1:7"},
      {"BracketOfTheOtherKind", R"({"a":1])", "\"Expected property separator comma\" 1:7"},
      {"TextEndsAfterComma", R"({"a":1,)", "\"Missing object close bracket\" 1:8"},
      {"TextEndsAfterCommaAndSpace", "{\"a\":1,\n ", "\"Missing object close bracket\" 2:2"},
      {"ArrayWithoutComma", "[1 2]", "\"\" 1:4"},
      {"ArrayEndsAfterValue", "[1", "\"\" 1:3"},
      {"ArrayClosedAsObject", "[1}", "\"\" 1:3"},
      {"TrailingCommaInArray", "[1,]", "\"Unexpected token\" 1:4"},
      {"ArrayEndsAfterComma", "[1,", "\"Unexpected token\" 1:4"},
      {"ArrayEndsAtOnce", "[", "\"Unexpected token\" 1:2"},
      {"NestedFaultKeepsItsMessage", R"({"a":[{"b":-}]})", "\"Expected a digit\" 1:13"},
      {"SecondLine", "{\"a\":1,\n  \"b\" 2}", "\"Expected property/value separator colon\" 2:7"},
      {"AfterEscapesColumnsAreFewer", R"(["\n\t\"",x])", "\"Unexpected token\" 1:8"},
      {"AfterRawLineFeedInString", "[\"a\nbc\",x]", "\"Unexpected token\" 2:5"},
  });
}

TEST_F(JsonParserTest, FailureReleasesEverythingBuiltSoFar) {
  const std::string whole =
      R"({"a":[1,2.5,"x",{"b":null,"f":{"c":[true]}}],"A":{"d":"\u00e9"},"e":false} )";
  for (std::size_t length = 0; length + 2 < whole.size(); ++length) {
    const std::uint32_t before = Living();
    ParseResult result;
    JsonRef<Json> root(Parse(result, whole.substr(0, length).c_str()));
    EXPECT_FALSE(root) << whole.substr(0, length);
    ASSERT_EQ(Living(), before) << whole.substr(0, length);
  }
}

// The parser reads the text to its end, so each position behind the value is the same as
// under any other key.
TEST_F(JsonParserTest, ValueUnderAnEmptyKeyIsReadAndReleased) {
  struct Member {
    const char* name;
    const char* text;
    const char* written;
  };
  for (const Member& row : {
           Member{"Number", R"({"":1})", "{}"},
           Member{"String", R"({"":"x"})", "{}"},
           Member{"EscapedString", R"({"":"\u0041"})", "{}"},
           Member{"True", R"({"":true})", "{}"},
           Member{"Null", R"({"":null})", "{}"},
           Member{"EmptyObject", R"({"":{}})", "{}"},
           Member{"EmptyArray", R"({"":[]})", "{}"},
           Member{"Object", R"({"":{"a":1,"b":[2]}})", "{}"},
           Member{"Array", R"({"":[1,{"a":2}]})", "{}"},
           Member{"Duplicates", R"({"":1,"":[2],"":{},"":{"":3}})", "{}"},
           Member{"BesideOthers", R"({"a":1,"":2,"b":3,"":[4],"c":5})", R"({"a":1,"b":3,"c":5})"},
           Member{"NestedInItself", R"({"":{"":{"":[{"":[{"":1}]}]}}})", "{}"},
           Member{"NestedInOthers", R"([{"a":{"":[1],"b":{"":2}}},3])", R"([{"a":{"b":{}}},3])"},
       }) {
    const std::string plain = row.text;
    std::string escaped;
    for (std::size_t at = 0; at < plain.size(); ++at) {
      const bool isEmptyKey = plain.compare(at, 3, "\"\":") == 0;
      escaped += isEmptyKey ? R"("\u0000\u0000":)" : plain.substr(at, 1);
      if (isEmptyKey) at += 2;
    }
    for (const std::string& text : {plain, escaped}) {
      const std::uint32_t before = Living();
      ParseResult result;
      JsonRef<Json> root(Parse(result, text.c_str()));
      ASSERT_TRUE(root) << row.name << ": " << text;
      std::string written;
      root->Write(written);
      EXPECT_EQ(written, row.written) << row.name << ": " << text;
      EXPECT_EQ(result.line, 1u) << row.name << ": " << text;
      EXPECT_EQ(result.column, text.size() + 1) << row.name << ": " << text;
      root.Reset(nullptr);
      EXPECT_EQ(Living(), before) << row.name << ": " << text;
    }
  }
}

TEST_F(JsonParserTest, FailureWithinAValueUnderAnEmptyKeyReleasesThatToo) {
  for (const char* text : {R"({"":)", R"({"":[)", R"([{"":{"":[{"a":"b")", R"({"":{"a":[1],"b")",
                           R"({"":1,"":[2]x)", R"({"":{"":[3],"a":{"b":{"":[-)"}) {
    const std::uint32_t before = Living();
    ParseResult result;
    EXPECT_EQ(Parse(result, text), nullptr) << text;
    EXPECT_EQ(Living(), before) << text;
  }
}

TEST_F(JsonParserTest, KeyLongerThanTheDictionaryTakesIsCut) {
  const std::string most(65535, 'k');
  ParseResult result;
  JsonRef<Json> root(Parse(result, ("{\"" + most + "x\":1,\"" + most + "\\ty\\nz\":2}").c_str()));
  ASSERT_TRUE(root) << result.errorMessage;
  Json* found = static_cast<JsonObject&>(*root).Find(most.c_str());
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(static_cast<JsonNumber*>(found)->IntValue(), 2);
}

TEST_F(JsonParserTest, LongStringsTakeLinearTime) {
  const std::string text(4'000'000, 'x');
  ParseResult result;
  JsonRef<Json> root(Parse(result, ("\"" + text + "\\n\"").c_str()));
  ASSERT_TRUE(root);
  EXPECT_EQ(static_cast<JsonString&>(*root).Text(), text + "\n");
  EXPECT_EQ(result.column, 4'000'004u);
}

}  // namespace
}  // namespace Vask
