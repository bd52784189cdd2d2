#pragma once

#include <cstdint>

#include "platform/Sockets.h"

namespace Vask {

// One UDP socket; datagrams are sent on its handle. Not thread-safe.
class UdpSocket3 {
 public:
  // Opens nothing yet. `sockets` is lent.
  explicit UdpSocket3(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(sockets) {}
  UdpSocket3(const UdpSocket3&) = delete;
  UdpSocket3& operator=(const UdpSocket3&) = delete;
  virtual ~UdpSocket3() { Close(); }

  // Closes what is open and opens a socket on which an ICMP port-unreachable
  // answer fails no later call. False when there is no socket, or when that
  // could not be set: then it is open all the same.
  [[nodiscard]] bool Open();

  // Binds to a local port, in host order, on all interfaces, sharing it with
  // others that do so too. False when it cannot, or when nothing is open.
  [[nodiscard]] bool Bind(std::uint16_t port);

  // Does nothing when nothing is open.
  void Close();

  // kInvalidSocket when closed. Stays owned by this object.
  [[nodiscard]] Platform::SocketHandle Handle() const { return m_handle; }

 private:
  Platform::Sockets& m_sockets;
  Platform::SocketHandle m_handle = Platform::kInvalidSocket;
};

}  // namespace Vask
