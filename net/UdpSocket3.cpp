#include "net/UdpSocket3.h"

#include <utility>

namespace Vask {

bool UdpSocket3::Open() {
  Close();
  m_handle = m_sockets.OpenUdp();
  return m_handle != Platform::kInvalidSocket && m_sockets.IgnorePortUnreachable(m_handle);
}

bool UdpSocket3::Bind(std::uint16_t port) {
  if (m_handle == Platform::kInvalidSocket) return false;
  m_sockets.AllowAddressReuse(m_handle);
  return m_sockets.Bind(m_handle, port);
}

void UdpSocket3::Close() {
  const Platform::SocketHandle handle = std::exchange(m_handle, Platform::kInvalidSocket);
  if (handle != Platform::kInvalidSocket) m_sockets.Close(handle);
}

}  // namespace Vask
