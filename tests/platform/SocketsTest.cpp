#include "platform/Sockets.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>

#include "platform/Event.h"
#include "platform/ListeningSocket.h"

namespace Vask::Tests {
namespace {

using Platform::Event;
using Platform::EventReset;
using Platform::kInvalidSocket;
using Platform::ListeningSocket;
using Platform::Readiness;
using Platform::SocketAddress;
using Platform::SocketHandle;

constexpr std::uint32_t kPatienceMs = 20'000;
constexpr std::uint32_t kGlanceMs = 100;

Platform::Sockets& System() {
  return Platform::SystemSockets();
}

SocketAddress Loopback(std::uint16_t port) {
  const std::uint8_t host[] = {127, 0, 0, 1};
  const std::uint8_t portBytes[] = {static_cast<std::uint8_t>(port >> 8),
                                    static_cast<std::uint8_t>(port & 0xFF)};
  SocketAddress address;
  std::memcpy(&address.addressNetworkOrder, host, sizeof host);
  std::memcpy(&address.portNetworkOrder, portBytes, sizeof portBytes);
  return address;
}

bool SendText(SocketHandle socket, const std::string& text) {
  return System().Send(socket, text.data(), text.size()) == static_cast<int>(text.size());
}

// All received bytes until the end, and how the connection ended.
struct Stream {
  std::string bytes;
  int end = 1;  // 0: orderly, -1: otherwise
};

Stream ReceiveAll(SocketHandle socket) {
  Stream stream;
  char buffer[4096];
  while (stream.end > 0) {
    stream.end = System().Receive(socket, buffer, sizeof buffer);
    if (stream.end > 0) stream.bytes.append(buffer, static_cast<std::size_t>(stream.end));
  }
  return stream;
}

// Whether a reset followed the orderly end. Then the first send fails; otherwise
// only a later one can fail.
bool WasReset(SocketHandle socket) {
  return !SendText(socket, "x");
}

// A connection and both of its ends.
class SocketsTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(listener.Open(0));
    near = System().OpenTcp();
    ASSERT_TRUE(System().Connect(near, Loopback(listener.Port())));
    far = listener.Accept(kPatienceMs);
    ASSERT_NE(far, kInvalidSocket);
  }
  void TearDown() override {
    CloseNear();
    System().Close(far);
  }
  void CloseNear() {
    if (near != kInvalidSocket) System().Close(near);
    near = kInvalidSocket;
  }
  // Waits until the bytes of the far end have arrived.
  void AwaitArrival() { ASSERT_EQ(System().WaitReadable(near, kPatienceMs), Readiness::Readable); }

  ListeningSocket listener;
  SocketHandle near = kInvalidSocket;
  SocketHandle far = kInvalidSocket;
};

TEST_F(SocketsTest, BytesArriveInBothDirections) {
  char buffer[16];
  EXPECT_TRUE(SendText(near, "there"));
  EXPECT_EQ(System().Receive(far, buffer, sizeof buffer), 5);
  EXPECT_TRUE(SendText(far, "back"));
  EXPECT_EQ(System().Receive(near, buffer, sizeof buffer), 4);
  EXPECT_EQ(std::string(buffer, 4), "back");
}

TEST_F(SocketsTest, WaitDistinguishesSilenceFromArrival) {
  EXPECT_EQ(System().WaitReadable(near, 0), Readiness::TimedOut);
  EXPECT_EQ(System().WaitReadable(near, kGlanceMs), Readiness::TimedOut);
  ASSERT_TRUE(SendText(far, "x"));
  EXPECT_EQ(System().WaitReadable(near, kPatienceMs), Readiness::Readable);
}

TEST_F(SocketsTest, WaitReportsTheEndOfTheStreamAsReadable) {
  System().Shutdown(far);
  EXPECT_EQ(System().WaitReadable(near, kPatienceMs), Readiness::Readable);
  EXPECT_EQ(ReceiveAll(near).end, 0);
}

