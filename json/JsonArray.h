#pragma once

#include <cstddef>
#include <iterator>

#include "json/Json.h"

namespace Vask {

// An array: values in the order in which they were appended, as a singly linked
// list.
//
//   for (Json* element : array) ...
class JsonArray final : public Json {
  struct Cell {
    Json* value;
    Cell* next;
  };

 public:
  // Walks from head to tail. Valid until the array is released; appending keeps it valid.
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Json*;
    using difference_type = std::ptrdiff_t;
    using pointer = Json* const*;
    using reference = Json*;

    Iterator() noexcept = default;
    Json* operator*() const noexcept { return m_cell->value; }
    Iterator& operator++() noexcept {
      m_cell = m_cell->next;
      return *this;
    }
    // NOLINTNEXTLINE(cert-dcl21-cpp): iterators return a plain copy, as in the library
    Iterator operator++(int) noexcept {
      Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator&) const noexcept = default;

   private:
    friend class JsonArray;
    explicit Iterator(const Cell* cell) noexcept : m_cell(cell) {}
    const Cell* m_cell = nullptr;
  };

  JsonArray() noexcept : Json(JsonType::Array) {}

  // Puts `value`, which must not be null, at the end. The array takes a
  // reference of its own; the caller keeps its reference.
  void Append(Json* value) {
    AppendAdopted(value);
    value->AddRef();
  }

  // The same, but takes over the caller's reference, unless it throws. The link cell
  // comes from `memory`, or from the heap.
  void AppendAdopted(Json* value, ValueMemory* memory = nullptr);

  [[nodiscard]] std::uint32_t Count() const noexcept { return m_count; }
  Iterator begin() const noexcept { return Iterator(m_head); }
  Iterator end() const noexcept { return Iterator(); }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonArray() override = default;

 private:
  friend class Json;
  Json* ReleaseElements(ValueMemory::Returns& returns) noexcept {
    while (Cell* cell = m_head) {
      Json* element = cell->value;
      m_head = cell->next;
      returns.Add(cell);
      if (ReleaseChild(element, returns)) return element;
    }
    return nullptr;
  }

  std::uint32_t m_count = 0;  // first, in the padding behind the base
  Cell* m_head = nullptr;
  Cell* m_tail = nullptr;
};

}  // namespace Vask
