#pragma once

#include <cstdint>
#include <string_view>

#include "net/InetAddress2.h"
#include "net/UdpSocket3.h"
#include "platform/Sockets.h"

namespace Vask {

// Sends log lines to a syslog server, one datagram each; off at first. Whether
// one arrives is never known. Not thread-safe: the daily log's lock guards it.
class SyslogSender {
 public:
  explicit SyslogSender(Platform::Sockets& sockets);

  // Opens a new socket to `server` and switches on; false when no socket can be
  // had. The datagrams leave from `localPort`, or from the port used last time
  // when that is negative; from any with 0, and also when it is in use.
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
