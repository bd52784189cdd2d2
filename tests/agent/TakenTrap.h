#pragma once

#include <cstdint>

#include "agent/EntryPoints.h"
#include "agent/SNMPExtensionAgent.h"

namespace Agent::Tests {

// The room that the service gives for the next trap, and what it found there.
struct TakenTrap {
  // False when none is left.
  [[nodiscard]] bool TakeFrom(SNMPExtensionAgent& agent) {
    return agent.TakeTrap(enterprise, generic, specific, timeStamp, bindings);
  }
  [[nodiscard]] bool TakeFrom(EntryPoints& entries) {
    return entries.Trap(&enterprise, &generic, &specific, &timeStamp, &bindings) == TRUE;
  }

  AsnObjectIdentifier enterprise{};
  AsnInteger generic = 0;
  AsnInteger specific = 0;
  std::uint32_t timeStamp = 0;
  SnmpVarBindList bindings{};
};

}  // namespace Agent::Tests
