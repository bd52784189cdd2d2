#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Messages {

// The subscribers of one message type, in the order of their subscription. It
// has no lock of its own: one thread at a time may call it (the registrar holds
// its lock), Empty() excepted, which any thread may ask at any time.
//
// A handler may change the list while Dispatch walks it:
// - one that is removed before its turn is not called;
// - one that is added is called in the same walk, since it is added at the end;
// - no function that the walk has called is called again because it was removed
//   and added meanwhile (a handler that subscribes itself anew would otherwise
//   keep the walk going for ever).
class HandlerList {
 public:
  // A handler of unknown record type; `Invoke` knows it.
  using Function = void (*)();
  using Invoke = void (*)(Function handler, const void* record, std::int32_t id, void* context);

  constexpr HandlerList() = default;
  ~HandlerList();
  HandlerList(const HandlerList&) = delete;
  HandlerList& operator=(const HandlerList&) = delete;

  // Adds the handler at the end, with a null context; if it is there already, it
  // moves to the end.
  void Subscribe(Function handler);

  // Removes the first node with this handler; nothing if there is none.
  void Unsubscribe(Function handler);

  // Calls every handler in order.
  void Dispatch(const void* record, std::int32_t id, Invoke invoke);

  [[nodiscard]] bool Empty() const noexcept { return m_count.load(std::memory_order_relaxed) == 0; }
  [[nodiscard]] std::size_t Count() const noexcept {
    return m_count.load(std::memory_order_relaxed);
  }

 private:
  struct Node {
    Node* next;
    Function handler;
    void* context;
    bool removed;          // during a walk: stays in the chain until it is over
    std::uint64_t added;   // moments of m_clock;
    std::uint64_t called;  // 0: never
  };
  class Walk;

  void Remove(Node* previous, Node* node);
  void Unlink(Node* previous, Node* node);
  void FreeRemoved();
  [[nodiscard]] std::uint64_t LastCallOf(Function handler) const;

  Node* m_head = nullptr;
  Node* m_tail = nullptr;
  std::atomic<std::size_t> m_count{0};  // nodes that are not removed
  std::uint32_t m_walks = 0;            // walks under way, one within the other
  std::uint64_t m_clock = 0;            // counts additions, calls and walks
};

}  // namespace Messages
