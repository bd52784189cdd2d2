#pragma once

#include <cstdint>

#include "net/InetSocket.h"

namespace Vask {

// A TCP connection that this side opens.
class InetSocketConnector final : public InetSocket {
 public:
  using InetSocket::InetSocket;

  // Closes what is open and connects to a host (InetAddress::Set says how its
  // text is read) and port, in host order. Blocks for the look-up of a name and
  // for the connection, up to the system's own time-out or until a Shutdown.
  // False, and then closed, when there is no connection; an address that cannot
  // be found leaves the old connection as it is.
  [[nodiscard]] bool Connect(const char* host, std::uint32_t port);
};

}  // namespace Vask
