#include "agent/SNMPExtensionAgent.h"

#include <initializer_list>
#include <iterator>
#include <optional>

#include "Src/LogPrinter.h"
#include "agent/Traps.h"
#include "agent/Variables.h"

namespace Agent {

using Vask::LogPrinter;

namespace {

// One GetNext for one binding: one walk over the ordered variables. The name of
// the binding is the place that the walk has reached.
//
// For each variable there are three cases. The name lies before the variable: the
// variable is the result. The name lies under the variable: step to the next variable or,
// in a SEQUENCE, to the next cell. The name lies behind the variable: go on to the next
// node. A step may only change the name; the walk then continues with the new name.
//
// Belongs to the thread that makes it.
class NextWalk {
 public:
  // Both outlive the walk.
  NextWalk(const MibTable& table, SnmpVarBind& binding) noexcept
      : m_table(table), m_binding(binding) {}

  // Returns an SNMP error status; see SNMPExtensionAgent::GetNextRequest.
  [[nodiscard]] INT Run();

 private:
  // The result of a step: an error status that ends the walk, or nothing if the walk
  // continues.
  using Step = std::optional<INT>;

  INT TakeFirstBehind(const OrderedEntries::Node& node);
  Step StepToFollowing(const MIB_ENTRY& entry);
  Step StepThroughCells(const OrderedEntries::Node& node);
  Step LeaveSequence(const MIB_ENTRY& entry);
  [[nodiscard]] SequenceCell FollowingCell(MIB_ENTRY& entry, UINT cellAt, UINT& rows) const;

  // Replaces the name of the binding. Returns false if there is no memory; the
  // old name stays.
  [[nodiscard]] bool Rename(std::initializer_list<AsnObjectIdentifier> parts);

  const MibTable& m_table;
  SnmpVarBind& m_binding;
};

INT NextWalk::Run() {
  LogPrinter::Instance().Info("GetNextRequest(%s)\n", DottedText(m_binding.name).c_str());
  for (const OrderedEntries::Node* node = m_table.Ordered().Head(); node != nullptr;
       node = node->m_next) {
    const int order = CompareLeading(node->m_fullName.Name(), m_binding.name);
    if (order < 0) continue;
    if (order > 0) return TakeFirstBehind(*node);
    const bool sequence = node->m_entry->m_type == kTypeSequence;
    const Step step = sequence ? StepThroughCells(*node) : StepToFollowing(*node->m_entry);
    if (step) return *step;
  }
  return SNMP_ERRORSTATUS_NOSUCHNAME;
}

// Ignores the status of the read: only the bare name of a SEQUENCE cannot be
// read, and a manager receives that name without a value, to continue from it.
INT NextWalk::TakeFirstBehind(const OrderedEntries::Node& node) {
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
  // The walk then meets the SEQUENCE by its bare name and enters it.
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

// Completes a name that is shorter than a cell's, and does not step on from it:
// that cell has not been returned yet.
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

}  // namespace

void SNMPExtensionAgent::RegisterVariables() {
  MIB_ENTRY* next = nullptr;
  for (auto row = std::rbegin(kVariables); row != std::rend(kVariables); ++row) {
    const AsnObjectIdentifier suffix = Lend(row->suffix);
    next = row->type == kTypeInt
               ? m_variables.RegisterInt(suffix, row->name, next, row->number)
               : m_variables.RegisterString(suffix, row->name, next, row->capacity, row->text);
    if (next == nullptr) next = m_variables.Find(row->name);
    if (next == nullptr)
      LogPrinter::Instance().Error("Unable to register variable '%s'!\n", row->name);
  }
}

void SNMPExtensionAgent::RegisterTraps() {
  for (const TrapRow& row : kTraps) m_traps.Register(row.specificTrap, row.name);
}

INT SNMPExtensionAgent::GetRequest(SnmpVarBind& binding) const {
  const AsnObjectIdentifier& request = binding.name;
  LogPrinter::Instance().Info("GetRequest(%s)\n", DottedText(request).c_str());
  const OrderedEntries::Node* node = m_variables.Ordered().Head();
  while (node != nullptr && CompareLeading(node->m_fullName.Name(), request) != 0)
    node = node->m_next;
  if (node == nullptr) return SNMP_ERRORSTATUS_NOSUCHNAME;
  return m_variables.GetStoredVar(*node->m_entry, request, binding.value);
}

INT SNMPExtensionAgent::GetNextRequest(SnmpVarBind& binding) const {
  return NextWalk(m_variables, binding).Run();
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
