#include "agent/NextWalk.h"

#include "Src/LogPrinter.h"
#include "agent/SNMPExtensionAgent.h"

namespace Agent {

using Vask::LogPrinter;

INT SNMPExtensionAgent::GetNextRequest(SnmpVarBind& binding) const {
  return NextWalk(m_variables, binding).Run();
}

INT NextWalk::Run() {
  LogPrinter::Instance().Info("GetNextRequest(%s)\n", DottedText(m_binding.name).c_str());
  for (const OrderedEntries::Node* node = m_table.Ordered().Head(); node != nullptr;
       node = node->m_next) {
    const int order = CompareLeading(node->m_fullName.Name(), m_binding.name);
    if (order < 0) continue;
    if (order > 0) return AnswerFirstBehind(*node);
    const bool sequence = node->m_entry->m_type == kTypeSequence;
    const Step step = sequence ? StepThroughCells(*node) : StepToFollowing(*node->m_entry);
    if (step) return *step;
  }
  return SNMP_ERRORSTATUS_NOSUCHNAME;
}

// The status of reading the value is not looked at: only a SEQUENCE's bare name
// cannot be read, and managers get that name, without a value, as a place from
// which to ask on.
INT NextWalk::AnswerFirstBehind(const OrderedEntries::Node& node) {
  const AsnObjectIdentifier& name = node.m_fullName.Name();
  LogPrinter::Instance().Info("GetNextRequest: next available = %s\n", DottedText(name).c_str());
  if (!Rename({name})) return SNMP_ERRORSTATUS_GENERR;
  static_cast<void>(m_table.GetStoredVar(*node.m_entry, name, m_binding.value));
  return SNMP_ERRORSTATUS_NOERROR;
}

NextWalk::Step NextWalk::StepToFollowing(const MIB_ENTRY& entry) {
  MIB_ENTRY* const next = entry.m_next;
  if (next == nullptr) {
    LogPrinter::Instance().Info("GetNextRequest(%s) END OF TABLE\n",
                                DottedText(m_binding.name).c_str());
    return SNMP_ERRORSTATUS_NOSUCHNAME;
  }
  if (!Rename({m_table.Prefix(), next->m_oid})) return SNMP_ERRORSTATUS_GENERR;
  // The walk meets the SEQUENCE under its own bare name and enters it there.
  if (next->m_type == kTypeSequence) return std::nullopt;
  LogPrinter::Instance().Info("GetNextRequest: next = %s, type %d\n",
                              DottedText(m_binding.name).c_str(), next->m_type);
  return m_table.GetStoredVar(*next, m_binding.name, m_binding.value);
}

NextWalk::Step NextWalk::StepThroughCells(const OrderedEntries::Node& node) {
  MIB_ENTRY& entry = *node.m_entry;
  const UINT cellAt = node.m_fullName.Name().idLength;
  UINT rows = 0;
  SequenceCell cell = FollowingCell(entry, cellAt, rows);
  if (m_binding.name.idLength > cellAt + SequenceCell::kLength || cell.Entry() != 1)
    return SNMP_ERRORSTATUS_NOSUCHNAME;
  if (cell.Column() == 0) return SNMP_ERRORSTATUS_NOSUCHNAME;
  if (cell.Column() > SequenceCell::kColumns || rows == 0) return LeaveSequence(entry);
  if (!Rename({m_table.Prefix(), entry.m_oid, cell.Name()})) return SNMP_ERRORSTATUS_GENERR;
  return m_table.GetStoredVar(entry, m_binding.name, m_binding.value);
}

// A name that stops short of a whole cell is completed and not stepped on: the
// cell so named has not been answered yet.
SequenceCell NextWalk::FollowingCell(MIB_ENTRY& entry, UINT cellAt, UINT& rows) const {
  SequenceCell cell = SequenceCell::Of(m_binding.name, cellAt);
  if (m_binding.name.idLength == cellAt + SequenceCell::kLength) cell.NextRow();
  rows = MibTable::RowCount(entry);
  if (cell.Row() > rows) cell.NextColumn();
  return cell;
}

NextWalk::Step NextWalk::LeaveSequence(const MIB_ENTRY& entry) {
  if (entry.m_next == nullptr) {
    LogPrinter::Instance().Info("GetNextRequest(%s) END OF TABLE (SEQUENCE)\n",
                                DottedText(m_binding.name).c_str());
    return SNMP_ERRORSTATUS_NOSUCHNAME;
  }
  if (!Rename({m_table.Prefix(), entry.m_next->m_oid})) return SNMP_ERRORSTATUS_GENERR;
  return std::nullopt;
}

bool NextWalk::Rename(std::initializer_list<AsnObjectIdentifier> parts) {
  ObjectIdentifier name;
  if (!name.Join(parts)) return false;
  name.MoveInto(m_binding.name);
  return true;
}

}  // namespace Agent
