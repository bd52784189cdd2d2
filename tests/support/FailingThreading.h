#pragma once

#include "tests/support/FaultPlan.h"
#include "tests/support/ForwardingThreading.h"

namespace Vask::Tests {

// Another machine's threads and events, of which the n-th that is to be made
// cannot be. Any thread.
class FailingThreading final : public ForwardingThreading {
 public:
  FailingThreading(Platform::Threading& base, FaultPlan& plan)
      : ForwardingThreading(base), m_plan(plan) {}

  Platform::NativeHandle CreateEvent(Platform::EventReset reset) noexcept override {
    return m_plan.Fails() ? nullptr : ForwardingThreading::CreateEvent(reset);
  }
  Platform::NativeHandle StartThread(const Platform::ThreadEntry& entry) noexcept override {
    return m_plan.Fails() ? nullptr : ForwardingThreading::StartThread(entry);
  }

 private:
  FaultPlan& m_plan;
};

}  // namespace Vask::Tests
