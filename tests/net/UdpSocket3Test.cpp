#include "net/UdpSocket3.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "net/InetAddress.h"
#include "tests/support/FaultySockets.h"

namespace Vask::Tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UdpSocket3Test : public testing::Test {
 protected:
  void Open() {
    ASSERT_TRUE(socket.Open());
    sockets.calls.clear();
  }

  FaultySockets sockets;
  UdpSocket3 socket{sockets};
};

TEST_F(UdpSocket3Test, OpenSwitchesPortUnreachableOff) {
  EXPECT_TRUE(socket.Open());
  EXPECT_THAT(sockets.calls, ElementsAre("OpenUdp", "IgnorePortUnreachable 7"));
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(UdpSocket3Test, OpenClosesTheOldSocketFirst) {
  Open();
  sockets.nextHandle = 8;
  EXPECT_TRUE(socket.Open());
  EXPECT_THAT(sockets.calls, ElementsAre("Close 7", "OpenUdp", "IgnorePortUnreachable 8"));
}

TEST_F(UdpSocket3Test, OpenFailsIfNoSocketCanBeCreated) {
  sockets.nextHandle = Platform::kInvalidSocket;
  EXPECT_FALSE(socket.Open());
  EXPECT_THAT(sockets.calls, ElementsAre("OpenUdp"));
}

TEST_F(UdpSocket3Test, OpenFailsButKeepsTheSocketIfPortUnreachableStaysOn) {
  sockets.ignoresPortUnreachable = false;
  EXPECT_FALSE(socket.Open());
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(UdpSocket3Test, BindSharesThePort) {
  Open();
  EXPECT_TRUE(socket.Bind(5140));
  EXPECT_THAT(sockets.calls, ElementsAre("AllowAddressReuse 7", "Bind 7 5140"));
}

TEST_F(UdpSocket3Test, BindReturnsWhetherItSucceeded) {
  Open();
  sockets.binds = false;
  EXPECT_FALSE(socket.Bind(5140));
}

TEST_F(UdpSocket3Test, BindWithoutASocketFails) {
  EXPECT_FALSE(socket.Bind(5140));
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST_F(UdpSocket3Test, DestructorCloses) {
  {
    UdpSocket3 shortLived(sockets);
    ASSERT_TRUE(shortLived.Open());
    sockets.calls.clear();
  }
  EXPECT_THAT(sockets.calls, ElementsAre("Close 7"));
}

TEST_F(UdpSocket3Test, DestructorOfAClosedSocketDoesNothing) {
  { const UdpSocket3 shortLived(sockets); }
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST(UdpSocket3LoopbackTest, SendsAgainAfterADatagramThatNoSocketReceived) {
  constexpr int kDatagrams = 20;
  UdpSocket3 sender;
  ASSERT_TRUE(sender.Open());
  InetAddress2 deaf;
  ASSERT_TRUE(deaf.Set("127.0.0.1:1"));
  for (int i = 0; i < kDatagrams; ++i) {
    EXPECT_EQ(Platform::SystemSockets().SendTo(sender.Handle(), "x", 1, deaf.Address()), 1) << i;
  }
}

}  // namespace
}  // namespace Vask::Tests
