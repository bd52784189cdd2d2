#pragma once

#include <cstdint>

#include "platform/Snmp.h"

namespace Agent {

class AgentProcess;
class SNMPExtensionAgent;

// The work of the module's three exports.
//
// Threads: any thread of the SNMP service may call these, one call at a time, as the
// contract requires. No exception leaves a call: it writes an error line to the log and
// returns FALSE.
class EntryPoints {
 public:
  // Both outlive this object.
  EntryPoints(SNMPExtensionAgent& agent, AgentProcess& process) noexcept
      : m_agent(agent), m_process(process) {}

  // Starts the agent and returns TRUE if that succeeds. In both cases hands out
  // the event that announces traps, and the name that the agent serves: the
  // service may query an agent whose start failed, and then finds the registered
  // variables. The agent owns the event and the array of the name.
  BOOL Init(HANDLE* trapEvent, AsnObjectIdentifier* supportedView) noexcept;

  // Serves every binding of one request, also after one that failed. The status
  // is that of the last binding, and the index is always 0. All variables are
  // read-only.
  BOOL Query(BYTE pduType, SnmpVarBindList* bindings, AsnInteger* errorStatus,
             AsnInteger* errorIndex) noexcept;

  // Hands out one waiting trap. Returns FALSE, and writes nothing, if none waits.
  BOOL Trap(AsnObjectIdentifier* enterprise, AsnInteger* genericTrap, AsnInteger* specificTrap,
            std::uint32_t* timeStamp, SnmpVarBindList* bindings) noexcept;

 private:
  [[nodiscard]] INT Serve(BYTE pduType, SnmpVarBind& binding) const;

  SNMPExtensionAgent& m_agent;
  AgentProcess& m_process;
};

}  // namespace Agent
