#include "tests/hostile/FedLink.h"

#include <poll.h>
#include <sys/socket.h>

#include "tests/hostile/FaultyImport.h"

namespace Hostile {

namespace {

decltype(&poll) g_realPoll = nullptr;
decltype(&recv) g_realRecv = nullptr;

int FedPoll(pollfd* sockets, nfds_t count, int timeoutMs) {
  if (g_feed.Empty()) return g_realPoll(sockets, count, timeoutMs);
  sockets->revents = POLLIN;
  return 1;
}

ssize_t FedRecv(int socket, void* data, std::size_t capacity, int flags) {
  if (g_feed.Empty()) return g_realRecv(socket, data, capacity, flags);
  *static_cast<char*>(data) = g_feed.Next();
  return 1;
}

}  // namespace

void PutFedImports(void* library) {
  g_realPoll = reinterpret_cast<decltype(g_realPoll)>(
      ReplaceKnownImport(library, "poll", reinterpret_cast<void*>(&FedPoll)));
  g_realRecv = reinterpret_cast<decltype(g_realRecv)>(
      ReplaceKnownImport(library, "recv", reinterpret_cast<void*>(&FedRecv)));
}

}  // namespace Hostile
