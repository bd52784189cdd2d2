#pragma once

#include "tests/support/FaultPlan.h"
#include "tests/support/ForwardingThreading.h"

namespace Vask::Tests {

// Forwards to other threads and events, but fails the n-th creation. Any thread.
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
