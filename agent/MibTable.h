#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "agent/MibEntry.h"
#include "agent/OrderedEntries.h"
#include "json/StrDict3.h"
#include "platform/Snmp.h"

namespace Agent {

// The agent's variables: found by name through a dictionary that folds case,
// and walked in the order of their object identifiers.
//
// Threads: registration happens on one thread, before anybody else uses the
// table; afterwards names and order stand still and every other operation may
// be called from any thread. None blocks but the row operations, which take
// that variable's lock for a moment.
class MibTable {
 public:
  // Memory for an answered text; whoever asked the agent frees it with the
  // utility functions. Null when there is none left.
  using AllocateText = LPVOID(SNMP_FUNC_TYPE*)(UINT bytes);

  // `prefix` refers to memory that outlives the table.
  explicit MibTable(const AsnObjectIdentifier& prefix, AllocateText allocate = &SnmpUtilMemAlloc)
      : m_prefix(prefix), m_allocate(allocate) {}
  ~MibTable();
  MibTable(const MibTable&) = delete;
  MibTable& operator=(const MibTable&) = delete;

  // Registers a variable, logs it, and answers the new entry, which the table
  // owns: null when the name is empty or taken (the first stays) or when there
  // is no memory for the value or its place. Throws std::bad_alloc, and has done
  // nothing, when there is none for anything else. `suffix` refers to a constant array, never
  // freed; `next` is the variable that a walk goes on with after this one, null for the last.
  MIB_ENTRY* RegisterInt(const AsnObjectIdentifier& suffix, const char* name, MIB_ENTRY* next,
                         std::int32_t initial);
  MIB_ENTRY* RegisterString(const AsnObjectIdentifier& suffix, const char* name, MIB_ENTRY* next,
                            std::uint32_t capacity, const char* initial);
  MIB_ENTRY* RegisterSequence(const AsnObjectIdentifier& suffix, const char* name, MIB_ENTRY* next);

  // The variable of that name in any spelling of its letters; null when there
  // is none. Stays the table's.
  [[nodiscard]] MIB_ENTRY* Find(const char* name) const;

  // Change a value in place; false when there is no such variable or it is of
  // another type. A text that needs the whole capacity or more fills the cell
  // to its last byte and leaves no zero behind: readers measure within the
  // capacity.
  bool SetInt(const char* name, std::int32_t value);
  bool SetString(const char* name, const char* text);

  // The rows of a SEQUENCE variable, counted from 1. Set answers false for a
  // row that is not there.
  static void AddRow(MIB_ENTRY& entry, const char* first, const char* second);
  static bool SetRow(MIB_ENTRY& entry, UINT row, const char* first, const char* second);
  static void ClearRows(MIB_ENTRY& entry);
  [[nodiscard]] static UINT RowCount(MIB_ENTRY& entry);

  // Puts the variable's present value into `value` and answers an SNMP error
  // status: 0, 2 for a cell that is not there, 5 for a type that cannot be
  // answered or when there is no memory. `request` is the name that was asked
  // for; only SEQUENCE variables look at it. On failure `value` stays as it
  // was. A text answered is the receiver's to free.
  [[nodiscard]] INT GetStoredVar(MIB_ENTRY& entry, const AsnObjectIdentifier& request,
                                 AsnAny& value) const;

  [[nodiscard]] const OrderedEntries& Ordered() const noexcept { return m_ordered; }
  [[nodiscard]] const AsnObjectIdentifier& Prefix() const noexcept { return m_prefix; }

 private:
  MIB_ENTRY* Register(std::unique_ptr<MIB_ENTRY> entry, MIB_ENTRY* next);

  INT AnswerInt(const MIB_ENTRY& entry, AsnAny& value) const;
  INT AnswerString(const MIB_ENTRY& entry, AsnAny& value) const;
  INT AnswerCell(MIB_ENTRY& entry, const AsnObjectIdentifier& request, AsnAny& value) const;

  AsnObjectIdentifier m_prefix;
  AllocateText m_allocate;
  Vask::StrDict3<MIB_ENTRY*> m_entries;
  OrderedEntries m_ordered;
};

}  // namespace Agent
