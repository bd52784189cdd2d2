#include "json/JsonBool.h"
#include "json/JsonNull.h"
#include "json/JsonNumber.h"
#include "json/JsonRef.h"
#include "json/JsonString.h"
#include "tests/json/BalancedTest.h"

namespace Vask {
namespace {

using JsonScalarsTest = Tests::BalancedTest;

// Both forms are the same for every scalar, whatever `out` held before.
std::string WrittenBothWays(const Json& value) {
  std::string compact = "something longer that stood there before";
  std::string pretty = compact;
  value.Write(compact);
  value.WritePretty(pretty, 3);
  EXPECT_EQ(compact, pretty);
  return compact;
}

TEST_F(JsonScalarsTest, StringKeepsItsTextWithANulBehind) {
  std::string original = "Main";
  JsonRef<JsonString> string(JsonString::Create(original));
  original = "gone";
  EXPECT_EQ(string->Type(), JsonType::String);
  EXPECT_EQ(static_cast<int>(string->Type()), 3);
  EXPECT_EQ(string->Text(), "Main");
  EXPECT_STREQ(string->CStr(), "Main");
  EXPECT_EQ(WrittenBothWays(*string), "\"Main\"");
}

TEST_F(JsonScalarsTest, StringIsEmptyUnlessToldOtherwise) {
  JsonRef<JsonString> string(JsonString::Create());
  EXPECT_EQ(string->Text(), "");
  EXPECT_STREQ(string->CStr(), "");
  EXPECT_EQ(WrittenBothWays(*string), "\"\"");
}

TEST_F(JsonScalarsTest, StringFilledInPlaceHasTheLengthAnswered) {
  JsonRef<JsonString> string(JsonString::CreateFilled(10, [](char* buffer) {
    buffer[0] = 'o';
    buffer[1] = 'k';
    return std::size_t{2};
  }));
  EXPECT_EQ(string->Text(), "ok");
  EXPECT_STREQ(string->CStr(), "ok");
}

TEST_F(JsonScalarsTest, StringMayHoldNulButIsWrittenUpToIt) {
  JsonRef<JsonString> string(JsonString::Create(std::string_view("a\0b", 3)));
  EXPECT_EQ(string->Text().size(), 3u);
  EXPECT_EQ(WrittenBothWays(*string), "\"a\"");
}

TEST_F(JsonScalarsTest, NumberFromAnIntIsWrittenAsPercentD) {
  struct Row {
    int value;
    const char* text;
  };
  for (const Row& row : {Row{0, "0"}, Row{-1, "-1"}, Row{1024, "1024"},
                         Row{2147483647, "2147483647"}, Row{-2147483647 - 1, "-2147483648"}}) {
    SCOPED_TRACE(row.text);
    JsonRef<JsonNumber> number(JsonNumber::FromInt(row.value));
    EXPECT_EQ(number->Type(), JsonType::Number);
    EXPECT_EQ(static_cast<int>(number->Type()), 4);
    EXPECT_TRUE(number->IsInteger());
    EXPECT_EQ(number->IntValue(), row.value);
    EXPECT_EQ(number->DoubleValue(), static_cast<double>(row.value));
    EXPECT_EQ(number->Text(), row.text);
    EXPECT_EQ(WrittenBothWays(*number), row.text);
  }
}

TEST_F(JsonScalarsTest, NumberKeepsItsTextWhateverItsReadings) {
  JsonRef<JsonNumber> integer(JsonNumber::FromText("007e3", true));
  EXPECT_EQ(integer->IntValue(), 7);
  EXPECT_EQ(integer->DoubleValue(), 7.0);
  EXPECT_EQ(WrittenBothWays(*integer), "007e3");
  JsonRef<JsonNumber> real(JsonNumber::FromText("-2.750", false));
  EXPECT_FALSE(real->IsInteger());
  EXPECT_EQ(real->IntValue(), -2);
  EXPECT_EQ(real->DoubleValue(), -2.75);
  EXPECT_EQ(WrittenBothWays(*real), "-2.750");
}

TEST_F(JsonScalarsTest, BoolIsFalseUnlessToldOtherwise) {
  JsonRef<JsonBool> standard(new JsonBool);
  JsonRef<JsonBool> yes(new JsonBool(true));
  EXPECT_EQ(standard->Type(), JsonType::Bool);
  EXPECT_EQ(static_cast<int>(standard->Type()), 5);
  EXPECT_FALSE(standard->Value());
  EXPECT_TRUE(yes->Value());
  EXPECT_EQ(WrittenBothWays(*standard), "false");
  EXPECT_EQ(WrittenBothWays(*yes), "true");
}

TEST_F(JsonScalarsTest, NullIsNull) {
  JsonRef<JsonNull> null(new JsonNull);
  EXPECT_EQ(null->Type(), JsonType::Null);
  EXPECT_EQ(static_cast<int>(null->Type()), 6);
  EXPECT_EQ(WrittenBothWays(*null), "null");
}

}  // namespace
}  // namespace Vask
