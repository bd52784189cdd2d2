#include "json/JsonArray.h"

#include "json/JsonWriter.h"

namespace Vask {

void JsonArray::AppendAdopted(Json* value, ValueMemory* memory) {
  // cppcheck-suppress legacyUninitvar ; cppcheck takes the placement new for a use of the pointer
  Cell* cell = ::new (ValueMemory::Take(memory, sizeof(Cell))) Cell{value, nullptr};
  (m_tail != nullptr ? m_tail->next : m_head) = cell;
  m_tail = cell;
  ++m_count;
}

void JsonArray::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonArray::WritePretty(std::string& out, std::uint32_t indentLevel) const {
  JsonWriter::Pretty(*this, indentLevel, out);
}

}  // namespace Vask
