#include "json/JsonArray.h"

#include "json/JsonWriter.h"

namespace Vask {

JsonArray::~JsonArray() {
  ReleaseChildren();
  while (m_spare != nullptr) {
    Cell* cell = m_spare;
    m_spare = cell->next;
    delete cell;
  }
}

JsonArray::Cell* JsonArray::NewCell() {
  Cell* cell = m_spare;
  if (cell == nullptr) return new Cell;
  m_spare = cell->next;
  return cell;
}

void JsonArray::AppendAdopted(Json* value) {
  Cell* cell = NewCell();
  *cell = {value, nullptr};
  (m_tail != nullptr ? m_tail->next : m_head) = cell;
  m_tail = cell;
  ++m_count;
}

Json* JsonArray::TakeChild() noexcept {
  Cell* cell = m_head;
  if (cell == nullptr) return nullptr;
  m_head = cell->next;
  cell->next = m_spare;
  m_spare = cell;
  return cell->value;
}

void JsonArray::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonArray::WritePretty(std::string& out, std::uint32_t indentLevel) const {
  JsonWriter::Pretty(*this, indentLevel, out);
}

}  // namespace Vask
