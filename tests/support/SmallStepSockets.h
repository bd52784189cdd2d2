#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <thread>

#include "platform/Sockets.h"

namespace Vask::Tests {

// The machine's sockets, but a send takes only a few bytes at a time and then
// lets other threads run, as one does whose peer reads slowly. Any thread.
class SmallStepSockets final : public Platform::Sockets {
 public:
  static constexpr std::size_t kStepBytes = 50;

  int Send(Platform::SocketHandle socket, const char* data, std::size_t length) noexcept override {
    std::this_thread::yield();
    return m_system.Send(socket, data, std::min(length, kStepBytes));
  }

  bool StartUp() noexcept override { return m_system.StartUp(); }
  Platform::SocketHandle OpenTcp() noexcept override { return m_system.OpenTcp(); }
  Platform::SocketHandle OpenUdp() noexcept override { return m_system.OpenUdp(); }
  bool Connect(Platform::SocketHandle socket,
               const Platform::SocketAddress& peer) noexcept override {
    return m_system.Connect(socket, peer);
  }
  void SetBlocking(Platform::SocketHandle socket) noexcept override {
    m_system.SetBlocking(socket);
  }
  bool LastErrorWouldBlock() noexcept override { return m_system.LastErrorWouldBlock(); }
  int Receive(Platform::SocketHandle socket, char* data, std::size_t capacity) noexcept override {
    return m_system.Receive(socket, data, capacity);
  }
  Platform::Readiness WaitReadable(Platform::SocketHandle socket,
                                   std::uint32_t timeoutMs) noexcept override {
    return m_system.WaitReadable(socket, timeoutMs);
  }
  Platform::Disconnection Disconnect(Platform::SocketHandle socket) noexcept override {
    return m_system.Disconnect(socket);
  }
  void Shutdown(Platform::SocketHandle socket) noexcept override { m_system.Shutdown(socket); }
  void Close(Platform::SocketHandle socket) noexcept override { m_system.Close(socket); }
  bool IgnorePortUnreachable(Platform::SocketHandle socket) noexcept override {
    return m_system.IgnorePortUnreachable(socket);
  }
  void AllowAddressReuse(Platform::SocketHandle socket) noexcept override {
    m_system.AllowAddressReuse(socket);
  }
  bool Bind(Platform::SocketHandle socket, std::uint16_t port) noexcept override {
    return m_system.Bind(socket, port);
  }
  int SendTo(Platform::SocketHandle socket, const char* data, std::size_t length,
             const Platform::SocketAddress& destination) noexcept override {
    return m_system.SendTo(socket, data, length, destination);
  }
  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    return m_system.LookUp(name, addressNetworkOrder);
  }
  bool HostName(char* name, std::size_t capacity) noexcept override {
    return m_system.HostName(name, capacity);
  }

 private:
  Platform::Sockets& m_system = Platform::SystemSockets();
};

}  // namespace Vask::Tests
