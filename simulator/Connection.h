#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/Sockets.h"

namespace Simulator {

// One accepted connection. The last thread that uses it closes it, so its handle
// is never reused meanwhile. Any thread.
class Connection {
 public:
  // Owns the socket.
  explicit Connection(Vask::Platform::SocketHandle socket) : m_socket(socket) {}

  // True if the system has taken all bytes. Blocks while the agent does not
  // read, until Shutdown. The bytes of several threads do not mix.
  [[nodiscard]] bool Send(std::string_view bytes);
  // Sends pieces with a pause between them, so that each travels alone.
  [[nodiscard]] bool SendInPieces(const std::vector<std::string_view>& pieces,
                                  std::chrono::milliseconds pause);

  [[nodiscard]] Vask::Platform::Readiness WaitReadable(std::uint32_t timeoutMs);
  // Returns the number of bytes received, 0 at the end of the stream, -1 if the
  // connection broke.
  [[nodiscard]] int Receive(char* bytes, std::size_t capacity);

  // Ends both directions in an orderly way. Waiting calls return.
  void Shutdown();

 private:
  bool SendLocked(std::string_view bytes);

  const Vask::Platform::SystemSocket m_socket;
  std::mutex m_sendLock;
};

}  // namespace Simulator
