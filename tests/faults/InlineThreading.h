#pragma once

#include "tests/support/ForwardingThreading.h"

namespace Agent::Tests {

// Events of another machine, but a thread is run to its end by whoever starts
// it. Allocates nothing. One thread.
class InlineThreading final : public Vask::Tests::ForwardingThreading {
 public:
  using ForwardingThreading::ForwardingThreading;

  Vask::Platform::NativeHandle StartThread(
      const Vask::Platform::ThreadEntry& entry) noexcept override {
    entry.run(entry.argument);
    SetEvent(entry.finished);
    return this;
  }
  void JoinThread(Vask::Platform::NativeHandle, Vask::Platform::NativeHandle) noexcept override {}
  void CloseThread(Vask::Platform::NativeHandle) noexcept override {}
};

}  // namespace Agent::Tests
