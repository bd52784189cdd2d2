#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "net/InetAddress.h"
#include "net/UdpSocket3.h"
#include "platform/Sockets.h"

namespace Vask {

// The longest datagram (RFC 3164, section 4.1); a longer line is cut.
inline constexpr std::size_t kSyslogCapacity = 1024;

// Builds a log line as a syslog server takes it: RFC 3164's priority, the prefix and
// the text, such as "<134>Info: text", without time stamp and host name. The facility
// is 16 ("local use 0"). The severity is 3 for "Error: " and "TRACE: ", 4 for
// "Warning: " and 6 for "Info: ". Returns the datagram's length; there is no
// terminating zero.
[[nodiscard]] std::size_t BuildSyslogDatagram(std::string_view prefix, std::string_view text,
                                              char (&datagram)[kSyslogCapacity]) noexcept;

// Sends log lines to a syslog server, one datagram each; off at first. There is no reply,
// so the sender does not know whether a datagram arrived. Not thread-safe: the daily
// log's lock guards it.
class SyslogSender {
 public:
  explicit SyslogSender(Platform::Sockets& sockets);

  // Opens a new socket to `server` and switches the sender on. Returns false if no
  // socket can be created. The datagrams leave from `localPort`; a negative one means
  // the port used last time. With 0, or if the port is in use, they leave from any port.
  [[nodiscard]] bool Enable(const InetAddress2& server, std::int32_t localPort);
  void Disable();

  [[nodiscard]] bool Enabled() const noexcept { return m_enabled; }

  void Send(std::string_view prefix, std::string_view text);

 private:
  bool m_enabled = false;
  std::int32_t m_localPort = 0;
  InetAddress2 m_server;
  UdpSocket3 m_socket;
  Platform::Sockets& m_sockets;
};

}  // namespace Vask
