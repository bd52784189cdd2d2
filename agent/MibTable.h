#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "agent/MibEntry.h"
#include "agent/ObjectIdentifier.h"
#include "json/StrDict3.h"
#include "platform/Snmp.h"

namespace Agent {

// The variables in ascending order of their full names: the list that every
// request walks. Each node keeps the full name of its variable, so a walk
// compares names and builds none.
//
// Filled while the agent starts; afterwards any thread may read it. The list
// does not own the variables.
class OrderedEntries {
 public:
  struct Node {
    MIB_ENTRY* m_entry = nullptr;
    ObjectIdentifier m_fullName;
    Node* m_next = nullptr;
  };

  OrderedEntries() = default;
  ~OrderedEntries();
  OrderedEntries(const OrderedEntries&) = delete;
  OrderedEntries& operator=(const OrderedEntries&) = delete;

  // Makes a node for a variable and does not insert it. Returns null if there is
  // no memory. The caller must insert the node or delete it.
  [[nodiscard]] static Node* MakeNode(const AsnObjectIdentifier& prefix, MIB_ENTRY& entry);

  // Takes the node over and puts it before the first one whose name is not lower.
  void Insert(Node* node) noexcept;

  [[nodiscard]] const Node* Head() const noexcept { return m_head; }

 private:
  Node* m_head = nullptr;
};

// The agent's variables: a dictionary that folds case finds them by name, and a
// list holds them in the order of their object identifiers.
//
// Threads: one thread registers the variables, before any other uses the table.
// Afterwards names and order do not change, and any thread may call every other
// operation. Only the row operations block: they take the lock of their variable
// for a moment.
class MibTable {
 public:
  // Allocates memory for a returned text. The caller of the agent frees it with
  // the utility functions. Returns null if there is no memory.
  using AllocateText = LPVOID(SNMP_FUNC_TYPE*)(UINT bytes);

  // `prefix` refers to memory that outlives the table.
  explicit MibTable(const AsnObjectIdentifier& prefix, AllocateText allocate = &SnmpUtilMemAlloc)
      : m_prefix(prefix), m_allocate(allocate) {}
  ~MibTable();
  MibTable(const MibTable&) = delete;
  MibTable& operator=(const MibTable&) = delete;

  // Register a variable, log it and return the new entry, which the table owns.
  // They return null if the name is empty or taken (the first entry stays), or if
  // there is no memory for the value or for the node. If other memory is missing,
  // they throw std::bad_alloc and have changed nothing.
  //
  // `suffix` refers to a constant array that is never freed. `next` is the variable that
  // follows in a walk, null for the last one.
  MIB_ENTRY* RegisterInt(const AsnObjectIdentifier& suffix, const char* name, MIB_ENTRY* next,
                         std::int32_t initial);
  MIB_ENTRY* RegisterString(const AsnObjectIdentifier& suffix, const char* name, MIB_ENTRY* next,
                            std::uint32_t capacity, const char* initial);
  MIB_ENTRY* RegisterSequence(const AsnObjectIdentifier& suffix, const char* name, MIB_ENTRY* next);

  // Returns the variable of that name, which the table owns, or null. The case of
  // letters does not matter.
  [[nodiscard]] MIB_ENTRY* Find(const char* name) const;

  // Change a value in place. They return false if there is no such variable or if
  // it has another type. A text that needs the whole capacity or more fills the
  // cell and leaves no terminating zero: readers measure within the capacity.
  bool SetInt(const char* name, std::int32_t value);
  bool SetString(const char* name, const char* text);

  // The rows of a SEQUENCE variable, counted from 1. SetRow returns false if there
  // is no such row.
  static void AddRow(MIB_ENTRY& entry, const char* first, const char* second);
  static bool SetRow(MIB_ENTRY& entry, UINT row, const char* first, const char* second);
  static void ClearRows(MIB_ENTRY& entry);
  [[nodiscard]] static UINT RowCount(MIB_ENTRY& entry);

  // Puts the variable's present value into `value` and returns an SNMP error
  // status: 0, 2 for a cell that does not exist, 5 for an unknown type or if there
  // is no memory. `request` is the requested name; only SEQUENCE variables look at
  // it. On failure `value` does not change. The receiver frees a returned text.
  [[nodiscard]] INT GetStoredVar(MIB_ENTRY& entry, const AsnObjectIdentifier& request,
                                 AsnAny& value) const;

  [[nodiscard]] const OrderedEntries& Ordered() const noexcept { return m_ordered; }
  [[nodiscard]] const AsnObjectIdentifier& Prefix() const noexcept { return m_prefix; }

 private:
  MIB_ENTRY* Register(std::unique_ptr<MIB_ENTRY> entry, MIB_ENTRY* next);

  static INT ReadInt(const MIB_ENTRY& entry, AsnAny& value);
  INT ReadString(const MIB_ENTRY& entry, AsnAny& value) const;
  INT ReadCell(MIB_ENTRY& entry, const AsnObjectIdentifier& request, AsnAny& value) const;

  AsnObjectIdentifier m_prefix;
  AllocateText m_allocate;
  Vask::StrDict3<MIB_ENTRY*> m_entries;
  OrderedEntries m_ordered;
};

}  // namespace Agent
