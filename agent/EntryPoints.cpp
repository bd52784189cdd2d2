#include "agent/EntryPoints.h"

#include "Src/LogPrinter.h"
#include "agent/AgentProcess.h"

namespace Agent {

using Vask::LogPrinter;

namespace {

constexpr char kInitRaised[] = "Cannot initialize SNMP extension agent: exception!\n";
constexpr char kQueryRaised[] = "Cannot query the SNMP extension agent: exception!\n";

// The service is a C program: an exception would end it.
template <class Body>
BOOL Guarded(const char* line, Body body) noexcept {
  try {
    return body() ? TRUE : FALSE;
  } catch (...) {
    LogPrinter::Instance().Error("%s", line);
    return FALSE;
  }
}

}  // namespace

BOOL EntryPoints::Init(HANDLE* trapEvent, AsnObjectIdentifier* supportedView) noexcept {
  return Guarded(kInitRaised, [&] {
    const bool started = m_process.Start();
    *supportedView = m_agent.Prefix();
    *trapEvent = m_agent.Traps().EventHandle();
    m_agent.RecordStart();
    LogPrinter::Instance().Info("Extension agent started!\n");
    return started;
  });
}

BOOL EntryPoints::Query(BYTE pduType, SnmpVarBindList* bindings, AsnInteger* errorStatus,
                        AsnInteger* errorIndex) noexcept {
  return Guarded(kQueryRaised, [&] {
    *errorStatus = SNMP_ERRORSTATUS_NOERROR;
    *errorIndex = 0;
    for (UINT i = 0; i < bindings->len; ++i) *errorStatus = Serve(pduType, bindings->list[i]);
    return true;
  });
}

INT EntryPoints::Serve(BYTE pduType, SnmpVarBind& binding) const {
  switch (pduType) {
    case SNMP_PDU_GET:
      return m_agent.GetRequest(binding);
    case SNMP_PDU_GETNEXT:
      return m_agent.GetNextRequest(binding);
    case SNMP_PDU_SET:
      return SNMP_ERRORSTATUS_NOTWRITABLE;
    default:
      return SNMP_ERRORSTATUS_NOSUCHNAME;
  }
}

BOOL EntryPoints::Trap(AsnObjectIdentifier* enterprise, AsnInteger* genericTrap,
                       AsnInteger* specificTrap, std::uint32_t* timeStamp,
                       SnmpVarBindList* bindings) noexcept {
  return Guarded(kQueryRaised, [&] {
    return m_agent.TakeTrap(*enterprise, *genericTrap, *specificTrap, *timeStamp, *bindings);
  });
}

}  // namespace Agent
