#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/Sockets.h"

namespace Vask {

// The longest host name that an address text may hold, in characters.
inline constexpr std::size_t kLongestHostName = 79;

// The parts of "host" or "host:port", without any look-up.
struct AddressText {
  std::uint16_t port = 0;                // host order, never 0
  std::uint32_t quadNetworkOrder = 0;    // the dotted quad; 0: look `host` up instead
  char host[kLongestHostName + 1] = {};  // NUL-terminated; empty with a quad
};

// Splits an address text at its first colon. The decimal number behind the colon,
// read as atoi reads it, is the port; without a colon `defaultPort` is. A port of
// 0, below 0 or over 65,535 fails. A host of exactly three dots and, around them,
// decimal numbers of at most 255 is a dotted quad, unless all four are 0; an empty
// number counts as 0. Any other host is a name and fails if it is empty or longer
// than kLongestHostName. Returns no value on failure.
[[nodiscard]] std::optional<AddressText> ParseAddressText(std::string_view text,
                                                          std::uint32_t defaultPort);

// Four numbers, in the order of an address text, as an address in network order.
[[nodiscard]] std::uint32_t QuadNetworkOrder(const std::uint8_t (&parts)[4]);

// A port in network order.
[[nodiscard]] std::uint16_t PortNetworkOrder(std::uint16_t port);

// The IPv4 address and port of a TCP peer. Not thread-safe.
class InetAddress {
 public:
  // The results of Set.
  static constexpr std::int32_t kOk = 0;
  static constexpr std::int32_t kFailed = -1;  // all bits set

  explicit InetAddress(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(&sockets) {}
  virtual ~InetAddress() = default;
  InetAddress(const InetAddress&) = default;
  InetAddress& operator=(const InetAddress&) = default;

  // Takes "host" with `port` (host order) or "host:port", as ParseAddressText reads
  // it. Looks a name up, which may block. "localhost" is looked up under this machine's
  // own name, so the result is an address of the machine, not necessarily 127.0.0.1.
  // Returns kFailed and keeps the old address if the text is no address or the name
  // cannot be found.
  [[nodiscard]] std::int32_t Set(const char* host, std::uint32_t port);

  // 0.0.0.0 port 0 before the first success.
  [[nodiscard]] const Platform::SocketAddress& Address() const { return m_address; }

 private:
  Platform::Sockets* m_sockets;
  Platform::SocketAddress m_address;
};

// The IPv4 address and port of a syslog server. Not thread-safe.
class InetAddress2 {
 public:
  // The port of syslog servers (RFC 5426, section 3.3).
  static constexpr unsigned kDefaultPort = 514;

  explicit InetAddress2(Platform::Sockets& sockets = Platform::SystemSockets())
      : m_sockets(&sockets) {}
  virtual ~InetAddress2() = default;
  InetAddress2(const InetAddress2&) = default;
  InetAddress2& operator=(const InetAddress2&) = default;

  // Takes "host" or "host:port", as ParseAddressText reads it. "localhost" is
  // 127.0.0.1 without a look-up; any other name is looked up, which may block. Returns
  // false and keeps the old address if the text is no address or the name cannot be
  // found.
  [[nodiscard]] bool Set(const char* hostAndPort);

  // 0.0.0.0 port 0 before the first success.
  [[nodiscard]] const Platform::SocketAddress& Address() const { return m_address; }

 private:
  Platform::Sockets* m_sockets;
  Platform::SocketAddress m_address;
};

}  // namespace Vask
