#include "platform/Snmp.h"

#include <gtest/gtest.h>

#include <iterator>
#include <ostream>
#include <string>
#include <vector>

// On Windows this tests the system's own functions. The agent relies on these
// results, and the functions for other systems must give the same ones.
namespace Vask::Tests {
namespace {

using Ids = std::vector<UINT>;

AsnObjectIdentifier View(Ids& ids) {
  return {static_cast<UINT>(ids.size()), ids.data()};
}

Ids Copy(const AsnObjectIdentifier& oid) {
  return {oid.ids, oid.ids + oid.idLength};
}

int Sign(int comparison) {
  return comparison < 0 ? -1 : comparison > 0 ? 1 : 0;
}

// The comparison ends at the end of the shorter identifier.
constexpr UINT kWholeLength = 0xFFFFFFFFu;

struct CompareRow {
  const char* name;
  Ids first;
  Ids second;
  int order;
};

void PrintTo(const CompareRow& row, std::ostream* out) {
  *out << row.name << ": " << testing::PrintToString(row.first) << " and "
       << testing::PrintToString(row.second);
}

class OidComparisons : public testing::TestWithParam<CompareRow> {};

TEST_P(OidComparisons, GoBySubIdentifierThenLength) {
  Ids firstIds = GetParam().first;
  Ids secondIds = GetParam().second;
  AsnObjectIdentifier first = View(firstIds);
  AsnObjectIdentifier second = View(secondIds);
  EXPECT_EQ(Sign(SnmpUtilOidNCmp(&first, &second, kWholeLength)), GetParam().order);
  EXPECT_EQ(Sign(SnmpUtilOidNCmp(&second, &first, kWholeLength)), -GetParam().order);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, OidComparisons,
    testing::Values(CompareRow{"Equal", {1, 3, 6}, {1, 3, 6}, 0},
                    CompareRow{"LowerSubIdentifier", {1, 3, 5}, {1, 3, 6}, -1},
                    CompareRow{"ShorterLeadingPart", {1, 3}, {1, 3, 6}, -1},
                    CompareRow{"ShorterButHigher", {1, 4}, {1, 3, 6}, 1},
                    CompareRow{"FirstSubIdentifierDecides", {1, 9}, {2, 3}, -1},
                    CompareRow{"EmptyIsTheLowest", {}, {0}, -1},
                    CompareRow{"SubIdentifiersAreUnsigned", {1, 0xFFFFFFFFu}, {1, 1}, 1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SnmpUtilTest, WholeComparisonAgreesIfOneBeginsWithTheOther) {
  Ids ids[] = {{1, 3, 6}, {1, 3, 6, 1}, {1, 3, 6, 2}};
  for (std::size_t i = 0; i < std::size(ids); ++i) {
    for (std::size_t j = 0; j < std::size(ids); ++j) {
      AsnObjectIdentifier first = View(ids[i]);
      AsnObjectIdentifier second = View(ids[j]);
      const int order = Sign(SnmpUtilOidNCmp(&first, &second, kWholeLength));
      EXPECT_EQ(Sign(SnmpUtilOidCmp(&first, &second)), order) << i << ' ' << j;
    }
  }
}

TEST(SnmpUtilTest, LeadingPartsAreComparedUpToACount) {
  Ids longIds = {1, 3, 6, 1};
  Ids otherIds = {1, 3, 6, 2, 9};
  AsnObjectIdentifier first = View(longIds);
  AsnObjectIdentifier second = View(otherIds);
  EXPECT_EQ(SnmpUtilOidNCmp(&first, &second, 3), 0);
  EXPECT_LT(SnmpUtilOidNCmp(&first, &second, 4), 0);
  EXPECT_GT(SnmpUtilOidNCmp(&second, &first, 5), 0);
}

TEST(SnmpUtilTest, IdentifierThatEndsBeforeTheCountIsTheLower) {
  Ids shortIds = {1, 3};
  Ids longIds = {1, 3, 6, 1};
  AsnObjectIdentifier first = View(shortIds);
  AsnObjectIdentifier second = View(longIds);
  EXPECT_EQ(SnmpUtilOidNCmp(&first, &second, 2), 0);
  EXPECT_LT(SnmpUtilOidNCmp(&first, &second, 3), 0);
}

TEST(SnmpUtilTest, CopyHasItsOwnIdentifiers) {
  Ids ids = {1, 3, 6};
  AsnObjectIdentifier source = View(ids);
  AsnObjectIdentifier copy = {};
  ASSERT_NE(SnmpUtilOidCpy(&copy, &source), 0);
  ids[2] = 7;
  EXPECT_EQ(Copy(copy), (Ids{1, 3, 6}));
  SnmpUtilOidFree(&copy);
  EXPECT_EQ(copy.idLength, 0u);
  EXPECT_EQ(copy.ids, nullptr);
}

TEST(SnmpUtilTest, AppendGrowsTheIdentifier) {
  Ids head = {1, 3};
  Ids tail = {6, 1};
  AsnObjectIdentifier source = View(head);
  AsnObjectIdentifier more = View(tail);
  AsnObjectIdentifier oid = {};
  ASSERT_NE(SnmpUtilOidCpy(&oid, &source), 0);
  EXPECT_NE(SnmpUtilOidAppend(&oid, &more), 0);
  EXPECT_EQ(Copy(oid), (Ids{1, 3, 6, 1}));
  SnmpUtilOidFree(&oid);
}

TEST(SnmpUtilTest, OneSubIdentifierIsCopiedAndAppended) {
  Ids one = {7};
  AsnObjectIdentifier source = View(one);
  AsnObjectIdentifier oid = {};
  ASSERT_NE(SnmpUtilOidCpy(&oid, &source), 0);
  EXPECT_EQ(Copy(oid), (Ids{7}));
  EXPECT_NE(SnmpUtilOidAppend(&oid, &source), 0);
  EXPECT_EQ(Copy(oid), (Ids{7, 7}));
  SnmpUtilOidFree(&oid);
}

TEST(SnmpUtilTest, AppendOfNothingChangesNothing) {
  Ids head = {1, 3};
  AsnObjectIdentifier source = View(head);
  AsnObjectIdentifier nothing = {};
  AsnObjectIdentifier oid = {};
  ASSERT_NE(SnmpUtilOidCpy(&oid, &source), 0);
  EXPECT_NE(SnmpUtilOidAppend(&oid, &nothing), 0);
  EXPECT_EQ(Copy(oid), (Ids{1, 3}));
  SnmpUtilOidFree(&oid);
}

TEST(SnmpUtilTest, NullIdentifiersAreRefused) {
  AsnObjectIdentifier oid = {};
  EXPECT_EQ(SnmpUtilOidCpy(nullptr, &oid), 0);
  EXPECT_EQ(SnmpUtilOidAppend(nullptr, &oid), 0);
  SnmpUtilOidFree(nullptr);
}

TEST(SnmpUtilTest, MemoryIsAllocatedAndFreed) {
  constexpr UINT kBytes = 1000;
  auto* const memory = static_cast<BYTE*>(SnmpUtilMemAlloc(kBytes));
  ASSERT_NE(memory, nullptr);
  memory[kBytes - 1] = 42;
  EXPECT_EQ(memory[kBytes - 1], 42);
  SnmpUtilMemFree(memory);
  SnmpUtilMemFree(nullptr);
}

}  // namespace
}  // namespace Vask::Tests
