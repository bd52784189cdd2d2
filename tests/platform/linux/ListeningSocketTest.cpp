#include "platform/ListeningSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

namespace Vask::Tests {
namespace {

using Platform::ListeningSocket;
using Platform::SocketHandle;
using Platform::SystemSocket;
using Platform::SystemSockets;

constexpr std::uint32_t kAcceptMs = 20'000;

bool Connects(SocketHandle socket, const char* address, const ListeningSocket& listener) {
  return SystemSockets().Connect(socket, {.portNetworkOrder = htons(listener.Port()),
                                          .addressNetworkOrder = inet_addr(address)});
}

class LinuxListeningSocketTest : public testing::Test {
 protected:
  LinuxListeningSocketTest() { EXPECT_TRUE(m_listener.Open(0)); }

  ListeningSocket m_listener;
  SystemSocket m_near{SystemSockets().OpenTcp()};
};

TEST_F(LinuxListeningSocketTest, OpensAgainOnItsOwnPort) {
  const std::uint16_t port = m_listener.Port();
  EXPECT_TRUE(m_listener.Open(port));
  EXPECT_EQ(m_listener.Port(), port);
}

// The side that ends a connection first keeps it for a minute.
TEST_F(LinuxListeningSocketTest, PortIsAvailableWhileAnEndedConnectionLingers) {
  const std::uint16_t port = m_listener.Port();
  ASSERT_TRUE(Connects(m_near.Get(), "127.0.0.1", m_listener));
  SystemSocket far(m_listener.Accept(kAcceptMs));
  far.Reset();
  char byte = 0;
  EXPECT_EQ(SystemSockets().Receive(m_near.Get(), &byte, 1), 0);
  m_near.Reset();
  m_listener.Close();
  EXPECT_TRUE(m_listener.Open(port));
}

TEST_F(LinuxListeningSocketTest, OtherAddressesOfTheMachineAreRefused) {
  EXPECT_FALSE(Connects(m_near.Get(), "127.0.0.2", m_listener));
}

TEST_F(LinuxListeningSocketTest, AcceptedConnectionSendsSmallPiecesAtOnce) {
  ASSERT_TRUE(Connects(m_near.Get(), "127.0.0.1", m_listener));
  const SystemSocket far(m_listener.Accept(kAcceptMs));
  int atOnce = 0;
  socklen_t length = sizeof atOnce;
  EXPECT_EQ(getsockopt(static_cast<int>(far.Get()), IPPROTO_TCP, TCP_NODELAY, &atOnce, &length), 0);
  EXPECT_NE(atOnce, 0);
}

// While it lives, the lowest free descriptor is 0.
class NoStandardInput {
 public:
  NoStandardInput() { close(STDIN_FILENO); }
  ~NoStandardInput() {
    if (m_before < 0) return;
    dup2(m_before, STDIN_FILENO);
    close(m_before);
  }
  NoStandardInput(const NoStandardInput&) = delete;
  NoStandardInput& operator=(const NoStandardInput&) = delete;

 private:
  const int m_before = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
};

TEST_F(LinuxListeningSocketTest, DescriptorZeroIsASocketToo) {
  const NoStandardInput free;
  {
    const SystemSocket socket(SystemSockets().OpenTcp());
    EXPECT_EQ(socket.Get(), SocketHandle{0});
  }
  {
    ListeningSocket listener;
    EXPECT_TRUE(listener.Open(0));
    EXPECT_TRUE(Connects(m_near.Get(), "127.0.0.1", listener));
  }
}

TEST_F(LinuxListeningSocketTest, ConnectionOfDescriptorZeroIsAcceptedToo) {
  ASSERT_TRUE(Connects(m_near.Get(), "127.0.0.1", m_listener));
  const NoStandardInput free;
  const SystemSocket far(m_listener.Accept(kAcceptMs));
  EXPECT_EQ(far.Get(), SocketHandle{0});
}

}  // namespace
}  // namespace Vask::Tests
