#pragma once

#include "platform/Sockets.h"

namespace Vask {

// The IPv4 address and port of a syslog server. Not thread-safe.
class InetAddress2 {
 public:
  // Where syslog servers listen (RFC 5426, section 3.3).
  static constexpr unsigned kDefaultPort = 514;

  explicit InetAddress2(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(&sockets) {}
  virtual ~InetAddress2() = default;
  InetAddress2(const InetAddress2&) = default;
  InetAddress2& operator=(const InetAddress2&) = default;

  // Takes "host" or "host:port", as net/AddressText.h reads it. "localhost" is
  // 127.0.0.1 without a look-up; any other name is looked up, which may block.
  // False, with the address as it was, for a text that is no address and for a
  // name that nobody knows.
  [[nodiscard]] bool Set(const char* hostAndPort);

  // 0.0.0.0 port 0 before the first success.
  [[nodiscard]] const Platform::SocketAddress& Address() const { return m_address; }

 private:
  bool LookUp(const char* host, std::uint32_t& addressNetworkOrder);

  Platform::Sockets* m_sockets;
  Platform::SocketAddress m_address;
};

}  // namespace Vask
