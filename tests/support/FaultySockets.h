#pragma once

#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/Sockets.h"

namespace Vask::Tests {

// Sockets without a network. They return what a test sets and record every call with
// its arguments as a line of text. For one thread at a time.
class FaultySockets final : public Platform::Sockets {
 public:
  static constexpr int kEverything = 1'000'000;  // in sendResults: all offered bytes

  std::vector<std::string> calls;
  std::vector<std::string> datagrams;  // the bytes of each

  std::map<std::string, std::uint32_t> names;  // for LookUp; addresses in network order
  std::string hostName = "machine";
  bool hasHostName = true;

  Platform::SocketHandle nextHandle = 7;
  bool connects = true;
  std::deque<int> sendResults;  // one for each Send, then kEverything
  bool wouldBlock = false;      // the meaning of a -1 in sendResults
  Platform::Disconnection disconnection = Platform::Disconnection::Done;
  bool ignoresPortUnreachable = true;
  bool binds = true;

  bool StartUp() noexcept override { return true; }
  Platform::SocketHandle OpenTcp() noexcept override { return Note("OpenTcp"), nextHandle; }
  Platform::SocketHandle OpenUdp() noexcept override { return Note("OpenUdp"), nextHandle; }
  bool Connect(Platform::SocketHandle socket,
               const Platform::SocketAddress& peer) noexcept override {
    Note("Connect " + std::to_string(socket) + ' ' + Dump(peer));
    return connects;
  }
  void SetBlocking(Platform::SocketHandle socket) noexcept override { Note("SetBlocking", socket); }
  int Send(Platform::SocketHandle socket, const char* data, std::size_t length) noexcept override {
    Note("Send " + std::to_string(socket) + ' ' + std::string(data, length));
    if (sendResults.empty()) return static_cast<int>(length);
    const int result = sendResults.front();
    sendResults.pop_front();
    return result == kEverything ? static_cast<int>(length) : result;
  }
  bool LastErrorWouldBlock() noexcept override { return wouldBlock; }
  int Receive(Platform::SocketHandle, char*, std::size_t) noexcept override { return -1; }
  Platform::Readiness WaitReadable(Platform::SocketHandle, std::uint32_t) noexcept override {
    return Platform::Readiness::Failed;
  }
  Platform::Disconnection Disconnect(Platform::SocketHandle socket) noexcept override {
    return Note("Disconnect", socket), disconnection;
  }
  void Shutdown(Platform::SocketHandle socket) noexcept override { Note("Shutdown", socket); }
  void Close(Platform::SocketHandle socket) noexcept override { Note("Close", socket); }
  bool IgnorePortUnreachable(Platform::SocketHandle socket) noexcept override {
    return Note("IgnorePortUnreachable", socket), ignoresPortUnreachable;
  }
  void AllowAddressReuse(Platform::SocketHandle socket) noexcept override {
    Note("AllowAddressReuse", socket);
  }
  bool Bind(Platform::SocketHandle socket, std::uint16_t port) noexcept override {
    Note("Bind " + std::to_string(socket) + ' ' + std::to_string(port));
    return binds;
  }
  int SendTo(Platform::SocketHandle, const char* data, std::size_t length,
             const Platform::SocketAddress& destination) noexcept override {
    datagrams.emplace_back(data, length);
    Note("SendTo " + Dump(destination));
    return static_cast<int>(length);
  }
  bool LookUp(const char* name, std::uint32_t& addressNetworkOrder) noexcept override {
    Note(std::string("LookUp ") + name);
    const auto found = names.find(name);
    if (found == names.end()) return false;
    addressNetworkOrder = found->second;
    return true;
  }
  bool HostName(char* name, std::size_t capacity) noexcept override {
    Note("HostName " + std::to_string(capacity));
    if (!hasHostName || hostName.size() >= capacity) return false;
    std::memcpy(name, hostName.c_str(), hostName.size() + 1);
    return true;
  }

  // Returns an address as "10.0.0.5:514".
  static std::string Dump(const Platform::SocketAddress& address) {
    unsigned char parts[4];
    unsigned char port[2];
    std::memcpy(parts, &address.addressNetworkOrder, sizeof parts);
    std::memcpy(port, &address.portNetworkOrder, sizeof port);
    std::string text;
    for (const unsigned part : parts) text += (text.empty() ? "" : ".") + std::to_string(part);
    return text + ':' + std::to_string(port[0] * 256 + port[1]);
  }

 private:
  void Note(std::string call) { calls.push_back(std::move(call)); }
  void Note(const char* call, Platform::SocketHandle socket) {
    Note(std::string(call) + ' ' + std::to_string(socket));
  }
};

}  // namespace Vask::Tests
