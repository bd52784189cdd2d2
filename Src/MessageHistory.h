#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include "Src/IDailyLog.h"
#include "Src/MessageChunkList.h"

namespace Vask {

// The messages of the history at one moment, copied: what later messages recycle
// does not touch it.
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

// The last 20 messages of the log. Its chunks are kept and used again, so that a
// steady stream of messages of similar size allocates nothing. Not thread-safe:
// the daily log's lock guards it.
class MessageHistory {
 public:
  static constexpr std::uint32_t kSlots = 20;

  MessageHistory() = default;
  ~MessageHistory();
  MessageHistory(const MessageHistory&) = delete;
  MessageHistory& operator=(const MessageHistory&) = delete;

  // Stores a message in place of the oldest. Its first chunk holds as much of the
  // head, time stamp and prefix, as fits; the text begins in the next one.
  // Throws std::bad_alloc, and nothing has changed, when there is no memory.
  void Store(std::string_view head, std::string_view text);

  [[nodiscard]] MessageHistoryCopy Copy() const;

  // Chunks that wait to be used.
  [[nodiscard]] std::uint32_t FreeChunks() const noexcept { return m_free.Count(); }

 private:
  struct Slot {
    MessageChunkList chunks;
    std::uint32_t length = 0;
  };

  // Sees to it that a message and the free list together have so many chunks.
  void Reserve(const MessageChunkList& message, std::size_t chunks);
  // The empty chunk that follows `previous`, null for the first, in a message.
  MessageChunk* ChunkAfter(MessageChunk* previous, MessageChunkList& message);
  static void FreeAll(MessageChunkList& list) noexcept;

  std::uint32_t m_used = 0;
  std::uint32_t m_current = 0;
  MessageChunkList m_free;
  std::array<Slot, kSlots> m_slots;
};

}  // namespace Vask
