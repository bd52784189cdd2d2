#pragma once

#include <cstdint>
#include <utility>

#include "platform/Sockets.h"

namespace Vask {

// One UDP socket. Its user sends datagrams on the handle. Not thread-safe.
class UdpSocket3 {
 public:
  // Opens nothing yet. `sockets` is lent.
  explicit UdpSocket3(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(sockets) {}
  UdpSocket3(const UdpSocket3&) = delete;
  UdpSocket3& operator=(const UdpSocket3&) = delete;
  virtual ~UdpSocket3() { Close(); }

  // Closes the present socket and opens one on which an ICMP port-unreachable answer
  // fails no later call. Returns false if there is no socket, or if that setting failed;
  // in the second case the socket is open all the same.
  [[nodiscard]] bool Open() {
    Close();
    m_handle = m_sockets.OpenUdp();
    return m_handle != Platform::kInvalidSocket && m_sockets.IgnorePortUnreachable(m_handle);
  }

  // Binds to a local port, in host order, on all interfaces, and shares it with others
  // that do so too. Returns false if that fails or nothing is open.
  [[nodiscard]] bool Bind(std::uint16_t port) {
    if (m_handle == Platform::kInvalidSocket) return false;
    m_sockets.AllowAddressReuse(m_handle);
    return m_sockets.Bind(m_handle, port);
  }

  // Does nothing if nothing is open.
  void Close() {
    const Platform::SocketHandle handle = std::exchange(m_handle, Platform::kInvalidSocket);
    if (handle != Platform::kInvalidSocket) m_sockets.Close(handle);
  }

  // kInvalidSocket when closed. This object keeps the ownership.
  [[nodiscard]] Platform::SocketHandle Handle() const { return m_handle; }

 private:
  Platform::Sockets& m_sockets;
  Platform::SocketHandle m_handle = Platform::kInvalidSocket;
};

}  // namespace Vask
