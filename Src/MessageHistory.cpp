#include "Src/MessageHistory.h"

namespace Vask {

MessageHistory::~MessageHistory() {
  for (Slot& slot : m_slots) FreeAll(slot.chunks);
  FreeAll(m_free);
}

void MessageHistory::Store(std::string_view timeStamp, std::string_view prefix,
                           std::string_view text) {
  Slot& slot = m_slots[m_current];
  m_current = (m_current + 1) % kSlots;
  if (m_used < kSlots) ++m_used;
  while (MessageChunk* const old = slot.chunks.TakeHead()) m_free.Append(old);
  slot.length = static_cast<std::uint32_t>(timeStamp.size() + prefix.size() + text.size());

  MessageChunk* const start = TakeChunk();
  start->Fill(timeStamp);
  start->Fill(prefix);
  slot.chunks.Append(start);
  while (!text.empty()) {
    MessageChunk* const chunk = TakeChunk();
    text.remove_prefix(chunk->Fill(text));
    slot.chunks.Append(chunk);
  }
}

MessageHistoryCopy MessageHistory::Copy() const {
  std::uint32_t chunkCount = 0;
  for (const Slot& slot : m_slots) chunkCount += slot.chunks.Count();
  MessageHistoryCopy copy;
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

MessageChunk* MessageHistory::TakeChunk() {
  MessageChunk* const chunk = m_free.TakeHead();
  if (chunk == nullptr) return new MessageChunk;
  chunk->Clear();
  return chunk;
}

void MessageHistory::FreeAll(MessageChunkList& list) noexcept {
  while (const MessageChunk* const chunk = list.TakeHead()) delete chunk;
}

}  // namespace Vask
