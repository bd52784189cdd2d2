#pragma once

#include <atomic>
#include <cstdint>

#include "platform/CriticalSection.h"
#include "platform/Sockets.h"

namespace Vask {

// One TCP connection. One thread may send while another receives and a third shuts
// down. Only one thread may connect, close and destroy it, and only while no other
// thread sends or receives.
class InetSocket {
 public:
  // Results of Send. kWouldBlock: nothing was sent because the call would have blocked.
  static constexpr std::int32_t kWouldBlock = -2;
  static constexpr std::int32_t kFailed = -1;

  // Opens nothing yet. `sockets` is lent.
  explicit InetSocket(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(sockets) {}
  InetSocket(const InetSocket&) = delete;
  InetSocket& operator=(const InetSocket&) = delete;
  // Closes.
  virtual ~InetSocket() { Close(); }

  // Sends `length` bytes, or with a negative length all of a NUL-terminated text.
  // Returns the number of bytes sent, which is smaller than `length` if the system took
  // no more, or kWouldBlock or kFailed. Blocks while the peer's window is full. With
  // nothing to send it returns 0 and calls nothing.
  [[nodiscard]] std::int32_t Send(const char* data, std::int32_t length);

  // Ends the connection so that the peer sees an orderly close, then closes the handle.
  // Does nothing without a handle.
  void Close();

  // Ends both directions and keeps the handle: a thread that blocks in Send or waits
  // for bytes returns. Any thread may call it, also beside Close. Does nothing without a
  // handle, so it does not stop a connect that has not created its handle yet.
  void Shutdown();

  // kInvalidSocket when closed. This object keeps the ownership.
  [[nodiscard]] Platform::SocketHandle Handle() const {
    return m_handle.load(std::memory_order_relaxed);
  }

 protected:
  // Takes the ownership of a new handle that a connection will use.
  void Adopt(Platform::SocketHandle handle);
  // Returns the handle, which the caller must close. Returns kInvalidSocket if there is
  // none.
  [[nodiscard]] Platform::SocketHandle TakeHandle();

  Platform::Sockets& m_sockets;

 private:
  // Keeps Shutdown from using a handle that was closed and that the system may have
  // used again. Nothing blocks under it.
  Platform::CriticalSection m_handleLock{Platform::LockRank::LinkHandle};
  std::atomic<Platform::SocketHandle> m_handle{Platform::kInvalidSocket};
};

// A TCP connection that this side opens.
class InetSocketConnector final : public InetSocket {
 public:
  using InetSocket::InetSocket;

  // Closes the present connection and connects to a host (InetAddress::Set describes how
  // its text is read) and port, in host order. Blocks for the look-up of a name and for
  // the connection, up to the system's own timeout or until a Shutdown. Returns false if
  // there is no connection; then the socket is closed, except that an address which
  // cannot be found leaves the old connection as it is.
  [[nodiscard]] bool Connect(const char* host, std::uint32_t port);
};

}  // namespace Vask
