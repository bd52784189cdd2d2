#pragma once

#include <optional>

#include "agent/MibTable.h"
#include "agent/OrderedEntries.h"
#include "agent/SequenceCell.h"

namespace Agent {

// One GetNext for one binding: a single walk over the ordered variables, with
// the binding's name as the place that it has come to.
//
// At each variable there are three cases. The name lies before it: this
// variable is the answer. The name lies under it: step on, to the following
// variable or, within a SEQUENCE, to the following cell. The name lies behind
// it: on to the next. A step may only move the name, and then the walk goes on
// with the new one.
//
// Belongs to the thread that makes it.
class NextWalk {
 public:
  // Both outlive the walk.
  NextWalk(const MibTable& table, SnmpVarBind& binding) noexcept
      : m_table(table), m_binding(binding) {}

  // An SNMP error status; see SNMPExtensionAgent::GetNextRequest.
  [[nodiscard]] INT Run();

 private:
  // What a step made of the binding: an error status that ends the walk, or
  // nothing when the walk goes on.
  using Step = std::optional<INT>;

  INT AnswerFirstBehind(const OrderedEntries::Node& node);
  Step StepToFollowing(const MIB_ENTRY& entry);
  Step StepThroughCells(const OrderedEntries::Node& node);
  Step LeaveSequence(const MIB_ENTRY& entry);
  [[nodiscard]] SequenceCell FollowingCell(MIB_ENTRY& entry, UINT cellAt, UINT& rows) const;

  // Replaces the binding's name; false when there is no memory for it, and the
  // old one stays.
  [[nodiscard]] bool Rename(std::initializer_list<AsnObjectIdentifier> parts);

  const MibTable& m_table;
  SnmpVarBind& m_binding;
};

}  // namespace Agent
