#pragma once

#include "net/InetAddress.h"
#include "tests/support/ForwardingSockets.h"

namespace Vask::Tests {

// The machine's sockets, but every connection goes to one port, so that tests can
// run beside an agent and beside each other. Any thread.
class RedirectedSockets final : public ForwardingSockets {
 public:
  explicit RedirectedSockets(std::uint16_t port) : m_port(port) {}

  bool Connect(Platform::SocketHandle socket,
               const Platform::SocketAddress& peer) noexcept override {
    Platform::SocketAddress redirected = peer;
    redirected.portNetworkOrder = PortNetworkOrder(m_port);
    return ForwardingSockets::Connect(socket, redirected);
  }

 private:
  const std::uint16_t m_port;
};

}  // namespace Vask::Tests
