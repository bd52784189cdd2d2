#include "agent/ObjectIdentifier.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Binding.h"

namespace Agent::Tests {

namespace {

using Vask::Tests::FullName;

AsnObjectIdentifier Name(std::vector<UINT>& ids) {
  return {static_cast<UINT>(ids.size()), ids.data()};
}

int Sign(int order) {
  return (order > 0) - (order < 0);
}

TEST(ObjectIdentifierTest, PrefixIsEightNumbersWithTheEnterpriseOfTheBuild) {
  EnterprisePrefix prefix;
  EXPECT_EQ(prefix.Name().idLength, 8u);
  EXPECT_EQ(DottedText(prefix.Name()), FullName("P"));
}

TEST(ObjectIdentifierTest, DottedTextHasPointsBetweenNumbersOnly) {
  struct Row {
    const char* what;
    std::vector<UINT> ids;
    const char* text;
  };
  for (Row row : {Row{"none", {}, ""}, Row{"one", {7}, "7"}, Row{"three", {1, 0, 22}, "1.0.22"},
                  Row{"largest", {4294967295u, 0}, "4294967295.0"}}) {
    EXPECT_EQ(DottedText(Name(row.ids)), row.text) << row.what;
  }
}

TEST(ObjectIdentifierTest, DottedTextOfTheLongestNameIsWhole) {
  std::vector<UINT> ids(128, 4294967295u);
  std::string text = "4294967295";
  for (int i = 1; i < 128; ++i) text += ".4294967295";
  EXPECT_EQ(DottedText(Name(ids)), text);
}

TEST(ObjectIdentifierTest, DottedTextWithPrefixKeepsThePointBeforeAnEmptySuffix) {
  std::vector<UINT> prefix{1, 3};
  std::vector<UINT> suffix{6, 1};
  std::vector<UINT> none;
  EXPECT_EQ(DottedText(Name(prefix), Name(suffix)), "1.3.6.1");
  EXPECT_EQ(DottedText(Name(prefix), Name(none)), "1.3.");
}

TEST(ObjectIdentifierTest, ComparisonGoesNumberByNumberAndCountsLengthLast) {
  struct Row {
    const char* what;
    std::vector<UINT> key;
    std::vector<UINT> name;
    int order;
  };
  for (Row row : {
           Row{"equal", {1, 3, 6}, {1, 3, 6}, 0},
           Row{"name lies under key", {1, 3}, {1, 3, 6}, 0},
           Row{"name is a leading part of key", {1, 3, 6}, {1, 3}, 1},
           Row{"empty name", {1}, {}, 1},
           Row{"empty key", {}, {1}, 0},
           Row{"key lies before", {1, 3, 5, 9}, {1, 3, 6}, -1},
           Row{"key lies behind", {1, 4}, {1, 3, 6}, 1},
           Row{"shorter name lies behind", {1, 3, 6}, {2}, -1},
           Row{"numbers are unsigned", {1, 2}, {1, 4294967295u}, -1},
       }) {
    EXPECT_EQ(Sign(CompareLeading(Name(row.key), Name(row.name))), row.order) << row.what;
  }
}

TEST(ObjectIdentifierTest, WholeNamesAreInTheOrderOfAWalk) {
  std::vector<std::vector<UINT>> ascending{{},     {1}, {1, 3}, {1, 3, 6}, {1, 3, 6, 0},
                                           {1, 4}, {2}, {2, 1}, {10}};
  for (std::size_t i = 0; i < ascending.size(); ++i)
    for (std::size_t j = 0; j < ascending.size(); ++j)
      EXPECT_EQ(Sign(CompareWhole(Name(ascending[i]), Name(ascending[j]))), (i > j) - (i < j))
          << i << " and " << j;
}

TEST(ObjectIdentifierTest, NewOneIsEmpty) {
  const ObjectIdentifier oid;
  EXPECT_EQ(oid.Name().idLength, 0u);
  EXPECT_EQ(oid.Name().ids, nullptr);
}

TEST(ObjectIdentifierTest, JoinCopiesAllPartsInOrder) {
  std::vector<UINT> first{1, 3};
  std::vector<UINT> none;
  std::vector<UINT> last{6};
  ObjectIdentifier name;
  ASSERT_TRUE(name.Join({Name(first), Name(none), Name(last)}));
  EXPECT_EQ(DottedText(name.Name()), "1.3.6");
  first[0] = 9;
  EXPECT_EQ(DottedText(name.Name()), "1.3.6");
  ASSERT_TRUE(name.Join({Name(last)}));
  EXPECT_EQ(DottedText(name.Name()), "6");
}

TEST(ObjectIdentifierTest, JoinOfNothingIsEmpty) {
  ObjectIdentifier name;
  ASSERT_TRUE(name.Join({}));
  EXPECT_EQ(name.Name().idLength, 0u);
}

TEST(ObjectIdentifierTest, MoveIntoReplacesTheOtherNameAndEmptiesThisOne) {
  Vask::Tests::Binding binding("1.2.3");
  std::vector<UINT> ids{4, 5};
  ObjectIdentifier name;
  ASSERT_TRUE(name.Join({Name(ids)}));
  name.MoveInto(binding.Get().name);
  EXPECT_EQ(binding.Name(), "4.5");
  EXPECT_EQ(name.Name().idLength, 0u);
}

}  // namespace

}  // namespace Agent::Tests
