// A signal that arrives while Sockets waits for a peer interrupts the call of the system. The
// call goes on all the same.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "platform/Sockets.h"
#include "tests/platform/linux/Interruption.h"

namespace Vask::Tests {
namespace {

using Platform::SocketHandle;

class InterruptedSocketTest : public testing::Test {
 protected:
  InterruptedSocketTest() {
    std::array<int, 2> pair{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()), 0);
    m_socket = static_cast<SocketHandle>(pair[0]);
    m_peer = pair[1];
  }
  ~InterruptedSocketTest() override {
    m_sockets.Close(m_socket);
    close(m_peer);
  }

  Platform::Sockets& m_sockets = Platform::SystemSockets();
  SocketHandle m_socket = Platform::kInvalidSocket;
  int m_peer = -1;
  const Interruption m_interruption;
};

TEST_F(InterruptedSocketTest, ReceiveReturnsTheBytesThatArriveLater) {
  std::string got(16, '-');
  std::thread receiver = Interruption::Run(SYS_recvfrom, [&] {
    const int length = m_sockets.Receive(m_socket, got.data(), got.size());
    got.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
  });
  EXPECT_EQ(send(m_peer, "later", 5, 0), 5);
  receiver.join();
  EXPECT_EQ(got, "later");
}

TEST_F(InterruptedSocketTest, SendWaitsForRoom) {
  const std::string piece(4096, 'x');
  const int full = static_cast<int>(m_socket);
  while (send(full, piece.data(), piece.size(), MSG_DONTWAIT) > 0) continue;
  int sent = 0;
  std::thread sender = Interruption::Run(SYS_sendto, [&] {
    sent = m_sockets.Send(m_socket, "late", 4);
    m_sockets.Shutdown(m_socket);
  });
  std::string got;
  std::array<char, 65536> taken{};
  for (ssize_t length; (length = recv(m_peer, taken.data(), taken.size(), 0)) > 0;) {
    got.append(taken.data(), static_cast<std::size_t>(length));
  }
  sender.join();
  EXPECT_EQ(sent, 4);
  EXPECT_EQ(got.substr(got.find_last_of('x') + 1), "late");
}

TEST_F(InterruptedSocketTest, WaitEndsAsIfItsTimeWereOver) {
  Platform::Readiness readiness = Platform::Readiness::Readable;
  std::thread waiter =
      Interruption::Run(SYS_poll, [&] { readiness = m_sockets.WaitReadable(m_socket, 60'000); });
  waiter.join();
  EXPECT_EQ(readiness, Platform::Readiness::TimedOut);
}

// A listener that accepts nothing lets one connection wait, and no second one.
class InterruptedConnectTest : public InterruptedSocketTest {
 protected:
  InterruptedConnectTest() {
    socklen_t length = sizeof m_address;
    EXPECT_EQ(bind(m_listener, reinterpret_cast<const sockaddr*>(&m_address), length), 0);
    EXPECT_EQ(listen(m_listener, 0), 0);
    EXPECT_EQ(getsockname(m_listener, reinterpret_cast<sockaddr*>(&m_address), &length), 0);
    m_first = m_sockets.OpenTcp();
    EXPECT_TRUE(m_sockets.Connect(m_first, m_address));
  }
  ~InterruptedConnectTest() override {
    m_sockets.Close(m_first);
    if (m_listener >= 0) close(m_listener);
  }

  // Connects, and does something behind the interruption. Returns the result.
  bool ConnectInterrupted(const std::function<void()>& then) {
    const SocketHandle second = m_sockets.OpenTcp();
    bool connected = false;
    std::thread connector =
        Interruption::Run(SYS_connect, [&] { connected = m_sockets.Connect(second, m_address); });
    then();
    connector.join();
    EXPECT_EQ(m_sockets.Send(second, "x", 1), connected ? 1 : -1);
    m_sockets.Close(second);
    return connected;
  }

  int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  Platform::SocketAddress m_address{.addressNetworkOrder = htonl(INADDR_LOOPBACK)};
  SocketHandle m_first = Platform::kInvalidSocket;
};

TEST_F(InterruptedConnectTest, ConnectsWhenTheListenerHasRoom) {
  EXPECT_TRUE(ConnectInterrupted([this] { close(accept(m_listener, nullptr, nullptr)); }));
}

TEST_F(InterruptedConnectTest, IsRefusedWhenTheListenerEnds) {
  EXPECT_FALSE(ConnectInterrupted([this] { close(std::exchange(m_listener, -1)); }));
}

}  // namespace
}  // namespace Vask::Tests
