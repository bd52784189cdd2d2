#include "simulator/Connection.h"

#include <thread>

namespace Simulator {

using Vask::Platform::SystemSockets;

bool Connection::Send(std::string_view bytes) {
  const std::lock_guard lock(m_sendLock);
  return SendLocked(bytes);
}

bool Connection::SendInPieces(const std::vector<std::string_view>& pieces,
                              std::chrono::milliseconds pause) {
  const std::lock_guard lock(m_sendLock);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0) std::this_thread::sleep_for(pause);
    if (!SendLocked(pieces[i])) return false;
  }
  return true;
}

bool Connection::SendLocked(std::string_view bytes) {
  while (!bytes.empty()) {
    const int sent = SystemSockets().Send(m_socket.Get(), bytes.data(), bytes.size());
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

Vask::Platform::Readiness Connection::WaitReadable(std::uint32_t timeoutMs) {
  return SystemSockets().WaitReadable(m_socket.Get(), timeoutMs);
}

int Connection::Receive(char* bytes, std::size_t capacity) {
  return SystemSockets().Receive(m_socket.Get(), bytes, capacity);
}

void Connection::Shutdown() {
  SystemSockets().Shutdown(m_socket.Get());
}

}  // namespace Simulator
