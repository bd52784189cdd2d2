#include "tests/hostile/FedLink.h"

#include <winsock2.h>

#include "tests/hostile/FaultyImport.h"

namespace Hostile {

namespace {

using Select = int WSAAPI(int, fd_set*, fd_set*, fd_set*, const timeval*);
using Receive = int WSAAPI(SOCKET, char*, int, int);

Select* g_realSelect = nullptr;
Receive* g_realReceive = nullptr;

// Leaves the socket in its set: it is readable.
int WSAAPI FedSelect(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                     const timeval* timeout) {
  if (g_feed.Empty()) return g_realSelect(count, readable, writable, failed, timeout);
  return 1;
}

int WSAAPI FedReceive(SOCKET socket, char* data, int capacity, int flags) {
  if (g_feed.Empty()) return g_realReceive(socket, data, capacity, flags);
  *data = g_feed.Next();
  return 1;
}

}  // namespace

void PutFedImports(void* library) {
  g_realSelect = reinterpret_cast<Select*>(
      ReplaceKnownImport(library, "select", reinterpret_cast<void*>(&FedSelect)));
  g_realReceive = reinterpret_cast<Receive*>(
      ReplaceKnownImport(library, "recv", reinterpret_cast<void*>(&FedReceive)));
}

}  // namespace Hostile
