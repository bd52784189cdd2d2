#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "Src/IDailyLog.h"

namespace Vask {

// A piece of a message in the log's history.
class MessageChunk final : public IDailyLog::ILogDataBlock {
 public:
  static constexpr std::uint32_t kCapacity = 128;

  const char* Data() const override { return m_payload; }
  std::uint32_t Length() const override { return m_length; }
  const MessageChunk* Next() const override { return m_next; }
  MessageChunk* Next() { return m_next; }

  // Takes as much of `bytes` as fits and answers how much that is.
  std::size_t Fill(std::string_view bytes) noexcept {
    const std::size_t taken = std::min<std::size_t>(bytes.size(), kCapacity - m_length);
    // Not memcpy: knowing that it is short, g++ makes that a slow "rep movs".
    std::memmove(m_payload + m_length, bytes.data(), taken);
    m_length += static_cast<std::uint32_t>(taken);
    return taken;
  }

  void Clear() noexcept { m_length = 0; }

 private:
  friend class MessageChunkList;

  MessageChunk* m_next = nullptr;
  std::uint32_t m_length = 0;
  char m_payload[kCapacity];  // no terminating zero
};

}  // namespace Vask
