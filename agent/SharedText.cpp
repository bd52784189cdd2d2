#include "agent/SharedText.h"

#include <atomic>

namespace Agent {

void WriteShared(char* cell, const char* text, std::size_t length) noexcept {
  for (std::size_t i = 0; i < length; ++i)
    std::atomic_ref<char>(cell[i]).store(text[i], std::memory_order_relaxed);
}

std::uint32_t MeasureShared(char* cell, std::uint32_t capacity) noexcept {
  std::uint32_t length = 0;
  while (length < capacity &&
         std::atomic_ref<char>(cell[length]).load(std::memory_order_relaxed) != '\0')
    ++length;
  return length;
}

void ReadShared(char* cell, char* text, std::size_t length) noexcept {
  for (std::size_t i = 0; i < length; ++i)
    text[i] = std::atomic_ref<char>(cell[i]).load(std::memory_order_relaxed);
}

}  // namespace Agent
