#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "Src/IDailyLog.h"

namespace Vask {

// A piece of a message in the log's history. Not thread-safe, like all classes here.
class MessageChunk final : public IDailyLog::ILogDataBlock {
 public:
  static constexpr std::uint32_t kCapacity = 128;

  const char* Data() const override { return m_payload; }
  std::uint32_t Length() const override { return m_length; }
  const MessageChunk* Next() const override { return m_next; }
  MessageChunk* Next() { return m_next; }

  // Copies as many of `bytes` as fit and returns their number.
  std::size_t Fill(std::string_view bytes) noexcept {
    const std::size_t taken = std::min<std::size_t>(bytes.size(), kCapacity - m_length);
    // Not memcpy: g++ knows that the length is small and emits a slow "rep movs".
    std::memmove(m_payload + m_length, bytes.data(), taken);
    m_length += static_cast<std::uint32_t>(taken);
    return taken;
  }

  void Clear() noexcept { m_length = 0; }

 private:
  friend class MessageChunkList;

  MessageChunk* m_next = nullptr;
  std::uint32_t m_length = 0;
  char m_payload[kCapacity] = {};  // no terminating zero
};

// A chain of chunks: one stored message, or the free list. It owns nothing: a caller
// that takes a chunk out must free it.
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

  // Moves all chunks behind the first `kept` ones, of which `last` is the last, to the
  // front of `other`. `kept` is at least 1.
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

  // Takes out the first chunk and returns it; null if there is none.
  [[nodiscard]] MessageChunk* TakeHead() noexcept {
    MessageChunk* const chunk = m_head;
    if (chunk == nullptr) return nullptr;
    m_head = chunk->m_next;
    if (m_head == nullptr) m_tail = nullptr;
    --m_count;
    return chunk;
  }

 private:
  MessageChunk* m_head = nullptr;
  MessageChunk* m_tail = nullptr;
  std::uint32_t m_count = 0;
};

// A copy of the history at one moment. Later messages do not change it.
class MessageHistoryCopy {
 public:
  // Pointers to the first piece of each message, oldest first.
  [[nodiscard]] const IDailyLog::ILogDataBlock* const* Blocks() const noexcept {
    return m_blocks.data();
  }
  [[nodiscard]] std::uint32_t Count() const noexcept { return m_count; }
  // Bytes of all messages together.
  [[nodiscard]] std::uint32_t TotalLength() const noexcept { return m_totalLength; }

 private:
  friend class MessageHistory;

  std::unique_ptr<MessageChunk[]> m_chunks;
  std::array<const IDailyLog::ILogDataBlock*, 20> m_blocks{};
  std::uint32_t m_count = 0;
  std::uint32_t m_totalLength = 0;
};

// The last 20 messages of the log. It keeps its chunks and uses them again, so a
// steady stream of messages of similar size allocates nothing. Not thread-safe: the
// daily log's lock guards it.
class MessageHistory {
 public:
  static constexpr std::uint32_t kSlots = 20;

  MessageHistory() = default;
  ~MessageHistory();
  MessageHistory(const MessageHistory&) = delete;
  MessageHistory& operator=(const MessageHistory&) = delete;

  // Stores a message in place of the oldest one. Its first chunk holds as much of the
  // head (time stamp and prefix) as fits; the text begins in the second chunk. Throws
  // std::bad_alloc if there is no memory; then nothing has changed.
  void Store(std::string_view head, std::string_view text);

  [[nodiscard]] MessageHistoryCopy Copy() const;

  // The number of chunks in the free list.
  [[nodiscard]] std::uint32_t FreeChunks() const noexcept { return m_free.Count(); }

 private:
  struct Slot {
    MessageChunkList chunks;
    std::uint32_t length = 0;
  };

  // Allocates until the message and the free list together have this many chunks.
  void Reserve(const MessageChunkList& message, std::size_t chunks);
  // Returns the chunk that follows `previous` in a message, emptied; for null the first
  // one. Takes it from the free list if the message has no more.
  MessageChunk* ChunkAfter(MessageChunk* previous, MessageChunkList& message);
  static void FreeAll(MessageChunkList& list) noexcept;

  std::uint32_t m_used = 0;
  std::uint32_t m_current = 0;
  MessageChunkList m_free;
  std::array<Slot, kSlots> m_slots;
};

}  // namespace Vask