TEST_F(SocketsTest, DisconnectIsAvailableAndOrderly) {
  EXPECT_EQ(System().Disconnect(near), Platform::Disconnection::Done);
  EXPECT_EQ(ReceiveAll(far).end, 0);
}

TEST_F(SocketsTest, PeerGetsEverythingThatWasSentBeforeTheEnd) {
  const std::string sent(100'000, 'x');
  ASSERT_TRUE(SendText(near, sent));
  System().Disconnect(near);
  System().Shutdown(near);
  CloseNear();
  const Stream stream = ReceiveAll(far);
  EXPECT_EQ(stream.bytes.size(), sent.size());
  EXPECT_EQ(stream.end, 0);
}

TEST_F(SocketsTest, EndWithBytesUnreadIsNoReset) {
  ASSERT_TRUE(SendText(far, std::string(10'000, 'x')));
  AwaitArrival();
  ASSERT_TRUE(SendText(near, "last"));
  System().Disconnect(near);
  System().Shutdown(near);
  CloseNear();
  const Stream stream = ReceiveAll(far);
  EXPECT_EQ(stream.bytes, "last");
  EXPECT_EQ(stream.end, 0);
  EXPECT_FALSE(WasReset(far));
}

TEST_F(SocketsTest, ShutdownWithBytesUnreadIsNoReset) {
  ASSERT_TRUE(SendText(far, std::string(10'000, 'x')));
  AwaitArrival();
  System().Shutdown(near);
  CloseNear();
  EXPECT_EQ(ReceiveAll(far).end, 0);
  EXPECT_FALSE(WasReset(far));
}

TEST_F(SocketsTest, ShutdownEndsAWaitingReceive) {
  Event waiting(EventReset::Manual);
  std::thread reader([&] {
    waiting.Set();
    EXPECT_LE(ReceiveAll(near).end, 0);
  });
  ASSERT_TRUE(waiting.Wait(kPatienceMs));
  System().Shutdown(near);
  reader.join();
}

TEST_F(SocketsTest, ShutdownEndsASendThatWaitsForThePeer) {
  Event ended(EventReset::Manual);
  std::thread sender([&] {
    const std::string much(1'000'000, 'x');
    while (SendText(near, much)) {
    }
    ended.Set();
  });
  EXPECT_FALSE(ended.Wait(kGlanceMs));
  System().Shutdown(near);
  EXPECT_TRUE(ended.Wait(kPatienceMs));
  sender.join();
}

TEST_F(SocketsTest, SendToAPeerThatIsGoneFailsWithoutASignal) {
  System().Close(far);
  far = kInvalidSocket;
  const std::string piece(10'000, 'x');
  int sends = 0;
  while (SendText(near, piece) && sends < 1'000) ++sends;
  EXPECT_LT(sends, 1'000);
  EXPECT_FALSE(System().LastErrorWouldBlock());
}

TEST(ClosedSocketTest, EveryCallFails) {
  char byte = 0;
  ASSERT_TRUE(System().StartUp());
  EXPECT_EQ(System().Send(kInvalidSocket, "x", 1), -1);
  EXPECT_FALSE(System().LastErrorWouldBlock());
  EXPECT_EQ(System().Receive(kInvalidSocket, &byte, 1), -1);
  EXPECT_EQ(System().WaitReadable(kInvalidSocket, kPatienceMs), Readiness::Failed);
  EXPECT_FALSE(System().Connect(kInvalidSocket, Loopback(1)));
  EXPECT_FALSE(System().Bind(kInvalidSocket, 0));
}

TEST(ListeningSocketTest, HasNoPortBeforeOpen) {
  const ListeningSocket listener;
  EXPECT_FALSE(listener.IsOpen());
  EXPECT_EQ(listener.Port(), 0);
}

TEST(ListeningSocketTest, PortOfAnotherListenerIsNotAvailable) {
  ListeningSocket first;
  ASSERT_TRUE(first.Open(0));
  ListeningSocket second;
  EXPECT_FALSE(second.Open(first.Port()));
  EXPECT_FALSE(second.IsOpen());
}

TEST(ListeningSocketTest, NothingIsAcceptedWithoutAConnection) {
  ListeningSocket listener;
  EXPECT_EQ(listener.Accept(0), kInvalidSocket);
  ASSERT_TRUE(listener.Open(0));
  EXPECT_EQ(listener.Accept(0), kInvalidSocket);
}

TEST(ConnectTest, PortWithoutAListenerIsRefused) {
  ListeningSocket listener;
  ASSERT_TRUE(listener.Open(0));
  const std::uint16_t port = listener.Port();
  listener.Close();
  const SocketHandle socket = System().OpenTcp();
  EXPECT_FALSE(System().Connect(socket, Loopback(port)));
  System().Close(socket);
}

// If the listener's queue is full, a connect waits for an answer that does not
// come.
TEST(ConnectTest, ShutdownEndsAConnectThatGetsNoAnswer) {
  ListeningSocket listener;
  ASSERT_TRUE(listener.Open(0, 0));
  std::array<SocketHandle, 16> sockets{};
  for (SocketHandle& socket : sockets) socket = System().OpenTcp();
  Event ended(EventReset::Manual);
  std::thread connector([&] {
    for (const SocketHandle socket : sockets) {
      if (!System().Connect(socket, Loopback(listener.Port()))) break;
    }
    ended.Set();
  });
  EXPECT_FALSE(ended.Wait(kGlanceMs));
  for (std::uint32_t waited = 0; waited < kPatienceMs; waited += kGlanceMs) {
    for (const SocketHandle socket : sockets) System().Shutdown(socket);
    if (ended.Wait(kGlanceMs)) break;
  }
  EXPECT_TRUE(ended.Wait(0));
  connector.join();
  for (const SocketHandle socket : sockets) System().Close(socket);
}

TEST(UdpTest, DatagramReachesABoundSocket) {
  ListeningSocket portFinder;
  ASSERT_TRUE(portFinder.Open(0));
  const SocketHandle receiver = System().OpenUdp();
  const SocketHandle sender = System().OpenUdp();
  ASSERT_TRUE(System().Bind(receiver, portFinder.Port()));
  EXPECT_EQ(System().SendTo(sender, "text", 4, Loopback(portFinder.Port())), 4);
  ASSERT_EQ(System().WaitReadable(receiver, kPatienceMs), Readiness::Readable);
  char buffer[16];
  EXPECT_EQ(System().Receive(receiver, buffer, sizeof buffer), 4);
  EXPECT_EQ(std::string(buffer, 4), "text");
  System().Close(sender);
  System().Close(receiver);
}

TEST(UdpTest, PortIsSharedOnlyIfBothAllowIt) {
  ListeningSocket portFinder;
  ASSERT_TRUE(portFinder.Open(0));
  const SocketHandle first = System().OpenUdp();
  const SocketHandle second = System().OpenUdp();
  const SocketHandle third = System().OpenUdp();
  System().AllowAddressReuse(first);
  System().AllowAddressReuse(second);
  EXPECT_TRUE(System().Bind(first, portFinder.Port()));
  EXPECT_TRUE(System().Bind(second, portFinder.Port()));
  EXPECT_FALSE(System().Bind(third, portFinder.Port()));
  for (const SocketHandle socket : {first, second, third}) System().Close(socket);
}

TEST(LookUpTest, LocalhostIsFound) {
  std::uint32_t address = 0;
  EXPECT_TRUE(System().LookUp("localhost", address));
  EXPECT_EQ(address, Loopback(0).addressNetworkOrder);
}

TEST(LookUpTest, NameThatCannotExistIsNotFound) {
  std::uint32_t address = 42;
  EXPECT_FALSE(System().LookUp("no such name", address));
  EXPECT_EQ(address, 42u);
}

TEST(LookUpTest, MachineHasAName) {
  char name[257] = "";
  EXPECT_TRUE(System().HostName(name, sizeof name));
  EXPECT_NE(name[0], '\0');
  EXPECT_FALSE(System().HostName(name, 1));
}

}  // namespace
}  // namespace Vask::Tests
