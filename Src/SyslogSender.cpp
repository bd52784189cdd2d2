#include "Src/SyslogSender.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Vask {

namespace {

unsigned Priority(std::string_view prefix) noexcept {
  constexpr unsigned kLocalUse0 = 16;
  unsigned severity = 3;
  if (prefix.starts_with('W')) severity = 4;
  if (prefix.starts_with('I')) severity = 6;
  return kLocalUse0 * 8 + severity;
}

}  // namespace

std::size_t BuildSyslogDatagram(std::string_view prefix, std::string_view text,
                                char (&datagram)[kSyslogCapacity]) noexcept {
  auto length =
      static_cast<std::size_t>(std::snprintf(datagram, sizeof datagram, "<%u>", Priority(prefix)));
  for (const std::string_view part : {prefix, text}) {
    const std::size_t taken = std::min(part.size(), sizeof datagram - length);
    std::memcpy(datagram + length, part.data(), taken);
    length += taken;
  }
  return length;
}

SyslogSender::SyslogSender(Platform::Sockets& sockets)
    : m_server(sockets), m_socket(sockets), m_sockets(sockets) {}

bool SyslogSender::Enable(const InetAddress2& server, std::int32_t localPort) {
  m_server = server;
  // Open also fails if only the setting fails. Without the setting, an ICMP
  // port-unreachable message costs one datagram, so only the handle counts.
  static_cast<void>(m_socket.Open());
  if (m_socket.Handle() == Platform::kInvalidSocket) return false;
  if (localPort < 0) localPort = m_localPort;
  if (localPort != 0) static_cast<void>(m_socket.Bind(static_cast<std::uint16_t>(localPort)));
  m_localPort = localPort;
  m_enabled = true;
  return true;
}

void SyslogSender::Disable() {
  m_enabled = false;
  m_socket.Close();
}

void SyslogSender::Send(std::string_view prefix, std::string_view text) {
  if (m_socket.Handle() == Platform::kInvalidSocket) return;
  char datagram[kSyslogCapacity];
  const std::size_t length = BuildSyslogDatagram(prefix, text, datagram);
  static_cast<void>(m_sockets.SendTo(m_socket.Handle(), datagram, length, m_server.Address()));
}

}  // namespace Vask
