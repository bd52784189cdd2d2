#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Src/IDailyLog.h"

namespace Vask::Tests {

// The whole text of a stored message.
inline std::string TextOf(const IDailyLog::ILogDataBlock* block) {
  std::string text;
  for (; block != nullptr; block = block->Next()) text.append(block->Data(), block->Length());
  return text;
}

inline std::vector<std::string> TextsOf(const IDailyLog::ILogDataBlock* const* blocks,
                                        std::uint32_t count) {
  std::vector<std::string> texts;
  for (std::uint32_t i = 0; i < count; ++i) texts.push_back(TextOf(blocks[i]));
  return texts;
}

inline std::vector<std::uint32_t> ChunkSizes(const IDailyLog::ILogDataBlock* block) {
  std::vector<std::uint32_t> sizes;
  for (; block != nullptr; block = block->Next()) sizes.push_back(block->Length());
  return sizes;
}

}  // namespace Vask::Tests
