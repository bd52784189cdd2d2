#include "agent/MibEntry.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Agent {

const char* TypeWord(BYTE type) noexcept {
  switch (type) {
    case kTypeInt:
      return "INT";
    case kTypeString:
      return "STRING";
    case kTypeSequence:
      return "SEQUENCE";
    default:
      return "UNKNOWN";
  }
}

MIB_ENTRY::MIB_ENTRY(const AsnObjectIdentifier& suffix, BYTE type, const char* name)
    : m_oid(suffix), m_type(type), m_number(nullptr), m_name(name) {}

MIB_ENTRY::~MIB_ENTRY() {
  if (m_type == kTypeInt) delete m_number;
  if (m_type == kTypeString) delete[] m_text;
}

bool MIB_ENTRY::HoldNumber(std::int32_t initial) noexcept {
  m_number = new (std::nothrow) std::atomic<std::int32_t>(initial);
  return m_number != nullptr;
}

bool MIB_ENTRY::HoldText(std::uint32_t capacity, const char* initial) noexcept {
  m_text = new (std::nothrow) char[capacity]();
  if (m_text == nullptr) return false;
  m_capacity = capacity;
  WriteShared(m_text, initial, std::min<std::size_t>(std::strlen(initial), capacity));
  return true;
}

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
