#include "platform/ListeningSocket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <utility>

namespace Vask::Platform {

namespace {

bool BindToLoopback(int socket, std::uint16_t port) {
  // Otherwise closed connections that linger would keep the port.
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

std::uint16_t PortOf(int socket) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) return 0;
  return ntohs(address.sin_port);
}

}  // namespace

bool ListeningSocket::Open(std::uint16_t port, int backlog) {
  Close();
  const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (handle < 0) return false;
  SystemSocket opened(static_cast<SocketHandle>(handle));
  if (!BindToLoopback(handle, port) || listen(handle, backlog) != 0) return false;
  m_socket = std::move(opened);
  m_port = PortOf(handle);
  return true;
}

SocketHandle ListeningSocket::Accept(std::uint32_t timeoutMs) {
  if (!IsOpen() || SystemSockets().WaitReadable(m_socket.Get(), timeoutMs) != Readiness::Readable) {
    return kInvalidSocket;
  }
  const int connection = accept4(static_cast<int>(m_socket.Get()), nullptr, nullptr, SOCK_CLOEXEC);
  if (connection < 0) return kInvalidSocket;
  const int on = 1;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return static_cast<SocketHandle>(connection);
}

}  // namespace Vask::Platform
