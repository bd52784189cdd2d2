#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/Sockets.h"

namespace Simulator {

// One accepted connection. Closed when the last thread that uses it has let go
// of it, so its handle is never somebody else's meanwhile. Any thread.
class Connection {
 public:
  explicit Connection(Vask::Platform::SocketHandle handle) : m_handle(handle) {}
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // True when all bytes were handed to the system. Blocks while the agent does
  // not read, until Shutdown. What several threads send does not mix.
  [[nodiscard]] bool Send(std::string_view bytes);
  // The same in pieces, with a pause between them that lets each travel alone.
  [[nodiscard]] bool SendInPieces(const std::vector<std::string_view>& pieces,
                                  std::chrono::milliseconds pause);

  [[nodiscard]] Vask::Platform::Readiness WaitReadable(std::uint32_t timeoutMs);
  // Bytes received, 0 at the end of the stream, -1 when the connection broke.
  [[nodiscard]] int Receive(char* bytes, std::size_t capacity);

  // Ends both directions in an orderly way; waiting calls return.
  void Shutdown();

 private:
  bool SendLocked(std::string_view bytes);

  const Vask::Platform::SocketHandle m_handle;
  std::mutex m_sendLock;
};

}  // namespace Simulator
