#include "net/InetSocket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/FaultySockets.h"

namespace Vask::Tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InetSocketConnectorTest : public testing::Test {
 protected:
  FaultySockets sockets;
  InetSocketConnector socket{sockets};
};

TEST_F(InetSocketConnectorTest, ConnectsAndSetsBlockingMode) {
  EXPECT_TRUE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("OpenTcp", "Connect 7 127.0.0.1:16969", "SetBlocking 7"));
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(InetSocketConnectorTest, ClosesTheOldConnectionFirst) {
  ASSERT_TRUE(socket.Connect("127.0.0.1", 16969));
  sockets.calls.clear();
  sockets.nextHandle = 8;
  EXPECT_TRUE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("Disconnect 7", "Shutdown 7", "Close 7", "OpenTcp",
                                         "Connect 8 127.0.0.1:16969", "SetBlocking 8"));
}

TEST_F(InetSocketConnectorTest, AddressThatCannotBeFoundLeavesTheSocketAlone) {
  ASSERT_TRUE(socket.Connect("127.0.0.1", 16969));
  sockets.calls.clear();
  EXPECT_FALSE(socket.Connect("127.0.0.1", 0));
  EXPECT_THAT(sockets.calls, IsEmpty());
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(InetSocketConnectorTest, NoSocketToBeHadFails) {
  sockets.nextHandle = Platform::kInvalidSocket;
  EXPECT_FALSE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("OpenTcp"));
}

TEST_F(InetSocketConnectorTest, FailedConnectGivesTheHandleBack) {
  sockets.connects = false;
  EXPECT_FALSE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("OpenTcp", "Connect 7 127.0.0.1:16969", "Close 7"));
  EXPECT_EQ(socket.Handle(), Platform::kInvalidSocket);
}

TEST_F(InetSocketConnectorTest, CloseAfterAFailedConnectDoesNothing) {
  sockets.connects = false;
  ASSERT_FALSE(socket.Connect("127.0.0.1", 16969));
  sockets.calls.clear();
  socket.Close();
  EXPECT_THAT(sockets.calls, IsEmpty());
}

}  // namespace
}  // namespace Vask::Tests
