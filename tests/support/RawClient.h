#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/Sockets.h"

namespace Vask::Tests {

// A TCP client of 127.0.0.1 that sends and receives single bytes. One thread may use it.
class RawClient {
 public:
  static constexpr std::uint32_t kPatienceMs = 60'000;

  RawClient() { Platform::SystemSockets().StartUp(); }
  ~RawClient() { Close(); }
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;

  [[nodiscard]] bool Connect(std::uint16_t port) {
    Close();
    m_handle = Platform::SystemSockets().OpenTcp();
    Platform::SocketAddress address;
    address.portNetworkOrder = static_cast<std::uint16_t>(port << 8 | port >> 8);
    const unsigned char host[4] = {127, 0, 0, 1};
    std::memcpy(&address.addressNetworkOrder, host, sizeof host);
    return Platform::SystemSockets().Connect(m_handle, address);
  }

  [[nodiscard]] bool Send(std::string_view bytes) {
    return Platform::SystemSockets().Send(m_handle, bytes.data(), bytes.size()) ==
           static_cast<int>(bytes.size());
  }

  // Returns `count` bytes, or fewer if the stream ends or the time is over.
  [[nodiscard]] std::string Receive(std::size_t count) {
    std::string bytes;
    char byte = 0;
    while (bytes.size() < count && ReceiveOne(byte) == 1) bytes += byte;
    return bytes;
  }

  // True if the peer has closed the stream in order.
  [[nodiscard]] bool ReceivesEnd() {
    char byte = 0;
    return ReceiveOne(byte) == 0;
  }

  void Close() {
    if (m_handle == Platform::kInvalidSocket) return;
    Platform::SystemSockets().Shutdown(m_handle);
    Platform::SystemSockets().Close(m_handle);
    m_handle = Platform::kInvalidSocket;
  }

 private:
  int ReceiveOne(char& byte) {
    if (Platform::SystemSockets().WaitReadable(m_handle, kPatienceMs) !=
        Platform::Readiness::Readable) {
      return -1;
    }
    return Platform::SystemSockets().Receive(m_handle, &byte, 1);
  }

  Platform::SocketHandle m_handle = Platform::kInvalidSocket;
};

}  // namespace Vask::Tests
