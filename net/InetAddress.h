#pragma once

#include <cstdint>

#include "platform/Sockets.h"

namespace Vask {

// The IPv4 address and port of a TCP peer. Not thread-safe.
class InetAddress {
 public:
  // What Set answers.
  static constexpr std::int32_t kOk = 0;
  static constexpr std::int32_t kFailed = -1;  // all bits set

  explicit InetAddress(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(&sockets) {}
  virtual ~InetAddress() = default;

  // Takes "host" with `port` (host order) or "host:port", as net/AddressText.h
  // reads it. A name is looked up, which may block; "localhost" is looked up
  // under this machine's own name, so that it is an address of the machine and
  // not necessarily 127.0.0.1. kFailed, with the address as it was, for a text
  // that is no address and for a name that nobody knows.
  [[nodiscard]] std::int32_t Set(const char* host, std::uint32_t port);

  // 0.0.0.0 port 0 before the first success.
  [[nodiscard]] const Platform::SocketAddress& Address() const { return m_address; }

 private:
  bool LookUp(const char* host, std::uint32_t& addressNetworkOrder);

  Platform::Sockets* m_sockets;
  Platform::SocketAddress m_address;
};

}  // namespace Vask
