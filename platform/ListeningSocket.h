#pragma once

#include <cstdint>

#include "platform/Sockets.h"

namespace Vask::Platform {

// A TCP socket that listens on 127.0.0.1. The simulator and tests use it; the
// agent itself is a client only.
//
// For one thread at a time.
class ListeningSocket {
 public:
  // Listens on a port of 127.0.0.1, 0 for any free one. `backlog` connections
  // may wait to be accepted. False if the port is not available. Connections
  // that an earlier listener accepted do not make it unavailable.
  [[nodiscard]] bool Open(std::uint16_t port, int backlog = 16);

  [[nodiscard]] bool IsOpen() const { return m_socket.Valid(); }
  // The port in host order; 0 before Open.
  [[nodiscard]] std::uint16_t Port() const { return m_port; }

  // Waits for a connection and returns its handle, which the caller must close.
  // kInvalidSocket after the timeout. Sent bytes leave at once, small pieces
  // too.
  [[nodiscard]] SocketHandle Accept(std::uint32_t timeoutMs);

  // The system then refuses new connections and resets those that still wait.
  // Accepted connections continue.
  void Close() { m_socket.Reset(); }

 private:
  SystemSocket m_socket;
  std::uint16_t m_port = 0;
};

}  // namespace Vask::Platform
