// The module's three exports. The definition file names them on Windows, where the
// SNMP service's header declares them; elsewhere the symbol map names them.

#include "agent/AgentProcess.h"
#include "platform/Snmp.h"

#if defined(_WIN32)
#define SNMPD_EXPORT extern "C"
using TimeStamp = AsnTimeticks;
#else
#define SNMPD_EXPORT extern "C" [[gnu::visibility("default")]]
using TimeStamp = UINT;
#endif

namespace {

Agent::EntryPoints* Entries() noexcept {
  try {
    return &Agent::AgentProcess::Instance().Entries();
  } catch (...) {  // no memory for the agent, and so none to log it
    return nullptr;
  }
}

}  // namespace

SNMPD_EXPORT BOOL SNMP_FUNC_TYPE SnmpExtensionInit(DWORD, HANDLE* trapEvent,
                                                   AsnObjectIdentifier* supportedView) {
  Agent::EntryPoints* const entries = Entries();
  return entries != nullptr ? entries->Init(trapEvent, supportedView) : FALSE;
}

SNMPD_EXPORT BOOL SNMP_FUNC_TYPE SnmpExtensionQuery(BYTE pduType, SnmpVarBindList* bindings,
                                                    AsnInteger* errorStatus,
                                                    AsnInteger* errorIndex) {
  Agent::EntryPoints* const entries = Entries();
  return entries != nullptr ? entries->Query(pduType, bindings, errorStatus, errorIndex) : FALSE;
}

SNMPD_EXPORT BOOL SNMP_FUNC_TYPE SnmpExtensionTrap(AsnObjectIdentifier* enterprise,
                                                   AsnInteger* genericTrap,
                                                   AsnInteger* specificTrap, TimeStamp* timeStamp,
                                                   SnmpVarBindList* bindings) {
  Agent::EntryPoints* const entries = Entries();
  if (entries == nullptr) return FALSE;
  std::uint32_t milliseconds = 0;
  if (!entries->Trap(enterprise, genericTrap, specificTrap, &milliseconds, bindings)) return FALSE;
  *timeStamp = milliseconds;
  return TRUE;
}
