#pragma once

#include <cstddef>
#include <cstdint>

namespace Vask::Platform {

// SOCKET on Windows, a file descriptor elsewhere.
using SocketHandle = std::uintptr_t;
inline constexpr SocketHandle kInvalidSocket = ~SocketHandle{0};

// An IPv4 socket address, laid out as both systems' sockaddr_in.
struct SocketAddress {
  std::uint16_t family = 2;  // AF_INET on both systems
  std::uint16_t portNetworkOrder = 0;
  std::uint32_t addressNetworkOrder = 0;
  unsigned char zero[8] = {};
};

enum class Readiness { Readable, TimedOut, Failed };
enum class Disconnection { Done, NotAvailable, Raised };

// The socket calls that the agent needs, where Winsock and BSD sockets differ
// taken together. All operations may be called from any thread.
class Sockets {
 public:
  // Starts Windows Sockets 2.2, the first time it is called in the process, and
  // answers whether that went well; true elsewhere. Opening a socket, looking a
  // name up and HostName do it by themselves; nothing does while the module
  // loads. Ended when the module is unloaded.
  virtual bool StartUp() noexcept = 0;

  // kInvalidSocket on failure.
  [[nodiscard]] virtual SocketHandle OpenTcp() noexcept = 0;
  [[nodiscard]] virtual SocketHandle OpenUdp() noexcept = 0;

  // Connects in blocking mode; the system's own time-out applies. A Shutdown
  // from another thread ends it early.
  [[nodiscard]] virtual bool Connect(SocketHandle socket, const SocketAddress& peer) noexcept = 0;
  virtual void SetBlocking(SocketHandle socket) noexcept = 0;

  // Bytes sent, or -1; then LastErrorWouldBlock speaks of this call. Never
  // raises a signal. Blocks while the peer's window is full, until the socket
  // is shut down from another thread.
  [[nodiscard]] virtual int Send(SocketHandle socket, const char* data,
                                 std::size_t length) noexcept = 0;
  [[nodiscard]] virtual bool LastErrorWouldBlock() noexcept = 0;

  // Bytes received, 0 when the peer closed, -1 on an error.
  [[nodiscard]] virtual int Receive(SocketHandle socket, char* data,
                                    std::size_t capacity) noexcept = 0;
  [[nodiscard]] virtual Readiness WaitReadable(SocketHandle socket,
                                               std::uint32_t timeoutMs) noexcept = 0;

  // The graceful end of a connection (DisconnectEx on Windows). NotAvailable
  // where the extension cannot be loaded, Raised where calling it raised a C++
  // exception. Elsewhere a shutdown gives the peer the same orderly end: Done.
  virtual Disconnection Disconnect(SocketHandle socket) noexcept = 0;
  // Ends both directions; a thread that waits in a call on it returns.
  virtual void Shutdown(SocketHandle socket) noexcept = 0;
  // After a Shutdown the peer sees an orderly end and no reset, unless it goes
  // on sending: what has arrived unread is thrown away in time.
  virtual void Close(SocketHandle socket) noexcept = 0;

  // UDP: an ICMP port-unreachable answer does not fail later calls.
  [[nodiscard]] virtual bool IgnorePortUnreachable(SocketHandle socket) noexcept = 0;
  virtual void AllowAddressReuse(SocketHandle socket) noexcept = 0;
  // Binds to every interface of the machine; the port in host order.
  [[nodiscard]] virtual bool Bind(SocketHandle socket, std::uint16_t port) noexcept = 0;
  [[nodiscard]] virtual int SendTo(SocketHandle socket, const char* data, std::size_t length,
                                   const SocketAddress& destination) noexcept = 0;

  // First IPv4 address of a name; false when the look-up fails. May block.
  [[nodiscard]] virtual bool LookUp(const char* name,
                                    std::uint32_t& addressNetworkOrder) noexcept = 0;
  // This machine's own name into a buffer of `capacity` bytes.
  [[nodiscard]] virtual bool HostName(char* name, std::size_t capacity) noexcept = 0;

 protected:
  ~Sockets() = default;
};

// The machine's own. Lives as long as the process.
Sockets& SystemSockets() noexcept;

}  // namespace Vask::Platform
