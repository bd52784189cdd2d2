#include "net/InetSocketConnector.h"

#include "net/InetAddress.h"

namespace Vask {

bool InetSocketConnector::Connect(const char* host, std::uint32_t port) {
  InetAddress peer(m_sockets);
  if (peer.Set(host, port) != InetAddress::kOk) return false;
  Close();
  const Platform::SocketHandle handle = m_sockets.OpenTcp();
  if (handle == Platform::kInvalidSocket) return false;
  Adopt(handle);
  if (!m_sockets.Connect(handle, peer.Address())) {
    m_sockets.Close(TakeHandle());
    return false;
  }
  m_sockets.SetBlocking(handle);
  return true;
}

}  // namespace Vask
