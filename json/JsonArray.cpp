#include "json/JsonArray.h"

#include "json/JsonWriter.h"

namespace Vask {

JsonArray::~JsonArray() {
  ReleaseChildren();
}

void JsonArray::AppendAdopted(Json* value) {
  Cell* cell = new Cell{value, nullptr};
  (m_tail != nullptr ? m_tail->next : m_head) = cell;
  m_tail = cell;
  ++m_count;
}

Json* JsonArray::TakeChild() noexcept {
  Cell* cell = m_head;
  if (cell == nullptr) return nullptr;
  Json* value = cell->value;
  m_head = cell->next;
  delete cell;
  return value;
}

void JsonArray::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonArray::WritePretty(std::string& out, std::uint32_t indentLevel) const {
  JsonWriter::Pretty(*this, indentLevel, out);
}

}  // namespace Vask
