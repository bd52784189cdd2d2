#pragma once

#include <cstdint>

#include "platform/Snmp.h"

namespace Agent {

class AgentProcess;
class SNMPExtensionAgent;

// What the module's three exports do, apart from being exported.
//
// Threads: any of the SNMP service's, one call at a time, as its contract has
// it. No exception leaves: it becomes an error line and FALSE.
class EntryPoints {
 public:
  // Both outlive this object.
  EntryPoints(SNMPExtensionAgent& agent, AgentProcess& process) noexcept
      : m_agent(agent), m_process(process) {}

  // Starts the agent and hands out the event that announces traps and the name
  // that the agent serves, whether or not the start went well: the service may
  // ask an agent whose start failed, and then finds what was registered. The
  // event stays the agent's, the name refers to the agent's own array.
  BOOL Init(HANDLE* trapEvent, AsnObjectIdentifier* supportedView) noexcept;

  // Answers every binding of one request, whatever became of the one before.
  // The status is the last binding's and the index always 0. Nothing can be
  // set.
  BOOL Query(BYTE pduType, SnmpVarBindList* bindings, AsnInteger* errorStatus,
             AsnInteger* errorIndex) noexcept;

  // Hands out one waiting trap; FALSE, with nothing written, when none waits.
  BOOL Trap(AsnObjectIdentifier* enterprise, AsnInteger* genericTrap, AsnInteger* specificTrap,
            std::uint32_t* timeStamp, SnmpVarBindList* bindings) noexcept;

 private:
  [[nodiscard]] INT Answer(BYTE pduType, SnmpVarBind& binding) const;

  SNMPExtensionAgent& m_agent;
  AgentProcess& m_process;
};

}  // namespace Agent
