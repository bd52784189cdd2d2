#include "messages/HandlerList.h"

#include <algorithm>

namespace Messages {

// Keeps the nodes in place while a walk is under way.
class HandlerList::Walk {
 public:
  explicit Walk(HandlerList& list) : m_list(list), m_start(++list.m_clock) { ++list.m_walks; }
  ~Walk() {
    if (--m_list.m_walks == 0) m_list.FreeRemoved();
  }
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;

  bool IsDue(const Node& node) const {
    const bool calledBeforeItMoved = node.added > m_start && node.called > m_start;
    return !node.removed && !calledBeforeItMoved;
  }

 private:
  HandlerList& m_list;
  const std::uint64_t m_start;
};

HandlerList::~HandlerList() {
  while (m_head != nullptr) Unlink(nullptr, m_head);
}

void HandlerList::Subscribe(Function handler) {
  Node* node = new Node{nullptr, handler, nullptr, false, ++m_clock, LastCallOf(handler)};
  Unsubscribe(handler);  // only now that nothing can fail
  (m_tail != nullptr ? m_tail->next : m_head) = node;
  m_tail = node;
  m_count.fetch_add(1, std::memory_order_relaxed);
}

void HandlerList::Unsubscribe(Function handler) {
  Node* previous = nullptr;
  for (Node* node = m_head; node != nullptr; previous = node, node = node->next) {
    if (!node->removed && node->handler == handler) {
      Remove(previous, node);
      return;
    }
  }
}

void HandlerList::Dispatch(const void* record, std::int32_t id, Invoke invoke) {
  const Walk walk(*this);
  for (Node* node = m_head; node != nullptr; node = node->next) {
    if (!walk.IsDue(*node)) continue;
    node->called = ++m_clock;
    invoke(node->handler, record, id, node->context);
  }
}

void HandlerList::Remove(Node* previous, Node* node) {
  m_count.fetch_sub(1, std::memory_order_relaxed);
  node->removed = true;
  if (m_walks == 0) Unlink(previous, node);
}

void HandlerList::Unlink(Node* previous, Node* node) {
  (previous != nullptr ? previous->next : m_head) = node->next;
  if (m_tail == node) m_tail = previous;
  delete node;
}

void HandlerList::FreeRemoved() {
  Node* previous = nullptr;
  for (Node* node = m_head; node != nullptr;) {
    Node* next = node->next;
    if (node->removed) {
      Unlink(previous, node);
    } else {
      previous = node;
    }
    node = next;
  }
}

std::uint64_t HandlerList::LastCallOf(Function handler) const {
  std::uint64_t last = 0;
  for (const Node* node = m_head; node != nullptr; node = node->next) {
    if (node->handler == handler) last = std::max(last, node->called);
  }
  return last;
}

}  // namespace Messages
