#pragma once

#include <atomic>
#include <cstdint>

#include "platform/CriticalSection.h"
#include "platform/Sockets.h"

namespace Vask {

// One TCP connection. A thread may send while another receives and a third
// shuts down; connecting, closing and destroying belong to one thread, at a
// time when no other thread sends or receives.
class InetSocket {
 public:
  // What Send answers when nothing was sent because it would have had to wait.
  static constexpr std::int32_t kWouldBlock = -2;
  static constexpr std::int32_t kFailed = -1;

  // Opens nothing yet. `sockets` is lent.
  explicit InetSocket(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(sockets) {}
  InetSocket(const InetSocket&) = delete;
  InetSocket& operator=(const InetSocket&) = delete;
  // Closes.
  virtual ~InetSocket() { Close(); }

  // Sends `length` bytes, or with a negative length all of a NUL-terminated
  // text, and answers how many went out: fewer when the system took no more,
  // kWouldBlock or kFailed instead. Blocks while the peer's window is full.
  // Nothing to send is 0, without a call of the system.
  [[nodiscard]] std::int32_t Send(const char* data, std::int32_t length);

  // Ends the connection so that the peer sees an orderly close, then gives the
  // handle back. Does nothing without one.
  void Close();

  // Ends both directions and leaves the handle in place: what blocks in Send or
  // in a wait of the reader returns. From any thread, also beside Close. Does
  // nothing without a handle, so that a connect that is about to begin does not
  // hear of it.
  void Shutdown();

  // kInvalidSocket when closed. Stays owned by this object.
  [[nodiscard]] Platform::SocketHandle Handle() const {
    return m_handle.load(std::memory_order_relaxed);
  }

 protected:
  // Takes over a new handle, on which a connection is to stand.
  void Adopt(Platform::SocketHandle handle);
  // Lets go of the handle, so that the caller can close it. Where there is none
  // or it was never meant for a connection, answers kInvalidSocket.
  [[nodiscard]] Platform::SocketHandle TakeHandle();

  Platform::Sockets& m_sockets;

 private:
  // Keeps Shutdown from reaching a handle that was closed and that the system
  // may have given to somebody else. Held over nothing that blocks.
  Platform::CriticalSection m_handleLock{Platform::LockRank::LinkHandle};
  std::atomic<Platform::SocketHandle> m_handle{Platform::kInvalidSocket};
  bool m_connected VASK_GUARDED_BY(m_handleLock) = false;
};

}  // namespace Vask
