#include "platform/Sockets.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "platform/UniqueHandle.h"

namespace Vask::Platform {

namespace {

static_assert(sizeof(SocketAddress) == sizeof(sockaddr_in));

// A peer that never stops sending must not keep an ending connection open.
constexpr std::size_t kMostDrainedBytes = std::size_t{1024} * 1024;

struct AddressList {
  using Type = addrinfo*;
  static constexpr Type None() noexcept { return nullptr; }
  static void Close(Type list) noexcept { freeaddrinfo(list); }
};

int Descriptor(SocketHandle socket) noexcept {
  return static_cast<int>(socket);
}

SocketHandle Open(int type) noexcept {
  const int descriptor = socket(AF_INET, type | SOCK_CLOEXEC, 0);
  return descriptor < 0 ? kInvalidSocket : static_cast<SocketHandle>(descriptor);
}

const sockaddr* AsSockaddr(const SocketAddress& address) noexcept {
  return reinterpret_cast<const sockaddr*>(&address);
}

// Returns what poll returns for this socket. A bad handle is an error, too.
int PollFor(SocketHandle socket, short events, int timeoutMs) noexcept {
  pollfd waited{Descriptor(socket), events, 0};
  if (waited.fd < 0) return errno = EBADF, -1;
  const int ready = poll(&waited, 1, timeoutMs);
  return (waited.revents & POLLNVAL) != 0 ? (errno = EBADF, -1) : ready;
}

// An interrupted connect continues in the system. Waits for its result.
bool FinishConnect(SocketHandle socket) noexcept {
  while (PollFor(socket, POLLOUT, -1) < 0) {
    if (errno != EINTR) return false;
  }
  int error = 0;
  socklen_t length = sizeof error;
  return getsockopt(Descriptor(socket), SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
}

// Reads the bytes that have arrived, without waiting. Unread bytes would turn the
// close into a reset, and the peer could lose the bytes that were sent to it.
void Drain(SocketHandle socket) noexcept {
  char scratch[4096];
  for (std::size_t drained = 0; drained < kMostDrainedBytes;) {
    const ssize_t got = recv(Descriptor(socket), scratch, sizeof scratch, MSG_DONTWAIT);
    if (got <= 0) return;
    drained += static_cast<std::size_t>(got);
  }
}

int SizeForInt(std::size_t length) noexcept {
  return static_cast<int>(std::min<std::size_t>(length, INT_MAX));
}

class PosixSockets final : public Sockets {
 public:
  bool StartUp() noexcept override { return true; }

  SocketHandle OpenTcp() noexcept override { return Open(SOCK_STREAM); }
  SocketHandle OpenUdp() noexcept override { return Open(SOCK_DGRAM); }

  bool Connect(SocketHandle socket, const SocketAddress& peer) noexcept override {
    if (connect(Descriptor(socket), AsSockaddr(peer), sizeof peer) == 0) return true;
    return errno == EINTR && FinishConnect(socket);
  }

  void SetBlocking(SocketHandle socket) noexcept override {
    const int flags = fcntl(Descriptor(socket), F_GETFL);
    if (flags != -1) fcntl(Descriptor(socket), F_SETFL, flags & ~O_NONBLOCK);
  }

  int Send(SocketHandle socket, const char* data, std::size_t length) noexcept override {
    ssize_t sent = 0;
    do {
      sent = send(Descriptor(socket), data, static_cast<std::size_t>(SizeForInt(length)),
                  MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return static_cast<int>(sent);
  }

  bool LastErrorWouldBlock() noexcept override { return errno == EAGAIN || errno == EWOULDBLOCK; }

  int Receive(SocketHandle socket, char* data, std::size_t capacity) noexcept override {
    ssize_t got = 0;
    do {
      got = recv(Descriptor(socket), data, static_cast<std::size_t>(SizeForInt(capacity)), 0);
    } while (got < 0 && errno == EINTR);
    return static_cast<int>(got);
  }

  // Uses poll, because a host may have more open descriptors than fit into an
  // fd_set.
  Readiness WaitReadable(SocketHandle socket, std::uint32_t timeoutMs) noexcept override {
    const auto timeout = static_cast<int>(std::min<std::uint32_t>(timeoutMs, INT_MAX));
    const int ready = PollFor(socket, POLLIN, timeout);
    if (ready > 0) return Readiness::Readable;
    return ready == 0 || errno == EINTR ? Readiness::TimedOut : Readiness::Failed;
  }

  Disconnection Disconnect(SocketHandle socket) noexcept override {
    shutdown(Descriptor(socket), SHUT_WR);
    Drain(socket);
    return Disconnection::Done;
  }

  // Does not read unread bytes (Close does), because another thread may be in a
  // connect or a receive.
  void Shutdown(SocketHandle socket) noexcept override { shutdown(Descriptor(socket), SHUT_RDWR); }

  void Close(SocketHandle socket) noexcept override {
    Drain(socket);
    close(Descriptor(socket));
  }

  // Linux reports such messages only to a socket with a fixed peer.
  bool IgnorePortUnreachable(SocketHandle) noexcept override { return true; }

  void AllowAddressReuse(SocketHandle socket) noexcept override {
    const int on = 1;
    setsockopt(Descriptor(socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  }

  bool Bind(SocketHandle socket, std::uint16_t port) noexcept override {
    SocketAddress any;
    any.portNetworkOrder = htons(port);
    return bind(Descriptor(socket), AsSockaddr(any), sizeof any) == 0;
  }

  int SendTo(SocketHandle socket, const char* data, std::size_t length,
             const SocketAddress& destination) noexcept override {
    return static_cast<int>(sendto(Descriptor(socket), data,
                                   static_cast<std::size_t>(SizeForInt(length)), MSG_NOSIGNAL,
                                   AsSockaddr(destination), sizeof destination));
  }

  // Uses getaddrinfo, because gethostbyname keeps its result in memory that all
  // threads of the host share.
  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(name, nullptr, &wanted, &found) != 0) return false;
    const UniqueHandle<AddressList> list(found);
    sockaddr_in first{};
    std::memcpy(&first, found->ai_addr, sizeof first);
    addressNetworkOrder = first.sin_addr.s_addr;
    return true;
  }

  bool HostName(char* name, std::size_t capacity) noexcept override {
    if (capacity == 0 || gethostname(name, capacity) != 0) return false;
    name[capacity - 1] = '\0';
    return true;
  }
};

constinit PosixSockets g_sockets;

}  // namespace

Sockets& SystemSockets() noexcept {
  return g_sockets;
}

}  // namespace Vask::Platform
