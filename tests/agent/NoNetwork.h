#pragma once

#include <atomic>

#include "platform/Sockets.h"

namespace Agent::Tests {

// A machine on which one socket is to be had, which cannot connect, and then no
// other. Any thread.
class NoNetwork final : public Vask::Platform::Sockets {
 public:
  using Handle = Vask::Platform::SocketHandle;
  using Address = Vask::Platform::SocketAddress;

  static constexpr Handle kFirst = 7;

  std::atomic<int> opened{0};
  std::atomic<int> closed{0};
  std::atomic<int> disconnected{0};

  bool StartUp() noexcept override { return true; }
  Handle OpenTcp() noexcept override {
    const int n = opened++;
    return n == 0 ? kFirst : Vask::Platform::kInvalidSocket;
  }
  Handle OpenUdp() noexcept override { return Vask::Platform::kInvalidSocket; }
  bool Connect(Handle, const Address&) noexcept override { return false; }
  void SetBlocking(Handle) noexcept override {}
  int Send(Handle, const char*, std::size_t) noexcept override { return -1; }
  bool LastErrorWouldBlock() noexcept override { return false; }
  int Receive(Handle, char*, std::size_t) noexcept override { return -1; }
  Vask::Platform::Readiness WaitReadable(Handle, std::uint32_t) noexcept override {
    return Vask::Platform::Readiness::Failed;
  }
  Vask::Platform::Disconnection Disconnect(Handle) noexcept override {
    ++disconnected;
    return Vask::Platform::Disconnection::Done;
  }
  void Shutdown(Handle) noexcept override {}
  void Close(Handle) noexcept override { ++closed; }
  bool IgnorePortUnreachable(Handle) noexcept override { return false; }
  void AllowAddressReuse(Handle) noexcept override {}
  bool Bind(Handle, std::uint16_t) noexcept override { return false; }
  int SendTo(Handle, const char*, std::size_t, const Address&) noexcept override { return -1; }
  bool LookUp(const char*, std::uint32_t&) noexcept override { return false; }
  bool HostName(char*, std::size_t) noexcept override { return false; }
};

}  // namespace Agent::Tests
