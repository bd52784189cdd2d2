#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Sockets.h"

namespace Vask::Tests {

// UDP as a test wants it: keeps what is bound, sent, closed and looked up, and
// fails where it is told to. No datagram goes anywhere. For one thread.
class RecordingSockets final : public Platform::Sockets {
 public:
  struct Datagram {
    Platform::SocketHandle socket;
    std::string bytes;
    Platform::SocketAddress destination;
  };

  bool opensSockets = true;
  bool ignoresPortUnreachable = true;
  bool binds = true;
  std::vector<Platform::SocketHandle> opened;
  std::vector<Platform::SocketHandle> closed;
  std::vector<std::uint16_t> boundPorts;
  std::vector<std::string> lookedUp;  // "known" resolves to 10.0.0.7, other names to nothing
  std::uint32_t reused = 0;
  std::vector<Datagram> sent;

  bool StartUp() noexcept override { return true; }
  Platform::SocketHandle OpenTcp() noexcept override { return Platform::kInvalidSocket; }
  Platform::SocketHandle OpenUdp() noexcept override {
    if (!opensSockets) return Platform::kInvalidSocket;
    opened.push_back(100 + opened.size());
    return opened.back();
  }
  bool Connect(Platform::SocketHandle, const Platform::SocketAddress&) noexcept override {
    return false;
  }
  void SetBlocking(Platform::SocketHandle) noexcept override {}
  int Send(Platform::SocketHandle, const char*, std::size_t) noexcept override { return -1; }
  bool LastErrorWouldBlock() noexcept override { return false; }
  int Receive(Platform::SocketHandle, char*, std::size_t) noexcept override { return -1; }
  Platform::Readiness WaitReadable(Platform::SocketHandle, std::uint32_t) noexcept override {
    return Platform::Readiness::Failed;
  }
  Platform::Disconnection Disconnect(Platform::SocketHandle) noexcept override {
    return Platform::Disconnection::Done;
  }
  void Shutdown(Platform::SocketHandle) noexcept override {}
  void Close(Platform::SocketHandle socket) noexcept override { closed.push_back(socket); }
  bool IgnorePortUnreachable(Platform::SocketHandle) noexcept override {
    return ignoresPortUnreachable;
  }
  void AllowAddressReuse(Platform::SocketHandle) noexcept override { ++reused; }
  bool Bind(Platform::SocketHandle, std::uint16_t port) noexcept override {
    boundPorts.push_back(port);
    return binds;
  }
  int SendTo(Platform::SocketHandle socket, const char* data, std::size_t length,
             const Platform::SocketAddress& destination) noexcept override {
    sent.push_back({socket, std::string(data, length), destination});
    return static_cast<int>(length);
  }
  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    lookedUp.emplace_back(name);
    if (lookedUp.back() != "known") return false;
    addressNetworkOrder = 0x0700000Au;  // 10.0.0.7 in the order of the wire
    return true;
  }
  bool HostName(char*, std::size_t) noexcept override { return false; }
};

}  // namespace Vask::Tests
