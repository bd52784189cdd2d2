#pragma once

#include "platform/Sockets.h"

namespace Vask::Tests {

// Forwards every call to another Sockets object. A test derives from it and overrides one or
// two operations. As safe to share between threads as the other object.
class ForwardingSockets : public Platform::Sockets {
 public:
  // `base` must outlive this object.
  explicit ForwardingSockets(Platform::Sockets& base = Platform::SystemSockets()) : m_base(base) {}

  bool StartUp() noexcept override { return m_base.StartUp(); }
  Platform::SocketHandle OpenTcp() noexcept override { return m_base.OpenTcp(); }
  Platform::SocketHandle OpenUdp() noexcept override { return m_base.OpenUdp(); }
  bool Connect(Platform::SocketHandle socket,
               const Platform::SocketAddress& peer) noexcept override {
    return m_base.Connect(socket, peer);
  }
  void SetBlocking(Platform::SocketHandle socket) noexcept override { m_base.SetBlocking(socket); }
  int Send(Platform::SocketHandle socket, const char* data, std::size_t length) noexcept override {
    return m_base.Send(socket, data, length);
  }
  bool LastErrorWouldBlock() noexcept override { return m_base.LastErrorWouldBlock(); }
  int Receive(Platform::SocketHandle socket, char* data, std::size_t capacity) noexcept override {
    return m_base.Receive(socket, data, capacity);
  }
  Platform::Readiness WaitReadable(Platform::SocketHandle socket,
                                   std::uint32_t timeoutMs) noexcept override {
    return m_base.WaitReadable(socket, timeoutMs);
  }
  Platform::Disconnection Disconnect(Platform::SocketHandle socket) noexcept override {
    return m_base.Disconnect(socket);
  }
  void Shutdown(Platform::SocketHandle socket) noexcept override { m_base.Shutdown(socket); }
  void Close(Platform::SocketHandle socket) noexcept override { m_base.Close(socket); }
  bool IgnorePortUnreachable(Platform::SocketHandle socket) noexcept override {
    return m_base.IgnorePortUnreachable(socket);
  }
  void AllowAddressReuse(Platform::SocketHandle socket) noexcept override {
    m_base.AllowAddressReuse(socket);
  }
  bool Bind(Platform::SocketHandle socket, std::uint16_t port) noexcept override {
    return m_base.Bind(socket, port);
  }
  int SendTo(Platform::SocketHandle socket, const char* data, std::size_t length,
             const Platform::SocketAddress& destination) noexcept override {
    return m_base.SendTo(socket, data, length, destination);
  }
  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    return m_base.LookUp(name, addressNetworkOrder);
  }
  bool HostName(char* name, std::size_t capacity) noexcept override {
    return m_base.HostName(name, capacity);
  }

 protected:
  ~ForwardingSockets() = default;

 private:
  Platform::Sockets& m_base;
};

}  // namespace Vask::Tests
