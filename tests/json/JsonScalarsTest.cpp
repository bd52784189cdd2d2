#include "json/JsonScalars.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

#include "json/JsonRef.h"
#include "tests/json/BalancedTest.h"

namespace Vask {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(NumberReading, IntegersAreReadUpToTheFirstNonDigitAndSaturate) {
  struct Row {
    const char* name;
    const char* text;
    std::int64_t value;
  };
  for (const Row& row : {
           Row{"Zero", "0", 0},
           Row{"MinusZero", "-0", 0},
           Row{"LeadingZeros", "-0012", -12},
           Row{"StopsAtAnExponent", "1e3", 1},
           Row{"StopsAtABareExponent", "15e", 15},
           Row{"Largest", "9223372036854775807", kMax},
           Row{"OneMoreThanLargest", "9223372036854775808", kMax},
           Row{"FarTooLarge", "99999999999999999999999999", kMax},
           Row{"Smallest", "-9223372036854775808", kMin},
           Row{"OneLessThanSmallest", "-9223372036854775809", kMin},
           Row{"FarTooSmall", "-99999999999999999999999999", kMin},
       }) {
    EXPECT_EQ(ReadInteger(row.text), row.value) << row.name << ": " << row.text;
  }
}

TEST(NumberReading, RealsAreReadAsDecimalFloatingPoint) {
  struct Row {
    const char* name;
    std::string text;
    double value;
  };
  const Row rows[] = {
      {"Plain", "2.5", 2.5},
      {"Negative", "-2.5", -2.5},
      {"NoFraction", "1.", 1.0},
      {"NoFractionButExponent", "1.e5", 1e5},
      {"LeadingZeros", "007.25", 7.25},
      {"Exponent", "1.5E+3", 1500.0},
      {"NegativeExponent", "1.5e-3", 0.0015},
      {"BareExponent", "1.5e", 1.5},
      {"BareSignedExponent", "1.5e-", 1.5},
      {"Tenth", "0.1", 0.1},
      {"CorrectlyRounded", "9007199254740993.0", 9007199254740992.0},
      {"Largest", "1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"TooLarge", "1.0e309", kInfinity},
      {"TooLargeNegative", "-1.0e309", -kInfinity},
      {"TooLargeWithSignedExponent", "0.001e+400", kInfinity},
      {"TooLargeByDigits", "1" + std::string(400, '0') + ".0", kInfinity},
      {"TooLargeNegativeByDigits", "-1" + std::string(400, '0') + ".0", -kInfinity},
      {"TooLargeByTheFirstDigit", "1" + std::string(700, '0') + "1.0e-100", kInfinity},
      {"ExponentOverflows", "1.0e99999999999999999999", kInfinity},
      {"TooLargeWithLeadingZeros", "000.001e400", kInfinity},
      {"SmallestDenormal", "4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
      {"TooSmall", "1.0e-400", 0.0},
      {"TooSmallWithCapitalExponent", "1.0E-400", 0.0},
      {"TooSmallByDigits", "0." + std::string(400, '0') + "1", 0.0},
      {"ExponentUnderflows", "1.0e-99999999999999999999", 0.0},
      {"ZeroWithAnyExponent", "0.0e999999999999", 0.0},
      {"DigitsMakeUpForTheExponent", "1" + std::string(400, '0') + ".0e-400", 1.0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ReadReal(row.text), row.value) << row.name << ": " << row.text;
  }
  EXPECT_TRUE(std::signbit(ReadReal("-0.0")));
  EXPECT_TRUE(std::signbit(ReadReal("-1.0e-400")));
}

TEST(NumberReading, TextEndsWhereItsViewEnds) {
  constexpr std::string_view kLonger = "2.57";
  EXPECT_EQ(ReadReal(kLonger.substr(0, 3)), 2.5);
  EXPECT_EQ(ReadInteger(std::string_view("25").substr(0, 1)), 2);
}

TEST(NumberReading, RealsDoNotFollowTheLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  for (const char* locale : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"}) {
    std::setlocale(LC_NUMERIC, locale);  // a locale that this machine does not have changes nothing
    EXPECT_EQ(ReadReal("2.5"), 2.5) << locale;
  }
  std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(NumberReading, TruncationGoesTowardZeroAndSaturates) {
  struct Row {
    const char* name;
    double value;
    std::int64_t truncated;
  };
  for (const Row& row : {
           Row{"Zero", 0.0, 0},
           Row{"Positive", 2.9, 2},
           Row{"Negative", -2.9, -2},
           Row{"LargestBelowTheEnd", 9223372036854774784.0, 9223372036854774784},
           Row{"TheEnd", 9223372036854775808.0, kMax},
           Row{"Infinite", kInfinity, kMax},
           Row{"TheOtherEnd", -9223372036854775808.0, kMin},
           Row{"BeyondTheOtherEnd", -9223372036854777856.0, kMin},
           Row{"InfiniteNegative", -kInfinity, kMin},
       }) {
    EXPECT_EQ(TruncateToInteger(row.value), row.truncated) << row.name << ": " << row.value;
  }
}

using JsonScalarsTest = Tests::BalancedTest;

// Both forms are the same for every scalar, and do not depend on the old content of
// `out`.
std::string WrittenBothWays(const Json& value) {
  std::string compact = "something longer that stood there before";
  std::string pretty = compact;
  value.Write(compact);
  value.WritePretty(pretty, 3);
  EXPECT_EQ(compact, pretty);
  return compact;
}

TEST_F(JsonScalarsTest, StringKeepsItsTextAndEndsItWithANul) {
  std::string original = "Main";
  JsonRef<JsonString> string(JsonString::Create(original));
  original = "gone";
  EXPECT_EQ(string->Type(), JsonType::String);
  EXPECT_EQ(static_cast<int>(string->Type()), 3);
  EXPECT_EQ(string->Text(), "Main");
  EXPECT_STREQ(string->CStr(), "Main");
  EXPECT_EQ(WrittenBothWays(*string), "\"Main\"");
}

TEST_F(JsonScalarsTest, StringIsEmptyByDefault) {
  JsonRef<JsonString> string(JsonString::Create());
  EXPECT_EQ(string->Text(), "");
  EXPECT_STREQ(string->CStr(), "");
  EXPECT_EQ(WrittenBothWays(*string), "\"\"");
}

TEST_F(JsonScalarsTest, StringFilledInPlaceHasTheReturnedLength) {
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

TEST_F(JsonScalarsTest, NumberKeepsItsTextWithAllReadings) {
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

TEST_F(JsonScalarsTest, BoolIsFalseByDefault) {
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
