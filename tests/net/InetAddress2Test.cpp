#include "net/InetAddress.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/net/AddressRow.h"
#include "tests/support/FaultySockets.h"

namespace Vask::Tests {
namespace {

class InetAddress2Texts : public testing::TestWithParam<AddressRow> {};

TEST_P(InetAddress2Texts, AreReadAsAddressAndPort) {
  FaultySockets sockets;
  FillNames(sockets);
  InetAddress2 address(sockets);
  const bool read = address.Set(GetParam().text.c_str());
  EXPECT_EQ(read ? FaultySockets::Dump(address.Address()) : "", GetParam().address);
  EXPECT_EQ(LookedUp(sockets), GetParam().lookedUp);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, InetAddress2Texts,
    testing::Values(AddressRow{"QuadHasTheSyslogPort", "10.0.0.5", "10.0.0.5:514", ""},
                    AddressRow{"QuadWithPort", "10.0.0.5:5514", "10.0.0.5:5514", ""},
                    AddressRow{"EmptyPartReadsZero", "10..0.5", "10.0.0.5:514", ""},
                    AddressRow{"PortAfterBlankAndPlus", "10.0.0.5: +600", "10.0.0.5:600", ""},
                    AddressRow{"PortZero", "10.0.0.5:0", "", ""},
                    AddressRow{"PortMissingAfterColon", "10.0.0.5:", "", ""},
                    AddressRow{"PortHighest", "10.0.0.5:65535", "10.0.0.5:65535", ""},
                    AddressRow{"PortOneTooHigh", "10.0.0.5:65536", "", ""},
                    AddressRow{"LocalhostNeedsNoLookUp", "localhost:600", "127.0.0.1:600", ""},
                    AddressRow{"LocalhostHasTheSyslogPort", "localhost", "127.0.0.1:514", ""},
                    AddressRow{"Name", "corvane", "192.0.2.1:514", "corvane"},
                    AddressRow{"NameUnknown", "nobody:600", "", "nobody"},
                    AddressRow{"NameEmpty", "", "", ""},
                    AddressRow{"NameOf79", std::string(79, 'h'), "192.0.2.7:514",
                               std::string(79, 'h')},
                    AddressRow{"NameOf80", std::string(80, 'h'), "", ""},
                    AddressRow{"AllZeroQuadIsAName", "0.0.0.0", "192.0.2.3:514", "0.0.0.0"},
                    AddressRow{"PartOver255IsAName", "10.0.0.256", "192.0.2.4:514", "10.0.0.256"},
                    AddressRow{"TwoDotsAreAName", "10.0.0", "192.0.2.5:514", "10.0.0"},
                    AddressRow{"FourDotsAreAName", "10.0.0.5.6", "192.0.2.6:514", "10.0.0.5.6"}),
    [](const auto& row) { return RowName(row.param); });

TEST(InetAddress2Test, FailureLeavesTheAddressAsItWas) {
  FaultySockets sockets;
  InetAddress2 address(sockets);
  ASSERT_TRUE(address.Set("10.0.0.5:600"));
  for (const char* const text : {"nobody", "10.0.0.6:0", "10.0.0.6:65536", ""}) {
    EXPECT_FALSE(address.Set(text)) << text;
    EXPECT_EQ(FaultySockets::Dump(address.Address()), "10.0.0.5:600") << text;
  }
}

TEST(InetAddress2Test, NewAddressIsZero) {
  EXPECT_EQ(FaultySockets::Dump(InetAddress2().Address()), "0.0.0.0:0");
}

}  // namespace
}  // namespace Vask::Tests
