#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/UniqueHandle.h"

namespace Vask::Platform {

// A SOCKET on Windows, a file descriptor elsewhere.
using SocketHandle = std::uintptr_t;
inline constexpr SocketHandle kInvalidSocket = ~SocketHandle{0};

// An IPv4 socket address with the layout of sockaddr_in, which is the same on
// both systems.
struct SocketAddress {
  std::uint16_t family = 2;  // AF_INET on both systems
  std::uint16_t portNetworkOrder = 0;
  std::uint32_t addressNetworkOrder = 0;
  unsigned char zero[8] = {};
};

enum class Readiness { Readable, TimedOut, Failed };
enum class Disconnection { Done, NotAvailable, Raised };

// The socket calls that the agent needs, with the differences between Winsock
// and BSD sockets hidden. Any thread may call any operation.
class Sockets {
 public:
  // Starts Windows Sockets 2.2 at the first call in the process and returns
  // whether that succeeded; true elsewhere. OpenTcp, OpenUdp, LookUp and
  // HostName call it themselves. Nothing calls it while the module loads. The
  // unload of the module ends Windows Sockets.
  virtual bool StartUp() noexcept = 0;

  // kInvalidSocket on failure.
  [[nodiscard]] virtual SocketHandle OpenTcp() noexcept = 0;
  [[nodiscard]] virtual SocketHandle OpenUdp() noexcept = 0;

  // Connects in blocking mode; the system's own timeout applies. A Shutdown
  // from another thread ends the call early.
  [[nodiscard]] virtual bool Connect(SocketHandle socket, const SocketAddress& peer) noexcept = 0;
  virtual void SetBlocking(SocketHandle socket) noexcept = 0;

  // Returns the number of bytes sent, or -1; LastErrorWouldBlock then reports
  // on this call. Never raises a signal. Blocks while the peer's window is full,
  // until another thread shuts the socket down.
  [[nodiscard]] virtual int Send(SocketHandle socket, const char* data,
                                 std::size_t length) noexcept = 0;
  [[nodiscard]] virtual bool LastErrorWouldBlock() noexcept = 0;

  // Returns the number of bytes received, 0 if the peer has closed the
  // connection, -1 on an error.
  [[nodiscard]] virtual int Receive(SocketHandle socket, char* data,
                                    std::size_t capacity) noexcept = 0;
  [[nodiscard]] virtual Readiness WaitReadable(SocketHandle socket,
                                               std::uint32_t timeoutMs) noexcept = 0;

  // Ends a connection gracefully (DisconnectEx on Windows). NotAvailable if the
  // extension cannot be loaded, Raised if it raised a C++ exception. Elsewhere a
  // shutdown gives the peer the same orderly end: Done.
  virtual Disconnection Disconnect(SocketHandle socket) noexcept = 0;
  // Ends both directions. A thread that waits in a call on the socket returns.
  virtual void Shutdown(SocketHandle socket) noexcept = 0;
  // After a Shutdown the peer sees an orderly end and no reset, unless it
  // continues to send: unread bytes are discarded first.
  virtual void Close(SocketHandle socket) noexcept = 0;

  // UDP: an ICMP port-unreachable message does not make later calls fail.
  [[nodiscard]] virtual bool IgnorePortUnreachable(SocketHandle socket) noexcept = 0;
  virtual void AllowAddressReuse(SocketHandle socket) noexcept = 0;
  // Binds to every interface of the machine; the port in host order.
  [[nodiscard]] virtual bool Bind(SocketHandle socket, std::uint16_t port) noexcept = 0;
  [[nodiscard]] virtual int SendTo(SocketHandle socket, const char* data, std::size_t length,
                                   const SocketAddress& destination) noexcept = 0;

  // Stores the first IPv4 address of a name; false if the lookup fails. May
  // block.
  [[nodiscard]] virtual bool LookUp(const char* name,
                                    std::uint32_t& addressNetworkOrder) noexcept = 0;
  // Writes this machine's own name into a buffer of `capacity` bytes. False on
  // failure.
  [[nodiscard]] virtual bool HostName(char* name, std::size_t capacity) noexcept = 0;

 protected:
  ~Sockets() = default;
};

// The machine's sockets. The object lives as long as the process.
Sockets& SystemSockets() noexcept;

struct SystemSocketPolicy {
  using Type = SocketHandle;
  static constexpr Type None() noexcept { return kInvalidSocket; }
  void Close(Type socket) const noexcept { SystemSockets().Close(socket); }
};
// Owns one of the machine's sockets.
using SystemSocket = UniqueHandle<SystemSocketPolicy>;

}  // namespace Vask::Platform
