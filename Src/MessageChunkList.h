#pragma once

#include <cstdint>

#include "Src/MessageChunk.h"

namespace Vask {

// A chain of chunks: one stored message, or those that wait to be used. Links
// chunks that others made; who takes one out frees it. Not thread-safe.
class MessageChunkList {
 public:
  [[nodiscard]] MessageChunk* Head() const noexcept { return m_head; }
  [[nodiscard]] std::uint32_t Count() const noexcept { return m_count; }

  // Appends a chunk that is in no list.
  void Append(MessageChunk* chunk) noexcept {
    chunk->m_next = nullptr;
    (m_tail != nullptr ? m_tail->m_next : m_head) = chunk;
    m_tail = chunk;
    ++m_count;
  }

  // Moves what follows the first `kept` chunks, of which `last` is the last, to
  // the front of `other`. There is at least one to keep.
  void MoveRest(MessageChunk* last, std::uint32_t kept, MessageChunkList& other) noexcept {
    if (last == m_tail) return;
    if (other.m_head == nullptr) other.m_tail = m_tail;
    m_tail->m_next = other.m_head;
    other.m_head = last->m_next;
    other.m_count += m_count - kept;
    last->m_next = nullptr;
    m_tail = last;
    m_count = kept;
  }

  // Takes out the first chunk; null when there is none.
  [[nodiscard]] MessageChunk* TakeHead() noexcept {
    MessageChunk* const chunk = m_head;
    if (chunk == nullptr) return nullptr;
    m_head = chunk->m_next;
    if (m_head == nullptr) m_tail = nullptr;
    chunk->m_next = nullptr;
    --m_count;
    return chunk;
  }

 private:
  MessageChunk* m_head = nullptr;
  MessageChunk* m_tail = nullptr;
  std::uint32_t m_count = 0;
};

}  // namespace Vask
