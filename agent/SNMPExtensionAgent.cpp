#include "agent/SNMPExtensionAgent.h"

#include "Src/LogPrinter.h"

namespace Agent {

using Vask::LogPrinter;

INT SNMPExtensionAgent::GetRequest(SnmpVarBind& binding) const {
  const AsnObjectIdentifier& request = binding.name;
  LogPrinter::Instance().Info("GetRequest(%s)\n", DottedText(request).c_str());
  const OrderedEntries::Node* node = m_variables.Ordered().Head();
  while (node != nullptr && CompareLeading(node->m_fullName.Name(), request) != 0)
    node = node->m_next;
  if (node == nullptr) return SNMP_ERRORSTATUS_NOSUCHNAME;
  return m_variables.GetStoredVar(*node->m_entry, request, binding.value);
}

bool SNMPExtensionAgent::TakeTrap(AsnObjectIdentifier& enterprise, AsnInteger& genericTrap,
                                  AsnInteger& specificTrap, std::uint32_t& timeStampMs,
                                  SnmpVarBindList& bindings) {
  const std::optional<TrapQueue::Trap> trap = m_traps.Take();
  if (!trap) return false;
  enterprise = m_prefix.Name();
  genericTrap = SNMP_GENERICTRAP_ENTERSPECIFIC;
  specificTrap = static_cast<AsnInteger>(trap->m_specificTrap);
  timeStampMs = m_clock.TickMs() - m_startTick.load(std::memory_order_relaxed);
  bindings.list = nullptr;
  bindings.len = 0;
  LogPrinter::Instance().Info("SNMPExtensionAgent::Trap '%s' transmitted!\n", trap->m_name.c_str());
  return true;
}

}  // namespace Agent
