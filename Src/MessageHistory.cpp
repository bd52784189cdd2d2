#include "Src/MessageHistory.h"

namespace Vask {

MessageHistory::~MessageHistory() {
  for (Slot& slot : m_slots) FreeAll(slot.chunks);
  FreeAll(m_free);
}

// Fills the chunks of the slot again. Takes missing ones from the free list and moves
// surplus ones to it. After Reserve nothing can fail.
[[gnu::hot]] void MessageHistory::Store(std::string_view head, std::string_view text) {
  Slot& slot = m_slots[m_current];
  constexpr std::size_t kChunk = MessageChunk::kCapacity;
  Reserve(slot.chunks, 1 + (text.size() + kChunk - 1) / kChunk);
  if (++m_current == kSlots) m_current = 0;
  if (m_used < kSlots) ++m_used;
  slot.length = static_cast<std::uint32_t>(head.size() + text.size());

  MessageChunk* chunk = ChunkAfter(nullptr, slot.chunks);
  chunk->Fill(head);
  std::uint32_t filled = 1;
  for (; !text.empty(); ++filled) {
    chunk = ChunkAfter(chunk, slot.chunks);
    text.remove_prefix(chunk->Fill(text));
  }
  slot.chunks.MoveRest(chunk, filled, m_free);
}

MessageHistoryCopy MessageHistory::Copy() const {
  std::uint32_t chunkCount = 0;
  for (const Slot& slot : m_slots) chunkCount += slot.chunks.Count();
  MessageHistoryCopy copy;
  if (chunkCount == 0) return copy;
  copy.m_chunks = std::make_unique<MessageChunk[]>(chunkCount);
  MessageChunk* to = copy.m_chunks.get();
  const std::uint32_t oldest = m_used == kSlots ? m_current : 0;
  for (std::uint32_t i = 0; i < m_used; ++i) {
    const Slot& slot = m_slots[(oldest + i) % kSlots];
    MessageChunkList message;
    for (const MessageChunk* from = slot.chunks.Head(); from != nullptr; from = from->Next()) {
      to->Fill({from->Data(), from->Length()});
      message.Append(to++);
    }
    copy.m_blocks[copy.m_count++] = message.Head();
    copy.m_totalLength += slot.length;
  }
  return copy;
}

void MessageHistory::Reserve(const MessageChunkList& message, std::size_t chunks) {
  while (message.Count() + m_free.Count() < chunks) m_free.Append(new MessageChunk);
}

MessageChunk* MessageHistory::ChunkAfter(MessageChunk* previous, MessageChunkList& message) {
  MessageChunk* chunk = previous == nullptr ? message.Head() : previous->Next();
  if (chunk == nullptr) {
    chunk = m_free.TakeHead();
    message.Append(chunk);
  }
  chunk->Clear();
  return chunk;
}

void MessageHistory::FreeAll(MessageChunkList& list) noexcept {
  while (const MessageChunk* const chunk = list.TakeHead()) delete chunk;
}

}  // namespace Vask
