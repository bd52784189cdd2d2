#include "agent/OrderedEntries.h"

#include <memory>
#include <new>
#include <utility>

namespace Agent {

OrderedEntries::~OrderedEntries() {
  while (m_head != nullptr) delete std::exchange(m_head, m_head->m_next);
}

OrderedEntries::Node* OrderedEntries::MakeNode(const AsnObjectIdentifier& prefix,
                                               MIB_ENTRY& entry) {
  std::unique_ptr<Node> node(new (std::nothrow) Node);
  if (node == nullptr || !node->m_fullName.Join({prefix, entry.m_oid})) return nullptr;
  node->m_entry = &entry;
  return node.release();
}

void OrderedEntries::Insert(Node* node) noexcept {
  Node** place = &m_head;
  while (*place != nullptr &&
         CompareWhole((*place)->m_fullName.Name(), node->m_fullName.Name()) < 0)
    place = &(*place)->m_next;
  node->m_next = *place;
  *place = node;
}

}  // namespace Agent
