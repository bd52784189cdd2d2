#include "host/ExtensionModule.h"

#include <gtest/gtest.h>

namespace {

using Host::IsUnder;
using Host::Oid;

TEST(HostOid, TextIsDottedDecimal) {
  EXPECT_EQ(Host::ToText({}), "");
  EXPECT_EQ(Host::ToText({1}), "1");
  EXPECT_EQ(Host::ToText({1, 3, 4294967295u}), "1.3.4294967295");
}

TEST(HostOid, ARootAndWhatLiesBelowAreUnderIt) {
  const Oid root = {1, 3, 6};
  EXPECT_TRUE(IsUnder({1, 3, 6}, root));
  EXPECT_TRUE(IsUnder({1, 3, 6, 0}, root));
  EXPECT_FALSE(IsUnder({1, 3}, root));
  EXPECT_FALSE(IsUnder({1, 3, 7}, root));
  EXPECT_TRUE(IsUnder({9}, {}));
}

TEST(HostOid, ComparesSubIdentifiersFirstAndLengthLast) {
  EXPECT_LT((Oid{1, 3}), (Oid{1, 3, 0}));
  EXPECT_LT((Oid{1, 3, 9}), (Oid{1, 4}));
  EXPECT_LT((Oid{1, 2147483647u}), (Oid{1, 2147483648u}));
}

}  // namespace
