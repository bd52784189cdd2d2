#include "Src/LogHead.h"

#include <gtest/gtest.h>

#include <string>

namespace Vask::Tests {
namespace {

TEST(TimeStampTest, HasLeadingZerosAndEndsInColonAndBlank) {
  const struct {
    const char* name;
    Platform::LocalTime time;
    const char* stamp;
  } rows[] = {
      {"start of the day", {2018, 5, 14, 0, 0, 0, 0}, "00:00:00.000: "},
      {"one digit each", {2018, 5, 14, 9, 5, 3, 7}, "09:05:03.007: "},
      {"two digits of milliseconds", {2018, 5, 14, 10, 20, 30, 40}, "10:20:30.040: "},
      {"end of the day", {2018, 5, 14, 23, 59, 59, 999}, "23:59:59.999: "},
  };
  for (const auto& row : rows) {
    char stamp[kTimeStampLength];
    FormatTimeStamp(row.time, stamp);
    EXPECT_EQ(std::string(stamp, sizeof stamp), row.stamp) << row.name;
  }
}

}  // namespace
}  // namespace Vask::Tests
