#include "simulator/Values.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace Simulator {
namespace {

struct BodyRow {
  Group group;
  const char* body;
};
void PrintTo(const BodyRow& row, std::ostream* out) {
  *out << GroupName(row.group);
}

class GroupBodyTest : public testing::TestWithParam<BodyRow> {};

TEST_P(GroupBodyTest, HoldsTheValuesOfTheGroup) {
  Values values;
  std::string error;
  ASSERT_TRUE(values.Set("ProductName", "Main", error));
  ASSERT_TRUE(values.Set("ProductVersion", "2.1", error));
  int next = 1;
  for (const char* name : {"StreamsCount", "StreamsErrors", "StreamMonitorsCount",
                           "StreamMonitorsErrors", "StreamMonitorsSilence", "AudioSourcesCount",
                           "AudioSourcesErrors", "AudioSourcesSilence"}) {
    ASSERT_TRUE(values.Set(name, std::to_string(next++), error)) << name << ": " << error;
  }
  EXPECT_EQ(values.Body(GetParam().group), GetParam().body);
}

INSTANTIATE_TEST_SUITE_P(
    Groups, GroupBodyTest,
    testing::Values(
        BodyRow{Group::Product, R"({"messageType":{"Product":{"Name":"Main","Version":"2.1"}}})"},
        BodyRow{Group::Streams, R"({"messageType":{"Streams":{"Count":1,"Errors":2}}})"},
        BodyRow{Group::StreamMonitors,
                R"({"messageType":{"StreamMonitors":{"Count":3,"Errors":4,"Silence":5}}})"},
        BodyRow{Group::AudioSources,
                R"({"messageType":{"AudioSources":{"Count":6,"Errors":7,"Silence":8}}})"}),
    [](const auto& row) { return std::string(GroupName(row.param.group)); });

TEST(ValuesTest, NamesAreFoundInAnyCase) {
  Values values;
  std::string error;
  EXPECT_TRUE(values.Set("streamscount", "7", error));
  EXPECT_EQ(values.Body(Group::Streams), R"({"messageType":{"Streams":{"Count":7,"Errors":0}}})");
}

TEST(ValuesTest, TextsAreQuotedForJson) {
  Values values;
  std::string error;
  EXPECT_TRUE(values.Set("ProductName", "a \"b\"", error));
  EXPECT_EQ(values.Body(Group::Product),
            R"({"messageType":{"Product":{"Name":"a \"b\"","Version":"1.0.0"}}})");
}

TEST(ValuesTest, UnknownNameIsRefusedAndChangesNothing) {
  Values values;
  const auto before = values.Lines();
  std::string error;
  EXPECT_FALSE(values.Set("Colour", "7", error));
  EXPECT_EQ(error,
            "unknown value \"Colour\"; the values are ProductName ProductVersion StreamsCount "
            "StreamsErrors StreamMonitorsCount StreamMonitorsErrors StreamMonitorsSilence "
            "AudioSourcesCount AudioSourcesErrors AudioSourcesSilence");
  EXPECT_EQ(values.Lines(), before);
}

TEST(ValuesTest, TextForANumberIsRefusedAndChangesNothing) {
  Values values;
  const auto before = values.Lines();
  std::string error;
  EXPECT_FALSE(values.Set("StreamsErrors", "many", error));
  EXPECT_EQ(error, "expected a whole number from -2147483648 to 2147483647, not \"many\"");
  EXPECT_EQ(values.Lines(), before);
}

TEST(ValuesTest, NumbersBeyondTheAgentsLimitsAreAllowed) {
  Values values;
  std::string error;
  EXPECT_TRUE(values.Set("StreamsErrors", "1025", error));
  EXPECT_TRUE(values.Set("StreamsCount", "-1", error));
  EXPECT_EQ(values.Body(Group::Streams),
            R"({"messageType":{"Streams":{"Count":-1,"Errors":1025}}})");
}

TEST(ValuesTest, LinesShowEveryValue) {
  const auto lines = Values().Lines();
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(lines.front(), "ProductName = Corvane");
  EXPECT_EQ(lines.back(), "AudioSourcesSilence = 0");
}

}  // namespace
}  // namespace Simulator
