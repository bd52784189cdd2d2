#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "platform/Snmp.h"

namespace Vask::Platform {
namespace {

AsnObjectIdentifier View(std::vector<UINT>& ids) {
  return {static_cast<UINT>(ids.size()), ids.data()};
}

TEST(SnmpLimitTest, CopyOfAnEmptyIdentifierNeedsNoMemory) {
  AsnObjectIdentifier empty = {};
  UINT before = 0;
  AsnObjectIdentifier copy = {1, &before};
  EXPECT_NE(SnmpUtilOidCpy(&copy, &empty), 0);
  EXPECT_EQ(copy.idLength, 0u);
  EXPECT_EQ(copy.ids, nullptr);
}

TEST(SnmpLimitTest, AppendTo128SubIdentifiersFromNothing) {
  std::vector<UINT> all(128, 3);
  AsnObjectIdentifier more = View(all);
  AsnObjectIdentifier oid = {};
  EXPECT_NE(SnmpUtilOidAppend(&oid, &more), 0);
  EXPECT_EQ(oid.idLength, 128u);
  SnmpUtilOidFree(&oid);
}

TEST(SnmpLimitTest, AppendOfNothingKeepsTheMemory) {
  std::vector<UINT> head = {1, 3};
  AsnObjectIdentifier source = View(head);
  AsnObjectIdentifier nothing = {};
  AsnObjectIdentifier oid = {};
  ASSERT_NE(SnmpUtilOidCpy(&oid, &source), 0);
  const UINT* const before = oid.ids;
  EXPECT_NE(SnmpUtilOidAppend(&oid, &nothing), 0);
  EXPECT_EQ(oid.ids, before);
  SnmpUtilOidFree(&oid);
}

TEST(SnmpLimitTest, ComparisonWithNoIdentifierIsZero) {
  std::vector<UINT> ids = {1, 3};
  AsnObjectIdentifier oid = View(ids);
  EXPECT_EQ(SnmpUtilOidNCmp(nullptr, &oid, 2), 0);
  EXPECT_EQ(SnmpUtilOidNCmp(&oid, nullptr, 2), 0);
}

// SNMP sets the limit. Not all functions of Windows and Wine keep it.
TEST(SnmpLimitTest, AppendRefusesMoreThan128SubIdentifiers) {
  std::vector<UINT> head(64, 1);
  AsnObjectIdentifier source = View(head);
  for (const std::size_t length : {64u, 65u, 129u}) {
    std::vector<UINT> tail(length, 2);
    AsnObjectIdentifier more = View(tail);
    AsnObjectIdentifier oid = {};
    ASSERT_NE(SnmpUtilOidCpy(&oid, &source), 0);
    EXPECT_EQ(SnmpUtilOidAppend(&oid, &more) != 0, length == 64u) << length;
    EXPECT_EQ(oid.idLength, length == 64u ? 128u : 64u) << length;
    SnmpUtilOidFree(&oid);
  }
}

}  // namespace
}  // namespace Vask::Platform
