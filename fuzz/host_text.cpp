// Feeds host strings to both address classes, on a machine that knows every name. A failure must
// not change the address.

#include <string>

#include "fuzz/FuzzInput.h"
#include "net/InetAddress.h"
#include "tests/support/FaultySockets.h"

namespace {

constexpr std::uint8_t kLookedUp[4] = {192, 0, 2, 1};

void ExpectUsable(const Vask::Platform::SocketAddress& address) {
  FUZZ_EXPECT(address.portNetworkOrder != 0);
  FUZZ_EXPECT(address.addressNetworkOrder != 0);
}

void ExpectUntouched(const Vask::Platform::SocketAddress& address) {
  FUZZ_EXPECT(address.portNetworkOrder == 0 && address.addressNetworkOrder == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Vask::Fuzz::Input input(data, size);
  const std::uint32_t port = input.Byte() * 300u;
  const std::string text = input.Text();
  Vask::Tests::FaultySockets sockets;
  const std::uint32_t answer = Vask::QuadNetworkOrder(kLookedUp);
  sockets.names = {{text.substr(0, text.find(':')), answer}, {sockets.hostName, answer}};

  Vask::InetAddress first(sockets);
  if (first.Set(text.c_str(), port) == Vask::InetAddress::kOk) {
    ExpectUsable(first.Address());
  } else {
    ExpectUntouched(first.Address());
  }
  Vask::InetAddress2 second(sockets);
  if (second.Set(text.c_str())) {
    ExpectUsable(second.Address());
  } else {
    ExpectUntouched(second.Address());
  }
  return 0;
}
