#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Messages {

// The subscribers of one message type, in the order of their subscription. The
// list has no lock: the registrar holds its own during every call except Empty()
// and Count(), which any thread may call at any time.
//
// A handler may change the list and may dispatch again. A dispatch always calls
// the first handler of the list that it has not called yet, until there is none:
// - It does not call a handler that was removed before its turn.
// - It calls a handler that was added meanwhile.
// - It calls no handler twice, so a handler that subscribes itself again does not
//   keep the dispatch going for ever.
// A dispatch within a dispatch has calls of its own and changes none of the
// outer one's.
class HandlerList {
 public:
  // A handler of unknown record type; `Invoke` knows the type.
  using Function = void (*)();
  using Invoke = void (*)(Function handler, const void* record, std::int32_t id, void* context);

  constexpr HandlerList() = default;
  ~HandlerList();
  HandlerList(const HandlerList&) = delete;
  HandlerList& operator=(const HandlerList&) = delete;

  // Adds the handler at the end, with a null context. A handler that is in the
  // list moves to the end. Throws std::bad_alloc and then changes nothing.
  void Subscribe(Function handler);

  // Removes the handler, if it is in the list.
  void Unsubscribe(Function handler) noexcept;

  // Calls every handler, as described above. Meant for a few handlers: the stack grows
  // with their number, and the time with its cube.
  void Dispatch(const void* record, std::int32_t id, Invoke invoke);

  [[nodiscard]] bool Empty() const noexcept { return Count() == 0; }
  [[nodiscard]] std::size_t Count() const noexcept {
    return m_count.load(std::memory_order_relaxed);
  }

 private:
  struct Node {
    Node* next;
    Function handler;
    void* context;
  };
  struct Message {
    const void* record;
    std::int32_t id;
    Invoke invoke;
  };
  struct Called;

  void DispatchRest(const Message& message, const Called* called);

  Node* m_head = nullptr;
  Node* m_tail = nullptr;
  std::atomic<std::size_t> m_count{0};
};

}  // namespace Messages
