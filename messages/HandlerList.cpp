#include "messages/HandlerList.h"

namespace Messages {

// The handlers that one dispatch has called, the last one first. The chain lies
// on the stack of the dispatch, so it needs no memory and outlives the nodes.
struct HandlerList::Called {
  Function handler;
  const Called* earlier;

  static bool Contains(const Called* chain, Function handler) noexcept {
    while (chain != nullptr && chain->handler != handler) chain = chain->earlier;
    return chain != nullptr;
  }
};

HandlerList::~HandlerList() {
  while (m_head != nullptr) Unsubscribe(m_head->handler);
}

void HandlerList::Subscribe(Function handler) {
  Node* node = new Node{nullptr, handler, nullptr};
  Unsubscribe(handler);  // after the allocation, which may fail
  (m_tail != nullptr ? m_tail->next : m_head) = node;
  m_tail = node;
  m_count.fetch_add(1, std::memory_order_relaxed);
}

void HandlerList::Unsubscribe(Function handler) noexcept {
  Node* previous = nullptr;
  Node* node = m_head;
  while (node != nullptr && node->handler != handler) {
    previous = node;
    node = node->next;
  }
  if (node == nullptr) return;
  (previous != nullptr ? previous->next : m_head) = node->next;
  if (m_tail == node) m_tail = previous;
  delete node;
  m_count.fetch_sub(1, std::memory_order_relaxed);
}

void HandlerList::Dispatch(const void* record, std::int32_t id, Invoke invoke) {
  DispatchRest({record, id, invoke}, nullptr);
}

// Recurses once for each handler.
void HandlerList::DispatchRest(const Message& message, const Called* called) {
  const Node* node = m_head;
  while (node != nullptr && Called::Contains(called, node->handler)) node = node->next;
  if (node == nullptr) return;
  const Called now{node->handler, called};
  message.invoke(node->handler, message.record, message.id, node->context);  // may free the node
  DispatchRest(message, &now);
}

}  // namespace Messages
