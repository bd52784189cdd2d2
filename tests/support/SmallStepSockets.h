#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <thread>

#include "tests/support/ForwardingSockets.h"

namespace Vask::Tests {

// The machine's sockets, but each send takes only a few bytes and yields to other
// threads, as if the peer read slowly. Any thread.
class SmallStepSockets final : public ForwardingSockets {
 public:
  static constexpr std::size_t kStepBytes = 50;

  int Send(Platform::SocketHandle socket, const char* data, std::size_t length) noexcept override {
    std::this_thread::yield();
    return ForwardingSockets::Send(socket, data, std::min(length, kStepBytes));
  }
};

}  // namespace Vask::Tests
