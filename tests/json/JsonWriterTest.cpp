#include "json/JsonWriter.h"

#include <gtest/gtest.h>

#include <string>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "tests/json/BalancedTest.h"

namespace Vask {
namespace {

std::string Escaped(std::string_view text) {
  std::string out = "before:";
  AppendEscaped(out, text);
  EXPECT_EQ(out.substr(0, 7), "before:");
  return out.substr(7);
}

TEST(JsonEscaping, WritesEachKindOfByteByItsRule) {
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
           Row{"EveryDigit", "\xC4\xA3\xE4\x95\xA7\xE8\xA6\xAB\xEC\xB7\xAF",
               "\\u0123\\u4567\\u89ab\\ucdef"},
           Row{"SequenceOfZero", "\xC0\x80", "\\u0000"},
           Row{"FourBytesAreDropped", "a\xF0\x9F\x98\x80z", "az"},
           Row{"StrayContinuationIsDropped", "a\x80\xBFz", "az"},
           Row{"ByteOfNoSequenceIsDropped", "a\xF8\xFEy\xFFz", "ayz"},
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

using JsonWriterTest = Tests::BalancedTest;

JsonRef<Json> Parsed(const std::string& text) {
  ParseResult result;
  JsonRef<Json> root(Parse(result, text.c_str()));
  EXPECT_TRUE(root) << text << ": " << result.errorMessage;
  return root;
}

std::string Compact(const Json& value) {
  std::string out = "what stood there before is gone";
  value.Write(out);
  return out;
}

std::string Pretty(const Json& value, std::uint32_t level = 0) {
  std::string out = "what stood there before is gone";
  value.WritePretty(out, level);
  return out;
}

TEST_F(JsonWriterTest, CompactFormHasNoWhiteSpace) {
  struct Row {
    const char* name;
    std::string text;
    std::string written;
  };
  const Row rows[] = {
      {"EmptyObject", " { } ", "{}"},
      {"EmptyArray", "[ ]", "[]"},
      {"FoldedKey", "  {\"A\":1}", "{\"a\":1}"},
      {"OrderOfKeys", R"({ "b" : 1, "A" : 2, "aB" : 3 })", R"({"a":2,"ab":3,"b":1})"},
      {"Elements", "[ 1 , 2 ,3 ]", "[1,2,3]"},
      {"Nested", R"([{"a":[[],{}]},[{"b":null}]])", R"([{"a":[[],{}]},[{"b":null}]])"},
      {"Literals", "[true,false,null]", "[true,false,null]"},
      {"NumbersKeepTheirText", "[1e3,1.,1e,-0,007,2.50]", "[1e3,1.,1e,-0,007,2.50]"},
      {"LetterAsEscape", R"("caf\u00E9")", R"("caf\u00e9")"},
      {"LetterAsBytes", "\"caf\xC3\xA9\"", R"("caf\u00e9")"},
      {"ControlCharacterIsDropped", "\"a\x01z\"", "\"az\""},
      {"SlashInString", R"("a/b\/c")", R"("a\/b\/c")"},
      {"KeyIsEscaped", R"({"a/\"\t":1})", R"({"a\/\"\t":1})"},
      {"KeyOfHighBytesComesFirst", "{\"a\":1,\"\xC3\xA9\":2}", R"({"\u00e9":2,"a":1})"},
      {"Broadcast", R"({"name":"SNMPupdate","op":"broadcast","id":0,"from":"SNMPd","data":{}})",
       R"({"data":{},"from":"SNMPd","id":0,"name":"SNMPupdate","op":"broadcast"})"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Compact(*Parsed(row.text)), row.written) << row.name << ": " << row.text;
  }
}

TEST_F(JsonWriterTest, WritingWhatWasReadBackIsStable) {
  for (const char* text : {
           R"({"Name":"Caf\u00e9 \/ \"x\"\n","N":[1e3,-0.50,{"k":[]}],"\u20ac":{"\ud83d":true}})",
           R"(["\b\f\n\r\t\\\/\"\u0007\u0080\u07ff\u0800\uffff",[[[]]],{},null,false])",
           "{\"\xC3\xA9\xC3\":\"\xE2\x82\",\"z\":[007,1.,1e+]}",
       }) {
    const std::string once = Compact(*Parsed(text));
    EXPECT_EQ(Compact(*Parsed(once)), once) << text;
    EXPECT_EQ(Compact(*Parsed(Pretty(*Parsed(once)))), once) << text;
  }
}

TEST_F(JsonWriterTest, IndentedFormHasOneLineForEachMember) {
  const JsonRef<Json> root = Parsed(R"({"b":[1,{"x":"y/z"}],"A":null,"ab":false})");
  EXPECT_EQ(Pretty(*root),
            "{\n"
            "  \"a\": null,\n"
            "  \"ab\": false,\n"
            "  \"b\": [\n"
            "    1,\n"
            "    {\n"
            "      \"x\": \"y\\/z\"\n"
            "    }\n"
            "  ]\n"
            "}");
}

TEST_F(JsonWriterTest, IndentedFormStartsAtTheGivenLevel) {
  EXPECT_EQ(Pretty(*Parsed("{\"a\":[1]}"), 2),
            "{\n"
            "      \"a\": [\n"
            "        1\n"
            "      ]\n"
            "    }");
}

TEST_F(JsonWriterTest, IndentedEmptyContainersAreTwoLineFeedsBetweenBrackets) {
  EXPECT_EQ(Pretty(*Parsed("{}")), "{\n\n}");
  EXPECT_EQ(Pretty(*Parsed("[]")), "[\n\n]");
  EXPECT_EQ(Pretty(*Parsed("[{}]")), "[\n  {\n\n  }\n]");
}

TEST_F(JsonWriterTest, IndentedFormLeavesKeysRawAndEscapesValues) {
  EXPECT_EQ(Pretty(*Parsed(R"({"a/\"b":"a/\"b"})")), "{\n  \"a/\"b\": \"a\\/\\\"b\"\n}");
  EXPECT_EQ(Pretty(*Parsed("{\"\xC3\xA9\":1}")), "{\n  \"\xC3\xA9\": 1\n}");
}

TEST_F(JsonWriterTest, SharedValueIsWrittenAtEachPlace) {
  JsonRef<JsonArray> array(new JsonArray);
  JsonRef<JsonString> text(JsonString::Create("x"));
  JsonRef<JsonObject> object(new JsonObject);
  object->Set("k", text.Get());
  array->Append(object.Get());
  array->Append(text.Get());
  array->Append(object.Get());
  EXPECT_EQ(Compact(*array), R"([{"k":"x"},"x",{"k":"x"}])");
}

TEST_F(JsonWriterTest, WideContainersTakeLinearTime) {
  JsonRef<JsonArray> array(new JsonArray);
  JsonRef<JsonString> text(JsonString::Create("x"));
  for (int i = 0; i < 200'000; ++i) array->Append(text.Get());
  EXPECT_EQ(Compact(*array).size(), 2 + 200'000 * 4 - 1u);
}

}  // namespace
}  // namespace Vask
