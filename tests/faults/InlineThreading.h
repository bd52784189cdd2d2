#pragma once

#include "tests/support/ForwardingThreading.h"

namespace Agent::Tests {

// Another machine's events, but the call that starts a thread runs it to its end.
// Allocates nothing. One thread.
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
