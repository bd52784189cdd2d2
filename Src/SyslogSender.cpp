#include "Src/SyslogSender.h"

#include "Src/SyslogDatagram.h"

namespace Vask {

SyslogSender::SyslogSender(Platform::Sockets& sockets)
    : m_server(sockets), m_socket(sockets), m_sockets(sockets) {}

bool SyslogSender::Enable(const InetAddress2& server, std::int32_t localPort) {
  m_server = server;
  // Without the setting an answer "nobody listens" only costs a datagram.
  (void)m_socket.Open();
  if (m_socket.Handle() == Platform::kInvalidSocket) return false;
  if (localPort < 0) localPort = m_localPort;
  if (localPort != 0) (void)m_socket.Bind(static_cast<std::uint16_t>(localPort));
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
  (void)m_sockets.SendTo(m_socket.Handle(), datagram, length, m_server.Address());
}

}  // namespace Vask
