#pragma once

#include "tests/support/FaultPlan.h"
#include "tests/support/ForwardingSockets.h"

namespace Vask::Tests {

// Forwards to other sockets, but fails the n-th operation that can fail, which then
// does not change the socket. As safe to share between threads as the others.
class FailingSockets final : public ForwardingSockets {
 public:
  FailingSockets(Platform::Sockets& base, FaultPlan& plan)
      : ForwardingSockets(base), m_plan(plan) {}

  // The result of a Disconnect that fails.
  Platform::Disconnection disconnection = Platform::Disconnection::NotAvailable;
  int disconnectionsFailed = 0;

  bool StartUp() noexcept override { return !m_plan.Fails() && ForwardingSockets::StartUp(); }
  Platform::SocketHandle OpenTcp() noexcept override {
    return m_plan.Fails() ? Platform::kInvalidSocket : ForwardingSockets::OpenTcp();
  }
  Platform::SocketHandle OpenUdp() noexcept override {
    return m_plan.Fails() ? Platform::kInvalidSocket : ForwardingSockets::OpenUdp();
  }
  bool Connect(Platform::SocketHandle socket,
               const Platform::SocketAddress& peer) noexcept override {
    return !m_plan.Fails() && ForwardingSockets::Connect(socket, peer);
  }
  int Send(Platform::SocketHandle socket, const char* data, std::size_t length) noexcept override {
    return m_plan.Fails() ? -1 : ForwardingSockets::Send(socket, data, length);
  }
  int Receive(Platform::SocketHandle socket, char* data, std::size_t capacity) noexcept override {
    return m_plan.Fails() ? -1 : ForwardingSockets::Receive(socket, data, capacity);
  }
  Platform::Readiness WaitReadable(Platform::SocketHandle socket,
                                   std::uint32_t timeoutMs) noexcept override {
    return m_plan.Fails() ? Platform::Readiness::Failed
                          : ForwardingSockets::WaitReadable(socket, timeoutMs);
  }
  Platform::Disconnection Disconnect(Platform::SocketHandle socket) noexcept override {
    if (!m_plan.Fails()) return ForwardingSockets::Disconnect(socket);
    ++disconnectionsFailed;
    return disconnection;
  }
  bool IgnorePortUnreachable(Platform::SocketHandle socket) noexcept override {
    return !m_plan.Fails() && ForwardingSockets::IgnorePortUnreachable(socket);
  }
  bool Bind(Platform::SocketHandle socket, std::uint16_t port) noexcept override {
    return !m_plan.Fails() && ForwardingSockets::Bind(socket, port);
  }
  int SendTo(Platform::SocketHandle socket, const char* data, std::size_t length,
             const Platform::SocketAddress& destination) noexcept override {
    return m_plan.Fails() ? -1 : ForwardingSockets::SendTo(socket, data, length, destination);
  }
  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    return !m_plan.Fails() && ForwardingSockets::LookUp(name, addressNetworkOrder);
  }
  bool HostName(char* name, std::size_t capacity) noexcept override {
    return !m_plan.Fails() && ForwardingSockets::HostName(name, capacity);
  }

 private:
  FaultPlan& m_plan;
};

}  // namespace Vask::Tests
