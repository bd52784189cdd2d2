#include "platform/Sockets.h"

#include <winsock2.h>
// They need the socket declarations before them:
#include <mstcpip.h>
#include <mswsock.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/CriticalSection.h"
#include "platform/ProcessExit.h"

#if !defined(SIO_UDP_CONNRESET)
#define SIO_UDP_CONNRESET _WSAIOW(IOC_VENDOR, 12)
#endif

namespace Vask::Platform {

namespace {

static_assert(sizeof(SocketHandle) == sizeof(SOCKET));
static_assert(sizeof(SocketAddress) == sizeof(sockaddr_in));

// A peer that never stops sending must not keep an ending connection open.
constexpr std::size_t kMostDrainedBytes = std::size_t{1024} * 1024;

constexpr WORD kWinsockVersion = MAKEWORD(2, 2);

// std::call_once would leave handles behind in every load cycle.
constinit CriticalSection g_startUpLock(LockRank::SocketStartUp);
constinit bool g_startUpTried VASK_GUARDED_BY(g_startUpLock) = false;
constinit bool g_started VASK_GUARDED_BY(g_startUpLock) = false;

// At the end of the process, killed threads may hold Winsock's own locks, and the
// system frees everything itself.
void CleanUp() {
  if (!ProcessIsExiting()) WSACleanup();
}

int SizeForInt(std::size_t length) noexcept {
  return static_cast<int>(std::min<std::size_t>(length, INT_MAX));
}

HANDLE AsHandle(SocketHandle socket) noexcept {
  return reinterpret_cast<HANDLE>(socket);  // NOLINT(performance-no-int-to-ptr): is a number
}

const sockaddr* AsSockaddr(const SocketAddress& address) noexcept {
  return reinterpret_cast<const sockaddr*>(&address);
}

// Reads the bytes that have arrived, without waiting. Unread bytes would turn the
// close into a reset, and the peer could lose the bytes that were sent to it. The
// socket must not block: if this asked first whether there are bytes, another
// thread could take them before the read, or be killed while it does.
void Drain(SocketHandle socket) noexcept {
  u_long nonBlocking = 1;
  if (ioctlsocket(socket, static_cast<long>(FIONBIO), &nonBlocking) != 0) return;
  char scratch[16 * 1024];
  for (std::size_t drained = 0; drained < kMostDrainedBytes;) {
    const int got = recv(socket, scratch, sizeof scratch, 0);
    if (got <= 0) return;
    drained += static_cast<std::size_t>(got);
  }
}

LPFN_DISCONNECTEX LoadDisconnectEx(SocketHandle socket) noexcept {
  GUID identifier = WSAID_DISCONNECTEX;
  LPFN_DISCONNECTEX function = nullptr;
  DWORD bytes = 0;
  const int failed =
      WSAIoctl(socket, SIO_GET_EXTENSION_FUNCTION_POINTER, &identifier, sizeof identifier,
               &function, sizeof function, &bytes, nullptr, nullptr);
  return failed != 0 ? nullptr : function;
}

class WindowsSockets final : public Sockets {
 public:
  bool StartUp() noexcept override {
    const CriticalSectionLock lock(g_startUpLock);
    if (!g_startUpTried) {
      g_startUpTried = true;
      WSADATA data{};
      g_started = WSAStartup(kWinsockVersion, &data) == 0;
      // Runs at the unload of the module or, in a program, at its end.
      if (g_started) static_cast<void>(std::atexit(CleanUp));
    }
    return g_started;
  }

  SocketHandle OpenTcp() noexcept override { return Open(SOCK_STREAM); }
  SocketHandle OpenUdp() noexcept override { return Open(SOCK_DGRAM); }

  bool Connect(SocketHandle socket, const SocketAddress& peer) noexcept override {
    return connect(socket, AsSockaddr(peer), sizeof peer) == 0;
  }

  void SetBlocking(SocketHandle socket) noexcept override {
    u_long nonBlocking = 0;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &nonBlocking);
  }

  int Send(SocketHandle socket, const char* data, std::size_t length) noexcept override {
    return send(socket, data, SizeForInt(length), 0);
  }

  bool LastErrorWouldBlock() noexcept override { return WSAGetLastError() == WSAEWOULDBLOCK; }

  int Receive(SocketHandle socket, char* data, std::size_t capacity) noexcept override {
    return recv(socket, data, SizeForInt(capacity), 0);
  }

  Readiness WaitReadable(SocketHandle socket, std::uint32_t timeoutMs) noexcept override {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(socket, &readable);
    timeval timeout{};
    timeout.tv_sec = static_cast<long>(timeoutMs / 1000);
    timeout.tv_usec = static_cast<long>(timeoutMs % 1000 * 1000);
    const int ready = select(0, &readable, nullptr, nullptr, &timeout);
    if (ready == 0) return Readiness::TimedOut;
    return ready > 0 ? Readiness::Readable : Readiness::Failed;
  }

  Disconnection Disconnect(SocketHandle socket) noexcept override {
    const LPFN_DISCONNECTEX disconnectEx = LoadDisconnectEx(socket);
    if (disconnectEx == nullptr) return Disconnection::NotAvailable;
    try {
      disconnectEx(socket, nullptr, 0, 0);
    } catch (...) {
      return Disconnection::Raised;
    }
    return Disconnection::Done;
  }

  // Ends the sending side first, so that the peer sees an orderly end: Winsock resets
  // a connection if its receiving side ends with bytes unread. A pending connect is
  // not connected yet; CancelIoEx ends it.
  void Shutdown(SocketHandle socket) noexcept override {
    shutdown(socket, SD_SEND);
    Drain(socket);
    shutdown(socket, SD_BOTH);
    CancelIoEx(AsHandle(socket), nullptr);
  }

  void Close(SocketHandle socket) noexcept override { closesocket(socket); }

  bool IgnorePortUnreachable(SocketHandle socket) noexcept override {
    BOOL report = FALSE;
    DWORD bytes = 0;
    return WSAIoctl(socket, SIO_UDP_CONNRESET, &report, sizeof report, nullptr, 0, &bytes, nullptr,
                    nullptr) == 0;
  }

  void AllowAddressReuse(SocketHandle socket) noexcept override {
    const BOOL on = TRUE;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&on), sizeof on);
  }

  bool Bind(SocketHandle socket, std::uint16_t port) noexcept override {
    SocketAddress any;
    any.portNetworkOrder = htons(port);
    return bind(socket, AsSockaddr(any), sizeof any) == 0;
  }

  int SendTo(SocketHandle socket, const char* data, std::size_t length,
             const SocketAddress& destination) noexcept override {
    return sendto(socket, data, SizeForInt(length), 0, AsSockaddr(destination), sizeof destination);
  }

  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    if (!StartUp()) return false;
    const hostent* const host = gethostbyname(name);
    if (host == nullptr || host->h_addrtype != AF_INET || host->h_addr_list[0] == nullptr) {
      return false;
    }
    std::memcpy(&addressNetworkOrder, host->h_addr_list[0], sizeof addressNetworkOrder);
    return true;
  }

  bool HostName(char* name, std::size_t capacity) noexcept override {
    return StartUp() && gethostname(name, SizeForInt(capacity)) == 0;
  }

 private:
  SocketHandle Open(int type) noexcept {
    return StartUp() ? ::socket(AF_INET, type, 0) : kInvalidSocket;
  }
};

constinit WindowsSockets g_sockets;

}  // namespace

Sockets& SystemSockets() noexcept {
  return g_sockets;
}

}  // namespace Vask::Platform
