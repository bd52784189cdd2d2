#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

#include "net/JsonSocket.h"
#include "platform/Sockets.h"

namespace Agent::Tests {

// Sockets with a peer that sends the same bytes on every connection and accepts
// everything. When the link waits for more bytes, the peer stops the link.
// Allocates nothing. One thread.
class ScriptedPeer final : public Vask::Platform::Sockets {
 public:
  using Handle = Vask::Platform::SocketHandle;
  using Address = Vask::Platform::SocketAddress;

  std::string greeting;
  Vask::JsonSocket* link = nullptr;
  // Called for the first connection, and when the link waits for more bytes.
  std::function<void()> onFirstConnection;
  std::function<void()> onEnd;
  int opened = 0;
  int closed = 0;
  int connections = 0;

  bool StartUp() noexcept override { return true; }
  Handle OpenTcp() noexcept override { return static_cast<Handle>(++opened); }
  Handle OpenUdp() noexcept override { return static_cast<Handle>(++opened); }
  bool Connect(Handle, const Address&) noexcept override {
    if (++connections == 1 && onFirstConnection) onFirstConnection();
    m_read = 0;
    return true;
  }
  void SetBlocking(Handle) noexcept override {}
  int Send(Handle, const char*, std::size_t length) noexcept override {
    return static_cast<int>(length);
  }
  bool LastErrorWouldBlock() noexcept override { return false; }
  int Receive(Handle, char* data, std::size_t) noexcept override {
    *data = greeting[m_read++];
    return 1;
  }
  Vask::Platform::Readiness WaitReadable(Handle, std::uint32_t) noexcept override {
    if (m_read < greeting.size()) return Vask::Platform::Readiness::Readable;
    if (onEnd) onEnd();
    if (link != nullptr) link->RequestStop();
    return Vask::Platform::Readiness::TimedOut;
  }
  Vask::Platform::Disconnection Disconnect(Handle) noexcept override {
    return Vask::Platform::Disconnection::Done;
  }
  void Shutdown(Handle) noexcept override {}
  void Close(Handle) noexcept override { ++closed; }
  bool IgnorePortUnreachable(Handle) noexcept override { return true; }
  void AllowAddressReuse(Handle) noexcept override {}
  bool Bind(Handle, std::uint16_t) noexcept override { return true; }
  int SendTo(Handle, const char*, std::size_t length, const Address&) noexcept override {
    return static_cast<int>(length);
  }
  bool LookUp(const char*, std::uint32_t& addressNetworkOrder) noexcept override {
    addressNetworkOrder = 1;
    return true;
  }
  bool HostName(char* name, std::size_t size) noexcept override {
    return std::snprintf(name, size, "machine") > 0;
  }

 private:
  std::size_t m_read = 0;  // of the greeting
};

}  // namespace Agent::Tests
