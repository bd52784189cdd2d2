#include "json/NumberReading.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

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
      {"ExponentOverflows", "1.0e99999999999999999999", kInfinity},
      {"TooLargeWithLeadingZeros", "000.001e400", kInfinity},
      {"SmallestDenormal", "4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
      {"TooSmall", "1.0e-400", 0.0},
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

TEST(NumberReading, RealsDoNotFollowTheLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  for (const char* locale : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"}) {
    std::setlocale(LC_NUMERIC, locale);  // those that this machine lacks change nothing
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

}  // namespace
}  // namespace Vask
