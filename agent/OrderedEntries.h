#pragma once

#include "agent/MibEntry.h"
#include "agent/ObjectIdentifier.h"

namespace Agent {

// The variables in ascending order of their full names: the list that every
// request walks. Each place of the list keeps the variable's full name, so that
// a walk compares and builds nothing.
//
// Filled while the agent starts and only read afterwards, then by any thread.
// The variables are not owned.
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

  // A place for a variable, not yet in the list; null when there is no memory.
  // The caller inserts it or deletes it.
  [[nodiscard]] static Node* MakeNode(const AsnObjectIdentifier& prefix, MIB_ENTRY& entry);

  // Takes the node over and puts it before the first one whose name is not lower.
  void Insert(Node* node) noexcept;

  [[nodiscard]] const Node* Head() const noexcept { return m_head; }

 private:
  Node* m_head = nullptr;
};

}  // namespace Agent
