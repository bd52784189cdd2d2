// module_peer flood|silent: accepts connections on the agent's port, one at a time,
// until it is killed. "flood" sends good frames as fast as the agent reads them, and
// each raises a trap. "silent" neither sends nor reads.

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "platform/ListeningSocket.h"
#include "platform/Sockets.h"
#include "simulator/CorvaneServer.h"
#include "tests/contract/Module.h"

namespace {

// Many pairs of updates: the first of a pair has errors, the second has none. Many, because
// each call costs more than the bytes do, most of all under Wine.
std::string Frames(Simulator::CorvaneServer& server) {
  constexpr int kPairs = 32;
  std::string pair;
  std::string error;
  for (const char* const errors : {"1", "0"}) {
    if (!server.Set("StreamsCount", "77", error) || !server.Set("StreamsErrors", errors, error))
      return {};
    pair += server.FramesOfUpdate();
  }
  std::string frames;
  for (int i = 0; i < kPairs; ++i) frames += pair;
  return frames;
}

[[noreturn]] void Flood() {
  Simulator::ServerOptions options;
  options.port = Contract::kLinkPort;
  options.answerUpdates = false;
  options.keepBytes = false;
  Simulator::CorvaneServer server(options);
  if (!server.Start()) std::exit(2);
  const std::string frames = Frames(server);
  for (;;) {
    if (!server.Send(frames)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// Keeps each connection until the next one arrives.
[[noreturn]] void StaySilent() {
  Vask::Platform::ListeningSocket listener;
  if (!listener.Open(Contract::kLinkPort)) std::exit(2);
  Vask::Platform::SocketHandle kept = Vask::Platform::kInvalidSocket;
  for (;;) {
    const Vask::Platform::SocketHandle next = listener.Accept(1000);
    if (next == Vask::Platform::kInvalidSocket) continue;
    if (kept != Vask::Platform::kInvalidSocket) Vask::Platform::SystemSockets().Close(kept);
    kept = next;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::string(argv[1]) == "flood" ? Flood() : StaySilent();
}
