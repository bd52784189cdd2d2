#include "platform/ListeningSocket.h"

#include <winsock2.h>

#include <utility>

namespace Vask::Platform {

namespace {

bool BindToLoopback(SOCKET socket, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

std::uint16_t PortOf(SOCKET socket) {
  sockaddr_in address{};
  int length = sizeof address;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) return 0;
  return ntohs(address.sin_port);
}

}  // namespace

bool ListeningSocket::Open(std::uint16_t port, int backlog) {
  Close();
  if (!SystemSockets().StartUp()) return false;
  SystemSocket opened(socket(AF_INET, SOCK_STREAM, 0));
  if (!opened.Valid() || !BindToLoopback(opened.Get(), port) ||
      listen(opened.Get(), backlog) != 0) {
    return false;
  }
  m_socket = std::move(opened);
  m_port = PortOf(m_socket.Get());
  return true;
}

SocketHandle ListeningSocket::Accept(std::uint32_t timeoutMs) {
  if (!IsOpen() || SystemSockets().WaitReadable(m_socket.Get(), timeoutMs) != Readiness::Readable) {
    return kInvalidSocket;
  }
  const SOCKET connection = accept(m_socket.Get(), nullptr, nullptr);
  if (connection == INVALID_SOCKET) return kInvalidSocket;
  const BOOL on = TRUE;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  return connection;
}

}  // namespace Vask::Platform
