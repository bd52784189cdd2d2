#pragma once

#include <cstdint>

#include "platform/Sockets.h"

namespace Vask::Platform {

// The server side of TCP, which the agent itself does not have: a socket that
// listens on 127.0.0.1. Used by the simulator and by tests.
//
// One thread at a time.
class ListeningSocket {
 public:
  ListeningSocket() = default;
  ~ListeningSocket() { Close(); }
  ListeningSocket(const ListeningSocket&) = delete;
  ListeningSocket& operator=(const ListeningSocket&) = delete;

  // Listens on a port of 127.0.0.1, 0 for any free one. `backlog` connections
  // may wait to be accepted. False when the port cannot be had. Connections that
  // were made through the port before do not keep it from being had again.
  [[nodiscard]] bool Open(std::uint16_t port, int backlog = 16);

  [[nodiscard]] bool IsOpen() const { return m_handle != kInvalidSocket; }
  // The port in host order; 0 before Open.
  [[nodiscard]] std::uint16_t Port() const { return m_port; }

  // Waits for a connection and answers its handle, which is the caller's to
  // close. kInvalidSocket when the time is over. What is sent on it goes out at
  // once, small pieces too.
  [[nodiscard]] SocketHandle Accept(std::uint32_t timeoutMs);

  // From now on connections are refused; those accepted go on, those that still
  // wait are reset.
  void Close();

 private:
  SocketHandle m_handle = kInvalidSocket;
  std::uint16_t m_port = 0;
};

}  // namespace Vask::Platform
