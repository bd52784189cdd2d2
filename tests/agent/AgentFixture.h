#pragma once

#include <gtest/gtest.h>

#include <string>

#include "agent/SNMPExtensionAgent.h"
#include "platform/Threading.h"
#include "tests/support/Binding.h"
#include "tests/support/FakeClock.h"
#include "tests/support/RecordingLog.h"

namespace Agent::Tests {

using Vask::Tests::Binding;
using Vask::Tests::FullName;

// The outcome of a request for one binding, as text: status, name, value.
inline std::string Outcome(INT status, const Binding& binding) {
  return std::to_string(status) + " " + binding.Name() + " = " + binding.Value();
}

// An agent without variables and traps, a clock that stands still, and a log.
class EmptyAgentTest : public ::testing::Test {
 protected:
  std::string Get(const std::string& name) {
    Binding binding(name);
    const INT status = agent.GetRequest(binding.Get());
    return Outcome(status, binding);
  }
  std::string GetNext(const std::string& name) {
    Binding binding(name);
    const INT status = agent.GetNextRequest(binding.Get());
    return Outcome(status, binding);
  }
  std::string LastLine() const {
    const auto lines = log.Lines();
    return lines.empty() ? "" : lines.back();
  }

  Vask::Tests::FakeClock clock;
  Vask::Tests::RecordingLog log;
  SNMPExtensionAgent agent{clock, Vask::Platform::SystemThreading()};
};

// An agent with its variables and traps, and an empty log.
class AgentTest : public EmptyAgentTest {
 protected:
  AgentTest() {
    agent.RegisterVariables();
    agent.RegisterTraps();
    log.Clear();
  }
};

}  // namespace Agent::Tests
