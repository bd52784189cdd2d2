#include "net/InetAddress.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>

#include "tests/support/FaultySockets.h"

namespace Vask::Tests {
namespace {

// One text for an address class, its meaning, and the look-ups that it needs.
struct AddressRow {
  const char* name;
  std::string text;
  std::string address;   // empty: refused
  std::string lookedUp;  // empty: nothing
};

void PrintTo(const AddressRow& row, std::ostream* out) {
  *out << row.name << ": \"" << row.text << '"';
}

std::string RowName(const AddressRow& row) {
  return row.name;
}

std::uint32_t NetworkOrder(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
  const std::uint8_t parts[] = {a, b, c, d};
  std::uint32_t address = 0;
  std::memcpy(&address, parts, sizeof address);
  return address;
}

// The addresses of the rows' names.
void FillNames(FaultySockets& sockets) {
  sockets.names["corvane"] = NetworkOrder(192, 0, 2, 1);
  sockets.names["machine"] = NetworkOrder(192, 0, 2, 2);
  sockets.names["0.0.0.0"] = NetworkOrder(192, 0, 2, 3);
  sockets.names["10.0.0.256"] = NetworkOrder(192, 0, 2, 4);
  sockets.names["..."] = NetworkOrder(192, 0, 2, 9);
  sockets.names["10.0.0"] = NetworkOrder(192, 0, 2, 5);
  sockets.names["10.0.0.5.6"] = NetworkOrder(192, 0, 2, 6);
  sockets.names[std::string(79, 'h')] = NetworkOrder(192, 0, 2, 7);
  sockets.names[std::string(80, 'h')] = NetworkOrder(192, 0, 2, 8);
}

// The names that were looked up, in order.
std::string LookedUp(const FaultySockets& sockets) {
  std::string names;
  for (const std::string& call : sockets.calls) {
    if (call.starts_with("LookUp ")) names += (names.empty() ? "" : " ") + call.substr(7);
  }
  return names;
}

constexpr std::uint32_t kPort = 16969;

std::string Read(FaultySockets& sockets, const std::string& text, std::uint32_t port = kPort) {
  InetAddress address(sockets);
  const std::int32_t result = address.Set(text.c_str(), port);
  if (result == -1) return "";
  EXPECT_EQ(result, 0);
  return FaultySockets::Dump(address.Address());
}

class InetAddressTexts : public testing::TestWithParam<AddressRow> {};

TEST_P(InetAddressTexts, AreReadAsAddressAndPort) {
  FaultySockets sockets;
  FillNames(sockets);
  EXPECT_EQ(Read(sockets, GetParam().text), GetParam().address);
  EXPECT_EQ(LookedUp(sockets), GetParam().lookedUp);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, InetAddressTexts,
    testing::Values(
        AddressRow{"Quad", "127.0.0.1", "127.0.0.1:16969", ""},
        AddressRow{"QuadWithPort", "127.0.0.1:600", "127.0.0.1:600", ""},
        AddressRow{"QuadOfHighestParts", "255.255.255.255", "255.255.255.255:16969", ""},
        AddressRow{"QuadWithLeadingZeros", "0010.000.00.000005", "10.0.0.5:16969", ""},
        AddressRow{"QuadOf100Characters", std::string(92, '0') + "10.0.0.5", "10.0.0.5:16969", ""},
        AddressRow{"PortZero", "127.0.0.1:0", "", ""},
        AddressRow{"PortMissingAfterColon", "127.0.0.1:", "", ""},
        AddressRow{"PortNotDecimal", "127.0.0.1:http", "", ""},
        AddressRow{"PortWithDigitsThenText", "127.0.0.1:80/tcp", "127.0.0.1:80", ""},
        AddressRow{"PortAfterBlanks", "127.0.0.1: \t\n\v\f\r80", "127.0.0.1:80", ""},
        AddressRow{"PortAfterPlus", "127.0.0.1: +80", "127.0.0.1:80", ""},
        AddressRow{"PortAfterTwoSigns", "127.0.0.1:+-80", "", ""},
        AddressRow{"PortAfterSignAndBlank", "127.0.0.1:+ 80", "", ""},
        AddressRow{"PortNegative", "127.0.0.1:-80", "", ""},
        AddressRow{"PortNegativeWrappingTo80", "127.0.0.1:-65456", "", ""},
        AddressRow{"PortHighest", "127.0.0.1:65535", "127.0.0.1:65535", ""},
        AddressRow{"PortOneTooHigh", "127.0.0.1:65536", "", ""},
        AddressRow{"PortWrappingTo80", "127.0.0.1:4294967376", "", ""},
        AddressRow{"PortOfManyDigits", "127.0.0.1:99999999999999999999999", "", ""},
        AddressRow{"FirstColonCounts", "127.0.0.1:600:700", "127.0.0.1:600", ""},
        AddressRow{"Name", "corvane", "192.0.2.1:16969", "corvane"},
        AddressRow{"NameWithPort", "corvane:80", "192.0.2.1:80", "corvane"},
        AddressRow{"NameUnknown", "nobody", "", "nobody"}, AddressRow{"NameEmpty", "", "", ""},
        AddressRow{"NameEmptyBeforeColon", ":80", "", ""},
        AddressRow{"NameOf79", std::string(79, 'h'), "192.0.2.7:16969", std::string(79, 'h')},
        AddressRow{"NameOf80", std::string(80, 'h'), "", ""},
        AddressRow{"AllZeroQuadIsAName", "0.0.0.0:5", "192.0.2.3:5", "0.0.0.0"},
        AddressRow{"PartOver255IsAName", "10.0.0.256", "192.0.2.4:16969", "10.0.0.256"},
        AddressRow{"TwoDotsAreAName", "10.0.0", "192.0.2.5:16969", "10.0.0"},
        AddressRow{"FourDotsAreAName", "10.0.0.5.6", "192.0.2.6:16969", "10.0.0.5.6"},
        AddressRow{"EmptyPartReadsZero", "10..0.5", "10.0.0.5:16969", ""},
        AddressRow{"EmptyFirstPartReadsZero", ".0.0.5", "0.0.0.5:16969", ""},
        AddressRow{"EmptyLastPartReadsZero", "10.0.5.", "10.0.5.0:16969", ""},
        AddressRow{"AllPartsEmptyAreAName", "...", "192.0.2.9:16969", "..."},
        AddressRow{"SpaceInPartIsAName", "10.0. 0.5", "", "10.0. 0.5"},
        AddressRow{"LetterInPartIsAName", "10.0.0.5x", "", "10.0.0.5x"},
        AddressRow{"LocalhostIsThisMachine", "localhost", "192.0.2.2:16969", "machine"},
        AddressRow{"LocalhostWithPort", "localhost:600", "192.0.2.2:600", "machine"}),
    [](const auto& row) { return RowName(row.param); });

TEST(AddressTextTest, HoldsAQuadOrANameOfUpTo79Characters) {
  const auto quad = ParseAddressText("10.0.0.5:600", 1);
  ASSERT_TRUE(quad);
  EXPECT_EQ(quad->quadNetworkOrder, NetworkOrder(10, 0, 0, 5));
  EXPECT_STREQ(quad->host, "");
  EXPECT_EQ(quad->port, 600);
  const std::string longest(79, 'h');
  const auto name = ParseAddressText(longest, 65'535);
  ASSERT_TRUE(name);
  EXPECT_EQ(name->quadNetworkOrder, 0u);
  EXPECT_EQ(name->host, longest);
  EXPECT_EQ(name->port, 65'535);
  EXPECT_EQ(sizeof(name->host), 80u) << "the characters and the terminating zero";
}

TEST(InetAddressTest, PortZeroFromTheCallerFails) {
  FaultySockets sockets;
  EXPECT_EQ(Read(sockets, "127.0.0.1", 0), "");
}

TEST(InetAddressTest, PortOver65535FromTheCallerFails) {
  FaultySockets sockets;
  EXPECT_EQ(Read(sockets, "127.0.0.1", 65535), "127.0.0.1:65535");
  EXPECT_EQ(Read(sockets, "127.0.0.1", 65536), "");
}

TEST(InetAddressTest, PortInTheTextReplacesOneThatWouldFail) {
  FaultySockets sockets;
  EXPECT_EQ(Read(sockets, "127.0.0.1:600", 0), "127.0.0.1:600");
}

TEST(InetAddressTest, OwnNameIsReadIntoABufferOf257Bytes) {
  FaultySockets sockets;
  FillNames(sockets);
  EXPECT_EQ(Read(sockets, "localhost"), "192.0.2.2:16969");
  EXPECT_EQ(sockets.calls.front(), "HostName 257");
}

TEST(InetAddressTest, LocalhostWithoutAnOwnNameFails) {
  FaultySockets sockets;
  sockets.hasHostName = false;
  EXPECT_EQ(Read(sockets, "localhost"), "");
}

TEST(InetAddressTest, FailureLeavesTheAddressAsItWas) {
  FaultySockets sockets;
  InetAddress address(sockets);
  ASSERT_EQ(address.Set("10.0.0.5", 600), InetAddress::kOk);
  for (const char* const text : {"nobody", "10.0.0.6:0", "10.0.0.6:65536", ""}) {
    EXPECT_EQ(address.Set(text, 700), InetAddress::kFailed) << text;
    EXPECT_EQ(FaultySockets::Dump(address.Address()), "10.0.0.5:600") << text;
  }
}

TEST(InetAddressTest, NewAddressIsZeroOfTheInternetFamily) {
  const InetAddress address;
  EXPECT_EQ(address.Address().family, 2);
  EXPECT_EQ(FaultySockets::Dump(address.Address()), "0.0.0.0:0");
}

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
