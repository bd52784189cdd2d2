#include "net/InetSocket.h"

#include <cstddef>
#include <cstring>

#include "Src/LogPrinter.h"
#include "net/InetAddress.h"

namespace Vask {

std::int32_t InetSocket::Send(const char* data, std::int32_t length) {
  if (length < 0) length = static_cast<std::int32_t>(std::strlen(data));
  std::int32_t total = 0;
  while (total < length) {
    const int sent =
        m_sockets.Send(Handle(), data + total, static_cast<std::size_t>(length - total));
    if (sent == 0) break;
    if (sent < 0) {
      if (!m_sockets.LastErrorWouldBlock()) return kFailed;
      return total > 0 ? total : kWouldBlock;
    }
    total += sent;
  }
  return total;
}

void InetSocket::Close() {
  const Platform::SocketHandle handle = TakeHandle();
  if (handle == Platform::kInvalidSocket) return;
  const Platform::Disconnection end = m_sockets.Disconnect(handle);
  if (end == Platform::Disconnection::NotAvailable) {
    LogPrinter::Instance().Error("Socket close: Error doing WSAIoctl to load DisconnectEx!\n");
  } else if (end == Platform::Disconnection::Raised) {
    LogPrinter::Instance().Error("Socket close: Exception while calling DisconnectEx!\n");
  }
  m_sockets.Shutdown(handle);
  m_sockets.Close(handle);
}

void InetSocket::Shutdown() {
  const Platform::CriticalSectionLock lock(m_handleLock);
  if (Handle() != Platform::kInvalidSocket) m_sockets.Shutdown(Handle());
}

void InetSocket::Adopt(Platform::SocketHandle handle) {
  m_handle.store(handle, std::memory_order_relaxed);
}

Platform::SocketHandle InetSocket::TakeHandle() {
  const Platform::CriticalSectionLock lock(m_handleLock);
  return m_handle.exchange(Platform::kInvalidSocket, std::memory_order_relaxed);
}

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
